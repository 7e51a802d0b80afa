// The comparison family against a loop over the units: every length, place of the difference and alignment,
// every unit with case, and at the edge of readable memory on either side.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "support/api.h"
#include "support/guarded.h"
#include "support/reference_case.h"
#include "support/refused.h"
#include "ulkch.h"

namespace ulk_test {
namespace {

template <class Unit>
using Compare = ulkStatus(ULK_CALL*)(const Unit*, const Unit*, int32_t, int32_t*);

// An ordering function, and what it takes a unit for.
template <class Unit>
struct Ordering {
  const char* name;
  Compare<Unit> compare;
  Unit (*folded)(Unit);
};

template <class Unit>
std::vector<Ordering<Unit>> orderings() {
  std::vector<Ordering<Unit>> all = {{"exact", Api<Unit>::compare, [](Unit unit) { return unit; }},
                                     {"Latin", Api<Unit>::compareIgnoreCaseLatin, latinLower<Unit>}};
  if constexpr (sizeof(Unit) == 2) all.push_back({"full", ulksCompareIgnoreCase_16u, fullLower});
  return all;
}

constexpr int32_t kUntouched = -77777777;

// A call that must succeed.
template <class Unit>
int32_t resultOf(Compare<Unit> compare, const Unit* left, const Unit* right, size_t length) {
  int32_t result = kUntouched;
  EXPECT_EQ(compare(left, right, static_cast<int32_t>(length), &result), ulkOk);
  return result;
}

template <class Unit>
int32_t expectedOf(const Ordering<Unit>& ordering, const std::vector<Unit>& left,
                   const std::vector<Unit>& right) {
  for (size_t i = 0; i < left.size(); ++i) {
    const int32_t difference = int32_t{ordering.folded(left[i])} - int32_t{ordering.folded(right[i])};
    if (difference != 0) return difference;
  }
  return 0;
}

template <class Unit>
class Comparison : public testing::Test {
 protected:
  static constexpr size_t kMost = 1 << 16;
  GuardedUnits<Unit> lefts_{kMost};
  GuardedUnits<Unit> rights_{kMost};

  void expectCompared(const std::vector<Unit>& left, const std::vector<Unit>& right, const Unit* placedLeft,
                      const Unit* placedRight) {
    for (const Ordering<Unit>& ordering : orderings<Unit>()) {
      EXPECT_EQ(resultOf(ordering.compare, placedLeft, placedRight, left.size()),
                expectedOf(ordering, left, right))
          << ordering.name;
    }
    EXPECT_EQ(resultOf(Api<Unit>::equal, placedLeft, placedRight, left.size()), left == right ? 1 : 0);
  }

