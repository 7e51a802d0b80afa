// Where two strings of one length differ first.
#pragma once

#include "kernels/scan.h"

namespace ulk {

template <class Unit>
struct DifferenceProbe {
  static constexpr bool kExact = true;
  const Unit* left;
  const Unit* right;

  template <class Block>
  ULK_INLINE UnsetLanes<Unit> hits(const Block& block) const {
    return unsetLanes(block.load(left).equal(block.load(right)));
  }
  ULK_INLINE const DifferenceProbe& filter() const { return *this; }
};

template <class Unit>
ULK_INLINE int32_t scanForDifference(const Unit* left, const Unit* right, int32_t length) {
  DifferenceProbe<Unit> probe{left, right};
  return scan<Forward>(left, static_cast<size_t>(length), probe);
}

// The lowest index at which the strings differ, -1 if they are equal.
template <class Unit>
int32_t firstDifference(const Unit* left, const Unit* right, int32_t length) {
  return scanForDifference(left, right, length);
}

}  // namespace ulk
