// Expressions beside PCRE2, its interpreter and its compiler to machine code (JIT): all matches in a text,
// the first match in each of many short lines, and compiling, also of long patterns.
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <memory>

#include "pcre2_code.h"
#include "rows.h"
#include "ulkch.h"

namespace bench {
namespace {

enum class Text { kEnglish, kLog };

struct Expression {
  const char* name;
  Text text;
  const char* pattern;
};

const Expression kExpressions[] = {
    {"literal", Text::kEnglish, "harbour"},
    {"literal_absent", Text::kEnglish, "submarine"},
    {"class_in_literal", Text::kEnglish, "w[ae]ter"},
    {"word", Text::kEnglish, "\\w+"},
    {"word_bounded", Text::kEnglish, "\\b\\w+\\b"},
    {"capitalised", Text::kEnglish, "[A-Z][a-z]+"},
    {"suffix", Text::kEnglish, "[a-z]+ing\\b"},
    {"two_words", Text::kEnglish, "(\\w+)\\s+(\\w+)"},
    {"three_words", Text::kEnglish, "(?:\\w+ ){3}"},
    {"alternatives", Text::kEnglish, "bridge|winter|jacket"},
    {"alternatives_group", Text::kEnglish, "(?:the|and|for) [a-z]+"},
    {"alternatives_bounded", Text::kEnglish, "\\b(?:the|and|for)\\b"},
    {"caseless_word", Text::kEnglish, "(?i)captain"},
    {"caseless_bounded", Text::kEnglish, "(?i)\\bthe\\b"},
    {"before_comma", Text::kEnglish, "\\w+(?=,)"},
    {"after_word", Text::kEnglish, "(?<=the )\\w+"},
    {"repeated_letters", Text::kEnglish, "([a-z]+)\\1"},
    {"sentence_lazy", Text::kEnglish, "[A-Z].*?\\."},
    {"pairs", Text::kLog, "(\\w+)=(\\w+)"},
    {"pairs_or_end", Text::kLog, "((\\w+)=(\\w+)|\\z)"},
    {"quoted", Text::kLog, "\"([^\"]*)\""},
    {"bracketed_lazy", Text::kLog, "\\[.*?\\]"},
    {"date", Text::kLog, "(\\d+)-(\\d+)-(\\d+)"},
    {"time_stamp", Text::kLog, "\\d{4}-\\d{2}-\\d{2} \\d{2}:\\d{2}:\\d{2}"},
    {"address", Text::kLog, "\\b\\d{1,3}(?:\\.\\d{1,3}){3}\\b"},
    {"url", Text::kLog, "https?://[^ ]+"},
    {"request", Text::kLog, "(?:GET|POST) ([^ ?]+)(?:\\?(\\S*))?"},
    {"levels", Text::kLog, "ERROR|WARN"},
    {"levels_or_end", Text::kLog, "(ERROR|WARN|\\z)"},
    {"line_fields", Text::kLog, "^(\\S+) (\\S+) (ERROR|WARN) .*$"},
    {"line_end", Text::kLog, "\\S+$"},
    {"status", Text::kLog, "status=(?!200)\\d+"},
};

std::string textOf(Text kind, size_t units) {
  return kind == Text::kLog ? logLines(units) : englishLines(units);
}

// What a search has found, in one number: how often, where and how much.
struct Answer {
  uint32_t sum = 0;
  void add(size_t at, size_t length) { sum = sum * 31 + static_cast<uint32_t>(at * 7 + length); }
};

// One expression, compiled by one engine. Positions are those of group 1 where there is one.
class Engine {
 public:
  virtual ~Engine() = default;
  virtual Answer all(const std::string& text) = 0;
  virtual bool matches(const char* text, size_t length) = 0;
};

class Ours : public Engine {
 public:
  explicit Ours(const char* pattern) {
    one_ = compile(pattern, "m");
    all_ = compile(pattern, "gm");
    for (const char* c = pattern; *c; ++c) groups_ += c[0] == '(' && c[1] != '?' ? 1 : 0;
  }
  Ours(const Ours&) = delete;
  ~Ours() override {
    ulksRegExpFree(one_);
    ulksRegExpFree(all_);
  }

