// Byte sets that make searching fast, made when an expression is compiled.
//
// The quantifier of a repeated item points to the set of the bytes that may follow the repeat by `text`;
// `op3` is a packed FollowNote. The sets of classes are in class_sets.h.
#pragma once

#include <cstdint>

#include "regexp/program.h"
#include "regexp/state.h"

namespace ulk {

// Hands out the frames that no group uses, from the last one down.
class SpareFrames {
 public:
  explicit SpareFrames(const ulkRegExpState& state);
  bool any() const { return next_ > highestSerial_; }
  // The index of a frame, 0 when there is none left.
  int32_t take() { return any() ? next_-- : 0; }

 private:
  int32_t highestSerial_;
  int32_t next_ = kNumFrames - 1;
};

// Makes the sets of repeats, as far as there are frames for them. Those of classes are made before.
void makeFollowSets(ulkRegExpState& state, SpareFrames& frames);

// A quantifier's note about its follow set, packed into one operand.
class FollowNote {
 public:
  struct Facts {
    uint32_t options;  // that the set was made for
    int32_t steps;     // that going on at another byte costs
    bool entersGroup;  // such a try fails in a group, which leaves no surplus behind
    bool disjoint;     // no byte of the set begins one of the repeat's items
    bool atEnd;        // the text's end lets the program go on as well
  };

  static int32_t pack(const Facts& facts) {
    return facts.steps << 8 | static_cast<int32_t>(facts.options) << 3 | (facts.atEnd ? kAtEnd : 0) |
           (facts.entersGroup ? kEntersGroup : 0) | (facts.disjoint ? kDisjoint : 0);
  }

  explicit FollowNote(int32_t packed) : packed_(packed) {}
  uint32_t options() const { return static_cast<uint32_t>(packed_) >> 3 & 0x1F; }
  int32_t steps() const { return packed_ >> 8; }
  bool entersGroup() const { return packed_ & kEntersGroup; }
  bool disjoint() const { return packed_ & kDisjoint; }
  bool atEnd() const { return packed_ & kAtEnd; }

 private:
  static constexpr int32_t kDisjoint = 1;
  static constexpr int32_t kEntersGroup = 2;
  static constexpr int32_t kAtEnd = 4;

  int32_t packed_;
};
inline constexpr int32_t kMaxFollowSteps = 1 << 20;

void addAll(const ByteSet256& other, ByteSet256& set);
void addByte(int32_t byte, uint32_t options, ByteSet256& set);  // in both cases where letters match in either
void addShorthand(int32_t letter, uint32_t options, ByteSet256& set);

// The bytes that can begin what an item matches, as far as one byte can tell: from 0x80 on it usually cannot.
void addFirstBytes(const RxNode& item, uint32_t options, ByteSet256& set);

}  // namespace ulk
