// What is paid for the attempts of a search that are left out: at most how many steps they would take.
//
// An attempt's bound depends on how long the runs of bytes are that its repeats can take (step_bound.h). It
// is known beforehand for texts that are short, and for attempts that fail where a pair of bytes is not. Else
// the runs are measured, and where that does not do, the attempts counted that may not fail at once.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "regexp/analysis/step_bound.h"

#pragma GCC visibility push(hidden)

namespace ulk {

class AttemptBounds {
 public:
  void make(const ulkRegExpState& state);
  // The attempts that are left out, and none of whose tries takes more than so many bytes: below 0 those that
  // fail in the lookbehind that the program begins with.
  void limitBytes(const ulkRegExpState& state, int32_t most);
  // They may take more.
  void limitNoBytes();

  bool areKnown() const { return attempt_ < kNoBound || few_ < kNoBound; }
  // The bound for all attempts in [text, end). Where it is above the limit it may be too large.
  int32_t ofAll(const ulkRegExpState& state, const uint8_t* text, const uint8_t* end, int32_t limit) {
    if (end - text <= kShortText && shortSearch_ <= limit) return shortSearch_;
    return static_cast<int32_t>(std::min<int64_t>(boundAll(state, text, end, limit), INT32_MAX));
  }

 private:
  static constexpr ptrdiff_t kShortText = 256;

  void boundShortSearch();
  int64_t boundAll(const ulkRegExpState& state, const uint8_t* text, const uint8_t* end, int64_t limit);
  int64_t boundRuns(const ulkRegExpState& state, int32_t longest);
  bool measureRuns(const ulkRegExpState& state, const uint8_t* text, const uint8_t* end);
  void takeUsualRuns();
  int64_t measured(const ulkRegExpState& state, const uint8_t* text, const uint8_t* end, int64_t limit);

  int32_t shortSearch_;  // of all attempts in a short text, INT32_MAX if it is not below that
  // Of one attempt:
  int64_t few_;      // none of whose tries takes more bytes than it may
  int64_t inShort_;  // in a short text
  int64_t usual_;    // while no run is longer than is usual
  int64_t attempt_;  // while none is longer than
  Runs runs_;
};

}  // namespace ulk

#pragma GCC visibility pop
