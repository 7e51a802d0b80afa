// Runs every expression of tests/data and of docs/syntax.md (support/expression_cases.h tells how they are
// written) and compares what the library answers with what stands there, both as text in the notation of the
// files.
//
// Each search runs in every setting that must not matter: a work area full of garbage before the compile or a
// clean one, the text at the end or at the start of its guarded pages, the other format for ASCII texts.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "fuzz/check.h"
#include "support/compiled.h"
#include "support/expression_cases.h"
#include "support/outcome.h"
#include "ulkch.h"

namespace ulk_test {
namespace {

const char* const kFiles[] = {"items",      "repeats", "classes",      "properties",         "groups",
                              "lookaround", "atomic",  "options",      "anchors_and_search", "global_search",
                              "limits",     "errors",  "conditionals", "everyday",           "candidates",
                              "syntax"};

std::string pathOf(const std::string& name) {
  const std::string directory = ULKCH_TEST_DATA_DIR;
  return directory + (name == "syntax" ? "/../../docs/syntax.md" : "/" + name + ".txt");
}

std::string errorName(ulkStatus status) {
  const std::map<ulkStatus, std::string> kNames = {
      {ulkErrRegExpSyntax, "syntax"},         {ulkErrRegExpClass, "class"},
      {ulkErrRegExpBackRef, "backref"},       {ulkErrRegExpGroup, "group"},
      {ulkErrRegExpQuantifier, "quantifier"}, {ulkErrRegExpOptions, "options"}};
  const auto found = kNames.find(status);
  return found == kNames.end() ? std::to_string(status) : found->second;
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
  for (const size_t shift : {ulk_fuzz::kAtEnd, size_t{0}})
    checkSearch(expected, ulk_fuzz::Block<uint8_t>(bytes, shift).get(), state);
}

void checkExpression(const Expression& expression) {
  for (const uint8_t fill : {uint8_t{0xA5}, uint8_t{0}}) {
    StateBuffer buffer(expression.pattern, expression.options, fill);
    const int32_t offset = buffer.errorOffset();
    if (buffer.status() == ulkOk) {
      ASSERT_EQ("", expression.error);
      EXPECT_EQ(offset, StateBuffer::kUntouched) << "a successful compile wrote the error offset";
    } else {
      ASSERT_EQ("error " + errorName(buffer.status()) + " " + std::to_string(offset), expression.error);
    }
    for (const Search& expected : expression.searches) {
      SCOPED_TRACE("line " + std::to_string(expected.line));
      checkSearchAtGuards(expected, buffer.state());
    }
    EXPECT_TRUE(buffer.zoneIntact()) << "something was written past the size of the state";
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
