// The search behind every operation that looks for an expression in a text.
//
// In: a text and a compiled expression. Out: a status and find records, of the first match and its groups or,
// with the option g, of all matches. On the way starts.h tells where a match may begin, and the matcher runs
// the program there.
#pragma once

#include <algorithm>
#include <cstdint>

#include "regexp/search/attempt.h"
#include "regexp/search/glance.h"
#include "ulkch.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// Searches what the cut has left of a text.
ulkStatus searchText(ulkRegExpState& state, const uint8_t* text, const uint8_t* end, ulkRegExpFind* records,
                     int32_t* numRecords);

// A bound for the steps of an attempt in an empty text, for states whose frames are free.
int32_t stepsInEmptyText(ulkRegExpState& state);

// Whether a search of an empty text is known to find nothing, within the limit.
inline bool failsInEmptyText(ulkRegExpState& state) {
  const StartFilter& filter = startFilterOf(state);
  if (filter.failsAtEnd) return state.matchLimit >= std::max(filter.steps, filter.placeSteps);
  return state.trailingLiteral >= 0 && state.trailingLiteral == state.numNodes - 1 && filter.firstBar < 0 &&
         filter.hasFrames && stepsInEmptyText(state) < state.matchLimit;
}

// ulksRegExpFind_8u, checks included. Where a glance decides, no search is set up.
inline ulkStatus rxFind(const uint8_t* pSrc, int32_t srcLen, ulkRegExpState* pRegExpState,
                        ulkRegExpFind* pFind, int32_t* pNumFind) {
  if (!pSrc || !pRegExpState || !pFind) return ulkErrNullPtr;
  if (srcLen < 0) return ulkErrLength;
  if (*pNumFind < 1) return ulkErrSize;
  if (pRegExpState->magic != kStateMagic) return ulkErrInvalidState;
  const uint8_t* const end = pSrc + cutAtTrailingLiteral(*pRegExpState, pSrc, srcLen);
  if (end == pSrc && failsInEmptyText(*pRegExpState)) {
    *pNumFind = 0;
    return ulkOk;
  }
  if (end != pSrc && decidesAtAGlance(*pRegExpState, pSrc, end, pFind, pNumFind)) return ulkOk;
  return searchText(*pRegExpState, pSrc, end, pFind, pNumFind);
}

// The search of a replacement, for arguments that are checked already: a global search reports the whole
// match before the groups of each. The status is of no interest. Returns how many records are to be used:
// those that the search has written, also when its limit ran out and `*pNumFind` does not tell them, but all
// that the caller has if it was refused.
int32_t rxFindForReplace(const uint8_t* pSrc, int32_t srcLen, ulkRegExpState* pRegExpState,
                         ulkRegExpFind* pFind, int32_t* pNumFind);

}  // namespace ulk

#pragma GCC visibility pop
