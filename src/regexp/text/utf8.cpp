#include "regexp/text/utf8.h"

#include <algorithm>
#include <bit>

namespace ulk {

Utf8Char decodeLongMultibyte(const uint8_t* at) {
  constexpr int32_t kLargest[] = {0x7F, 0x7FF, 0xFFFF, 0x1FFFFF, 0x3FFFFFF};  // that fits one byte less
  const uint8_t lead = *at;
  const Utf8Char alone{static_cast<int8_t>(lead), 1};
  const int continuations = std::countl_one(static_cast<uint8_t>(lead << 1));
  if (continuations == 0 || continuations >= kLongestUtf8) return alone;
  int32_t value = lead & (0x3F >> continuations);
  for (int i = 1; i <= continuations; ++i) {
    if (!isContinuation(at[i])) return alone;
    value = (value << 6) | (at[i] & 0x3F);
  }
  if (value <= kLargest[continuations - 1]) return alone;
  return {value, continuations + 1};
}

const uint8_t* characterFromMultibyte(const uint8_t* place, const uint8_t* at) {
  const uint8_t* const lead = leadBefore(place, at);
  return std::max(place, lead + decodeUtf8(lead).length);
}

}  // namespace ulk
