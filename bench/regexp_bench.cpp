// Expressions beside other engines: all matches in a text, the first match in each of many short lines, and
// compiling, also of long patterns.
#include <map>
#include <memory>

#include "regexp_engines.h"
#include "regexp_rows.h"
#include "rows.h"

namespace bench {
namespace {

// A text that one expression is searched for in, whole or line by line.
struct Search {
  Expression expression;
  std::shared_ptr<const std::string> text;
  std::vector<std::string> lines;

  uint32_t run(Engine& engine) const {
    if (lines.empty()) return engine.all(*text).sum;
    Answer answer;
    for (const std::string& line : lines) engine.first(line, answer);
    return answer.sum;
  }
};

void addSearch(const std::string& family, const Search& search) {
  const auto shared = std::make_shared<const Search>(search);
  int64_t bytes = static_cast<int64_t>(search.lines.empty() ? search.text->size() : 0);
  for (const std::string& line : search.lines) bytes += static_cast<int64_t>(line.size());
  for (const Maker& maker : kMakers) {
    if (search.expression.without & maker.bit) continue;
    const auto run = [=](benchmark::State& state) {
      const char* const pattern = shared->expression.pattern;
      const auto engine = maker.make(pattern);
      if (shared->run(*engine) != shared->run(*judge().make(pattern))) {
        anyWrong = true;
        state.SkipWithError("wrong answer");
        return;
      }
      for (auto _ : state) benchmark::DoNotOptimize(shared->run(*engine));
      state.SetBytesProcessed(state.iterations() * bytes);
    };
    const std::string name = "regexp/" + family + "/" + search.expression.name + "/" + maker.name;
    benchmark::RegisterBenchmark(name.c_str(), run);
  }
}

void compile(benchmark::State& state, const Maker& maker, const std::string& pattern) {
  const auto once = maker.compiler(pattern);
  for (auto _ : state) once();
}

void addCompile(const Expression& expression) {
  for (const Maker& maker : kMakers) {
    if (expression.without & maker.bit) continue;
    const std::string name = std::string("regexp/compile/") + expression.name + "/" + maker.name;
    benchmark::RegisterBenchmark(name.c_str(), compile, maker, std::string(expression.pattern));
  }
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
    {"optional_properties", "", 700, "[\\p{L}_\\p{N}]?", ""},
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
  for (const Maker& maker : kMakers) {
    if (maker.bit != 0) continue;  // RE2 refuses some as too large, and Boost reads others as bytes
    const std::string name = std::string("regexp/compile_long/") + row.name + "/" + maker.name;
    benchmark::RegisterBenchmark(name.c_str(), compile, maker, pattern);
  }
}

}  // namespace

void addExpressions() {
  struct Part {
    const char* family;
    size_t bytes;
    bool byLines;
  };
  constexpr Part kParts[] = {
      {"text", 1 << 16, false}, {"text_1_MiB", 1 << 20, false}, {"lines", 1 << 16, true}};
  for (const Part& part : kParts) {
    std::map<Text, std::shared_ptr<const std::string>> texts;
    for (const Expression& expression : kExpressions) {
      auto& text = texts[expression.text];
      if (!text) text = textOf(expression.text, part.bytes);
      if (text->empty()) continue;
      addSearch(part.family,
                {expression, text, part.byLines ? shortLines(*text) : std::vector<std::string>{}});
    }
  }
  for (const Expression& expression : kExpressions) addCompile(expression);
  for (const LongPattern& row : kLongPatterns) addLongCompile(row);
}

}  // namespace bench
