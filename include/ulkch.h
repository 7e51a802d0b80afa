/// @file
/// ulkch: string-processing primitives and regular expressions.
///
/// Every operation is a plain function: it checks its arguments, works on memory that the caller provides and
/// returns a status. There is nothing to initialise and nothing to configure.
///
/// **Strings** are a pointer to the first unit and a signed length counted in units: bytes for `_8u`
/// functions, 16-bit units for `_16u` functions. A length of 0 is valid, the pointer must not be null even
/// then. No terminator is read or written, except by the `_Z` functions and for patterns and options, which
/// are zero-terminated. A 16-bit string may stand at an odd address. Strings that are only read may overlap
/// or be the same.
///
/// **Units** are unsigned numbers and compared as such, without case folding or normalisation unless a
/// function says otherwise.
///
/// **Names** read `ulks<Operation>[<Variant>]_<type>[_<form>]`: `C` one unit, `CAny` any unit of a set, `Rev`
/// a search from the end, `_Z` zero-terminated inputs, `_I` in place, `_D2L` lists of strings.
///
/// **Checks** come before anything is written and stop at the first failure: pointers in the order of the
/// arguments (#ulkErrNullPtr), then lengths (#ulkErrLength), then counts, capacities and sizes (#ulkErrSize),
/// then the validity of a state (#ulkErrInvalidState). A refused call has written nothing. Departures are
/// stated with the function.
///
/// **Threads**: every function may be called from any thread at any time, as long as no two calls running at
/// the same time share memory that one of them writes. A search writes to its compiled expression.
///
/// **Memory**: only functions with `Alloc` in their names allocate. Nothing keeps a pointer to the caller's
/// memory after the call, except where a function says so.
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

/// @defgroup status Status codes
/// @{

/// What a function returns: 0 is success, a negative value an error, a positive value a warning, with which
/// the operation was completed. One of the constants of #ULK_STATUS_LIST.
typedef int32_t ulkStatus;

// clang-format off
/// All status codes, `X(name, value, meaning)` for each; programs can use the list to make tables of their
/// own.
#define ULK_STATUS_LIST(X)                                                                                  \
  X(ulkOk, 0, "success")                                                                                    \
  X(ulkWrnSlotsExhausted, 26, "the source held more substrings than the destination has slots")             \
  X(ulkWrnPartTruncated, 27, "a substring was longer than its destination slot and was cut")                \
  X(ulkErrIdNotFound, -2, "no member of the pattern set has this id")                                       \
  X(ulkErrBadId, -5, "0 is not a valid pattern id")                                                         \
  X(ulkErrSize, -6, "a count, capacity or size is below its minimum")                                       \
  X(ulkErrRegExpFormat, -7, "the text format is neither 0 nor 1")                                           \
  X(ulkErrNullPtr, -8, "a required pointer is null, or memory could not be allocated")                      \
  X(ulkErrSetFull, -9, "the pattern set has no free slot")                                                  \
  X(ulkErrLength, -119, "a length is negative, or a position and length lie outside the string")            \
  X(ulkErrRegExpSyntax, -183, "bad escape or property in the pattern")                                      \
  X(ulkErrRegExpClass, -184, "bad character class in the pattern")                                          \
  X(ulkErrRegExpBackRef, -185, "reference to group 0 or to a group that does not exist, or a malformed one")\
  X(ulkErrRegExpGroup, -186, "bad parenthesis or group in the pattern")                                     \
  X(ulkErrRegExpQuantifier, -187, "bad quantifier in the pattern")                                          \
  X(ulkErrMatchLimit, -188, "the match limit ran out during the search")                                    \
  X(ulkErrInvalidState, -189, "the state does not hold a compiled expression")                              \
  X(ulkErrRegExpOptions, -190, "bad letter in the options string")
// clang-format on

#define ULK_STATUS_CONSTANT(name, value, meaning) name = value,
enum { ULK_STATUS_LIST(ULK_STATUS_CONSTANT) };
#undef ULK_STATUS_CONSTANT

/// @}
/// @defgroup version Version
///
/// ```c
/// assert(ulkchGetLibVersion()->major == 6);
/// ```
/// @{

/// The version of the interface. All its values are fixed: programs compare them, so every build of this
/// interface answers the same ones, and they do not tell one build or release from another.
typedef struct ulkLibraryVersion {
  int32_t major;          ///< the 6 of version 6.1
  int32_t minor;          ///< the 1 of version 6.1
  int32_t majorBuild;     ///< 137, whatever the build
  int32_t build;          ///< 742, whatever the build
  char targetCpu[4];      ///< the processor variant that this build is tuned for, padded with zero bytes
  const char* Name;       ///< file name of the Windows library, on every system
  const char* Version;    ///< the version as text
  const char* BuildDate;  ///< the date that belongs to the version, not that of the build
} ulkLibraryVersion;

/// The version of this library.
/// @return a constant record, the same one on every call; never null. The caller does not release it.
ULK_API const ulkLibraryVersion* ULK_CALL ulkchGetLibVersion(void);

/// @}
/// @defgroup search Search
///
/// Where something stands in a text. The answer is an index: the position, in units from the start of the
/// text, where the match begins; -1 when there is none, which is no error. Each function exists for 8-bit and
/// for 16-bit units. The time is linear in the lengths, whatever the strings hold. Nothing outside the given
/// strings is read.
///
/// ```c
/// const uint8_t text[] = "colour by colour";
/// int32_t at;
/// ulksFind_8u(text, 16, (const uint8_t*)"by", 2, &at);
/// assert(at == 7);
/// ulksFindRevC_8u(text, 16, 'c', &at);
/// assert(at == 10);
/// ```
/// @{

/// Finds the first occurrence of a substring. Occurrences may overlap. An empty `pFind` is never found, not
/// even in an empty text.
/// @param[in]  pSrc     the text
/// @param[in]  srcLen   its length in units
/// @param[in]  pFind    the substring
/// @param[in]  findLen  its length in units
/// @param[out] pIndex   lowest position p such that the units p .. p + findLen - 1 of the text equal `pFind`;
///                      -1 if none
/// @retval ulkOk          `*pIndex` is set
/// @retval ulkErrNullPtr  `pSrc`, `pFind` or `pIndex` is null
/// @retval ulkErrLength   `srcLen` or `findLen` is negative
ULK_API ulkStatus ULK_CALL ulksFind_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pFind,
                                       int32_t findLen, int32_t* pIndex);
/// @copydoc ulksFind_8u
ULK_API ulkStatus ULK_CALL ulksFind_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pFind,
                                        int32_t findLen, int32_t* pIndex);

/// Finds the last occurrence of a substring: as ulksFind_8u(), but the highest position. The whole occurrence
/// lies inside the text: two equal units are found at 1 in a text of three.
/// @param[in]  pSrc     the text
/// @param[in]  srcLen   its length in units
/// @param[in]  pFind    the substring
/// @param[in]  findLen  its length in units
/// @param[out] pIndex   highest position where `pFind` stands; -1 if none
/// @retval ulkOk          `*pIndex` is set
/// @retval ulkErrNullPtr  `pSrc`, `pFind` or `pIndex` is null
/// @retval ulkErrLength   `srcLen` or `findLen` is negative
ULK_API ulkStatus ULK_CALL ulksFindRev_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pFind,
                                          int32_t findLen, int32_t* pIndex);
/// @copydoc ulksFindRev_8u
ULK_API ulkStatus ULK_CALL ulksFindRev_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pFind,
                                           int32_t findLen, int32_t* pIndex);

/// Finds the first place of one unit.
/// @param[in]  pSrc    the text
/// @param[in]  srcLen  its length in units
/// @param[in]  find    the unit
/// @param[out] pIndex  lowest position of `find`; -1 if none
/// @retval ulkOk          `*pIndex` is set
/// @retval ulkErrNullPtr  `pSrc` or `pIndex` is null
/// @retval ulkErrLength   `srcLen` is negative
ULK_API ulkStatus ULK_CALL ulksFindC_8u(const uint8_t* pSrc, int32_t srcLen, uint8_t find, int32_t* pIndex);
/// @copydoc ulksFindC_8u
ULK_API ulkStatus ULK_CALL ulksFindC_16u(const uint16_t* pSrc, int32_t srcLen, uint16_t find,
                                         int32_t* pIndex);

/// Finds the last place of one unit.
/// @param[in]  pSrc    the text
/// @param[in]  srcLen  its length in units
/// @param[in]  find    the unit
/// @param[out] pIndex  highest position of `find`; -1 if none
/// @retval ulkOk          `*pIndex` is set
/// @retval ulkErrNullPtr  `pSrc` or `pIndex` is null
/// @retval ulkErrLength   `srcLen` is negative
ULK_API ulkStatus ULK_CALL ulksFindRevC_8u(const uint8_t* pSrc, int32_t srcLen, uint8_t find,
                                           int32_t* pIndex);
/// @copydoc ulksFindRevC_8u
ULK_API ulkStatus ULK_CALL ulksFindRevC_16u(const uint16_t* pSrc, int32_t srcLen, uint16_t find,
                                            int32_t* pIndex);

/// Finds the first unit that belongs to a set.
/// @param[in]  pSrc    the text
/// @param[in]  srcLen  its length in units
/// @param[in]  pSet    the members of the set, in any order; repeated members change nothing
/// @param[in]  setLen  their number; an empty set is never found
/// @param[out] pIndex  lowest position whose unit equals any member; -1 if none
/// @retval ulkOk          `*pIndex` is set
/// @retval ulkErrNullPtr  `pSrc`, `pSet` or `pIndex` is null
/// @retval ulkErrLength   `srcLen` or `setLen` is negative
ULK_API ulkStatus ULK_CALL ulksFindCAny_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pSet,
                                           int32_t setLen, int32_t* pIndex);
