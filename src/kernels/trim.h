// The part of a string that trimming keeps: what is left without the run of unwanted units at its start, at
// its end, or at both.
#pragma once

#include "kernels/find_any.h"

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

// Most strings have short runs or none: the units at the edge are looked at one by one, `looks` of them,
// before `scan` is set up for more.
template <class Direction, class Unit, class Removed, class Scan>
ULK_INLINE int32_t findEdge(const Unit* text, int32_t length, int32_t looks, Removed removed, Scan scan) {
  const auto place = [&](int32_t done) ULK_LAMBDA_INLINE {
    return static_cast<int32_t>(Direction::place(static_cast<size_t>(length), static_cast<size_t>(done), 1));
  };
  for (int32_t done = 0; done < std::min(looks, length); ++done) {
    if (!removed(loadUnit(text + place(done)))) return place(done);
  }
  return scan();
}

template <class Unit>
ULK_INLINE bool isMember(const Unit* set, int32_t setLength, Unit unit) {
  if (setLength > 4) return findUnit(set, setLength, unit) >= 0;
  for (int32_t i = 0; i < setLength; ++i) {
    if (loadUnit(set + i) == unit) return true;
  }
  return false;
}

template <class Unit>
Part trimUnit(const Unit* text, int32_t length, Unit unit) {
  return trimmedPart<Ends::kBoth>(text, length, [=](auto direction, const Unit* from, int32_t count) {
    using Direction = decltype(direction);
    return findEdge<Direction>(
        from, count, 1, [=](Unit other) { return other == unit; },
        [=] { return scanForOther<Direction>(from, count, unit); });
  });
}

template <Ends ends, class Unit>
Part trimSet(const Unit* text, int32_t length, const Unit* set, int32_t setLength) {
  const int32_t looks = setLength <= kMostVectors ? 1 : 8;
  return trimmedPart<ends>(text, length, [=](auto direction, const Unit* from, int32_t count) {
    using Direction = decltype(direction);
    return findEdge<Direction>(
        from, count, looks, [=](Unit unit) { return isMember(set, setLength, unit); },
        [=] { return scanForAny<Direction, Stop::kOther>(from, count, set, setLength); });
  });
}

}  // namespace ulk
