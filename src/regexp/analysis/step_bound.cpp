#include "regexp/analysis/step_bound.h"

#include <algorithm>
#include <cstring>

#include "regexp/analysis/first_bytes.h"
#include "regexp/program/follow_note.h"

namespace ulk {

namespace {

constexpr int32_t kMaxNesting = 32;
constexpr int64_t kFewSteps = 8;  // for a try behind an iteration that fails at once
constexpr int32_t kFew = 32;      // up to so many repetitions, runs are not worth measuring

// What a part of the program costs that is entered once: its own steps, and how often the rest of the program
// is entered behind it. All of it saturates.
struct Cost {
  int64_t steps;
  int64_t exits;
};

constexpr Cost kFree{0, 1};

int64_t saturated(int64_t value) { return std::min(value, kNoBound); }

Cost operator+(Cost a, Cost b) { return {saturated(a.steps + b.steps), saturated(a.exits + b.exits)}; }

// One behind the other.
Cost then(Cost a, Cost b) { return {saturated(a.steps + a.exits * b.steps), saturated(a.exits * b.exits)}; }

// A walk over the program, which notes the runs that it meets first.
class Walk {
 public:
  Walk(const ulkRegExpState& state, Runs& runs, bool notes, int64_t mostBytes = kNoBound)
      : nodes_(state.nodes()), numNodes_(state.numNodes), runs_(runs), notes_(notes), mostBytes_(mostBytes) {}

  Cost program(uint32_t options) { return alternatives(0, numNodes_, kTopLevel, options); }
  Cost upToItem(uint32_t options);
  bool isBounded() const { return isBounded_; }

 private:
  Cost alternatives(int32_t first, int32_t end, int32_t serial, uint32_t options);
  Cost sequence(int32_t node, int32_t end, uint32_t options);
  Cost piece(int32_t node, uint32_t options);
  Cost body(int32_t open, uint32_t options);
  Cost group(int32_t open, const RxNode* quantifier, uint32_t options);
  Cost oneWay(int32_t open, uint32_t options);
  Cost repeat(const RxNode& item, const RxNode& quantifier, uint32_t options);
  Cost unbounded();
  bool endsProgram(const RxNode& quantifier) const;
  bool setsOptions() const;
  bool mustGiveBackNone(const RxNode& quantifier, const ByteSet256& items, uint32_t options) const;
  int64_t longestRun(const ByteSet256& set);
  bool bytesOfBody(int32_t open, uint32_t options, ByteSet256& set) const;
  bool firstBytesOf(int32_t node, int32_t end, uint32_t options, ByteSet256& set) const;

