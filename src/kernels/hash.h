// The three hash functions, each a fixed recurrence over the units in order, modulo 2 to the power 32.
#pragma once

#include <algorithm>

#include "kernels/vec16.h"

namespace ulk {

// h = (h << 1) ^ unit. Every step pushes one bit of what came before out at the top, so nothing is left of a
// unit that 32 or more others follow.
template <class Unit>
ULK_INLINE uint32_t hashShift(const Unit* text, int32_t length) {
  constexpr int32_t kReach = 32;
  const Unit* end = text + length;
  const Unit* at = end - std::min(length, kReach);
  uint32_t hash = 0;
  // The four units of a step do not wait for the hash before them.
  for (; end - at >= 4; at += 4) {
    const uint32_t four = uint32_t{loadUnit(at)} << 3 ^ uint32_t { loadUnit(at + 1) } << 2 ^
                          uint32_t { loadUnit(at + 2) } << 1 ^ loadUnit(at + 3);
    hash = hash << 4 ^ four;
  }
  for (; at < end; ++at) hash = hash << 1 ^ loadUnit(at);
  return hash;
}

// h = (h * 33) ^ unit, from 5381, up to the first zero unit. Neither step can be moved past the other, so the
// units are taken one by one.
template <class Unit>
ULK_INLINE uint32_t hashUntilZero(const Unit* text, int32_t length) {
  uint32_t hash = 5381;
  for (int32_t i = 0; i < length; ++i) {
    const Unit unit = loadUnit(text + i);
    if (unit == 0) break;
    hash = ((hash << 5) + hash) ^ unit;
  }
  return hash;
}

// 31 to the power `exponent`.
constexpr uint32_t powerOf31(int exponent) {
  uint32_t power = 1;
  while (exponent-- > 0) power *= 31;
  return power;
}

// h = h * 31 + unit: the value at 31 of a polynomial whose coefficients are the units.
template <class Unit>
ULK_INLINE uint32_t hashPolynomial(const Unit* text, int32_t length) {
  constexpr int kLanes = Vec16<Unit>::kLanes;
  const Unit* end = text + length;
  const Unit* at = text;
  uint32_t hash = 0;

  // What does not fill vectors comes first, where nothing has to be multiplied by a power that depends on the
  // length.
  const Unit* vectors = text + length % kLanes;
  for (; vectors - at >= 4; at += 4) {
    hash = hash * powerOf31(4) + loadUnit(at) * powerOf31(3) + loadUnit(at + 1) * powerOf31(2) +
           loadUnit(at + 2) * powerOf31(1) + loadUnit(at + 3);
  }
  for (; at < vectors; ++at) hash = hash * 31 + loadUnit(at);
  if (at == end) return hash;

  // Each half of the vectors makes a sum of its own.
  const auto next = [&](int vector) ULK_LAMBDA_INLINE {
    return Vec16<Unit>::load(at + vector * kLanes).template polynomials<31>();
  };
  NumberPair sums(0, hash);
  if ((end - at) / kLanes % 2 != 0) {
    sums = sums * powerOf31(kLanes) + next(0);
    at += kLanes;
  }
  // A product of the sums is waited for once in two vectors.
  for (; at < end; at += 2 * kLanes) {
    sums = sums * powerOf31(2 * kLanes) + (next(0) * powerOf31(kLanes) + next(1));
  }
  return sums.first() * powerOf31(kLanes / 2) + sums.second();
}

}  // namespace ulk
