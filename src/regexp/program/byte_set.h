// Sets of bytes.
#pragma once

#include <cstdint>

#include "regexp/text/set128.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// A set of bytes, one bit each.
struct ByteSet256 {
  uint32_t words[8];

  bool contains(uint8_t byte) const { return (words[byte >> 5] >> (byte & 31)) & 1; }
};

bool isEmpty(const ByteSet256& set);
bool intersect(const ByteSet256& a, const ByteSet256& b);
bool isSubset(const ByteSet256& a, const ByteSet256& b);
inline bool hasHighBytes(const ByteSet256& set) {  // from 0x80 on
  return (set.words[4] | set.words[5] | set.words[6] | set.words[7]) != 0;
}
inline Set128 asciiOf(const ByteSet256& set) {
  return {{set.words[0], set.words[1], set.words[2], set.words[3]}};
}
// The byte that is the only one of the set, or of those outside it; -1 if it is not.
int32_t onlyByte(const ByteSet256& set);
int32_t onlyOtherByte(const ByteSet256& set);

void addAll(const ByteSet256& other, ByteSet256& set);
void addByte(int32_t byte, uint32_t options, ByteSet256& set);  // in both cases with i; above 255 none
void addShorthand(int32_t letter, uint32_t options, ByteSet256& set);
void addAllHighBytes(ByteSet256& set);
// The bytes from 0xC0 on, one bit each.
void addLeads(uint64_t leads, ByteSet256& set);
// The first bytes of the characters of several bytes from `low` to `high`.
void addLeads(int32_t low, int32_t high, ByteSet256& set);

}  // namespace ulk

#pragma GCC visibility pop
