// Replacement: what templates mean, and which pieces are written at which capacity. The room rules are
// compared with their plain statement (support/reference_replace.h) at every capacity, from matches that
// stand here. Bytes that nobody writes show as "Z" in what is expected.
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "support/compiled.h"
#include "support/guarded.h"
#include "support/reference_replace.h"
#include "support/refused.h"
#include "support/written.h"
#include "ulkch.h"

namespace ulk_test {
namespace {

const uint8_t kText[] = "abcbd";

std::vector<uint8_t> bytesOf(const std::string& text) { return {text.begin(), text.end()}; }

// A prepared template: its text and its state each end at a guard.
class Template {
 public:
  explicit Template(const std::string& text)
      : text_(text.size() + 1), size_(sizeOf(text.c_str())), state_(static_cast<size_t>(size_)) {
    std::vector<uint8_t> bytes = bytesOf(text);
    bytes.push_back(0);
    std::memset(state_.begin(), 0x5A, static_cast<size_t>(state_.end() - state_.begin()));
    status_ = ulksRegExpReplaceInit(reinterpret_cast<const char*>(text_.endingAtGuard(bytes)), state());
    EXPECT_TRUE(std::all_of(state_.begin(), state_.end() - size_, [](char c) { return c == 0x5A; }));
  }

  static int32_t sizeOf(const char* text) {
    int32_t size = 0;
    EXPECT_EQ(ulksRegExpReplaceGetSize(text, &size), ulkOk);
    return size;
  }
  ulkRegExpReplaceState* state() const {
    return reinterpret_cast<ulkRegExpReplaceState*>(state_.end() - size_);
  }
  ulkStatus status() const { return status_; }

 private:
  GuardedUnits<uint8_t> text_;
  int32_t size_;
  GuardedPages state_;
  ulkStatus status_;
};

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

struct Task {
  std::string pattern;
  const char* options;
  std::string source;
  std::string replacement;
  std::string behind;  // readable bytes behind the source, before a NUL
  int32_t matchLimit = -1;
};

// Runs one replacement with everything that it touches at guards, the destination at either side of it.
class Replacer {
 public:
  explicit Replacer(const Task& task)
      : global_(std::string(task.options).find('g') != std::string::npos),
        expression_(compiled(task.pattern, task.options)),
        template_(task.replacement),
        sourceLen_(task.source.size()),
        source_(task.source.size() + task.behind.size() + 1),
        destination_(3 * task.source.size() + 40 * task.replacement.size() + 100) {
    EXPECT_EQ(template_.status(), ulkOk) << task.replacement;
    if (task.matchLimit >= 0) ulksRegExpSetMatchLimit(task.matchLimit, expression_.get());
    std::vector<uint8_t> bytes = bytesOf(task.source + task.behind);
    bytes.push_back(0);
    text_ = source_.endingAtGuard(bytes);
  }

  // `written`: what must stand in the destination; only looked at to name what is wrong.
  Result run(int32_t capacity, int32_t numFind, const std::string& written,
             Place place = {Place::kAtEnd, 0}) {
    // The first match alone may be written up to the source's length behind the capacity.
    const size_t room =
        std::min(static_cast<size_t>(capacity) + (global_ ? 0 : sourceLen_), written.size() + 50);
    uint8_t* const pDst = destination_.room(room, place);
    ulkRegExpFind* const pFind = records_.room(static_cast<size_t>(std::max(numFind, 0)), {Place::kAtEnd, 0});
    int32_t srcLen = static_cast<int32_t>(sourceLen_);
    int32_t dstLen = capacity;
    EXPECT_EQ(ulksRegExpReplace_8u(text_, &srcLen, pDst, &dstLen, pFind, &numFind, expression_.get(),
                                   template_.state()),
              ulkOk);
    const auto held = destination_.hold(bytesOf(written));
    if (held) return {written, dstLen, srcLen, numFind};
    const std::string there(pDst, pDst + std::min(room, written.size() + 20));
    return {there + ": " + held.message(), dstLen, srcLen, numFind};
  }

