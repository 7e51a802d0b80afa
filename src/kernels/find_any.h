// Any unit of a set: the first or the last place in a text where one stands, or where none of them does. One
// choice of method, by the lengths of the text and of the set, for every function that has a set of units.
//
// Up to 16 members are compared with 16 bytes of text at once, one vector a member. Where the text is long,
// what lies in none of four ranges that hold the members is passed over first. Of larger sets, each text unit
// is looked up in a table of flags, or, where the text is too short to pay for the table, in the set itself.
#pragma once

#include <algorithm>
#include <type_traits>
#include <utility>

#include "kernels/byte_ranges.h"
#include "kernels/find_unit.h"
#include "kernels/unrolled.h"

namespace ulk {

// Four members or more, each in a vector of its own; in fours, the last of which are the set's last four
// members, so that some may come twice.
template <class Unit>
ULK_INLINE void splatInFours(const Unit* set, int32_t setLength, Vec16<Unit>* vectors, int32_t count) {
  for (int32_t i = 0; i < count; i += 4) {
    Vec16<Unit>::splatFour(set + std::min(i, setLength - 4), vectors + i);
  }
}

// Members in vectors, few enough for most of them to stay in registers: as many as the template says, or, in
// fours, some of them twice.
template <class Unit, int members>
struct AnyProbe {
  static constexpr bool kExact = true;
  const Unit* text;
  Vec16<Unit> wanted[members];

  ULK_INLINE AnyProbe(const Unit* searched, const Unit* set, int32_t setLength) : text(searched) {
    if constexpr (members < 4) {
      for (int32_t i = 0; i < members; ++i) wanted[i] = Vec16<Unit>::splat(loadUnit(set + i));
    } else {
      splatInFours(set, setLength, wanted, members);
    }
  }

  template <class Block>
  ULK_INLINE Vec16<Unit> hits(const Block& block) const {
    return equalToAny(block.load(text), std::make_integer_sequence<int, members>());
  }
  ULK_INLINE const AnyProbe& filter() const { return *this; }

 private:
  template <int... i>
  ULK_INLINE Vec16<Unit> equalToAny(Vec16<Unit> units, std::integer_sequence<int, i...>) const {
    return (units.equal(wanted[i]) | ...);
  }
};

// Members in vectors, any number from 4 to 16: the vectors wait in memory.
inline constexpr int32_t kMostVectors = 16;

template <class Unit>
struct ManyProbe {
  static constexpr bool kExact = true;
  const Unit* text;
  int32_t members;
  Vec16<Unit> wanted[kMostVectors];

  ULK_INLINE ManyProbe(const Unit* searched, const Unit* set, int32_t setLength)
      : text(searched), members((setLength + 3) / 4 * 4) {
    splatInFours(set, setLength, wanted, members);
  }

  template <class Block>
  ULK_INLINE Vec16<Unit> hits(const Block& block) const {
    const Vec16<Unit> units = block.load(text);
    Vec16<Unit> equal = Vec16<Unit>::zero();
    for (int32_t i = 0; i < members; i += 4) {
      equal = equal | ((units.equal(wanted[i]) | units.equal(wanted[i + 1])) |
                       (units.equal(wanted[i + 2]) | units.equal(wanted[i + 3])));
    }
    return equal;
  }
  // The walk takes a copy of its filter: the vectors stay where they are.
  struct Filter {
    static constexpr bool kExact = true;
    const ManyProbe* probe;

