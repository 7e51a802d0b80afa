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

template <class T>
ULK_INLINE void storeAs(void* address, T value) {
  std::memcpy(address, &value, sizeof(T));
}

// One unit at any address.
template <class Unit>
ULK_INLINE Unit loadUnit(const Unit* address) {
  return loadAs<Unit>(address);
}

template <class Unit>
ULK_INLINE void storeUnit(Unit* address, Unit unit) {
  storeAs(address, unit);
}

// Which lanes of a comparison held: sizeof(Unit) bits a lane, the lane at the lowest address in the lowest
// bits.
template <class Unit>
class LaneMask {
 public:
  // No known lanes.
  LaneMask() = default;
  ULK_INLINE explicit LaneMask(uint32_t bits) : bits_(bits) {}

  ULK_INLINE static LaneMask pair(LaneMask lower, LaneMask upper) {
    return LaneMask(lower.bits_ | upper.bits_ << 16);
  }

  ULK_INLINE uint32_t bits() const { return bits_; }
  ULK_INLINE bool any() const { return bits_ != 0; }
  ULK_INLINE int32_t first() const { return std::countr_zero(bits_) / kBits; }
  ULK_INLINE int32_t last() const { return (31 - std::countl_zero(bits_)) / kBits; }
  ULK_INLINE LaneMask without(int32_t lane) const { return LaneMask(bits_ & ~(kOneLane << (lane * kBits))); }
  // Only the lanes below `count`, or from `count` on.
  ULK_INLINE LaneMask below(int32_t count) const { return LaneMask(bits_ & ((1u << (count * kBits)) - 1)); }
  ULK_INLINE LaneMask from(int32_t count) const { return LaneMask(bits_ & ~0u << (count * kBits)); }

 private:
  static constexpr int32_t kBits = sizeof(Unit);
  static constexpr uint32_t kOneLane = (1u << kBits) - 1;
  uint32_t bits_;
};

// Two numbers modulo 2 to the power 32.
class NumberPair {
 public:
  ULK_INLINE NumberPair(uint32_t first, uint32_t second)
      : v_(_mm_set_epi32(0, static_cast<int>(second), 0, static_cast<int>(first))) {}
  // The low halves of the two 64-bit lanes; the high halves may hold anything.
  ULK_INLINE explicit NumberPair(__m128i lanes) : v_(lanes) {}

