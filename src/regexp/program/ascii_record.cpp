#include "regexp/program/ascii_record.h"

#include <bit>

namespace ulk {

namespace {

// The bounds of a set of one or two ranges, where one stands twice; false for other sets.
bool listBounds(const Set128& set, uint32_t& bounds) {
  constexpr int32_t kMost = 4;
  int32_t at[kMost + 1];
  int32_t count = 0;
  uint32_t before = 0;  // whether the character before the word is in the set
  for (int32_t i = 0; i < kWordsPerSet; ++i) {
    const uint32_t word = set.words[i];
    for (uint32_t changes = word ^ (word << 1 | before); changes; changes &= changes - 1) {
      if (count == kMost) return false;
      at[count] = 32 * i + std::countr_zero(changes) - (count % 2);
      ++count;
    }
    before = word >> 31;
  }
  if (count % 2 != 0) at[count++] = 127;
  if (count == 0) return false;
  const int32_t second = count == kMost ? 2 : 0;
  bounds = static_cast<uint32_t>(at[0] | at[1] << 8 | at[second] << 16 | at[second + 1] << 24);
  return true;
}

}  // namespace

AsciiRanges AsciiRanges::of(const Set128& set) {
  AsciiRanges ranges;
  if (listBounds(set, ranges.word_)) return ranges;
  if (listBounds(inverse(set), ranges.word_)) {
    ranges.word_ |= kExcluded;
  } else {
    ranges.word_ = kUnknown;
  }
  return ranges;
}

}  // namespace ulk
