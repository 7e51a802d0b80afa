#include "regexp/match/take.h"

namespace ulk {

namespace {

template <class Accepts>
ULK_INLINE const uint8_t* behindAccepted(const uint8_t* at, const uint8_t* end, Accepts accepts) {
  while (at < end && *at < 0x80 && accepts(*at)) ++at;
  return at;
}

}  // namespace

ULK_IN_REGISTERS const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end, const uint8_t* sets,
                                            uint8_t wanted) {
  return behindAccepted(at, end, [=](uint8_t byte) { return (sets[byte] & wanted) != 0; });
}

ULK_IN_REGISTERS const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end, const Set128& set) {
  return behindAccepted(at, end, [&set](uint8_t byte) { return set.contains(byte); });
}

}  // namespace ulk
