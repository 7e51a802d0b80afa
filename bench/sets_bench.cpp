// Sets of expressions over a text or many short ones, on one thread and on two, beside PCRE2 with one
// expression after the other, in its interpreter and compiled to machine code (JIT), and RE2::Set and
// Hyperscan, which here tell only which of their expressions match. Wall time: the work of two threads counts
// once. Of the repetitions, the quickest one counts: what else the machine does lengthens wall times only.
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <memory>

#if defined(_OPENMP)
#include <omp.h>
#endif
#ifdef ULKCH_BENCH_HYPERSCAN
#include <hs/hs.h>
#endif
#ifdef ULKCH_BENCH_RE2
#include <re2/set.h>
#endif

#include "pcre2_code.h"
#include "rows.h"
#include "ulkch.h"

namespace bench {
namespace {

enum class Matches { kFirst, kAll };

// What one looks for in logs. Every fourth word occurs in the text.
const char* const kWords[] = {
    "segfault", "kernel",  "refused",  "client",  "quota", "rollback", "timeout",  "worker",
    "daemon",   "mutex",   "checksum", "harbour", "oom",   "deadlock", "overflow", "captain",
    "watchdog", "parity",  "throttle", "station", "evict", "replica",  "snapshot", "question",
    "journald", "selinux", "tunnel",   "evening", "nfs",   "gateway",  "uplink",   "mountain"};
constexpr size_t kNumWords = std::size(kWords);

const char* const kShapes[] = {
    "[\\w.+-]+@[\\w-]+\\.[a-z]{2,}",
    "\\b\\d{1,3}(?:\\.\\d{1,3}){3}\\b",
    "\\b\\d{4}(?:[ -]\\d{4}){3}\\b",
    "\\d{4}-\\d{2}-\\d{2}T\\d{2}:\\d{2}",
    "[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}",
    "(?:[0-9a-f]{2}:){5}[0-9a-f]{2}",
    "\\b0x[0-9a-f]{8}\\b",
    "status=5\\d\\d",
    "time=\\d{3,}ms",
    "<script[^>]*>",
    "(?i)password\\s*[:=]\\s*\\S+",
    "(?i)select .{1,40} from \\w+",
    "\\.\\./\\.\\./",
    "[A-Z]{3}-\\d{4}",
    "https?://\\S+\\.exe",
    "\\+\\d{2} \\d{3} \\d{4}",
};

// Expression number i of a mixed set: the words change with every eighth, so that a set of 8 has one of each
// kind. Shapes are the slowest; in larger sets they are spread over all slots, and so over the threads.
std::string mixed(size_t i) {
  const size_t number = i / 8;
  const std::string word = kWords[number % kNumWords];
  switch (i % 8) {
    case 0:
      return word + " failed";
    case 1:
      return word + "[-_ ]?[0-9]+";
    case 2:
      return "(?i)\\b" + word + "\\b";
    case 3:
      return word + "=\\w+";
    case 4:
      return word + " (?:denied|expired|lost)";
    case 5:
      return "/" + word + "/[\\w.-]+\\.(?:php|cgi)";
    case 6:
      return "ERROR .*\\b" + word;
    default:
      return number % 2 == 0 ? kShapes[number / 2 % std::size(kShapes)] : "(?:WARN|ERROR)[^\\n]*" + word;
  }
}

// A word and a number, which is nowhere, a word alone, in every case or as it stands.
std::string keyword(size_t i) {
  const std::string word = kWords[i % kNumWords];
  const size_t number = i / kNumWords;
  if (number == 0) return word;
  return (number % 2 ? "(?i)" : "") + word + std::to_string(number);
}

// People, in three ways to write them. None of them is in the text.
std::string person(size_t i) {
  static const char* const kFirst[] = {"James", "Mary",   "Robert", "Linda", "Michael", "Susan",
                                       "David", "Karen",  "Thomas", "Nancy", "Daniel",  "Lisa",
                                       "Paul",  "Sandra", "Mark",   "Donna"};
  static const char* const kLast[] = {"Smith",  "Jones",  "Taylor", "Brown",  "Wilson", "Evans",  "Walker",
                                      "Wright", "Green",  "Hall",   "Wood",   "Harris", "Clarke", "Jackson",
                                      "Turner", "Cooper", "Ward",   "Morris", "Moore",  "Hill"};
  const std::string first = kFirst[(i * 7 + i / 16) % std::size(kFirst)];
  const std::string last = kLast[(i * 3 + i / 20) % std::size(kLast)];
  switch (i % 3) {
    case 0:
      return "\\b" + first + " " + last + "\\b";
    case 1:
      return "(?i)" + last + ", " + first;
    default:
      return first + "\\s+(?:[A-Z]\\.\\s*)?" + last;
  }
}

enum class Size { kMebibyte, k64Kibibytes, kLines };

struct Set {
  const char* name;
  std::string (*expression)(size_t i);
  Matches matches;
  Size text;
  std::vector<size_t> sizes;
};

const Set kSets[] = {
    {"keywords/first", keyword, Matches::kFirst, Size::kMebibyte, {8, 64, 256, 1000}},
    {"people/first", person, Matches::kFirst, Size::kMebibyte, {8, 64, 256, 1000}},
    {"mixed/first", mixed, Matches::kFirst, Size::kMebibyte, {8, 64, 256, 1000}},
    {"mixed/all", mixed, Matches::kAll, Size::kMebibyte, {8, 64, 256}},
    {"mixed/64_KiB", mixed, Matches::kFirst, Size::k64Kibibytes, {8, 64, 256}},
    {"mixed/500_lines", mixed, Matches::kFirst, Size::kLines, {4, 8, 64, 256}},
};

std::vector<std::string> expressionsOf(const Set& set, size_t size) {
  std::vector<std::string> expressions;
  for (size_t i = 0; i < size; ++i) expressions.push_back(set.expression(i));
  return expressions;
}

// Blocks of log lines between blocks of English lines.
std::string mixedText() {
  constexpr size_t kBlock = 1 << 12;
  const std::string logs = logLines(1 << 19);
  const std::string prose = englishLines(1 << 19);
  std::string text;
  for (size_t at = 0; at < logs.size(); at += kBlock)
    text += logs.substr(at, kBlock) + "\n" + prose.substr(at, kBlock) + "\n";
  return text;
}

// What was found: which expressions match, and where.
struct Answer {
  uint32_t which = 0;
  uint32_t where = 0;

