// Allocation through the core library.
#pragma once

#include <cstdint>

// Nobody outside has these functions: they are called directly.
#pragma GCC visibility push(hidden)

namespace ulk {

// A block of `size` bytes from ulkMalloc; null, without asking it, for a size below 1.
void* ownMalloc(int32_t size);

}  // namespace ulk

#pragma GCC visibility pop
