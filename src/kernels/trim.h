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

// Most strings have short runs or none, so a few units are looked at one by one before a scan is set up.
inline constexpr int32_t kLooks = 4;

template <class Direction, class Unit, class Removed, class Scan>
ULK_INLINE int32_t findEdge(const Unit* text, int32_t length, Removed removed, Scan scan) {
  const int32_t looks = std::min(kLooks, length);
  for (int32_t done = 0; done < looks; ++done) {
    const size_t place = Direction::place(static_cast<size_t>(length), static_cast<size_t>(done), 1);
    if (!removed(loadUnit(text + place))) return static_cast<int32_t>(place);
  }
  return scan();
}

template <class Unit>
ULK_INLINE Part trimUnit(const Unit* text, int32_t length, Unit unit) {
  return trimmedPart<Ends::kBoth>(
      text, length, [=](auto direction, const Unit* from, int32_t count) ULK_LAMBDA_INLINE {
        using Direction = decltype(direction);
        return findEdge<Direction>(
            from, count, [=](Unit other) ULK_LAMBDA_INLINE { return other == unit; },
            [=]() ULK_LAMBDA_INLINE { return scanForOther<Direction>(from, count, unit); });
      });
}

template <Ends ends, class Unit>
ULK_INLINE Part trimSet(const Unit* text, int32_t length, const Unit* set, int32_t setLength) {
  return withLookup(set, setLength, [=](const auto& lookup) ULK_LAMBDA_INLINE {
    return trimmedPart<ends>(text, length,
                             [&](auto direction, const Unit* from, int32_t count) ULK_LAMBDA_INLINE {
                               using Direction = decltype(direction);
                               return findEdge<Direction>(from, count, lookup, [=]() ULK_LAMBDA_INLINE {
                                 return scanForAny<Direction, Stop::kOther>(from, count, set, setLength);
                               });
                             });
  });
}

}  // namespace ulk
