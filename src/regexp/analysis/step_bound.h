// How many steps an attempt takes at most that fails.
//
// It depends on the text by the runs that the unbounded repeats can take alone: of how many characters the
// longest is. So the bound is found in three parts: which runs matter, how long they are in a text, and what
// that makes. Where the limit allows for so many steps at every place of the text, attempts that would fail
// can be left out uncounted.
#pragma once

#include <cstdint>

#include "regexp/program/state.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// The sets of bytes whose runs matter, and the longest run of each.
struct Runs {
  static constexpr int32_t kMax = 6;
  int32_t count = 0;
  ByteSet256 sets[kMax];
  int32_t longest[kMax];
};

// The bounds that no limit reaches are all this one.
inline constexpr int64_t kNoBound = INT32_MAX;

// The sets of the program, with runs of length 0; some of them where no bound is known.
void findRuns(const ulkRegExpState& state, Runs& runs);

// The bound while no run is longer than `runs` says.
int64_t stepBound(const ulkRegExpState& state, const Runs& runs);

// The bound for an attempt that fails in the lookbehind that the program begins with.
int64_t lookbehindBound(const ulkRegExpState& state);

// The bound, in any text, for an attempt none of whose tries takes more than so many bytes.
int64_t shortAttemptBound(const ulkRegExpState& state, int32_t mostBytes);

}  // namespace ulk

#pragma GCC visibility pop
