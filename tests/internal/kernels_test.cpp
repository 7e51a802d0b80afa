// Search kernels that the exports reach only in rare cases, or that only the regular expressions use.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "kernels/find_unit.h"
#include "kernels/first_difference.h"
#include "kernels/two_way.h"
#include "support/reference_search.h"

namespace ulk {
namespace {

template <class Unit>
class Kernels : public testing::Test {};
using Widths = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(Kernels, Widths);

// All strings of two letters up to a length: every way a pattern can overlap itself, and every place to cut
// it.
template <class Unit>
std::vector<std::vector<Unit>> allStrings(size_t mostUnits) {
  std::vector<std::vector<Unit>> strings;
  for (size_t length = 1; length <= mostUnits; ++length) {
    for (uint32_t bits = 0; bits < 1u << length; ++bits) {
      std::vector<Unit> units;
      for (size_t i = 0; i < length; ++i) units.push_back(static_cast<Unit>('a' + (bits >> i & 1)));
      strings.push_back(units);
    }
  }
  return strings;
}

template <class Unit>
void expectTwoWayFinds(const std::vector<Unit>& text, const std::vector<Unit>& pattern) {
  const ulk_test::FirstAndLast expected = ulk_test::referenceFind(text, pattern);
  const auto search = [&](auto direction) {
    return twoWaySearch<decltype(direction)>(text.data(), text.size(), pattern.data(), pattern.size());
  };
  ASSERT_EQ(search(Forward()), expected.first)
      << testing::PrintToString(pattern) << " in " << testing::PrintToString(text);
  ASSERT_EQ(search(Backward()), expected.last)
      << testing::PrintToString(pattern) << " in " << testing::PrintToString(text);
}

TYPED_TEST(Kernels, TwoWayFindsAllShortPatterns) {
  const auto texts = allStrings<TypeParam>(10);
  for (const auto& pattern : allStrings<TypeParam>(7)) {
    for (const auto& text : texts) expectTwoWayFinds(text, pattern);
    ASSERT_FALSE(this->HasFatalFailure());
  }
}

TYPED_TEST(Kernels, TwoWayFindsPeriodicPatterns) {
  std::mt19937 random(13);
  const auto periods = allStrings<TypeParam>(5);
  for (int round = 0; round < 20000; ++round) {
    const auto repeat = [&](const std::vector<TypeParam>& period, size_t length) {
      std::vector<TypeParam> units;
      while (units.size() < length) units.insert(units.end(), period.begin(), period.end());
      units.resize(length);
      return units;
    };
    const auto& period = periods[random() % periods.size()];
    std::vector<TypeParam> text = repeat(period, 60);
    std::vector<TypeParam> pattern = repeat(period, 1 + random() % 30);
    for (auto flips = random() % 3; flips > 0; --flips) text[random() % text.size()] ^= 'a' ^ 'b';
    if (random() % 2) pattern[random() % pattern.size()] ^= 'a' ^ 'b';
    if (random() % 2)
      std::copy(pattern.begin(), pattern.end(), text.begin() + static_cast<ptrdiff_t>(random() % 30));
    expectTwoWayFinds(text, pattern);
    ASSERT_FALSE(this->HasFatalFailure()) << "round " << round;
  }
}

TYPED_TEST(Kernels, UnitsAndDifferencesAtEveryPlace) {
  for (int32_t length = 0; length <= 150; ++length) {
    std::vector<TypeParam> left(static_cast<size_t>(length), 'a');
    std::vector<TypeParam> right = left;
    EXPECT_EQ(firstDifference(left.data(), right.data(), length), -1);
    for (int32_t at = 0; at < length; ++at) {
      right[static_cast<size_t>(at)] = 'b';
      EXPECT_EQ(firstDifference(left.data(), right.data(), length), at);
      EXPECT_EQ(findUnit(right.data(), length, TypeParam{'b'}), at);
      EXPECT_EQ(findUnitRev(right.data(), length, TypeParam{'b'}), at);
      EXPECT_EQ(findUnitRev(right.data(), length, TypeParam{'a'}),
                at == length - 1 ? length - 2 : length - 1);
      right.back() = 'b';
      EXPECT_EQ(firstDifference(left.data(), right.data(), length), at);
      right = left;
    }
  }
}

}  // namespace
}  // namespace ulk
