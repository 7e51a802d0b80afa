// The search family against an obvious reference: both widths, both directions, every alignment, and at the
// edge of readable memory on either side.
#include <gtest/gtest.h>

#include <initializer_list>
#include <random>
#include <string>
#include <vector>

#include "support/api.h"
#include "support/guarded.h"
#include "support/reference_search.h"
#include "support/refused.h"
#include "support/written.h"
#include "ulkch.h"

namespace ulk_test {
namespace {

constexpr int32_t kUntouched = -77;

// A call that must succeed.
template <class Search, class... Arguments>
int32_t indexOf(Search search, Arguments... arguments) {
  int32_t index = kUntouched;
  EXPECT_EQ(search(arguments..., &index), ulkOk);
  return index;
}

// Calls `check` with the text at both guards and at the addresses given, modulo 64.
template <class Unit, class Check>
void atPlaces(GuardedUnits<Unit>& memory, const std::vector<Unit>& text,
              std::initializer_list<size_t> offsets, Check check) {
  check(memory.endingAtGuard(text));
  check(memory.startingAtGuard(text));
  for (const size_t offset : offsets) check(memory.atOffset(text, offset));
}

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
class Search : public testing::Test {
 protected:
  static constexpr size_t kMost = 1 << 16;
  GuardedUnits<Unit> texts_{kMost};
  GuardedUnits<Unit> others_{kMost};

  void expectFound(const std::vector<Unit>& text, const std::vector<Unit>& pattern, FirstAndLast expected) {
    const Unit* wanted = others_.endingAtGuard(pattern);
    atPlaces(texts_, text, {1, 7, 16, 25}, [&](const Unit* placed) {
      ASSERT_EQ(indexOf(Api<Unit>::find, placed, lengthOf(text), wanted, lengthOf(pattern)), expected.first);
      ASSERT_EQ(indexOf(Api<Unit>::findRev, placed, lengthOf(text), wanted, lengthOf(pattern)),
                expected.last);
    });
  }

