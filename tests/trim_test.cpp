// Trimming against a unit-by-unit reference: both widths, into a destination and in place, with runs and kept
// parts of every length that is handled in another way, sets of every size that is, between guards and at odd
// addresses.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/api.h"
#include "support/guarded.h"
#include "support/reference_trim.h"
#include "support/refused.h"
#include "support/written.h"
#include "ulkch.h"

namespace ulk_test {
namespace {

constexpr int32_t kUntouched = -77;

template <class Unit>
class Trim : public testing::Test {
 protected:
  using Units = std::vector<Unit>;
  static constexpr size_t kMost = 2000;
  GuardedUnits<Unit> sources_{kMost};
  GuardedUnits<Unit> sets_{kMost};
  WrittenUnits<Unit> results_{kMost};

  // What is removed in most tests, and one that shares a byte with it.
  static constexpr Unit kUnit = static_cast<Unit>(0x8181);
  static constexpr Unit kOther = static_cast<Unit>(sizeof(Unit) == 1 ? 0x01 : 0x8180);

  // A part between runs of `kUnit`, with the same unit inside.
  static Units between(size_t left, size_t kept, size_t right) {
    Units text(left + kept + right, kUnit);
    for (size_t i = 0; i < kept; i += i + 2 < kept && i % 5 == 2 ? 2 : 1) text[left + i] = kOther;
    if (kept > 0) text[left + kept - 1] = static_cast<Unit>(kOther + kept);
    return text;
  }

  // `trim(to, &length)` must leave `expected`.
  template <class Call>
  void expectWritten(const Units& text, const Units& expected, Place place, Call trim) {
    int32_t length = kUntouched;
    Unit* to = results_.room(text.size(), place);
    ASSERT_EQ(trim(to, &length), ulkOk);
    ASSERT_EQ(length, lengthOf(expected));
    ASSERT_TRUE(results_.hold(expected));
  }

  void expectTrimmedOfUnit(const Units& text, const Unit* from, Place place) {
    const Units expected = referenceTrim(text, {kUnit}, true, true);
    expectWritten(text, expected, place, [&](Unit* to, int32_t* length) {
      return Api<Unit>::trimC(from, lengthOf(text), kUnit, to, length);
    });
  }

  void expectTrimmedInPlace(const Units& text, Place place) {
    const Units expected = referenceTrim(text, {kUnit}, true, true);
    // What stood behind the shorter string is still there.
    Units left = text;
    std::copy(expected.begin(), expected.end(), left.begin());
    int32_t length = lengthOf(text);
    Unit* string = results_.room(text.size(), place, text);
    ASSERT_EQ(Api<Unit>::trimCInPlace(string, &length, kUnit), ulkOk);
    ASSERT_EQ(length, lengthOf(expected));
    ASSERT_TRUE(results_.hold(left));
  }