    template <class Block>
    ULK_INLINE Vec16<Unit> hits(const Block& block) const {
      return probe->hits(block);
    }
  };
  ULK_INLINE Filter filter() const { return {this}; }
};

// What a walk stops at: a member of the set, or any other unit.
enum class Stop { kMember, kOther };

// A walk with a probe that is made of the arguments.
template <class Direction, Stop stop, class Probe, class Unit, class... Arguments>
ULK_INLINE int32_t scanBy(const Unit* text, int32_t length, Arguments... arguments) {
  if constexpr (stop == Stop::kMember) {
    Probe probe{text, arguments...};
    return scan<Direction>(text, static_cast<size_t>(length), probe);
  } else {
    Except<Probe> probe{Probe{text, arguments...}};
    return scanBlocks<Direction, Unit>(static_cast<size_t>(length), probe);
  }
}

template <class Direction, Stop stop, int members, class Unit>
int32_t scanForMembers(const Unit* text, int32_t length, const Unit* set, int32_t setLength) {
  return scanBy<Direction, stop, AnyProbe<Unit, members>>(text, length, set, setLength);
}

template <class Direction, Stop stop, class Unit>
int32_t scanForMany(const Unit* text, int32_t length, const Unit* set, int32_t setLength) {
  return scanBy<Direction, stop, ManyProbe<Unit>>(text, length, set, setLength);
}

// A text of two blocks, or of one short one, and four members or more: each member is made a vector once,
// when its turn comes, and compared with all of the text.
template <Stop stop, class Unit, class Block, size_t blocks>
ULK_INLINE void compareWithAll(const Unit* text, const Block (&at)[blocks], const Unit* set,
                               int32_t setLength, LaneMask<Unit> (&stops)[blocks]) {
  Vec16<Unit> equal[blocks];
  unrolled<blocks>([&](auto b) ULK_LAMBDA_INLINE { equal[b] = Vec16<Unit>::zero(); });
  for (int32_t i = 0; i < setLength; i += 4) {
    Vec16<Unit> members[4];
    Vec16<Unit>::splatFour(set + std::min(i, setLength - 4), members);
    unrolled<blocks>([&](auto b) ULK_LAMBDA_INLINE {
      const Vec16<Unit> units = at[b].load(text);
      equal[b] = equal[b] | ((units.equal(members[0]) | units.equal(members[1])) |
                             (units.equal(members[2]) | units.equal(members[3])));
    });
  }
  unrolled<blocks>([&](auto b) ULK_LAMBDA_INLINE {
    stops[b] = Block::used(stop == Stop::kMember ? equal[b].mask() : unsetLanes(equal[b]).mask());
  });
}

template <class Direction, Stop stop, class Unit>
ULK_INLINE int32_t scanTwoOnce(const Unit* text, int32_t length, const Unit* set, int32_t setLength) {
  constexpr size_t kLanes = Vec16<Unit>::kLanes;
  const size_t count = static_cast<size_t>(length);
  const FullBlock<Unit> at[2] = {{Direction::place(count, 0, kLanes)},
                                 {Direction::place(count, count - kLanes, kLanes)}};
  LaneMask<Unit> stops[2];
  compareWithAll<stop>(text, at, set, setLength, stops);
  if (stops[0].any()) return at[0].position(Direction::pick(stops[0]));
  return stops[1].any() ? at[1].position(Direction::pick(stops[1])) : -1;
}

// Up to two vectors of text.
template <class Direction, Stop stop, class Unit>
int32_t scanOnce(const Unit* text, int32_t length, const Unit* set, int32_t setLength) {
  if (length >= Vec16<Unit>::kLanes) return scanTwoOnce<Direction, stop>(text, length, set, setLength);
  return withShortBlock<Unit>(static_cast<size_t>(length), [&](auto block) ULK_LAMBDA_INLINE {
    const decltype(block) at[1] = {block};
    LaneMask<Unit> stops[1];
    compareWithAll<stop>(text, at, set, setLength, stops);
    return stops[0].any() ? block.position(Direction::pick(stops[0])) : -1;
  });
}

// A long text. What is found soon is found before the ranges are made.
template <class Direction>
int32_t scanByRanges(const uint8_t* text, int32_t length, const uint8_t* set, int32_t setLength) {
  constexpr size_t kSoon = 128;
  const size_t count = static_cast<size_t>(length);
  size_t passed = 0;
  const auto rest = [&] { return text + Direction::place(count, passed, count - passed); };
  const auto inText = [&](int32_t inPart, const uint8_t* part) {
    return inPart < 0 ? -1 : inPart + static_cast<int32_t>(part - text);
  };
  const uint8_t* const soon = text + Direction::place(count, 0, kSoon);
  int32_t found = setLength <= 8 ? scanForMembers<Direction, Stop::kMember, 8>(soon, kSoon, set, setLength)
                                 : scanForMany<Direction, Stop::kMember>(soon, kSoon, set, setLength);
  if (found >= 0) return inText(found, soon);
  passed = kSoon;

  const uint8_t* later = rest();
  RangesProbe<Direction> probe(later, count - passed, set, setLength);
  found = scan<Direction>(later, count - passed, probe);
  if (!probe.exhausted()) return inText(found, later);
  // The walk stopped at a position that holds no member.
  passed += Direction::place(count - passed, static_cast<size_t>(found), 1);
  later = rest();
  return inText(
      scanForMany<Direction, Stop::kMember>(later, static_cast<int32_t>(count - passed), set, setLength),
      later);
}

// The first position, in the direction of the search, where the walk stops; `flag` is 1 for members and 0 for
// other units.
template <class Direction, Stop stop, class Unit, class Flag>
ULK_INLINE int32_t scanUnits(const Unit* text, int32_t length, Flag flag) {
  const size_t count = static_cast<size_t>(length);
  const auto stops = [&](size_t done) ULK_LAMBDA_INLINE {
    const uint32_t member = flag(loadUnit(text + Direction::place(count, done, 1)));
    return stop == Stop::kMember ? member : member ^ 1;
  };
  size_t done = 0;
  for (; count - done >= 4; done += 4) {
    if (stops(done) | stops(done + 1) | stops(done + 2) | stops(done + 3)) break;
  }
  for (; done < count; ++done) {
    if (stops(done)) return static_cast<int32_t>(Direction::place(count, done, 1));
  }
  return -1;
}

// Flags of all units there are: a byte each for the 256 8-bit ones, a bit each for the 65536 16-bit ones (8
// KiB of stack).
template <class Unit>
class UnitFlags {
 public:
  UnitFlags(const Unit* set, int32_t setLength) {
    // Not left to the compiler, whose block fill takes longer to start than the whole of the small table
    // takes.
    for (size_t at = 0; at < sizeof(cells_); at += 16) {
      Vec16<uint8_t>::zero().storeAligned(reinterpret_cast<char*>(cells_) + at);
    }
    for (int32_t i = 0; i < setLength; ++i) {
      const uint32_t unit = loadUnit(set + i);
      if constexpr (kBits) {
        cells_[unit / 32] |= 1u << unit % 32;
      } else {
        cells_[unit] = 1;
      }
    }
  }
  ULK_INLINE uint32_t operator()(uint32_t unit) const {
    if constexpr (kBits) {
      return cells_[unit / 32] >> unit % 32 & 1;
    } else {
      return cells_[unit];
    }
  }

