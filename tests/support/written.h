// Memory that a function writes into, between two pages that cannot be touched. It is filled with one byte
// before the call; afterwards everything beside the result must still hold it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "support/guarded.h"

namespace ulk_test {

// Letters as units of either width. Both bytes of a 16-bit unit matter, and its high bit is set.
template <class Unit>
Unit unitOf(char letter) {
  const unsigned c = static_cast<unsigned char>(letter);
  return static_cast<Unit>(sizeof(Unit) == 1 ? c : 0x8000 | c << 7 | c);
}

template <class Unit>
std::vector<Unit> unitsOf(const std::string& letters) {
  std::vector<Unit> units;
  for (const char letter : letters) units.push_back(unitOf<Unit>(letter));
  return units;
}

template <class Unit>
int32_t lengthOf(const std::vector<Unit>& units) {
  return static_cast<int32_t>(units.size());
}

// Where in its memory a string stands.
struct Place {
  enum Side { kAtStart, kAtEnd } side;
  size_t bytes;  // between the string and that guard; an odd number makes an odd address
};

constexpr Place kPlaces[] = {{Place::kAtEnd, 0}, {Place::kAtStart, 0},  {Place::kAtStart, 1},
                             {Place::kAtEnd, 1}, {Place::kAtStart, 38}, {Place::kAtStart, 63}};

template <class Unit>
class WrittenUnits {
 public:
  static constexpr char kUnwritten = '\x5A';

  explicit WrittenUnits(size_t mostUnits) : pages_(mostUnits * sizeof(Unit) + 128) {}

  // Makes room for `count` units.
  Unit* room(size_t count, Place place) {
    std::memset(pages_.begin(), kUnwritten, size());
    const size_t bytes = count * sizeof(Unit);
    place_ =
        place.side == Place::kAtStart ? pages_.begin() + place.bytes : pages_.end() - place.bytes - bytes;
    return static_cast<Unit*>(static_cast<void*>(place_));
  }
  // The same, with units at its start for a function to work on in place.
  Unit* room(size_t count, Place place, const std::vector<Unit>& units) {
    Unit* room = this->room(count, place);
    if (!units.empty()) std::memcpy(place_, units.data(), units.size() * sizeof(Unit));
    return room;
  }

  // Whether exactly these units stand at the start of the room and nothing else was written.
  testing::AssertionResult hold(const std::vector<Unit>& expected) const {
    std::vector<char> memory(size(), kUnwritten);
    if (!expected.empty()) {
      std::memcpy(memory.data() + (place_ - pages_.begin()), expected.data(), expected.size() * sizeof(Unit));
    }
    if (std::memcmp(pages_.begin(), memory.data(), size()) == 0) return testing::AssertionSuccess();
    const char* wrong = std::mismatch(memory.begin(), memory.end(), pages_.begin()).second;
    return testing::AssertionFailure() << "byte " << wrong - place_ << " of the room for " << expected.size()
                                       << " units of " << sizeof(Unit) << " is wrong";
  }

 private:
  size_t size() const { return static_cast<size_t>(pages_.end() - pages_.begin()); }

  GuardedPages pages_;
  char* place_ = nullptr;
};

}  // namespace ulk_test
