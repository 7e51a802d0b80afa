// What a search of many expressions at once looks for: a few bytes in a row that every match of an expression
// contains, and where from there the match can begin.
#pragma once

#include <cstdint>

namespace ulk {

// Bytes of the window, folded (text/folded.h).
struct WindowKey {
  uint32_t bytes;  // as loaded from a text; the last one is 0 where there are three
  uint8_t least;   // a match begins so many bytes before them, or more
  bool three;
  uint16_t unused;
};
static_assert(sizeof(WindowKey) == 8);

struct Window {
  int32_t numKeys;       // 0: there is no window. A match contains one of the keys,
  int32_t most;          // and begins at most so many bytes before it. Negative: as far back as there are
                         // bytes of the set in kWindowSetFrame
  int32_t steps;         // what an attempt elsewhere costs at most,
  int32_t stepsPerByte;  // and for each byte of the longest run of bytes of that set
  bool cutMatters;       // what stands behind the last trailing literal changes what matches before it
  uint8_t unused[15];
};
static_assert(sizeof(Window) == 32);

inline constexpr int32_t kKeysInFrame = 4;
inline constexpr int32_t kMaxWindowKeys = 32;

}  // namespace ulk
