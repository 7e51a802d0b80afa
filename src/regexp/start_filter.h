// Which start positions are worth an attempt.
//
// An attempt whose first items fail on the byte at the position costs a number of steps that the program
// alone decides. Such positions need not be tried: they are looked for by fast scans and paid for from the
// budget, so that neither a result nor an exhausted match limit changes. The filter is made when the
// expression is compiled and kept in its state.
#pragma once

#include <cstdint>

#include "regexp/byte_sets.h"
#include "regexp/follow.h"
#include "regexp/matcher.h"
#include "regexp/state.h"

namespace ulk {

// Makes what searching needs besides the program; the last step of every compile.
void prepareSearch(ulkRegExpState& state);

inline const StartFilter& startFilterOf(const ulkRegExpState& state) { return state.frames[0].start; }

// Ways to begin: the node that the first one begins with, and the bar before the second one.
struct Alternatives {
  int32_t first;
  const RxNode* firstBar;  // null if there is no second one
};

// Goes over the start positions of one search.
class Starts {
 public:
  Starts(MatchContext& m, const ulkRegExpState& state);

  // The first position from `at` on that needs an attempt, at most the text's end; pays for those before it.
  // Where the budget does not suffice, it is exhausted and the position returned does not matter.
  const uint8_t* next(const uint8_t* at) {
    if (at < attemptsEnd_ || filter_.kind == StartKind::kAny || filter_.options != m_.options) return at;
    return skip(at);
  }

 private:
  const uint8_t* skip(const uint8_t* at);
  const uint8_t* characterAfter(const uint8_t* at) const;
  int32_t find(const uint8_t* at, int32_t length) const;
  const uint8_t* asciiEnd(const uint8_t* at);
  int32_t passCharacters(const uint8_t*& at, const uint8_t* end);
  bool lacksLiterals(const uint8_t* at) const;
  int32_t stepsToMissingItem(const uint8_t* at) const;
  int32_t hopelessSteps(const uint8_t* at) const;
  const uint8_t* passRun(const uint8_t* at);
  const uint8_t* passBounded(const uint8_t* at, const uint8_t* end, const Follow& follow);
  const uint8_t* passOutsideSet(const uint8_t* at, const uint8_t* end);
  const uint8_t* passNonBoundaries(const uint8_t* at, const uint8_t* end);
  bool passFar(const uint8_t*& at, const uint8_t* end);
  const uint8_t* payForAll(const uint8_t* at, const uint8_t* end);
  void pay(int64_t steps);

  MatchContext& m_;
  const ulkRegExpState& state_;
  const StartFilter& filter_;
  const ByteSet256& set_;
  const Alternatives ways_;
  const uint8_t* asciiEnd_;     // of the ASCII text that was looked at last
  const uint8_t* runEnd_;       // of the run that was looked at last
  const uint8_t* attemptsEnd_;  // all positions before it need attempts
};

}  // namespace ulk
