// Case conversion of all 16-bit units.
//
// The text is taken in groups of 32 units, each by the cheapest method that is exact for all of them:
//
//   ASCII only                          the letters are moved as vectors
//   nothing from kDirectEnd on          one table read a unit
//   ASCII and scripts without case      as ASCII
//   anything                            two table reads a unit
//
// What is left at the end is taken in blocks of eight units, the last of which overlaps the one before it.
// That does no harm in place either, because what a unit is mapped to is not mapped any further.
#pragma once

#include <algorithm>

#include "kernels/case_group.h"
#include "kernels/case_latin.h"

namespace ulk {

template <class Case>
ULK_INLINE RangeAdd<uint16_t> asciiCase() {
  return {Case::kFirstLetter, Case::kLastLetter, static_cast<uint16_t>(Case::kDistance)};
}

template <class Map>
ULK_INLINE void convertUnits(const uint16_t* source, uint16_t* destination, int32_t count, Map map) {
  for (int32_t at = 0; at < count; at += 8) {
    unrolled<8>([&](auto i) ULK_LAMBDA_INLINE {
      storeUnit(destination + at + i, map(loadUnit(source + at + i), kCaseTable));
    });
  }
}

// Groups from the first, which has units from kDirectEnd on, up to the next that has none. Returns the number
// of their units. Apart from the others, which would have to wait until the constants for these are in their
// places.
template <class Case, class Group>
__attribute__((noinline)) int32_t convertFarGroups(const uint16_t* source, uint16_t* destination,
                                                   int32_t length) {
  int32_t at = 0;
  do {
    const Group group(source + at);
    if (at > 0 && group.isDirect()) break;
    if (group.hasAsciiCase()) {
      group.map(destination + at, asciiCase<Case>());
    } else {
      convertUnits(source + at, destination + at, Group::kUnits, mapCase<Case>);
    }
    at += Group::kUnits;
  } while (length - at >= Group::kUnits);
  return at;
}

// Groups from the first, which is not ASCII, up to the next that is. Returns the number of their units.
template <class Case, class Group>
__attribute__((noinline)) int32_t convertGroups(const uint16_t* source, uint16_t* destination,
                                                int32_t length) {
  int32_t at = 0;
  while (length - at >= Group::kUnits) {
    const Group group(source + at);
    if (group.isAscii()) break;
    if (group.isDirect()) {
      convertUnits(source + at, destination + at, Group::kUnits, mapCaseDirect<Case>);
      at += Group::kUnits;
    } else {
      at += convertFarGroups<Case, Group>(source + at, destination + at, length - at);
    }
  }
  return at;
}

// One block of eight units or, of `length`, several. Returns their number.
template <class Case>
ULK_INLINE int32_t convertBlocks(const uint16_t* source, uint16_t* destination, int32_t length) {
  using Block = UnitGroup<1>;
  const Block block(source);
  if (block.isAscii()) {
    block.map(destination, asciiCase<Case>());
  } else if (block.isDirect()) {
    convertUnits(source, destination, Block::kUnits, mapCaseDirect<Case>);
  } else {
    return convertFarGroups<Case, Block>(source, destination, length);
  }
  return Block::kUnits;
}

template <class Case>
ULK_INLINE void convertCase(const uint16_t* source, uint16_t* destination, int32_t length) {
  using Group = UnitGroup<4>;
  constexpr int32_t kLanes = Vec16<uint16_t>::kLanes;
  if (length < kLanes) {
    for (int32_t i = 0; i < length; ++i) storeUnit(destination + i, mapCase<Case>(loadUnit(source + i)));
    return;
  }
  const RangeAdd<uint16_t> ascii = asciiCase<Case>();
  int32_t at = 0;
  while (length - at >= Group::kUnits) {
    const Group group(source + at);
    if (group.isAscii()) {
      group.map(destination + at, ascii);
      at += Group::kUnits;
    } else {
      at += convertGroups<Case, Group>(source + at, destination + at, length - at);
    }
  }
  while (at < length) {
    const int32_t from = std::min(at, length - kLanes);
    at = from + convertBlocks<Case>(source + from, destination + from, length - from);
  }
}

}  // namespace ulk
