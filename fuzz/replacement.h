// Replacement as its rules read, to compare the library's with.
//
// Positions in the destination are counts: a group that took no part has the length -1, so they may step
// back, for the first match even before the destination, where nothing is written.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "expression.h"

namespace ulk_fuzz {

struct TemplateItem {
  std::string literal;
  int32_t group = -1;  // where it is not -1, the literal is empty
};
using TemplateItems = std::vector<TemplateItem>;

// No value for a malformed template.
inline std::optional<TemplateItems> referenceTemplate(const std::string& text) {
  TemplateItems items;
  bool inLiteral = false;
  for (size_t at = 0; at < text.size();) {
    const char byte = text[at++];
    if (byte != '$' && byte != '\\') {
      if (!inLiteral) items.emplace_back();
      items.back().literal += byte;
      inLiteral = true;
      continue;
    }
    inLiteral = false;
    if (byte == '\\') continue;
    uint32_t group = 0;
    const size_t end = std::min(text.find_first_not_of("0123456789", at), text.size());
    if (at < text.size() && text[at] == '&') {
      ++at;
    } else {
      for (; at < end; ++at) group = group * 11 + static_cast<uint32_t>(text[at] - '0');
      if (group == 0) return std::nullopt;
    }
    items.push_back({"", static_cast<int32_t>(group)});
  }
  return items;
}

struct Replaced {
  int64_t sourceLength;
  int64_t length;
  std::vector<uint8_t> memory;  // the destination and what is behind it
};

class ReferenceReplacement {
 public:
  ReferenceReplacement(const std::string& source, int32_t capacity, const std::vector<uint8_t>& memory,
                       const TemplateItems& items)
      : source_(source),
        sourceLength_(static_cast<int64_t>(source.size())),
        capacity_(capacity),
        memory_(memory),
        items_(items) {}

  Replaced copy() {
    const int64_t count = std::min(sourceLength_, capacity_);
    write(0, sourceFrom(0, count));
    return ended(count, count);
  }

  Replaced replaceFirst(const std::vector<Record>& records) {
    const int64_t before = records[0].start;
    const int64_t after = before + records[0].length;
    if (before > 0 && before >= capacity_) return ended(0, 0);
    write(0, sourceFrom(0, before));
    if (items_.empty()) {
      write(before, sourceFrom(after, sourceLength_ - after));
      return ended(sourceLength_, before);
    }
    const auto expanded = expand(before, records.data(), static_cast<int32_t>(records.size()), capacity_);
    if (!expanded) return ended(before, before);
    const int64_t tail = sourceLength_ - after;
    if (tail >= capacity_ - before - *expanded) return ended(after, before + *expanded);
    write(before + *expanded, sourceFrom(after, tail));
    return ended(sourceLength_, before + *expanded + tail);
  }

  Replaced replaceAll(const std::vector<Record>& records, int32_t recordsPerMatch) {
    int64_t consumed = 0;
    int64_t written = 0;
    for (size_t i = 0; i < records.size(); i += static_cast<size_t>(recordsPerMatch)) {
      const Record match = records[i];
      const int64_t gap = match.start - consumed;
      // A match that began inside the one before makes the gap negative: nothing is copied, but it counts.
      if (gap != 0) {
        if (gap >= capacity_ - written) return ended(consumed, written);
        write(written, sourceFrom(consumed, gap));
        written += gap;
      }
      const auto expanded = expand(written, records.data() + i, recordsPerMatch, capacity_ - written);
      if (!expanded) return ended(match.start, written);
      written += *expanded;
      consumed = int64_t{match.start} + match.length;
    }
    const int64_t tail = sourceLength_ - consumed;
    if (tail >= capacity_ - written) return ended(consumed, written);
    write(written, sourceFrom(consumed, tail));
    return ended(tail, written + tail);
  }

 private:
  // No value where a piece does not fit, and where the pieces together come out below nothing.
  std::optional<int64_t> expand(int64_t position, const Record* records, int32_t numRecords, int64_t room) {
    int64_t expanded = 0;
    for (const TemplateItem& item : items_) {
      if (item.group >= numRecords || item.group < -1) continue;
      std::string text = item.literal;
      int64_t length = static_cast<int64_t>(text.size());
      if (item.group >= 0) {
        const Record& record = records[item.group];
        text = sourceFrom(record.start, record.length);
        length = record.length < 0 ? record.length : static_cast<int64_t>(text.size());
      }
      if (room <= expanded + length) return std::nullopt;
      write(position + expanded, text);
      expanded += length;
    }
    return expanded < 0 ? std::nullopt : std::optional(expanded);
  }

  // A record may reach beyond the source; its text does not.
  std::string sourceFrom(int64_t start, int64_t length) const {
    if (length < 1 || start >= sourceLength_) return "";
    return source_.substr(static_cast<size_t>(start), static_cast<size_t>(length));
  }

  void write(int64_t position, const std::string& text) {
    for (size_t i = 0; i < text.size(); ++i) {
      const int64_t at = position + static_cast<int64_t>(i);
      if (at >= 0) memory_.at(static_cast<size_t>(at)) = static_cast<uint8_t>(text[i]);
    }
  }

  Replaced ended(int64_t sourceLength, int64_t length) const { return {sourceLength, length, memory_}; }

  const std::string& source_;
  const int64_t sourceLength_;
  const int64_t capacity_;
  std::vector<uint8_t> memory_;
  const TemplateItems& items_;
};

}  // namespace ulk_fuzz
