// Insertion, removal and unit replacement against the standard library's: both widths, in place and not, with
// pieces of every length that is copied in another way, between guards and at odd addresses.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "support/api.h"
#include "support/guarded.h"
#include "support/refused.h"
#include "support/written.h"
#include "ulkch.h"

namespace ulk_test {
namespace {

template <class Unit>
std::vector<Unit> numbered(size_t count, unsigned first) {
  std::vector<Unit> units(count);
  for (size_t i = 0; i < count; ++i) units[i] = static_cast<Unit>((first + i) * 0x4F21 >> 3);
  return units;
}

// Both sides of one, two and four vectors of either width, and pieces that are handed on to a block copy.
constexpr size_t kLengths[] = {0, 1, 2, 3, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 48, 63, 64, 65, 100, 300, 600};

std::vector<size_t> positionsIn(size_t length) {
  std::vector<size_t> positions = {0, 1, length / 2, length - 1, length};
  positions.erase(std::remove_if(positions.begin(), positions.end(), [&](size_t at) { return at > length; }),
                  positions.end());
  positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
  return positions;
}

template <class Unit>
class Edit : public testing::Test {
 protected:
  using Units = std::vector<Unit>;
  static constexpr size_t kMost = 1300;
  GuardedUnits<Unit> sources_{kMost};
  GuardedUnits<Unit> insertions_{kMost};
  WrittenUnits<Unit> results_{kMost};

  void expectInserted(const Units& source, const Units& inserted, size_t start) {
    Units expected = source;
    expected.insert(expected.begin() + static_cast<ptrdiff_t>(start), inserted.begin(), inserted.end());
    const int32_t at = static_cast<int32_t>(start);
    for (const Place place : kPlaces) {
      for (const bool ending : {true, false}) {
        const Unit* from = ending ? sources_.endingAtGuard(source) : sources_.startingAtGuard(source);
        const Unit* piece = ending ? insertions_.atOffset(inserted, 1) : insertions_.endingAtGuard(inserted);
        Unit* to = results_.room(expected.size(), place);
        ASSERT_EQ(Api<Unit>::insert(from, lengthOf(source), piece, lengthOf(inserted), to, at), ulkOk);
        ASSERT_TRUE(results_.hold(inserted.empty() ? Units() : expected));

        to = results_.room(expected.size(), place, source);
        ASSERT_EQ(Api<Unit>::insert(to, lengthOf(source), piece, lengthOf(inserted), to, at), ulkOk);
        ASSERT_TRUE(results_.hold(expected));

        to = results_.room(expected.size(), place, source);
        int32_t length = lengthOf(source);
        ASSERT_EQ(Api<Unit>::insertInPlace(piece, lengthOf(inserted), to, &length, at), ulkOk);
        ASSERT_TRUE(results_.hold(expected));
        ASSERT_EQ(length, lengthOf(expected));
      }
    }
  }

  void expectRemoved(const Units& source, size_t start, size_t count) {
    Units expected = source;
    const auto first = expected.begin() + static_cast<ptrdiff_t>(start);
    expected.erase(first, first + static_cast<ptrdiff_t>(count));
    // In place, what stood behind the shorter string is still there.
    Units inPlace = source;
    std::copy(expected.begin(), expected.end(), inPlace.begin());
    for (const Place place : kPlaces) {
      for (const bool ending : {true, false}) {
        const Unit* from = ending ? sources_.endingAtGuard(source) : sources_.startingAtGuard(source);
        Unit* to = results_.room(expected.size(), place);
        ASSERT_EQ(Api<Unit>::remove(from, lengthOf(source), to, static_cast<int32_t>(start),
                                    static_cast<int32_t>(count)),
                  ulkOk);
        ASSERT_TRUE(results_.hold(expected));
      }
      Unit* to = results_.room(source.size(), place, source);
      int32_t length = lengthOf(source);
      ASSERT_EQ(
          Api<Unit>::removeInPlace(to, &length, static_cast<int32_t>(start), static_cast<int32_t>(count)),
          ulkOk);
      ASSERT_TRUE(results_.hold(inPlace));
      ASSERT_EQ(length, lengthOf(expected));
    }
  }

