// General categories and lowercase mappings.
//
// What the engine needs of a character is a category and the distance to its lowercase, and most neighbours
// agree in both: fewer than a hundred different records serve all of Unicode. Every code point has the number
// of its record, one byte, in blocks of 128; equal blocks (most are empty) are kept once. A lookup is three
// dependent loads, and the tables take 28 KB: 8.5 KB block numbers, 19 KB blocks, 0.7 KB records.

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

const CharacterRecord& recordOf(int32_t codePoint) {
  if (codePoint < 0 || codePoint > kMaxCodePoint) return kRecords[0];
  constexpr int32_t kBlockSize = 1 << kBlockShift;
  const int32_t start = kBlockOf[codePoint >> kBlockShift] * kBlockSize;
  return kRecords[kRecordOf[start + codePoint % kBlockSize]];
}

// Categories intersect when they are of one major class and one of them is the whole class or they share a
// subcategory.
bool intersects(uint32_t category, uint32_t mask) {
  if ((category ^ mask) & ~kSubcategoryBits) return false;
  return !(mask & kSubcategoryBits) || (category & mask & kSubcategoryBits);
}

}  // namespace

bool acceptsCategory(int32_t codePoint, uint32_t mask, bool negated) {
  const CharacterRecord& record = recordOf(codePoint);
  if (record.source != kUnlisted && intersects(record.mask, mask) != negated) return true;
  // A ranged character that was refused goes on as an unassigned one, so \p{Cn} accepts an ideograph. What
  // lies above the last line of the data counts as nothing at all.
  return record.source != kListed && mask == kUnassigned && codePoint <= kLastListed;
}

bool isMark(int32_t codePoint) { return recordOf(codePoint).mask & kMark; }

int32_t foldCase(int32_t codePoint) { return codePoint + recordOf(codePoint).toLower; }

}  // namespace ulk
