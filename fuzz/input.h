// How a fuzz target reads its input: bytes cut into numbers and fields, so that a seed can be written by
// hand.
//
// The first byte separates all that follows: a list of decimal numbers, then one field after the other. In
// the seeds it is a newline, so they begin with an empty line; an input with newlines in its fields takes
// another byte. Numbers and fields that are missing read as 0 and as empty, so every input is a valid one.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "check.h"

namespace ulk_fuzz {

class Input {
 public:
  Input(const uint8_t* data, size_t size) : bytes_(data, data + size), separator_(bytes_.c_str()[0]) {
    bytes_.erase(0, 1);
    numbers_ = field();
  }

  // The next number, of the type of a length or position; whatever stands before it is skipped.
  int32_t number() {
    const size_t start = std::min(numbers_.find_first_of("0123456789"), numbers_.size());
    const size_t end = std::min(numbers_.find_first_not_of("0123456789", start), numbers_.size());
    uint32_t value = 0;
    for (size_t i = start; i < end; ++i) value = value * 10 + static_cast<uint32_t>(numbers_[i] - '0');
    if (start > 0 && numbers_[start - 1] == '-') value = 0 - value;
    numbers_.erase(0, end);
    return static_cast<int32_t>(value);
  }

  // The next number, brought into the range 0 .. most.
  size_t numberTo(size_t most) { return static_cast<uint32_t>(number()) % (most + 1); }

  Shifts shifts() {
    const size_t text = numberTo(kAtEnd);
    const size_t other = numberTo(kAtEnd);
    return {text, other, numberTo(kAtEnd)};
  }

  bool hasNumbers() const { return numbers_.find_first_of("0123456789") != std::string::npos; }

  std::string field() {
    const size_t end = std::min(bytes_.find(separator_), bytes_.size());
    std::string field = bytes_.substr(0, end);
    bytes_.erase(0, end + 1);
    return field;
  }

  bool hasFields() const { return !bytes_.empty(); }

  // All that no field has taken, separators included.
  std::string rest() { return std::exchange(bytes_, {}); }

 private:
  std::string bytes_;
  char separator_;
  std::string numbers_;
};

// A field as a string of units: a byte each, or two bytes each in the machine's order.
template <class Unit>
std::vector<Unit> unitsOf(const std::string& field) {
  std::vector<Unit> units(field.size() / sizeof(Unit));
  if (!units.empty()) std::memcpy(units.data(), field.data(), units.size() * sizeof(Unit));
  return units;
}

}  // namespace ulk_fuzz
