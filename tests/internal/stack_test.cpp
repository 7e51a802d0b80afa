// How much stack a search may use. The matcher keeps there every choice that it may have to take back, so
// expressions can be made that need as much as the match limit and the text allow. At the default limit they
// must still give their exact answer; at any limit a search must end by itself, well before a thread with
// 1 MiB runs out.
//
// Each search runs on a thread whose stack has been painted; what is no longer paint afterwards was used.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/deep_stack.h"
#include "ulkch.h"

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr size_t kFrameGrowth = 8;  // instrumented frames are several times as large
#else
constexpr size_t kFrameGrowth = 1;
#endif
constexpr size_t kPainted = (size_t{1} << 20) * kFrameGrowth;     // of a stack that is larger
constexpr size_t kMostUsed = (size_t{512} << 10) * kFrameGrowth;  // at the default limit
constexpr size_t kMostUsedAtAll = (size_t{832} << 10) * kFrameGrowth;
constexpr int32_t kDefaultLimit = 10000;
constexpr int32_t kNoLimit = 2147483647;

// ---- a thread with a painted stack

struct Search {
  ulkRegExpState* state;
  const std::string* text;
  ulkRegExpFind record;
  ulkStatus status;
  size_t stackUsed;
};

constexpr uint8_t kPaint = 0xC5;
constexpr size_t kOwnFrames = 2048;  // of the functions below, not painted

// Downwards, because Windows commits a stack only page by page from its top.
__attribute__((noinline, no_sanitize("address"))) void paint(uintptr_t lowest, uintptr_t top) {
  for (uintptr_t at = top; at > lowest; --at) *reinterpret_cast<volatile uint8_t*>(at - 1) = kPaint;
}

__attribute__((noinline, no_sanitize("address"))) uintptr_t lowestUsed(uintptr_t lowest) {
  while (*reinterpret_cast<volatile const uint8_t*>(lowest) == kPaint) ++lowest;
  return lowest;
}

__attribute__((noinline)) void searchOnPaintedStack(Search* search) {
  const auto frame = reinterpret_cast<uintptr_t>(__builtin_frame_address(0));
  paint(frame - kPainted, frame - kOwnFrames);
  int32_t count = 1;
  search->status =
      ulksRegExpFind_8u(reinterpret_cast<const uint8_t*>(search->text->data()),
                        static_cast<int32_t>(search->text->size()), search->state, &search->record, &count);
  if (count == 0) search->record = {nullptr, -1};
  search->stackUsed = frame - lowestUsed(frame - kPainted);
}

Search searchWith(const std::string& pattern, const std::string& text, int32_t limit) {
  int32_t errOffset = 0;
  Search search = {};
  search.text = &text;
  EXPECT_EQ(ulksRegExpInitAlloc(pattern.c_str(), "", &search.state, &errOffset), ulkOk) << errOffset;
  if (!search.state) return search;
  ulksRegExpSetMatchLimit(limit, search.state);
  ulk_test::onDeepStack([&] { searchOnPaintedStack(&search); });
  ulksRegExpFree(search.state);
  return search;
}

// ---- expressions that go deep

std::string times(size_t count, const std::string& piece) {
  std::string result;
  for (; count > 0; --count) result += piece;
  return result;
}

std::string nested(size_t depth, const std::string& open, const std::string& inner,
                   const std::string& close) {
  return times(depth, open) + inner + times(depth, close);
}

struct Deep {
  const char* name;
  std::string pattern;
  std::string text;    // matched whole, within the default limit
  std::string longer;  // where the depth comes from the text: what is searched without a limit
};

