// The start positions of a search, without those that are not worth an attempt (start_filter.h).
#pragma once

#include <cstdint>

#include "kernels/byte_sets.h"
#include "regexp/analysis/start_filter.h"
#include "regexp/match/follow.h"
#include "regexp/match/items.h"
#include "regexp/match/matcher.h"
#include "regexp/search/prefilter.h"
#include "regexp/search/start_scan.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// Goes over the start positions of one search.
class Starts {
 public:
  explicit Starts(MatchContext& m) : m_(m), prefilter_(m) {}

  // The first position from `at` on that needs an attempt, beyond the text's end if there is none; pays for
  // those before it. Where the budget does not suffice, it is exhausted and the position returned does not
  // matter.
  const uint8_t* next(const uint8_t* at) {
    if (prefilter_.use(at)) {
      at = prefilter_.next(at);
      if (at == m_.textEnd && !prefilter_.mayBeAtEnd()) return at + 1;
    } else if (at >= attemptsEnd_ && filter().kind != StartKind::kAny && knowsOptions() && knowsSteps()) {
      at = skip(at);
    }
    if (at == m_.textEnd && knowsEnd()) {
      pay(filter().kind == StartKind::kBoundary ? stepsAtLastBoundary() : filter().steps);
      ++at;
    }
    return at;
  }

  // The same where attempts are made at line starts only, or at the text's start: the first that needs one.
  // Other places cost nothing, but one at which the search begins is tried.
  const uint8_t* nextAnchored(const uint8_t* at);

  // To be told of an attempt that has failed, and of its steps,
  void noteFailure(uint32_t steps) {
    lastFailed_ = true;
    prefilter_.addWork(Prefilter::workOfAttempt(steps));
  }
  // of one that has not,
  void noteMatch() { lastFailed_ = false; }
  // and of having come to the text's end.
  void noteEnd() { prefilter_.addWork(kWorkPerSearch); }

  // A search begins, whose text and budget are known,
  void begin() {
    asciiEnd_ = runEnd_ = attemptsEnd_ = nullptr;
    lastFailed_ = false;
    stride_ = stride();
    prefilter_.begin();
  }
  // and ends when it has come to this place.
  void end(const uint8_t* at) { prefilter_.end(at); }

 private:
  const StartFilter& filter() const { return startFilterOf(*m_.state); }
  const ByteSet256& set() const { return startSetOf(*m_.state); }
  const StartPair& pair() const { return startPairOf(*m_.state); }
  const RxNode& runQuantifier() const { return *afterItem(m_.nodes() + filter().item); }
  bool knowsOptions() const { return (filter().options & kMatcherOptions) == m_.options; }
  bool knowsSteps() const { return !filter().boundsSteps || m_.budget.mayPayBounds(); }
  bool knowsEnd() const {
    return filter().failsAtEnd && knowsSteps() &&
           (knowsOptions() || m_.options == (m_.state->options & kMatcherOptions));
  }
  // Whether the set tells at which anchored places an attempt is needed.
  bool knowsLines() const {
    return (filter().kind == StartKind::kLineStart || filter().kind == StartKind::kTextStart) &&
           filter().placeSteps > 0;
  }
  const uint8_t* skip(const uint8_t* at);
  int32_t stepsAtLastBoundary() const;
  const uint8_t* characterAfter(const uint8_t* at) const;
  int32_t find(const uint8_t* at, int32_t length) const;
  const uint8_t* asciiEnd(const uint8_t* at);
  int32_t passCharacters(const uint8_t*& at, const uint8_t* end);
  bool lacksLiterals(const uint8_t* at) const;
  bool passLackingItem(const uint8_t*& at);
  bool passFiltered(const uint8_t*& at, const uint8_t* end);
  const uint8_t* passRun(const uint8_t* at);
  const uint8_t* passBounded(const uint8_t* at, const uint8_t* end, const RxNode& quantifier,
                             const Follow& follow);
  void payForRun(int64_t items, int32_t least, const Follow& follow);
  const uint8_t* passRunOfCharacters(const uint8_t* at, const RxNode& quantifier, const Follow& follow);
  const uint8_t* nextLine(const uint8_t* at);
  const uint8_t* passOutsideSet(const uint8_t* at, const uint8_t* end);
  const uint8_t* passNonBoundaries(const uint8_t* at, const uint8_t* end);
  bool passFar(const uint8_t*& at, const uint8_t* end);
  bool passPairless(const uint8_t*& at, const uint8_t* end);
  Place findBoundary(const uint8_t* text, int32_t length) const;
  const uint8_t* payForAll(const uint8_t* at, const uint8_t* end);
  void pay(int64_t steps) { filter().boundsSteps ? m_.budget.payBound(steps) : m_.budget.pay(steps); }
  ptrdiff_t stride() const { return m_.textEnd - m_.textStart <= kLeastStride ? kLeastStride : longStride(); }
  ptrdiff_t longStride() const;
  const uint8_t* strideFrom(const uint8_t* at) const {
    return m_.textEnd - at > stride_ ? at + stride_ : m_.textEnd;
  }

  static constexpr ptrdiff_t kLeastStride = 4096;
  static constexpr int32_t kWorkPerHit = 4;     // of the filter that turns out to be in vain
  static constexpr int32_t kWorkPerSearch = 1;  // that finds nothing, beside its attempts

  MatchContext& m_;
  const uint8_t* asciiEnd_;     // of the ASCII text that was looked at last
  const uint8_t* runEnd_;       // of the run that was looked at last
  const uint8_t* attemptsEnd_;  // all positions before it need attempts
  bool lastFailed_;             // the last attempt did
  ptrdiff_t stride_;            // how far to look before paying
  Prefilter prefilter_;
};

}  // namespace ulk

#pragma GCC visibility pop
