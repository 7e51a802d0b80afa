// One attempt of a search: the program's alternatives at one place, and which place comes next.
#pragma once

#include <cstdint>

#include "kernels/find_unit.h"
#include "regexp/analysis/start_filter.h"
#include "regexp/match/items.h"
#include "regexp/match/matcher.h"
#include "regexp/text/utf8.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// A match ends with the pattern's trailing literal, so nothing after its last occurrence is searched; where
// it does not occur, only the empty text is left. The cut is the end of the text also for assertions. Returns
// the length up to there.
int32_t cutBehindLast(const RxNode& literal, const uint8_t* text, int32_t length);
inline int32_t cutAtTrailingLiteral(const ulkRegExpState& state, const uint8_t* text, int32_t length) {
  if (state.trailingLiteral < 0) return length;
  return cutBehindLast(state.nodes()[state.trailingLiteral], text, length);
}

// The start of the next line, beyond the end if there is none.
inline const uint8_t* lineBehind(const MatchContext& m, const uint8_t* at) {
  const int32_t newline = findUnit(at, static_cast<int32_t>(m.textEnd - at), static_cast<uint8_t>('\n'));
  return newline < 0 ? m.textEnd + 1 : at + newline + 1;
}

// The character after the one at `at`; with a line anchor, the next line start. Beyond the end if there is
// none.
inline const uint8_t* nextStart(const MatchContext& m, Anchor anchor, const uint8_t* at) {
  if (at >= m.textEnd || anchor == Anchor::kTextStart) return m.textEnd + 1;
  if (anchor == Anchor::kLineStart) return lineBehind(m, at);
  return *at < 0x80 || m.state->format != kFormatUtf8 ? at + 1 : at + decodeMultibyte(at).length;
}

// Tries the top-level alternatives behind the first one. Options that a failed try has changed stay in force.
inline bool matchFurtherAlternative(MatchContext& m, int32_t firstBar) {
  for (const RxNode* bar = m.nodes() + firstBar; bar; bar = nextBar(*bar)) {
    m.setOptions(optionsBehind(*bar));
    if (!m.budget.isExhausted() && bar + 1 != m.programEnd && failsAtLiteral(m, bar + 1, m.matchStart)) {
      m.budget.payStep();
    } else if (rxMatch(m, m.matchStart, bar + 1)) {
      return true;
    }
  }
  return false;
}

// Tries the program up to its first top-level bar.
ULK_INLINE bool matchFirstAlternative(MatchContext& m) {
  const int32_t headEnd = startFilterOf(*m.state).headEnd;
  const bool hasHead = headEnd > 0 && !m.nonEmpty && m.budget.suffices(headEnd);
  return hasHead ? rxMatchHead(m, headEnd) : rxMatch(m, m.matchStart, m.nodes());
}

// Whether the program matches at `start`; then the captures tell where, the whole match in slot 0.
ULK_INLINE bool matchAt(MatchContext& m, const uint8_t* start) {
  ulkRegExpState& state = *m.state;
  const int32_t firstBar = startFilterOf(state).firstBar;
  m.matchStart = start;
  for (int32_t i = 1; i < state.numCaptures; ++i) state.captures[i] = {nullptr, -1};
  if (!matchFirstAlternative(m) && (firstBar < 0 || !matchFurtherAlternative(m, firstBar))) return false;
  state.captures[0] = {start, m.lengthTo(m.at)};
  return true;
}

// Copies slots [first, last).
inline void copyCaptures(const ulkRegExpState& state, int32_t first, int32_t last, ulkRegExpFind* records) {
  for (int32_t i = first; i < last; ++i) *records++ = {state.captures[i].start, state.captures[i].length};
}

}  // namespace ulk

#pragma GCC visibility pop
