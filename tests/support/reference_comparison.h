// Generated searches, answered by the library and by the reference matcher: with all the steps that they
// need, with one fewer, and with a share of them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/generated_cases.h"
#include "support/guarded.h"
#include "support/outcome.h"

namespace ulk_test {

class Comparison {
 public:
  // Searches on which the reference would work longer than this are given up.
  explicit Comparison(int64_t mostWork) : mostWork_(mostWork) {}

  // How the answers differ, as a row for tests/data that says what is right; nothing if they are the same.
  std::optional<std::string> difference(const GeneratedSearch& search);

  // The smallest search found that differs as well.
  GeneratedSearch minimized(GeneratedSearch search);

  // Whether the expression compiles.
  bool compile(const std::string& pattern, const std::string& options);

  int numSearches = 0;  // compared,
  int numMatches = 0;   // of which so many matched,
  int numGivenUp = 0;   // and so many were not compared for want of time or stack
  int numNoRoom = 0;    // in so many the library had no room for the choices

 private:
  Outcome reference(const GeneratedSearch& search, int32_t limit);
  void leaveNote(Earlier earlier, bool glances);
  Outcome library(const GeneratedSearch& search, int32_t limit);
  std::string row(const GeneratedSearch& search, int32_t limit) const;
  ulkRegExpState* state() { return reinterpret_cast<ulkRegExpState*>(state_.data()); }
  ulkRegExpState& program() { return *reinterpret_cast<ulkRegExpState*>(program_.data()); }
  bool mayLackRoom(const GeneratedSearch& search, const Outcome& outcome);

  const int64_t mostWork_;
  std::string source_;  // of the expression in `state_`
  bool compiles_ = false;
  std::vector<uint64_t> state_;
  std::vector<uint64_t> program_;  // a state with the compiled program alone, for the reference
  ReferenceFind found_;            // what the reference said last
  std::string textAndBehind_;      // as far as the library may read
  GuardedPages pages_{kLongest + 64};
};

}  // namespace ulk_test
