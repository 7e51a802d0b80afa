// The matcher: a backtracking interpreter of the node program.
//
// A step runs one node at the current position. It either moves on, or fails, or ends the current run. A step
// that has another choice leaves a Choice on a stack of its own before it moves on; when a later step fails,
// the newest choice is taken up again, by the function that stands beside the step that left it. The stack
// holds small records instead of call frames, so how much memory a search needs depends on the number of
// steps alone, not on the compiler.
//
// Lookarounds, atomic groups and lookaround conditions match their bodies in runs of their own (subrun.cpp):
// a run ends as soon as the program reaches `endNode` or a bar outside positive groups, and its remaining
// choices are dropped.
#pragma once

#include <cstdint>

#include "regexp/program.h"
#include "regexp/state.h"

namespace ulk {

// What a step or a retry leads to.
enum class Next {
  kGoOn,     // run the node at m.node
  kFail,     // take up the newest choice
  kMatched,  // the current run has matched
};

enum class ChoiceKind : uint8_t {
  kGreedyBytes,      // repeats.cpp: give back one byte
  kGreedyChars,      //   give back one character
  kGreedySequences,  //   give back one extended sequence
  kGreedyBackref,    //   give back one repetition of the reference
  kLazy,             //   take one more item
  kLazyCodePoint,    //   decide about the character at the position
  kLazyProperty,     //   take the character at the position, whatever it is
  kPlain,            // groups.cpp: try the plain group's next alternative
  kAlternative,      //   try the group's next alternative
  kLazyLeave,        //   enter the body after all
  kLeft,             //   nothing left to try: put the group back as it was
  kOptions,          //   put the options back
  kLookaround,       // subrun.cpp: try the lookaround's next alternative
  kCondition,        //   the condition does not hold
  kAtomic,           //   try the atomic group's next alternative
  kAtomicLazy,       //   run one iteration after all
  kAtomicIteration,  //   go on without this iteration
};

// A place to come back to. Positions are offsets from the text start, so that a record has the same size
// everywhere.
struct Choice {
  // A greedy repeat holds the position at its present count (`at`) and the node to go on with (`node`).
  struct Greedy {
    int32_t startAt;     // where the first item begins
    int32_t itemLength;  // of one repetition of a back reference
    int32_t spare;       // items above the minimum
  };
  struct Lazy {
    int32_t count;  // items taken so far
    int32_t most;   // that may be taken
  };
  // What a group step found and a failure puts back.
  struct Group {
    int32_t alternative;  // first node of the alternative that is running
    int32_t minLeft;
    int32_t maxLeft;
    int32_t remainingAtIteration;
    int32_t iterationLength;
    int32_t captureAt;
    int32_t captureLength;  // -1: unset
  };
  struct Plain {
    int32_t bar;  // the bar or open node before the alternative that is running
    int32_t remainingAtIteration;
    int32_t captureAt;
    int32_t captureLength;  // -1: unset
  };
  struct Run {
    int32_t alternative;
    int32_t endNode;   // of the run around this one
    int32_t outerRun;  // and the index of its choice
    int32_t surplus;   // when the run began
    int32_t bodyAt;    // where each alternative starts
    int32_t minLeft;   // iterations of an atomic group
    int32_t maxLeft;
  };

  ChoiceKind kind;
  uint8_t options;  // when the step began
  bool inBody;      // of a group's frame
  bool further;     // left by a group-end step for a further iteration
  int32_t at;       // where the step began; for repeats the present position
  int32_t node;     // the step's node
  union {
    Greedy greedy;
    Lazy lazy;
    Plain plain;
    Group group;
    Run run;
  };
};
static_assert(sizeof(Choice) == 40);

inline constexpr int32_t kNoRun = -1;

// Everything about one search call.
struct MatchContext {
  const uint8_t* at;    // position of the next step
  int32_t node;         // node of the next step
  int32_t endNode;      // reaching it ends the current run
  int32_t run;          // index of the current run's choice, kNoRun for the whole program's run
  uint32_t options;     // in force
  int32_t budget;       // node steps still allowed, -1 when exhausted
  int32_t surplus;      // see matchLength
  bool nonEmpty;        // a match of length 0 is not acceptable
  int32_t numCaptures;  // slot 0 included
  int32_t numNodes;
  const uint8_t* textStart;  // for ^, \A, \b and lookbehind
  const uint8_t* textEnd;
  const uint8_t* matchStart;
  const RxNode* nodes;
  CaptureSlot* captures;
  WorkFrame* frames;

  Choice* choices;  // the stack, oldest first
  int32_t numChoices;
  int32_t maxChoices;

  int32_t remaining() const { return static_cast<int32_t>(textEnd - at); }
  int32_t offset() const { return static_cast<int32_t>(at - textStart); }
  void moveTo(int32_t offset) { at = textStart + offset; }

  // The length of the match so far, as reported. It is not always the distance from its start: a lazy repeat
  // of one byte that finally fails leaves its bytes counted. What is counted beyond the distance is the
  // surplus.
  int32_t matchLength() const { return static_cast<int32_t>(at - matchStart) + surplus; }

  Choice& top() { return choices[numChoices - 1]; }
  void pop() { --numChoices; }
  Choice& push(ChoiceKind kind) {
    Choice& choice = choices[numChoices++];
    choice.kind = kind;
    choice.at = offset();
    choice.node = node;
    return choice;
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
Next retryGreedy(MatchContext& m, Choice& choice);
Next retryLazy(MatchContext& m, Choice& choice);
Next retryLazyCodePoint(MatchContext& m, Choice& choice);
Next retryLazyProperty(MatchContext& m, Choice& choice);

// group_links.cpp
// Links every bar to the next one of its group, every open node to the group's first bar, and the ends of
// plain groups to their open nodes, all by `text`. Part of every compile.
void linkGroups(ulkRegExpState& state);

// groups.cpp
Next stepGroupOpen(MatchContext& m);
Next stepGroupEnd(MatchContext& m);
Next stepBar(MatchContext& m);
Next retryPlain(MatchContext& m, Choice& choice);
Next retryAlternative(MatchContext& m, Choice& choice);
Next retryLazyLeave(MatchContext& m, Choice& choice);
Next retryLeft(MatchContext& m, Choice& choice);
Next retryOptions(MatchContext& m, Choice& choice);
Next branch(MatchContext& m, Choice& choice, bool conditionHolds);

// The next bar of the group with this serial in nodes[from, end), -1 if there is none.
int32_t findBar(const RxNode* nodes, int32_t from, int32_t end, int32_t serial);

// The bar that a bar or an open node is linked to, null if there is none.
inline const RxNode* nextBar(const RxNode& node) { return static_cast<const RxNode*>(node.text); }

// subrun.cpp
Next stepLookahead(MatchContext& m);
Next stepLookbehind(MatchContext& m);
Next stepCondition(MatchContext& m, int32_t lookaround);
Next stepAtomic(MatchContext& m);
Next leaveRun(MatchContext& m);
Next retryLookaround(MatchContext& m, Choice& choice);
Next retryCondition(MatchContext& m, Choice& choice);
Next retryAtomic(MatchContext& m, Choice& choice);
Next retryAtomicLazy(MatchContext& m, Choice& choice);
Next retryAtomicIteration(MatchContext& m, Choice& choice);

}  // namespace ulk
