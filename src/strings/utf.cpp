// The UTF conversions. Unlike every other family's, their exports check the pointers alone: lengths are used
// as they come.
#include "frame/export.h"
#include "kernels/utf16_to_utf8.h"
#include "kernels/utf8_to_utf16.h"

namespace {

using namespace ulk;

template <auto native, auto bigEndian, class From, class To>
ULK_INLINE ulkStatus convert(const From* source, int32_t* sourceLength, To* target, int32_t* targetLength,
                             int32_t flag) {
  if (!source || !sourceLength || !target || !targetLength) return ulkErrNullPtr;
  if (flag != 0) {
    bigEndian(source, sourceLength, target, targetLength);
  } else {
    native(source, sourceLength, target, targetLength);
  }
  return ulkOk;
}

}  // namespace

ULK_EXPORT ulkStatus ULK_CALL ulksConvertUTF_8u16u(const uint8_t* pSrc, int32_t* pSrcLen, uint16_t* pDst,
                                                   int32_t* pDstLen, int32_t bigEndian) {
  return convert<utf8ToUtf16<false>, utf8ToUtf16<true>>(pSrc, pSrcLen, pDst, pDstLen, bigEndian);
}

ULK_EXPORT ulkStatus ULK_CALL ulksConvertUTF_16u8u(const uint16_t* pSrc, int32_t* pSrcLen, uint8_t* pDst,
                                                   int32_t* pDstLen, int32_t bigEndian) {
  return convert<utf16ToUtf8<false>, utf16ToUtf8<true>>(pSrc, pSrcLen, pDst, pDstLen, bigEndian);
}
