// Groups that can be repeated: capturing, plain and option groups, and conditionals.
//
// A group's frame counts its iterations. The group-open step starts the count and runs the body; when the
// body reaches the group's RX_END, the group-end step counts the iteration and either leaves the group or
// runs the body again. Each of the two steps leaves one choice that remembers the frame, the capture slot and
// the options as the step found them: when everything the step can do has failed, all of them are put back,
// so that the choices made before find the group as they left it.
//
// Most groups are plain (group_links.cpp). For them the open step remembers all there is to put back, and
// leaving the group changes nothing that a choice within it could see.
#include "regexp/match/items.h"
#include "regexp/match/matcher.h"

namespace ulk {

namespace {

// Where the parts of one group stand in the program, and how often it is to be run.
struct Group {
  const RxNode& open;
  const RxNode& end;
  int32_t body;     // first node of the body
  int32_t endNode;  // index of the RX_END
  int32_t next;     // node after the group and its quantifier
  int32_t least;
  int32_t most;
  bool lazy;
};

__attribute__((always_inline)) inline Group groupAt(const MatchContext& m, int32_t openNode) {
  const RxNode& open = m.nodes[openNode];
  const int32_t endNode = openNode + open.op2 + 1;
  const RxNode& end = m.nodes[endNode];
  if (!m.hasQuantifier(endNode + 1)) return {open, end, openNode + 1, endNode, endNode + 1, 1, 1, false};
  const RxNode& quantifier = m.nodes[endNode + 1];
  const bool lazy = quantifier.code == RX_REPEAT_LAZY;
  return {open, end, openNode + 1, endNode, endNode + 2, quantifier.op1, quantifier.op2, lazy};
}

GroupFrame& frameOf(MatchContext& m, const RxNode& open) { return m.frames[open.op1].group; }

CaptureSlot* slotOf(MatchContext& m, const RxNode& open) {
  return open.code == RX_CAPTURE ? &m.captures[open.op3] : nullptr;
}

// A slot as a choice remembers it.
struct SavedSlot {
  int32_t at;
  int32_t length;  // -1: unset
};

SavedSlot saved(const MatchContext& m, const CaptureSlot& slot) {
  return {slot.length < 0 ? 0 : static_cast<int32_t>(slot.start - m.textStart), slot.length};
}

CaptureSlot restored(const MatchContext& m, SavedSlot slot) {
  return {slot.length < 0 ? nullptr : m.textStart + slot.at, slot.length};
}

// The group as a step finds it. `kind` says how the step goes on when what it tries now fails.
GroupChoice remembered(MatchContext& m, const Group& group, ChoiceKind kind, bool further) {
  const GroupFrame& frame = frameOf(m, group.open);
  return {{kind, group.body - 1}, m.offset(), further, frame.maxLeft, frame.remainingAtIteration, m.options};
}

void rememberOpened(MatchContext& m, const Group& group, ChoiceKind kind) {
  const OpenedChoice opened = {frameOf(m, group.open).minLeft, remembered(m, group, kind, false)};
  if (const CaptureSlot* const slot = slotOf(m, group.open)) {
    const SavedSlot before = saved(m, *slot);
    m.choices.push<OpenedCaptureChoice>() = {before.at, before.length, opened};
  } else {
    m.choices.push<OpenedChoice>() = opened;
  }
}

void rememberFurther(MatchContext& m, const Group& group) {
  const GroupChoice choice = remembered(m, group, ChoiceKind::kLeft, true);
  if (const CaptureSlot* const slot = slotOf(m, group.open)) {
    m.choices.push<FurtherCaptureChoice>() = {saved(m, *slot).at, choice};
  } else {
    m.choices.push<GroupChoice>() = choice;
  }
}

// The node that opens the group of this choice, whose tag may tell a bar.
const RxNode& openOf(const MatchContext& m, const GroupChoice& choice) {
  const RxNode& node = m.nodes[choice.tag.node()];
  return node.code == RX_ALT ? m.nodes[m.frames[node.op1].group.openNode] : node;
}

// The group's slot as it was when the newest choice, which is this group's, was left.
CaptureSlot slotBefore(const MatchContext& m, const GroupChoice& choice) {
  if (!choice.further()) {
    const auto& record = m.choices.top<OpenedCaptureChoice>();
    return restored(m, {record.captureAt, record.captureLength});
  }
  // The capture before reached from where it began to where the iteration that has then ended began.
  const int32_t at = m.choices.top<FurtherCaptureChoice>().captureAt;
  const auto end = static_cast<int32_t>(m.textEnd - m.textStart) - choice.remaining();
  return {m.textStart + at, end - at};
}

void popGroup(MatchContext& m, const RxNode& open, bool further) {
  const bool capture = open.code == RX_CAPTURE;
  if (further) {
    capture ? m.choices.pop<FurtherCaptureChoice>() : m.choices.pop<GroupChoice>();
  } else {
    capture ? m.choices.pop<OpenedCaptureChoice>() : m.choices.pop<OpenedChoice>();
  }
}

// The step has failed: the group is put back as it found it.
Next failGroup(MatchContext& m, const RxNode& open) {
  const auto& choice = m.choices.top<GroupChoice>();
  GroupFrame& frame = frameOf(m, open);
  frame.minLeft = choice.further() ? frame.minLeft + 1 : m.choices.top<OpenedChoice>().minLeft;
  frame.maxLeft = choice.maxLeft();
  frame.remainingAtIteration = choice.remaining();
  if (CaptureSlot* const slot = slotOf(m, open)) *slot = slotBefore(m, choice);
  m.options = choice.options();
  popGroup(m, open, choice.further());
  return Next::kFail;
}

// Goes on behind the group and its quantifier, with the options in force outside it.
Next leave(MatchContext& m, const Group& group) {
  m.setOptions(group.end.op2);
  return goOn(m, group.next);
}

// Puts the options in force with which an alternative of the group begins; `outside` are those of the step.
void setBodyOptions(MatchContext& m, const RxNode& open, uint32_t outside) {
  m.options = outside;
  if (open.code == RX_OPTGROUP) m.setOptions(open.op3);
}

Next runAlternative(MatchContext& m, int32_t barOrOpen, int32_t first) {
  ChoiceTag& tag = m.choices.tag();
  tag = {ChoiceKind::kAlternative, barOrOpen};
  return goOn(m, first);
}

// Runs the first alternative, or the branch that a conditional's condition chooses.
Next enterBody(MatchContext& m, const Group& group) {
  if (group.open.code != RX_COND) return runAlternative(m, group.body - 1, group.body);
  const RxNode& condition = m.nodes[group.body];
  if (condition.code != RX_BACKREF) return stepCondition(m, group.body);
  return branch(m, condition.op1 < m.numCaptures && m.captures[condition.op1].length != -1);
}

// Finds the first alternative, from the one after this bar or open node on, that a literal does not rule out,
// and pays for those before it.
const RxNode* hopefulAlternative(MatchContext& m, const RxNode* bar) {
  while (bar && failsAtLiteral(m, m.indexOf(bar) + 1)) {
    --m.budget;
    bar = nextBar(*bar);
  }
  return bar;
}

const RxNode& openOfPlain(const MatchContext& m, const RxNode& barOrOpen) {
  return barOrOpen.code == RX_ALT ? m.nodes[m.frames[barOrOpen.op1].group.openNode] : barOrOpen;
}

// All alternatives of a plain group have failed: goes on without it where it may be left out.
Next afterAllPlain(MatchContext& m, const RxNode& open) {
  const int32_t next = nextItem(m.nodes, m.indexOf(&open));
  const bool optional = m.hasQuantifier(next) && m.nodes[next].code == RX_REPEAT && m.nodes[next].op1 < 1;
  return optional ? goOn(m, next + 1) : Next::kFail;
}

// Runs the body of the plain group at m.node.
Next enterPlain(MatchContext& m) {
  const RxNode& open = m.nodes[m.node];
  if (open.code == RX_GROUP && open.op3 == kNoChoice) return goOn(m, m.node + 1);
  const RxNode* const first = hopefulAlternative(m, &open);
  if (first != &open) m.surplus.clear();  // as behind any alternative that has failed
  if (!first) return afterAllPlain(m, open);
  const int32_t running = m.indexOf(first);
  if (CaptureSlot* const slot = slotOf(m, open)) {
    GroupFrame& frame = frameOf(m, open);
    const SavedSlot before = saved(m, *slot);
    auto& choice = m.push<PlainCaptureChoice>(ChoiceKind::kPlainCapture);
    choice.captureAt = before.at;
    choice.captureLength = before.length;
    choice.remaining = frame.remainingAtIteration;
    choice.tag.setNode(running);
    frame.remainingAtIteration = m.remaining();
    *slot = {m.at, 0};
  } else {
    m.push<PlaceChoice>(ChoiceKind::kPlain).tag.setNode(running);
  }
  return goOn(m, running + 1);
}

Next openPlain(MatchContext& m) {
  const int32_t next = nextItem(m.nodes, m.node);
  if (!m.hasQuantifier(next)) return enterPlain(m);
  const RxNode& quantifier = m.nodes[next];
  if (quantifier.op2 == 0) return goOn(m, next + 1);
  if (quantifier.code == RX_REPEAT || quantifier.op1 > 0) return enterPlain(m);
  m.push<PlaceChoice>(ChoiceKind::kPlainEnter);
  return goOn(m, next + 1);
}

Next leavePlain(MatchContext& m, const RxNode& open) {
  if (CaptureSlot* const slot = slotOf(m, open)) {
    const int32_t length = frameOf(m, open).remainingAtIteration - m.remaining();
    *slot = {m.at - length, length};
  }
  return goOn(m, m.node + (m.hasQuantifier(m.node + 1) ? 2 : 1));
}

// Passes over a group that is to be matched no times.
Next passOver(MatchContext& m, const Group& group) {
  auto& choice = m.choices.push<OptionsChoice>();
  choice.options = m.options;
  choice.tag = {ChoiceKind::kOptions, 0};
  return leave(m, group);
}

}  // namespace

Next stepGroupOpen(MatchContext& m) {
  const RxNode& open = m.nodes[m.node];
  if (m.nodes[m.node + open.op2 + 1].text) return openPlain(m);
  const Group group = groupAt(m, m.node);
  if (group.most == 0) return passOver(m, group);

  const bool mayLeave = group.lazy && group.least < 1;
  rememberOpened(m, group, mayLeave ? ChoiceKind::kLazyLeave : ChoiceKind::kAlternative);
  GroupFrame& frame = frameOf(m, open);
  frame.minLeft = group.least;
  frame.maxLeft = group.most;
  frame.remainingAtIteration = m.remaining();
  if (mayLeave) return leave(m, group);

  if (CaptureSlot* const slot = slotOf(m, open)) *slot = {m.at, 0};
  setBodyOptions(m, open, m.options);
  return enterBody(m, group);
}

// What a lazy group tries first, going on behind it, has failed.
Next retryLazyLeave(MatchContext& m) {
  const auto& choice = m.choices.top<GroupChoice>();
  const Group group = groupAt(m, choice.tag.node());
  m.moveTo(choice.at());
  setBodyOptions(m, group.open, choice.options());
  if (CaptureSlot* const slot = slotOf(m, group.open); slot && !choice.further()) *slot = {m.at, 0};
  if (frameOf(m, group.open).maxLeft < 1) return failGroup(m, group.open);
  return enterBody(m, group);
}

// Without a second branch, a condition that does not hold passes over the group, whose end is not reached.
Next branch(MatchContext& m, bool conditionHolds) {
  ChoiceTag& tag = m.choices.tag();
  const Group group = groupAt(m, tag.node());
  const RxNode& condition = m.nodes[group.body];
  const int32_t first = group.body + (isLookaround(condition) ? condition.op2 + 2 : 1);
  if (conditionHolds) return runAlternative(m, group.body - 1, first);
  const RxNode* const bar = nextBar(group.open);
  if (!bar) {
    tag.setKind(ChoiceKind::kLeft);
    return goOn(m, group.next);
  }
  m.setOptions(bar->op2);
  return runAlternative(m, group.body - 1, m.indexOf(bar) + 1);
}

// An alternative of a plain group has failed.
Next retryPlain(MatchContext& m) {
  auto& choice = m.choices.top<PlaceChoice>();
  const RxNode& barOrOpen = m.nodes[choice.tag.node()];
  m.moveTo(choice.at);
  m.surplus.clear();
  if (const RxNode* const bar = hopefulAlternative(m, nextBar(barOrOpen))) {
    choice.tag.setNode(m.indexOf(bar));
    return goOn(m, m.indexOf(bar) + 1);
  }
  m.choices.pop<PlaceChoice>();
  return afterAllPlain(m, openOfPlain(m, barOrOpen));
}

Next retryPlainCapture(MatchContext& m) {
  auto& choice = m.choices.top<PlainCaptureChoice>();
  const RxNode& barOrOpen = m.nodes[choice.tag.node()];
  m.moveTo(choice.at);
  m.surplus.clear();
  if (const RxNode* const bar = hopefulAlternative(m, nextBar(barOrOpen))) {
    choice.tag.setNode(m.indexOf(bar));
    return goOn(m, m.indexOf(bar) + 1);
  }
  const RxNode& open = openOfPlain(m, barOrOpen);
  frameOf(m, open).remainingAtIteration = choice.remaining;
  m.captures[open.op3] = restored(m, {choice.captureAt, choice.captureLength});
  m.choices.pop<PlainCaptureChoice>();
  return afterAllPlain(m, open);
}

// What a lazy plain group tries first, going on behind it, has failed.
Next retryPlainEnter(MatchContext& m) {
  const auto& choice = m.choices.top<PlaceChoice>();
  m.moveTo(choice.at);
  m.node = choice.tag.node();
  m.choices.pop<PlaceChoice>();
  return enterPlain(m);
}

// An alternative has failed.
Next retryAlternative(MatchContext& m) {
  auto& choice = m.choices.top<GroupChoice>();
  const RxNode& barOrOpen = m.nodes[choice.tag.node()];
  const RxNode& open = openOf(m, choice);
  GroupFrame& frame = frameOf(m, open);
  m.moveTo(choice.at());
  m.surplus.clear();
  frame.remainingAtIteration = m.remaining();

  if (open.code != RX_COND) {
    if (const RxNode* const bar = nextBar(barOrOpen)) {
      m.setOptions(bar->op2);
      return runAlternative(m, m.indexOf(bar), m.indexOf(bar) + 1);
    }
  }

  const Group group = groupAt(m, m.indexOf(&open));
  if (frame.minLeft >= 1 || group.lazy) return failGroup(m, open);
  if (CaptureSlot* const slot = slotOf(m, open); slot && !choice.further()) *slot = slotBefore(m, choice);
  choice.tag = {choice.further() ? ChoiceKind::kGaveUp : ChoiceKind::kLeft, group.body - 1};
  return leave(m, group);
}

// Nothing more can be tried. When a further iteration of a group whose body is one repeat of one character
// has failed, what is left of the earlier iterations' choices may be followed by one more iteration only:
// trying all divisions of the text into iterations would take exponential time.
Next retryLeft(MatchContext& m) {
  const ChoiceTag tag = m.choices.tag();
  const RxNode& open = m.nodes[tag.node()];
  failGroup(m, open);
  const RxNode& end = m.nodes[nextItem(m.nodes, m.indexOf(&open)) - 1];
  if (tag.kind() == ChoiceKind::kGaveUp && end.op3 == kRepeatMarkRepeated) frameOf(m, open).maxLeft = 2;
  return Next::kFail;
}

Next retryOptions(MatchContext& m) {
  m.options = m.choices.top<OptionsChoice>().options;
  m.choices.pop<OptionsChoice>();
  return Next::kFail;
}

// The body has reached the group's end.
Next stepGroupEnd(MatchContext& m) {
  if (const void* open = m.nodes[m.node].text) return leavePlain(m, *static_cast<const RxNode*>(open));
  GroupFrame& frame = m.frames[m.nodes[m.node].op1].group;
  const Group group = groupAt(m, frame.openNode);
  rememberFurther(m, group);

  const int32_t consumed = frame.remainingAtIteration - m.remaining();
  frame.remainingAtIteration = m.remaining();
  --frame.maxLeft;
  --frame.minLeft;
  if (CaptureSlot* const slot = slotOf(m, group.open)) *slot = {m.at - consumed, consumed};

  // An empty iteration ends the loop, however often the group is still to be matched.
  if ((frame.maxLeft < 1 && !group.lazy) || consumed == 0) return leave(m, group);
  if (group.lazy && frame.minLeft < 1) {
    m.choices.tag().setKind(ChoiceKind::kLazyLeave);
    return leave(m, group);
  }
  setBodyOptions(m, group.open, m.options);
  return enterBody(m, group);
}

// The end of an alternative: of the current run's, or of a group's that then ends.
Next stepBar(MatchContext& m) {
  const int32_t serial = m.nodes[m.node].op1;
  if (serial < 1) return Next::kMatched;
  m.node = nextItem(m.nodes, m.frames[serial].group.openNode) - 1;
  return stepGroupEnd(m);
}

}  // namespace ulk
