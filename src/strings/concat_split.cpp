// Strings joined end to end, with or without a unit between them, and a string split at a unit. Lists are an
// array of pointers beside an array of lengths. The arrays are checked before any work, their elements one by
// one when their turn comes: what was written for earlier elements then stays.
#include "frame/export.h"
#include "kernels/copy_units.h"
#include "kernels/unit_places.h"

namespace {

using namespace ulk;

ULK_INLINE ulkStatus checkElement(const void* pointer, int32_t length) {
  if (!pointer) return ulkErrNullPtr;
  if (length < 0) return ulkErrLength;
  return ulkOk;
}

template <class Unit>
ULK_INLINE ulkStatus concat(const Unit* first, int32_t firstLength, const Unit* second, int32_t secondLength,
                            Unit* destination) {
  if (!first || !second || !destination) return ulkErrNullPtr;
  if (firstLength < 0 || secondLength < 0) return ulkErrLength;
  copyUnits(first, destination, firstLength);
  copyUnits(second, destination + firstLength, secondLength);
  return ulkOk;
}

// `separate(at)` writes what stands between two elements and returns the place after it.
template <class Unit, class Separate>
ULK_INLINE ulkStatus concatList(const Unit* const* sources, const int32_t* lengths, int32_t count,
                                Unit* destination, Separate separate) {
  if (!sources || !lengths || !destination) return ulkErrNullPtr;
  if (count < 1) return ulkErrSize;
  for (int32_t i = 0; i < count; ++i) {
    const ulkStatus status = checkElement(sources[i], lengths[i]);
    if (status != ulkOk) return status;
    if (i > 0) destination = separate(destination);
    copyUnits(sources[i], destination, lengths[i]);
    destination += lengths[i];
  }
  return ulkOk;
}

template <class Unit>
ULK_INLINE ulkStatus concatPlain(const Unit* const* sources, const int32_t* lengths, int32_t count,
                                 Unit* destination) {
  return concatList(sources, lengths, count, destination, [](Unit* at) { return at; });
}

template <class Unit>
ULK_INLINE ulkStatus concatSeparated(const Unit* const* sources, const int32_t* lengths, int32_t count,
                                     Unit delimiter, Unit* destination) {
  return concatList(sources, lengths, count, destination, [delimiter](Unit* at) {
    storeUnit(at, delimiter);
    return at + 1;
  });
}

template <class Unit>
ULK_INLINE ulkStatus split(const Unit* source, int32_t length, Unit delimiter, Unit* const* destinations,
                           int32_t* lengths, int32_t* count) {
  if (!source || !destinations || !lengths || !count) return ulkErrNullPtr;
  if (length < 0) return ulkErrLength;
  if (*count < 1) return ulkErrSize;
  const int32_t slots = *count;
  const size_t size = static_cast<size_t>(length);
  UnitPlaces<Unit> delimiters(source, size, delimiter);
  ulkStatus status = ulkOk;
  int32_t used = 0;
  // Where a delimiter ends the source, no part follows it.
  for (size_t start = 0; start < size; ++used) {
    if (used == slots) return ulkWrnSlotsExhausted;
    const ulkStatus slot = checkElement(destinations[used], lengths[used]);
    if (slot != ulkOk) return slot;
    const size_t end = delimiters.next();
    const int32_t part = static_cast<int32_t>(end - start);
    if (part <= lengths[used]) {
      lengths[used] = part;
    } else {
      status = ulkWrnPartTruncated;
    }
    copyUnits(source + start, destinations[used], lengths[used]);
    start = end + 1;
  }
  *count = used;
  return status;
}

}  // namespace

ULK_EXPORT ulkStatus ULK_CALL ulksConcat_8u(const uint8_t* pSrc1, int32_t len1, const uint8_t* pSrc2,
                                            int32_t len2, uint8_t* pDst) {
  return concat(pSrc1, len1, pSrc2, len2, pDst);
}

ULK_EXPORT ulkStatus ULK_CALL ulksConcat_16u(const uint16_t* pSrc1, int32_t len1, const uint16_t* pSrc2,
                                             int32_t len2, uint16_t* pDst) {
  return concat(pSrc1, len1, pSrc2, len2, pDst);
}

ULK_EXPORT ulkStatus ULK_CALL ulksConcat_8u_D2L(const uint8_t* const* pSrcs, const int32_t* srcLens,
                                                int32_t numSrc, uint8_t* pDst) {
  return concatPlain(pSrcs, srcLens, numSrc, pDst);
}

ULK_EXPORT ulkStatus ULK_CALL ulksConcat_16u_D2L(const uint16_t* const* pSrcs, const int32_t* srcLens,
                                                 int32_t numSrc, uint16_t* pDst) {
  return concatPlain(pSrcs, srcLens, numSrc, pDst);
}

ULK_EXPORT ulkStatus ULK_CALL ulksConcatC_8u_D2L(const uint8_t* const* pSrcs, const int32_t* srcLens,
                                                 int32_t numSrc, uint8_t delim, uint8_t* pDst) {
  return concatSeparated(pSrcs, srcLens, numSrc, delim, pDst);
}

ULK_EXPORT ulkStatus ULK_CALL ulksConcatC_16u_D2L(const uint16_t* const* pSrcs, const int32_t* srcLens,
                                                  int32_t numSrc, uint16_t delim, uint16_t* pDst) {
  return concatSeparated(pSrcs, srcLens, numSrc, delim, pDst);
}

ULK_EXPORT ulkStatus ULK_CALL ulksSplitC_8u_D2L(const uint8_t* pSrc, int32_t srcLen, uint8_t delim,
                                                uint8_t* const* pDsts, int32_t* dstLens, int32_t* pNumDst) {
  return split(pSrc, srcLen, delim, pDsts, dstLens, pNumDst);
}

ULK_EXPORT ulkStatus ULK_CALL ulksSplitC_16u_D2L(const uint16_t* pSrc, int32_t srcLen, uint16_t delim,
                                                 uint16_t* const* pDsts, int32_t* dstLens, int32_t* pNumDst) {
  return split(pSrc, srcLen, delim, pDsts, dstLens, pNumDst);
}
