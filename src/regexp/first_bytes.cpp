#include "regexp/first_bytes.h"

#include "regexp/byte_sets.h"
#include "regexp/matcher.h"

namespace ulk {

namespace {

bool isRepeatableGroup(const RxNode& node) {
  return node.code == RX_CAPTURE || node.code == RX_GROUP || node.code == RX_OPTGROUP;
}

// An item other than a back reference.
bool isByteItem(const RxNode& node) {
  return node.code < RX_ASSERT ? node.code != RX_BACKREF : node.code > RX_OPTIONS;
}

// The node after an item or a group, where its quantifier stands if it has one.
int32_t afterNode(const RxNode* nodes, int32_t node) {
  if (isGroupOpen(nodes[node])) return node + nodes[node].op2 + 2;
  return node + 1 + (nodes[node].code == RX_CLASS ? nodes[node].op2 : 0);
}

}  // namespace

bool FirstBytes::ofProgram(uint32_t options) {
  exitOptions = options;
  return alternatives(0, numNodes_, kTopLevel, options);
}

bool FirstBytes::alternatives(int32_t first, int32_t end, int32_t serial, uint32_t options) {
  for (;;) {
    const int32_t bar = findBar(nodes_, first, end, serial);
    if (sequence(first, bar < 0 ? end : bar, options) != Way::kDecided) return false;
    if (bar < 0) return true;
    options = static_cast<uint32_t>(nodes_[bar].op2);
    leaveOptions(options);
    first = bar + 1;
  }
}

bool FirstBytes::group(int32_t open, uint32_t options) {
  constexpr int32_t kMaxNesting = 32;
  const RxNode& node = nodes_[open];
  if (depth_ >= kMaxNesting) return false;
  if (node.code == RX_OPTGROUP) options = static_cast<uint32_t>(node.op3);
  // A repeatable group derives the match length anew when it fails; an atomic one puts it back.
  const bool entersGroupOutside = entersGroup || node.code != RX_ATOMIC;
  ++depth_;
  const bool decided = alternatives(open + 1, open + node.op2 + 1, node.op1, options);
  --depth_;
  entersGroup = entersGroupOutside;
  return decided;
}

// Adds what nodes[node, end) can begin with: optional items and groups, and the first that is required. Open when none
// is; then the options are those at the end.
FirstBytes::Way FirstBytes::sequence(int32_t node, int32_t end, uint32_t& options) {
  const int32_t depth = depth_;
  Way way = Way::kOpen;
  while (node < end && way == Way::kOpen) {
    const RxNode& item = nodes_[node];
    ++steps;
    if (item.code == RX_OPTIONS) {
      options = static_cast<uint32_t>(item.op1);
      leaveOptions(options);
      ++node;
      continue;
    }
    const bool isGroup = isRepeatableGroup(item);
    way = Way::kUndecided;
    if (isByteItem(item)) {
      addFirstBytes(item, options, set);
    } else if ((!isGroup && item.code != RX_ATOMIC) || !group(node, options)) {
      break;
    }

    const int32_t next = afterNode(nodes_, node);
    const RxNode* const quantifier = next < numNodes_ && isQuantifier(nodes_[next]) ? &nodes_[next] : nullptr;
    if (!quantifier || quantifier->op1 > 0) {
      way = Way::kDecided;
    } else if (isGroup && quantifier->op2 > 0) {
      // A group that matches no times is left with the options outside it, and puts them back when that fails.
      options = static_cast<uint32_t>(nodes_[next - 1].op2);
      ++depth_;
      way = Way::kOpen;
    } else if (isByteItem(item) && quantifier->code == RX_REPEAT) {
      way = Way::kOpen;
    }
    node = next + 1;
  }
  depth_ = depth;
  return way;
}

bool FirstBytes::ofRest(int32_t node, uint32_t options) {
  const uint32_t entryOptions = options;
  exitOptions = options;
  for (;;) {
    // The rest of the alternative that the node is in.
    int32_t end = node;
    while (end < numNodes_ && nodes_[end].code != RX_END && nodes_[end].code != RX_ALT) end = afterNode(nodes_, end);
    const Way way = sequence(node, end, options);
    if (way != Way::kOpen || end >= numNodes_) return way == Way::kDecided && exitOptions == entryOptions;

    // Then the group's end, which at a bar is reached in the same step.
    const int32_t serial = nodes_[end].op1;
    if (serial < 1) return false;
    while (nodes_[end].code != RX_END || nodes_[end].op1 != serial) ++end;
    if (end + 1 < numNodes_ && isQuantifier(nodes_[end + 1])) return false;
    ++steps;
    options = static_cast<uint32_t>(nodes_[end].op2);
    depth_ = 1;  // the group's end puts them back
    node = end + 1;
  }
}

}  // namespace ulk
