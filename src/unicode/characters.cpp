// General categories and lowercase mappings.
//
// What the engine needs of a character is a category and the distance to its lowercase, and most neighbours
// agree in both: fewer than a hundred different records serve all of Unicode. Every code point has the number
// of its record, one byte, in blocks of 128; equal blocks (most are empty) are kept once. A lookup is three
// dependent loads, and the tables take 28 KB: 8.5 KB block numbers, 19 KB blocks, 0.7 KB records.

#include <algorithm>
#include <array>
#include <bit>
#include <iterator>

#include "unicode/unicode.h"

namespace ulk {
namespace {

// Whether the character data has a line for the code point, covers it with a range (ideographs, Hangul
// syllables, surrogates, private use), or does not know it.
enum Source : uint16_t { kUnlisted, kRanged, kListed };

struct CharacterRecord {
  Source source;
  uint16_t mask;
  int32_t toLower;  // added to the code point; 0 for none
};

#include "unicode/characters_table.inc"

int32_t recordNumber(int32_t codePoint) {
  if (codePoint < 0 || codePoint > kMaxCodePoint) return 0;
  constexpr int32_t kBlockSize = 1 << kBlockShift;
  const int32_t start = kBlockOf[codePoint >> kBlockShift] * kBlockSize;
  return kRecordOf[start + codePoint % kBlockSize];
}

const CharacterRecord& recordOf(int32_t codePoint) { return kRecords[recordNumber(codePoint)]; }

// Categories intersect when they are of one major class and one of them is the whole class or they share a
// subcategory.
bool intersects(uint32_t category, uint32_t mask) {
  if ((category ^ mask) & ~kSubcategoryBits) return false;
  return !(mask & kSubcategoryBits) || (category & mask & kSubcategoryBits);
}

bool accepts(const CharacterRecord& record, bool beyondLast, uint32_t mask, bool negated) {
  if (record.source != kUnlisted && intersects(record.mask, mask) != negated) return true;
  // A ranged character that was refused goes on as an unassigned one, so \p{Cn} accepts an ideograph. What
  // lies above the last line of the data counts as nothing at all.
  return record.source != kListed && mask == kUnassigned && !beyondLast;
}

// A kind is what accepts() looks at. Above the last line there are two: the ranges of private use and the
// rest.
struct Kinds {
  static constexpr int32_t kPrivateBeyond = 0;
  static constexpr int32_t kUnlistedBeyond = 1;

  std::array<uint8_t, std::size(kRecords)>
      of{};  // a record, for code points that are not above the last line
  std::array<CharacterRecord, kMaxKinds> records{};
  uint32_t ascii[kMaxKinds][4]{};  // the characters of each kind
  uint64_t inAscii = 0;            // the kinds that have any
  uint64_t withBit[16]{};          // the kinds of characters that are known whose category has that bit
  uint64_t known = 0;              // all of these
  uint64_t unlisted = 0;           // the kinds up to the last line that no line of their own tells of
  uint64_t leads[kMaxKinds];       // the bytes from 0xC0 on that characters of each kind begin with
  int32_t count = 0;

  constexpr Kinds() {
    add({kRanged, 0x2004, 0});
    add(kRecords[0]);
    for (size_t i = 0; i < of.size(); ++i) {
      int32_t kind = kUnlistedBeyond + 1;
      while (kind < count && !same(records[static_cast<size_t>(kind)], kRecords[i])) ++kind;
      if (kind == count) add(kRecords[i]);
      of[i] = static_cast<uint8_t>(kind);
    }
    static_assert(kBlockShift == 7, "ASCII is the first block");
    for (uint32_t c = 0; c < 0x80; ++c) {
      const uint8_t kind = of[kRecordOf[kBlockOf[0] * 0x80u + c]];
      ascii[kind][c >> 5] |= 1u << (c & 31);
      inAscii |= uint64_t{1} << kind;
    }
    for (int32_t kind = 0; kind < count; ++kind) addToSets(kind);
    std::fill(leads, leads + kMaxKinds, kLeadsFromFourBytes);
    for (uint32_t c = 0x80; c < 0x10000; c += kPiece) addLeads(c);
  }

 private:
  static constexpr uint64_t kLeadsFromFourBytes = ~uint64_t{0} << 0x30;
  static constexpr uint32_t kPiece = 64;  // no block nor the characters of a first byte end within so many

  constexpr void addLeads(uint32_t c) {
    const uint64_t lead = uint64_t{1} << (c < 0x800 ? c >> 6 : 0x20 + (c >> 12));
    const size_t place = kBlockOf[c >> kBlockShift] * 0x80u + c % 0x80;
    for (size_t i = 0; i < kPiece; ++i) leads[of[kRecordOf[place + i]]] |= lead;
  }
  constexpr void addToSets(int32_t kind) {
    const CharacterRecord& record = records[static_cast<size_t>(kind)];
    const uint64_t bit = uint64_t{1} << kind;
    if (record.source != kListed && kind > kUnlistedBeyond) unlisted |= bit;
    if (record.source == kUnlisted) return;
    known |= bit;
    for (uint32_t i = 0; i < 16; ++i)
      if (record.mask >> i & 1) withBit[i] |= bit;
  }
  static constexpr bool same(const CharacterRecord& a, const CharacterRecord& b) {
    return a.source == b.source && a.mask == b.mask;
  }
  constexpr void add(const CharacterRecord& record) { records[static_cast<size_t>(count++)] = record; }
};
constexpr Kinds kKinds;

}  // namespace

bool acceptsCategory(int32_t codePoint, uint32_t mask, bool negated) {
  return accepts(recordOf(codePoint), codePoint > kLastListed, mask, negated);
}

int32_t kindOf(int32_t codePoint) {
  const int32_t number = recordNumber(codePoint);
  if (codePoint <= kLastListed) return kKinds.of[static_cast<size_t>(number)];
  return kRecords[number].source == kRanged ? Kinds::kPrivateBeyond : Kinds::kUnlistedBeyond;
}

// As accepts() does, for all kinds at once.
uint64_t acceptedKinds(uint32_t mask, bool negated) {
  const auto withAnyBit = [](uint32_t bits) {
    uint64_t kinds = 0;
    for (; bits; bits &= bits - 1) kinds |= kKinds.withBit[std::countr_zero(bits)];
    return kinds;
  };
  uint64_t kinds = withAnyBit(mask & ~kSubcategoryBits);
  if (mask & kSubcategoryBits) kinds &= withAnyBit(mask & kSubcategoryBits);
  if (negated) kinds ^= kKinds.known;
  return mask == kUnassigned ? kinds | kKinds.unlisted : kinds;
}

uint64_t leadsOfKinds(uint64_t kinds) {
  uint64_t leads = 0;
  for (; kinds; kinds &= kinds - 1) leads |= kKinds.leads[std::countr_zero(kinds)];
  return leads;
}

void addAsciiOfKinds(uint64_t kinds, uint32_t (&words)[4]) {
  for (kinds &= kKinds.inAscii; kinds; kinds &= kinds - 1) {
    const auto& ascii = kKinds.ascii[std::countr_zero(kinds)];
    for (int i = 0; i < 4; ++i) words[i] |= ascii[i];
  }
}

bool isMark(int32_t codePoint) { return recordOf(codePoint).mask & kMark; }

int32_t foldCase(int32_t codePoint) { return codePoint + recordOf(codePoint).toLower; }

}  // namespace ulk
