// The expression object: sizes, the order of argument checks, what each call writes, and the settings.

#include "regexp/program/state.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "support/test_core.h"

namespace ulk {
namespace {

constexpr int32_t kUntouched = -12345;

// A buffer for short patterns, filled with a byte that no field gets by chance.
struct Buffer {
  Buffer() { std::memset(bytes, 0xEE, sizeof bytes); }
  ulkRegExpState* state() { return reinterpret_cast<ulkRegExpState*>(bytes); }
  bool untouched() const {
    return std::all_of(std::begin(bytes), std::end(bytes), [](unsigned char byte) { return byte == 0xEE; });
  }
  alignas(8) unsigned char bytes[sizeof(ulkRegExpState) + 32 * sizeof(RxNode)];
};

TEST(State, Size) {
  int32_t size = kUntouched;
  EXPECT_EQ(ulksRegExpGetSize("", &size), ulkOk);
  EXPECT_EQ(size, static_cast<int32_t>(sizeof(ulkRegExpState) + sizeof(RxNode)));
  const int32_t empty = size;
  EXPECT_EQ(ulksRegExpGetSize("(*[", &size), ulkOk);
  EXPECT_EQ(size, empty + 3 * static_cast<int32_t>(sizeof(RxNode)));
  if (sizeof(void*) == 4) {
    EXPECT_EQ(empty, 40052);
    EXPECT_EQ(size, 40112);
  }
  size = kUntouched;
  EXPECT_EQ(ulksRegExpGetSize(nullptr, &size), ulkErrNullPtr);
  EXPECT_EQ(ulksRegExpGetSize("a", nullptr), ulkErrNullPtr);
  EXPECT_EQ(size, kUntouched);
}

// The largest pattern whose state has a 32-bit size, and one byte more.
TEST(State, SizeNeverWraps) {
  std::string pattern(kMaxPatternLength, 'a');
  int32_t size = kUntouched;
  ASSERT_EQ(ulksRegExpGetSize(pattern.c_str(), &size), ulkOk);
  EXPECT_GT(size, INT32_MAX - static_cast<int32_t>(sizeof(RxNode)));

  pattern += 'a';
  size = kUntouched;
  EXPECT_EQ(ulksRegExpGetSize(pattern.c_str(), &size), ulkErrLength);
  EXPECT_EQ(size, kUntouched);
  Buffer buffer;
  int32_t offset = kUntouched;
  EXPECT_EQ(ulksRegExpInit(pattern.c_str(), "", buffer.state(), &offset), ulkErrLength);
  EXPECT_EQ(offset, 0);
  EXPECT_TRUE(buffer.untouched());
  ulkRegExpState* state = buffer.state();
  EXPECT_EQ(ulksRegExpInitAlloc(pattern.c_str(), "", &state, &offset), ulkErrNullPtr);
  EXPECT_EQ(state, nullptr);
}

TEST(State, InitChecksItsPointers) {
  Buffer buffer;
  int32_t offset = kUntouched;
  EXPECT_EQ(ulksRegExpInit(nullptr, "?", buffer.state(), &offset), ulkErrNullPtr);
  EXPECT_EQ(ulksRegExpInit("(", "?", nullptr, &offset), ulkErrNullPtr);
  EXPECT_EQ(ulksRegExpInit("(", "?", buffer.state(), nullptr), ulkErrNullPtr);
  EXPECT_TRUE(offset == kUntouched && buffer.untouched());
}

TEST(State, Options) {
  constexpr int32_t kRefused = -1;
  const struct {
    const char* letters;
    int32_t options;
  } kRows[] = {{nullptr, 0}, {"", 0},   {"gimsx", 31}, {"s", 1},        {"m", 2},          {"i", 4},
               {"x", 8},     {"g", 16}, {"iixi", 12},  {"I", kRefused}, {"ix!", kRefused}, {"i m", kRefused}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.letters ? row.letters : "null");
    Buffer buffer;
    int32_t offset = kUntouched;
    const ulkStatus status = ulksRegExpInit("ab", row.letters, buffer.state(), &offset);
    ASSERT_EQ(status, row.options == kRefused ? ulkErrRegExpOptions : ulkOk);
    EXPECT_EQ(offset, status == ulkOk ? kUntouched : 0);
    EXPECT_EQ(buffer.untouched(), status != ulkOk);
    if (status == ulkOk) {
      EXPECT_EQ(buffer.state()->options, static_cast<uint32_t>(row.options));
    }
  }
}

TEST(State, HeaderOfACompile) {
  Buffer buffer;
  int32_t offset = kUntouched;
  ASSERT_EQ(ulksRegExpInit("(a)(b)cd", "i", buffer.state(), &offset), ulkOk);
  const ulkRegExpState& state = *buffer.state();
  EXPECT_EQ(std::memcmp(&state, "rgEx", 4), 0);
  EXPECT_EQ(state.options, 4u);
  EXPECT_EQ(state.numNodes, 7);
  EXPECT_EQ(state.numCaptures, 3);
  EXPECT_EQ(state.trailingLiteral, 6);
  EXPECT_EQ(state.matchLimit, 10000);
  EXPECT_EQ(state.format, 1);
  EXPECT_EQ(state.reserved, 0xEEEEEEEEu);
  EXPECT_EQ(offset, kUntouched);
}

// A refused pattern leaves the header as far as it was written: nothing before the prescan has passed, then
// all but the node count, the trailing literal and the limit.
TEST(State, WhatAFailedCompileLeaves) {
  Buffer prescan;
  int32_t offset = kUntouched;
  ASSERT_EQ(ulksRegExpInit(".*(", "", prescan.state(), &offset), ulkErrRegExpGroup);
  EXPECT_EQ(prescan.state()->magic, 0xEEEEEEEEu);
  EXPECT_EQ(prescan.state()->nodes()[0].op1, kLeadingDotStar);

  Buffer main;
  ASSERT_EQ(ulksRegExpInit("(a**)", "g", main.state(), &offset), ulkErrRegExpQuantifier);
  EXPECT_EQ(main.state()->magic, kStateMagic);
  EXPECT_EQ(main.state()->options, 16u);
  EXPECT_EQ(main.state()->numCaptures, 2);
  EXPECT_EQ(main.state()->format, 1);
  EXPECT_EQ(main.state()->numNodes, static_cast<int32_t>(0xEEEEEEEE));
  EXPECT_EQ(main.state()->trailingLiteral, static_cast<int32_t>(0xEEEEEEEE));
  EXPECT_EQ(main.state()->matchLimit, static_cast<int32_t>(0xEEEEEEEE));
}

TEST(State, Settings) {
  Buffer buffer;
  ulkRegExpState* const state = buffer.state();
  for (const int32_t value : {5, -1}) EXPECT_EQ(ulksRegExpSetMatchLimit(value, nullptr), ulkErrNullPtr);
  for (const int32_t value : {1, 2}) EXPECT_EQ(ulksRegExpSetFormat(value, nullptr), ulkErrNullPtr);
  EXPECT_EQ(ulksRegExpSetMatchLimit(-1, state), ulkErrLength);
  for (const int32_t value : {2, -1}) EXPECT_EQ(ulksRegExpSetFormat(value, state), ulkErrRegExpFormat);
  EXPECT_TRUE(buffer.untouched());

  for (const int32_t limit : {0, INT32_MAX}) {
    EXPECT_EQ(ulksRegExpSetMatchLimit(limit, state), ulkOk);
    EXPECT_EQ(state->matchLimit, limit);
  }
  for (const int32_t format : {1, 0}) {
    EXPECT_EQ(ulksRegExpSetFormat(format, state), ulkOk);
    EXPECT_EQ(state->format, format);
  }
  int32_t offset = 0;
  ASSERT_EQ(ulksRegExpInit("a", nullptr, state, &offset), ulkOk);
  EXPECT_EQ(state->matchLimit, 10000);
  EXPECT_EQ(state->format, 1);
}

TEST(State, InitAlloc) {
  const int32_t before = testcore::liveBlocks();
  int32_t offset = kUntouched;
  ulkRegExpState* state = nullptr;
  ASSERT_EQ(ulksRegExpInitAlloc("abc", "i", &state, &offset), ulkOk);
  ASSERT_NE(state, nullptr);
  int32_t size = 0;
  ulksRegExpGetSize("abc", &size);
  EXPECT_EQ(testcore::lastSize(), size);
  EXPECT_EQ(testcore::liveBlocks(), before + 1);
  EXPECT_EQ(state->options, 4u);
  ulksRegExpFree(state);
  EXPECT_EQ(testcore::liveBlocks(), before);

  Buffer other;
  const auto refused = [&](const char* pattern, int32_t* errorOffset, ulkStatus status) {
    state = other.state();
    EXPECT_EQ(ulksRegExpInitAlloc(pattern, "", &state, errorOffset), status);
    return state;
  };
  EXPECT_EQ(refused("ab(", &offset, ulkErrRegExpGroup), nullptr);
  EXPECT_EQ(offset, 3);
  EXPECT_EQ(refused("abc", nullptr, ulkErrNullPtr), nullptr);
  testcore::failNextAllocation();
  EXPECT_EQ(refused("ab(", &offset, ulkErrNullPtr), nullptr);
  EXPECT_EQ(refused(nullptr, &offset, ulkErrNullPtr), other.state());
  EXPECT_EQ(ulksRegExpInitAlloc("abc", "", nullptr, &offset), ulkErrNullPtr);
  EXPECT_EQ(testcore::liveBlocks(), before);
}

}  // namespace
}  // namespace ulk
