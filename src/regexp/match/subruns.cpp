// Lookaheads, lookbehinds, lookaround conditions and atomic groups: their bodies match in runs of their own.
//
// A run ends at the node where it is told to, or at a bar of its own group. When it has matched, the choices
// that its body has left are dropped, so the body is never entered again; when it has failed, the body's next
// alternative is run from the same place. A body that leaves no choices is matched in place, without a run.
#include <algorithm>

#include "regexp/match/assertions.h"
#include "regexp/match/group.h"
#include "regexp/text/utf8.h"

namespace ulk {

namespace {

// Starts a run from `first` on at `bodyAt`. The choice keeps the place of the step itself, which is at
// `node`.
ULK_INLINE RunChoice& startRun(const uint8_t* at, const RxNode* node, MatchContext& m, ChoiceKind kind,
                               const RxNode* first, const RxNode* end, const uint8_t* bodyAt) {
  const uint32_t run = m.choices.used();
  auto& choice = push<RunChoice>(m, kind, at, node);
  choice.options = m.options;
  choice.bar = m.indexOf(first) - 1;
  choice.endNode = m.indexOf(m.runEnd);
  choice.outerRun = m.run;
  choice.surplus = m.surplus;
  choice.bodyAt = m.offsetOf(bodyAt);
  m.run = run;
  m.runEnd = end;
  m.surplus += at - bodyAt;  // going back does not shorten the match
  return choice;
}

// Ends the current run: match length and options are those of the step again. Returns its choice, which lies
// where the next one will.
ULK_INLINE const RunChoice& endRun(MatchContext& m) {
  const auto& choice = m.choices.at<RunChoice>(m.run);
  m.choices.cutBack(m.run);
  m.runEnd = m.nodes() + choice.endNode;
  m.run = choice.outerRun;
  m.surplus = choice.surplus;
  m.options = choice.options;
  return choice;
}

// Prepares the next alternative of the body and returns its first node, null if there is none.
ULK_INLINE const RxNode* nextAlternative(MatchContext& m) {
  auto& choice = m.choices.at<RunChoice>(m.run);
  const RxNode* const bar = nextBar(m.nodes()[choice.bar]);
  if (!bar) return nullptr;
  choice.bar = m.indexOf(bar);
  m.setOptions(optionsBehind(*bar));
  m.surplus = choice.surplus;
  m.surplus += int64_t{choice.at} - choice.bodyAt;
  return bar + 1;
}

ULK_INLINE const uint8_t* bodyStart(const MatchContext& m) {
  return placeOf(m, m.choices.at<RunChoice>(m.run).bodyAt);
}

// ---- Lookarounds

ULK_INLINE bool isNegative(const RxNode& lookaround) {
  return codeOf(lookaround) == RX_NLOOKAHEAD || codeOf(lookaround) == RX_NLOOKBEHIND;
}

// Goes on after the lookaround, which holds or not.
ULK_INLINE Outcome assertLookaround(const uint8_t* at, const RxNode* lookaround, MatchContext& m,
                                    bool holds) {
  return holds ? goOn(at, endOf(lookaround) + 1, m) : fail(m);
}

ULK_INLINE Outcome runLookaround(const uint8_t* at, const RxNode* node, MatchContext& m,
                                 const uint8_t* bodyAt) {
  startRun(at, node, m, ChoiceKind::kLookaround, node + 1, endOf(node), bodyAt);
  return goOnWithChoice(bodyAt, node + 1, m);
}

// As itemLength, but quick for what lookarounds mostly look for, and 0 for an assertion that holds.
ULK_INLINE int32_t lengthInPlace(const MatchContext& m, const RxNode* node, const uint8_t* at) {
  if (codeOf(*node) == RX_ASSERT) return assertionHolds(m, at, assertionOf(*node)) ? 0 : kNoMatch;
  if (at >= m.textEnd) return kNoMatch;
  switch (stepOf(*node)) {
    case Step::kByte:
      return *at == byteOf(*node) ? 1 : kNoMatch;
    case Step::kString:
      if (*at != *stringOf(*node)) return kNoMatch;
      break;
    case Step::kShorthand:
      if (!(m.byteSets[*at] & byteSetOf(*node, m.options))) return kNoMatch;
      break;
    case Step::kSet:
      if (*at < 0x80) return recordOf(*node)->set.contains(*at) ? 1 : kNoMatch;
      break;
    default:
      break;
  }
  return itemLength(m, *node, at);
}

// Whether a row of items and assertions matches, each of which is a step. A bar at its end is one as well.
bool itemsMatch(const uint8_t* at, const RxNode* node, MatchContext& m) {
  for (;;) {
    if (m.budget.isExhausted()) return false;
    if (codeOf(*node) == RX_END) return true;
    if (at > m.textEnd) return false;
    m.budget.payStep();
    if (codeOf(*node) == RX_ALT) return true;
    const int32_t length = lengthInPlace(m, node, at);
    if (length == kNoMatch) return false;
    at += length;
    node = afterItem(node);
  }
}

bool anyAlternativeMatches(const uint8_t* bodyAt, const RxNode* lookaround, MatchContext& m) {
  for (const RxNode* bar = lookaround; bar; bar = nextBar(*bar))
    if (itemsMatch(bodyAt, bar + 1, m)) return true;
  return false;
}

ULK_INLINE Outcome lookaroundInPlace(const uint8_t* at, const RxNode* node, MatchContext& m,
                                     const uint8_t* bodyAt) {
  // Where no empty match is acceptable, that holds for the run as well.
  if (m.nonEmpty) return runLookaround(at, node, m, bodyAt);
  return assertLookaround(at, node, m, anyAlternativeMatches(bodyAt, node, m) != isNegative(*node));
}

// The start of the character that ends at or reaches beyond `at`, when characters are decoded from the text
// start on.
const uint8_t* characterBefore(const MatchContext& m, const uint8_t* at) {
  const uint8_t* const lead = leadBefore(at, m.textStart);
  return lead + decodeUtf8(lead).length >= at ? lead : at - 1;
}

// The place `width` characters back, or as many bytes back where there are fewer characters.
const uint8_t* lookbehindStart(const MatchContext& m, const uint8_t* const from, int32_t width) {
  const int32_t full = width;
  const uint8_t* at = from;
  for (; width > 0; --width) {
    if (at == m.textStart) return from - full;
    at = at[-1] < 0x80 ? at - 1 : characterBefore(m, at);
  }
  return at;
}

ULK_INLINE bool reachesBeforeText(const uint8_t* at, const RxNode& lookbehind, const MatchContext& m) {
  return int64_t{m.offsetOf(at)} < lookbehindWidth(lookbehind);
}

// ---- Atomic groups

struct Atomic {
  const RxNode* end;   // its RX_END
  const RxNode* next;  // behind the group and its quantifier
  bool lazy;
};

ULK_INLINE Atomic atomicAt(const MatchContext& m, const RxNode* open) {
  const RxNode* const end = endOf(open);
  if (!m.isQuantified(end + 1)) return {end, end + 1, false};
  return {end, end + 2, end[1].code == RX_REPEAT_LAZY};
}

// Runs one iteration, or goes on after the group when there may be no more. `minLeft` iterations are still
// required, `maxLeft` allowed.
ULK_INLINE Outcome greedyIteration(const uint8_t* at, const RxNode* node, MatchContext& m, int32_t minLeft,
                                   int32_t maxLeft) {
  const Atomic group = atomicAt(m, node);
  if (maxLeft < 1) return goOnWithChoice(at, group.next, m);
  RunChoice& choice = startRun(at, node, m, ChoiceKind::kAtomic, node + 1, group.end, at);
  choice.minLeft = minLeft;
  choice.maxLeft = maxLeft;
  return goOnWithChoice(at, node + 1, m);
}

ULK_INLINE Outcome lazyIteration(const uint8_t* at, const RxNode* node, MatchContext& m, int32_t minLeft,
                                 int32_t maxLeft) {
  return maxLeft < 1 ? fail(m) : greedyIteration(at, node, m, minLeft, maxLeft);
}

// Goes on after the group first if it has been matched often enough.
ULK_INLINE Outcome lazyTurn(const uint8_t* at, const RxNode* node, MatchContext& m, int32_t minLeft,
                            int32_t maxLeft) {
  if (minLeft > 0) return lazyIteration(at, node, m, minLeft, maxLeft);
  auto& choice = push<AtomicChoice>(m, ChoiceKind::kAtomicLazy, at, node);
  choice.minLeft = minLeft;
  choice.maxLeft = maxLeft;
  return goOnWithChoice(at, atomicAt(m, node).next, m);
}

// The place behind what an iteration has consumed, which may be said to be more than there is text.
ULK_INLINE const uint8_t* passConsumed(const uint8_t* at, int32_t consumed, MatchContext& m) {
  if (staysInText(at, consumed, m.textEnd)) return at + consumed;
  auto& choice = m.choices.push<SurplusChoice>();
  choice.surplus = m.surplus;
  choice.tag = {ChoiceKind::kSurplus, 0};
  Surplus surplus = m.surplus;
  const uint8_t* const end = endOfLength(at, consumed, m.textEnd, surplus);
  m.surplus = surplus;
  return end;
}

// An iteration has matched up to `end`. What it consumed is read from the match length, and never less than
// nothing.
ULK_INLINE Outcome leaveAtomic(const uint8_t* end, MatchContext& m) {
  const int32_t length = m.lengthTo(end);
  const RunChoice& choice = endRun(m);
  const RxNode* const node = m.nodes() + choice.tag.node();
  const uint8_t* const start = placeOf(m, choice.at);
  const int32_t minLeft = choice.minLeft;
  const int32_t maxLeft = choice.maxLeft;
  const int32_t consumed = saturated(int64_t{length} - m.lengthTo(start));
  const Atomic group = atomicAt(m, node);
  if (consumed < 1) {
    // A lazy group's empty iteration makes the run around it match as it stands.
    return group.lazy ? runMatched(start, node, m) : goOn(start, group.next, m);
  }
  if (!group.lazy && minLeft < 1) push<PlaceChoice>(m, ChoiceKind::kAtomicIteration, start, node);
  const uint8_t* const at = passConsumed(start, consumed, m);
  return group.lazy ? lazyTurn(at, node, m, minLeft - 1, maxLeft - 1)
                    : greedyIteration(at, node, m, minLeft - 1, maxLeft - 1);
}

}  // namespace

ULK_STEP stepLookahead(const uint8_t* at, const RxNode* node, MatchContext& m) {
  return runLookaround(at, node, m, at);
}

ULK_STEP stepLookaheadItems(const uint8_t* at, const RxNode* node, MatchContext& m) {
  return lookaroundInPlace(at, node, m, at);
}

ULK_STEP stepLookbehind(const uint8_t* at, const RxNode* node, MatchContext& m) {
  if (reachesBeforeText(at, *node, m)) return assertLookaround(at, node, m, isNegative(*node));
  return runLookaround(at, node, m, lookbehindStart(m, at, lookbehindWidth(*node)));
}

ULK_STEP stepLookbehindItems(const uint8_t* at, const RxNode* node, MatchContext& m) {
  if (reachesBeforeText(at, *node, m)) return assertLookaround(at, node, m, isNegative(*node));
  return lookaroundInPlace(at, node, m, lookbehindStart(m, at, lookbehindWidth(*node)));
}

ULK_STEP runCondition(const uint8_t* at, const RxNode* lookaround, MatchContext& m) {
  startRun(at, lookaround, m, ChoiceKind::kCondition, lookaround, endOf(lookaround) + 1, at);
  return goOnWithChoice(at, lookaround, m);
}

Outcome retryLookaround(MatchContext& m) {
  if (const RxNode* const first = nextAlternative(m)) return goOn(bodyStart(m), first, m);
  const RunChoice& choice = endRun(m);
  const RxNode* const node = m.nodes() + choice.tag.node();
  return assertLookaround(placeOf(m, choice.at), node, m, isNegative(*node));
}

Outcome retryCondition(MatchContext& m) {
  const uint8_t* const at = placeOf(m, endRun(m).at);
  return conditionFails(at, m.nodes() + m.choices.tag().node(), m);
}

ULK_STEP stepAtomic(const uint8_t* at, const RxNode* node, MatchContext& m) {
  const Atomic group = atomicAt(m, node);
  const bool quantified = group.next == group.end + 2;
  const int32_t least = quantified ? minOf(group.end[1]) : 1;
  const int32_t most = quantified ? maxOf(group.end[1]) : 1;
  return group.lazy ? lazyTurn(at, node, m, least, most) : greedyIteration(at, node, m, least, most);
}

// The repeat is a step, and reaching the end of the group is none but needs some budget left.
ULK_STEP stepAtomicRepeat(const uint8_t* at, const RxNode* node, MatchContext& m) {
  if (m.nonEmpty) return stepAtomic(at, node, m);
  const RxNode* const item = node + 1;
  const RxNode& quantifier = *afterItem(item);
  if (!m.budget.suffices(1)) {
    m.budget.exhaust();
    return fail(m);
  }
  m.budget.payStep();
  const Taken taken = takeItems(m, *item, at, mostItems(m, quantifier, at));
  return taken.count < minOf(quantifier) ? fail(m) : goOn(taken.end, endOf(node) + 1, m);
}

Outcome retryAtomic(MatchContext& m) {
  if (const RxNode* const first = nextAlternative(m)) return goOn(bodyStart(m), first, m);
  const RunChoice& choice = endRun(m);
  const Atomic group = atomicAt(m, m.nodes() + choice.tag.node());
  return group.lazy || choice.minLeft > 0 ? fail(m) : goOn(placeOf(m, choice.at), group.next, m);
}

Outcome retryAtomicLazy(MatchContext& m) {
  const auto& choice = m.choices.top<AtomicChoice>();
  const uint8_t* const at = placeOf(m, choice.at);
  const RxNode* const node = m.nodes() + choice.tag.node();
  const int32_t minLeft = choice.minLeft;
  const int32_t maxLeft = choice.maxLeft;
  m.choices.pop<AtomicChoice>();
  return lazyIteration(at, node, m, minLeft, maxLeft);
}

Outcome retryAtomicIteration(MatchContext& m) {
  const auto& choice = m.choices.top<PlaceChoice>();
  const uint8_t* const at = placeOf(m, choice.at);
  const RxNode* const node = m.nodes() + choice.tag.node();
  m.choices.pop<PlaceChoice>();
  return goOn(at, atomicAt(m, node).next, m);
}

Outcome retrySurplus(MatchContext& m) {
  m.surplus = m.choices.top<SurplusChoice>().surplus;
  m.choices.pop<SurplusChoice>();
  return fail(m);
}

// ---- Ends of runs

ULK_STEP stepRunBar(const uint8_t* at, const RxNode* node, MatchContext& m) {
  return runMatched(at, node, m);
}

namespace {

// A run within the program's has matched.
__attribute__((noinline)) ULK_STEP subrunMatched(const uint8_t* at, const RxNode*, MatchContext& m) {
  switch (m.choices.at<RunChoice>(m.run).tag.kind()) {
    case ChoiceKind::kAtomic:
      return leaveAtomic(at, m);
    case ChoiceKind::kCondition: {
      const uint8_t* const place = placeOf(m, endRun(m).at);
      return conditionHolds(place, m.nodes() + m.choices.tag().node(), m);
    }
    default: {
      const RunChoice& choice = endRun(m);
      const RxNode* const node = m.nodes() + choice.tag.node();
      return assertLookaround(placeOf(m, choice.at), node, m, !isNegative(*node));
    }
  }
}

}  // namespace

ULK_STEP runMatched(const uint8_t* at, const RxNode* node, MatchContext& m) {
  if (m.run != kNoRun) return subrunMatched(at, node, m);
  m.at = at;
  return Outcome::kMatch;
}

ULK_STEP runEnded(const uint8_t* at, const RxNode* node, MatchContext& m) {
  return m.nonEmpty && m.lengthTo(at) == 0 ? fail(m) : runMatched(at, node, m);
}

}  // namespace ulk
