#include "regexp/byte_sets.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>

#include "regexp/bytes.h"
#include "regexp/class_sets.h"
#include "regexp/first_bytes.h"
#include "regexp/items.h"

namespace ulk {

namespace {

int32_t highestSerial(const RxNode* nodes, int32_t numNodes) {
  int32_t highest = 0;
  for (int32_t i = 0; i < numNodes; ++i)
    if (nodes[i].code == RX_END) highest = std::max(highest, std::abs(nodes[i].op1));
  return highest;
}

void add(uint8_t byte, ByteSet256& set) { set.words[byte >> 5] |= 1u << (byte & 31); }

void addMultibyte(ByteSet256& set) {
  for (int i = 4; i < 8; ++i) set.words[i] = ~0u;
}

// The shorthand sets of kByteSets, one for each of its bits.
constexpr std::array<ByteSet256, 8> kShorthandSets = [] {
  std::array<ByteSet256, 8> sets{};
  for (uint32_t bit = 0; bit < 8; ++bit)
    for (uint32_t c = 0; c < 256; ++c) sets[bit].words[c >> 5] |= (kByteSets[c] >> bit & 1u) << (c & 31);
  return sets;
}();

constexpr size_t kWordSet = std::countr_zero(static_cast<unsigned>(kWord));

bool intersect(const ByteSet256& a, const ByteSet256& b) {
  uint32_t common = 0;
  for (int i = 0; i < 8; ++i) common |= a.words[i] & b.words[i];
  return common != 0;
}

bool isSubset(const ByteSet256& a, const ByteSet256& b) {
  uint32_t others = 0;
  for (int i = 0; i < 8; ++i) others |= a.words[i] & ~b.words[i];
  return others == 0;
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
    const int32_t next = nextItem(nodes_, end_);
    if (next >= numNodes_ || nodes_[next].code != RX_REPEAT || nodes_[next].op1 > 0) return false;
    end_ = next + 1;
    return true;
  }

  const RxNode* const nodes_;
  const int32_t numNodes_;
  int32_t end_ = 0;   // of the row that was counted last
  int32_t left_ = 0;  // items of it that are still to come
};

}  // namespace

void addAll(const ByteSet256& other, ByteSet256& set) {
  for (int i = 0; i < 8; ++i) set.words[i] |= other.words[i];
}

void addByte(int32_t byte, uint32_t options, ByteSet256& set) {
  if (byte > 255) return;
  add(static_cast<uint8_t>(byte), set);
  if ((options & RX_OPT_CASELESS) && isAsciiLetter(byte)) add(static_cast<uint8_t>(byte ^ 0x20), set);
}

void addShorthand(int32_t letter, uint32_t options, ByteSet256& set) {
  const uint8_t wanted = byteSetOf(letter, options);
  if (wanted) addAll(kShorthandSets[static_cast<size_t>(std::countr_zero(wanted))], set);
}

SpareFrames::SpareFrames(const ulkRegExpState& state)
    : highestSerial_(highestSerial(state.nodes(), state.numNodes)) {}

void makeFollowSets(ulkRegExpState& state, SpareFrames& frames) {
  RxNode* const nodes = state.nodes();
  uint32_t options = state.options;
  const RxNode* item = nullptr;
  OptionalRow row(state);
  for (int32_t i = 0; i < state.numNodes; ++i) {
    RxNode& node = nodes[i];
    options = optionsAfter(node, options);
    if (!isQuantifier(node)) {
      item = &node;
      if (node.code == RX_CLASS) i += node.op2;
      continue;
    }
    node.text = nullptr;
    if (!frames.any()) continue;
    if (item->code == RX_END || item->code == RX_ASSERT || item->code == RX_BACKREF) continue;
    if (row.isTooLong(i + 1)) continue;
    ByteSet256 taken{};
    addFirstBytes(*item, options, taken);
    FirstBytes follow(state);
    const bool afterWord = node.op1 > 0 && isSubset(taken, kShorthandSets[kWordSet]);
    if (!follow.ofRest(i + 1, options, afterWord) || follow.steps > kMaxFollowSteps) continue;
    const bool disjoint = !intersect(taken, follow.set);
    ByteSet256& set = state.frames[frames.take()].bytes;
    set = follow.set;
    node.text = &set;
    node.op3 = FollowNote::pack({options, follow.steps, follow.entersGroup, disjoint, follow.atEnd});
  }
}

void addFirstBytes(const RxNode& item, uint32_t options, ByteSet256& set) {
  switch (item.code) {
    case RX_CHAR:
      return addByte(item.op1, options, set);
    case RX_STRING:
      return addByte(*static_cast<const uint8_t*>(item.text), options, set);
    case RX_CHARTYPE:
      return addShorthand(item.op1, options, set);
    case RX_CLASS:
      return addClassBytes(item, options, set);
    case RX_CODEPOINT:
    case RX_CATEGORY:
    case RX_UNIRANGE:
    case RX_SCRIPT:
      addAsciiOf(item, options, set);
      return addMultibyte(set);
    default:
      for (uint32_t& word : set.words) word = ~0u;
  }
}

}  // namespace ulk
