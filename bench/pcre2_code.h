// An expression compiled by PCRE2, for its interpreter or to machine code (JIT).
#pragma once

#ifdef ULKCH_BENCH_PCRE2
#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <cstdlib>
#include <string>

namespace bench {

class Pcre2Code {
 public:
  Pcre2Code(const std::string& pattern, bool jit) : jit_(jit) {
    int error = 0;
    PCRE2_SIZE offset = 0;
    code_ = pcre2_compile(units(pattern.data()), pattern.size(), PCRE2_UTF | PCRE2_MULTILINE, &error, &offset,
                          nullptr);
    if (!code_ || (jit && pcre2_jit_compile(code_, PCRE2_JIT_COMPLETE) != 0)) std::abort();
    match_ = pcre2_match_data_create_from_pattern(code_, nullptr);
    pcre2_pattern_info(code_, PCRE2_INFO_CAPTURECOUNT, &groups_);
  }
  Pcre2Code(const Pcre2Code&) = delete;
  ~Pcre2Code() {
    pcre2_match_data_free(match_);
    pcre2_code_free(code_);
  }

  uint32_t groups() const { return groups_; }

  // Start and end of the match found last, then those of its groups.
  const PCRE2_SIZE* spans() const { return pcre2_get_ovector_pointer(match_); }

  bool find(const char* text, size_t length, size_t at) {
    const auto run = jit_ ? pcre2_jit_match : pcre2_match;
    return run(code_, units(text), length, at, PCRE2_NO_UTF_CHECK | interpreted(), match_, nullptr) >= 0;
  }

  // Moves `at` behind the match found last, to where the next one may start.
  void pass(size_t& at) const { at = spans()[1] > spans()[0] ? spans()[1] : spans()[1] + 1; }

  // The length of the result.
  size_t substitute(const std::string& text, const char* replacement, bool all, char* result, size_t room) {
    const uint32_t options = PCRE2_NO_UTF_CHECK | interpreted() | (all ? PCRE2_SUBSTITUTE_GLOBAL : 0);
    PCRE2_SIZE length = room;
    pcre2_substitute(code_, units(text.data()), text.size(), 0, options, match_, nullptr, units(replacement),
                     PCRE2_ZERO_TERMINATED, reinterpret_cast<PCRE2_UCHAR*>(result), &length);
    return length;
  }

 private:
  static PCRE2_SPTR units(const char* text) { return reinterpret_cast<PCRE2_SPTR>(text); }
  uint32_t interpreted() const { return jit_ ? 0 : PCRE2_NO_JIT; }

  bool jit_;
  pcre2_code* code_;
  pcre2_match_data* match_;
  uint32_t groups_ = 0;
};

}  // namespace bench
#endif
