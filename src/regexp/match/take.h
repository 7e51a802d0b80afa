// Runs of bytes that are items, which greedy repeats take.
#pragma once

#include "regexp/match/items.h"
#include "regexp/match/steps.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// Where the ASCII characters end that are accepted.
template <class Accepts>
ULK_INLINE const uint8_t* behindAccepted(const uint8_t* at, const uint8_t* end, Accepts accepts) {
  while (at < end && *at < 0x80 && accepts(*at)) ++at;
  return at;
}

// Where the bytes end that begin what a repeat takes at `at`: ASCII characters of a shorthand, or of the set
// of a class or property. Functions of their own, whose loops keep all they need in registers.
ULK_IN_REGISTERS const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end, const uint8_t* sets,
                                            uint8_t wanted);
ULK_IN_REGISTERS const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end, const Set128& set);
ULK_IN_REGISTERS const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end, const AsciiRecord& record);

ULK_INLINE const uint8_t* behindShorthand(const MatchContext& m, const RxNode& item, const uint8_t* at,
                                          const uint8_t* end) {
  constexpr ptrdiff_t kFew = 4;
  const uint8_t wanted = byteSetOf(item, m.options);
  if (end - at > kFew) return behindBytes(at, end, m.byteSets, wanted);
  return behindAccepted(at, end, [&m, wanted](uint8_t byte) { return (m.byteSets[byte] & wanted) != 0; });
}

}  // namespace ulk

#pragma GCC visibility pop