  void addExpression(size_t i) { which = which * 31 + static_cast<uint32_t>(i); }
  void addMatch(size_t at, size_t length) { where = where * 31 + static_cast<uint32_t>(at * 7 + length); }
};

// One text, or lines of which each is searched by itself.
std::vector<std::string> textsOf(Size size) {
  std::string text = mixedText();
  if (size == Size::kMebibyte) return {text};
  if (size == Size::k64Kibibytes) return {text.substr(0, 1 << 16)};
  std::vector<std::string> lines;
  for (size_t at = 0; lines.size() < 500; at = text.find('\n', at) + 1)
    lines.push_back(text.substr(at, std::min<size_t>(text.find('\n', at) - at, 80)));
  lines.erase(std::remove(lines.begin(), lines.end(), ""), lines.end());
  return lines;
}

using Search = std::function<Answer(const std::string& text)>;

struct Maker {
  const char* name;
  Search (*make)(const std::vector<std::string>& expressions, Matches matches);
  bool tellsWhere;
};

class OurSet {
 public:
  OurSet(const std::vector<std::string>& expressions, Matches matches) : records_(expressions.size()) {
    const size_t numRecords = matches == Matches::kAll ? 1 << 14 : 1;
    if (ulksRegExpMultiInitAlloc(&set_, static_cast<uint32_t>(expressions.size())) != ulkOk) std::abort();
    for (size_t i = 0; i < expressions.size(); ++i) {
      ulkRegExpState* state = nullptr;
      int32_t offset = 0;
      const char* const options = matches == Matches::kAll ? "gm" : "m";
      if (ulksRegExpInitAlloc(expressions[i].c_str(), options, &state, &offset) != ulkOk) std::abort();
      ulksRegExpSetMatchLimit(INT32_MAX, state);
      ulksRegExpMultiAdd(state, static_cast<uint32_t>(i + 1), set_);
      states_.push_back(state);
      records_[i].resize(numRecords);
    }
    results_.resize(expressions.size());
  }
  OurSet(const OurSet&) = delete;
  ~OurSet() {
    ulksRegExpMultiFree(set_);
    for (ulkRegExpState* state : states_) ulksRegExpFree(state);
  }

