// Scripts: for each an ascending array of ranges, exactly as the data file has them, about 1300 ranges or 10
// KB in all. Neighbouring ranges are not merged, because a compiled expression records how many its script
// has.
//
// No code point is in two scripts, so what a search asks is which one it is in: every code point has the
// number of its script, one byte, in blocks of 128 as in characters.cpp. Those tables take 25 KB.

#include <cstddef>
#include <iterator>

#include "unicode/unicode.h"

namespace ulk {
namespace {

template <size_t N>
constexpr Script script(const char* name, const CodePointRange (&ranges)[N]) {
  return {name, ranges, static_cast<int32_t>(N)};
}

#include "unicode/scripts_table.inc"

static_assert(std::size(kScripts) < kMaxScripts);

bool startsWithName(const char* text, const char* name) {
  while (*name && *text == *name) {
    ++text;
    ++name;
  }
  return !*name && *text == '}';
}

}  // namespace

const Script* findScript(const char* text) {
  for (const Script& candidate : kScripts) {
    if (startsWithName(text, candidate.name)) return &candidate;
  }
  return nullptr;
}

const Script& scriptOfNumber(int32_t number) { return kScripts[number - 1]; }

int32_t scriptOf(int32_t codePoint) {
  if (codePoint < 0 || codePoint > kLastInScript) return 0;
  constexpr int32_t kBlockSize = 1 << kScriptBlockShift;
  const int32_t start = kScriptBlockOf[codePoint >> kScriptBlockShift] * kBlockSize;
  return kNumberOf[start + codePoint % kBlockSize];
}

}  // namespace ulk
