// The bytes that may follow a repeat: their set, which the quantifier points to, and a FollowNote about it.
#pragma once

#include <algorithm>
#include <cstdint>

#include "regexp/program/program.h"
#include "regexp/program/state.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// Hands out the frames that no group uses, from the last one down.
class SpareFrames {
 public:
  explicit SpareFrames(const ulkRegExpState& state);
  bool any() const { return next_ > highestSerial_; }
  // The index of a frame, 0 when there is none left.
  int32_t take() { return any() ? next_-- : 0; }
  // The frames from that one up, if all of them are free.
  bool takeFrom(int32_t first) {
    if (highestSerial_ >= first) return false;
    next_ = std::min(next_, first - 1);
    return true;
  }

 private:
  int32_t highestSerial_;
  int32_t next_ = kNumFrames - 1;
};

// The frames that nothing is kept in, when the analysis is done.
struct FrameRange {
  int32_t first;
  int32_t count;
};
FrameRange unusedFrames(const ulkRegExpState& state);

// Makes the sets of repeats, as far as there are frames for them. Those of classes are made before.
void makeFollowSets(ulkRegExpState& state, SpareFrames& frames);

inline constexpr int32_t kMaxFollowSteps = 1 << 20;

}  // namespace ulk

#pragma GCC visibility pop
