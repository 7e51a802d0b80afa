#include "regexp/search/backward_automaton.h"

#include <bit>
#include <cstring>

#include "kernels/vec16.h"

namespace ulk {

namespace {

ULK_INLINE uint16_t loadEntry(const uint8_t* place) {
  uint16_t entry;
  std::memcpy(&entry, place, sizeof entry);
  return entry;
}

void storeEntry(uint8_t* place, uint16_t entry) { std::memcpy(place, &entry, sizeof entry); }

}  // namespace

// Bytes that are in the same positions' sets share a column.
bool BackwardAutomaton::makeColumns() {
  numColumns_ = 0;
  for (int32_t byte = 0; byte < 256; ++byte) {
    PositionSet taken = 0;
    for (int32_t p = 0; p < positions_.count; ++p)
      taken |= PositionSet{positions_.bytes[p].contains(static_cast<uint8_t>(byte))} << p;
    int32_t column = 0;
    while (column < numColumns_ && columns_[column] != taken) ++column;
    if (column == kMaxColumns) return false;
    if (column == numColumns_) columns_[numColumns_++] = taken;
    columnOf_[byte] = static_cast<uint8_t>(2 * column);
  }
  for (int32_t byte = 0; byte < 256; ++byte)
    pairColumns_[byte] = static_cast<uint16_t>(2 * numColumns_ * (1 + columnOf_[byte]));
  return true;
}

bool BackwardAutomaton::make(const ulkRegExpState& state) {
  return makeAutomaton(state, positions_) && makeColumns();
}

void BackwardAutomaton::restart(bool endAnywhere) {
  ends_ = endAnywhere ? positions_.accepting : 0;
  hasPairs_ = numColumns_ <= kMaxPairColumns;
  flush();
}

// Row 0 is the one that unknown entries lead to, and leads to itself.
void BackwardAutomaton::flush() {
  numStates_ = 0;
  rowBytes_ = 2 * (1 + numColumns_) + (hasPairs_ ? 4 * numColumns_ * numColumns_ : 0);
  tableEnd_ = rowBytes_;
  std::memset(table_, 0, static_cast<size_t>(tableEnd_));
  std::memset(slots_, 0, sizeof slots_);
}

uint16_t BackwardAutomaton::rowOf(PositionSet alive) {
  const auto hash = static_cast<uint32_t>((alive * 0x9E3779B97F4A7C15u) >> 55);
  int32_t slot = static_cast<int32_t>(hash);
  for (; slots_[slot]; slot = (slot + 1) % static_cast<int32_t>(sizeof slots_))
    if (states_[slots_[slot]] == alive) return rows_[slots_[slot]];
  return addRow(alive, slot);
}

uint16_t BackwardAutomaton::addRow(PositionSet alive, int32_t slot) {
  if (numStates_ == kMaxStates || tableEnd_ + rowBytes_ + 1 > kTableBytes) {
    ++numFlushes_;
    hasPairs_ = false;
    flush();
    return rowOf(alive);
  }
  const int32_t state = ++numStates_;
  slots_[slot] = static_cast<uint8_t>(state);
  states_[state] = alive;
  const bool isCandidate = alive & positions_.first;
  const int32_t begin = tableEnd_ + (isCandidate != (tableEnd_ % 2 != 0) ? 1 : 0);
  std::memset(table_ + begin, 0, static_cast<size_t>(rowBytes_));
  storeEntry(table_ + begin, static_cast<uint16_t>(state));
  tableEnd_ = begin + rowBytes_;
  return rows_[state] = static_cast<uint16_t>(begin + 2);
}

// The positions alive at a byte of the column that stands before a place with those alive.
PositionSet BackwardAutomaton::before(PositionSet alive, int32_t column) const {
  if (alive == kAllPositions) return columns_[column];  // whatever stands there
  PositionSet found = columns_[column] & ends_;
  for (PositionSet left = columns_[column] & ~found; left; left &= left - 1) {
    const int32_t p = std::countr_zero(left);
    if (positions_.follow[p] & alive) found |= PositionSet{1} << p;
  }
  return found;
}

PositionSet BackwardAutomaton::aliveIn(uint16_t row) const { return states_[loadEntry(table_ + row - 2)]; }

uint16_t BackwardAutomaton::entry(uint16_t row, uint8_t byte) {
  uint8_t* const place = table_ + row + columnOf_[byte];
  if (const uint16_t known = loadEntry(place)) return known;
  const int32_t flushes = numFlushes_;
  const uint16_t next = rowOf(before(aliveIn(row), columnOf_[byte] / 2));
  if (flushes == numFlushes_) storeEntry(place, next);
  return next;
}

// The same for the two bytes of a pair, with their bits.
uint16_t BackwardAutomaton::pairEntry(uint16_t row, const uint8_t* pair, uint32_t& bits) {
  const int32_t flushes = numFlushes_;
  const uint16_t between = entry(row, pair[1]);
  const uint16_t next = entry(between, pair[0]);
  const auto both = static_cast<uint8_t>(2 * (between & 1) + (next & 1));
  bits = 4 * bits + both;
  if (flushes == numFlushes_) {
    uint8_t* const place = table_ + row + columnOfPair(pair);
    storeEntry(place, next);
    place[2] = both;
  }
  return next;
}

// Reads where no state is missing; else the place is 0. What the next byte has to wait for is the place
// alone: left to itself, the compiler adds the table to it.
ULK_INLINE uint32_t BackwardAutomaton::readKnown(const uint8_t* chunk, int32_t length,
                                                 uint32_t& place) const {
  uint32_t bits = 0;
  for (int32_t i = length - 1; i >= 0; --i) {
    const uint8_t* column = table_ + columnOf_[chunk[i]];
    asm("" : "+r"(column));
    place = loadEntry(column + place);
    bits = 2 * bits + (place & 1);
  }
  return bits;
}

// The same by pairs, which is to wait half as often.
ULK_INLINE uint32_t BackwardAutomaton::readKnownPairs(const uint8_t* chunk, int32_t length,
                                                      uint32_t& place) const {
  const int32_t paired = length & ~1;
  uint32_t bits = paired < length ? readKnown(chunk + paired, 1, place) : 0;
  for (int32_t i = paired - 2; i >= 0; i -= 2) {
    const uint8_t* column = table_ + columnOfPair(chunk + i);
    asm("" : "+r"(column));
    bits = 4 * bits + column[place + 2];
    place = loadEntry(column + place);
  }
  return bits;
}

uint32_t BackwardAutomaton::read(const uint8_t* chunk, int32_t length, uint16_t& row) {
  uint32_t place = row;
  uint32_t bits;
  if (hasPairs_) {
    bits = length == kChunk ? readKnownPairs(chunk, kChunk, place) : readKnownPairs(chunk, length, place);
  } else {
    bits = length == kChunk ? readKnown(chunk, kChunk, place) : readKnown(chunk, length, place);
  }
  if (place == 0) return readSlowly(chunk, length, row);
  row = static_cast<uint16_t>(place);
  return bits;
}

// The same where states may be missing.
__attribute__((noinline)) uint32_t BackwardAutomaton::readSlowly(const uint8_t* chunk, int32_t length,
                                                                 uint16_t& row) {
  uint32_t bits = 0;
  for (int32_t left = length; left > 0;) {
    if (hasPairs_ && left % 2 == 0) {
      row = pairEntry(row, chunk + left - 2, bits);
      left -= 2;
    } else {
      row = entry(row, chunk[--left]);
      bits = 2 * bits + (row & 1);
    }
  }
  return bits;
}

}  // namespace ulk