  ULK_INLINE NumberPair operator+(NumberPair other) const { return NumberPair(_mm_add_epi64(v_, other.v_)); }
  ULK_INLINE NumberPair operator*(uint32_t factor) const {
    return NumberPair(_mm_mul_epu32(v_, NumberPair(factor, factor).v_));
  }
  ULK_INLINE uint32_t first() const { return static_cast<uint32_t>(_mm_cvtsi128_si32(v_)); }
  ULK_INLINE uint32_t second() const {
    return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_unpackhi_epi64(v_, v_)));
  }

 private:
  __m128i v_;
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
    } else if constexpr (sizeof(Unit) == 4) {
      return Vec16(_mm_set1_epi32(static_cast<int>(unit)));
    } else {
      return Vec16(_mm_set1_epi16(static_cast<short>(unit)));
    }
  }
  // Four units, each in a vector of its own.
  ULK_INLINE static void splatFour(const Unit* units, Vec16* vectors) {
    // Each unit twice, or each byte four times, makes 32 bits.
    const __m128i four = sizeof(Unit) == 1 ? _mm_cvtsi32_si128(loadAs<int32_t>(units))
                                           : _mm_loadl_epi64(reinterpret_cast<const __m128i*>(units));
    const __m128i halves = sizeof(Unit) == 1 ? _mm_unpacklo_epi8(four, four) : four;
    const __m128i words = _mm_unpacklo_epi16(halves, halves);
    vectors[0] = Vec16(_mm_shuffle_epi32(words, 0x00));
    vectors[1] = Vec16(_mm_shuffle_epi32(words, 0x55));
    vectors[2] = Vec16(_mm_shuffle_epi32(words, 0xAA));
    vectors[3] = Vec16(_mm_shuffle_epi32(words, 0xFF));
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

  ULK_INLINE void store(Unit* units) const { _mm_storeu_si128(reinterpret_cast<__m128i*>(units), v_); }
  ULK_INLINE void storeAligned(void* block) const { _mm_store_si128(static_cast<__m128i*>(block), v_); }
  // The reverse of join.
  template <int half>
  ULK_INLINE void split(void* low, void* high) const {
    if constexpr (half == 8) {
      _mm_storel_epi64(static_cast<__m128i*>(low), v_);
      _mm_storel_epi64(static_cast<__m128i*>(high), _mm_unpackhi_epi64(v_, v_));
    } else if constexpr (half == 4) {
      storeAs(low, _mm_cvtsi128_si32(v_));
      storeAs(high, _mm_cvtsi128_si32(_mm_srli_si128(v_, 4)));
    } else {
      const int32_t both = _mm_cvtsi128_si32(v_);
      if constexpr (half == 2) {
        storeAs(low, static_cast<uint16_t>(both));
        storeAs(high, static_cast<uint16_t>(both >> 16));
      } else {
        storeAs(low, static_cast<uint8_t>(both));
        storeAs(high, static_cast<uint8_t>(both >> 8));
      }
    }
  }

  // All ones in the lanes where the units are equal, zero in the others.
  ULK_INLINE Vec16 equal(Vec16 other) const {
    if constexpr (sizeof(Unit) == 1) {
      return Vec16(_mm_cmpeq_epi8(v_, other.v_));
    } else {
      return Vec16(_mm_cmpeq_epi16(v_, other.v_));
    }
  }
  ULK_INLINE Vec16 min(Vec16 other) const {
    static_assert(sizeof(Unit) == 1, "there is no such instruction for unsigned 16-bit units");
    return Vec16(_mm_min_epu8(v_, other.v_));
  }
  ULK_INLINE Vec16 max(Vec16 other) const {
    static_assert(sizeof(Unit) == 1, "there is no such instruction for unsigned 16-bit units");
    return Vec16(_mm_max_epu8(v_, other.v_));
  }
  // All ones in the lanes that are greater as signed numbers.
  ULK_INLINE Vec16 greaterSigned(Vec16 other) const {
    if constexpr (sizeof(Unit) == 1) {
      return Vec16(_mm_cmpgt_epi8(v_, other.v_));
    } else {
      return Vec16(_mm_cmpgt_epi16(v_, other.v_));
    }
  }
  // Modulo the width of a unit.
  ULK_INLINE Vec16 operator+(Vec16 other) const {
    if constexpr (sizeof(Unit) == 1) {
      return Vec16(_mm_add_epi8(v_, other.v_));
    } else if constexpr (sizeof(Unit) == 4) {
      return Vec16(_mm_add_epi32(v_, other.v_));
    } else {
      return Vec16(_mm_add_epi16(v_, other.v_));
    }
  }
  ULK_INLINE Vec16 operator-(Vec16 other) const {
    static_assert(sizeof(Unit) == 1, "nobody needs the others");
    return Vec16(_mm_sub_epi8(v_, other.v_));
  }
  ULK_INLINE Vec16 without(Vec16 other) const { return Vec16(_mm_andnot_si128(other.v_, v_)); }
  ULK_INLINE Vec16 minSigned(Vec16 other) const {
    static_assert(sizeof(Unit) == 2, "there is no such instruction for signed bytes");
    return Vec16(_mm_min_epi16(v_, other.v_));
  }
  ULK_INLINE Vec16 operator^(Vec16 other) const { return Vec16(_mm_xor_si128(v_, other.v_)); }
  ULK_INLINE Vec16 operator|(Vec16 other) const { return Vec16(_mm_or_si128(v_, other.v_)); }
  ULK_INLINE Vec16 operator&(Vec16 other) const { return Vec16(_mm_and_si128(v_, other.v_)); }
  // The bits of `other` where `where` has ones, these bits elsewhere.
  ULK_INLINE Vec16 blend(Vec16 where, Vec16 other) const { return *this ^ ((*this ^ other) & where); }

  // Every lane, of 16 or 32 bits, by itself.
  ULK_INLINE Vec16 operator<<(int bits) const {
    static_assert(sizeof(Unit) != 1, "there is no such instruction for bytes");
    return Vec16(sizeof(Unit) == 2 ? _mm_slli_epi16(v_, bits) : _mm_slli_epi32(v_, bits));
  }
  ULK_INLINE Vec16 operator>>(int bits) const {
    static_assert(sizeof(Unit) != 1, "there is no such instruction for bytes");
    return Vec16(sizeof(Unit) == 2 ? _mm_srli_epi16(v_, bits) : _mm_srli_epi32(v_, bits));
  }
  // All bytes to lower or to higher places; in the last form those of each half of the vector by themselves.
  template <int count>
  ULK_INLINE Vec16 bytesDown() const {
    return Vec16(_mm_srli_si128(v_, count));
  }
  template <int count>
  ULK_INLINE Vec16 bytesUp() const {
    return Vec16(_mm_slli_si128(v_, count));
  }
  template <int count>
  ULK_INLINE Vec16 bytesDownInHalves() const {
    return Vec16(_mm_srli_epi64(v_, 8 * count));
  }

  // The lower or the upper lanes of both vectors in turn.
  ULK_INLINE Vec16 interleaveLow(Vec16 other) const {
    return Vec16(sizeof(Unit) == 1 ? _mm_unpacklo_epi8(v_, other.v_) : _mm_unpacklo_epi16(v_, other.v_));
  }
  ULK_INLINE Vec16 interleaveHigh(Vec16 other) const {
    return Vec16(sizeof(Unit) == 1 ? _mm_unpackhi_epi8(v_, other.v_) : _mm_unpackhi_epi16(v_, other.v_));
  }
  // The lower or the upper halves of both vectors.
  ULK_INLINE Vec16 joinLow(Vec16 other) const { return Vec16(_mm_unpacklo_epi64(v_, other.v_)); }
  ULK_INLINE Vec16 joinHigh(Vec16 other) const { return Vec16(_mm_unpackhi_epi64(v_, other.v_)); }
  // Units below 256 as bytes.
  ULK_INLINE static Vec16 narrow(Vec16<uint16_t> low, Vec16<uint16_t> high) {
    return Vec16(_mm_packus_epi16(low.v_, high.v_));
  }
  // The same bytes seen as other lanes.
  template <class Other>
  ULK_INLINE Vec16<Other> as() const {
    return Vec16<Other>(v_);
  }

  // The lower and the upper half of the lanes as two polynomials, each lane the coefficient of one power less
  // than the lane before it: their values at `base`, which is small.
  template <uint32_t base>
  ULK_INLINE NumberPair polynomials() const {
    if constexpr (sizeof(Unit) == 1) {
      return NumberPair(
          joinLanes32<base * base * base * base>(joinLanes16<base * base>(joinLanes8<base>(v_))));
    } else {
      return NumberPair(joinLanes32<base * base>(joinLanes16<base>(v_)));
    }
  }

  ULK_INLINE uint32_t sumOfBytes() const {
    const __m128i halves = _mm_sad_epu8(v_, _mm_setzero_si128());
    return static_cast<uint32_t>(
        _mm_cvtsi128_si32(_mm_add_epi32(halves, _mm_unpackhi_epi64(halves, halves))));
  }

  // Of a comparison's result: the lanes that hold ones.
  ULK_INLINE LaneMask<Unit> mask() const {
    return LaneMask<Unit>(static_cast<uint32_t>(_mm_movemask_epi8(v_)));
  }

 private:
  template <class>
  friend class Vec16;

  ULK_INLINE explicit Vec16(__m128i v) : v_(v) {}

  // Two neighbouring lanes become one of twice the width: the first times `factor`, plus the second.
  template <uint32_t factor>
  ULK_INLINE static __m128i joinLanes8(__m128i v) {
    static_assert(factor * 0xFF + 0xFF <= 0xFFFF);
    const __m128i first = _mm_and_si128(v, _mm_set1_epi16(0xFF));
    return _mm_add_epi16(_mm_mullo_epi16(first, _mm_set1_epi16(factor)), _mm_srli_epi16(v, 8));
  }
  template <uint32_t factor>
  ULK_INLINE static __m128i joinLanes16(__m128i v) {
    static_assert(factor <= 0x7FFF);
    // The instruction multiplies signed lanes, so 0x8000 is taken from each and what that makes put back.
    const __m128i signedLanes = _mm_xor_si128(v, _mm_set1_epi16(-0x8000));
    return _mm_add_epi32(_mm_madd_epi16(signedLanes, _mm_set1_epi32(0x10000 + factor)),
                         _mm_set1_epi32(0x8000 * (factor + 1)));
  }
  template <uint32_t factor>
  ULK_INLINE static __m128i joinLanes32(__m128i v) {
    return _mm_add_epi64(_mm_mul_epu32(v, _mm_set1_epi32(factor)), _mm_srli_epi64(v, 32));
  }

  __m128i v_;
};

