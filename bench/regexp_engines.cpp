// All engines read the same UTF-8, in which \w, \d, \s and \b are about ASCII, ^ and $ about lines, and dots
// about all but line ends; Boost reads the bytes.
#include "regexp_engines.h"

#include <algorithm>
#include <cstdlib>

#include "pcre2_code.h"
#include "regexp_rows.h"
#include "ulkch.h"

#ifdef ULKCH_BENCH_BOOST
#include <boost/regex.hpp>
#endif
#ifdef ULKCH_BENCH_ONIG
#include <oniguruma.h>
#endif
#ifdef ULKCH_BENCH_RE2
#include <re2/re2.h>
#endif

namespace bench {
namespace {

template <class Kind>
std::unique_ptr<Engine> make(const std::string& pattern) {
  return std::make_unique<Kind>(pattern);
}

template <class Kind>
std::function<void()> compiler(const std::string& pattern) {
  return [pattern] { Kind{pattern}; };
}

class Ours : public Engine {
 public:
  explicit Ours(const std::string& pattern) : one_(compile(pattern, "m")), all_(compile(pattern, "gm")) {
    bool inClass = false;
    for (size_t i = 0; i < pattern.size(); ++i) {
      if (pattern[i] == '\\') {
        ++i;
      } else if (pattern[i] == '[' || pattern[i] == ']') {
        inClass = pattern[i] == '[';
      } else if (pattern[i] == '(' && pattern[i + 1] != '?' && !inClass) {
        ++groups_;
      }
    }
  }
  ~Ours() override {
    ulksRegExpFree(one_);
    ulksRegExpFree(all_);
  }

  Answer all(const std::string& text) override {
    const int32_t each = std::max(groups_, 1);
    // Matches are two bytes long on average, or longer.
    records_.resize(std::max<size_t>(records_.size(), text.size() / 2 * static_cast<size_t>(each)));
    int32_t found = static_cast<int32_t>(records_.size());
    ulksRegExpFind_8u(units(text), static_cast<int32_t>(text.size()), all_, records_.data(), &found);
    Answer answer;
    for (int32_t i = 0; i < found; i += each) add(records_[static_cast<size_t>(i)], text, answer);
    return answer;
  }

  void first(const std::string& text, Answer& answer) override {
    ulkRegExpFind records[8];
    int32_t found = 8;
    ulksRegExpFind_8u(units(text), static_cast<int32_t>(text.size()), one_, records, &found);
    if (found > 0) add(records[groups_ > 0 ? 1 : 0], text, answer);
  }

 private:
  static const uint8_t* units(const std::string& text) {
    return reinterpret_cast<const uint8_t*>(text.data());
  }

  static void add(const ulkRegExpFind& record, const std::string& text, Answer& answer) {
    answer.add(static_cast<size_t>(record.pFound - units(text)), static_cast<size_t>(record.lenFound));
  }

  static ulkRegExpState* compile(const std::string& pattern, const char* options) {
    ulkRegExpState* state = nullptr;
    int32_t offset = 0;
    if (ulksRegExpInitAlloc(pattern.c_str(), options, &state, &offset) != ulkOk) std::abort();
    ulksRegExpSetMatchLimit(INT32_MAX, state);
    return state;
  }

  ulkRegExpState* one_;
  ulkRegExpState* all_;
  int32_t groups_ = 0;
  std::vector<ulkRegExpFind> records_;
};

// Ours compiles into memory that the caller has.
std::function<void()> compileOurs(const std::string& pattern) {
  int32_t size = 0;
  ulksRegExpGetSize(pattern.c_str(), &size);
  const auto memory =
      std::make_shared<std::vector<uint64_t>>(static_cast<size_t>(size) / sizeof(uint64_t) + 1);
  return [pattern, memory] {
    int32_t offset = 0;
    auto* const compiled = reinterpret_cast<ulkRegExpState*>(memory->data());
    if (ulksRegExpInit(pattern.c_str(), "m", compiled, &offset) != ulkOk) std::abort();
  };
}

struct Spans {
  size_t start;
  size_t end;
  size_t from;  // of group 1, or of the match where there is no group
  size_t to;
};

// The others find one match a call, the next one from `at` on.
template <class Peer>
class OneByOne : public Engine {
 public:
  Answer all(const std::string& text) override {
    Answer answer;
    Spans spans;
    for (size_t at = 0; at <= text.size() && peer()->find(text, at, spans);) {
      answer.add(spans.from, spans.to - spans.from);
      at = spans.end > spans.start ? spans.end : spans.end + 1;
    }
    return answer;
  }

  void first(const std::string& text, Answer& answer) override {
    Spans spans;
    if (peer()->find(text, 0, spans)) answer.add(spans.from, spans.to - spans.from);
  }

 private:
  Peer* peer() { return static_cast<Peer*>(this); }
};

#ifdef ULKCH_BENCH_PCRE2
template <bool jit>
class Pcre2 final : public OneByOne<Pcre2<jit>> {
 public:
  explicit Pcre2(const std::string& pattern) : code_(pattern, jit), group_(code_.groups() > 0 ? 2 : 0) {}

