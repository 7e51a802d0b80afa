// Replacement as its rules read: piece by piece, byte by byte, from matches that the caller knows.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ulk_test {

// A match or a group of it in the source. It may reach beyond the source.
struct Span {
  int32_t start;
  int32_t length;
};
constexpr Span kUnset = {-1, -1};  // a group that took no part

struct Replacement {
  std::string source;
  std::string pattern;  // of the result: the template
  bool global;
  int32_t recordsPerMatch;
  std::vector<Span> records;
};

struct Replaced {
  std::string written;  // what stands in the destination, also beyond dstLen; `unwritten` between
  int64_t srcLen;
  int64_t dstLen;
};

class ReferenceReplace {
 public:
  ReferenceReplace(const Replacement& job, int32_t capacity, char unwritten)
      : job_(job), capacity_(capacity), unwritten_(unwritten), srcLen_(lengthOf(job.source)) {
    readTemplate();
  }

  Replaced run() {
    if (job_.records.empty()) {
      put(0, job_.source.substr(0, static_cast<size_t>(capacity_)));
      return end(lengthOf(written_), lengthOf(written_));
    }
    return job_.global ? replaceAll() : replaceFirst();
  }

 private:
  struct Item {
    std::string literal;  // empty for a group
    int32_t group;
  };

  static int64_t lengthOf(const std::string& text) { return static_cast<int64_t>(text.size()); }

  void readTemplate() {
    const std::string& text = job_.pattern;
    for (size_t i = 0; i < text.size();) {
      if (text[i] == '\\') {
        ++i;
      } else if (text[i] != '$') {
        const size_t end = std::min(text.find_first_of("$\\", i), text.size());
        items_.push_back({text.substr(i, end - i), 0});
        i = end;
      } else {
        uint32_t group = 0;
        const bool whole = text[++i] == '&';
        for (i += whole; !whole && text[i] >= '0' && text[i] <= '9'; ++i)
          group = 11 * group + static_cast<uint32_t>(text[i] - '0');
        items_.push_back({"", static_cast<int32_t>(group)});
      }
    }
  }

  void put(int64_t at, const std::string& text) {
    for (size_t i = 0; i < text.size(); ++i, ++at) {
      if (at < 0) continue;
      if (at >= lengthOf(written_)) written_.resize(static_cast<size_t>(at + 1), unwritten_);
      written_[static_cast<size_t>(at)] = text[i];
    }
  }

  std::string sourceText(int64_t start, int64_t length) const {
    if (length < 1 || start >= srcLen_) return "";
    return job_.source.substr(static_cast<size_t>(start), static_cast<size_t>(length));
  }

  // Puts the template at `at` for the match whose first record is `first`. Nothing when a piece does not fit
  // or the sum of the pieces is negative.
  std::optional<int64_t> expand(int64_t at, int64_t limit, int64_t first, int64_t numGroups) {
    int64_t expanded = 0;
    for (const Item& item : items_) {
      std::string piece = item.literal;
      int64_t length = lengthOf(piece);
      if (piece.empty()) {
        if (item.group < 0 || item.group >= numGroups) continue;
        const Span group = job_.records[static_cast<size_t>(first + item.group)];
        piece = sourceText(group.start, group.length);
        length = group.length < 0 ? -1 : lengthOf(piece);
      }
      if (limit <= expanded + length) return std::nullopt;
      put(at + expanded, piece);
      expanded += length;
    }
    if (expanded < 0) return std::nullopt;
    return expanded;
  }

  Replaced end(int64_t srcLen, int64_t dstLen) const { return {written_, srcLen, dstLen}; }

  Replaced replaceFirst() {
    const int64_t prefix = job_.records[0].start;
    const int64_t length = job_.records[0].length;
    const int64_t tail = srcLen_ - prefix - length;
    if (prefix != 0 && prefix >= capacity_) return end(0, 0);
    put(0, sourceText(0, prefix));
    if (items_.empty()) {
      put(prefix, sourceText(prefix + length, tail));
      return end(srcLen_, prefix);
    }
    const auto expanded = expand(prefix, capacity_, 0, static_cast<int64_t>(job_.records.size()));
    if (!expanded) return end(prefix, prefix);
    if (tail >= capacity_ - prefix - *expanded) return end(prefix + length, prefix + *expanded);
    put(prefix + *expanded, sourceText(prefix + length, tail));
    return end(srcLen_, prefix + *expanded + tail);
  }

  Replaced replaceAll() {
    int64_t consumed = 0;
    int64_t filled = 0;
    const auto fits = [&](int64_t length) { return length < capacity_ - filled; };
    for (size_t i = 0; i < job_.records.size(); i += static_cast<size_t>(job_.recordsPerMatch)) {
      const Span match = job_.records[i];
      const int64_t gap = match.start - consumed;
      if (gap != 0 && !fits(gap)) return end(consumed, filled);
      put(filled, sourceText(consumed, gap));
      filled += gap;
      const auto expanded = expand(filled, capacity_ - filled, static_cast<int64_t>(i), job_.recordsPerMatch);
      if (!expanded) return end(match.start, filled);
      filled += *expanded;
      consumed = match.start + match.length;
    }
    const int64_t tail = srcLen_ - consumed;
    if (!fits(tail)) return end(consumed, filled);
    put(filled, sourceText(consumed, tail));
    return end(tail, filled + tail);
  }

  const Replacement& job_;
  const int64_t capacity_;
  const char unwritten_;
  const int64_t srcLen_;
  std::vector<Item> items_;
  std::string written_;
};

}  // namespace ulk_test
