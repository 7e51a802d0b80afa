// Replacement beside pcre2_substitute, which searches with PCRE2's interpreter or its compiler to machine
// code (JIT): a text of 1 MiB rewritten with a template.
#include <cstdlib>
#include <functional>
#include <memory>

#include "pcre2_code.h"
#include "rows.h"
#include "ulkch.h"

namespace bench {
namespace {

enum class Text { kEnglish, kLog };
enum class Matches { kFirst, kAll };

struct Replacement {
  const char* name;
  Text text;
  Matches matches;
  const char* pattern;
  const char* ours;    // the template, as ulkch writes it
  const char* theirs;  // the same for PCRE2
};

// The English text ends in "zebra", which occurs nowhere else.
const Replacement kReplacements[] = {
    {"all/literal_dense", Text::kEnglish, Matches::kAll, "the", "THE", "THE"},
    {"all/literal_sparse", Text::kEnglish, Matches::kAll, "harbour", "port", "port"},
    {"all/literal_once", Text::kEnglish, Matches::kAll, "zebra", "horse", "horse"},
    {"all/literal_absent", Text::kEnglish, Matches::kAll, "submarine", "boat", "boat"},
    {"all/delete_dense", Text::kEnglish, Matches::kAll, "[,.]", "", ""},
    {"all/delete_sparse", Text::kEnglish, Matches::kAll, "however ", "", ""},
    {"all/alternatives", Text::kEnglish, Matches::kAll, "bridge|winter|jacket", "*", "*"},
    {"all/caseless_word", Text::kEnglish, Matches::kAll, "(?i)\\bcaptain\\b", "skipper", "skipper"},
    {"all/words_marked", Text::kEnglish, Matches::kAll, "\\w+", "<$&>", "<$0>"},
    {"all/words_swapped", Text::kEnglish, Matches::kAll, "(\\w+) (\\w+)", "$2 $1", "$2 $1"},
    {"all/line_ends", Text::kEnglish, Matches::kAll, "\\n", "\r\n", "\r\n"},
    {"all/dates_turned", Text::kLog, Matches::kAll, "(\\d+)-(\\d+)-(\\d+)", "$3.$2.$1", "$3.$2.$1"},
    {"all/addresses_hidden", Text::kLog, Matches::kAll, "\\b\\d{1,3}(?:\\.\\d{1,3}){3}\\b", "x.x.x.x",
     "x.x.x.x"},
    {"all/pairs", Text::kLog, Matches::kAll, "(\\w+)=(\\w+)", "$1: $2", "$1: $2"},
    {"all/quotes", Text::kLog, Matches::kAll, "\"([^\"]*)\"", "'$1'", "'$1'"},
    {"all/fields_deleted", Text::kLog, Matches::kAll, " \\[[^\\]]*\\]", "", ""},
    {"first/early", Text::kEnglish, Matches::kFirst, "harbour", "port", "port"},
    {"first/late", Text::kEnglish, Matches::kFirst, "zebra", "horse", "horse"},
    {"first/group", Text::kLog, Matches::kFirst, "(\\d+)-(\\d+)-(\\d+)", "$3.$2.$1", "$3.$2.$1"},
    {"first/absent", Text::kEnglish, Matches::kFirst, "submarine", "boat", "boat"},
};

constexpr size_t kTextSize = 1 << 20;
constexpr size_t kRoom = 4 * kTextSize;

// Writes the text with its matches replaced, and returns the length of that.
using Replace = std::function<size_t(const std::string& text, char* result)>;

struct Maker {
  const char* name;
  Replace (*make)(const Replacement& row);
};

Replace ours(const Replacement& row) {
  int32_t offset = 0;
  ulkRegExpState* compiled = nullptr;
  const char* const options = row.matches == Matches::kAll ? "gm" : "m";
  if (ulksRegExpInitAlloc(row.pattern, options, &compiled, &offset) != ulkOk) std::abort();
  ulksRegExpSetMatchLimit(INT32_MAX, compiled);
  const std::shared_ptr<ulkRegExpState> expression(compiled, ulksRegExpFree);
  int32_t size = 0;
  ulksRegExpReplaceGetSize(row.ours, &size);
  const auto memory =
      std::make_shared<std::vector<uint64_t>>(static_cast<size_t>(size) / sizeof(uint64_t) + 1);
  auto* const prepared = reinterpret_cast<ulkRegExpReplaceState*>(memory->data());
  if (ulksRegExpReplaceInit(row.ours, prepared) != ulkOk) std::abort();
  // Records for the matches of the densest row.
  const auto records = std::make_shared<std::vector<ulkRegExpFind>>(kTextSize / 2);
  return [=](const std::string& text, char* result) {
    int32_t used = static_cast<int32_t>(text.size());
    int32_t length = kRoom;
    int32_t numRecords = static_cast<int32_t>(records->size());
    const auto* const source = reinterpret_cast<const uint8_t*>(text.data());
    ulksRegExpReplace_8u(source, &used, reinterpret_cast<uint8_t*>(result), &length, records->data(),
                         &numRecords, expression.get(), (static_cast<void>(memory), prepared));
    return static_cast<size_t>(length);
  };
}

#ifdef ULKCH_BENCH_PCRE2
template <bool jit>
Replace pcre2(const Replacement& row) {
  const auto code = std::make_shared<Pcre2Code>(row.pattern, jit);
  const char* const theirs = row.theirs;
  const bool all = row.matches == Matches::kAll;
  return [=](const std::string& text, char* result) {
    return code->substitute(text, theirs, all, result, kRoom);
  };
}
#endif

// The last one's result is the one expected.
const Maker kMakers[] = {
    {"ulkch", ours},
#ifdef ULKCH_BENCH_PCRE2
    {"pcre2", pcre2<false>},
    {"pcre2_jit", pcre2<true>},
#endif
};

std::string resultOf(const Replace& replace, const std::string& text) {
  std::string result(kRoom, 0);
  result.resize(replace(text, result.data()));
  return result;
}

void addRow(const Replacement& row, const std::shared_ptr<const std::string>& text) {
  const auto expected = std::make_shared<const std::string>(resultOf(std::end(kMakers)[-1].make(row), *text));
  for (const Maker& maker : kMakers) {
    const auto run = [=](benchmark::State& state) {
      const Replace replace = maker.make(row);
      if (resultOf(replace, *text) != *expected) {
        anyWrong = true;
        state.SkipWithError("wrong answer");
        return;
      }
      std::string result(kRoom, 0);
      for (auto _ : state) benchmark::DoNotOptimize(replace(*text, result.data()));
      state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text->size()));
    };
    benchmark::RegisterBenchmark((std::string("replace/") + row.name + "/" + maker.name).c_str(), run);
  }
}

}  // namespace

void addReplacement() {
  const auto prose = std::make_shared<const std::string>(englishLines(kTextSize - 5) + "zebra");
  const auto logs = std::make_shared<const std::string>(logLines(kTextSize));
  for (const Replacement& row : kReplacements) addRow(row, row.text == Text::kLog ? logs : prose);
}

}  // namespace bench
