// Links between the nodes of a group, so that a search never looks for them.
//
// Most groups are plain: they match at most once, their body does not refer to them, and the program changes
// no options. The end of a plain group is linked to its open node.
#include <algorithm>
#include <cstdlib>

#include "regexp/analysis/analysis.h"

namespace ulk {

namespace {

// In place of the serial of a capture whose group is no longer in the program: an assertion that need not
// hold goes with all that it contains, `(?=(a))*`.
constexpr int32_t kNoSerial = 0;

// One walk over the program, whatever is nested in what. Frames and capture slots, which no search needs yet,
// keep what is known of groups.
class Links {
 public:
  Links(ulkRegExpState& state, bool changesOptions);

  void add(int32_t index);

 private:
  OpenGroupLink& linkOf(const RxNode& node) { return state_.frames[std::abs(serialOf(node))].link; }
  const RxNode* quantifierOf(int32_t index) const {
    return ulk::quantifierOf(nodes_, state_.numNodes, index);
  }
  void open(int32_t index);
  void bar(RxNode& node);
  void backref(int32_t capture);
  void close(int32_t index);

  ulkRegExpState& state_;
  RxNode* const nodes_;
  const bool changesOptions_;
  const bool makesSurplus_;
  RxNode* topLevelBar_ = nullptr;  // the last one
  int32_t numCaptures_ = 0;        // opened so far
  int32_t numAtOnce_ = 0;          // repeats passed that can match at once
};

Links::Links(ulkRegExpState& state, bool changesOptions)
    : state_(state),
      nodes_(state.nodes()),
      changesOptions_(changesOptions),
      makesSurplus_(std::any_of(nodes_, nodes_ + state.numNodes, [](const RxNode& node) {
        const bool isLazyByte = node.code == RX_REPEAT_LAZY && (&node)[-1].code == RX_CHAR;
        return isLazyByte || node.code == RX_LOOKBEHIND || node.code == RX_NLOOKBEHIND;
      })) {
  for (int32_t i = 1; i < state.numCaptures; ++i) state.captures[i].length = kNoSerial;
}

// Whether the repeat can make the run around it match as it stands, whatever its groups have got to.
bool matchesAtOnce(const RxNode& item, const RxNode& quantifier) {
  return quantifier.code == RX_REPEAT_LAZY &&
         (item.code == RX_CODEPOINT || (item.code == RX_END && serialOf(item) < 0));
}

void Links::open(int32_t index) {
  RxNode& node = nodes_[index];
  linkTo(nullptr, node);
  linkOf(node) = {index, index, numAtOnce_, true, false};
  if (node.code == RX_CAPTURE) state_.captures[numCaptures_ = captureNumber(node)].length = serialOf(node);
}

void Links::bar(RxNode& node) {
  linkTo(nullptr, node);
  if (serialOf(node) == kTopLevel) {
    if (topLevelBar_) linkTo(&node, *topLevelBar_);
    topLevelBar_ = &node;
  } else {
    int32_t& last = linkOf(node).last;
    linkTo(&node, nodes_[last]);
    last = static_cast<int32_t>(&node - nodes_);
  }
}

void Links::backref(int32_t capture) {
  if (capture > numCaptures_ || state_.captures[capture].length == kNoSerial) return;
  OpenGroupLink& group = state_.frames[state_.captures[capture].length].link;
  if (group.isOpen) group.refersToItself = true;
}

void Links::close(int32_t index) {
  RxNode& end = nodes_[index];
  OpenGroupLink& group = linkOf(end);
  group.isOpen = false;
  RxNode& open = nodes_[group.open];
  const RxNode* const quantifier = quantifierOf(index);
  const bool atMostOnce = !quantifier || maxOf(*quantifier) <= 1;
  const bool canBePlain =
      (open.code == RX_GROUP || open.code == RX_CAPTURE) && atMostOnce && !changesOptions_;
  const bool seenFromWithin =
      open.code == RX_CAPTURE && (group.refersToItself || group.numAtOnce != numAtOnce_);
  const bool plain = canBePlain && !seenFromWithin;
  linkTo(plain ? &open : nullptr, end);
  if (open.code == RX_GROUP)
    choiceMark(open) = plain && !makesSurplus_ && !quantifier && !nextBar(open) ? kNoChoice : 0;
}

void Links::add(int32_t index) {
  RxNode& node = nodes_[index];
  if (isGroupOpen(node)) return open(index);
  switch (node.code) {
    case RX_ALT:
      return bar(node);
    case RX_BACKREF:
      return backref(referredCapture(node));
    case RX_END:
      close(index);
      break;
    case RX_CODEPOINT:
      break;
    default:
      return;
  }
  const RxNode* const quantifier = quantifierOf(index);
  if (quantifier && matchesAtOnce(node, *quantifier)) ++numAtOnce_;
}

}  // namespace

void linkGroups(ulkRegExpState& state, ConstantOptions options) {
  Links links(state, !options);
  for (int32_t i = 0; i < state.numNodes; i = nextNode(state.nodes(), i)) links.add(i);
}

}  // namespace ulk