/// @copydoc ulksFindCAny_8u
ULK_API ulkStatus ULK_CALL ulksFindCAny_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pSet,
                                            int32_t setLen, int32_t* pIndex);

/// Finds the last unit that belongs to a set.
/// @param[in]  pSrc    the text
/// @param[in]  srcLen  its length in units
/// @param[in]  pSet    the members of the set, in any order; repeated members change nothing
/// @param[in]  setLen  their number; an empty set is never found
/// @param[out] pIndex  highest position whose unit equals any member; -1 if none
/// @retval ulkOk          `*pIndex` is set
/// @retval ulkErrNullPtr  `pSrc`, `pSet` or `pIndex` is null
/// @retval ulkErrLength   `srcLen` or `setLen` is negative
ULK_API ulkStatus ULK_CALL ulksFindRevCAny_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pSet,
                                              int32_t setLen, int32_t* pIndex);
/// @copydoc ulksFindRevCAny_8u
ULK_API ulkStatus ULK_CALL ulksFindRevCAny_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pSet,
                                               int32_t setLen, int32_t* pIndex);

/// Finds the first occurrence of a zero-terminated substring in a zero-terminated text, as ulksFind_8u()
/// does; the terminators take no part.
/// @param[in]  pSrc    the text, up to its first zero unit
/// @param[in]  pFind   the substring, up to its first zero unit
/// @param[out] pIndex  lowest position where `pFind` stands; -1 if none
/// @retval ulkOk          `*pIndex` is set
/// @retval ulkErrNullPtr  `pSrc`, `pFind` or `pIndex` is null
ULK_API ulkStatus ULK_CALL ulksFind_Z_8u(const uint8_t* pSrc, const uint8_t* pFind, int32_t* pIndex);
/// @copydoc ulksFind_Z_8u
ULK_API ulkStatus ULK_CALL ulksFind_Z_16u(const uint16_t* pSrc, const uint16_t* pFind, int32_t* pIndex);

/// Finds the first place of one unit in a zero-terminated text. A `find` of 0 is never found.
/// @param[in]  pSrc    the text, up to its first zero unit
/// @param[in]  find    the unit
/// @param[out] pIndex  lowest position of `find`; -1 if none
/// @retval ulkOk          `*pIndex` is set
/// @retval ulkErrNullPtr  `pSrc` or `pIndex` is null
ULK_API ulkStatus ULK_CALL ulksFindC_Z_8u(const uint8_t* pSrc, uint8_t find, int32_t* pIndex);
/// @copydoc ulksFindC_Z_8u
ULK_API ulkStatus ULK_CALL ulksFindC_Z_16u(const uint16_t* pSrc, uint16_t find, int32_t* pIndex);

/// @}
/// @defgroup comparison Comparison
///
/// Two strings of one length, unit by unit. Strings of different lengths are compared over the shorter
/// length; where that finds no difference, the lengths decide, which is the caller's part. The answer of the
/// ordering functions is the exact difference of the first two units that differ, not just its sign. Nothing
/// outside the given strings is read.
///
/// ```c
/// int32_t difference;
/// ulksCompare_8u((const uint8_t*)"abc", (const uint8_t*)"abz", 3, &difference);
/// assert(difference == 'c' - 'z');
/// ulksCompareIgnoreCaseLatin_8u((const uint8_t*)"Abc", (const uint8_t*)"aBC", 3, &difference);
/// assert(difference == 0);
/// ```
/// @{

/// Compares two strings.
/// @param[in]  pSrc1    the first string
/// @param[in]  pSrc2    the second string
/// @param[in]  len      the length of each in units
/// @param[out] pResult  unit of the first string minus unit of the second, as unsigned numbers, where the
///                      strings differ first: -255 to 255 for 8-bit, -65535 to 65535 for 16-bit units; 0 if
///                      they are equal, also when empty
/// @retval ulkOk          `*pResult` is set
/// @retval ulkErrNullPtr  `pSrc1`, `pSrc2` or `pResult` is null
/// @retval ulkErrLength   `len` is negative
ULK_API ulkStatus ULK_CALL ulksCompare_8u(const uint8_t* pSrc1, const uint8_t* pSrc2, int32_t len,
                                          int32_t* pResult);
/// @copydoc ulksCompare_8u
ULK_API ulkStatus ULK_CALL ulksCompare_16u(const uint16_t* pSrc1, const uint16_t* pSrc2, int32_t len,
                                           int32_t* pResult);

/// Tells whether two strings are equal.
/// @param[in]  pSrc1    the first string
/// @param[in]  pSrc2    the second string
/// @param[in]  len      the length of each in units
/// @param[out] pResult  1 if all units are equal, also when there are none; 0 otherwise
/// @retval ulkOk          `*pResult` is set
/// @retval ulkErrNullPtr  `pSrc1`, `pSrc2` or `pResult` is null
/// @retval ulkErrLength   `len` is negative
ULK_API ulkStatus ULK_CALL ulksEqual_8u(const uint8_t* pSrc1, const uint8_t* pSrc2, int32_t len,
                                        int32_t* pResult);
/// @copydoc ulksEqual_8u
ULK_API ulkStatus ULK_CALL ulksEqual_16u(const uint16_t* pSrc1, const uint16_t* pSrc2, int32_t len,
                                         int32_t* pResult);

/// Compares two strings as if "A" to "Z" were "a" to "z". No other unit is changed for the comparison, so the
/// six units between "Z" and "a" come before all letters, and letters beyond ASCII have case.
/// @param[in]  pSrc1    the first string
/// @param[in]  pSrc2    the second string
/// @param[in]  len      the length of each in units
/// @param[out] pResult  lowercase unit of the first string minus that of the second where these differ first;
///                      0 if they nowhere do
/// @retval ulkOk          `*pResult` is set
/// @retval ulkErrNullPtr  `pSrc1`, `pSrc2` or `pResult` is null
/// @retval ulkErrLength   `len` is negative
ULK_API ulkStatus ULK_CALL ulksCompareIgnoreCaseLatin_8u(const uint8_t* pSrc1, const uint8_t* pSrc2,
                                                         int32_t len, int32_t* pResult);
/// @copydoc ulksCompareIgnoreCaseLatin_8u
ULK_API ulkStatus ULK_CALL ulksCompareIgnoreCaseLatin_16u(const uint16_t* pSrc1, const uint16_t* pSrc2,
                                                          int32_t len, int32_t* pResult);

/// Compares two strings by the lowercase of each unit, as ulksLowercase_16u() gives it. So U+0130 equals "i"
/// and "I", a titlecase digraph equals its other two forms, and U+0131 equals neither "i" nor "I".
/// @param[in]  pSrc1    the first string
/// @param[in]  pSrc2    the second string
/// @param[in]  len      the length of each in units
/// @param[out] pResult  lowercase unit of the first string minus that of the second where these differ first;
///                      0 if they nowhere do
/// @retval ulkOk          `*pResult` is set
/// @retval ulkErrNullPtr  `pSrc1`, `pSrc2` or `pResult` is null
/// @retval ulkErrLength   `len` is negative
ULK_API ulkStatus ULK_CALL ulksCompareIgnoreCase_16u(const uint16_t* pSrc1, const uint16_t* pSrc2,
                                                     int32_t len, int32_t* pResult);

/// @}
/// @defgroup case Case conversion
///
/// Each unit is replaced by its lowercase or its uppercase, or stays as it is; the length never changes. The
/// Latin functions know the 26 letters of ASCII only. The others know the letters of Latin, Greek, Cyrillic,
/// Armenian and Georgian that an early edition of Unicode had, Roman numerals, circled letters and fullwidth
/// letters, and map one 16-bit unit to one: a surrogate stays as it is, "ss" never comes of U+00DF. The
/// mapping is fixed. Letters of later editions have none, and neither have pairs of units more than 511
/// apart, such as U+212A and "k"; the Georgian small letters U+10D0 to U+10F5 are results of lowercasing but
/// have no uppercase.
///
/// The destination may be the source; any other overlap is not allowed. The functions with `_I` convert in
/// place. Nothing outside the given strings is read or written.
///
/// ```c
/// uint8_t name[] = "Mixed Case";
/// ulksUppercaseLatin_8u_I(name, 10);
/// assert(memcmp(name, "MIXED CASE", 10) == 0);
/// ```
/// @{

/// Replaces "A" to "Z" by "a" to "z".
/// @param[in]  pSrc  the string
/// @param[out] pDst  the converted string, of the same length
/// @param[in]  len   the length in units
/// @retval ulkOk          the string is converted
/// @retval ulkErrNullPtr  `pSrc` or `pDst` is null
/// @retval ulkErrLength   `len` is negative
ULK_API ulkStatus ULK_CALL ulksLowercaseLatin_8u(const uint8_t* pSrc, uint8_t* pDst, int32_t len);
/// @copydoc ulksLowercaseLatin_8u
ULK_API ulkStatus ULK_CALL ulksLowercaseLatin_16u(const uint16_t* pSrc, uint16_t* pDst, int32_t len);

