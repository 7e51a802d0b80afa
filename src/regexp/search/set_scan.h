// The search of a set: many expressions in one pass over the text.
//
// In: a text, expressions, and what the caller has for each to find. Out: for each the status and the records
// that a search of its own has.
//
// The pass looks for the windows of all expressions at once (analysis/window.h). Where one stands, the
// matcher tries the expression at the places from which a match can reach it. All other places are paid for
// by a bound. Where the match limit does not allow for that, and where an expression has no window, it is
// searched for by itself.
#pragma once

#include <cstdint>

#include "ulkch.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// To be called before, by one thread alone: finds out what the pass needs to know of each expression, unless
// it is known. Returns how much several threads can share, in bytes that are looked at: each passes over the
// whole text, but tries and searches alone for its own expressions only.
int64_t prepareToFindTogether(int32_t length, ulkRegExpState* const* expressions, int32_t count);

// Searches for the expressions [first, last), of which null ones are passed over. Sets numFind and status.
// In the search of a set of its own thread: realigns the stack.
void findTogether(const uint8_t* text, int32_t length, ulkRegExpState* const* expressions,
                  ulkRegExpMultiFind* results, int32_t first, int32_t last);

}  // namespace ulk

#pragma GCC visibility pop
