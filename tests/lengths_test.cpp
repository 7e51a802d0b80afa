// Match lengths that outgrow the text. A lazy repeat of one byte that finally fails leaves its bytes counted,
// once for every time it is tried, so a pattern can make them as large as it likes. They must stay in 32
// bits, and nothing that is made from them, a position, the next start, a piece of a replacement, may leave
// the text.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "fuzz/expression.h"
#include "support/compiled.h"
#include "ulkch.h"

namespace ulk_test {
namespace {

// Behind "bc" stands a run of "a" up to the end, and there a zero byte that may be read.
ulk_fuzz::Block<uint8_t> textOf(int32_t length) {
  std::vector<uint8_t> text(static_cast<size_t>(length) + 1, 'a');
  text[0] = 'b';
  text[1] = 'c';
  text.back() = 0;
  return {text, ulk_fuzz::kAtEnd};
}

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

TEST(Lengths, SaturateAndStartInTheText) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.pattern);
    const auto block = textOf(row.textLength);
    const uint8_t* const text = block.get();
    for (const char* options : {"", "g"}) {
      if (*options && row.textLength > 450000) continue;  // which takes long
      const CompiledExpression expression = compiled(row.pattern, options);
      std::vector<ulkRegExpFind> records(1000);
      auto count = static_cast<int32_t>(records.size());
      const ulkStatus status =
          ulksRegExpFind_8u(text, row.textLength, expression.get(), records.data(), &count);
      if (row.matchLength < 0) {
        EXPECT_TRUE(status == ulkErrMatchLimit || count == 0);
        continue;
      }
      EXPECT_EQ(status, ulkOk);
      ASSERT_GE(count, 1);
      EXPECT_EQ(records[0].pFound, text);
      EXPECT_EQ(records[0].lenFound, row.matchLength);
      records.resize(static_cast<size_t>(count));
      for (const ulkRegExpFind& each : records) {
        const bool inText = each.pFound >= text && each.pFound <= text + row.textLength;
        EXPECT_TRUE(each.lenFound == -1 ? each.pFound == nullptr : each.lenFound >= 0 && inText);
      }
    }
  }
}

TEST(Lengths, NeverMakeAReplacementCopyWhatIsNoText) {
  for (const Row& row : {kRows[1], kRows[2], kRows[3]}) {
    const auto text = textOf(row.textLength);
    for (const char* options : {"", "g"}) {
      if (!*options && row.textLength > 450000) continue;
      const CompiledExpression expression = compiled(row.pattern, options);
      for (const char* replacement : {"", "<$&>"}) {
        SCOPED_TRACE(std::string(row.pattern) + " " + options + " " + replacement);
        const ulk_fuzz::PreparedTemplate prepared(replacement);
        // What a tail that is not measured, and a template that is measured for itself, may take.
        const auto room = static_cast<size_t>(row.textLength) * (*replacement ? 2 : 1);
        const ulk_fuzz::Block<uint8_t> destination(room, ulk_fuzz::kAtEnd);
        std::vector<ulkRegExpFind> records(1000);
        int32_t srcLen = row.textLength, dstLen = row.textLength;
        auto count = static_cast<int32_t>(records.size());
        EXPECT_EQ(ulksRegExpReplace_8u(text.get(), &srcLen, destination.get(), &dstLen, records.data(),
                                       &count, expression.get(), prepared.state()),
                  ulkOk);
        const std::vector<uint8_t> copied = destination.units();
        const std::string all(copied.begin(), copied.end());
        EXPECT_EQ(all.find_first_not_of("abcZ<>"), all.npos);
      }
    }
  }
}

}  // namespace
}  // namespace ulk_test
