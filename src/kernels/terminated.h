// Zero-terminated strings: their length, and one unit searched up to the terminator.
//
// Nobody knows yet where such a string ends, so these loops read whole blocks that hold units beyond the
// terminator, but never a block that reaches into another page: an aligned block cannot, and a page is
// readable as a whole or not at all.
#pragma once

#include "kernels/find_unit.h"

namespace ulk {

#if defined(__clang__) || defined(__GNUC__)
#define ULK_READS_WHOLE_BLOCKS __attribute__((no_sanitize("address")))
#endif

// The first position whose unit is zero or `unit`.
template <class Unit>
ULK_READS_WHOLE_BLOCKS size_t findUnitOrEnd(const Unit* text, Unit unit) {
  using Vec = Vec16<Unit>;
  const uintptr_t address = reinterpret_cast<uintptr_t>(text);
  if (address % sizeof(Unit) != 0) {
    // Blocks of whole units at odd addresses are never aligned.
    for (size_t i = 0;; ++i) {
      const Unit here = loadUnit(text + i);
      if (here == 0 || here == unit) return i;
    }
  }
  const Vec wanted = Vec::splat(unit);
  const Vec zero = Vec::zero();
  const auto hits = [&](const char* block) ULK_LAMBDA_INLINE {
    const Vec units = Vec::loadAligned(block);
    return units.equal(wanted) | units.equal(zero);
  };
  const int32_t before = static_cast<int32_t>(address % 16 / sizeof(Unit));
  const char* block = reinterpret_cast<const char*>(address - address % 16);
  const auto position = [&](LaneMask<Unit> mask) ULK_LAMBDA_INLINE {
    return (reinterpret_cast<uintptr_t>(block) - address) / sizeof(Unit) + static_cast<size_t>(mask.first());
  };

  LaneMask<Unit> mask = hits(block).mask().from(before);
  if (mask.any()) return static_cast<size_t>(mask.first() - before);
  for (block += 16; reinterpret_cast<uintptr_t>(block) % 64 != 0; block += 16) {
    mask = hits(block).mask();
    if (mask.any()) return position(mask);
  }
  for (;; block += 64) {
    if (!(hits(block) | hits(block + 16) | hits(block + 32) | hits(block + 48)).mask().any()) continue;
    for (;; block += 16) {
      mask = hits(block).mask();
      if (mask.any()) return position(mask);
    }
  }
}

// The number of units before the first zero unit.
template <class Unit>
int32_t measure(const Unit* text) {
  return static_cast<int32_t>(findUnitOrEnd(text, Unit{0}));
}

}  // namespace ulk
