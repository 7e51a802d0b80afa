// Which start positions are worth an attempt.
//
// An attempt whose first items fail on the byte at the position costs a number of steps that the program
// alone decides. Such positions need not be tried: they are looked for by fast scans and paid for from the
// budget, so that neither a result nor an exhausted match limit changes. The filter is made when the
// expression is compiled and kept in its state; starts.h uses it.
#pragma once

#include <cstdint>

#include "regexp/program/state.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// `hasFrames`: the frames for it and for what searches note belong to no group.
void makeStartFilter(ulkRegExpState& state, bool hasFrames);

inline const StartFilter& startFilterOf(const ulkRegExpState& state) { return state.frames[0].start; }

// Whether the filter is for all attempts: none changes the options that the first one begins with.
inline bool filtersAllAttempts(const ulkRegExpState& state) {
  return ((startFilterOf(state).options ^ state.options) & kMatcherOptions) == 0;
}

}  // namespace ulk

#pragma GCC visibility pop
