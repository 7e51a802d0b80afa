// Concatenation and splitting, alone and as each other's reverse: tables of small lists, lists with faults in
// the middle, random texts against a slow splitter. Every string of a list stands in memory of its own, at a
// guard or at an odd address.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/api.h"
#include "support/guarded.h"
#include "support/reference_split.h"
#include "support/refused.h"
#include "support/written.h"
#include "ulkch.h"

namespace ulk_test {
namespace {

constexpr int32_t kUnused = -77;

template <class Unit>
Strings<Unit> stringsOf(const std::vector<std::string>& letters) {
  Strings<Unit> strings;
  for (const std::string& each : letters) strings.push_back(unitsOf<Unit>(each));
  return strings;
}

// A list of strings to read.
template <class Unit>
struct SourceList {
  explicit SourceList(const Strings<Unit>& strings) {
    for (const auto& string : strings) {
      memory.push_back(std::make_unique<GuardedUnits<Unit>>(string.size()));
      switch (memory.size() % 3) {
        case 0:
          pointers.push_back(memory.back()->atOffset(string, 1));
          break;
        case 1:
          pointers.push_back(memory.back()->endingAtGuard(string));
          break;
        default:
          pointers.push_back(memory.back()->startingAtGuard(string));
      }
      lengths.push_back(lengthOf(string));
    }
  }
  int32_t count() const { return lengthOf(lengths); }

  std::vector<std::unique_ptr<GuardedUnits<Unit>>> memory;
  std::vector<const Unit*> pointers;
  std::vector<int32_t> lengths;
};

// A list of buffers to write, each with exactly the room that its length tells.
template <class Unit>
struct BufferList {
  void prepare(const std::vector<int32_t>& rooms, Place place) {
    lengths = rooms;
    pointers.clear();
    while (memory.size() < rooms.size()) memory.push_back(std::make_unique<WrittenUnits<Unit>>(kMost));
    for (size_t i = 0; i < rooms.size(); ++i) {
      Unit* buffer = memory[i]->room(rooms[i] < 0 ? 0 : static_cast<size_t>(rooms[i]), place);
      pointers.push_back(rooms[i] == kNull ? nullptr : buffer);
    }
  }

  static constexpr size_t kMost = 1000;
  std::vector<std::unique_ptr<WrittenUnits<Unit>>> memory;
  std::vector<Unit*> pointers;
  std::vector<int32_t> lengths;
};

template <class Unit>
class ConcatSplit : public testing::Test {
 protected:
  static constexpr Unit kComma = static_cast<Unit>(0x962C);
  GuardedUnits<Unit> texts_{1500};
  WrittenUnits<Unit> results_{1500};
  BufferList<Unit> buffers_;

  // Joins a list in both ways: with `status`, and nothing but these strings are written.
  void expectJoined(const SourceList<Unit>& list, ulkStatus status, const Strings<Unit>& written,
                    Place place) {
    const auto plain = joined(written, {});
    Unit* to = results_.room(plain.size(), place);
    ASSERT_EQ(Api<Unit>::concatList(list.pointers.data(), list.lengths.data(), list.count(), to), status);
    ASSERT_TRUE(results_.hold(plain));
    const auto separated = joined(written, {kComma});
    to = results_.room(separated.size(), place);
    ASSERT_EQ(Api<Unit>::concatListC(list.pointers.data(), list.lengths.data(), list.count(), kComma, to),
              status);
    ASSERT_TRUE(results_.hold(separated));
  }

  // A fault behind the end of the list is nobody's concern.
  void expectJoined(const Strings<Unit>& strings) {
    SourceList<Unit> list(strings);
    list.pointers.push_back(nullptr);
    for (const Place place : kPlaces) expectJoined(list, ulkOk, strings, place);
  }

  void expectSplit(const std::vector<Unit>& text, const std::vector<int32_t>& rooms) {
    expectSplit(text, rooms, referenceSplit<Unit>(text, kComma, rooms));
  }

