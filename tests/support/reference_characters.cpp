#include "support/reference_characters.h"

#include <algorithm>

#include "unicode/unicode.h"

namespace ulk_test {
namespace {

using namespace ulk;

bool within(int32_t c, int32_t low, int32_t high) { return low <= c && c <= high; }
bool isLetter(int32_t c) { return within(c, 'A', 'Z') || within(c, 'a', 'z'); }
bool isDigit(int32_t c) { return within(c, '0', '9'); }
bool isSpace(int32_t c) { return c == 9 || c == 10 || c == 12 || c == 13 || c == 32; }
bool isWord(int32_t c) { return isLetter(c) || isDigit(c) || c == '_'; }
bool isCaseless(uint32_t options) { return options & RX_OPT_CASELESS; }

bool ofType(int32_t type, int32_t lead, uint32_t options) {
  if (type == 'd' || type == 'D') return isDigit(lead) == (type == 'd');
  if (type == 'w' || type == 'W') return isWord(lead) == (type == 'w');
  if (type == 's' || type == 'S') return isSpace(lead) == (type == 's');
  return type == '.' && (lead != 10 || (options & RX_OPT_DOTALL));
}

bool isCodePoint(int32_t c, int32_t wanted, uint32_t options) {
  return isCaseless(options) ? foldCase(c) == foldCase(wanted) : c == wanted;
}

bool hasProperty(const RxNode& node, int32_t c) {
  if (node.code == RX_CATEGORY) return acceptsCategory(c, static_cast<uint32_t>(node.op1), node.op2 != 0);
  if (node.code == RX_UNIRANGE) return within(c, node.op1, node.op2) != (node.op3 != 0);
  const auto* const ranges = static_cast<const CodePointRange*>(node.text);
  const bool found = std::any_of(ranges, ranges + node.op3, [c](const CodePointRange& range) {
    return c >= 0 && range.first <= static_cast<uint32_t>(c) && static_cast<uint32_t>(c) <= range.last;
  });
  return found != (node.op2 != 0);
}

// One byte is compared as a byte with bounds that could be bytes.
bool inRange(Character c, int32_t low, int32_t high, bool caseless) {
  if (c.length == 1 && low < 256 && high < 256)
    return within(c.lead, low, high) || (caseless && isLetter(c.lead) && within(c.lead ^ 0x20, low, high));
  return caseless ? within(foldCase(c.value), foldCase(low), foldCase(high)) : within(c.value, low, high);
}

bool isMember(const RxNode& member, Character c, uint32_t options) {
  const bool caseless = isCaseless(options);
  const bool negated = member.op3 != 0;
  switch (member.code) {
    case RX_CHAR:
      return sameByte(c.length == 1 ? c.lead : c.value, member.op1, caseless) != negated;
    case RX_RANGE:
      return inRange(c, member.op1, member.op2, caseless) != negated;
    case RX_CHARTYPE:
      return ofType(member.op1, c.lead, options) != negated;
    case RX_CODEPOINT:
      return isCodePoint(c.value, member.op1, options) != negated;
    default:
      return hasProperty(member, c.value);
  }
}

}  // namespace

bool sameByte(int32_t textByte, int32_t patternByte, bool caseless) {
  const int32_t difference = textByte ^ patternByte;
  return difference == 0 || (caseless && difference == 0x20 && isLetter(textByte));
}

int32_t wordValue(int32_t c) {
  return ((c - '0') | ('9' - c)) & ((c - 'A') | ('Z' - c)) & ((c - 'a') | ('z' - c)) & -(c ^ '_');
}

bool isMark(Character c) { return ulk::isMark(c.value); }

bool accepts(const RxNode& node, Character c, uint32_t options) {
  const RxNode* const members = &node + 1;
  switch (node.code) {
    case RX_CLASS:
      return (node.op1 != 0) != std::any_of(members, members + node.op2, [&](const RxNode& member) {
               return isMember(member, c, options);
             });
    case RX_CHARTYPE:
      return ofType(node.op1, c.lead, options);
    case RX_CODEPOINT:
      return isCodePoint(c.value, node.op1, options);
    default:
      return hasProperty(node, c.value);
  }
}

int32_t Text::byte(int32_t at) {
  bytesRead_ = std::max(bytesRead_, at + 1);
  return bytes_[at];
}

Character Text::character(int32_t at) {
  constexpr int32_t kLargest[] = {0x7F, 0x7FF, 0xFFFF, 0x1FFFFF, 0x3FFFFFF, INT32_MAX};
  const int32_t lead = byte(at);
  if (lead < 0x80) return {lead, 1, lead};
  const Character alone = {lead - 256, 1, lead};
  int32_t more = 0;
  while (more < 6 && (lead & (0x40 >> more))) ++more;
  if (more == 0 || more == 6) return alone;
  int32_t value = lead & (0x3F >> more);
  for (int32_t i = 1; i <= more; ++i) {
    const int32_t next = byte(at + i);
    if ((next & 0xC0) != 0x80) return alone;
    value = value * 64 + (next & 0x3F);
  }
  const bool shortest = within(value, kLargest[more - 1] + 1, kLargest[more]);
  return shortest ? Character{value, more + 1, lead} : alone;
}

int32_t Text::back(int32_t at, int32_t width) {
  if (width == 0) return at;
  for (; nextStart_ < at; nextStart_ += character(nextStart_).length) starts_.push_back(nextStart_);
  const auto count = std::lower_bound(starts_.begin(), starts_.end(), at) - starts_.begin();
  return count >= width ? starts_[static_cast<size_t>(count - width)] : at - width;
}

}  // namespace ulk_test
