// Scripts: for each an ascending array of ranges, exactly as the data file has them, about 1300 ranges or 10
// KB in all. Neighbouring ranges are not merged, because a compiled expression records how many its script
// has.
//
// No code point is in two scripts, so what a search asks is which one it is in: every code point has the
// number of its script, one byte, in blocks of 128 as in characters.cpp. Those tables take 25 KB.

#include <algorithm>
#include <array>
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

// What the first byte of a character from 0x80 on has above 0xC0.
constexpr uint32_t leadOf(uint32_t c) {
  return c < 0x800 ? c >> 6 : c < 0x10000 ? 0x20 + (c >> 12) : 0x30 + (c >> 18);
}

constexpr auto kLeads = [] {
  std::array<uint64_t, std::size(kScripts)> leads{};
  for (size_t i = 0; i < leads.size(); ++i)
    for (int32_t k = 0; k < kScripts[i].numRanges; ++k)
      for (uint32_t lead = leadOf(std::max(kScripts[i].ranges[k].first, 0x80u));
           lead <= leadOf(kScripts[i].ranges[k].last); ++lead)
        if (kScripts[i].ranges[k].last >= 0x80) leads[i] |= uint64_t{1} << lead;
  return leads;
}();

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

uint64_t leadsOfScript(int32_t number) { return kLeads[static_cast<size_t>(number - 1)]; }

int32_t scriptOf(int32_t codePoint) {
  if (codePoint < 0 || codePoint > kLastInScript) return 0;
  constexpr int32_t kBlockSize = 1 << kScriptBlockShift;
  const int32_t start = kScriptBlockOf[codePoint >> kScriptBlockShift] * kBlockSize;
  return kNumberOf[start + codePoint % kBlockSize];
}

}  // namespace ulk
