// Any byte of a set of some members in a long text: four ranges hold all members, and what lies in none of
// them is passed over. The ranges leave out the three widest gaps between members, which is where most text
// lies.
#pragma once

#include <algorithm>
#include <bit>

#include "kernels/scan.h"

namespace ulk {

class FourRanges {
 public:
  // Takes the members as bits; there is one at least.
  ULK_INLINE explicit FourRanges(const uint32_t* bits) {
    using Vec = Vec16<uint8_t>;
    uint8_t firsts[4], lasts[4];
    leaveOutGaps(bits, firsts, lasts);
    // As in UnitRange, for four of them at once.
    const Vec last = Vec::join<4>(lasts, lasts);
    const Vec shift = Vec::splat(INT8_MAX) - last;
    const Vec below = Vec::splat(INT8_MAX - 1) - (last - Vec::join<4>(firsts, firsts));
    uint8_t numbers[16];
    shift.store(numbers);
    Vec::splatFour(numbers, shift_);
    below.store(numbers);
    Vec::splatFour(numbers, below_);
  }

  ULK_INLINE Vec16<uint8_t> contains(Vec16<uint8_t> bytes) const {
    const auto inRange = [&](int i)
                             ULK_LAMBDA_INLINE { return (bytes + shift_[i]).greaterSigned(below_[i]); };
    return (inRange(0) | inRange(1)) | (inRange(2) | inRange(3));
  }

 private:
  // A gap's width above the two members beside it, so that numbers compare as widths do.
  using Gap = uint32_t;
  ULK_INLINE static Gap gap(uint32_t before, uint32_t after) {
    return (after - before) << 16 | before << 8 | after;
  }

  // What is left between the three widest gaps; where there are fewer, some ranges come twice.
  static void leaveOutGaps(const uint32_t* bits, uint8_t* firsts, uint8_t* lasts) {
    uint32_t word = 0;
    while (bits[word] == 0) ++word;
    const uint32_t least = word * 32 + static_cast<uint32_t>(std::countr_zero(bits[word]));
    uint32_t member = least;
    Gap widest[3] = {gap(least, least), gap(least, least), gap(least, least)};
    for (; word < 8; ++word) {
      for (uint32_t rest = bits[word]; rest != 0; rest &= rest - 1) {
        const uint32_t next = word * 32 + static_cast<uint32_t>(std::countr_zero(rest));
        Gap narrower = gap(member, next);
        for (Gap& wide : widest) {
          const Gap wider = std::max(wide, narrower);
          narrower = std::min(wide, narrower);
          wide = wider;
        }
        member = next;
      }
    }
    const auto inOrder = [&](int i, int j) ULK_LAMBDA_INLINE {
      if ((widest[i] & 0xFFFF) > (widest[j] & 0xFFFF)) std::swap(widest[i], widest[j]);
    };
    inOrder(0, 1);
    inOrder(1, 2);
    inOrder(0, 1);
    firsts[0] = static_cast<uint8_t>(least);
    for (int i = 0; i < 3; ++i) {
      lasts[i] = static_cast<uint8_t>(widest[i] >> 8);
      firsts[i + 1] = static_cast<uint8_t>(widest[i]);
    }
    lasts[3] = static_cast<uint8_t>(member);
  }

  Vec16<uint8_t> shift_[4];
  Vec16<uint8_t> below_[4];
};

// The members of a set in a text. Gives up, by accepting a position that exhausted() then disowns, where too
// many bytes lie in the ranges without being members.
template <class Direction>
class RangesProbe {
 public:
  static constexpr bool kExact = false;

  ULK_INLINE RangesProbe(const uint8_t* text, size_t length, const uint8_t* set, int32_t setLength)
      : text_(text), length_(length), members_(set, setLength), ranges_(members_.bits) {}

  struct Filter {
    const RangesProbe* probe;

    template <class Block>
    ULK_INLINE Vec16<uint8_t> hits(const Block& block) const {
      return probe->ranges_.contains(block.load(probe->text_));
    }
  };
  ULK_INLINE Filter filter() const { return {this}; }

  ULK_INLINE bool accept(int32_t position) {
    const uint8_t byte = text_[position];
    if (members_.bits[byte / 32] >> byte % 32 & 1) return true;
    const size_t passed = Direction::place(length_, static_cast<size_t>(position), 1);
    exhausted_ = ++failures_ > kFreeFailures + passed / kBytesPerFailure;
    return exhausted_;
  }
  bool exhausted() const { return exhausted_; }

 private:
  static constexpr size_t kFreeFailures = 8;
  static constexpr size_t kBytesPerFailure = 512;

  struct Members {
    uint32_t bits[8] = {};
    ULK_INLINE Members(const uint8_t* set, int32_t setLength) {
      for (int32_t i = 0; i < setLength; ++i) bits[set[i] / 32] |= 1u << set[i] % 32;
    }
  };

  const uint8_t* text_;
  size_t length_;
  Members members_;
  FourRanges ranges_;
  size_t failures_ = 0;
  bool exhausted_ = false;
};

}  // namespace ulk
