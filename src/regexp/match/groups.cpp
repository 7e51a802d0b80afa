// Groups with iterations: capturing groups, plain and option groups that are not plain in what they do, and
// conditionals.
//
// A group's frame counts its iterations. The group-open step starts the count and runs the body; when the
// body reaches the group's RX_END, the group-end step counts the iteration and either leaves the group or
// runs the body again. Each of the two steps leaves one choice that remembers the frame, the capture slot and
// the options as the step found them: when everything the step can do has failed, all of them are put back,
// so that the choices made before find the group as they left it.
#include <algorithm>

#include "regexp/match/group.h"
#include "regexp/match/take.h"

namespace ulk {

namespace {

// Where the parts of one group stand in the program, and how often it is to be run.
struct Group {
  const RxNode* end;   // its RX_END
  const RxNode* next;  // behind the group and its quantifier
  int32_t least;
  int32_t most;
  bool lazy;
};

ULK_INLINE Group groupAt(const MatchContext& m, const RxNode* open) {
  const RxNode* const end = endOf(open);
  const RxNode* const quantifier = end + 1;
  if (!m.isQuantified(quantifier)) return {end, quantifier, 1, 1, false};
  return {end, quantifier + 1, minOf(*quantifier), maxOf(*quantifier), quantifier->code == RX_REPEAT_LAZY};
}

ULK_INLINE CaptureSlot* slotOf(const MatchContext& m, const RxNode* open) {
  return codeOf(*open) == RX_CAPTURE ? &m.state->captures[captureNumber(*open)] : nullptr;
}

// The group as a step finds it. `kind` says how the step goes on when what it tries now fails.
ULK_INLINE GroupChoice remembered(const MatchContext& m, const uint8_t* at, const RxNode* open,
                                  ChoiceKind kind, bool further) {
  const GroupFrame& frame = frameOf(m, open);
  return {{kind, m.indexOf(open)},    m.offsetOf(at), further, frame.maxLeft,
          frame.remainingAtIteration, m.options};
}

ULK_INLINE void rememberOpened(MatchContext& m, const uint8_t* at, const RxNode* open, ChoiceKind kind) {
  const CaptureSlot* const slot = slotOf(m, open);
  if (slot) {
    const SavedSlot before = saved(m, *slot);
    m.choices.push<int32_t>() = before.at;
    m.choices.push<int32_t>() = before.length;
  }
  m.choices.push<int32_t>() = frameOf(m, open).minLeft;
  m.choices.push<GroupChoice>() = remembered(m, at, open, kind, false);
}

ULK_INLINE void rememberFurther(MatchContext& m, const uint8_t* at, const RxNode* open) {
  if (const CaptureSlot* const slot = slotOf(m, open)) m.choices.push<int32_t>() = saved(m, *slot).at;
  m.choices.push<GroupChoice>() = remembered(m, at, open, ChoiceKind::kLeft, true);
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

// Puts the group back as the step that left the newest choice found it.
ULK_INLINE void putBack(MatchContext& m, const RxNode* open) {
  const auto& choice = m.choices.top<GroupChoice>();
  const bool further = choice.further();
  GroupFrame& frame = frameOf(m, open);
  frame.minLeft = further ? frame.minLeft + 1 : m.choices.top<OpenedChoice>().minLeft;
  frame.maxLeft = choice.maxLeft();
  frame.remainingAtIteration = choice.remaining();
  m.options = choice.options();
  if (CaptureSlot* const slot = slotOf(m, open)) {
    *slot = slotBefore(m, choice);
    further ? m.choices.pop<FurtherCaptureChoice>() : m.choices.pop<OpenedCaptureChoice>();
  } else {
    further ? m.choices.pop<GroupChoice>() : m.choices.pop<OpenedChoice>();
  }
}

ULK_INLINE Outcome failGroup(MatchContext& m, const RxNode* open) {
  putBack(m, open);
  return fail(m);
}

// Goes on behind the group and its quantifier, with the options in force outside it.
ULK_INLINE Outcome leave(const uint8_t* at, const Group& group, MatchContext& m) {
  m.setOptions(optionsBehind(*group.end));
  return goOnWithChoice(at, group.next, m);
}

// Puts the options in force with which an alternative of the group begins; `outside` are those of the step.
ULK_INLINE void setBodyOptions(MatchContext& m, const RxNode* open, uint32_t outside) {
  m.options = outside;
  if (codeOf(*open) == RX_OPTGROUP) m.setOptions(optionsInside(*open));
}

ULK_INLINE Outcome runAlternative(const uint8_t* at, MatchContext& m, const RxNode* barOrOpen,
                                  const RxNode* first) {
  m.choices.tag() = {ChoiceKind::kAlternative, m.indexOf(barOrOpen)};
  return goOnWithChoice(at, first, m);
}

ULK_STEP enterConditional(const uint8_t* at, const RxNode* node, MatchContext& m) {
  const RxNode* const condition = node + 1;
  if (codeOf(*condition) != RX_BACKREF) return runCondition(at, condition, m);
  const bool holds = referredCapture(*condition) < m.state->numCaptures &&
                     m.state->captures[referredCapture(*condition)].length != -1;
  return holds ? conditionHolds(at, node, m) : conditionFails(at, node, m);
}

// Runs the first alternative, or the branch that a conditional's condition chooses.
ULK_INLINE Outcome enterBody(const uint8_t* at, const RxNode* open, MatchContext& m) {
  if (codeOf(*open) == RX_COND) return enterConditional(at, open, m);
  return runAlternative(at, m, open, open + 1);
}

// The first alternative that no literal rules out, or the last one; those before it have been tried.
ULK_INLINE const RxNode* passHopeless(const uint8_t* at, const RxNode* open, MatchContext& m) {
  const RxNode* way = open;
  const RxNode* bar = nextBar(*open);
  for (; bar && !m.budget.isExhausted() && failsAtLiteral(m, way + 1, at); bar = nextBar(*bar)) {
    m.budget.payStep();
    m.surplus.clear();
    m.setOptions(optionsBehind(*bar));
    way = bar;
  }
  return way;
}

// Whether the first alternative is one character of a set.
ULK_INLINE bool beginsWithSoleSet(const RxNode* open) {
  const RxNode* const item = open + 1;
  if (stepOf(*item) != Step::kSet && stepOf(*item) != Step::kShorthand) return false;
  const RxNode* const next = afterItem(item);
  return codeOf(*next) == RX_ALT || codeOf(*next) == RX_END;
}

// Runs the iterations of a group that its first alternative makes, each of one byte, as many as there are.
// Each comes to two steps and leaves its choice, as any other does. Returns where they end.
ULK_INLINE const uint8_t* iterateBytes(const uint8_t* at, const RxNode* open, MatchContext& m) {
  GroupFrame& frame = frameOf(m, open);
  const int32_t most = std::min({m.remaining(at), frame.maxLeft, m.budget.left() / 2,
                                 static_cast<int32_t>(m.choices.room() / ptrdiff_t{sizeof(GroupChoice)})});
  if (most <= 0) return at;
  const RxNode& item = open[1];
  const uint8_t* const end = stepOf(item) == Step::kSet ? behindBytes(at, at + most, *recordOf(item))
                                                        : behindShorthand(m, item, at, at + most);
  const int32_t index = m.indexOf(open);
  for (const uint8_t* next = at; next != end; ++next) {
    m.choices.tag() = {ChoiceKind::kAlternative, index};
    m.choices.push<GroupChoice>() = {
        {ChoiceKind::kLeft, index}, m.offsetOf(next + 1), true, frame.maxLeft, m.remaining(next), m.options};
    --frame.maxLeft;
    --frame.minLeft;
  }
  frame.remainingAtIteration = m.remaining(end);
  m.budget.pay(2 * (end - at));
  return end;
}

// Runs the body of a group that does not ask first whether to leave it.
ULK_INLINE Outcome iterate(const uint8_t* at, const RxNode* open, const Group& group, MatchContext& m) {
  if (codeOf(*open) == RX_COND) return enterConditional(at, open, m);
  const RxNode* way = passHopeless(at, open, m);
  if (way == open && beginsWithSoleSet(open) && codeOf(*open) == RX_GROUP && !group.lazy) {
    at = iterateBytes(at, open, m);
    if (frameOf(m, open).maxLeft < 1) return leave(at, group, m);
    way = passHopeless(at, open, m);
  }
  return runAlternative(at, m, way, way + 1);
}

// Passes over a group that is to be matched no times.
ULK_INLINE Outcome passOver(const uint8_t* at, const Group& group, MatchContext& m) {
  auto& choice = m.choices.push<OptionsChoice>();
  choice.options = m.options;
  choice.tag = {ChoiceKind::kOptions, 0};
  return leave(at, group, m);
}

}  // namespace

ULK_STEP stepOpenGroup(const uint8_t* at, const RxNode* node, MatchContext& m) {
  const Group group = groupAt(m, node);
  if (group.most == 0) return passOver(at, group, m);

  const bool mayLeave = group.lazy && group.least < 1;
  rememberOpened(m, at, node, mayLeave ? ChoiceKind::kLazyLeave : ChoiceKind::kAlternative);
  GroupFrame& frame = frameOf(m, node);
  frame.minLeft = group.least;
  frame.maxLeft = group.most;
  frame.remainingAtIteration = m.remaining(at);
  if (mayLeave) return leave(at, group, m);

  if (CaptureSlot* const slot = slotOf(m, node)) *slot = {at, 0};
  setBodyOptions(m, node, m.options);
  return iterate(at, node, group, m);
}

// The body has reached the group's end.
ULK_STEP stepEndGroup(const uint8_t* at, const RxNode* node, MatchContext& m) {
  GroupFrame& frame = m.state->frames[serialOf(*node)].group;
  const RxNode* const open = m.nodes() + frame.openNode;
  const Group group = groupAt(m, open);
  rememberFurther(m, at, open);

  const int32_t consumed = frame.remainingAtIteration - m.remaining(at);
  frame.remainingAtIteration = m.remaining(at);
  --frame.maxLeft;
  --frame.minLeft;
  if (CaptureSlot* const slot = slotOf(m, open)) *slot = {at - consumed, consumed};

  // An empty iteration ends the loop, however often the group is still to be matched.
  if ((frame.maxLeft < 1 && !group.lazy) || consumed == 0) return leave(at, group, m);
  if (group.lazy && frame.minLeft < 1) {
    m.choices.tag().setKind(ChoiceKind::kLazyLeave);
    return leave(at, group, m);
  }
  setBodyOptions(m, open, m.options);
  return iterate(at, open, group, m);
}

// The end of an alternative: the group ends, in the same step.
ULK_STEP stepBar(const uint8_t* at, const RxNode* node, MatchContext& m) {
  const RxNode* const end = endOf(m.nodes() + m.state->frames[serialOf(*node)].group.openNode);
  return m.steps[static_cast<size_t>(stepOf(*end))](at, end, m);
}

ULK_STEP stepOptions(const uint8_t* at, const RxNode* node, MatchContext& m) {
  m.setOptions(newOptions(*node));
  return goOn(at, node + 1, m);
}

ULK_STEP conditionHolds(const uint8_t* at, const RxNode* node, MatchContext& m) {
  const RxNode* const condition = node + 1;
  const RxNode* const first = condition + (isLookaround(*condition) ? bodyLength(*condition) + 2 : 1);
  return runAlternative(at, m, node, first);
}

// Without a second branch, a condition that does not hold passes over the group, whose end is not reached.
ULK_STEP conditionFails(const uint8_t* at, const RxNode* node, MatchContext& m) {
  const RxNode* const bar = nextBar(*node);
  if (!bar) {
    m.choices.tag().setKind(ChoiceKind::kLeft);
    return goOnWithChoice(at, groupAt(m, node).next, m);
  }
  m.setOptions(optionsBehind(*bar));
  return runAlternative(at, m, node, bar + 1);
}

// What a lazy group tries first, going on behind it, has failed.
Outcome retryLazyLeave(MatchContext& m) {
  const auto& choice = m.choices.top<GroupChoice>();
  const RxNode* const open = m.nodes() + choice.tag.node();
  const uint8_t* const at = placeOf(m, choice.at());
  setBodyOptions(m, open, choice.options());
  if (CaptureSlot* const slot = slotOf(m, open); slot && !choice.further()) *slot = {at, 0};
  if (frameOf(m, open).maxLeft < 1) return failGroup(m, open);
  return enterBody(at, open, m);
}

// An alternative has failed.
Outcome retryAlternative(MatchContext& m) {
  auto& choice = m.choices.top<GroupChoice>();
  const RxNode* const barOrOpen = m.nodes() + choice.tag.node();
  const RxNode* const open = openOf(m, barOrOpen);
  const uint8_t* const at = placeOf(m, choice.at());
  GroupFrame& frame = frameOf(m, open);
  m.surplus.clear();
  frame.remainingAtIteration = m.remaining(at);

  if (codeOf(*open) != RX_COND) {
    if (const RxNode* const bar = nextBar(*barOrOpen)) {
      m.setOptions(optionsBehind(*bar));
      return runAlternative(at, m, bar, bar + 1);
    }
  }

  const Group group = groupAt(m, open);
  if (frame.minLeft >= 1 || group.lazy) return failGroup(m, open);
  if (CaptureSlot* const slot = slotOf(m, open); slot && !choice.further()) *slot = slotBefore(m, choice);
  choice.tag = {choice.further() ? ChoiceKind::kGaveUp : ChoiceKind::kLeft, m.indexOf(open)};
  return leave(at, group, m);
}

// Nothing more can be tried. When a further iteration of a group whose body is one repeat of one character
// has failed, what is left of the earlier iterations' choices may be followed by one more iteration only:
// trying all divisions of the text into iterations would take exponential time.
Outcome retryLeft(MatchContext& m) {
  const ChoiceTag tag = m.choices.tag();
  const RxNode* const open = m.nodes() + tag.node();
  putBack(m, open);
  if (tag.kind() == ChoiceKind::kGaveUp && repeatMark(*endOf(open)) == kRepeatMarkRepeated)
    frameOf(m, open).maxLeft = 2;
  return fail(m);
}

Outcome retryOptions(MatchContext& m) {
  m.options = m.choices.top<OptionsChoice>().options;
  m.choices.pop<OptionsChoice>();
  return fail(m);
}

}  // namespace ulk