 private:
  bool global_;
  CompiledExpression expression_;
  Template template_;
  size_t sourceLen_;
  GuardedUnits<uint8_t> source_;
  const uint8_t* text_;
  WrittenUnits<uint8_t> destination_;
  WrittenUnits<ulkRegExpFind> records_{256};
};

// ---- templates

TEST(ReplaceTemplate, Size) {
  const int32_t unit = Template::sizeOf(nullptr);
  if (sizeof(void*) == 4) {
    EXPECT_EQ(unit, 12);
  }
  EXPECT_EQ(Template::sizeOf(""), unit);
  EXPECT_EQ(Template::sizeOf("$"), 2 * unit);
  EXPECT_EQ(Template::sizeOf("ab$12\\\\ $&"), 11 * unit);
  EXPECT_EQ(ulksRegExpReplaceGetSize("a", nullptr), ulkErrNullPtr);
  EXPECT_EQ(ulksRegExpReplaceGetSize(nullptr, nullptr), ulkErrNullPtr);

  const std::string tooLong(static_cast<size_t>(INT32_MAX / unit), 'a');
  int32_t size = -7;
  EXPECT_EQ(ulksRegExpReplaceGetSize(tooLong.c_str(), &size), ulkErrLength);
  EXPECT_EQ(size, -7);
  EXPECT_EQ(Template::sizeOf(tooLong.c_str() + 1), INT32_MAX / unit * unit);
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
    Replacer replacer({pattern, "", text, c.replacement});
    const auto length = static_cast<int32_t>(c.expansion.size());
    EXPECT_EQ(replacer.run(100, 15, c.expansion), (Result{c.expansion, length, 14, 15})) << c.replacement;
  }
}

TEST(ReplaceTemplate, Errors) {
  for (const char* text : {"$",   "$$",    "$$1", "ab$", "$1$", "$x",  "$ 1", "$-1",     "$\\",    "$\\1",
                           "\\$", "$\xb1", "$/",  "$:",  "$0",  "$00", "$0x", "$\x26$0", "$" ZERO, "$1$0"})
    EXPECT_EQ(Template(text).status(), ulkErrRegExpBackRef) << text;
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
  const Template state("longer$");
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
  const Template replacement("x");
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
    EXPECT_EQ(replacer.run(c.capacity, c.numFind, c.result.written), c.result);
    EXPECT_EQ(replacer.run(c.capacity, c.numFind, c.result.written, {Place::kAtStart, 0}), c.result);
  }
}

TEST(Replace, TakesTheRecordsAsTheyAreWhenTheExpressionIsRefused) {
  for (const char* options : {"", "g"}) {
    const CompiledExpression expression = compiled("b", options);
    *reinterpret_cast<uint8_t*>(expression.get()) ^= 1;
    ulkRegExpFind record = {kText + 2, 2};
    EXPECT_EQ(replaced(expression.get(), Template("[$&]").state(), &record, 1), "ab[cb]d");
  }
}

// ---- every capacity

// Compares with the reference at all capacities to beyond the full result, with just enough records and with
// more.
void expectAsReference(const Task& task, int32_t recordsPerMatch, const std::vector<Span>& records) {
  const bool global = std::string(task.options).find('g') != std::string::npos;
  const Replacement job = {task.source, task.replacement, global, recordsPerMatch, records};
  const auto expected = [&](int32_t capacity) {
    return ReferenceReplace(job, capacity, WrittenUnits<uint8_t>::kUnwritten).run();
  };
  const auto full = static_cast<int32_t>(std::max(expected(INT32_MAX).written.size(), task.source.size()));
  const auto numRecords = static_cast<int32_t>(records.size());
  Replacer replacer(task);
  for (int32_t capacity = 1; capacity <= full + 3; ++capacity) {
    const int32_t given = capacity <= full + 2 ? capacity : INT32_MAX;
    const Replaced replaced = expected(given);
    const Result result = {replaced.written, replaced.dstLen, replaced.srcLen, numRecords};
    const int32_t numFind = capacity % 2 && numRecords > 0 ? numRecords : numRecords + recordsPerMatch;
    const Place place = {capacity % 3 ? Place::kAtEnd : Place::kAtStart, 0};
    ASSERT_EQ(replacer.run(given, numFind, result.written, place), result)
        << "/" << task.pattern << "/" << task.options << " with \"" << task.replacement << "\" in \""
        << task.source << "\", capacity " << given;
  }
}

