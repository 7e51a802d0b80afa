// What the operations on strings refuse: null pointers first, then lengths; and nothing is written then.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "support/api.h"
#include "support/refused.h"
#include "ulkch.h"

namespace ulk_test {
namespace {

template <class Unit>
class Arguments : public testing::Test {};
using Widths = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(Arguments, Widths);

TYPED_TEST(Arguments, ThatAreNoStringsAreRefused) {
  using Calls = Api<TypeParam>;
  const TypeParam in[] = {'a', 'b', 0};
  TypeParam out[] = {'x', 'y', 'z', 0};
  const TypeParam before[] = {'x', 'y', 'z', 0};
  int32_t number = 7, length = 2;
  uint32_t hash = 7;

  for (const auto search : {Calls::find, Calls::findRev, Calls::findCAny, Calls::findRevCAny})
    expectRefused(search, in, 2, in, 1, &number);
  for (const auto search : {Calls::findC, Calls::findRevC}) expectRefused(search, in, 2, 'a', &number);
  expectNullRefused(Calls::findCZ, in, 'a', &number);
  expectNullRefused(Calls::findZ, in, in, &number);
  for (const auto compare : {Calls::compare, Calls::compareIgnoreCaseLatin, Calls::equal})
    expectRefused(compare, in, in, 2, &number);
  for (const auto convert : {Calls::lowercaseLatin, Calls::uppercaseLatin})
    expectRefused(convert, in, out, 2);
  for (const auto convert : {Calls::lowercaseLatinInPlace, Calls::uppercaseLatinInPlace})
    expectRefused(convert, out, 2);
  if constexpr (sizeof(TypeParam) == 2) {
    expectRefused(ulksCompareIgnoreCase_16u, in, in, 2, &number);
    for (const auto convert : {ulksLowercase_16u, ulksUppercase_16u}) expectRefused(convert, in, out, 2);
    for (const auto convert : {ulksLowercase_16u_I, ulksUppercase_16u_I}) expectRefused(convert, out, 2);
  }
  for (const auto function : {Calls::hash, Calls::hashMSCS, Calls::hashSJ2})
    expectRefused(function, in, 2, &hash);
  for (const auto trim : {Calls::trimCAny, Calls::trimStartCAny, Calls::trimEndCAny})
    expectRefused(trim, in, 2, in, 1, out, &number);
  expectRefused(Calls::trimC, in, 2, 'a', out, &number);
  expectRefused(Calls::insert, in, 2, in, 1, out, 1);
  expectRefused(Calls::remove, in, 2, out, 0, 1);
  expectRefused(Calls::replaceC, in, out, 2, 'a', 'b');
  expectRefused(Calls::concat, in, 2, in, 1, out);
  EXPECT_TRUE(number == 7 && hash == 7);

  for (const int32_t bad : {0, -1}) {
    length = bad;
    expectNullRefused(Calls::trimCInPlace, out, &length, 'x');
    expectNullRefused(Calls::insertInPlace, in, bad, out, &length, bad);
    expectNullRefused(Calls::removeInPlace, out, &length, bad, bad);
    EXPECT_EQ(length, bad);
  }
  EXPECT_EQ(Calls::trimCInPlace(out, &length, 'x'), ulkErrLength);
  EXPECT_EQ(length, -1);
  EXPECT_TRUE(std::equal(std::begin(out), std::end(out), before));
}

// Lists have a number of strings, and lengths only inside.
TYPED_TEST(Arguments, ThatAreNoListsAreRefused) {
  using Calls = Api<TypeParam>;
  TypeParam in = 'a', out = 'b';
  const TypeParam* const sources[] = {&in};
  TypeParam* const buffers[] = {&out};
  int32_t length = 1;
  for (const int32_t bad : {0, -1, INT32_MIN}) {
    int32_t count = bad;
    expectNullRefused(Calls::concatList, sources, &length, bad, &out);
    expectNullRefused(Calls::concatListC, sources, &length, bad, ',', &out);
    expectNullRefused(Calls::splitC, &in, bad, ',', buffers, &length, &count);
    EXPECT_EQ(Calls::concatList(sources, &length, bad, &out), ulkErrSize);
    EXPECT_EQ(Calls::concatListC(sources, &length, bad, ',', &out), ulkErrSize);
    // The length first, then the number of buffers, also where none would be needed.
    EXPECT_EQ(Calls::splitC(&in, -1, ',', buffers, &length, &count), ulkErrLength);
    EXPECT_EQ(Calls::splitC(&in, 0, ',', buffers, &length, &count), ulkErrSize);
    EXPECT_EQ(Calls::splitC(&in, 1, ',', buffers, &length, &count), ulkErrSize);
    EXPECT_TRUE(count == bad && length == 1 && in == 'a' && out == 'b');
  }
  int32_t count = 1;
  EXPECT_EQ(Calls::splitC(&in, -1, ',', buffers, &length, &count), ulkErrLength);
  EXPECT_EQ(count, 1);
}

TEST(UtfArguments, NullPointers) {
  uint8_t bytes[] = {'a', 'b'};
  uint16_t units[] = {'a', 'b'};
  for (const int32_t length : {0, 2}) {
    int32_t sourceLength = length, targetLength = length;
    expectNullRefused(ulksConvertUTF_8u16u, bytes, &sourceLength, units, &targetLength, 0);
    expectNullRefused(ulksConvertUTF_16u8u, units, &sourceLength, bytes, &targetLength, 0);
    EXPECT_TRUE(sourceLength == length && targetLength == length);
    EXPECT_TRUE(bytes[0] == 'a' && units[0] == 'a');
  }
}

}  // namespace
}  // namespace ulk_test
