// Case conversion of the 26 letters of ASCII: one kernel that adds a number to the units of one range.
#pragma once

#include "kernels/map_units.h"

namespace ulk {

// Units from `first` to `last` become unit + addend, modulo the width of a unit.
template <class Unit>
class RangeAdd {
 public:
  ULK_INLINE RangeAdd(Unit first, Unit last, Unit addend)
      : range_(first, last), addend_(Vec16<Unit>::splat(addend)) {}

  ULK_INLINE Vec16<Unit> operator()(Vec16<Unit> units) const {
    return units + (range_.contains(units) & addend_);
  }

 private:
  UnitRange<Unit> range_;
  Vec16<Unit> addend_;
};

template <class Unit>
ULK_INLINE void addInRange(const Unit* source, Unit* destination, int32_t length, Unit first, Unit last,
                           Unit addend) {
  mapUnits(source, destination, length, RangeAdd<Unit>(first, last, addend));
}

}  // namespace ulk
