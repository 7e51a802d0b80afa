// What a search answers, in values that can be compared and in the notation of tests/data.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

#include "support/reference_matcher.h"
#include "ulkch.h"

namespace ulk_test {

struct Outcome {
  ulkStatus status;
  int32_t count;
  std::vector<ReferenceRecord> records;  // those that were written, and what was left out between them

  bool operator==(const Outcome&) const = default;
};

inline constexpr ReferenceRecord kUnwritten = {INT64_MIN, -99};

// What `find(records, &count)` answers when it has room for `capacity` records.
template <class Find>
Outcome outcomeOf(const uint8_t* text, int32_t capacity, Find find) {
  constexpr int32_t kSpareRecords = 3;
  static const uint8_t kCanary = 0;  // its address marks a record that nobody wrote
  std::vector<ulkRegExpFind> records(static_cast<size_t>(capacity + kSpareRecords), {&kCanary, -99});
  Outcome outcome = {ulkOk, capacity, {}};
  outcome.status = find(records.data(), &outcome.count);
  const auto isUnwritten = [](const ulkRegExpFind& r) { return r.pFound == &kCanary && r.lenFound == -99; };
  const auto lastWritten = std::find_if_not(records.rbegin(), records.rend(), isUnwritten);
  records.resize(static_cast<size_t>(std::distance(lastWritten, records.rend())));
  for (const ulkRegExpFind& record : records) {
    const int64_t start = record.pFound ? record.pFound - text : -1;
    outcome.records.push_back(isUnwritten(record) ? kUnwritten : ReferenceRecord{start, record.lenFound});
  }
  return outcome;
}

inline std::string asText(const ReferenceRecord& record) {
  if (record == ReferenceRecord{-1, -1}) return "-";
  if (record == kUnwritten) return "untouched";
  return std::to_string(record.start) + "+" + std::to_string(record.length);
}

inline std::string asText(const Outcome& outcome) {
  const auto numWritten = static_cast<int32_t>(outcome.records.size());
  std::string text;
  if (outcome.status == ulkErrMatchLimit)
    text = "limit " + std::to_string(outcome.count);
  else if (outcome.status != ulkOk)
    return "status " + std::to_string(outcome.status);
  else if (outcome.count == 0)
    text = "none";
  else if (numWritten != outcome.count)
    text = "count " + std::to_string(outcome.count) + " but wrote";
  for (const ReferenceRecord& record : outcome.records) text += (text.empty() ? "" : " ") + asText(record);
  return text;
}

}  // namespace ulk_test