  Answer search(const std::string& text) {
    for (size_t i = 0; i < results_.size(); ++i) {
      results_[i].numFind = static_cast<int32_t>(records_[i].size());
      results_[i].pFind = records_[i].data();
    }
    const auto* const units = reinterpret_cast<const uint8_t*>(text.data());
    ulksRegExpMultiFind_8u(units, static_cast<int32_t>(text.size()), results_.data(), set_);
    Answer answer;
    for (const ulkRegExpMultiFind& result : results_) {
      if (result.numFind > 0) answer.addExpression(result.id);
      for (int32_t i = 0; i < result.numFind; ++i)
        answer.addMatch(static_cast<size_t>(result.pFind[i].pFound - units),
                        static_cast<size_t>(result.pFind[i].lenFound));
    }
    return answer;
  }

 private:
  ulkRegExpMultiState* set_ = nullptr;
  std::vector<ulkRegExpState*> states_;
  std::vector<std::vector<ulkRegExpFind>> records_;
  std::vector<ulkRegExpMultiFind> results_;
};

template <int threads>
Search ours(const std::vector<std::string>& expressions, Matches matches) {
  const auto set = std::make_shared<OurSet>(expressions, matches);
  return [set](const std::string& text) {
#if defined(_OPENMP)
    omp_set_num_threads(threads);
#endif
    return set->search(text);
  };
}

#ifdef ULKCH_BENCH_PCRE2
template <bool jit>
Search pcre2(const std::vector<std::string>& expressions, Matches matches) {
  const auto codes = std::make_shared<std::vector<std::unique_ptr<Pcre2Code>>>();
  for (const std::string& expression : expressions)
    codes->push_back(std::make_unique<Pcre2Code>(expression, jit));
  const bool all = matches == Matches::kAll;
  return [=](const std::string& text) {
    Answer answer;
    for (size_t i = 0; i < codes->size(); ++i) {
      Pcre2Code& code = *(*codes)[i];
      size_t at = 0;
      if (!code.find(text.data(), text.size(), at)) continue;
      answer.addExpression(i + 1);
      do {
        answer.addMatch(code.spans()[0], code.spans()[1] - code.spans()[0]);
        code.pass(at);
      } while (all && at <= text.size() && code.find(text.data(), text.size(), at));
    }
    return answer;
  };
}
#endif

#ifdef ULKCH_BENCH_RE2
Search re2Set(const std::vector<std::string>& expressions, Matches matches) {
  if (matches == Matches::kAll) return {};
  RE2::Options options;
  options.set_max_mem(64 << 20);  // with less, large sets give up
  const auto set = std::make_shared<RE2::Set>(options, RE2::UNANCHORED);
  std::string error;
  for (const std::string& expression : expressions) {
    if (set->Add("(?m)" + expression, &error) < 0) std::abort();
  }
  if (!set->Compile()) std::abort();
  return [set](const std::string& text) {
    std::vector<int> matching;
    set->Match(text, &matching);
    std::sort(matching.begin(), matching.end());
    Answer answer;
    for (const int i : matching) answer.addExpression(static_cast<size_t>(i) + 1);
    return answer;
  };
}
#endif

#ifdef ULKCH_BENCH_HYPERSCAN
class HyperscanSet {
 public:
  explicit HyperscanSet(const std::vector<std::string>& expressions) {
    std::vector<const char*> patterns;
    std::vector<unsigned> flags(expressions.size(), HS_FLAG_MULTILINE | HS_FLAG_SINGLEMATCH);
    std::vector<unsigned> ids;
    for (const std::string& expression : expressions) {
      ids.push_back(static_cast<unsigned>(ids.size() + 1));
      patterns.push_back(expression.c_str());
    }
    hs_compile_error_t* error = nullptr;
    if (hs_compile_multi(patterns.data(), flags.data(), ids.data(), static_cast<unsigned>(ids.size()),
                         HS_MODE_BLOCK, nullptr, &database_, &error) != HS_SUCCESS ||
        hs_alloc_scratch(database_, &scratch_) != HS_SUCCESS)
      std::abort();
  }
  HyperscanSet(const HyperscanSet&) = delete;
  ~HyperscanSet() {
    hs_free_scratch(scratch_);
    hs_free_database(database_);
  }

