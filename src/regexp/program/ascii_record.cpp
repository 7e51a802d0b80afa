#include "regexp/program/ascii_record.h"

#include "regexp/program/small_set.h"

namespace ulk {

AsciiRanges AsciiRanges::of(const Set128& set) {
  AsciiRanges ranges;
  uint8_t bounds[4];
  const bool isListed = listRanges(set, bounds);
  if (!isListed && !listRanges(inverse(set), bounds)) {
    ranges.word_ = kUnknown;
    return ranges;
  }
  ranges.word_ = static_cast<uint32_t>(bounds[0] | bounds[1] << 8 | bounds[2] << 16 | bounds[3] << 24);
  if (!isListed) ranges.word_ |= kExcluded;
  return ranges;
}

}  // namespace ulk
