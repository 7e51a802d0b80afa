// What the compiler has found out about the bytes that may follow a repeat. A try to go on before any other
// byte changes next to nothing but the budget, so it is paid for instead of made.
#pragma once

#include <cstdint>
#include <cstring>

#include "regexp/match/matcher.h"
#include "regexp/program/follow_note.h"

namespace ulk {

struct Follow {
  const ByteSet256* set;  // null: nothing is known
  const RxNode* literal;  // the string that follows at once, null if none does
  FollowNote note;

  // Whether a try at this place, not beyond the end of the text, has to be made.
  bool admits(const MatchContext& m, const uint8_t* at) const {
    if (at == m.textEnd) return note.atEnd();
    return set->contains(*at) && (!literal || beginsWithLiteral(m, at));
  }

  bool excludes(const MatchContext& m) const { return set && m.at <= m.textEnd && !admits(m, m.at); }

  // A try that runs out of budget on its way is made, not paid for.
  bool canPay(const MatchContext& m, int64_t tries) const { return note.steps() * tries <= m.budget; }

  void payForTries(MatchContext& m, int32_t tries) const {
    m.budget -= note.steps() * tries;
    if (note.entersGroup() && tries > 0) m.surplus.clear();
  }

 private:
  // A string that does not match fails in the step that its first byte would fail in.
  bool beginsWithLiteral(const MatchContext& m, const uint8_t* at) const {
    return literal->op2 <= m.textEnd - at &&
           std::memcmp(literal->text, at, static_cast<size_t>(literal->op2)) == 0;
  }
};

inline Follow noFollow(const MatchContext& m, int32_t quantifier) {
  return {nullptr, nullptr, FollowNote(m.nodes[quantifier].op3)};
}

// With the options in force, which must be those that the repeat's items were taken with.
inline Follow followOf(const MatchContext& m, int32_t quantifier) {
  const RxNode& node = m.nodes[quantifier];
  const FollowNote note(node.op3);
  if (!node.text || (note.options() & kMatcherOptions) != m.options) return noFollow(m, quantifier);
  const RxNode* const next = &node + 1;
  const bool isLiteral =
      quantifier + 1 < m.numNodes && next->code == RX_STRING && !(m.options & RX_OPT_CASELESS);
  return {static_cast<const ByteSet256*>(node.text), isLiteral ? next : nullptr, note};
}

}  // namespace ulk
