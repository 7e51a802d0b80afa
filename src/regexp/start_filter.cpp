#include "regexp/start_filter.h"

#include <algorithm>
#include <bit>

#include "kernels/find_any.h"
#include "kernels/find_substring.h"
#include "regexp/byte_sets.h"
#include "regexp/bytes.h"
#include "regexp/first_bytes.h"
#include "regexp/items.h"
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

// Lists the members of a set of up to four; false for a larger one, or an empty one.
bool listMembers(const ByteSet256& set, uint8_t (&members)[4]) {
  int count = 0;
  for (int32_t c = 0; c < 256; ++c) {
    if (!set.contains(static_cast<uint8_t>(c))) continue;
    if (count == 4) return false;
    members[count++] = static_cast<uint8_t>(c);
  }
  std::fill(members + std::max(count, 1), members + 4, members[0]);
  return count > 0;
}

bool containsAll(const ByteSet256& set) {
  return std::all_of(set.words, set.words + 8, [](uint32_t word) { return word == ~0u; });
}

// The quantifier of an item that is repeated without bound, and of which it is known what may follow; 0 for
// others.
int32_t runOf(const RxNode* nodes, int32_t numNodes, int32_t item, uint32_t options) {
  if (item < 0 || nodes[item].code == RX_XSEQ) return 0;
  const int32_t quantifier = nextItem(nodes, item);
  if (quantifier >= numNodes) return 0;
  const RxNode& node = nodes[quantifier];
  if (node.code != RX_REPEAT || node.op1 < 1 || node.op2 != kUnbounded || !node.text) return 0;
  return FollowNote::unpack(node.op3).options == options ? quantifier : 0;
}

StartKind kindOf(const FirstBytes& items, const RxNode* nodes, StartFilter& filter) {
  if (items.boundarySteps > 0) return StartKind::kBoundary;
  if (containsAll(items.set)) return StartKind::kAny;
  const bool caseless = filter.options & RX_OPT_CASELESS;
  if (filter.item >= 0 && nodes[filter.item].code == RX_STRING && !caseless) return StartKind::kString;
  return listMembers(items.set, filter.members) ? StartKind::kFew : StartKind::kSet;
}

// The filter for attempts that begin with these options, kAny where the options or the items do not allow
// one.
StartFilter filterFor(ulkRegExpState& state, bool hasSet) {
  const RxNode* const nodes = state.nodes();
  StartFilter filter{};
  filter.firstBar = findBar(nodes, 0, state.numNodes, kTopLevel);
  if (state.numNodes == 0) return filter;
  if (nodes[0].code == RX_ASSERT && nodes[0].op1 == kLeadingDotStar && filter.firstBar < 0) {
    filter.kind = StartKind::kLineStart;
    filter.steps = 1;
    filter.options = state.options;
    return filter;
  }

  // An option change at the start is in force from the second attempt on; the filter is for those.
  FirstBytes items(state);
  if (!hasSet || !items.ofProgram(state.options)) return filter;
  filter.options = items.exitOptions;
  if (filter.options != state.options) {
    items = FirstBytes(state);
    if (!items.ofProgram(filter.options) || items.exitOptions != filter.options) return filter;
  }
  filter.steps = items.steps;
  filter.boundarySteps = items.boundarySteps;
  filter.item = items.itemOptions == filter.options ? items.soleItem : -1;
  filter.run = runOf(nodes, state.numNodes, filter.item, filter.options);
  filter.kind = kindOf(items, nodes, filter);
  if (filter.kind != StartKind::kAny) state.frames[kStartSetFrame].bytes = items.set;
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

int32_t findInSet(const ByteSet256& set, const uint8_t* text, int32_t length) {
  for (int32_t i = 0; i < length; ++i)
    if (set.contains(text[i])) return i;
  return -1;
}

}  // namespace

void prepareSearch(ulkRegExpState& state) {
  SpareFrames frames(state);
  const bool hasSet = frames.take() == kStartSetFrame;
  makeClassSets(state, frames);
  makeFollowSets(state, frames);
  state.frames[0].start = filterFor(state, hasSet);
}

Starts::Starts(MatchContext& m, const ulkRegExpState& state)
    : m_(m),
      state_(state),
      filter_(startFilterOf(state)),
      set_(state.frames[kStartSetFrame].bytes),
      attemptsEnd_(nullptr) {}

void Starts::pay(int64_t steps) {
  m_.budget = static_cast<int32_t>(std::max<int64_t>(m_.budget - steps, -1));
}

const uint8_t* Starts::characterAfter(const uint8_t* at) const {
  return at + (state_.format == kFormatUtf8 ? decodeUtf8(at).length : 1);
}

// Pays for the attempts at all positions in [at, end), and returns the next one.
const uint8_t* Starts::payForAll(const uint8_t* at, const uint8_t* end) {
  int64_t starts = end - at;
  if (state_.format == kFormatUtf8) {
    starts = passCharacters(at, end);
  } else {
    at = end;
  }
  pay(starts * filter_.steps);
  return at;
}

