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
#include "regexp/items.h"
#include "regexp/matcher.h"

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

GroupFrame& frameOf(MatchContext& m, const Group& group) { return m.frames[group.open.op1].group; }

CaptureSlot* slotOf(MatchContext& m, const Group& group) {
  return group.open.code == RX_CAPTURE ? &m.captures[group.open.op3] : nullptr;
}

// Remembers the group as the step finds it. `kind` says how the step goes on when what it tries now fails.
Choice& remember(MatchContext& m, const Group& group, ChoiceKind kind, bool further) {
  const GroupFrame& frame = frameOf(m, group);
  Choice& choice = m.push(kind);
  choice.node = group.body - 1;
  choice.options = static_cast<uint8_t>(m.options);
  choice.inBody = frame.inBody != 0;
  choice.further = further;
  choice.group.minLeft = frame.minLeft;
  choice.group.maxLeft = frame.maxLeft;
  choice.group.remainingAtIteration = frame.remainingAtIteration;
  choice.group.iterationLength = frame.iterationLength;
  if (const CaptureSlot* slot = slotOf(m, group)) {
    choice.group.captureLength = slot->length;
    choice.group.captureAt = slot->length < 0 ? 0 : static_cast<int32_t>(slot->start - m.textStart);
  }
  return choice;
}

void restoreSlot(MatchContext& m, const RxNode& open, int32_t at, int32_t length) {
  if (open.code == RX_CAPTURE) m.captures[open.op3] = {length < 0 ? nullptr : m.textStart + at, length};
}

void restoreSlot(MatchContext& m, const Choice& choice) {
  restoreSlot(m, m.nodes[choice.node], choice.group.captureAt, choice.group.captureLength);
}

// The step has failed: the group is put back as it found it.
Next failGroup(MatchContext& m, const Choice& choice) {
  GroupFrame& frame = m.frames[m.nodes[choice.node].op1].group;
  frame.minLeft = choice.group.minLeft;
  frame.maxLeft = choice.group.maxLeft;
  frame.remainingAtIteration = choice.group.remainingAtIteration;
  frame.iterationLength = choice.group.iterationLength;
  frame.inBody = choice.inBody;
  restoreSlot(m, choice);
  m.options = choice.options;
  m.pop();
  return Next::kFail;
}

// Goes on behind the group and its quantifier, with the options in force outside it.
Next leave(MatchContext& m, const Group& group) {
  m.options = static_cast<uint32_t>(group.end.op2);
  return goOn(m, group.next);
}

uint32_t bodyOptions(const Group& group, const Choice& choice) {
  return group.open.code == RX_OPTGROUP ? static_cast<uint32_t>(group.open.op3) : choice.options;
}

Next runAlternative(MatchContext& m, const Group& group, Choice& choice, int32_t first) {
  choice.kind = ChoiceKind::kAlternative;
  choice.group.alternative = first;
  frameOf(m, group).inBody = 1;
  return goOn(m, first);
}

