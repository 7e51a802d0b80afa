// The hash functions in both widths, at every length up to several vectors, at every alignment, and at the
// edge of readable memory on either side.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include "fuzz/hash.h"

namespace ulk_test {
namespace {

using ulk_fuzz::checkHash;
using ulk_fuzz::kAtEnd;

template <class Unit>
class Hash : public testing::Test {};
using Widths = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(Hash, Widths);

TYPED_TEST(Hash, HasTheDocumentedValues) {
  std::vector<TypeParam> counting(40);
  std::iota(counting.begin(), counting.end(), TypeParam{1});
  checkHash<TypeParam>({}, 0, {0, 5381, 0});
  checkHash<TypeParam>({'a', 'b', 'c'}, 0, {291, 193409669, 96354});
  checkHash<TypeParam>({'a', 0, 'b'}, 0, {486, 177604, 93315});
  checkHash<TypeParam>({0, 'a'}, 0, {97, 5381, 97});
  checkHash<TypeParam>({0xFF}, 0, {255, 177573 ^ 255, 255});
  checkHash<TypeParam>(counting, 0, {4058919414u, 3792181677u, 3956279956u});
}

// Units from the whole range, among them many zeros and many with all bits set.
TYPED_TEST(Hash, FollowsTheFormulasAtEveryLengthAndPlace) {
  std::mt19937 random(14);
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
      for (size_t shift = 0; shift <= kAtEnd; ++shift) checkHash(text, shift, referenceHashes(text));
    }
    ASSERT_FALSE(this->HasFailure()) << "length " << length;
  }
}

// The length is only the most that it may read.
TYPED_TEST(Hash, MSCSReadsNothingAfterTheZeroUnit) {
  for (size_t length = 1; length <= 100; ++length) {
    std::vector<TypeParam> text(length, TypeParam{'x'});
    text.back() = 0;
    const ulk_fuzz::Block<TypeParam> block(text, kAtEnd);
    uint32_t value = 0;
    EXPECT_EQ(Api<TypeParam>::hashMSCS(block.get(), INT32_MAX, &value), ulkOk);
    EXPECT_EQ(value, referenceHashes(text).hashMSCS) << "length " << length;
  }
}

// A hash inside its own string shows what is written when: here a 0, before the string is read.
TYPED_TEST(Hash, SJ2ReadsTheStringAfterClearingTheValue) {
  for (const size_t length : std::initializer_list<size_t>{8, 40, 100}) {
    std::vector<TypeParam> text(length, TypeParam{'x'});
    std::vector<TypeParam> cleared = text;
    std::fill_n(cleared.begin(), 4 / sizeof(TypeParam), TypeParam{0});
    void* const value = text.data();
    Api<TypeParam>::hashSJ2(text.data(), static_cast<int32_t>(length), static_cast<uint32_t*>(value));
    EXPECT_EQ(*static_cast<uint32_t*>(value), referenceHashes(cleared).hashSJ2) << "length " << length;
  }
}

}  // namespace
}  // namespace ulk_test
