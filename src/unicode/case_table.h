// The simple case mappings of 16-bit units, those of an early edition of Unicode, kept as they are: what a
// text becomes must not change with the library's age. A surrogate is a unit without mappings.
//
// Two stages: the unit's high byte gives the offset of its page, and unit plus offset is the place of its
// lowercase and of its uppercase, as they would be if the page belonged there. The pages below kDirectEnd
// stand where they belong, so that for them, which hold nearly all cased letters there are, the second stage
// alone is read. Of the others only one page has letters; those that have none share one. In all that is 19
// KB a direction, of which a text reads the pages of its script.
#pragma once

#include "kernels/vec16.h"

#pragma GCC visibility push(hidden)

namespace ulk {

inline constexpr uint16_t kDirectEnd = 0x2500;

struct CaseTable {
  static constexpr int32_t kPage = 256;
  static constexpr int32_t kPages = kDirectEnd / kPage + 1;

  int32_t offset[65536 / kPage];
  // Moved by the offset like the units themselves; a unit without this mapping has itself.
  uint16_t toLower[kPages * kPage];
  uint16_t toUpper[kPages * kPage];
};
extern const CaseTable kCaseTable;

// Outside these ranges nothing but the 26 letters of ASCII has a mapping. Between them lie the punctuation of
// all scripts, and ideographs, kana and Hangul.
struct CasedRange {
  uint16_t first;
  uint16_t last;
};
inline constexpr CasedRange kCasedRanges[] = {{0x80, 0x1FFF}, {0x2160, 0x24FF}, {0xFF21, 0xFF5A}};

// The two directions, with what a kernel needs of each: its column of the table, and its mapping of ASCII as
// a range and the distance added to it.
struct Lowercase {
  static constexpr char kFirstLetter = 'A';
  static constexpr char kLastLetter = 'Z';
  static constexpr int32_t kDistance = 0x20;
  static constexpr auto kColumn = &CaseTable::toLower;
};

struct Uppercase {
  static constexpr char kFirstLetter = 'a';
  static constexpr char kLastLetter = 'z';
  static constexpr int32_t kDistance = -0x20;
  static constexpr auto kColumn = &CaseTable::toUpper;
};

// The mapping of any unit.
template <class Case>
constexpr ULK_INLINE uint16_t mapCase(uint16_t unit, const CaseTable& table = kCaseTable) {
  const int32_t offset = table.offset[unit / CaseTable::kPage];
  return static_cast<uint16_t>((table.*Case::kColumn)[unit + offset] - offset);
}

// The same for a unit below kDirectEnd.
template <class Case>
constexpr ULK_INLINE uint16_t mapCaseDirect(uint16_t unit, const CaseTable& table = kCaseTable) {
  return (table.*Case::kColumn)[unit];
}

}  // namespace ulk

#pragma GCC visibility pop
