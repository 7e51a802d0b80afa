// Concatenation and splitting: tables of small lists, lists with faults in the middle, random texts. Every
// string of a list stands in memory of its own, at a guard or at an odd address.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "fuzz/concat_split.h"

namespace ulk_test {
namespace {

using ulk_fuzz::kAtEnd;
using ulk_fuzz::Shifts;

// Letters as units of either width. Both bytes of a 16-bit unit matter, and its high bit is set.
template <class Unit>
std::vector<Unit> unitsOf(const std::string& letters) {
  std::vector<Unit> units;
  for (const unsigned char c : letters)
    units.push_back(static_cast<Unit>(sizeof(Unit) == 1 ? c : 0x8000 | c << 7 | c));
  return units;
}

template <class Unit>
Strings<Unit> stringsOf(const std::vector<std::string>& letters) {
  Strings<Unit> strings;
  for (const std::string& each : letters) strings.push_back(unitsOf<Unit>(each));
  return strings;
}

constexpr Shifts kPlaces[] = {{kAtEnd, 0, kAtEnd}, {0, 0, 0}, {29, 0, 1}, {2, 0, 30}};

template <class Unit>
class ConcatSplit : public testing::Test {
 protected:
  static constexpr Unit kComma = static_cast<Unit>(0x962C);

