// The search driver: chooses where the matcher starts, and turns its results into find records.
#include "regexp/search/search.h"

#include <algorithm>

#include "kernels/find_substring.h"
#include "kernels/find_unit.h"
#include "regexp/search/attempt.h"
#include "regexp/search/caseless_search.h"
#include "regexp/search/starts.h"

namespace ulk {

int32_t cutBehindLast(const RxNode& literal, const uint8_t* text, int32_t length) {
  const auto byte = static_cast<uint8_t>(byteOf(literal));
  const bool isByte = codeOf(literal) == RX_CHAR;
  const uint8_t* const bytes = isByte ? &byte : stringOf(literal);
  const int32_t literalLength = isByte ? 1 : stringLength(literal);
  int32_t index = -1;
  if (static_cast<uint32_t>(literalOptions(literal)) & RX_OPT_CASELESS) {
    index = findRevCaseless(text, length, bytes, literalLength);
  } else if (isByte) {
    index = findUnitRev(text, length, byte);
  } else if (literalLength <= length) {
    index = findSubstringRev(text, length, bytes, literalLength);
  }
  return index < 0 ? 0 : index + literalLength;
}

namespace {

class Search {
 public:
  Search(ulkRegExpState& state, const uint8_t* text, const uint8_t* end)
      : state_(state), starts_(m_, state), anchor_(startFilterOf(state).anchor), end_(end) {
    prepareMatcher(m_, state, choices_);
    m_.textStart = text;
  }

  ulkStatus find(ulkRegExpFind* records, int32_t* numRecords, bool wholeMatches);

  // The records that were written, also when the budget ran out.
  int32_t numWritten() const { return numWritten_; }

 private:
  ulkStatus findOnce(ulkRegExpFind* records, int32_t* numRecords, bool wholeMatches, bool payExactly);
  ulkStatus findOne(ulkRegExpFind* records, int32_t* numRecords);
  ulkStatus findAll(ulkRegExpFind* records, int32_t* numRecords, bool wholeMatches);
  ULK_INLINE bool findFrom(const uint8_t* start, const uint8_t* end);
  bool outOfBudget() const { return m_.budget.isExhausted(); }
  void writeRecords(ulkRegExpFind* records, int32_t first, int32_t last);

