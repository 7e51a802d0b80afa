// Tests on single bytes: shorthand sets, the caseless byte rule, word values.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "regexp/text/options.h"

namespace ulk {

inline constexpr bool isAsciiLetter(int32_t c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// One bit for each shorthand set, so that a repeat tests a byte with one load.
enum ByteSet : uint8_t {
  kDigit = 1,
  kNotDigit = 2,
  kWord = 4,
  kNotWord = 8,
  kSpace = 16,
  kNotSpace = 32,
  kNotNewline = 64,
  kAnyByte = 128,
};

inline constexpr std::array<uint8_t, 256> kByteSets = [] {
  std::array<uint8_t, 256> sets{};
  for (int c = 0; c < 256; ++c) {
    const bool digit = c >= '0' && c <= '9';
    const bool word = digit || isAsciiLetter(c) || c == '_';
    const bool space =
        c == 9 || c == 10 || c == 12 || c == 13 || c == 32;  // the vertical tab, 11, is not white space
    sets[static_cast<size_t>(c)] =
        static_cast<uint8_t>((digit ? kDigit : kNotDigit) | (word ? kWord : kNotWord) |
                             (space ? kSpace : kNotSpace) | (c != 10 ? kNotNewline : 0) | kAnyByte);
  }
  return sets;
}();

// The set of a shorthand letter; 0, which no byte is in, for any other letter.
inline constexpr uint8_t byteSetOf(int32_t letter, uint32_t options) {
  switch (letter) {
    case 'd':
      return kDigit;
    case 'D':
      return kNotDigit;
    case 'w':
      return kWord;
    case 'W':
      return kNotWord;
    case 's':
      return kSpace;
    case 'S':
      return kNotSpace;
    case '.':
      return options & RX_OPT_DOTALL ? kAnyByte : kNotNewline;
    default:
      return 0;
  }
}

inline bool inByteSet(uint8_t byte, uint8_t set) { return (kByteSets[byte] & set) != 0; }

// A text value against a pattern value. Only ASCII letters of the text match either case.
inline bool sameByte(int32_t pattern, int32_t text, uint32_t options) {
  if (pattern == text) return true;
  return (options & RX_OPT_CASELESS) && (pattern ^ text) == 0x20 && isAsciiLetter(text);
}

inline bool sameBytes(const uint8_t* pattern, const uint8_t* text, int32_t length, uint32_t options) {
  for (int32_t i = 0; i < length; ++i)
    if (!sameByte(pattern[i], text[i], options)) return false;
  return true;
}

// A value that is not negative exactly for the bytes of \w. Two values of opposite sign make a word boundary;
// \B asks for more than the sign, which is why this is a number.
inline constexpr int32_t wordValue(uint8_t byte) {
  const int32_t c = byte;
  return ((c - '0') | ('9' - c)) & ((c - 'A') | ('Z' - c)) & ((c - 'a') | ('z' - c)) & -(c ^ 0x5F);
}

}  // namespace ulk