// Runs the first alternative, or the branch that a conditional's condition chooses.
Next enterBody(MatchContext& m, const Group& group, Choice& choice) {
  if (group.open.code != RX_COND) return runAlternative(m, group, choice, group.body);
  const RxNode& condition = m.nodes[group.body];
  if (condition.code != RX_BACKREF) return stepCondition(m, group.body);
  return branch(m, choice, condition.op1 < m.numCaptures && m.captures[condition.op1].length != -1);
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

Next openPlain(MatchContext& m) {
  const RxNode& open = m.nodes[m.node];
  const RxNode* const first = hopefulAlternative(m, &open);
  if (first != &open) m.surplus = 0;  // as behind any alternative that has failed
  if (!first) return Next::kFail;
  GroupFrame& frame = m.frames[open.op1].group;
  Choice& choice = m.push(ChoiceKind::kPlain);
  choice.plain.bar = m.indexOf(first);
  choice.plain.remainingAtIteration = frame.remainingAtIteration;
  frame.openNode = m.node;
  frame.remainingAtIteration = m.remaining();
  if (open.code == RX_CAPTURE) {
    CaptureSlot& slot = m.captures[open.op3];
    choice.plain.captureLength = slot.length;
    choice.plain.captureAt = slot.length < 0 ? 0 : static_cast<int32_t>(slot.start - m.textStart);
    slot = {m.at, 0};
  }
  return goOn(m, m.indexOf(first) + 1);
}

Next leavePlain(MatchContext& m, const RxNode& open) {
  if (open.code == RX_CAPTURE) {
    const int32_t length = m.frames[open.op1].group.remainingAtIteration - m.remaining();
    m.captures[open.op3] = {m.at - length, length};
  }
  return goOn(m, m.node + 1);
}

// Passes over a group that is to be matched no times.
Next passOver(MatchContext& m, const Group& group) {
  m.push(ChoiceKind::kOptions).options = static_cast<uint8_t>(m.options);
  return leave(m, group);
}

}  // namespace

int32_t findBar(const RxNode* nodes, int32_t from, int32_t end, int32_t serial) {
  for (int32_t i = from; i < end; ++i)
    if (nodes[i].code == RX_ALT && nodes[i].op1 == serial) return i;
  return -1;
}

Next stepGroupOpen(MatchContext& m) {
  if (m.nodes[m.node + m.nodes[m.node].op2 + 1].text) return openPlain(m);
  const Group group = groupAt(m, m.node);
  if (group.most == 0) return passOver(m, group);

  const bool mayLeave = group.lazy && group.least < 1;
  Choice& choice = remember(m, group, mayLeave ? ChoiceKind::kLazyLeave : ChoiceKind::kAlternative, false);
  GroupFrame& frame = frameOf(m, group);
  frame.minLeft = group.least;
  frame.maxLeft = group.most;
  frame.openNode = m.node;
  frame.remainingAtIteration = m.remaining();
  frame.iterationLength = 0;
  if (mayLeave) return leave(m, group);

  if (CaptureSlot* slot = slotOf(m, group)) *slot = {m.at, 0};
  m.options = bodyOptions(group, choice);
  return enterBody(m, group, choice);
}

// What a lazy group tries first, going on behind it, has failed.
Next retryLazyLeave(MatchContext& m, Choice& choice) {
  const Group group = groupAt(m, choice.node);
  m.moveTo(choice.at);
  m.options = bodyOptions(group, choice);
  if (CaptureSlot* slot = slotOf(m, group); slot && !choice.further) *slot = {m.at, 0};
  if (frameOf(m, group).maxLeft < 1) return failGroup(m, choice);
  return enterBody(m, group, choice);
}

// Takes the branch that the condition chooses. Without a second branch, a condition that does not hold passes
// over the group, whose end is not reached.
Next branch(MatchContext& m, Choice& choice, bool conditionHolds) {
  const Group group = groupAt(m, choice.node);
  const RxNode& condition = m.nodes[group.body];
  const int32_t first = group.body + (isLookaround(condition) ? condition.op2 + 2 : 1);
  if (conditionHolds) return runAlternative(m, group, choice, first);
  const int32_t bar = findBar(m.nodes, first, group.endNode, group.open.op1);
  if (bar < 0) {
    choice.kind = ChoiceKind::kLeft;
    return goOn(m, group.next);
  }
  m.options = static_cast<uint32_t>(m.nodes[bar].op2);
  return runAlternative(m, group, choice, bar + 1);
}

