// What can come next: the bytes that let the program go on from a node, and what it costs to try without
// them.
#pragma once

#include <cstdint>

#include "regexp/program/program.h"
#include "regexp/program/state.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// How far the rest of the program is followed. Every repeat asks, so without a bound compiling were
// quadratic.
inline constexpr int32_t kMaxRestSteps = 64;

// Follows the program to the items that must match next. Where every way of going on begins with an item that
// a single byte decides about, an attempt at any other byte fails after a number of steps that the program
// alone decides.
class FirstBytes {
 public:
  explicit FirstBytes(const ulkRegExpState& state) : nodes_(state.nodes()), numNodes_(state.numNodes) {}

  // From the start of the program, with all its top-level alternatives, the second of which begins behind
  // `firstBar` if that is not null. False when no byte decides.
  bool ofProgram(uint32_t options, const RxNode* firstBar);

  // From a node on, out of the groups that it is in as far as they are not repeated. False when no byte
  // decides. `afterWord`: the byte before is known to be a word byte.
  bool ofRest(int32_t node, uint32_t options, bool afterWord);

  ByteSet256 set{};
  bool atEnd = false;         // the text's end lets the program go on as well
  int32_t steps = 0;          // that a failing attempt costs
  int32_t boundarySteps = 0;  // that it costs where a \b fails that the program begins with; 0 without one
  int32_t soleItem = -1;      // the one item that must come first, -1 where there are several
  uint32_t itemOptions = 0;   // in force at that item
  bool boundsSteps = false;   // it may cost less, as it may fail in a lookaround before that item
  bool entersGroup = false;   // it fails in a group, which leaves no surplus behind
  uint32_t exitOptions = 0;   // in force when an attempt of the whole program has failed

 private:
  enum class Way { kDecided, kUndecided, kOpen };
  enum class Before { kStart, kWordByte, kUnknown };

  bool alternatives(int32_t first, const RxNode* bar, int32_t end, uint32_t options);
  Way sequence(int32_t& node, int32_t end, uint32_t& options);
  int32_t groupEnd(int32_t node) const;
  bool passLookaround(int32_t open);
  Way assertion(int32_t kind);
  bool group(int32_t open, uint32_t options);
  void noteItem(int32_t node, uint32_t options);
  void leaveOptions(uint32_t options) {
    if (depth_ == 0) exitOptions = options;
  }

  const RxNode* nodes_;
  int32_t numNodes_;
  int32_t maxSteps_ = INT32_MAX;
  int32_t depth_ = 0;  // of groups, which put the options back when they fail
  int32_t numItems_ = 0;
  Before before_ = Before::kUnknown;
};

// Adds the bytes that can begin what an item matches; any byte for an item or a shorthand that is not known
// here.
void addFirstBytes(const RxNode& item, uint32_t options, ByteSet256& set);

// Adds the bytes of everything that an item matches: all from 0x80 on where that can be a character of
// several bytes.
void addAllBytes(const RxNode& item, uint32_t options, ByteSet256& set);

}  // namespace ulk

#pragma GCC visibility pop
