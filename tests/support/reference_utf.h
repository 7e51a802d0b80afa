// The UTF conversions as their rules read, one character after the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ulk_test {

// What a conversion consumed and wrote. It may have written more than there was room for.
template <class Unit>
struct Converted {
  int32_t consumed = 0;
  std::vector<Unit> units;
};

struct SequenceForm {
  uint32_t largest;
  uint32_t lead;
  uint32_t payload;
};

// By the number of continuation bytes.
constexpr SequenceForm kForms[] = {{0x7F, 0x00, 0xFF},     {0x7FF, 0xC0, 0x1F},     {0xFFFF, 0xE0, 0x0F},
                                   {0x1FFFFF, 0xF0, 0x07}, {0x3FFFFFF, 0xF8, 0x03}, {0x7FFFFFFF, 0xFC, 0x01}};

inline std::vector<uint8_t> encodeWith(int continuations, uint32_t value) {
  std::vector<uint8_t> bytes(static_cast<size_t>(continuations) + 1);
  for (size_t i = bytes.size(); i-- > 1; value >>= 6) bytes[i] = static_cast<uint8_t>(0x80 | (value & 0x3F));
  bytes[0] = static_cast<uint8_t>(kForms[continuations].lead | value);
  return bytes;
}

inline int continuationsFor(uint32_t value) {
  int k = 0;
  while (value > kForms[k].largest) ++k;
  return k;
}

// The sequence at `at`: its value and its length. `memory` goes on beyond the source.
struct Decoded {
  uint32_t value;
  int32_t length;
};

inline Decoded decodeAt(const std::vector<uint8_t>& memory, size_t at) {
  const uint32_t lead = memory[at];
  if (lead < 0x80) return {lead, 1};
  int k = 0;
  while (k < 6 && (lead & (0x40u >> k)) != 0) ++k;
  if (k == 0 || k == 6) return {lead, 1};
  uint64_t value = lead & kForms[k].payload;
  for (int i = 1; i <= k; ++i) {
    const uint32_t byte = memory[at + static_cast<size_t>(i)];
    if ((byte & 0xC0) != 0x80) return {lead, 1};
    value = value * 64 + (byte & 0x3F);
  }
  if (continuationsFor(static_cast<uint32_t>(value)) != k) return {lead, 1};
  return {static_cast<uint32_t>(value), k + 1};
}

// `memory` holds the source, `length` bytes, and what lies behind it.
inline Converted<uint16_t> referenceToUtf16(const std::vector<uint8_t>& memory, int32_t length,
                                            int32_t capacity, bool bigEndian) {
  Converted<uint16_t> result;
  if (length == 0) return result;
  int64_t left = length;
  int64_t room = capacity;
  while (room != 0) {
    const Decoded next = decodeAt(memory, static_cast<size_t>(result.consumed));
    if (next.value <= 0xFFFF) {
      result.units.push_back(static_cast<uint16_t>(bigEndian ? next.value << 8 : next.value));
      room -= 1;
    } else {
      const auto high = static_cast<uint16_t>(0xD800 | ((next.value - 0x10000) >> 10 & 0x3FF));
      const auto low = static_cast<uint16_t>(0xDC00 | ((next.value - 0x10000) & 0x3FF));
      result.units.push_back(bigEndian ? low : high);
      result.units.push_back(bigEndian ? high : low);
      room -= 2;
    }
    result.consumed += next.length;
    left -= next.length;
    if (left == 0) break;
  }
  return result;
}

inline uint16_t swapped(uint16_t unit) { return static_cast<uint16_t>(unit << 8 | unit >> 8); }

inline Converted<uint8_t> referenceToUtf8(const std::vector<uint16_t>& source, int32_t capacity,
                                          bool bigEndian) {
  Converted<uint8_t> result;
  const auto unit = [&](size_t i) -> uint32_t { return bigEndian ? swapped(source[i]) : source[i]; };
  for (size_t at = 0; at < source.size();) {
    uint32_t value = unit(at);
    size_t taken = 1;
    if (value >= 0xD800 && value <= 0xDBFF && at + 1 < source.size()) {
      const uint32_t next = unit(at + 1);
      if (next >= 0xDC00 && next <= 0xDFFF) {
        value = ((value & 0x3FF) << 10 | (next & 0x3FF)) + 0x10000;
        taken = 2;
      }
    }
    const std::vector<uint8_t> bytes = encodeWith(continuationsFor(value), value);
    if (static_cast<int64_t>(result.units.size() + bytes.size()) > capacity) break;
    result.units.insert(result.units.end(), bytes.begin(), bytes.end());
    at += taken;
    result.consumed = static_cast<int32_t>(at);
  }
  return result;
}

}  // namespace ulk_test
