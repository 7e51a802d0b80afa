// The expression object: how large it is, how it is made, and the two settings that searching reads from it.
#include "regexp/state.h"

#include <cstring>

#include "frame/export.h"
#include "frame/memory.h"
#include "regexp/compiler.h"
#include "ulkcore.h"

using namespace ulk;

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpGetSize(const char* pPattern, int32_t* pSize) {
  if (!pPattern || !pSize) return ulkErrNullPtr;
  const size_t length = std::strlen(pPattern);
  if (length > kMaxPatternLength) return ulkErrLength;
  *pSize = stateSize(length);
  return ulkOk;
}

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpInit(const char* pPattern, const char* pOptions,
                                             ulkRegExpState* pState, int32_t* pErrOffset) {
  return ownRegExpCompile(pPattern, pOptions, pState, pErrOffset);
}

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpInitAlloc(const char* pPattern, const char* pOptions,
                                                  ulkRegExpState** ppState, int32_t* pErrOffset) {
  if (!ppState || !pPattern) return ulkErrNullPtr;
  const size_t length = std::strlen(pPattern);
  // A size that no core library can be asked for is memory that it does not have.
  *ppState =
      static_cast<ulkRegExpState*>(length > kMaxPatternLength ? nullptr : ownMalloc(stateSize(length)));
  if (!*ppState) return ulkErrNullPtr;
  const ulkStatus status = ownRegExpCompile(pPattern, pOptions, *ppState, pErrOffset);
  if (status != ulkOk) {
    ulkFree(*ppState);
    *ppState = nullptr;
  }
  return status;
}

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpSetMatchLimit(int32_t matchLimit, ulkRegExpState* pState) {
  if (!pState) return ulkErrNullPtr;
  if (matchLimit < 0) return ulkErrLength;
  pState->matchLimit = matchLimit;
  return ulkOk;
}

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpSetFormat(int32_t format, ulkRegExpState* pState) {
  if (!pState) return ulkErrNullPtr;
  if (format != kFormatBytes && format != kFormatUtf8) return ulkErrRegExpFormat;
  pState->format = format;
  return ulkOk;
}