/// Replaces "A" to "Z" by "a" to "z" in place.
/// @param[in,out] pSrcDst  the string
/// @param[in]     len      its length in units
/// @retval ulkOk          the string is converted
/// @retval ulkErrNullPtr  `pSrcDst` is null
/// @retval ulkErrLength   `len` is negative
ULK_API ulkStatus ULK_CALL ulksLowercaseLatin_8u_I(uint8_t* pSrcDst, int32_t len);
/// @copydoc ulksLowercaseLatin_8u_I
ULK_API ulkStatus ULK_CALL ulksLowercaseLatin_16u_I(uint16_t* pSrcDst, int32_t len);

/// Replaces "a" to "z" by "A" to "Z".
/// @param[in]  pSrc  the string
/// @param[out] pDst  the converted string, of the same length
/// @param[in]  len   the length in units
/// @retval ulkOk          the string is converted
/// @retval ulkErrNullPtr  `pSrc` or `pDst` is null
/// @retval ulkErrLength   `len` is negative
ULK_API ulkStatus ULK_CALL ulksUppercaseLatin_8u(const uint8_t* pSrc, uint8_t* pDst, int32_t len);
/// @copydoc ulksUppercaseLatin_8u
ULK_API ulkStatus ULK_CALL ulksUppercaseLatin_16u(const uint16_t* pSrc, uint16_t* pDst, int32_t len);

/// Replaces "a" to "z" by "A" to "Z" in place.
/// @param[in,out] pSrcDst  the string
/// @param[in]     len      its length in units
/// @retval ulkOk          the string is converted
/// @retval ulkErrNullPtr  `pSrcDst` is null
/// @retval ulkErrLength   `len` is negative
ULK_API ulkStatus ULK_CALL ulksUppercaseLatin_8u_I(uint8_t* pSrcDst, int32_t len);
/// @copydoc ulksUppercaseLatin_8u_I
ULK_API ulkStatus ULK_CALL ulksUppercaseLatin_16u_I(uint16_t* pSrcDst, int32_t len);

/// Replaces each unit by its lowercase; U+0130 becomes "i", a titlecase digraph its small form.
/// @param[in]  pSrc  the string
/// @param[out] pDst  the converted string, of the same length
/// @param[in]  len   the length in units
/// @retval ulkOk          the string is converted
/// @retval ulkErrNullPtr  `pSrc` or `pDst` is null
/// @retval ulkErrLength   `len` is negative
ULK_API ulkStatus ULK_CALL ulksLowercase_16u(const uint16_t* pSrc, uint16_t* pDst, int32_t len);

/// Replaces each unit by its lowercase in place, as ulksLowercase_16u() does.
/// @param[in,out] pSrcDst  the string
/// @param[in]     len      its length in units
/// @retval ulkOk          the string is converted
/// @retval ulkErrNullPtr  `pSrcDst` is null
/// @retval ulkErrLength   `len` is negative
ULK_API ulkStatus ULK_CALL ulksLowercase_16u_I(uint16_t* pSrcDst, int32_t len);

/// Replaces each unit by its uppercase; U+0131 (dotless i) becomes "I", U+017F (long s) "S", a titlecase
/// digraph its capital form; U+00B5 and U+03C2 stay as they are.
/// @param[in]  pSrc  the string
/// @param[out] pDst  the converted string, of the same length
/// @param[in]  len   the length in units
/// @retval ulkOk          the string is converted
/// @retval ulkErrNullPtr  `pSrc` or `pDst` is null
/// @retval ulkErrLength   `len` is negative
ULK_API ulkStatus ULK_CALL ulksUppercase_16u(const uint16_t* pSrc, uint16_t* pDst, int32_t len);

/// Replaces each unit by its uppercase in place, as ulksUppercase_16u() does.
/// @param[in,out] pSrcDst  the string
/// @param[in]     len      its length in units
/// @retval ulkOk          the string is converted
/// @retval ulkErrNullPtr  `pSrcDst` is null
/// @retval ulkErrLength   `len` is negative
ULK_API ulkStatus ULK_CALL ulksUppercase_16u_I(uint16_t* pSrcDst, int32_t len);

/// @}
/// @defgroup hashing Hashing
///
/// Strings made numbers, for hash tables. The functions are fixed formulas that other programs can compute
/// too: not seeded, and no protection against strings chosen to collide. Each unit takes part as the unsigned
/// number it is; all arithmetic is modulo 2 to the power 32; nothing follows the last step. Each function
/// exists for 8-bit and for 16-bit units, with equal values for equal units.
///
/// ```c
/// uint32_t hash;
/// ulksHashSJ2_8u32u((const uint8_t*)"ab", 2, &hash);
/// assert(hash == 'a' * 31 + 'b');
/// ```
/// @{

/// Hashes a string: h = 0, then h = (h << 1) ^ unit for each unit. Nothing is left of a unit that 32 or more
/// others follow: strings with the same last 32 units have the same hash, and the time does not grow beyond.
/// @param[in]  pSrc    the string
/// @param[in]  srcLen  its length in units
/// @param[out] pHash   the hash; 0 for an empty string
/// @retval ulkOk          `*pHash` is set
/// @retval ulkErrNullPtr  `pSrc` or `pHash` is null
/// @retval ulkErrLength   `srcLen` is negative
ULK_API ulkStatus ULK_CALL ulksHash_8u32u(const uint8_t* pSrc, int32_t srcLen, uint32_t* pHash);
/// @copydoc ulksHash_8u32u
ULK_API ulkStatus ULK_CALL ulksHash_16u32u(const uint16_t* pSrc, int32_t srcLen, uint32_t* pHash);

/// Hashes a string up to its first zero unit: h = 5381, then h = (h * 33) ^ unit for each unit before it.
/// Nothing after the zero unit is read.
/// @param[in]  pSrc    the string
/// @param[in]  srcLen  its length in units; only the units before the first zero unit count
/// @param[out] pHash   the hash; 5381 for an empty string
/// @retval ulkOk          `*pHash` is set
/// @retval ulkErrNullPtr  `pSrc` or `pHash` is null
/// @retval ulkErrLength   `srcLen` is negative
ULK_API ulkStatus ULK_CALL ulksHashMSCS_8u32u(const uint8_t* pSrc, int32_t srcLen, uint32_t* pHash);
/// @copydoc ulksHashMSCS_8u32u
ULK_API ulkStatus ULK_CALL ulksHashMSCS_16u32u(const uint16_t* pSrc, int32_t srcLen, uint32_t* pHash);

/// Hashes a string: h = 0, then h = h * 31 + unit for each unit.
/// @param[in]  pSrc    the string
/// @param[in]  srcLen  its length in units
/// @param[out] pHash   the hash; 0 for an empty string. It is set to 0 before the string is read, so it does
///                     not lie inside the string
/// @retval ulkOk          `*pHash` is set
/// @retval ulkErrNullPtr  `pSrc` or `pHash` is null
/// @retval ulkErrLength   `srcLen` is negative
ULK_API ulkStatus ULK_CALL ulksHashSJ2_8u32u(const uint8_t* pSrc, int32_t srcLen, uint32_t* pHash);
/// @copydoc ulksHashSJ2_8u32u
ULK_API ulkStatus ULK_CALL ulksHashSJ2_16u32u(const uint16_t* pSrc, int32_t srcLen, uint32_t* pHash);

/// @}
/// @defgroup trimming Trimming
///
/// Strings without the unwanted units at their ends: the leading run, the trailing run, or both. Units
/// further inside are kept, whatever they are. Each function exists for 8-bit and for 16-bit units.
///
/// A destination has room for the whole string and does not overlap it; only the units kept are written
/// there, so what stands behind them stays. When nothing is kept, the length becomes 0 and nothing else is
/// written.
///
/// ```c
/// uint8_t kept[9];
/// int32_t length;
/// ulksTrimCAny_8u((const uint8_t*)"\t in it \n", 9, (const uint8_t*)" \t\n", 3, kept, &length);
/// assert(length == 5 && memcmp(kept, "in it", 5) == 0);
/// ```
/// @{

/// Trims all of one unit from both ends of a string.
/// @param[in]  pSrc     the string
/// @param[in]  srcLen   its length in units
/// @param[in]  unit     the unit to remove
/// @param[out] pDst     the units kept
/// @param[out] pDstLen  their number
/// @retval ulkOk          `pDst` and `*pDstLen` are set
/// @retval ulkErrNullPtr  `pSrc`, `pDst` or `pDstLen` is null
/// @retval ulkErrLength   `srcLen` is negative
ULK_API ulkStatus ULK_CALL ulksTrimC_8u(const uint8_t* pSrc, int32_t srcLen, uint8_t unit, uint8_t* pDst,
                                        int32_t* pDstLen);
/// @copydoc ulksTrimC_8u
ULK_API ulkStatus ULK_CALL ulksTrimC_16u(const uint16_t* pSrc, int32_t srcLen, uint16_t unit, uint16_t* pDst,
                                         int32_t* pDstLen);

/// Trims all of one unit from both ends of a string in place: the units kept move to its start, the
/// units behind them stay as they were.
/// @param[in,out] pSrcDst     the string
/// @param[in,out] pSrcDstLen  its length in units; out: the number of units kept
/// @param[in]     unit        the unit to remove
/// @retval ulkOk          `pSrcDst` and `*pSrcDstLen` are set
/// @retval ulkErrNullPtr  `pSrcDst` or `pSrcDstLen` is null
/// @retval ulkErrLength   `*pSrcDstLen` is negative
ULK_API ulkStatus ULK_CALL ulksTrimC_8u_I(uint8_t* pSrcDst, int32_t* pSrcDstLen, uint8_t unit);
/// @copydoc ulksTrimC_8u_I
ULK_API ulkStatus ULK_CALL ulksTrimC_16u_I(uint16_t* pSrcDst, int32_t* pSrcDstLen, uint16_t unit);

