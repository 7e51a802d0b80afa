// The comparison family: every length, place of the difference and alignment, every unit with case, and at
// the edge of readable memory on either side.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "fuzz/compare.h"

namespace ulk_test {
namespace {

using ulk_fuzz::checkCompare;
using ulk_fuzz::kAtEnd;

template <class Unit>
class Comparison : public testing::Test {
 protected:
  static void checkAtGuards(const std::vector<Unit>& left, const std::vector<Unit>& right) {
    checkCompare(left, right, {kAtEnd, kAtEnd, 0});
    checkCompare(left, right, {0, kAtEnd, 0});
    checkCompare(left, right, {kAtEnd, 0, 0});
  }
};

using Widths = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(Comparison, Widths);

// The exact difference, from unsigned units, folded to lower case.
TEST(Comparisons, GiveTheDocumentedResults) {
  const struct {
    ulkStatus(ULK_CALL* compare)(const uint16_t*, const uint16_t*, int32_t, int32_t*);
    uint16_t left, right;
    int32_t expected;
  } cases[] = {
      {ulksCompare_16u, 0xFFFF, 0, 65535},
      {ulksCompare_16u, 0x102, 0x201, -255},
      {ulksEqual_16u, 'a', 'a', 1},
      {ulksEqual_16u, 'a', 'A', 0},
      {ulksCompareIgnoreCaseLatin_16u, 'Z', '[', 31},
      {ulksCompareIgnoreCaseLatin_16u, 'a', 'B', -1},
      {ulksCompareIgnoreCaseLatin_16u, '@', '`', -32},
      {ulksCompareIgnoreCaseLatin_16u, 0xC0, 0xE0, -32},
      {ulksCompareIgnoreCase_16u, 0x130, 'I', 0},
      {ulksCompareIgnoreCase_16u, 0x131, 'I', 200},
      {ulksCompareIgnoreCase_16u, 0x1C5, 0x1C4, 0},
      {ulksCompareIgnoreCase_16u, 0x212A, 'k', 0x212A - 'k'},
      {ulksCompareIgnoreCase_16u, 0x3C3, 0x3C2, 1},
  };
  int32_t result = -77777777;
  for (const auto& c : cases) {
    EXPECT_EQ(c.compare(&c.left, &c.right, 1, &result), ulkOk);
    EXPECT_EQ(result, c.expected) << std::hex << c.left << ' ' << c.right;
  }
  const uint8_t least = 0, most = 0xFF;
  ulksCompare_8u(&least, &most, 1, &result);
  EXPECT_EQ(result, -255);
}

// Strings that differ in one place, once in the case of a letter and once by more; and differently in the
// next place, which must not be looked at.
TYPED_TEST(Comparison, FindsTheFirstDifferenceAtEveryPlace) {
  for (size_t length = 0; length <= 200; length += length < 140 ? 1 : 9) {
    std::vector<TypeParam> left(length, TypeParam{'m'});
    for (size_t i = 0; i < length; i += 3) left[i] = static_cast<TypeParam>(0xC1C1);
    std::vector<TypeParam> right = left;
    this->checkAtGuards(left, right);
    for (size_t at = 0; at < length; at += at % 16 < 2 || at + 4 > length ? 1 : 5) {
      right[at] = static_cast<TypeParam>(left[at] ^ 0x20);
      if (at + 1 < length) right[at + 1] = 0;
      this->checkAtGuards(left, right);
      right[at] = static_cast<TypeParam>(left[at] + (sizeof(TypeParam) == 1 ? 0x80 : 0x8000));
      this->checkAtGuards(left, right);
      right[at] = left[at];
      if (at + 1 < length) right[at + 1] = left[at + 1];
    }
    ASSERT_FALSE(this->HasFailure()) << "length " << length;
  }
}

// Strings that are the same but for case in most places, so that the ways of comparing alternate.
TYPED_TEST(Comparison, ComparesRandomStrings) {
  constexpr uint16_t kAlphabets[] = {0x40, 0xC0, 0x180, 0x390, 0x410, 0x1EA0, 0x1F00, 0x24B0, 0x4E00, 0xFF20};
  std::mt19937 random(31);
  for (int round = 0; round < 6000; ++round) {
    const auto common = kAlphabets[random() % std::size(kAlphabets)];
    const auto rare = kAlphabets[random() % std::size(kAlphabets)];
    const auto chance = 1 + random() % 60;
    std::vector<TypeParam> left(random() % (round % 8 == 0 ? 1000 : 150));
    for (TypeParam& unit : left)
      unit = static_cast<TypeParam>((random() % chance == 0 ? rare : common) + random() % 64);
    std::vector<TypeParam> right = left;
    for (TypeParam& unit : right) {
      if (random() % 3 == 0) unit = static_cast<TypeParam>(fullLower(unit));
    }
    if (!right.empty() && round % 2 == 0) {
      TypeParam& unit = right[random() % right.size()];
      unit = static_cast<TypeParam>(unit ^ 1u << random() % 8);
    }
    if (round % 3 == 0) std::swap(left, right);
    this->checkAtGuards(left, right);
    for (int i = 0; i < 4; ++i) checkCompare(left, right, {random() % 32, random() % 32, 0});
    ASSERT_FALSE(this->HasFailure()) << "round " << round;
  }
}

// Each unit beside its lowercase, and beside one that differs from it, at a place of its own: alone, in a
// text of one script, and in one that leaves no shortcut.
TYPED_TEST(Comparison, FoldsEveryUnit) {
  constexpr uint32_t kUnits = 1u << 8 * sizeof(TypeParam);
  for (const int company : {0x78, 0x416, 0x4E2D, 0xFF21}) {
    std::vector<TypeParam> left(45, static_cast<TypeParam>(company));
    std::vector<TypeParam> right = left;
    for (uint32_t value = 0; value < kUnits; ++value) {
      const auto unit = static_cast<TypeParam>(value);
      const size_t at = value * 7 % left.size();
      for (const uint32_t other : {uint32_t{fullLower(unit)}, value ^ 0x20, value * 40503 >> 3}) {
        left[at] = unit;
        right[at] = static_cast<TypeParam>(other);
        checkCompare(left, right, {0, 0, 0});
        if (company == 0x78) checkCompare<TypeParam>({left[at]}, {right[at]}, {kAtEnd, kAtEnd, 0});
        ASSERT_FALSE(this->HasFailure()) << std::hex << value << " and " << other;
      }
      left[at] = right[at] = static_cast<TypeParam>(company);
    }
  }
}

}  // namespace
}  // namespace ulk_test
