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
ULK_INLINE Part trimUnit(const Unit* text, int32_t length, Unit unit) {
  constexpr int32_t kLooks = 4;
  return trimmedPart<Ends::kBoth>(
      text, length, [=](auto direction, const Unit* from, int32_t count) ULK_LAMBDA_INLINE {
        return findEdge<decltype(direction)>(
            from, count, kLooks, [=](Unit other) ULK_LAMBDA_INLINE { return other == unit; },
            [=](const Unit* rest, int32_t restLength)
                ULK_LAMBDA_INLINE { return scanForOther<decltype(direction)>(rest, restLength, unit); });
      });
}

template <Ends ends, class Unit>
ULK_INLINE Part trimSet(const Unit* text, int32_t length, const Unit* set, int32_t setLength) {
  // The scan for the members of a large set begins with a table.
  const int32_t looks = setLength <= kMostVectors ? 4 : 12;
  return withLookup(set, setLength, [=](const auto& lookup) ULK_LAMBDA_INLINE {
    return trimmedPart<ends>(
        text, length, [&](auto direction, const Unit* from, int32_t count) ULK_LAMBDA_INLINE {
          return findEdge<decltype(direction)>(
              from, count, looks, lookup, [=](const Unit* rest, int32_t restLength) ULK_LAMBDA_INLINE {
                return scanForAny<decltype(direction), Stop::kOther>(rest, restLength, set, setLength);
              });
        });
  });
}

}  // namespace ulk
