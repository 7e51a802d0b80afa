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

#include <algorithm>
#include <array>

#include "kernels/find_unit.h"
#include "kernels/first_difference.h"
#include "kernels/two_way.h"

namespace ulk {

// How common a unit is in text, 0 for all that are rare: a ranking by ear, good enough to keep spaces and
// vowels out of the filter. Zero is there for the high bytes of wider data. In a text of another script every
// character begins with one of a few bytes from 0xC0 on.
inline constexpr auto kCommonness = [] {
  constexpr char kRarestFirst[] = "\"'()-0123456789TSIAjqxzkv.,bywgpfm\nculdhrsnioat\0e ";
  std::array<uint8_t, 256> ranks{};
  for (size_t i = 0; i + 1 < sizeof(kRarestFirst); ++i) {
    ranks[static_cast<uint8_t>(kRarestFirst[i])] = static_cast<uint8_t>(i + 1);
  }
  std::fill(ranks.begin() + 0xC0, ranks.end(), uint8_t{sizeof(kRarestFirst)});
  return ranks;
}();

template <class Unit>
ULK_INLINE uint8_t commonness(Unit unit) {
  return unit < 256 ? kCommonness[unit] : uint8_t{0};
}

// Two units of a pattern at their distances from a candidate position: for a pattern of two units all there
// is to test.
template <class Unit>
struct PairFilter {
  static constexpr bool kExact = true;
  const Unit* firstText;
  const Unit* secondText;
  Vec16<Unit> first;
  Vec16<Unit> second;

  ULK_INLINE PairFilter(const Unit* text, const Unit* pattern, size_t firstIndex, size_t secondIndex)
      : firstText(text + firstIndex), first(Vec16<Unit>::splat(loadUnit(pattern + firstIndex))) {
    setSecond(text, pattern, secondIndex);
  }
  ULK_INLINE void setSecond(const Unit* text, const Unit* pattern, size_t index) {
    secondText = text + index;
    second = Vec16<Unit>::splat(loadUnit(pattern + index));
  }
  template <class Block>
  ULK_INLINE Vec16<Unit> hits(const Block& block) const {
    return block.load(firstText).equal(first) & block.load(secondText).equal(second);
  }
  ULK_INLINE const PairFilter& filter() const { return *this; }
};

// The places of the two rarest of the first units of a pattern and of its last one, by their ranks.
struct TwoPlaces {
  size_t first;
  size_t second;
};
template <class Rank>
ULK_INLINE TwoPlaces rarestTwo(size_t length, Rank rankAt) {
  constexpr size_t kMostChosenFrom = 32;
  TwoPlaces places{0, length - 1};
  int32_t firstRank = rankAt(places.first);
  int32_t secondRank = rankAt(places.second);
  const size_t end = std::min(length - 1, kMostChosenFrom);
  for (size_t i = 1; i < end; ++i) {
    const int32_t rank = rankAt(i);
    if (rank < firstRank && firstRank >= secondRank) {
      places.first = i;
      firstRank = rank;
    } else if (rank < secondRank) {
      places.second = i;
      secondRank = rank;
    }
  }
  return places;
}

// The filter for a pattern: its rarest two units where the text is long enough to repay the choice.
template <class Unit>
ULK_INLINE PairFilter<Unit> chooseFilter(const Unit* text, size_t candidates, const Unit* pattern,
                                         size_t length) {
  constexpr size_t kWorthChoosing = 256;
  TwoPlaces places{0, length - 1};
  if (candidates >= kWorthChoosing) {
    places = rarestTwo(
        length, [=](size_t i) ULK_LAMBDA_INLINE -> int32_t { return commonness(loadUnit(pattern + i)); });
  }
  return PairFilter<Unit>(text, pattern, places.first, places.second);
}

template <class Direction, class Unit>
class SubstringProbe {
 public:
  static constexpr bool kExact = false;

  ULK_INLINE SubstringProbe(const Unit* text, size_t candidates, const Unit* pattern, size_t length)
      : filter_(chooseFilter(text, candidates, pattern, length)),
        text_(text),
        pattern_(pattern),
        candidates_(candidates),
        length_(length) {
    setThird(length / 2);
  }

  ULK_INLINE const PairFilter<Unit>& filter() const { return filter_; }

  // Whether the pattern stands at a position. True also when comparing has become too expensive: see
  // exhausted().
  ULK_INLINE bool accept(int32_t position) {
    const size_t at = static_cast<size_t>(position);
    if (loadUnit(text_ + at + third_) != thirdUnit_) {
      noteFailure(at, third_);
      return false;
    }
    return compare(at);
  }

  bool exhausted() const { return exhausted_; }

