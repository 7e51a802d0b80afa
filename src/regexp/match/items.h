// Items: the nodes that consume text, each tested at one position. Steps and repeats are written once over
// them.
#pragma once

#include <cstdint>

#include "regexp/match/matcher.h"
#include "regexp/program/characters.h"

namespace ulk {

inline constexpr int32_t kNoMatch = -1;

// How many bytes the item matches at `at`, kNoMatch if it does not. Never matches at the end of the text; may
// read on inside a UTF-8 sequence that the text's end cuts.
int32_t itemLength(const MatchContext& m, const RxNode& item, const uint8_t* at);

// The index of the node after the item, where its quantifier stands if it has one.
inline int32_t afterItem(const MatchContext& m, int32_t item) {
  const RxNode& node = m.nodes[item];
  return item + 1 + (node.code == RX_CLASS ? node.op2 : 0);
}

// Whether a step at the node would fail because a literal, not quantified, stands there that does not match.
inline bool failsAtLiteral(const MatchContext& m, int32_t node) {
  const RxNode& item = m.nodes[node];
  if (item.code > RX_STRING || m.budget < 0 || m.at > m.textEnd || m.hasQuantifier(node + 1)) return false;
  return itemLength(m, item, m.at) == kNoMatch;
}

}  // namespace ulk
