// The exported search. In: a text and an expression. Out: a status and find records.
#include "frame/export.h"
#include "regexp/search/search.h"

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpFind_8u(const uint8_t* pSrc, int32_t srcLen,
                                                ulkRegExpState* pRegExpState, ulkRegExpFind* pFind,
                                                int32_t* pNumFind) {
  return ulk::rxFind(pSrc, srcLen, pRegExpState, pFind, pNumFind);
}
