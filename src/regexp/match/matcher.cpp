#include "regexp/match/matcher.h"

#include <array>
#include <cstddef>

#include "regexp/match/steps.h"
#include "regexp/text/bytes.h"

namespace ulk {

namespace {

// ---- The functions for the steps and for the kinds of choices

ULK_STEP stepNone(const uint8_t*, const RxNode*, MatchContext& m) { return fail(m); }
Outcome retryBottom(MatchContext&) { return Outcome::kNoMatch; }

}  // namespace

constinit const std::array<StepFunction, static_cast<size_t>(Step::kCount)> kSteps = [] {
  std::array<StepFunction, static_cast<size_t>(Step::kCount)> steps{};
  const auto set = [&](Step step, StepFunction function) { steps[static_cast<size_t>(step)] = function; };
  set(Step::kNone, stepNone);
  set(Step::kByte, stepByte);
  set(Step::kString, stepString);
  set(Step::kLetter, stepLetter);
  set(Step::kShorthand, stepShorthand);
  set(Step::kSet, stepSet);
  set(Step::kBackref, stepBackref);
  set(Step::kItem, stepItem);
  set(Step::kGreedyShorthand, stepGreedyShorthand);
  set(Step::kGreedySet, stepGreedySet);
  set(Step::kGreedyItem, stepGreedyItem);
  set(Step::kLazyItem, stepLazyItem);
  set(Step::kWordBoundary, stepWordBoundary);
  set(Step::kAssertion, stepAssertion);
  set(Step::kOptionalAssertion, stepOptionalAssertion);
  set(Step::kOpenPassed, stepOpenPassed);
  set(Step::kOpenPlain, stepOpenPlain);
  set(Step::kOpenCapture, stepOpenCapture);
  set(Step::kEndPlain, stepEndPlain);
  set(Step::kEndCapture, stepEndCapture);
  set(Step::kOpenQuantifiedPlain, stepOpenQuantifiedPlain);
  set(Step::kEndQuantifiedPlain, stepEndQuantifiedPlain);
  set(Step::kOpenGroup, stepOpenGroup);
  set(Step::kEndGroup, stepEndGroup);
  set(Step::kBar, stepBar);
  set(Step::kRunBar, stepRunBar);
  set(Step::kLookahead, stepLookahead);
  set(Step::kLookaheadItems, stepLookaheadItems);
  set(Step::kLookbehind, stepLookbehind);
  set(Step::kLookbehindItems, stepLookbehindItems);
  set(Step::kAtomic, stepAtomic);
  set(Step::kAtomicRepeat, stepAtomicRepeat);
  set(Step::kOptions, stepOptions);
  return steps;
}();

constinit const std::array<RetryFunction, static_cast<size_t>(ChoiceKind::kCount)> kRetries = [] {
  std::array<RetryFunction, static_cast<size_t>(ChoiceKind::kCount)> retries{};
  const auto set = [&](ChoiceKind kind, RetryFunction function) {
    retries[static_cast<size_t>(kind)] = function;
  };
  set(ChoiceKind::kBottom, retryBottom);
  set(ChoiceKind::kGreedyBytes, retryGreedyBytes);
  set(ChoiceKind::kGreedyChars, retryGreedyItems);
  set(ChoiceKind::kGreedySequences, retryGreedyItems);
  set(ChoiceKind::kGreedyBackref, retryGreedyItems);
  set(ChoiceKind::kLazy, retryLazy);
  set(ChoiceKind::kLazyCodePoint, retryLazyCodePoint);
  set(ChoiceKind::kLazyProperty, retryLazyProperty);
  set(ChoiceKind::kPlain, retryPlain);
  set(ChoiceKind::kPlainCapture, retryPlainCapture);
  set(ChoiceKind::kPlainEnter, retryPlainEnter);
  set(ChoiceKind::kAlternative, retryAlternative);
  set(ChoiceKind::kLazyLeave, retryLazyLeave);
  set(ChoiceKind::kLeft, retryLeft);
  set(ChoiceKind::kGaveUp, retryLeft);
  set(ChoiceKind::kOptions, retryOptions);
  set(ChoiceKind::kLookaround, retryLookaround);
  set(ChoiceKind::kCondition, retryCondition);
  set(ChoiceKind::kAtomic, retryAtomic);
  set(ChoiceKind::kAtomicLazy, retryAtomicLazy);
  set(ChoiceKind::kAtomicIteration, retryAtomicIteration);
  set(ChoiceKind::kSurplus, retrySurplus);
  return retries;
}();

namespace {

// ---- The memory for choices
//
// A search starts on a little; one that needs more goes on where there is enough for the default limit, if no
// more is left of its own limit, and else on as much as a thread can be expected to have.
//
// A step leaves one choice of 28 bytes at most, and a run's larger one is dropped when the run ends; runs
// nest at most as deep as groups do. So within the default limit the memory suffices; a search with a higher
// limit that comes to the end of it is out of budget.
constexpr size_t kDefault = size_t{kDefaultMatchLimit} * 28 + kMaxDepth * kLargestChoice + kSearchChoices;
constexpr size_t kDeep = size_t{800} << 10;

// Steps until the attempt is decided or there is no room.
ULK_INLINE Outcome run(Outcome outcome, [[maybe_unused]] MatchContext& m) {
#ifndef ULK_JUMPS
  for (;;) {
    if (outcome == Outcome::kGoOn) {
      outcome = takeStep(m.at, m.node, m);
    } else if (outcome == Outcome::kFail) {
      outcome = takeUpNewestChoice(m);
    } else {
      break;
    }
  }
#endif
  return outcome;
}

// Goes on with that much memory. It stays in the frame of this one function, so that the ordinary search
// never touches so much stack.
template <size_t kSize>
__attribute__((noinline)) Outcome goOnIn(MatchContext& m) {
  alignas(RunChoice) std::byte memory[kSize];
  m.choices.moveTo(memory, kSize);
  const Outcome outcome = run(goOn(m.at, m.node, m), m);
  if (outcome != Outcome::kOutOfChoices) return outcome;
  m.budget.exhaust();
  return run(fail(m), m);
}

// Goes on where there is room for more choices.
__attribute__((noinline)) Outcome goOnWithMoreRoom(MatchContext& m) {
  const Choices before = m.choices;
  const Outcome outcome = m.budget.left() <= kDefaultMatchLimit ? goOnIn<kDefault>(m) : goOnIn<kDeep>(m);
  m.choices = before;
  return outcome;
}

// What is left to do when an attempt has not simply failed.
ULK_INLINE bool finish(MatchContext& m, Outcome outcome) {
  if (outcome == Outcome::kOutOfChoices) outcome = goOnWithMoreRoom(m);
  m.choices.clear();
  m.runEnd = m.programEnd;
  m.run = kNoRun;
  return outcome == Outcome::kMatch;
}

}  // namespace

// An attempt that fails leaves the context as it was: no choices, and no run within the program's.
bool rxMatch(MatchContext& m, const uint8_t* at, const RxNode* first) {
  m.surplus.clear();
  const Outcome outcome = run(goOn(at, first, m), m);
  return outcome == Outcome::kNoMatch ? false : finish(m, outcome);
}

}  // namespace ulk
