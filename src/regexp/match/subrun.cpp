// Lookaheads, lookbehinds, lookaround conditions and atomic groups: their bodies match in runs of their own.
//
// A run ends at the node where it is told to, or at a bar of its own group. When it has matched, the choices
// that its body has left are dropped, so the body is never entered again; when it has failed, the body's next
// alternative is run from the same place.
#include <algorithm>

#include "regexp/match/matcher.h"
#include "regexp/text/utf8.h"

namespace ulk {

namespace {

// Starts a run of the group's body at `bodyAt`. The choice keeps the place of the step itself.
RunChoice& startRun(MatchContext& m, ChoiceKind kind, int32_t first, int32_t endNode, const uint8_t* bodyAt) {
  const uint32_t run = m.choices.used();
  auto& choice = m.push<RunChoice>(kind);
  choice.options = m.options;
  choice.bar = first - 1;
  choice.endNode = m.endNode;
  choice.outerRun = m.run;
  choice.surplus = m.surplus;
  choice.bodyAt = m.offsetOf(bodyAt);
  m.run = run;
  m.endNode = endNode;
  m.surplus += m.at - bodyAt;  // going back does not shorten the match
  m.at = bodyAt;
  m.node = first;
  return choice;
}

// Ends the current run: position, match length and options are those of the step again.
RunChoice endRun(MatchContext& m) {
  const RunChoice choice = m.choices.at<RunChoice>(m.run);
  m.choices.cutBack(m.run);
  m.endNode = choice.endNode;
  m.run = choice.outerRun;
  m.surplus = choice.surplus;
  m.options = choice.options;
  m.node = choice.tag.node();
  m.moveTo(choice.at);
  return choice;
}

// Runs the next alternative of the body. False when there is none.
bool startNextAlternative(MatchContext& m) {
  auto& choice = m.choices.at<RunChoice>(m.run);
  const RxNode* const bar = nextBar(m.nodes[choice.bar]);
  if (!bar) return false;
  choice.bar = m.indexOf(bar);
  m.setOptions(bar->op2);
  m.surplus = choice.surplus;
  m.surplus += int64_t{choice.at} - choice.bodyAt;
  m.moveTo(choice.bodyAt);
  m.node = choice.bar + 1;
  return true;
}

Next startLookaround(MatchContext& m, const uint8_t* bodyAt) {
  const int32_t end = m.node + m.nodes[m.node].op2 + 1;
  startRun(m, ChoiceKind::kLookaround, m.node + 1, end, bodyAt);
  return Next::kGoOn;
}

bool isNegative(const RxNode& lookaround) {
  return lookaround.code == RX_NLOOKAHEAD || lookaround.code == RX_NLOOKBEHIND;
}

// Goes on after the lookaround at m.node, which holds or not.
Next assertLookaround(MatchContext& m, bool holds) {
  return holds ? goOn(m, m.node + m.nodes[m.node].op2 + 2) : Next::kFail;
}

// The start of the character that ends at or reaches beyond `at`, when characters are decoded from the text
// start on.
const uint8_t* characterBefore(const MatchContext& m, const uint8_t* at) {
  const uint8_t* lead = at - 1;
  while (lead > m.textStart && at - lead < 6 && isContinuation(*lead)) --lead;
  return lead + decodeUtf8(lead).length >= at ? lead : at - 1;
}

// The place `width` characters back, or as many bytes back where there are fewer characters.
const uint8_t* lookbehindStart(const MatchContext& m, int32_t width) {
  const uint8_t* at = m.at;
  for (int32_t i = 0; i < width; ++i) {
    if (at == m.textStart) return m.at - width;
    at = characterBefore(m, at);
  }
  return at;
}

// An atomic group's iterations still required and allowed; both 1 without a quantifier.
struct Atomic {
  int32_t end;   // index of the RX_END
  int32_t next;  // node after the group and its quantifier
  bool lazy;
};

Atomic atomicAt(const MatchContext& m, int32_t openNode) {
  const int32_t end = openNode + m.nodes[openNode].op2 + 1;
  if (!m.hasQuantifier(end + 1)) return {end, end + 1, false};
  return {end, end + 2, m.nodes[end + 1].code == RX_REPEAT_LAZY};
}

// Runs one iteration, or goes on after the group when there may be no more.
Next greedyIteration(MatchContext& m, int32_t minLeft, int32_t maxLeft) {
  const Atomic group = atomicAt(m, m.node);
  if (maxLeft < 1) return goOn(m, group.next);
  RunChoice& choice = startRun(m, ChoiceKind::kAtomic, m.node + 1, group.end, m.at);
  choice.minLeft = minLeft;
  choice.maxLeft = maxLeft;
  return Next::kGoOn;
}

Next lazyIteration(MatchContext& m, int32_t minLeft, int32_t maxLeft) {
  return maxLeft < 1 ? Next::kFail : greedyIteration(m, minLeft, maxLeft);
}

// Goes on after the group first if it has been matched often enough.
Next lazyTurn(MatchContext& m, int32_t minLeft, int32_t maxLeft) {
  if (minLeft > 0) return lazyIteration(m, minLeft, maxLeft);
  auto& choice = m.push<AtomicChoice>(ChoiceKind::kAtomicLazy);
  choice.minLeft = minLeft;
  choice.maxLeft = maxLeft;
  return goOn(m, atomicAt(m, m.node).next);
}

// Goes on behind what an iteration has consumed, which may be said to be more than there is text.
void passConsumed(MatchContext& m, int32_t consumed) {
  if (!staysInText(m.at, consumed, m.textEnd)) {
    auto& choice = m.choices.push<SurplusChoice>();
    choice.surplus = m.surplus;
    choice.tag = {ChoiceKind::kSurplus, 0};
  }
  m.at = endOfLength(m.at, consumed, m.textEnd, m.surplus);
}

// An iteration has matched up to m.at. What it consumed is read from the match length, and never less than
// nothing.
Next leaveAtomic(MatchContext& m) {
  const int32_t length = m.matchLength();
  const RunChoice choice = endRun(m);
  const int32_t consumed = saturated(int64_t{length} - m.matchLength());
  const Atomic group = atomicAt(m, m.node);
  if (consumed < 1) {
    // A lazy group's empty iteration makes the run around it match as it stands.
    return group.lazy ? Next::kMatched : goOn(m, group.next);
  }
  if (!group.lazy && choice.minLeft < 1) m.push<PlaceChoice>(ChoiceKind::kAtomicIteration);
  passConsumed(m, consumed);
  return group.lazy ? lazyTurn(m, choice.minLeft - 1, choice.maxLeft - 1)
                    : greedyIteration(m, choice.minLeft - 1, choice.maxLeft - 1);
}

}  // namespace

Next stepLookahead(MatchContext& m) { return startLookaround(m, m.at); }

Next stepLookbehind(MatchContext& m) {
  const RxNode& open = m.nodes[m.node];
  if (int64_t{m.offset()} < open.op3) return assertLookaround(m, isNegative(open));
  return startLookaround(m, lookbehindStart(m, open.op3));
}

// Runs the lookaround that is the condition of the conditional whose choice is the newest one.
Next stepCondition(MatchContext& m, int32_t lookaround) {
  m.node = lookaround;
  startRun(m, ChoiceKind::kCondition, lookaround, nextItem(m.nodes, lookaround), m.at);
  return Next::kGoOn;
}

Next stepAtomic(MatchContext& m) {
  const Atomic group = atomicAt(m, m.node);
  const bool quantified = group.next == group.end + 2;
  const int32_t least = quantified ? m.nodes[group.end + 1].op1 : 1;
  const int32_t most = quantified ? m.nodes[group.end + 1].op2 : 1;
  return group.lazy ? lazyTurn(m, least, most) : greedyIteration(m, least, most);
}

// The current run has matched.
Next leaveRun(MatchContext& m) {
  switch (m.choices.at<RunChoice>(m.run).tag.kind()) {
    case ChoiceKind::kAtomic:
      return leaveAtomic(m);
    case ChoiceKind::kCondition:
      endRun(m);
      return branch(m, true);
    default:
      endRun(m);
      return assertLookaround(m, !isNegative(m.nodes[m.node]));
  }
}

Next retryLookaround(MatchContext& m) {
  if (startNextAlternative(m)) return Next::kGoOn;
  endRun(m);
  return assertLookaround(m, isNegative(m.nodes[m.node]));
}

Next retryCondition(MatchContext& m) {
  endRun(m);
  return branch(m, false);
}

Next retryAtomic(MatchContext& m) {
  if (startNextAlternative(m)) return Next::kGoOn;
  const RunChoice choice = endRun(m);
  const Atomic group = atomicAt(m, m.node);
  return group.lazy || choice.minLeft > 0 ? Next::kFail : goOn(m, group.next);
}

Next retryAtomicLazy(MatchContext& m) {
  const AtomicChoice choice = m.choices.top<AtomicChoice>();
  m.choices.pop<AtomicChoice>();
  m.moveTo(choice.at);
  m.node = choice.tag.node();
  return lazyIteration(m, choice.minLeft, choice.maxLeft);
}

Next retryAtomicIteration(MatchContext& m) {
  const PlaceChoice choice = m.choices.top<PlaceChoice>();
  m.choices.pop<PlaceChoice>();
  m.moveTo(choice.at);
  return goOn(m, atomicAt(m, choice.tag.node()).next);
}

Next retrySurplus(MatchContext& m) {
  m.surplus = m.choices.top<SurplusChoice>().surplus;
  m.choices.pop<SurplusChoice>();
  return Next::kFail;
}

}  // namespace ulk
