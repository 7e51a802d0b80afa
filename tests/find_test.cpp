// ulksRegExpFind_8u around the expressions themselves (those stand in tests/data): its argument checks,
// records and settings, what it may read, and the start positions and trailing literals that it finds without
// trying each place.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <functional>
#include <numeric>
#include <string>
#include <vector>

#include "fuzz/check.h"
#include "support/compiled.h"
#include "support/outcome.h"
#include "ulkch.h"

namespace ulk_test {
namespace {

using Bytes = std::vector<uint8_t>;

// What a search of one record finds, as tests/data writes it.
std::string find(const uint8_t* text, size_t length, ulkRegExpState* state) {
  return asText(outcomeOf(text, 1, [&](ulkRegExpFind* records, int32_t* count) {
    return ulksRegExpFind_8u(text, static_cast<int32_t>(length), state, records, count);
  }));
}

std::string find(const std::string& text, ulkRegExpState* state) {
  return find(reinterpret_cast<const uint8_t*>(text.data()), text.size(), state);
}

const char* const kInvalidState = "status -189";

// ---- arguments

TEST(Find, ChecksItsArgumentsInOrderAndWritesNothingBefore) {
  StateBuffer good("(a)b");
  StateBuffer bad("(a)b");
  bad.bytes()[0] ^= 1;
  const Bytes goodBytes(good.bytes(), good.bytes() + good.size());
  const Bytes badBytes(bad.bytes(), bad.bytes() + bad.size());
  const uint8_t text[] = "ab";
  ulkRegExpFind records[2] = {{text, -7}, {text, -7}};
  const struct {
    const uint8_t* text;
    int32_t length;
    ulkRegExpState* state;
    ulkRegExpFind* records;
    int32_t count;
    ulkStatus status;
  } cases[] = {
      {nullptr, -1, bad.state(), records, 0, ulkErrNullPtr},
      {text, -1, nullptr, records, 0, ulkErrNullPtr},
      {text, -1, bad.state(), nullptr, 0, ulkErrNullPtr},
      {nullptr, 0, good.state(), records, 2, ulkErrNullPtr},
      {text, -1, bad.state(), records, 0, ulkErrLength},
      {text, INT32_MIN, good.state(), records, 2, ulkErrLength},
      {text, 2, bad.state(), records, 0, ulkErrSize},
      {text, 0, good.state(), records, -1, ulkErrSize},
      {text, 2, bad.state(), records, 2, ulkErrInvalidState},
      {text, 0, bad.state(), records, 1, ulkErrInvalidState},
  };
  for (const auto& c : cases) {
    int32_t count = c.count;
    EXPECT_EQ(ulksRegExpFind_8u(c.text, c.length, c.state, c.records, &count), c.status);
    EXPECT_EQ(count, c.count);
    for (const ulkRegExpFind& record : records) {
      EXPECT_EQ(record.pFound, text);
      EXPECT_EQ(record.lenFound, -7);
    }
    EXPECT_TRUE(std::equal(goodBytes.begin(), goodBytes.end(), good.bytes()));
    EXPECT_TRUE(std::equal(badBytes.begin(), badBytes.end(), bad.bytes()));
  }
}

TEST(Find, RefusesAStateThatIsNone) {
  for (size_t i = 0; i < 4; ++i) {
    StateBuffer compiled("a");
    EXPECT_EQ(find("a", compiled.state()), "0+1");
    compiled.bytes()[i] ^= 0x20;
    EXPECT_EQ(find("a", compiled.state()), kInvalidState);
  }
  // A compile that fails early leaves what was there.
  for (const char* pattern : {"(a", "a)"}) {
    StateBuffer compiled("abcdef");
    std::fill_n(compiled.bytes(), 64, uint8_t{0xA5});
    EXPECT_NE(compiled.compile(pattern), ulkOk);
    EXPECT_EQ(find("a", compiled.state()), kInvalidState) << pattern;
  }
}

// ---- records

TEST(Find, FillsAsManyRecordsAsThereAreGroupsAndRoom) {
  const uint8_t text[] = "xabd";
  const std::string expected[] = {"1+3", " 1+1", " 2+1", " -", " 3+1"};
  StateBuffer compiled("(a)(b)(c)?(d)");
  for (int32_t capacity = 1; capacity <= 8; ++capacity) {
    const Outcome outcome = outcomeOf(text, capacity, [&](ulkRegExpFind* records, int32_t* count) {
      return ulksRegExpFind_8u(text, 4, compiled.state(), records, count);
    });
    const int32_t count = std::min(capacity, 5);
    EXPECT_EQ(outcome.count, count);
    EXPECT_EQ(asText(outcome), std::accumulate(expected, expected + count, std::string()));
  }
}

// ---- the state

TEST(Find, TakesAStateAtAnyAddressThatSuitsAPointer) {
  for (size_t offset = 0; offset < 64; offset += sizeof(void*)) {
    StateBuffer compiled("(?:([a-c]+)|\\p{Greek}|(?i)xyz)+?(?<=.)[^k-m\\d]", "", 0xA5, offset);
    EXPECT_EQ(find("--acbXYZ-", compiled.state()), "2+4") << offset;
  }
}

TEST(Find, FollowsTheSettingsUntilTheNextCompile) {
  const std::string text = "\xc3\xa9";
  StateBuffer compiled("\\xa9");
  EXPECT_EQ(find(text, compiled.state()), "none");
  EXPECT_EQ(ulksRegExpSetFormat(0, compiled.state()), ulkOk);
  EXPECT_EQ(ulksRegExpSetFormat(2, compiled.state()), ulkErrRegExpFormat);
  EXPECT_EQ(find(text, compiled.state()), "1+1");
  EXPECT_EQ(ulksRegExpSetMatchLimit(1, compiled.state()), ulkOk);
  EXPECT_EQ(ulksRegExpSetMatchLimit(-1, compiled.state()), ulkErrLength);
  EXPECT_EQ(find(text, compiled.state()), "limit 1");

  EXPECT_EQ(compiled.compile("\\xa9"), ulkOk);
  EXPECT_EQ(find(text, compiled.state()), "none");
  // The limit is back at 10000.
  EXPECT_EQ(compiled.compile("[b]"), ulkOk);
  EXPECT_EQ(find(std::string(9999, 'a'), compiled.state()), "none");
  EXPECT_EQ(find(std::string(10000, 'a'), compiled.state()), "limit 1");
}

// A compile that looked from each repeat to the end of the expression would take minutes here.
TEST(Find, CompilesLongExpressionsInProportionToTheirLength) {
  for (const char* piece : {"a?", "[a-z]?", "\\w*\\d*", "(?:a)*", "(?i)a*", "a*b", "(?:a|b?)"}) {
    std::string pattern = "(?:";
    for (int i = 0; i < 900; ++i) pattern += piece;
    pattern += ")*";
    for (int i = 0; i < 20000 && piece[0] != '('; ++i) pattern += piece;
    const std::clock_t before = std::clock();
    StateBuffer compiled(pattern);
    EXPECT_EQ(compiled.status(), ulkOk);
    EXPECT_LT(std::clock() - before, 5 * CLOCKS_PER_SEC) << piece;
  }
}

// ---- every byte

// Which bytes one-byte texts of single bytes match, compared with a plain statement of the set.
void expectBytes(const std::string& pattern, const char* options, const std::function<bool(int)>& contains) {
  StateBuffer compiled(pattern, options);
  ASSERT_EQ(compiled.status(), ulkOk) << pattern;
  for (int byte = 0; byte < 256; ++byte) {
    const uint8_t text[] = {static_cast<uint8_t>(byte), 0};
    const char* const expected = contains(byte) ? "0+1" : "none";
    EXPECT_EQ(find(text, 1, compiled.state()), expected) << pattern << " on byte " << byte;
  }
}

bool isDigit(int c) { return c >= '0' && c <= '9'; }
bool isUpper(int c) { return c >= 'A' && c <= 'Z'; }
bool isLower(int c) { return c >= 'a' && c <= 'z'; }
bool isWord(int c) { return isDigit(c) || isUpper(c) || isLower(c) || c == '_'; }
bool isSpace(int c) { return c == ' ' || c == '\t' || c == '\n' || c == '\f' || c == '\r'; }

TEST(Find, KnowsEveryByte) {
  expectBytes("\\d", "", isDigit);
  expectBytes("\\w", "", isWord);
  expectBytes("\\s", "", isSpace);
  expectBytes("\\D", "", [](int c) { return !isDigit(c); });
  expectBytes("\\W", "i", [](int c) { return !isWord(c); });
  expectBytes("\\S", "", [](int c) { return !isSpace(c); });
  expectBytes(".", "", [](int c) { return c != '\n'; });
  expectBytes(".", "s", [](int) { return true; });
  expectBytes("\\C", "", [](int) { return true; });
  expectBytes("\\b.", "s", isWord);
  expectBytes("[[:punct:]]", "", [](int c) { return c == '_' || (c >= 32 && !isWord(c)); });
  expectBytes("[[:print:]]", "", [](int c) { return c >= 32; });
  expectBytes("[[:alnum:]_]", "", isWord);
  expectBytes("[[:cntrl:]]", "", [](int c) { return c < 32; });
}

std::string escaped(int byte) {
  const char* const kHex = "0123456789abcdef";
  return std::string("\\x") + kHex[byte / 16] + kHex[byte % 16];
}

// Single bytes and ranges, from each byte to its neighbours.
TEST(Find, ComparesEveryByteInBothCases) {
  for (int low = 0; low < 256; ++low) {
    for (int high = low; high < std::min(low + 40, 256); high += 1 + low % 17) {
      const auto within = [=](int c) { return c >= low && c <= high; };
      const auto caseless = [=](int c) {
        return within(c) || (isLower(c) && within(c - 32)) || (isUpper(c) && within(c + 32));
      };
      const std::string range = escaped(low) + (low < high ? "-" + escaped(high) : "");
      if (low == high) expectBytes(range, "", within);
      if (low == high) expectBytes(range, "i", caseless);
      expectBytes("[\\n" + range + "]", "i", [&](int c) { return c == '\n' || caseless(c); });
      expectBytes("[^\\n" + range + "]", "i", [&](int c) { return c != '\n' && !caseless(c); });
    }
  }
}

// ---- long texts: start positions that cannot match are passed quickly, and the limit must not show it

// Calls `check` with texts of every number of filling units before and behind `needle`, each at both guards.
void atEveryPlace(const std::string& fill, const std::string& needle,
                  const std::function<void(const uint8_t*, size_t length, size_t before)>& check) {
  constexpr size_t kMost = 70;
  for (size_t before = 0; before <= kMost; ++before) {
    for (const size_t behind : {size_t{0}, size_t{1}, size_t{15}, size_t{16}, kMost - before}) {
      std::string text;
      for (size_t i = 0; i < before; ++i) text += fill;
      text += needle;
      for (size_t i = 0; i < behind; ++i) text += fill;
      const Bytes bytes(text.c_str(), text.c_str() + text.size() + 1);
      for (const size_t shift : {size_t{0}, ulk_fuzz::kAtEnd})
        check(ulk_fuzz::Block<uint8_t>(bytes, shift).get(), text.size(), before);
    }
  }
}

TEST(Find, FindsTheStartAmongOthersAndCountsThemAll) {
  const struct {
    const char* pattern;
    const char* options;
    const char* fill;
    const char* needle;
    int32_t found;  // bytes of the needle that match
    int32_t miss;   // steps at a place that does not match
    int32_t hit;    // steps at the needle
  } cases[] = {
      {"[q]z", "", "a", "qz", 2, 1, 2},         {"[qw]", "", "a", "w", 1, 1, 1},
      {"[q]", "i", "A", "Q", 1, 1, 1},          {"\\d", "", "x", "7", 1, 1, 1},
      {"[^a]", "", "a", "\xff", 1, 1, 1},       {"(q)\\b", "", "-", "q", 1, 2, 4},
      {"(?:qu|wa)\\b", "", "-", "wa", 2, 3, 5}, {"[q]|[w]", "", "a", "w", 1, 2, 2},
      {"(?i)[q]", "", "a", "Q", 1, 2, 2},       {"q+z\\b", "", "-", "qqz", 3, 1, 3},
      {"q*?z\\b", "", "-", "qqz", 3, 1, 3},     {"[é]", "", "\xc3", "\xe9", 1, 1, 1},
      {"\\x{20ac}", "", "é", "€", 3, 1, 1},     {"\\p{Greek}", "", "é", "β", 2, 1, 1},
      {"[β]", "", "é", "β", 2, 1, 1},           {"(?=[q])\\w", "", "a", "q", 1, 2, 3},
      {"[qw]z", "", "aq", "qz", 2, 3, 2},       {"\\b[qw]z", "", "q-", "qz", 2, 5, 3},
  };
  for (const auto& c : cases) {
    StateBuffer compiled(c.pattern, c.options);
    const size_t fillBytes = std::strlen(c.fill);
    atEveryPlace(c.fill, c.needle, [&](const uint8_t* text, size_t length, size_t before) {
      const std::string expected = std::to_string(before * fillBytes) + "+" + std::to_string(c.found);
      const int32_t steps = static_cast<int32_t>(before) * c.miss + c.hit;
      ulksRegExpSetMatchLimit(steps, compiled.state());
      ASSERT_EQ(find(text, length, compiled.state()), expected) << c.pattern << " behind " << before;
      ulksRegExpSetMatchLimit(steps - 1, compiled.state());
      ASSERT_EQ(find(text, length, compiled.state()), "limit 1") << c.pattern << " behind " << before;
    });
  }
}

TEST(Find, CutsTheTextBehindTheLastTrailingLiteral) {
  // Each pattern matches its literal only where the text seems to end behind it.
  const struct {
    const char* pattern;
    const char* options;
    const char* fill;
    const char* literal;
  } cases[] = {
      {"(?=b$)b", "", "a", "b"},
      {"(?=B$)B", "i", "a", "b"},
      {"(?=ab$)ab", "", "b", "ab"},
      {"(?=ab$)ab", "", "a", "ab"},
      {"(?=a-B$)a-B", "i", "-", "A-b"},
      {"(?=abcab$)abcab", "", "ab", "abcab"},
      {"(?=0123456789abcdefgh$)0123456789abcdefgh", "", "9", "0123456789abcdefgh"},
  };
  for (const auto& c : cases) {
    StateBuffer compiled(c.pattern, c.options);
    const std::string literal = c.literal;
    const std::string fill = c.fill;
    atEveryPlace(fill, literal + fill + literal, [&](const uint8_t* text, size_t length, size_t before) {
      const size_t last = (before + 1) * fill.size() + literal.size();
      const std::string expected = std::to_string(last) + "+" + std::to_string(literal.size());
      ASSERT_EQ(find(text, length, compiled.state()), expected) << c.pattern << " behind " << before;
    });
  }
}

}  // namespace
}  // namespace ulk_test
