#include "regexp/program/small_set.h"

#include <algorithm>

namespace ulk {

namespace {

// Lists the members of a set of up to four.
SmallSetForm listMembers(const ByteSet256& set, uint8_t (&members)[4]) {
  using enum SmallSetForm;
  int count = 0;
  for (int32_t c = 0; c < 256; ++c) {
    if (!set.contains(static_cast<uint8_t>(c))) continue;
    if (count == 4) return kNone;
    members[count++] = static_cast<uint8_t>(c);
  }
  std::fill(members + std::max(count, 1), members + 4, members[0]);
  constexpr SmallSetForm kForms[] = {kNone, kOne, kTwo, kFour, kFour};
  return kForms[count];
}

// Lists the bounds of a set of one or two ranges below 0x80; one range stands twice. False for other sets.
bool listRanges(const ByteSet256& set, uint8_t (&bounds)[4]) {
  int count = 0;
  for (int32_t c = 0; c < 0x80; ++c) {
    const bool member = set.contains(static_cast<uint8_t>(c));
    const bool before = c > 0 && set.contains(static_cast<uint8_t>(c - 1));
    if (member == before) continue;
    if (count == 4) return false;
    bounds[count++] = static_cast<uint8_t>(member ? c : c - 1);
  }
  if (count < 2 || count % 2 != 0 || hasHighBytes(set)) return false;
  if (count == 2) std::copy(bounds, bounds + 2, bounds + 2);
  return true;
}

}  // namespace

bool describe(const ByteSet256& set, SmallSet& small) {
  small.form = listMembers(set, small.bytes);
  if (small.form == SmallSetForm::kNone && listRanges(set, small.bytes)) small.form = SmallSetForm::kRanges;
  return small.form != SmallSetForm::kNone;
}

}  // namespace ulk
