#include "regexp/search/candidates.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>

#include "kernels/byte_sets.h"
#include "regexp/analysis/follow_sets.h"

namespace ulk {

namespace {

constexpr PositionSet kAllPositions = ~PositionSet{0};
constexpr int32_t kUsualRun = 32;

ULK_INLINE uint16_t loadEntry(const uint8_t* place) {
  uint16_t entry;
  std::memcpy(&entry, place, sizeof entry);
  return entry;
}

// Looks whether a run of the set is longer than `longest` in a text, and makes `longest` larger until none
// is; false if it is to be too large. A long step forward, then back to a byte that is not in the set: if
// there is one before the last such place, no longer run lies between.
bool measureRun(const ByteSet256& set, const uint8_t* text, const uint8_t* end, int32_t& longest) {
  constexpr int32_t kLongest = 1 << 20;
  const uint8_t* outside = text - 1;
  while (end - outside > longest + 1) {
    const uint8_t* at = outside + longest + 1;
    while (at > outside && set.contains(*at)) --at;
    if (at > outside) {
      outside = at;
    } else if ((longest *= 2) > kLongest) {
      return false;
    }
  }
  return true;
}

void storeEntry(uint8_t* place, uint16_t entry) { std::memcpy(place, &entry, sizeof entry); }

}  // namespace

// ---- The automaton

// Bytes that are in the same positions' sets share a column.
bool Candidates::makeColumns() {
  numColumns_ = 0;
  for (int32_t byte = 0; byte < 256; ++byte) {
    PositionSet taken = 0;
    for (int32_t p = 0; p < automaton_.count; ++p)
      taken |= PositionSet{automaton_.bytes[p].contains(static_cast<uint8_t>(byte))} << p;
    int32_t column = 0;
    while (column < numColumns_ && columns_[column] != taken) ++column;
    if (column == kMaxColumns) return false;
    if (column == numColumns_) columns_[numColumns_++] = taken;
    columnOf_[byte] = static_cast<uint8_t>(2 * column);
  }
  return true;
}

int32_t Candidates::make(ulkRegExpState& state) {
  const FrameRange room = unusedFrames(state);
  if (sizeof(Candidates) > static_cast<size_t>(room.count) * sizeof(WorkFrame)) return 0;
  Candidates& made = *new (&state.frames[room.first]) Candidates;
  if (!findRuns(state, made.runs_) || !makeAutomaton(state, made.automaton_) || !made.makeColumns()) return 0;
  std::fill_n(made.runs_.longest, Runs::kMax, kUsualRun);
  made.attemptBound_ = stepBound(state, made.runs_);
  made.usesPair_ = findRarePair(made.automaton_, made.pair_);
  made.flush();
  return room.first;
}

// Row 0 is the one that unknown entries lead to, and leads to itself.
void Candidates::flush() {
  numStates_ = 0;
  tableEnd_ = 2 * (numColumns_ + 1);
  std::memset(table_, 0, static_cast<size_t>(tableEnd_));
  std::memset(slots_, 0, sizeof slots_);
}

uint16_t Candidates::rowOf(PositionSet alive) {
  const auto hash = static_cast<uint32_t>((alive * 0x9E3779B97F4A7C15u) >> 55);
  int32_t slot = static_cast<int32_t>(hash);
  for (; slots_[slot]; slot = (slot + 1) % static_cast<int32_t>(sizeof slots_))
    if (states_[slots_[slot]] == alive) return rows_[slots_[slot]];
  return addRow(alive, slot);
}

uint16_t Candidates::addRow(PositionSet alive, int32_t slot) {
  const int32_t size = 2 * (numColumns_ + 1);
  if (numStates_ == kMaxStates || tableEnd_ + size + 1 > kTableBytes) {
    ++numFlushes_;
    flush();
    return rowOf(alive);
  }
  const int32_t state = ++numStates_;
  slots_[slot] = static_cast<uint8_t>(state);
  states_[state] = alive;
  const bool isCandidate = alive & automaton_.first;
  const int32_t begin = tableEnd_ + (isCandidate != (tableEnd_ % 2 != 0) ? 1 : 0);
  std::memset(table_ + begin, 0, static_cast<size_t>(size));
  storeEntry(table_ + begin, static_cast<uint16_t>(state));
  tableEnd_ = begin + size;
  return rows_[state] = static_cast<uint16_t>(begin + 2);
}

// The positions alive at a byte of the column that stands before a place with those alive.
PositionSet Candidates::before(PositionSet alive, int32_t column) const {
  PositionSet found = columns_[column] & automaton_.accepting;
  for (PositionSet left = columns_[column] & ~found; left; left &= left - 1) {
    const int32_t p = std::countr_zero(left);
    if (automaton_.follow[p] & alive) found |= PositionSet{1} << p;
  }
  return found;
}

uint16_t Candidates::entry(uint16_t row, uint8_t byte) {
  uint8_t* const place = table_ + row + columnOf_[byte];
  if (const uint16_t known = loadEntry(place)) return known;
  const int32_t flushes = numFlushes_;
  const uint16_t next = rowOf(before(states_[loadEntry(table_ + row - 2)], columnOf_[byte] / 2));
  if (flushes == numFlushes_) storeEntry(place, next);
  return next;
}

// ---- The text

// Reads the bytes of a chunk from the last to the first: a bit for each that is a candidate. `row` is that
// behind the chunk, then that of its first byte.
ULK_INLINE uint32_t Candidates::readChunk(const uint8_t* chunk, int32_t length, uint16_t& row) {
  if (length < kChunk) return readNewChunk(chunk, length, row);
  uint32_t bits = 0;
  uint32_t place = row;
  for (int32_t i = kChunk - 1; i >= 0; --i) {
    place = loadEntry(table_ + place + columnOf_[chunk[i]]);
    bits = bits << 1 | (place & 1);
  }
  if (place == 0) return readNewChunk(chunk, length, row);
  row = static_cast<uint16_t>(place);
  return bits;
}

// The same where states may be missing.
__attribute__((noinline)) uint32_t Candidates::readNewChunk(const uint8_t* chunk, int32_t length,
                                                            uint16_t& row) {
  uint32_t bits = 0;
  for (int32_t i = length - 1; i >= 0; --i) {
    row = entry(row, chunk[i]);
    bits = bits << 1 | (row & 1);
  }
  return bits;
}

void Candidates::readBlock(const uint8_t* begin) {
  blockBegin_ = begin;
  blockEnd_ = begin + std::min<ptrdiff_t>(kBlock, textEnd_ - begin);
  const bool reachesEnd = textEnd_ - blockEnd_ <= kAhead;
  const uint8_t* const readEnd = reachesEnd ? textEnd_ : blockEnd_ + kAhead;
  uint16_t row = rowOf(reachesEnd ? automaton_.atEnd : kAllPositions);
  auto chunk = static_cast<int32_t>(readEnd - begin - 1) / kChunk;
  for (; chunk >= 0; --chunk) {
    const uint8_t* const at = begin + chunk * kChunk;
    const uint32_t bits = readChunk(at, static_cast<int32_t>(std::min<ptrdiff_t>(kChunk, readEnd - at)), row);
    if (at < blockEnd_) bits_[chunk] = bits;
  }
}

// The runs of earlier texts are taken to be those of this one as long as that is enough.
bool Candidates::boundAttempts(const ulkRegExpState& state, const uint8_t* text, const uint8_t* end) {
  bool isLonger = false;
  for (int32_t i = 0; i < runs_.count; ++i) {
    const int32_t before = runs_.longest[i];
    if (!measureRun(runs_.sets[i], text, end, runs_.longest[i])) return false;
    isLonger = isLonger || runs_.longest[i] != before;
  }
  if (isLonger) attemptBound_ = stepBound(state, runs_);
  return true;
}

bool Candidates::begin(const ulkRegExpState& state, const uint8_t* text, const uint8_t* textEnd,
                       int32_t steps) {
  textEnd_ = textEnd;
  blockBegin_ = blockEnd_ = nullptr;
  numFlushes_ = 0;
  const int64_t most = steps / (2 * (int64_t{textEnd - text} + 1));  // behind an empty match there is another
  if (attemptBound_ <= most && boundAttempts(state, text, textEnd) && attemptBound_ <= most) return true;
  std::fill_n(runs_.longest, Runs::kMax, kUsualRun);
  attemptBound_ = stepBound(state, runs_);
  return false;
}

const uint8_t* Candidates::nextInBlocks(const uint8_t* at) {
  while (at < textEnd_ && !givesUp()) {
    if (at < blockBegin_ || at >= blockEnd_) readBlock(at);
    auto place = static_cast<uint32_t>(at - blockBegin_);
    const auto numBits = static_cast<uint32_t>(blockEnd_ - blockBegin_);
    uint32_t bits = bits_[place / kChunk] >> place % kChunk << place % kChunk;
    for (place -= place % kChunk; !bits && place + kChunk < numBits;) {
      place += kChunk;
      bits = bits_[place / kChunk];
    }
    if (bits && place + static_cast<uint32_t>(std::countr_zero(bits)) < numBits)
      return blockBegin_ + place + std::countr_zero(bits);
    at = blockEnd_;
  }
  return at;
}

// ---- The pair

namespace {

// Calls `run` with the set in the form for vectors.
template <class Run>
ULK_INLINE auto withSet(const SmallSet& set, Run run) {
  if (set.form == SmallSetForm::kRanges) return run(TwoRanges(set.bytes));
  const bool isOne = std::count(set.bytes, set.bytes + 4, set.bytes[0]) == 4;
  return isOne ? run(OneByte(set.bytes)) : run(FourBytes(set.bytes));
}

}  // namespace

const uint8_t* Candidates::nextPair(const uint8_t* at) const {
  const ptrdiff_t places = textEnd_ - at - std::max(pair_.firstAt, pair_.secondAt);
  if (places <= 0) return std::max(at, textEnd_);
  const int32_t found = withSet(pair_.first, [&](auto first) {
    return withSet(pair_.second, [&](auto second) {
      TwoSetsProbe<decltype(first), decltype(second)> probe{at + pair_.firstAt, at + pair_.secondAt, first,
                                                            second};
      return scan<Forward>(at, static_cast<size_t>(places), probe);
    });
  });
  return found < 0 ? textEnd_ : at + found;
}

}  // namespace ulk