  Answer all(const std::string& text) override {
    int32_t found = static_cast<int32_t>(records_.size());
    ulksRegExpFind_8u(units(text.data()), static_cast<int32_t>(text.size()), all_, records_.data(), &found);
    Answer answer;
    const int32_t each = groups_ > 0 ? groups_ : 1;
    for (int32_t i = 0; i < found; i += each) {
      const ulkRegExpFind& record = records_[static_cast<size_t>(i)];
      answer.add(static_cast<size_t>(record.pFound - units(text.data())),
                 static_cast<size_t>(record.lenFound));
    }
    return answer;
  }

  bool matches(const char* text, size_t length) override {
    int32_t found = 8;
    ulksRegExpFind_8u(units(text), static_cast<int32_t>(length), one_, records_.data(), &found);
    return found > 0;
  }

 private:
  static const uint8_t* units(const char* text) { return reinterpret_cast<const uint8_t*>(text); }

  static ulkRegExpState* compile(const char* pattern, const char* options) {
    ulkRegExpState* state = nullptr;
    int32_t offset = 0;
    if (ulksRegExpInitAlloc(pattern, options, &state, &offset) != ulkOk) std::abort();
    ulksRegExpSetMatchLimit(INT32_MAX, state);
    return state;
  }

  ulkRegExpState* one_;
  ulkRegExpState* all_;
  int32_t groups_ = 0;
  std::vector<ulkRegExpFind> records_{1 << 16};
};

#ifdef ULKCH_BENCH_PCRE2
class Pcre2 : public Engine {
 public:
  Pcre2(const char* pattern, bool jit) : code_(pattern, jit) {}

  Answer all(const std::string& text) override {
    Answer answer;
    const PCRE2_SIZE* const wanted = code_.spans() + (code_.groups() > 0 ? 2 : 0);
    for (size_t at = 0; at <= text.size() && code_.find(text.data(), text.size(), at); code_.pass(at))
      answer.add(wanted[0], wanted[1] - wanted[0]);
    return answer;
  }

  bool matches(const char* text, size_t length) override { return code_.find(text, length, 0); }

