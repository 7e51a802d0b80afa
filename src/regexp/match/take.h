// The items that a greedy repeat takes.
#pragma once

#include <algorithm>

#include "regexp/match/items.h"
#include "regexp/match/steps.h"

namespace ulk {

// The end of the bytes below 0x80 in [at, end) that `accepts` tells of.
template <class Accepts>
ULK_INLINE const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end, Accepts accepts) {
  while (at < end && *at < 0x80 && accepts(*at)) ++at;
  return at;
}

// Where the bytes end that begin what a repeat of a shorthand, or of a class or property, takes at `at`.
ULK_INLINE const uint8_t* behindShorthand(const MatchContext& m, const RxNode& item, const uint8_t* at,
                                          const uint8_t* end) {
  const uint8_t* const sets = m.byteSets;
  const uint8_t wanted = byteSetOf(item, m.options);
  return behindBytes(at, end, [=](uint8_t byte) { return (sets[byte] & wanted) != 0; });
}

ULK_INLINE const uint8_t* behindSet(const RxNode& item, const uint8_t* at, const uint8_t* end) {
  const Set128* const set = recordOf(item);
  return behindBytes(at, end, [=](uint8_t byte) { return set->contains(byte); });
}

// As many items as the quantifier allows; fewer than it requires if there are no more.
ULK_INLINE Taken takeAll(const MatchContext& m, const RxNode* item, const RxNode& quantifier,
                         const uint8_t* at) {
  const int32_t most = std::min(maxOf(quantifier), m.remaining(at));
  const uint8_t* const end = at + most;
  const uint8_t* behind = end;
  if (stepOf(*item) == Step::kGreedyShorthand) {
    behind = behindShorthand(m, *item, at, end);
  } else if (stepOf(*item) == Step::kGreedyClass || stepOf(*item) == Step::kGreedyProperty) {
    behind = behindSet(*item, at, end);
  } else {
    return takeItems(m, *item, at, std::max(minOf(quantifier), most));
  }
  if (behind < end && *behind >= 0x80) return takeItems(m, *item, at, std::max(minOf(quantifier), most));
  return {behind, static_cast<int32_t>(behind - at)};
}

}  // namespace ulk
