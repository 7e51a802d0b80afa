// Insertion and removal of a run of units, and replacement of one unit by another. Every export checks its
// arguments (pointers, then lengths and positions) and puts the result together from pieces of its source. To
// work in place is to have a destination equal to the source: what stands before the place is there already.
#include "frame/export.h"
#include "kernels/copy_units.h"
#include "kernels/replace_unit.h"

namespace {

using namespace ulk;

// To a place that begins above theirs and may overlap it: from the last unit to the first.
template <class Unit>
ULK_INLINE void moveUnitsUp(const Unit* source, Unit* destination, int32_t length) {
  if (length > kMostHere<Unit>) return moveMany(source, destination, length);
  constexpr int32_t kFew = 4 * Vec16<Unit>::kLanes;
  for (; length > kFew; length -= kFew) {
    copyFew(source + length - kFew, destination + length - kFew, kFew);
  }
  copyFew(source, destination, length);
}

// Checked arguments. With nothing to insert, the destination does not even get a copy of the source.
template <class Unit>
ULK_INLINE void insertAt(const Unit* source, int32_t length, const Unit* inserted, int32_t insertedLength,
                         Unit* destination, int32_t start) {
  if (insertedLength == 0) return;
  if (destination != source) copyUnits(source, destination, start);
  // Before anything is put into the gap: the destination may be the source.
  moveUnitsUp(source + start, destination + start + insertedLength, length - start);
  copyUnits(inserted, destination + start, insertedLength);
}

template <class Unit>
ULK_INLINE ulkStatus insert(const Unit* source, int32_t length, const Unit* inserted, int32_t insertedLength,
                            Unit* destination, int32_t start) {
  if (!source || !inserted || !destination) return ulkErrNullPtr;
  if (length < 0 || insertedLength < 0 || start < 0 || start > length) return ulkErrLength;
  insertAt(source, length, inserted, insertedLength, destination, start);
  return ulkOk;
}

template <class Unit>
ULK_INLINE ulkStatus insertInPlace(const Unit* inserted, int32_t insertedLength, Unit* string,
                                   int32_t* length, int32_t start) {
  if (!inserted || !string || !length) return ulkErrNullPtr;
  if (insertedLength < 0 || *length < 0 || start < 0 || start > *length) return ulkErrLength;
  insertAt(string, *length, inserted, insertedLength, string, start);
  *length += insertedLength;
  return ulkOk;
}

// Whether a run lies inside its string, also when its end is beyond all 32-bit numbers.
bool isInside(int32_t length, int32_t start, int32_t count) {
  return count >= 0 && start >= 0 && int64_t{start} + count <= length;
}

template <class Unit>
ULK_INLINE ulkStatus remove(const Unit* source, int32_t length, Unit* destination, int32_t start,
                            int32_t count) {
  if (!source || !destination) return ulkErrNullPtr;
  if (!isInside(length, start, count)) return ulkErrLength;
  copyUnits(source, destination, start);
  copyUnits(source + start + count, destination + start, length - start - count);
  return ulkOk;
}

template <class Unit>
ULK_INLINE ulkStatus removeInPlace(Unit* string, int32_t* length, int32_t start, int32_t count) {
  if (!string || !length) return ulkErrNullPtr;
  if (!isInside(*length, start, count)) return ulkErrLength;
  moveUnitsDown(string + start + count, string + start, *length - start - count);
  *length -= count;
  return ulkOk;
}

template <class Unit>
ULK_INLINE ulkStatus replace(const Unit* source, Unit* destination, int32_t length, Unit oldUnit,
                             Unit newUnit) {
  if (!source || !destination) return ulkErrNullPtr;
  if (length < 0) return ulkErrLength;
  replaceUnit(source, destination, length, oldUnit, newUnit);
  return ulkOk;
}

}  // namespace

ULK_EXPORT ulkStatus ULK_CALL ulksInsert_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pInsert,
                                            int32_t insertLen, uint8_t* pDst, int32_t startIndex) {
  return insert(pSrc, srcLen, pInsert, insertLen, pDst, startIndex);
}

ULK_EXPORT ulkStatus ULK_CALL ulksInsert_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pInsert,
                                             int32_t insertLen, uint16_t* pDst, int32_t startIndex) {
  return insert(pSrc, srcLen, pInsert, insertLen, pDst, startIndex);
}

ULK_EXPORT ulkStatus ULK_CALL ulksInsert_8u_I(const uint8_t* pInsert, int32_t insertLen, uint8_t* pSrcDst,
                                              int32_t* pSrcDstLen, int32_t startIndex) {
  return insertInPlace(pInsert, insertLen, pSrcDst, pSrcDstLen, startIndex);
}

ULK_EXPORT ulkStatus ULK_CALL ulksInsert_16u_I(const uint16_t* pInsert, int32_t insertLen, uint16_t* pSrcDst,
                                               int32_t* pSrcDstLen, int32_t startIndex) {
  return insertInPlace(pInsert, insertLen, pSrcDst, pSrcDstLen, startIndex);
}

ULK_EXPORT ulkStatus ULK_CALL ulksRemove_8u(const uint8_t* pSrc, int32_t srcLen, uint8_t* pDst,
                                            int32_t startIndex, int32_t len) {
  return remove(pSrc, srcLen, pDst, startIndex, len);
}

ULK_EXPORT ulkStatus ULK_CALL ulksRemove_16u(const uint16_t* pSrc, int32_t srcLen, uint16_t* pDst,
                                             int32_t startIndex, int32_t len) {
  return remove(pSrc, srcLen, pDst, startIndex, len);
}

ULK_EXPORT ulkStatus ULK_CALL ulksRemove_8u_I(uint8_t* pSrcDst, int32_t* pSrcDstLen, int32_t startIndex,
                                              int32_t len) {
  return removeInPlace(pSrcDst, pSrcDstLen, startIndex, len);
}

ULK_EXPORT ulkStatus ULK_CALL ulksRemove_16u_I(uint16_t* pSrcDst, int32_t* pSrcDstLen, int32_t startIndex,
                                               int32_t len) {
  return removeInPlace(pSrcDst, pSrcDstLen, startIndex, len);
}

ULK_EXPORT ulkStatus ULK_CALL ulksReplaceC_8u(const uint8_t* pSrc, uint8_t* pDst, int32_t len, uint8_t oldVal,
                                              uint8_t newVal) {
  return replace(pSrc, pDst, len, oldVal, newVal);
}

ULK_EXPORT ulkStatus ULK_CALL ulksReplaceC_16u(const uint16_t* pSrc, uint16_t* pDst, int32_t len,
                                               uint16_t oldVal, uint16_t newVal) {
  return replace(pSrc, pDst, len, oldVal, newVal);
}