// An alternative of a plain group has failed.
Next retryPlain(MatchContext& m, Choice& choice) {
  m.moveTo(choice.at);
  m.surplus = 0;
  if (const RxNode* const bar = hopefulAlternative(m, nextBar(m.nodes[choice.plain.bar]))) {
    choice.plain.bar = m.indexOf(bar);
    return goOn(m, choice.plain.bar + 1);
  }
  const RxNode& open = m.nodes[choice.node];
  m.frames[open.op1].group.remainingAtIteration = choice.plain.remainingAtIteration;
  restoreSlot(m, open, choice.plain.captureAt, choice.plain.captureLength);
  m.pop();
  return Next::kFail;
}

// An alternative has failed.
Next retryAlternative(MatchContext& m, Choice& choice) {
  const Group group = groupAt(m, choice.node);
  GroupFrame& frame = frameOf(m, group);
  m.moveTo(choice.at);
  m.surplus = 0;
  m.options = bodyOptions(group, choice);
  frame.inBody = 0;
  frame.remainingAtIteration = m.remaining();

  if (group.open.code != RX_COND) {
    // The node before an alternative's first is the open node or a bar.
    if (const RxNode* const bar = nextBar(m.nodes[choice.group.alternative - 1])) {
      m.options = static_cast<uint32_t>(bar->op2);
      return runAlternative(m, group, choice, m.indexOf(bar) + 1);
    }
  }

  if (frame.minLeft >= 1 || group.lazy) return failGroup(m, choice);
  if (!choice.further) restoreSlot(m, choice);
  choice.kind = ChoiceKind::kLeft;
  choice.group.alternative = group.endNode;  // all of them have been tried
  return leave(m, group);
}

// Nothing more can be tried. When a further iteration of a group whose body is one repeat of one character
// has failed, what is left of the earlier iterations' choices may be followed by one more iteration only:
// trying all divisions of the text into iterations would take exponential time.
Next retryLeft(MatchContext& m, Choice& choice) {
  const RxNode& open = m.nodes[choice.node];
  const int32_t end = choice.node + open.op2 + 1;
  const bool prune =
      choice.further && choice.group.alternative == end && m.nodes[end].op3 == kRepeatMarkRepeated;
  failGroup(m, choice);
  if (prune) m.frames[open.op1].group.maxLeft = 2;
  return Next::kFail;
}

Next retryOptions(MatchContext& m, Choice& choice) {
  m.options = choice.options;
  m.pop();
  return Next::kFail;
}

// The body has reached the group's end.
Next stepGroupEnd(MatchContext& m) {
  if (const void* open = m.nodes[m.node].text) return leavePlain(m, *static_cast<const RxNode*>(open));
  GroupFrame& frame = m.frames[m.nodes[m.node].op1].group;
  const Group group = groupAt(m, frame.openNode);
  Choice& choice = remember(m, group, ChoiceKind::kLeft, true);
  choice.group.alternative = group.body;

  const int32_t consumed = frame.remainingAtIteration - m.remaining();
  frame.remainingAtIteration = m.remaining();
  frame.iterationLength += consumed;
  if (frame.inBody) {
    frame.inBody = 0;
    --frame.maxLeft;
    --frame.minLeft;
    frame.iterationLength = consumed;
  }
  if (CaptureSlot* slot = slotOf(m, group)) *slot = {m.at - frame.iterationLength, frame.iterationLength};

  // An empty iteration ends the loop, however often the group is still to be matched.
  if ((frame.maxLeft < 1 && !group.lazy) || frame.iterationLength == 0) return leave(m, group);
  if (group.lazy && frame.minLeft < 1) {
    choice.kind = ChoiceKind::kLazyLeave;
    return leave(m, group);
  }
  m.options = bodyOptions(group, choice);
  return enterBody(m, group, choice);
}

// The end of an alternative: of the current run's, or of a group's that then ends.
Next stepBar(MatchContext& m) {
  const int32_t serial = m.nodes[m.node].op1;
  if (serial < 1) return Next::kMatched;
  const int32_t openNode = m.frames[serial].group.openNode;
  m.node = openNode + m.nodes[openNode].op2 + 1;
  return stepGroupEnd(m);
}

}  // namespace ulk
