// Replacement: what templates mean, and which pieces are written at which capacity. Bytes that nobody writes
// show as "Z" in what is expected.
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "fuzz/replacement.h"
#include "support/compiled.h"
#include "support/refused.h"
#include "ulkch.h"

namespace ulk_test {
namespace {

using ulk_fuzz::PreparedTemplate;

const uint8_t kText[] = "abcbd";

struct Result {
  std::string written;
  int64_t dstLen;
  int64_t srcLen;
  int32_t numFind;
  bool operator==(const Result&) const = default;
};

void PrintTo(const Result& result, std::ostream* stream) {
  *stream << "\"" << result.written << "\" dstLen " << result.dstLen << " srcLen " << result.srcLen
          << " numFind " << result.numFind;
}

// All up to the last byte that was written.
std::string writtenTo(const std::vector<uint8_t>& memory) {
  const std::string all(memory.begin(), memory.end());
  return all.substr(0, all.find_last_not_of(ulk_fuzz::Block<char>::kUnwritten) + 1);
}

struct Task {
  std::string pattern;
  std::string options;
  std::string source;
  std::string replacement;
  std::string behind;  // readable bytes behind the source, before a NUL
  int32_t matchLimit = -1;

  bool isGlobal() const { return options == "g"; }
};

constexpr size_t kRoom = 2000;  // more than any destination here is written to

// Runs one replacement with everything that it touches at guards, the destination at either side of it.
class Replacer {
 public:
  explicit Replacer(const Task& task)
      : task_(task),
        expression_(compiled(task.pattern, task.options.c_str())),
        template_(task.replacement),
        source_(task.source + task.behind) {
    EXPECT_EQ(template_.status(), ulkOk) << task.replacement;
    if (task.matchLimit >= 0) ulksRegExpSetMatchLimit(task.matchLimit, expression_.get());
  }

  Result run(int32_t capacity, int32_t numFind, size_t shift = ulk_fuzz::kAtEnd) {
    const auto* const text = reinterpret_cast<const uint8_t*>(source_.get());
    auto srcLen = static_cast<int32_t>(task_.source.size());
    int32_t dstLen = capacity;
    // The first match alone may be written up to the source's length behind the capacity.
    const size_t room = static_cast<size_t>(capacity) + (task_.isGlobal() ? 0 : task_.source.size());
    const ulk_fuzz::Block<uint8_t> destination(std::min(room, kRoom), shift);
    const ulk_fuzz::FindRecords found(std::max(numFind, 0));
    EXPECT_EQ(ulksRegExpReplace_8u(text, &srcLen, destination.get(), &dstLen, found.get(), &numFind,
                                   expression_.get(), template_.state()),
              ulkOk);
    records = found.written(text);
    EXPECT_TRUE(destination.holds(destination.units())) << "something was written beside the destination";
    return {writtenTo(destination.units()), dstLen, srcLen, numFind};
  }

  std::vector<ulk_fuzz::Record> records;  // that the last run wrote

