// The two-way substring search: at most about two comparisons for each unit of the text whatever text and
// pattern are, in constant space. It cuts the pattern where its period shows locally (a critical
// factorisation), compares the part after the cut from left to right and then the part before it from right
// to left; a mismatch in the first part moves the pattern past the unit that differed, one in the second
// moves it by the period. Slower than the filter in find_substring.h on ordinary text, it takes over where
// the filter lets too much through.
//
// A backward search is a forward search of both strings read from their ends.
#pragma once

#include <algorithm>

#include "kernels/scan.h"

namespace ulk {

// A string read in the direction of the search.
template <class Direction, class Unit>
struct Sequence {
  const Unit* units;
  size_t length;

  ULK_INLINE Unit operator[](size_t i) const { return loadUnit(units + Direction::place(length, i, 1)); }
};

struct Factorisation {
  size_t cut;     // the pattern's first part has this many units
  size_t period;  // of the second part
};

// The maximal suffix of the pattern, units ordered by `less`.
template <class Pattern, class Less>
Factorisation maximalSuffix(Pattern pattern, Less less) {
  size_t best = 0;       // start of the maximal suffix so far
  size_t candidate = 1;  // start of the suffix compared with it
  size_t matched = 0;    // units by which the two agree
  size_t period = 1;
  while (candidate + matched < pattern.length) {
    const auto ours = pattern[best + matched];
    const auto theirs = pattern[candidate + matched];
    if (ours == theirs) {
      if (++matched == period) {
        candidate += period;
        matched = 0;
      }
    } else if (less(theirs, ours)) {
      candidate += matched + 1;
      matched = 0;
      period = candidate - best;
    } else {
      best = candidate++;
      matched = 0;
      period = 1;
    }
  }
  return {best, period};
}

// The longer suffix of the two orders starts at a critical position.
template <class Pattern>
Factorisation factorise(Pattern pattern) {
  const Factorisation rising = maximalSuffix(pattern, [](auto a, auto b) { return a < b; });
  const Factorisation falling = maximalSuffix(pattern, [](auto a, auto b) { return a > b; });
  return rising.cut >= falling.cut ? rising : falling;
}

// Whether the first part recurs one period on, so that the period is the whole pattern's.
template <class Pattern>
bool periodic(Pattern pattern, Factorisation f) {
  if (f.cut + f.period > pattern.length) return false;
  for (size_t i = 0; i < f.cut; ++i) {
    if (pattern[i] != pattern[i + f.period]) return false;
  }
  return true;
}

// How far into the text, in the direction of the search, the pattern begins first; -1 if it does not occur.
template <class Sequence>
int32_t twoWayOffset(Sequence text, Sequence pattern) {
  const Factorisation f = factorise(pattern);
  const bool whole = periodic(pattern, f);
  // Without a period of the whole pattern, a mismatch in the first part allows a shift past either part.
  const size_t shift = whole ? f.period : std::max(f.cut, pattern.length - f.cut) + 1;

  size_t known = 0;  // units of the pattern that are known to match after a shift by its period
  for (size_t at = 0; at + pattern.length <= text.length;) {
    size_t i = std::max(f.cut, known);
    while (i < pattern.length && pattern[i] == text[at + i]) ++i;
    if (i < pattern.length) {
      at += i - f.cut + 1;
      known = 0;
      continue;
    }
    i = f.cut;
    while (i > known && pattern[i - 1] == text[at + i - 1]) --i;
    if (i <= known) return static_cast<int32_t>(at);
    at += shift;
    known = whole ? pattern.length - shift : 0;
  }
  return -1;
}

// The position of the pattern's first occurrence in the direction of the search, -1 if there is none.
template <class Direction, class Unit>
int32_t twoWaySearch(const Unit* text, size_t textLength, const Unit* pattern, size_t patternLength) {
  using Seq = Sequence<Direction, Unit>;
  const int32_t offset = twoWayOffset(Seq{text, textLength}, Seq{pattern, patternLength});
  if (offset < 0) return -1;
  return static_cast<int32_t>(Direction::place(textLength, static_cast<size_t>(offset), patternLength));
}

}  // namespace ulk
