// Lengths that can outgrow the text. A lazy repeat of one byte that finally fails leaves its bytes counted in
// the match length. In "1aa", `\w*a*?\d` matches the "1", and reports a length of 4: before "\w*" had given
// back all it took, `a*?` failed after one "a" and after two, and these three are the surplus. So a pattern
// can make lengths as large as it likes. They saturate here, and positions and lengths that are made from
// them are made here as well.
#pragma once

#include <algorithm>
#include <cstdint>

namespace ulk {

inline int32_t saturated(int64_t length) {
  return static_cast<int32_t>(std::clamp<int64_t>(length, INT32_MIN, INT32_MAX));
}

// What the match length counts beyond the distance from the match's start; never negative.
class Surplus {
 public:
  void operator+=(int64_t bytes) {
    if (__builtin_add_overflow(bytes_, bytes, &bytes_)) bytes_ = INT32_MAX;
  }
  void clear() { bytes_ = 0; }

  // The match length where the match reaches over `distance` bytes of text.
  int32_t lengthOver(int64_t distance) const {
    int32_t length;
    return __builtin_add_overflow(bytes_, distance, &length) ? INT32_MAX : length;
  }

 private:
  int32_t bytes_ = 0;
};

// Where a length that counts from `at` on ends: at most one byte behind the text, where every step fails. The
// rest of the length is added to the surplus.
inline const uint8_t* endOfLength(const uint8_t* at, int32_t length, const uint8_t* textEnd,
                                  Surplus& surplus) {
  const int64_t room = textEnd + 1 - at;
  if (length <= room) return at + length;
  surplus += length - std::max<int64_t>(room, 0);
  return room < 0 ? at : textEnd + 1;
}

// Whether a length that counts from `at` on stays in the text.
inline bool staysInText(const uint8_t* at, int32_t length, const uint8_t* textEnd) {
  return length <= textEnd - at;
}

}  // namespace ulk
