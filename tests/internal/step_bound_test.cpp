// The bounds of failing attempts, beside the steps that searches take.

#include "regexp/analysis/step_bound.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "support/compiled.h"

namespace ulk {
namespace {

using ulk_test::compiled;

// The least limit at which the text is searched to its end.
int32_t stepsOf(ulkRegExpState* state, const std::string& text) {
  int32_t most = 1 << 24;
  for (int32_t least = 0; least < most;) {
    const int32_t limit = least + (most - least) / 2;
    ulksRegExpSetMatchLimit(limit, state);
    ulkRegExpFind found;
    int32_t count = 1;
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.c_str());
    const ulkStatus status =
        ulksRegExpFind_8u(bytes, static_cast<int32_t>(text.size()), state, &found, &count);
    (status == ulkOk ? most : least) = status == ulkOk ? limit : limit + 1;
    if (status == ulkOk && count > 0) ADD_FAILURE() << text << " has a match";
  }
  return most;
}

TEST(StepBound, IsNotBelowTheStepsOfAFailingAttempt) {
  const std::string many(60, 'a');
  const struct {
    const char* pattern;
    std::string text;
  } kRows[] = {
      {"^a+$", many + "b"},
      {"^(a+)(a+)b", many},
      {"^(?:a|aa)+b", std::string(12, 'a')},
      {"^(?:a+b|a+c)", many},
      {"^a?a?a?a?b", "aaaa"},
      {"^(?!a*b)c", many + "b"},
      {"^(?!a+)", many},
      {"^(?=a*c)a", many},
      {"^a{2,50}b", many},
      {"^a{3}?[^b]*(b|c*d)", many},
      {"^a*?b", many},
      {"^(?>a+)+b", many},
      {"^(?:x|a+|y)$|^a*z", many + "b"},
      // What the end of an iteration gives back, and what may be left out at the end.
      {"^(?:b,*)+a", "b,,,,b,,,,b,,,,"},
      {"^(?:b,*)+,a", "b,,,,b,,,,b,,,,"},
      {"^a+\\pN*?", many + "b"},
      {"^a(?!b|(a)*)", many},
      {"^(?!a(?:(?:b|b)*c)*)", "a" + std::string(12, 'b')},
      {"^(?!a*(?:b|b)*)", "aaaabbbb"},
  };
  for (const auto& row : kRows) {
    const auto state = compiled(row.pattern);
    Runs runs;
    findRuns(*state, runs);
    std::fill(std::begin(runs.longest), std::end(runs.longest), static_cast<int32_t>(row.text.size()));
    const int64_t bound = stepBound(*state, runs);
    EXPECT_GE(bound, stepsOf(state.get(), row.text)) << row.pattern;
  }
}

// In a lookaround more can be looked at than is taken.
TEST(StepBound, OfShortAttempts) {
  const auto boundOf = [](const char* pattern) { return shortAttemptBound(*compiled(pattern), 2); };
  EXPECT_LT(boundOf("a[bc]*d"), 10);
  EXPECT_LT(boundOf("(?>a[bc]*)d"), 20);
  EXPECT_LT(boundOf("(?=bc)b[bc]*d"), 20);
  EXPECT_EQ(boundOf("(?=[bc]*d)ab"), kNoBound);
  EXPECT_EQ(boundOf("a(?![bc]*d)b"), kNoBound);
  EXPECT_EQ(boundOf("a(?=(?>[bc]*)d)b"), kNoBound);
}

}  // namespace
}  // namespace ulk
