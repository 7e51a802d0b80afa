// Case conversion against letters written out as text and a loop over the units: every unit there is, in
// every company that makes the conversion take another way, at every length and alignment, in place and not.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "support/api.h"
#include "support/reference_case.h"
#include "support/refused.h"
#include "support/written.h"
#include "ulkch.h"

namespace ulk_test {
namespace {

// An operation in its two forms, and what it makes of a unit.
template <class Unit>
struct Conversion {
  const char* name;
  ulkStatus(ULK_CALL* convert)(const Unit*, Unit*, int32_t);
  ulkStatus(ULK_CALL* convertInPlace)(Unit*, int32_t);
  Unit (*ofUnit)(Unit);

  std::vector<Unit> of(const std::vector<Unit>& units) const {
    std::vector<Unit> converted;
    for (const Unit unit : units) converted.push_back(ofUnit(unit));
    return converted;
  }
};

template <class Unit>
std::vector<Conversion<Unit>> conversions() {
  using Calls = Api<Unit>;
  std::vector<Conversion<Unit>> all = {
      {"lowercase Latin", Calls::lowercaseLatin, Calls::lowercaseLatinInPlace, latinLower<Unit>},
      {"uppercase Latin", Calls::uppercaseLatin, Calls::uppercaseLatinInPlace, latinUpper<Unit>}};
  if constexpr (sizeof(Unit) == 2) {
    all.push_back({"lowercase", ulksLowercase_16u, ulksLowercase_16u_I, fullLower});
    all.push_back({"uppercase", ulksUppercase_16u, ulksUppercase_16u_I, fullUpper});
  }
  return all;
}

template <class Unit>
class Case : public testing::Test {
 protected:
  static constexpr size_t kMost = 4096;
  GuardedUnits<Unit> source_{kMost};
  WrittenUnits<Unit> written_{kMost};

  // Converts a text in place, from a place of its own, and with the destination equal to the source.
  void expectConverted(const Conversion<Unit>& conversion, const std::vector<Unit>& text, Place place) {
    const std::vector<Unit> expected = conversion.of(text);
    const int32_t length = lengthOf(text);

    Unit* room = written_.room(text.size(), place, text);
    EXPECT_EQ(conversion.convertInPlace(room, length), ulkOk);
    EXPECT_TRUE(written_.hold(expected)) << conversion.name << " in place";

    room = written_.room(text.size(), place, text);
    EXPECT_EQ(conversion.convert(room, room, length), ulkOk);
    EXPECT_TRUE(written_.hold(expected)) << conversion.name << " onto itself";

    const auto expectFrom = [&](const Unit* source) {
      room = written_.room(text.size(), place);
      EXPECT_EQ(conversion.convert(source, room, length), ulkOk);
      EXPECT_TRUE(written_.hold(expected)) << conversion.name;
    };
    expectFrom(source_.endingAtGuard(text));
    expectFrom(source_.atOffset(text, place.bytes % 7));
  }
};

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

TYPED_TEST(Case, ConvertsEveryUnit) {
  constexpr uint32_t kUnits = 1u << 8 * sizeof(TypeParam);
  std::vector<TypeParam> all;
  for (uint32_t unit = 0; unit < kUnits; ++unit) all.push_back(static_cast<TypeParam>(unit));
  for (const auto& conversion : conversions<TypeParam>()) {
    const std::vector<TypeParam> expected = conversion.of(all);
    std::vector<TypeParam> converted = all;
    ASSERT_EQ(conversion.convertInPlace(converted.data(), lengthOf(all)), ulkOk);
    for (size_t unit = 0; unit < all.size(); ++unit) {
      TypeParam alone = all[unit];
      conversion.convertInPlace(&alone, 1);
      ASSERT_EQ(alone, expected[unit]) << conversion.name << ", unit " << unit << " alone";
      ASSERT_EQ(converted[unit], expected[unit]) << conversion.name << ", unit " << unit;
    }
  }
}

// Which way a unit takes depends on its neighbours.
TYPED_TEST(Case, ConvertsEveryUnitInEveryCompany) {
  constexpr uint32_t kUnits = 1u << 8 * sizeof(TypeParam);
  constexpr uint16_t kCompanies[] = {'b', 'B', 0xE9, 0x416, 0x1EA0, 0x24FF, 0x4E2D, 0xFF21, 0xFFFF};
  constexpr size_t kLength = 45;  // a group of 32 units, a block of eight, and one that overlaps it
  for (const auto& conversion : conversions<TypeParam>()) {
    for (const uint16_t company : kCompanies) {
      const TypeParam neighbour = static_cast<TypeParam>(company);
      std::vector<TypeParam> text(kLength, neighbour);
      const std::vector<TypeParam> expected = conversion.of(text);
      std::vector<TypeParam> converted(kLength);
      for (uint32_t unit = 0; unit < kUnits; ++unit) {
        const size_t at = unit * 7 % kLength;
        text[at] = static_cast<TypeParam>(unit);
        conversion.convert(text.data(), converted.data(), kLength);
        ASSERT_EQ(converted[at], conversion.ofUnit(text[at])) << conversion.name << ", unit " << unit;
        converted[at] = expected[at];
        ASSERT_EQ(converted, expected) << conversion.name << ", neighbours of unit " << unit;
        text[at] = neighbour;
      }
    }
  }
}

TYPED_TEST(Case, ConvertsAtEveryLengthAndAlignment) {
  constexpr unsigned kSeed = 5;
  std::mt19937 random(kSeed);
  for (const auto& conversion : conversions<TypeParam>()) {
    for (size_t length = 0; length <= 40; ++length) {
      for (size_t offset = 0; offset < 64; offset += length % 8 < 2 ? 1 : 5) {
        this->expectConverted(conversion, randomText<TypeParam>(random, length), {Place::kAtStart, offset});
        ASSERT_FALSE(this->HasFailure())
            << "seed " << kSeed << ", length " << length << ", offset " << offset;
      }
    }
    for (size_t length = 0; length <= 4000; length += length < 150 ? 1 : length / 20) {
      for (const Place place : kPlaces) {
        this->expectConverted(conversion, randomText<TypeParam>(random, length), place);
        ASSERT_FALSE(this->HasFailure()) << "seed " << kSeed << ", length " << length;
      }
    }
  }
}

TYPED_TEST(Case, RefusesBadArguments) {
  TypeParam text[] = {'a', 'B'};
  TypeParam converted[] = {'?', '?'};
  for (const auto& conversion : conversions<TypeParam>()) {
    for (const int32_t bad : {0, -1}) {
      expectNullRefused(conversion.convert, text, converted, bad);
      expectNullRefused(conversion.convertInPlace, text, bad);
    }
    EXPECT_EQ(conversion.convert(text, converted, -1), ulkErrLength);
    EXPECT_EQ(conversion.convert(text, converted, INT32_MIN), ulkErrLength);
    EXPECT_EQ(conversion.convertInPlace(text, -1), ulkErrLength);
    EXPECT_EQ(conversion.convert(text, converted, 0), ulkOk);
  }
  EXPECT_EQ(text[0], 'a');
  EXPECT_EQ(text[1], 'B');
  EXPECT_EQ(converted[0], '?');
  EXPECT_EQ(converted[1], '?');
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
