// UTF-8 as the expression engine reads it: sequences of up to six bytes, and no malformed text, only bytes
// that are characters by themselves.
#pragma once

#include <bit>
#include <cstdint>

namespace ulk {

struct Utf8Char {
  int32_t value;   // the code point; a byte that is a character by itself counts as a signed char
  int32_t length;  // bytes, 1 to 6
};

inline bool isContinuation(uint8_t byte) { return (byte & 0xC0) == 0x80; }

// The character at `at`, whose first byte is 0x80 or more. Reads on only while bytes are continuation bytes.
inline Utf8Char decodeMultibyte(const uint8_t* at) {
  constexpr int32_t kLargest[] = {0x7F, 0x7FF, 0xFFFF, 0x1FFFFF, 0x3FFFFFF};  // that fits one byte less
  const uint8_t lead = *at;
  const Utf8Char alone{static_cast<int8_t>(lead), 1};
  const int continuations = std::countl_one(static_cast<uint8_t>(lead << 1));
  if (continuations == 0 || continuations >= 6) return alone;
  int32_t value = lead & (0x3F >> continuations);
  for (int i = 1; i <= continuations; ++i) {
    if (!isContinuation(at[i])) return alone;
    value = (value << 6) | (at[i] & 0x3F);
  }
  if (value <= kLargest[continuations - 1]) return alone;
  return {value, continuations + 1};
}

inline Utf8Char decodeUtf8(const uint8_t* at) {
  if (*at < 0x80) return {*at, 1};
  return decodeMultibyte(at);
}

}  // namespace ulk
