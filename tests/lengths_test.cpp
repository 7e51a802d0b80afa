// Match lengths that outgrow the text. A lazy repeat of one byte that finally fails leaves its bytes counted,
// once for every time it is tried, so a pattern can make them as large as it likes. They must stay in 32
// bits, and nothing that is made from them, a position, the next start, a piece of a replacement, may leave
// the text.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "support/compiled.h"
#include "support/guarded.h"
#include "ulkch.h"

namespace ulk_test {
namespace {

// Behind "bc" stands a run of "a" up to the end, and there a zero byte that may be read.
class Text {
 public:
  explicit Text(int32_t length) : length_(length), pages_(static_cast<size_t>(length) + 1) {
    text_ = reinterpret_cast<uint8_t*>(pages_.end()) - length - 1;
    std::fill(text_, text_ + length, static_cast<uint8_t>('a'));
    text_[0] = 'b';
    text_[1] = 'c';
    text_[length] = 0;
  }

  const uint8_t* begin() const { return text_; }
  const uint8_t* end() const { return text_ + length_; }
  int32_t length() const { return length_; }

 private:
  int32_t length_;
  GuardedPages pages_;
  uint8_t* text_;
};

struct Row {
  const char* pattern;
  int32_t textLength;
  int32_t matchLength;  // of the first match; -1 where the limit runs out
};

constexpr Row kRows[] = {
    {"[bc]{0,2}[aA]{0,4900}?a*?c?", 40000, 184022750},
    {"[bc]{0,2}[aA]{0,4900}?a*?c?", 450000, INT_MAX},
    {"[bc]{0,2}[aA]{0,2999}?a*?c?", 1433155, INT_MAX},
    {"(?>[bc]{0,2}[aA]{0,4900}?a*?c?)", 450000, INT_MAX},
    {"(?>[bc]{0,2}[aA]{0,4900}?a*?c?)\\b", 450000, -1},
    {"(?>(?>[bc]{0,2}[aA]{0,4900}?a*?c?))", 450000, INT_MAX},
    {"[x]*[b](?>[c]?[aA]{0,2999}?a*?c?|y)*", 1700000, INT_MAX},
    {"(?>[bc]{0,2}[aA]{0,4900}?a*?c?)+?", 450000, INT_MAX},
};

bool isSound(const ulkRegExpFind& record, const Text& text) {
  if (record.lenFound == -1) return record.pFound == nullptr;
  return record.lenFound >= 0 && record.pFound >= text.begin() && record.pFound <= text.end();
}

TEST(Lengths, SaturateAndStartInTheText) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.pattern);
    const Text text(row.textLength);
    for (const char* options : {"", "g"}) {
      const CompiledExpression expression = compiled(row.pattern, options);
      std::vector<ulkRegExpFind> records(1000);
      auto count = static_cast<int32_t>(records.size());
      const ulkStatus status =
          ulksRegExpFind_8u(text.begin(), text.length(), expression.get(), records.data(), &count);
      if (row.matchLength < 0) {
        EXPECT_TRUE(status == ulkErrMatchLimit || count == 0);
        continue;
      }
      EXPECT_EQ(status, ulkOk);
      ASSERT_GE(count, 1);
      EXPECT_EQ(records[0].pFound, text.begin());
      EXPECT_EQ(records[0].lenFound, row.matchLength);
      for (int32_t i = 0; i < count; ++i) EXPECT_TRUE(isSound(records[static_cast<size_t>(i)], text));
    }
  }
}

TEST(Lengths, NeverMakeAReplacementCopyWhatIsNoText) {
  for (const Row& row : {kRows[1], kRows[2], kRows[3]}) {
    const Text text(row.textLength);
    for (const char* options : {"", "g"}) {
      const CompiledExpression expression = compiled(row.pattern, options);
      for (const char* replacement : {"", "<$&>"}) {
        SCOPED_TRACE(std::string(row.pattern) + " " + options + " " + replacement);
        int32_t size = 0;
        ulksRegExpReplaceGetSize(replacement, &size);
        std::vector<uint32_t> state(static_cast<size_t>(size) / 4 + 1);
        auto* const prepared = reinterpret_cast<ulkRegExpReplaceState*>(state.data());
        ulksRegExpReplaceInit(replacement, prepared);
        // What a tail that is not measured, and a template that is measured for itself, may take.
        const bool isEmpty = *replacement == '\0';
        const auto room =
            static_cast<size_t>(text.length()) + (isEmpty ? 0 : static_cast<size_t>(text.length()));
        GuardedPages pages(room);
        auto* const destination = reinterpret_cast<uint8_t*>(pages.end()) - room;
        std::fill(destination, destination + room, static_cast<uint8_t>('Z'));
        std::vector<ulkRegExpFind> records(1000);
        int32_t srcLen = text.length();
        int32_t dstLen = text.length();
        auto count = static_cast<int32_t>(records.size());
        EXPECT_EQ(ulksRegExpReplace_8u(text.begin(), &srcLen, destination, &dstLen, records.data(), &count,
                                       expression.get(), prepared),
                  ulkOk);
        for (const char byte : std::string(destination, destination + room))
          if (!std::strchr("abcZ<>x", byte)) FAIL() << "copied a byte " << static_cast<int>(byte);
      }
    }
  }
}

}  // namespace
}  // namespace ulk_test
