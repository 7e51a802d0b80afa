// Byte sets that make searching fast, made when an expression is compiled.
//
// An RX_CLASS node points to the set of the single bytes that it accepts by `text`; `op3` tells the caseless
// bit that it was made for. The quantifier of a repeated item points to the set of the bytes that may follow
// the repeat by `text`; `op3` is a packed FollowNote.
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

// Make the sets of all classes and repeats, as far as there are frames for them.
void makeClassSets(ulkRegExpState& state, SpareFrames& frames);
void makeFollowSets(ulkRegExpState& state, SpareFrames& frames);

// A quantifier's note about its follow set.
struct FollowNote {
  uint32_t options;  // that the set was made for
  int32_t steps;     // that going on at another byte costs
  bool entersGroup;  // such a try fails in a group, which leaves no surplus behind
  bool disjoint;     // no byte of the set begins one of the repeat's items
  bool atEnd;        // the text's end lets the program go on as well

  int32_t pack() const {
    return steps << 8 | static_cast<int32_t>(options) << 3 | (atEnd ? 4 : 0) | (entersGroup ? 2 : 0) |
           (disjoint ? 1 : 0);
  }
  static FollowNote unpack(int32_t note) {
    return {static_cast<uint32_t>(note) >> 3 & 0x1F, note >> 8, (note & 2) != 0, (note & 1) != 0,
            (note & 4) != 0};
  }
};
inline constexpr int32_t kMaxFollowSteps = 1 << 20;

void addAll(const ByteSet256& other, ByteSet256& set);
void addShorthand(int32_t letter, uint32_t options, ByteSet256& set);

// The bytes that can begin what an item matches, as far as one byte can tell: from 0x80 on it usually cannot.
void addFirstBytes(const RxNode& item, uint32_t options, ByteSet256& set);

}  // namespace ulk
