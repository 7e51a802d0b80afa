// The matcher: a backtracking interpreter of the node program.
//
// A step runs one node at the current position. It either moves on, or fails, or ends the current run. A step
// that has another choice leaves a record on a stack of its own (choices.h) before it moves on; when a later
// step fails, the newest choice is taken up again, by the function that stands beside the step that left it.
// The stack holds small records instead of call frames, so how much memory a search needs depends on the
// number of steps alone, not on the compiler.
//
// Lookarounds, atomic groups and lookaround conditions match their bodies in runs of their own (subrun.cpp):
// a run ends as soon as the program reaches `endNode` or a bar outside positive groups, and its remaining
// choices are dropped.
#pragma once

#include <cstdint>

#include "regexp/match/choices.h"
#include "regexp/program/program.h"
#include "regexp/program/state.h"
#include "regexp/text/lengths.h"

namespace ulk {

// What a step or a retry leads to.
enum class Next {
  kGoOn,     // run the node at m.node
  kFail,     // take up the newest choice
  kMatched,  // the current run has matched
};

inline constexpr uint32_t kNoRun = UINT32_MAX;

// Everything about one search call.
struct MatchContext {
  const uint8_t* at;    // position of the next step
  int32_t node;         // node of the next step
  int32_t endNode;      // reaching it ends the current run
  uint32_t run;         // where the current run's choice lies, kNoRun for the whole program's run
  uint32_t options;     // in force, of kMatcherOptions
  int32_t budget;       // node steps still allowed, -1 when exhausted
  Surplus surplus;      // see matchLength
  bool nonEmpty;        // a match of length 0 is not acceptable
  int32_t numCaptures;  // slot 0 included
  int32_t numNodes;
  const uint8_t* textStart;  // for ^, \A, \b and lookbehind
  const uint8_t* textEnd;
  const uint8_t* matchStart;
  const RxNode* nodes;
  CaptureSlot* captures;
  WorkFrame* frames;

  Choices choices;

  // Below 0 behind an item that the text's end cuts.
  int32_t remaining() const { return static_cast<int32_t>(textEnd - at); }
  uint32_t offset() const { return static_cast<uint32_t>(at - textStart); }
  uint32_t offsetOf(const uint8_t* place) const { return static_cast<uint32_t>(place - textStart); }
  void moveTo(uint32_t offset) { at = textStart + offset; }
  void setOptions(int32_t word) { options = static_cast<uint32_t>(word) & kMatcherOptions; }

  // The length of the match so far, as reported. It is not always the distance from its start: a lazy repeat
  // of one byte that finally fails leaves its bytes counted. What is counted beyond the distance is the
  // surplus.
  int32_t matchLength() const { return surplus.lengthOver(at - matchStart); }

  // Leaves a choice for the step at the present node and position.
  template <class Record>
  Record& push(ChoiceKind kind) {
    Record& record = choices.push<Record>();
    record.at = offset();
    record.tag = {kind, node};
    return record;
  }

  int32_t indexOf(const RxNode* of) const { return static_cast<int32_t>(of - nodes); }
  bool hasQuantifier(int32_t index) const { return index < numNodes && isQuantifier(nodes[index]); }
};

// Runs the program from m.node at m.at. True for a match: m.at and m.surplus tell its length, the capture
// slots hold the groups. The caller sets up matchStart, node, at, surplus 0, run kNoRun and the options.
bool rxMatch(MatchContext& m);

// Goes on at `node`, consuming nothing.
inline Next goOn(MatchContext& m, int32_t node) {
  m.node = node;
  return Next::kGoOn;
}

// repeats.cpp. `item` is the repeated node, `quantifier` the node after it (or after a class's members).
Next stepRepeat(MatchContext& m, int32_t item, int32_t quantifier);
Next retryGreedy(MatchContext& m);
Next retryLazy(MatchContext& m);
Next retryLazyCodePoint(MatchContext& m);
Next retryLazyProperty(MatchContext& m);

// groups.cpp
Next stepGroupOpen(MatchContext& m);
Next stepGroupEnd(MatchContext& m);
Next stepBar(MatchContext& m);
Next retryPlain(MatchContext& m);
Next retryPlainCapture(MatchContext& m);
Next retryPlainEnter(MatchContext& m);
Next retryAlternative(MatchContext& m);
Next retryLazyLeave(MatchContext& m);
Next retryLeft(MatchContext& m);
Next retryOptions(MatchContext& m);
// Takes the branch of the conditional whose choice is the newest one.
Next branch(MatchContext& m, bool conditionHolds);

// subrun.cpp
Next stepLookahead(MatchContext& m);
Next stepLookbehind(MatchContext& m);
Next stepCondition(MatchContext& m, int32_t lookaround);
Next stepAtomic(MatchContext& m);
Next leaveRun(MatchContext& m);
Next retryLookaround(MatchContext& m);
Next retryCondition(MatchContext& m);
Next retryAtomic(MatchContext& m);
Next retryAtomicLazy(MatchContext& m);
Next retryAtomicIteration(MatchContext& m);
Next retrySurplus(MatchContext& m);

}  // namespace ulk
