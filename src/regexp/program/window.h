// What a search of many expressions at once looks for: a few bytes in a row that every match of an expression
// contains, and where from there the match can begin.
#pragma once

#include <cstdint>

namespace ulk {

// Bytes as they are loaded from a folded text (text/folded.h), the first one lowest.
struct WindowKey {
  uint32_t bytes;  // the upper ones 0 where there are fewer than four
  uint32_t more;   // what else must stand there, in the bits of `mask`,
  uint32_t mask;
  int8_t moreAt;  // so many bytes behind the first one
  uint8_t size;   // of the key, 2 to 4 bytes
  uint8_t least;  // a match begins so many bytes before the key, or more
  uint8_t unused;
};
static_assert(sizeof(WindowKey) == 16);

struct Window {
  int32_t numKeys;       // a match contains one of them,
  int32_t most;          // and begins at most so many bytes before it. Negative: as far back as there are
                         // bytes of the set in kWindowSetFrame
  int32_t steps;         // what an attempt elsewhere costs at most,
  int32_t stepsPerByte;  // and for each byte of the longest run of bytes of that set
  int32_t leastSteps;    // what an attempt elsewhere costs where runs have kLeastRun bytes
  bool cutMatters;       // what stands behind the last trailing literal changes what matches before it
  uint8_t shortest;      // bytes of the shortest key
  uint8_t effort;        // of a search for the expression by itself (search/set_scan.h)
  uint8_t unused[9];
};
static_assert(sizeof(Window) == 32);

inline constexpr uint8_t kMaxKeySize = 4;
inline constexpr int32_t kLeastRun = 16;  // that is worth looking for
inline constexpr int32_t kKeysInFrame = 2;
inline constexpr int32_t kMaxWindowKeys = 32;

}  // namespace ulk