/// Trims all units that belong to a set from both ends of a string.
/// @param[in]  pSrc     the string
/// @param[in]  srcLen   its length in units
/// @param[in]  pSet     the members of the set, in any order; repeated members change nothing
/// @param[in]  setLen   their number; with an empty set all units are kept
/// @param[out] pDst     the units kept
/// @param[out] pDstLen  their number
/// @retval ulkOk          `pDst` and `*pDstLen` are set
/// @retval ulkErrNullPtr  `pSrc`, `pDst`, `pSet` or `pDstLen` is null
/// @retval ulkErrLength   `srcLen` or `setLen` is negative
ULK_API ulkStatus ULK_CALL ulksTrimCAny_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pSet,
                                           int32_t setLen, uint8_t* pDst, int32_t* pDstLen);
/// @copydoc ulksTrimCAny_8u
ULK_API ulkStatus ULK_CALL ulksTrimCAny_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pSet,
                                            int32_t setLen, uint16_t* pDst, int32_t* pDstLen);

/// Trims all units that belong to a set from the start of a string, as ulksTrimCAny() does from both ends.
/// @param[in]  pSrc     the string
/// @param[in]  srcLen   its length in units
/// @param[in]  pSet     the members of the set, in any order; repeated members change nothing
/// @param[in]  setLen   their number; with an empty set all units are kept
/// @param[out] pDst     the units kept
/// @param[out] pDstLen  their number
/// @retval ulkOk          `pDst` and `*pDstLen` are set
/// @retval ulkErrNullPtr  `pSrc`, `pDst`, `pSet` or `pDstLen` is null
/// @retval ulkErrLength   `srcLen` or `setLen` is negative
ULK_API ulkStatus ULK_CALL ulksTrimStartCAny_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pSet,
                                                int32_t setLen, uint8_t* pDst, int32_t* pDstLen);
/// @copydoc ulksTrimStartCAny_8u
ULK_API ulkStatus ULK_CALL ulksTrimStartCAny_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pSet,
                                                 int32_t setLen, uint16_t* pDst, int32_t* pDstLen);

/// Trims all units that belong to a set from the end of a string, as ulksTrimCAny() does from both ends.
/// @param[in]  pSrc     the string
/// @param[in]  srcLen   its length in units
/// @param[in]  pSet     the members of the set, in any order; repeated members change nothing
/// @param[in]  setLen   their number; with an empty set all units are kept
/// @param[out] pDst     the units kept
/// @param[out] pDstLen  their number
/// @retval ulkOk          `pDst` and `*pDstLen` are set
/// @retval ulkErrNullPtr  `pSrc`, `pDst`, `pSet` or `pDstLen` is null
/// @retval ulkErrLength   `srcLen` or `setLen` is negative
ULK_API ulkStatus ULK_CALL ulksTrimEndCAny_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pSet,
                                              int32_t setLen, uint8_t* pDst, int32_t* pDstLen);
/// @copydoc ulksTrimEndCAny_8u
ULK_API ulkStatus ULK_CALL ulksTrimEndCAny_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pSet,
                                               int32_t setLen, uint16_t* pDst, int32_t* pDstLen);

/// @}
/// @defgroup expression Expressions: compiling
///
/// An expression is compiled into one buffer, its state: either ask for the size with ulksRegExpGetSize(),
/// provide the buffer and call ulksRegExpInit(), or let ulksRegExpInitAlloc() allocate it. The setters may
/// then change how it searches; any number of searches follow.
///
/// What a caller must know about a state:
/// - A buffer of the caller's own is aligned for a pointer and has at least the size that ulksRegExpGetSize()
///   gives for the same pattern; neither is checked.
/// - A state holds addresses into itself: it is used where it was compiled, never copied or moved.
/// - A search writes to the state, so one state serves one search at a time. Different states are
///   independent.
/// - After a failed compile the buffer holds no expression, but may look as if it did: do not search with it.
///
/// Options are letters, in any order:
///
/// | Letter | Effect |
/// |---|---|
/// | `s` | "." also matches a newline (byte 10) |
/// | `m` | "^" and "$" also match at the start and the end of each line |
/// | `i` | letters match in either case |
/// | `x` | white space in the pattern is skipped, "#" starts a comment that goes to the end of the line |
/// | `g` | global: report or replace every match; makes no difference to the compile |
///
/// ```c
/// ulkRegExpState* date;
/// int32_t errorOffset;
/// assert(ulksRegExpInitAlloc("(\\d+)-(\\d+)", "", &date, &errorOffset) == ulkOk);
/// ulksRegExpFree(date);
/// assert(ulksRegExpInitAlloc("(\\d+", "", &date, &errorOffset) == ulkErrRegExpGroup && errorOffset == 4);
/// ```
/// @{

/// A compiled expression. Its layout is the library's own.
typedef struct ulkRegExpState ulkRegExpState;

/// Tells how large a buffer a pattern needs. The pattern is not parsed: one that does not compile has a size
/// too.
/// @param[in]  pPattern  the pattern, zero-terminated
/// @param[out] pSize     the size of the state in bytes: 20 for each byte of the pattern and 40052 more (in a
///                       32-bit process; more in a 64-bit one)
/// @retval ulkOk          `*pSize` is set
/// @retval ulkErrNullPtr  `pPattern` or `pSize` is null
/// @retval ulkErrLength   the pattern is so long that the size is no 32-bit number
ULK_API ulkStatus ULK_CALL ulksRegExpGetSize(const char* pPattern, int32_t* pSize);

/// Compiles an expression into a buffer of the caller's. The match limit becomes 10000 and the format 1
/// (UTF-8), also when the buffer held an expression before.
/// @param[in]  pPattern    the pattern, zero-terminated
/// @param[in]  pOptions    the option letters, zero-terminated; null for none
/// @param[out] pState      the buffer, of the size that ulksRegExpGetSize() gives, aligned for a pointer
/// @param[out] pErrOffset  written only when the pattern or the options are refused: where in the pattern, in
///                         bytes from its start, the error was noticed; 0 for bad options
/// @retval ulkOk                   the state is ready for searches
/// @retval ulkErrNullPtr           `pPattern`, `pState` or `pErrOffset` is null; nothing was written
/// @retval ulkErrLength            the pattern is too long for ulksRegExpGetSize()
/// @retval ulkErrRegExpOptions     a letter other than s, m, i, x, g in the options
/// @retval ulkErrRegExpSyntax      a bad escape or property
/// @retval ulkErrRegExpClass       a bad character class
/// @retval ulkErrRegExpBackRef     a reference to group 0 or to a group that does not exist
/// @retval ulkErrRegExpGroup       a bad parenthesis or group, or too many of them
/// @retval ulkErrRegExpQuantifier  a bad quantifier
ULK_API ulkStatus ULK_CALL ulksRegExpInit(const char* pPattern, const char* pOptions, ulkRegExpState* pState,
                                          int32_t* pErrOffset);

/// Compiles an expression into a buffer that the library allocates; ulksRegExpFree() releases it.
/// @param[in]  pPattern    the pattern, zero-terminated
/// @param[in]  pOptions    the option letters, zero-terminated; null for none
/// @param[out] ppState     the new state; null when the compile or the allocation failed
/// @param[out] pErrOffset  as for ulksRegExpInit()
/// @retval ulkOk          the state is ready for searches
/// @retval ulkErrNullPtr  `pPattern`, `ppState` or `pErrOffset` is null, or there is no memory
/// @return otherwise the compile error of ulksRegExpInit(); nothing is left to release
ULK_API ulkStatus ULK_CALL ulksRegExpInitAlloc(const char* pPattern, const char* pOptions,
                                               ulkRegExpState** ppState, int32_t* pErrOffset);

/// Releases a state from ulksRegExpInitAlloc(). Null is accepted.
/// @param[in] pState  the state; no other function may be using it
ULK_API void ULK_CALL ulksRegExpFree(ulkRegExpState* pState);

/// Sets the match limit: how many steps of its program one call of a search may take in all, before it gives
/// up with #ulkErrMatchLimit. To be called after the compile, which sets it to 10000. The state is not
/// checked to be a compiled one.
///
/// A search at the default limit uses at most 512 KiB of stack, at a larger one at most 832 KiB, so it never
/// overflows a thread's stack of 1 MiB. That much holds 40000 iterations of a repeated group that leave
/// nothing else to come back to, and 50000 places to which repeats of single items can come back; a search
/// that has to keep more ends as if the limit had run out.
/// @param[in]     matchLimit  the limit, 0 or more
/// @param[in,out] pState      the compiled state
/// @retval ulkOk          the limit is set
/// @retval ulkErrNullPtr  `pState` is null
/// @retval ulkErrLength   `matchLimit` is negative
ULK_API ulkStatus ULK_CALL ulksRegExpSetMatchLimit(int32_t matchLimit, ulkRegExpState* pState);

