// The hash functions against their formulas, taken one unit at a time: both widths, every length up to
// several vectors, every alignment, and at the edge of readable memory on either side.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "support/api.h"
#include "support/guarded.h"
#include "support/reference_hash.h"
#include "support/refused.h"
#include "ulkch.h"

namespace ulk_test {
namespace {

// Calls that must succeed.
template <class Unit>
Hashes hashesOf(const Unit* units, size_t count) {
  Hashes hashes = {1, 2, 3};
  const int32_t length = static_cast<int32_t>(count);
  EXPECT_EQ(Api<Unit>::hash(units, length, &hashes.hash), ulkOk);
  EXPECT_EQ(Api<Unit>::hashMSCS(units, length, &hashes.hashMSCS), ulkOk);
  EXPECT_EQ(Api<Unit>::hashSJ2(units, length, &hashes.hashSJ2), ulkOk);
  return hashes;
}

template <class Unit>
class Hash : public testing::Test {
 protected:
  GuardedUnits<Unit> texts_{5000};
};

using Widths = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(Hash, Widths);

TYPED_TEST(Hash, HasTheDocumentedValues) {
  using Units = std::vector<TypeParam>;
  const auto expect = [](const Units& units, const Hashes& expected) {
    EXPECT_EQ(hashesOf(units.data(), units.size()), expected) << testing::PrintToString(units);
  };
  Units counting(40);
  std::iota(counting.begin(), counting.end(), TypeParam{1});
  expect({'a', 'b', 'c'}, {291, 193409669, 96354});
  expect({'a', 0, 'b'}, {486, 177604, 93315});
  expect({0, 'a'}, {97, 5381, 97});
  expect({0xFF}, {255, 177573 ^ 255, 255});
  expect(counting, {4058919414u, 3792181677u, 3956279956u});

  const TypeParam empty = 1;
  EXPECT_EQ(hashesOf(&empty, 0), (Hashes{0, 5381, 0}));
}

// Units from the whole range, among them many zeros and many with all bits set.
TYPED_TEST(Hash, FollowsTheFormulasAtEveryLengthAndPlace) {
  constexpr unsigned kSeed = 14;
  std::mt19937 random(kSeed);
  std::vector<size_t> lengths(200);
  std::iota(lengths.begin(), lengths.end(), size_t{0});
  lengths.insert(lengths.end(), {255, 256, 257, 1000, 4999});
  for (const size_t length : lengths) {
    for (const uint32_t zeros : {0u, 1u, 30u}) {
      std::vector<TypeParam> text(length);
      for (auto& unit : text) {
        const uint32_t kind = static_cast<uint32_t>(random() % 100);
        unit = static_cast<TypeParam>(kind < zeros ? 0 : kind < 50 ? random() : ~0u);
      }
      const Hashes expected = referenceHashes(text);
      EXPECT_EQ(hashesOf(this->texts_.endingAtGuard(text), length), expected);
      EXPECT_EQ(hashesOf(this->texts_.startingAtGuard(text), length), expected);
      for (size_t offset = 0; offset < 64; offset += length < 70 ? 1 : 9) {
        EXPECT_EQ(hashesOf(this->texts_.atOffset(text, offset), length), expected) << "offset " << offset;
      }
    }
    ASSERT_FALSE(this->HasFailure()) << "seed " << kSeed << ", length " << length;
  }
}

// The length is only the most that it may read.
TYPED_TEST(Hash, MSCSReadsNothingAfterTheZeroUnit) {
  for (size_t length = 1; length <= 100; ++length) {
    std::vector<TypeParam> text(length, TypeParam{'x'});
    text.back() = 0;
    const TypeParam* placed = this->texts_.endingAtGuard(text);
    uint32_t value = 0;
    EXPECT_EQ(Api<TypeParam>::hashMSCS(placed, INT32_MAX, &value), ulkOk);
    EXPECT_EQ(value, referenceHashes(text).hashMSCS) << "length " << length;
  }
}

// A hash inside its own string shows what is written when: here a 0, before the string is read.
TYPED_TEST(Hash, SJ2ReadsTheStringAfterClearingTheValue) {
  for (const size_t length : std::initializer_list<size_t>{8, 40, 100}) {
    std::vector<TypeParam> text(length, TypeParam{'x'});
    std::vector<TypeParam> cleared = text;
    std::fill_n(cleared.begin(), 4 / sizeof(TypeParam), TypeParam{0});
    void* start = text.data();
    uint32_t value = 0;
    EXPECT_EQ(
        Api<TypeParam>::hashSJ2(text.data(), static_cast<int32_t>(length), static_cast<uint32_t*>(start)),
        ulkOk);
    std::memcpy(&value, start, sizeof value);
    EXPECT_EQ(value, referenceHashes(cleared).hashSJ2) << "length " << length;
  }
}

// Pointers before the length, and the value stays.
TYPED_TEST(Hash, RefusesBadArguments) {
  const TypeParam text[] = {'a'};
  uint32_t value = 77;
  for (const auto hash : {Api<TypeParam>::hash, Api<TypeParam>::hashMSCS, Api<TypeParam>::hashSJ2}) {
    for (const int32_t bad : {0, -1}) expectNullRefused(hash, text, bad, &value);
    EXPECT_EQ(hash(text, -1, &value), ulkErrLength);
    EXPECT_EQ(hash(text, INT32_MIN, &value), ulkErrLength);
  }
  EXPECT_EQ(value, 77u);
}

}  // namespace
}  // namespace ulk_test
