// Finds the head of a program: its first steps, as long as each is followed by one other and nothing else
// could come of giving back what a repeat has taken.
#include <algorithm>

#include "regexp/analysis/analysis.h"
#include "regexp/analysis/start_filter.h"
#include "regexp/program/follow_note.h"

namespace ulk {

namespace {

class HeadFinder {
 public:
  HeadFinder(const ulkRegExpState& state, ConstantOptions options)
      : state_(state), nodes_(state.nodes()), options_(options) {}

  int32_t end() const;

 private:
  bool leavesNoChoice(int32_t index) const;
  bool neverGivesBack(int32_t index) const;
  bool onlyEndsFollow(int32_t node) const;
  bool isWorthwhile(int32_t end) const;

  const ulkRegExpState& state_;
  const RxNode* const nodes_;
  const ConstantOptions options_;
};

// Whether nothing can fail from the node on.
bool HeadFinder::onlyEndsFollow(int32_t node) const {
  return std::all_of(nodes_ + node, nodes_ + state_.numNodes, [](const RxNode& end) {
    return stepOf(end) == Step::kEndPlain || stepOf(end) == Step::kEndCapture;
  });
}

// Whether a greedy repeat that has taken all it can has nothing to come back for: wherever else it ended, one
// of its items would follow, and no match goes on with those.
bool HeadFinder::neverGivesBack(int32_t index) const {
  const RxNode& quantifier = nodes_[index];
  if (minOf(quantifier) == maxOf(quantifier) || onlyEndsFollow(index + 1)) return true;
  const FollowNote note(followNote(quantifier));
  return followSet(quantifier) && note.disjoint() && note.options() == *options_;
}

bool HeadFinder::leavesNoChoice(int32_t index) const {
  const RxNode& node = nodes_[index];
  switch (stepOf(node)) {
    case Step::kByte:
    case Step::kString:
    case Step::kLetter:
    case Step::kShorthand:
    case Step::kSet:
    case Step::kBackref:
    case Step::kItem:
    case Step::kWordBoundary:
    case Step::kEndPlain:
    case Step::kEndCapture:
      return true;
    case Step::kOptions:
    case Step::kAssertion:
      return !quantifierOf(nodes_, state_.numNodes, index);
    case Step::kOpenPassed:
    case Step::kOpenPlain:
    case Step::kOpenCapture:
      return !nextBar(node);
    case Step::kGreedyShorthand:
    case Step::kGreedySet:
    case Step::kGreedyItem:
      return codeOf(node) != RX_BACKREF && neverGivesBack(nextNode(nodes_, index));
    default:
      return false;
  }
}

// A single step is run as quickly by itself, but for a capture, which would leave a choice.
bool HeadFinder::isWorthwhile(int32_t end) const {
  return end > 1 || (end == 1 && stepOf(nodes_[0]) == Step::kOpenCapture);
}

int32_t HeadFinder::end() const {
  if (startFilterOf(state_).firstBar >= 0 || !options_) return 0;
  int32_t index = 0;
  while (index < state_.numNodes && leavesNoChoice(index)) {
    index = nextNode(nodes_, index);
    if (index < state_.numNodes && isQuantifier(nodes_[index])) ++index;
  }
  return isWorthwhile(index) ? index : 0;
}

}  // namespace

void findHead(ulkRegExpState& state, ConstantOptions options) {
  state.frames[0].start.headEnd = HeadFinder(state, options).end();
}

}  // namespace ulk
