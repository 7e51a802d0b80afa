#include "regexp/program/byte_set.h"

#include <array>
#include <bit>

#include "regexp/text/bytes.h"

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

}  // namespace ulk
