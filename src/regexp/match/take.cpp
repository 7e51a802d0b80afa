#include "regexp/match/take.h"

#include "kernels/byte_sets.h"
#include "regexp/program/ascii_record.h"

namespace ulk {

namespace {

constexpr ptrdiff_t kLong = 16;         // bytes, after which many are looked at at a time
constexpr uint8_t kNoCharacter = 0x80;  // is no ASCII character

using Bytes = Vec16<uint8_t>;

// As behindAccepted for bytes of a set, many at a time where there are as many: `accepts` tells of one.
template <class Set, class Accepts>
ULK_INLINE const uint8_t* behindMembers(const uint8_t* at, const uint8_t* end, const Set& set,
                                        Accepts accepts) {
  for (; end - at >= Bytes::kLanes; at += Bytes::kLanes) {
    const LaneMask<uint8_t> others(set.contains(Bytes::load(at)).mask().bits() ^ 0xFFFF);
    if (others.any()) return at + others.first();
  }
  return behindAccepted(at, end, accepts);
}

// The same for ASCII characters that are not in the set.
template <class Set, class Accepts>
ULK_INLINE const uint8_t* behindOthers(const uint8_t* at, const uint8_t* end, const Set& set,
                                       Accepts accepts) {
  for (; end - at >= Bytes::kLanes; at += Bytes::kLanes) {
    const Bytes bytes = Bytes::load(at);
    const LaneMask<uint8_t> others = (set.contains(bytes) | bytes).mask();
    if (others.any()) return at + others.first();
  }
  return behindAccepted(at, end, accepts);
}

// Where the ASCII characters end that are not this one.
const uint8_t* behindAllBut(const uint8_t* at, const uint8_t* end, uint8_t one) {
  const uint8_t members[] = {one, one, one, one};
  return behindOthers(at, end, OneByte(members), [one](uint8_t byte) { return byte != one; });
}

struct Digits {
  ULK_INLINE static Bytes contains(Bytes bytes) { return UnitRange<uint8_t>{'0', '9'}.contains(bytes); }
};
struct WordCharacters {
  ULK_INLINE static Bytes contains(Bytes bytes) { return wordBytes(bytes); }
};
struct Spaces {
  ULK_INLINE static Bytes contains(Bytes bytes) {
    return bytes.equal(Bytes::splat(' ')) | UnitRange<uint8_t>{9, 10}.contains(bytes) |
           UnitRange<uint8_t>{12, 13}.contains(bytes);
  }
};

}  // namespace

ULK_IN_REGISTERS const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end, const uint8_t* sets,
                                            uint8_t wanted) {
  const auto accepts = [=](uint8_t byte) { return (sets[byte] & wanted) != 0; };
  switch (wanted) {
    case kDigit:
      return behindMembers(at, end, Digits(), accepts);
    case kNotDigit:
      return behindOthers(at, end, Digits(), accepts);
    case kWord:
      return behindMembers(at, end, WordCharacters(), accepts);
    case kNotWord:
      return behindOthers(at, end, WordCharacters(), accepts);
    case kSpace:
      return behindMembers(at, end, Spaces(), accepts);
    case kNotSpace:
      return behindOthers(at, end, Spaces(), accepts);
    case kNotNewline:
      return behindAllBut(at, end, '\n');
    default:
      return behindAllBut(at, end, kNoCharacter);
  }
}

ULK_IN_REGISTERS const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end, const Set128& set) {
  const uint8_t* const near = end - at > kLong ? at + kLong : end;
  const auto accepts = [&set](uint8_t byte) { return set.contains(byte); };
  at = behindAccepted(at, near, accepts);
  if (at < near || near == end) return at;
  const int32_t other = onlyBit(set.words, ~0u, kNoCharacter);
  if (other >= 0) return behindAllBut(at, end, static_cast<uint8_t>(other));
  return behindAccepted(at, end, accepts);
}

ULK_IN_REGISTERS const uint8_t* behindBytes(const uint8_t* at, const uint8_t* end,
                                            const AsciiRecord& record) {
  if (end - at < Bytes::kLanes || !record.ranges.areKnown()) return behindBytes(at, end, record.set);
  const auto accepts = [&record](uint8_t byte) { return record.set.contains(byte); };
  const uint32_t bounds = record.ranges.bounds();
  const TwoRanges ranges(reinterpret_cast<const uint8_t*>(&bounds));
  return record.ranges.areExcluded() ? behindOthers(at, end, ranges, accepts)
                                     : behindMembers(at, end, ranges, accepts);
}

}  // namespace ulk
