// The matcher: one attempt to match the program at one place of the text.
//
// In: the program and its analysis, the text, the place, the options in force and the steps still allowed.
// Out: where the match ends and what the groups captured; in any case the options in force then, and what is
// left of the steps.
//
// The matcher is a backtracking interpreter of nodes. A step (steps.h) runs one node at one position: it goes
// on with another node, or fails, or ends the current run. One that has another choice leaves a record on a
// stack of its own (choices.h) before it goes on; when a later step fails, the newest choice is taken up
// again, by the function that stands beside the step that left it. So how much memory a search needs depends
// on the number of its steps alone.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "regexp/match/budget.h"
#include "regexp/match/choices.h"
#include "regexp/program/program.h"
#include "regexp/program/state.h"
#include "regexp/text/bytes.h"
#include "regexp/text/lengths.h"

#pragma GCC visibility push(hidden)

namespace ulk {

struct MatchContext;

enum class Outcome : int32_t {
  kMatch,
  kNoMatch,
  kOutOfChoices,  // there is no room for another choice
  kGoOn,          // at m.at, with m.node
  kFail,          // the newest choice is to be taken up
};

#if defined(__i386__)
#define ULK_IN_REGISTERS __attribute__((regparm(3)))
#define ULK_STEP __attribute__((regparm(2))) Outcome
#else
#define ULK_IN_REGISTERS
#define ULK_STEP Outcome
#endif
using StepFunction = ULK_STEP (*)(const uint8_t* at, const RxNode* node, MatchContext& m);
using RetryFunction = Outcome (*)(MatchContext& m);

inline constexpr uint32_t kNoRun = UINT32_MAX;

// Everything about one search call.
struct MatchContext {
  const uint8_t* textStart;
  const uint8_t* textEnd;
  ulkRegExpState* state;  // whose capture slot 0 is not the matcher's
  const RxNode* programEnd;
  bool nonEmpty;  // a match of length 0 is not acceptable

  const uint8_t* matchStart;  // of the attempt
  uint32_t options;           // in force, of kMatcherOptions; an attempt leaves them as it ends
  StepBudget budget;
  Surplus surplus;  // what the match length counts more than the distance

  // Where the attempt ended, or is to go on when there is room for choices again.
  const uint8_t* at;
  const RxNode* node;

  // What follows is the matcher's own.
  const RxNode* runEnd;  // reaching it ends the current run
  uint32_t run;          // where the current run's choice lies, kNoRun for the whole program's run
  Choices choices;
  const StepFunction* steps;  // found here without a base address
  const RetryFunction* retries;
  const uint8_t* byteSets;

  const RxNode* nodes() const { return state->nodes(); }
  uint32_t offsetOf(const uint8_t* place) const { return static_cast<uint32_t>(place - textStart); }
  int32_t indexOf(const RxNode* of) const { return static_cast<int32_t>(of - nodes()); }
  bool isQuantified(const RxNode* next) const { return next != programEnd && isQuantifier(*next); }
  void setOptions(int32_t word) { options = static_cast<uint32_t>(word) & kMatcherOptions; }

  // Below 0 behind an item that the text's end cuts.
  int32_t remaining(const uint8_t* from) const { return static_cast<int32_t>(textEnd - from); }

  // The length of the match up to there, as reported. It is not always the distance from its start: a lazy
  // repeat of one byte that finally fails leaves its bytes counted. What is counted beyond the distance is
  // the surplus.
  int32_t lengthTo(const uint8_t* end) const { return surplus.lengthOver(end - matchStart); }
};

// The stack of choices that every search has; one that needs more finds it by itself.
inline constexpr size_t kSearchChoices = 2048;

// The functions for the steps and for the kinds of choices.
extern const std::array<StepFunction, static_cast<size_t>(Step::kCount)> kSteps;
extern const std::array<RetryFunction, static_cast<size_t>(ChoiceKind::kCount)> kRetries;

// Prepares a context for attempts, whose text and options the caller sets. `memory` has kSearchChoices bytes.
inline void prepareMatcher(MatchContext& m, ulkRegExpState& state, std::byte* memory) {
  m.state = &state;
  m.programEnd = m.nodes() + state.numNodes;
  m.nonEmpty = false;
  m.runEnd = m.programEnd;
  m.run = kNoRun;
  m.choices.use(memory, kSearchChoices);
  m.steps = kSteps.data();
  m.retries = kRetries.data();
  m.byteSets = kByteSets.data();
}

// Runs the program from `first` on at a place. True for a match, which ends at m.at.
bool rxMatch(MatchContext& m, const uint8_t* at, const RxNode* first);

// The same for all of the program, which has a head that ends there (head.cpp), at m.matchStart. No more
// steps than that are ever taken in a head; so many must be left.
bool rxMatchHead(MatchContext& m, int32_t headEnd);

}  // namespace ulk

#pragma GCC visibility pop