std::vector<Deep> deepExpressions() {
  const std::string manyA = times(20000, "a");
  return {
      // A choice per item.
      {"optional bytes", times(9990, "a?"), times(9990, "a"), ""},
      {"optional classes", times(1000, "[ab]?"), times(1000, "a"), ""},
      {"optional sequences", times(1000, "\\X?"), times(1000, "a"), ""},
      {"optional assertions", times(9990, "^*"), "", ""},
      {"lazy bytes", times(2000, "\\C??"), "", ""},
      {"repeated bytes", times(2000, "a*b*"), times(2000, "ab"), ""},
      {"back references", "(a)" + times(3000, "\\1?"), times(3001, "a"), ""},
      // A choice per iteration.
      {"capture", "(a)*", times(4990, "a"), manyA},
      {"group", "(?:ab)*", times(4990, "ab"), times(20000, "ab")},
      {"alternatives", "(a|b)*", times(3300, "a"), manyA},
      {"lazy group", "(?:a)*?(?:ab)*?$", times(1000, "a"), manyA},
      {"lazy capture", "(a|b)*?c", times(2400, "a") + "c", manyA + "c"},
      {"group of a repeat", "(a{1,2})*", times(8000, "a"), manyA},
      {"group of a lazy repeat", "(a+?)*", times(4900, "a"), manyA},
      {"repeated groups", "((a|b)+)*x", times(2400, "a") + "x", manyA + "x"},
      {"captures in a repeat", "((a)(b)?(c)?)*", times(1000, "a"), manyA},
      {"lookahead in a repeat", "(?:(?=a)a)*", times(2400, "a"), manyA},
      {"conditional in a repeat", "(?:(?(?=a)a|b))*", times(1600, "a"), manyA},
      {"repeated atomic group", "(?>a)*", times(9900, "a"), manyA},
      {"atomic group in a repeat", "(?:(?>a|b))*", times(2400, "a"), manyA},
      // A level per group.
      {"groups side by side", times(999, "()"), "", ""},
      {"lazy groups side by side", times(999, "(?:a|b)??"), "", ""},
      {"nested optional captures", nested(999, "(", "a", ")?"), "a", ""},
      {"nested alternatives", nested(900, "(?:x|", "a", ")"), "a", ""},
      {"nested repeated atomic groups", nested(100, "(?>", "a", ")+"), "a", manyA},
      {"nested lookaheads", nested(999, "(?=", "a", ")") + "a", "a", ""},
      {"nested lookbehinds", "a" + nested(999, "(?<=", "a", ")"), "a", ""},
      {"every kind nested", nested(140, "((?:(?>(?=a)(?i:(?(?=a)", "a", "|b)))|c))"), "a", ""},
      {"every kind repeated", "(?:((?i:(?>a|b)))(?(1)(?=a|$)|x)(?<=a))*", times(600, "a"), manyA},
  };
}

TEST(Stack, DeepSearchesAtTheDefaultLimitAreExact) {
  size_t mostUsed = 0;
  for (const Deep& deep : deepExpressions()) {
    SCOPED_TRACE(deep.name);
    const Search search = searchWith(deep.pattern, deep.text, kDefaultLimit);
    EXPECT_EQ(search.status, ulkOk);
    EXPECT_EQ(search.record.lenFound, static_cast<int32_t>(deep.text.size()));
    EXPECT_LE(search.stackUsed, kMostUsed);
    mostUsed = std::max(mostUsed, search.stackUsed);
  }
  RecordProperty("mostUsed", std::to_string(mostUsed));
}

TEST(Stack, SearchesWithoutALimitEnd) {
  for (const Deep& deep : deepExpressions()) {
    SCOPED_TRACE(deep.name);
    const std::string& text = deep.longer.empty() ? deep.text : deep.longer;
    const Search search = searchWith(deep.pattern, text, kNoLimit);
    EXPECT_LE(search.stackUsed, kMostUsedAtAll);
    if (search.status == ulkErrMatchLimit) continue;
    EXPECT_EQ(search.status, ulkOk);
    EXPECT_EQ(search.record.lenFound, static_cast<int32_t>(text.size()));
  }
}

// What a search without a limit can keep: as many iterations as the header promises for groups that hold no
// other choice.
TEST(Stack, KeepsManyIterations) {
  for (const char* pattern : {"(a|b)+", "(?:.(?:\\s+)?)+", "(?:a(b)?c?)+", "(?:a|b)+?$", "(?>a|b)+",
                              "(?:(?=a)(?<!b)a|b)+", "(?i:A)+"}) {
    const std::string text = times(40000, "a");
    const Search search = searchWith(pattern, text, kNoLimit);
    EXPECT_EQ(search.status, ulkOk) << pattern;
    EXPECT_EQ(search.record.lenFound, static_cast<int32_t>(text.size())) << pattern;
  }
}

// Expressions that would take exponential time end with the limit.
TEST(Stack, HopelessSearchesEndWithTheLimit) {
  const std::string text = times(30000, "a");
  for (const char* pattern :
       {"(a+a+)+[b]", "(?:a|aa)+[b]", "(?:(?:a*)*)*[b]", "((a?)*)*[b]", "(?:a?a?a?)*[b]",
        "(.*)(.*)(.*)(.*)[b]", "(a*)*\\1[b]", "(?:(?=(a*))\\1?)*[b]", "(a+?)*[b]", "(?:a|(?>a)|(a))*[b]"}) {
    SCOPED_TRACE(pattern);
    const Search search = searchWith(pattern, text, kDefaultLimit);
    EXPECT_EQ(search.status, ulkErrMatchLimit);
    EXPECT_LE(search.stackUsed, kMostUsed);
  }
}

}  // namespace
