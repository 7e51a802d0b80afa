// Runs of bytes that are items, which greedy repeats take.
#pragma once

#include "regexp/match/items.h"
#include "regexp/match/steps.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// Where the bytes end that begin what a repeat takes at `at`: ASCII characters of a shorthand, or of the set
// of a class or property. Functions of their own, whose loops keep all they need in registers.
ULK_IN_REGISTERS const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end, const uint8_t* sets,
                                            uint8_t wanted);
ULK_IN_REGISTERS const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end, const Set128& set);
ULK_IN_REGISTERS const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end, const AsciiRecord& record);

ULK_INLINE const uint8_t* behindShorthand(const MatchContext& m, const RxNode& item, const uint8_t* at,
                                          const uint8_t* end) {
  return behindBytes(at, end, m.byteSets, byteSetOf(item, m.options));
}

}  // namespace ulk

#pragma GCC visibility pop
