// Whether single units belong to a set: without any preparation that a few of them would not pay for.
#pragma once

#include "kernels/find_unit.h"

namespace ulk {

// Up to three members, compared one after the other.
template <class Unit>
struct LookupInFew {
  const Unit* set;
  int32_t setLength;

  ULK_INLINE bool operator()(Unit unit) const {
    for (int32_t i = 0; i < setLength; ++i) {
      if (loadUnit(set + i) == unit) return true;
    }
    return false;
  }
};

// Up to two vectors of members, compared at once.
template <class Unit>
struct LookupInVectors {
  Vec16<Unit> first;
  Vec16<Unit> last;

  ULK_INLINE bool operator()(Unit unit) const {
    const Vec16<Unit> wanted = Vec16<Unit>::splat(unit);
    return (first.equal(wanted) | last.equal(wanted)).mask().any();
  }
};

// Any number of members.
template <class Unit>
struct LookupInMany {
  const Unit* set;
  int32_t setLength;

  ULK_INLINE bool operator()(Unit unit) const { return findUnit(set, setLength, unit) >= 0; }
};

// Four members or more in a vector; where they are fewer than its lanes, some stand there twice.
template <class Unit>
ULK_INLINE Vec16<Unit> firstMembers(const Unit* set, int32_t setLength) {
  using Vec = Vec16<Unit>;
  constexpr int32_t kLanes = Vec::kLanes;
  if (setLength >= kLanes) return Vec::load(set);
  if (setLength >= kLanes / 2) return Vec::template join<8>(set, set + setLength - kLanes / 2);
  const Vec half = Vec::template join<4>(set, set + setLength - kLanes / 4);
  return half.joinLow(half);
}

// Calls `run` with the lookup for a set.
template <class Unit, class Run>
ULK_INLINE auto withLookup(const Unit* set, int32_t setLength, Run run) {
  constexpr int32_t kLanes = Vec16<Unit>::kLanes;
  if (setLength < 4) return run(LookupInFew<Unit>{set, setLength});
  if (setLength > 2 * kLanes) return run(LookupInMany<Unit>{set, setLength});
  const Vec16<Unit> first = firstMembers(set, setLength);
  return run(
      LookupInVectors<Unit>{first, setLength > kLanes ? Vec16<Unit>::load(set + setLength - kLanes) : first});
}

}  // namespace ulk
