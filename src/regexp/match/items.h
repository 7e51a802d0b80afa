// Items: the nodes that consume text, each tested at one position.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "kernels/vec16.h"
#include "regexp/match/matcher.h"
#include "regexp/program/character_test.h"
#include "regexp/program/characters.h"
#include "regexp/program/class_sets.h"
#include "regexp/text/bytes.h"
#include "regexp/text/utf8.h"

#pragma GCC visibility push(hidden)

namespace ulk {

inline constexpr int32_t kNoMatch = -1;

// How many bytes the item matches at `at`, kNoMatch if it does not. Never matches at the end of the text; may
// read on inside a UTF-8 sequence that the text's end cuts.
int32_t itemLength(const MatchContext& m, const RxNode& item, const uint8_t* at);

// The same for a string in one case.
ULK_INLINE bool isStringAt(const MatchContext& m, const RxNode& item, const uint8_t* at) {
  const uint8_t* const text = stringOf(item);
  const int32_t length = stringLength(item);
  return length <= m.textEnd - at && *at == *text && std::memcmp(at, text, static_cast<size_t>(length)) == 0;
}

// The node after the item, where its quantifier stands if it has one.
inline const RxNode* afterItem(const RxNode* item) {
  return item + 1 + (codeOf(*item) == RX_CLASS ? memberCount(*item) : 0);
}

// Whether a step at the node would fail because a literal, not quantified, stands there that does not match.
inline bool failsAtLiteral(const MatchContext& m, const RxNode* node, const uint8_t* at) {
  if (codeOf(*node) > RX_STRING || at > m.textEnd || m.isQuantified(node + 1)) return false;
  const int32_t first = codeOf(*node) == RX_CHAR ? byteOf(*node) : *stringOf(*node);
  return at == m.textEnd || !sameByte(first, *at, m.options) || itemLength(m, *node, at) == kNoMatch;
}

// Items in a row, and where they end.
struct Taken {
  const uint8_t* end;
  int32_t count;
};

// As many items as the quantifier allows there, also where the text is too short for what it requires.
inline int32_t mostItems(const MatchContext& m, const RxNode& quantifier, const uint8_t* at) {
  return std::max(minOf(quantifier), std::min(maxOf(quantifier), m.remaining(at)));
}

// Takes up to `most` items from `at` on.
Taken takeItems(const MatchContext& m, const RxNode& item, const uint8_t* at, int32_t most);

}  // namespace ulk

#pragma GCC visibility pop
