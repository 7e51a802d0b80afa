// The expression object: sizes, the order of argument checks, what each call writes, and the settings.

#include "regexp/state.h"

#include <gtest/gtest.h>

#include <cstring>
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
    for (const unsigned char byte : bytes) {
      if (byte != 0xEE) return false;
    }
    return true;
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
  EXPECT_EQ(offset, kUntouched);
  EXPECT_TRUE(buffer.untouched());
}

TEST(State, Options) {
  const struct {
    const char* letters;
    ulkStatus status;
    uint32_t options;
  } kRows[] = {
      {nullptr, ulkOk, 0},
      {"", ulkOk, 0},
      {"gimsx", ulkOk, 31},
      {"s", ulkOk, 1},
      {"m", ulkOk, 2},
      {"i", ulkOk, 4},
      {"x", ulkOk, 8},
      {"g", ulkOk, 16},
      {"iixi", ulkOk, 12},
      {"I", ulkErrRegExpOptions, 0},
      {"ix!", ulkErrRegExpOptions, 0},
      {"i m", ulkErrRegExpOptions, 0},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.letters ? row.letters : "null");
    Buffer buffer;
    int32_t offset = kUntouched;
    ASSERT_EQ(ulksRegExpInit("ab", row.letters, buffer.state(), &offset), row.status);
    EXPECT_EQ(offset, row.status == ulkOk ? kUntouched : 0);
    if (row.status == ulkOk) {
      EXPECT_EQ(buffer.state()->options, row.options);
    } else {
      EXPECT_TRUE(buffer.untouched());
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
  EXPECT_EQ(ulksRegExpSetMatchLimit(5, nullptr), ulkErrNullPtr);
  EXPECT_EQ(ulksRegExpSetMatchLimit(-1, nullptr), ulkErrNullPtr);
  EXPECT_EQ(ulksRegExpSetFormat(2, nullptr), ulkErrNullPtr);
  EXPECT_EQ(ulksRegExpSetMatchLimit(-1, state), ulkErrLength);
  EXPECT_EQ(ulksRegExpSetFormat(2, state), ulkErrRegExpFormat);
  EXPECT_EQ(ulksRegExpSetFormat(-1, state), ulkErrRegExpFormat);
  EXPECT_TRUE(buffer.untouched());

  EXPECT_EQ(ulksRegExpSetMatchLimit(0, state), ulkOk);
  EXPECT_EQ(state->matchLimit, 0);
  EXPECT_EQ(ulksRegExpSetMatchLimit(INT32_MAX, state), ulkOk);
  EXPECT_EQ(state->matchLimit, INT32_MAX);
  EXPECT_EQ(ulksRegExpSetFormat(1, state), ulkOk);
  EXPECT_EQ(ulksRegExpSetFormat(0, state), ulkOk);
  EXPECT_EQ(state->format, 0);

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
  state = other.state();
  EXPECT_EQ(ulksRegExpInitAlloc("ab(", "", &state, &offset), ulkErrRegExpGroup);
  EXPECT_EQ(offset, 3);
  EXPECT_EQ(state, nullptr);

  state = other.state();
  EXPECT_EQ(ulksRegExpInitAlloc("abc", "", &state, nullptr), ulkErrNullPtr);
  EXPECT_EQ(state, nullptr);

  state = other.state();
  testcore::failNextAllocation();
  EXPECT_EQ(ulksRegExpInitAlloc("ab(", "", &state, &offset), ulkErrNullPtr);
  EXPECT_EQ(state, nullptr);

  state = other.state();
  EXPECT_EQ(ulksRegExpInitAlloc(nullptr, "", &state, &offset), ulkErrNullPtr);
  EXPECT_EQ(state, other.state());
  EXPECT_EQ(ulksRegExpInitAlloc("abc", "", nullptr, &offset), ulkErrNullPtr);
  EXPECT_EQ(testcore::liveBlocks(), before);
}

}  // namespace
}  // namespace ulk
