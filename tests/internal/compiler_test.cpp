// The pattern compiler: what program a pattern becomes, which error where, and that no pattern whatever makes
// it write outside the state.

#include "regexp/compile/compiler.h"

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "regexp/program/state.h"
#include "support/compiled.h"
#include "support/dump.h"
#include "support/expression_cases.h"

namespace ulk {
namespace {

using Compiled = ulk_test::StateBuffer;

// The program, or "status at offset".
std::string outcomeOf(Compiled& compiled) {
  if (compiled.status() == ulkOk) return dump(*compiled.state());
  return std::to_string(compiled.status()) + " at " + std::to_string(compiled.errorOffset());
}

TEST(Compiler, MakesThePrograms) {
  const ulk_test::ExpressionFile file = ulk_test::readExpressions(ULKCH_TEST_DATA_DIR "/programs.txt");
  ASSERT_EQ(file.problem, "");
  ASSERT_FALSE(file.expressions.empty());
  for (const ulk_test::Expression& expression : file.expressions) {
    Compiled compiled(expression.pattern, expression.options);
    EXPECT_EQ(expression.program, outcomeOf(compiled)) << "line " << expression.line;
    EXPECT_TRUE(compiled.zoneIntact());
  }
}

std::string repeated(const std::string& piece, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += piece;
  return text;
}

TEST(Compiler, Limits) {
  const struct {
    std::string pattern;
    int32_t numCaptures;
    const char* error;
  } cases[] = {
      {repeated("(", 999) + repeated(")", 999), 1000, nullptr},
      {repeated("(", 1000) + repeated(")", 1000), 0, "-186 at 999"},
      // The thousandth group has no serial; with one more, the prescan refuses the pattern first.
      {repeated("()", 1000), 0, "-186 at 1998"},
      {repeated("()", 1001), 0, "-186 at 2000"},
      // Groups that leave no trace do not count.
      {repeated("(?:a)", 5000), 1, nullptr},
      {repeated("(?>", 999) + "(?i)(?#c)(?)" + repeated(")", 999), 1, nullptr},
      // Only the prescan takes these for groups: there are never more capture slots than the state has.
      {"[\\c]" + repeated("()", 1000) + "]", 1000, nullptr},
  };
  for (const auto& c : cases) {
    Compiled compiled(c.pattern);
    if (c.error) {
      EXPECT_EQ(outcomeOf(compiled), c.error) << c.pattern;
    } else {
      EXPECT_EQ(compiled.status(), ulkOk) << c.pattern;
      EXPECT_EQ(compiled.state()->numCaptures, c.numCaptures) << c.pattern;
    }
  }
}

TEST(Compiler, TextsFollowTheLastNode) {
  Compiled compiled("ab(" + std::string(300, 'x') + ")+cd");
  ASSERT_EQ(compiled.status(), ulkOk);
  const ulkRegExpState& state = *compiled.state();
  const auto* const texts = reinterpret_cast<const uint8_t*>(state.nodes() + state.numNodes);
  EXPECT_EQ(state.nodes()[0].text, texts);
  EXPECT_EQ(state.nodes()[2].text, texts + 2);
  EXPECT_EQ(state.nodes()[2].op2, 300);
  EXPECT_EQ(state.nodes()[5].text, texts + 302);
  EXPECT_EQ(std::memcmp(texts + 301, "xcd", 3), 0);
}

// Every quantifier has something that it repeats, and every group's end is where its opening says.
void expectSound(Compiled& compiled) {
  const ulkRegExpState& state = *compiled.state();
  const RxNode* const nodes = state.nodes();
  std::vector<int32_t> ends = {state.numNodes};
  ASSERT_LT(state.trailingLiteral, state.numNodes);
  for (int32_t i = 0; i < state.numNodes; ++i) {
    const RxNode& node = nodes[i];
    ASSERT_LT(i, ends.back() + 1);
    if (codeOf(node) == RX_CLASS) {
      i += node.op2;
    } else if (isGroupOpen(node)) {
      ends.push_back(i + node.op2 + 1);
      ASSERT_LT(ends.back(), ends[ends.size() - 2]);
      ASSERT_EQ(nodes[ends.back()].op1, node.op1);
    } else if (codeOf(node) == RX_END) {
      ASSERT_EQ(ends.back(), i);
      ends.pop_back();
    } else if (isQuantifier(node)) {
      ASSERT_TRUE(i > 0 && node.op1 >= 0 && node.op1 <= node.op2);
      const RxNode& before = nodes[i - 1];
      ASSERT_FALSE(isQuantifier(before) || codeOf(before) == RX_ALT || codeOf(before) == RX_STRING ||
                   codeOf(before) == RX_OPTIONS || isGroupOpen(before));
    }
  }
  ASSERT_EQ(ends.size(), 1u);
}

// Pieces of syntax put together at random, some cut short or with stray bytes, so that most of the grammar is
// reached in most of its wrong places. Every one must leave the buffer's neighbours alone and, if it
// compiles, make a sound program that does not depend on what the buffer held.
TEST(Compiler, NoPatternBreaksItsState) {
  std::istringstream pieces(
      "a b bc . . \\d \\d \\W ( ( (?: (?: (?= (?! (?<= (?<! (?> (?i: (?(1) (?( (? ) ) ) ) ) | * + ? {2} "
      "{1,3} "
      "{,} { } [ ] [^ [a-z] [a\\d] [[:word:]] [: :] [[:^punct:]] - ^ $ \\ \\Q \\E \\Qab\\E \\c \\c] \\x "
      "\\x{41} "
      "\\x{ \\1 \\12 \\0 \\p{Lu} \\p{Greek} \\P \\pL \\X \\C \\b # (?x) (?-x) (?i) (?# (?#c) (?) \xC3\xA9 "
      "\xE2 "
      "\xFD\xBF [a-\\Q]\\E] .*");
  std::vector<std::string> all{std::istream_iterator<std::string>(pieces), {}};
  all.insert(all.end(), {" ", "\n"});
  std::mt19937 random(20240611);
  const auto below = [&](size_t bound) { return random() % bound; };
  int numCompiled = 0;
  for (int round = 0; round < 60000; ++round) {
    std::string pattern;
    for (size_t left = 1 + below(round % 50 == 0 ? 60 : 12); left > 0; --left)
      pattern += below(20) == 0 ? std::string(1, static_cast<char>(1 + below(255))) : all[below(all.size())];
    // Close what is open, else most patterns would not get beyond the prescan.
    if (below(2)) pattern += repeated(")", static_cast<int>(below(4)));
    const char* const options = below(4) == 0 ? "x" : "";

    Compiled compiled(pattern, options, 0xCD);
    SCOPED_TRACE("round " + std::to_string(round) + ": /" + pattern + "/" + options);
    ASSERT_TRUE(compiled.zoneIntact());
    if (compiled.status() != ulkOk) {
      ASSERT_LE(compiled.status(), ulkErrRegExpSyntax);
      ASSERT_LE(static_cast<uint32_t>(compiled.errorOffset()), pattern.size());
      continue;
    }
    ++numCompiled;
    ASSERT_LE(compiled.state()->numNodes, static_cast<int32_t>(pattern.size()) + 1);
    ASSERT_NO_FATAL_FAILURE(expectSound(compiled));
    Compiled again(pattern, options, 0x00);
    ASSERT_EQ(outcomeOf(compiled), outcomeOf(again));
  }
  EXPECT_GT(numCompiled, 3000);
}

}  // namespace
}  // namespace ulk
