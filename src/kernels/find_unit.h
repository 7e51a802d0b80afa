// One unit in a text: the first or the last place where it stands, or where another does.
#pragma once

#include "kernels/scan.h"

namespace ulk {

template <class Unit>
struct UnitProbe {
  static constexpr bool kExact = true;
  const Unit* text;
  Vec16<Unit> wanted;

  template <class Block>
  ULK_INLINE Vec16<Unit> hits(const Block& block) const {
    return block.load(text).equal(wanted);
  }
  ULK_INLINE const UnitProbe& filter() const { return *this; }
};

template <class Direction, class Unit>
ULK_INLINE int32_t scanForUnit(const Unit* text, int32_t length, Unit unit) {
  UnitProbe<Unit> probe{text, Vec16<Unit>::splat(unit)};
  return scan<Direction>(text, static_cast<size_t>(length), probe);
}

// Not inlined: callers look at a few units themselves first, and rarely come here.
template <class Direction, class Unit>
__attribute__((noinline)) int32_t scanForOther(const Unit* text, int32_t length, Unit unit) {
  Except<UnitProbe<Unit>> probe{{text, Vec16<Unit>::splat(unit)}};
  if (length <= 4 * Vec16<Unit>::kLanes) {
    return scanBlocks<Direction, Unit>(static_cast<size_t>(length), probe);
  }
  return scan<Direction>(text, static_cast<size_t>(length), probe);
}

// The lowest position of `unit`, -1 if there is none.
template <class Unit>
int32_t findUnit(const Unit* text, int32_t length, Unit unit) {
  return scanForUnit<Forward>(text, length, unit);
}

// The highest position of `unit`, -1 if there is none.
template <class Unit>
int32_t findUnitRev(const Unit* text, int32_t length, Unit unit) {
  return scanForUnit<Backward>(text, length, unit);
}

}  // namespace ulk
