#include "support/reference_comparison.h"

#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>

#include "regexp/analysis/start_filter.h"
#include "regexp/compile/compiler.h"
#include "regexp/program/state.h"
#include "regexp/search/candidates.h"
#include "regexp/search/search.h"

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

// ---- what reads or writes where it must not ends the program, but not without a word

std::function<std::string()> running;  // tells the expression or the search that the library is given

void tellAndExit(int) {
  std::fprintf(stderr, "# reads or writes where it must not\n%s\n", running().c_str());
  std::abort();
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

// Into a state that holds no zeros at first.
bool Comparison::compile(const std::string& pattern, const std::string& options) {
  const std::string source = options + "/" + pattern;
  if (source == source_) return compiles_;
  source_ = source;
  std::signal(SIGSEGV, tellAndExit);
  running = [&] { return escaped(pattern) + options + "\n"; };
  int32_t size = 0;
  int32_t errorOffset = 0;
  ulksRegExpGetSize(pattern.c_str(), &size);
  state_.assign(static_cast<size_t>(size) / sizeof(uint64_t) + 1, 0xA5A5A5A5A5A5A5A5);
  program_ = state_;
  ulk::SpareWords spare;
  compiles_ = ulksRegExpInit(pattern.c_str(), options.c_str(), state(), &errorOffset) == ulkOk;
  return compiles_ &&
         ulk::compileProgram(pattern.c_str(), options.c_str(), program(), spare, errorOffset) == ulkOk;
}

// A search that runs out of steps may look at what one with steps enough looks at.
Outcome Comparison::reference(const GeneratedSearch& search, int32_t limit) {
  const std::string all = search.text + search.behind + '\0';
  const auto* text = reinterpret_cast<const uint8_t*>(all.data());
  found_ = referenceFind(program(), text, static_cast<int32_t>(search.text.size()), limit, search.capacity,
                         search.replace, search.format, mostWork_);
  const size_t known = limit == kNoLimit ? search.text.size() : textAndBehind_.size();
  textAndBehind_ = all.substr(0, std::max(known, static_cast<size_t>(found_.bytesRead)));
  return {search.replace ? static_cast<ulkStatus>(found_.records.size()) : found_.status, found_.numFind,
          found_.records};
}

void Comparison::leaveNote(Earlier earlier, bool glances) {
  constexpr int32_t kMuch = 1 << 20;
  if (!ulk::startFilterOf(*state()).hasFrames) return;
  ulk::PrefilterNote& note = state()->frames[ulk::kPrefilterFrame].prefilter;
  note = ulk::kNewPrefilterNote;
  if (!glances) note.hope = INT8_MIN;
  if (earlier == Earlier::kNothing) return;
  note.look = kMuch;
  note.workLeft = 0;
  if (earlier == Earlier::kInVain || (note.frame = ulk::Candidates::make(*state())) == 0) return;
  note.use = ulk::PrefilterUse::kOff;
  if (earlier != Earlier::kNoCandidates) ulk::Candidates::in(*state(), note.frame)->takeSlowerWay();
  if (earlier == Earlier::kInVainWithoutPair || ulk::startFilterOf(*state()).anchor != ulk::Anchor::kNone)
    return;
  note.use = ulk::PrefilterUse::kOn;
  note.workLeft = kMuch;
}

// The text ends, with what the reference has read behind it, where the memory ends.
Outcome Comparison::library(const GeneratedSearch& search, int32_t limit) {
  auto* text = reinterpret_cast<uint8_t*>(pages_.end()) - textAndBehind_.size();
  std::memcpy(text, textAndBehind_.data(), textAndBehind_.size());
  ulksRegExpSetMatchLimit(limit, state());
  ulksRegExpSetFormat(search.format, state());
  leaveNote(search.earlier, search.glances);
  const auto length = static_cast<int32_t>(search.text.size());
  const auto find = [&](ulkRegExpFind* records, int32_t* count) -> ulkStatus {
    // The number of records to be used stands for the status, which no one looks at.
    if (search.replace) return ulk::rxFindForReplace(text, length, state(), records, count);
    return ulksRegExpFind_8u(text, length, state(), records, count);
  };
  if (search.earlier == Earlier::kSameText) outcomeOf(text, search.capacity, find);
  return outcomeOf(text, search.capacity, find);
}

std::string Comparison::row(const GeneratedSearch& search, int32_t limit) const {
  const bool plain = std::all_of(search.pattern.begin(), search.pattern.end(), isPlain);
  return (plain ? "/" + search.pattern + "/" : escaped(search.pattern)) + search.options +
         "\n  format=" + std::to_string(search.format) + " limit=" + std::to_string(limit) +
         " capacity=" + std::to_string(search.capacity) +
         " behind=" + escaped(textAndBehind_.substr(search.text.size())) + " " + escaped(search.text) + " = ";
}

// Only a repeated group leaves more choices than there is room for, and only in a long text.
bool Comparison::mayLackRoom(const GeneratedSearch& search, const Outcome& outcome) {
  constexpr int32_t kRoom = 20000;  // in steps
  if (search.text.size() < 4096 || found_.steps < kRoom) return false;
  const bool ranOut =
      search.replace || outcome.status == ulkErrMatchLimit || outcome.records.size() < found_.records.size();
  const ulk::RxNode* const nodes = program().nodes();
  for (int32_t i = 1; i < program().numNodes; ++i)
    if (nodes[i - 1].code == ulk::RX_END && ulk::isQuantifier(nodes[i])) return ranOut;
  return false;
}

std::optional<std::string> Comparison::difference(const GeneratedSearch& search) {
  if (!compile(search.pattern, search.options)) return std::nullopt;
  ++numSearches;
  Outcome expected = reference(search, kNoLimit);
  if (found_.gaveUp()) {
    ++numGivenUp;
    return std::nullopt;
  }
  if (expected.count > 0) ++numMatches;
  const auto steps = static_cast<int32_t>(found_.steps);
  const auto some = static_cast<int32_t>(found_.steps * search.limitShare / 256);
  for (const int32_t limit : {kNoLimit, steps, steps - 1, some}) {
    if (limit < 0) continue;
    if (limit < steps) expected = reference(search, limit);
    // Without steps left, lazy repeats still go on from character to character.
    if (found_.gaveUp()) continue;
    running = [&] { return row(search, limit); };
    const Outcome outcome = library(search, limit);
    if (outcome == expected) continue;
    if (limit >= steps && mayLackRoom(search, outcome)) {
      ++numNoRoom;
      return std::nullopt;
    }
    const std::string how = std::string(search.replace ? "as the search of a replacement, " : "") +
                            (search.earlier == Earlier::kNothing ? "" : "by candidates, ");
    return "# " + how + "the library says " + asText(outcome) + "\n" + row(search, limit) + asText(expected) +
           "\n";
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
    plainer.earlier = Earlier::kNothing;
    accept(plainer);
    plainer.capacity = 64;
    accept(plainer);
    plainer.limitShare = 0;
    accept(plainer);
  }
  return search;
}

}  // namespace ulk_test
