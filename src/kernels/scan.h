// The walk over candidate positions that all searches share, from either end of the text. A search brings a
// probe:
//
//   filter()   a small value whose hits(block) tells which of 16 bytes of positions may match
//   kExact     whether what passes the filter is the answer. Where it is not,
//   accept(p)  has the last word on a position; it may change the filter
//
// The walk returns the first position accepted. It takes
//
//   fewer than 16 bytes   one short block, joined from two loads that overlap in the middle
//   up to 64              two or four blocks, of which the later half ends where the walk ends
//   more                  one block, for what is found soon; then groups of four blocks from the next 16-byte
//   boundary
//                         on, with one branch a group; a last group that ends exactly where the walk ends
//
// Blocks overlap where the count is no multiple of theirs: positions tested twice were rejected the first
// time. So nothing outside the positions of the walk is ever loaded, and no scalar loop is needed.
#pragma once

#include <initializer_list>
#include <type_traits>

#include "kernels/vec16.h"

namespace ulk {

// The two directions of a search. `done` positions of the walk lie behind; distances are in units.
struct Forward {
  static constexpr ptrdiff_t kSign = 1;
  ULK_INLINE static bool before(ptrdiff_t left, ptrdiff_t right) { return left < right; }
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
  static constexpr ptrdiff_t kSign = -1;
  ULK_INLINE static bool before(ptrdiff_t left, ptrdiff_t right) { return left > right; }
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
  ULK_INLINE void store(Unit* text, Vec16<Unit> units) const {
    units.template split<half>(text, text + count - kHalf);
  }
  ULK_INLINE int32_t position(int32_t lane) const {
    return lane < kHalf ? lane : lane + static_cast<int32_t>(count) - 2 * kHalf;
  }
  ULK_INLINE static LaneMask<Unit> used(LaneMask<Unit> mask) { return mask.below(2 * kHalf); }
};

// An exact probe turned round: what it would pass over is the answer.
template <class Probe>
struct Except {
  static_assert(Probe::kExact);
  static constexpr bool kExact = true;
  Probe probe;

