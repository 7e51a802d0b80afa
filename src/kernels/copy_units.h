// Copies between strings. Up to 512 bytes are copied on the spot: a call of the block copy costs more than it
// gains on them.
#pragma once

#include "frame/primitives.h"
#include "kernels/scan.h"

namespace ulk {

// The longest copies that are made here.
template <class Unit>
inline constexpr int32_t kMostHere = 512 / sizeof(Unit);

// Copies up to four vectors. All loads come before the first store, so source and destination may overlap.
template <class Unit>
ULK_INLINE void copyFew(const Unit* source, Unit* destination, int32_t length) {
  using Vec = Vec16<Unit>;
  constexpr int32_t kLanes = Vec::kLanes;
  if (length < kLanes) {
    if (length < 1) return;
    withShortBlock<Unit>(static_cast<size_t>(length),
                         [&](auto block) ULK_LAMBDA_INLINE { block.store(destination, block.load(source)); });
    return;
  }
  const Vec first = Vec::load(source);
  const Vec last = Vec::load(source + length - kLanes);
  if (length > 2 * kLanes) {
    const Vec second = Vec::load(source + kLanes);
    const Vec third = Vec::load(source + length - 2 * kLanes);
    second.store(destination + kLanes);
    third.store(destination + length - 2 * kLanes);
  }
  first.store(destination);
  last.store(destination + length - kLanes);
}

// The block copies under one name for both widths.
ULK_INLINE void copyMany(const uint8_t* source, uint8_t* destination, int32_t length) {
  ownCopy_8u(source, destination, length);
}
ULK_INLINE void copyMany(const uint16_t* source, uint16_t* destination, int32_t length) {
  ownCopy_16u(source, destination, length);
}
ULK_INLINE void moveMany(const uint8_t* source, uint8_t* destination, int32_t length) {
  ownMove_8u(source, destination, length);
}
ULK_INLINE void moveMany(const uint16_t* source, uint16_t* destination, int32_t length) {
  ownMove_16u(source, destination, length);
}

// Copies from the first unit to the last. A destination that overlaps the source begins below it.
template <class Unit>
ULK_INLINE void copyUpwards(const Unit* source, Unit* destination, int32_t length) {
  constexpr int32_t kFew = 4 * Vec16<Unit>::kLanes;
  for (; length > kFew; length -= kFew) {
    copyFew(source, destination, kFew);
    source += kFew;
    destination += kFew;
  }
  copyFew(source, destination, length);
}

// `length` units to a place that does not overlap theirs; none if `length` is not positive.
template <class Unit>
ULK_INLINE void copyUnits(const Unit* source, Unit* destination, int32_t length) {
  if (length > kMostHere<Unit>) return copyMany(source, destination, length);
  copyUpwards(source, destination, length);
}

// The same to a place that begins below theirs and may overlap it.
template <class Unit>
ULK_INLINE void moveUnitsDown(const Unit* source, Unit* destination, int32_t length) {
  if (length > kMostHere<Unit>) return moveMany(source, destination, length);
  copyUpwards(source, destination, length);
}

}  // namespace ulk
