// Candidates instead of attempts, where that takes less time.
//
// Attempts begin as the start filter tells. While they fail, the time that they take is estimated and set
// against that of looking for candidates (candidates.h). What is known is kept in the expression's state, so
// that over many short texts it is found out together.
//
// Attempts that are left out are not paid for: candidates are used only where the limit allows for attempts
// at all places by their bound (step_bound.h), so that no one can tell.
#pragma once

#include <cstdint>

#include "regexp/match/matcher.h"
#include "regexp/search/candidates.h"

namespace ulk {

class Prefilter {
 public:
  Prefilter(MatchContext& m, ulkRegExpState& state) : m_(m), state_(state) {}

  // A search begins at the start of the text,
  void begin();
  // and ends when it has come to this place.
  void end(const uint8_t* at);

  // Attempts in vain, and what takes as long.
  void addWork(int64_t work) { work_ += work; }
  // Whether candidates are to be used from this place on.
  bool use(const uint8_t* at) { return work_ < nextLook_ ? isOn_ : decide(at); }

  // The first candidate from `at` on, at most the text's end or behind a character that it cuts.
  const uint8_t* next(const uint8_t* at);

 private:
  PrefilterNote& note() { return state_.frames[kPrefilterFrame].prefilter; }
  const PrefilterNote& note() const { return state_.frames[kPrefilterFrame].prefilter; }
  const uint8_t* candidateFrom(const uint8_t* at) const;
  ptrdiff_t bytesInBlocks(const uint8_t* at) const;
  bool takesLess(const uint8_t* at) const;
  void make();
  void forget(PrefilterUse use);
  bool decide(const uint8_t* at);
  void turnOn(const uint8_t* at);
  void turnOff(PrefilterUse use);

  MatchContext& m_;
  ulkRegExpState& state_;
  bool isOn_;
  int64_t work_;  // since
  const uint8_t* since_;
  int64_t nextLook_;  // the work at which to decide anew
  Candidates* candidates_;
};

}  // namespace ulk
