// The internal routines of the frame: block copy, move and zero-fill, and allocation.
#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <numeric>
#include <vector>

#include "frame/memory.h"
#include "frame/primitives.h"
#include "fuzz/check.h"
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
  for (const size_t count : std::initializer_list<size_t>{1, 2, 3, 7, 15, 16, 17, 33, 100, 999}) {
    std::vector<TypeParam> source(count);
    std::iota(source.begin(), source.end(), TypeParam{200});
    for (const size_t shift : {size_t{0}, size_t{1}, size_t{2}, ulk_fuzz::kAtEnd}) {
      const ulk_fuzz::Block<TypeParam> from(source, shift), to(count, ulk_fuzz::kAtEnd - shift);
      EXPECT_EQ(Blocks<TypeParam>::copy(from.get(), to.get(), static_cast<int32_t>(count)), ulkOk);
      EXPECT_TRUE(to.holds(source)) << count;
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
  const ulk_fuzz::Block<TypeParam> none(0, ulk_fuzz::kAtEnd);
  TypeParam* unreadable = none.get();
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
