// Replacement. In: a text, an expression and a template. Out: a new text, and how far it got in both texts.
//
// The text is copied in pieces, each whole or not at all. A group that took no part has the length -1 and is
// counted like every other length, so positions are sums that may fall below the start of a match's
// expansion, and for the first match below the destination.
#include <algorithm>
#include <cstdint>

#include "frame/export.h"
#include "frame/primitives.h"
#include "regexp/api/replace_template.h"
#include "regexp/program/state.h"
#include "regexp/search/search.h"
#include "regexp/text/lengths.h"

using namespace ulk;

namespace {

// Bytes of the source or the template; none where the length is below 1, wherever they were to begin.
struct Piece {
  const uint8_t* text;
  int64_t length;
};

// How far a replacement came: what it has used of the source, and written of the destination.
struct Progress {
  int64_t source;
  int64_t destination;
};

class Replacement {
 public:
  Replacement(const uint8_t* source, int32_t length, uint8_t* destination, int32_t capacity,
              const ulkRegExpReplaceState& pieces)
      : source_(source), length_(length), destination_(destination), capacity_(capacity), template_(pieces) {}

  Progress run(const ulkRegExpFind* records, int32_t numRecords, const ulkRegExpState& expression);

 private:
  Progress copy();
  Progress replaceFirst(const ulkRegExpFind* records, int32_t numRecords);
  Progress replaceAll(const ulkRegExpFind* records, int32_t numRecords, int32_t recordsPerMatch);

  static constexpr int64_t kDoesNotFit = -1;

  int64_t expand(const ulkRegExpFind* records, int32_t numRecords, int64_t room);
  Piece pieceOf(const ReplaceItem& item, const ulkRegExpFind* records) const;
  Piece sourceFrom(int64_t begin, int64_t end) const;
  void write(Piece piece, int64_t position);

  const uint8_t* const source_;
  const int64_t length_;
  uint8_t* const destination_;
  const int64_t capacity_;
  const ulkRegExpReplaceState& template_;
  int64_t written_ = 0;
};

// A record may reach beyond the source: its text does not.
Piece Replacement::pieceOf(const ReplaceItem& item, const ulkRegExpFind* records) const {
  if (item.kind == RX_STRING) return {reinterpret_cast<const uint8_t*>(item.text), item.value};
  const ulkRegExpFind& record = records[item.value];
  if (record.lenFound < 1) return {record.pFound, record.lenFound};
  const int64_t reach = source_ + length_ - record.pFound;
  return {record.pFound, std::clamp<int64_t>(reach, 0, record.lenFound)};
}

// The source between two places. A match may reach beyond it, and so may a place that is made from its
// length.
Piece Replacement::sourceFrom(int64_t begin, int64_t end) const {
  return {begin < end ? source_ + begin : nullptr, end - begin};
}

// Bytes that would come before the destination are dropped.
void Replacement::write(Piece piece, int64_t position) {
  const int64_t dropped = std::max<int64_t>(-position, 0);
  if (piece.length <= dropped) return;
  ownCopy_8u(piece.text + dropped, destination_ + (position + dropped),
             static_cast<int32_t>(piece.length - dropped));
}

// Writes the template behind what is written, and returns how long it has become: kDoesNotFit when a piece
// needs more than the room, or when it came out below 0.
int64_t Replacement::expand(const ulkRegExpFind* records, int32_t numRecords, int64_t room) {
  int64_t expanded = 0;
  for (int32_t i = 0; i < template_.numItems; ++i) {
    const ReplaceItem& item = template_.pItems[i];
    const bool hasGroup = static_cast<uint32_t>(item.value) < static_cast<uint32_t>(numRecords);
    if (item.kind == RX_BACKREF && !hasGroup) continue;
    const Piece piece = pieceOf(item, records);
    if (room <= expanded + piece.length) return kDoesNotFit;
    write(piece, written_ + expanded);
    expanded += piece.length;
  }
  return expanded < 0 ? kDoesNotFit : expanded;
}

// The plain copy may fill the destination.
Progress Replacement::copy() {
  const int64_t count = std::min(length_, capacity_);
  write({source_, count}, 0);
  return {count, count};
}

Progress Replacement::replaceFirst(const ulkRegExpFind* records, int32_t numRecords) {
  const int64_t before = records[0].pFound - source_;
  const int64_t matchEnd = before + records[0].lenFound;
  const Piece tail = sourceFrom(matchEnd, length_);
  if (before > 0 && before >= capacity_) return {0, 0};
  write({source_, before}, 0);
  written_ = before;
  if (template_.numItems == 0) {
    // Neither tested against the capacity nor counted: callers rely on it.
    write(tail, before);
    return {length_, before};
  }
  // The template has the whole capacity, whatever came before it.
  const int64_t expanded = expand(records, numRecords, capacity_);
  if (expanded == kDoesNotFit) return {before, before};
  written_ += expanded;
  if (tail.length >= capacity_ - written_) return {matchEnd, written_};
  write(tail, written_);
  return {length_, written_ + tail.length};
}

Progress Replacement::replaceAll(const ulkRegExpFind* records, int32_t numRecords, int32_t recordsPerMatch) {
  int64_t used = 0;  // of the source
  for (int32_t i = 0; i < numRecords; i += recordsPerMatch) {
    const int64_t matchStart = records[i].pFound - source_;
    // After an empty match, one may be found inside the character that the last one has taken: the gap is
    // negative.
    const Piece gap = sourceFrom(used, matchStart);
    if (gap.length != 0) {
      if (gap.length >= capacity_ - written_) return {used, written_};
      write(gap, written_);
      written_ += gap.length;
    }
    const int32_t groups = std::min(recordsPerMatch, numRecords - i);
    const int64_t expanded = expand(records + i, groups, capacity_ - written_);
    if (expanded == kDoesNotFit) return {matchStart, written_};
    written_ += expanded;
    used = matchStart + records[i].lenFound;
  }
  const Piece tail = sourceFrom(used, length_);
  if (tail.length >= capacity_ - written_) return {used, written_};
  write(tail, written_);
  return {tail.length, written_ + tail.length};
}

Progress Replacement::run(const ulkRegExpFind* records, int32_t numRecords,
                          const ulkRegExpState& expression) {
  if (numRecords < 1) return copy();
  if (!(expression.options & RX_OPT_GLOBAL)) return replaceFirst(records, numRecords);
  // What does not hold an expression must not make this endless.
  return replaceAll(records, numRecords, std::max(expression.numCaptures, 1));
}

}  // namespace

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpReplace_8u(const uint8_t* pSrc, int32_t* pSrcLen, uint8_t* pDst,
                                                   int32_t* pDstLen, ulkRegExpFind* pFind, int32_t* pNumFind,
                                                   ulkRegExpState* pRegExpState,
                                                   const ulkRegExpReplaceState* pReplaceState) {
  if (!pSrc || !pSrcLen || !pRegExpState || !pDst || !pReplaceState || !pDstLen || !pNumFind || !pFind)
    return ulkErrNullPtr;
  if (*pSrcLen < 1 || *pDstLen < 1) return ulkErrSize;
  const int32_t numRecords = rxFindForReplace(pSrc, *pSrcLen, pRegExpState, pFind, pNumFind);
  const Progress progress =
      Replacement(pSrc, *pSrcLen, pDst, *pDstLen, *pReplaceState).run(pFind, numRecords, *pRegExpState);
  *pSrcLen = saturated(progress.source);
  *pDstLen = saturated(progress.destination);
  return ulkOk;
}
