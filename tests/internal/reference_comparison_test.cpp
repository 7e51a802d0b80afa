// Generated expressions and texts, searched by the library and by the reference matcher: status, counts and
// records are the same, with all the steps needed and with fewer.
//
// ULKCH_COMPARE_CASES sets the number of expressions, ULKCH_COMPARE_SEED the seed of the first one; the next
// one's is one more, so each can be run by itself.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "support/reference_comparison.h"
#include "support/reference_matcher.h"

namespace ulk_test {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr uint64_t kCases = 10000;
#elif defined(_WIN32)
constexpr uint64_t kCases = 25000;
#else
constexpr uint64_t kCases = 100000;
#endif
constexpr int64_t kMostWork = 200000;
constexpr int kMostDifferences = 5;

uint64_t setting(const char* name, uint64_t otherwise) {
  const char* given = std::getenv(name);
  return given ? std::strtoull(given, nullptr, 10) : otherwise;
}

// The searches of one expression that differ.
std::string differences(Comparison& comparison, uint64_t seed) {
  RandomChoices choices(seed);
  const GeneratedExpression expression = generateExpression(choices);
  if (!comparison.compile(expression.pattern, expression.options)) return "";
  for (int i = 0; i < 4; ++i) {
    const GeneratedSearch search = generateSearch(choices, expression, choices.oneIn(40));
    if (!comparison.difference(search)) continue;
    Comparison smaller(kMostWork);
    return "# seed " + std::to_string(seed) + "\n" + *smaller.difference(smaller.minimized(search));
  }
  return "";
}

TEST(ReferenceComparisonTest, TheLibraryAnswersAsTheReferenceDoes) {
  const uint64_t seed = setting("ULKCH_COMPARE_SEED", 20260101);
  const uint64_t cases = setting("ULKCH_COMPARE_CASES", kCases);
  Comparison comparison(kMostWork);
  int numFound = 0;
  onDeepStack([&] {
    for (uint64_t i = 0; i < cases && numFound < kMostDifferences; ++i) {
      const std::string more = differences(comparison, seed + i);
      if (more.empty()) continue;
      std::fputs(more.c_str(), stderr);
      ++numFound;
    }
  });
  std::printf("seed %llu: %d searches, %d matches, %d given up, %d without room\n",
              static_cast<unsigned long long>(seed), comparison.numSearches, comparison.numMatches,
              comparison.numGivenUp, comparison.numNoRoom);
  EXPECT_EQ(numFound, 0) << "searches answered differently";
  EXPECT_LE(comparison.numGivenUp, comparison.numSearches / 100);
  EXPECT_LE(comparison.numNoRoom, comparison.numSearches / 5000);
}

}  // namespace
}  // namespace ulk_test
