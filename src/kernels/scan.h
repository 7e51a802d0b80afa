// The walk over candidate positions that all searches share. A search brings a probe: a test of one block of
// positions, which answers with the lanes that may match, and an `accept` that has the last word on a
// position. The walk tests 16 bytes at a time, four blocks to a branch, in either direction, and returns the
// first position accepted.
//
//   count < lanes   one short block, joined from two loads that overlap in the middle
//   otherwise       a block at the start of the walk; blocks from the next 16-byte boundary of the text on,
//   four at a
//                   time and then singly; a last block that ends exactly where the walk ends
//
// The blocks at both ends overlap their neighbours: positions tested twice were rejected the first time. So
// nothing outside the positions of the walk is ever loaded, and no scalar loop is needed.
#pragma once

#include "kernels/vec16.h"

namespace ulk {

// The two directions of a search. `done` positions of the walk lie behind; distances are in units.
struct Forward {
  // Where the block of `size` positions stands that comes after the first `done` of `count`.
  ULK_INLINE static size_t place(size_t /*count*/, size_t done, size_t /*size*/) { return done; }
  template <class Unit>
  ULK_INLINE static int32_t pick(LaneMask<Unit> mask) {
    return mask.first();
  }
  // From the walk's start to the first 16-byte boundary after it.
  template <class Unit>
  ULK_INLINE static size_t toBoundary(const Unit* text, size_t /*count*/) {
    return (16 - reinterpret_cast<uintptr_t>(text) % 16) / sizeof(Unit);
  }
};

struct Backward {
  ULK_INLINE static size_t place(size_t count, size_t done, size_t size) { return count - done - size; }
  template <class Unit>
  ULK_INLINE static int32_t pick(LaneMask<Unit> mask) {
    return mask.last();
  }
  template <class Unit>
  ULK_INLINE static size_t toBoundary(const Unit* text, size_t count) {
    return reinterpret_cast<uintptr_t>(text + count) % 16 / sizeof(Unit);
  }
};

// The positions at .. at + lanes - 1.
template <class Unit>
struct FullBlock {
  size_t at;

  ULK_INLINE Vec16<Unit> load(const Unit* text) const { return Vec16<Unit>::load(text + at); }
  ULK_INLINE int32_t position(int32_t lane) const { return static_cast<int32_t>(at) + lane; }
  ULK_INLINE static LaneMask<Unit> used(LaneMask<Unit> mask) { return mask; }
};

// The positions 0 .. count - 1 when they are fewer than lanes: their first `half` bytes in the low lanes,
// their last `half` bytes in the lanes after these.
template <class Unit, int half>
struct ShortBlock {
  static constexpr int32_t kHalf = half / static_cast<int>(sizeof(Unit));
  size_t count;

  ULK_INLINE Vec16<Unit> load(const Unit* text) const {
    return Vec16<Unit>::template join<half>(text, text + count - kHalf);
  }
  ULK_INLINE int32_t position(int32_t lane) const {
    return lane < kHalf ? lane : lane + static_cast<int32_t>(count) - 2 * kHalf;
  }
  ULK_INLINE static LaneMask<Unit> used(LaneMask<Unit> mask) { return mask.below(2 * kHalf); }
};

// Calls `run` with the short block that covers `count` units, 1 .. lanes - 1.
template <class Unit, class Run>
ULK_INLINE auto withShortBlock(size_t count, Run run) {
  const size_t bytes = count * sizeof(Unit);
  if (bytes >= 8) return run(ShortBlock<Unit, 8>{count});
  if (bytes >= 4) return run(ShortBlock<Unit, 4>{count});
  if constexpr (sizeof(Unit) == 1) {
    if (bytes == 1) return run(ShortBlock<Unit, 1>{count});
  }
  return run(ShortBlock<Unit, 2>{count});
}

// The first position of one block, in the direction of the walk, that the probe accepts; -1 if none.
template <class Direction, class Unit, class Probe, class Block>
ULK_INLINE int32_t scanBlock(Probe& probe, const Block& block) {
  for (LaneMask<Unit> mask = block.used(probe.hits(block).mask()); mask.any();) {
    const int32_t lane = Direction::pick(mask);
    const int32_t position = block.position(lane);
    if (probe.accept(position)) return position;
    mask = mask.without(lane);
  }
  return -1;
}

// The first of the positions 0 .. count - 1 of `text`, in the direction of the walk, that the probe accepts;
// -1 if none.
template <class Direction, class Unit, class Probe>
ULK_INLINE int32_t scan(const Unit* text, size_t count, Probe& probe) {
  constexpr size_t kLanes = Vec16<Unit>::kLanes;
  if (count < kLanes) {
    if (count == 0) return -1;
    return withShortBlock<Unit>(
        count, [&](auto block) ULK_LAMBDA_INLINE { return scanBlock<Direction, Unit>(probe, block); });
  }
  const auto block = [&](size_t done)
                         ULK_LAMBDA_INLINE { return FullBlock<Unit>{Direction::place(count, done, kLanes)}; };

  int32_t found = scanBlock<Direction, Unit>(probe, block(0));
  if (found >= 0) return found;

  // A short walk does not earn back the block that alignment costs.
  size_t done = kLanes;
  if (count > 16 * kLanes) {
    const size_t ahead = Direction::toBoundary(text, count);
    if (ahead != 0) done = ahead;
  }
  for (; count - done >= 4 * kLanes; done += 4 * kLanes) {
    const auto hits = probe.hits(block(done)) | probe.hits(block(done + kLanes)) |
                      probe.hits(block(done + 2 * kLanes)) | probe.hits(block(done + 3 * kLanes));
    if (!hits.mask().any()) continue;
    for (size_t i = 0; i < 4; ++i) {
      found = scanBlock<Direction, Unit>(probe, block(done + i * kLanes));
      if (found >= 0) return found;
    }
  }
  for (; count - done >= kLanes; done += kLanes) {
    found = scanBlock<Direction, Unit>(probe, block(done));
    if (found >= 0) return found;
  }
  return done < count ? scanBlock<Direction, Unit>(probe, block(count - kLanes)) : -1;
}

}  // namespace ulk
