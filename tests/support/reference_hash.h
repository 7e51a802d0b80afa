// The hashes by their formulas, one unit after the other.
#pragma once

#include <cstdint>
#include <ostream>
#include <vector>

namespace ulk_test {

struct Hashes {
  uint32_t hash = 0;
  uint32_t hashMSCS = 5381;
  uint32_t hashSJ2 = 0;

  bool operator==(const Hashes&) const = default;
  friend void PrintTo(const Hashes& hashes, std::ostream* out) {
    *out << hashes.hash << ' ' << hashes.hashMSCS << ' ' << hashes.hashSJ2;
  }
};

template <class Unit>
Hashes referenceHashes(const std::vector<Unit>& units) {
  Hashes hashes;
  bool ended = false;
  for (const uint32_t unit : units) {
    hashes.hash = (hashes.hash << 1) ^ unit;
    hashes.hashSJ2 = hashes.hashSJ2 * 31 + unit;
    ended = ended || unit == 0;
    if (!ended) hashes.hashMSCS = (hashes.hashMSCS * 33) ^ unit;
  }
  return hashes;
}

}  // namespace ulk_test
