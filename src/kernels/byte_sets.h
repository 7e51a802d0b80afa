// Small sets of bytes that a few comparisons test, and searches for bytes of such sets side by side.
#pragma once

#include <algorithm>
#include <bit>

#include "kernels/scan.h"

namespace ulk {

// Each is made of four bytes.

// One member, of which there are four copies.
class OneByte {
 public:
  ULK_INLINE explicit OneByte(const uint8_t* members) {
    Vec16<uint8_t> copies[4];
    Vec16<uint8_t>::splatFour(members, copies);
    member_ = copies[0];
  }
  ULK_INLINE Vec16<uint8_t> contains(Vec16<uint8_t> bytes) const { return bytes.equal(member_); }

 private:
  Vec16<uint8_t> member_;
};

class TwoBytes {
 public:
  ULK_INLINE explicit TwoBytes(const uint8_t* members) {
    Vec16<uint8_t> copies[4];
    Vec16<uint8_t>::splatFour(members, copies);
    first_ = copies[0];
    second_ = copies[1];
  }
  ULK_INLINE Vec16<uint8_t> contains(Vec16<uint8_t> bytes) const {
    return bytes.equal(first_) | bytes.equal(second_);
  }

 private:
  Vec16<uint8_t> first_, second_;
};

// Up to four members; a smaller set repeats some.
class FourBytes {
 public:
  ULK_INLINE explicit FourBytes(const uint8_t* members) { Vec16<uint8_t>::splatFour(members, members_); }
  ULK_INLINE Vec16<uint8_t> contains(Vec16<uint8_t> bytes) const {
    return (bytes.equal(members_[0]) | bytes.equal(members_[1])) |
           (bytes.equal(members_[2]) | bytes.equal(members_[3]));
  }

 private:
  Vec16<uint8_t> members_[4];
};

// The bytes from the first bound to the second, and those from the third to the fourth.
class TwoRanges {
 public:
  ULK_INLINE explicit TwoRanges(const uint8_t* bounds)
      : first_(bounds[0], bounds[1]), second_(bounds[2], bounds[3]) {}
  ULK_INLINE Vec16<uint8_t> contains(Vec16<uint8_t> bytes) const {
    return first_.contains(bytes) | second_.contains(bytes);
  }

 private:
  UnitRange<uint8_t> first_, second_;
};

struct AnyByte {
  ULK_INLINE static Vec16<uint8_t> contains(Vec16<uint8_t> bytes) { return bytes.equal(bytes); }
};

// Letters, digits and the underscore.
ULK_INLINE Vec16<uint8_t> wordBytes(Vec16<uint8_t> bytes) {
  const Vec16<uint8_t> small = bytes | Vec16<uint8_t>::splat(0x20);
  return UnitRange<uint8_t>{'a', 'z'}.contains(small) | UnitRange<uint8_t>{'0', '9'}.contains(bytes) |
         bytes.equal(Vec16<uint8_t>::splat('_'));
}

template <class Set>
struct SetProbe {
  static constexpr bool kExact = true;
  const uint8_t* text;
  Set set;

  template <class Block>
  ULK_INLINE Vec16<uint8_t> hits(const Block& block) const {
    return set.contains(block.load(text));
  }
  ULK_INLINE const SetProbe& filter() const { return *this; }
};

// A byte of one set at `first`, and one of another at `second`.
template <class First, class Second>
struct TwoSetsProbe {
  static constexpr bool kExact = true;
  const uint8_t* firstText;
  const uint8_t* secondText;
  First first;
  Second second;

