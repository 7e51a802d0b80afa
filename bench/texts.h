// Texts of either width, as rows hold them and as the library takes them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace bench {

using Byte = char;
using Wide = char16_t;

inline const uint8_t* units(const Byte* text) { return reinterpret_cast<const uint8_t*>(text); }
inline const uint16_t* units(const Wide* text) { return reinterpret_cast<const uint16_t*>(text); }
inline uint8_t* units(Byte* text) { return reinterpret_cast<uint8_t*>(text); }
inline uint16_t* units(Wide* text) { return reinterpret_cast<uint16_t*>(text); }

// The size of `count` units.
template <class Unit>
size_t bytes(int32_t count) {
  return static_cast<size_t>(count) * sizeof(Unit);
}

// Rows for both widths are written as bytes.
template <class Unit>
std::basic_string<Unit> as(const std::string& text) {
  std::basic_string<Unit> wide;
  for (const char c : text) wide += static_cast<Unit>(static_cast<unsigned char>(c));
  return wide;
}

}  // namespace bench
