#include "support/reference_comparison.h"

#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "regexp/search.h"
#include "regexp/state.h"

namespace ulk_test {
namespace {

constexpr int32_t kNoLimit = INT32_MAX;

// ---- rows

bool isPlain(char byte) { return byte >= ' ' && byte <= '~'; }

std::string escaped(const std::string& bytes) {
  std::string text;
  for (size_t i = 0, end = 0; i < bytes.size(); i = end) {
    end = std::min(bytes.find_first_not_of(bytes[i], i), bytes.size());
    char unit[8];
    const char* const form = !isPlain(bytes[i]) ? "\\x%02x" : std::strchr("\"\\", bytes[i]) ? "\\%c" : "%c";
    std::snprintf(unit, sizeof unit, form, static_cast<unsigned char>(bytes[i]));
    if (end - i > 8) {
      text += "\\<" + std::to_string(end - i) + ":" + unit + ">";
    } else {
      while (i++ < end) text += unit;
    }
  }
  return "\"" + text + "\"";
}

std::string row(const GeneratedSearch& search, const std::string& behind, int32_t limit,
                const std::string& expected) {
  const std::string pattern = escaped(search.pattern);
  const bool plain = std::all_of(search.pattern.begin(), search.pattern.end(), isPlain);
  return (plain ? "/" + search.pattern + "/" : pattern) + search.options +
         "\n  format=" + std::to_string(search.format) + " limit=" + std::to_string(limit) +
         " capacity=" + std::to_string(search.capacity) + " behind=" + escaped(behind) + " " +
         escaped(search.text) + " = " + expected + "\n";
}

// ---- a search that reads what it must not read ends the program, but not without a word

const GeneratedSearch* running = nullptr;
const std::string* runningBehind = nullptr;

void tellAndExit(int) {
  std::fprintf(stderr, "read beyond what it may read:\n%s",
               row(*running, *runningBehind, kNoLimit, "?").c_str());
  std::_Exit(3);
}

// ---- smaller searches

template <class Accept>
void dropBytes(GeneratedSearch& search, std::string GeneratedSearch::*field, Accept accept) {
  const size_t size = (search.*field).size();
  for (size_t length = size; length > size / 256; length /= 2) {
    for (size_t at = 0; at + length <= (search.*field).size();) {
      GeneratedSearch smaller = search;
      (smaller.*field).erase(at, length);
      if (!accept(smaller)) at += field == &GeneratedSearch::pattern ? 1 : length;
    }
  }
}

template <class Accept>
void dropGroups(GeneratedSearch& search, Accept accept) {
  for (size_t open = 0; open < search.pattern.size(); ++open) {
    for (size_t length = 1; search.pattern[open] == '(' && length < 5; ++length) {
      for (size_t close = open + length; (close = search.pattern.find(')', close)) < search.pattern.size();
           ++close) {
        GeneratedSearch smaller = search;
        smaller.pattern.erase(close, 1).erase(open, length);
        if (accept(smaller)) break;
      }
    }
  }
}

}  // namespace

bool Comparison::compile(const std::string& pattern, const std::string& options) {
  const std::string source = options + "/" + pattern;
  if (source == compiled_) return state_ != nullptr;
  ulkRegExpState* state = nullptr;
  int32_t errorOffset = 0;
  ulksRegExpInitAlloc(pattern.c_str(), options.c_str(), &state, &errorOffset);
  state_.reset(state);
  compiled_ = source;
  return state != nullptr;
}

Outcome Comparison::reference(const GeneratedSearch& search, int32_t limit) {
  const auto* text = reinterpret_cast<const uint8_t*>(textAndBehind_.data());
  found_ = referenceFind(*state_, text, static_cast<int32_t>(search.text.size()), limit, search.capacity,
                         search.replace, search.format, mostWork_);
  return {search.replace ? static_cast<ulkStatus>(found_.records.size()) : found_.status, found_.numFind,
          found_.records};
}

// The text ends, with what a search must read behind it, where the memory ends.
Outcome Comparison::library(const GeneratedSearch& search, int32_t limit) {
  auto* text = reinterpret_cast<uint8_t*>(pages_.end()) - textAndBehind_.size();
  std::memcpy(text, textAndBehind_.data(), textAndBehind_.size());
  ulksRegExpSetMatchLimit(limit, state_.get());
  ulksRegExpSetFormat(search.format, state_.get());
  const auto length = static_cast<int32_t>(search.text.size());
  return outcomeOf(text, search.capacity, [&](ulkRegExpFind* records, int32_t* count) -> ulkStatus {
    // The number of records to be used stands for the status, which no one looks at.
    if (search.replace) return ulk::rxFindForReplace(text, length, state_.get(), records, count);
    return ulksRegExpFind_8u(text, length, state_.get(), records, count);
  });
}

// Only a repeated group leaves more choices than there is room for, and only in a long text.
bool Comparison::mayLackRoom(const GeneratedSearch& search, const Outcome& outcome) const {
  constexpr int32_t kRoom = 10000;
  if (search.text.size() < 4096 || found_.steps < kRoom) return false;
  const bool ranOut =
      search.replace || outcome.status == ulkErrMatchLimit || outcome.records.size() < found_.records.size();
  const ulk::RxNode* const nodes = state_->nodes();
  for (int32_t i = 1; i < state_->numNodes; ++i)
    if (nodes[i - 1].code == ulk::RX_END && ulk::isQuantifier(nodes[i])) return ranOut;
  return false;
}

std::optional<std::string> Comparison::difference(const GeneratedSearch& search) {
  if (!compile(search.pattern, search.options)) return std::nullopt;
  textAndBehind_ = search.text + search.behind + '\0';
  ++numSearches;
  Outcome expected = reference(search, kNoLimit);
  if (found_.gaveUp()) {
    ++numGivenUp;
    return std::nullopt;
  }
  if (expected.count > 0) ++numMatches;
  if (!std::getenv("LOOSE"))
    textAndBehind_.resize(std::max(search.text.size(), static_cast<size_t>(found_.bytesRead)));
  const std::string behind = textAndBehind_.substr(search.text.size());
  running = &search;
  runningBehind = &behind;
  std::signal(SIGSEGV, tellAndExit);

  const auto steps = static_cast<int32_t>(found_.steps);
  for (const int32_t limit :
       {kNoLimit, steps, steps - 1, static_cast<int32_t>(found_.steps * search.limitShare / 256)}) {
    if (limit < 0) continue;
    if (limit < steps) expected = reference(search, limit);
    const Outcome outcome = library(search, limit);
    if (outcome == expected) continue;
    if (limit >= steps && mayLackRoom(search, outcome)) {
      ++numNoRoom;
      return std::nullopt;
    }
    return "# " + std::string(search.replace ? "as the search of a replacement, " : "") +
           "the library says " + asText(outcome) + "\n" + row(search, behind, limit, asText(expected));
  }
  return std::nullopt;
}

GeneratedSearch Comparison::minimized(GeneratedSearch search) {
  int64_t workLeft = 50000000;
  const auto accept = [&](const GeneratedSearch& smaller) {
    if (workLeft < 0) return false;
    const bool differs = difference(smaller).has_value();
    workLeft -= 5000 + 4 * found_.steps;
    if (!differs) return false;
    search = smaller;
    return true;
  };
  for (size_t size = SIZE_MAX; size > search.text.size() + search.pattern.size();) {
    size = search.text.size() + search.pattern.size();
    for (auto field : {&GeneratedSearch::text, &GeneratedSearch::pattern, &GeneratedSearch::options,
                       &GeneratedSearch::behind})
      dropBytes(search, field, accept);
    dropGroups(search, accept);
    GeneratedSearch plainer = search;
    plainer.replace = false;
    accept(plainer);
    plainer.format = 1;
    accept(plainer);
    plainer.capacity = 64;
    accept(plainer);
    plainer.limitShare = 0;
    accept(plainer);
  }
  return search;
}

}  // namespace ulk_test
