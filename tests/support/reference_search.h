// The searches as anyone would write them, to compare the library's answers with.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace ulk_test {

struct FirstAndLast {
  int32_t first = -1;
  int32_t last = -1;
};

// The lowest and the highest of the positions 0 .. count - 1 that `matches`.
template <class Matches>
FirstAndLast referenceSearch(int32_t count, Matches matches) {
  FirstAndLast found;
  for (int32_t at = 0; at < count; ++at) {
    if (!matches(at)) continue;
    if (found.first < 0) found.first = at;
    found.last = at;
  }
  return found;
}

template <class Unit>
FirstAndLast referenceFind(const std::vector<Unit>& text, const std::vector<Unit>& pattern) {
  if (pattern.empty()) return {};
  const int32_t candidates = static_cast<int32_t>(text.size()) - static_cast<int32_t>(pattern.size()) + 1;
  return referenceSearch(
      candidates, [&](int32_t at) { return std::equal(pattern.begin(), pattern.end(), text.begin() + at); });
}

template <class Unit>
FirstAndLast referenceFindAny(const std::vector<Unit>& text, const std::vector<Unit>& set) {
  return referenceSearch(static_cast<int32_t>(text.size()), [&](int32_t at) {
    return std::find(set.begin(), set.end(), text[static_cast<size_t>(at)]) != set.end();
  });
}

}  // namespace ulk_test
