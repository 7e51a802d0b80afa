#include "regexp/analysis/follow_sets.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "regexp/analysis/first_bytes.h"
#include "regexp/program/follow_note.h"

namespace ulk {

namespace {

int32_t highestSerial(const RxNode* nodes, int32_t numNodes) {
  int32_t highest = 0;
  for (int32_t i = 0; i < numNodes; ++i)
    if (codeOf(nodes[i]) == RX_END) highest = std::max(highest, std::abs(serialOf(nodes[i])));
  return highest;
}

// Optional items in a row behind repeats: where there are many, nothing is decided as far as the rest of the
// program is followed. Each row is counted once, not from each of its items.
class OptionalRow {
 public:
  explicit OptionalRow(const ulkRegExpState& state) : nodes_(state.nodes()), numNodes_(state.numNodes) {}

  // To be asked for the nodes behind all repeats of items, in their order.
  bool isTooLong(int32_t node) {
    if (node < end_) {
      --left_;
    } else {
      end_ = node;
      for (left_ = 0; passOptional(); ++left_) {
      }
    }
    return left_ >= kMaxRestSteps;
  }

 private:
  bool passOptional() {
    if (end_ >= numNodes_ || !isItem(nodes_[end_])) return false;
    const RxNode* const quantifier = quantifierOf(nodes_, numNodes_, end_);
    if (!quantifier || quantifier->code != RX_REPEAT || minOf(*quantifier) > 0) return false;
    end_ = nextItem(nodes_, end_) + 1;
    return true;
  }

  const RxNode* const nodes_;
  const int32_t numNodes_;
  int32_t end_ = 0;   // of the row that was counted last
  int32_t left_ = 0;  // items of it that are still to come
};

// Whether a repeat, which is not empty, is all of a plain group, and a reference to that group comes next.
bool isFollowedByItself(const ulkRegExpState& state, int32_t item, int32_t quantifier) {
  const RxNode* const nodes = state.nodes();
  const RxNode& repeat = nodes[quantifier];
  if (repeat.code != RX_REPEAT || minOf(repeat) == 0 || item == 0 || quantifier + 2 >= state.numNodes)
    return false;
  const RxNode& open = nodes[item - 1];
  const RxNode& end = nodes[quantifier + 1];
  const RxNode& reference = nodes[quantifier + 2];
  return open.code == RX_CAPTURE && end.code == RX_END && linkedOpen(end) == &open &&
         reference.code == RX_BACKREF && referredCapture(reference) == captureNumber(open) &&
         !quantifierOf(nodes, state.numNodes, quantifier + 2);
}

}  // namespace

SpareFrames::SpareFrames(const ulkRegExpState& state)
    : highestSerial_(highestSerial(state.nodes(), state.numNodes)) {}

FrameRange unusedFrames(const ulkRegExpState& state) {
  const RxNode* const nodes = state.nodes();
  const int32_t first = highestSerial(nodes, state.numNodes) + 1;
  const WorkFrame* end = state.frames + kLastFreeFrame + 1;
  for (int32_t i = 0; i < state.numNodes; i = nextNode(nodes, i)) {
    if (!isQuantifier(nodes[i]) || !followSet(nodes[i])) continue;
    end = std::min(end, reinterpret_cast<const WorkFrame*>(followSet(nodes[i])));
  }
  return {first, std::max(static_cast<int32_t>(end - state.frames) - first, 0)};
}

void makeFollowSets(ulkRegExpState& state, SpareFrames& frames) {
  RxNode* const nodes = state.nodes();
  uint32_t options = state.options;
  const RxNode* item = nullptr;
  OptionalRow row(state);
  ByteSet256 words{};
  addShorthand('w', 0, words);
  for (int32_t i = 0; i < state.numNodes; i = nextNode(nodes, i)) {
    RxNode& node = nodes[i];
    options = optionsAfter(node, options);
    if (!isQuantifier(node)) {
      item = &node;
      continue;
    }
    setFollowSet(node, nullptr);
    if (!frames.any()) continue;
    if (item->code == RX_END || item->code == RX_ASSERT || item->code == RX_BACKREF) continue;
    if (row.isTooLong(i + 1)) continue;
    ByteSet256 taken{};
    addFirstBytes(*item, options, taken);
    FirstBytes follow(state);
    const bool itself = isFollowedByItself(state, static_cast<int32_t>(item - nodes), i);
    if (itself) {
      std::memset(&follow.set, 0xFF, sizeof follow.set);  // a search sees what it is
      follow.steps = 2;                                   // for the group's end and the reference
    } else {
      const bool afterWord = minOf(node) > 0 && isSubset(taken, words);
      if (!follow.ofRest(i + 1, options, afterWord) || follow.steps > kMaxFollowSteps) continue;
    }
    const bool disjoint = !intersect(taken, follow.set);
    ByteSet256& set = state.frames[frames.take()].bytes;
    set = follow.set;
    setFollowSet(node, &set);
    followNote(node) = FollowNote::pack(
        {options & kMatcherOptions, follow.steps, follow.entersGroup, disjoint, follow.atEnd, itself});
  }
}

}  // namespace ulk
