// What earlier searches leave in a state changes how later ones are made, but not what they answer, nor the
// limit at which they give up.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "support/compiled.h"
#include "support/outcome.h"
#include "ulkch.h"

namespace ulk_test {
namespace {

constexpr char kEnd = '\x1A';  // the text ends before it, and bytes follow

Outcome search(ulkRegExpState* state, std::string text, int32_t limit) {
  ulksRegExpSetMatchLimit(limit, state);
  const auto length = static_cast<int32_t>(std::min(text.find(kEnd), text.size()));
  std::erase(text, kEnd);
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.c_str());
  return outcomeOf(bytes, 8, [&](ulkRegExpFind* records, int32_t* count) {
    return ulksRegExpFind_8u(bytes, length, state, records, count);
  });
}

struct Row {
  const char* pattern;
  const char* options;
  std::string before;  // searched many times
  std::vector<std::string> texts;

  CompiledExpression fresh() const {
    CompiledExpression state = compiled(pattern, options);
    ulksRegExpSetFormat(1, state.get());
    return state;
  }
  Outcome atFirst(const std::string& text, int32_t limit) const { return search(fresh().get(), text, limit); }
  // The least limit at which a search does not give up.
  int32_t leastLimit(const std::string& text) const {
    int32_t most = 1 << 20;
    for (int32_t least = 0; least < most;) {
      const int32_t limit = least + (most - least) / 2;
      if (atFirst(text, limit).status == ulkErrMatchLimit) {
        least = limit + 1;
      } else {
        most = limit;
      }
    }
    return most;
  }
};

const std::string kWords = "some words of a line, with neither what is to be found nor a sign";
const std::string kPlace = "a place = no pair, here= and =there, and a wasp, and k= 7";

const Row kRows[] = {
    {"(\\w+)=(\\w+)", "", kPlace, {"a=b", "a = b=c", "x" + kPlace + "=y", kWords}},
    {"((\\w+)=(\\w+)|\\z)", "", kPlace, {"a=b", "a = b", kWords}},
    {"(\\w+)=(\\w+)", "g", kPlace, {"a=b c=d", kWords}},
    {"\\bwas\\b|\\bwere\\b", "", kPlace, {"they were", "a wasp was", "wasp", kWords}},
    {"(?<=k=)\\d*", "", kPlace, {"k=", "k=12", "a k =", kWords}},
    {"[a-z]+;$|[a-z]+:", "m", kPlace, {"ab; cd;", "ab; cd:\nef", "ab;\n", kWords}},
    {"(?i)of|\\d+$", "", kWords, {"xOF", "12 oF", "a 12", kPlace}},
    {"a(?i)b|[c]d", "", kWords, {"aB", "xab CD", "cd", "Cd ab"}},
    {"[а-я]{4}", "", "я я он ты", {"Слово", "да и нет", "x слов", kWords}},
    {"\\p{Lu}\\w", "", "ё Ё ж", {"x Yz", "Жя Ab", "ё", kWords}},
    {"^\\w+:", "m", kWords, {"a:", "x\nb: c", "\n", kPlace}},
    {"(?<!the )\\bsign", "", kWords, {"the sign", "a sign", "", "sig"}},
    {"(?:\\w+,\\s*)+\\w+;", "", kWords, {"a, b, c;", "a, b, c", "x a,b;", ",;"}},
    {"[а-я]{2}", "", "я Ж ё Ж", {"Жая", "Ж ап", "я\xD0\x1A\xB1", "\xD0\xD0\xB1я", "аЖ", kWords}},
    {"[α-ωb]\\d|[β]", "", "α Ω b", {"Ωβ", "x\xCE\x1A\xB2", "b1", "xα2", "β"}},
    {"a(?!\\w)", "", "pairs have places, as wasps are", {"a", "ab a", "ab aé", "ab", "banana,"}},
    {"(?:un|re|in)\\w", "", kWords, {"xre", "x rex", "in int", "nur"}},
    {"[0-9]+(?:st|nd)\\b", "", kWords, {"1st", "x 12nd", "1stx 3", "12"}},
    {"\\b(?:add|fix)ed\\b", "", kWords, {"added", "x fixed", "addedx", "add"}},
    {"^\\s*#\\s*\\w", "m", kWords, {"#a", "  # b", "x\n#c", "x#", "#"}},
    {"^[A-Z]+(?:\\d|$)", "", kWords, {"A1", "AB", "xA", "x\nA"}},
    {"([a-z]+)\\1,", "", kWords, {"abab,", "xabab", "aa,", "a,"}},
};

TEST(Searches, AnswerAlikeWhateverCameBefore) {
  constexpr int32_t kMany = 1500;  // after which all has been found out
  constexpr int32_t kHigh = 1000000;
  for (const Row& row : kRows) {
    for (const bool alternates : {false, true}) {
      const CompiledExpression state = row.fresh();
      for (int32_t i = 0; i < kMany; ++i) {
        const bool other = alternates && i % 2 == 0;
        search(state.get(), other ? row.texts[static_cast<size_t>(i / 2) % row.texts.size()] : row.before,
               kHigh);
      }
      for (const std::string& text : row.texts) {
        const int32_t least = row.leastLimit(text);
        for (const int32_t limit : {kHigh, 10000, least, least - 1}) {
          if (limit < 0) continue;
          EXPECT_EQ(asText(search(state.get(), text, limit)), asText(row.atFirst(text, limit)))
              << row.pattern << " in \"" << text << "\" at " << limit;
        }
      }
    }
  }
}

}  // namespace
}  // namespace ulk_test
