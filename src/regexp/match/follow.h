// What the analysis has found out about the bytes that may follow a repeat. A try to go on before any other
// byte changes next to nothing but the budget, so it is paid for instead of made.
#pragma once

#include <cstdint>

#include "regexp/match/items.h"
#include "regexp/program/byte_set.h"
#include "regexp/program/follow_note.h"

namespace ulk {

struct Follow {
  const ByteSet256* set;  // null: nothing is known
  const RxNode* next;  // what follows at once where it tells more: a string, or the end of the repeat's group
  FollowNote note;

  // Whether a try at this place, not beyond the end of the text, has to be made.
  bool admits(const MatchContext& m, const uint8_t* at) const {
    if (at == m.textEnd) return note.atEnd();
    // A string that does not match fails in the step that its first byte would fail in.
    return set->contains(*at) && (!next || (note.itself() ? isRepeated(m, at) : isStringAt(m, *next, at)));
  }

  bool excludes(const MatchContext& m, const uint8_t* at) const {
    return set && at <= m.textEnd && !admits(m, at);
  }

  // Where the group begins that the repeat is all of, if a reference to it follows.
  const uint8_t* startOfItself(const MatchContext& m) const {
    return m.state->captures[captureNumber(*linkedOpen(*next))].start;
  }

  // What so many tries cost.
  int64_t cost(int64_t tries) const { return note.steps() * tries; }

 private:
  bool isRepeated(const MatchContext& m, const uint8_t* at) const {
    const uint8_t* const start = startOfItself(m);
    const auto length = static_cast<int32_t>(at - start);
    return length <= m.textEnd - at && sameBytes(start, at, length, m.options);
  }
};

inline Follow noFollow(const RxNode& quantifier) {
  return {nullptr, nullptr, FollowNote(followNote(quantifier))};
}

// With the options in force, which must be those that the repeat's items were taken with.
inline Follow followOf(const MatchContext& m, const RxNode& quantifier, uint32_t options) {
  const FollowNote note(followNote(quantifier));
  if (!followSet(quantifier) || note.options() != options) return noFollow(quantifier);
  const RxNode* const next = &quantifier + 1;
  const bool isLiteral = next != m.programEnd && codeOf(*next) == RX_STRING && !(options & RX_OPT_CASELESS);
  return {followSet(quantifier), isLiteral || note.itself() ? next : nullptr, note};
}

}  // namespace ulk
