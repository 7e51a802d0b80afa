// What the record of a class or property begins with (class_sets.h): the ASCII characters that it accepts,
// one by one, and as ranges if they are few.
#pragma once

#include <cstdint>

#include "regexp/text/set128.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// The characters of one or two ranges, or all but those: each range from one bound to the next. What the set
// is takes the bits that bounds leave over.
class AsciiRanges {
 public:
  // Of sets that are neither, nothing is known.
  static AsciiRanges of(const Set128& set);

  bool areKnown() const { return !(word_ & kUnknown); }
  bool areExcluded() const { return word_ & kExcluded; }
  uint32_t bounds() const { return word_ & kBounds; }  // a byte each

 private:
  static constexpr uint32_t kExcluded = 0x80;
  static constexpr uint32_t kUnknown = 0x8000;
  static constexpr uint32_t kBounds = 0x7F7F7F7F;

  uint32_t word_;
};

struct AsciiRecord {
  Set128 set;
  AsciiRanges ranges;  // not always there
};
// The record of a category goes on with the kinds of characters that it accepts, of which there are two
// words.
inline const uint32_t* kindsOf(const AsciiRecord& record) {
  return reinterpret_cast<const uint32_t*>(&record + 1);
}
inline constexpr int32_t kRecordWords = kWordsPerSet + 1;
static_assert(sizeof(AsciiRecord) == kRecordWords * sizeof(uint32_t));

}  // namespace ulk

#pragma GCC visibility pop
