// The C++ header's expressions: what it adds to the library's searches. That all matches are found and that
// it is told when they may not be, for every expression of tests/data; texts without a byte behind them;
// ownership; replacement; sets.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "support/compiled.h"
#include "support/expression_cases.h"
#include "support/guarded.h"
#include "ulkch.hpp"

namespace ulk_test {
namespace {

using namespace std::literals;
using ulkch::regexp;
using ulkch::verdict;

// Each match as position + length, each of its groups behind a slash.
std::vector<std::string> listed(const ulkch::matches& found) {
  std::vector<std::string> list;
  for (const ulkch::match one : found) {
    std::string entry;
    for (size_t group = 0; group < one.size(); ++group) {
      if (group > 0) entry += '/';
      if (!one.matched(group)) {
        entry += '-';
      } else {
        entry += std::to_string(one.position(group)) + '+' + std::to_string(one[group].size());
      }
    }
    list.push_back(entry);
  }
  return list;
}

std::string joinedList(const ulkch::matches& found) { return ulkch::join(listed(found), ' '); }

TEST(CppRegexp, FindsAllMatches) {
  struct Case {
    const char *pattern, *options;
    std::string text;
    const char* matches;
  };
  const Case cases[] = {
      {"\\w+", "", "one two", "0+3 4+3"},
      {"(\\w)(x)?", "", "a bx", "0+1/0+1/- 2+2/2+1/3+1"},
      {"a*", "", "baa", "0+0 1+2 3+0"},
      {"|x", "", "ax", "0+0 1+0 1+1 2+0"},
      {"x*", "", "\xc3\xa9x\xe2\x82\xac", "0+0 2+1 3+0 6+0"},  // none inside a character
      {"^\\s*$", "m", "a\n\nb\n", "2+0"},  // the byte behind an empty match is no end of the text
      {"", "", "", "0+0"},
      {"$", "", "", "0+0"},
      {"a", "", "", ""},
      {".*", "", "ab", "0+2 2+0"},
      {"^b", "m", "b\nb\nab", "0+1 2+1"},
      {"\\b\\w", "", "on two", "0+1 3+1"},
      {"(?>o+)", "", "too", "1+2"},
      {"(?<=a)b|c", "", "abcb", "1+1 2+1"},
      {"a(?i)b", "", "axAb", ""},                                   // an option does not last
      {"(?=a$)a|x", "", "abx", "2+1"},                              // nor does a literal end the text:
      {"(?=a$)a", "", "ab", ""},                                    // for lookahead,
      {"warning|colou?r", "", "a warning, in colour", "2+7 14+6"},  // for other alternatives,
      {"[ab]|\\Qc*\\Ex*y", "", "abc*", "0+1 1+1"},                  // behind a quote
      {"a | x*y # |", "x", "ax", "0+1"},                            // or a comment
      {"[^a]$", "", "ab", "1+1"},
      {"(?#)\\Qa|b", "", "xa|ba|b", "1+3 4+3"},  // the frame is not swallowed by a quote,
      {"a # |", "x", "ba a", "1+1 3+1"},         // nor by a comment
      {"caf.", "", "caf\xc3", "0+4"},            // cut to the text
  };
  for (const Case& c : cases) {
    regexp expression(c.pattern, c.options);
    const ulkch::matches found = expression.find_all(c.text);
    EXPECT_EQ(joinedList(found), c.matches) << c.pattern;
    EXPECT_EQ(found.status(), ulkOk) << c.pattern;
  }
}

// What the library's own search for all finds with plenty of everything, when a last literal does not end the
// text; nothing if a match is empty.
std::vector<std::string> foundDirectly(const Expression& from, size_t groups, const std::string& text) {
  const CompiledExpression state = compiled(from.pattern + "\\E(?:)", (from.options + 'g').c_str());
  ulksRegExpSetMatchLimit(1000000, state.get());
  alignas(16) unsigned char nothing[64];
  auto* const deletion = reinterpret_cast<ulkRegExpReplaceState*>(nothing);
  EXPECT_EQ(ulksRegExpReplaceInit(nullptr, deletion), ulkOk);
  std::vector<ulkRegExpFind> records((groups + 1) * (2 * text.size() + 4));
  const auto* const begin = reinterpret_cast<const uint8_t*>(text.c_str());
  uint8_t destination[1];
  auto used = static_cast<int32_t>(text.size()), written = 1, count = static_cast<int32_t>(records.size());
  ulksRegExpReplace_8u(begin, &used, destination, &written, records.data(), &count, state.get(), deletion);
  std::vector<std::string> list;
  for (size_t i = 0; i < static_cast<size_t>(count); i += groups + 1) {
    const auto at = static_cast<size_t>(records[i].pFound - begin);
    const size_t length = std::min(static_cast<size_t>(records[i].lenFound), text.size() - at);
    if (records[i].lenFound == 0) return {};
    list.push_back(std::to_string(at) + '+' + std::to_string(length));
  }
  return list;
}

// Under every limit: what is called complete is all of what there is, and what is not is the beginning of it.
void expectHonestLimits(const Expression& from, const std::string& text) {
  const auto expression = [&] { return regexp(from.pattern, from.options); };
  regexp generous = expression();
  generous.set_match_limit(1000000);
  const ulkch::matches all = generous.find_all(text);
  if (!all.complete()) return;
  const std::vector<std::string> full = listed(all);
  for (int32_t limit = 0; limit < 300; limit += 1 + limit / 8) {
    regexp limited = expression();
    limited.set_match_limit(limit);
    const ulkch::matches some = limited.find_all(text);
    const std::vector<std::string> list = listed(some);
    if (some.complete()) {
      EXPECT_EQ(list, full) << from.pattern << " in " << text << ", limit " << limit;
    } else {
      EXPECT_EQ(some.status(), ulkErrMatchLimit) << from.pattern;
      EXPECT_TRUE(list.size() <= full.size() && std::equal(list.begin(), list.end(), full.begin()))
          << from.pattern << " in " << text << ", limit " << limit;
    }
  }
  if (text.empty() || ulkch::detail::sight_of(from.pattern) == ulkch::detail::sight::wide) return;
  const std::vector<std::string> direct = foundDirectly(from, generous.groups(), text);
  for (size_t i = 0; i < direct.size(); ++i)
    EXPECT_EQ(i < full.size() ? full[i].substr(0, full[i].find('/')) : "none", direct[i])
        << from.pattern << " in " << text;
}

class CppRegexpOnData : public testing::TestWithParam<const char*> {};

TEST_P(CppRegexpOnData, FindAllIsHonest) {
  const ExpressionFile file = readExpressions(ULKCH_TEST_DATA_DIR "/"s + GetParam() + ".txt");
  ASSERT_EQ(file.problem, "");
  int searches = 0;
  for (Expression from : file.expressions) {
    from.options.erase(std::remove(from.options.begin(), from.options.end(), 'g'), from.options.end());
    if (from.pattern.size() > 200 || !regexp::compile(from.pattern, from.options)) continue;
    for (const Search& search : from.searches) {
      if (search.text.size() > 60) continue;
      expectHonestLimits(from, search.text);
      expectHonestLimits(from, search.text + " a1\n" + search.text);
      ++searches;
    }
  }
  EXPECT_GT(searches, 10);
}

INSTANTIATE_TEST_SUITE_P(All, CppRegexpOnData,
                         testing::Values("items", "repeats", "classes", "groups", "lookaround", "atomic",
                                         "options", "anchors_and_search", "global_search", "conditionals",
                                         "everyday"));

TEST(CppRegexp, FindsAnyNumberOfMatches) {
  const std::string text(100000, 'a');
  for (const char* pattern : {"a", "^|a"}) {
    regexp expression(pattern);
    EXPECT_EQ(expression.find_all(text).size(), 100000u + (*pattern == '^')) << pattern;
    const ulkch::matches some = expression.find_all(text, 1000);
    EXPECT_EQ(some.size(), 1000u);
    EXPECT_EQ(some.status(), ulkWrnSlotsExhausted);
    EXPECT_TRUE(expression.find_all("aaa", 3 + (*pattern == '^')).complete());
  }
}

TEST(CppRegexp, TellsNoMatchFromNotKnown) {
  const std::string hostile = std::string(40, 'x') + '!';
  regexp expression("^(x+x+)+[yz]?$");
  EXPECT_EQ(expression.test(hostile), verdict::unknown);
  EXPECT_EQ(expression.search(hostile).verdict(), verdict::unknown);
  EXPECT_EQ(expression.search(hostile).status(), ulkErrMatchLimit);
  EXPECT_EQ(expression.find_all(hostile).status(), ulkErrMatchLimit);
  EXPECT_EQ(expression.replace_all(hostile, "").status(), ulkErrMatchLimit);
  EXPECT_EQ(expression.replace_first(hostile, "").status(), ulkErrMatchLimit);
  EXPECT_EQ(expression.test("ab"), verdict::no_match);
  EXPECT_EQ(regexp("^(?!.*admin).*user").test("user admin"), verdict::no_match);
  EXPECT_EQ(regexp("a(?i)b").test("axAb"), verdict::no_match);
  EXPECT_EQ(expression.test("xx"), verdict::match);
  // The limit grows with the text unless it is told not to.
  regexp simple("[a-w]b?");
  const std::string text(100000, 'x');
  EXPECT_EQ(simple.test(text), verdict::no_match);
  simple.set_match_limit(10000);
  EXPECT_EQ(simple.test(text), verdict::unknown);
}

TEST(CppRegexp, RefusesPatternsAndTexts) {
  struct Case {
    std::string pattern, options;
    ulkStatus status;
    size_t offset;
  };
  const Case cases[] = {
      {"(\\d+) [x", "", ulkErrRegExpClass, 8}, {"a", "ig", ulkErrRegExpOptions, 0},
      {"a", "i\0"s, ulkErrRegExpOptions, 0},   {"ab\0c"s, "", ulkErrRegExpSyntax, 2},
      {"a\\", "", ulkErrRegExpSyntax, 2},      {"a\\c", "", ulkErrRegExpSyntax, 3},
  };
  for (const Case& c : cases) {
    regexp::compiled refused = regexp::compile(c.pattern, c.options);
    EXPECT_EQ(refused.status(), c.status) << c.pattern;
    EXPECT_EQ(refused.error_offset, c.offset) << c.pattern;
    EXPECT_EQ(refused->search("a").status(), ulkErrInvalidState);
    EXPECT_EQ(refused->find_all("a").status(), ulkErrInvalidState);
    EXPECT_THROW(regexp(c.pattern, c.options), ulkch::error);
  }
  try {
    regexp refused("(\\d+) [x");
  } catch (const ulkch::error& why) {
    EXPECT_EQ(why.offset(), 8u);
    EXPECT_EQ(why.what(), "bad character class in the pattern, at byte 8 of \"(\\d+) [x\""sv);
  }
  EXPECT_TRUE(regexp::compile("a\\\\c\\\\"));
  EXPECT_EQ(regexp("^(.)(.)(.)(.)(.)(.)(.)(.)(.)\\10|").find_all("a").status(), ulkErrRegExpBackRef);
  const std::string_view huge("a", size_t{INT32_MAX} + 1);  // not read
  EXPECT_EQ(regexp("a").search(huge).status(), ulkErrLength);
  EXPECT_EQ(regexp("a").find_all(huge).status(), ulkErrLength);
}

TEST(CppRegexp, OwnsItsExpressionAndMoves) {
  static_assert(std::is_nothrow_move_constructible_v<regexp> && !std::is_copy_constructible_v<regexp>);
  regexp from("(a)(b)?");
  EXPECT_EQ(from.groups(), 2u);
  EXPECT_EQ(from.find_all("ab").size(), 1u);
  regexp to = std::move(from);
  EXPECT_EQ(from.search("a").status(), ulkErrInvalidState);
  ulkch::search_result found = to.search("xa");
  const ulkch::search_result kept = std::move(found);
  EXPECT_EQ(kept[1], "a");
  EXPECT_FALSE(kept.matched(2));
  EXPECT_EQ(kept[7], "");
  to.set_encoding(ulkch::encoding::single_bytes);
  EXPECT_EQ(to.find_all("ab").size(), 1u);
  regexp byte("\\xa9");
  EXPECT_FALSE(byte.search("\xc3\xa9"));
  byte.set_encoding(ulkch::encoding::single_bytes);
  EXPECT_TRUE(byte.search("\xc3\xa9"));
  EXPECT_EQ(byte.find_all("\xc3\xa9").size(), 1u);
}

template <class Text, class = void>
struct Searchable : std::false_type {};
template <class Text>
struct Searchable<Text, std::void_t<decltype(std::declval<regexp&>().search(std::declval<Text>()))>>
    : std::true_type {};

TEST(CppRegexp, TakesTextsOfEveryKind) {
  static_assert(Searchable<const std::string&>::value && Searchable<const char*>::value);
  static_assert(!Searchable<std::string>::value);  // matches would point into what is gone
  regexp expression("b\\b.?");
  // Short and long texts that end before memory that cannot be read, some inside a sequence.
  const GuardedPages place(1000);
  for (size_t length : {1, 255, 256, 257, 1000}) {
    char* const text = place.end() - length;
    std::fill_n(text, length, 'a');
    text[length - 1] = 'b';
    const std::string_view view(text, length);
    const ulkch::search_result found = expression.search(view);
    ASSERT_TRUE(found) << length;
    EXPECT_EQ(found[0].data(), view.data() + length - 1);
    EXPECT_EQ(expression.find_all(view)[0][0].data(), view.data() + length - 1);
    text[length - 1] = '\xE2';
    EXPECT_EQ(regexp("[^b]*").search(view)[0].size(), length);
  }
  EXPECT_TRUE(expression.search(std::vector<uint8_t>{'b'}));
  EXPECT_TRUE(expression.search("ab"));
  EXPECT_FALSE(expression.search(std::string_view()));
  const auto promised = ulkch::text::terminated("ab"sv);
  EXPECT_TRUE(promised.is_terminated());
  EXPECT_EQ(expression.search(promised)[0], "b");
  EXPECT_FALSE(ulkch::text("ab"sv).is_terminated());
}

TEST(CppRegexp, Replaces) {
  struct Case {
    const char *pattern, *by;
    std::string text, all, first;
  };
  const Case cases[] = {
      {"(\\d+)/(\\d+)", "$2-$1", "3/14 12/1", "14-3 1-12", "14-3 12/1"},
      {"a(b)?", "<$1>", "ab a", "<b> <>", "<b> a"},  // a group that took no part takes nothing back
      {"x*", "-", "\xc3\xa9x", "-\xc3\xa9--", "-\xc3\xa9x"},
      {"b", "", "abcb", "ac", "acb"},
      {"b", "$&\\$&$12", "abc", "abbc", "abbc"},
      {"^", ">", "", ">", ">"},
      {"z", "!", "a\0b"s, "a\0b"s, "a\0b"s},
      {"(.)(.)(.)(.)(.)(.)(.)(.)(.)(.)(.)", "$10,$9", "abcdefghijk", "k,i", "k,i"},  // read as 11
  };
  for (const Case& c : cases) {
    regexp expression(c.pattern);
    EXPECT_EQ(*expression.replace_all(c.text, c.by), c.all) << c.pattern;
    EXPECT_EQ(*expression.replace_first(c.text, c.by), c.first) << c.pattern;
  }
  regexp word("\\w+");
  const auto size = [](const ulkch::match& m, std::string& to) { to += std::to_string(m[0].size()) + "$"; };
  EXPECT_EQ(*word.replace_all("a bc", size), "1$ 2$");
  EXPECT_EQ(*word.replace_first("ab c", size), "2$ c");
  for (const char* bad : {"$", "a$x", "$0", "$00"}) {
    EXPECT_EQ(ulkch::replacement::compile(bad).status(), ulkErrRegExpBackRef);
    EXPECT_EQ(word.replace_all("a", bad).status(), ulkErrRegExpBackRef);
    EXPECT_EQ(word.replace_first("a", bad).status(), ulkErrRegExpBackRef);
  }
}

TEST(CppRegexpSet, TellsOfEachMember) {
  ulkch::regexp_set set;
  EXPECT_EQ(set.search("a").size(), 0u);
  EXPECT_EQ(set.add("error", regexp("error (\\d+)")), ulkOk);
  EXPECT_EQ(set.add("slow", regexp("^(x+x+)+[yz]?$")), ulkOk);
  EXPECT_EQ(set.add("empty", regexp("^$")), ulkOk);
  EXPECT_EQ(ulkch::status_text(set.add("empty", regexp("a"))), "the set has a member of this name already");
  EXPECT_EQ(set.add("none", regexp()), ulkErrInvalidState);
  const std::string text = "error 17";
  const ulkch::set_result found = set.search(text);
  EXPECT_EQ((*found.find("error"))[1], "17");
  EXPECT_EQ(found[1].verdict(), verdict::no_match);
  EXPECT_EQ(found.find("none"), nullptr);
  EXPECT_TRUE(found.complete());

  const ulkch::set_result hostile = set.search(std::string_view("xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx!"));
  EXPECT_EQ(hostile.find("slow")->verdict(), verdict::unknown);
  EXPECT_EQ(hostile.find("slow")->status(), ulkErrMatchLimit);
  EXPECT_FALSE(hostile.complete());
  EXPECT_EQ(set.search("").find("empty")->verdict(), verdict::match);

  EXPECT_TRUE(set.remove("slow"));
  EXPECT_FALSE(set.remove("slow"));
  for (int i = 0; i < 40; ++i) EXPECT_EQ(set.add(std::to_string(i), regexp("x" + std::to_string(i))), ulkOk);
  const ulkch::set_result many = set.search("x17");
  EXPECT_EQ(many.size(), 42u);
  EXPECT_EQ(
      std::count_if(many.begin(), many.end(), [](const auto& m) { return m.verdict() == verdict::match; }),
      2);
  EXPECT_EQ((*many.find("17"))[0], "x17");
}

}  // namespace
}  // namespace ulk_test