 private:
  Pcre2Code code_;
};
#endif

using Make = std::function<std::unique_ptr<Engine>(const char* pattern)>;

struct Maker {
  const char* name;
  Make make;
};

std::vector<Maker> makers() {
  std::vector<Maker> all;
  all.push_back({"ulkch", [](const char* pattern) { return std::make_unique<Ours>(pattern); }});
#ifdef ULKCH_BENCH_PCRE2
  all.push_back({"pcre2", [](const char* pattern) { return std::make_unique<Pcre2>(pattern, false); }});
  all.push_back({"pcre2_jit", [](const char* pattern) { return std::make_unique<Pcre2>(pattern, true); }});
#endif
  return all;
}

// Without PCRE2 there is nothing to compare with: the last contestant's answer is the one expected.
void addText(const Expression& expression) {
  const std::string text = textOf(expression.text, 1 << 16);
  const uint32_t expected = makers().back().make(expression.pattern)->all(text).sum;
  for (const Maker& maker : makers()) {
    const auto run = [=](benchmark::State& state) {
      const auto engine = maker.make(expression.pattern);
      if (engine->all(text).sum != expected) {
        anyWrong = true;
        state.SkipWithError("wrong answer");
        return;
      }
      for (auto _ : state) benchmark::DoNotOptimize(engine->all(text).sum);
      state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
    };
    benchmark::RegisterBenchmark((std::string("regexp/text/") + expression.name + "/" + maker.name).c_str(),
                                 run);
  }
}

int32_t countLines(Engine& engine, const std::string& text) {
  int32_t count = 0;
  for (size_t at = 0, end = 0; (end = text.find('\n', at)) != std::string::npos; at = end + 1) {
    count += engine.matches(text.data() + at, std::min<size_t>(end - at, 80));
  }
  return count;
}

// The first match in every line, of at most 80 units.
void addLines(const Expression& expression) {
  const std::string text = textOf(expression.text, 4096);
  const int32_t expected = countLines(*makers().back().make(expression.pattern), text);
  for (const Maker& maker : makers()) {
    const auto run = [=](benchmark::State& state) {
      const auto engine = maker.make(expression.pattern);
      if (countLines(*engine, text) != expected) {
        anyWrong = true;
        state.SkipWithError("wrong answer");
        return;
      }
      for (auto _ : state) benchmark::DoNotOptimize(countLines(*engine, text));
      state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
    };
    benchmark::RegisterBenchmark((std::string("regexp/lines/") + expression.name + "/" + maker.name).c_str(),
                                 run);
  }
}

void compileOurs(benchmark::State& state, const std::string& pattern) {
  int32_t size = 0;
  int32_t offset = 0;
  ulksRegExpGetSize(pattern.c_str(), &size);
  std::vector<uint64_t> memory(static_cast<size_t>(size) / sizeof(uint64_t) + 1);
  auto* const compiled = reinterpret_cast<ulkRegExpState*>(memory.data());
  if (ulksRegExpInit(pattern.c_str(), "m", compiled, &offset) != ulkOk) std::abort();
  for (auto _ : state) benchmark::DoNotOptimize(ulksRegExpInit(pattern.c_str(), "m", compiled, &offset));
}

#ifdef ULKCH_BENCH_PCRE2
template <bool jit>
void compilePcre2(benchmark::State& state, const std::string& pattern) {
  for (auto _ : state) Pcre2Code(pattern, jit);
}
#endif

void addCompile(const Expression& expression) {
  const std::string name = std::string("regexp/compile/") + expression.name;
  benchmark::RegisterBenchmark((name + "/ulkch").c_str(), compileOurs, std::string(expression.pattern));
#ifdef ULKCH_BENCH_PCRE2
  benchmark::RegisterBenchmark((name + "/pcre2").c_str(), compilePcre2<false>,
                               std::string(expression.pattern));
  benchmark::RegisterBenchmark((name + "/pcre2_jit").c_str(), compilePcre2<true>,
                               std::string(expression.pattern));
#endif
}

// Patterns of 10 KB in which many pieces depend on many others, or on all around them.
struct LongPattern {
  const char* name;
  const char* before;
  int times;
  const char* piece;
  const char* behind;
};

const LongPattern kLongPatterns[] = {
    {"optional_bytes", "", 5000, "b?", ""},
    {"optional_classes", "", 800, "[a-f\xC3\xA9\xC4\x80]?", ""},
    {"optional_properties", "", 1000, "[\\pL\\pN_]?", ""},
    {"one_class", "[", 2000, "\xD1\x8F\xD0\xB0x", "]*"},
    {"alternatives", "b*(?:", 5000, "a|", "c)"},
    {"nested_groups", "", 200, "(?:a*", nullptr},
    {"nested_literals", "", 200, "(?:ab.", nullptr},
};

void addLongCompile(const LongPattern& row) {
  std::string pattern = row.before;
  for (int i = 0; i < row.times; ++i) pattern += row.piece;
  if (row.behind) {
    pattern += row.behind;
  } else {
    for (int i = 0; i < 4000; ++i) pattern += "b?";
    for (int i = 0; i < row.times; ++i) pattern += "cd)";
  }
  const std::string name = std::string("regexp/compile_long/") + row.name;
  benchmark::RegisterBenchmark((name + "/ulkch").c_str(), compileOurs, pattern);
#ifdef ULKCH_BENCH_PCRE2
  benchmark::RegisterBenchmark((name + "/pcre2").c_str(), compilePcre2<false>, pattern);
#endif
}

}  // namespace

void addExpressions() {
  for (const Expression& expression : kExpressions) addText(expression);
  for (const Expression& expression : kExpressions) addLines(expression);
  for (const Expression& expression : kExpressions) addCompile(expression);
  for (const LongPattern& row : kLongPatterns) addLongCompile(row);
}

}  // namespace bench
