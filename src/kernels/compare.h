// The order of two strings of one length: what differs first, and by how much. Where case is ignored, units
// are compared as their lowercase.
#pragma once

#include <algorithm>

#include "kernels/case_group.h"
#include "kernels/first_difference.h"

namespace ulk {

template <class Unit>
ULK_INLINE int32_t difference(Unit left, Unit right) {
  return int32_t{left} - int32_t{right};
}

// The difference of the first units that differ, 0 if none do.
template <class Unit>
ULK_INLINE int32_t compare(const Unit* left, const Unit* right, int32_t length) {
  const int32_t at = scanForDifference(left, right, length);
  return at < 0 ? 0 : difference(loadUnit(left + at), loadUnit(right + at));
}

template <class Unit>
ULK_INLINE int32_t equal(const Unit* left, const Unit* right, int32_t length) {
  return scanForDifference(left, right, length) < 0;
}

// Finds units that differ by more than the case of an ASCII letter: all that can tell the cases of a letter
// apart is one bit, so that bit is taken out of the difference where there is a letter.
template <class Unit>
class LatinDifferenceProbe {
 public:
  static constexpr bool kExact = true;

  ULK_INLINE LatinDifferenceProbe(const Unit* left, const Unit* right)
      : left_(left), right_(right), smallLetters_('a', 'z'), caseBit_(Vec16<Unit>::splat(0x20)) {}

  template <class Block>
  ULK_INLINE NonzeroLanes<Unit> hits(const Block& block) const {
    const Vec16<Unit> left = block.load(left_);
    const Vec16<Unit> difference = left ^ block.load(right_);
    return {difference.without(smallLetters_.contains(left | caseBit_) & caseBit_)};
  }
  ULK_INLINE const LatinDifferenceProbe& filter() const { return *this; }