  void expectAnyFound(const std::vector<Unit>& text, const std::vector<Unit>& set) {
    const FirstAndLast expected = referenceFindAny(text, set);
    for (const bool atGuard : {true, false}) {
      const Unit* members = atGuard ? others_.endingAtGuard(set) : others_.atOffset(set, 1);
      atPlaces(texts_, text, {1, 16}, [&](const Unit* placed) {
        ASSERT_EQ(indexOf(Api<Unit>::findCAny, placed, lengthOf(text), members, lengthOf(set)),
                  expected.first);
        ASSERT_EQ(indexOf(Api<Unit>::findRevCAny, placed, lengthOf(text), members, lengthOf(set)),
                  expected.last);
      });
    }
  }
};

using Widths = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(Search, Widths);

struct FindCase {
  const char* text;
  const char* pattern;
  int32_t first;
  int32_t last;
};

constexpr FindCase kFindCases[] = {
    {"", "", -1, -1},
    {"abc", "", -1, -1},
    {"", "a", -1, -1},
    {"a", "ab", -1, -1},
    {"a", "a", 0, 0},
    {"ab", "ab", 0, 0},
    {"abc", "abc", 0, 0},
    {"aaa", "aa", 0, 1},
    {"abcabc", "abc", 0, 3},
    {"abxabc", "abc", 3, 3},
    {"abcabx", "abc", 0, 0},
    {"abcdx", "abcde", -1, -1},
    {"abcdeabcdf", "abcdf", 5, 5},
    {"axxxbaxyxb", "axyxb", 5, 5},
    {"aabaabaaab", "aabaaab", 3, 3},
    {"abababab", "babab", 1, 3},
    {"abcdefghijklmnop", "abcdefghijklmnop", 0, 0},
    {"abcdefghijklmnoqabcdefghijklmnopq", "abcdefghijklmnopq", 16, 16},
    {"abcdefghijklmnopabcdefghijklmnopabcdefghijklmnopq", "abcdefghijklmnopabcdefghijklmnopq", 16, 16},
};

// Units that match nothing on both sides, so many that every loop and every last block has its turn.
TYPED_TEST(Search, FindsSubstringsAtEveryPadding) {
  for (const Widening widening : widenings<TypeParam>()) {
    for (const FindCase& c : kFindCases) {
      SCOPED_TRACE(testing::Message() << '"' << c.pattern << "\" in \"" << c.text << '"');
      const auto pattern = widen<TypeParam>(c.pattern, widening);
      for (int32_t left = 0; left <= 70; ++left) {
        for (int32_t right = 0; right <= 70; right += left % 16 == 0 ? 1 : 13) {
          const std::string padded = std::string(static_cast<size_t>(left), '.') + c.text +
                                     std::string(static_cast<size_t>(right), '.');
          this->expectFound(widen<TypeParam>(padded, widening), pattern,
                            {c.first < 0 ? -1 : c.first + left, c.last < 0 ? -1 : c.last + left});
          ASSERT_FALSE(this->HasFailure()) << left << " units before, " << right << " after";
        }
      }
    }
  }
}

// Few different letters make near misses and repetitions of every kind.
TYPED_TEST(Search, FindsSubstringsInRandomTexts) {
  constexpr unsigned kSeed = 11;
  std::mt19937 random(kSeed);
  for (int round = 0; round < 6000; ++round) {
    const uint32_t letters = static_cast<uint32_t>(1 + random() % 3);
    std::vector<TypeParam> text(random() % (round % 40 == 0 ? 5000 : 150));
    for (auto& unit : text) unit = static_cast<TypeParam>('a' + random() % letters);
    std::vector<TypeParam> pattern(random() % (round % 8 == 0 ? 100 : 8));
    for (auto& unit : pattern) unit = static_cast<TypeParam>('a' + random() % letters);
    if (round % 2 == 0 && !text.empty()) {
      const size_t from = random() % text.size();
      const size_t most = std::min<size_t>(text.size() - from, round % 3 == 0 ? 60 : 6);
      pattern.assign(text.begin() + static_cast<ptrdiff_t>(from),
                     text.begin() + static_cast<ptrdiff_t>(from + random() % (most + 1)));
    }
    this->expectFound(text, pattern, referenceFind(text, pattern));
    ASSERT_FALSE(this->HasFailure()) << "seed " << kSeed << ", round " << round;
  }
}

// Texts of which nearly every position looks like a match for long. A search that compares the pattern anew
// at each would take minutes here.
TYPED_TEST(Search, TakesLinearTimeWhereNearlyEverythingMatches) {
  constexpr size_t kText = 3 << 20;
  constexpr size_t kPattern = 1 << 20;
  const std::vector<TypeParam> same(kText, 'a');
  for (const size_t odd : {size_t{0}, kPattern / 3, kPattern / 2, kPattern - 1}) {
    std::vector<TypeParam> pattern(kPattern, 'a');
    pattern[odd] = 'b';
    EXPECT_EQ(indexOf(Api<TypeParam>::find, same.data(), lengthOf(same), pattern.data(), lengthOf(pattern)),
              -1);
    EXPECT_EQ(
        indexOf(Api<TypeParam>::findRev, same.data(), lengthOf(same), pattern.data(), lengthOf(pattern)), -1);
  }
  // Now it is the text that has a few odd units: each position fails at another place of the pattern.
  std::vector<TypeParam> text = same;
  for (size_t at = kPattern / 2; at < kText; at += kPattern / 2) text[at] = 'b';
  const std::vector<TypeParam> pattern(kPattern, 'a');
  const auto expect = [&](int32_t index) {
    EXPECT_EQ(indexOf(Api<TypeParam>::find, text.data(), lengthOf(text), pattern.data(), lengthOf(pattern)),
              index);
    EXPECT_EQ(
        indexOf(Api<TypeParam>::findRev, text.data(), lengthOf(text), pattern.data(), lengthOf(pattern)),
        index);
  };
  expect(-1);
  text[kPattern] = text[3 * kPattern / 2] = 'a';
  text[2 * kPattern + 1] = 'b';
  text[2 * kPattern] = 'b';
  text[kPattern - 1] = 'b';
  expect(kPattern);
}

TYPED_TEST(Search, FindsUnitsAtEveryLengthAndAlignment) {
  const TypeParam wanted = static_cast<TypeParam>(0x8181);
  // What a search for half a unit, or one that takes units as signed, would take for it.
  const TypeParam nearly = static_cast<TypeParam>(sizeof(TypeParam) == 1 ? 0x01 : 0x8180);
  for (size_t length = 0; length <= 200; ++length) {
    for (size_t offset = 0; offset < 16; ++offset) {
      std::vector<TypeParam> text(length, nearly);
      const auto expect = [&](int32_t first, int32_t last) {
        const TypeParam* placed = this->texts_.atOffset(text, offset);
        EXPECT_EQ(indexOf(Api<TypeParam>::findC, placed, lengthOf(text), wanted), first);
        EXPECT_EQ(indexOf(Api<TypeParam>::findRevC, placed, lengthOf(text), wanted), last);
      };
      expect(-1, -1);
      for (size_t at = 0; at < length; at += at < 2 || at + 3 > length ? 1 : 5) {
        text[at] = wanted;
        expect(static_cast<int32_t>(at), static_cast<int32_t>(at));
        text[length / 2] = wanted;
        expect(static_cast<int32_t>(std::min(at, length / 2)),
               static_cast<int32_t>(std::max(at, length / 2)));
        text[at] = text[length / 2] = nearly;
      }
      ASSERT_FALSE(this->HasFailure()) << "length " << length << ", offset " << offset;
    }
  }
}

TYPED_TEST(Search, ReadsNothingBesideTheText) {
  for (size_t length = 0; length <= 300; ++length) {
    const std::vector<TypeParam> text(length, 'a');
    atPlaces(this->texts_, text, {}, [&](const TypeParam* placed) {
      EXPECT_EQ(indexOf(Api<TypeParam>::findC, placed, lengthOf(text), TypeParam{'b'}), -1);
      EXPECT_EQ(indexOf(Api<TypeParam>::findRevC, placed, lengthOf(text), TypeParam{'b'}), -1);
    });
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
      this->expectAnyFound(text, set);
      for (size_t at = 0; at < length && !set.empty(); at += 1 + length / 7) {
        text[at] = set[at % set.size()];
        this->expectAnyFound(text, set);
        text[length - 1] = set[set.size() - 1];
        this->expectAnyFound(text, set);
        text[at] = text[length - 1] = TypeParam{0x02};
      }
      ASSERT_FALSE(this->HasFailure()) << setLength << " members, text of " << length;
    }
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
        const bool member = std::find(set.begin(), set.end(), text[0]) != set.end();
        ASSERT_EQ(indexOf(Api<TypeParam>::findCAny, text.data(), lengthOf(text), set.data(), lengthOf(set)),
                  member ? 0 : -1)
            << "unit " << unit << ", " << setLength << " members, length " << length;
      }
    }
  }
}

