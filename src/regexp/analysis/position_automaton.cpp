#include "regexp/analysis/position_automaton.h"

#include <algorithm>
#include <bit>

#include "regexp/analysis/first_bytes.h"
#include "regexp/program/character_test.h"

namespace ulk {

namespace {

constexpr int32_t kMaxNesting = 32;
constexpr int32_t kMaxRequired = 16;  // copies of what is repeated; from there on "or more"
constexpr int32_t kMaxOptional = 4;
constexpr int32_t kMaxPieces = 512;  // looked at, copies counted

constexpr PositionSet bit(int32_t position) { return PositionSet{1} << position; }

constexpr bool endsText(int32_t assertion) {
  return assertion == '$' || assertion == 'Z' || assertion == 'z';
}

constexpr ByteSet256 kContinuations{{0, 0, 0, 0, ~0u, ~0u, 0, 0}};

// A part of the program.
struct Part {
  PositionSet first;
  PositionSet last;
  bool nullable;  // it can match nothing
  bool accepts;   // what follows its beginning is not known: a match may end before it
};

constexpr Part kNothing{0, 0, true, false};
constexpr Part kUnknown{0, 0, false, true};

// Both of two ways.
constexpr Part either(const Part& a, const Part& b) {
  return {a.first | b.first, a.last | b.last, a.nullable || b.nullable, a.accepts || b.accepts};
}

// Where an item accepts characters of two bytes beside ASCII only, which begin with one of few bytes: adds
// what their second bytes can be. Else false.
bool addSecondBytes(const RxNode& item, uint32_t options, const ByteSet256& firsts, ByteSet256& seconds) {
  constexpr int32_t kFewLeads = 4;
  constexpr uint32_t kNoLeads = 3;  // 0xC0 and 0xC1
  const uint32_t leads = firsts.words[6];
  if (firsts.words[4] | firsts.words[5] | firsts.words[7] | (leads & kNoLeads)) return false;
  if (std::popcount(leads) > kFewLeads) return false;
  const CharacterTest test(item, options);
  for (uint32_t left = leads; left; left &= left - 1) {
    const int32_t number = std::countr_zero(left);
    const auto lead = static_cast<uint8_t>(0xC0 + number);
    if (test.accepts({lead - 0x100, 1}, lead)) return false;  // it may stand alone
    for (int32_t i = 0; i < 0x40; ++i)
      if (test.accepts({number << 6 | i, 2}, lead)) addByte(0x80 + i, 0, seconds);
  }
  return true;
}

class Builder {
 public:
  Builder(const ulkRegExpState& state, PositionAutomaton& automaton)
      : nodes_(state.nodes()), numNodes_(state.numNodes), automaton_(automaton) {
    automaton_.count = 0;
    automaton_.accepting = 0;
    automaton_.atEnd = 0;
  }

  bool build(uint32_t options);

 private:
  Part alternatives(int32_t first, int32_t end, int32_t serial, uint32_t options);
  Part sequence(int32_t node, int32_t end, uint32_t options);
  Part piece(int32_t node, uint32_t options);
  Part once(int32_t node, uint32_t options);
  Part group(int32_t open, uint32_t options);
  Part byte(const ByteSet256& bytes);
  Part character(const ByteSet256& firsts);
  Part twoBytes(const ByteSet256& leads, const ByteSet256& seconds);
  Part item(const RxNode& node, uint32_t options);
  Part string(const RxNode& node, uint32_t options);
  Part assertion(const ByteSet256& bytes);
  Part endAssertion(int32_t kind);
  Part wordBoundary(const Part& before);
  Part negativeLookahead(int32_t open, uint32_t options);
  Part last(int32_t node, const Part& before, uint32_t options);
  Part repeated(int32_t node, const RxNode& quantifier, uint32_t options);
  bool takeWordsOnly(PositionSet positions) const;
  bool mayMakeSurplus(int32_t open) const;
  Part lookbehind(int32_t node, uint32_t options);
  bool hasWidth(int32_t open, int32_t width) const;
  int32_t add();
  void link(PositionSet from, PositionSet to);
  Part joined(const Part& a, const Part& b);

