// An automaton that reads a text backwards and tells at each byte whether a match may begin there.
//
// Its states are sets of positions (position_automaton.h): those from which the bytes up to the end of what
// was read can be the beginning of a match, or all of one. They are made when a text leads to them first.
#pragma once

#include <cstdint>

#include "regexp/analysis/position_automaton.h"

#pragma GCC visibility push(hidden)

namespace ulk {

class BackwardAutomaton {
 public:
  // False where the automaton would tell nothing.
  bool make(const ulkRegExpState& state);
  const PositionAutomaton& positions() const { return positions_; }

  // Forgets all states. Matches may end anywhere, or only where the reading begins or behind it.
  void restart(bool endAnywhere);

  // A text begins: whether there are too many states is found out anew.
  void begin() { numFlushes_ = 0; }
  bool hasTooManyStates() const { return numFlushes_ > kMaxFlushes; }

  // A state is known by the place of its row. Any position may be alive, or the text ends.
  uint16_t rowOfAll() { return rowOf(kAllPositions); }
  uint16_t rowAtEnd() { return rowOf(positions_.atEnd); }
  bool isDead(uint16_t row) const { return aliveIn(row) == 0; }

  // Reads the bytes of a chunk from the last to the first: a bit for each that is a candidate. `row` is that
  // behind the chunk, then that of its first byte.
  static constexpr int32_t kChunk = 32;
  uint32_t read(const uint8_t* chunk, int32_t length, uint16_t& row);

 private:
  static constexpr PositionSet kAllPositions = ~PositionSet{0};
  static constexpr int32_t kMaxColumns = 64;
  static constexpr int32_t kMaxPairColumns = 16;  // with which there is room for all their pairs
  static constexpr int32_t kMaxStates = 255;
  static constexpr int32_t kTableBytes = 16384;
  static constexpr int32_t kMaxFlushes = 4;

  bool makeColumns();
  void flush();
  uint16_t rowOf(PositionSet alive);
  uint16_t addRow(PositionSet alive, int32_t slot);
  uint16_t entry(uint16_t row, uint8_t byte);
  uint16_t pairEntry(uint16_t row, const uint8_t* pair, uint32_t& bits);
  int32_t columnOfPair(const uint8_t* pair) const { return pairColumns_[pair[1]] + 2 * columnOf_[pair[0]]; }
  PositionSet aliveIn(uint16_t row) const;
  PositionSet before(PositionSet alive, int32_t column) const;
  uint32_t readKnown(const uint8_t* chunk, int32_t length, uint32_t& place) const;
  uint32_t readKnownPairs(const uint8_t* chunk, int32_t length, uint32_t& place) const;
  uint32_t readSlowly(const uint8_t* chunk, int32_t length, uint16_t& row);

  PositionAutomaton positions_;
  PositionSet ends_;  // where matches may end
  int32_t numColumns_;
  PositionSet columns_[kMaxColumns];  // the positions that take the bytes of a column
  uint8_t columnOf_[256];             // twice its number

  uint16_t pairColumns_[256];  // where those of the pairs with this last byte begin
  bool hasPairs_;

  // A row for each state: the number of the state, then two bytes for each column: the place of the row that
  // the state before has, 0 while that is not known. Rows of states with candidates lie at odd places. While
  // there is room, four bytes follow for each pair of columns: the place of the row before both, and which of
  // the two bytes are candidates.
  int32_t rowBytes_;
  int32_t numStates_;
  int32_t tableEnd_;
  int32_t numFlushes_;
  PositionSet states_[kMaxStates + 1];
  uint16_t rows_[kMaxStates + 1];
  uint8_t slots_[2 * (kMaxStates + 1)];  // numbers of states by their hash
  uint8_t table_[kTableBytes];
};

}  // namespace ulk

#pragma GCC visibility pop