  bool find(const std::string& text, size_t at, Spans& spans) {
    if (!code_.find(text.data(), text.size(), at)) return false;
    const PCRE2_SIZE* const all = code_.spans();
    spans = {all[0], all[1], all[group_], all[group_ + 1]};
    return true;
  }

 private:
  Pcre2Code code_;
  size_t group_;
};
#endif

#ifdef ULKCH_BENCH_RE2
class Re2 final : public OneByOne<Re2> {
 public:
  explicit Re2(const std::string& pattern) : code_("(?m)" + pattern, RE2::Quiet) {
    if (!code_.ok()) std::abort();
    group_ = code_.NumberOfCapturingGroups() > 0 ? 1 : 0;
  }

  bool find(const std::string& text, size_t at, Spans& spans) {
    re2::StringPiece found[2];
    if (!code_.Match(text, at, text.size(), RE2::UNANCHORED, found, group_ + 1)) return false;
    const auto offset = [&](const char* place) { return static_cast<size_t>(place - text.data()); };
    const re2::StringPiece& wanted = found[group_];
    spans = {offset(found[0].begin()), offset(found[0].end()), offset(wanted.begin()), offset(wanted.end())};
    return true;
  }

 private:
  RE2 code_;
  int group_;
};
#endif

#ifdef ULKCH_BENCH_ONIG
class Onig final : public OneByOne<Onig> {
 public:
  explicit Onig(const std::string& pattern) : region_(onig_region_new()) {
    static const int kReady = [] {
      OnigEncoding utf8 = ONIG_ENCODING_UTF8;
      return onig_initialize(&utf8, 1);
    }();
    const OnigOptionType options = ONIG_OPTION_NEGATE_SINGLELINE | ONIG_OPTION_WORD_IS_ASCII |
                                   ONIG_OPTION_DIGIT_IS_ASCII | ONIG_OPTION_SPACE_IS_ASCII;
    const OnigUChar* const begin = units(pattern);
    if (kReady != ONIG_NORMAL || onig_new(&code_, begin, begin + pattern.size(), options, ONIG_ENCODING_UTF8,
                                          ONIG_SYNTAX_PERL, nullptr) != ONIG_NORMAL)
      std::abort();
    group_ = onig_number_of_captures(code_) > 0 ? 1 : 0;
  }
  ~Onig() override {
    onig_region_free(region_, 1);
    onig_free(code_);
  }

  bool find(const std::string& text, size_t at, Spans& spans) {
    const OnigUChar* const begin = units(text);
    const OnigUChar* const end = begin + text.size();
    if (onig_search(code_, begin, end, begin + at, end, region_, ONIG_OPTION_NONE) < 0) return false;
    const auto offset = [](int place) { return static_cast<size_t>(place); };
    spans = {offset(region_->beg[0]), offset(region_->end[0]), offset(region_->beg[group_]),
             offset(region_->end[group_])};
    return true;
  }

 private:
  static const OnigUChar* units(const std::string& text) {
    return reinterpret_cast<const OnigUChar*>(text.data());
  }

  regex_t* code_ = nullptr;
  OnigRegion* region_;
  int group_;
};
#endif

#ifdef ULKCH_BENCH_BOOST
class Boost final : public OneByOne<Boost> {
 public:
  explicit Boost(const std::string& pattern) : code_(pattern), group_(code_.mark_count() > 0 ? 1 : 0) {}

  bool find(const std::string& text, size_t at, Spans& spans) {
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    if (!boost::regex_search(begin + at, end, match_, code_, boost::match_not_dot_newline, begin))
      return false;
    const auto offset = [begin](const char* place) { return static_cast<size_t>(place - begin); };
    const boost::csub_match& wanted = match_[group_];
    spans = {offset(match_[0].first), offset(match_[0].second), offset(wanted.first), offset(wanted.second)};
    return true;
  }

 private:
  boost::regex code_;
  boost::cmatch match_;
  int group_;
};
#endif

}  // namespace

const std::vector<Maker> kMakers = {
    {"ulkch", 0, make<Ours>, compileOurs},
#ifdef ULKCH_BENCH_RE2
    {"re2", kRe2, make<Re2>, compiler<Re2>},
#endif
#ifdef ULKCH_BENCH_ONIG
    {"onig", 0, make<Onig>, compiler<Onig>},
#endif
#ifdef ULKCH_BENCH_BOOST
    {"boost", kBoost, make<Boost>, compiler<Boost>},
#endif
#ifdef ULKCH_BENCH_PCRE2
    {"pcre2", 0, make<Pcre2<false>>, compiler<Pcre2<false>>},
    {"pcre2_jit", 0, make<Pcre2<true>>, compiler<Pcre2<true>>},
#endif
};

const Maker& judge() {
  return *std::find_if(kMakers.rbegin(), kMakers.rend(), [](const Maker& maker) { return maker.bit == 0; });
}

}  // namespace bench