  void expectTrimmedOfSet(const Units& text, const Unit* from, const Units& set, const Unit* members,
                          Place place) {
    const auto expect = [&](auto trim, bool start, bool end) {
      expectWritten(text, referenceTrim(text, set, start, end), place, [&](Unit* to, int32_t* length) {
        return trim(from, lengthOf(text), members, lengthOf(set), to, length);
      });
    };
    expect(Api<Unit>::trimCAny, true, true);
    expect(Api<Unit>::trimStartCAny, true, false);
    expect(Api<Unit>::trimEndCAny, false, true);
  }
};

using Widths = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(Trim, Widths);

// Runs that single looks, short blocks, blocks and groups of blocks come to the end of.
constexpr size_t kRuns[] = {0,  1,  2,  3,  4,  5,  6,  8,  11, 12, 13,  15,
                            16, 17, 19, 20, 21, 28, 33, 36, 52, 68, 100, 150};

TYPED_TEST(Trim, RemovesRunsOfEveryLength) {
  for (const size_t left : kRuns) {
    for (const size_t right : kRuns) {
      for (const size_t kept : std::initializer_list<size_t>{0, 1, 2, 7, 20, 70}) {
        const auto text = this->between(left, kept, right);
        const std::vector<TypeParam> set = {this->kUnit};
        const Place place = kPlaces[(left + 2 * right + kept) % std::size(kPlaces)];
        const TypeParam* members = this->sets_.endingAtGuard(set);
        for (const TypeParam* from : {this->sources_.endingAtGuard(text), this->sources_.atOffset(text, 1)}) {
          this->expectTrimmedOfUnit(text, from, place);
          this->expectTrimmedOfSet(text, from, set, members, place);
        }
        this->expectTrimmedInPlace(text, place);
        ASSERT_FALSE(this->HasFailure())
            << left << " units before, " << kept << " kept, " << right << " after";
      }
    }
  }
}

TYPED_TEST(Trim, WorksAtEveryAddress) {
  for (size_t offset = 0; offset < 64; ++offset) {
    for (const size_t run : std::initializer_list<size_t>{7, 16, 17, 70, 140}) {
      const auto text = this->between(run, 1, run + 1);
      const std::vector<TypeParam> set = {this->kUnit, 1, 2, 3, 4};
      const TypeParam* from = this->sources_.atOffset(text, offset);
      const TypeParam* members = this->sets_.atOffset(set, offset);
      for (const auto side : {Place::kAtStart, Place::kAtEnd}) {
        this->expectTrimmedOfUnit(text, from, {side, offset});
        this->expectTrimmedInPlace(text, {side, offset});
        this->expectTrimmedOfSet(text, from, set, members, {side, offset});
      }
      ASSERT_FALSE(this->HasFailure()) << "offset " << offset << ", runs of " << run;
    }
  }
}

// Sources that end, or begin, where memory does.
TYPED_TEST(Trim, ReadsNothingBesideTheText) {
  for (size_t length = 0; length <= 150; ++length) {
    for (const size_t kept : {size_t{0}, length}) {
      const auto text = kept == 0 ? this->between(length, 0, 0) : this->between(0, length, 0);
      for (const bool ending : {true, false}) {
        const TypeParam* from =
            ending ? this->sources_.endingAtGuard(text) : this->sources_.startingAtGuard(text);
        this->expectTrimmedOfUnit(text, from, {Place::kAtEnd, 0});
        for (const size_t setLength : std::initializer_list<size_t>{1, 3, 4, 7, 12, 20, 40}) {
          const std::vector<TypeParam> set(setLength, this->kUnit);
          const TypeParam* members =
              ending ? this->sets_.endingAtGuard(set) : this->sets_.startingAtGuard(set);
          this->expectTrimmedOfSet(text, from, set, members, {Place::kAtStart, 0});
        }
      }
    }
    ASSERT_FALSE(this->HasFailure()) << "length " << length;
  }
}

// Kept parts that are copied in different ways, moved by less and by more than what is copied at once.
TYPED_TEST(Trim, CopiesAndMovesPartsOfEveryLength) {
  for (const size_t kept :
       std::initializer_list<size_t>{3,  4,   8,   9,   15,  16,  17,  31,  32,  33,  63,  64, 65,
                                     96, 128, 129, 200, 255, 256, 257, 300, 511, 512, 513, 900}) {
    for (size_t shift = 1; shift <= 140; shift += shift < 70 ? 1 : 13) {
      std::vector<TypeParam> text(shift, this->kUnit);
      for (size_t i = 0; i < kept; ++i) text.push_back(static_cast<TypeParam>(i * 0x0305 + 1));
      text.back() = this->kOther;
      text.push_back(this->kUnit);
      const Place place = kPlaces[shift % std::size(kPlaces)];
      this->expectTrimmedInPlace(text, place);
      this->expectTrimmedOfUnit(text, this->sources_.atOffset(text, shift % 64), place);
      ASSERT_FALSE(this->HasFailure()) << kept << " units, moved by " << shift;
    }
  }
}

// Sets around each number of members at which the method changes, or might: runs made of every member, in
// turn.
TYPED_TEST(Trim, KnowsSetsOfEverySize) {
  for (const size_t setLength :
       std::initializer_list<size_t>{1,  2,  3,  4,  5,  6,  7,  8,  9,  12, 13,  15,  16,  17,  24,  31,
                                     32, 33, 47, 48, 50, 51, 56, 57, 64, 99, 131, 132, 135, 136, 200, 255}) {
    std::vector<TypeParam> set;
    // Zero and units with the high bit are members like any other. No 8-bit unit comes twice.
    for (size_t i = 0; i < setLength; ++i) set.push_back(static_cast<TypeParam>(i * 0x0401));
    const TypeParam other = static_cast<TypeParam>(sizeof(TypeParam) == 1 ? 0xFF : 0x0400);
    const TypeParam* members =
        setLength % 2 == 0 ? this->sets_.endingAtGuard(set) : this->sets_.atOffset(set, 1);
    for (const size_t left : std::initializer_list<size_t>{0, 1, 3, 4, 5, 12, 13, 20, 80, 300}) {
      for (const size_t right : std::initializer_list<size_t>{0, 2, 5, 14, 33, 290}) {
        for (const size_t kept : std::initializer_list<size_t>{0, 1, 40}) {
          std::vector<TypeParam> text(left + kept + right);
          for (size_t i = 0; i < text.size(); ++i) text[i] = set[(i * 7 + left) % setLength];
          if (kept > 0) text[left] = text[left + kept - 1] = other;
          this->expectTrimmedOfSet(text, this->sources_.endingAtGuard(text), set, members,
                                   kPlaces[(left + right) % std::size(kPlaces)]);
          ASSERT_FALSE(this->HasFailure()) << setLength << " members, " << left << " units before, " << kept
                                           << " kept, " << right << " after";
        }
      }
    }
  }
}

TYPED_TEST(Trim, TellsMembersFromAllOtherUnits) {
  for (const size_t setLength : std::initializer_list<size_t>{1, 2, 3, 4, 6, 12, 16, 30, 33, 60, 140}) {
    std::vector<TypeParam> set(setLength);
    for (size_t i = 0; i < setLength; ++i) set[i] = static_cast<TypeParam>(0x0103 + i * 0x1957);
    for (uint32_t unit = 0; unit <= static_cast<TypeParam>(-1); unit += sizeof(TypeParam) == 1 ? 1 : 5) {
      const std::vector<TypeParam> text(unit % 3 == 0 ? 40 : 3, static_cast<TypeParam>(unit));
      std::vector<TypeParam> to(text.size());
      int32_t length = kUntouched;
      ASSERT_EQ(Api<TypeParam>::trimCAny(text.data(), lengthOf(text), set.data(), lengthOf(set), to.data(),
                                         &length),
                ulkOk);
      ASSERT_EQ(length, lengthOf(referenceTrim(text, set, true, true)))
          << "unit " << unit << ", " << setLength << " members";
    }
  }
}

TYPED_TEST(Trim, KeepsAllWithAnEmptySet) {
  const std::vector<TypeParam> none;
  for (const size_t length : std::initializer_list<size_t>{0, 1, 5, 100, 1000}) {
    const std::vector<TypeParam> text(length, TypeParam{' '});
    this->expectTrimmedOfSet(text, this->sources_.endingAtGuard(text), none, this->sets_.endingAtGuard(none),
                             {Place::kAtEnd, 0});
  }
}

// Pointers before lengths; neither the destination nor its length is written.
TYPED_TEST(Trim, RefusesBadArguments) {
  const std::vector<TypeParam> units = {' ', 'a', ' '};
  const TypeParam* text = units.data();
  const TypeParam space = ' ';
  int32_t length = kUntouched;
  TypeParam* to = this->results_.room(3, {Place::kAtStart, 0});
  for (const auto trim :
       {Api<TypeParam>::trimCAny, Api<TypeParam>::trimStartCAny, Api<TypeParam>::trimEndCAny}) {
    for (const int32_t bad : {0, -1}) expectNullRefused(trim, text, bad, &space, bad, to, &length);
    EXPECT_EQ(trim(text, -1, &space, 1, to, &length), ulkErrLength);
    EXPECT_EQ(trim(text, 3, &space, -1, to, &length), ulkErrLength);
    EXPECT_EQ(trim(text, 0, &space, INT32_MIN, to, &length), ulkErrLength);
  }
  for (const int32_t bad : {0, -1}) expectNullRefused(Api<TypeParam>::trimC, text, bad, space, to, &length);
  EXPECT_EQ(Api<TypeParam>::trimC(text, -1, space, to, &length), ulkErrLength);
  EXPECT_EQ(length, kUntouched);
  EXPECT_TRUE(this->results_.hold({}));

  TypeParam* string = this->results_.room(3, {Place::kAtStart, 0}, units);
  length = -1;
  expectNullRefused(Api<TypeParam>::trimCInPlace, string, &length, space);
  EXPECT_EQ(Api<TypeParam>::trimCInPlace(string, &length, space), ulkErrLength);
  EXPECT_EQ(length, -1);
  EXPECT_TRUE(this->results_.hold(units));
}

}  // namespace
}  // namespace ulk_test