  void expectReplaced(const Units& source, Unit oldUnit, Unit newUnit, Place sourcePlace, Place place) {
    Units expected = source;
    std::replace(expected.begin(), expected.end(), oldUnit, newUnit);
    const Unit* from = replaced_.room(source.size(), sourcePlace, source);
    Unit* to = results_.room(source.size(), place);
    ASSERT_EQ(Api<Unit>::replaceC(from, to, lengthOf(source), oldUnit, newUnit), ulkOk);
    ASSERT_TRUE(results_.hold(expected));
    to = results_.room(source.size(), place, source);
    ASSERT_EQ(Api<Unit>::replaceC(to, to, lengthOf(source), oldUnit, newUnit), ulkOk);
    ASSERT_TRUE(results_.hold(expected));
  }

 private:
  WrittenUnits<Unit> replaced_{kMost};
};

using Widths = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(Edit, Widths);

TYPED_TEST(Edit, InsertsAnyLengthAnywhere) {
  for (const size_t length : kLengths) {
    for (const size_t insertedLength : kLengths) {
      for (const size_t start : positionsIn(length)) {
        this->expectInserted(numbered<TypeParam>(length, 1), numbered<TypeParam>(insertedLength, 7000),
                             start);
        ASSERT_FALSE(this->HasFailure())
            << insertedLength << " units into " << length << " at position " << start;
      }
    }
  }
}

TYPED_TEST(Edit, RemovesAnyLengthAnywhere) {
  for (const size_t length : kLengths) {
    for (const size_t count : kLengths) {
      for (const size_t start : positionsIn(length)) {
        if (start + count > length) continue;
        this->expectRemoved(numbered<TypeParam>(length, 1), start, count);
        ASSERT_FALSE(this->HasFailure()) << count << " units of " << length << " at position " << start;
      }
    }
  }
}

// Pieces that overlap what they are moved to by nearly all of their length, also long ones.
TYPED_TEST(Edit, MovesPiecesThatOverlapThemselves) {
  constexpr size_t kLong = 1000;
  for (size_t distance = 1; distance <= 70; ++distance) {
    for (const size_t start : {size_t{0}, size_t{3}, kLong - 70}) {
      this->expectInserted(numbered<TypeParam>(kLong, 1), numbered<TypeParam>(distance, 7000), start);
      this->expectRemoved(numbered<TypeParam>(kLong, 1), start, distance);
      ASSERT_FALSE(this->HasFailure()) << "by " << distance << " units from position " << start;
    }
  }
}

TYPED_TEST(Edit, ReplacesAtEveryLengthAndAlignment) {
  const TypeParam wanted = static_cast<TypeParam>(0x8181);
  // What a comparison of half a unit would take for it.
  const TypeParam near[] = {static_cast<TypeParam>(sizeof(TypeParam) == 1 ? 0x01 : 0x8180),
                            static_cast<TypeParam>(sizeof(TypeParam) == 1 ? 0x80 : 0x0181), 0};
  std::mt19937 random(13);
  for (size_t length = 0; length <= 150; ++length) {
    std::vector<TypeParam> source(length);
    for (auto& unit : source) unit = random() % 2 == 0 ? wanted : near[random() % 3];
    for (size_t offset = 0; offset < 64; ++offset) {
      const size_t other = random() % 64;
      this->expectReplaced(source, wanted, 'x', {Place::kAtStart, offset}, {Place::kAtEnd, other});
      this->expectReplaced(source, wanted, 'x', {Place::kAtEnd, other}, {Place::kAtStart, offset});
    }
    this->expectReplaced(source, wanted, wanted, {Place::kAtEnd, 0}, {Place::kAtEnd, 0});
    ASSERT_FALSE(this->HasFailure()) << "length " << length;
  }
}

TYPED_TEST(Edit, ReplacesOneUnitValueOfAll) {
  constexpr size_t kValues = size_t{1} << (8 * sizeof(TypeParam));
  std::vector<TypeParam> all(kValues);
  for (size_t i = 0; i < kValues; ++i) all[i] = static_cast<TypeParam>(i);
  std::vector<TypeParam> replaced(kValues);
  for (size_t oldUnit = 0; oldUnit < kValues; oldUnit += sizeof(TypeParam) == 1 ? 1 : 251) {
    const size_t newUnit = (oldUnit * 7 + 3) % kValues;
    ASSERT_EQ(Api<TypeParam>::replaceC(all.data(), replaced.data(), lengthOf(all),
                                       static_cast<TypeParam>(oldUnit), static_cast<TypeParam>(newUnit)),
              ulkOk);
    std::vector<TypeParam> expected = all;
    expected[oldUnit] = static_cast<TypeParam>(newUnit);
    ASSERT_EQ(replaced, expected) << oldUnit << " by " << newUnit;
  }
}

// Also where there is nothing to read or write, and before anything else that is wrong.
TYPED_TEST(Edit, RefusesNullPointers) {
  TypeParam unit = 'a';
  int32_t length = 1;
  using Calls = Api<TypeParam>;
  for (const int32_t bad : {0, -1}) {
    expectNullRefused(Calls::insert, &unit, bad, &unit, bad, &unit, bad);
    expectNullRefused(Calls::insertInPlace, &unit, bad, &unit, &length, bad);
    expectNullRefused(Calls::remove, &unit, bad, &unit, bad, bad);
    expectNullRefused(Calls::removeInPlace, &unit, &length, bad, bad);
    expectNullRefused(Calls::replaceC, &unit, &unit, bad, 'a', 'b');
  }
  EXPECT_EQ(unit, 'a');
  EXPECT_EQ(length, 1);
}

struct LengthCase {
  int32_t length;
  int32_t count;  // inserted or removed
  int32_t start;
};

constexpr LengthCase kBadForBoth[] = {
    {-1, 0, 0},
    {INT32_MIN, 0, 0},
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
};

// Sums that no 32-bit number holds.
constexpr LengthCase kBadForRemove[] = {{10, 11, 0},        {10, 1, 10},        {10, 6, 5},
                                        {10, INT32_MAX, 1}, {10, 1, INT32_MAX}, {10, INT32_MAX, INT32_MAX},
                                        {10, INT32_MAX, 5}, {0, 1, 0}};

TYPED_TEST(Edit, RefusesLengthsAndPositionsOutsideTheString) {
  const auto string = unitsOf<TypeParam>("abcdefghij");
  const auto expectRefused = [&](ulkStatus status, const LengthCase& c) {
    EXPECT_EQ(status, ulkErrLength) << c.length << ", " << c.count << ", " << c.start;
    EXPECT_TRUE(this->results_.hold(string));
  };
  const auto untouched = [&] { return this->results_.room(20, {Place::kAtStart, 3}, string); };
  const auto expectRemoveRefused = [&](const LengthCase& c) {
    TypeParam* to = untouched();
    expectRefused(Api<TypeParam>::remove(string.data(), c.length, to, c.start, c.count), c);
    int32_t length = c.length;
    expectRefused(Api<TypeParam>::removeInPlace(to, &length, c.start, c.count), c);
    EXPECT_EQ(length, c.length);
  };
  for (const LengthCase& c : kBadForBoth) {
    expectRemoveRefused(c);
    TypeParam* to = untouched();
    expectRefused(Api<TypeParam>::insert(string.data(), c.length, string.data(), c.count, to, c.start), c);
    int32_t length = c.length;
    expectRefused(Api<TypeParam>::insertInPlace(string.data(), c.count, to, &length, c.start), c);
    EXPECT_EQ(length, c.length);
  }
  for (const LengthCase& c : kBadForRemove) expectRemoveRefused(c);
  for (const int32_t bad : {-1, INT32_MIN}) {
    expectRefused(Api<TypeParam>::replaceC(string.data(), untouched(), bad, 'a', 'b'), {bad, 0, 0});
  }
}

}  // namespace
}  // namespace ulk_test
