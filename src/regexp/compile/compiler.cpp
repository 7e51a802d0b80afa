// The main pass: one walk over the pattern that writes nodes from left to right.
//
// Literal bytes are gathered in a run that becomes one node when anything else follows. A quantifier goes
// behind what was written last. A group's open node is completed when its ")" is read, and only then its bars
// get its serial.
//
// No pattern of n bytes makes more than n + 1 nodes, which is what the state has room for: every token makes
// at most one node for each of its bytes, and the leading marker is the one that no byte pays for. A text of
// two or more bytes is one node, so what it saves is more than the copy of its bytes needs.
#include "regexp/compile/compiler.h"

#include <algorithm>
#include <cstring>

#include "regexp/compile/classes.h"
#include "regexp/compile/parse.h"
#include "regexp/compile/prescan.h"
#include "regexp/compile/properties.h"
#include "regexp/program/state.h"

namespace ulk {
namespace {

// Values of the trailing-literal index that are no index.
constexpr int32_t kNoTrailingLiteral = -1;
constexpr int32_t kAlternatives = -2;  // a top-level bar has been read: further literals do not count

struct Quantifier {
  int32_t min;
  int32_t max;
  const uint8_t* maxDigits;  // where an upper bound is written, null without one
  const uint8_t* end;
};

int32_t readBound(const uint8_t*& at) {
  int32_t value = 0;
  for (; isDigit(*at); ++at) value = value > kMaxBound ? kUnbounded : value * 10 + (*at - '0');
  return value;
}

// Up to three digits.
int32_t readGroupNumber(const uint8_t*& at, int32_t base) {
  int32_t value = 0;
  for (int32_t i = 0; i < 3 && isDigit(*at); ++i) value = value * base + (*at++ - '0');
  return value;
}

// "{n}", "{n,}", "{n,m}", each number optional. Anything else that begins with a brace is literal text.
bool readBraces(const uint8_t* at, Quantifier& q) {
  ++at;
  q.min = readBound(at);
  q.max = q.min;
  q.maxDigits = nullptr;
  if (*at == ',') {
    ++at;
    q.maxDigits = isDigit(*at) ? at : nullptr;
    q.max = q.maxDigits ? readBound(at) : kUnbounded;
  }
  q.end = at + 1;
  return *at == '}';
}

bool readQuantifier(const uint8_t* at, Quantifier& q) {
  switch (*at) {
    case '*':
      q = {0, kUnbounded, nullptr, at + 1};
      return true;
    case '+':
      q = {1, kUnbounded, nullptr, at + 1};
      return true;
    case '?':
      q = {0, 1, nullptr, at + 1};
      return true;
    case '{':
      return readBraces(at, q);
    default:
      return false;
  }
}

bool startsQuantifier(const uint8_t* at) {
  Quantifier ignored;
  return readQuantifier(at, ignored);
}

// No bound ever exceeds kUnbounded, so no sum overflows.
void raiseBounds(RxNode& quantifier, int32_t min, int32_t max) {
  minOf(quantifier) = std::min(minOf(quantifier) + min, kUnbounded);
  maxOf(quantifier) = std::min(maxOf(quantifier) + max, kUnbounded);
}

bool isSpace(uint8_t byte) { return byte == 9 || byte == 10 || byte == 12 || byte == 13 || byte == ' '; }

// Bytes that can only be literal text, so that a run of them needs no look at each.
struct PlainBytes {
  bool plain[256];
  constexpr PlainBytes() : plain() {
    for (bool& entry : plain) entry = true;
    for (const char special : "\\()|^$.[*+?{#\t\n\f\r ") plain[static_cast<uint8_t>(special)] = false;
  }
};
constexpr PlainBytes kPlainBytes;
static_assert(!kPlainBytes.plain[0], "the terminating zero ends every run");

uint32_t optionBit(uint8_t letter) {
  switch (letter) {
    case 's':
      return RX_OPT_DOTALL;
    case 'm':
      return RX_OPT_MULTILINE;
    case 'i':
      return RX_OPT_CASELESS;
    case 'x':
      return RX_OPT_EXTENDED;
    default:
      return 0;
  }
}

bool parseOptions(const char* letters, uint32_t& options) {
  options = 0;
  for (; letters && *letters; ++letters) {
    const uint32_t bit = *letters == 'g' ? RX_OPT_GLOBAL : optionBit(static_cast<uint8_t>(*letters));
    if (!bit) return false;
    options |= bit;
  }
  return true;
}

class Compiler : public Parse {
 public:
  Compiler(const uint8_t* patternStart, const uint8_t* patternEnd, ulkRegExpState& state)
      : Parse(patternStart, patternEnd, state.nodes()), state_(state) {}