TYPED_TEST(Search, MeasuresZeroTerminatedStrings) {
  const auto terminated = [](size_t length, TypeParam unit) {
    std::vector<TypeParam> units(length, unit);
    units.push_back(0);
    return units;
  };
  const std::vector<TypeParam> pattern = {'b', 'c', 0, 'x'};
  const TypeParam* wanted = this->others_.endingAtGuard(pattern);
  for (size_t length = 0; length <= 200; ++length) {
    std::vector<TypeParam> text = terminated(length, 'a');
    const auto expect = [&](int32_t unitAt, int32_t patternAt) {
      atPlaces(this->texts_, text, {1, 2, 5, 11, 18, 31, 64 - 2 * sizeof(TypeParam)},
               [&](const TypeParam* placed) {
                 EXPECT_EQ(indexOf(Api<TypeParam>::findCZ, placed, TypeParam{'b'}), unitAt);
                 EXPECT_EQ(indexOf(Api<TypeParam>::findZ, placed, wanted), patternAt);
                 EXPECT_EQ(indexOf(Api<TypeParam>::findCZ, placed, TypeParam{0}), -1);
               });
    };
    expect(-1, -1);
    if (length >= 2) {
      const int32_t at = static_cast<int32_t>(length - 2);
      text[length - 2] = 'b';
      expect(at, -1);
      text[length - 1] = 'c';
      expect(at, at);
    }
    // What stands after the terminator, or in the unit before the text, is no part of it.
    text = terminated(length, 'a');
    text.insert(text.begin(), 'b');
    text.insert(text.end(), {'b', 'c', 'b', 'c'});
    for (size_t offset = 0; offset < 16; ++offset) {
      const TypeParam* placed = this->texts_.atOffset(text, offset) + 1;
      EXPECT_EQ(indexOf(Api<TypeParam>::findCZ, placed, TypeParam{'b'}), -1);
      EXPECT_EQ(indexOf(Api<TypeParam>::findZ, placed, wanted), -1);
    }
    ASSERT_FALSE(this->HasFailure()) << "length " << length;
  }
  const TypeParam empty = 0;
  EXPECT_EQ(indexOf(Api<TypeParam>::findZ, wanted, &empty), -1);
}

// Pointers before lengths, and the index keeps its value.
TYPED_TEST(Search, RefusesBadArguments) {
  const std::vector<TypeParam> units = {'a', 'b', 0};
  const TypeParam* text = units.data();
  int32_t index = kUntouched;
  for (const auto search : {Api<TypeParam>::find, Api<TypeParam>::findRev, Api<TypeParam>::findCAny,
                            Api<TypeParam>::findRevCAny}) {
    for (const int32_t bad : {0, -1}) expectNullRefused(search, text, bad, text, bad, &index);
    EXPECT_EQ(search(text, -1, text, 1, &index), ulkErrLength);
    EXPECT_EQ(search(text, 2, text, -1, &index), ulkErrLength);
    EXPECT_EQ(search(text, 0, text, INT32_MIN, &index), ulkErrLength);
  }
  for (const auto search : {Api<TypeParam>::findC, Api<TypeParam>::findRevC}) {
    for (const int32_t bad : {0, -1}) expectNullRefused(search, text, bad, 'a', &index);
    EXPECT_EQ(search(text, -1, 'a', &index), ulkErrLength);
  }
  expectNullRefused(Api<TypeParam>::findCZ, text, 'a', &index);
  expectNullRefused(Api<TypeParam>::findZ, text, text, &index);
  EXPECT_EQ(index, kUntouched);
}

}  // namespace
}  // namespace ulk_test
