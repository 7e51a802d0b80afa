// Where in a text a match may begin: at a rare pair of bytes (rare_bytes.h), or where the backward automaton
// tells, which reads the text up to the next place of rare bytes that every match has, or in blocks, from a
// little behind the end of each.
#pragma once

#include <algorithm>
#include <cstdint>

#include "regexp/analysis/rare_bytes.h"
#include "regexp/match/budget.h"
#include "regexp/search/attempt_bounds.h"
#include "regexp/search/backward_automaton.h"

#pragma GCC visibility push(hidden)

namespace ulk {

class Candidates {
 public:
  static constexpr int32_t kBlock = 4096;  // bytes that are read at a time

  // Puts one into the frames that the state has left over. Returns the first of them; 0 if they are too few,
  // or the automaton would tell nothing.
  static int32_t make(ulkRegExpState& state);
  static Candidates* in(ulkRegExpState& state, int32_t frame) {
    return reinterpret_cast<Candidates*>(&state.frames[frame]);
  }

  // For the text from a place on. Pays for the attempts that are left out; false if they might take too much
  // of the budget.
  bool begin(const ulkRegExpState& state, const uint8_t* text, const uint8_t* textEnd, StepBudget& budget) {
    if (!isOpen_) open(text, textEnd);
    isOpen_ = false;
    // What remains of the budget has to do for the attempts that are made.
    const int32_t limit = budget.left() - std::max(budget.left() / 4, StepBudget::kPlenty);
    const int32_t bound = bounds_.ofAll(state, text, textEnd, limit);
    if (bound > limit) return false;
    budget.payBound(bound);
    return true;
  }

  // The next search is one of the same text: what is known of it is kept.
  void keepOpen() { isOpen_ = true; }

  // Looking for candidates takes much less time than where all of the text is read in blocks.
  bool isQuick() const { return way_ != Way::kBlocks; }
  // The text has too many candidates of a quick way. It is left for a slower one that tells more.
  void takeSlowerWay() { choose(way_ == Way::kPair ? Way::kRequired : Way::kBlocks); }

  // The first place from `at` on where a match may begin, the text's end if there is none. What candidates
  // are told by may begin before it, but not before the text.
  const uint8_t* nextPlace(const uint8_t* at, const uint8_t* text) {
    const ptrdiff_t before = bytesBefore();
    if (before == 0) return next(at);
    const uint8_t* const found = next(at - std::min(before, at - text));
    return std::max(at, before < textEnd_ - found ? found + before : textEnd_);
  }
  // The same for such a place, or one behind it, where a character begins, as one does at `from`; behind the
  // text's end if that cuts the last one.
  const uint8_t* nextCharacter(const uint8_t* place, const uint8_t* from, const uint8_t* text);
  // Whether a match may begin at the text's end. The bound is one for the attempt there as well.
  bool mayBeAtEnd() const { return mayBeAtEnd_; }
  // Whether there is none, as the text lacks a byte that every match has. Told only while that often is so,
  // and where looking for candidates takes longer.
  bool lacksRequired(const uint8_t* text) { return hope_ > 0 && asksForRequired(text); }
  // Candidates tell nothing any more: the automaton has too many states.
  bool givesUp() const { return automaton_.hasTooManyStates(); }

 private:
  enum class Way : uint8_t { kPair, kRequired, kBlocks };
  static constexpr int32_t kChunk = BackwardAutomaton::kChunk;
  static constexpr int32_t kAhead = 256;
  static constexpr int32_t kEarlyBlock = 16;
  static constexpr int32_t kEarlyAhead = 16;

  void choose(Way way);
  void open(const uint8_t* text, const uint8_t* textEnd) {
    textEnd_ = textEnd;
    blockBegin_ = blockEnd_ = nullptr;
    early_ = text + kEarlyBlock;
    automaton_.begin();
  }
  // A candidate is the beginning of what a match must have, which lies so many bytes before the match.
  int32_t bytesBefore() const { return automaton_.positions().bytesBefore; }
  // The first candidate from `at` on, the text's end if there is none; `at` behind it.
  const uint8_t* next(const uint8_t* at) { return way_ == Way::kPair ? nextPair(at) : nextInBlocks(at); }
  const uint8_t* nextPair(const uint8_t* at) const;
  const uint8_t* lastPlace(const uint8_t* at) const;
  const uint8_t* nextInBlocks(const uint8_t* at);
  const uint8_t* nextInBlock(const uint8_t* at) const;
  void readBack(const uint8_t* begin, uint16_t row);
  const uint8_t* passToStart(const uint8_t* at);
  bool readBlock(const uint8_t* begin);
  void noteFirst(const uint8_t* found) {
    areEarly_ = found < early_;
    early_ = nullptr;
  }
  bool asksForRequired(const uint8_t* text);
  int32_t findRequired(const uint8_t* begin) const;
  bool readToRequired(const uint8_t* begin);

  Way way_;
  bool mayBeAtEnd_;
  RequiredBytes required_;
  int32_t hope_;  // that texts lack them
  RarePair pair_;
  ByteSet256 starts_;    // that candidates begin with
  SmallSet rareStarts_;  // the same if they are rare
  bool hasRareStarts_;
  int32_t startHope_;  // that they are far
  BackwardAutomaton automaton_;

  AttemptBounds bounds_;

  // The first block of a text is a short one while the first candidates of texts are within it.
  bool areEarly_;
  const uint8_t* early_;  // where that one ends, null when the text's first candidate is known
  bool isOpen_;
  const uint8_t* textEnd_;
  const uint8_t* blockBegin_;
  const uint8_t* blockEnd_;
  uint32_t bits_[kBlock / kChunk];
};

}  // namespace ulk

#pragma GCC visibility pop
