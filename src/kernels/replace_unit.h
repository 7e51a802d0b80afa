// One unit taken for another, wherever it stands.
#pragma once

#include "kernels/map_units.h"

namespace ulk {

template <class Unit>
class UnitReplacement {
 public:
  ULK_INLINE UnitReplacement(Unit oldUnit, Unit newUnit)
      : old_(Vec16<Unit>::splat(oldUnit)),
        difference_(Vec16<Unit>::splat(static_cast<Unit>(oldUnit ^ newUnit))) {}

  ULK_INLINE Vec16<Unit> operator()(Vec16<Unit> units) const {
    return units ^ (units.equal(old_) & difference_);
  }

 private:
  Vec16<Unit> old_;
  Vec16<Unit> difference_;
};

template <class Unit>
ULK_INLINE void replaceUnit(const Unit* source, Unit* destination, int32_t length, Unit oldUnit,
                            Unit newUnit) {
  mapUnits(source, destination, length, UnitReplacement<Unit>(oldUnit, newUnit));
}

}  // namespace ulk