  const RxNode* const nodes_;
  const int32_t numNodes_;
  Runs& runs_;
  const bool notes_;
  const int64_t mostBytes_;  // that the program takes
  bool isBounded_ = true;
  bool looksAhead_ = false;   // what is looked at is not taken,
  bool looksBehind_ = false;  // and lies elsewhere
  bool isRefused_ = false;    // in a negative lookahead an attempt fails behind what matches
  int32_t depth_ = 0;
};

Cost Walk::unbounded() {
  isBounded_ = false;
  return {kNoBound, kNoBound};
}

// A lookbehind looks where no run has been measured. Any character from 0x80 on may have any bytes from there
// on.
int64_t Walk::longestRun(const ByteSet256& set) {
  if (looksBehind_) {
    isBounded_ = false;
    return kNoBound;
  }
  if (mostBytes_ < kNoBound && !looksAhead_) return mostBytes_;
  ByteSet256 whole = set;
  if (hasHighBytes(set)) addAllHighBytes(whole);
  int32_t i = 0;
  while (i < runs_.count && std::memcmp(&runs_.sets[i], &whole, sizeof whole) != 0) ++i;
  if (i < runs_.count) return runs_.longest[i];
  if (!notes_ || i == Runs::kMax) {
    isBounded_ = false;
    return kNoBound;
  }
  runs_.sets[runs_.count++] = whole;
  runs_.longest[i] = 0;
  return 0;
}

// The rest is tried behind each of the items. Where none of them can begin what follows, all tries but one
// fail after a number of steps that is known.
Cost Walk::repeat(const RxNode& item, const RxNode& quantifier, uint32_t options) {
  if (quantifier.code == RX_REPEAT_LAZY && codeOf(item) >= RX_CODEPOINT) return unbounded();
  ByteSet256 set{};
  addFirstBytes(item, options, set);
  int64_t most = maxOf(quantifier);
  if (most > kFew) most = std::min(most, longestRun(set));
  const FollowNote note(followNote(quantifier));
  if (followSet(quantifier) && note.disjoint() && note.options() == (options & kMatcherOptions))
    return {saturated(1 + (most + 1) * note.steps()), 1};
  if (mustGiveBackNone(quantifier, set, options)) return {saturated(1 + (most + 1) * kFewSteps), 1};
  return {1, most + 1};
}

bool Walk::setsOptions() const {
  return std::any_of(nodes_, nodes_ + numNodes_, [](const RxNode& node) {
    return codeOf(node) == RX_OPTIONS || codeOf(node) == RX_OPTGROUP;
  });
}

// Whether the repeat ends the iterations of a group, as `,*` does in `(?:a+,*)+b`, and none of its items can
// begin the next one or what follows the group: tries before one of them fail in a few steps.
bool Walk::mustGiveBackNone(const RxNode& quantifier, const ByteSet256& items, uint32_t options) const {
  const auto end = static_cast<int32_t>(&quantifier - nodes_) + 1;
  if (end + 1 >= numNodes_ || codeOf(nodes_[end]) != RX_END || !isQuantifier(nodes_[end + 1])) return false;
  const RxNode* open = &nodes_[end];
  while (open > nodes_ && !(isGroupOpen(*open) && serialOf(*open) == serialOf(nodes_[end]))) --open;
  if ((codeOf(*open) != RX_GROUP && codeOf(*open) != RX_CAPTURE) || nextBar(*open) || setsOptions())
    return false;
  ByteSet256 next{};
  return firstBytesOf(static_cast<int32_t>(open - nodes_) + 1, end, options, next) &&
         firstBytesOf(end + 2, numNodes_, options, next) && !intersect(items, next);
}

// Whether what the quantifier repeats may be left out, and the program goes on in any case.
bool isOptional(const RxNode& piece, const RxNode* quantifier) {
  const RxCode code = codeOf(piece);
  const bool goesOn = code == RX_GROUP || code == RX_CAPTURE || code == RX_OPTGROUP || isItem(piece);
  return goesOn && quantifier && quantifier->code == RX_REPEAT && minOf(*quantifier) == 0;
}

// Whether the program accepts behind the quantifier: as that of the last repeat of `a+|b+`, of `a(b+)` or of
// `a+(?:,a+)*`. An attempt that fails has not come there.
bool Walk::endsProgram(const RxNode& quantifier) const {
  if (looksBehind_) return false;
  auto next = static_cast<int32_t>(&quantifier - nodes_) + 1;
  while (next < numNodes_) {
    const RxNode* const own = quantifierOf(nodes_, numNodes_, next);
    if (codeOf(nodes_[next]) == RX_END && !own) {
      ++next;
    } else if (isOptional(nodes_[next], own) &&
               !quantifierOf(nodes_, numNodes_, static_cast<int32_t>(own - nodes_))) {
      next = static_cast<int32_t>(own - nodes_) + 1;
    } else {
      break;
    }
  }
  return next == numNodes_ || (codeOf(nodes_[next]) == RX_ALT && serialOf(nodes_[next]) == kTopLevel);
}

// Adds the bytes of all that is in a group; false if they are not known.
bool Walk::bytesOfBody(int32_t open, uint32_t options, ByteSet256& set) const {
  const int32_t end = open + 1 + bodyLength(nodes_[open]);
  for (int32_t i = open; i < end; i = nextNode(nodes_, i)) {
    const RxNode& node = nodes_[i];
    options = optionsAfter(node, options);
    if (codeOf(node) == RX_BACKREF || codeOf(node) == RX_XSEQ) return false;
    if (isItem(node)) addAllBytes(node, options, set);
  }
  return true;
}

// The bytes that nodes[node, end) can begin with, if it begins with an item; false if that is not known.
bool Walk::firstBytesOf(int32_t node, int32_t end, uint32_t options, ByteSet256& set) const {
  if (node >= end || !isItem(nodes_[node]) || codeOf(nodes_[node]) == RX_XSEQ) return false;
  const RxNode* const quantifier = quantifierOf(nodes_, numNodes_, node);
  if (quantifier && (minOf(*quantifier) == 0 || quantifier->code == RX_REPEAT_LAZY)) return false;
  addFirstBytes(nodes_[node], options, set);
  return true;
}

// Alternatives that begin with different bytes do not both match.
Cost Walk::alternatives(int32_t first, int32_t end, int32_t serial, uint32_t options) {
  Cost whole = sequence(first, end, options);
  int64_t mostExits = whole.exits;
  ByteSet256 begun{};
  bool distinct = firstBytesOf(first, end, options, begun);
  for (int32_t i = first; i < end; i = nextItem(nodes_, i)) {
    if (codeOf(nodes_[i]) != RX_ALT || serialOf(nodes_[i]) != serial) continue;
    const auto inside = static_cast<uint32_t>(optionsBehind(nodes_[i]));
    const Cost next = sequence(i + 1, end, inside);
    ByteSet256 bytes{};
    distinct = distinct && firstBytesOf(i + 1, end, inside, bytes) && !intersect(bytes, begun);
    addAll(bytes, begun);
    mostExits = std::max(mostExits, next.exits);
    whole = whole + next;
  }
  if (distinct) whole.exits = mostExits;
  return whole;
}

// One run through the group, with the step at its end.
Cost Walk::body(int32_t open, uint32_t options) {
  if (depth_ == kMaxNesting) return unbounded();
  ++depth_;
  const int32_t end = open + 1 + bodyLength(nodes_[open]);
  const Cost inside =
      alternatives(open + 1, end, serialOf(nodes_[open]), optionsAfter(nodes_[open], options));
  --depth_;
  return then(inside, {1, 1});
}

// Behind each iteration, the rest is tried as well as another one. None but the last matches the empty text.
Cost Walk::group(int32_t open, const RxNode* quantifier, uint32_t options) {
  const Cost once = body(open, options);
  if (!quantifier) return then({1, 1}, once);
  int64_t most = endsProgram(*quantifier) && !isRefused_ ? minOf(*quantifier) : maxOf(*quantifier);
  ByteSet256 bytes{};
  if (most > kFew) {
    if (!bytesOfBody(open, options, bytes)) return unbounded();
    most = std::min(most, longestRun(bytes) + 1);
  }
  Cost all = kFree;
  if (once.exits <= 1) {
    all = {saturated(most * once.steps), most + 1};
  } else {
    for (int64_t i = 0; i < most && all.steps < kNoBound && all.exits < kNoBound; ++i)
      all = then(once, all) + kFree;
  }
  return then({1, 1}, all);
}

// A group that is left in one way only.
Cost Walk::oneWay(int32_t open, uint32_t options) {
  const RxCode code = codeOf(nodes_[open]);
  const bool lookedAhead = looksAhead_;
  const bool lookedBehind = looksBehind_;
  const bool wasRefused = isRefused_;
  looksAhead_ = looksAhead_ || code == RX_LOOKAHEAD || code == RX_NLOOKAHEAD;
  looksBehind_ = looksBehind_ || code == RX_LOOKBEHIND || code == RX_NLOOKBEHIND;
  isRefused_ = isRefused_ || code == RX_NLOOKAHEAD;
  const Cost inside = body(open, options);
  looksAhead_ = lookedAhead;
  looksBehind_ = lookedBehind;
  isRefused_ = wasRefused;
  return {saturated(2 + inside.steps + inside.exits), 1};
}

Cost Walk::piece(int32_t node, uint32_t options) {
  const RxNode* const quantifier = quantifierOf(nodes_, numNodes_, node);
  if (quantifier && quantifier + 1 < nodes_ + numNodes_ && isQuantifier(quantifier[1])) return unbounded();
  switch (codeOf(nodes_[node])) {
    case RX_ASSERT:
    case RX_OPTIONS:
      return {1, 1};
    case RX_LOOKAHEAD:
    case RX_NLOOKAHEAD:
    case RX_LOOKBEHIND:
    case RX_NLOOKBEHIND:
    case RX_ATOMIC:
      return quantifier ? unbounded() : oneWay(node, options);
    case RX_CAPTURE:
    case RX_GROUP:
    case RX_OPTGROUP:
      return group(node, quantifier, options);
    default:
      if (!isItem(nodes_[node]) && codeOf(nodes_[node]) != RX_BACKREF) return unbounded();
      if (!quantifier) return {1, 1};
      if (codeOf(nodes_[node]) == RX_BACKREF || codeOf(nodes_[node]) == RX_XSEQ) return unbounded();
      if (endsProgram(*quantifier)) return {1, 1};
      return repeat(nodes_[node], *quantifier, options);
  }
}

Cost Walk::sequence(int32_t node, int32_t end, uint32_t options) {
  Cost whole = kFree;
  while (node < end && isBounded_ && codeOf(nodes_[node]) != RX_ALT) {
    if (codeOf(nodes_[node]) == RX_OPTIONS) options = static_cast<uint32_t>(newOptions(nodes_[node]));
    whole = then(whole, piece(node, options));
    node = nextItem(nodes_, node);
    if (node < end && isQuantifier(nodes_[node])) ++node;
  }
  return whole;
}

// The program's first nodes, up to one that does not set options.
Cost Walk::upToItem(uint32_t options) {
  Cost whole = kFree;
  int32_t node = 0;
  for (; codeOf(nodes_[node]) == RX_OPTIONS; ++node) {
    options = static_cast<uint32_t>(newOptions(nodes_[node]));
    whole = then(whole, {1, 1});
  }
  return then(whole, piece(node, options));
}

int64_t bound(const Walk& walk, Cost cost) {
  return walk.isBounded() ? saturated(cost.steps + cost.exits) : kNoBound;
}

}  // namespace

void findRuns(const ulkRegExpState& state, Runs& runs) {
  runs.count = 0;
  Walk(state, runs, true).program(state.options);
}

int64_t stepBound(const ulkRegExpState& state, const Runs& runs) {
  Runs known = runs;
  Walk walk(state, known, false);
  const Cost cost = walk.program(state.options);
  return bound(walk, cost);
}

int64_t lookbehindBound(const ulkRegExpState& state) {
  Runs none;
  Walk walk(state, none, false);
  const Cost cost = walk.upToItem(state.options);
  return bound(walk, cost);
}

int64_t shortAttemptBound(const ulkRegExpState& state, int32_t mostBytes) {
  Runs none;
  Walk walk(state, none, false, mostBytes);
  const Cost cost = walk.program(state.options);
  return bound(walk, cost);
}

}  // namespace ulk