  Answer search(const std::string& text) const {
    std::vector<unsigned> matching;
    const auto note = [](unsigned id, unsigned long long, unsigned long long, unsigned, void* list) {
      static_cast<std::vector<unsigned>*>(list)->push_back(id);
      return 0;
    };
    hs_scan(database_, text.data(), static_cast<unsigned>(text.size()), 0, scratch_, note, &matching);
    std::sort(matching.begin(), matching.end());
    Answer answer;
    for (const unsigned id : matching) answer.addExpression(id);
    return answer;
  }

 private:
  hs_database_t* database_ = nullptr;
  hs_scratch_t* scratch_ = nullptr;
};

Search hyperscan(const std::vector<std::string>& expressions, Matches matches) {
  if (matches == Matches::kAll) return {};
  const auto set = std::make_shared<HyperscanSet>(expressions);
  return [set](const std::string& text) { return set->search(text); };
}
#endif

const Maker kMakers[] = {
    {"ulkch", ours<1>, true},
#if defined(_OPENMP)
    {"ulkch_2_threads", ours<2>, true},
#endif
#ifdef ULKCH_BENCH_RE2
    {"re2_set", re2Set, false},
#endif
#ifdef ULKCH_BENCH_HYPERSCAN
    {"hyperscan", hyperscan, false},
#endif
#ifdef ULKCH_BENCH_PCRE2
    {"pcre2", pcre2<false>, true},      {"pcre2_jit", pcre2<true>, true},
#endif
};

using Texts = std::shared_ptr<const std::vector<std::string>>;

Answer searchAll(const Search& search, const Texts& texts) {
  Answer all;
  for (const std::string& text : *texts) {
    const Answer answer = search(text);
    all.addExpression(answer.which);
    all.addMatch(answer.where, 0);
  }
  return all;
}

void addBenchmark(const std::string& name, const std::function<void(benchmark::State&)>& run) {
  benchmark::RegisterBenchmark(name.c_str(), run)->UseRealTime();
}

// The answer of the last contestant is the one expected.
void addRow(const Set& set, size_t size, const Texts& texts) {
  const std::vector<std::string> expressions = expressionsOf(set, size);
  const Answer expected = searchAll(std::end(kMakers)[-1].make(expressions, set.matches), texts);
  const std::string name = std::string("sets/") + set.name + "/" + std::to_string(size) + "/";
  for (const Maker& maker : kMakers) {
    if (!maker.make({"a"}, set.matches)) continue;  // cannot do this
    addBenchmark(name + maker.name, [=](benchmark::State& state) {
      const Search search = maker.make(expressions, set.matches);
      const Answer answer = searchAll(search, texts);
      if (answer.which != expected.which || (maker.tellsWhere && answer.where != expected.where)) {
        anyWrong = true;
        state.SkipWithError("wrong answer");
        return;
      }
      for (auto _ : state) benchmark::DoNotOptimize(searchAll(search, texts));
    });
  }
}

// What it takes to make a set and to search a short text for the first time.
void addCompileRow(const Set& set, size_t size) {
  const std::vector<std::string> expressions = expressionsOf(set, size);
  for (const Maker& maker : kMakers) {
    addBenchmark("sets/compile/" + std::to_string(size) + "/" + maker.name, [=](benchmark::State& state) {
      for (auto _ : state) benchmark::DoNotOptimize(maker.make(expressions, set.matches)("nothing"));
    });
  }
}

}  // namespace

void addSets() {
  for (const Set& set : kSets) {
    const auto texts = std::make_shared<const std::vector<std::string>>(textsOf(set.text));
    for (const size_t size : set.sizes) addRow(set, size, texts);
  }
  for (const size_t size : {8u, 64u, 256u}) addCompileRow(kSets[2], size);
}

}  // namespace bench