  void expectSplit(const std::vector<Unit>& text, const std::vector<int32_t>& rooms,
                   const Split<Unit>& expected) {
    for (const Place place :
         {Place{Place::kAtEnd, 0}, Place{Place::kAtStart, 0}, Place{Place::kAtStart, 35}}) {
      for (const bool ending : {true, false}) {
        const Unit* source = ending ? texts_.endingAtGuard(text) : texts_.startingAtGuard(text);
        buffers_.prepare(rooms, place);
        int32_t count = static_cast<int32_t>(rooms.size());
        ASSERT_EQ(Api<Unit>::splitC(source, lengthOf(text), kComma, buffers_.pointers.data(),
                                    buffers_.lengths.data(), &count),
                  expected.status);
        ASSERT_EQ(count, expected.count);
        ASSERT_EQ(buffers_.lengths, expected.lengths);
        for (size_t i = 0; i < rooms.size(); ++i) {
          ASSERT_TRUE(buffers_.memory[i]->hold(expected.written[i])) << "part " << i;
        }
      }
    }
  }
};

using Widths = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(ConcatSplit, Widths);

TYPED_TEST(ConcatSplit, JoinsTwoStringsOfAnyLengths) {
  for (const size_t first : {0, 1, 3, 8, 15, 16, 17, 33, 64, 65, 600}) {
    for (const size_t second : {0, 1, 7, 8, 16, 31, 32, 64, 100, 513}) {
      const Strings<TypeParam> strings = {unitsOf<TypeParam>(std::string(first, 'a')),
                                          unitsOf<TypeParam>(std::string(second, 'b'))};
      const SourceList<TypeParam> list(strings);
      const auto expected = joined(strings, {});
      for (const Place place : kPlaces) {
        TypeParam* to = this->results_.room(expected.size(), place);
        ASSERT_EQ(
            Api<TypeParam>::concat(list.pointers[0], list.lengths[0], list.pointers[1], list.lengths[1], to),
            ulkOk);
        ASSERT_TRUE(this->results_.hold(expected)) << first << " and " << second << " units";
      }
    }
  }
}

TYPED_TEST(ConcatSplit, JoinsLists) {
  const std::vector<std::string> lists[] = {
      {""},
      {"", ""},
      {"", "", ""},
      {"a"},
      {"a", "", "b"},
      {"", "a", ""},
      {"ab", "cde"},
      {"a", "b", "c", "d", "e", "f", "g"},
      {std::string(70, 'x'), "", std::string(15, 'y'), std::string(16, 'z'), std::string(600, 'w')},
  };
  for (const auto& list : lists) this->expectJoined(stringsOf<TypeParam>(list));
  std::mt19937 random(14);
  for (int round = 0; round < 100; ++round) {
    Strings<TypeParam> strings(1 + random() % 12);
    for (auto& string : strings) {
      string.resize(random() % (round % 10 == 0 ? 120 : 20));
      for (auto& unit : string) unit = static_cast<TypeParam>(random());
    }
    this->expectJoined(strings);
    ASSERT_FALSE(this->HasFailure()) << "round " << round;
  }
}

struct Fault {
  size_t at;
  bool null;
  int32_t length;
  ulkStatus status;
};

// What stands before the fault is written, and not even the separator after it.
TYPED_TEST(ConcatSplit, StopsJoiningAtTheFirstFaultyElement) {
  const auto strings = stringsOf<TypeParam>({"ab", "", "cde", "f"});
  for (const Fault& fault : {Fault{0, true, 1, ulkErrNullPtr}, Fault{0, false, -1, ulkErrLength},
                             Fault{1, false, INT32_MIN, ulkErrLength}, Fault{2, true, 0, ulkErrNullPtr},
                             Fault{2, true, -1, ulkErrNullPtr}, Fault{3, false, -1, ulkErrLength}}) {
    SourceList<TypeParam> list(strings);
    if (fault.null) list.pointers[fault.at] = nullptr;
    list.lengths[fault.at] = fault.length;
    // Another one later on changes nothing.
    list.pointers.push_back(fault.null ? strings[0].data() : nullptr);
    list.lengths.push_back(-1);
    const Strings<TypeParam> before(strings.begin(), strings.begin() + static_cast<ptrdiff_t>(fault.at));

    this->expectJoined(list, fault.status, before, {Place::kAtStart, 1});
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
    {"a,b,c", {9, 9, 9, 9}, ulkOk, 3, {1, 1, 1, 9}, {"a", "b", "c", ""}},
    {"a,b,c", {9, 9}, ulkWrnSlotsExhausted, 2, {1, 1}, {"a", "b"}},
    {"abc", {3}, ulkOk, 1, {3}, {"abc"}},
    // Nothing follows the last delimiter.
    {"a,b,", {9, 9, 9}, ulkOk, 2, {1, 1, 9}, {"a", "b", ""}},
    {"a,b,", {9, 9}, ulkOk, 2, {1, 1}, {"a", "b"}},
    {"a,b,,", {9, 9}, ulkWrnSlotsExhausted, 2, {1, 1}, {"a", "b"}},
    {"a,b,,", {9, 9, 9, 9}, ulkOk, 3, {1, 1, 0, 9}, {"a", "b", "", ""}},
    {",a", {9, 9}, ulkOk, 2, {0, 1}, {"", "a"}},
    {",", {9, 9}, ulkOk, 1, {0, 9}, {"", ""}},
    {",,", {9, 9}, ulkOk, 2, {0, 0}, {"", ""}},
    {"a,,b", {9, 9, 9}, ulkOk, 3, {1, 0, 1}, {"a", "", "b"}},
    {"", {9, 9}, ulkOk, 0, {9, 9}, {"", ""}},
    {"", {kNull}, ulkOk, 0, {kNull}, {""}},
    // Parts longer than their buffers.
    {"abcdef", {3}, ulkWrnPartTruncated, 1, {3}, {"abc"}},
    {"abc,d,efg", {2, 1, 3}, ulkWrnPartTruncated, 3, {2, 1, 3}, {"ab", "d", "efg"}},
    {"abc,d", {0, 0}, ulkWrnPartTruncated, 2, {0, 0}, {"", ""}},
    {",", {0}, ulkOk, 1, {0}, {""}},
    {"abc,d,e", {2, 1}, ulkWrnSlotsExhausted, 2, {2, 1}, {"ab", "d"}},
    // Faulty buffers, when the split comes to them.
    {"a,b,c", {kNull, 9, 9}, ulkErrNullPtr, 3, {kNull, 9, 9}, {"", "", ""}},
    {"a,b,c", {9, kNull, 9}, ulkErrNullPtr, 3, {1, kNull, 9}, {"a", "", ""}},
    {"a,b,c", {9, 9, -1}, ulkErrLength, 3, {1, 1, -1}, {"a", "b", ""}},
    {"abc,b,c", {2, -5, kNull}, ulkErrLength, 3, {2, -5, kNull}, {"ab", "", ""}},
    {"a,,c", {9, kNull, 9}, ulkErrNullPtr, 3, {1, kNull, 9}, {"a", "", ""}},
    {"a,b,", {9, 9, -1, kNull}, ulkOk, 2, {1, 1, -1, kNull}, {"a", "b", "", ""}},
};

TYPED_TEST(ConcatSplit, SplitsAsTheTableSays) {
  for (const SplitCase& c : kSplitCases) {
    SCOPED_TRACE(testing::Message() << '"' << c.text << "\" into " << c.rooms.size());
    std::vector<TypeParam> text = unitsOf<TypeParam>(c.text);
    for (auto& unit : text) {
      if (unit == unitOf<TypeParam>(',')) unit = this->kComma;
    }
    const Split<TypeParam> expected = {c.status, c.count, c.lengths, stringsOf<TypeParam>(c.written)};
    this->expectSplit(text, c.rooms, expected);
    ASSERT_FALSE(this->HasFailure());
    // The reference of the random texts is held to the same table.
    const auto reference = referenceSplit(text, this->kComma, c.rooms);
    EXPECT_EQ(reference.status, c.status);
    EXPECT_EQ(reference.count, c.count);
    EXPECT_EQ(reference.lengths, c.lengths);
    EXPECT_EQ(reference.written, expected.written);
  }
}

// One part, two, or parts of all lengths: every way of looking for the next delimiter and of copying a part.
TYPED_TEST(ConcatSplit, SplitsAtAnyPlaceOfAnyText) {
  // What a search for half a unit would take for the delimiter.
  const TypeParam near = static_cast<TypeParam>(sizeof(TypeParam) == 1 ? 0xAC : 0x952C);
  for (size_t length = 1; length <= 200; length += length < 70 ? 1 : 13) {
    std::vector<TypeParam> text(length, near);
    this->expectSplit(text, {300});
    for (size_t at = 0; at < length; at += length < 40 ? 1 : 7) {
      text[at] = this->kComma;
      this->expectSplit(text, {300, 300});
      text[length / 2] = this->kComma;
      this->expectSplit(text, {300, 300, 300});
      text[at] = text[length / 2] = near;
    }
    ASSERT_FALSE(this->HasFailure()) << "length " << length;
  }
  std::vector<TypeParam> text;
  for (size_t part = 1; part <= 45; ++part) {
    text.insert(text.end(), part, near);
    text.push_back(this->kComma);
  }
  this->expectSplit(text, std::vector<int32_t>(45, 45));
  this->expectSplit(text, std::vector<int32_t>(50, 40));
  this->expectSplit(text, std::vector<int32_t>(44, 40));
}

TYPED_TEST(ConcatSplit, SplitsRandomTexts) {
  constexpr unsigned kSeed = 15;
  std::mt19937 random(kSeed);
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
    this->expectSplit(text, rooms);
    ASSERT_FALSE(this->HasFailure()) << "seed " << kSeed << ", round " << round;
  }
}

TYPED_TEST(ConcatSplit, RefusesBadArguments) {
  using Calls = Api<TypeParam>;
  TypeParam unit = 'a';
  TypeParam buffer = 'b';
  const TypeParam* const sources[] = {&unit};
  TypeParam* const buffers[] = {&buffer};
  int32_t length = 1;
  int32_t count = 1;
  for (const int32_t bad : {0, -1}) {
    expectNullRefused(Calls::concat, &unit, bad, &unit, bad, &buffer);
    expectNullRefused(Calls::concatList, sources, &length, bad, &buffer);
    expectNullRefused(Calls::concatListC, sources, &length, bad, ',', &buffer);
    expectNullRefused(Calls::splitC, &unit, bad, ',', buffers, &length, &count);
    EXPECT_EQ(Calls::concatList(sources, &length, bad, &buffer), ulkErrSize);
    EXPECT_EQ(Calls::concatListC(sources, &length, bad, ',', &buffer), ulkErrSize);
  }
  EXPECT_EQ(Calls::concat(&unit, -1, &unit, 1, &buffer), ulkErrLength);
  EXPECT_EQ(Calls::concat(&unit, 1, &unit, INT32_MIN, &buffer), ulkErrLength);
  EXPECT_EQ(Calls::splitC(&unit, -1, ',', buffers, &length, &count), ulkErrLength);
  EXPECT_EQ(count, 1);
  for (const int32_t bad : {0, -1, INT32_MIN}) {
    count = bad;
    // The length first, then the number of buffers, also where none would be needed.
    EXPECT_EQ(Calls::splitC(&unit, -1, ',', buffers, &length, &count), ulkErrLength);
    EXPECT_EQ(Calls::splitC(&unit, 0, ',', buffers, &length, &count), ulkErrSize);
    EXPECT_EQ(Calls::splitC(&unit, 1, ',', buffers, &length, &count), ulkErrSize);
    EXPECT_EQ(count, bad);
  }
  EXPECT_EQ(unit, 'a');
  EXPECT_EQ(buffer, 'b');
  EXPECT_EQ(length, 1);
}

}  // namespace
}  // namespace ulk_test
