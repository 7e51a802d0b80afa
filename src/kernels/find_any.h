// Any unit of a set: the first or the last place in a text where one stands.
//
// A few members are compared with 16 bytes of text at once, one vector a member. Beyond that each text unit
// is looked up: in a table of flags, or, where the text is too short to pay for the table, in the set itself.
#pragma once

#include <algorithm>
#include <type_traits>

#include "kernels/find_unit.h"

namespace ulk {

// Members in vectors; where the set has fewer, its last one stands for the missing.
template <class Unit, int members>
struct AnyProbe {
  static constexpr bool kExact = true;
  const Unit* text;
  Vec16<Unit> wanted[members];

  ULK_INLINE AnyProbe(const Unit* searched, const Unit* set, int32_t setLength) : text(searched) {
    for (int32_t i = 0; i < members; ++i) {
      wanted[i] = Vec16<Unit>::splat(loadUnit(set + std::min(i, setLength - 1)));
    }
  }

  template <class Block>
  ULK_INLINE Vec16<Unit> hits(const Block& block) const {
    const Vec16<Unit> units = block.load(text);
    Vec16<Unit> equal = units.equal(wanted[0]);
    for (int i = 1; i < members; ++i) equal = equal | units.equal(wanted[i]);
    return equal;
  }
  ULK_INLINE const AnyProbe& filter() const { return *this; }
};

template <class Direction, int members, class Unit>
int32_t scanForMembers(const Unit* text, int32_t length, const Unit* set, int32_t setLength) {
  AnyProbe<Unit, members> probe(text, set, setLength);
  return scan<Direction>(text, static_cast<size_t>(length), probe);
}

// The first position, in the direction of the search, for whose unit `flag` is not zero.
template <class Direction, class Unit, class Flag>
ULK_INLINE int32_t scanUnits(const Unit* text, int32_t length, Flag flag) {
  const size_t count = static_cast<size_t>(length);
  const auto unit = [&](size_t done)
                        ULK_LAMBDA_INLINE { return loadUnit(text + Direction::place(count, done, 1)); };
  size_t done = 0;
  for (; count - done >= 4; done += 4) {
    if (flag(unit(done)) | flag(unit(done + 1)) | flag(unit(done + 2)) | flag(unit(done + 3))) break;
  }
  for (; done < count; ++done) {
    if (flag(unit(done))) return static_cast<int32_t>(Direction::place(count, done, 1));
  }
  return -1;
}

// Flags of all units there are: bytes for the 256 8-bit ones, bits for the 65536 16-bit ones (8 KiB of
// stack).
template <class Unit>
class UnitFlags {
 public:
  UnitFlags(const Unit* set, int32_t setLength) {
    for (int32_t i = 0; i < setLength; ++i) {
      const size_t unit = loadUnit(set + i);
      flags_[unit / kPerCell] = static_cast<Cell>(flags_[unit / kPerCell] | Cell{1} << unit % kPerCell);
    }
  }
  ULK_INLINE uint32_t operator()(size_t unit) const {
    return flags_[unit / kPerCell] >> unit % kPerCell & 1u;
  }

 private:
  using Cell = std::conditional_t<sizeof(Unit) == 1, uint8_t, uint32_t>;
  static constexpr size_t kPerCell = sizeof(Unit) == 1 ? 1 : 32;
  Cell flags_[(size_t{1} << 8 * sizeof(Unit)) / kPerCell] = {};
};

template <class Direction, class Unit>
int32_t scanByTable(const Unit* text, int32_t length, const Unit* set, int32_t setLength) {
  const UnitFlags<Unit> flags(set, setLength);
  return scanUnits<Direction>(text, length, [&](Unit unit) ULK_LAMBDA_INLINE { return flags(unit); });
}

// Whether looking each text unit up in the set itself costs less than filling a table.
template <class Unit>
ULK_INLINE bool tooShortForTable(int32_t length, int32_t setLength) {
  constexpr uint64_t kBlocks = sizeof(Unit) == 1 ? 8 : 256;
  return static_cast<uint64_t>(length) * (static_cast<uint64_t>(setLength) / Vec16<Unit>::kLanes + 1) <=
         kBlocks;
}

template <class Direction, class Unit>
int32_t scanForAny(const Unit* text, int32_t length, const Unit* set, int32_t setLength) {
  if (length == 0 || setLength == 0) return -1;
  if (setLength == 1) return scanForUnit<Direction>(text, length, loadUnit(set));
  if (setLength == 2) return scanForMembers<Direction, 2>(text, length, set, setLength);
  if (setLength == 3) return scanForMembers<Direction, 3>(text, length, set, setLength);
  if (setLength == 4) return scanForMembers<Direction, 4>(text, length, set, setLength);
  if (setLength <= 8) return scanForMembers<Direction, 8>(text, length, set, setLength);
  if (tooShortForTable<Unit>(length, setLength)) {
    return scanUnits<Direction>(
        text, length, [&](Unit unit) { return static_cast<uint32_t>(findUnit(set, setLength, unit) >= 0); });
  }
  return scanByTable<Direction>(text, length, set, setLength);
}

// The lowest position whose unit is in the set, -1 if there is none.
template <class Unit>
int32_t findAny(const Unit* text, int32_t length, const Unit* set, int32_t setLength) {
  return scanForAny<Forward>(text, length, set, setLength);
}

// The highest such position.
template <class Unit>
int32_t findAnyRev(const Unit* text, int32_t length, const Unit* set, int32_t setLength) {
  return scanForAny<Backward>(text, length, set, setLength);
}

}  // namespace ulk
