// Which start positions are worth an attempt.
//
// An attempt whose first items fail on the byte at the position costs a number of steps that the program alone decides.
// Such positions need not be tried: they are looked for by vector search and paid for from the budget, so that neither a
// result nor an exhausted match limit changes. The filter is made when the expression is compiled and kept in
// its state.
#pragma once

#include <cstdint>

#include "regexp/byte_sets.h"
#include "regexp/matcher.h"
#include "regexp/state.h"

namespace ulk {

// Makes what searching needs besides the program; the last step of every compile.
void prepareSearch(ulkRegExpState& state);

inline const StartFilter& startFilterOf(const ulkRegExpState& state) { return state.frames[0].start; }

// The first position from `at` on that needs an attempt, at most the text's end; pays for those before it. Where the
// budget does not suffice, it is exhausted and the position returned does not matter.
const uint8_t* skipHopelessStarts(MatchContext& m, const ulkRegExpState& state, const uint8_t* at);

}  // namespace ulk
