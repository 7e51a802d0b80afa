#include "regexp/analysis/window.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "kernels/find_substring.h"
#include "regexp/analysis/first_bytes.h"
#include "regexp/program/class_sets.h"
#include "regexp/text/folded.h"
#include "regexp/text/utf8.h"

namespace ulk {

namespace {

constexpr int32_t kMaxWays = 16;     // from the start of a match to its window
constexpr int32_t kMaxLooks = 160;   // at nodes, on all ways together
constexpr int32_t kMaxPlaces = 24;   // bytes of a way that are looked at
constexpr int32_t kMaxProduct = 32;  // keys of one window
constexpr int32_t kFarAway = 1 << 16;
constexpr int64_t kTooCostly = 1 << 20;

// So many steps, and so many more for each byte of the longest run.
struct Cost {
  int64_t fixed = 0;
  int64_t perByte = 0;

  Cost& operator+=(const Cost& other) {
    fixed += other.fixed;
    perByte += other.perByte;
    return *this;
  }
  bool isTooHigh() const { return fixed > kTooCostly || perByte > kTooCostly; }
};

// A set of folded bytes: those from 0x20, 0x60, 0xA0 and 0xE0 on.
struct FoldedSet {
  uint32_t words[4];

  FoldedSet() = default;
  explicit FoldedSet(const ByteSet256& set) {
    constexpr uint32_t kDigits = 0x3FF0000, kZero = 0x10000, kSpace = 1;
    const uint32_t first = set.words[1] | (set.words[0] ? kSpace : 0);
    words[0] = first & kDigits ? (first & ~kDigits) | kZero : first;
    words[1] = set.words[2] | set.words[3];
    words[2] = set.words[4] | set.words[5];
    words[3] = set.words[6] | set.words[7];
  }
  // Writes up to `most` members; returns how many, more than `most` where there are more.
  int32_t list(uint8_t* members, int32_t most) const {
    int32_t count = 0;
    for (int32_t i = 0; i < 4; ++i) {
      for (uint32_t word = words[i]; word; word &= word - 1) {
        if (count == most) return most + 1;
        members[count++] = static_cast<uint8_t>(0x20 + 0x40 * i + std::countr_zero(word));
      }
    }
    return count;
  }
};

// One byte of a match, behind what stands before it on its way.
struct Place {
  int32_t numBefore;  // all items that can stand before it are among so many first nodes
  int32_t least;      // bytes before it,
  int32_t most;       // kFarAway: without bound
  bool joined;        // it stands right behind the place before
  bool forked;        // there are other ways that it is not on
  uint8_t value;      // if it is the only one
  uint8_t numValues;  // up to kMaxProduct, 0 for more
  uint8_t rarity;     // in half bits, by ear
  FoldedSet set;
  Cost cost;  // of the way as far as behind it
};

// How rare a byte of the set is in texts.
uint8_t rarityOf(const uint8_t* values, int32_t count) {
  constexpr int32_t kManyValues = 12;
  if (count > kManyValues) return 2;
  int32_t most = 0;
  for (int32_t i = 0; i < count; ++i)
    most = std::max<int32_t>(most, values[i] == '0' ? 48 : commonness(values[i]));
  return static_cast<uint8_t>(22 - most / 3 - std::min(count - 1, 6));
}

// Follows every way from the start of the program, through the alternatives and into the groups that must
// match, and chooses a few bytes on each that come one behind the other.
class WindowFinder {
 public:
  explicit WindowFinder(ulkRegExpState& state)
      : state_(state), nodes_(state.nodes()), numNodes_(state.numNodes) {}

  bool find();

