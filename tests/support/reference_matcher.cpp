#include "support/reference_matcher.h"

#include <algorithm>
#include <cstdlib>

#include "regexp/program.h"
#include "regexp/state.h"
#include "unicode/unicode.h"

namespace ulk_test {
namespace {

using namespace ulk;

struct Slot {
  int32_t start = -1;
  int32_t length = -1;
};

// The bookkeeping of one group.
struct Frame {
  int32_t minLeft = 0;
  int32_t maxLeft = 0;
  int32_t iterationStart = 0;
  int32_t iterationLength = 0;
  bool inBody = false;
};

struct Character {
  int32_t value;
  int32_t length;
};

struct Quantifier {
  int32_t least = 1;
  int32_t most = 1;
  bool lazy = false;
};

uint32_t bits(int32_t options) { return static_cast<uint32_t>(options); }

bool isLetter(int32_t c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool isDigit(int32_t c) { return c >= '0' && c <= '9'; }
bool isSpace(int32_t c) { return c == 9 || c == 10 || c == 12 || c == 13 || c == 32; }
bool isWord(int32_t c) { return isLetter(c) || isDigit(c) || c == '_'; }
bool within(int32_t c, int32_t low, int32_t high) { return low <= c && c <= high; }

bool sameByte(int32_t textByte, int32_t patternByte, bool caseless) {
  const int32_t difference = textByte ^ patternByte;
  return difference == 0 || (caseless && difference == 0x20 && isLetter(textByte));
}

int32_t wordValue(int32_t c) {
  return ((c - '0') | ('9' - c)) & ((c - 'A') | ('Z' - c)) & ((c - 'a') | ('z' - c)) & -(c ^ 0x5F);
}

// The text, and how far it was looked at.
class Text {
 public:
  explicit Text(const uint8_t* bytes) : bytes_(bytes) {}

  int32_t byte(int32_t at) {
    bytesRead_ = std::max(bytesRead_, at + 1);
    return bytes_[at];
  }

  // A malformed byte is a character of its own, with the value of a signed char.
  Character character(int32_t at) {
    constexpr int32_t kLargest[] = {0x7F, 0x7FF, 0xFFFF, 0x1FFFFF, 0x3FFFFFF, INT32_MAX};
    const int32_t lead = byte(at);
    if (lead < 0x80) return {lead, 1};
    const Character alone = {lead - 256, 1};
    int32_t more = 0;
    while (more < 6 && (lead & (0x40 >> more))) ++more;
    if (more == 0 || more == 6) return alone;
    int32_t value = lead & (0x3F >> more);
    for (int32_t i = 1; i <= more; ++i) {
      const int32_t next = byte(at + i);
      if ((next & 0xC0) != 0x80) return alone;
      value = value * 64 + (next & 0x3F);
    }
    return within(value, kLargest[more - 1] + 1, kLargest[more]) ? Character{value, more + 1} : alone;
  }

  // Where the character begins that lies `width` characters before `at`, as counted from the text's start, or
  // so many bytes before it if there are too few.
  int32_t back(int32_t at, int32_t width) {
    if (width == 0) return at;
    while (nextStart_ < at) {
      starts_.push_back(nextStart_);
      nextStart_ += character(nextStart_).length;
    }
    const auto count = std::lower_bound(starts_.begin(), starts_.end(), at) - starts_.begin();
    return count >= width ? starts_[static_cast<size_t>(count - width)] : at - width;
  }

  int32_t bytesRead() const { return bytesRead_; }

 private:
  const uint8_t* bytes_;
  int32_t bytesRead_ = 0;
  std::vector<int32_t> starts_;  // of the characters from the text's start
  int32_t nextStart_ = 0;
};

// One search call's matcher. A position is an offset into the text; nothing depends on how far beyond the end
// it lies.
class Matcher {
 public:
  Matcher(const ulkRegExpState& state, const uint8_t* bytes, int32_t limit, int64_t maxWork)
      : text(bytes),
        options(state.options),
        budget(limit),
        slots(static_cast<size_t>(state.numCaptures)),
        nodes_(state.nodes()),
        numNodes_(state.numNodes),
        endNode_(state.numNodes),
        openOfSerial_(kMaxSerial + 1),
        frames_(kMaxSerial + 1),
        work_(maxWork) {
    for (int32_t i = 0; i < numNodes_; i += nodes_[i].code == RX_CLASS ? nodes_[i].op2 + 1 : 1)
      if (isGroupOpen(nodes_[i])) openOfSerial_[serialOf(nodes_[i])] = i;
  }

  bool attempt(int32_t at);
  Slot wholeMatch() const;

  Text text;
  int32_t end = 0;  // of what is searched
  uint32_t options;
  bool nonEmpty = false;
  int32_t budget;
  int64_t steps = 0;
  std::vector<Slot> slots;  // the first is not used
  bool tooDeep = false;
  bool tooLong = false;

 private:
  bool run(int32_t node, int32_t at);
  bool dispatch(int32_t node, int32_t at);
  bool assertionHolds(int32_t kind, int32_t at);
  bool wordBoundary(int32_t kind, int32_t at);

  bool accepts(const RxNode& node, Character c, int32_t at);
  bool inClass(int32_t node, Character c, int32_t lead);
  bool isMember(const RxNode& member, Character c, int32_t lead) const;
  bool inRange(const RxNode& range, Character c, int32_t value) const;
  bool ofType(int32_t type, int32_t lead) const;
  bool hasProperty(const RxNode& node, int32_t c) const;
  int32_t takeItem(int32_t node, int32_t at);
  int32_t takeBytes(const uint8_t* bytes, int32_t length, int32_t at);
  int32_t takeReference(int32_t group, int32_t at);
  int32_t takeSequence(int32_t at);

  bool item(int32_t node, int32_t at);
  bool lazyRepeat(int32_t node, int32_t next, const Quantifier& quantifier, int32_t at);
  bool mayContinueLazily(const RxNode& node, int32_t next, int32_t at);
  bool greedyRepeat(int32_t node, int32_t next, const Quantifier& quantifier, int32_t at);
  bool lazyCharacters(int32_t node, int32_t next, const Quantifier& quantifier, int32_t at);

  bool openGroup(int32_t open, int32_t at);
  bool endGroup(int32_t endOfGroup, int32_t at);
  enum class Outcome { kMatched, kFailed, kFailedAfterLastIteration };
  Outcome iterate(int32_t open, int32_t at, const Slot* before);
  bool runAlternatives(int32_t open, int32_t at);
  int32_t chooseBranch(int32_t open, int32_t at);
  bool runBranch(int32_t open, int32_t branch, int32_t at);
  bool leaveGroup(int32_t open, int32_t at);
  bool conditionHolds(int32_t condition, int32_t at);

  bool runApart(int32_t open, int32_t at);
  bool lookaroundHolds(int32_t open, int32_t at);
  bool atomicIteration(int32_t open, int32_t at, int64_t* consumed);
  bool atomic(int32_t open, int32_t least, int32_t most, int32_t at);
  bool lazyAtomic(int32_t open, const Quantifier& quantifier, int32_t at);

  static size_t serialOf(const RxNode& node) { return static_cast<size_t>(std::abs(node.op1)); }
  bool caseless() const { return options & RX_OPT_CASELESS; }
  int32_t endOf(int32_t open) const { return open + nodes_[open].op2 + 1; }
  int32_t itemEnd(int32_t node) const { return nextItem(nodes_, node); }
  Quantifier quantifierAt(int32_t node) const;
  int32_t skipQuantifier(int32_t node) const;
  int32_t nextBar(int32_t from, int32_t to, int32_t serial) const;
  Slot* slotOf(int32_t open);
  bool mayWork();

  const RxNode* nodes_;
  int32_t numNodes_;
  int32_t endNode_;
  int32_t attemptStart_ = 0;
  int64_t matched_ = 0;  // the length of slot 0
  std::vector<int32_t> openOfSerial_;
  std::vector<Frame> frames_;
  std::vector<int32_t> starts_;  // of the items of all greedy repeats that are under way
  int64_t work_;
  StackGuard stack_;
};

// ---- the program

bool isQuantifierAt(const RxNode* nodes, int32_t numNodes, int32_t node) {
  return node < numNodes && isQuantifier(nodes[node]);
}

Quantifier Matcher::quantifierAt(int32_t node) const {
  if (!isQuantifierAt(nodes_, numNodes_, node)) return {};
  return {nodes_[node].op1, nodes_[node].op2, nodes_[node].code == RX_REPEAT_LAZY};
}

int32_t Matcher::skipQuantifier(int32_t node) const {
  return isQuantifierAt(nodes_, numNodes_, node) ? node + 1 : node;
}

// The next bar of a group in nodes[from, to), or -1.
int32_t Matcher::nextBar(int32_t from, int32_t to, int32_t serial) const {
  for (; from < to; ++from)
    if (nodes_[from].code == RX_ALT && nodes_[from].op1 == serial) return from;
  return -1;
}

Slot* Matcher::slotOf(int32_t open) {
  return nodes_[open].code == RX_CAPTURE ? &slots[static_cast<size_t>(nodes_[open].op3)] : nullptr;
}

bool Matcher::mayWork() {
  if (--work_ < 0) tooLong = true;
  if (stack_.nearEnd()) tooDeep = true;
  return !tooLong && !tooDeep;
}

// ---- the step

bool Matcher::run(int32_t node, int32_t at) {
  for (;;) {
    if (budget < 0) return false;
    if (node == endNode_) return !(nonEmpty && matched_ == 0);
    if (at > end || !mayWork()) return false;
    --budget;
    ++steps;
    const RxNode& step = nodes_[node];
    if (step.code == RX_ASSERT) {
      const bool optional = quantifierAt(node + 1).least == 0;
      if (!optional && !assertionHolds(step.op1, at)) return false;
      node = skipQuantifier(node + 1);
    } else if (step.code == RX_OPTIONS) {
      options = bits(step.op1);
      ++node;
    } else if (isLookaround(step)) {
      if (!lookaroundHolds(node, at)) return false;
      node = endOf(node) + 1;
    } else {
      return dispatch(node, at);
    }
  }
}

bool Matcher::dispatch(int32_t node, int32_t at) {
  const RxNode& step = nodes_[node];
  switch (step.code) {
    case RX_ALT:
      return step.op1 < 1 || endGroup(endOf(openOfSerial_[serialOf(step)]), at);
    case RX_OPTGROUP:
    case RX_COND:
    case RX_CAPTURE:
    case RX_GROUP:
      return openGroup(node, at);
    case RX_END:
      return endGroup(node, at);
    case RX_ATOMIC: {
      const Quantifier quantifier = quantifierAt(endOf(node) + 1);
      return quantifier.lazy ? lazyAtomic(node, quantifier, at)
                             : atomic(node, quantifier.least, quantifier.most, at);
    }
    case RX_RANGE:
    case RX_REPEAT:
    case RX_REPEAT_LAZY:
      return false;
    default:
      return step.code < kRxCodeEnd && item(node, at);
  }
}

bool Matcher::assertionHolds(int32_t kind, int32_t at) {
  const int32_t remaining = end - at;
  const auto afterNewline = [&] { return text.byte(at - 1) == 10; };
  const auto beforeNewline = [&] { return text.byte(at) == 10; };
  const bool multiline = options & RX_OPT_MULTILINE;
  switch (kind) {
    case '^':
      return at == 0 || (multiline && remaining >= 1 && afterNewline());
    case '$':
      return remaining == 0 || ((multiline || remaining == 1) && beforeNewline());
    case 'A':
    case 'G':
      return at == 0;
    case 'Z':
      return remaining == 0 || (remaining == 1 && beforeNewline());
    case 'z':
      return remaining == 0;
    case 'b':
    case 'B':
      return wordBoundary(kind, at);
    case kLeadingDotStar:
      return at == 0 || afterNewline();
    default:
      return false;
  }
}

bool Matcher::wordBoundary(int32_t kind, int32_t at) {
  const int32_t before = at == 0 ? 32 : text.byte(at - 1);
  const int32_t difference = wordValue(before) ^ wordValue(text.byte(at));
  return kind == 'b' ? difference < 0 : difference >= -1;
}

// ---- items

bool Matcher::ofType(int32_t type, int32_t lead) const {
  switch (type) {
    case 'd':
      return isDigit(lead);
    case 'D':
      return !isDigit(lead);
    case 'w':
      return isWord(lead);
    case 'W':
      return !isWord(lead);
    case 's':
      return isSpace(lead);
    case 'S':
      return !isSpace(lead);
    case '.':
      return lead != 10 || (options & RX_OPT_DOTALL);
    default:
      return false;
  }
}

bool Matcher::hasProperty(const RxNode& node, int32_t c) const {
  switch (node.code) {
    case RX_CATEGORY:
      return acceptsCategory(c, bits(node.op1), node.op2 != 0);
    case RX_UNIRANGE:
      return within(c, node.op1, node.op2) != (node.op3 != 0);
    default:
      return inRanges(c, static_cast<const CodePointRange*>(node.text), node.op3) != (node.op2 != 0);
  }
}

// `value` is the character as bytes see it: a malformed byte is 128 to 255.
bool Matcher::inRange(const RxNode& range, Character c, int32_t value) const {
  const int32_t low = range.op1, high = range.op2;
  if (c.length == 1 && low < 256 && high < 256) {
    if (within(value, low, high)) return true;
    return caseless() && isLetter(value) && within(value ^ 0x20, low, high);
  }
  if (!caseless()) return within(c.value, low, high);
  return within(foldCase(c.value), foldCase(low), foldCase(high));
}

bool Matcher::isMember(const RxNode& member, Character c, int32_t lead) const {
  const int32_t value = c.length == 1 ? lead : c.value;
  const bool negated = member.op3 != 0;
  switch (member.code) {
    case RX_CHAR:
      return sameByte(value, member.op1, caseless()) != negated;
    case RX_RANGE:
      return inRange(member, c, value) != negated;
    case RX_CHARTYPE:
      return ofType(member.op1, lead) != negated;
    case RX_CODEPOINT:
      return (caseless() ? foldCase(c.value) == foldCase(member.op1) : c.value == member.op1) != negated;
    default:
      return hasProperty(member, c.value);
  }
}

bool Matcher::inClass(int32_t node, Character c, int32_t lead) {
  const RxNode* const header = nodes_ + node;
  const bool found = std::any_of(header + 1, header + 1 + header->op2,
                                 [&](const RxNode& member) { return isMember(member, c, lead); });
  return found != (header->op1 != 0);
}

// Of the nodes that take one character.
bool Matcher::accepts(const RxNode& node, Character c, int32_t at) {
  switch (node.code) {
    case RX_CLASS:
      return inClass(static_cast<int32_t>(&node - nodes_), c, text.byte(at));
    case RX_CHARTYPE:
      return ofType(node.op1, text.byte(at));
    case RX_CODEPOINT:
      return caseless() ? foldCase(c.value) == foldCase(node.op1) : c.value == node.op1;
    default:
      return hasProperty(node, c.value);
  }
}

int32_t Matcher::takeBytes(const uint8_t* bytes, int32_t length, int32_t at) {
  if (end - at < length) return -1;
  for (int32_t i = 0; i < length; ++i)
    if (!sameByte(text.byte(at + i), bytes[i], caseless())) return -1;
  return length;
}

int32_t Matcher::takeReference(int32_t group, int32_t at) {
  const Slot slot = slots[static_cast<size_t>(group)];
  if (slot.length < 0 || end - at < slot.length) return -1;
  for (int32_t i = 0; i < slot.length; ++i)
    if (!sameByte(text.byte(at + i), text.byte(slot.start + i), caseless())) return -1;
  return slot.length;
}

int32_t Matcher::takeSequence(int32_t at) {
  const Character first = text.character(at);
  if (isMark(first.value)) return -1;
  int32_t length = first.length;
  while (at + length < end) {
    const Character next = text.character(at + length);
    if (!isMark(next.value)) break;
    length += next.length;
  }
  return length;
}

// The bytes that the item at `node` takes at `at`; -1 when it does not match.
int32_t Matcher::takeItem(int32_t node, int32_t at) {
  if (at >= end || !mayWork()) return -1;
  const RxNode& it = nodes_[node];
  switch (it.code) {
    case RX_CHAR:
      return sameByte(text.byte(at), it.op1, caseless()) ? 1 : -1;
    case RX_BYTE:
      return 1;
    case RX_STRING:
      return takeBytes(static_cast<const uint8_t*>(it.text), it.op2, at);
    case RX_BACKREF:
      return takeReference(it.op1, at);
    case RX_XSEQ:
      return takeSequence(at);
    default: {
      const Character c = text.character(at);
      return accepts(it, c, at) ? c.length : -1;
    }
  }
}

// ---- repeats

bool Matcher::item(int32_t node, int32_t at) {
  const int32_t behind = itemEnd(node);
  if (isQuantifierAt(nodes_, numNodes_, behind)) {
    const Quantifier quantifier = quantifierAt(behind);
    if (!quantifier.lazy) return greedyRepeat(node, behind + 1, quantifier, at);
    const uint32_t code = nodes_[node].code;
    const bool ofCharacters = code >= RX_CODEPOINT && code <= RX_SCRIPT;
    return ofCharacters ? lazyCharacters(node, behind + 1, quantifier, at)
                        : lazyRepeat(node, behind + 1, quantifier, at);
  }
  const int32_t bytes = takeItem(node, at);
  if (bytes < 0) return false;
  matched_ += bytes;
  if (run(behind, at + bytes)) return true;
  matched_ -= bytes;
  return false;
}

bool Matcher::greedyRepeat(int32_t node, int32_t next, const Quantifier& quantifier, int32_t at) {
  const size_t firstStart = starts_.size();
  const int32_t most = std::max(quantifier.least, std::min(quantifier.most, end - at));
  int32_t count = 0;
  for (int32_t bytes = 0; count < most && (bytes = takeItem(node, at)) >= 0; ++count) {
    starts_.push_back(at);
    at += bytes;
    matched_ += bytes;
  }
  bool found = false;
  for (;; --count) {
    found = count >= quantifier.least && run(next, at);
    if (found || count == 0) break;
    matched_ -= at - starts_.back();
    at = starts_.back();
    starts_.pop_back();
  }
  starts_.resize(firstStart);
  return found;
}

bool Matcher::lazyRepeat(int32_t node, int32_t next, const Quantifier& quantifier, int32_t at) {
  if (end - at < quantifier.least) return false;
  const int32_t most = std::min(quantifier.most, end - at);
  const int32_t start = at;
  int32_t count = 0;
  for (int32_t bytes = 0; count < quantifier.least; ++count, at += bytes)
    if ((bytes = takeItem(node, at)) < 0) return false;
  matched_ += at - start;
  for (;;) {
    if (mayContinueLazily(nodes_[node], next, at) && run(next, at)) return true;
    const int32_t bytes = count < most ? takeItem(node, at) : -1;
    if (bytes < 0) break;
    ++count;
    at += bytes;
    matched_ += bytes;
  }
  // A repeat of one byte leaves what it added, odd as it is.
  if (nodes_[node].code != RX_CHAR) matched_ -= at - start;
  return false;
}

// Behind a repeat of bytes a literal byte is looked at first, at no cost.
bool Matcher::mayContinueLazily(const RxNode& node, int32_t next, int32_t at) {
  if ((node.code != RX_CHAR && node.code != RX_BYTE) || caseless()) return true;
  if (next >= numNodes_ || nodes_[next].code != RX_CHAR) return true;
  return at < end && text.byte(at) == nodes_[next].op1;
}

// Lazy repeats of code points and properties have a shape of their own.
bool Matcher::lazyCharacters(int32_t node, int32_t next, const Quantifier& quantifier, int32_t at) {
  const int32_t most = std::min(quantifier.most, end - at);
  const int32_t start = at;
  int32_t count = 0;
  for (int32_t bytes = 0; count < quantifier.least; ++count, at += bytes)
    if ((bytes = takeItem(node, at)) < 0) return false;
  matched_ += at - start;
  for (; count <= most && at <= end && mayWork(); ++count) {
    const Character c = text.character(at);
    const bool accepted = accepts(nodes_[node], c, at);
    if (accepted && run(next, at)) return true;
    if (!accepted && nodes_[node].code == RX_CODEPOINT) return true;
    at += c.length;
    matched_ += c.length;
  }
  matched_ -= at - start;
  return false;
}

// ---- groups

bool Matcher::openGroup(int32_t open, int32_t at) {
  const RxNode& node = nodes_[open];
  const int32_t endOfGroup = endOf(open);
  const Quantifier quantifier = quantifierAt(endOfGroup + 1);
  Frame& frame = frames_[serialOf(node)];
  Slot* const slot = slotOf(open);
  const Frame frameBefore = frame;
  const Slot slotBefore = slot ? *slot : Slot{};
  const uint32_t optionsBefore = options;
  bool found = false;
  if (quantifier.least == 0 && quantifier.most == 0) {
    found = leaveGroup(open, at);
  } else {
    frame = {quantifier.least, quantifier.most, at, 0, false};
    found = iterate(open, at, slot ? &slotBefore : nullptr) == Outcome::kMatched;
  }
  if (found) return true;
  frame = frameBefore;
  if (slot) *slot = slotBefore;
  options = optionsBefore;
  return false;
}

bool Matcher::endGroup(int32_t endOfGroup, int32_t at) {
  const int32_t open = openOfSerial_[serialOf(nodes_[endOfGroup])];
  const bool lazy = quantifierAt(endOfGroup + 1).lazy;
  Frame& frame = frames_[serialOf(nodes_[endOfGroup])];
  Slot* const slot = slotOf(open);
  Frame frameBefore = frame;
  const Slot slotBefore = slot ? *slot : Slot{};
  const uint32_t optionsBefore = options;

  const int32_t consumed = at - frame.iterationStart;
  frame.iterationStart = at;
  frame.iterationLength += consumed;
  if (frame.inBody) {
    frame.inBody = false;
    --frame.maxLeft;
    --frame.minLeft;
    frame.iterationLength = consumed;
  }
  if (slot) *slot = {at - frame.iterationLength, frame.iterationLength};
  bool found = false;
  if ((frame.maxLeft < 1 && !lazy) || frame.iterationLength == 0) {
    found = leaveGroup(open, at);
  } else {
    const Outcome outcome = iterate(open, at, nullptr);
    found = outcome == Outcome::kMatched;
    if (outcome == Outcome::kFailedAfterLastIteration) frameBefore.maxLeft = 2;
  }
  if (found) return true;
  frame = frameBefore;
  if (slot) *slot = slotBefore;
  options = optionsBefore;
  return false;
}

// What the two steps have in common: an iteration, or the rest of the program. `before` is the slot of a
// capture group before it was entered afresh.
Matcher::Outcome Matcher::iterate(int32_t open, int32_t at, const Slot* before) {
  const int32_t endOfGroup = endOf(open);
  const bool lazy = quantifierAt(endOfGroup + 1).lazy;
  const uint32_t optionsBefore = options;
  Frame& frame = frames_[serialOf(nodes_[open])];
  Slot* const slot = slotOf(open);
  const Slot slotOutside = before ? *before : slot ? *slot : Slot{};
  if (lazy && frame.minLeft < 1 && leaveGroup(open, at)) return Outcome::kMatched;
  if (frame.maxLeft < 1) return Outcome::kFailed;
  if (before) *slot = {at, 0};
  options = optionsBefore;
  if (nodes_[open].code == RX_COND) {
    const int32_t branch = chooseBranch(open, at);
    if (branch < 0) return run(skipQuantifier(endOfGroup + 1), at) ? Outcome::kMatched : Outcome::kFailed;
    if (runBranch(open, branch, at)) return Outcome::kMatched;
  } else if (runAlternatives(open, at)) {
    return Outcome::kMatched;
  }
  if (slot) *slot = slotOutside;
  if (lazy || frame.minLeft >= 1) return Outcome::kFailed;
  const bool last = nodes_[endOfGroup].op3 == kRepeatMarkRepeated;
  if (last) frame.maxLeft = 1;
  if (leaveGroup(open, at)) return Outcome::kMatched;
  return last ? Outcome::kFailedAfterLastIteration : Outcome::kFailed;
}

// The rest of the program, with the options outside the group.
bool Matcher::leaveGroup(int32_t open, int32_t at) {
  const int32_t endOfGroup = endOf(open);
  options = bits(nodes_[endOfGroup].op2);
  return run(skipQuantifier(endOfGroup + 1), at);
}

bool Matcher::runAlternatives(int32_t open, int32_t at) {
  const RxNode& node = nodes_[open];
  const int32_t endOfGroup = endOf(open);
  if (node.code == RX_OPTGROUP) options = bits(node.op3);
  int32_t branch = open + 1;
  for (;;) {
    if (runBranch(open, branch, at)) return true;
    const int32_t bar = nextBar(branch, endOfGroup, node.op1);
    if (bar < 0) return false;
    options = bits(nodes_[bar].op2);
    branch = bar + 1;
  }
}

// Of a conditional one branch at most is tried.
int32_t Matcher::chooseBranch(int32_t open, int32_t at) {
  const int32_t condition = open + 1;
  if (conditionHolds(condition, at)) return itemEnd(condition);
  const int32_t bar = nextBar(open, endOf(open), nodes_[open].op1);
  if (bar < 0) return -1;
  options = bits(nodes_[bar].op2);
  return bar + 1;
}

bool Matcher::runBranch(int32_t open, int32_t branch, int32_t at) {
  Frame& frame = frames_[serialOf(nodes_[open])];
  frame.iterationStart = at;
  frame.inBody = true;
  if (run(branch, at)) return true;
  frame.inBody = false;
  matched_ = at - attemptStart_;
  return false;
}

bool Matcher::conditionHolds(int32_t condition, int32_t at) {
  const RxNode& node = nodes_[condition];
  if (node.code == RX_BACKREF) {
    const auto group = static_cast<size_t>(node.op1);
    return group < slots.size() && slots[group].length != -1;
  }
  const int32_t savedEnd = endNode_;
  endNode_ = itemEnd(condition);
  const bool holds = run(condition, at);
  endNode_ = savedEnd;
  return holds;
}

// ---- lookarounds and atomic groups

// The body as a run of its own, which is never entered again.
bool Matcher::runApart(int32_t open, int32_t at) {
  const int32_t endOfGroup = endOf(open);
  const int32_t savedEnd = endNode_;
  const int64_t savedLength = matched_;
  const uint32_t savedOptions = options;
  int32_t branch = open + 1;
  bool found = false;
  endNode_ = endOfGroup;
  for (;;) {
    found = run(branch, at);
    options = savedOptions;
    if (found) break;
    matched_ = savedLength;
    const int32_t bar = nextBar(branch, endOfGroup, nodes_[open].op1);
    if (bar < 0) break;
    options = bits(nodes_[bar].op2);
    branch = bar + 1;
  }
  endNode_ = savedEnd;
  return found;
}

bool Matcher::lookaroundHolds(int32_t open, int32_t at) {
  const RxNode& node = nodes_[open];
  const bool negative = node.code == RX_NLOOKAHEAD || node.code == RX_NLOOKBEHIND;
  if (node.code == RX_LOOKBEHIND || node.code == RX_NLOOKBEHIND) {
    if (at < node.op3) return negative;
    at = text.back(at, node.op3);
  }
  const int64_t savedLength = matched_;
  const bool found = runApart(open, at);
  matched_ = savedLength;
  return found != negative;
}

// One iteration; nothing is consumed when the body ends before where it began.
bool Matcher::atomicIteration(int32_t open, int32_t at, int64_t* consumed) {
  const int64_t before = matched_;
  if (!runApart(open, at)) return false;
  *consumed = std::max<int64_t>(matched_ - before, 0);
  matched_ = before + *consumed;
  return true;
}

bool Matcher::atomic(int32_t open, int32_t least, int32_t most, int32_t at) {
  int64_t consumed = 0;
  if (most > 0) {
    if (!atomicIteration(open, at, &consumed)) {
      if (least > 0) return false;
    } else if (consumed > 0) {
      const auto next = static_cast<int32_t>(std::min<int64_t>(at + consumed, end + 1));
      if (atomic(open, least - 1, most - 1, next)) return true;
      matched_ -= consumed;
      if (least >= 1) return false;
    }
  }
  return run(skipQuantifier(endOf(open) + 1), at);
}

bool Matcher::lazyAtomic(int32_t open, const Quantifier& quantifier, int32_t at) {
  int64_t total = 0;
  for (int32_t k = 1;; ++k) {
    int64_t consumed = 0;
    if (k - 1 >= quantifier.least && run(endOf(open) + 2, at)) return true;
    if (k > quantifier.most || !atomicIteration(open, at, &consumed)) break;
    if (consumed == 0) return true;
    total += consumed;
    at = static_cast<int32_t>(std::min<int64_t>(at + consumed, end + 1));
  }
  matched_ -= total;
  return false;
}

// ---- the search

bool Matcher::attempt(int32_t at) {
  std::fill(slots.begin(), slots.end(), Slot{});
  attemptStart_ = at;
  for (int32_t node = 0;;) {
    matched_ = 0;
    if (run(node, at)) return true;
    const int32_t bar = nextBar(node, numNodes_, kTopLevel);
    if (bar < 0) return false;
    options = bits(nodes_[bar].op2);
    node = bar + 1;
  }
}

Slot Matcher::wholeMatch() const {
  return {attemptStart_, static_cast<int32_t>(std::clamp<int64_t>(matched_, -1, INT32_MAX))};
}

enum AnchorMode { kAnyStart = 0, kLineStarts = 1, kTextStart = 2 };

class Search {
 public:
  Search(const ulkRegExpState& state, const uint8_t* text, int32_t limit, int32_t format, int64_t maxWork)
      : state_(state), nodes_(state.nodes()), format_(format), matcher_(state, text, limit, maxWork) {}

  ReferenceFind find(int32_t length, int32_t numRecords, bool replaceMode);

 private:
  int32_t cutAtTrailingLiteral(int32_t length);
  AnchorMode anchorMode() const;
  bool findFrom(int32_t at, int32_t end);
  bool advance(int32_t* at);
  void findFirst(int32_t numRecords);
  void findAll(int32_t numRecords, bool replaceMode);
  void record(int32_t first, int32_t count);
  bool ranOut() const { return matcher_.budget < 0; }

  const ulkRegExpState& state_;
  const RxNode* nodes_;
  int32_t format_;
  int32_t end_ = 0;
  AnchorMode mode_ = kAnyStart;
  Matcher matcher_;
  ReferenceFind result_;
};

// The end of the last place where the literal stands that ends the pattern; 0 without one.
int32_t Search::cutAtTrailingLiteral(int32_t length) {
  if (state_.trailingLiteral < 0) return length;
  const RxNode& literal = nodes_[state_.trailingLiteral];
  const bool caseless = bits(literal.op3) & RX_OPT_CASELESS;
  const auto single = static_cast<uint8_t>(literal.op1);
  const bool isString = literal.code == RX_STRING;
  const uint8_t* const bytes = isString ? static_cast<const uint8_t*>(literal.text) : &single;
  const int32_t size = isString ? literal.op2 : 1;
  for (int32_t end = length; end >= size; --end) {
    int32_t same = 0;
    while (same < size && sameByte(matcher_.text.byte(end - size + same), bytes[same], caseless)) ++same;
    if (same == size) return end;
  }
  return 0;
}

AnchorMode Search::anchorMode() const {
  const int32_t numNodes = state_.numNodes;
  if (numNodes == 0 || nodes_[0].code != RX_ASSERT) return kAnyStart;
  for (int32_t i = 0; i < numNodes; ++i)
    if (nodes_[i].code == RX_ALT && nodes_[i].op1 == kTopLevel) return kAnyStart;
  const int32_t kind = nodes_[0].op1;
  if (kind == '^' && (state_.options & RX_OPT_MULTILINE)) return kLineStarts;
  if (kind != 'A' && kind != 'G' && kind != '^') return kAnyStart;
  const bool optional = numNodes > 1 && isQuantifier(nodes_[1]) && nodes_[1].op1 == 0;
  return optional ? kAnyStart : kTextStart;
}

// To the next start; false when there is none.
bool Search::advance(int32_t* at) {
  if (mode_ == kTextStart) return false;
  do {
    if (*at >= matcher_.end) return false;
    *at += format_ == kFormatUtf8 ? matcher_.text.character(*at).length : 1;
    if (*at > matcher_.end) return false;
  } while (mode_ == kLineStarts && matcher_.text.byte(*at - 1) != 10);
  return true;
}

bool Search::findFrom(int32_t at, int32_t end) {
  matcher_.end = end;
  do {
    if (matcher_.attempt(at)) return true;
  } while (advance(&at));
  return false;
}

void Search::record(int32_t first, int32_t count) {
  for (int32_t i = first; i < first + count; ++i) {
    const Slot slot = i == 0 ? matcher_.wholeMatch() : matcher_.slots[static_cast<size_t>(i)];
    result_.records.push_back({slot.start, slot.length});
  }
}

void Search::findFirst(int32_t numRecords) {
  result_.numFind = std::min(numRecords, state_.numCaptures);
  if (findFrom(0, end_)) {
    record(0, result_.numFind);
  } else if (ranOut()) {
    result_.status = ulkErrMatchLimit;
  } else {
    result_.numFind = 0;
  }
}

void Search::findAll(int32_t numRecords, bool replaceMode) {
  const int32_t all = state_.numCaptures;
  const int32_t skip = !replaceMode && all > 1 ? 1 : 0;
  const int32_t limit = numRecords - all + skip;
  const auto filled = [&] { return static_cast<int32_t>(result_.records.size()); };
  result_.numFind = numRecords;
  for (int32_t at = 0; filled() <= limit && at <= end_;) {
    if (!findFrom(at, end_)) break;
    record(skip, all - skip);
    if (ranOut()) {
      result_.status = ulkErrMatchLimit;
      return;
    }
    const Slot match = matcher_.wholeMatch();
    at = static_cast<int32_t>(std::min<int64_t>(int64_t{match.start} + std::max(match.length, 1), end_ + 1));
    if (match.length != 0 || filled() >= limit || match.start >= end_) continue;
    matcher_.nonEmpty = true;
    if (findFrom(match.start, match.start + 1)) record(skip, all - skip);
    matcher_.nonEmpty = false;
    if (ranOut()) {
      result_.status = ulkErrMatchLimit;
      return;
    }
  }
  result_.numFind = filled();
}

ReferenceFind Search::find(int32_t length, int32_t numRecords, bool replaceMode) {
  end_ = cutAtTrailingLiteral(length);
  mode_ = anchorMode();
  if (state_.options & RX_OPT_GLOBAL)
    findAll(numRecords, replaceMode);
  else
    findFirst(numRecords);
  result_.steps = matcher_.steps;
  result_.bytesRead = matcher_.text.bytesRead();
  result_.tooDeep = matcher_.tooDeep;
  result_.tooLong = matcher_.tooLong;
  return result_;
}

}  // namespace

ReferenceFind referenceFind(const ulkRegExpState& state, const uint8_t* text, int32_t length, int32_t limit,
                            int32_t numRecords, bool replaceMode, int32_t format, int64_t maxWork) {
  return Search(state, text, limit, format, maxWork).find(length, numRecords, replaceMode);
}

}  // namespace ulk_test
