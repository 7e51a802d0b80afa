// The part of a string that trimming keeps: what is left without the run of unwanted units at its start, at
// its end, or at both.
#pragma once

#include "kernels/find_any.h"
#include "kernels/unit_lookup.h"

namespace ulk {

struct Part {
  int32_t first;
  int32_t length;
};

enum class Ends { kStart, kEnd, kBoth };

// `edge` tells the first unit, from either end, that is not removed; -1 if there is none.
template <Ends ends, class Unit, class Edge>
ULK_INLINE Part trimmedPart(const Unit* text, int32_t length, Edge edge) {
  int32_t first = 0;
  if constexpr (ends != Ends::kEnd) {
    first = edge(Forward(), text, length);
    if (first < 0) return {0, 0};
  }
  if constexpr (ends != Ends::kStart) length = first + 1 + edge(Backward(), text + first, length - first);
  return {first, length - first};
}

// Most strings have short runs or none, so `looks` units are looked at one by one before `scan` is called for
// the others.
template <class Direction, class Unit, class Removed, class Scan>
ULK_INLINE int32_t findEdge(const Unit* text, int32_t length, int32_t looks, Removed removed, Scan scan) {
  const auto place = [&](int32_t done, int32_t size) ULK_LAMBDA_INLINE {
    return static_cast<int32_t>(
        Direction::place(static_cast<size_t>(length), static_cast<size_t>(done), static_cast<size_t>(size)));
  };
  looks = std::min(looks, length);
  for (int32_t done = 0; done < looks; ++done) {
    if (!removed(loadUnit(text + place(done, 1)))) return place(done, 1);
  }
  const int32_t rest = place(looks, length - looks);
  const int32_t found = scan(text + rest, length - looks);
  return found < 0 ? -1 : rest + found;
}

template <class Unit>
__attribute__((noinline)) Part trimRuns(const Unit* text, int32_t length, Unit unit) {
  return trimmedPart<Ends::kBoth>(text, length,
                                  [=](auto direction, const Unit* from, int32_t count) ULK_LAMBDA_INLINE {
                                    return scanForOther<decltype(direction)>(from, count, unit);
                                  });
}

// One look at the first vector of units and at the last shows where all but long runs end.
template <class Unit>
ULK_INLINE Part trimUnit(const Unit* text, int32_t length, Unit unit) {
  constexpr int32_t kLanes = Vec16<Unit>::kLanes;
  if (length == 0) return {0, 0};
  const Except<UnitProbe<Unit>> probe{{text, Vec16<Unit>::splat(unit)}};
  const size_t count = static_cast<size_t>(length);
  if (length < kLanes) {
    return withShortBlock<Unit>(count, [&](auto block) ULK_LAMBDA_INLINE -> Part {
      const LaneMask<Unit> others = block.used(probe.hits(block).mask());
      if (!others.any()) return {0, 0};
      const int32_t first = block.position(others.first());
      return {first, block.position(others.last()) + 1 - first};
    });
  }
  const FullBlock<Unit> end{count - kLanes};
  const LaneMask<Unit> firstOthers = probe.hits(FullBlock<Unit>{0}).mask();
  const LaneMask<Unit> lastOthers = probe.hits(end).mask();
  if (!firstOthers.any() || !lastOthers.any()) return trimRuns(text, length, unit);
  const int32_t first = firstOthers.first();
  return {first, end.position(lastOthers.last()) + 1 - first};
}

// A large set of bytes, with one table for both ends.
template <Ends ends>
__attribute__((noinline)) Part trimByTable(const uint8_t* text, int32_t length, const uint8_t* set,
                                           int32_t setLength) {
  const UnitFlags<uint8_t> flags(set, setLength);
  return trimmedPart<ends>(text, length,
                           [&](auto direction, const uint8_t* from, int32_t count) ULK_LAMBDA_INLINE {
                             return scanUnits<decltype(direction), Stop::kOther>(
                                 from, count, [&](uint8_t unit) ULK_LAMBDA_INLINE { return flags(unit); });
                           });
}

template <Ends ends, class Unit>
ULK_INLINE Part trimSet(const Unit* text, int32_t length, const Unit* set, int32_t setLength) {
  if (ends == Ends::kBoth && setLength == 1) return trimUnit(text, length, loadUnit(set));
  // The scan for the members of a large set begins with a table, and where the set is larger still, each look
  // takes long.
  const int32_t looks = setLength > kMostVectors && (sizeof(Unit) == 2 || setLength <= 32) ? 12 : 4;
  const bool byTable = sizeof(Unit) == 1 && setLength > kMostVectors;
  bool longRun = false;
  const Part kept = withLookup(set, setLength, [&, looks](const auto& lookup) ULK_LAMBDA_INLINE {
    return trimmedPart<ends>(
        text, length, [&](auto direction, const Unit* from, int32_t count) ULK_LAMBDA_INLINE {
          return findEdge<decltype(direction)>(
              from, count, looks, lookup, [&](const Unit* rest, int32_t restLength) ULK_LAMBDA_INLINE {
                longRun = byTable;
                return byTable
                           ? 0
                           : scanForAny<decltype(direction), Stop::kOther>(rest, restLength, set, setLength);
              });
        });
  });
  if constexpr (sizeof(Unit) == 1) {
    if (longRun) return trimByTable<ends>(text, length, set, setLength);
  }
  return kept;
}

}  // namespace ulk
