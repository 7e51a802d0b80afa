#include "regexp/match/take.h"

#include "kernels/byte_sets.h"
#include "regexp/program/ascii_record.h"

namespace ulk {

namespace {

constexpr ptrdiff_t kLong = 16;         // bytes, after which many are looked at at a time
constexpr uint8_t kNoCharacter = 0x80;  // is no ASCII character

using Bytes = Vec16<uint8_t>;

template <class Accepts>
ULK_INLINE const uint8_t* behindAccepted(const uint8_t* at, const uint8_t* end, Accepts accepts) {
  while (at < end && *at < 0x80 && accepts(*at)) ++at;
  return at;
}

// The same where `areOthers` tells of many bytes which of them are not accepted or no ASCII characters.
template <class AreOthers, class Accepts>
ULK_INLINE const uint8_t* behindMany(const uint8_t* at, const uint8_t* end, AreOthers areOthers,
                                     Accepts accepts) {
  for (; end - at >= Bytes::kLanes; at += Bytes::kLanes) {
    const LaneMask<uint8_t> others = areOthers(Bytes::load(at));
    if (others.any()) return at + others.first();
  }
  return behindAccepted(at, end, accepts);
}

// Where the ASCII characters end that are not this one.
const uint8_t* behindOthers(const uint8_t* at, const uint8_t* end, uint8_t one) {
  const auto ones = Bytes::splat(one);
  return behindMany(
      at, end, [ones](Bytes bytes) { return (bytes.equal(ones) | bytes).mask(); },
      [one](uint8_t byte) { return byte != one; });
}

LaneMask<uint8_t> allBut(LaneMask<uint8_t> lanes) { return LaneMask<uint8_t>(lanes.bits() ^ 0xFFFF); }

ULK_INLINE Bytes digits(Bytes bytes) { return UnitRange<uint8_t>{'0', '9'}.contains(bytes); }

ULK_INLINE Bytes spaces(Bytes bytes) {
  return bytes.equal(Bytes::splat(' ')) | UnitRange<uint8_t>{9, 10}.contains(bytes) |
         UnitRange<uint8_t>{12, 13}.contains(bytes);
}

}  // namespace

ULK_IN_REGISTERS const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end, const uint8_t* sets,
                                            uint8_t wanted) {
  const auto accepts = [=](uint8_t byte) { return (sets[byte] & wanted) != 0; };
  switch (wanted) {
    case kDigit:
      return behindMany(
          at, end, [](Bytes bytes) { return allBut(digits(bytes).mask()); }, accepts);
    case kNotDigit:
      return behindMany(
          at, end, [](Bytes bytes) { return (digits(bytes) | bytes).mask(); }, accepts);
    case kWord:
      return behindMany(
          at, end, [](Bytes bytes) { return allBut(wordBytes(bytes).mask()); }, accepts);
    case kNotWord:
      return behindMany(
          at, end, [](Bytes bytes) { return (wordBytes(bytes) | bytes).mask(); }, accepts);
    case kSpace:
      return behindMany(
          at, end, [](Bytes bytes) { return allBut(spaces(bytes).mask()); }, accepts);
    case kNotSpace:
      return behindMany(
          at, end, [](Bytes bytes) { return (spaces(bytes) | bytes).mask(); }, accepts);
    case kNotNewline:
      return behindOthers(at, end, '\n');
    default:
      return behindOthers(at, end, kNoCharacter);
  }
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

ULK_IN_REGISTERS const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end,
                                            const AsciiRecord& record) {
  if (end - at < Bytes::kLanes || !record.ranges.areKnown()) return behindBytes(at, end, record.set);
  const auto accepts = [&record](uint8_t byte) { return record.set.contains(byte); };
  const uint32_t bounds = record.ranges.bounds();
  const TwoRanges ranges(reinterpret_cast<const uint8_t*>(&bounds));
  if (record.ranges.areExcluded())
    return behindMany(
        at, end, [&ranges](Bytes bytes) { return (ranges.contains(bytes) | bytes).mask(); }, accepts);
  return behindMany(
      at, end, [&ranges](Bytes bytes) { return allBut(ranges.contains(bytes).mask()); }, accepts);
}

}  // namespace ulk
