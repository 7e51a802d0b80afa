// The places of one unit in a text, one after the other from the start. Where they are close together, one
// look at 32 bytes yields several; where they are not, the search for a unit leaps from each to the next.
#pragma once

#include "kernels/find_unit.h"

namespace ulk {

template <class Unit>
class UnitPlaces {
 public:
  ULK_INLINE UnitPlaces(const Unit* text, size_t length, Unit unit)
      : text_(text), length_(length), unit_(unit) {}

  // The next place; the text's length if there is none.
  ULK_INLINE size_t next() {
    for (int looks = 0; !inBlock_.any(); ++looks) {
      if (looks == kLooks || length_ - done_ < kBlock) return search();
      block_ = done_;
      inBlock_ = pairMask<Unit>(UnitProbe<Unit>{text_, Vec16<Unit>::splat(unit_)}, block_);
      done_ += kBlock;
    }
    const int32_t lane = inBlock_.first();
    inBlock_ = inBlock_.without(lane);
    return block_ + static_cast<size_t>(lane);
  }

 private:
  static constexpr int kLooks = 4;
  static constexpr size_t kBlock = 2 * Vec16<Unit>::kLanes;

  ULK_INLINE size_t search() {
    const int32_t found = findUnit(text_ + done_, static_cast<int32_t>(length_ - done_), unit_);
    if (found < 0) {
      done_ = length_;
      return length_;
    }
    done_ += static_cast<size_t>(found) + 1;
    return done_ - 1;
  }

  const Unit* text_;
  size_t length_;
  Unit unit_;
  size_t done_ = 0;   // places below are found, except those in
  size_t block_ = 0;  // the block that begins here
  LaneMask<Unit> inBlock_ = LaneMask<Unit>(0);
};

}  // namespace ulk