  const RxNode* const nodes_;
  const int32_t numNodes_;
  PositionAutomaton& automaton_;
  int32_t depth_ = 0;
  int32_t numPieces_ = 0;
};

// A new position, -1 if there is no room.
int32_t Builder::add() {
  if (automaton_.count == kMaxPositions) return -1;
  automaton_.bytes[automaton_.count] = {};
  automaton_.follow[automaton_.count] = 0;
  return automaton_.count++;
}

void Builder::link(PositionSet from, PositionSet to) {
  for (; from; from &= from - 1) automaton_.follow[std::countr_zero(from)] |= to;
}

Part Builder::joined(const Part& a, const Part& b) {
  link(a.last, b.first);
  if (b.accepts) automaton_.accepting |= a.last;
  return {a.first | (a.nullable ? b.first : 0), b.last | (b.nullable ? a.last : 0), a.nullable && b.nullable,
          a.accepts || (a.nullable && b.accepts)};
}

Part Builder::byte(const ByteSet256& bytes) {
  const int32_t at = add();
  if (at < 0) return kUnknown;
  automaton_.bytes[at] = bytes;
  return {bit(at), bit(at), false, false};
}

// A character of one byte or more: a byte, and continuation bytes behind one from 0x80 on. A byte that is
// none by the rules of UTF-8 is a character by itself.
Part Builder::character(const ByteSet256& firsts) {
  const Part first = byte(firsts);
  const int32_t tail = add();
  if (tail < 0) return kUnknown;
  automaton_.bytes[tail] = kContinuations;
  link(first.last | bit(tail), bit(tail));
  return {first.first, first.last | bit(tail), false, false};
}

// A character of two bytes. The text's end may cut it, and is then taken for the second.
Part Builder::twoBytes(const ByteSet256& leads, const ByteSet256& seconds) {
  const Part whole = joined(byte(leads), byte(seconds));
  automaton_.atEnd |= whole.last;
  return whole;
}

Part Builder::item(const RxNode& node, uint32_t options) {
  ByteSet256 firsts{};
  addFirstBytes(node, options, firsts);
  if (takesByte(node) || !hasHighBytes(firsts)) return byte(firsts);
  ByteSet256 seconds{};
  if (!addSecondBytes(node, options, firsts, seconds)) return character(firsts);
  ByteSet256 ascii = firsts;
  ByteSet256 leads = firsts;
  std::fill_n(ascii.words + 4, 4, 0);
  std::fill_n(leads.words, 4, 0);
  const Part multibyte = twoBytes(leads, seconds);
  return isEmpty(ascii) ? multibyte : either(byte(ascii), multibyte);
}

Part Builder::string(const RxNode& node, uint32_t options) {
  Part whole = kNothing;
  for (int32_t i = 0; i < stringLength(node); ++i) {
    const int32_t at = add();
    if (at < 0) return joined(whole, kUnknown);
    addByte(stringOf(node)[i], options, automaton_.bytes[at]);
    whole = joined(whole, {bit(at), bit(at), false, false});
  }
  return whole;
}

// Lazy repeats and lookbehinds may leave bytes counted that they did not take, and an atomic group goes on
// behind what is counted.
bool Builder::mayMakeSurplus(int32_t open) const {
  const RxNode* const body = nodes_ + open + 1;
  return std::any_of(body, body + bodyLength(nodes_[open]), [](const RxNode& node) {
    const RxCode code = codeOf(node);
    return code == RX_REPEAT_LAZY || code == RX_LOOKBEHIND || code == RX_NLOOKBEHIND;
  });
}

Part Builder::group(int32_t open, uint32_t options) {
  if (depth_ == kMaxNesting) return kUnknown;
  ++depth_;
  const int32_t end = open + 1 + bodyLength(nodes_[open]);
  const Part part = alternatives(open + 1, end, serialOf(nodes_[open]), optionsAfter(nodes_[open], options));
  --depth_;
  return part;
}

Part Builder::once(int32_t node, uint32_t options) {
  switch (codeOf(nodes_[node])) {
    case RX_STRING:
      return string(nodes_[node], options);
    case RX_ASSERT:
      return endsText(assertionOf(nodes_[node])) ? endAssertion(assertionOf(nodes_[node])) : kNothing;
    case RX_LOOKAHEAD:
    case RX_NLOOKAHEAD:
    case RX_LOOKBEHIND:
    case RX_NLOOKBEHIND:
      return kNothing;
    case RX_ATOMIC:
      return mayMakeSurplus(node) ? kUnknown : group(node, options);
    case RX_CAPTURE:
    case RX_GROUP:
    case RX_OPTGROUP:
      return group(node, options);
    case RX_CHAR:
    case RX_CHARTYPE:
    case RX_CLASS:
    case RX_BYTE:
    case RX_CODEPOINT:
    case RX_CATEGORY:
    case RX_UNIRANGE:
    case RX_SCRIPT:
      return item(nodes_[node], options);
    default:
      return kUnknown;
  }
}

Part Builder::repeated(int32_t node, const RxNode& quantifier, uint32_t options) {
  const int32_t required = std::min(minOf(quantifier), kMaxRequired);
  const int32_t optional = std::min(maxOf(quantifier) - required, kMaxOptional + 1);
  Part whole = kNothing;
  for (int32_t i = 0; i < required; ++i) whole = joined(whole, once(node, options));
  if (optional > kMaxOptional) {
    Part more = once(node, options);
    link(more.last, more.first);
    if (more.accepts) automaton_.accepting |= more.last;
    more.nullable = true;
    return joined(whole, more);
  }
  for (int32_t i = 0; i < optional; ++i) {
    Part more = once(node, options);
    more.nullable = true;
    whole = joined(whole, more);
  }
  return whole;
}

// A node with its quantifier. Lazy repeats of properties have rules of their own, as have quantified atomic
// groups and lookarounds.
Part Builder::piece(int32_t node, uint32_t options) {
  if (++numPieces_ > kMaxPieces) return kUnknown;
  const RxNode* const quantifier = quantifierOf(nodes_, numNodes_, node);
  if (!quantifier) return once(node, options);
  if (quantifier + 1 < nodes_ + numNodes_ && isQuantifier(quantifier[1])) return kUnknown;
  const RxCode code = codeOf(nodes_[node]);
  if (code == RX_ASSERT) return kNothing;
  if (code == RX_ATOMIC || isLookaround(nodes_[node])) return kUnknown;
  if (quantifier->code == RX_REPEAT_LAZY && code >= RX_CODEPOINT) return kUnknown;
  return repeated(node, *quantifier, options);
}

// An assertion asks for a byte as an item does, or for the end of the text. What follows it is not looked at.
Part Builder::assertion(const ByteSet256& bytes) {
  const Part asked = byte(bytes);
  automaton_.accepting |= asked.last;
  automaton_.atEnd |= asked.last;
  return {asked.first, 0, false, asked.accepts};
}

Part Builder::endAssertion(int32_t kind) {
  ByteSet256 bytes{};
  if (kind != 'z') addByte('\n', 0, bytes);
  return assertion(bytes);
}

// A word boundary that the program ends with, where a word byte comes before it. At the end of the text it
// asks for the byte behind, which is not known.
Part Builder::wordBoundary(const Part& before) {
  if (before.nullable || before.accepts || !takeWordsOnly(before.last)) return kNothing;
  ByteSet256 bytes{};
  addShorthand('W', 0, bytes);
  return assertion(bytes);
}

// Whether the positions take word bytes only.
bool Builder::takeWordsOnly(PositionSet positions) const {
  ByteSet256 words{};
  addShorthand('w', 0, words);
  while (positions && isSubset(automaton_.bytes[std::countr_zero(positions)], words))
    positions &= positions - 1;
  return positions == 0;
}

// A negative lookahead that the program ends with, of one item: it asks for a byte that the item does not
// accept, as far as that is known.
Part Builder::negativeLookahead(int32_t open, uint32_t options) {
  const RxNode& item = nodes_[open + 1];
  const RxCode code = codeOf(item);
  options = optionsAfter(nodes_[open], options);
  const bool isKnown =
      code == RX_CHAR || code == RX_CLASS || (code == RX_CHARTYPE && byteSetOf(item, options));
  if (!isKnown || nextNode(nodes_, open + 1) != open + 1 + bodyLength(nodes_[open])) return kNothing;
  ByteSet256 accepted{};
  addFirstBytes(item, options, accepted);
  ByteSet256 others{};
  for (int32_t i = 0; i < 8; ++i) others.words[i] = i < kWordsPerSet ? ~accepted.words[i] : ~0u;
  return assertion(others);
}

// A node that the program ends with.
Part Builder::last(int32_t node, const Part& before, uint32_t options) {
  if (codeOf(nodes_[node]) == RX_ASSERT && assertionOf(nodes_[node]) == 'b') return wordBoundary(before);
  if (codeOf(nodes_[node]) == RX_LOOKAHEAD) return group(node, options);
  if (codeOf(nodes_[node]) == RX_NLOOKAHEAD) return negativeLookahead(node, options);
  return piece(node, options);
}

Part Builder::sequence(int32_t node, int32_t end, uint32_t options) {
  Part whole = kNothing;
  while (node < end && codeOf(nodes_[node]) != RX_ALT) {
    const bool isLast = nextItem(nodes_, node) == numNodes_;
    const Part next = isLast ? last(node, whole, options) : piece(node, options);
    whole = joined(whole, next);
    if (!whole.nullable && !whole.last) break;  // whatever follows
    node = nextItem(nodes_, node);
    if (node < end && isQuantifier(nodes_[node])) ++node;
  }
  return whole;
}

// The alternatives in nodes[first, end).
Part Builder::alternatives(int32_t first, int32_t end, int32_t serial, uint32_t options) {
  Part whole = sequence(first, end, options);
  for (int32_t i = first; i < end; i = nextItem(nodes_, i)) {
    if (codeOf(nodes_[i]) != RX_ALT || serialOf(nodes_[i]) != serial) continue;
    whole = either(whole, sequence(i + 1, end, static_cast<uint32_t>(optionsBehind(nodes_[i]))));
  }
  return whole;
}

// Whether each alternative of a group of unquantified items and assertions takes so many characters.
bool Builder::hasWidth(int32_t open, int32_t width) const {
  const int32_t end = open + 1 + bodyLength(nodes_[open]);
  int64_t taken = 0;
  for (int32_t i = open + 1; i < end; i = nextNode(nodes_, i)) {
    if (codeOf(nodes_[i]) == RX_ASSERT) continue;
    if (codeOf(nodes_[i]) != RX_ALT) {
      taken += codeOf(nodes_[i]) == RX_STRING ? stringLength(nodes_[i]) : 1;
    } else if (taken == width) {
      taken = 0;
    } else {
      return false;
    }
  }
  return taken == width;
}

// The lookbehind that the program begins with, if each of its alternatives is a row of ASCII characters that
// is as long as it looks back: where it holds, one of them stands right before the match.
Part Builder::lookbehind(int32_t node, uint32_t options) {
  automaton_.bytesBefore = 0;
  const RxNode& open = nodes_[node];
  if (codeOf(open) != RX_LOOKBEHIND || stepOf(open) != Step::kLookbehindItems) return kNothing;
  if (quantifierOf(nodes_, numNodes_, node) || !hasWidth(node, lookbehindWidth(open))) return kNothing;
  for (int32_t i = node; i < numNodes_; i = nextItem(nodes_, i))
    if (codeOf(nodes_[i]) == RX_ALT) return kNothing;
  const int32_t count = automaton_.count;
  const PositionSet accepting = automaton_.accepting;
  const PositionSet atEnd = automaton_.atEnd;
  const Part part = group(node, options);
  if (!part.accepts && !part.nullable && automaton_.accepting == accepting &&
      std::none_of(automaton_.bytes + count, automaton_.bytes + automaton_.count, hasHighBytes)) {
    automaton_.bytesBefore = lookbehindWidth(open);
    return part;
  }
  automaton_.count = count;
  automaton_.accepting = accepting;
  automaton_.atEnd = atEnd;
  return kNothing;
}

// Options that change on the way stay changed for the next attempt; those that the program begins with are
// the same in all of them.
bool Builder::build(uint32_t options) {
  int32_t node = 0;
  for (; node < numNodes_ && codeOf(nodes_[node]) == RX_OPTIONS; ++node)
    options = static_cast<uint32_t>(newOptions(nodes_[node]));
  for (int32_t i = node; i < numNodes_; i = nextNode(nodes_, i))
    if (codeOf(nodes_[i]) == RX_OPTIONS) return false;
  const Part match = alternatives(node, numNodes_, kTopLevel, options);
  const Part whole = joined(lookbehind(node, options), match);
  automaton_.first = whole.first;
  automaton_.accepting |= whole.last;
  automaton_.atEnd &= automaton_.accepting;  // behind a character that the text's end cuts nothing can match
  return !whole.nullable && !whole.accepts && whole.first;
}

}  // namespace

bool makeAutomaton(const ulkRegExpState& state, PositionAutomaton& automaton) {
  return Builder(state, automaton).build(state.options);
}

}  // namespace ulk