  ulkStatus run(const char* optionLetters);
  SpareWords spare() const { return spare_; }

 private:
  struct OpenGroup {
    int32_t node;
    uint32_t options;  // in force before it
  };

  // Passes
  void writeLeadingMarker();
  ulkStatus writeHeader(const char* optionLetters);
  ulkStatus writeNodes();
  void removeGaps();
  void finish();

  // Tokens: each takes what begins at `at` and leaves `at` behind it.
  ulkStatus token();
  ulkStatus literal();
  ulkStatus skipSpace();
  ulkStatus skipLine();
  ulkStatus bar();
  ulkStatus assertion(uint8_t letter, int32_t bytes);
  ulkStatus charType(uint8_t letter, int32_t bytes);
  ulkStatus bracketClass();

  ulkStatus escape();
  ulkStatus escapedLiteral();
  ulkStatus numberEscape();
  ulkStatus quote();
  ulkStatus hexEscape();
  ulkStatus property(int32_t negate);
  ulkStatus byteEscape(int32_t value);
  ulkStatus plainNode(RxCode code);

  ulkStatus quantifier();
  ulkStatus checkBounds(const Quantifier& q, const uint8_t* start);
  ulkStatus mergeQuantifier(const Quantifier& q, const uint8_t* start);
  ulkStatus appendQuantifier(const Quantifier& q, bool lazy);
  bool quantifyLookaround(const Quantifier& q);
  bool splitLastByte();

  ulkStatus openGroup();
  ulkStatus enterGroup(RxCode code, int32_t bytes);
  ulkStatus capture();
  ulkStatus behind();
  ulkStatus comment();
  ulkStatus optionGroup();
  ulkStatus conditional();
  ulkStatus closeGroup();
  bool flatten(RxNode& open, int32_t first, int64_t width);
  int32_t claimBars(int32_t first, int32_t serial);
  bool conditionIsSound(int32_t first) const;
  bool measureLookbehind(RxNode& open, int32_t first);

  // Nodes
  void flush();
  void appendLiteral(const uint8_t* text, int32_t length);
  void noteLiteral(RxNode& node);
  void noteQuantifiedByte(int32_t min, bool splitOff);
  void appendRepeat(int32_t min, int32_t max, RxCode code);
  void appendReference(int32_t group);
  bool isCharType(int32_t node, uint8_t letter) const;
  RxNode& lastNode() { return nodes[numNodes - 1]; }

