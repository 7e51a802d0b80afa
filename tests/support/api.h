// The functions that exist in two widths, under one name each: Api<uint16_t>::find is ulksFind_16u.
#pragma once

#include "ulkch.h"

namespace ulk_test {

template <class Unit>
struct Api;

#define ULK_API_OF_WIDTH(Unit, width)                                                  \
  template <>                                                                          \
  struct Api<Unit> {                                                                   \
    static constexpr auto find = ulksFind_##width;                                     \
    static constexpr auto findRev = ulksFindRev_##width;                               \
    static constexpr auto findC = ulksFindC_##width;                                   \
    static constexpr auto findRevC = ulksFindRevC_##width;                             \
    static constexpr auto findCAny = ulksFindCAny_##width;                             \
    static constexpr auto findRevCAny = ulksFindRevCAny_##width;                       \
    static constexpr auto findZ = ulksFind_Z_##width;                                  \
    static constexpr auto findCZ = ulksFindC_Z_##width;                                \
    static constexpr auto compare = ulksCompare_##width;                               \
    static constexpr auto compareIgnoreCaseLatin = ulksCompareIgnoreCaseLatin_##width; \
    static constexpr auto equal = ulksEqual_##width;                                   \
    static constexpr auto lowercaseLatin = ulksLowercaseLatin_##width;                 \
    static constexpr auto lowercaseLatinInPlace = ulksLowercaseLatin_##width##_I;      \
    static constexpr auto uppercaseLatin = ulksUppercaseLatin_##width;                 \
    static constexpr auto uppercaseLatinInPlace = ulksUppercaseLatin_##width##_I;      \
    static constexpr auto hash = ulksHash_##width##32u;                                \
    static constexpr auto hashMSCS = ulksHashMSCS_##width##32u;                        \
    static constexpr auto hashSJ2 = ulksHashSJ2_##width##32u;                          \
    static constexpr auto trimC = ulksTrimC_##width;                                   \
    static constexpr auto trimCInPlace = ulksTrimC_##width##_I;                        \
    static constexpr auto trimCAny = ulksTrimCAny_##width;                             \
    static constexpr auto trimStartCAny = ulksTrimStartCAny_##width;                   \
    static constexpr auto trimEndCAny = ulksTrimEndCAny_##width;                       \
    static constexpr auto insert = ulksInsert_##width;                                 \
    static constexpr auto insertInPlace = ulksInsert_##width##_I;                      \
    static constexpr auto remove = ulksRemove_##width;                                 \
    static constexpr auto removeInPlace = ulksRemove_##width##_I;                      \
    static constexpr auto replaceC = ulksReplaceC_##width;                             \
    static constexpr auto concat = ulksConcat_##width;                                 \
    static constexpr auto concatList = ulksConcat_##width##_D2L;                       \
    static constexpr auto concatListC = ulksConcatC_##width##_D2L;                     \
    static constexpr auto splitC = ulksSplitC_##width##_D2L;                           \
  }

ULK_API_OF_WIDTH(uint8_t, 8u);
ULK_API_OF_WIDTH(uint16_t, 16u);

#undef ULK_API_OF_WIDTH

}  // namespace ulk_test
