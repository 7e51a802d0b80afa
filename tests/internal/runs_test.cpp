// Repeats that take many bytes at a time, against the same item taken one byte at a time: wherever a run can
// end, before every byte.
#include <gtest/gtest.h>

#include <string>

#include "support/compiled.h"
#include "ulkch.h"

namespace ulk {
namespace {

// Classes of one or two ranges and all but those, of single bytes at both ends of ASCII, and of more.
constexpr const char* kItems[] = {"\\d",        "\\D",       "\\w",      "\\W",           "\\s",
                                  "\\S",        ".",         "[a-z]",    "[^a-z]",        "[A-Za-z]",
                                  "[^<>]",      "[^\"]",     "[^ ?]",    "[x]",           "[\\x00]",
                                  "[^\\x00]",   "[\\x7f]",   "[^\\x7f]", "[\\x00-\\x7f]", "[^\\x00-\\x7f]",
                                  "[\\x00-az]", "[z-\\x7f]", "[^b-y]",   "[0-9a-fA-F]",   "[^\\x00\\x7f]",
                                  "\\p{Ll}",    "\\P{Lu}"};

int32_t lengthOfMatch(ulkRegExpState* state, const std::string& text) {
  ulkRegExpFind record;
  int32_t count = 1;
  EXPECT_EQ(ulksRegExpFind_8u(reinterpret_cast<const uint8_t*>(text.data()),
                              static_cast<int32_t>(text.size()), state, &record, &count),
            ulkOk);
  return count > 0 ? record.lenFound : 0;
}

TEST(Runs, EndWhereOneItemDoes) {
  constexpr int kLongest = 34;  // more than two vectors of bytes
  for (const char* item : kItems) {
    SCOPED_TRACE(item);
    const auto one = ulk_test::compiled("\\A" + std::string(item), "");
    const auto run = ulk_test::compiled("\\A" + std::string(item) + "+", "");
    std::string members;
    std::string others;
    for (int byte = 0; byte < 0x80; ++byte) {
      const std::string text(1, static_cast<char>(byte));
      (lengthOfMatch(one.get(), text) > 0 ? members : others) += text;
    }
    for (const char member : members) {
      const std::string text(kLongest, member);
      ASSERT_EQ(lengthOfMatch(run.get(), text), kLongest) << static_cast<int>(member);
    }
    for (const char other : others) {
      for (int length = 0; length < kLongest && !members.empty(); ++length) {
        std::string text(kLongest + 20, members[static_cast<size_t>(length) % members.size()]);
        text[static_cast<size_t>(length)] = other;
        ASSERT_EQ(lengthOfMatch(run.get(), text), length) << static_cast<int>(other);
      }
    }
  }
}

}  // namespace
}  // namespace ulk
