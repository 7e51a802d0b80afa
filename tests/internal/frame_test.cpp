// The internal routines of the frame: block copy, move and zero-fill, and allocation.
#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <numeric>
#include <vector>

#include "frame/memory.h"
#include "frame/primitives.h"
#include "support/guarded.h"
#include "ulkcore.h"

namespace ulk {
namespace {

// The primitives of one width.
template <class Unit>
struct Blocks;

template <>
struct Blocks<uint8_t> {
  static constexpr auto copy = ownCopy_8u;
  static constexpr auto move = ownMove_8u;
};

template <>
struct Blocks<uint16_t> {
  static constexpr auto copy = ownCopy_16u;
  static constexpr auto move = ownMove_16u;
};

template <class Unit>
class Primitives : public testing::Test {};
using Widths = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(Primitives, Widths);

TYPED_TEST(Primitives, CopyFromAnyAddressToAnyOther) {
  ulk_test::GuardedPages pages(4096);
  for (const int32_t count : {1, 2, 3, 7, 15, 16, 17, 33, 100, 999}) {
    std::vector<TypeParam> source(static_cast<size_t>(count));
    std::iota(source.begin(), source.end(), TypeParam{200});
    for (size_t offset = 0; offset < 5; ++offset) {
      const size_t bytes = source.size() * sizeof(TypeParam);
      char* place = pages.end() - bytes - offset;
      std::memset(pages.begin(), 0, 4096);
      EXPECT_EQ(Blocks<TypeParam>::copy(source.data(), reinterpret_cast<TypeParam*>(place), count), ulkOk);
      EXPECT_EQ(std::memcmp(place, source.data(), bytes), 0);
      EXPECT_EQ(place[-1], 0);
      if (offset != 0) {
        EXPECT_EQ(place[bytes], 0);
      }
    }
  }
}

TYPED_TEST(Primitives, MoveBetweenOverlappingBlocks) {
  for (const size_t distance : std::initializer_list<size_t>{0, 1, 3, 8, 16, 50}) {
    for (const bool up : {true, false}) {
      std::vector<TypeParam> units(200);
      std::iota(units.begin(), units.end(), TypeParam{0});
      std::vector<TypeParam> expected = units;
      const size_t from = up ? 0 : distance, to = distance - from;
      for (size_t i = 0; i < 100; ++i) expected[to + i] = units[from + i];
      EXPECT_EQ(Blocks<TypeParam>::move(&units[from], &units[to], 100), ulkOk);
      EXPECT_EQ(units, expected) << distance;
    }
  }
}

// Callers rely on the skip: they pass pieces of no units, and of fewer.
TYPED_TEST(Primitives, TouchNothingForCountsBelowOne) {
  ulk_test::GuardedPages pages(4096);
  TypeParam* unreadable = reinterpret_cast<TypeParam*>(pages.end());
  TypeParam unit = 0;
  for (const auto block : {Blocks<TypeParam>::copy, Blocks<TypeParam>::move}) {
    EXPECT_EQ(block(nullptr, &unit, 0), ulkErrNullPtr);
    EXPECT_EQ(block(&unit, nullptr, 1), ulkErrNullPtr);
    for (const int32_t count : {0, -1, INT32_MIN})
      EXPECT_EQ(block(unreadable, unreadable, count), ulkErrSize);
  }
}

TEST(Zero, FillsBytes) {
  std::vector<uint8_t> bytes(40, 1);
  EXPECT_EQ(ownZero_8u(&bytes[1], 38), ulkOk);
  EXPECT_EQ(std::accumulate(bytes.begin(), bytes.end(), 0), 2);
  EXPECT_EQ(bytes.front() + bytes.back(), 2);
  EXPECT_EQ(ownZero_8u(nullptr, 0), ulkErrNullPtr);
  EXPECT_EQ(ownZero_8u(&bytes[0], 0), ulkErrSize);
  EXPECT_EQ(ownZero_8u(&bytes[0], -1), ulkErrSize);
  EXPECT_EQ(bytes.front(), 1);
}

TEST(Allocation, GivesWhatTheCoreLibraryGives) {
  EXPECT_EQ(ownMalloc(0), nullptr);
  EXPECT_EQ(ownMalloc(-1), nullptr);
  void* block = ownMalloc(1000);
  ASSERT_NE(block, nullptr);
  std::memset(block, 1, 1000);
  ulkFree(block);
}

}  // namespace
}  // namespace ulk
