// The Unicode lookups, against entries known from the data of Unicode 5.1 and at the seams between the kinds
// of code points: listed one by one, covered by a range, unassigned, above the last listed.

#include "unicode/unicode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace ulk {
namespace {

struct Category {
  const char* name;
  uint32_t mask;
};

constexpr Category kCategories[] = {
    {"L", 0x80},    {"Ll", 0x81},   {"Lu", 0x82},   {"Lt", 0x84},   {"Lm", 0x88},   {"Lo", 0x90},
    {"L&", 0x87},   {"M", 0x100},   {"Mn", 0x101},  {"Mc", 0x102},  {"Me", 0x104},  {"Z", 0x200},
    {"Zs", 0x201},  {"Zl", 0x202},  {"Zp", 0x204},  {"S", 0x400},   {"Sm", 0x401},  {"Sc", 0x402},
    {"Sk", 0x404},  {"So", 0x408},  {"N", 0x800},   {"Nd", 0x801},  {"Nl", 0x802},  {"No", 0x804},
    {"P", 0x1000},  {"Pd", 0x1001}, {"Ps", 0x1002}, {"Pe", 0x1004}, {"Pi", 0x1008}, {"Pf", 0x1010},
    {"Pc", 0x1020}, {"Po", 0x1040}, {"C", 0x2000},  {"Cc", 0x2001}, {"Cf", 0x2002}, {"Co", 0x2004},
    {"Cs", 0x2008}, {"Cn", 0x2010},
};

// The names of all categories that accept a code point, in the order above.
std::string accepting(int32_t codePoint, bool negated) {
  std::string names;
  for (const Category& category : kCategories) {
    if (acceptsCategory(codePoint, category.mask, negated))
      names += std::string(names.empty() ? "" : " ") + category.name;
  }
  return names;
}

// The names of all categories but those given.
std::string allBut(const std::string& names) {
  std::string others;
  for (const Category& category : kCategories) {
    if ((" " + names + " ").find(std::string(" ") + category.name + " ") != std::string::npos) continue;
    others += std::string(others.empty() ? "" : " ") + category.name;
  }
  return others;
}

// A character that a range covers, not a list, has a category, and yet counts as unassigned where that
// refuses it.
TEST(Categories, OfCharacters) {
  const struct {
    const char* names;
    std::vector<int32_t> codePoints;
    bool ranged = false;
  } kKnown[] = {
      {"L Ll L&", {'a', 'z', 0xAA, 0xB5, 0xDF, 0xFF, 0x3B1, 0x44F, 0x1E9F, 0x2C61, 0x10428, 0x1D7CB}},
      {"L Lu L&",
       {'A', 'Z', 0xC0, 0xDE, 0x130, 0x391, 0x410, 0x10A0, 0x1E9E, 0x2C60, 0xA77D, 0x10400, 0x1D7CA}},
      {"L Lt L&", {0x1C5, 0x1C8, 0x1CB, 0x1F2, 0x1F88, 0x1FFC}},
      {"L Lm", {0x2B0, 0x37A, 0x640, 0x3005, 0xA717, 0xFF70}},
      {"L Lo", {0x1BB, 0x5D0, 0x621, 0x3042, 0xA000, 0xFA0E, 0x10000, 0x12000, 0x2F800, 0x2FA1D}},
      {"M Mn", {0x300, 0x36F, 0x5B0, 0x20D0, 0xFE00, 0xFE26, 0x1D167, 0xE0100, 0xE01EF}},
      {"M Mc", {0x903, 0x93E, 0xAA4D, 0x1D165, 0x1D172}},
      {"M Me", {0x488, 0x489, 0x20DD, 0x20E0, 0xA670}},
      {"Z Zs", {' ', 0xA0, 0x1680, 0x180E, 0x3000}},
      {"Z Zl", {0x2028}},
      {"Z Zp", {0x2029}},
      {"S Sm", {'+', '<', '~', 0xAC, 0x2200, 0x1D7C3}},
      {"S Sc", {'$', 0xA3, 0x20AC, 0xFDFC}},
      {"S Sk", {'^', '`', 0xA8, 0x2C2, 0xFFE3}},
      {"S So", {0xA6, 0xA9, 0x2500, 0x2800, 0x4DC0, 0xFFFD, 0x1D100, 0x1F000, 0x1F093}},
      {"N Nd", {'0', '9', 0x660, 0x966, 0xFF19, 0x104A0, 0x1D7FF}},
      {"N Nl", {0x16EE, 0x2160, 0x3007, 0x10140, 0x12400}},
      {"N No", {0xB2, 0xBD, 0x2460, 0x10107, 0x1D360}},
      {"P Pd", {'-', 0x58A, 0x2010, 0x2014, 0xFF0D}},
      {"P Ps", {'(', '[', '{', 0x201A, 0x3008}},
      {"P Pe", {')', ']', '}', 0x3009, 0xFF60}},
      {"P Pi", {0xAB, 0x2018, 0x201C}},
      {"P Pf", {0xBB, 0x2019, 0x201D}},
      {"P Pc", {'_', 0x203F, 0xFF3F}},
      {"P Po", {'!', '*', '\\', 0xA1, 0xBF, 0x37E, 0xFF0F, 0x1039F, 0x12473}},
      {"C Cc", {0, 10, 31, 127, 0x85, 0x9F}},
      {"C Cf", {0xAD, 0x600, 0x200B, 0xFEFF, 0x1D173, 0xE0001, 0xE007F}},
      {"L Lo", {0x3400, 0x4DB5, 0x4E00, 0x9FC3, 0x20000, 0x2A6D6, 0xAC00, 0xB000, 0xD7A3}, true},
      {"C Cs", {0xD800, 0xDB7F, 0xDB80, 0xDBFF, 0xDC00, 0xDFFF}, true},
      {"C Co", {0xE000, 0xF8FF}, true},
      {"C Co", {0xF0000, 0xFFFFD, 0x100000, 0x10FFFD}},
  };
  for (const auto& known : kKnown) {
    for (int32_t codePoint : known.codePoints) {
      SCOPED_TRACE(testing::Message() << std::hex << "U+" << codePoint);
      EXPECT_EQ(accepting(codePoint, false), std::string(known.names) + (known.ranged ? " Cn" : ""));
      EXPECT_EQ(accepting(codePoint, true), allBut(known.names));
    }
  }
}

TEST(Categories, OfOtherNumbers) {
  const struct {
    const char* names;
    std::vector<int32_t> codePoints;
  } kKnown[] = {
      // Unassigned: gaps in a block, the ends of the ranges, noncharacters, malformed bytes.
      {"Cn",
       {0x378, 0x530, 0x4DB6, 0x9FC4, 0xD7A4, 0xFDD0, 0xFFFE, 0xFFFF, 0x1FFFF, 0x2A6D7, 0x2FA1E, 0xE0000,
        0xE0080, 0xE00FF, -1, -61, -128, INT32_MIN}},
      // Above the last that is listed.
      {"", {0xE01F0, 0xEFFFF, 0xFFFFE, 0xFFFFF, 0x10FFFE, 0x10FFFF, 0x110000, 0x200000, INT32_MAX}},
  };
  for (const auto& known : kKnown) {
    for (int32_t codePoint : known.codePoints) {
      SCOPED_TRACE(testing::Message() << std::hex << codePoint);
      EXPECT_EQ(accepting(codePoint, false), known.names);
      EXPECT_EQ(accepting(codePoint, true), known.names);
      EXPECT_EQ(foldCase(codePoint), codePoint);
      EXPECT_FALSE(isMark(codePoint));
    }
  }
}

TEST(Marks, OfEveryKind) {
  for (int32_t codePoint : {0x300, 0x483, 0x903, 0x488, 0x20DD, 0x3099, 0xFE0F, 0x1D165, 0xE01EF}) {
    EXPECT_TRUE(isMark(codePoint)) << std::hex << codePoint;
  }
  for (int32_t codePoint : {0, int{'a'}, 0x2FF, 0x370, 0x200D, 0x4E00, -1, -128}) {
    EXPECT_FALSE(isMark(codePoint)) << std::hex << codePoint;
  }
}

TEST(Folding, FollowsTheLowercaseMapping) {
  for (int32_t letter = 'A'; letter <= 'Z'; ++letter) EXPECT_EQ(foldCase(letter), letter + 32);
  // Down into Latin-1 and ASCII, title case, signs and numerals that are no letters, the largest distances.
  const struct {
    int32_t from;
    int32_t to;
  } kFolds[] = {{0xC0, 0xE0},     {0xDE, 0xFE},     {0x130, 'i'},       {0x178, 0xFF},     {0x1C4, 0x1C6},
                {0x1C5, 0x1C6},   {0x391, 0x3B1},   {0x3A9, 0x3C9},     {0x410, 0x430},    {0x400, 0x450},
                {0x10A0, 0x2D00}, {0x1E9E, 0xDF},   {0x1F88, 0x1F80},   {0x2126, 0x3C9},   {0x212A, 'k'},
                {0x212B, 0xE5},   {0x24B6, 0x24D0}, {0x2160, 0x2170},   {0xFF21, 0xFF41},  {0xA779, 0xA77A},
                {0xA77D, 0x1D79}, {0x2C6F, 0x250},  {0x10400, 0x10428}, {0x10427, 0x1044F}};
  for (const auto& fold : kFolds) EXPECT_EQ(foldCase(fold.from), fold.to) << std::hex << fold.from;
  for (int32_t codePoint : {0, int{'@'}, int{'['}, int{'a'}, 0xD7, 0xDF, 0xE0, 0x131, 0x17F, 0x1C6, 0x3C2,
                            0x5D0, 0x4E00, 0xAC00, 0xE000, 0x1D7CA, 0xE01EF})
    EXPECT_EQ(foldCase(codePoint), codePoint) << std::hex << codePoint;
}

// The scripts stand side by side, from the first in the data to the last.
std::span<const Script> allScripts() {
  const Script* first = findScript("Common}");
  const Script* last = findScript("Cham}");
  return {first, last + 1};
}

TEST(Scripts, KnownNamesWithTheirNumberOfRangesAndAMember) {
  const struct {
    const char* name;
    int32_t numRanges;
    int32_t member;
  } kKnown[] = {{"Common", 530, '0'},   {"Common", 530, 0xE007F}, {"Latin", 42, 'a'},
                {"Latin", 42, 0xFF5A},  {"Greek", 51, 0x1D245},   {"Cyrillic", 18, 0x44F},
                {"Han", 15, 0x2FA1D},   {"Hangul", 12, 0xAC00},   {"Hanunoo", 2, 0x1720},
                {"Arabic", 36, 0x621},  {"Cherokee", 1, 0x13A0},  {"Deseret", 1, 0x10400},
                {"Yi", 4, 0xA000},      {"Nko", 7, 0x7C0},        {"Inherited", 22, 0xE01EF},
                {"Tai_Le", 2, 0x1950},  {"Linear_B", 7, 0x10000}, {"New_Tai_Lue", 6, 0x1980},
                {"Lydian", 2, 0x10920}, {"Cham", 13, 0xAA5F},     {"Canadian_Aboriginal", 3, 0x1401}};
  for (const auto& known : kKnown) {
    const Script* script = findScript((std::string(known.name) + "}anything").c_str());
    ASSERT_NE(script, nullptr) << known.name;
    EXPECT_STREQ(script->name, known.name);
    EXPECT_EQ(script->numRanges, known.numRanges) << known.name;
    EXPECT_EQ(scriptOf(known.member), 1 + (script - allScripts().data())) << known.name;
  }
}

TEST(Scripts, NamesAreMatchedWholeAndExactly) {
  for (const char* text :
       {"", "}", "Han", "Hang}", "Hangu}", "Hangull}", "han}", "HAN}", "Greek }", " Greek}", "Greek|",
        "Tai_}", "TaiLe}", "Linear-B}", "Unknown}", "InBasicLatin}", "Any}"}) {
    EXPECT_EQ(findScript(text), nullptr) << text;
  }
}

TEST(Scripts, ReadNothingBehindTheFirstDifference) {
  for (const char* text : {"x", "Hanx", "Hangul+", "Old_Q"}) {
    const size_t size = std::strlen(text);
    const auto unterminated = std::make_unique<char[]>(size);  // the sanitizer build sees a read past it
    std::memcpy(unterminated.get(), text, size);
    EXPECT_EQ(findScript(unterminated.get()), nullptr) << text;
  }
}

TEST(Scripts, RangesAscendAndNeverOverlap) {
  EXPECT_EQ(allScripts().size(), 77u);
  std::vector<CodePointRange> all;
  for (const Script& script : allScripts()) {
    const std::span ranges(script.ranges, static_cast<size_t>(script.numRanges));
    for (size_t i = 1; i < ranges.size(); ++i) EXPECT_LT(ranges[i - 1].last, ranges[i].first) << script.name;
    all.insert(all.end(), ranges.begin(), ranges.end());
  }
  std::sort(all.begin(), all.end(), [](auto a, auto b) { return a.first < b.first; });
  EXPECT_EQ(all.size(), 1344u);
  EXPECT_TRUE(std::all_of(all.begin(), all.end(), [](auto range) { return range.first <= range.last; }));
  for (size_t i = 1; i < all.size(); ++i) EXPECT_LT(all[i - 1].last, all[i].first);
}

TEST(Scripts, EveryCodePointHasTheNumberOfTheScriptWhoseRangesHoldIt) {
  std::vector<int32_t> expected(0x110100, 0);
  int32_t number = 0;
  for (const Script& script : allScripts()) {
    ++number;
    for (const CodePointRange& range : std::span(script.ranges, static_cast<size_t>(script.numRanges)))
      std::fill(expected.begin() + range.first, expected.begin() + range.last + 1, number);
  }
  for (size_t c = 0; c < expected.size(); ++c)
    ASSERT_EQ(scriptOf(static_cast<int32_t>(c)), expected[c]) << std::hex << c;
  for (int32_t c : {-1, -128, INT32_MIN, INT32_MAX}) EXPECT_EQ(scriptOf(c), 0);
}

// All that a category tells of a code point, the kind tells.
TEST(Categories, AcceptWholeKinds) {
  struct Kinds {
    uint32_t mask;
    bool negated;
    uint64_t accepted;
  };
  std::vector<Kinds> all;
  for (const Category& category : kCategories)
    for (const bool negated : {false, true})
      all.push_back({category.mask, negated, acceptedKinds(category.mask, negated)});
  const auto check = [&](int32_t c) {
    const int32_t kind = kindOf(c);
    return std::all_of(all.begin(), all.end(), [&](const Kinds& kinds) {
      return ((kinds.accepted >> kind & 1) != 0) == acceptsCategory(c, kinds.mask, kinds.negated);
    });
  };
  for (int32_t c = -300; c < 0x3000; ++c) ASSERT_TRUE(check(c)) << std::hex << c;
  for (int32_t c = 0x3000; c < 0x110100; c += 11) ASSERT_TRUE(check(c)) << std::hex << c;
  for (int32_t c : {INT32_MIN, 0xE01EF, 0xE01F0, INT32_MAX}) EXPECT_TRUE(check(c)) << std::hex << c;

  for (const Kinds& kinds : all) {
    uint32_t words[4] = {};
    addAsciiOfKinds(kinds.accepted, words);
    for (int32_t c = 0; c < 0x80; ++c)
      ASSERT_EQ((words[c / 32] >> c % 32 & 1) != 0, acceptsCategory(c, kinds.mask, kinds.negated)) << c;

    uint64_t leads = 0;
    for (int32_t c = 0x80; c < 0x10000; ++c)
      if (kinds.accepted >> kindOf(c) & 1) leads |= uint64_t{1} << (c < 0x800 ? c >> 6 : 0x20 + (c >> 12));
    ASSERT_EQ(leadsOfKinds(kinds.accepted) & ~(~uint64_t{0} << 0x30), leads) << std::hex << kinds.mask;
  }
}

TEST(Blocks, APrefixSelectsTheFirst) {
  const struct {
    const char* text;
    const char* name;  // null for none
  } kKnown[] = {
      {"InBasicLatin", "InBasicLatin"},
      {"I", "InBasicLatin"},
      {"In", "InBasicLatin"},
      {"InL", "InLatin1Supplement"},
      {"InLatinExtended", "InLatinExtendedA"},
      {"InLatinExtendedC", "InLatinExtendedC"},
      {"InCyrillic", "InCyrillic"},
      {"InCyrillicS", "InCyrillicSupplement"},
      {"InCJKUnifiedIdeographs", "InCJKUnifiedIdeographsExtensionA"},
      {"InSupplementaryPrivateUseArea", "InSupplementaryPrivateUseAreaA"},
      {"InBasicLatinX", nullptr},
      {"InSupplementaryPrivateUseAreaBB", nullptr},
      {"Inherited", nullptr},
      {"in", nullptr},
      {"InLatin-1", nullptr},
  };
  for (const auto& known : kKnown) {
    // The text goes on after the name; only its length counts.
    const Block* block =
        findBlock((std::string(known.text) + "}").c_str(), static_cast<int32_t>(std::strlen(known.text)));
    if (known.name) {
      ASSERT_NE(block, nullptr) << known.text;
      EXPECT_STREQ(block->name, known.name) << known.text;
    } else {
      EXPECT_EQ(block, nullptr) << known.text;
    }
  }
}

TEST(Blocks, AscendFromTheFirstToTheLast) {
  const Block* first = findBlock("InBasicLatin", 12);
  const Block* last = findBlock("InSupplementaryPrivateUseAreaB", 30);
  ASSERT_EQ(last - first, 170);
  EXPECT_EQ(first->range.first, 0u);
  EXPECT_EQ(last->range.last, 0x10FFFFu);
  for (const Block* block = first; block < last; ++block) {
    EXPECT_LE(block->range.first, block->range.last) << block->name;
    EXPECT_LT(block->range.last, block[1].range.first) << block->name;
  }
}

}  // namespace
}  // namespace ulk
