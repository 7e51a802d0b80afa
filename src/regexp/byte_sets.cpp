#include "regexp/byte_sets.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>

#include "regexp/bytes.h"
#include "regexp/first_bytes.h"
#include "regexp/items.h"
#include "unicode/unicode.h"

namespace ulk {

namespace {

int32_t highestSerial(const RxNode* nodes, int32_t numNodes) {
  int32_t highest = 0;
  for (int32_t i = 0; i < numNodes; ++i)
    if (nodes[i].code == RX_END) highest = std::max(highest, std::abs(nodes[i].op1));
  return highest;
}

// The options in force after the node, in the order of the pattern.
uint32_t optionsAfter(const RxNode& node, uint32_t options) {
  switch (node.code) {
    case RX_OPTIONS:
      return static_cast<uint32_t>(node.op1);
    case RX_OPTGROUP:
      return static_cast<uint32_t>(node.op3);
    case RX_ALT:
    case RX_END:
      return static_cast<uint32_t>(node.op2);
    default:
      return options;
  }
}

void add(uint8_t byte, ByteSet256& set) { set.words[byte >> 5] |= 1u << (byte & 31); }

void addMultibyte(ByteSet256& set) {
  for (int i = 4; i < 8; ++i) set.words[i] = ~0u;
}

void invert(ByteSet256& set) {
  for (uint32_t& word : set.words) word = ~word;
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

bool isByteRange(const RxNode& member) { return member.op1 < 256 && member.op2 < 256; }

// Tests every byte, each as a character by itself.
void addByTest(const RxNode& member, uint32_t options, ByteSet256& set) {
  for (int32_t c = 0; c < 256; ++c) {
    const auto byte = static_cast<uint8_t>(c);
    if (memberAccepts(member, {c < 0x80 ? c : c - 256, 1}, byte, options)) add(byte, set);
  }
}

void addMember(const RxNode& member, uint32_t options, ByteSet256& set) {
  ByteSet256 accepted{};
  switch (member.code) {
    case RX_CHAR:
      addByte(member.op1, options, accepted);
      break;
    case RX_CHARTYPE:
      addShorthand(member.op1, options, accepted);
      break;
    case RX_RANGE:
      if (!isByteRange(member)) return addByTest(member, options, set);
      for (int32_t c = member.op1; c <= member.op2; ++c) addByte(c, options, accepted);
      break;
    default:
      return addByTest(member, options, set);
  }
  if (member.op3 != 0) invert(accepted);
  addAll(accepted, set);
}

void makeClassSet(const RxNode& header, uint32_t options, ByteSet256& set) {
  set = {};
  for (int32_t i = 1; i <= header.op2; ++i) addMember(*(&header + i), options, set);
  if (header.op1 != 0) invert(set);
}

void addRange(int64_t first, int64_t last, ByteSet256& set) {
  for (int64_t c = std::max<int64_t>(first, 0); c <= last && c < 0x80; ++c) add(static_cast<uint8_t>(c), set);
}

// The ASCII characters of a code-point or property item.
void addAscii(const RxNode& item, uint32_t options, ByteSet256& set) {
  ByteSet256 accepted{};
  bool negated = false;
  switch (item.code) {
    case RX_UNIRANGE:
      addRange(item.op1, item.op2, accepted);
      negated = item.op3 != 0;
      break;
    case RX_SCRIPT: {
      const auto* const ranges = static_cast<const CodePointRange*>(item.text);
      for (int32_t i = 0; i < item.op3 && ranges[i].first < 0x80; ++i)
        addRange(ranges[i].first, ranges[i].last, accepted);
      negated = item.op2 != 0;
      break;
    }
    default:
      for (int32_t c = 0; c < 0x80; ++c) {
        const bool accepts =
            item.code == RX_CODEPOINT ? codePointAccepts(item, c, options) : propertyAccepts(item, c);
        if (accepts) add(static_cast<uint8_t>(c), accepted);
      }
  }
  if (negated) invert(accepted);
  addAll(accepted, set);
}

// Whether no member of the class can accept a character of several bytes.
bool acceptsSingleBytesOnly(const RxNode& header, uint32_t options) {
  if (header.op1 != 0) return false;
  const bool caseless = options & RX_OPT_CASELESS;
  for (const RxNode* member = &header + 1; member <= &header + header.op2; ++member) {
    if (member->op3 != 0) return false;
    switch (member->code) {
      case RX_CHAR:
        if (member->op1 >= 0x80) return false;
        break;
      case RX_RANGE:
        if (caseless || member->op2 >= 0x80) return false;
        break;
      case RX_CHARTYPE:
        if (member->op1 != 'd' && member->op1 != 'w' && member->op1 != 's') return false;
        break;
      default:
        return false;
    }
  }
  return true;
}

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

void makeClassSets(ulkRegExpState& state, SpareFrames& frames) {
  RxNode* const nodes = state.nodes();
  uint32_t options = state.options;
  for (int32_t i = 0; i < state.numNodes; ++i) {
    RxNode& node = nodes[i];
    options = optionsAfter(node, options);
    if (node.code != RX_CLASS) continue;
    const int32_t frame = frames.take();
    ByteSet256* const set = frame == 0 ? nullptr : &state.frames[frame].bytes;
    if (set) makeClassSet(node, options, *set);
    node.text = set;
    node.op3 = static_cast<int32_t>(options & RX_OPT_CASELESS);
    i += node.op2;
  }
}

void makeFollowSets(ulkRegExpState& state, SpareFrames& frames) {
  RxNode* const nodes = state.nodes();
  uint32_t options = state.options;
  const RxNode* item = nullptr;
  for (int32_t i = 0; i < state.numNodes; ++i) {
    RxNode& node = nodes[i];
    options = optionsAfter(node, options);
    if (!isQuantifier(node)) {
      item = &node;
      if (node.code == RX_CLASS) i += node.op2;
      continue;
    }
    node.text = nullptr;
    if (item->code == RX_END || item->code == RX_ASSERT || item->code == RX_BACKREF) continue;
    ByteSet256 taken{};
    addFirstBytes(*item, options, taken);
    FirstBytes follow(state);
    const bool afterWord = node.op1 > 0 && isSubset(taken, kShorthandSets[kWordSet]);
    if (!follow.ofRest(i + 1, options, afterWord) || follow.steps > kMaxFollowSteps) continue;
    const int32_t frame = frames.take();
    if (frame == 0) continue;
    const bool disjoint = !intersect(taken, follow.set);
    state.frames[frame].bytes = follow.set;
    node.text = &state.frames[frame].bytes;
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
    case RX_CLASS: {
      ByteSet256 accepted;
      makeClassSet(item, options, accepted);
      addAll(accepted, set);
      if (!acceptsSingleBytesOnly(item, options)) addMultibyte(set);
      return;
    }
    case RX_BYTE:
      for (uint32_t& word : set.words) word = ~0u;
      return;
    case RX_XSEQ:  // no ASCII character is a mark
      addRange(0, 0x7F, set);
      return addMultibyte(set);
    case RX_CODEPOINT:
      if (!(options & RX_OPT_CASELESS)) {
        addRange(item.op1, item.op1, set);
        return addMultibyte(set);
      }
      [[fallthrough]];
    default:
      addAscii(item, options, set);
      return addMultibyte(set);
  }
}

}  // namespace ulk
