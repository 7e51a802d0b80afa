// Candidates instead of attempts, where that takes less time.
//
// Attempts begin as the start filter tells. While they fail, the time that they take is estimated and set
// against that of looking for candidates (candidates.h). What is known is kept in the expression's state, so
// that over many short texts it is found out together.
//
// Attempts that are left out are paid for by a bound (step_bound.h). Candidates are used only where most of
// the budget remains for the attempts that are made.
#pragma once

#include <algorithm>
#include <cstdint>

#include "kernels/vec16.h"
#include "regexp/analysis/start_filter.h"
#include "regexp/match/matcher.h"
#include "regexp/search/candidates.h"

#pragma GCC visibility push(hidden)

namespace ulk {

class Prefilter {
 public:
  explicit Prefilter(MatchContext& m) : m_(m) {}

  // A search begins at the start of the text,
  void begin() {
    isOn_ = counts_ = false;
    workLeft_ = kPlenty;
    if (!startFilterOf(*m_.state).candidates || m_.textStart == m_.textEnd || !m_.budget.mayPayBounds())
      return;
    if (note().use == PrefilterUse::kUseless) return;
    since_ = m_.textStart;
    counts_ = true;
    if (note().use == PrefilterUse::kOn) return turnOn(m_.textStart);
    workLeft_ = note().workLeft;
  }
  // and ends when it has come to this place.
  void end(const uint8_t* at) {
    if (!counts_) return;
    note().workLeft = workLeft_;
    addBytes(note(), bytesInBlocks(at));
  }

  // Attempts in vain, and what takes as long. Where no one asks what is left of the work, it may go round.
  void addWork(int32_t work) {
    workLeft_ = static_cast<int32_t>(static_cast<uint32_t>(workLeft_) - static_cast<uint32_t>(work));
  }
  // The work of an attempt that has failed after so many steps.
  static int32_t workOfAttempt(uint32_t steps) {
    return kWorkPerAttempt + static_cast<int32_t>(steps / kStepsPerWork);
  }
  // That of looking at so many bytes one by one,
  static int32_t workOfBytes(ptrdiff_t bytes) { return static_cast<int32_t>(bytes) / 7; }
  // and many at a time.
  static int32_t workOfScan(ptrdiff_t bytes) { return static_cast<int32_t>(bytes) / 64; }
  // Whether candidates are to be used from this place on.
  bool use(const uint8_t* at) { return workLeft_ > 0 ? isOn_ : decide(at); }

  // So many bytes have been searched.
  static void addBytes(PrefilterNote& note, ptrdiff_t bytes) {
    note.bytes += static_cast<int32_t>(std::min(bytes, kMostBytes));
    if (note.bytes >= kManyBytes) forgetMany(note);
  }

  // The first candidate from `at` on, at most the text's end or behind a character that it cuts.
  const uint8_t* next(const uint8_t* at);
  // Whether it can be that end.
  bool mayBeAtEnd() const { return !isOn_ || m_.nonEmpty || candidates_->mayBeAtEnd(); }

 private:
  PrefilterNote& note() { return m_.state->frames[kPrefilterFrame].prefilter; }
  const PrefilterNote& note() const { return m_.state->frames[kPrefilterFrame].prefilter; }
  // What the automaton has to read until the search has come to this place.
  ptrdiff_t bytesInBlocks(const uint8_t* at) const {
    return std::min<ptrdiff_t>(at - since_ + Candidates::kBlock, m_.textEnd - since_);
  }
  bool takesLess(const uint8_t* at, int64_t work) const;
  int32_t rateOf(const uint8_t* at, int64_t work) const;
  void make();
  static void forgetMany(PrefilterNote& note);
  static void forget(PrefilterNote& note, PrefilterUse use);
  bool decide(const uint8_t* at);
  void turnOn(const uint8_t* at);
  void turnOff(PrefilterUse use);

  static constexpr int32_t kWorkPerAttempt = 4;
  static constexpr uint32_t kStepsPerWork = 2;
  // More than is ever added before `use` is asked again: no attempt has more steps, nor a text more bytes.
  static constexpr int32_t kPlenty = 1 << 30;
  static constexpr ptrdiff_t kManyBytes = 1 << 17;  // after which texts may have become others,
  static constexpr ptrdiff_t kMostBytes = 1 << 20;  // and where candidates have proved good

  MatchContext& m_;
  bool isOn_;
  bool counts_;
  int32_t workLeft_;      // until to decide anew
  const uint8_t* since_;  // is counted
  Candidates* candidates_;
};

}  // namespace ulk

#pragma GCC visibility pop
