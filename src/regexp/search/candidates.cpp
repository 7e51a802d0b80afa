#include "regexp/search/candidates.h"

#include <algorithm>
#include <bit>
#include <new>

#include "kernels/byte_sets.h"
#include "kernels/find_substring.h"
#include "kernels/find_unit.h"
#include "regexp/analysis/follow_sets.h"
#include "regexp/search/small_set_vectors.h"
#include "regexp/search/start_scan.h"
#include "regexp/text/utf8.h"

namespace ulk {

namespace {

constexpr int32_t kFirstHope = 4;

// Notes whether a quick look was worth it: one that was outweighs some that were not. There is no hope left
// at 0.
ULK_INLINE void noteHope(int32_t& hope, bool wasWorthIt) {
  constexpr int32_t kMostHope = 16;
  constexpr int32_t kWorth = 4;
  hope = wasWorthIt ? std::min(hope + kWorth, kMostHope) : hope - 1;
}

}  // namespace

int32_t Candidates::make(ulkRegExpState& state) {
  const FrameRange room = unusedFrames(state);
  if (sizeof(Candidates) > static_cast<size_t>(room.count) * sizeof(WorkFrame)) return 0;
  Candidates& made = *new (&state.frames[room.first]) Candidates;
  if (!made.automaton_.make(state)) return 0;
  const PositionAutomaton& positions = made.automaton_.positions();
  made.mayBeAtEnd_ = positions.bytesBefore > 0 || (positions.first & positions.atEnd) != 0;
  made.bounds_.make(state);
  made.required_ = findRequiredBytes(positions);
  made.starts_ = startBytes(positions);
  made.hasRareStarts_ = describeRare(made.starts_, made.rareStarts_);
  const bool hasPair = findRarePair(positions, made.pair_);
  // Where the pair is not, nothing goes on behind it.
  if (hasPair)
    made.bounds_.limitBytes(state, std::max(made.pair_.firstAt, made.pair_.secondAt) - made.bytesBefore());
  if (!made.bounds_.areKnown()) return 0;
  made.choose(hasPair ? Way::kPair : Way::kRequired);
  return room.first;
}

// The way, or the next one that there is.
void Candidates::choose(Way way) {
  if (way == Way::kRequired && !required_.areRare) way = Way::kBlocks;
  way_ = way;
  areEarly_ = isOpen_ = false;
  hope_ = way == Way::kBlocks && required_.count > 0 ? kFirstHope : 0;
  startHope_ = hasRareStarts_ ? kFirstHope : 0;
  if (way != Way::kPair) bounds_.limitNoBytes();
  automaton_.restart(way == Way::kBlocks);
  blockBegin_ = blockEnd_ = nullptr;
}

__attribute__((noinline)) const uint8_t* Candidates::nextCharacter(const uint8_t* place, const uint8_t* from,
                                                                   const uint8_t* text) {
  const uint8_t* start;
  while ((start = characterFrom(place, from)) != place) place = nextPlace(start, text);
  return place;
}

const uint8_t* Candidates::nextInBlocks(const uint8_t* at) {
  while (at < textEnd_ && !givesUp()) {
    if (at >= blockEnd_ && !(way_ == Way::kRequired ? readToRequired(at) : readBlock(at))) return textEnd_;
    const uint8_t* const found = nextInBlock(std::max(at, blockBegin_));
    if (found < blockEnd_) {
      if (early_) noteFirst(found);
      return found;
    }
    at = blockEnd_;
  }
  return at;
}

// ---- Blocks. The bits of the last byte of a block are the last of all.

// The first candidate from `at` on in the block, its end if there is none.
const uint8_t* Candidates::nextInBlock(const uint8_t* at) const {
  auto place = static_cast<uint32_t>(kBlock - (blockEnd_ - at));
  uint32_t bits = bits_[place / kChunk] >> place % kChunk << place % kChunk;
  place -= place % kChunk;
  while (bits == 0) {
    if ((place += kChunk) >= kBlock) return blockEnd_;
    bits = bits_[place / kChunk];
  }
  return blockEnd_ - (kBlock - static_cast<int32_t>(place)) + std::countr_zero(bits);
}

// Reads [begin, blockEnd_) backwards, which is no longer than a block, and no further than to where nothing
// is alive any more, if matches are to reach the end. The block then begins there.
void Candidates::readBack(const uint8_t* begin, uint16_t row) {
  int32_t chunk = kBlock / kChunk;
  for (blockBegin_ = blockEnd_; blockBegin_ > begin;) {
    const auto length = static_cast<int32_t>(std::min<ptrdiff_t>(kChunk, blockBegin_ - begin));
    blockBegin_ -= length;
    bits_[--chunk] = automaton_.read(blockBegin_, length, row) << (kChunk - length);
    if (way_ == Way::kRequired && automaton_.isDead(row)) break;
  }
}

// The first place from `at` on where a candidate can begin, as far as its first byte tells. Asked only while
// that often is far.
__attribute__((noinline)) const uint8_t* Candidates::passToStart(const uint8_t* at) {
  constexpr int32_t kWorthBytes = 16;
  const auto length = static_cast<int32_t>(textEnd_ - at);
  const int32_t found = withSmallSet(rareStarts_, [=](auto set) {
    SetProbe<decltype(set)> probe{at, set};
    return scan<Forward>(at, static_cast<size_t>(length), probe);
  });
  const uint8_t* const start = found < 0 ? textEnd_ : at + found;
  noteHope(startHope_, start == textEnd_ || start - at >= kWorthBytes);
  return start;
}

// The next block, after what is a little ahead of it. False if no candidate can begin there.
bool Candidates::readBlock(const uint8_t* begin) {
  const bool isFirst = blockEnd_ == nullptr;
  if (startHope_ > 0) {
    begin = passToStart(begin);
    if (begin == textEnd_) return false;
    if (isFirst) early_ = begin + kEarlyBlock;
  }
  const bool isEarly = areEarly_ && isFirst;
  const int32_t size = isEarly ? kEarlyBlock : kBlock;
  const int32_t ahead = isEarly ? kEarlyAhead : kAhead;
  blockEnd_ = textEnd_ - begin > size ? begin + size : textEnd_;
  const bool seesEnd = textEnd_ - blockEnd_ <= ahead;
  uint16_t row = seesEnd ? automaton_.rowAtEnd() : automaton_.rowOfAll();
  for (const uint8_t* at = seesEnd ? textEnd_ : blockEnd_ + ahead; at > blockEnd_;) {
    const auto length = static_cast<int32_t>(std::min<ptrdiff_t>(kChunk, at - blockEnd_));
    automaton_.read(at -= length, length, row);
  }
  readBack(begin, row);
  return true;
}

// ---- The required bytes. A match that begins before the next place of them, or there, has that place in it.

ULK_INLINE int32_t Candidates::findRequired(const uint8_t* begin) const {
  const auto length = static_cast<int32_t>(textEnd_ - begin);
  return required_.count == 1 ? findUnit(begin, length, required_.bytes[0])
                              : findSubstring(begin, length, required_.bytes, 2);
}

bool Candidates::asksForRequired(const uint8_t* text) {
  const bool lacks = findRequired(text) < 0;
  noteHope(hope_, lacks);
  return lacks;
}

bool Candidates::readToRequired(const uint8_t* begin) {
  const int32_t found = findRequired(begin);
  if (found < 0) return false;
  blockEnd_ = begin + found + 1;
  const uint8_t* const least = found < kBlock ? begin : blockEnd_ - kBlock;
  readBack(least, automaton_.rowOfAll());
  if (blockBegin_ > least || least == begin) return true;
  choose(Way::kBlocks);
  return readBlock(begin);
}

// ---- The pair

// The first place from `at` on, where the text may end before the pair, the text's end if there is none.
ULK_INLINE const uint8_t* Candidates::lastPlace(const uint8_t* at) const {
  return pair_.mayEnd ? passOutside(at, textEnd_, starts_) : std::max(at, textEnd_);
}

const uint8_t* Candidates::nextPair(const uint8_t* at) const {
  const int32_t distance = std::max(pair_.firstAt, pair_.secondAt);
  const ptrdiff_t places = textEnd_ - at - distance;
  if (places <= 0) return lastPlace(at);
  const int32_t found = withSmallSet(pair_.first, [&](auto first) {
    return withSmallSet(pair_.second, [&](auto second) {
      TwoSetsProbe<decltype(first), decltype(second)> probe{at + pair_.firstAt, at + pair_.secondAt, first,
                                                            second};
      return scan<Forward>(at, static_cast<size_t>(places), probe);
    });
  });
  return found < 0 ? lastPlace(at + places) : at + found;
}

}  // namespace ulk
