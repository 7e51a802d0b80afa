// Scripts: for each an ascending array of ranges, exactly as the data file has them, about 1300 ranges or 10
// KB in all. Neighbouring ranges are not merged, because a compiled expression records how many its script
// has.

#include <cstddef>

#include "unicode/unicode.h"

namespace ulk {
namespace {

template <size_t N>
constexpr Script script(const char* name, const CodePointRange (&ranges)[N]) {
  return {name, ranges, static_cast<int32_t>(N)};
}

#include "unicode/scripts_table.inc"

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

bool inRanges(int32_t codePoint, const CodePointRange* ranges, int32_t numRanges) {
  const uint32_t wanted = static_cast<uint32_t>(codePoint);  // a negative value lies above every range
  int32_t low = 0;
  int32_t high = numRanges;
  while (low < high) {
    const int32_t middle = (low + high) / 2;
    if (wanted < ranges[middle].first) {
      high = middle;
    } else if (wanted > ranges[middle].last) {
      low = middle + 1;
    } else {
      return true;
    }
  }
  return false;
}

}  // namespace ulk