  static void checkJoin(const Strings<Unit>& strings) {
    for (const Shifts shifts : kPlaces) ulk_fuzz::ConcatSplit<Unit>{kComma, shifts}.checkJoin(strings);
  }
  static void checkSplit(const std::vector<Unit>& text, const std::vector<int32_t>& rooms) {
    for (const Shifts shifts : kPlaces) ulk_fuzz::ConcatSplit<Unit>{kComma, shifts}.checkSplit(text, rooms);
  }
};

using Widths = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(ConcatSplit, Widths);

TYPED_TEST(ConcatSplit, JoinsTwoStringsOfAnyLengths) {
  for (const size_t first : {0, 1, 3, 8, 15, 16, 17, 33, 64, 65, 600}) {
    for (const size_t second : {0, 1, 7, 8, 16, 31, 32, 64, 100, 513}) {
      this->checkJoin(stringsOf<TypeParam>({std::string(first, 'a'), std::string(second, 'b')}));
      ASSERT_FALSE(this->HasFailure()) << first << " and " << second << " units";
    }
  }
}

TYPED_TEST(ConcatSplit, JoinsLists) {
  const std::vector<std::string> lists[] = {
      {""},
      {"", "", ""},
      {"a", "", "b"},
      {"", "a", ""},
      {std::string(70, 'x'), "", std::string(15, 'y'), std::string(16, 'z'), std::string(600, 'w')},
  };
  for (const auto& list : lists) this->checkJoin(stringsOf<TypeParam>(list));
  std::mt19937 random(14);
  for (int round = 0; round < 100; ++round) {
    Strings<TypeParam> strings(1 + random() % 12);
    for (auto& string : strings) {
      string.resize(random() % (round % 10 == 0 ? 120 : 20));
      for (auto& unit : string) unit = static_cast<TypeParam>(random());
    }
    this->checkJoin(strings);
    ASSERT_FALSE(this->HasFailure()) << "round " << round;
  }
}

// What stands before the fault is written, and not even the separator after it.
TYPED_TEST(ConcatSplit, StopsJoiningAtTheFirstFaultyElement) {
  const struct {
    size_t at;
    bool null;
    int32_t length;
    ulkStatus status;
  } faults[] = {{0, true, 1, ulkErrNullPtr},         {0, false, -1, ulkErrLength},
                {1, false, INT32_MIN, ulkErrLength}, {2, true, 0, ulkErrNullPtr},
                {2, true, -1, ulkErrNullPtr},        {3, false, -1, ulkErrLength}};
  const auto strings = stringsOf<TypeParam>({"ab", "", "cde", "f"});
  for (const auto& fault : faults) {
    std::vector<const TypeParam*> pointers;
    std::vector<int32_t> lengths;
    for (const auto& string : strings) {
      // What is empty has an address too.
      pointers.push_back(string.empty() ? strings[0].data() : string.data());
      lengths.push_back(ulk_fuzz::lengthOf(string));
    }
    if (fault.null) pointers[fault.at] = nullptr;
    lengths[fault.at] = fault.length;
    // Another one later on changes nothing.
    pointers.push_back(fault.null ? strings[0].data() : nullptr);
    lengths.push_back(-1);
    const Strings<TypeParam> before(strings.begin(), strings.begin() + static_cast<ptrdiff_t>(fault.at));
    ulk_fuzz::ConcatSplit<TypeParam>{this->kComma, {0, 0, 1}}.expectJoined(pointers, lengths, before,
                                                                           fault.status);
    ASSERT_FALSE(this->HasFailure()) << fault.at;
  }
}

struct SplitCase {
  const char* text;
  std::vector<int32_t> rooms;
  ulkStatus status;
  int32_t count;
  std::vector<int32_t> lengths;
  std::vector<std::string> written;
};

const SplitCase kSplitCases[] = {
    {"a,b,c", {9, 9, 9}, ulkOk, 3, {1, 1, 1}, {"a", "b", "c"}},
    {"a,b,c", {9, 9}, ulkWrnSlotsExhausted, 2, {1, 1}, {"a", "b"}},
    // Nothing follows the last delimiter.
    {"a,b,", {9, 9, 9}, ulkOk, 2, {1, 1, 9}, {"a", "b", ""}},
    {"a,b,,", {9, 9}, ulkWrnSlotsExhausted, 2, {1, 1}, {"a", "b"}},
    {"a,b,,", {9, 9, 9, 9}, ulkOk, 3, {1, 1, 0, 9}, {"a", "b", "", ""}},
    {",a", {9, 9}, ulkOk, 2, {0, 1}, {"", "a"}},
    {",,", {9, 9}, ulkOk, 2, {0, 0}, {"", ""}},
    {"", {kNull}, ulkOk, 0, {kNull}, {""}},
    // Parts longer than their buffers.
    {"abc,d,efg", {2, 1, 3}, ulkWrnPartTruncated, 3, {2, 1, 3}, {"ab", "d", "efg"}},
    {"abc,d", {0, 0}, ulkWrnPartTruncated, 2, {0, 0}, {"", ""}},
    {"abc,d,e", {2, 1}, ulkWrnSlotsExhausted, 2, {2, 1}, {"ab", "d"}},
    // Faulty buffers, when the split comes to them.
    {"a,b,c", {kNull, 9, 9}, ulkErrNullPtr, 3, {kNull, 9, 9}, {"", "", ""}},
    {"a,b,c", {9, kNull, 9}, ulkErrNullPtr, 3, {1, kNull, 9}, {"a", "", ""}},
    {"a,b,c", {9, 9, -1}, ulkErrLength, 3, {1, 1, -1}, {"a", "b", ""}},
    {"abc,b,c", {2, -5, kNull}, ulkErrLength, 3, {2, -5, kNull}, {"ab", "", ""}},
    {"a,b,", {9, 9, -1, kNull}, ulkOk, 2, {1, 1, -1, kNull}, {"a", "b", "", ""}},
};

TYPED_TEST(ConcatSplit, SplitsAsTheTableSays) {
  for (const SplitCase& c : kSplitCases) {
    SCOPED_TRACE(testing::Message() << '"' << c.text << "\" into " << c.rooms.size());
    std::vector<TypeParam> text = unitsOf<TypeParam>(c.text);
    std::replace(text.begin(), text.end(), unitsOf<TypeParam>(",")[0], this->kComma);
    this->checkSplit(text, c.rooms);
    // The reference is held to the table.
    const auto reference = referenceSplit(text, this->kComma, c.rooms);
    EXPECT_EQ(reference.status, c.status);
    EXPECT_EQ(reference.count, c.count);
    EXPECT_EQ(reference.lengths, c.lengths);
    EXPECT_EQ(reference.written, stringsOf<TypeParam>(c.written));
  }
}

// One part, two, or parts of all lengths: every way of looking for the next delimiter and of copying a part.
TYPED_TEST(ConcatSplit, SplitsAtAnyPlaceOfAnyText) {
  // What a search for half a unit would take for the delimiter.
  const TypeParam near = static_cast<TypeParam>(sizeof(TypeParam) == 1 ? 0xAC : 0x952C);
  for (size_t length = 1; length <= 200; length += length < 70 ? 1 : 13) {
    std::vector<TypeParam> text(length, near);
    this->checkSplit(text, {300});
    for (size_t at = 0; at < length; at += length < 40 ? 1 : 7) {
      text[at] = this->kComma;
      this->checkSplit(text, {300, 300});
      text[length / 2] = this->kComma;
      this->checkSplit(text, {300, 300, 300});
      text[at] = text[length / 2] = near;
    }
    ASSERT_FALSE(this->HasFailure()) << "length " << length;
  }
  std::vector<TypeParam> text;
  for (size_t part = 1; part <= 45; ++part) {
    text.insert(text.end(), part, near);
    text.push_back(this->kComma);
  }
  this->checkSplit(text, std::vector<int32_t>(45, 45));
  this->checkSplit(text, std::vector<int32_t>(50, 40));
  this->checkSplit(text, std::vector<int32_t>(44, 40));
}

TYPED_TEST(ConcatSplit, SplitsRandomTexts) {
  std::mt19937 random(15);
  for (int round = 0; round < 2000; ++round) {
    std::vector<TypeParam> text(random() % (round % 10 == 0 ? 1000 : 100));
    const auto partLength = 1 + random() % (round % 3 == 0 ? 100 : 12);
    for (auto& unit : text) {
      unit = random() % partLength == 0 ? this->kComma : static_cast<TypeParam>(random());
    }
    std::vector<int32_t> rooms(1 + random() % 20);
    for (auto& room : rooms) {
      room = static_cast<int32_t>(random() % (3 * partLength));
      if (random() % 100 == 0) room = random() % 2 == 0 ? kNull : -1;
    }
    this->checkSplit(text, rooms);
    ASSERT_FALSE(this->HasFailure()) << "round " << round;
  }
}

}  // namespace
}  // namespace ulk_test
