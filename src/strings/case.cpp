// Case conversion: of the 26 letters of ASCII alone (Latin), or of all units that have a mapping. Every
// export checks its arguments (pointers, then the length) and runs one kernel, to which in place means a
// destination equal to the source.
#include "frame/export.h"
#include "kernels/case_full.h"
#include "kernels/case_latin.h"

namespace {

using namespace ulk;

template <class Unit, class Kernel>
ULK_INLINE ulkStatus conversion(const Unit* source, Unit* destination, int32_t length, Kernel kernel) {
  if (!source || !destination) return ulkErrNullPtr;
  if (length < 0) return ulkErrLength;
  kernel(source, destination, length);
  return ulkOk;
}

template <class Case, class Unit>
ULK_INLINE void convertLatin(const Unit* source, Unit* destination, int32_t length) {
  addInRange<Unit>(source, destination, length, Case::kFirstLetter, Case::kLastLetter,
                   static_cast<Unit>(Case::kDistance));
}

}  // namespace

ULK_EXPORT ulkStatus ULK_CALL ulksLowercaseLatin_8u(const uint8_t* pSrc, uint8_t* pDst, int32_t len) {
  return conversion(pSrc, pDst, len, convertLatin<Lowercase, uint8_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksLowercaseLatin_8u_I(uint8_t* pSrcDst, int32_t len) {
  return conversion(pSrcDst, pSrcDst, len, convertLatin<Lowercase, uint8_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksLowercaseLatin_16u(const uint16_t* pSrc, uint16_t* pDst, int32_t len) {
  return conversion(pSrc, pDst, len, convertLatin<Lowercase, uint16_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksLowercaseLatin_16u_I(uint16_t* pSrcDst, int32_t len) {
  return conversion(pSrcDst, pSrcDst, len, convertLatin<Lowercase, uint16_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksUppercaseLatin_8u(const uint8_t* pSrc, uint8_t* pDst, int32_t len) {
  return conversion(pSrc, pDst, len, convertLatin<Uppercase, uint8_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksUppercaseLatin_8u_I(uint8_t* pSrcDst, int32_t len) {
  return conversion(pSrcDst, pSrcDst, len, convertLatin<Uppercase, uint8_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksUppercaseLatin_16u(const uint16_t* pSrc, uint16_t* pDst, int32_t len) {
  return conversion(pSrc, pDst, len, convertLatin<Uppercase, uint16_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksUppercaseLatin_16u_I(uint16_t* pSrcDst, int32_t len) {
  return conversion(pSrcDst, pSrcDst, len, convertLatin<Uppercase, uint16_t>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksLowercase_16u(const uint16_t* pSrc, uint16_t* pDst, int32_t len) {
  return conversion(pSrc, pDst, len, convertCase<Lowercase>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksLowercase_16u_I(uint16_t* pSrcDst, int32_t len) {
  return conversion(pSrcDst, pSrcDst, len, convertCase<Lowercase>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksUppercase_16u(const uint16_t* pSrc, uint16_t* pDst, int32_t len) {
  return conversion(pSrc, pDst, len, convertCase<Uppercase>);
}

ULK_EXPORT ulkStatus ULK_CALL ulksUppercase_16u_I(uint16_t* pSrcDst, int32_t len) {
  return conversion(pSrcDst, pSrcDst, len, convertCase<Uppercase>);
}
