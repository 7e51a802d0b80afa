// Where in a text a match may begin: at a rare pair of bytes (rare_pair.h), or by an automaton that reads the
// text backwards.
//
// The automaton's states are sets of positions (position_automaton.h): those from which the bytes up to the
// end of what was read can be the beginning of a match, or all of one. They are made when a text leads to
// them first. A text is read in blocks, each from a little behind its end, where any position may be alive.
// What comes out is a bit for each byte.
#pragma once

#include <cstdint>

#include "regexp/analysis/position_automaton.h"
#include "regexp/analysis/rare_pair.h"
#include "regexp/analysis/step_bound.h"

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

  // For the text from a place on. False if attempts at all places might take more steps than that.
  bool begin(const ulkRegExpState& state, const uint8_t* text, const uint8_t* textEnd, int32_t steps);

  bool usesPair() const { return usesPair_; }
  // The pair is not rare in the texts that are searched.
  void dropPair() { usesPair_ = false; }

  // The first candidate from `at` on, the text's end if there is none. All of [at, ...) are candidates while
  // the automaton has too many states.
  const uint8_t* next(const uint8_t* at) { return usesPair_ ? nextPair(at) : nextInBlocks(at); }

  bool givesUp() const { return numFlushes_ > kMaxFlushes; }

 private:
  static constexpr int32_t kMaxColumns = 64;
  static constexpr int32_t kMaxStates = 255;
  static constexpr int32_t kTableBytes = 16384;
  static constexpr int32_t kChunk = 32;
  static constexpr int32_t kAhead = 256;
  static constexpr int32_t kMaxFlushes = 4;

  bool makeColumns();
  bool boundAttempts(const ulkRegExpState& state, const uint8_t* text, const uint8_t* end);
  void flush();
  uint16_t rowOf(PositionSet alive);
  uint16_t addRow(PositionSet alive, int32_t slot);
  uint16_t entry(uint16_t row, uint8_t byte);
  PositionSet before(PositionSet alive, int32_t column) const;
  uint32_t readChunk(const uint8_t* chunk, int32_t length, uint16_t& row);
  uint32_t readNewChunk(const uint8_t* chunk, int32_t length, uint16_t& row);
  void readBlock(const uint8_t* begin);
  const uint8_t* nextInBlocks(const uint8_t* at);
  const uint8_t* nextPair(const uint8_t* at) const;

  bool usesPair_;
  RarePair pair_;

  PositionAutomaton automaton_;
  int32_t numColumns_;
  PositionSet columns_[kMaxColumns];  // the positions that take the bytes of a column
  uint8_t columnOf_[256];             // twice its number

  // A row for each state: the number of the state, then two bytes for each column: the place of the row that
  // the state before has, 0 while that is not known. Rows of states with candidates lie at odd places.
  int32_t numStates_;
  int32_t tableEnd_;
  int32_t numFlushes_;
  PositionSet states_[kMaxStates + 1];
  uint16_t rows_[kMaxStates + 1];
  uint8_t slots_[2 * (kMaxStates + 1)];  // numbers of states by their hash
  uint8_t table_[kTableBytes];

  Runs runs_;             // none in the text is longer,
  int64_t attemptBound_;  // so that no attempt takes more steps

  const uint8_t* textEnd_;
  const uint8_t* blockBegin_;
  const uint8_t* blockEnd_;
  uint32_t bits_[kBlock / kChunk];
};

}  // namespace ulk