 private:
  struct Way {
    int32_t numPlaces = 0;
    int32_t numBefore = 0;
    int32_t least = 0;
    int32_t most = 0;
    bool joined = true;
    bool forked = false;
    Cost cost;
    Cost visits{1, 0};  // how often the next node is run
  };
  // A group that a way is in.
  struct Outer {
    int32_t open;
    int32_t end;
    int32_t iterations;  // that must come behind this one
    bool forked;         // what is behind it
    const Outer* outer;
  };
  enum class After { kNext, kEnd };
  // Places of a way.
  struct Choice {
    int32_t first;
    int32_t size;
  };
  // Four places around a window, as far as one byte alone stands there.
  struct Neighbours {
    int32_t first;
    uint32_t bytes;
    uint32_t mask;
    int32_t rarity;
  };

  void walk(int32_t node, Way way, uint32_t options, const Outer* outer);
  After pass(int32_t node, Way& way, uint32_t& options);
  After passItem(int32_t node, Way& way, uint32_t options);
  After passLookaround(int32_t node, Way& way) const;
  static After repeat(const RxNode& quantifier, int32_t itemMost, Way& way);
  void addLast(int32_t node, int32_t count, const ByteSet256& set, Way& way);
  int32_t behindGroup(int32_t end) const;
  void walkGroup(int32_t node, int32_t iterations, Way way, uint32_t options, const Outer* outer);
  void addPlace(int32_t node, bool first, const ByteSet256& set, Way& way);
  void finish(const Way& way);
  Neighbours neighboursOf(const Way& way, int32_t first, int32_t last) const;
  int32_t lastAsked(const Way& way, const Choice& window) const;
  void addNeighbour(int32_t index, int32_t byte, Neighbours& neighbours) const;
  int32_t worthOf(const Way& way, int32_t first, int32_t size) const;
  Choice chooseWindow(const Way& way) const;
  WindowKey& keyAt(int32_t i) {
    return state_.frames[kWindowKeysFrame + i / kKeysInFrame].keys[i % kKeysInFrame];
  }
  void addKey(const WindowKey& key);
  void addKeys(const Way& way, const Choice& window);
  void fillSet(uint32_t options);
  int32_t firstBar() const { return state_.frames[0].start.firstBar; }

