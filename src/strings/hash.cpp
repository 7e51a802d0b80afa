// The hash functions. Every export checks its arguments (pointers, then the length) and hands over to one
// kernel, whose value is the hash stored.
#include "kernels/hash.h"

#include "frame/export.h"

namespace {

using namespace ulk;

template <class Unit, class Kernel>
ULK_INLINE ulkStatus hash(const Unit* text, int32_t length, uint32_t* value, Kernel kernel) {
  if (!text || !value) return ulkErrNullPtr;
  if (length < 0) return ulkErrLength;
  *value = kernel(text, length);
  return ulkOk;
}

// The value is 0 while the text is read, which shows where the two overlap.
template <class Unit>
ULK_INLINE ulkStatus hashFromZero(const Unit* text, int32_t length, uint32_t* value) {
  return hash(text, length, value, [value](const Unit* units, int32_t count) {
    *value = 0;
    return hashPolynomial(units, count);
  });
}

}  // namespace

ULK_EXPORT ulkStatus ULK_CALL ulksHash_8u32u(const uint8_t* pSrc, int32_t srcLen, uint32_t* pHash) {
  return hash(pSrc, srcLen, pHash, hashShift<uint8_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksHash_16u32u(const uint16_t* pSrc, int32_t srcLen, uint32_t* pHash) {
  return hash(pSrc, srcLen, pHash, hashShift<uint16_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksHashMSCS_8u32u(const uint8_t* pSrc, int32_t srcLen, uint32_t* pHash) {
  return hash(pSrc, srcLen, pHash, hashUntilZero<uint8_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksHashMSCS_16u32u(const uint16_t* pSrc, int32_t srcLen, uint32_t* pHash) {
  return hash(pSrc, srcLen, pHash, hashUntilZero<uint16_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksHashSJ2_8u32u(const uint8_t* pSrc, int32_t srcLen, uint32_t* pHash) {
  return hashFromZero(pSrc, srcLen, pHash);
}

ULK_EXPORT ulkStatus ULK_CALL ulksHashSJ2_16u32u(const uint16_t* pSrc, int32_t srcLen, uint32_t* pHash) {
  return hashFromZero(pSrc, srcLen, pHash);
}