 private:
  const Unit* left_;
  const Unit* right_;
  UnitRange<Unit> smallLetters_;
  Vec16<Unit> caseBit_;
};

template <class Unit>
ULK_INLINE int32_t scanForLatinDifference(const Unit* left, const Unit* right, int32_t length) {
  LatinDifferenceProbe<Unit> probe(left, right);
  return scan<Forward>(left, static_cast<size_t>(length), probe);
}

template <class Unit>
ULK_INLINE Unit foldLatin(Unit unit) {
  return static_cast<Unit>(unit >= 'A' && unit <= 'Z' ? unit + 0x20 : unit);
}

template <class Unit>
ULK_INLINE int32_t compareIgnoreCaseLatin(const Unit* left, const Unit* right, int32_t length) {
  const int32_t at = scanForLatinDifference(left, right, length);
  return at < 0 ? 0 : difference(foldLatin(loadUnit(left + at)), foldLatin(loadUnit(right + at)));
}

// Units whose common bits are below this power of two are both direct.
inline constexpr uint16_t kBothDirect = 0x2000;
static_assert(kBothDirect <= kDirectEnd);

// The difference of the first units that differ as lowercase, 0 if none do.
__attribute__((noinline)) inline int32_t compareLowercase(const uint16_t* left, const uint16_t* right,
                                                          int32_t count) {
  const CaseTable& table = kCaseTable;
  for (int32_t i = 0; i < count; ++i) {
    const uint16_t leftUnit = loadUnit(left + i);
    const uint16_t rightUnit = loadUnit(right + i);
    const bool direct = (leftUnit | rightUnit) < kBothDirect;
    const int32_t found =
        direct ? difference(mapCaseDirect<Lowercase>(leftUnit, table),
                            mapCaseDirect<Lowercase>(rightUnit, table))
               : difference(mapCase<Lowercase>(leftUnit, table), mapCase<Lowercase>(rightUnit, table));
    if (found != 0) return found;
  }
  return 0;
}

// The same for a multiple of eight units, loaded two at once, with one branch for eight.
template <class Map>
ULK_INLINE int32_t compareMapped(const uint16_t* left, const uint16_t* right, int32_t count, Map lowercase) {
  const auto mapped = [&](uint32_t unit)
                          ULK_LAMBDA_INLINE { return lowercase(static_cast<uint16_t>(unit), kCaseTable); };
  for (int32_t at = 0; at < count; at += 8) {
    int32_t differences = 0;
    unrolled<4>([&](auto i) ULK_LAMBDA_INLINE {
      const uint32_t leftPair = loadAs<uint32_t>(left + at + 2 * i);
      const uint32_t rightPair = loadAs<uint32_t>(right + at + 2 * i);
      differences |= mapped(leftPair) ^ mapped(rightPair);
      differences |= mapped(leftPair >> 16) ^ mapped(rightPair >> 16);
    });
    if (differences) return compareLowercase(left + at, right + at, 8);
  }
  return 0;
}

// The difference as lowercase of the first units that differ by more than the case of ASCII letters, which
// often is not 0 and then the answer.
__attribute__((noinline)) inline int32_t compareFirstOther(const uint16_t* left, const uint16_t* right,
                                                           int32_t count) {
  const int32_t first = scanForLatinDifference(left, right, count);
  return first < 0 ? 0 : compareLowercase(left + first, right + first, 1);
}

// The same for a number of groups.
template <class Group>
__attribute__((noinline)) int32_t compareByTable(const uint16_t* left, const uint16_t* right, int32_t count) {
  for (int32_t at = 0; at < count; at += Group::kUnits) {
    int32_t found;
    if (Group(left + at).isDirect() && Group(right + at).isDirect()) {
      found = compareMapped(left + at, right + at, Group::kUnits, mapCaseDirect<Lowercase>);
    } else {
      found = compareFirstOther(left + at, right + at, Group::kUnits);
      if (found == 0) found = compareMapped(left + at, right + at, Group::kUnits, mapCase<Lowercase>);
    }
    if (found != 0) return found;
  }
  return 0;
}

// Whether the units of a group differ by more than the case of ASCII letters.
template <class Group>
ULK_INLINE bool needsTable(const LatinDifferenceProbe<uint16_t>& latin, int32_t at) {
  constexpr int32_t kLanes = Vec16<uint16_t>::kLanes;
  const auto hits = [&](int32_t from) ULK_LAMBDA_INLINE {
    return latin.hits(FullBlock<uint16_t>{static_cast<size_t>(from)});
  };
  NonzeroLanes<uint16_t> differences = hits(at);
  for (int32_t i = kLanes; i < Group::kUnits; i += kLanes) differences = differences | hits(at + i);
  return differences.mask().any();
}

// Most groups need no table, because they are the same but for the case of ASCII letters. Where one does, the
// unit that tells so may decide. If not, its neighbours will need the table as well: a few of them are looked
// up without another test. What is left after the groups is taken in blocks of eight units, the last of which
// overlaps what is known to be equal; where one needs the table, so will the rest.
ULK_INLINE int32_t compareIgnoreCase(const uint16_t* left, const uint16_t* right, int32_t length) {
  using Group = UnitGroup<4>;
  using Block = UnitGroup<1>;
  constexpr int32_t kMostByTable = 4 * Group::kUnits;
  if (length < Block::kUnits) return compareLowercase(left, right, length);

  const LatinDifferenceProbe<uint16_t> latin(left, right);
  int32_t at = 0;
  while (length - at >= Group::kUnits) {
    int32_t size = Group::kUnits;
    if (needsTable<Group>(latin, at)) {
      size = std::min(length - at, kMostByTable) / Group::kUnits * Group::kUnits;
      const int32_t found = compareByTable<Group>(left + at, right + at, size);
      if (found != 0) return found;
    }
    at += size;
  }
  while (at < length) {
    const int32_t from = std::min(at, length - Block::kUnits);
    if (needsTable<Block>(latin, from)) return compareLowercase(left + from, right + from, length - from);
    at = from + Block::kUnits;
  }
  return 0;
}

}  // namespace ulk