/// Sets the format of the texts to be searched. To be called after the compile, which sets it to 1. The state
/// is not checked to be a compiled one.
/// @param[in]     format  0: a character is one byte; 1: texts are UTF-8
/// @param[in,out] pState  the compiled state
/// @retval ulkOk               the format is set
/// @retval ulkErrNullPtr       `pState` is null
/// @retval ulkErrRegExpFormat  `format` is neither 0 nor 1
ULK_API ulkStatus ULK_CALL ulksRegExpSetFormat(int32_t format, ulkRegExpState* pState);

/// @}
/// @defgroup regexp_search Expressions: search
///
/// ```c
/// const uint8_t text[] = "on 12-31";
/// ulkRegExpState* date;
/// int32_t errorOffset, count = 3;
/// ulkRegExpFind found[3];  // the match and two groups
/// ulksRegExpInitAlloc("(\\d+)-(\\d+)", "", &date, &errorOffset);
/// assert(ulksRegExpFind_8u(text, 8, date, found, &count) == ulkOk && count == 3);
/// assert(found[0].pFound == text + 3 && found[0].lenFound == 5);
/// assert(found[2].pFound == text + 6 && found[2].lenFound == 2);
/// ulksRegExpFree(date);
/// ```
/// @{

/// Where a match or a capture group of it stands.
typedef struct ulkRegExpFind {
  const uint8_t* pFound;  ///< its first byte, in the caller's text; null for a group that took no part
  int32_t lenFound;       ///< its length in bytes, possibly 0; -1 for a group that took no part
} ulkRegExpFind;

/// Searches a text for a compiled expression.
///
/// Without the option `g` the first match is reported: record 0 is the whole match, record k is capture group
/// k. With `g`, successive matches that do not overlap are reported one after the other, as long as the
/// records of a whole further match fit: for an expression without groups one record a match, the whole
/// match; for one with groups only the groups of each match. After an empty match, the next byte alone is
/// tried for a match that is not empty, which is reported too; the search goes on behind that byte, though
/// the match may have taken a whole UTF-8 character, and then finds matches inside it. The try is left out
/// where only one more match has room, so all matches are there when room for two is left. Records that were
/// not filled stay as they were.
///
/// When the pattern ends in a literal, the text counts as ending after the last occurrence of that literal,
/// for "$" and lookahead too; a text in which it does not occur counts as empty. So `^(?!.*admin).*user`
/// matches in "user admin". Of several alternatives outside of groups, the last one's literal does this to
/// all of them if a literal with a quantifier stands before it: `warning|colou?r` finds nothing in "a
/// warning". A group around the whole pattern keeps every literal from it: `(?:warning|colou?r)`.
///
/// What a caller must know to be safe:
/// - The search may look at bytes after the end of the text, in both formats: at the one after it, and, where
///   that one or the text's last bytes begin a UTF-8 sequence, at those that follow, up to the first that
///   does not continue it. Keep them readable; a zero byte after the text ends every such look.
/// - A reported match or group begins in the text or at its end, and its length is not negative, but it may
///   reach beyond the text: when the text ends inside a UTF-8 sequence, and after some lazy repeats of a
///   single byte that failed, which can make lengths up to 2147483647. A program that copies a match limits
///   its length to the end of the text.
/// - The call writes to the state: one search per state at a time.
/// - It uses up to 512 KiB of stack at the default match limit, and up to 832 KiB at a larger one; see
///   ulksRegExpSetMatchLimit().
///
/// @param[in]     pSrc          the text
/// @param[in]     srcLen        its length in bytes
/// @param[in,out] pRegExpState  the compiled expression; must not come from a failed compile
/// @param[out]    pFind         the records
/// @param[in,out] pNumFind      in: the number of records in `pFind`, at least 1. Out: the number filled, 0
///                              when nothing matches. A search for `|P` in an empty text fills one record
///                              more than `P` has groups. Must not be null: unlike the other pointers, it is
///                              used without a check
/// @retval ulkOk               `*pNumFind` records are filled. Without `g`, 0 means that nothing matches.
///                             With `g` it does not mean that the whole text was searched, not even when
///                             nothing was found: the limit may have run out behind the last match. To
///                             know, search for `(?:P|\z)` in place of a `P` without groups: the search was
///                             complete if the last match that it reports ends where the text ends. In place
///                             of a `P` with groups search for `(?:P|(\z))`: the search was complete if the
///                             last group of the last match took part; the groups of `P` keep their numbers
/// @retval ulkErrNullPtr       `pSrc`, `pRegExpState` or `pFind` is null
/// @retval ulkErrLength        `srcLen` is negative
/// @retval ulkErrSize          `*pNumFind` is below 1
/// @retval ulkErrInvalidState  `pRegExpState` does not hold a compiled expression
/// @retval ulkErrMatchLimit    the match limit ran out. Without `g`: nothing was found by then, no record is
///                             filled and `*pNumFind` is at most the number of groups plus one. With `g`: the
///                             matches found by then are in `pFind`, but `*pNumFind` is unchanged. Set every
///                             `lenFound` to -2 before the call: those that still have it were not filled
ULK_API ulkStatus ULK_CALL ulksRegExpFind_8u(const uint8_t* pSrc, int32_t srcLen,
                                             ulkRegExpState* pRegExpState, ulkRegExpFind* pFind,
                                             int32_t* pNumFind);

/// @}
/// @defgroup replacement Expressions: replacement
///
/// A text with its matches replaced. The replacement is written as a template, which is prepared once and
/// then serves any number of expressions, texts and threads:
///
/// | In the template | Stands for |
/// |---|---|
/// | `$&` | the whole match |
/// | `$` and decimal digits | a capture group |
/// | a backslash | nothing: it is left out and escapes nothing; it only ends a number before it |
/// | anything else | itself |
///
/// There is no way to write a literal `$` or backslash.
///
/// The number of a group is read with 11 in place of 10: `$1` to `$9` are the groups 1 to 9, but `$10` is
/// group 11, `$12` group 13 and `$20` group 22; group 10 cannot be named. In `$1\0` the backslash keeps the
/// digits apart.
///
/// ```c
/// const char template[] = "$2/$1";
/// int32_t size, errorOffset, length = 8, written = 100, count = 3;
/// ulksRegExpReplaceGetSize(template, &size);
/// ulkRegExpReplaceState* prepared = malloc((size_t)size);
/// ulksRegExpReplaceInit(template, prepared);
/// ulkRegExpState* date;
/// ulksRegExpInitAlloc("(\\d+)-(\\d+)", "", &date, &errorOffset);
/// ulkRegExpFind records[3];
/// uint8_t result[100 + 8];
/// ulksRegExpReplace_8u((const uint8_t*)"on 12-31", &length, result, &written, records, &count, date,
///                      prepared);
/// assert(written == 8 && memcmp(result, "on 31/12", 8) == 0);
/// ulksRegExpFree(date);
/// free(prepared);
/// ```
/// @{

/// A prepared replacement template. Its layout is the library's own.
typedef struct ulkRegExpReplaceState ulkRegExpReplaceState;

/// Tells how large a buffer a template needs. The template is not parsed: a malformed one has a size too.
/// @param[in]  pTemplate  the template, zero-terminated; null for an empty one
/// @param[out] pSize      the size of the state in bytes: 12 for each byte of the template and 12 more (in a
///                        32-bit process; more in a 64-bit one)
/// @retval ulkOk          `*pSize` is set
/// @retval ulkErrNullPtr  `pSize` is null
/// @retval ulkErrLength   the template is so long that the size is no 32-bit number
ULK_API ulkStatus ULK_CALL ulksRegExpReplaceGetSize(const char* pTemplate, int32_t* pSize);

/// Prepares a template. The state keeps pointers into the template, which stays alive and unchanged as long
/// as the state is used. A buffer may be used again for another template.
/// @param[in]  pTemplate  the template, zero-terminated; null for an empty one, which deletes what matches
/// @param[out] pState     the buffer, of the size that ulksRegExpReplaceGetSize() gives for the same
///                        template, aligned for a pointer
/// @retval ulkOk                the state is ready
/// @retval ulkErrNullPtr        `pState` is null; nothing was written
/// @retval ulkErrRegExpBackRef  a `$` with neither `&` nor a digit after it, or a group number of 0; the
///                              state must not be used
ULK_API ulkStatus ULK_CALL ulksRegExpReplaceInit(const char* pTemplate, ulkRegExpReplaceState* pState);

