// The search behind every operation that looks for an expression in a text.
//
// In: a text and a compiled expression. Out: a status and find records, of the first match and its groups or,
// with the option g, of all matches. On the way starts.h tells where a match may begin, and the matcher runs
// the program there.
#pragma once

#include <cstdint>

#include "ulkch.h"

namespace ulk {

// ulksRegExpFind_8u, checks included.
ulkStatus rxFind(const uint8_t* pSrc, int32_t srcLen, ulkRegExpState* pRegExpState, ulkRegExpFind* pFind,
                 int32_t* pNumFind);

// The search of a replacement, for arguments that are checked already: a global search reports the whole
// match before the groups of each. The status is of no interest. Returns how many records are to be used:
// those that the search has written, also when its limit ran out and `*pNumFind` does not tell them, but all
// that the caller has if it was refused.
int32_t rxFindForReplace(const uint8_t* pSrc, int32_t srcLen, ulkRegExpState* pRegExpState,
                         ulkRegExpFind* pFind, int32_t* pNumFind);

}  // namespace ulk
