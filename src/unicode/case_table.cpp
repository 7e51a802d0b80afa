// The case table, computed by the compiler from runs of units that share a distance.
#include "unicode/case_table.h"

namespace ulk {
namespace {

// Every `step`th unit from `first` to `last`: its lowercase is `distance` away.
struct Run {
  uint16_t first;
  uint16_t last;
  uint16_t step;
  int16_t distance;
};

// Pairs: the lowercase maps back. Where several units have one lowercase, it maps back to the first of them
// here, so "i" to "I" and a digraph to its capital form, not to the titlecase one.
constexpr Run kPairs[] = {
    {0x0041, 0x005A, 1, 32},   {0x00C0, 0x00D6, 1, 32},   {0x00D8, 0x00DE, 1, 32},   {0x0100, 0x012E, 2, 1},
    {0x0130, 0x0130, 1, -199}, {0x0132, 0x0136, 2, 1},    {0x0139, 0x0147, 2, 1},    {0x014A, 0x0176, 2, 1},
    {0x0178, 0x0178, 1, -121}, {0x0179, 0x017D, 2, 1},    {0x0181, 0x0181, 1, 210},  {0x0182, 0x0184, 2, 1},
    {0x0186, 0x0186, 1, 206},  {0x0187, 0x0187, 1, 1},    {0x0189, 0x018A, 1, 205},  {0x018B, 0x018B, 1, 1},
    {0x018E, 0x018F, 1, 202},  {0x0190, 0x0190, 1, 203},  {0x0191, 0x0191, 1, 1},    {0x0193, 0x0193, 1, 205},
    {0x0194, 0x0194, 1, 207},  {0x0196, 0x0196, 1, 211},  {0x0197, 0x0197, 1, 209},  {0x0198, 0x0198, 1, 1},
    {0x019C, 0x019C, 1, 211},  {0x019D, 0x019D, 1, 213},  {0x01A0, 0x01A4, 2, 1},    {0x01A7, 0x01A7, 1, 1},
    {0x01A9, 0x01A9, 1, 218},  {0x01AC, 0x01AC, 1, 1},    {0x01AE, 0x01AE, 1, 218},  {0x01AF, 0x01AF, 1, 1},
    {0x01B1, 0x01B2, 1, 217},  {0x01B3, 0x01B5, 2, 1},    {0x01B7, 0x01B7, 1, 219},  {0x01B8, 0x01B8, 1, 1},
    {0x01BC, 0x01BC, 1, 1},    {0x01C4, 0x01C4, 1, 2},    {0x01C5, 0x01C5, 1, 1},    {0x01C7, 0x01C7, 1, 2},
    {0x01C8, 0x01C8, 1, 1},    {0x01CA, 0x01CA, 1, 2},    {0x01CB, 0x01DB, 2, 1},    {0x01DE, 0x01EE, 2, 1},
    {0x01F1, 0x01F1, 1, 2},    {0x01F2, 0x01F4, 2, 1},    {0x01FA, 0x0216, 2, 1},    {0x0386, 0x0386, 1, 38},
    {0x0388, 0x038A, 1, 37},   {0x038C, 0x038C, 1, 64},   {0x038E, 0x038F, 1, 63},   {0x0391, 0x03A1, 1, 32},
    {0x03A3, 0x03AB, 1, 32},   {0x03E2, 0x03EE, 2, 1},    {0x0401, 0x040C, 1, 80},   {0x040E, 0x040F, 1, 80},
    {0x0410, 0x042F, 1, 32},   {0x0460, 0x0480, 2, 1},    {0x0490, 0x04BE, 2, 1},    {0x04C1, 0x04C3, 2, 1},
    {0x04C7, 0x04C7, 1, 1},    {0x04CB, 0x04CB, 1, 1},    {0x04D0, 0x04EA, 2, 1},    {0x04EE, 0x04F4, 2, 1},
    {0x04F8, 0x04F8, 1, 1},    {0x0531, 0x0556, 1, 48},   {0x1E00, 0x1E94, 2, 1},    {0x1EA0, 0x1EF8, 2, 1},
    {0x1F08, 0x1F0F, 1, -8},   {0x1F18, 0x1F1D, 1, -8},   {0x1F28, 0x1F2F, 1, -8},   {0x1F38, 0x1F3F, 1, -8},
    {0x1F48, 0x1F4D, 1, -8},   {0x1F59, 0x1F5F, 2, -8},   {0x1F68, 0x1F6F, 1, -8},   {0x1F88, 0x1F8F, 1, -8},
    {0x1F98, 0x1F9F, 1, -8},   {0x1FA8, 0x1FAF, 1, -8},   {0x1FB8, 0x1FB9, 1, -8},   {0x1FBA, 0x1FBB, 1, -74},
    {0x1FBC, 0x1FBC, 1, -9},   {0x1FC8, 0x1FCB, 1, -86},  {0x1FCC, 0x1FCC, 1, -9},   {0x1FD8, 0x1FD9, 1, -8},
    {0x1FDA, 0x1FDB, 1, -100}, {0x1FE8, 0x1FE9, 1, -8},   {0x1FEA, 0x1FEB, 1, -112}, {0x1FEC, 0x1FEC, 1, -7},
    {0x1FF8, 0x1FF9, 1, -128}, {0x1FFA, 0x1FFB, 1, -126}, {0x1FFC, 0x1FFC, 1, -9},   {0x2160, 0x216F, 1, 16},
    {0x24B6, 0x24CF, 1, 26},   {0xFF21, 0xFF3A, 1, 32},
};

// Georgian: small letters that have no way back.
constexpr Run kLowercaseOnly[] = {{0x10A0, 0x10C5, 1, 48}};

// Units whose uppercase does not map back to them: dotless i, long s, the titlecase digraphs, Greek symbols.
struct Uppercased {
  uint16_t unit;
  uint16_t uppercase;
};
constexpr Uppercased kUppercaseOnly[] = {
    {0x0131, 0x0049}, {0x017F, 0x0053}, {0x01C5, 0x01C4}, {0x01C8, 0x01C7},
    {0x01CB, 0x01CA}, {0x01F2, 0x01F1}, {0x03D0, 0x0392}, {0x03D1, 0x0398},
    {0x03D5, 0x03A6}, {0x03D6, 0x03A0}, {0x03F0, 0x039A}, {0x03F1, 0x03A1},
};

// Fills a table run by run.
class Builder {
 public:
  constexpr Builder() {
    for (int32_t page = 0; page < kAllPages; ++page) {
      const int32_t place = page * kPage < kDirectEnd ? page
                            : page == kLastCasedPage  ? kLastPlace
                                                      : kEmptyPlace;
      table_.offset[page] = (place - page) * kPage;
    }
    for (int32_t place = 0; place < CaseTable::kPages * kPage; ++place)
      table_.toLower[place] = table_.toUpper[place] = static_cast<uint16_t>(place);
  }

