// Lookaheads, lookbehinds, lookaround conditions and atomic groups: their bodies match in runs of their own.
//
// A run ends at the node where it is told to, or at a bar of its own group. When it has matched, the choices
// that its body has left are dropped, so the body is never entered again; when it has failed, the body's next
// alternative is run from the same place.
#include <algorithm>

#include "regexp/matcher.h"
#include "regexp/utf8.h"

namespace ulk {

namespace {

// Starts a run of the group's body at m.at. The choice keeps the place of the step itself.
Next startRun(MatchContext& m, ChoiceKind kind, int32_t first, int32_t endNode, const uint8_t* bodyAt) {
  Choice& choice = m.push(kind);
  choice.options = static_cast<uint8_t>(m.options);
  choice.run.alternative = first;
  choice.run.endNode = m.endNode;
  choice.run.outerRun = m.run;
  choice.run.surplus = m.surplus;
  choice.run.bodyAt = static_cast<int32_t>(bodyAt - m.textStart);
  m.run = m.numChoices - 1;
  m.endNode = endNode;
  m.surplus += choice.at - choice.run.bodyAt;  // going back does not shorten the match
  m.at = bodyAt;
  return goOn(m, first);
}

// Ends the run of this choice: position, match length and options are those of the step again.
void endRun(MatchContext& m, const Choice& choice) {
  m.numChoices = m.run;
  m.endNode = choice.run.endNode;
  m.run = choice.run.outerRun;
  m.surplus = choice.run.surplus;
  m.options = choice.options;
  m.node = choice.node;
  m.moveTo(choice.at);
}

// Runs the next alternative of the body. False when there is none.
bool startNextAlternative(MatchContext& m, Choice& choice) {
  const RxNode& open = m.nodes[choice.node];
  const int32_t bar = findBar(m.nodes, choice.run.alternative, choice.node + open.op2 + 1, open.op1);
  if (bar < 0) return false;
  choice.run.alternative = bar + 1;
  m.options = static_cast<uint32_t>(m.nodes[bar].op2);
  m.surplus = choice.run.surplus + choice.at - choice.run.bodyAt;
  m.moveTo(choice.run.bodyAt);
  m.node = bar + 1;
  return true;
}

Next startLookaround(MatchContext& m, const uint8_t* bodyAt) {
  const int32_t end = m.node + m.nodes[m.node].op2 + 1;
  return startRun(m, ChoiceKind::kLookaround, m.node + 1, end, bodyAt);
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
  startRun(m, ChoiceKind::kAtomic, m.node + 1, group.end, m.at);
  m.top().run.minLeft = minLeft;
  m.top().run.maxLeft = maxLeft;
  return Next::kGoOn;
}

Next lazyIteration(MatchContext& m, int32_t minLeft, int32_t maxLeft) {
  return maxLeft < 1 ? Next::kFail : greedyIteration(m, minLeft, maxLeft);
}

// Goes on after the group first if it has been matched often enough.
Next lazyTurn(MatchContext& m, int32_t minLeft, int32_t maxLeft) {
  if (minLeft > 0) return lazyIteration(m, minLeft, maxLeft);
  Choice& choice = m.push(ChoiceKind::kAtomicLazy);
  choice.run.minLeft = minLeft;
  choice.run.maxLeft = maxLeft;
  return goOn(m, atomicAt(m, m.node).next);
}

// An iteration has matched up to m.at. What it consumed is read from the match length, and never less than
// nothing.
Next leaveAtomic(MatchContext& m, const Choice& choice) {
  const int32_t begun = choice.at - static_cast<int32_t>(m.matchStart - m.textStart) + choice.run.surplus;
  const int32_t consumed = std::max(m.matchLength() - begun, 0);
  const int32_t minLeft = choice.run.minLeft;
  const int32_t maxLeft = choice.run.maxLeft;
  endRun(m, choice);
  const Atomic group = atomicAt(m, m.node);
  if (consumed == 0) {
    // A lazy group's empty iteration makes the run around it match as it stands.
    return group.lazy ? Next::kMatched : goOn(m, group.next);
  }
  if (group.lazy) {
    m.at += consumed;
    return lazyTurn(m, minLeft - 1, maxLeft - 1);
  }
  if (minLeft < 1) m.push(ChoiceKind::kAtomicIteration);
  m.at += consumed;
  return greedyIteration(m, minLeft - 1, maxLeft - 1);
}

}  // namespace

Next stepLookahead(MatchContext& m) { return startLookaround(m, m.at); }

Next stepLookbehind(MatchContext& m) {
  const RxNode& open = m.nodes[m.node];
  if (m.offset() < open.op3) return assertLookaround(m, isNegative(open));
  return startLookaround(m, lookbehindStart(m, open.op3));
}

// Runs the lookaround that is the condition of the conditional whose choice is the newest one.
Next stepCondition(MatchContext& m, int32_t lookaround) {
  m.node = lookaround;
  return startRun(m, ChoiceKind::kCondition, lookaround, lookaround + m.nodes[lookaround].op2 + 2, m.at);
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
  const Choice& choice = m.choices[m.run];
  switch (choice.kind) {
    case ChoiceKind::kAtomic:
      return leaveAtomic(m, choice);
    case ChoiceKind::kCondition: {
      endRun(m, choice);
      return branch(m, m.top(), true);
    }
    default: {
      endRun(m, choice);
      return assertLookaround(m, !isNegative(m.nodes[m.node]));
    }
  }
}

Next retryLookaround(MatchContext& m, Choice& choice) {
  if (startNextAlternative(m, choice)) return Next::kGoOn;
  endRun(m, choice);
  return assertLookaround(m, isNegative(m.nodes[m.node]));
}

Next retryCondition(MatchContext& m, Choice& choice) {
  endRun(m, choice);
  return branch(m, m.top(), false);
}

Next retryAtomic(MatchContext& m, Choice& choice) {
  if (startNextAlternative(m, choice)) return Next::kGoOn;
  endRun(m, choice);
  const Atomic group = atomicAt(m, m.node);
  return group.lazy || choice.run.minLeft > 0 ? Next::kFail : goOn(m, group.next);
}

Next retryAtomicLazy(MatchContext& m, Choice& choice) {
  const int32_t minLeft = choice.run.minLeft;
  const int32_t maxLeft = choice.run.maxLeft;
  m.moveTo(choice.at);
  m.node = choice.node;
  m.pop();
  return lazyIteration(m, minLeft, maxLeft);
}

Next retryAtomicIteration(MatchContext& m, Choice& choice) {
  m.moveTo(choice.at);
  const int32_t next = atomicAt(m, choice.node).next;
  m.pop();
  return goOn(m, next);
}

}  // namespace ulk
