// Items: the nodes that consume text, each tested at one position. Steps and repeats are written once over them.
#pragma once

#include <cstdint>

#include "regexp/bytes.h"
#include "regexp/matcher.h"
#include "regexp/utf8.h"

namespace ulk {

inline constexpr int32_t kNoMatch = -1;

// How many bytes the item matches at `at`, kNoMatch if it does not. Never matches at the end of the text; may read on
// inside a UTF-8 sequence that the text's end cuts.
int32_t itemLength(const MatchContext& m, const RxNode& item, const uint8_t* at);

// The set of single bytes that the class accepts, null if it has none for these options.
inline const ByteSet256* classSet(const RxNode& header, uint32_t options) {
  const bool madeForThese = header.op3 == static_cast<int32_t>(options & RX_OPT_CASELESS);
  return madeForThese ? static_cast<const ByteSet256*>(header.text) : nullptr;
}

// Whether the class accepts a character that is this single byte.
inline bool classAcceptsByte(const RxNode& header, uint8_t byte, uint32_t options);

// Whether a step at `node` would fail right there: an item that must match once and cannot. Such a step changes nothing
// but the budget, so it may be paid for instead of made.
inline bool failsAtOnce(const MatchContext& m, int32_t node);

// The index of the node after the item, where its quantifier stands if it has one.
inline int32_t afterItem(const MatchContext& m, int32_t item) {
  const RxNode& node = m.nodes[item];
  return item + 1 + (node.code == RX_CLASS ? node.op2 : 0);
}

// Whether the class accepts a character; `byte` is its first byte.
bool classAccepts(const RxNode& header, Utf8Char character, uint8_t byte, uint32_t options);

// One class member's answer, its own negation included.
bool memberAccepts(const RxNode& member, Utf8Char character, uint8_t byte, uint32_t options);

// Whether a code-point node accepts a character, without a member's negation.
bool codePointAccepts(const RxNode& node, int32_t codePoint, uint32_t options);

// Whether a category, range or script node accepts a character.
bool propertyAccepts(const RxNode& node, int32_t codePoint);

inline bool classAcceptsByte(const RxNode& header, uint8_t byte, uint32_t options) {
  if (const ByteSet256* set = classSet(header, options)) return set->contains(byte);
  return classAccepts(header, {byte < 0x80 ? byte : byte - 256, 1}, byte, options);
}

inline bool failsAtOnce(const MatchContext& m, int32_t node) {
  if (node == m.endNode || m.at > m.textEnd) return false;
  const RxNode& item = m.nodes[node];
  const bool atEnd = m.at == m.textEnd;
  const auto fails = [&](int32_t next, bool accepted) {
    return !accepted && !(m.hasQuantifier(next) && m.nodes[next].op1 == 0);
  };
  switch (item.code) {
    case RX_CHAR: return fails(node + 1, !atEnd && sameByte(item.op1, *m.at, m.options));
    case RX_STRING:
      return fails(node + 1, !atEnd && sameByte(*static_cast<const uint8_t*>(item.text), *m.at, m.options));
    case RX_CHARTYPE: return fails(node + 1, !atEnd && inByteSet(*m.at, byteSetOf(item.op1, m.options)));
    case RX_CLASS: {
      // What a byte from 0x80 on begins is not decided here.
      const bool accepted = !atEnd && (*m.at >= 0x80 || classAcceptsByte(item, *m.at, m.options));
      return fails(node + 1 + item.op2, accepted);
    }
    default: return false;
  }
}

}  // namespace ulk