// A comparison that holds in the lanes that are not all ones.
template <class Unit>
struct UnsetLanes {
  Vec16<Unit> lanes;

  ULK_INLINE UnsetLanes operator|(UnsetLanes other) const { return {lanes & other.lanes}; }
  ULK_INLINE LaneMask<Unit> mask() const { return LaneMask<Unit>(lanes.mask().bits() ^ 0xFFFF); }
};
template <class Unit>
ULK_INLINE UnsetLanes<Unit> unsetLanes(Vec16<Unit> lanes) {
  return {lanes};
}

// A comparison that holds in the lanes that are not zero: many can be joined before one instruction asks.
template <class Unit>
struct NonzeroLanes {
  Vec16<Unit> lanes;

  ULK_INLINE NonzeroLanes operator|(NonzeroLanes other) const { return {lanes | other.lanes}; }
  ULK_INLINE LaneMask<Unit> mask() const { return unsetLanes(lanes.equal(Vec16<Unit>::zero())).mask(); }
};

// The units from `first` to `last`.
template <class Unit>
class UnitRange {
 public:
  ULK_INLINE UnitRange(Unit first, Unit last)
      : shift_(Vec16<Unit>::splat(static_cast<Unit>(kGreatest - last))),
        below_(Vec16<Unit>::splat(static_cast<Unit>(kGreatest - 1 - (last - first)))) {}

  // All ones in the lanes whose units lie in the range: they are moved to the upper end of the signed
  // numbers, because there are no unsigned comparisons.
  ULK_INLINE Vec16<Unit> contains(Vec16<Unit> units) const { return (units + shift_).greaterSigned(below_); }

 private:
  static constexpr int32_t kGreatest = sizeof(Unit) == 1 ? INT8_MAX : INT16_MAX;
  Vec16<Unit> shift_;
  Vec16<Unit> below_;
};

}  // namespace ulk
