// Zero-terminated strings: their length, and one unit searched up to the terminator.
//
// Nobody knows yet where such a string ends, so these loops read whole blocks that hold units beyond the
// terminator, but never a block that reaches into another page: an aligned block cannot, and a page is
// readable as a whole or not at all.
#pragma once

#include "kernels/vec16.h"

namespace ulk {

#define ULK_READS_WHOLE_BLOCKS __attribute__((no_sanitize("address")))

// Stops at the terminator.
template <class Unit>
struct EndTest {
  using Vec = Vec16<Unit>;

  ULK_INLINE bool stops(Unit unit) const { return unit == 0; }
  ULK_INLINE Vec hits(Vec units) const { return units.equal(Vec::zero()); }
  ULK_INLINE Vec hits(Vec a, Vec b, Vec c, Vec d) const { return (hits(a) | hits(b)) | (hits(c) | hits(d)); }
};

// Stops at a unit or at the terminator.
template <class Unit>
struct UnitOrEndTest {
  using Vec = Vec16<Unit>;
  Unit wanted;
  Vec wanteds = Vec::splat(wanted);

  ULK_INLINE bool stops(Unit unit) const { return unit == 0 || unit == wanted; }
  ULK_INLINE Vec hits(Vec units) const { return units.equal(Vec::zero()) | units.equal(wanteds); }
  ULK_INLINE Vec hits(Vec a, Vec b, Vec c, Vec d) const {
    if constexpr (sizeof(Unit) == 1) {
      // The lesser of x and x ^ wanted is zero for these two alone, and the least of many tells of all of
      // them.
      const auto least = [this](Vec units) ULK_LAMBDA_INLINE { return units.min(units ^ wanteds); };
      return least(a).min(least(b)).min(least(c).min(least(d))).equal(Vec::zero());
    } else {
      return (hits(a) | hits(b)) | (hits(c) | hits(d));
    }
  }
};

// The first position that stops the test.
template <class Unit, class Test>
ULK_READS_WHOLE_BLOCKS inline size_t firstStop(const Unit* text, const Test& test) {
  using Vec = Vec16<Unit>;
  const uintptr_t address = reinterpret_cast<uintptr_t>(text);
  if (address % sizeof(Unit) != 0) {
    // At odd addresses no aligned block holds whole units.
    size_t i = 0;
    while (!test.stops(loadUnit(text + i))) ++i;
    return i;
  }
  const auto load = [](uintptr_t block)
                        ULK_LAMBDA_INLINE { return Vec::loadAligned(reinterpret_cast<const void*>(block)); };
  uintptr_t block = address & ~uintptr_t{15};
  LaneMask<Unit> mask =
      test.hits(load(block)).mask().from(static_cast<int32_t>((address - block) / sizeof(Unit)));
  // One block at a time up to a 64-byte boundary, and again in the group of blocks that holds a stop.
  while (!mask.any()) {
    block += 16;
    if (block % 64 == 0) {
      while (!test.hits(load(block), load(block + 16), load(block + 32), load(block + 48)).mask().any())
        block += 64;
    }
    mask = test.hits(load(block)).mask();
  }
  // The text may begin inside the block: the difference is taken modulo the width of an address.
  return (block + static_cast<uint32_t>(mask.first()) * sizeof(Unit) - address) / sizeof(Unit);
}

// The number of units before the first zero unit.
template <class Unit>
int32_t measure(const Unit* text) {
  return static_cast<int32_t>(firstStop(text, EndTest<Unit>{}));
}

// The lowest position of `unit` before the first zero unit, -1 if there is none; zero itself is never found.
template <class Unit>
int32_t findUnitTerminated(const Unit* text, Unit unit) {
  const size_t stop = firstStop(text, UnitOrEndTest<Unit>{unit});
  return loadUnit(text + stop) == 0 ? -1 : static_cast<int32_t>(stop);
}

}  // namespace ulk
