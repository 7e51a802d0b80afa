#include "regexp/program/byte_set.h"

#include <algorithm>
#include <array>
#include <bit>

#include "regexp/text/bytes.h"
#include "regexp/text/set128.h"

namespace ulk {

namespace {

void add(uint8_t byte, ByteSet256& set) { set.words[byte >> 5] |= 1u << (byte & 31); }

// The shorthand sets of kByteSets, one for each of its bits.
constexpr std::array<ByteSet256, 8> kShorthandSets = [] {
  std::array<ByteSet256, 8> sets{};
  for (uint32_t bit = 0; bit < 8; ++bit)
    for (uint32_t c = 0; c < 256; ++c) sets[bit].words[c >> 5] |= (kByteSets[c] >> bit & 1u) << (c & 31);
  return sets;
}();

}  // namespace

bool isEmpty(const ByteSet256& set) {
  return std::all_of(set.words, set.words + 8, [](uint32_t word) { return word == 0; });
}

bool intersect(const ByteSet256& a, const ByteSet256& b) {
  uint32_t common = 0;
  for (int i = 0; i < 8; ++i) common |= a.words[i] & b.words[i];
  return common != 0;
}

bool isSubset(const ByteSet256& a, const ByteSet256& b) {
  uint32_t others = 0;
  for (int i = 0; i < 8; ++i) others |= a.words[i] & ~b.words[i];
  return others == 0;
}

int32_t onlyByte(const ByteSet256& set) { return onlyBit(set.words, 0, -1); }
int32_t onlyOtherByte(const ByteSet256& set) { return onlyBit(set.words, ~0u, -1); }

void addAll(const ByteSet256& other, ByteSet256& set) {
  for (int i = 0; i < 8; ++i) set.words[i] |= other.words[i];
}

void addByte(int32_t byte, uint32_t options, ByteSet256& set) {
  if (byte > 255) return;
  add(static_cast<uint8_t>(byte), set);
  if ((options & RX_OPT_CASELESS) && isAsciiLetter(byte)) add(static_cast<uint8_t>(byte ^ 0x20), set);
}

void addShorthand(int32_t letter, uint32_t options, ByteSet256& set) {
  const uint8_t wanted = byteSetOf(letter, options);
  if (wanted) addAll(kShorthandSets[static_cast<size_t>(std::countr_zero(wanted))], set);
}

void addAllHighBytes(ByteSet256& set) { std::fill(set.words + 4, set.words + 8, ~0u); }

void addLeads(uint64_t leads, ByteSet256& set) {
  set.words[6] |= static_cast<uint32_t>(leads);
  set.words[7] |= static_cast<uint32_t>(leads >> 32);
}

void addLeads(int32_t low, int32_t high, ByteSet256& set) {
  constexpr struct {
    int32_t last;  // code point that sequences of this length are for
    int32_t shift;
    int32_t lead;
  } kLengths[] = {{0x7FF, 6, 0xC0},
                  {0xFFFF, 12, 0xE0},
                  {0x1FFFFF, 18, 0xF0},
                  {0x3FFFFFF, 24, 0xF8},
                  {INT32_MAX, 30, 0xFC}};
  low = std::max(low, 0x80);
  for (const auto& length : kLengths) {
    if (low > high) return;
    if (low > length.last) continue;
    for (int32_t bits = low >> length.shift; bits <= std::min(high, length.last) >> length.shift; ++bits)
      add(static_cast<uint8_t>(length.lead | bits), set);
    if (high <= length.last) return;
    low = length.last + 1;
  }
}

}  // namespace ulk
