#include "regexp/search/attempt_bounds.h"

#include <algorithm>

#include "regexp/analysis/start_filter.h"
#include "regexp/search/byte_runs.h"
#include "regexp/text/bytes.h"

namespace ulk {

namespace {

constexpr int32_t kUsualRun = 32;

// Makes `longest` larger until no run of the set in a text is longer; false if it is to be too large.
bool measureRun(const ByteSet256& set, const uint8_t* text, const uint8_t* end, int32_t& longest) {
  constexpr int32_t kLongest = 1 << 20;
  while ((text = findRunOf(set, text, end, longest + 1)) != nullptr)
    if ((longest *= 2) > kLongest) return false;
  return true;
}

// How many attempts in [text, end) may not fail at their first byte; all where the start filter does not
// tell.
int64_t countStarts(const ulkRegExpState& state, const uint8_t* text, const uint8_t* end) {
  const StartFilter& filter = startFilterOf(state);
  const bool isSet = filter.kind != StartKind::kAny && filter.kind != StartKind::kLineStart &&
                     filter.kind != StartKind::kTextStart;
  if (!isSet || !filtersAllAttempts(state)) return end - text + 1;
  const ByteSet256& set = state.frames[kStartSetFrame].bytes;
  const bool atBoundary = filter.kind == StartKind::kBoundary;
  int64_t count = 1;  // the first, before which it does not look
  for (const uint8_t* at = text + 1; at < end; ++at)
    count += set.contains(*at) && (!atBoundary || inByteSet(at[-1], kWord) != inByteSet(*at, kWord));
  return count;
}

}  // namespace

void AttemptBounds::make(const ulkRegExpState& state) {
  findRuns(state, runs_);
  inShort_ = boundRuns(state, kShortText);
  usual_ = attempt_ = boundRuns(state, kUsualRun);
  limitNoBytes();
}

void AttemptBounds::limitBytes(const ulkRegExpState& state, int32_t most) {
  few_ = most < 0 ? lookbehindBound(state) : shortAttemptBound(state, most);
  boundShortSearch();
}

void AttemptBounds::limitNoBytes() {
  few_ = kNoBound;
  boundShortSearch();
}

void AttemptBounds::boundShortSearch() {
  const int64_t bound = (kShortText + 1) * std::min({few_, inShort_, int64_t{INT32_MAX}});
  shortSearch_ = static_cast<int32_t>(std::min<int64_t>(bound, INT32_MAX));
}

// The bound while no run is longer than so many bytes.
int64_t AttemptBounds::boundRuns(const ulkRegExpState& state, int32_t longest) {
  std::fill_n(runs_.longest, Runs::kMax, longest);
  return stepBound(state, runs_);
}

void AttemptBounds::takeUsualRuns() {
  std::fill_n(runs_.longest, Runs::kMax, kUsualRun);
  attempt_ = usual_;
}

// The runs of earlier texts are taken to be those of this one as long as that is enough.
bool AttemptBounds::measureRuns(const ulkRegExpState& state, const uint8_t* text, const uint8_t* end) {
  bool isLonger = false;
  for (int32_t i = 0; i < runs_.count; ++i) {
    const int32_t before = runs_.longest[i];
    if (!measureRun(runs_.sets[i], text, end, runs_.longest[i])) return false;
    isLonger = isLonger || runs_.longest[i] != before;
  }
  if (isLonger) attempt_ = stepBound(state, runs_);
  return true;
}

int64_t AttemptBounds::measured(const ulkRegExpState& state, const uint8_t* text, const uint8_t* end,
                                int64_t limit) {
  constexpr int64_t kFew = 16;  // of so many attempts one may not fail at once
  const int64_t attempts = end - text + 1;
  if (attempt_ == kNoBound || attempt_ * attempts > kFew * limit || !measureRuns(state, text, end))
    return kNoBound;
  if (attempt_ * attempts <= limit) return attempt_ * attempts;
  const StartFilter& filter = startFilterOf(state);
  const int64_t elsewhere = attempts * std::max(filter.steps, filter.placeSteps);
  return elsewhere + countStarts(state, text, end) * attempt_;
}

int64_t AttemptBounds::boundAll(const ulkRegExpState& state, const uint8_t* text, const uint8_t* end,
                                int64_t limit) {
  const int64_t attempts = end - text + 1;
  const int64_t known = attempts * (end - text <= kShortText ? std::min(few_, inShort_) : few_);
  if (known <= limit) return known;
  const int64_t found = measured(state, text, end, limit);
  if (found > limit) takeUsualRuns();
  return found;
}

}  // namespace ulk
