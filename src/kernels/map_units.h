// The walk of everything that changes a string unit by unit. An operation turns a vector of units into what
// they become; destination and source may be the same.
//
// Blocks of 16 bytes, stored at 16-byte boundaries of the destination, with a first and a last block that
// overlap their neighbours. In place, what they share is converted twice, so an operation must change nothing
// in its own results.
#pragma once

#include "kernels/scan.h"

namespace ulk {

template <class Unit, class Operation>
ULK_INLINE void mapUnits(const Unit* source, Unit* destination, int32_t length, const Operation& operation) {
  using Vec = Vec16<Unit>;
  constexpr size_t kLanes = Vec::kLanes;
  const size_t count = static_cast<size_t>(length);
  if (count < kLanes) {
    if (count == 0) return;
    withShortBlock<Unit>(count, [&](auto block) ULK_LAMBDA_INLINE {
      block.store(destination, operation(block.load(source)));
    });
    return;
  }
  const auto convert = [&](size_t at)
                           ULK_LAMBDA_INLINE { operation(Vec::load(source + at)).store(destination + at); };
  if (count <= 2 * kLanes) {
    const Vec first = operation(Vec::load(source));
    const Vec last = operation(Vec::load(source + count - kLanes));
    first.store(destination);
    last.store(destination + count - kLanes);
    return;
  }
  convert(0);
  size_t at = Forward::toBoundary(destination, count);
  for (; count - at > 4 * kLanes; at += 4 * kLanes) {
    convert(at);
    convert(at + kLanes);
    convert(at + 2 * kLanes);
    convert(at + 3 * kLanes);
  }
  for (; count - at > kLanes; at += kLanes) convert(at);
  convert(count - kLanes);
}

}  // namespace ulk
