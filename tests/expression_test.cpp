// Runs every expression of tests/data and of docs/syntax.md (support/expression_cases.h tells how they are
// written) and compares what the library answers with what stands there, both as text in the notation of the
// files.
//
// Each search runs in every setting that must not matter: a work area full of garbage before the compile or a
// clean one, the text at the end or at the start of its guarded pages, the other format for ASCII texts.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "support/expression_cases.h"
#include "support/guarded.h"
#include "support/outcome.h"
#include "ulkch.h"

#ifndef ULKCH_TEST_DATA_DIR
#define ULKCH_TEST_DATA_DIR "tests/data"
#endif

namespace ulk_test {
namespace {

const char* const kFiles[] = {"items",      "repeats", "classes",      "properties",         "groups",
                              "lookaround", "atomic",  "options",      "anchors_and_search", "global_search",
                              "limits",     "errors",  "conditionals", "everyday",           "syntax"};

std::string pathOf(const std::string& name) {
  const char* given = std::getenv("ULKCH_TEST_DATA");
  const std::string directory = given ? given : ULKCH_TEST_DATA_DIR;
  return directory + (name == "syntax" ? "/../../docs/syntax.md" : "/" + name + ".txt");
}

std::string errorName(ulkStatus status) {
  switch (status) {
    case ulkErrRegExpSyntax:
      return "syntax";
    case ulkErrRegExpClass:
      return "class";
    case ulkErrRegExpBackRef:
      return "backref";
    case ulkErrRegExpGroup:
      return "group";
    case ulkErrRegExpQuantifier:
      return "quantifier";
    case ulkErrRegExpOptions:
      return "options";
    default:
      return std::to_string(status);
  }
}

// A state buffer of exactly the stated size, full of `fill`, with a guard zone behind it.
class StateBuffer {
 public:
  StateBuffer(const std::string& pattern, uint8_t fill) {
    int32_t size = 0;
    EXPECT_EQ(ulksRegExpGetSize(pattern.c_str(), &size), ulkOk);
    size_ = static_cast<size_t>(size);
    words_.resize((size_ + kZone) / sizeof(uint64_t) + 1);
    std::memset(words_.data(), fill, size_);
    std::memset(bytes() + size_, kZoneByte, kZone);
  }

  ulkRegExpState* state() { return reinterpret_cast<ulkRegExpState*>(words_.data()); }

  bool zoneIntact() {
    return std::all_of(bytes() + size_, bytes() + size_ + kZone,
                       [](uint8_t byte) { return byte == kZoneByte; });
  }

 private:
  static constexpr size_t kZone = 64;
  static constexpr uint8_t kZoneByte = 0xEE;
  uint8_t* bytes() { return reinterpret_cast<uint8_t*>(words_.data()); }

  size_t size_ = 0;
  std::vector<uint64_t> words_;
};

// "" for success, else "error NAME OFFSET".
std::string compile(const Expression& expression, ulkRegExpState* state) {
  constexpr int32_t kUntouched = -77;
  int32_t offset = kUntouched;
  const ulkStatus status =
      ulksRegExpInit(expression.pattern.c_str(), expression.options.c_str(), state, &offset);
  if (status != ulkOk) return "error " + errorName(status) + " " + std::to_string(offset);
  EXPECT_EQ(offset, kUntouched) << "a successful compile wrote the error offset";
  return "";
}

// One search with one compiled state, at one place of the text and in every format that must not matter.
void checkSearch(const Search& expected, const uint8_t* text, ulkRegExpState* state) {
  const bool ascii =
      std::all_of(expected.text.begin(), expected.text.end(), [](char c) { return (c & 0x80) == 0; });
  std::vector<int32_t> formats = {expected.format.value_or(1)};
  if (ascii && !expected.format) formats.push_back(0);

  for (const int32_t format : formats) {
    SCOPED_TRACE(format == 1 ? "format 1" : "format 0");
    const auto find = [&](int32_t limit, int32_t capacity) {
      ulksRegExpSetMatchLimit(limit, state);
      ulksRegExpSetFormat(format, state);
      return asText(outcomeOf(text, capacity, [&](ulkRegExpFind* records, int32_t* count) {
        return ulksRegExpFind_8u(text, static_cast<int32_t>(expected.text.size()), state, records, count);
      }));
    };
    EXPECT_EQ(find(expected.limit.value_or(10000), expected.capacity), expected.expected);
    if (!expected.steps) continue;
    EXPECT_EQ(find(*expected.steps, expected.capacity), expected.expected)
        << "at the limit of " << *expected.steps;
    if (*expected.steps > 0) {
      EXPECT_EQ(find(*expected.steps - 1, 1), "limit 1") << "one step below " << *expected.steps;
    }
  }
}

// The text with what a search may look at behind it, and nothing readable further on.
void checkSearchAtGuards(const Search& expected, ulkRegExpState* state) {
  std::vector<uint8_t> bytes(expected.text.begin(), expected.text.end());
  bytes.insert(bytes.end(), expected.behind.begin(), expected.behind.end());
  GuardedUnits<uint8_t> pages(bytes.size());
  checkSearch(expected, pages.endingAtGuard(bytes), state);
  checkSearch(expected, pages.startingAtGuard(bytes), state);
}

void checkExpression(const Expression& expression) {
  for (const uint8_t fill : {uint8_t{0xA5}, uint8_t{0}}) {
    StateBuffer buffer(expression.pattern, fill);
    ASSERT_EQ(compile(expression, buffer.state()), expression.error);
    EXPECT_TRUE(buffer.zoneIntact()) << "the compile wrote past the size of its state";
    for (const Search& expected : expression.searches) {
      SCOPED_TRACE("line " + std::to_string(expected.line));
      checkSearchAtGuards(expected, buffer.state());
    }
    EXPECT_TRUE(buffer.zoneIntact()) << "a search wrote past the size of its state";
  }
}

class ExpressionTest : public testing::TestWithParam<const char*> {};

TEST_P(ExpressionTest, FindsWhatTheFileSays) {
  const ExpressionFile file = readExpressions(pathOf(GetParam()));
  ASSERT_EQ(file.problem, "");
  ASSERT_FALSE(file.expressions.empty());
  for (const Expression& expression : file.expressions) {
    SCOPED_TRACE(std::string(GetParam()) + ":" + std::to_string(expression.line) + ": /" +
                 expression.pattern + "/" + expression.options);
    checkExpression(expression);
  }
}

INSTANTIATE_TEST_SUITE_P(Data, ExpressionTest, testing::ValuesIn(kFiles),
                         [](const auto& parameter) { return std::string(parameter.param); });

}  // namespace
}  // namespace ulk_test