/// Copies a text with the first match of an expression replaced or, when the expression was compiled with the
/// option `g`, every match.
///
/// The text goes to the destination in pieces: the text before a match, the template's literals and groups,
/// the text after the last match. Whatever the search finds, the status is #ulkOk: a search that fails or
/// finds nothing gives a plain copy of as much of the text as fits. When the match limit runs out with `g`,
/// the matches found by then are replaced.
///
/// An empty text is refused, though a search takes one: a program that replaces empty lines too looks at
/// their length first.
///
/// **Room.** A piece is written whole, and only if it is shorter than the room that is left; the plain copy
/// alone may fill the destination. So a destination has at least one byte more than the result. At the first
/// piece that does not fit the work ends:
///
/// | | `*pSrcLen` | `*pDstLen` |
/// |---|---|---|
/// | nothing matches | bytes copied | bytes copied |
/// | first match: all fits | as it went in | length of the result |
/// | first match, empty template | as it went in | bytes before the match (the text after it is copied too) |
/// | first match: the text before it does not fit | 0 | 0 |
/// | first match: the template does not fit | bytes before the match | bytes before the match |
/// | first match: the text after it does not fit | bytes up to the match's end | bytes written |
/// | `g`: all fits | bytes after the last match | length of the result |
/// | `g`: the text before a match does not fit | bytes up to the end of the match before | bytes written |
/// | `g`: the template does not fit | bytes before the match | bytes written before the match's template |
/// | `g`: the text after the last match does not fit | bytes up to the match's end | bytes written |
///
/// What of a template was written before the piece that did not fit is not counted.
///
/// Growing the destination and calling again with the whole text is always right. Going on from `*pSrcLen`
/// with what is left is right only for expressions that do not look back (`^`, `\b`, lookbehind). The two
/// lengths alone do not always tell an early end from a complete one; the records do. The result is complete
/// when the capacity is greater than the text's length plus, for each match, the length of the template and
/// of the groups that it names, and none of those is unset.
///
/// **Groups.** A group that the expression does not have stands for nothing. One that took no part in the
/// match takes a byte back: the next piece overwrites the last byte written (a byte before the destination is
/// never written). When all pieces of a template together come out below 0 bytes, the work ends as if the
/// template did not fit, however large the destination. Write `(x|)` rather than `(x)?` for a group that a
/// template names.
///
/// What a caller must know to be safe:
/// - The hazards of ulksRegExpFind_8u() are those of this call too, apart from matches that are reported
///   beyond the text: no byte from beyond it is copied, though the text after the match is counted as if it
///   had been, and may count less than nothing. Counts that 32 bits cannot hold stop at their end.
/// - Replacing the first match measures the template against the whole capacity, and not against what the
///   text before the match has left of it. A destination that has `*pSrcLen` bytes more than the capacity
///   given is always safe. With `g` nothing is written beyond the capacity.
/// - With an empty template, the text after the first match is copied without any test. A destination of at
///   least `*pSrcLen` bytes is safe.
/// - Only valid expressions: one that ulksRegExpFind_8u() would refuse with #ulkErrInvalidState makes the
///   call use the records and their number as they are.
///
/// @param[in]     pSrc           the text
/// @param[in,out] pSrcLen        in: its length in bytes, at least 1. Out: as the table says
/// @param[out]    pDst           the destination; does not overlap the text or the template
/// @param[in,out] pDstLen        in: its capacity in bytes, at least 1. Out: as the table says
/// @param[out]    pFind          records for the search. A match needs one record and one for each group;
///                               with `g` only as many matches are replaced as have room here, and the
///                               text after them is copied
/// @param[in,out] pNumFind       in: the number of records, 0 or more. Out: the number filled. With `g` this
///                               divided by one more than the number of groups is the number of matches
///                               found; after the match limit has run out, it is the number that went in
/// @param[in,out] pRegExpState   the compiled expression; searching writes to it
/// @param[in]     pReplaceState  the prepared template
/// @retval ulkOk          the destination and the lengths are set
/// @retval ulkErrNullPtr  `pSrc`, `pSrcLen`, `pRegExpState`, `pDst`, `pReplaceState`, `pDstLen`, `pNumFind`
///                        or `pFind` is null
/// @retval ulkErrSize     `*pSrcLen` or `*pDstLen` is below 1
ULK_API ulkStatus ULK_CALL ulksRegExpReplace_8u(const uint8_t* pSrc, int32_t* pSrcLen, uint8_t* pDst,
                                                int32_t* pDstLen, ulkRegExpFind* pFind, int32_t* pNumFind,
                                                ulkRegExpState* pRegExpState,
                                                const ulkRegExpReplaceState* pReplaceState);

/// @}
/// @defgroup sets Expressions: pattern sets
///
/// Expressions that are searched together over one text. A set has a fixed number of slots; a slot is free or
/// holds the address of an expression and the id that the caller gave it. The expressions stay the caller's:
/// they are not copied, and must stay where they are as long as they are in the set.
///
/// ```c
/// ulkRegExpMultiState* set;
/// ulkRegExpState* number;
/// int32_t errorOffset;
/// ulkRegExpFind found;
/// ulkRegExpMultiFind results[2] = {{0}};  // one for each slot; the second stays free
/// ulksRegExpMultiInitAlloc(&set, 2);
/// ulksRegExpInitAlloc("\\d+", "", &number, &errorOffset);
/// ulksRegExpMultiAdd(number, 7, set);
/// results[0].pFind = &found;
/// results[0].numFind = 1;
/// ulksRegExpMultiFind_8u((const uint8_t*)"route 66", 8, results, set);
/// assert(results[0].id == 7 && results[0].status == ulkOk && results[0].numFind == 1);
/// assert(found.lenFound == 2);
/// ulksRegExpMultiFree(set);
/// ulksRegExpFree(number);
/// ```
/// @{

/// A set of compiled expressions that are searched together. Its layout is the library's own.
typedef struct ulkRegExpMultiState ulkRegExpMultiState;

/// What a search of a set found with the expression of one slot.
typedef struct ulkRegExpMultiFind {
  int32_t searched;      ///< out: 1 when the expression has been searched for
  uint32_t id;           ///< out: the expression's id
  int32_t numFind;       ///< in: the number of records in `pFind`; out: the number filled
  ulkStatus status;      ///< out: what ulksRegExpFind_8u() returned
  ulkRegExpFind* pFind;  ///< in: records for this slot alone
} ulkRegExpMultiFind;

/// Tells how large a buffer a set needs.
/// @param[in]  maxPatterns  the number of slots, at least 1
/// @param[out] pSize        the size of the set in bytes: 8 for each slot and 12 more (in a 32-bit process;
///                          more in a 64-bit one). For more slots than that fits 32 bits for, only the low 32
///                          bits: such a set cannot be had
/// @retval ulkOk          `*pSize` is set
/// @retval ulkErrNullPtr  `pSize` is null
/// @retval ulkErrSize     `maxPatterns` is 0
ULK_API ulkStatus ULK_CALL ulksRegExpMultiGetSize(uint32_t maxPatterns, int32_t* pSize);

/// Makes an empty set in a buffer of the caller's.
/// @param[out] pState       the buffer, of the size that ulksRegExpMultiGetSize() gives, aligned for a
///                          pointer
/// @param[in]  maxPatterns  the number of slots, at least 1
/// @retval ulkOk          the set is ready; all its slots are free
/// @retval ulkErrNullPtr  `pState` is null, or no buffer can have so many slots
/// @retval ulkErrSize     `maxPatterns` is 0
ULK_API ulkStatus ULK_CALL ulksRegExpMultiInit(ulkRegExpMultiState* pState, uint32_t maxPatterns);

/// Makes an empty set in a buffer that the library allocates; ulksRegExpMultiFree() releases it.
/// @param[out] ppState      the new set; null when there is no memory
/// @param[in]  maxPatterns  the number of slots, at least 1
/// @retval ulkOk          the set is ready; all its slots are free
/// @retval ulkErrNullPtr  `ppState` is null, or there is no memory for so many slots
/// @retval ulkErrSize     `maxPatterns` is 0
ULK_API ulkStatus ULK_CALL ulksRegExpMultiInitAlloc(ulkRegExpMultiState** ppState, uint32_t maxPatterns);

/// Releases a set from ulksRegExpMultiInitAlloc(): the same operation as ulksRegExpFree(). The set's
/// expressions are not released.
/// @param[in] pState  the set; null is accepted
ULK_API void ULK_CALL ulksRegExpMultiFree(ulkRegExpMultiState* pState);

/// Puts an expression into the lowest free slot. Neither the expression nor the id is looked at further: an
/// id may be there already, and other functions then mean the lowest slot that has it.
/// @param[in]     pRegExpState  the compiled expression. It may be in several slots only where the set is
///                              never searched in parallel (ulksRegExpMultiFind_8u())
/// @param[in]     id            its id, not 0
/// @param[in,out] pState        the set
/// @retval ulkOk          the expression is in the set
/// @retval ulkErrNullPtr  `pRegExpState` or `pState` is null
/// @retval ulkErrBadId    `id` is 0
/// @retval ulkErrSetFull  no slot is free
ULK_API ulkStatus ULK_CALL ulksRegExpMultiAdd(ulkRegExpState* pRegExpState, uint32_t id,
                                              ulkRegExpMultiState* pState);

/// Frees the lowest slot that has an id.
/// @param[in]     id      the id, not 0
/// @param[in,out] pState  the set
/// @retval ulkOk             the slot is free
/// @retval ulkErrNullPtr     `pState` is null
/// @retval ulkErrBadId       `id` is 0
/// @retval ulkErrIdNotFound  no slot has this id
ULK_API ulkStatus ULK_CALL ulksRegExpMultiDelete(uint32_t id, ulkRegExpMultiState* pState);

/// Puts another expression into the lowest slot that has an id.
/// @param[in]     pRegExpState  the expression that comes in place of the slot's
/// @param[in]     id            the id, not 0; the slot keeps it
/// @param[in,out] pState        the set
/// @retval ulkOk             the expression is in the set
/// @retval ulkErrNullPtr     `pRegExpState` or `pState` is null
/// @retval ulkErrBadId       `id` is 0
/// @retval ulkErrIdNotFound  no slot has this id
ULK_API ulkStatus ULK_CALL ulksRegExpMultiModify(ulkRegExpState* pRegExpState, uint32_t id,
                                                 ulkRegExpMultiState* pState);

