// The search behind every operation that looks for an expression in a text.
#pragma once

#include <cstdint>

#include "ulkch.h"

namespace ulk {

// Searches as ulksRegExpFind_8u does, checks included. In replacement mode a global search reports the whole
// match before the groups.
ulkStatus rxSearch(const uint8_t* pSrc, int32_t srcLen, ulkRegExpState* pRegExpState, ulkRegExpFind* pFind,
                   int32_t* pNumFind, bool replaceMode);

}  // namespace ulk
