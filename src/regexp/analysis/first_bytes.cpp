#include "regexp/analysis/first_bytes.h"

#include "regexp/program/class_sets.h"
#include "regexp/text/bytes.h"
#include "unicode/unicode.h"

namespace ulk {

namespace {

constexpr int32_t kMaxRestNodes = 256;  // looked at for the end of a group

// The bytes from 0x80 on that can begin a character that a code point or a property accepts. A byte that is a
// character by itself has a negative value.
void addHighBytesOf(const RxNode& item, uint32_t options, ByteSet256& set) {
  if (codeOf(item) == RX_CODEPOINT && !(options & RX_OPT_CASELESS) && codePointOf(item) >= 0)
    return addLeads(codePointOf(item), codePointOf(item), set);
  if (codeOf(item) == RX_UNIRANGE && memberNegation(item) == 0)
    return addLeads(lowOf(item), highOf(item), set);
  if (codeOf(item) == RX_SCRIPT && propertyNegation(item) == 0)
    return addLeads(leadsOfScript(scriptNumber(item)), set);
  if (codeOf(item) == RX_CATEGORY) {
    const auto mask = static_cast<uint32_t>(categoryMask(item));
    const uint64_t kinds = acceptedKinds(mask, propertyNegation(item) != 0);
    if (!(kinds >> kindOf(-1) & 1)) return addLeads(leadsOfKinds(kinds), set);
  }
  addAllHighBytes(set);
}

}  // namespace

void addFirstBytes(const RxNode& item, uint32_t options, ByteSet256& set) {
  switch (codeOf(item)) {
    case RX_CHAR:
      return addByte(byteOf(item), options, set);
    case RX_STRING:
      return addByte(*stringOf(item), options, set);
    case RX_CHARTYPE:
      if (byteSetOf(letterOf(item), options) == 0) break;
      return addShorthand(letterOf(item), options, set);
    case RX_CLASS:
      return addClassBytes(item, options, set);
    case RX_CODEPOINT:
    case RX_CATEGORY:
    case RX_UNIRANGE:
    case RX_SCRIPT:
      addAsciiOf(item, options, set);
      return addHighBytesOf(item, options, set);
    default:
      break;
  }
  for (uint32_t& word : set.words) word = ~0u;
}

void addAllBytes(const RxNode& item, uint32_t options, ByteSet256& set) {
  if (codeOf(item) == RX_STRING) {
    for (int32_t i = 0; i < stringLength(item); ++i) addByte(stringOf(item)[i], options, set);
    return;
  }
  ByteSet256 first{};
  addFirstBytes(item, options, first);
  if (!takesByte(item) && hasHighBytes(first)) addAllHighBytes(first);
  addAll(first, set);
}

bool FirstBytes::ofProgram(uint32_t options, const RxNode* firstBar) {
  exitOptions = options;
  before_ = Before::kStart;
  const bool decided = alternatives(0, firstBar, numNodes_, options);
  return decided && (boundarySteps == 0 || !firstBar);
}

// `bar`: the one behind the first alternative.
bool FirstBytes::alternatives(int32_t first, const RxNode* bar, int32_t end, uint32_t options) {
  for (;; bar = nextBar(*bar)) {
    int32_t node = first;
    if (sequence(node, end, options) != Way::kDecided) return false;
    if (!bar) return true;
    options = optionsAfter(*bar, options);
    leaveOptions(options);
    first = static_cast<int32_t>(bar - nodes_) + 1;
  }
}

bool FirstBytes::group(int32_t open, uint32_t options) {
  constexpr int32_t kMaxNesting = 32;
  const RxNode& node = nodes_[open];
  if (depth_ >= kMaxNesting) return false;
  // A repeatable group derives the match length anew when it fails; others put it back.
  const bool entersGroupOutside = entersGroup || isRepeatableGroup(node);
  ++depth_;
  const bool decided =
      alternatives(open + 1, nextBar(node), open + 1 + bodyLength(node), optionsAfter(node, options));
  --depth_;
  entersGroup = entersGroupOutside;
  return decided;
}

// What a test of the position alone, not left out, leads to.
FirstBytes::Way FirstBytes::assertion(int32_t kind) {
  constexpr ByteSet256 kNewline{{1u << '\n'}};
  switch (kind) {
    case '$':
    case 'Z':
      addAll(kNewline, set);
      noteItem(-1, 0);
      [[fallthrough]];
    case 'z':
      // No byte of the text is one that a match begins with here: in `(ab|\z)`, "ab" is the one item.
      atEnd = true;
      return Way::kDecided;
    case 'b':
      if (before_ == Before::kWordByte) {
        addShorthand('W', 0, set);
        atEnd = true;
        noteItem(-1, 0);
        return Way::kDecided;
      }
      if (before_ != Before::kStart || depth_ > 0 || numItems_ > 0 || boundarySteps > 0)
        return Way::kUndecided;
      // Behind a lookaround that fails the boundary is not tested, nor the byte read that stands there.
      if (boundsSteps) return Way::kUndecided;
      boundarySteps = steps;
      return Way::kOpen;
    default:
      return Way::kUndecided;
  }
}

// Passes a lookaround of simple alternatives that the program begins with: whatever it finds, where the item
// behind it does not match, an attempt fails after no more steps than there are nodes.
bool FirstBytes::passLookaround(int32_t open) {
  const RxNode& lookaround = nodes_[open];
  const bool tellsNothing = isLookaround(lookaround) && lookaround.code != RX_LOOKAHEAD;
  if (!tellsNothing || before_ != Before::kStart || depth_ > 0) return false;
  const int32_t end = open + 1 + bodyLength(lookaround);
  for (int32_t i = open + 1; i < end; i = nextNode(nodes_, i)) {
    const RxCode code = codeOf(nodes_[i]);
    if (!isItem(nodes_[i]) && code != RX_ALT && code != RX_ASSERT) return false;
  }
  steps += bodyLength(lookaround);
  return boundsSteps = true;
}

void FirstBytes::noteItem(int32_t node, uint32_t options) {
  soleItem = ++numItems_ == 1 ? node : -1;
  itemOptions = options;
}

// Walks over nodes[node, end) and adds what each item and group can begin with, up to the first that must
// match: a, b, c and d for `a?(b|c)*de`, which is then decided. It is open when none must, as in the first
// alternative of `(a?b*|c)d`; then node and options are those at the bar or end that was reached.
FirstBytes::Way FirstBytes::sequence(int32_t& node, int32_t end, uint32_t& options) {
  const int32_t depth = depth_;
  Way way = Way::kOpen;
  while (node < end && way == Way::kOpen) {
    const RxNode& item = nodes_[node];
    if (item.code == RX_ALT || item.code == RX_END) break;
    if (++steps > maxSteps_) return Way::kUndecided;
    if (item.code == RX_OPTIONS) {
      options = optionsAfter(item, options);
      // Attempts that fail in a lookaround before would leave others.
      if (boundsSteps && depth_ == 0 && options != exitOptions) return Way::kUndecided;
      leaveOptions(options);
      ++node;
      continue;
    }
    const int32_t next = nextItem(nodes_, node);
    const RxNode* const quantifier = quantifierOf(nodes_, numNodes_, node);
    if (item.code == RX_ASSERT) {
      // One that may be left out is not tested.
      if (!quantifier || minOf(*quantifier) > 0) way = assertion(assertionOf(item));
      node = next + (quantifier ? 1 : 0);
      continue;
    }
    if (!quantifier && passLookaround(node)) {
      node = next;
      continue;
    }
    const bool isGroup = isRepeatableGroup(item);
    const bool isRun = item.code == RX_ATOMIC || (item.code == RX_LOOKAHEAD && !quantifier);
    way = Way::kUndecided;
    if (isItem(item)) {
      addFirstBytes(item, options, set);
      noteItem(node, options);
    } else if ((!isGroup && !isRun) || !group(node, options)) {
      break;
    }
    if (!quantifier || minOf(*quantifier) > 0) {
      way = Way::kDecided;
    } else if (isGroup && maxOf(*quantifier) > 0) {
      // A group that matches no times is left with the options outside it, and puts them back when that
      // fails.
      options = optionsAfter(nodes_[next - 1], options);
      ++depth_;
      way = Way::kOpen;
    } else if (isItem(item) && quantifier->code == RX_REPEAT) {
      way = Way::kOpen;
    }
    if (way == Way::kOpen) node = next + 1;
  }
  depth_ = depth;
  return way;
}

bool FirstBytes::ofRest(int32_t node, uint32_t options, bool afterWord) {
  before_ = afterWord ? Before::kWordByte : Before::kUnknown;
  const uint32_t entryOptions = options;
  exitOptions = options;
  maxSteps_ = kMaxRestSteps;
  for (;;) {
    const Way way = sequence(node, numNodes_, options);
    if (way != Way::kOpen) return way == Way::kDecided && exitOptions == entryOptions;
    if (node >= numNodes_ || serialOf(nodes_[node]) < 1) return false;

    // The group's end, which at a bar is reached in the same step.
    const int32_t end = groupEnd(node);
    if (end < 0 || quantifierOf(nodes_, numNodes_, end)) return false;
    if (++steps > maxSteps_) return false;
    options = optionsAfter(nodes_[end], options);
    depth_ = 1;  // the group's end puts them back
    node = end + 1;
  }
}

// The end of the group that a bar or an end belongs to, -1 if it is far away.
int32_t FirstBytes::groupEnd(int32_t node) const {
  const int32_t serial = serialOf(nodes_[node]);
  for (int32_t i = node; i < numNodes_ && i < node + kMaxRestNodes; ++i)
    if (nodes_[i].code == RX_END && serialOf(nodes_[i]) == serial) return i;
  return -1;
}

}  // namespace ulk
