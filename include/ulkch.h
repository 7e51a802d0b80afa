// ulkch: string-processing primitives and regular expressions. (Documentation in progress.)
#ifndef ULKCH_H
#define ULKCH_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(_WIN32)
#define ULK_CALL __cdecl
#if defined(ULKCH_BUILDING)
#define ULK_API __declspec(dllexport)
#elif defined(ULKCH_STATIC)
#define ULK_API
#else
#define ULK_API __declspec(dllimport)
#endif
#else
#define ULK_CALL
#if defined(__GNUC__)
#define ULK_API __attribute__((visibility("default")))
#else
#define ULK_API
#endif
#endif

typedef int32_t ulkStatus;

#define ulkOk 0
#define ulkWrnSlotsExhausted 26
#define ulkWrnPartTruncated 27
#define ulkErrIdNotFound (-2)
#define ulkErrBadId (-5)
#define ulkErrSize (-6)
#define ulkErrRegExpFormat (-7)
#define ulkErrNullPtr (-8)
#define ulkErrSetFull (-9)
#define ulkErrLength (-119)
#define ulkErrRegExpSyntax (-183)
#define ulkErrRegExpClass (-184)
#define ulkErrRegExpBackRef (-185)
#define ulkErrRegExpGroup (-186)
#define ulkErrRegExpQuantifier (-187)
#define ulkErrMatchLimit (-188)
#define ulkErrInvalidState (-189)
#define ulkErrRegExpOptions (-190)

typedef struct ulkLibraryVersion {
  int32_t major;
  int32_t minor;
  int32_t majorBuild;
  int32_t build;
  char targetCpu[4];
  const char* Name;
  const char* Version;
  const char* BuildDate;
} ulkLibraryVersion;

typedef struct ulkRegExpState ulkRegExpState;
typedef struct ulkRegExpMultiState ulkRegExpMultiState;

typedef struct ulkRegExpFind {
  const uint8_t* pFound;
  int32_t lenFound;
} ulkRegExpFind;

ULK_API const ulkLibraryVersion* ULK_CALL ulkchGetLibVersion(void);

ULK_API ulkStatus ULK_CALL ulksFind_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pFind, int32_t findLen, int32_t* pIndex);
ULK_API ulkStatus ULK_CALL ulksFind_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pFind, int32_t findLen, int32_t* pIndex);
ULK_API ulkStatus ULK_CALL ulksFindRev_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pFind, int32_t findLen, int32_t* pIndex);
ULK_API ulkStatus ULK_CALL ulksFindRev_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pFind, int32_t findLen, int32_t* pIndex);
ULK_API ulkStatus ULK_CALL ulksFindC_8u(const uint8_t* pSrc, int32_t srcLen, uint8_t find, int32_t* pIndex);
ULK_API ulkStatus ULK_CALL ulksFindC_16u(const uint16_t* pSrc, int32_t srcLen, uint16_t find, int32_t* pIndex);
ULK_API ulkStatus ULK_CALL ulksFindRevC_8u(const uint8_t* pSrc, int32_t srcLen, uint8_t find, int32_t* pIndex);
ULK_API ulkStatus ULK_CALL ulksFindRevC_16u(const uint16_t* pSrc, int32_t srcLen, uint16_t find, int32_t* pIndex);
ULK_API ulkStatus ULK_CALL ulksFindCAny_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pSet, int32_t setLen, int32_t* pIndex);
ULK_API ulkStatus ULK_CALL ulksFindCAny_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pSet, int32_t setLen, int32_t* pIndex);
ULK_API ulkStatus ULK_CALL ulksFindRevCAny_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pSet, int32_t setLen, int32_t* pIndex);
ULK_API ulkStatus ULK_CALL ulksFindRevCAny_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pSet, int32_t setLen, int32_t* pIndex);
ULK_API ulkStatus ULK_CALL ulksFind_Z_8u(const uint8_t* pSrc, const uint8_t* pFind, int32_t* pIndex);
ULK_API ulkStatus ULK_CALL ulksFind_Z_16u(const uint16_t* pSrc, const uint16_t* pFind, int32_t* pIndex);
ULK_API ulkStatus ULK_CALL ulksFindC_Z_8u(const uint8_t* pSrc, uint8_t find, int32_t* pIndex);
ULK_API ulkStatus ULK_CALL ulksFindC_Z_16u(const uint16_t* pSrc, uint16_t find, int32_t* pIndex);

ULK_API ulkStatus ULK_CALL ulksRegExpGetSize(const char* pPattern, int32_t* pSize);
ULK_API ulkStatus ULK_CALL ulksRegExpInit(const char* pPattern, const char* pOptions, ulkRegExpState* pState, int32_t* pErrOffset);
ULK_API ulkStatus ULK_CALL ulksRegExpInitAlloc(const char* pPattern, const char* pOptions, ulkRegExpState** ppState, int32_t* pErrOffset);
ULK_API void ULK_CALL ulksRegExpFree(ulkRegExpState* pState);
ULK_API void ULK_CALL ulksRegExpMultiFree(ulkRegExpMultiState* pState);
ULK_API ulkStatus ULK_CALL ulksRegExpSetMatchLimit(int32_t matchLimit, ulkRegExpState* pState);
ULK_API ulkStatus ULK_CALL ulksRegExpSetFormat(int32_t format, ulkRegExpState* pState);
ULK_API ulkStatus ULK_CALL ulksRegExpFind_8u(const uint8_t* pSrc, int32_t srcLen, ulkRegExpState* pRegExpState, ulkRegExpFind* pFind, int32_t* pNumFind);

#ifdef __cplusplus
}
#endif

#endif
