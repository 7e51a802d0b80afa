// The first and the last place where a literal stands in a text, letters in either case.
#pragma once

#include <algorithm>
#include <cstdint>

#include "kernels/two_way.h"
#include "kernels/vec16.h"
#include "regexp/bytes.h"
#include "regexp/program.h"

namespace ulk {

// Compares one byte of the literal with 16 of the text at once.
class CaselessByte {
 public:
  explicit CaselessByte(uint8_t byte)
      : one_(Vec16<uint8_t>::splat(byte)),
        other_(Vec16<uint8_t>::splat(isAsciiLetter(byte) ? static_cast<uint8_t>(byte ^ 0x20) : byte)) {}
  ULK_INLINE Vec16<uint8_t> equal(const uint8_t* at) const {
    const Vec16<uint8_t> bytes = Vec16<uint8_t>::load(at);
    return bytes.equal(one_) | bytes.equal(other_);
  }

 private:
  Vec16<uint8_t> one_, other_;
};

// Bytes from the last to the first, ASCII letters as capitals.
struct CaselessFromEnd {
  const uint8_t* bytes;
  size_t length;

  uint8_t operator[](size_t i) const {
    const uint8_t c = bytes[length - 1 - i];
    return c >= 'a' && c <= 'z' ? static_cast<uint8_t>(c - 0x20) : c;
  }
};

// -1 if there is none that begins in the first `length` bytes. It may reach beyond them, up to `reach`.
// Candidates are found by their first and their last byte.
inline int32_t findCaseless(const uint8_t* text, int32_t length, int32_t reach, const uint8_t* literal,
                            int32_t size) {
  const int32_t starts = std::min(length, reach - size + 1);
  const auto matches = [&](int32_t i) { return sameBytes(literal, text + i, size, RX_OPT_CASELESS); };
  const CaselessByte first(literal[0]);
  const CaselessByte last(literal[size - 1]);
  int32_t i = 0;
  for (; i <= starts - 16; i += 16) {
    LaneMask<uint8_t> found = (first.equal(text + i) & last.equal(text + i + size - 1)).mask();
    for (; found.any(); found = found.without(found.first()))
      if (matches(i + found.first())) return i + found.first();
  }
  for (; i < starts; ++i)
    if (matches(i)) return i;
  return -1;
}

// The last place, -1 if there is none.
inline int32_t findRevCaseless(const uint8_t* text, int32_t length, const uint8_t* literal, int32_t size) {
  constexpr int kPatience =
      64;  // so many candidates are compared before the search in linear time takes over
  const CaselessByte first(literal[0]);
  const CaselessByte last(literal[size - 1]);
  int patience = kPatience;
  int32_t starts = length - size + 1;
  while (starts >= 16 && patience > 0) {
    const uint8_t* const block = text + starts - 16;
    LaneMask<uint8_t> found = (first.equal(block) & last.equal(block + size - 1)).mask();
    for (; found.any(); found = found.without(found.last()), --patience) {
      const uint8_t* const candidate = block + found.last();
      if (sameBytes(literal, candidate, size, RX_OPT_CASELESS)) return static_cast<int32_t>(candidate - text);
    }
    starts -= 16;
  }
  const CaselessFromEnd haystack{text, static_cast<size_t>(std::max(starts + size - 1, 0))};
  const CaselessFromEnd needle{literal, static_cast<size_t>(size)};
  const int32_t fromEnd = twoWayOffset(haystack, needle);
  return fromEnd < 0 ? -1 : starts - 1 - fromEnd;
}

}  // namespace ulk
