// The expression object: how large it is, how it is made, and the two settings that searching reads from it.
//
// In: a pattern and its options. Out: a state that is ready for searches, or a status and the byte to blame.
#include <cstring>

#include "frame/export.h"
#include "frame/memory.h"
#include "regexp/analysis/analysis.h"
#include "regexp/compile/compiler.h"
#include "regexp/program/state.h"
#include "ulkcore.h"

using namespace ulk;

namespace {

// On success *errOffset is untouched.
ulkStatus initialise(const char* pattern, const char* options, ulkRegExpState& state, int32_t* errOffset) {
  if (!errOffset) return ulkErrNullPtr;
  SpareWords spare;
  const ulkStatus status = compileProgram(pattern, options, state, spare, *errOffset);
  if (status == ulkOk) analyse(state, spare);
  return status;
}

}  // namespace

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpGetSize(const char* pPattern, int32_t* pSize) {
  if (!pPattern || !pSize) return ulkErrNullPtr;
  const size_t length = std::strlen(pPattern);
  if (length > kMaxPatternLength) return ulkErrLength;
  *pSize = stateSize(length);
  return ulkOk;
}

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpInit(const char* pPattern, const char* pOptions,
                                             ulkRegExpState* pState, int32_t* pErrOffset) {
  if (!pPattern || !pState) return ulkErrNullPtr;
  return initialise(pPattern, pOptions, *pState, pErrOffset);
}

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpInitAlloc(const char* pPattern, const char* pOptions,
                                                  ulkRegExpState** ppState, int32_t* pErrOffset) {
  if (!ppState || !pPattern) return ulkErrNullPtr;
  const size_t length = std::strlen(pPattern);
  // A size that no core library can be asked for is memory that it does not have.
  *ppState =
      static_cast<ulkRegExpState*>(length > kMaxPatternLength ? nullptr : ownMalloc(stateSize(length)));
  if (!*ppState) return ulkErrNullPtr;
  const ulkStatus status = initialise(pPattern, pOptions, **ppState, pErrOffset);
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