  ulkRegExpState& state_;
  MatchContext m_;
  Starts starts_;
  const Anchor anchor_;
  const uint8_t* const end_;
  const uint8_t* reached_;  // where attempts have been made or left out
  int32_t numWritten_ = 0;
  alignas(RunChoice) std::byte choices_[kSearchChoices];
};

// Finds the first match that begins at `start` or later in a text that ends at `end`.
bool Search::findFrom(const uint8_t* start, const uint8_t* end) {
  m_.textEnd = end;
  const uint8_t* at = start;
  bool found = false;
  for (; at <= end; at = nextStart(m_, state_, at)) {
    if (anchor_ == Anchor::kNone) at = starts_.next(at);
    if (anchor_ == Anchor::kLineStart) at = starts_.nextLine(at);
    const int32_t budget = m_.budget.left();
    if (at <= end && budget >= 0 && matchAt(m_, state_, at)) {
      starts_.noteMatch();
      found = true;
      break;
    }
    starts_.noteFailure(at, static_cast<uint32_t>(budget) - static_cast<uint32_t>(m_.budget.left()));
    // Without budget no later start can match.
    if (anchor_ == Anchor::kTextStart || outOfBudget()) break;
  }
  reached_ = at;
  return found;
}

// Copies slots [first, last) behind the records that are written already.
void Search::writeRecords(ulkRegExpFind* records, int32_t first, int32_t last) {
  copyCaptures(state_, first, last, records + numWritten_);
  numWritten_ += last - first;
}

ulkStatus Search::findOne(ulkRegExpFind* records, int32_t* numRecords) {
  *numRecords = std::min(*numRecords, state_.numCaptures);
  if (findFrom(m_.textStart, end_)) {
    writeRecords(records, 0, *numRecords);
    return ulkOk;
  }
  if (outOfBudget()) return ulkErrMatchLimit;
  *numRecords = 0;
  return ulkOk;
}

ulkStatus Search::findAll(ulkRegExpFind* records, int32_t* numRecords, bool wholeMatches) {
  // An expression with groups reports its groups only, unless the whole matches are asked for as well.
  const int32_t skip = !wholeMatches && state_.numCaptures > 1 ? 1 : 0;
  // The last index at which a match's records fit.
  const int32_t lastFit = *numRecords - state_.numCaptures + skip;
  const uint8_t* start = m_.textStart;
  while (numWritten_ <= lastFit && start <= end_) {
    if (!findFrom(start, end_)) break;
    writeRecords(records, skip, state_.numCaptures);
    if (outOfBudget()) return ulkErrMatchLimit;

    const CaptureSlot match = state_.captures[0];
    if (!staysInText(match.start, match.length, end_)) break;
    start = match.start + std::max(match.length, 1);
    if (match.length != 0 || numWritten_ >= lastFit || match.start >= end_) continue;

    // After an empty match, the next byte alone is searched for a match that is not empty.
    m_.nonEmpty = true;
    if (findFrom(match.start, match.start + 1)) writeRecords(records, skip, state_.numCaptures);
    if (outOfBudget()) return ulkErrMatchLimit;
    m_.nonEmpty = false;
  }
  *numRecords = numWritten_;
  return ulkOk;
}

ulkStatus Search::findOnce(ulkRegExpFind* records, int32_t* numRecords, bool wholeMatches, bool payExactly) {
  m_.options = state_.options & kMatcherOptions;
  m_.nonEmpty = false;
  m_.budget.start(state_.matchLimit, payExactly);
  m_.textEnd = end_;
  numWritten_ = 0;
  reached_ = m_.textStart;
  starts_.begin();
  const bool global = state_.options & RX_OPT_GLOBAL;
  const ulkStatus status = global ? findAll(records, numRecords, wholeMatches) : findOne(records, numRecords);
  starts_.end(reached_);
  return status;
}

ulkStatus Search::find(ulkRegExpFind* records, int32_t* numRecords, bool wholeMatches) {
  const int32_t capacity = *numRecords;
  const ulkStatus status = findOnce(records, numRecords, wholeMatches, false);
  if (!m_.budget.mayHaveSufficed()) return status;
  *numRecords = capacity;
  return findOnce(records, numRecords, wholeMatches, true);
}

// Whether a search of an empty text is known to find nothing, within the limit.
bool failsInEmptyText(const ulkRegExpState& state) {
  const StartFilter& filter = startFilterOf(state);
  return filter.failsAtEnd && state.matchLimit >= std::max(filter.steps, filter.placeSteps);
}

}  // namespace

ulkStatus rxFind(const uint8_t* pSrc, int32_t srcLen, ulkRegExpState* pRegExpState, ulkRegExpFind* pFind,
                 int32_t* pNumFind) {
  if (!pSrc || !pRegExpState || !pFind) return ulkErrNullPtr;
  if (srcLen < 0) return ulkErrLength;
  if (*pNumFind < 1) return ulkErrSize;
  if (pRegExpState->magic != kStateMagic) return ulkErrInvalidState;
  const uint8_t* const end = pSrc + cutAtTrailingLiteral(*pRegExpState, pSrc, srcLen);
  if (end == pSrc ? failsInEmptyText(*pRegExpState) : Prefilter::rejects(*pRegExpState, pSrc, end)) {
    *pNumFind = 0;
    return ulkOk;
  }
  return Search(*pRegExpState, pSrc, end).find(pFind, pNumFind, false);
}

int32_t rxFindForReplace(const uint8_t* pSrc, int32_t srcLen, ulkRegExpState* pRegExpState,
                         ulkRegExpFind* pFind, int32_t* pNumFind) {
  if (*pNumFind < 1 || pRegExpState->magic != kStateMagic) return *pNumFind;
  Search search(*pRegExpState, pSrc, pSrc + cutAtTrailingLiteral(*pRegExpState, pSrc, srcLen));
  search.find(pFind, pNumFind, true);
  return search.numWritten();
}

}  // namespace ulk