 private:
  const Task& task_;
  CompiledExpression expression_;
  PreparedTemplate template_;
  ulk_fuzz::CString source_;
};

// ---- templates

TEST(ReplaceTemplate, Size) {
  const size_t unit = PreparedTemplate::sizeOf(nullptr);
  if (sizeof(void*) == 4) {
    EXPECT_EQ(unit, 12u);
  }
  EXPECT_EQ(PreparedTemplate::sizeOf(""), unit);
  EXPECT_EQ(PreparedTemplate::sizeOf("$"), 2 * unit);
  EXPECT_EQ(PreparedTemplate::sizeOf("ab$12\\\\ $&"), 11 * unit);
  EXPECT_EQ(ulksRegExpReplaceGetSize("a", nullptr), ulkErrNullPtr);
  EXPECT_EQ(ulksRegExpReplaceGetSize(nullptr, nullptr), ulkErrNullPtr);

  const std::string tooLong(INT32_MAX / unit, 'a');
  int32_t size = -7;
  EXPECT_EQ(ulksRegExpReplaceGetSize(tooLong.c_str(), &size), ulkErrLength);
  EXPECT_EQ(size, -7);
  EXPECT_EQ(PreparedTemplate::sizeOf(tooLong.c_str() + 1), INT32_MAX / unit * unit);
}

// A group number is 32 bits wide, to the base of 11: these are 0, 1 and 2 once more, -1 and the smallest
// number.
#define ZERO "1904440554"
#define ONE "1904440555"
#define TWO "1904440556"
#define MINUS_ONE "1904440553"
#define SMALLEST "2806660826"

TEST(ReplaceTemplate, SpecialForms) {
  const struct {
    const char* replacement;
    std::string expansion;
  } cases[] = {
      {"", ""},
      {"&1\t\xff\x80 \xc3\xa9", "&1\t\xff\x80 \xc3\xa9"},
      {"$&", "abcdefghijklmn"},
      {"<$&1>", "<abcdefghijklmn1>"},
      {"$1$2-$3", "ab-c"},
      {"$12", "m"},
      {"$13$014", "n"},
      {"$01$0000002", "ab"},
      {"$20,$99,$100", ",,"},
      {"$1/$2:", "a/b:"},
      {"a\\$1b", "aab"},
      {"\\", ""},
      {"\\\\x\\y\\", "xy"},
      {"\\$&\\\\$2", "abcdefghijklmnb"},
      {"$" ONE "$" TWO ".", "ab."},
      {"<$" MINUS_ONE "$" SMALLEST ">", "<>"},
  };
  const std::string text = "abcdefghijklmn";
  std::string pattern;
  for (const char letter : text) pattern += std::string("(") + letter + ")";
  for (const auto& c : cases) {
    const Task task = {pattern, "", text, c.replacement};
    const auto length = static_cast<int32_t>(c.expansion.size());
    EXPECT_EQ(Replacer(task).run(100, 15), (Result{c.expansion, length, 14, 15})) << c.replacement;
  }
}

TEST(ReplaceTemplate, Errors) {
  for (const char* text : {"$",   "$$",    "$$1", "ab$", "$1$", "$x",  "$ 1", "$-1",     "$\\",    "$\\1",
                           "\\$", "$\xb1", "$/",  "$:",  "$0",  "$00", "$0x", "$\x26$0", "$" ZERO, "$1$0"})
    EXPECT_EQ(PreparedTemplate(text).status(), ulkErrRegExpBackRef) << text;
  EXPECT_EQ(ulksRegExpReplaceInit("a", nullptr), ulkErrNullPtr);
  EXPECT_EQ(ulksRegExpReplaceInit("$", nullptr), ulkErrNullPtr);
  EXPECT_EQ(ulksRegExpReplaceInit(nullptr, nullptr), ulkErrNullPtr);
}

// What becomes of "abcbd".
std::string replaced(ulkRegExpState* expression, const ulkRegExpReplaceState* replacement,
                     ulkRegExpFind* records, int32_t numFind) {
  uint8_t written[20];
  int32_t srcLen = 5, dstLen = 20;
  EXPECT_EQ(
      ulksRegExpReplace_8u(kText, &srcLen, written, &dstLen, records, &numFind, expression, replacement),
      ulkOk);
  return std::string(written, written + dstLen);
}

TEST(ReplaceTemplate, ABufferServesAgain) {
  const CompiledExpression expression = compiled("b", "g");
  const PreparedTemplate state("longer$");
  const auto replacedBy = [&](const char* text) {
    EXPECT_EQ(ulksRegExpReplaceInit(text, state.state()), ulkOk);
    ulkRegExpFind records[4];
    return replaced(expression.get(), state.state(), records, 4);
  };
  EXPECT_EQ(replacedBy("$&-$&"), "ab-bcb-bd");
  EXPECT_EQ(ulksRegExpReplaceInit("y$", state.state()), ulkErrRegExpBackRef);
  EXPECT_EQ(replacedBy(nullptr), "acd");
}

// ---- arguments

TEST(Replace, ChecksItsArgumentsAndWritesNothingBefore) {
  const CompiledExpression expression = compiled("b");
  const PreparedTemplate replacement("x");
  uint8_t written[] = "......";
  ulkRegExpFind record = {kText, -7};
  int32_t srcLen = 0, dstLen = 0, numFind = 1;
  for (const int32_t length : {5, 0}) {
    srcLen = dstLen = length;
    expectNullRefused(ulksRegExpReplace_8u, kText, &srcLen, written, &dstLen, &record, &numFind,
                      expression.get(), replacement.state());
    EXPECT_TRUE(srcLen == length && dstLen == length);
  }
  for (int32_t* const wrong : {&srcLen, &dstLen}) {
    for (const int32_t length : {0, -1, INT32_MIN}) {
      srcLen = dstLen = 5;
      *wrong = length;
      EXPECT_EQ(ulksRegExpReplace_8u(kText, &srcLen, written, &dstLen, &record, &numFind, expression.get(),
                                     replacement.state()),
                ulkErrSize);
      EXPECT_TRUE(*wrong == length && std::max(srcLen, dstLen) == 5);
    }
  }
  EXPECT_STREQ(reinterpret_cast<const char*>(written), "......");
  EXPECT_TRUE(record.pFound == kText && record.lenFound == -7 && numFind == 1);
}

// ---- worked out by hand

TEST(Replace, Examples) {
  const struct {
    Task task;
    int32_t capacity;
    int32_t numFind;
    Result result;
  } cases[] = {
      {{"b", "g", "abcbd", "[$&]"}, 9, 5, {"a[b]c[b]", 8, 4, 2}},
      {{"b", "g", "abcbd", "[$&]"}, 8, 5, {"a[b]c[b", 5, 3, 2}},
      {{"b", "g", "abcbd", "[$&]"}, 4, 5, {"a[b", 1, 1, 2}},
      {{"b", "g", "abcbd", "[$&]"}, 1, 5, {"", 0, 0, 2}},
      {{"b", "g", "abcb", "x"}, 5, 5, {"axcx", 4, 0, 2}},
      {{"b", "g", "abcbd", ""}, 4, 5, {"acd", 3, 1, 2}},
      {{"x*", "g", "ab", "-"}, 6, 9, {"-a-b-", 5, 0, 3}},
      {{"b", "", "abcbd", "[$&]"}, 8, 5, {"a[b]cbd", 7, 5, 1}},
      {{"b", "", "abcbd", "[$&]"}, 7, 5, {"a[b]", 4, 2, 1}},
      {{"b", "", "abcbd", "[$&]"}, 3, 5, {"a[b", 1, 1, 1}},
      // The template is measured against the whole capacity, also behind a long text.
      {{"b", "", "xxxxb", "yy"}, 5, 5, {"xxxxyy", 6, 5, 1}},
      // Without a template the text behind the match is copied whatever the capacity.
      {{"b", "", "abcbd", ""}, 20, 5, {"acbd", 1, 5, 1}},
      {{"b", "", "abcbd", "\\\\"}, 2, 5, {"acbd", 1, 5, 1}},
      // No match.
      {{"q", "", "abcbd", "x"}, 3, 5, {"abc", 3, 3, 0}},
      // Groups that took no part.
      {{"(q)?b", "", "abcbd", "$1"}, 20, 5, {"a", 1, 1, 2}},
      {{"(q)?b", "", "abcbd", "$1yz"}, 20, 5, {"yzcbd", 5, 5, 2}},
      {{"(q)?b", "", "abcd", "y$1$1$1$1zzz"}, 20, 5, {"zcd", 3, 4, 2}},
      {{"(q)?b", "g", "abcbd", "$1-"}, 20, 5, {"--d", 3, 1, 4}},
      // Few records.
      {{"(b)(c)?", "", "abcbd", "<$2$1>"}, 20, 2, {"a<b>bd", 6, 5, 2}},
      {{"(b)(c)?", "", "abcbd", "<$2$1>"}, 20, 1, {"a<>bd", 5, 5, 1}},
      {{"(b)(c)?", "", "abcbd", "<>"}, 4, 0, {"abcb", 4, 4, 0}},
      {{"(b)(c)?", "g", "abcbd", "<>"}, 5, -5, {"abcbd", 5, 5, -5}},
      {{"(b)(c)?", "g", "abcbd", "<>"}, 20, 2, {"abcbd", 5, 5, 0}},
      {{"(b)(c)?", "g", "abcbd", "<$2$1>"}, 20, 5, {"a<cb>bd", 7, 2, 3}},
      // A match that is reported beyond a source that ends inside a character.
      {{"a.", "", "xa\xe2", "[$&]", "\x82\xac"}, 20, 1, {"x[a\xe2]", 3, 3, 1}},
      {{"a.", "", "xa\xe2", "", "\x82\xac"}, 20, 1, {"x", 1, 3, 1}},
      {{"a.", "g", "xa\xe2", "[$&]", "\x82\xac"}, 20, 5, {"x[a\xe2]", 3, -2, 1}},
      // The match behind an empty one has taken a whole character; the next one is found inside it.
      {{".??", "g", "\xc3\xa9z", "-"}, 20, 9, {"------", 6, 0, 7}},
      // The match limit runs out: before a match, after one, and with the number of records left as it was.
      {{"[b]", "", "abcbd", "x", "", 1}, 20, 5, {"abcbd", 5, 5, 1}},
      {{"[b](c)?(x)?", "", "abcbd", "x", "", 1}, 3, 2, {"abc", 3, 3, 2}},
      {{"[b]", "g", "abcbd", "x", "", 3}, 20, 5, {"axcbd", 5, 3, 1}},
      {{"[b]", "g", "abcbd", "x", "", 0}, 20, 5, {"abcbd", 5, 5, 0}},
      {{"a??", "g", "ab", "-", "", 1}, 20, 5, {"-ab", 3, 2, 5}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE("case " + std::to_string(&c - cases));
    Replacer replacer(c.task);
    for (const size_t shift : {size_t{0}, ulk_fuzz::kAtEnd})
      EXPECT_EQ(replacer.run(c.capacity, c.numFind, shift), c.result);
  }
}

TEST(Replace, TakesTheRecordsAsTheyAreWhenTheExpressionIsRefused) {
  for (const char* options : {"", "g"}) {
    const CompiledExpression expression = compiled("b", options);
    *reinterpret_cast<uint8_t*>(expression.get()) ^= 1;
    ulkRegExpFind record = {kText + 2, 2};
    EXPECT_EQ(replaced(expression.get(), PreparedTemplate("[$&]").state(), &record, 1), "ab[cb]d");
  }
}

// ---- every capacity

// Compares with the reference at all capacities to beyond the full result, with just enough records and with
// more.
void expectAsReference(const Task& task) {
  const auto items = *ulk_fuzz::referenceTemplate(task.replacement);
  const auto perMatch = 1 + static_cast<int32_t>(std::count(task.pattern.begin(), task.pattern.end(), '('));
  Replacer replacer(task);
  const auto most =
      static_cast<int32_t>(replacer.run(INT32_MAX, 256).written.size() + task.source.size()) + 3;
  const auto numRecords = static_cast<int32_t>(replacer.records.size());
  for (int32_t capacity = 1; capacity <= most; ++capacity) {
    const int32_t given = capacity < most ? capacity : INT32_MAX;
    const int32_t numFind = capacity % 2 && numRecords > 0 ? numRecords : numRecords + perMatch;
    const Result result = replacer.run(given, numFind, capacity % 3 ? ulk_fuzz::kAtEnd : 0);
    ulk_fuzz::ReferenceReplacement reference(task.source, given, std::vector<uint8_t>(kRoom, 'Z'), items);
    const ulk_fuzz::Replaced expected = numRecords == 0   ? reference.copy()
                                        : task.isGlobal() ? reference.replaceAll(replacer.records, perMatch)
                                                          : reference.replaceFirst(replacer.records);
    ASSERT_EQ(result,
              (Result{writtenTo(expected.memory), expected.length, expected.sourceLength, numRecords}))
        << "/" << task.pattern << "/" << task.options << " with \"" << task.replacement << "\" in \""
        << task.source << "\", capacity " << given;
  }
}

TEST(Replace, RoomAtEveryCapacity) {
  const Task tasks[] = {
      {"abc", "", "abc", "x$&yy$&"},
      {"c", "", "abcde", "\\xy\\zw\\"},
      {"b", "g", "aaaabccbccccccbbd", "1$&2"},
      {"b+", "g", "abbbcbbb", ""},
      {"()", "", "abc", "$1x$&y$1"},
      {"(b)(x)?(c)", "", "aabcdd", "$2$3$1$2"},
      {"(b)(x)?(c)", "", "bcdd", "$2123$2$2$3"},
      {"(b)?(x)?c", "g", "abccbca", "$2<$1>"},
      {"(b)?c", "g", "abcdcbca", "$1$1x"},
      {".??", "g", "\xc3\xa9z", "-"},
      {"b.", "", "aaab\xe2\x82", "<$&>", "\xac"},
      {"b.", "g", "abcdb\xe2\x82", "<$&>", "\xac"},
      {"(b).", "g", "b\xe2", "$&$1$&", "\x82\xac"},
  };
  for (const Task& task : tasks) expectAsReference(task);

  std::mt19937 random(61);
  const auto below = [&](unsigned count) { return static_cast<size_t>(random() % count); };
  for (int round = 0; round < 150 && !HasFailure(); ++round) {
    Task task = {"<([a-m]*)>(x)?", round % 2 ? "g" : "", "n", ""};
    const unsigned longest = round % 5 ? 4 : 60;
    for (size_t matches = below(5); matches > 0; --matches) {
      task.source +=
          std::string(below(3) * below(longest), 'p') + "<" + std::string(below(longest), 'e') + ">";
      if (below(2)) task.source += 'x';
    }
    for (size_t items = below(6); items > 0; --items) {
      const std::string forms[] = {"$&", "$1", "$2", "$2", "$3", "\\", std::string(1 + below(8), 'a')};
      task.replacement += forms[below(7)];
    }
    expectAsReference(task);
  }
}

}  // namespace
}  // namespace ulk_test
