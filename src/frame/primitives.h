// Block copy, move and zero-fill, the pieces that editing, trimming and replacement are put together from.
// Each takes the source first and returns ulkErrNullPtr for a null pointer, then ulkErrSize, with no memory
// touched, for a count below 1. Callers ignore both on purpose: a piece of no units is simply not copied.
#pragma once

#include <cstdint>

#include "ulkch.h"

// Nobody outside has these functions: they are called directly.
#pragma GCC visibility push(hidden)

namespace ulk {

// Source and destination do not overlap.
ulkStatus ownCopy_8u(const uint8_t* source, uint8_t* destination, int32_t count);
ulkStatus ownCopy_16u(const uint16_t* source, uint16_t* destination, int32_t count);

// Source and destination may overlap, in either direction.
ulkStatus ownMove_8u(const uint8_t* source, uint8_t* destination, int32_t count);
ulkStatus ownMove_16u(const uint16_t* source, uint16_t* destination, int32_t count);

ulkStatus ownZero_8u(uint8_t* destination, int32_t count);

}  // namespace ulk

#pragma GCC visibility pop