  void expectComparedAtGuards(const std::vector<Unit>& left, const std::vector<Unit>& right) {
    expectCompared(left, right, lefts_.endingAtGuard(left), rights_.endingAtGuard(right));
    expectCompared(left, right, lefts_.startingAtGuard(left), rights_.endingAtGuard(right));
    expectCompared(left, right, lefts_.endingAtGuard(left), rights_.startingAtGuard(right));
  }
};

using Widths = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(Comparison, Widths);

struct PairCase {
  const char* what;
  Compare<uint16_t> compare;
  std::u16string left;
  std::u16string right;
  int32_t expected;
};

// The exact difference, from unsigned units, folded to lower case.
TEST(Comparisons, GiveTheDocumentedResults) {
  const uint8_t zero = 0, most = 0xFF;
  EXPECT_EQ(resultOf(ulksCompare_8u, &zero, &most, 1), -255);
  EXPECT_EQ(resultOf(ulksCompare_8u, &most, &zero, 1), 255);
  const uint8_t capital = 0xC0, small = 0xE0;
  EXPECT_EQ(resultOf(ulksCompareIgnoreCaseLatin_8u, &capital, &small, 1), -32);

  const PairCase kCases[] = {
      {"exact", ulksCompare_16u, u"\uFFFF", std::u16string(1, u'\0'), 65535},
      {"exact", ulksCompare_16u, u"\u0102", u"\u0201", -255},
      {"exact", ulksCompare_16u, u"same, A", u"same, a", -32},
      {"equal", ulksEqual_16u, u"", u"", 1},
      {"equal", ulksEqual_16u, u"a", u"A", 0},
      {"Latin", ulksCompareIgnoreCaseLatin_16u, u"Z", u"[", 31},
      {"Latin", ulksCompareIgnoreCaseLatin_16u, u"a", u"B", -1},
      {"Latin", ulksCompareIgnoreCaseLatin_16u, u"@", u"`", -32},
      {"Latin", ulksCompareIgnoreCaseLatin_16u, u"[", u"{", -32},
      {"Latin", ulksCompareIgnoreCaseLatin_16u, u"\u00C0", u"\u00E0", -32},
      {"Latin", ulksCompareIgnoreCaseLatin_16u, u"\u0141", u"\u0161", -32},
      {"full", ulksCompareIgnoreCase_16u, u"\u0130", u"i", 0},
      {"full", ulksCompareIgnoreCase_16u, u"\u0130", u"I", 0},
      {"full", ulksCompareIgnoreCase_16u, u"\u0131", u"I", 200},
      {"full", ulksCompareIgnoreCase_16u, u"\u01C5", u"\u01C4", 0},
      {"full", ulksCompareIgnoreCase_16u, u"\u01C5", u"\u01C6", 0},
      {"full", ulksCompareIgnoreCase_16u, u"\u212A", u"k", 0x212A - 'k'},
      {"full", ulksCompareIgnoreCase_16u, u"\u03C3", u"\u03C2", 1},
      {"full", ulksCompareIgnoreCase_16u, u"\u10A0", u"\u10D0", 0},
      {"full", ulksCompareIgnoreCase_16u, u"\u041F\u0420\u0418\u0412\u0415\u0422",
       u"\u043F\u0440\u0438\u0432\u0435\u0442", 0},
  };
  for (const PairCase& c : kCases) {
    ASSERT_EQ(c.left.size(), c.right.size());
    const auto* left = reinterpret_cast<const uint16_t*>(c.left.data());
    const auto* right = reinterpret_cast<const uint16_t*>(c.right.data());
    EXPECT_EQ(resultOf(c.compare, left, right, c.left.size()), c.expected)
        << c.what << ", case " << &c - kCases;
  }
}

// Strings that differ in one place, once in the case of a letter and once by more; and differently in the
// next place, which must not be looked at.
TYPED_TEST(Comparison, FindsTheFirstDifferenceAtEveryPlace) {
  for (size_t length = 0; length <= 200; length += length < 140 ? 1 : 9) {
    std::vector<TypeParam> left(length, TypeParam{'m'});
    for (size_t i = 0; i < length; i += 3) left[i] = static_cast<TypeParam>(0xC1C1);
    std::vector<TypeParam> right = left;
    this->expectComparedAtGuards(left, right);
    for (size_t at = 0; at < length; at += at % 16 < 2 || at + 4 > length ? 1 : 5) {
      right[at] = static_cast<TypeParam>(left[at] ^ 0x20);
      if (at + 1 < length) right[at + 1] = 0;
      this->expectComparedAtGuards(left, right);
      right[at] = static_cast<TypeParam>(left[at] + (sizeof(TypeParam) == 1 ? 0x80 : 0x8000));
      this->expectComparedAtGuards(left, right);
      right[at] = left[at];
      if (at + 1 < length) right[at + 1] = left[at + 1];
    }
    ASSERT_FALSE(this->HasFailure()) << "length " << length;
  }
}

TYPED_TEST(Comparison, ComparesAtEveryAlignment) {
  for (const size_t length : {1u, 5u, 9u, 17u, 31u, 40u, 63u, 64u, 100u, 150u}) {
    std::vector<TypeParam> left;
    for (size_t i = 0; i < length; ++i) left.push_back(static_cast<TypeParam>("aBcDeFgH"[i % 8]));
    std::vector<TypeParam> right = left;
    right.back() ^= 0x60;
    for (size_t offset = 0; offset < 64; ++offset) {
      for (const size_t other : {size_t{0}, size_t{1}, offset}) {
        const TypeParam* placedLeft = this->lefts_.atOffset(left, offset);
        this->expectCompared(left, right, placedLeft, this->rights_.atOffset(right, other));
        this->expectCompared(left, left, placedLeft, placedLeft);
        ASSERT_FALSE(this->HasFailure()) << "length " << length << ", offsets " << offset << " and " << other;
      }
    }
  }
}

// Strings that are the same but for case in most places, so that the ways of comparing alternate.
TYPED_TEST(Comparison, ComparesRandomStrings) {
  constexpr unsigned kSeed = 31;
  constexpr uint16_t kAlphabets[] = {0x40, 0xC0, 0x180, 0x390, 0x410, 0x1EA0, 0x1F00, 0x24B0, 0x4E00, 0xFF20};
  std::mt19937 random(kSeed);
  const auto fullest = orderings<TypeParam>().back();
  for (int round = 0; round < 6000; ++round) {
    const auto common = kAlphabets[random() % std::size(kAlphabets)];
    const auto rare = kAlphabets[random() % std::size(kAlphabets)];
    const auto chance = 1 + random() % 60;
    std::vector<TypeParam> left(random() % (round % 8 == 0 ? 1000 : 150));
    for (TypeParam& unit : left)
      unit = static_cast<TypeParam>((random() % chance == 0 ? rare : common) + random() % 64);
    std::vector<TypeParam> right = left;
    for (TypeParam& unit : right) {
      if (random() % 3 == 0) unit = fullest.folded(unit);
    }
    if (!right.empty() && round % 2 == 0) {
      TypeParam& unit = right[random() % right.size()];
      unit = static_cast<TypeParam>(unit ^ 1u << random() % 8);
    }
    if (round % 3 == 0) std::swap(left, right);
    this->expectComparedAtGuards(left, right);
    this->expectCompared(left, right, this->lefts_.atOffset(left, random() % 64),
                         this->rights_.atOffset(right, random() % 64));
    ASSERT_FALSE(this->HasFailure()) << "seed " << kSeed << ", round " << round;
  }
}

// Each unit beside its lowercase, and beside one that differs from it, at a place of its own: alone, in a
// text of one script, and in one that leaves no shortcut.
TYPED_TEST(Comparison, FoldsEveryUnit) {
  constexpr uint32_t kUnits = 1u << 8 * sizeof(TypeParam);
  const auto all = orderings<TypeParam>();
  for (const int company : {0x78, 0x416, 0x4E2D, 0xFF21}) {
    std::vector<TypeParam> left(45, static_cast<TypeParam>(company));
    std::vector<TypeParam> right = left;
    for (uint32_t unit = 0; unit < kUnits; ++unit) {
      const size_t at = unit * 7 % left.size();
      left[at] = static_cast<TypeParam>(unit);
      for (const Ordering<TypeParam>& ordering : all) {
        for (const TypeParam other : {ordering.folded(left[at]), static_cast<TypeParam>(unit ^ 0x20),
                                      static_cast<TypeParam>(unit * 40503 >> 3)}) {
          right[at] = other;
          const int32_t expected = int32_t{ordering.folded(left[at])} - int32_t{ordering.folded(other)};
          ASSERT_EQ(resultOf(ordering.compare, left.data(), right.data(), left.size()), expected)
              << ordering.name << ", unit " << unit << " and " << other;
          ASSERT_EQ(resultOf(ordering.compare, &left[at], &right[at], 1), expected)
              << ordering.name << ", unit " << unit << " and " << other << " alone";
        }
      }
      left[at] = right[at] = static_cast<TypeParam>(company);
    }
  }
}

TYPED_TEST(Comparison, RefusesBadArguments) {
  const TypeParam text[] = {1, 2};
  int32_t result = kUntouched;
  std::vector<Compare<TypeParam>> all = {Api<TypeParam>::equal};
  for (const auto& ordering : orderings<TypeParam>()) all.push_back(ordering.compare);
  for (const Compare<TypeParam> compare : all) {
    for (const int32_t bad : {0, -1}) expectNullRefused(compare, text, text, bad, &result);
    EXPECT_EQ(compare(text, text, -1, &result), ulkErrLength);
    EXPECT_EQ(compare(text, text, INT32_MIN, &result), ulkErrLength);
  }
  EXPECT_EQ(result, kUntouched);
}

}  // namespace
}  // namespace ulk_test
