// Sets of bytes.
#pragma once

#include <cstdint>

namespace ulk {

// A set of bytes, one bit each.
struct ByteSet256 {
  uint32_t words[8];

  bool contains(uint8_t byte) const { return (words[byte >> 5] >> (byte & 31)) & 1; }
};

void addAll(const ByteSet256& other, ByteSet256& set);
void addByte(int32_t byte, uint32_t options, ByteSet256& set);  // in both cases with i; above 255 none
void addShorthand(int32_t letter, uint32_t options, ByteSet256& set);

}  // namespace ulk
