// The options that a pattern is compiled and matched with.
#pragma once

#include <cstdint>

namespace ulk {

// Option bits; the same word is used in the state header and in the operands of RX_OPTIONS, RX_OPTGROUP,
// RX_ALT, RX_END and top-level literals.
enum RxOption : uint32_t {
  RX_OPT_DOTALL = 1,     // s: "." also matches the newline byte 10
  RX_OPT_MULTILINE = 2,  // m: "^" and "$" also match at line boundaries
  RX_OPT_CASELESS = 4,   // i: letters match regardless of case
  RX_OPT_EXTENDED = 8,   // x: white space and "#" comments in the pattern are ignored (compile time only)
  RX_OPT_GLOBAL = 16,    // g: find or replace all matches; only in the options string
};

// Those that the matcher looks at.
inline constexpr uint32_t kMatcherOptions = RX_OPT_DOTALL | RX_OPT_MULTILINE | RX_OPT_CASELESS;

}  // namespace ulk
