// Eight or more neighbouring 16-bit units, and what can be told of their case all at once, without a table.
#pragma once

#include <iterator>

#include "kernels/unrolled.h"
#include "unicode/case_table.h"

namespace ulk {

// The units at one place of a text, as vectors.
template <int32_t vectors>
class UnitGroup {
 public:
  using Vec = Vec16<uint16_t>;
  static constexpr int32_t kUnits = vectors * Vec::kLanes;

  ULK_INLINE explicit UnitGroup(const uint16_t* text) {
    unrolled<vectors>([&](auto i) ULK_LAMBDA_INLINE { parts_[i] = Vec::load(text + i * Vec::kLanes); });
  }

  ULK_INLINE bool isAscii() const {
    Vec bits = parts_[0];
    for (int32_t i = 1; i < vectors; ++i) bits = bits | parts_[i];
    return !NonzeroLanes<uint16_t>{bits & Vec::splat(0xFF80)}.mask().any();
  }
  ULK_INLINE bool isDirect() const { return !inRange<kDirectEnd, 0xFFFF>().mask().any(); }

  // Whether only the letters of ASCII among these units can have a mapping.
  ULK_INLINE bool hasAsciiCase() const {
    Vec cased = Vec::zero();
    unrolled<std::size(kCasedRanges)>([&](auto i) ULK_LAMBDA_INLINE {
      cased = cased | inRange<kCasedRanges[i].first, kCasedRanges[i].last>();
    });
    return !cased.mask().any();
  }

  template <class Operation>
  ULK_INLINE void map(uint16_t* destination, const Operation& operation) const {
    unrolled<vectors>([&](auto i)
                          ULK_LAMBDA_INLINE { operation(parts_[i]).store(destination + i * Vec::kLanes); });
  }

 private:
  // Lanes of ones if any unit lies in the range. The units are moved so that the range is at the lower end of
  // the signed numbers, where the least of many tells of all.
  template <uint16_t first, uint16_t last>
  ULK_INLINE Vec inRange() const {
    const Vec shift = Vec::splat(static_cast<uint16_t>(0x8000 - first));
    Vec least = parts_[0] + shift;
    for (int32_t i = 1; i < vectors; ++i) least = least.minSigned(parts_[i] + shift);
    return Vec::splat(static_cast<uint16_t>(0x8000 + last - first + 1)).greaterSigned(least);
  }

  Vec parts_[vectors];
};

}  // namespace ulk