/// Searches a text for every expression of a set, each as ulksRegExpFind_8u() does, but in one pass over the
/// text where that takes less time.
///
/// A set with no more slots than the library may use threads (`ownGetNumThreads` of the core library, by
/// default one for each processor of the process) is searched on the calling thread, and so is one with
/// little to do. Else the slots, free ones included, are spread in equal blocks over a team of that many
/// threads. A call from inside a parallel region of OpenMP stays on its thread.
///
/// The team's threads wait for the next call, first busily, then asleep, and the library stays loaded for
/// them. Where other programs need the processors, the environment variable `OMP_WAIT_POLICY=passive` lets
/// them sleep at once: many short searches are then far faster.
///
/// What a caller must know to be safe:
/// - During the call, nothing else uses the set's expressions, and none of them is in two slots of a set that
///   has more slots than threads: a search writes to the expression.
/// - The records of each slot are its own.
/// - The hazards of ulksRegExpFind_8u() are those of each search here. Each thread of the team needs the
///   stack of a search: `OMP_STACKSIZE`, where it is set, must not be below 1 MiB.
/// - After a parallel search, a child made by fork() must not make one: it would wait for threads that it
///   does not have.
///
/// @param[in]     pSrc      the text
/// @param[in]     srcLen    its length in bytes, at least 1; in an empty text search for each expression
///                          by itself
/// @param[in,out] pResults  one record for each slot of the set, in the order of the slots. The caller sets
///                          `numFind` and `pFind` of those whose slots are taken; records of free slots are
///                          not touched
/// @param[in]     pState    the set
/// @retval ulkOk          all expressions were searched for; what became of each is in its record
/// @retval ulkErrNullPtr  `pSrc`, `pState` or `pResults` is null
/// @retval ulkErrSize     `srcLen` is below 1
ULK_API ulkStatus ULK_CALL ulksRegExpMultiFind_8u(const uint8_t* pSrc, int32_t srcLen,
                                                  ulkRegExpMultiFind* pResults,
                                                  const ulkRegExpMultiState* pState);

/// @}
/// @defgroup editing Editing
///
/// Units put into a string, taken out of it or replaced. The lengths of the results are known beforehand, so
/// they are not reported; the caller's memory must have room for them. The functions with `_I` edit in place
/// and update the length. Each function exists for 8-bit and for 16-bit units.
///
/// ```c
/// uint8_t text[10] = "one three";
/// int32_t length = 9;
/// ulksRemove_8u_I(text, &length, 3, 6);
/// ulksInsert_8u_I((const uint8_t*)", two", 5, text, &length, 3);
/// assert(length == 8 && memcmp(text, "one, two", 8) == 0);
/// ```
/// @{

/// Inserts one string into another. With an empty `pInsert` nothing at all is written, not even a copy of the
/// source.
/// @param[in]  pSrc        the string to insert into
/// @param[in]  srcLen      its length in units
/// @param[in]  pInsert     the string inserted; does not overlap the destination
/// @param[in]  insertLen   its length in units
/// @param[out] pDst        the result, `srcLen` + `insertLen` units unless `insertLen` is 0. May be `pSrc`,
///                         with room for the result; does not overlap it in any other way
/// @param[in]  startIndex  the position in the source that the inserted string comes before; `srcLen` appends
/// @retval ulkOk          the result is written
/// @retval ulkErrNullPtr  `pSrc`, `pInsert` or `pDst` is null
/// @retval ulkErrLength   `srcLen`, `insertLen` or `startIndex` is negative, or `startIndex` is greater than
///                        `srcLen`
ULK_API ulkStatus ULK_CALL ulksInsert_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pInsert,
                                         int32_t insertLen, uint8_t* pDst, int32_t startIndex);
/// @copydoc ulksInsert_8u
ULK_API ulkStatus ULK_CALL ulksInsert_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pInsert,
                                          int32_t insertLen, uint16_t* pDst, int32_t startIndex);

/// Inserts one string into another in place.
/// @param[in]     pInsert     the string inserted; does not overlap the other
/// @param[in]     insertLen   its length in units
/// @param[in,out] pSrcDst     the string to insert into, in memory with room for `insertLen` more units
/// @param[in,out] pSrcDstLen  its length in units; out: `insertLen` more
/// @param[in]     startIndex  the position that the inserted string comes before; the length appends
/// @retval ulkOk          `pSrcDst` and `*pSrcDstLen` are set
/// @retval ulkErrNullPtr  `pInsert`, `pSrcDst` or `pSrcDstLen` is null
/// @retval ulkErrLength   `insertLen`, `*pSrcDstLen` or `startIndex` is negative, or `startIndex` is greater
///                        than `*pSrcDstLen`
ULK_API ulkStatus ULK_CALL ulksInsert_8u_I(const uint8_t* pInsert, int32_t insertLen, uint8_t* pSrcDst,
                                           int32_t* pSrcDstLen, int32_t startIndex);
/// @copydoc ulksInsert_8u_I
ULK_API ulkStatus ULK_CALL ulksInsert_16u_I(const uint16_t* pInsert, int32_t insertLen, uint16_t* pSrcDst,
                                            int32_t* pSrcDstLen, int32_t startIndex);

/// Copies a string without a run of its units.
/// @param[in]  pSrc        the string
/// @param[in]  srcLen      its length in units
/// @param[out] pDst        the result, `srcLen` - `len` units; does not overlap the source
/// @param[in]  startIndex  the position of the first unit left out
/// @param[in]  len         how many units are left out; 0 copies the string
/// @retval ulkOk          the result is written
/// @retval ulkErrNullPtr  `pSrc` or `pDst` is null
/// @retval ulkErrLength   `len` or `startIndex` is negative, or their sum is greater than `srcLen`
ULK_API ulkStatus ULK_CALL ulksRemove_8u(const uint8_t* pSrc, int32_t srcLen, uint8_t* pDst,
                                         int32_t startIndex, int32_t len);
/// @copydoc ulksRemove_8u
ULK_API ulkStatus ULK_CALL ulksRemove_16u(const uint16_t* pSrc, int32_t srcLen, uint16_t* pDst,
                                          int32_t startIndex, int32_t len);

/// Removes a run of units from a string in place. What stands behind the shortened string stays as it was.
/// @param[in,out] pSrcDst     the string
/// @param[in,out] pSrcDstLen  its length in units; out: `len` less
/// @param[in]     startIndex  the position of the first unit removed
/// @param[in]     len         how many units are removed; 0 changes nothing
/// @retval ulkOk          `pSrcDst` and `*pSrcDstLen` are set
/// @retval ulkErrNullPtr  `pSrcDst` or `pSrcDstLen` is null
/// @retval ulkErrLength   `len`, `*pSrcDstLen` or `startIndex` is negative, or `startIndex` + `len` is
///                        greater than `*pSrcDstLen`
ULK_API ulkStatus ULK_CALL ulksRemove_8u_I(uint8_t* pSrcDst, int32_t* pSrcDstLen, int32_t startIndex,
                                           int32_t len);
/// @copydoc ulksRemove_8u_I
ULK_API ulkStatus ULK_CALL ulksRemove_16u_I(uint16_t* pSrcDst, int32_t* pSrcDstLen, int32_t startIndex,
                                            int32_t len);

/// Replaces every unit of one value by another value.
/// @param[in]  pSrc    the string
/// @param[out] pDst    the result, of the same length. May be `pSrc`; does not overlap it in any other way
/// @param[in]  len     the length in units
/// @param[in]  oldVal  the value to replace
/// @param[in]  newVal  the value that comes in its place
/// @retval ulkOk          the result is written
/// @retval ulkErrNullPtr  `pSrc` or `pDst` is null
/// @retval ulkErrLength   `len` is negative
ULK_API ulkStatus ULK_CALL ulksReplaceC_8u(const uint8_t* pSrc, uint8_t* pDst, int32_t len, uint8_t oldVal,
                                           uint8_t newVal);
/// @copydoc ulksReplaceC_8u
ULK_API ulkStatus ULK_CALL ulksReplaceC_16u(const uint16_t* pSrc, uint16_t* pDst, int32_t len,
                                            uint16_t oldVal, uint16_t newVal);

/// @}
/// @defgroup concat_split Concatenation and splitting
///
/// Strings joined end to end, and a string cut at a unit. Sources and destinations do not overlap. Each
/// function exists for 8-bit and for 16-bit units.
///
/// **Lists** (`_D2L`) of N strings are an array of N pointers, an array of N lengths in units, and N. The
/// arrays are checked before anything is written, their elements one by one when the work comes to them:
/// first for a null pointer (#ulkErrNullPtr, also where the length is 0), then for a negative length
/// (#ulkErrLength). An error of an element ends the work; what was written for the elements before it stays.
/// Elements that the work does not come to are not looked at.
///
/// ```c
/// uint8_t name[10], value[10];
/// uint8_t* const parts[] = {name, value};
/// int32_t lengths[] = {10, 10}, count = 2;
/// assert(ulksSplitC_8u_D2L((const uint8_t*)"key=value", 9, '=', parts, lengths, &count) == ulkOk);
/// assert(count == 2 && lengths[0] == 3 && memcmp(value, "value", 5) == 0);
/// ```
/// @{

/// Joins two strings.
/// @param[in]  pSrc1  the first string
/// @param[in]  len1   its length in units
/// @param[in]  pSrc2  the second string
/// @param[in]  len2   its length in units
/// @param[out] pDst   the first string and, right after it, the second: `len1` + `len2` units
/// @retval ulkOk          the result is written
/// @retval ulkErrNullPtr  `pSrc1`, `pSrc2` or `pDst` is null
/// @retval ulkErrLength   `len1` or `len2` is negative
ULK_API ulkStatus ULK_CALL ulksConcat_8u(const uint8_t* pSrc1, int32_t len1, const uint8_t* pSrc2,
                                         int32_t len2, uint8_t* pDst);