 private:
  // How much may fail for nothing, and how many candidates must have been passed for each further failure or
  // block of comparing.
  static constexpr size_t kFreeFailures = 16;
  static constexpr size_t kCandidatesPerFailure = 64;
  static constexpr size_t kFreeEffort = 128;
  static constexpr size_t kCandidatesPerEffort = 8;

  __attribute__((noinline)) bool compare(size_t position) {
    DifferenceProbe<Unit> probe{text_ + position, pattern_};
    const int32_t difference = scan<Forward>(pattern_, length_, probe);
    if (difference < 0) return true;

    const size_t at = static_cast<size_t>(difference);
    effort_ += 1 + at / Vec16<Unit>::kLanes;
    exhausted_ = effort_ > kFreeEffort + passed(position) / kCandidatesPerEffort;
    noteFailure(position, at);
    setThird(at);
    return exhausted_;
  }

  // The filter let a position through where text and pattern differ at `index`. When that happens often, the
  // pattern's unit there makes the better filter.
  ULK_INLINE void noteFailure(size_t position, size_t index) {
    if (++failures_ <= kFreeFailures + passed(position) / kCandidatesPerFailure) return;
    failures_ = 0;
    filter_.setSecond(text_, pattern_, index);
  }

  ULK_INLINE size_t passed(size_t position) const { return Direction::place(candidates_, position, 1); }

  ULK_INLINE void setThird(size_t index) {
    third_ = index;
    thirdUnit_ = loadUnit(pattern_ + index);
  }

  PairFilter<Unit> filter_;
  const Unit* text_;
  const Unit* pattern_;
  size_t candidates_;
  size_t length_;
  size_t third_ = 0;  // a unit compared before all others: where the last comparison failed
  Unit thirdUnit_ = 0;
  size_t effort_ = 0;
  size_t failures_ = 0;
  bool exhausted_ = false;
};

// Whether a pattern stands somewhere, of which the first and the last unit are known to.
template <class Unit>
ULK_INLINE bool standsAt(const Unit* text, const Unit* pattern, size_t length) {
  constexpr size_t kLanes = Vec16<Unit>::kLanes;
  const auto same = [&](const auto& block) ULK_LAMBDA_INLINE {
    return block.load(text).equal(block.load(pattern)).mask().bits() == 0xFFFF;
  };
  if (length <= 2) return true;
  if (length >= kLanes) {
    for (size_t at = 0; at < length - kLanes; at += kLanes) {
      if (!same(FullBlock<Unit>{at})) return false;
    }
    return same(FullBlock<Unit>{length - kLanes});
  }
  if (length * sizeof(Unit) >= 8) return same(ShortBlock<Unit, 8>{length});
  // Up to five units remain between the ends, or, of 16 bits, one.
  if (length == 3) return loadUnit(text + 1) == loadUnit(pattern + 1);
  return loadAs<uint32_t>(text) == loadAs<uint32_t>(pattern) &&
         loadAs<uint32_t>(text + length - 4) == loadAs<uint32_t>(pattern + length - 4);
}

// What the first candidates, up to a vector of them, tell without any preparation: where the pattern stands,
// if it is at the first of them that has its ends; -1, if it cannot be anywhere; kNotYet otherwise. The
// pattern has one unit at least.
inline constexpr int32_t kNotYet = -2;

template <class Unit>
ULK_INLINE int32_t findEarly(const Unit* text, size_t candidates, const Unit* pattern, size_t length) {
  constexpr size_t kLanes = Vec16<Unit>::kLanes;
  const PairFilter<Unit> ends(text, pattern, 0, length - 1);
  const auto look = [&](const auto& block) ULK_LAMBDA_INLINE {
    const LaneMask<Unit> mask = block.used(ends.hits(block).mask());
    if (!mask.any()) return candidates <= kLanes ? -1 : kNotYet;
    const int32_t at = block.position(mask.first());
    return standsAt(text + at, pattern, length) ? at : kNotYet;
  };
  return candidates < kLanes ? withShortBlock<Unit>(candidates, look) : look(FullBlock<Unit>{0});
}

template <class Direction, class Unit>
int32_t scanForSubstring(const Unit* text, int32_t textLength, const Unit* pattern, int32_t patternLength) {
  if (patternLength == 0 || patternLength > textLength) return -1;
  if (patternLength == 1) return scanForUnit<Direction>(text, textLength, loadUnit(pattern));

  const size_t length = static_cast<size_t>(patternLength);
  const size_t candidates = static_cast<size_t>(textLength) - length + 1;
  if (length == 2) {
    PairFilter<Unit> pair(text, pattern, 0, 1);
    return scan<Direction>(text, candidates, pair);
  }
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
