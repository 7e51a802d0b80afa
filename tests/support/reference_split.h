// Lists of strings joined and split in the plainest way.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "ulkch.h"

namespace ulk_test {

constexpr int32_t kNull = INT32_MIN;  // as the room of a buffer: there is none

template <class Unit>
using Strings = std::vector<std::vector<Unit>>;

template <class Unit>
std::vector<Unit> joined(const Strings<Unit>& strings, const std::vector<Unit>& between) {
  std::vector<Unit> all;
  for (size_t i = 0; i < strings.size(); ++i) {
    if (i > 0) all.insert(all.end(), between.begin(), between.end());
    all.insert(all.end(), strings[i].begin(), strings[i].end());
  }
  return all;
}

// What a split leaves behind.
template <class Unit>
struct Split {
  ulkStatus status;
  int32_t count;
  std::vector<int32_t> lengths;
  Strings<Unit> written;
};

template <class Unit>
Strings<Unit> partsOf(const std::vector<Unit>& text, Unit delimiter) {
  Strings<Unit> parts(1);
  for (const Unit unit : text) {
    if (unit == delimiter) {
      parts.emplace_back();
    } else {
      parts.back().push_back(unit);
    }
  }
  if (parts.back().empty()) parts.pop_back();  // nothing follows the last delimiter, or the text is empty
  return parts;
}

// First all parts, then one after the other into its buffer.
template <class Unit>
Split<Unit> referenceSplit(const std::vector<Unit>& text, Unit delimiter, const std::vector<int32_t>& rooms) {
  Strings<Unit> parts = partsOf(text, delimiter);
  Split<Unit> split = {ulkOk, 0, rooms, Strings<Unit>(rooms.size())};
  for (size_t i = 0; i < parts.size(); ++i) {
    if (i == rooms.size()) {
      split.status = ulkWrnSlotsExhausted;
      break;
    }
    if (rooms[i] < 0) {
      split.status = rooms[i] == kNull ? ulkErrNullPtr : ulkErrLength;
      split.count = static_cast<int32_t>(rooms.size());
      return split;
    }
    if (parts[i].size() > static_cast<size_t>(rooms[i])) {
      split.status = ulkWrnPartTruncated;
      parts[i].resize(static_cast<size_t>(rooms[i]));
    }
    split.written[i] = parts[i];
    split.lengths[i] = static_cast<int32_t>(parts[i].size());
    ++split.count;
  }
  return split;
}

}  // namespace ulk_test
