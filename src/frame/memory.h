// Allocation through the core library.
#pragma once

#include <cstdint>

namespace ulk {

// A block of `size` bytes from ulkMalloc; null, without asking it, for a size below 1.
void* ownMalloc(int32_t size);

}  // namespace ulk