// The first place in the first `length` bytes where a match may begin, or `length`. A string may reach beyond
// them.
int32_t Starts::find(const uint8_t* at, int32_t length) const {
  int32_t found = -1;
  switch (filter_.kind) {
    case StartKind::kFew:
      found = findAny(at, length, filter_.members, 4);
      break;
    case StartKind::kSet:
      found = findInSet(set_, at, length);
      break;
    case StartKind::kString: {
      const RxNode& literal = m_.nodes[filter_.item];
      const auto reach =
          static_cast<int32_t>(std::min<int64_t>(int64_t{length} + literal.op2 - 1, m_.textEnd - at));
      found = findSubstring(at, reach, static_cast<const uint8_t*>(literal.text), literal.op2);
      break;
    }
    case StartKind::kLineStart:
      if (at == m_.textStart || at[-1] == '\n') return 0;
      found = findUnit(at, length, static_cast<uint8_t>('\n'));
      return found < 0 ? length : found + 1;
    default:
      return 0;
  }
  return found < 0 ? length : found;
}

// The first position in [at, end) at a word boundary with a byte of the set, the next one from `end` on if
// there is none. Pays for those before it: without a boundary only the assertion is run.
const uint8_t* Starts::passNonBoundaries(const uint8_t* at, const uint8_t* end) {
  int64_t starts = 0;
  int64_t boundaries = 0;
  bool wordBefore = at != m_.textStart && inByteSet(at[-1], kWord);
  for (; at < end; ++starts) {
    const bool word = inByteSet(*at, kWord);
    if (word != wordBefore) {
      if (set_.contains(*at)) break;
      ++boundaries;
    }
    wordBefore = word;
    at = *at < 0x80 ? at + 1 : characterAfter(at);
  }
  pay(starts * filter_.boundarySteps + boundaries * (filter_.steps - filter_.boundarySteps));
  return at;
}

// Whether the string that a match begins with is not at this place, where it may begin by its first byte.
bool Starts::isHopelessLiteral(const uint8_t* at) const {
  if (filter_.item < 0 || filter_.kind == StartKind::kString || m_.nodes[filter_.item].code != RX_STRING)
    return false;
  return itemLength(m_, m_.nodes[filter_.item], at) == kNoMatch;
}

// An attempt that begins with an unbounded repeat runs to the first byte that is none of its items, from
// wherever in the same run of items it begins. So the attempts at all positions behind the last place in the
// run where the program may go on fail, each after trying to go on from every place between. Passes over them
// when `at` is one of them; otherwise notes up to where there is something to try.
const uint8_t* Starts::passRun(const uint8_t* at) {
  constexpr int64_t kPlenty = 1 << 17;  // so many tries exhaust every budget
  const Follow follow = followOf(m_, filter_.run, m_.options);
  const uint8_t* end = at;
  while (end < m_.textEnd && *end < 0x80 && set_.contains(*end)) ++end;
  attemptsEnd_ = filter_.kind == StartKind::kBoundary ? at : end;
  if (end == at || (end < m_.textEnd && set_.contains(*end))) return at;

  const int32_t least = m_.nodes[filter_.run].op1;
  const uint8_t* last = end;
  if (follow.note.disjoint) {
    if (!follow.admits(m_, last)) last = at;
  } else {
    while (last - at >= least && !follow.admits(m_, last)) --last;
  }
  const bool boundary = filter_.kind == StartKind::kBoundary;  // then all starts are looked at by themselves
  if (last - at >= least) {
    attemptsEnd_ = boundary ? at : last - least + 1;
    return at;
  }
  const int64_t attempts = boundary ? 1 : end - at;
  const int64_t tries = std::clamp<int64_t>(end - at - least + 1, 0, kPlenty);
  pay(attempts * filter_.steps + (boundary ? tries : tries * (tries + 1) / 2) * follow.note.steps);
  return at + attempts;
}

const uint8_t* Starts::skip(const uint8_t* at) {
  constexpr ptrdiff_t kStride = 4096;  // how far to look before paying, lest a small budget reads a long text
  while (at < m_.textEnd && m_.budget >= 0) {
    const auto length = static_cast<int32_t>(std::min(m_.textEnd - at, kStride));
    const uint8_t* const end = at + length;
    if (filter_.kind == StartKind::kBoundary) {
      at = passNonBoundaries(at, end);
      if (at >= end) continue;
    } else {
      const int32_t start = find(at, length);
      const uint8_t* const candidate = at + start;
      at = payForAll(at, candidate);
      if (at != candidate || start == length) continue;
    }
    if (isHopelessLiteral(at)) {
      pay(filter_.steps);
      at = characterAfter(at);
    } else if (filter_.run > 0) {
      const uint8_t* const next = passRun(at);
      if (next == at) break;
      at = next;
    } else {
      break;
    }
  }
  return at;
}

}  // namespace ulk
