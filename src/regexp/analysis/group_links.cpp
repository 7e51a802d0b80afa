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
  explicit Links(ulkRegExpState& state);

  void add(int32_t index);

 private:
  OpenGroupLink& linkOf(const RxNode& node) { return state_.frames[std::abs(node.op1)].link; }
  bool isQuantified(int32_t index) const {
    return index + 1 < state_.numNodes && isQuantifier(nodes_[index + 1]);
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

Links::Links(ulkRegExpState& state)
    : state_(state),
      nodes_(state.nodes()),
      changesOptions_(std::any_of(
          nodes_, nodes_ + state.numNodes,
          [](const RxNode& node) { return node.code == RX_OPTIONS || node.code == RX_OPTGROUP; })),
      makesSurplus_(std::any_of(nodes_, nodes_ + state.numNodes, [](const RxNode& node) {
        const bool isLazyByte = node.code == RX_REPEAT_LAZY && (&node)[-1].code == RX_CHAR;
        return isLazyByte || node.code == RX_LOOKBEHIND || node.code == RX_NLOOKBEHIND;
      })) {
  for (int32_t i = 1; i < state.numCaptures; ++i) state.captures[i].length = kNoSerial;
}

// Whether the repeat can make the run around it match as it stands, whatever its groups have got to.
bool matchesAtOnce(const RxNode& item, const RxNode& quantifier) {
  return quantifier.code == RX_REPEAT_LAZY &&
         (item.code == RX_CODEPOINT || (item.code == RX_END && item.op1 < 0));
}

void Links::open(int32_t index) {
  RxNode& node = nodes_[index];
  node.text = nullptr;
  linkOf(node) = {index, index, numAtOnce_, true, false};
  if (node.code == RX_CAPTURE) state_.captures[numCaptures_ = node.op3].length = node.op1;
}

void Links::bar(RxNode& node) {
  node.text = nullptr;
  if (node.op1 == kTopLevel) {
    if (topLevelBar_) topLevelBar_->text = &node;
    topLevelBar_ = &node;
  } else {
    int32_t& last = linkOf(node).last;
    nodes_[last].text = &node;
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
  const bool atMostOnce = !isQuantified(index) || nodes_[index + 1].op2 <= 1;
  const bool canBePlain =
      (open.code == RX_GROUP || open.code == RX_CAPTURE) && atMostOnce && !changesOptions_;
  const bool seenFromWithin =
      open.code == RX_CAPTURE && (group.refersToItself || group.numAtOnce != numAtOnce_);
  end.text = canBePlain && !seenFromWithin ? &open : nullptr;
  if (open.code == RX_GROUP)
    open.op3 = end.text && !makesSurplus_ && !isQuantified(index) && !nextBar(open) ? kNoChoice : 0;
}

void Links::add(int32_t index) {
  RxNode& node = nodes_[index];
  if (isGroupOpen(node)) return open(index);
  switch (node.code) {
    case RX_ALT:
      return bar(node);
    case RX_BACKREF:
      return backref(node.op1);
    case RX_END:
      close(index);
      break;
    case RX_CODEPOINT:
      break;
    default:
      return;
  }
  if (isQuantified(index) && matchesAtOnce(node, nodes_[index + 1])) ++numAtOnce_;
}

}  // namespace

void linkGroups(ulkRegExpState& state) {
  Links links(state);
  for (int32_t i = 0; i < state.numNodes; ++i) {
    links.add(i);
    if (state.nodes()[i].code == RX_CLASS) i += state.nodes()[i].op2;
  }
}

}  // namespace ulk
