#include "regexp/start_filter.h"

#include <algorithm>
#include <bit>

#include "kernels/find_substring.h"
#include "kernels/find_unit.h"
#include "regexp/utf8.h"

namespace ulk {

namespace {

// How many bytes at the start are below 0x80.
size_t asciiPrefix(const uint8_t* text, size_t length) {
  size_t i = 0;
  for (; i + 16 <= length && !Vec16<uint8_t>::load(text + i).mask().any(); i += 16) {
  }
  while (i < length && text[i] < 0x80) ++i;
  return i;
}

// Follows the program from its start to the items that a match must begin with.
class FirstItems {
 public:
  explicit FirstItems(const ulkRegExpState& state) : nodes_(state.nodes()), numNodes_(state.numNodes) {}

  // Tries all top-level alternatives. False when a match can begin in a way that no byte decides.
  bool program(uint32_t options);

  ByteSet256 set{};
  int32_t steps = 0;         // that a failing attempt costs
  uint32_t exitOptions = 0;  // in force when it has failed

 private:
  bool alternatives(int32_t first, int32_t end, int32_t serial, uint32_t options);
  bool sequence(int32_t node, int32_t end, uint32_t options);
  bool group(int32_t open, uint32_t options);
  void leaveOptions(uint32_t options) {
    if (depth_ == 0) exitOptions = options;
  }

