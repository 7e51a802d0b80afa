// One 16-byte vector of 8-bit or 16-bit units, and the result of comparing two of them. This file alone names
// the processor's instructions (SSE3 and below); the kernels are written once, over the unit type.
//
// Every load is defined for every address, also for a 16-bit text at an odd one: what only looks like a
// pointer to units is never read as one.
#pragma once

#include <emmintrin.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#define ULK_INLINE inline __attribute__((always_inline))
#define ULK_LAMBDA_INLINE __attribute__((always_inline))

namespace ulk {

template <class T>
ULK_INLINE T loadAs(const void* address) {
  T value;
  std::memcpy(&value, address, sizeof(T));
  return value;
}

// One unit at any address.
template <class Unit>
ULK_INLINE Unit loadUnit(const Unit* address) {
  return loadAs<Unit>(address);
}

// Which lanes of a comparison held: sizeof(Unit) bits a lane, the lane at the lowest address in the lowest
// bits.
template <class Unit>
class LaneMask {
 public:
  ULK_INLINE explicit LaneMask(uint32_t bits) : bits_(bits) {}

  ULK_INLINE static LaneMask pair(LaneMask lower, LaneMask upper) {
    return LaneMask(lower.bits_ | upper.bits_ << 16);
  }

  ULK_INLINE bool any() const { return bits_ != 0; }
  ULK_INLINE int32_t first() const { return std::countr_zero(bits_) / kBits; }
  ULK_INLINE int32_t last() const { return (31 - std::countl_zero(bits_)) / kBits; }
  ULK_INLINE LaneMask without(int32_t lane) const { return LaneMask(bits_ & ~(kOneLane << (lane * kBits))); }
  // Only the lanes below `count`, or from `count` on.
  ULK_INLINE LaneMask below(int32_t count) const { return LaneMask(bits_ & ((1u << (count * kBits)) - 1)); }
  ULK_INLINE LaneMask from(int32_t count) const {
    return LaneMask(bits_ >> (count * kBits) << (count * kBits));
  }

 private:
  static constexpr int32_t kBits = sizeof(Unit);
  static constexpr uint32_t kOneLane = (1u << kBits) - 1;
  uint32_t bits_;
};

template <class Unit>
class Vec16 {
 public:
  static constexpr int32_t kLanes = 16 / sizeof(Unit);

  // Undefined lanes.
  Vec16() = default;
  ULK_INLINE static Vec16 load(const Unit* units) {
    return Vec16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(units)));
  }
  ULK_INLINE static Vec16 loadAligned(const void* block) {
    return Vec16(_mm_load_si128(static_cast<const __m128i*>(block)));
  }
  ULK_INLINE static Vec16 zero() { return Vec16(_mm_setzero_si128()); }
  ULK_INLINE static Vec16 splat(Unit unit) {
    if constexpr (sizeof(Unit) == 1) {
      return Vec16(_mm_set1_epi8(static_cast<char>(unit)));
    } else {
      return Vec16(_mm_set1_epi16(static_cast<short>(unit)));
    }
  }
  // `half` bytes (1, 2, 4 or 8) from each of two places, side by side in the low lanes; the other lanes hold
  // zero.
  template <int half>
  ULK_INLINE static Vec16 join(const void* low, const void* high) {
    if constexpr (half == 8) {
      return Vec16(_mm_unpacklo_epi64(_mm_loadl_epi64(static_cast<const __m128i*>(low)),
                                      _mm_loadl_epi64(static_cast<const __m128i*>(high))));
    } else if constexpr (half == 4) {
      return Vec16(_mm_unpacklo_epi32(_mm_cvtsi32_si128(loadAs<int32_t>(low)),
                                      _mm_cvtsi32_si128(loadAs<int32_t>(high))));
    } else if constexpr (half == 2) {
      return Vec16(_mm_cvtsi32_si128(loadAs<uint16_t>(low) | loadAs<int16_t>(high) * 0x10000));
    } else {
      return Vec16(_mm_cvtsi32_si128(loadAs<uint8_t>(low) | loadAs<uint8_t>(high) * 0x100));
    }
  }

  ULK_INLINE void storeAligned(void* block) const { _mm_store_si128(static_cast<__m128i*>(block), v_); }

  // All ones in the lanes where the units are equal, zero in the others.
  ULK_INLINE Vec16 equal(Vec16 other) const {
    if constexpr (sizeof(Unit) == 1) {
      return Vec16(_mm_cmpeq_epi8(v_, other.v_));
    } else {
      return Vec16(_mm_cmpeq_epi16(v_, other.v_));
    }
  }
  ULK_INLINE Vec16 differs(Vec16 other) const {
    return Vec16(_mm_xor_si128(equal(other).v_, _mm_set1_epi8(-1)));
  }
  ULK_INLINE Vec16 min(Vec16 other) const {
    static_assert(sizeof(Unit) == 1, "there is no such instruction for unsigned 16-bit units");
    return Vec16(_mm_min_epu8(v_, other.v_));
  }
  ULK_INLINE Vec16 operator^(Vec16 other) const { return Vec16(_mm_xor_si128(v_, other.v_)); }
  ULK_INLINE Vec16 operator|(Vec16 other) const { return Vec16(_mm_or_si128(v_, other.v_)); }
  ULK_INLINE Vec16 operator&(Vec16 other) const { return Vec16(_mm_and_si128(v_, other.v_)); }

  // Of a comparison's result: the lanes that hold ones.
  ULK_INLINE LaneMask<Unit> mask() const {
    return LaneMask<Unit>(static_cast<uint32_t>(_mm_movemask_epi8(v_)));
  }

 private:
  ULK_INLINE explicit Vec16(__m128i v) : v_(v) {}
  __m128i v_;
};

}  // namespace ulk
