// UTF-8 as the expression engine reads it: sequences of up to six bytes, and no malformed text, only bytes
// that are characters by themselves.
#pragma once

#include <cstdint>

#pragma GCC visibility push(hidden)

namespace ulk {

constexpr int32_t kLongestUtf8 = 6;  // bytes of a character

struct Utf8Char {
  int32_t value;   // the code point; a byte that is a character by itself counts as a signed char
  int32_t length;  // bytes, 1 to kLongestUtf8
};

inline bool isContinuation(uint8_t byte) { return (byte & 0xC0) == 0x80; }

// The same for a sequence of any length, malformed ones included.
Utf8Char decodeLongMultibyte(const uint8_t* at);

// The character at `at`, whose first byte is 0x80 or more. Reads on only while bytes are continuation bytes.
inline Utf8Char decodeMultibyte(const uint8_t* at) {
  const uint8_t lead = *at;
  if (lead < 0xC2) return {static_cast<int8_t>(lead), 1};  // 0xC0 and 0xC1 would write ASCII in two bytes
  if (lead < 0xE0 && isContinuation(at[1])) return {(lead & 0x1F) << 6 | (at[1] & 0x3F), 2};
  if ((lead & 0xF0) == 0xE0 && isContinuation(at[1]) && isContinuation(at[2])) {
    const int32_t value = (lead & 0xF) << 12 | (at[1] & 0x3F) << 6 | (at[2] & 0x3F);
    if (value > 0x7FF) return {value, 3};
  }
  return decodeLongMultibyte(at);
}

inline Utf8Char decodeUtf8(const uint8_t* at) {
  if (*at < 0x80) return {*at, 1};
  return decodeMultibyte(at);
}

// The last byte before `at` that is no continuation byte, or the first one that is near enough for a
// character to reach from there to `at`. At least one byte lies between `from` and `at`.
inline const uint8_t* leadBefore(const uint8_t* at, const uint8_t* from) {
  const uint8_t* lead = at - 1;
  while (lead > from && at - lead < kLongestUtf8 && isContinuation(*lead)) --lead;
  return lead;
}

// `characterFrom` where the byte before the place is 0x80 or more.
const uint8_t* characterFromMultibyte(const uint8_t* place, const uint8_t* at);

// The first place at `place` or behind it where a character begins or ends, if one begins at `at` before it.
inline const uint8_t* characterFrom(const uint8_t* place, const uint8_t* at) {
  return place == at || place[-1] < 0x80 ? place : characterFromMultibyte(place, at);
}

}  // namespace ulk

#pragma GCC visibility pop
