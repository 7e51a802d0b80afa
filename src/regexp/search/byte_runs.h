// Runs of bytes of a set, without looking at every byte.
#pragma once

#include <cstdint>

#include "kernels/find_unit.h"
#include "regexp/program/byte_set.h"

namespace ulk {

// Where so many bytes of the set, at least one, stand in a row, null if nowhere in [text, end). A long step
// forward, then back to a byte that is not in the set: if there is one, no such run lies between.
inline const uint8_t* findRunOf(const ByteSet256& set, const uint8_t* text, const uint8_t* end,
                                int32_t length) {
  const int32_t other = onlyOtherByte(set);
  while (end - text >= length) {
    int32_t last = length - 1;
    if (other >= 0) {
      last = findUnitRev(text, length, static_cast<uint8_t>(other));
    } else {
      while (last >= 0 && set.contains(text[last])) --last;
    }
    if (last < 0) return text;
    text += last + 1;
  }
  return nullptr;
}

}  // namespace ulk
