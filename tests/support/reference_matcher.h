// A second matcher for compiled expressions, against which the library's own is compared: recursive, literal,
// without any shortcut. It carries out every rule as it is stated, counts steps exactly, and reads nothing of
// a state but its header and the operands of its nodes (regexp/program/program.h); it writes nothing to it.
#pragma once

#include <cstdint>
#include <vector>

#include "support/deep_stack.h"
#include "ulkch.h"

namespace ulk_test {

// One record that was written: bytes from the start of the text, and -1 with -1 for a group that took no
// part.
struct ReferenceRecord {
  int64_t start;
  int32_t length;

  bool operator==(const ReferenceRecord&) const = default;
};

struct ReferenceFind {
  ulkStatus status = ulkOk;
  int32_t numFind = 0;                   // what the caller's count holds after the search
  std::vector<ReferenceRecord> records;  // those that were written, in order
  int64_t steps = 0;                     // taken in the whole call: with this limit it does not run out
  int32_t bytesRead = 0;                 // the furthest byte that was looked at lies before this one
  bool tooDeep = false;                  // gave up for want of stack: the rest means nothing
  bool tooLong = false;                  // gave up because `maxWork` was reached

  bool gaveUp() const { return tooDeep || tooLong; }
};

// Searches `length` bytes, with these settings in place of the state's own. `numRecords` is at least 1.
// `replaceMode` is the search of a replacement. `maxWork` limits the steps and the items of repeats together.
// Long texts need onDeepStack().
ReferenceFind referenceFind(const ulkRegExpState& state, const uint8_t* text, int32_t length, int32_t limit,
                            int32_t numRecords, bool replaceMode, int32_t format,
                            int64_t maxWork = INT64_MAX);

}  // namespace ulk_test
