#include "regexp/analysis/start_filter.h"

#include <algorithm>

#include "regexp/analysis/first_bytes.h"
#include "regexp/program/follow_note.h"

namespace ulk {

namespace {

bool containsAll(const ByteSet256& set) {
  return std::all_of(set.words, set.words + 8, [](uint32_t word) { return word == ~0u; });
}

// Whether the item is repeated, and it is known what may follow.
bool isRun(const RxNode* nodes, int32_t numNodes, int32_t item, uint32_t options) {
  if (item < 0 || nodes[item].code == RX_XSEQ) return false;
  const RxNode* const quantifier = quantifierOf(nodes, numNodes, item);
  if (!quantifier || quantifier->code != RX_REPEAT || minOf(*quantifier) < 1) return false;
  const FollowNote note(followNote(*quantifier));
  return followSet(*quantifier) && !note.itself() && note.options() == (options & kMatcherOptions);
}

StartKind kindOf(const FirstBytes& items, const RxNode* nodes, StartFilter& filter) {
  if (items.boundarySteps > 0) {
    describe(items.set, filter.small);
    return StartKind::kBoundary;
  }
  if (containsAll(items.set)) return StartKind::kAny;
  const bool caseless = filter.options & RX_OPT_CASELESS;
  if (filter.item >= 0 && nodes[filter.item].code == RX_STRING) {
    return caseless ? StartKind::kCaselessString : StartKind::kString;
  }
  if (!describe(items.set, filter.small)) return StartKind::kSet;
  return filter.small.form == SmallSetForm::kOne ? StartKind::kByte : StartKind::kSmallSet;
}

bool isLiteral(const ulkRegExpState& state, int32_t node) {
  const RxNode* const nodes = state.nodes();
  return node < state.numNodes && nodes[node].code <= RX_STRING && !quantifierOf(nodes, state.numNodes, node);
}

// Whether nothing but the end of the text begins here.
bool isTextEnd(const ulkRegExpState& state, int32_t node) {
  const RxNode* const nodes = state.nodes();
  return node < state.numNodes && nodes[node].code == RX_ASSERT && assertionOf(nodes[node]) == 'z' &&
         !quantifierOf(nodes, state.numNodes, node);
}

// The first node that is neither an option change nor a word boundary.
int32_t firstNode(const RxNode* nodes, int32_t numNodes) {
  const auto isPassed = [](const RxNode& node) {
    return node.code == RX_OPTIONS || (node.code == RX_ASSERT && assertionOf(node) == 'b');
  };
  int32_t first = 0;
  while (first < numNodes && isPassed(nodes[first])) ++first;
  return first;
}

// Ways to begin: the node that the first one begins with, and the bar before the second one.
struct Alternatives {
  int32_t first;
  const RxNode* firstBar;  // null if there is no second one
};

// The alternatives of the whole program or of the group that it begins with.
Alternatives firstAlternatives(const RxNode* nodes, int32_t numNodes, int32_t firstBar) {
  const int32_t first = firstNode(nodes, numNodes);
  const bool isGroup = first < numNodes && (nodes[first].code == RX_GROUP || nodes[first].code == RX_CAPTURE);
  if (firstBar < 0 && isGroup) return {first + 1, nextBar(nodes[first])};
  return {first, firstBar < 0 ? nullptr : &nodes[firstBar]};
}

// Whether every one of several ways to begin a match begins with a literal, or at the end of the text.
bool beginsWithLiterals(const ulkRegExpState& state, const StartFilter& filter) {
  const RxNode* const nodes = state.nodes();
  const Alternatives ways = firstAlternatives(nodes, state.numNodes, filter.firstBar);
  if (filter.item >= 0 || !ways.firstBar || !isLiteral(state, ways.first)) return false;
  // All of them are compared with the options that the attempt begins with.
  const auto changesOptions = [](const RxNode& node) { return node.code == RX_OPTIONS; };
  if (std::any_of(nodes, nodes + ways.first, changesOptions)) return false;
  if (filter.firstBar < 0) {
    // A group that may be left out is not the only beginning.
    const RxNode* const quantifier = quantifierOf(nodes, state.numNodes, ways.first - 1);
    if (quantifier && minOf(*quantifier) == 0) return false;
  }
  for (const RxNode* bar = ways.firstBar; bar; bar = nextBar(*bar)) {
    const auto first = static_cast<int32_t>(bar - nodes) + 1;
    if (static_cast<uint32_t>(optionsBehind(*bar)) != filter.options) return false;
    if (!isLiteral(state, first) && !isTextEnd(state, first)) return false;
  }
  return true;
}

// Adds the second bytes of literals; false if one has none.
bool addSecondByte(const RxNode& literal, uint32_t options, ByteSet256& set) {
  if (literal.code != RX_STRING) return false;
  addByte(stringOf(literal)[1], options, set);
  return true;
}

// Finds out what must stand right behind the first byte of every match, so that a search looks for both:
//  - for `abc|axe` or `\babc`, where every way to begin is a literal: one of their second bytes
//  - for `[ab]{3}`: two more bytes of the first set
//  - for `[ab]c`: a byte that the next item begins with; without it an attempt costs one step more
// False where those bytes are no small set, `a.`, or need not come, `[ab]c?`.
bool describePair(const ulkRegExpState& state, const StartFilter& filter, StartPair& pair) {
  const RxNode* const nodes = state.nodes();
  const bool ascii =
      std::all_of(filter.small.bytes, filter.small.bytes + 4, [](uint8_t c) { return c < 0x80; });
  if (filter.small.form == SmallSetForm::kNone || !ascii) return false;
  pair = {};
  ByteSet256 seconds{};
  if (filter.literals) {
    const Alternatives ways = firstAlternatives(nodes, state.numNodes, filter.firstBar);
    if (!addSecondByte(nodes[ways.first], filter.options, seconds)) return false;
    for (const RxNode* bar = ways.firstBar; bar; bar = nextBar(*bar))
      if (bar[1].code != RX_ASSERT && !addSecondByte(bar[1], filter.options, seconds)) return false;
    return describe(seconds, pair.second);
  }
  if (filter.item < 0) return false;
  if (addSecondByte(nodes[filter.item], filter.options, seconds)) return describe(seconds, pair.second);
  if (filter.kind == StartKind::kBoundary)
    return false;  // where that byte is missing costs another number of steps
  const int32_t next = nextItem(nodes, filter.item);
  if (next >= state.numNodes) return false;
  if (isQuantifier(nodes[next])) {
    pair.run = std::min(minOf(nodes[next]) - 1, 15);
    return pair.run > 0;
  }
  if (!isItem(nodes[next])) return false;
  const RxNode* const quantifier = quantifierOf(nodes, state.numNodes, next);
  if (quantifier && minOf(*quantifier) == 0) return false;
  addFirstBytes(nodes[next], filter.options, seconds);
  pair.extraSteps = 1;
  return describe(seconds, pair.second);
}

// The first top-level bar, -1 without one.
int32_t firstTopLevelBar(const RxNode* nodes, int32_t numNodes) {
  for (int32_t i = 0; i < numNodes; ++i)
    if (nodes[i].code == RX_ALT && serialOf(nodes[i]) == kTopLevel) return i;
  return -1;
}

Anchor anchorOf(const ulkRegExpState& state, const StartFilter& filter) {
  const RxNode* const nodes = state.nodes();
  if (state.numNodes == 0 || nodes[0].code != RX_ASSERT || filter.firstBar >= 0) return Anchor::kNone;
  const RxNode* const quantifier = quantifierOf(nodes, state.numNodes, 0);
  const bool optional = quantifier && minOf(*quantifier) == 0;
  switch (assertionOf(nodes[0])) {
    case '^':
      // An optional "^" with multiline still restricts the search to line starts.
      if (state.options & RX_OPT_MULTILINE) return Anchor::kLineStart;
      [[fallthrough]];
    case 'A':
    case 'G':
      return optional ? Anchor::kNone : Anchor::kTextStart;
    default:
      return Anchor::kNone;
  }
}

// The kind of filter for a program that begins with an assertion that holds at a text or line start only, be
// it behind changes of the options: `(?m)^\w`. kAny for others.
StartKind kindOfAssertion(int32_t assertion, uint32_t options) {
  switch (assertion) {
    case kLeadingDotStar:
      return StartKind::kLineStart;
    case '^':
      return options & RX_OPT_MULTILINE ? StartKind::kLineStart : StartKind::kTextStart;
    case 'A':
    case 'G':
      return StartKind::kTextStart;
    default:
      return StartKind::kAny;
  }
}

// The first bytes of a line or text that can match, from a node on.
void describeLine(ulkRegExpState& state, int32_t node, StartFilter& filter) {
  FirstBytes items(state);
  if (!items.ofRest(node, filter.options, false)) return;
  state.frames[kStartSetFrame].bytes = items.set;
  describe(items.set, filter.small);
  filter.placeSteps = filter.steps + items.steps;
}

bool describeAssertion(ulkRegExpState& state, StartFilter& filter) {
  const RxNode* const nodes = state.nodes();
  uint32_t options = state.options;
  int32_t first = 0;
  for (; first < state.numNodes && nodes[first].code == RX_OPTIONS; ++first)
    options = static_cast<uint32_t>(newOptions(nodes[first]));
  if (filter.firstBar >= 0 || first >= state.numNodes || nodes[first].code != RX_ASSERT) return false;
  const RxNode* const quantifier = quantifierOf(nodes, state.numNodes, first);
  if (quantifier && minOf(*quantifier) == 0) return false;
  filter.kind = kindOfAssertion(assertionOf(nodes[first]), options);
  if (filter.kind == StartKind::kAny) return false;
  filter.steps = first + 1;
  filter.options = static_cast<uint8_t>(options);
  if (filter.hasFrames) describeLine(state, first + (quantifier ? 2 : 1), filter);
  return true;
}

// The filter, kAny where the first byte does not decide. It is for attempts that begin with the options that
// a failed one leaves: for `(?i)ab` all but the first, which begins without i.
StartFilter filterFor(ulkRegExpState& state, bool hasFrames) {
  const RxNode* const nodes = state.nodes();
  StartFilter filter{};
  filter.hasFrames = hasFrames;
  filter.firstBar = firstTopLevelBar(nodes, state.numNodes);
  filter.anchor = anchorOf(state, filter);
  filter.candidates = hasFrames && filter.anchor == Anchor::kNone;
  if (state.numNodes == 0 || describeAssertion(state, filter)) return filter;

  FirstBytes items(state);
  const RxNode* const firstBar = filter.firstBar < 0 ? nullptr : nodes + filter.firstBar;
  if (!hasFrames || !items.ofProgram(state.options, firstBar)) return filter;
  filter.options = static_cast<uint8_t>(items.exitOptions);
  if (filter.options != state.options) {
    items = FirstBytes(state);
    if (!items.ofProgram(filter.options, firstBar) || items.exitOptions != filter.options) return filter;
  }
  filter.steps = items.steps;
  filter.placeSteps = items.boundarySteps;
  filter.boundsSteps = items.boundsSteps;
  // One that is made leaves the options that it changes, which the next one sees unless it sets them first.
  const bool startsAlike = filter.options == state.options || nodes[0].code == RX_OPTIONS;
  filter.failsAtEnd = !items.atEnd && startsAlike;
  filter.item = items.itemOptions == filter.options ? items.soleItem : -1;
  filter.kind = kindOf(items, nodes, filter);
  // Of the bytes of a run one is at a word boundary.
  if (filter.kind != StartKind::kBoundary)
    filter.runs = isRun(nodes, state.numNodes, filter.item, filter.options);
  filter.literals = beginsWithLiterals(state, filter);
  if (filter.kind != StartKind::kAny) state.frames[kStartSetFrame].bytes = items.set;
  StartPair& pair = state.frames[kStartPairFrame].pair;
  filter.hasPair = describePair(state, filter, pair);
  if (filter.literals) {
    const Alternatives ways = firstAlternatives(nodes, state.numNodes, filter.firstBar);
    pair.firstLiteral = ways.first;
    pair.literalBar = static_cast<int32_t>(ways.firstBar - nodes);
  }
  return filter;
}

}  // namespace

void makeStartFilter(ulkRegExpState& state, bool hasFrames) {
  state.frames[0].start = filterFor(state, hasFrames);
  if (hasFrames) state.frames[kPrefilterFrame].prefilter = kNewPrefilterNote;
}

}  // namespace ulk
