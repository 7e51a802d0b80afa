#include "regexp/match/items.h"

#include <algorithm>

#include "kernels/find_unit.h"
#include "regexp/match/steps.h"
#include "regexp/match/take.h"
#include "unicode/unicode.h"

namespace ulk {

namespace {

int32_t charTypeLength(const RxNode& item, const uint8_t* at, uint32_t options) {
  if (!inByteSet(*at, byteSetOf(item, options))) return kNoMatch;
  return decodeUtf8(at).length;
}

int32_t backrefLength(const MatchContext& m, const RxNode& item, const uint8_t* at, uint32_t options) {
  const CaptureSlot& group = m.state->captures[referredCapture(item)];
  if (group.length < 0 || group.length > m.textEnd - at) return kNoMatch;
  return sameBytes(group.start, at, group.length, options) ? group.length : kNoMatch;
}

int32_t lengthOfString(const MatchContext& m, const RxNode& item, const uint8_t* at, uint32_t options) {
  const int32_t length = stringLength(item);
  if (!(options & RX_OPT_CASELESS)) return isStringAt(m, item, at) ? length : kNoMatch;
  return length <= m.textEnd - at && sameBytes(stringOf(item), at, length, options) ? length : kNoMatch;
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

// Takes up to `most` characters: `behind` tells where those below 0x80 end, which are single bytes, `accepts`
// tells of the others.
template <class Behind, class Accepts>
Taken takeCharacters(const MatchContext& m, const uint8_t* const start, int32_t most, Behind behind,
                     Accepts accepts) {
  const uint8_t* at = start;
  const uint8_t* end = at + std::min<ptrdiff_t>(most, m.textEnd - at);
  ptrdiff_t further = 0;  // bytes of characters beyond the first
  bool goesOn = true;
  while (goesOn && (at = behind(at, end)) < end && *at >= 0x80) {
    while (at < end && *at >= 0x80) {
      const Utf8Char character = decodeMultibyte(at);
      goesOn = accepts(character, *at);
      if (!goesOn) break;
      at += character.length;
      further += character.length - 1;
      end += std::min<ptrdiff_t>(character.length - 1, m.textEnd - end);
    }
  }
  return {at, static_cast<int32_t>(at - start - further)};
}

// The same for a single byte in one case. Most runs are short.
Taken takeBytes(const MatchContext& m, const RxNode& item, const uint8_t* at, int32_t most) {
  constexpr int32_t kLooks = 8;
  const auto limit = static_cast<int32_t>(std::clamp<ptrdiff_t>(m.textEnd - at, 0, most));
  if (codeOf(item) == RX_BYTE) return {at + limit, limit};
  int32_t count = 0;
  while (count < limit && count < kLooks && at[count] == byteOf(item)) ++count;
  if (count == kLooks) {
    const int32_t other =
        scanForOther<Forward>(at + count, limit - count, static_cast<uint8_t>(byteOf(item)));
    count = other < 0 ? limit : count + other;
  }
  return {at + count, count};
}

bool isOneByte(const RxNode& item, uint32_t options) {
  return codeOf(item) == RX_BYTE ||
         (codeOf(item) == RX_CHAR && !((options & RX_OPT_CASELESS) && isAsciiLetter(byteOf(item))));
}

}  // namespace

int32_t itemLength(const MatchContext& m, const RxNode& item, const uint8_t* at) {
  const uint32_t options = m.options;
  if (at >= m.textEnd) return kNoMatch;
  switch (codeOf(item)) {
    case RX_CHAR:
      return sameByte(byteOf(item), *at, options) ? 1 : kNoMatch;
    case RX_BYTE:
      return 1;
    case RX_BACKREF:
      return backrefLength(m, item, at, options);
    case RX_CHARTYPE:
      return charTypeLength(item, at, options);
    case RX_XSEQ:
      return sequenceLength(m, at);
    case RX_STRING:
      return lengthOfString(m, item, at, options);
    default: {
      const Utf8Char character = decodeUtf8(at);
      return acceptsCharacter(item, character, *at, options) ? character.length : kNoMatch;
    }
  }
}

Taken takeItems(const MatchContext& m, const RxNode& item, const uint8_t* at, int32_t most) {
  const uint32_t options = m.options;
  if (isOneByte(item, options)) return takeBytes(m, item, at, most);
  if (codeOf(item) == RX_CHARTYPE) {
    const uint8_t wanted = byteSetOf(item, options);
    return takeCharacters(
        m, at, most,
        [&](const uint8_t* from, const uint8_t* end) { return behindBytes(from, end, m.byteSets, wanted); },
        [wanted](Utf8Char, uint8_t byte) { return inByteSet(byte, wanted); });
  }
  const Set128* const set = isProperty(item)           ? firstSet(item)
                            : codeOf(item) == RX_CLASS ? classSet(item, options)
                                                       : nullptr;
  const auto behind = [set](const uint8_t* from, const uint8_t* end) { return behindBytes(from, end, *set); };
  if (set) {
    const CharacterTest test(item, options);
    return takeCharacters(m, at, most, behind, [&test](Utf8Char character, uint8_t byte) {
      return test.accepts(character, byte);
    });
  }
  int32_t count = 0;
  for (; count < most; ++count) {
    const int32_t length = itemLength(m, item, at);
    if (length == kNoMatch) break;
    at += length;
  }
  return {at, count};
}

// ---- Steps

ULK_STEP stepByte(const uint8_t* at, const RxNode* node, MatchContext& m) {
  return at < m.textEnd && *at == byteOf(*node) ? goOn(at + 1, node + 1, m) : fail(m);
}

ULK_STEP stepString(const uint8_t* at, const RxNode* node, MatchContext& m) {
  return isStringAt(m, *node, at) ? goOn(at + stringLength(*node), node + 1, m) : fail(m);
}

ULK_STEP stepLetter(const uint8_t* at, const RxNode* node, MatchContext& m) {
  return at < m.textEnd && (*at | 0x20) == (byteOf(*node) | 0x20) ? goOn(at + 1, node + 1, m) : fail(m);
}

ULK_STEP stepShorthand(const uint8_t* at, const RxNode* node, MatchContext& m) {
  if (at >= m.textEnd) return fail(m);
  if (!(m.byteSets[*at] & byteSetOf(*node, m.options))) return fail(m);
  return goOn(*at < 0x80 ? at + 1 : at + decodeMultibyte(at).length, node + 1, m);
}

ULK_STEP stepSet(const uint8_t* at, const RxNode* node, MatchContext& m) {
  if (at >= m.textEnd || *at >= 0x80) return stepItem(at, node, m);
  return recordOf(*node)->set.contains(*at) ? goOn(at + 1, afterItem(node), m) : fail(m);
}

ULK_STEP stepBackref(const uint8_t* at, const RxNode* node, MatchContext& m) {
  const CaptureSlot& group = m.state->captures[referredCapture(*node)];
  if (at >= m.textEnd || group.length < 0 || group.length > m.remaining(at)) return fail(m);
  if (!sameBytes(group.start, at, group.length, m.options)) return fail(m);
  return goOn(at + group.length, node + 1, m);
}

ULK_STEP stepItem(const uint8_t* at, const RxNode* node, MatchContext& m) {
  const int32_t length = itemLength(m, *node, at);
  return length == kNoMatch ? fail(m) : goOn(at + length, afterItem(node), m);
}

}  // namespace ulk