  template <class Block>
  ULK_INLINE Vec16<uint8_t> hits(const Block& block) const {
    return first.contains(block.load(firstText)) & second.contains(block.load(secondText));
  }
  ULK_INLINE const TwoSetsProbe& filter() const { return *this; }
};

// Where a search came to: the place found, or the first one that it has not decided about.
struct Place {
  int32_t at;
  bool found;
  int32_t singles;  // places before it that had a part of what is searched for
};

// The number of lanes, which are seldom several; to count those, these processors have no instruction.
ULK_INLINE int32_t countSparse(LaneMask<uint8_t> lanes) {
  const uint32_t bits = lanes.bits();
  return (bits & (bits - 1)) == 0 ? (bits != 0 ? 1 : 0) : std::popcount(bits);
}

// The first place with a byte of one set before a byte of another, in the first `length` bytes. The last few
// places, up to 16, are left undecided.
template <class First, class Second>
Place findPair(const uint8_t* text, int32_t length, First first, Second second) {
  constexpr int32_t kLanes = Vec16<uint8_t>::kLanes;
  int32_t singles = 0;
  int32_t at = 0;
  for (; at < length - kLanes; at += kLanes) {
    const LaneMask<uint8_t> firsts = first.contains(Vec16<uint8_t>::load(text + at)).mask();
    if (!firsts.any()) continue;
    const LaneMask<uint8_t> seconds = second.contains(Vec16<uint8_t>::load(text + at + 1)).mask();
    const LaneMask<uint8_t> pairs(firsts.bits() & seconds.bits());
    if (pairs.any()) {
      const int32_t lane = pairs.first();
      return {at + lane, true, singles + countSparse(firsts.below(lane))};
    }
    singles += countSparse(firsts);
  }
  return {at, false, singles};
}

// The first place with such a pair where a word begins or ends, in text that has a byte before it. Word
// boundaries without the pair are the singles. Left undecided: the last few places, up to 16, those beyond
// 4000, and those from where the text ceases to be ASCII.
template <class First, class Second>
Place findPairAtBoundary(const uint8_t* text, int32_t length, First first, Second second) {
  constexpr int32_t kLanes = Vec16<uint8_t>::kLanes;
  constexpr int32_t kMost = 250 * kLanes;  // a lane counts up to 255
  Vec16<uint8_t> words = wordBytes(Vec16<uint8_t>::load(text - 1)).template bytesUp<15>();
  Vec16<uint8_t> singles = Vec16<uint8_t>::zero();
  int32_t at = 0;
  for (; at < std::min(length - kLanes, kMost); at += kLanes) {
    const Vec16<uint8_t> bytes = Vec16<uint8_t>::load(text + at);
    if (bytes.mask().any()) break;
    const Vec16<uint8_t> wordsBefore = words.bytesDown<15>();
    words = wordBytes(bytes);
    const Vec16<uint8_t> boundaries = words ^ (words.bytesUp<1>() | wordsBefore);
    const Vec16<uint8_t> pairs =
        first.contains(bytes) & second.contains(Vec16<uint8_t>::load(text + at + 1)) & boundaries;
    if (const LaneMask<uint8_t> mask = pairs.mask(); mask.any()) {
      const int32_t lane = mask.first();
      const int32_t here = std::popcount(boundaries.mask().below(lane).bits());
      return {at + lane, true, static_cast<int32_t>(singles.sumOfBytes()) + here};
    }
    singles = singles + (boundaries & Vec16<uint8_t>::splat(1));
  }
  return {at, false, static_cast<int32_t>(singles.sumOfBytes())};
}

// The first place with `count` bytes of one set side by side, 2 to 16 of them. The last few places, up to 32,
// are left undecided.
template <class Set>
Place findRun(const uint8_t* text, int32_t length, Set set, int32_t count) {
  constexpr int32_t kLanes = Vec16<uint8_t>::kLanes;
  int32_t at = 0;
  if (length < 2 * kLanes) return {at, false, 0};
  LaneMask<uint8_t> next = set.contains(Vec16<uint8_t>::load(text)).mask();
  for (; at <= length - 2 * kLanes; at += kLanes) {
    const LaneMask<uint8_t> these = next;
    next = set.contains(Vec16<uint8_t>::load(text + at + kLanes)).mask();
    uint32_t runs = LaneMask<uint8_t>::pair(these, next).bits();
    // Each round joins runs that overlap or touch; they begin in the lower half.
    for (int32_t have = 1; have < count && runs != 0;) {
      const int32_t more = std::min(have, count - have);
      runs &= runs >> more;
      have += more;
    }
    runs &= (1u << kLanes) - 1;
    if (runs != 0) return {at + std::countr_zero(runs), true, 0};
  }
  return {at, false, 0};
}

}  // namespace ulk
