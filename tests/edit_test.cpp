// Insertion, removal and unit replacement with pieces of every length that is copied in another way, between
// guards and at odd addresses.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "fuzz/edit.h"

namespace ulk_test {
namespace {

using ulk_fuzz::kAtEnd;
using ulk_fuzz::Shifts;

template <class Unit>
std::vector<Unit> numbered(size_t count, unsigned first) {
  std::vector<Unit> units(count);
  for (size_t i = 0; i < count; ++i) units[i] = static_cast<Unit>((first + i) * 0x4F21 >> 3);
  return units;
}

constexpr Shifts kPlaces[] = {{kAtEnd, kAtEnd, 0}, {0, 0, kAtEnd}, {1, 1, 1}, {6, 3, 30}};

template <class Unit>
class Edit : public testing::Test {
 protected:
  // Inserts and removes `count` units.
  static void checkAt(size_t length, size_t start, size_t count) {
    ulk_fuzz::Edit<Unit> edit = {numbered<Unit>(length, 1),
                                 numbered<Unit>(count, 7000),
                                 static_cast<int32_t>(start),
                                 static_cast<int32_t>(count),
                                 {}};
    for (const Shifts shifts : kPlaces) {
      edit.shifts = shifts;
      edit.checkInsert();
      edit.checkRemove();
    }
    ASSERT_FALSE(HasFailure()) << count << " units of " << length << " at position " << start;
  }
};

using Widths = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(Edit, Widths);

TYPED_TEST(Edit, InsertsAndRemovesAnyLengthAnywhere) {
  // Both sides of one, two and four vectors of either width, and pieces that are handed on to a block copy.
  constexpr size_t kLengths[] = {0,  1,  2,  3,  5,  7,  8,  9,   15,  16, 17,
                                 31, 32, 33, 48, 63, 64, 65, 100, 300, 600};
  for (const size_t length : kLengths) {
    for (const size_t count : kLengths) {
      for (const size_t start : {size_t{0}, size_t{1}, length / 2, length - 1, length})
        this->checkAt(length, start, count);
      if (this->HasFatalFailure()) return;
    }
  }
}

// Pieces that overlap what they are moved to by nearly all of their length, also long ones.
TYPED_TEST(Edit, MovesPiecesThatOverlapThemselves) {
  constexpr size_t kLong = 1000;
  for (size_t distance = 1; distance <= 70; ++distance) {
    for (const size_t start : {size_t{0}, size_t{3}, kLong - 70}) this->checkAt(kLong, start, distance);
    if (this->HasFatalFailure()) return;
  }
}

TYPED_TEST(Edit, ReplacesAtEveryLengthAndAlignment) {
  const TypeParam wanted = static_cast<TypeParam>(0x8181);
  // What a comparison of half a unit would take for it.
  const TypeParam near[] = {static_cast<TypeParam>(sizeof(TypeParam) == 1 ? 0x01 : 0x8180),
                            static_cast<TypeParam>(sizeof(TypeParam) == 1 ? 0x80 : 0x0181), 0};
  std::mt19937 random(13);
  for (size_t length = 0; length <= 150; ++length) {
    ulk_fuzz::Edit<TypeParam> edit = {{}, {wanted, 'x'}, 0, 0, {}};
    for (size_t i = 0; i < length; ++i) edit.text.push_back(random() % 2 == 0 ? wanted : near[random() % 3]);
    for (size_t shift = 0; shift <= kAtEnd; ++shift) {
      edit.shifts = {shift, 0, random() % (kAtEnd + 1)};
      edit.checkReplace();
    }
    edit.piece = {wanted};
    edit.checkReplace();
    ASSERT_FALSE(this->HasFailure()) << "length " << length;
  }
}

TYPED_TEST(Edit, ReplacesOneUnitValueOfAll) {
  constexpr size_t kValues = size_t{1} << (8 * sizeof(TypeParam));
  ulk_fuzz::Edit<TypeParam> edit = {{}, {}, 0, 0, {}};
  for (size_t i = 0; i < kValues; ++i) edit.text.push_back(static_cast<TypeParam>(i));
  for (size_t oldUnit = 0; oldUnit < kValues; oldUnit += sizeof(TypeParam) == 1 ? 1 : 251) {
    edit.piece = {static_cast<TypeParam>(oldUnit), static_cast<TypeParam>(oldUnit * 7 + 3)};
    edit.checkReplace();
    ASSERT_FALSE(this->HasFailure()) << oldUnit;
  }
}

struct LengthCase {
  int32_t length;
  int32_t count;  // inserted or removed
  int32_t start;
  bool forRemove = false;  // only
};

constexpr LengthCase kBad[] = {
    {-1, 0, 0},
    {10, -1, 0},
    {10, INT32_MIN, 5},
    {10, 0, -1},
    {10, 4, 11},
    {10, 0, 11},
    {10, 3, INT32_MAX},
    {10, 3, INT32_MIN},
    {0, 1, 1},
    // No room for a negative number to make up for.
    {-1, 1, -1},
    {-1, -1, 0},
    {10, -5, 12},
    {10, 11, 0, true},
    {10, 1, 10, true},
    {10, 6, 5, true},
    {0, 1, 0, true},
    // Sums that no 32-bit number holds.
    {10, INT32_MAX, 1, true},
    {10, 1, INT32_MAX, true},
    {10, INT32_MAX, INT32_MAX, true},
};

TYPED_TEST(Edit, RefusesLengthsAndPositionsOutsideTheString) {
  using Calls = Api<TypeParam>;
  const auto string = numbered<TypeParam>(10, 1);
  const ulk_fuzz::Block<TypeParam> block(20, string, 3);
  TypeParam* const to = block.get();
  for (const LengthCase& c : kBad) {
    SCOPED_TRACE(testing::Message() << c.length << ", " << c.count << ", " << c.start);
    int32_t length = c.length;
    EXPECT_EQ(Calls::remove(string.data(), c.length, to, c.start, c.count), ulkErrLength);
    EXPECT_EQ(Calls::removeInPlace(to, &length, c.start, c.count), ulkErrLength);
    if (!c.forRemove) {
      EXPECT_EQ(Calls::insert(string.data(), c.length, string.data(), c.count, to, c.start), ulkErrLength);
      EXPECT_EQ(Calls::insertInPlace(string.data(), c.count, to, &length, c.start), ulkErrLength);
    }
    EXPECT_EQ(length, c.length);
    EXPECT_TRUE(block.holds(string));
  }
}

}  // namespace
}  // namespace ulk_test