  ulkRegExpState& state_;
  const RxNode* const nodes_;
  const int32_t numNodes_;
  Window window_{};
  Place places_[kMaxPlaces];
  Cost cost_;
  int32_t numWays_ = 0;
  int32_t looks_ = 0;
  int32_t numBefore_ = 0;  // of all windows
  bool failed_ = false;
};

void WindowFinder::addPlace(int32_t node, bool first, const ByteSet256& set, Way& way) {
  if (way.numPlaces == kMaxPlaces) return;
  const FoldedSet folded(set);
  uint8_t values[kMaxProduct];
  const int32_t count = folded.list(values, kMaxProduct);
  const bool isKnown = count <= kMaxProduct;
  places_[way.numPlaces++] = {first ? way.numBefore : std::max(way.numBefore, node + 1),
                              way.least,
                              way.most,
                              way.joined,
                              way.forked,
                              values[0],
                              static_cast<uint8_t>(isKnown ? count : 0),
                              isKnown ? rarityOf(values, count) : uint8_t{0},
                              folded,
                              way.cost};
  ++way.least;
  if (way.most < kFarAway) ++way.most;
  way.joined = true;
}

// Goes on behind what is repeated beyond its minimum.
WindowFinder::After WindowFinder::repeat(const RxNode& quantifier, int32_t itemMost, Way& way) {
  constexpr int32_t kMaxTimes = 64;
  const int32_t more = maxOf(quantifier) - minOf(quantifier);
  way.joined = false;
  if (more > kMaxTimes) {
    if (way.visits.perByte > 0) return After::kEnd;
    way.visits.perByte = way.visits.fixed;
    way.most = kFarAway;
    return After::kNext;
  }
  way.visits.fixed *= more + 1;
  way.visits.perByte *= more + 1;
  way.most = std::min(way.most + more * itemMost, kFarAway);
  return way.visits.isTooHigh() ? After::kEnd : After::kNext;
}

WindowFinder::After WindowFinder::passItem(int32_t node, Way& way, uint32_t options) {
  const RxNode& item = nodes_[node];
  if (codeOf(item) == RX_XSEQ) return After::kEnd;
  way.cost += way.visits;
  if (codeOf(item) == RX_STRING) {
    for (int32_t i = 0; i < stringLength(item) && way.numPlaces < kMaxPlaces; ++i) {
      ByteSet256 set{};
      addByte(stringOf(item)[i], options, set);
      addPlace(node, i == 0, set, way);
    }
    return After::kNext;
  }
  ByteSet256 set{};
  addFirstBytes(item, options, set);
  const RxNode* const quantifier = quantifierOf(nodes_, numNodes_, node);
  // A lazy repeat of these takes, and matches, more than they stand for.
  const bool isProperty = codeOf(item) >= RX_CODEPOINT;
  if (quantifier && quantifier->code == RX_REPEAT_LAZY && isProperty) return After::kEnd;
  const bool oneByte = takesByte(item) || (!isProperty && !hasHighBytes(set));
  const int32_t least = quantifier ? minOf(*quantifier) : 1;
  if (oneByte) {
    for (int32_t i = 0; i < least && way.numPlaces < kMaxPlaces; ++i) addPlace(node, i == 0, set, way);
    if (way.numPlaces == kMaxPlaces) return After::kEnd;
  } else if (least > 0) {
    if (least > kFarAway / kLongestUtf8) return After::kEnd;
    way.joined = false;
    way.least += least;
    way.most = std::min(way.most + least * kLongestUtf8, kFarAway);
  }
  if (!quantifier || minOf(*quantifier) == maxOf(*quantifier)) return After::kNext;
  if (repeat(*quantifier, oneByte ? 1 : kLongestUtf8, way) == After::kEnd) return After::kEnd;
  if (oneByte) addLast(node, std::min(least, 3), set, way);
  return After::kNext;
}

// The last items of a repeat stand right before what comes next.
void WindowFinder::addLast(int32_t node, int32_t count, const ByteSet256& set, Way& way) {
  way.least -= count;
  if (way.most < kFarAway) way.most -= count;
  for (int32_t i = 0; i < count; ++i) addPlace(node, false, set, way);
}

// A body of items, each once, takes a step for each at most.
WindowFinder::After WindowFinder::passLookaround(int32_t node, Way& way) const {
  const int32_t length = bodyLength(nodes_[node]);
  if (quantifierOf(nodes_, numNodes_, node)) return After::kEnd;
  for (int32_t i = node + 1; i <= node + length; i = nextNode(nodes_, i))
    if (!isItem(nodes_[i]) && codeOf(nodes_[i]) != RX_ALT && codeOf(nodes_[i]) != RX_ASSERT)
      return After::kEnd;
  way.cost.fixed += way.visits.fixed * (length + 1);
  way.cost.perByte += way.visits.perByte * (length + 1);
  return After::kNext;
}

// Follows the ways through an iteration of a group, and so many more.
void WindowFinder::walkGroup(int32_t node, int32_t iterations, Way way, uint32_t options,
                             const Outer* outer) {
  const RxNode& open = nodes_[node];
  const RxNode* const quantifier = quantifierOf(nodes_, numNodes_, node);
  const Outer group{node, node + 1 + bodyLength(open), iterations, way.forked, outer};
  way.forked |= nextBar(open) || (quantifier && minOf(*quantifier) == 0);
  walk(node + 1, way, optionsAfter(open, options), &group);
  for (const RxNode* bar = nextBar(open); bar && !failed_; bar = nextBar(*bar))
    walk(static_cast<int32_t>(bar - nodes_) + 1, way, static_cast<uint32_t>(optionsBehind(*bar)), &group);
}

// Where a way goes on behind a group; -1 where it may go through the group again instead.
int32_t WindowFinder::behindGroup(int32_t end) const {
  const int32_t next = end + 1;
  if (next >= numNodes_ || !isQuantifier(nodes_[next])) return next;
  return maxOf(nodes_[next]) > std::max(minOf(nodes_[next]), 1) ? -1 : next + 1;
}

// Goes over a node that is no group and no end.
WindowFinder::After WindowFinder::pass(int32_t node, Way& way, uint32_t& options) {
  const RxNode& item = nodes_[node];
  if (isLookaround(item)) return passLookaround(node, way);
  if (isItem(item)) {
    const After after = passItem(node, way, options);
    way.numBefore = std::max(way.numBefore, node + 1);
    return after;
  }
  if (codeOf(item) != RX_ASSERT && codeOf(item) != RX_OPTIONS) return After::kEnd;
  way.cost += way.visits;
  options = optionsAfter(item, options);
  return After::kNext;
}

// Follows the ways that begin at a node.
void WindowFinder::walk(int32_t node, Way way, uint32_t options, const Outer* outer) {
  while (!failed_) {
    if (node < 0 || node >= numNodes_ || way.numPlaces == kMaxPlaces) return finish(way);
    if (++looks_ > kMaxLooks || way.cost.isTooHigh()) return finish(way);
    const RxNode& item = nodes_[node];
    if (codeOf(item) == RX_ALT || codeOf(item) == RX_END) {
      if (!outer) return finish(way);
      way.cost += way.visits;
      way.forked = outer->forked;
      options = static_cast<uint32_t>(optionsBehind(nodes_[outer->end]));
      if (outer->iterations > 0)
        return walkGroup(outer->open, outer->iterations - 1, way, options, outer->outer);
      node = behindGroup(outer->end);
      outer = outer->outer;
      continue;
    }
    const RxNode* const quantifier = quantifierOf(nodes_, numNodes_, node);
    const int32_t next = nextItem(nodes_, node) + (quantifier ? 1 : 0);
    if (isRepeatableGroup(item) || (codeOf(item) == RX_ATOMIC && !quantifier)) {
      const int32_t least = quantifier ? minOf(*quantifier) : 1;
      if (least == 0 && maxOf(*quantifier) != 1) return finish(way);
      way.cost += way.visits;
      walkGroup(node, std::max(least - 1, 0), way, options, outer);
      if (least > 0) return;
    } else if (pass(node, way, options) == After::kEnd) {
      return finish(way);
    }
    node = next;
  }
}

// Of the places before and behind the window [first, last), those that tell more.
WindowFinder::Neighbours WindowFinder::neighboursOf(const Way& way, int32_t first, int32_t last) const {
  Neighbours behind{last, 0, 0, 0}, before{first - 4, 0, 0, 0};
  for (int32_t i = last; i < std::min(last + 4, way.numPlaces) && places_[i].joined; ++i)
    addNeighbour(i, i - last, behind);
  for (int32_t i = first - 1; i >= std::max(first - 4, 0) && places_[i + 1].joined; --i)
    addNeighbour(i, i - before.first, before);
  return behind.rarity >= before.rarity ? behind : before;
}

void WindowFinder::addNeighbour(int32_t index, int32_t byte, Neighbours& neighbours) const {
  const Place& place = places_[index];
  if (place.numValues != 1) return;
  neighbours.rarity += place.rarity;
  neighbours.bytes |= uint32_t{place.value} << (8 * byte);
  neighbours.mask |= uint32_t{0xFF} << (8 * byte);
}

// How much a window tells; 0 where it is none.
int32_t WindowFinder::worthOf(const Way& way, int32_t first, int32_t size) const {
  constexpr int32_t kLeastRarity = 20, kShort = 8, kWide = 16, kRun = 4, kForked = 6;
  int32_t product = 1, rarity = 0;
  for (int32_t i = first; i < first + size; ++i) {
    const Place& place = places_[i];
    if ((i > first && !place.joined) || place.numValues == 0 || place.cost.isTooHigh()) return 0;
    product *= place.numValues;
    if (product > kMaxProduct) return 0;
    rarity += place.rarity;
  }
  if (rarity < kLeastRarity) return 0;
  const Place& place = places_[first];
  rarity += neighboursOf(way, first, first + size).rarity / 2;
  rarity -= 2 * static_cast<int32_t>(std::bit_width(static_cast<uint32_t>(product - 1)));
  rarity -=
      (size < 4 ? kShort : 0) + (place.most - place.least > kWide ? kRun : 0) + (place.forked ? kForked : 0);
  return std::max(rarity, 1);
}

// The best window on a way; of size 0 without one.
WindowFinder::Choice WindowFinder::chooseWindow(const Way& way) const {
  Choice best{0, 0};
  int32_t most = 0;
  for (int32_t first = 0; first < way.numPlaces && places_[first].least <= UINT8_MAX; ++first) {
    for (int32_t size = 2; size <= std::min(4, way.numPlaces - first); ++size) {
      const int32_t worth = worthOf(way, first, size);
      if (worth <= most) continue;
      most = worth;
      best = {first, size};
    }
  }
  return best;
}

void WindowFinder::addKey(const WindowKey& key) {
  for (int32_t i = 0; i < window_.numKeys; ++i)
    if (std::memcmp(&keyAt(i), &key, sizeof key) == 0) return;
  failed_ |= window_.numKeys == kMaxWindowKeys;
  if (!failed_) keyAt(window_.numKeys++) = key;
}

// Adds a key for each way to choose one byte of each place.
void WindowFinder::addKeys(const Way& way, const Choice& window) {
  uint8_t values[4][kMaxProduct];
  int32_t chosen[4] = {};
  const Place* const places = places_ + window.first;
  for (int32_t i = 0; i < window.size; ++i) places[i].set.list(values[i], kMaxProduct);
  const Neighbours more = neighboursOf(way, window.first, window.first + window.size);
  WindowKey key{0,
                more.bytes,
                more.mask,
                static_cast<int8_t>(more.first - window.first),
                static_cast<uint8_t>(window.size),
                static_cast<uint8_t>(places->least),
                0};
  for (int32_t i = 0; i < window.size && !failed_;) {
    key.bytes = 0;
    for (i = 0; i < window.size; ++i) key.bytes |= uint32_t{values[i][chosen[i]]} << (8 * i);
    addKey(key);
    for (i = 0; i < window.size && ++chosen[i] == places[i].numValues; ++i) chosen[i] = 0;
  }
}

// The last place that a key asks for: the window's, or the last of those behind it that tell more.
int32_t WindowFinder::lastAsked(const Way& way, const Choice& window) const {
  const int32_t last = window.first + window.size - 1;
  const Neighbours more = neighboursOf(way, window.first, last + 1);
  return std::max(last, more.first + (static_cast<int32_t>(std::bit_width(more.mask)) + 7) / 8 - 1);
}

void WindowFinder::finish(const Way& way) {
  const Choice window = chooseWindow(way);
  failed_ = window.size == 0 || ++numWays_ > kMaxWays;
  if (failed_) return;
  const Place& place = places_[window.first];
  window_.most = std::max(window_.most, place.most);
  numBefore_ = std::max(numBefore_, place.numBefore);
  cost_ += places_[lastAsked(way, window)].cost;
  window_.shortest = static_cast<uint8_t>(std::min<int32_t>(window_.shortest, window.size));
  addKeys(way, window);
}

// Collects the bytes that can stand before a window.
void WindowFinder::fillSet(uint32_t options) {
  ByteSet256& set = state_.frames[kWindowSetFrame].bytes;
  set = {};
  for (int32_t i = 0; i < numBefore_; i = nextNode(nodes_, i)) {
    options = optionsAfter(nodes_[i], options);
    if (isItem(nodes_[i])) addAllBytes(nodes_[i], options, set);
  }
}

// Whether all attempts begin with the same options: they change at the head of the program only.
bool keepsOptions(const ulkRegExpState& state, uint32_t& kept) {
  const RxNode* const nodes = state.nodes();
  const auto matters = [](int32_t options) { return static_cast<uint32_t>(options) & kMatcherOptions; };
  uint32_t options = matters(static_cast<int32_t>(state.options));
  for (int32_t i = 0; i < state.numNodes; i = nextNode(nodes, i)) {
    if (codeOf(nodes[i]) == RX_OPTIONS && i > 0) return false;
    if (codeOf(nodes[i]) == RX_OPTIONS) options = matters(newOptions(nodes[i]));
    if (codeOf(nodes[i]) == RX_ALT && serialOf(nodes[i]) == kTopLevel &&
        matters(optionsBehind(nodes[i])) != options)
      return false;
  }
  kept = options;
  return true;
}

// Whether what a node matches may depend on where the text ends, or on what a try in vain has left behind.
bool mayLookBeyond(const RxNode* nodes, int32_t i) {
  const RxNode& node = nodes[i];
  switch (codeOf(node)) {
    case RX_ASSERT:
      return assertionOf(node) == '$' || assertionOf(node) == 'Z' || assertionOf(node) == 'z';
    case RX_ALT:
      return serialOf(node) == kTopLevel;
    case RX_END:
      return repeatMark(node) == kRepeatMarkRepeated;
    case RX_BACKREF:
    case RX_REPEAT_LAZY:
    case RX_LOOKBEHIND:
    case RX_NLOOKBEHIND:
    case RX_LOOKAHEAD:
    case RX_NLOOKAHEAD:
    case RX_COND:
    case RX_ATOMIC:
      return true;
    default:
      return false;
  }
}

bool doesCutMatter(const ulkRegExpState& state) {
  const RxNode* const nodes = state.nodes();
  for (int32_t i = 0; i < state.numNodes; i = nextNode(nodes, i))
    if (mayLookBeyond(nodes, i)) return true;
  return false;
}

// Whether attempts are made elsewhere than the program itself says: an optional "^" is restricted to line
// starts. At the start of the text alone, one attempt decides.
bool isRestricted(const ulkRegExpState& state) {
  const Anchor anchor = state.frames[0].start.anchor;
  if (anchor == Anchor::kNone) return false;
  return anchor == Anchor::kTextStart || quantifierOf(state.nodes(), state.numNodes, 0);
}

// What a search for one expression takes for a byte, in hundredths of nanoseconds, by and large.
uint8_t effortOf(StartKind kind) {
  switch (kind) {
    case StartKind::kAny:
    case StartKind::kSet:
      return 200;
    case StartKind::kBoundary:
    case StartKind::kSmallSet:
      return 15;
    default:
      return 5;
  }
}

bool WindowFinder::find() {
  uint32_t options = 0;
  if (!state_.frames[0].start.hasFrames || isRestricted(state_) || !keepsOptions(state_, options))
    return false;
  window_.shortest = kMaxKeySize;
  walk(0, {}, options, nullptr);
  for (int32_t bar = firstBar(); bar >= 0 && !failed_;) {
    walk(bar + 1, {}, static_cast<uint32_t>(optionsBehind(nodes_[bar])), nullptr);
    const RxNode* const next = nextBar(nodes_[bar]);
    bar = next ? static_cast<int32_t>(next - nodes_) : -1;
  }
  if (failed_ || cost_.isTooHigh()) return false;
  if (window_.most >= kFarAway) {
    window_.most = -1;
    fillSet(options);
  }
  window_.steps = static_cast<int32_t>(cost_.fixed);
  window_.stepsPerByte = static_cast<int32_t>(cost_.perByte);
  window_.leastSteps = window_.steps + kLeastRun * window_.stepsPerByte;
  window_.options = static_cast<uint8_t>(options);
  window_.effort = effortOf(state_.frames[0].start.kind);
  window_.cutMatters = doesCutMatter(state_);
  state_.frames[kWindowFrame].window = window_;
  return true;
}

}  // namespace

void findWindow(ulkRegExpState& state) {
  state.frames[0].start.window = WindowFinder(state).find() ? WindowState::kFound : WindowState::kNone;
}

}  // namespace ulk
