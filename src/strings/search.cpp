// The search family: substring, unit and any unit of a set, from either end of the text. Every export checks
// its arguments (pointers, then lengths) and hands over to one kernel, whose answer, -1 for "nowhere", is the
// index stored.
#include "frame/export.h"
#include "kernels/find_any.h"
#include "kernels/find_substring.h"
#include "kernels/find_unit.h"
#include "kernels/terminated.h"

namespace {

using namespace ulk;

// A text searched for another string, or for a set of units.
template <class Unit, class Kernel>
ULK_INLINE ulkStatus search(const Unit* text, int32_t textLength, const Unit* other, int32_t otherLength,
                            int32_t* index, Kernel kernel) {
  if (!text || !other || !index) return ulkErrNullPtr;
  if (textLength < 0 || otherLength < 0) return ulkErrLength;
  *index = kernel(text, textLength, other, otherLength);
  return ulkOk;
}

// Most texts that are searched for a string are short, or have it near their start.
template <class Unit>
ULK_INLINE int32_t find(const Unit* text, int32_t textLength, const Unit* pattern, int32_t patternLength) {
  if (patternLength == 0 || patternLength > textLength) return -1;
  const size_t length = static_cast<size_t>(patternLength);
  const int32_t early = findEarly(text, static_cast<size_t>(textLength) - length + 1, pattern, length);
  return early != kNotYet ? early : findSubstring(text, textLength, pattern, patternLength);
}

template <class Unit, class Kernel>
ULK_INLINE ulkStatus searchUnit(const Unit* text, int32_t length, Unit unit, int32_t* index, Kernel kernel) {
  if (!text || !index) return ulkErrNullPtr;
  if (length < 0) return ulkErrLength;
  *index = kernel(text, length, unit);
  return ulkOk;
}

template <class Unit>
ULK_INLINE ulkStatus searchTerminated(const Unit* text, const Unit* pattern, int32_t* index) {
  if (!text || !pattern) return ulkErrNullPtr;
  return search(text, measure(text), pattern, measure(pattern), index, findSubstring<Unit>);
}

template <class Unit>
ULK_INLINE ulkStatus searchUnitTerminated(const Unit* text, Unit unit, int32_t* index) {
  if (!text || !index) return ulkErrNullPtr;
  *index = findUnitTerminated(text, unit);
  return ulkOk;
}

}  // namespace

ULK_EXPORT ulkStatus ULK_CALL ulksFind_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pFind,
                                          int32_t findLen, int32_t* pIndex) {
  return search(pSrc, srcLen, pFind, findLen, pIndex, find<uint8_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksFind_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pFind,
                                           int32_t findLen, int32_t* pIndex) {
  return search(pSrc, srcLen, pFind, findLen, pIndex, find<uint16_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksFindRev_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pFind,
                                             int32_t findLen, int32_t* pIndex) {
  return search(pSrc, srcLen, pFind, findLen, pIndex, findSubstringRev<uint8_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksFindRev_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pFind,
                                              int32_t findLen, int32_t* pIndex) {
  return search(pSrc, srcLen, pFind, findLen, pIndex, findSubstringRev<uint16_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksFindC_8u(const uint8_t* pSrc, int32_t srcLen, uint8_t find,
                                           int32_t* pIndex) {
  return searchUnit(pSrc, srcLen, find, pIndex, scanForUnit<Forward, uint8_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksFindC_16u(const uint16_t* pSrc, int32_t srcLen, uint16_t find,
                                            int32_t* pIndex) {
  return searchUnit(pSrc, srcLen, find, pIndex, scanForUnit<Forward, uint16_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksFindRevC_8u(const uint8_t* pSrc, int32_t srcLen, uint8_t find,
                                              int32_t* pIndex) {
  return searchUnit(pSrc, srcLen, find, pIndex, scanForUnit<Backward, uint8_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksFindRevC_16u(const uint16_t* pSrc, int32_t srcLen, uint16_t find,
                                               int32_t* pIndex) {
  return searchUnit(pSrc, srcLen, find, pIndex, scanForUnit<Backward, uint16_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksFindCAny_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pSet,
                                              int32_t setLen, int32_t* pIndex) {
  return search(pSrc, srcLen, pSet, setLen, pIndex, findAny<uint8_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksFindCAny_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pSet,
                                               int32_t setLen, int32_t* pIndex) {
  return search(pSrc, srcLen, pSet, setLen, pIndex, findAny<uint16_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksFindRevCAny_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pSet,
                                                 int32_t setLen, int32_t* pIndex) {
  return search(pSrc, srcLen, pSet, setLen, pIndex, findAnyRev<uint8_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksFindRevCAny_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pSet,
                                                  int32_t setLen, int32_t* pIndex) {
  return search(pSrc, srcLen, pSet, setLen, pIndex, findAnyRev<uint16_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksFind_Z_8u(const uint8_t* pSrc, const uint8_t* pFind, int32_t* pIndex) {
  return searchTerminated(pSrc, pFind, pIndex);
}

ULK_EXPORT ulkStatus ULK_CALL ulksFind_Z_16u(const uint16_t* pSrc, const uint16_t* pFind, int32_t* pIndex) {
  return searchTerminated(pSrc, pFind, pIndex);
}

ULK_EXPORT ulkStatus ULK_CALL ulksFindC_Z_8u(const uint8_t* pSrc, uint8_t find, int32_t* pIndex) {
  return searchUnitTerminated(pSrc, find, pIndex);
}

ULK_EXPORT ulkStatus ULK_CALL ulksFindC_Z_16u(const uint16_t* pSrc, uint16_t find, int32_t* pIndex) {
  return searchUnitTerminated(pSrc, find, pIndex);
}