  template <class Block>
  ULK_INLINE auto hits(const Block& block) const {
    return unsetLanes(probe.hits(block));
  }
  ULK_INLINE auto filter() const {
    return Except<std::remove_cvref_t<decltype(probe.filter())>>{probe.filter()};
  }
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

// The first position of a block, in the direction of the walk, that passed the filter and is accepted; -1 if
// none.
template <class Direction, class Unit, class Probe, class Block>
ULK_INLINE int32_t settle(Probe& probe, LaneMask<Unit> mask, const Block& block) {
  for (; mask.any(); mask = mask.without(Direction::pick(mask))) {
    const int32_t position = block.position(Direction::pick(mask));
    if (probe.accept(position)) return position;
  }
  return -1;
}

template <class Direction, class Unit, class Probe, class Block>
ULK_INLINE int32_t scanBlock(Probe& probe, const Block& block) {
  const LaneMask<Unit> mask = block.used(probe.filter().hits(block).mask());
  if (!mask.any()) return -1;
  if constexpr (Probe::kExact) {
    return block.position(Direction::pick(mask));
  } else {
    return settle<Direction>(probe, mask, block);
  }
}

// Two neighbouring blocks as one of twice as many lanes.
template <class Unit, class Filter>
ULK_INLINE LaneMask<Unit> pairMask(const Filter& filter, size_t at) {
  constexpr size_t kLanes = Vec16<Unit>::kLanes;
  return LaneMask<Unit>::pair(filter.hits(FullBlock<Unit>{at}).mask(),
                              filter.hits(FullBlock<Unit>{at + kLanes}).mask());
}

// Tests two pairs of blocks once more, to accept or reject what passes. Apart from the walk, which needs all
// registers for its loop.
template <class Direction, class Unit, class Probe>
__attribute__((noinline)) int32_t settlePairs(Probe& probe, size_t near, size_t far) {
  for (const size_t at : {near, far}) {
    const LaneMask<Unit> mask = pairMask<Unit>(probe.filter(), at);
    const int32_t found = settle<Direction>(probe, mask, FullBlock<Unit>{at});
    if (found >= 0) return found;
  }
  return -1;
}

// Two pairs of neighbouring blocks, the pair at `near` before the one at `far` in the direction of the walk.
template <class Direction, class Unit, class Probe, class Filter>
ULK_INLINE int32_t scanPairs(Probe& probe, Filter& filter, size_t near, size_t far) {
  constexpr size_t kLanes = Vec16<Unit>::kLanes;
  const auto near0 = filter.hits(FullBlock<Unit>{near});
  const auto near1 = filter.hits(FullBlock<Unit>{near + kLanes});
  const auto far0 = filter.hits(FullBlock<Unit>{far});
  const auto far1 = filter.hits(FullBlock<Unit>{far + kLanes});
  if (!((near0 | near1) | (far0 | far1)).mask().any()) return -1;

  if constexpr (Probe::kExact) {
    const auto mask = LaneMask<Unit>::pair(near0.mask(), near1.mask());
    if (mask.any()) return FullBlock<Unit>{near}.position(Direction::pick(mask));
    return FullBlock<Unit>{far}.position(Direction::pick(LaneMask<Unit>::pair(far0.mask(), far1.mask())));
  } else {
    const int32_t found = settlePairs<Direction, Unit>(probe, near, far);
    filter = probe.filter();
    return found;
  }
}

// Fewer positions than fill a block.
template <class Direction, class Unit, class Probe>
ULK_INLINE int32_t scanShort(size_t count, Probe& probe) {
  if (count == 0) return -1;
  return withShortBlock<Unit>(
      count, [&](auto block) ULK_LAMBDA_INLINE { return scanBlock<Direction, Unit>(probe, block); });
}

// The first of the positions 0 .. count - 1 of `text`, in the direction of the walk, that the probe accepts;
// -1 if none.
template <class Direction, class Unit, class Probe>
ULK_INLINE int32_t scan(const Unit* text, size_t count, Probe& probe) {
  constexpr size_t kLanes = Vec16<Unit>::kLanes;
  constexpr size_t kPair = 2 * kLanes;
  constexpr size_t kGroup = 2 * kPair;
  if (count < kLanes) return scanShort<Direction, Unit>(count, probe);
  const auto block = [&](size_t done)
                         ULK_LAMBDA_INLINE { return FullBlock<Unit>{Direction::place(count, done, kLanes)}; };
  if (count <= kPair) {
    const int32_t found = scanBlock<Direction, Unit>(probe, block(0));
    return found >= 0 ? found : scanBlock<Direction, Unit>(probe, block(count - kLanes));
  }
  auto filter = probe.filter();
  if (count <= kGroup) {
    return scanPairs<Direction, Unit>(probe, filter, Direction::place(count, 0, kPair),
                                      Direction::place(count, count - kPair, kPair));
  }
  int32_t found = scanBlock<Direction, Unit>(probe, block(0));
  if (found >= 0) return found;

  const auto group = [&](ptrdiff_t at) ULK_LAMBDA_INLINE {
    return scanPairs<Direction, Unit>(probe, filter,
                                      static_cast<size_t>(at) + Direction::place(kGroup, 0, kPair),
                                      static_cast<size_t>(at) + Direction::place(kGroup, kPair, kPair));
  };
  const auto groupAt = [&](size_t done) ULK_LAMBDA_INLINE {
    return static_cast<ptrdiff_t>(Direction::place(count, done, kGroup));
  };
  const ptrdiff_t last = groupAt(count - kGroup);
  for (ptrdiff_t at = groupAt(Direction::toBoundary(text, count)); Direction::before(at, last);
       at += Direction::kSign * static_cast<ptrdiff_t>(kGroup)) {
    found = group(at);
    if (found >= 0) return found;
  }
  return group(last);
}

// The same walk one block at a time: for what is found soon, and for probes that have so much to do with each
// block that groups would gain nothing.
template <class Direction, class Unit, class Probe>
ULK_INLINE int32_t scanBlocks(size_t count, Probe& probe) {
  constexpr size_t kLanes = Vec16<Unit>::kLanes;
  if (count < kLanes) return scanShort<Direction, Unit>(count, probe);
  const auto block = [&](size_t done) ULK_LAMBDA_INLINE {
    return scanBlock<Direction, Unit>(probe, FullBlock<Unit>{Direction::place(count, done, kLanes)});
  };
  const size_t last = count - kLanes;
  for (size_t done = 0; done < last; done += kLanes) {
    const int32_t found = block(done);
    if (found >= 0) return found;
  }
  return block(last);
}

}  // namespace ulk
