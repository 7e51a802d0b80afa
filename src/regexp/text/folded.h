// Bytes as the search of a set compares them: letters in either case as one, digits as one, and so is white
// space. What falls together is told apart later.
#pragma once

#include <cstdint>

#include "kernels/vec16.h"

namespace ulk {

inline constexpr uint8_t foldedByte(uint8_t byte) {
  const auto small = static_cast<uint8_t>((byte < 0x20 ? 0x20 : byte) | 0x20);
  return small >= '0' && small <= '9' ? '0' : small;
}

ULK_INLINE Vec16<uint8_t> foldedBytes(Vec16<uint8_t> bytes) {
  const auto bit = Vec16<uint8_t>::splat(0x20);
  const Vec16<uint8_t> small = bytes.max(bit) | bit;
  const Vec16<uint8_t> digits = small.greaterSigned(Vec16<uint8_t>::splat('0' - 1)) &
                                Vec16<uint8_t>::splat('9' + 1).greaterSigned(small);
  return small.without(digits & Vec16<uint8_t>::splat(0x0F));
}

}  // namespace ulk
