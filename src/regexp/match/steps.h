// Steps and retries: the functions that run nodes and take up choices.
//
// Each ends by going on with the next one, or by failing, as its last act. Where the compiler makes jumps of
// such calls (ULK_JUMPS, src/CMakeLists.txt), they are made from here, and what is in registers stays there.
// No local variable's address may leave such a function then, and no more may be handed on than a step's
// three arguments, or the call is none. Elsewhere the functions return and the loop in matcher.cpp goes on.
#pragma once

#include "kernels/vec16.h"
#include "regexp/match/matcher.h"

// The linker is told that all of this stays within the library: calls then need no table to find each other.
#pragma GCC visibility push(hidden)

namespace ulk {

// ---- How a step ends

// The run has matched (subruns.cpp),
ULK_STEP runMatched(const uint8_t* at, const RxNode* node, MatchContext& m);
// unless it has come to its end without having matched anything, and that is not acceptable.
ULK_STEP runEnded(const uint8_t* at, const RxNode* node, MatchContext& m);

ULK_INLINE Outcome takeUpNewestChoice(MatchContext& m) {
  return m.retries[static_cast<size_t>(m.choices.tag().kind())](m);
}

ULK_INLINE Outcome fail([[maybe_unused]] MatchContext& m) {
#ifdef ULK_JUMPS
  return takeUpNewestChoice(m);
#else
  return Outcome::kFail;
#endif
}

// Runs the node.
ULK_INLINE Outcome takeStep(const uint8_t* at, const RxNode* node, MatchContext& m) {
  if (m.budget.isExhausted()) return fail(m);
  if (node == m.runEnd) return runEnded(at, node, m);
  if (at > m.textEnd) return fail(m);
  m.budget.payStep();
  return m.steps[static_cast<size_t>(stepOf(*node))](at, node, m);
}

// Goes on there.
ULK_INLINE Outcome goOn(const uint8_t* at, const RxNode* node, MatchContext& m) {
#ifdef ULK_JUMPS
  return takeStep(at, node, m);
#else
  m.at = at;
  m.node = node;
  return Outcome::kGoOn;
#endif
}

// The same after a choice has been left.
ULK_INLINE Outcome goOnWithChoice(const uint8_t* at, const RxNode* node, MatchContext& m) {
  if (m.choices.hasRoom() || m.budget.isExhausted()) return goOn(at, node, m);
  m.at = at;
  m.node = node;
  return Outcome::kOutOfChoices;
}

// Leaves a choice for this place.
template <class Record>
ULK_INLINE Record& push(MatchContext& m, ChoiceKind kind, const uint8_t* at, const RxNode* node) {
  Record& record = m.choices.push<Record>();
  record.at = m.offsetOf(at);
  record.tag = {kind, m.indexOf(node)};
  return record;
}

ULK_INLINE const uint8_t* placeOf(const MatchContext& m, uint32_t offset) { return m.textStart + offset; }

// ---- All of them

// items.cpp
ULK_STEP stepByte(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepString(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepLetter(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepShorthand(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepSet(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepBackref(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepItem(const uint8_t* at, const RxNode* node, MatchContext& m);

// assertions.cpp
ULK_STEP stepWordBoundary(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepAssertion(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepOptionalAssertion(const uint8_t* at, const RxNode* node, MatchContext& m);

// repeats.cpp
ULK_STEP stepGreedyShorthand(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepGreedySet(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepGreedyItem(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepLazyItem(const uint8_t* at, const RxNode* node, MatchContext& m);
Outcome retryGreedyBytes(MatchContext& m);
Outcome retryGreedyItems(MatchContext& m);
Outcome retryLazy(MatchContext& m);
Outcome retryLazyCodePoint(MatchContext& m);
Outcome retryLazyProperty(MatchContext& m);

// plain_groups.cpp
ULK_STEP stepOpenPassed(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepOpenPlain(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepOpenCapture(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepOpenQuantifiedPlain(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepEndQuantifiedPlain(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepEndPlain(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepEndCapture(const uint8_t* at, const RxNode* node, MatchContext& m);
Outcome retryPlain(MatchContext& m);
Outcome retryPlainCapture(MatchContext& m);
Outcome retryPlainEnter(MatchContext& m);

// groups.cpp
ULK_STEP stepOpenGroup(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepEndGroup(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepBar(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepRunBar(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepOptions(const uint8_t* at, const RxNode* node, MatchContext& m);
Outcome retryAlternative(MatchContext& m);
Outcome retryLazyLeave(MatchContext& m);
Outcome retryLeft(MatchContext& m);
Outcome retryOptions(MatchContext& m);
// Take a branch of the conditional at `node`, whose choice is the newest one.
ULK_STEP conditionHolds(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP conditionFails(const uint8_t* at, const RxNode* node, MatchContext& m);

// subruns.cpp
ULK_STEP stepLookahead(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepLookaheadItems(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepLookbehind(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepLookbehindItems(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepAtomic(const uint8_t* at, const RxNode* node, MatchContext& m);
ULK_STEP stepAtomicRepeat(const uint8_t* at, const RxNode* node, MatchContext& m);
// Runs the lookaround that is the condition of the conditional whose choice is the newest one.
ULK_STEP runCondition(const uint8_t* at, const RxNode* lookaround, MatchContext& m);
Outcome retryLookaround(MatchContext& m);
Outcome retryCondition(MatchContext& m);
Outcome retryAtomic(MatchContext& m);
Outcome retryAtomicLazy(MatchContext& m);
Outcome retryAtomicIteration(MatchContext& m);
Outcome retrySurplus(MatchContext& m);

}  // namespace ulk

#pragma GCC visibility pop
