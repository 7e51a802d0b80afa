// Sets of numbers below 128: ASCII characters, or as many other bytes or characters.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

namespace ulk {

inline constexpr int32_t kWordsPerSet = 4;

// One bit for each number.
struct Set128 {
  uint32_t words[kWordsPerSet];

  bool contains(int32_t number) const { return (words[number >> 5] >> (number & 31)) & 1; }
};

inline constexpr Set128 kAll128{{~0u, ~0u, ~0u, ~0u}};

// The upper-case letters of ASCII are bits of word 2, the lower-case ones the same bits of word 3.
inline constexpr uint32_t kLetterBits = 0x07FFFFFE;
inline constexpr Set128 kLetters{{0, 0, kLetterBits, kLetterBits}};

// In words that may be more than four.
inline bool contains(const uint32_t* words, int32_t number) {
  return (words[number >> 5] >> (number & 31)) & 1;
}
inline void addBit(int32_t number, uint32_t* words) { words[number >> 5] |= 1u << (number & 31); }

// The only number in words, or missing from them if `flip` has all bits: `none` if there is none, -1 if there
// are several.
template <int32_t kWords>
int32_t onlyBit(const uint32_t (&words)[kWords], uint32_t flip, int32_t none) {
  int32_t only = none;
  for (int32_t i = 0; i < kWords; ++i) {
    const uint32_t word = words[i] ^ flip;
    if (word == 0) continue;
    if (only != none || !std::has_single_bit(word)) return -1;
    only = 32 * i + std::countr_zero(word);
  }
  return only;
}

inline void addAll(const Set128& other, Set128& set) {
  for (int i = 0; i < kWordsPerSet; ++i) set.words[i] |= other.words[i];
}

// The numbers from `first` to `last` as far as they are below 128.
inline void addSpan(int64_t first, int64_t last, Set128& set) {
  if (first > 127 || last < 0) return;
  const auto low = static_cast<int32_t>(std::max<int64_t>(first, 0));
  const auto high = static_cast<int32_t>(std::min<int64_t>(last, 127));
  for (int32_t i = low >> 5; i <= high >> 5; ++i) {
    const uint32_t from = ~0u << (i == low >> 5 ? low & 31 : 0);
    const uint32_t to = ~0u >> (i == high >> 5 ? 31 - (high & 31) : 0);
    set.words[i] |= from & to;
  }
}

inline Set128 inverse(const Set128& set) {
  return {{~set.words[0], ~set.words[1], ~set.words[2], ~set.words[3]}};
}

inline bool same(const Set128& a, const Set128& b) {
  return std::equal(a.words, a.words + kWordsPerSet, b.words);
}

// With the letters of the set in both cases.
inline Set128 inBothCases(Set128 set) {
  const uint32_t letters = (set.words[2] | set.words[3]) & kLetterBits;
  set.words[2] |= letters;
  set.words[3] |= letters;
  return set;
}

}  // namespace ulk
