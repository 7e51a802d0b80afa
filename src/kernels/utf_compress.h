// Closes the gaps that a conversion between encodings leaves in a vector: of eight lanes, those that are kept
// move down over those that are dropped.
//
// A kept lane moves by the number of dropped lanes below it, in two steps: by one lane if that number is odd,
// then by two if its next bit is set. A table tells for every pattern of dropped lanes who moves when. Two
// steps are enough where at most three dropped lanes lie below a kept one, and neither UTF-8 nor UTF-16 as it
// is laid out here ever has more. Lanes above the kept ones hold leftovers.
#pragma once

#include "kernels/vec16.h"

namespace ulk {

template <class Lane>
struct CompressTable {
  struct Row {
    Lane fromNext[8] = {};    // all ones: in the first step this lane takes what the next one holds
    Lane fromSecond[8] = {};  // all ones: in the second step it takes what the second next one holds
  };

  Row rows[256];  // bit i of the index: lane i is dropped
  uint8_t kept[256] = {};

  constexpr CompressTable() {
    for (unsigned dropped = 0; dropped < 256; ++dropped) {
      unsigned below = 0;
      for (unsigned lane = 0; lane < 8; ++lane) {
        if ((dropped >> lane & 1) != 0) {
          ++below;
          continue;
        }
        if ((below & 1) != 0) rows[dropped].fromNext[lane - 1] = static_cast<Lane>(-1);
        if ((below & 2) != 0) rows[dropped].fromSecond[lane - (below & 3)] = static_cast<Lane>(-1);
      }
      kept[dropped] = static_cast<uint8_t>(8 - below);
    }
  }
};

template <class Lane>
alignas(16) inline constexpr CompressTable<Lane> kCompressTable;

template <class Lane>
ULK_INLINE int32_t keptLanes(uint32_t dropped) {
  return kCompressTable<Lane>.kept[dropped];
}

// Eight units.
ULK_INLINE Vec16<uint16_t> compress(Vec16<uint16_t> v, uint32_t dropped) {
  const auto& row = kCompressTable<uint16_t>.rows[dropped];
  v = v.blend(Vec16<uint16_t>::loadAligned(row.fromNext), v.bytesDown<2>());
  return v.blend(Vec16<uint16_t>::loadAligned(row.fromSecond), v.bytesDown<4>());
}

// Eight bytes in each half of the vector, each half by itself.
ULK_INLINE Vec16<uint8_t> compressHalves(Vec16<uint8_t> v, uint32_t droppedLow, uint32_t droppedHigh) {
  const auto low = Vec16<uint8_t>::loadAligned(&kCompressTable<uint8_t>.rows[droppedLow]);
  const auto high = Vec16<uint8_t>::loadAligned(&kCompressTable<uint8_t>.rows[droppedHigh]);
  v = v.blend(low.joinLow(high), v.bytesDownInHalves<1>());
  return v.blend(low.joinHigh(high), v.bytesDownInHalves<2>());
}

}  // namespace ulk
