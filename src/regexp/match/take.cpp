#include "regexp/match/take.h"

namespace ulk {

namespace {

constexpr ptrdiff_t kLong = 16;         // bytes, after which many are looked at at a time
constexpr uint8_t kNoCharacter = 0x80;  // is no ASCII character

template <class Accepts>
ULK_INLINE const uint8_t* behindAccepted(const uint8_t* at, const uint8_t* end, Accepts accepts) {
  while (at < end && *at < 0x80 && accepts(*at)) ++at;
  return at;
}

// Where the ASCII characters end that are not this one.
const uint8_t* behindOthers(const uint8_t* at, const uint8_t* end, uint8_t one) {
  const auto ones = Vec16<uint8_t>::splat(one);
  for (; end - at >= Vec16<uint8_t>::kLanes; at += Vec16<uint8_t>::kLanes) {
    const auto bytes = Vec16<uint8_t>::load(at);
    const auto found = (bytes.equal(ones) | bytes).mask();
    if (found.any()) return at + found.first();
  }
  return behindAccepted(at, end, [one](uint8_t byte) { return byte != one; });
}

}  // namespace

ULK_IN_REGISTERS const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end, const uint8_t* sets,
                                            uint8_t wanted) {
  if (wanted == kNotNewline) return behindOthers(at, end, '\n');
  if (wanted == kAnyByte) return behindOthers(at, end, kNoCharacter);
  return behindAccepted(at, end, [=](uint8_t byte) { return (sets[byte] & wanted) != 0; });
}

ULK_IN_REGISTERS const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end, const Set128& set) {
  const uint8_t* const near = end - at > kLong ? at + kLong : end;
  const auto accepts = [&set](uint8_t byte) { return set.contains(byte); };
  at = behindAccepted(at, near, accepts);
  if (at < near || near == end) return at;
  const int32_t other = onlyBit(set.words, ~0u, kNoCharacter);
  if (other >= 0) return behindOthers(at, end, static_cast<uint8_t>(other));
  return behindAccepted(at, end, accepts);
}

}  // namespace ulk