 private:
  static constexpr bool kBits = sizeof(Unit) == 2;
  using Cell = std::conditional_t<kBits, uint32_t, uint8_t>;
  alignas(16) Cell cells_[kBits ? 65536 / 32 : 256];
};

template <class Direction, Stop stop, class Unit>
int32_t scanByTable(const Unit* text, int32_t length, const Unit* set, int32_t setLength) {
  const UnitFlags<Unit> flags(set, setLength);
  return scanUnits<Direction, stop>(text, length, [&](Unit unit) ULK_LAMBDA_INLINE { return flags(unit); });
}

// Whether looking each text unit up in the set costs less than filling a table.
template <class Unit>
ULK_INLINE bool tooShortForTable(int32_t length, int32_t setLength) {
  if (sizeof(Unit) == 1) return false;
  constexpr uint64_t kMostBlocks = 256;
  return static_cast<uint64_t>(length) * (static_cast<uint64_t>(setLength) / Vec16<Unit>::kLanes + 1) <=
         kMostBlocks;
}

// Whoever looks for other units than members has a set that is not empty.
template <class Direction, Stop stop, class Unit>
int32_t scanForAny(const Unit* text, int32_t length, const Unit* set, int32_t setLength) {
  constexpr int32_t kLanes = Vec16<Unit>::kLanes;
  constexpr int32_t kWorthRanges = 400;

  if (length == 0 || setLength == 0) return -1;
  if (setLength >= 4 && setLength <= (length < kLanes ? 2 * kMostVectors : kMostVectors) &&
      length <= 2 * kLanes) {
    return scanOnce<Direction, stop>(text, length, set, setLength);
  }
  if (setLength == 1) return scanForMembers<Direction, stop, 1>(text, length, set, setLength);
  if (setLength == 2) return scanForMembers<Direction, stop, 2>(text, length, set, setLength);
  if (setLength == 3) return scanForMembers<Direction, stop, 3>(text, length, set, setLength);
  if (setLength == 4) return scanForMembers<Direction, stop, 4>(text, length, set, setLength);
  if constexpr (sizeof(Unit) == 1 && stop == Stop::kMember) {
    if (length >= kWorthRanges && setLength <= kMostVectors) {
      return scanByRanges<Direction>(text, length, set, setLength);
    }
  }
  if (setLength <= 8) return scanForMembers<Direction, stop, 8>(text, length, set, setLength);
  if (setLength <= kMostVectors) return scanForMany<Direction, stop>(text, length, set, setLength);
  if (tooShortForTable<Unit>(length, setLength)) {
    return scanUnits<Direction, stop>(
        text, length, [&](Unit unit) { return static_cast<uint32_t>(findUnit(set, setLength, unit) >= 0); });
  }
  return scanByTable<Direction, stop>(text, length, set, setLength);
}

// The lowest position whose unit is in the set, -1 if there is none.
template <class Unit>
int32_t findAny(const Unit* text, int32_t length, const Unit* set, int32_t setLength) {
  return scanForAny<Forward, Stop::kMember>(text, length, set, setLength);
}

// The highest such position.
template <class Unit>
int32_t findAnyRev(const Unit* text, int32_t length, const Unit* set, int32_t setLength) {
  return scanForAny<Backward, Stop::kMember>(text, length, set, setLength);
}

}  // namespace ulk