  const RxNode* const nodes_;
  const int32_t numNodes_;
  int32_t depth_ = 0;  // of groups, which put the options back when they fail
};

bool FirstItems::program(uint32_t options) {
  exitOptions = options;
  return alternatives(0, numNodes_, kTopLevel, options);
}

bool FirstItems::alternatives(int32_t first, int32_t end, int32_t serial, uint32_t options) {
  for (;;) {
    const int32_t bar = findBar(nodes_, first, end, serial);
    if (!sequence(first, bar < 0 ? end : bar, options)) return false;
    if (bar < 0) return true;
    options = static_cast<uint32_t>(nodes_[bar].op2);
    leaveOptions(options);
    first = bar + 1;
  }
}

bool FirstItems::group(int32_t open, uint32_t options) {
  constexpr int32_t kMaxNesting = 32;
  const RxNode& node = nodes_[open];
  if (depth_ >= kMaxNesting) return false;
  if (node.code == RX_OPTGROUP) options = static_cast<uint32_t>(node.op3);
  ++depth_;
  const bool decided = alternatives(open + 1, open + node.op2 + 1, node.op1, options);
  --depth_;
  return decided;
}

// Adds what nodes[node, end) can begin with: optional items and groups, and the first that is required.
bool FirstItems::sequence(int32_t node, int32_t end, uint32_t options) {
  const int32_t depth = depth_;
  bool decided = false;
  while (node < end) {
    const RxNode& item = nodes_[node];
    const bool isGroup = item.code == RX_CAPTURE || item.code == RX_GROUP || item.code == RX_OPTGROUP;
    const bool isAtomic = item.code == RX_ATOMIC;
    ++steps;
    if (item.code == RX_OPTIONS) {
      options = static_cast<uint32_t>(item.op1);
      leaveOptions(options);
      ++node;
      continue;
    }
    if (isGroup || isAtomic) {
      if (!group(node, options)) break;
    } else if (item.code >= RX_ASSERT && item.code <= RX_OPTIONS) {
      break;  // neither an item nor such a group
    } else if (item.code == RX_BACKREF) {
      break;
    } else {
      addFirstBytes(item, options, set);
    }

    const int32_t after = isGroup || isAtomic ? node + item.op2 + 2 : node + 1 + (item.code == RX_CLASS ? item.op2 : 0);
    const bool quantified = after < numNodes_ && isQuantifier(nodes_[after]);
    if (!quantified || nodes_[after].op1 > 0) {
      decided = true;
      break;
    }
    // Of what may be left out, only repeats of single items and groups that are not passed over go on in a way that
    // is the same at every position.
    if (isAtomic || nodes_[after].op2 == 0) break;
    if (isGroup) {
      options = static_cast<uint32_t>(nodes_[node + item.op2 + 1].op2);
      ++depth_;
    } else if (nodes_[after].code == RX_REPEAT_LAZY) {
      break;
    }
    node = after + 1;
  }
  depth_ = depth;
  return decided;
}

void chooseKind(StartFilter& filter, const ByteSet256& set, const RxNode& first, SpareFrames& frames) {
  int size = 0;
  for (const uint32_t word : set.words) size += std::popcount(word);
  if (size == 1) {
    filter.kind = StartKind::kByte;
    while (!set.contains(static_cast<uint8_t>(filter.byte))) ++filter.byte;
    if (first.code == RX_STRING && filter.firstBar < 0) filter.kind = StartKind::kString;
  } else if (size < 256) {
    filter.set = frames.take();
    if (filter.set != 0) filter.kind = StartKind::kSet;
  }
}

// The filter for attempts that begin with these options, kAny where the options or the items do not allow one.
StartFilter filterFor(ulkRegExpState& state, SpareFrames& frames) {
  StartFilter filter{};
  filter.firstBar = findBar(state.nodes(), 0, state.numNodes, kTopLevel);
  if (state.numNodes == 0) return filter;
  const RxNode& first = state.nodes()[0];
  if (first.code == RX_ASSERT && first.op1 == kLeadingDotStar && filter.firstBar < 0) {
    filter.kind = StartKind::kLineStart;
    filter.steps = 1;
    filter.options = state.options;
    return filter;
  }

  // An option change at the start is in force from the second attempt on; the filter is for those.
  FirstItems atFirst(state);
  if (!atFirst.program(state.options)) return filter;
  filter.options = atFirst.exitOptions;
  FirstItems items(state);
  if (!items.program(filter.options) || items.exitOptions != filter.options) return filter;
  filter.steps = items.steps;
  chooseKind(filter, items.set, first, frames);
  if (filter.kind == StartKind::kSet) state.frames[filter.set].bytes = items.set;
  return filter;
}

// Counts the characters that begin in [at, end) and moves `at` behind the last of them.
int32_t passCharacters(const uint8_t*& at, const uint8_t* end) {
  int32_t count = 0;
  while (at < end) {
    const auto ascii = static_cast<int32_t>(asciiPrefix(at, static_cast<size_t>(end - at)));
    count += ascii;
    at += ascii;
    for (; at < end && *at >= 0x80; ++count) at += decodeMultibyte(at).length;
  }
  return count;
}

// Pays for the attempts at all positions in [at, end), and returns the next one.
const uint8_t* payForStarts(MatchContext& m, const ulkRegExpState& state, int32_t steps, const uint8_t* at,
                            const uint8_t* end) {
  int64_t starts = end - at;
  if (state.format == kFormatUtf8) {
    starts = passCharacters(at, end);
  } else {
    at = end;
  }
  m.budget = static_cast<int32_t>(std::max<int64_t>(m.budget - starts * steps, -1));
  return at;
}

int32_t findInSet(const ByteSet256& set, const uint8_t* text, int32_t length) {
  for (int32_t i = 0; i < length; ++i)
    if (set.contains(text[i])) return i;
  return -1;
}

// The first place in the first `length` bytes where a match may begin, or `length`. A string may reach beyond them.
int32_t findStart(const MatchContext& m, const ulkRegExpState& state, const uint8_t* at, int32_t length) {
  const StartFilter& filter = startFilterOf(state);
  int32_t found = -1;
  switch (filter.kind) {
    case StartKind::kByte: found = findUnit(at, length, static_cast<uint8_t>(filter.byte)); break;
    case StartKind::kSet: found = findInSet(state.frames[filter.set].bytes, at, length); break;
    case StartKind::kString: {
      const RxNode& literal = m.nodes[0];
      const auto reach = static_cast<int32_t>(std::min<int64_t>(int64_t{length} + literal.op2 - 1, m.textEnd - at));
      found = findSubstring(at, reach, static_cast<const uint8_t*>(literal.text), literal.op2);
      break;
    }
    case StartKind::kLineStart:
      if (at == m.textStart || at[-1] == '\n') return 0;
      found = findUnit(at, length, static_cast<uint8_t>('\n'));
      return found < 0 ? length : found + 1;
    case StartKind::kAny: return 0;
  }
  return found < 0 ? length : found;
}

}  // namespace

void prepareSearch(ulkRegExpState& state) {
  SpareFrames frames(state);
  makeClassSets(state, frames);
  state.frames[0].start = filterFor(state, frames);
}

const uint8_t* skipHopelessStarts(MatchContext& m, const ulkRegExpState& state, const uint8_t* at) {
  constexpr ptrdiff_t kStride = 4096;  // how far to look before paying, lest a small budget reads a long text
  const StartFilter& filter = startFilterOf(state);
  if (filter.kind == StartKind::kAny || filter.options != m.options || at >= m.textEnd) return at;
  if (filter.kind == StartKind::kSet && state.frames[filter.set].bytes.contains(*at)) return at;
  while (at < m.textEnd && m.budget >= 0) {
    const auto length = static_cast<int32_t>(std::min(m.textEnd - at, kStride));
    const int32_t start = findStart(m, state, at, length);
    const uint8_t* const candidate = at + start;
    at = payForStarts(m, state, filter.steps, at, candidate);
    if (at == candidate && start < length) break;
  }
  return at;
}

}  // namespace ulk