/// @copydoc ulksConcat_8u
ULK_API ulkStatus ULK_CALL ulksConcat_16u(const uint16_t* pSrc1, int32_t len1, const uint16_t* pSrc2,
                                          int32_t len2, uint16_t* pDst);

/// Joins a list of strings.
/// @param[in]  pSrcs    the strings
/// @param[in]  srcLens  their lengths in units
/// @param[in]  numSrc   their number, at least 1
/// @param[out] pDst     the strings one right after the other: as many units as all lengths together
/// @retval ulkOk          the result is written
/// @retval ulkErrNullPtr  `pSrcs`, `srcLens` or `pDst` is null, or a string is: then those before it are
///                        written
/// @retval ulkErrSize     `numSrc` is below 1
/// @retval ulkErrLength   the length of a string is negative: those before it are written
ULK_API ulkStatus ULK_CALL ulksConcat_8u_D2L(const uint8_t* const* pSrcs, const int32_t* srcLens,
                                             int32_t numSrc, uint8_t* pDst);
/// @copydoc ulksConcat_8u_D2L
ULK_API ulkStatus ULK_CALL ulksConcat_16u_D2L(const uint16_t* const* pSrcs, const int32_t* srcLens,
                                              int32_t numSrc, uint16_t* pDst);

/// Joins a list of strings with one unit between each and the next, also beside an empty string.
/// @param[in]  pSrcs    the strings
/// @param[in]  srcLens  their lengths in units
/// @param[in]  numSrc   their number, at least 1
/// @param[in]  delim    the unit between them
/// @param[out] pDst     the result: as many units as all lengths together, and `numSrc` - 1 more
/// @retval ulkOk          the result is written
/// @retval ulkErrNullPtr  `pSrcs`, `srcLens` or `pDst` is null, or a string is: then those before it are
///                        written
/// @retval ulkErrSize     `numSrc` is below 1
/// @retval ulkErrLength   the length of a string is negative: those before it are written
ULK_API ulkStatus ULK_CALL ulksConcatC_8u_D2L(const uint8_t* const* pSrcs, const int32_t* srcLens,
                                              int32_t numSrc, uint8_t delim, uint8_t* pDst);
/// @copydoc ulksConcatC_8u_D2L
ULK_API ulkStatus ULK_CALL ulksConcatC_16u_D2L(const uint16_t* const* pSrcs, const int32_t* srcLens,
                                               int32_t numSrc, uint16_t delim, uint16_t* pDst);

/// Copies the parts of a string between the places of one unit to the buffers of a list. The parts may be
/// empty, but there is none after a delimiter that ends the string, and none at all in an empty string: "a,b"
/// and "a,b," have the parts "a" and "b", ",a" has "" and "a", "," has "". Where a delimiter ends a table's
/// line, the empty column behind it is the caller's to add.
/// @param[in]     pSrc     the string
/// @param[in]     srcLen   its length in units
/// @param[in]     delim    the unit between the parts; it belongs to none
/// @param[out]    pDsts    the buffers
/// @param[in,out] dstLens  in: how many units each has room for. Out: how many were written to each that was
///                         used; a part longer than its buffer is cut to the buffer's size
/// @param[in,out] pNumDst  in: the number of buffers, at least 1. Out: the number used
/// @retval ulkOk                 all parts are written
/// @retval ulkWrnPartTruncated   as #ulkOk, but some part was cut
/// @retval ulkWrnSlotsExhausted  all buffers are used and there are more parts; one or more may have been cut
///                               too
/// @retval ulkErrNullPtr         `pSrc`, `pDsts`, `dstLens` or `pNumDst` is null, or the buffer for a part:
///                               then those before it are written and `*pNumDst` keeps its value
/// @retval ulkErrLength          `srcLen` is negative, or the room for a part: then those before it are
///                               written and `*pNumDst` keeps its value
/// @retval ulkErrSize            `*pNumDst` is below 1
ULK_API ulkStatus ULK_CALL ulksSplitC_8u_D2L(const uint8_t* pSrc, int32_t srcLen, uint8_t delim,
                                             uint8_t* const* pDsts, int32_t* dstLens, int32_t* pNumDst);
/// @copydoc ulksSplitC_8u_D2L
ULK_API ulkStatus ULK_CALL ulksSplitC_16u_D2L(const uint16_t* pSrc, int32_t srcLen, uint16_t delim,
                                              uint16_t* const* pDsts, int32_t* dstLens, int32_t* pNumDst);

/// @}
/// @defgroup utf UTF conversion
///
/// Text from UTF-8 to UTF-16 and back. Source and destination must not overlap.
///
/// Malformed text is never an error: what has no proper conversion is passed through by fixed rules. A
/// destination that is too small is none either: as much is converted as fits, and the two lengths that come
/// out tell the caller where to go on.
///
/// The lengths go in as those of the source and of the destination's room, and come out as what was converted
/// and written. They are not checked and must not be negative.
///
/// The flag `bigEndian` tells the order of the bytes in 16-bit units, but means different things in the two
/// directions: only ulksConvertUTF_16u8u() converts it in full.
///
/// ```c
/// const uint8_t text[] = "n\xc3\xa9";  // a zero byte stands behind it
/// uint16_t units[3];                // as many as the text has bytes
/// int32_t bytes = 3, count = 3;
/// ulksConvertUTF_8u16u(text, &bytes, units, &count, 0);
/// assert(bytes == 3 && count == 2 && units[1] == 0xE9);
/// ```
/// @{

/// Converts UTF-8 to UTF-16.
///
/// A sequence has one to six bytes, in the form that the number of leading ones in its first byte demands,
/// and must be the shortest for its value. Whatever meets that is accepted: surrogates (U+D800 to U+DFFF)
/// too, and values up to 7FFFFFFF. A value below 10000 becomes one unit, a larger one two: of those above
/// 10FFFF, the bits that a surrogate pair has no place for are lost. Of anything else, one byte is taken and
/// becomes a unit of the same value, and the bytes after it are looked at anew: C0 80 becomes 00C0 0080.
///
/// With `bigEndian` a single unit becomes its low byte shifted up by 8 bits and its high byte is lost, so
/// only text below U+0100 comes out in big-endian order; and the units of a pair change places (low, high)
/// but not their bytes. A program that needs UTF-16BE converts with `bigEndian` 0 and swaps the bytes itself.
///
/// The conversion ends when the count of what is left, or of the room, is exactly 0. What a caller must know
/// to be safe:
/// - When the source ends inside a sequence, the bytes after its end are looked at, up to the first that does
///   not continue the sequence. If they complete it, they are taken as well; `*pSrcLen` grows beyond what
///   went in, and the conversion goes on behind the source until there is no room. A zero byte after the
///   source, or any other that is not 80 to BF, makes it safe: then only this one byte is looked at, and the
///   bytes of the sequence become units each.
/// - When one unit of room is left and a pair comes, both units are written, one of them beyond the
///   destination, and the conversion goes on there until the source ends. A destination of as many units as
///   the source has bytes makes it safe: no more can come of it.
///
/// So a stream is converted in pieces of at most as many bytes as the destination has units, each followed by
/// a zero byte and cut before a sequence that is not complete, not within it.
/// @param[in]     pSrc       the UTF-8 text
/// @param[in,out] pSrcLen    in: its length in bytes. Out: the bytes converted
/// @param[out]    pDst       the destination, 16-bit units
/// @param[in,out] pDstLen    in: the room in units. Out: the units written
/// @param[in]     bigEndian  not 0: the odd order above; 0: units as the machine has them
/// @retval ulkOk          the lengths are set; with an empty source, or without room, both to 0
/// @retval ulkErrNullPtr  `pSrc`, `pSrcLen`, `pDst` or `pDstLen` is null; nothing was written
ULK_API ulkStatus ULK_CALL ulksConvertUTF_8u16u(const uint8_t* pSrc, int32_t* pSrcLen, uint16_t* pDst,
                                                int32_t* pDstLen, int32_t bigEndian);

/// Converts UTF-16 to UTF-8.
///
/// A high surrogate with a low one after it becomes four bytes, every other unit one to three. That is true
/// of a surrogate without its partner too: it becomes the three bytes of its own value, also a high one that
/// is the last unit of the source. A stream is therefore not cut between the two units of a pair.
///
/// A character is written whole or not at all: the conversion ends before the first that does not fit. Three
/// times as many bytes as the source has units are always enough. Nothing outside the source is read, nothing
/// outside the destination written.
/// @param[in]     pSrc       the UTF-16 text
/// @param[in,out] pSrcLen    in: its length in units. Out: the units converted
/// @param[out]    pDst       the destination
/// @param[in,out] pDstLen    in: the room in bytes. Out: the bytes written
/// @param[in]     bigEndian  not 0: the units of the source have the high byte first; 0: they are as the
///                           machine has them
/// @retval ulkOk          the lengths are set; with an empty source, or without room, both to 0
/// @retval ulkErrNullPtr  `pSrc`, `pSrcLen`, `pDst` or `pDstLen` is null; nothing was written
ULK_API ulkStatus ULK_CALL ulksConvertUTF_16u8u(const uint16_t* pSrc, int32_t* pSrcLen, uint8_t* pDst,
                                                int32_t* pDstLen, int32_t bigEndian);

/// @}

#ifdef __cplusplus
}
#endif

#endif