  ulkRegExpState& state_;
  SpareWords spare_{};
  const uint8_t* run_ = nullptr;  // literal bytes not yet written, up to `at`
  int32_t runLength_ = 0;
  uint32_t options_ = 0;  // in force at `at`
  int32_t depth_ = 0;
  int32_t nextSerial_ = 1;
  int32_t nextCapture_ = 1;
  int32_t trailing_ = kNoTrailingLiteral;
  bool hasGaps_ = false;
  OpenGroup groups_[kMaxDepth];  // the first depth_ are in use
};

// ---- Passes

ulkStatus Compiler::run(const char* optionLetters) {
  writeLeadingMarker();
  ulkStatus status = writeHeader(optionLetters);
  if (status == ulkOk) status = writeNodes();
  if (status == ulkOk) finish();
  return status;
}

// A leading dot-star that fails from one place of a line fails from all later ones: the marker lets only the
// first try.
void Compiler::writeLeadingMarker() {
  const bool star = pattern[0] == '.' && (pattern[1] == '*' || pattern[1] == '+') && pattern[2] != '?';
  const bool group = end - pattern >= 6 && (std::memcmp(pattern, "(?:.*)", 6) == 0 ||  //
                                            std::memcmp(pattern, "(?:.+)", 6) == 0);
  if (star || group) assertionOf(append(RX_ASSERT)) = kLeadingDotStar;
}

ulkStatus Compiler::writeHeader(const char* optionLetters) {
  if (!parseOptions(optionLetters, options_)) return fail(ulkErrRegExpOptions, pattern);
  int32_t numGroups = 0;
  const ulkStatus status = prescan(*this, options_ & RX_OPT_EXTENDED, numGroups);
  if (status != ulkOk) return status;
  at = pattern;

  state_.magic = kStateMagic;
  state_.options = options_;
  // A thousand groups run out of serials, unless some are only taken for groups by the prescan: no slot is
  // ever missing.
  state_.numCaptures = std::min(numGroups + 1, kNumCaptures);
  state_.format = kFormatUtf8;
  return ulkOk;
}

ulkStatus Compiler::writeNodes() {
  while (at < end) {
    const ulkStatus status = token();
    if (status != ulkOk) return status;
  }
  flush();
  // The prescan has counted the parentheses, but it does not read every class as the main pass does.
  return depth_ == 0 ? ulkOk : fail(ulkErrRegExpGroup, end);
}

void Compiler::finish() {
  if (hasGaps_) removeGaps();
  for (int32_t i = trailing_ + 1; trailing_ >= 0 && i < numNodes; ++i) {
    if (!isQuantifier(nodes[i])) trailing_ = kNoTrailingLiteral;
  }

  uint8_t* text = reinterpret_cast<uint8_t*>(nodes + numNodes);
  for (int32_t i = 0; i < numNodes; i = nextNode(nodes, i)) {
    RxNode& node = nodes[i];
    if (node.code == RX_STRING) {
      const auto length = static_cast<size_t>(stringLength(node));
      setString(node, std::memcpy(text, stringOf(node), length));
      text += length;
    } else if (node.code == RX_CLASS) {
      nodes[nextNode(nodes, i) - 1].code &= ~kLastMember;
    }
  }
  state_.numNodes = numNodes;
  state_.trailingLiteral = std::max(trailing_, kNoTrailingLiteral);
  state_.matchLimit = kDefaultMatchLimit;
  const auto bytesUsed = static_cast<size_t>(text - reinterpret_cast<uint8_t*>(nodes));
  spare_ = {reinterpret_cast<uint32_t*>(nodes) + (bytesUsed + 3) / sizeof(uint32_t),
            reinterpret_cast<uint32_t*>(nodes + (end - pattern) + 1)};
}

// Moves the nodes together. Groups that were in the way of others would be moved once for each level they
// are nested in if that were done when they are closed.
void Compiler::removeGaps() {
  int32_t count = 0;
  int32_t trailing = trailing_;
  for (int32_t i = 0; i < numNodes; ++i) {
    const RxNode& node = nodes[i];
    if (node.code == kGap) continue;
    if (i == trailing_) trailing = count;
    if (isGroupOpen(node)) {
      groups_[depth_++].node = count;
    } else if (node.code == RX_END) {
      const int32_t open = groups_[--depth_].node;
      bodyLength(nodes[open]) = count - open - 1;
    }
    nodes[count++] = node;
  }
  numNodes = count;
  trailing_ = trailing;
}

// ---- Tokens

ulkStatus Compiler::token() {
  switch (*at) {
    case '\\':
      return escape();
    case '(':
      return openGroup();
    case ')':
      return closeGroup();
    case '|':
      return bar();
    case '^':
    case '$':
      return assertion(*at, 1);
    case '.':
      return charType('.', 1);
    case '[':
      return bracketClass();
    case '*':
    case '+':
    case '?':
    case '{':
      return quantifier();
    case '#':
      return options_ & RX_OPT_EXTENDED ? skipLine() : literal();
    case '\t':
    case '\n':
    case '\f':
    case '\r':
    case ' ':
      return options_ & RX_OPT_EXTENDED ? skipSpace() : literal();
    default:
      return literal();
  }
}

ulkStatus Compiler::literal() {
  if (runLength_ == 0) run_ = at;
  do {
    ++at;
  } while (kPlainBytes.plain[*at]);
  runLength_ = static_cast<int32_t>(at - run_);
  return ulkOk;
}

ulkStatus Compiler::skipSpace() {
  flush();
  while (isSpace(*at)) ++at;
  return ulkOk;
}

ulkStatus Compiler::skipLine() {
  flush();
  const void* const newline = std::memchr(at, '\n', static_cast<size_t>(end - at));
  at = newline ? static_cast<const uint8_t*>(newline) + 1 : end;
  return ulkOk;
}

ulkStatus Compiler::bar() {
  flush();
  ++at;
  RxNode& node = append(RX_ALT);
  serialOf(node) = kTopLevel;
  optionsBehind(node) = static_cast<int32_t>(options_);
  if (depth_ == 0) trailing_ = kAlternatives;
  return ulkOk;
}

ulkStatus Compiler::assertion(uint8_t letter, int32_t bytes) {
  flush();
  at += bytes;
  assertionOf(append(RX_ASSERT)) = letter;
  return ulkOk;
}

// A run of dots, or of one shorthand, is one node and a quantifier that counts it.
ulkStatus Compiler::charType(uint8_t letter, int32_t bytes) {
  flush();
  at += bytes;
  const bool quantified = startsQuantifier(at);
  if (isCharType(numNodes - 1, letter)) {
    // A quantifier that follows is for the last of the run only: it is added to the bounds of the others.
    const int32_t count = quantified ? 1 : 2;
    appendRepeat(count, count, RX_REPEAT);
  } else if (isCharType(numNodes - 2, letter) && isQuantifier(lastNode())) {
    if (quantified) return ulkOk;
    raiseBounds(lastNode(), 1, 1);
  } else {
    letterOf(append(RX_CHARTYPE)) = letter;
  }
  return ulkOk;
}

ulkStatus Compiler::bracketClass() {
  flush();
  return ownRegExpParseClass(*this);
}

// ---- Escapes

ulkStatus Compiler::escape() {
  flush();
  const uint8_t letter = at[1];
  if (isShorthand(letter)) return charType(letter, 2);
  if (isDigit(letter)) return numberEscape();
  switch (letter) {
    case 'A':
    case 'B':
    case 'G':
    case 'Z':
    case 'b':
    case 'z':
      return assertion(letter, 2);
    case 'C':
      return plainNode(RX_BYTE);
    case 'E':
      at += 2;
      return ulkOk;
    case 'P':
      return property(-1);
    case 'Q':
      return quote();
    case 'X':
      return plainNode(RX_XSEQ);
    case 'c':
      return byteEscape(readControl());
    case 'p':
      return property(0);
    case 'x':
      return hexEscape();
    default:
      break;
  }
  const int32_t named = namedByte(letter);
  if (named < 0) return escapedLiteral();
  at += 2;
  return byteEscape(named);
}

// The byte begins a run, so that what follows it joins the same node. A lone "\" stands before the
// terminating zero, which then is the literal byte.
ulkStatus Compiler::escapedLiteral() {
  run_ = at + 1;
  runLength_ = 1;
  advance(2);
  return ulkOk;
}

// A back reference if there is such a group, else a byte in octal.
ulkStatus Compiler::numberEscape() {
  if (at[1] == '0') return byteEscape(readOctal(2, 2));
  const uint8_t* p = at + 1;
  const int32_t group = readGroupNumber(p, 10);
  if (group < state_.numCaptures) {
    at = p;
    appendReference(group);
    return ulkOk;
  }
  if (p == at + 2) return fail(ulkErrRegExpBackRef, at + 1);
  return byteEscape(readOctal(1, 3));
}

ulkStatus Compiler::quote() {
  const uint8_t* const text = at + 2;
  const uint8_t* const quoteEnd = findQuoteEnd(text);
  const uint8_t* const textEnd = quoteEnd ? quoteEnd : end;
  if (text < textEnd) appendLiteral(text, static_cast<int32_t>(textEnd - text));
  at = quoteEnd ? quoteEnd + 2 : end;
  return ulkOk;
}

ulkStatus Compiler::hexEscape() {
  if (at[2] != '{') return byteEscape(readHexByte());
  const uint8_t* const digits = at + 3;
  int32_t value;
  if (!readHexCodePoint(value)) return fail(ulkErrRegExpSyntax, digits);
  codePointOf(append(RX_CODEPOINT)) = value;
  return ulkOk;
}

ulkStatus Compiler::property(int32_t negate) {
  ++at;
  return ownRegExpParseProperty(at, nodes, numNodes, negate) == 0 ? ulkOk : fail(ulkErrRegExpSyntax, at);
}

ulkStatus Compiler::byteEscape(int32_t value) {
  const uint8_t byte = static_cast<uint8_t>(value);
  appendLiteral(&byte, 1);
  return ulkOk;
}

ulkStatus Compiler::plainNode(RxCode code) {
  at += 2;
  append(code);
  return ulkOk;
}

// ---- Quantifiers

bool nothingToRepeat(const RxNode& node) {
  switch (node.code) {
    case RX_ALT:
    case RX_OPTIONS:
    case RX_LOOKBEHIND:
    case RX_NLOOKBEHIND:
    case RX_LOOKAHEAD:
    case RX_NLOOKAHEAD:
    case RX_OPTGROUP:
    case RX_CAPTURE:
    case RX_GROUP:
    case RX_ATOMIC:
      return true;
    default:
      return false;
  }
}

ulkStatus Compiler::quantifier() {
  const uint8_t* const start = at;
  Quantifier q;
  if (!readQuantifier(start, q)) return literal();
  const bool splitOff = splitLastByte();
  const ulkStatus status = checkBounds(q, start);
  if (status != ulkOk) return status;
  if (numNodes == 0) return fail(ulkErrRegExpQuantifier, start);

  const bool lazy = *q.end == '?';
  at = lazy ? q.end + 1 : q.end;
  if (isQuantifier(lastNode())) return mergeQuantifier(q, start);
  if (nothingToRepeat(lastNode())) return fail(ulkErrRegExpQuantifier, start);
  noteQuantifiedByte(q.min, splitOff);
  return appendQuantifier(q, lazy);
}

ulkStatus Compiler::checkBounds(const Quantifier& q, const uint8_t* start) {
  if (q.min > kMaxBound) return fail(ulkErrRegExpQuantifier, start + 1);
  if (q.maxDigits && q.max > kMaxBound) return fail(ulkErrRegExpQuantifier, q.maxDigits);
  if (q.min > q.max) return fail(ulkErrRegExpQuantifier, start + 1);
  return ulkOk;
}

// Only the byte before tells a second quantifier from one that follows a merged run (or a space or comment).
ulkStatus Compiler::mergeQuantifier(const Quantifier& q, const uint8_t* start) {
  const uint8_t before = start[-1];
  if (before == '}' || before == '?' || before == '+' || before == '*')
    return fail(ulkErrRegExpQuantifier, start);
  RxNode& node = lastNode();
  node.code = RX_REPEAT;
  raiseBounds(node, q.min, q.max);
  return ulkOk;
}

ulkStatus Compiler::appendQuantifier(const Quantifier& q, bool lazy) {
  RxNode& last = lastNode();
  if (last.code == RX_END) {
    if (repeatMark(last) == kRepeatMarkBody) repeatMark(last) = kRepeatMarkRepeated;
    if (quantifyLookaround(q)) return ulkOk;
  }
  appendRepeat(q.min, q.max, lazy ? RX_REPEAT_LAZY : RX_REPEAT);
  return ulkOk;
}

// A repeated assertion is the assertion, an optional one is nothing. False if the last group is no
// lookaround.
bool Compiler::quantifyLookaround(const Quantifier& q) {
  const RxNode* const open = linkedOpen(lastNode());
  if (!isLookaround(*open)) return false;
  if (q.min == 0) numNodes = static_cast<int32_t>(open - nodes);
  return true;
}

// Makes the last byte of the literal text that ends here a node of its own. False if there is no such text.
bool Compiler::splitLastByte() {
  const bool fromRun = runLength_ > 0;
  flush();
  if (numNodes == 0 || lastNode().code != RX_STRING) return fromRun;
  RxNode& head = lastNode();
  const uint8_t* const text = stringOf(head);
  const int32_t length = stringLength(head);
  if (length == 2) {
    head.code = RX_CHAR;
    byteOf(head) = text[0];
  } else {
    stringLength(head) = length - 1;
  }
  byteOf(append(RX_CHAR)) = text[length - 1];
  return true;
}

// ---- Groups

ulkStatus Compiler::openGroup() {
  flush();
  const bool special = at[1] == '?';
  // These three are over at once, and neither a level nor a serial is spent on them.
  if (special && at[2] == '#') return comment();
  if (special && at[2] == ')') {
    at += 3;
    return ulkOk;
  }
  if (special && (at[2] == '-' || optionBit(at[2]))) return optionGroup();

  if (nextSerial_ > kMaxSerial) return fail(ulkErrRegExpGroup, at);
  if (!special) return capture();
  switch (at[2]) {
    case ':':
      return enterGroup(RX_GROUP, 3);
    case '=':
      return enterGroup(RX_LOOKAHEAD, 3);
    case '!':
      return enterGroup(RX_NLOOKAHEAD, 3);
    case '<':
      return behind();
    case '>':
      return enterGroup(RX_ATOMIC, 3);
    case '(':
      return conditional();
    default:
      return fail(ulkErrRegExpGroup, at + 2);
  }
}

// Every open group holds a serial, so these also keep the depth within its bounds.
ulkStatus Compiler::enterGroup(RxCode code, int32_t bytes) {
  if (nextSerial_ > kMaxSerial) return fail(ulkErrRegExpGroup, at);
  at += bytes;
  groups_[depth_++] = {numNodes, options_};
  serialOf(append(code)) = nextSerial_++;
  return ulkOk;
}

ulkStatus Compiler::capture() {
  const ulkStatus status = enterGroup(RX_CAPTURE, 1);
  if (status == ulkOk) captureNumber(lastNode()) = nextCapture_++;
  return status;
}

ulkStatus Compiler::behind() {
  if (at[3] == '=') return enterGroup(RX_LOOKBEHIND, 4);
  if (at[3] == '!') return enterGroup(RX_NLOOKBEHIND, 4);
  return fail(ulkErrRegExpGroup, at + 3);
}

ulkStatus Compiler::comment() {
  const void* const close = std::memchr(at, ')', static_cast<size_t>(end - at));
  if (!close) return fail(ulkErrRegExpGroup, end);
  at = static_cast<const uint8_t*>(close) + 1;
  return ulkOk;
}

// "(?im-sx:" opens a group, "(?im-sx)" changes the options for the rest of the group that it stands in.
ulkStatus Compiler::optionGroup() {
  const uint8_t* const open = at;
  uint32_t changed = options_;
  bool set = true;
  const uint8_t* p = open + 2;
  for (; *p != ':' && *p != ')'; ++p) {
    const uint32_t bit = optionBit(*p);
    if (*p == '-') {
      set = false;
    } else if (!bit) {
      return fail(ulkErrRegExpGroup, p);
    }
    changed = set ? changed | bit : changed & ~bit;
  }

  if (*p == ':') {
    const ulkStatus status = enterGroup(RX_OPTGROUP, static_cast<int32_t>(p + 1 - open));
    if (status != ulkOk) return status;
    optionsInside(lastNode()) = static_cast<int32_t>(changed);
  } else {
    at = p + 1;
    // The matcher has no use for x, so the two forms that change nothing else make no node.
    const bool extendedOnly = std::memcmp(open, "(?x)", 4) == 0 || std::memcmp(open, "(?-x)", 5) == 0;
    if (!extendedOnly) newOptions(append(RX_OPTIONS)) = static_cast<int32_t>(changed);
  }
  options_ = changed;
  return ulkOk;
}

ulkStatus Compiler::conditional() {
  const ulkStatus status = enterGroup(RX_COND, 2);
  if (status != ulkOk) return status;
  if (at[1] == '?') return ulkOk;  // a lookaround comes next, read like any other group

  const uint8_t* const digits = at + 1;
  const uint8_t* p = digits;
  // Eleven is no slip: patterns are written for it, and "(?(12)" asks for group 13.
  const int32_t group = readGroupNumber(p, 11);
  if (p == digits) return fail(*p == ')' ? ulkErrRegExpBackRef : ulkErrRegExpGroup, p);
  if (*p != ')') return fail(ulkErrRegExpGroup, p);
  if (group == 0) return fail(ulkErrRegExpBackRef, digits + 1);
  at = p + 1;
  appendReference(group);
  return ulkOk;
}

ulkStatus Compiler::closeGroup() {
  flush();
  const uint8_t* const close = at;
  if (depth_ == 0) return fail(ulkErrRegExpGroup, close);
  ++at;
  options_ = groups_[--depth_].options;
  RxNode& open = nodes[groups_[depth_].node];
  const int32_t first = groups_[depth_].node + 1;

  const bool plain = open.code == RX_GROUP || open.code == RX_CAPTURE;
  const int64_t width = plain ? simpleWidth(nodes, first, numNodes) : -1;
  if (flatten(open, first, width)) return ulkOk;

  if (isLookaround(open) || open.code == RX_ATOMIC) serialOf(open) = -serialOf(open);
  bodyLength(open) = numNodes - first;
  const int32_t bars = claimBars(first, serialOf(open));
  if (open.code == RX_COND && (bars > 1 || !conditionIsSound(first))) return fail(ulkErrRegExpGroup, close);
  const bool lookbehind = open.code == RX_LOOKBEHIND || open.code == RX_NLOOKBEHIND;
  if (lookbehind && !measureLookbehind(open, first)) return fail(ulkErrRegExpGroup, close);

  const bool marked = width == 1 && isQuantifier(lastNode());
  RxNode& node = append(RX_END);
  serialOf(node) = serialOf(open);
  optionsBehind(node) = static_cast<int32_t>(options_);
  repeatMark(node) = marked ? kRepeatMarkBody : kRepeatMarkNone;
  linkTo(&open, node);
  return ulkOk;
}

// Removes the group's open node where the group says no more than its body does.
bool Compiler::flatten(RxNode& open, int32_t first, int64_t width) {
  if (open.code != RX_GROUP || width < 1) return false;
  const int32_t length = numNodes - first;
  const bool isOneGap = nodes[first].code == kGap && bodyLength(nodes[first]) == length - 1;
  const int32_t numSolid = isOneGap ? solidNodes(nodes[first]) : length;
  if (width == 1 ? numSolid != 1 : startsQuantifier(at)) return false;
  open.code = kGap;
  gapWidth(open) = width == 1 ? 1 : 2;
  bodyLength(open) = length;
  solidNodes(open) = numSolid;
  hasGaps_ = true;
  --nextSerial_;
  return true;
}

// Ties the bars of the group that is being closed to it, and counts them.
int32_t Compiler::claimBars(int32_t first, int32_t serial) {
  int32_t bars = 0;
  for (int32_t i = first; i < numNodes; i = nextItem(nodes, i)) {
    if (nodes[i].code != RX_ALT) continue;
    serialOf(nodes[i]) = serial;
    ++bars;
  }
  return bars;
}

// The condition is a group number or a lookaround, and is not repeated.
bool Compiler::conditionIsSound(int32_t first) const {
  if (first == numNodes) return false;
  if (nodes[first].code != RX_BACKREF && !isLookaround(nodes[first])) return false;
  return !quantifierOf(nodes, numNodes, first);
}

bool Compiler::measureLookbehind(RxNode& open, int32_t first) {
  for (int32_t i = first; i < numNodes; ++i) {
    const RxNode& node = nodes[i];
    if (node.code == RX_LOOKBEHIND || node.code == RX_NLOOKBEHIND) i += bodyLength(node);  // measured already
    if (node.code == RX_BACKREF || (isQuantifier(node) && minOf(node) != maxOf(node))) return false;
  }
  const int64_t width = fixedWidth(nodes, first, numNodes);
  if (width < 0 || width > INT32_MAX) return false;
  lookbehindWidth(open) = static_cast<int32_t>(width);
  return true;
}

// ---- Nodes

void Compiler::flush() {
  if (runLength_ == 0) return;
  appendLiteral(run_, runLength_);
  runLength_ = 0;
}

// A string points into the pattern until the program is finished.
void Compiler::appendLiteral(const uint8_t* text, int32_t length) {
  RxNode& node = append(length == 1 ? RX_CHAR : RX_STRING);
  if (length == 1) {
    byteOf(node) = *text;
  } else {
    stringLength(node) = length;
    setString(node, text);
  }
  noteLiteral(node);
}

void Compiler::noteLiteral(RxNode& node) {
  if (depth_ != 0 || trailing_ < kNoTrailingLiteral) return;
  trailing_ = numNodes - 1;
  literalOptions(node) = static_cast<int32_t>(options_);
}

// A repeated byte ends the expression's text only if it is there at least once. That it also makes a literal
// behind it count in spite of a top-level bar, "c" in `a|b*c`, is how expressions have always been searched.
void Compiler::noteQuantifiedByte(int32_t min, bool splitOff) {
  RxNode& node = lastNode();
  if (node.code != RX_CHAR && node.code != RX_CODEPOINT) return;
  if (splitOff && min >= 1 && depth_ == 0 && trailing_ >= kNoTrailingLiteral) {
    noteLiteral(node);
  } else {
    trailing_ = kNoTrailingLiteral;
  }
}

void Compiler::appendRepeat(int32_t min, int32_t max, RxCode code) {
  RxNode& node = append(code);
  minOf(node) = min;
  maxOf(node) = max;
}

void Compiler::appendReference(int32_t group) {
  RxNode& node = append(RX_BACKREF);
  referredCapture(node) = group;
  node.op2 = 0;
}

bool Compiler::isCharType(int32_t node, uint8_t letter) const {
  return node >= 0 && nodes[node].code == RX_CHARTYPE && letterOf(nodes[node]) == letter;
}

}  // namespace

ulkStatus compileProgram(const char* pattern, const char* options, ulkRegExpState& state, SpareWords& spare,
                         int32_t& errOffset) {
  const size_t length = std::strlen(pattern);
  if (length > kMaxPatternLength) {
    errOffset = 0;
    return ulkErrLength;
  }
  const auto* const bytes = reinterpret_cast<const uint8_t*>(pattern);
  Compiler compiler(bytes, bytes + length, state);
  const ulkStatus status = compiler.run(options);
  if (status == ulkOk) {
    spare = compiler.spare();
  } else {
    errOffset = static_cast<int32_t>(compiler.errorAt - bytes);
  }
  return status;
}

}  // namespace ulk
