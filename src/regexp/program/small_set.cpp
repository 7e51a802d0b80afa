#include "regexp/program/small_set.h"

#include <algorithm>
#include <bit>

namespace ulk {

namespace {

// Lists the members of a set of up to four.
SmallSetForm listMembers(const ByteSet256& set, uint8_t (&members)[4]) {
  using enum SmallSetForm;
  int count = 0;
  for (int32_t i = 0; i < 8; ++i) {
    for (uint32_t left = set.words[i]; left; left &= left - 1) {
      if (count == 4) return kNone;
      members[count++] = static_cast<uint8_t>(32 * i + std::countr_zero(left));
    }
  }
  std::fill(members + std::max(count, 1), members + 4, members[0]);
  constexpr SmallSetForm kForms[] = {kNone, kOne, kTwo, kFour, kFour};
  return kForms[count];
}

// Lists the bounds of one or two ranges.
bool listRangesIn(const uint32_t* words, int32_t numWords, uint8_t (&bounds)[4]) {
  int count = 0;
  uint32_t before = 0;  // whether the character before the word is in the set
  for (int32_t i = 0; i < numWords; ++i) {
    const uint32_t word = words[i];
    for (uint32_t changes = word ^ (word << 1 | before); changes; changes &= changes - 1) {
      if (count == 4) return false;
      bounds[count] = static_cast<uint8_t>(32 * i + std::countr_zero(changes) - (count % 2));
      ++count;
    }
    before = word >> 31;
  }
  if (count % 2 != 0) bounds[count++] = static_cast<uint8_t>(32 * numWords - 1);
  if (count == 2) std::copy(bounds, bounds + 2, bounds + 2);
  return count > 0;
}

}  // namespace

bool listRanges(const Set128& set, uint8_t (&bounds)[4]) {
  return listRangesIn(set.words, kWordsPerSet, bounds);
}

bool describe(const ByteSet256& set, SmallSet& small) {
  small.form = listMembers(set, small.bytes);
  if (small.form != SmallSetForm::kNone) return true;
  return !hasHighBytes(set) && describeAny(set, small);
}

bool describeAny(const ByteSet256& set, SmallSet& small) {
  small.form = listMembers(set, small.bytes);
  if (small.form != SmallSetForm::kNone) return true;
  if (!listRangesIn(set.words, 8, small.bytes) || small.bytes[1] - small.bytes[0] == 255) return false;
  small.form = SmallSetForm::kRanges;
  return true;
}

}  // namespace ulk
