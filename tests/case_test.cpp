// Case conversion: every unit there is, in every company that makes the conversion take another way, at every
// length and alignment.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "fuzz/case.h"

namespace ulk_test {
namespace {

using ulk_fuzz::checkCase;
using ulk_fuzz::kAtEnd;

template <class Unit>
class Case : public testing::Test {};
using Widths = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(Case, Widths);

// One alphabet, or a mixture of two, so that a text has the long runs of one method and the changes of it.
template <class Unit>
std::vector<Unit> randomText(std::mt19937& random, size_t length) {
  constexpr struct {
    uint16_t first;
    uint16_t count;
  } kAlphabets[] = {{0x40, 0x3C},    {0x20, 0x60},    {0xC0, 0x200},  {0x386, 0xD0},  {0x1E80, 0x180},
                    {0x2010, 0x160}, {0x4E00, 0x400}, {0xFF10, 0x50}, {0xD7F0, 0x20}, {0, 0xFFFF}};
  const auto& common = kAlphabets[random() % std::size(kAlphabets)];
  const auto& rare = kAlphabets[random() % std::size(kAlphabets)];
  const auto chance = 1 + random() % 80;
  std::vector<Unit> text;
  for (size_t i = 0; i < length; ++i) {
    const auto& alphabet = random() % chance == 0 ? rare : common;
    text.push_back(static_cast<Unit>(alphabet.first + random() % alphabet.count));
  }
  return text;
}

// Which way a unit takes depends on its neighbours.
TYPED_TEST(Case, ConvertsEveryUnitInEveryCompany) {
  constexpr uint32_t kUnits = 1u << 8 * sizeof(TypeParam);
  for (const int company : {0x62, 0x42, 0xE9, 0x416, 0x1EA0, 0x24FF, 0x4E2D, 0xFF21, 0xFFFF}) {
    // A group of 32 units, a block of eight, and one that overlaps it.
    std::vector<TypeParam> text(45, static_cast<TypeParam>(company));
    for (uint32_t unit = 0; unit < kUnits; ++unit) {
      TypeParam& changed = text[unit * 7 % text.size()];
      changed = static_cast<TypeParam>(unit);
      checkCase(text, {0, 0, 0});
      if (company == 0xE9) checkCase<TypeParam>({changed}, {kAtEnd, 0, kAtEnd});
      ASSERT_FALSE(this->HasFailure()) << "unit " << unit << " among " << company;
      changed = static_cast<TypeParam>(company);
    }
  }
}

TYPED_TEST(Case, ConvertsAtEveryLengthAndAlignment) {
  std::mt19937 random(5);
  for (size_t length = 0; length <= 4000; length += length < 150 ? 1 : length / 20) {
    for (size_t shift = 0; shift <= kAtEnd; shift += length < 40 ? 1 : 6) {
      checkCase(randomText<TypeParam>(random, length), {shift, 0, shift * 7 % (kAtEnd + 1)});
      checkCase(randomText<TypeParam>(random, length), {kAtEnd, 0, shift});
      ASSERT_FALSE(this->HasFailure()) << "length " << length << ", shift " << shift;
    }
  }
}

// The number of letters is part of the promise: a mapping added by mistake, to the table and to the text
// above, is noticed here.
TEST(FullCase, HasTheLettersOfItsEdition) {
  int32_t lowered = 0, uppered = 0;
  std::vector<uint32_t> both;
  for (uint32_t unit = 0; unit < 0x10000; ++unit) {
    const uint16_t source = static_cast<uint16_t>(unit);
    uint16_t lower = 0, upper = 0;
    ulksLowercase_16u(&source, &lower, 1);
    ulksUppercase_16u(&source, &upper, 1);
    lowered += lower != source;
    uppered += upper != source;
    if (lower != source && upper != source) both.push_back(unit);
  }
  EXPECT_EQ(lowered, 704);
  EXPECT_EQ(uppered, 673);
  EXPECT_EQ(both, (std::vector<uint32_t>{0x1C5, 0x1C8, 0x1CB, 0x1F2}));
}

}  // namespace
}  // namespace ulk_test
