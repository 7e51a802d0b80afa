// Making the byte sets that make searching fast: which bytes a class accepts, and which bytes can begin a match.
//
// An RX_CLASS node points to its set by `text`; `op3` tells the caseless bit that it was made for.
#pragma once

#include <cstdint>

#include "regexp/program.h"
#include "regexp/state.h"

namespace ulk {

// Hands out the frames that no group uses, from the last one down.
class SpareFrames {
 public:
  explicit SpareFrames(const ulkRegExpState& state);
  // The index of a frame, 0 when there is none left.
  int32_t take() { return next_ > highestSerial_ ? next_-- : 0; }

 private:
  int32_t highestSerial_;
  int32_t next_ = kNumFrames - 1;
};

// Makes the sets of all classes, as far as there are frames for them.
void makeClassSets(ulkRegExpState& state, SpareFrames& frames);

// The bytes that can begin what an item matches, as far as one byte can tell: from 0x80 on it usually cannot.
void addFirstBytes(const RxNode& item, uint32_t options, ByteSet256& set);

}  // namespace ulk