TEST(Replace, RoomAtEveryCapacity) {
  const struct {
    Task task;
    int32_t recordsPerMatch;
    std::vector<Span> records;
  } cases[] = {
      {{"abc", "", "abc", "x$&yy$&"}, 1, {{0, 3}}},
      {{"c", "", "abcde", "\\xy\\zw\\"}, 1, {{2, 1}}},
      {{"b", "g", "aaaabccbccccccbbd", "1$&2"}, 1, {{4, 1}, {7, 1}, {14, 1}, {15, 1}}},
      {{"b+", "g", "abbbcbbb", ""}, 1, {{1, 3}, {5, 3}}},
      {{"()", "", "abc", "$1x$&y$1"}, 2, {{0, 0}, {0, 0}}},
      {{"(b)(x)?(c)", "", "aabcdd", "$2$3$1$2"}, 4, {{2, 2}, {2, 1}, kUnset, {3, 1}}},
      {{"(b)(x)?(c)", "", "bcdd", "$2123$2$2$3"}, 4, {{0, 2}, {0, 1}, kUnset, {1, 1}}},
      {{"(b)?(x)?c", "g", "abccbca", "$2<$1>"},
       3,
       {{1, 2}, {1, 1}, kUnset, {3, 1}, kUnset, kUnset, {4, 2}, {4, 1}, kUnset}},
      {{"(b)?c", "g", "abcdcbca", "$1$1x"}, 2, {{1, 2}, {1, 1}, {4, 1}, kUnset, {5, 2}, {5, 1}}},
      {{".??", "g", "\xc3\xa9z", "-"}, 1, {{0, 0}, {0, 2}, {1, 0}, {1, 1}, {2, 0}, {2, 1}, {3, 0}}},
      {{"b.", "", "aaab\xe2\x82", "<$&>", "\xac"}, 1, {{3, 4}}},
      {{"b.", "g", "abcdb\xe2\x82", "<$&>", "\xac"}, 1, {{1, 2}, {4, 4}}},
      {{"(b).", "g", "b\xe2", "$&$1$&", "\x82\xac"}, 2, {{0, 4}, {0, 1}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE("case " + std::to_string(&c - cases));
    expectAsReference(c.task, c.recordsPerMatch, c.records);
  }
}

// Texts that are put together from matches and what stands between them, so that the matches are known.
TEST(Replace, RoomAtEveryCapacityOfRandomTexts) {
  std::mt19937 random(61);
  const auto below = [&](unsigned count) { return static_cast<size_t>(random() % count); };
  const auto letters = [&](size_t count, char first) {
    std::string text;
    for (size_t i = 0; i < count; ++i) text += static_cast<char>(first + static_cast<char>(below(10)));
    return text;
  };
  for (int round = 0; round < 150; ++round) {
    Task task = {"<([a-m]*)>(x)?", round % 2 ? "g" : ""};
    const size_t longest = round % 5 ? 4 : 60;
    std::vector<Span> records;
    for (size_t matches = below(5); matches > 0; --matches) {
      task.source += letters(below(3) * below(static_cast<unsigned>(longest)), 'n');
      const auto start = static_cast<int32_t>(task.source.size());
      const std::string body = letters(below(static_cast<unsigned>(longest)), 'a');
      const bool more = below(2);
      task.source += "<" + body + (more ? ">x" : ">");
      const auto length = static_cast<int32_t>(task.source.size()) - start;
      records.push_back({start, length});
      records.push_back({start + 1, length - (more ? 3 : 2)});
      records.push_back(more ? Span{start + length - 1, 1} : kUnset);
    }
    task.source += letters(below(3) + records.empty(), 'A');
    if (!(round % 2) && records.size() > 3) records.resize(3);
    for (size_t items = below(6); items > 0; --items) {
      const std::string forms[] = {"$&", "$1", "$2", "$2", "$3", "\\", letters(1 + below(8), 'a')};
      task.replacement += forms[below(7)];
    }
    expectAsReference(task, 3, records);
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace ulk_test
