// The search family in both widths and directions, at every alignment, and at the edge of readable memory on
// either side.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "fuzz/search.h"

namespace ulk_test {
namespace {

using ulk_fuzz::checkSearch;
using ulk_fuzz::checkTerminated;
using ulk_fuzz::found;
using ulk_fuzz::kAtEnd;
using ulk_fuzz::lengthOf;
using ulk_fuzz::Shifts;

constexpr Shifts kPlaces[] = {{kAtEnd, kAtEnd, 0}, {0, kAtEnd, 0}, {1, 1, 0}, {7, 0, 0}, {16, kAtEnd, 0}};

// Letters as units of either width. The 16-bit ones agree in one byte or in both with each other's, so that a
// search that looks at half a unit, or between two, finds too much.
using Widening = uint32_t (*)(uint8_t);
template <class Unit>
std::vector<Widening> widenings() {
  if (sizeof(Unit) == 1)
    return {[](uint8_t c) -> uint32_t { return c; }, [](uint8_t c) -> uint32_t { return c ^ 0x80; }};
  return {[](uint8_t c) -> uint32_t { return c; }, [](uint8_t c) -> uint32_t { return c * 0x0100u; },
          [](uint8_t c) -> uint32_t { return c * 0x0101u; },
          [](uint8_t c) -> uint32_t { return 0xFF00u | c; }};
}

template <class Unit>
std::vector<Unit> widen(const std::string& letters, Widening widening) {
  std::vector<Unit> units;
  for (const char c : letters) units.push_back(static_cast<Unit>(widening(static_cast<uint8_t>(c))));
  return units;
}

template <class Unit>
class Search : public testing::Test {};
using Widths = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(Search, Widths);

// Near misses, repetitions, overlaps, and patterns of a vector, of two and of more.
constexpr const char* kTexts[][2] = {
    {"", ""},
    {"abc", ""},
    {"", "a"},
    {"a", "ab"},
    {"ab", "ab"},
    {"aaa", "aa"},
    {"abcabc", "abc"},
    {"abxabc", "abc"},
    {"abcdx", "abcde"},
    {"abcdeabcdf", "abcdf"},
    {"axxxbaxyxb", "axyxb"},
    {"aabaabaaab", "aabaaab"},
    {"abababab", "babab"},
    {"abcdefghijklmnop", "abcdefghijklmnop"},
    {"abcdefghijklmnoqabcdefghijklmnopq", "abcdefghijklmnopq"},
    {"abcdefghijklmnopabcdefghijklmnopabcdefghijklmnopq", "abcdefghijklmnopabcdefghijklmnopq"},
};

// Units that match nothing on both sides, so many that every loop and every last block has its turn.
TYPED_TEST(Search, FindsSubstringsAtEveryPadding) {
  for (const Widening widening : widenings<TypeParam>()) {
    for (const auto& [middle, wanted] : kTexts) {
      for (size_t left = 0; left <= 70; ++left) {
        for (size_t right = 0; right <= 70; right += left % 16 == 0 ? 1 : 13) {
          const std::string text = std::string(left, '.') + middle + std::string(right, '.');
          const auto pattern = widen<TypeParam>(wanted, widening);
          for (const Shifts shifts : kPlaces) checkSearch(widen<TypeParam>(text, widening), pattern, shifts);
          ASSERT_FALSE(this->HasFailure()) << '"' << wanted << "\" in \"" << text << '"';
        }
      }
    }
  }
}

// Few different letters make near misses and repetitions of every kind.
TYPED_TEST(Search, FindsSubstringsInRandomTexts) {
  std::mt19937 random(11);
  for (int round = 0; round < 6000; ++round) {
    const uint32_t letters = static_cast<uint32_t>(1 + random() % 3);
    std::vector<TypeParam> text(random() % (round % 40 == 0 ? 5000 : 150));
    for (auto& unit : text) unit = static_cast<TypeParam>('a' + random() % letters);
    std::vector<TypeParam> pattern(random() % (round % 8 == 0 ? 100 : 8));
    for (auto& unit : pattern) unit = static_cast<TypeParam>('a' + random() % letters);
    if (round % 2 == 0 && !text.empty()) {
      const auto from = text.begin() + static_cast<ptrdiff_t>(random() % text.size());
      const auto most = std::min<ptrdiff_t>(text.end() - from, round % 3 == 0 ? 60 : 6);
      pattern.assign(from, from + static_cast<ptrdiff_t>(random() % static_cast<size_t>(most + 1)));
    }
    for (const Shifts shifts : kPlaces) checkSearch(text, pattern, shifts);
    ASSERT_FALSE(this->HasFailure()) << "round " << round;
  }
}

// Texts of which nearly every position looks like a match for long. A search that compares the pattern anew
// at each would take minutes here.
TYPED_TEST(Search, TakesLinearTimeWhereNearlyEverythingMatches) {
  constexpr size_t kText = 3 << 20;
  constexpr size_t kPattern = 1 << 20;
  std::vector<TypeParam> text(kText, 'a');
  std::vector<TypeParam> pattern(kPattern, 'a');
  const auto expect = [&](int32_t index) {
    for (const auto search : {Api<TypeParam>::find, Api<TypeParam>::findRev})
      EXPECT_EQ(found(search, text.data(), lengthOf(text), pattern.data(), lengthOf(pattern)), index);
  };
  for (const size_t odd : {size_t{0}, kPattern / 3, kPattern / 2, kPattern - 1}) {
    pattern[odd] = 'b';
    expect(-1);
    pattern[odd] = 'a';
  }
  // Now it is the text that has a few odd units: each position fails at another place of the pattern.
  for (size_t at = kPattern / 2; at < kText; at += kPattern / 2) text[at] = 'b';
  expect(-1);
  text[kPattern] = text[3 * kPattern / 2] = 'a';
  for (const size_t at : {2 * kPattern + 1, 2 * kPattern, kPattern - 1}) text[at] = 'b';
  expect(kPattern);
}

TYPED_TEST(Search, FindsUnitsAtEveryLengthAndAlignment) {
  const TypeParam wanted = static_cast<TypeParam>(0x8181);
  // What a search for half a unit, or one that takes units as signed, would take for it.
  const TypeParam nearly = static_cast<TypeParam>(sizeof(TypeParam) == 1 ? 0x01 : 0x8180);
  for (size_t length = 0; length <= 300; ++length) {
    std::vector<TypeParam> text(length, nearly);
    for (const size_t shift : {size_t{0}, kAtEnd}) checkSearch(text, {wanted}, {shift, 0, 0});
    for (size_t at = 0; at < length && length <= 200; at += at < 2 || at + 3 > length ? 1 : 5) {
      text[at] = wanted;
      for (size_t shift = at % 4; shift <= kAtEnd; shift += 4) checkSearch(text, {wanted}, {shift, 0, 0});
      text[length / 2] = wanted;
      checkSearch(text, {wanted}, {at % (kAtEnd + 1), 0, 0});
      text[at] = text[length / 2] = nearly;
    }
    ASSERT_FALSE(this->HasFailure()) << "length " << length;
  }
}

// Sets around each number of members at which the method changes, with texts around each length at which it
// does.
TYPED_TEST(Search, FindsMembersOfSetsOfEverySize) {
  for (const size_t setLength :
       std::initializer_list<size_t>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 15, 16, 17, 31, 32, 33, 40, 64, 200}) {
    std::vector<TypeParam> set;
    // Zero and high units are members like any other; some stand in the set twice.
    for (size_t i = 0; i < setLength; ++i) set.push_back(static_cast<TypeParam>(i % 150 * 0x0309));
    for (const size_t length : std::initializer_list<size_t>{0,  1,  2,  3,  4,  5,   7,   8,   9,    10,  14,
                                                             15, 16, 17, 20, 21, 31,  32,  33,  56,   57,  63,
                                                             64, 65, 66, 95, 96, 130, 257, 520, 3000, 5000}) {
      std::vector<TypeParam> text(length, TypeParam{0x02});
      for (const Shifts shifts : kPlaces) checkSearch(text, set, shifts);
      for (size_t at = 0; at < length && !set.empty(); at += 1 + length / 7) {
        text[at] = set[at % set.size()];
        for (const Shifts shifts : kPlaces) checkSearch(text, set, shifts);
        text[length - 1] = set[set.size() - 1];
        checkSearch(text, set, kPlaces[at % 2]);
        text[at] = text[length - 1] = TypeParam{0x02};
      }
      ASSERT_FALSE(this->HasFailure()) << setLength << " members, text of " << length;
    }
  }
}

// Long texts of which none, few or most units lie between members.
TYPED_TEST(Search, PassesOverWhatLiesBetweenMembers) {
  std::mt19937 random(14);
  for (int round = 0; round < 1500; ++round) {
    std::vector<TypeParam> set(4 + random() % 14);
    const uint32_t spread = random() % 4 == 0 ? 8 : 256;
    for (auto& unit : set) unit = static_cast<TypeParam>(random() % spread + (round % 5 == 0 ? 0 : 0x40));
    std::vector<TypeParam> text(380 + random() % 1200);
    const uint32_t strangers = std::vector<uint32_t>{1, 4, 60, 1000}[random() % 4];
    for (auto& unit : text) unit = static_cast<TypeParam>(random() % strangers == 0 ? random() % 256 : 0x20);
    if (round % 3 != 0) {
      const auto other = [&](TypeParam unit) { return std::find(set.begin(), set.end(), unit) == set.end(); };
      const auto end = std::stable_partition(text.begin(), text.end(), other);
      std::fill(end, text.end(), text.empty() ? TypeParam{0} : text[0]);
      text[random() % text.size()] = set[random() % set.size()];
    }
    checkSearch(text, set, kPlaces[static_cast<size_t>(round) % std::size(kPlaces)]);
    ASSERT_FALSE(this->HasFailure()) << "round " << round;
  }
}

TYPED_TEST(Search, TellsMembersFromAllOtherUnits) {
  std::mt19937 random(12);
  for (const size_t setLength : std::initializer_list<size_t>{1, 2, 3, 4, 8, 12, 16, 40, 300}) {
    std::vector<TypeParam> set(setLength);
    for (auto& unit : set) unit = static_cast<TypeParam>(random());
    for (uint32_t unit = 0; unit <= static_cast<TypeParam>(-1); unit += sizeof(TypeParam) == 1 ? 1 : 7) {
      for (const size_t length : std::initializer_list<size_t>{1, 20, 600}) {
        const std::vector<TypeParam> text(length, static_cast<TypeParam>(unit));
        ASSERT_EQ(found(Api<TypeParam>::findCAny, text.data(), lengthOf(text), set.data(), lengthOf(set)),
                  referenceFindAny({text[0]}, set).first)
            << "unit " << unit << ", " << setLength << " members, length " << length;
      }
    }
  }
}

TYPED_TEST(Search, MeasuresZeroTerminatedStrings) {
  const std::vector<TypeParam> pattern = {'b', 'c'};
  for (size_t length = 0; length <= 200; ++length) {
    std::vector<TypeParam> text(length, 'a');
    for (size_t shift = 0; shift <= kAtEnd; ++shift) {
      checkTerminated(text, pattern, {shift, kAtEnd, 0});
      if (length < 2) continue;
      text[length - 2] = 'b';
      checkTerminated(text, pattern, {shift, 0, 0});
      text[length - 1] = 'c';
      checkTerminated(text, pattern, {shift, shift, 0});
      text[length - 2] = text[length - 1] = 'a';
    }
    // What stands after the terminator, or in the unit before the text, is no part of it.
    text.insert(text.begin(), 'b');
    text.insert(text.end(), {0, 'b', 'c', 'b', 'c', 0});
    for (size_t shift = 0; shift < 16; ++shift) {
      const ulk_fuzz::Block<TypeParam> block(text, shift);
      EXPECT_EQ(found(Api<TypeParam>::findCZ, block.get() + 1, TypeParam{'b'}), -1);
      EXPECT_EQ(found(Api<TypeParam>::findZ, block.get() + 1, block.get() + length + 2), -1);
    }
    ASSERT_FALSE(this->HasFailure()) << "length " << length;
  }
}

}  // namespace
}  // namespace ulk_test
