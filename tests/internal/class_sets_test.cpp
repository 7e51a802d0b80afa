// The sets of classes against a walk over their members: for every character that matters, with and without
// i, and wherever the room for a record is scarce.

#include "regexp/program/class_sets.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "regexp/analysis/first_bytes.h"
#include "regexp/program/characters.h"
#include "support/compiled.h"

namespace ulk {
namespace {

std::string utf8(int32_t c) {
  if (c < 0x80) return {static_cast<char>(c)};
  std::string tail;
  int32_t room = 0x3F;
  for (; c > room; c >>= 6, room >>= 1) tail.insert(tail.begin(), static_cast<char>(0x80 | (c & 0x3F)));
  return static_cast<char>(~room << 1 | c) + tail;
}

// ASCII, what folds to it, neighbours in folding, category and script, ends of tables and of sequences.
std::vector<int32_t> codePoints() {
  std::vector<int32_t> all;
  for (int32_t c = 0; c < 0x300; ++c) all.push_back(c);
  for (int32_t c :
       {0x345,   0x391,   0x3B1,    0x3C2,    0x3C3,    0x410,    0x42F,     0x430,     0x44F,
        0x5D0,   0x7FF,   0x800,    0x1C4,    0x1C5,    0x1C6,    0x1E9E,    0x2028,    0x2126,
        0x212A,  0x212B,  0x2160,   0x3042,   0x4E00,   0xAC00,   0xD800,    0xE000,    0xFF21,
        0xFF41,  0xFFFF,  0x10000,  0x10400,  0x10428,  0x1D7CB,  0x2A6D6,   0xE0001,   0xE01EF,
        0xE01F0, 0xF0000, 0x10FFFF, 0x110000, 0x1FFFFF, 0x200000, 0x3FFFFFF, 0x4000000, INT32_MAX})
    all.push_back(c);
  return all;
}

// The first class of a program.
const RxNode& headerIn(const ulkRegExpState& state) {
  const RxNode* node = state.nodes();
  while (codeOf(*node) != RX_CLASS) ++node;
  return *node;
}

void checkClass(const std::string& pattern, const char* letters, bool bothCases) {
  const auto state = ulk_test::compiled(pattern, letters);
  ASSERT_NE(state, nullptr);
  const RxNode& header = headerIn(*state);
  const ClassNote note(header);
  ASSERT_NE(header.text, nullptr);
  if (note.walk()) {
    EXPECT_LT(header.op2, 12);
  }
  static const std::vector<int32_t> kCodePoints = codePoints();
  for (const uint32_t options : {0u, uint32_t{RX_OPT_CASELESS}}) {
    if (!bothCases && !note.isMadeFor(options)) continue;
    ByteSet256 firstBytes{};
    addClassBytes(header, options, firstBytes);
    const auto check = [&](Utf8Char character, uint8_t byte) {
      const bool expected = walkAccepts(header, character, byte, options);
      ASSERT_EQ(classAccepts(header, character, byte, options), expected)
          << std::hex << character.value << " options " << options;
      if (expected) {
        ASSERT_TRUE(firstBytes.contains(byte)) << std::hex << character.value << " options " << options;
      }
    };
    for (const int32_t c : kCodePoints) {
      const std::string bytes = utf8(c);
      check({c, static_cast<int32_t>(bytes.size())}, static_cast<uint8_t>(bytes[0]));
    }
    for (int32_t byte = 0x80; byte < 0x100; ++byte) check({byte - 0x100, 1}, static_cast<uint8_t>(byte));
  }
}

// Alone, and where a change of the options makes it be tested with and without i.
void checkInAllWays(const std::string& bracketed) {
  SCOPED_TRACE(bracketed);
  ASSERT_NO_FATAL_FAILURE(checkClass(bracketed, "", false));
  ASSERT_NO_FATAL_FAILURE(checkClass(bracketed, "i", false));
  ASSERT_NO_FATAL_FAILURE(checkClass(bracketed + "(?i)", "", true));
  ASSERT_NO_FATAL_FAILURE(checkClass(bracketed + "(?-i:a)", "i", true));
}

std::vector<std::string> wordsOf(const std::string& words) {
  std::istringstream stream(words);
  return {std::istream_iterator<std::string>(stream), {}};
}

// Classes whose members leave over the least room for what they need, and members that need sets of their
// own: U+0130 and U+212A fold to ASCII, the range from U+00C0 is empty when it is folded.
TEST(ClassSets, AgreeWithAWalkWhereRoomIsScarce) {
  const char* const kClasses =
      "[ab] [^a] [abK] [\x80\xFE] [^\x80] [\x80kyz] [\x80\x81kK] [\x80\x81zabcdef] [\xC4\xB0x] "
      "[\xC4\xB0\xC4\xB1x\x80] [\xE2\x84\xAA] [\xC3\xA9x] [\xC3\xA9\xC3\x89\x90zZ] [a\xC4\x80] [^\\400] "
      "[\\777a\x90zyxwvut] [\\d\x80z] [\x80-\x8Fz\x9A] [\x80-\x8FzyxwvuZYXWVU\x9A] [\xC3\x80-\xC3\x97] "
      "[A-\xC4\x80] [Z-\xE2\x84\xAA] [a-z] [0-9] [5-\xC4\xB0] [\\x{80}] [\xC4\x80\xC4\x82] "
      "[\\x{FFFFFF41}-\\x{FFFFFF5A}] [^\\x{FFFFFF41}-\\x{FFFFFF5A}] [\\x{80000000}-a] "
      "[\\x{80000000}-\\x{FF}] "
      "[\\x{80000000}-\\x{100}] [\\x{FFFFFFE9}-\\x{10FFFF}] [\\x{FFFFFFE9}z] [\\x{41}] [[:^alpha:]] "
      "[[:^lower:]] "
      "[[:^punct:]] [[:^graph:]] [[:^print:][:^digit:]] [[:^blank:]] [^[:^space:]] [\\pL] [^\\pLx] "
      "[\\p{Lu}\\P{Cn}] "
      "[\\p{Cn}] [\\p{Any}] [^\\p{Any}] [\\P{Any}] [\\p{Yi}\\p{Latin}] [\\P{Common}\x80z] "
      "[\\P{Greek}\\p{Nd}\x81-\x83\\x{FFFFFFE9}\\400] [\\Wa]";
  for (const std::string& bracketed : wordsOf(kClasses)) ASSERT_NO_FATAL_FAILURE(checkInAllWays(bracketed));
}

TEST(ClassSets, AgreeWithAWalkForRandomMembers) {
  const std::vector<std::string> members = wordsOf(
      "a k Z _ 5 \x80 \xA7 \xFF \xC3\xA9 \xC3\x89 \xC4\xB0 \xE2\x84\xAA \xD0\x90-\xD0\xAF \xF0\x90\x90\x80 "
      "a-f "
      "S-k \x90-\xA0 \\x{39}-\\x{142} \\x{100}-\\x{2028} \\501 \\d \\W [:^upper:] [:punct:] \\pL \\P{Lu} "
      "\\p{Cn} \\p{Common} \\P{Latin} \\p{Any} \\x{FFFFFFA7} \\x{FFFFFF00}-\\x{7A}");
  std::mt19937 random(20261123);
  for (int round = 0; round < 150; ++round) {
    const size_t kinds = 2 + random() % (members.size() - 2);  // few kinds, or all
    std::string bracketed = random() % 3 == 0 ? "[^" : "[";
    for (size_t left = 1 + random() % (round % 10 == 0 ? 60 : 8); left > 0; --left)
      bracketed += members[random() % 2 == 0 ? random() % 8 : random() % kinds];
    bracketed += "b]";
    SCOPED_TRACE("round " + std::to_string(round));
    ASSERT_NO_FATAL_FAILURE(checkInAllWays(bracketed));
  }
}

bool itemAccepts(const RxNode& item, int32_t c, uint32_t options) {
  return codeOf(item) == RX_CODEPOINT ? codePointAccepts(item, c, options) : propertyAccepts(item, c);
}

// Code points and properties that are items: the first bytes of what they accept, and where that is little,
// no others.
TEST(FirstBytes, AreThoseOfTheCharacters) {
  const struct {
    const char* pattern;
    int32_t highBytes;  // how many, where that is known
  } kItems[] = {{"\\x{401}", 1},    {"\\x{FFFF}", 1},      {"\\x{1FFFFF}", 1}, {"\\x{3FFFFFF}", 1},
                {"\\x{7F}", 0},     {"\\x{FFFFFFE9}", -1}, {"\\p{Greek}", 6},  {"\\P{Greek}", -1},
                {"\\p{Hebrew}", 3}, {"\\p{Any}", 51},      {"\\P{Any}", -1},   {"\\p{Lu}", -1}};
  for (const auto& known : kItems) {
    for (const char* const letters : {"", "i"}) {
      SCOPED_TRACE(std::string(known.pattern) + letters);
      const auto state = ulk_test::compiled(known.pattern, letters);
      ASSERT_NE(state, nullptr);
      const RxNode& item = state->nodes()[0];
      ByteSet256 first{};
      addFirstBytes(item, state->options, first);
      for (const int32_t c : codePoints())
        EXPECT_TRUE(!itemAccepts(item, c, state->options) || first.contains(static_cast<uint8_t>(utf8(c)[0])))
            << std::hex << c;
      int32_t highBytes = 0;
      for (int32_t byte = 0x80; byte < 0x100; ++byte) {
        highBytes += first.contains(static_cast<uint8_t>(byte));
        EXPECT_TRUE(!itemAccepts(item, byte - 0x100, state->options) ||
                    first.contains(static_cast<uint8_t>(byte)));
      }
      EXPECT_TRUE(known.highBytes < 0 || *letters || highBytes == known.highBytes) << highBytes;
    }
  }
}

}  // namespace
}  // namespace ulk
