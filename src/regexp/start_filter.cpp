#include "regexp/start_filter.h"

#include <algorithm>
#include <bit>

#include "kernels/find_substring.h"
#include "kernels/find_unit.h"
#include "regexp/byte_sets.h"
#include "regexp/first_bytes.h"
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

void chooseKind(StartFilter& filter, const ByteSet256& set, const RxNode& first, SpareFrames& frames) {
  int size = 0;
  for (const uint32_t word : set.words) size += std::popcount(word);
  if (size == 1) {
    filter.kind = StartKind::kByte;
    while (!set.contains(static_cast<uint8_t>(filter.byte))) ++filter.byte;
    const bool caseless = filter.options & RX_OPT_CASELESS;
    if (first.code == RX_STRING && filter.firstBar < 0 && !caseless) filter.kind = StartKind::kString;
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
  FirstBytes items(state);
  if (!items.ofProgram(state.options)) return filter;
  filter.options = items.exitOptions;
  if (filter.options != state.options) {
    items.restart();
    if (!items.ofProgram(filter.options) || items.exitOptions != filter.options) return filter;
  }
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
  makeFollowSets(state, frames);
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
