// Sets of bytes that vector searches test by a few comparisons.
#pragma once

#include <cstdint>

#include "regexp/program/byte_set.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// A small set of bytes: one, two, or up to four members, where three repeat the first; or up to two ranges,
// from the first byte to the second and from the third to the fourth.
enum class SmallSetForm : uint8_t { kNone, kOne, kTwo, kFour, kRanges };
struct SmallSet {
  SmallSetForm form;
  uint8_t bytes[4];
};

// Lists the bounds of a set of one or two ranges, the one twice; false for other sets.
bool listRanges(const Set128& set, uint8_t (&bounds)[4]);

// Describes a small set of bytes; false for others, and for ranges that are not of ASCII.
bool describe(const ByteSet256& set, SmallSet& small);
// The same for any ranges.
bool describeAny(const ByteSet256& set, SmallSet& small);

}  // namespace ulk

#pragma GCC visibility pop
