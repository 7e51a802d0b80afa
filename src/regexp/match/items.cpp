#include "regexp/match/items.h"

#include <cstring>

#include "regexp/program/class_sets.h"
#include "regexp/text/bytes.h"
#include "unicode/unicode.h"

namespace ulk {

namespace {

int32_t charTypeLength(const RxNode& item, const uint8_t* at, uint32_t options) {
  if (!inByteSet(*at, byteSetOf(item.op1, options))) return kNoMatch;
  return decodeUtf8(at).length;
}

int32_t classLength(const RxNode& item, const uint8_t* at, uint32_t options) {
  const Utf8Char character = decodeUtf8(at);
  return classAccepts(item, character, *at, options) ? character.length : kNoMatch;
}

int32_t backrefLength(const MatchContext& m, const RxNode& item, const uint8_t* at) {
  const CaptureSlot& group = m.captures[item.op1];
  if (group.length < 0 || group.length > m.textEnd - at) return kNoMatch;
  return sameBytes(group.start, at, group.length, m.options) ? group.length : kNoMatch;
}

// No ASCII character is a mark.
int32_t sequenceLength(const MatchContext& m, const uint8_t* at) {
  Utf8Char character = decodeUtf8(at);
  if (*at >= 0x80 && isMark(character.value)) return kNoMatch;
  const uint8_t* end = at + character.length;
  while (end < m.textEnd && *end >= 0x80 && isMark((character = decodeMultibyte(end)).value))
    end += character.length;
  return static_cast<int32_t>(end - at);
}

}  // namespace

int32_t itemLength(const MatchContext& m, const RxNode& item, const uint8_t* at) {
  if (at >= m.textEnd) return kNoMatch;
  switch (item.code) {
    case RX_CHAR:
      return sameByte(item.op1, *at, m.options) ? 1 : kNoMatch;
    case RX_BYTE:
      return 1;
    case RX_BACKREF:
      return backrefLength(m, item, at);
    case RX_CLASS:
      return classLength(item, at, m.options);
    case RX_CHARTYPE:
      return charTypeLength(item, at, m.options);
    case RX_XSEQ:
      return sequenceLength(m, at);
    case RX_STRING: {
      if (item.op2 > m.textEnd - at) return kNoMatch;
      const auto* text = static_cast<const uint8_t*>(item.text);
      const bool same = m.options & RX_OPT_CASELESS
                            ? sameBytes(text, at, item.op2, m.options)
                            : std::memcmp(text, at, static_cast<size_t>(item.op2)) == 0;
      return same ? item.op2 : kNoMatch;
    }
    case RX_CODEPOINT: {
      const Utf8Char character = decodeUtf8(at);
      return codePointAccepts(item, character.value, m.options) ? character.length : kNoMatch;
    }
    default: {
      const Utf8Char character = decodeUtf8(at);
      return propertyAccepts(item, character.value) ? character.length : kNoMatch;
    }
  }
}

}  // namespace ulk
