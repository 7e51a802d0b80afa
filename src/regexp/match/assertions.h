// Assertions: tests of the position that consume nothing.
#pragma once

#include "kernels/vec16.h"
#include "regexp/match/matcher.h"
#include "regexp/text/bytes.h"

namespace ulk {

// The byte before the position, a space at the text start.
ULK_INLINE uint8_t byteBefore(const MatchContext& m, const uint8_t* at) {
  return at == m.textStart ? ' ' : at[-1];
}

ULK_INLINE bool atFinalNewline(const MatchContext& m, const uint8_t* at) {
  return m.remaining(at) == 1 && *at == '\n';
}

// The byte after the position is read also at the end of the text: there it is the terminator of a text that
// has one.
ULK_INLINE int32_t wordChange(const MatchContext& m, const uint8_t* at) {
  return wordValue(byteBefore(m, at)) ^ wordValue(*at);
}

ULK_INLINE bool isWordBoundary(const MatchContext& m, const uint8_t* at) {
  const bool before = at != m.textStart && (m.byteSets[at[-1]] & kWord);
  const bool after = m.byteSets[*at] & kWord;
  return before != after;
}

ULK_INLINE bool assertionHolds(const MatchContext& m, const uint8_t* at, int32_t assertion) {
  const bool multiline = m.options & RX_OPT_MULTILINE;
  const bool atEnd = at == m.textEnd;
  switch (assertion) {
    case '^':
      return at == m.textStart || (multiline && !atEnd && at[-1] == '\n');
    case '$':
      return atEnd || (multiline ? *at == '\n' : atFinalNewline(m, at));
    case 'A':
    case 'G':
      return at == m.textStart;
    case 'Z':
      return atEnd || atFinalNewline(m, at);
    case 'z':
      return atEnd;
    case 'b':
      return isWordBoundary(m, at);
    case 'B':
      return wordChange(m, at) >= -1;  // -1 is a boundary for both
    case kLeadingDotStar:
      return at == m.textStart || at[-1] == '\n';
    default:
      return false;
  }
}

}  // namespace ulk
