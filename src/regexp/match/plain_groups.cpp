// Plain groups: they match at most once, their bodies do not refer to them, and the program changes no
// options (analysis/group_links.cpp). The open step remembers all there is to put back, and leaving the group
// changes nothing that a choice within it could see.
#include "regexp/match/group.h"

namespace ulk {

namespace {

// Finds the first alternative, from the one after this bar or open node on, that a literal does not rule out,
// and pays for those before it. Null if there is none.
ULK_INLINE const RxNode* hopefulAlternative(MatchContext& m, const uint8_t* at, const RxNode* bar) {
  while (bar && !m.budget.isExhausted() && failsAtLiteral(m, bar + 1, at)) {
    m.budget.payStep();
    bar = nextBar(*bar);
  }
  return bar;
}

// All alternatives have failed: goes on without the group where it may be left out.
ULK_INLINE Outcome afterAll(const uint8_t* at, const RxNode* open, MatchContext& m) {
  const RxNode* const next = endOf(open) + 1;
  const bool optional = m.isQuantified(next) && next->code == RX_REPEAT && minOf(*next) < 1;
  return optional ? goOn(at, next + 1, m) : fail(m);
}

ULK_INLINE Outcome enterPlain(const uint8_t* at, const RxNode* open, MatchContext& m) {
  const RxNode* const first = hopefulAlternative(m, at, open);
  if (first != open) m.surplus.clear();  // as behind any alternative that has failed
  if (!first) return afterAll(at, open, m);
  push<PlaceChoice>(m, ChoiceKind::kPlain, at, first);
  return goOnWithChoice(at, first + 1, m);
}

ULK_INLINE Outcome enterCapture(const uint8_t* at, const RxNode* open, MatchContext& m) {
  const RxNode* const first = hopefulAlternative(m, at, open);
  if (first != open) m.surplus.clear();
  if (!first) return afterAll(at, open, m);
  const SavedSlot before = saved(m, m.state->captures[captureNumber(*open)]);
  auto& choice = push<PlainCaptureChoice>(m, ChoiceKind::kPlainCapture, at, first);
  choice.captureAt = before.at;
  choice.captureLength = before.length;
  choice.remaining = frameOf(m, open).remainingAtIteration;
  openCapture(at, open, m);
  return goOnWithChoice(at, first + 1, m);
}

ULK_INLINE Outcome enter(const uint8_t* at, const RxNode* open, MatchContext& m) {
  return codeOf(*open) == RX_CAPTURE ? enterCapture(at, open, m) : enterPlain(at, open, m);
}

}  // namespace

ULK_STEP stepOpenPassed(const uint8_t* at, const RxNode* node, MatchContext& m) {
  return goOn(at, node + 1, m);
}

ULK_STEP stepOpenPlain(const uint8_t* at, const RxNode* node, MatchContext& m) {
  return enterPlain(at, node, m);
}

ULK_STEP stepOpenCapture(const uint8_t* at, const RxNode* node, MatchContext& m) {
  return enterCapture(at, node, m);
}

ULK_STEP stepOpenQuantifiedPlain(const uint8_t* at, const RxNode* node, MatchContext& m) {
  const RxNode* const quantifier = endOf(node) + 1;
  if (maxOf(*quantifier) == 0) return goOn(at, quantifier + 1, m);
  if (quantifier->code == RX_REPEAT || minOf(*quantifier) > 0) return enter(at, node, m);
  push<PlaceChoice>(m, ChoiceKind::kPlainEnter, at, node);
  return goOnWithChoice(at, quantifier + 1, m);
}

ULK_STEP stepEndPlain(const uint8_t* at, const RxNode* node, MatchContext& m) {
  return goOn(at, node + 1, m);
}

ULK_STEP stepEndCapture(const uint8_t* at, const RxNode* node, MatchContext& m) {
  endCapture(at, linkedOpen(*node), m);
  return goOn(at, node + 1, m);
}

ULK_STEP stepEndQuantifiedPlain(const uint8_t* at, const RxNode* node, MatchContext& m) {
  const RxNode* const open = linkedOpen(*node);
  if (codeOf(*open) == RX_CAPTURE) endCapture(at, open, m);
  return goOn(at, node + 2, m);
}

// An alternative has failed: the bar before the next one that may match, which the choice then stands for.
// Null if there is none.
template <class Record>
ULK_INLINE const RxNode* takeNextAlternative(MatchContext& m, Record& choice, const uint8_t* at,
                                             const RxNode* barOrOpen) {
  m.surplus.clear();
  const RxNode* const bar = hopefulAlternative(m, at, nextBar(*barOrOpen));
  if (bar) choice.tag.setNode(m.indexOf(bar));
  return bar;
}

Outcome retryPlain(MatchContext& m) {
  auto& choice = m.choices.top<PlaceChoice>();
  const RxNode* const barOrOpen = m.nodes() + choice.tag.node();
  const uint8_t* const at = placeOf(m, choice.at);
  if (const RxNode* const bar = takeNextAlternative(m, choice, at, barOrOpen)) return goOn(at, bar + 1, m);
  m.choices.pop<PlaceChoice>();
  return afterAll(at, openOf(m, barOrOpen), m);
}

Outcome retryPlainCapture(MatchContext& m) {
  auto& choice = m.choices.top<PlainCaptureChoice>();
  const RxNode* const barOrOpen = m.nodes() + choice.tag.node();
  const uint8_t* const at = placeOf(m, choice.at);
  if (const RxNode* const bar = takeNextAlternative(m, choice, at, barOrOpen)) return goOn(at, bar + 1, m);
  const RxNode* const open = openOf(m, barOrOpen);
  frameOf(m, open).remainingAtIteration = choice.remaining;
  m.state->captures[captureNumber(*open)] = restored(m, {choice.captureAt, choice.captureLength});
  m.choices.pop<PlainCaptureChoice>();
  return afterAll(at, open, m);
}

// What a lazy group tries first, going on behind it, has failed.
Outcome retryPlainEnter(MatchContext& m) {
  const auto& choice = m.choices.top<PlaceChoice>();
  const uint8_t* const at = placeOf(m, choice.at);
  const RxNode* const open = m.nodes() + choice.tag.node();
  m.choices.pop<PlaceChoice>();
  return enter(at, open, m);
}

}  // namespace ulk