  constexpr void addPairs(const Run& run) {
    addLowercase(run);
    for (int32_t unit = run.first; unit <= run.last; unit += run.step) {
      uint16_t& uppercase = entry(table_.toUpper, unit + run.distance);
      if (uppercase == placeOf(unit + run.distance)) uppercase = placeOf(unit);
    }
  }

  constexpr void addLowercase(const Run& run) {
    for (int32_t unit = run.first; unit <= run.last; unit += run.step)
      entry(table_.toLower, unit) = placeOf(unit + run.distance);
  }

  constexpr void addUppercase(const Uppercased& pair) {
    entry(table_.toUpper, pair.unit) = placeOf(pair.uppercase);
  }

  constexpr const CaseTable& table() const { return table_; }

 private:
  static constexpr int32_t kPage = CaseTable::kPage;
  static constexpr int32_t kAllPages = 65536 / kPage;
  static constexpr int32_t kLastCasedPage = 0xFF;  // fullwidth letters
  static constexpr int32_t kLastPlace = CaseTable::kPages - 1;
  static constexpr int32_t kEmptyPlace = 0x07;  // Syriac and others, which have no case

  // A letter and its mapping lie in one page or both below kDirectEnd, so one offset moves both.
  constexpr uint16_t placeOf(int32_t unit) const {
    return static_cast<uint16_t>(unit + table_.offset[unit / kPage]);
  }
  constexpr uint16_t& entry(uint16_t* column, int32_t unit) { return column[placeOf(unit)]; }

  CaseTable table_ = {};
};

consteval CaseTable makeCaseTable() {
  Builder builder;
  for (const Run& run : kPairs) builder.addPairs(run);
  for (const Run& run : kLowercaseOnly) builder.addLowercase(run);
  for (const Uppercased& pair : kUppercaseOnly) builder.addUppercase(pair);
  return builder.table();
}

}  // namespace

constexpr CaseTable kCaseTable = makeCaseTable();

namespace {

constexpr int32_t countEntries(const uint16_t* column) {
  int32_t count = 0;
  for (int32_t place = 0; place < CaseTable::kPages * CaseTable::kPage; ++place)
    count += column[place] != place;
  return count;
}

// The letters of a range, or -1 if the mapping of one is mapped any further.
template <class Case>
constexpr int32_t countLetters(CasedRange range) {
  int32_t count = 0;
  for (int32_t unit = range.first; unit <= range.last; ++unit) {
    const uint16_t mapped = mapCase<Case>(static_cast<uint16_t>(unit), kCaseTable);
    if (mapCase<Case>(mapped, kCaseTable) != mapped) return -1;
    count += mapped != unit;
  }
  return count;
}

// What the kernels take for granted: no letters outside ASCII's 26 and the cased ranges, and mapping twice is
// mapping once.
template <class Case>
constexpr bool hasLetters(int32_t number) {
  int32_t count = countLetters<Case>({Case::kFirstLetter, Case::kLastLetter});
  if (count != 26) return false;
  for (const CasedRange& range : kCasedRanges) {
    const int32_t letters = countLetters<Case>(range);
    if (letters < 0) return false;
    count += letters;
  }
  return count == number && countEntries(kCaseTable.*Case::kColumn) == number;
}

static_assert(hasLetters<Lowercase>(704));
static_assert(hasLetters<Uppercase>(673));

}  // namespace
}  // namespace ulk
