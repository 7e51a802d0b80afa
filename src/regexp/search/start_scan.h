// Where the bytes stand next that the start filter tells a match to begin with. Nothing is paid here.
#pragma once

#include <cstdint>

#include "regexp/analysis/start_filter.h"
#include "regexp/match/matcher.h"
#include "regexp/search/small_set_vectors.h"

#pragma GCC visibility push(hidden)

namespace ulk {

inline const ByteSet256& startSetOf(const ulkRegExpState& state) {
  return state.frames[kStartSetFrame].bytes;
}
inline const StartPair& startPairOf(const ulkRegExpState& state) {
  return state.frames[kStartPairFrame].pair;
}

// The first byte in [at, end) that is in the set. A function of its own, which keeps all it needs in
// registers.
ULK_IN_REGISTERS const uint8_t* passOutside(const uint8_t* at, const uint8_t* end, const ByteSet256& set);

// The first place in the first `length` bytes with a byte of the small set, or with the string, which may
// reach beyond them up to the text's end; `length` if there is none, 0 for other kinds of filters.
int32_t findStart(const ulkRegExpState& state, const uint8_t* at, int32_t length, const uint8_t* textEnd);

// Where a pair of the filter stands first in the text.
Place findStartPair(const ulkRegExpState& state, const uint8_t* text, int32_t length);

}  // namespace ulk

#pragma GCC visibility pop
