// The trimming family. Every export checks its arguments (pointers, then lengths), asks one kernel which part
// of the string is kept, and copies that.
#include "kernels/trim.h"

#include "frame/export.h"
#include "kernels/copy_units.h"

namespace {

using namespace ulk;

template <class Unit>
ULK_INLINE ulkStatus trim(const Unit* source, int32_t length, Unit unit, Unit* destination,
                          int32_t* destinationLength) {
  if (!source || !destination || !destinationLength) return ulkErrNullPtr;
  if (length < 0) return ulkErrLength;
  const Part kept = trimUnit(source, length, unit);
  *destinationLength = kept.length;
  copyUnits(source + kept.first, destination, kept.length);
  return ulkOk;
}

template <class Unit>
ULK_INLINE ulkStatus trimInPlace(Unit* string, int32_t* length, Unit unit) {
  if (!string || !length) return ulkErrNullPtr;
  if (*length < 0) return ulkErrLength;
  const Part kept = trimUnit(string, *length, unit);
  *length = kept.length;
  if (kept.first != 0) moveUnitsDown(string + kept.first, string, kept.length);
  return ulkOk;
}

template <Ends ends, class Unit>
ULK_INLINE ulkStatus trimAny(const Unit* source, int32_t length, const Unit* set, int32_t setLength,
                             Unit* destination, int32_t* destinationLength) {
  if (!source || !destination || !set || !destinationLength) return ulkErrNullPtr;
  if (length < 0 || setLength < 0) return ulkErrLength;
  const Part kept = trimSet<ends>(source, length, set, setLength);
  copyUnits(source + kept.first, destination, kept.length);
  *destinationLength = kept.length;
  return ulkOk;
}

}  // namespace

ULK_EXPORT ulkStatus ULK_CALL ulksTrimC_8u(const uint8_t* pSrc, int32_t srcLen, uint8_t unit, uint8_t* pDst,
                                           int32_t* pDstLen) {
  return trim(pSrc, srcLen, unit, pDst, pDstLen);
}

ULK_EXPORT ulkStatus ULK_CALL ulksTrimC_16u(const uint16_t* pSrc, int32_t srcLen, uint16_t unit,
                                            uint16_t* pDst, int32_t* pDstLen) {
  return trim(pSrc, srcLen, unit, pDst, pDstLen);
}

ULK_EXPORT ulkStatus ULK_CALL ulksTrimC_8u_I(uint8_t* pSrcDst, int32_t* pSrcDstLen, uint8_t unit) {
  return trimInPlace(pSrcDst, pSrcDstLen, unit);
}

ULK_EXPORT ulkStatus ULK_CALL ulksTrimC_16u_I(uint16_t* pSrcDst, int32_t* pSrcDstLen, uint16_t unit) {
  return trimInPlace(pSrcDst, pSrcDstLen, unit);
}

ULK_EXPORT ulkStatus ULK_CALL ulksTrimCAny_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pSet,
                                              int32_t setLen, uint8_t* pDst, int32_t* pDstLen) {
  return trimAny<Ends::kBoth>(pSrc, srcLen, pSet, setLen, pDst, pDstLen);
}

ULK_EXPORT ulkStatus ULK_CALL ulksTrimCAny_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pSet,
                                               int32_t setLen, uint16_t* pDst, int32_t* pDstLen) {
  return trimAny<Ends::kBoth>(pSrc, srcLen, pSet, setLen, pDst, pDstLen);
}

ULK_EXPORT ulkStatus ULK_CALL ulksTrimStartCAny_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pSet,
                                                   int32_t setLen, uint8_t* pDst, int32_t* pDstLen) {
  return trimAny<Ends::kStart>(pSrc, srcLen, pSet, setLen, pDst, pDstLen);
}

ULK_EXPORT ulkStatus ULK_CALL ulksTrimStartCAny_16u(const uint16_t* pSrc, int32_t srcLen,
                                                    const uint16_t* pSet, int32_t setLen, uint16_t* pDst,
                                                    int32_t* pDstLen) {
  return trimAny<Ends::kStart>(pSrc, srcLen, pSet, setLen, pDst, pDstLen);
}

ULK_EXPORT ulkStatus ULK_CALL ulksTrimEndCAny_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pSet,
                                                 int32_t setLen, uint8_t* pDst, int32_t* pDstLen) {
  return trimAny<Ends::kEnd>(pSrc, srcLen, pSet, setLen, pDst, pDstLen);
}

ULK_EXPORT ulkStatus ULK_CALL ulksTrimEndCAny_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pSet,
                                                  int32_t setLen, uint16_t* pDst, int32_t* pDstLen) {
  return trimAny<Ends::kEnd>(pSrc, srcLen, pSet, setLen, pDst, pDstLen);
}
