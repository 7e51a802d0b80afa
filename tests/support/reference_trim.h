// Trimming one unit after the other.
#pragma once

#include <algorithm>
#include <vector>

namespace ulk_test {

template <class Unit>
std::vector<Unit> referenceTrim(std::vector<Unit> text, const std::vector<Unit>& set, bool start, bool end) {
  const auto removed = [&](Unit unit) { return std::find(set.begin(), set.end(), unit) != set.end(); };
  while (end && !text.empty() && removed(text.back())) text.pop_back();
  while (start && !text.empty() && removed(text.front())) text.erase(text.begin());
  return text;
}

}  // namespace ulk_test
