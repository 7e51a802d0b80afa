// A pattern in a text: the first or the last place where all of it stands.
//
// Two units of the pattern serve as a filter: at 16 bytes of candidate positions at once, both are compared
// with the text at their distances, and only where both agree is the whole pattern compared. Which two
// decides the speed: the rarest of the pattern as text goes, and where that guess turns out wrong, one that
// has just told text and pattern apart.
//
// Text and pattern can be made so that any such filter lets too much through. The comparing is therefore kept
// account of, and when it outgrows a share of the text already searched, the rest is left to a search with a
// linear bound.
#pragma once

#include <array>

#include "kernels/find_unit.h"
#include "kernels/first_difference.h"
#include "kernels/two_way.h"

namespace ulk {

// How common a unit is in text, 0 for all that are rare: a ranking by ear, good enough to keep spaces and
// vowels out of the filter. Zero is there for the high bytes of wider data.
inline constexpr auto kCommonness = [] {
  constexpr char kRarestFirst[] = "\"'()-0123456789TSIAjqxzkv.,bywgpfm\nculdhrsnioat\0e ";
  std::array<uint8_t, 256> ranks{};
  for (size_t i = 0; i + 1 < sizeof(kRarestFirst); ++i) {
    ranks[static_cast<uint8_t>(kRarestFirst[i])] = static_cast<uint8_t>(i + 1);
  }
  return ranks;
}();

template <class Unit>
ULK_INLINE uint8_t commonness(Unit unit) {
  return unit < 256 ? kCommonness[unit] : uint8_t{0};
}

template <class Direction, class Unit>
class SubstringProbe {
 public:
  ULK_INLINE SubstringProbe(const Unit* text, size_t candidates, const Unit* pattern, size_t patternLength)
      : text_(text), pattern_(pattern), candidates_(candidates), length_(patternLength) {
    size_t first = 0;
    size_t second = patternLength - 1;
    if (candidates >= kWorthChoosing && patternLength > 2) chooseRarest(first, second);
    setFirst(first);
    setSecond(second);
  }

  template <class Block>
  ULK_INLINE Vec16<Unit> hits(const Block& block) const {
    return block.load(firstText_).equal(first_) & block.load(secondText_).equal(second_);
  }

  // Stops the walk also when comparing has become too expensive: see exhausted().
  ULK_INLINE bool accept(int32_t position) {
    if (length_ == 2) return true;
    return verify(static_cast<size_t>(position));
  }

  bool exhausted() const { return exhausted_; }

 private:
  static constexpr size_t kWorthChoosing = 256;
  static constexpr size_t kMostChosenFrom = 32;
  // Blocks of comparing that are free, and how many candidates must have been passed for each further one.
  static constexpr size_t kFreeEffort = 128;
  static constexpr size_t kCandidatesPerEffort = 8;
  static constexpr size_t kFreeFailures = 16;
  static constexpr size_t kCandidatesPerFailure = 64;

  __attribute__((noinline)) bool verify(size_t position) {
    const int32_t difference = firstDifference(text_ + position, pattern_, static_cast<int32_t>(length_));
    if (difference < 0) return true;

    const size_t at = static_cast<size_t>(difference);
    const size_t passed = Direction::place(candidates_, position, 1);
    effort_ += 1 + at / Vec16<Unit>::kLanes;
    if (++failures_ > kFreeFailures + passed / kCandidatesPerFailure) {
      failures_ = 0;
      setSecond(at);
    }
    exhausted_ = effort_ > kFreeEffort + passed / kCandidatesPerEffort;
    return exhausted_;
  }

  void chooseRarest(size_t& first, size_t& second) const {
    const size_t end = std::min(length_, kMostChosenFrom);
    int32_t firstRank = commonness(loadUnit(pattern_ + first));
    int32_t secondRank = commonness(loadUnit(pattern_ + second));
    for (size_t i = 1; i < end && i < length_ - 1; ++i) {
      const int32_t rank = commonness(loadUnit(pattern_ + i));
      if (rank < firstRank && firstRank >= secondRank) {
        first = i;
        firstRank = rank;
      } else if (rank < secondRank) {
        second = i;
        secondRank = rank;
      }
    }
  }

  ULK_INLINE void setFirst(size_t index) {
    firstText_ = text_ + index;
    first_ = Vec16<Unit>::splat(loadUnit(pattern_ + index));
  }
  ULK_INLINE void setSecond(size_t index) {
    secondText_ = text_ + index;
    second_ = Vec16<Unit>::splat(loadUnit(pattern_ + index));
  }

  const Unit* text_;
  const Unit* pattern_;
  size_t candidates_;
  size_t length_;
  const Unit* firstText_;
  const Unit* secondText_;
  Vec16<Unit> first_;
  Vec16<Unit> second_;
  size_t effort_ = 0;
  size_t failures_ = 0;
  bool exhausted_ = false;
};

template <class Direction, class Unit>
int32_t scanForSubstring(const Unit* text, int32_t textLength, const Unit* pattern, int32_t patternLength) {
  if (patternLength == 0 || patternLength > textLength) return -1;
  if (patternLength == 1) return scanForUnit<Direction>(text, textLength, loadUnit(pattern));

  const size_t length = static_cast<size_t>(patternLength);
  const size_t candidates = static_cast<size_t>(textLength) - length + 1;
  SubstringProbe<Direction, Unit> probe(text, candidates, pattern, length);
  const int32_t found = scan<Direction>(text, candidates, probe);
  if (!probe.exhausted()) return found;

  // The walk stopped at a position that it had rejected; it and all that lies beyond is searched again.
  const size_t passed = Direction::place(candidates, static_cast<size_t>(found), 1);
  const size_t rest = static_cast<size_t>(textLength) - passed;
  const size_t start = Direction::place(static_cast<size_t>(textLength), passed, rest);
  const int32_t inRest = twoWaySearch<Direction>(text + start, rest, pattern, length);
  return inRest < 0 ? -1 : inRest + static_cast<int32_t>(start);
}

// The lowest position where the whole pattern stands, -1 if there is none or the pattern is empty.
template <class Unit>
int32_t findSubstring(const Unit* text, int32_t textLength, const Unit* pattern, int32_t patternLength) {
  return scanForSubstring<Forward>(text, textLength, pattern, patternLength);
}

// The highest such position.
template <class Unit>
int32_t findSubstringRev(const Unit* text, int32_t textLength, const Unit* pattern, int32_t patternLength) {
  return scanForSubstring<Backward>(text, textLength, pattern, patternLength);
}

}  // namespace ulk
