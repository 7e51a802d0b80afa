// The comparison family: order, equality, and order with case ignored, of two strings of one length. Every
// export checks its arguments (pointers, then the length) and stores what one kernel tells.
#include "kernels/compare.h"

#include "frame/export.h"

namespace {

using namespace ulk;

template <class Unit, class Kernel>
ULK_INLINE ulkStatus comparison(const Unit* left, const Unit* right, int32_t length, int32_t* result,
                                Kernel kernel) {
  if (!left || !right || !result) return ulkErrNullPtr;
  if (length < 0) return ulkErrLength;
  *result = kernel(left, right, length);
  return ulkOk;
}

}  // namespace

ULK_EXPORT ulkStatus ULK_CALL ulksCompare_8u(const uint8_t* pSrc1, const uint8_t* pSrc2, int32_t len,
                                             int32_t* pResult) {
  return comparison(pSrc1, pSrc2, len, pResult, compare<uint8_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksCompare_16u(const uint16_t* pSrc1, const uint16_t* pSrc2, int32_t len,
                                              int32_t* pResult) {
  return comparison(pSrc1, pSrc2, len, pResult, compare<uint16_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksEqual_8u(const uint8_t* pSrc1, const uint8_t* pSrc2, int32_t len,
                                           int32_t* pResult) {
  return comparison(pSrc1, pSrc2, len, pResult, equal<uint8_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksEqual_16u(const uint16_t* pSrc1, const uint16_t* pSrc2, int32_t len,
                                            int32_t* pResult) {
  return comparison(pSrc1, pSrc2, len, pResult, equal<uint16_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksCompareIgnoreCaseLatin_8u(const uint8_t* pSrc1, const uint8_t* pSrc2,
                                                            int32_t len, int32_t* pResult) {
  return comparison(pSrc1, pSrc2, len, pResult, compareIgnoreCaseLatin<uint8_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksCompareIgnoreCaseLatin_16u(const uint16_t* pSrc1, const uint16_t* pSrc2,
                                                             int32_t len, int32_t* pResult) {
  return comparison(pSrc1, pSrc2, len, pResult, compareIgnoreCaseLatin<uint16_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksCompareIgnoreCase_16u(const uint16_t* pSrc1, const uint16_t* pSrc2,
                                                        int32_t len, int32_t* pResult) {
  return comparison(pSrc1, pSrc2, len, pResult, compareIgnoreCase);
}
