// The items that a greedy repeat takes.
#pragma once

#include <algorithm>

#include "regexp/match/items.h"
#include "regexp/match/steps.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// Where the bytes end that begin what a repeat takes at `at`: ASCII characters of a shorthand, or of the set
// of a class or property. Functions of their own, whose loops keep all they need in registers.
ULK_IN_REGISTERS const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end, const uint8_t* sets,
                                            uint8_t wanted);
ULK_IN_REGISTERS const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end, const Set128& set);

ULK_INLINE const uint8_t* behindShorthand(const MatchContext& m, const RxNode& item, const uint8_t* at,
                                          const uint8_t* end) {
  return behindBytes(at, end, m.byteSets, byteSetOf(item, m.options));
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
    behind = behindBytes(at, end, *recordOf(*item));
  } else {
    return takeItems(m, *item, at, std::max(minOf(quantifier), most));
  }
  if (behind < end && *behind >= 0x80) return takeItems(m, *item, at, std::max(minOf(quantifier), most));
  return {behind, static_cast<int32_t>(behind - at)};
}

}  // namespace ulk

#pragma GCC visibility pop
