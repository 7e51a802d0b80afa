// The C++ header's functions over strings: that each calls what its name says, with what it was given, and
// what it adds to that: views, spans, any length, conversions of any text.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>
#if __cplusplus >= 202002L
#include <span>
#endif

#include "support/guarded.h"
#include "ulkch.hpp"

namespace ulk_test {
namespace {

using namespace std::literals;

constexpr size_t kNowhere = ulkch::position::npos;

TEST(CppStrings, FindGivesPositions) {
  const auto text = "colour by colour"s;
  const auto wide = u"colour by colour"s;
  EXPECT_EQ(*ulkch::find(text, "our"), 3u);
  EXPECT_EQ(*ulkch::find(wide, u"our"), 3u);
  EXPECT_EQ(*ulkch::rfind(text, "our"), 13u);
  EXPECT_EQ(*ulkch::rfind(wide, u"our"), 13u);
  EXPECT_EQ(*ulkch::find(text, 'o'), 1u);
  EXPECT_EQ(*ulkch::find(wide, u'o'), 1u);
  EXPECT_EQ(*ulkch::rfind(text, 'o'), 13u);
  EXPECT_EQ(*ulkch::rfind(wide, u'o'), 13u);
  EXPECT_EQ(*ulkch::find_first_of(text, "yb"), 7u);
  EXPECT_EQ(*ulkch::find_first_of(wide, u"yb"), 7u);
  EXPECT_EQ(*ulkch::find_last_of(text, "yb"), 8u);
  EXPECT_EQ(*ulkch::find_last_of(wide, u"yb"), 8u);
  EXPECT_EQ(*ulkch::find("a\0b"sv, '\0'), 1u);
  EXPECT_EQ(*ulkch::find("\xff", '\xff'), 0u);
}

TEST(CppStrings, NotFoundIsNoError) {
  for (const ulkch::position none : {ulkch::find("abc", "x"), ulkch::find("", ""), ulkch::find({}, 'a'),
                                     ulkch::find_first_of("abc", std::string_view())}) {
    EXPECT_FALSE(none);
    EXPECT_EQ(*none, kNowhere);
    EXPECT_EQ(none.status(), ulkOk);
  }
}

TEST(CppStrings, TakesArraysAndContainersOfUnits) {
  const uint8_t bytes[] = {'a', 0, 'b'};
  EXPECT_EQ(*ulkch::find(bytes, 'b'), 2u);
  EXPECT_EQ(*ulkch::find(std::vector<std::byte>{std::byte{'a'}, std::byte{'b'}}, "b"), 1u);
  EXPECT_EQ(*ulkch::find(std::vector<uint16_t>{'a', 'b'}, u"b"), 1u);
  const uint8_t literal[] = "abc";  // with a zero, which is none of its units
  const uint16_t wide[] = {'b', 'c', 0};
  EXPECT_EQ(*ulkch::find(literal, "c"), 2u);
  EXPECT_EQ(*ulkch::find("abc", literal), 0u);
  EXPECT_EQ(*ulkch::find(u"abc", wide), 1u);
#if __cplusplus >= 202002L
  EXPECT_EQ(*ulkch::find(std::span(bytes).subspan(1), "b"), 1u);
  EXPECT_EQ(*ulkch::find(u8"abc", u8"bc"), 1u);
#endif
}

TEST(CppStrings, RefusesWhatIsTooLong) {
  const std::string_view huge("a", size_t{INT32_MAX} + 1);  // not read
  EXPECT_EQ(ulkch::find(huge, "a").status(), ulkErrLength);
  EXPECT_EQ(ulkch::find("a", huge).status(), ulkErrLength);
  EXPECT_EQ(ulkch::find(huge, 'a').status(), ulkErrLength);
  EXPECT_EQ(ulkch::hash(huge).status(), ulkErrLength);
}

int sign(int number) { return (number > 0) - (number < 0); }

TEST(CppStrings, ComparesStringsOfAllLengths) {
  struct Case {
    std::string a, b;
    int order, orderIgnoringCase;
  };
  const Case cases[] = {{"", "", 0, 0},      {"a", "", 1, 1},           {"a", "ab", -1, -1},
                        {"B", "a", -1, 1},   {"ab", "AB", 1, 0},        {"abc", "b", -1, -1},
                        {"\xff", "a", 1, 1}, {"a\0b"s, "a\0c"s, -1, -1}};
  for (const Case& c : cases) {
    const std::u16string a(c.a.begin(), c.a.end()), b(c.b.begin(), c.b.end());
    EXPECT_EQ(sign(ulkch::compare(c.a, c.b)), c.order) << c.a << " " << c.b;
    EXPECT_EQ(ulkch::equal(c.a, c.b), c.order == 0);
    EXPECT_EQ(ulkch::equal(a, b), c.order == 0);
    EXPECT_EQ(sign(ulkch::compare_ignore_case_latin(c.a, c.b)), c.orderIgnoringCase);
    EXPECT_EQ(sign(ulkch::compare_ignore_case_latin(b, a)), -sign(ulkch::compare_ignore_case_latin(a, b)));
  }
  EXPECT_EQ(ulkch::compare(u"\x100", u"\x1"), 0xff);
  EXPECT_EQ(ulkch::compare_ignore_case(u"\xc9", u"\xe9"), 0);
}

TEST(CppStrings, ConvertsCase) {
  EXPECT_EQ(ulkch::lowercase_latin("aZ\xc9"s), "az\xc9");
  EXPECT_EQ(ulkch::uppercase_latin("aZ\xe9"s), "AZ\xe9");
  EXPECT_EQ(ulkch::lowercase_latin(u"Z\xc9"s), u"z\xc9");
  EXPECT_EQ(ulkch::uppercase_latin(u"z\xe9"s), u"Z\xe9");
  EXPECT_EQ(ulkch::lowercase(u"Z\xc9"s), u"z\xe9");
  EXPECT_EQ(ulkch::uppercase(u"z\xe9"s), u"Z\xc9");
  std::string own(1000, 'A');
  const char* const place = own.data();
  EXPECT_EQ(ulkch::lowercase_latin(std::move(own)).data(), place);
}

TEST(CppStrings, Hashes) {
  EXPECT_EQ(*ulkch::hash("ab"), 2u * 'a' ^ 'b');
  EXPECT_EQ(*ulkch::hash(u"ab"), 2u * 'a' ^ 'b');
  EXPECT_EQ(*ulkch::hash_mscs("\0b"sv), 5381u);
  EXPECT_EQ(*ulkch::hash_mscs(u"\0b"sv), 5381u);
  EXPECT_EQ(*ulkch::hash_sj2("ab"), 31u * 'a' + 'b');
  EXPECT_EQ(*ulkch::hash_sj2(u"ab"), 31u * 'a' + 'b');
}

TEST(CppStrings, TrimsWithoutCopying) {
  const auto text = " \ta b\t "s;
  EXPECT_EQ(ulkch::trim(text, " \t"), "a b");
  EXPECT_EQ(ulkch::trim_start(text, " \t"), "a b\t ");
  EXPECT_EQ(ulkch::trim_end(text, " \t"), " \ta b");
  EXPECT_EQ(ulkch::trim(text, " \tab"), "");
  EXPECT_EQ(ulkch::trim(text, ""), text);
  EXPECT_EQ(ulkch::trim(u"xax", u"x"), u"a");
  EXPECT_EQ(ulkch::trim(text, " \t").data(), text.data() + 2);
}

TEST(CppStrings, SplitsAsTheLibraryDoes) {
  const std::pair<const char*, std::vector<std::string>> cases[] = {
      {"", {}}, {",", {""}}, {"a,b", {"a", "b"}}, {"a,b,", {"a", "b"}}, {",a,,b", {"", "a", "", "b"}}};
  for (const auto& [text, parts] : cases) {
    const auto split = ulkch::split(text, ',');
    EXPECT_EQ(std::vector<std::string>(split.begin(), split.end()), parts) << text;
  }
  std::u16string joined;
  for (const std::u16string_view part : ulkch::split(u"x-y", u'-')) joined += part;
  EXPECT_EQ(joined, u"xy");
}

TEST(CppStrings, Joins) {
  EXPECT_EQ(ulkch::concat({"a"s, "b", "c"sv, std::vector<uint8_t>{'d'}}), "abcd");
  EXPECT_EQ(ulkch::concat({u"a", u""s, u"b"}), u"ab");
  EXPECT_EQ(ulkch::join(std::vector<std::string>{"", "a", ""}, ','), ",a,");
  EXPECT_EQ(ulkch::join(std::array{u"a", u"b"}, u','), u"a,b");
  EXPECT_EQ(ulkch::join(std::vector<std::string>(), ','), "");
}

// Texts that go through the buffer of a conversion in one piece or two, cut everywhere, with nothing behind.
TEST(CppStrings, ConvertsTextsOfEveryCut) {
  std::string text;
  while (text.size() < 1100) text += "a\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80\xfd\xbf\xbf\xbf\xbf\xbf\xfd\xbf";
  const GuardedPages place(text.size());
  for (size_t start = 0; start < 18; ++start) {
    for (size_t length = 0; length < 1060; length += length == 20 ? 1000 : 1) {
      const std::string terminated = text.substr(start, length);
      const auto* const source = reinterpret_cast<const uint8_t*>(terminated.c_str());
      std::vector<uint16_t> expected(length + 1);
      auto used = static_cast<int32_t>(length), written = used;
      ASSERT_EQ(ulksConvertUTF_8u16u(source, &used, expected.data(), &written, 0), ulkOk);
      char* const guarded = place.end() - length;
      std::copy_n(terminated.data(), length, guarded);
      ASSERT_EQ(ulkch::to_utf16(std::string_view(guarded, length)),
                std::u16string(expected.begin(), expected.begin() + written))
          << start << " " << length;
    }
  }
}

TEST(CppStrings, ConvertsBack) {
  std::string text;
  std::u16string wide;
  for (int i = 0; i < 1000; ++i) {
    text += "a\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80";
    wide += u"a\u00e9\u20ac\U0001f600";
  }
  EXPECT_EQ(ulkch::to_utf16(text), wide);
  EXPECT_EQ(ulkch::to_utf8(wide), text);
  for (char16_t& unit : wide) unit = static_cast<char16_t>(unit << 8 | unit >> 8);
  EXPECT_EQ(ulkch::to_utf8(wide, ulkch::byte_order::big_endian), text);
}

TEST(CppStrings, TellsStatuses) {
  EXPECT_EQ(ulkch::status_text(ulkErrMatchLimit), "the match limit ran out during the search");
  EXPECT_EQ(ulkch::status_text(1), "unknown status");
  EXPECT_EQ(ulkch::result<int>(7).value(), 7);
  ulkch::result<int> number(7);
  number.value() = 8;
  EXPECT_EQ(std::as_const(number).value(), 8);
  EXPECT_THROW(static_cast<void>(ulkch::result<int>(ulkch::failure{ulkErrSize}).value()), ulkch::error);
}

}  // namespace
}  // namespace ulk_test
