// The search driver: chooses where the matcher starts, and turns its results into find records.
#include "regexp/search/search.h"

#include <algorithm>

#include "kernels/find_substring.h"
#include "kernels/find_unit.h"
#include "regexp/analysis/step_bound.h"
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
      : starts_(m_), anchor_(startFilterOf(state).anchor), end_(end) {
    prepareMatcher(m_, state, choices_);
    m_.textStart = text;
  }

  ULK_INLINE ulkStatus find(ulkRegExpFind* records, int32_t* numRecords, bool wholeMatches);

  // The records that were written, also when the budget ran out.
  int32_t numWritten() const { return numWritten_; }

 private:
  ULK_INLINE ulkStatus findOnce(ulkRegExpFind* records, int32_t* numRecords, bool wholeMatches);
  ULK_INLINE ulkStatus findOne(ulkRegExpFind* records, int32_t* numRecords);
  ulkStatus findAll(ulkRegExpFind* records, int32_t* numRecords, bool wholeMatches);
  ULK_INLINE bool findFrom(const uint8_t* start, const uint8_t* end);
  ULK_INLINE const uint8_t* placeFrom(const uint8_t* at);
  bool outOfBudget() const { return m_.budget.isExhausted(); }
  void writeRecords(ulkRegExpFind* records, int32_t first, int32_t last);

  MatchContext m_;
  Starts starts_;
  const Anchor anchor_;
  const uint8_t* const end_;
  const uint8_t* reached_;  // where attempts have been made or left out
  int32_t numWritten_;
  alignas(RunChoice) std::byte choices_[kSearchChoices];
};

// The first place from `at` on that needs an attempt, behind the text's end if there is none.
const uint8_t* Search::placeFrom(const uint8_t* at) {
  if (at > m_.textEnd) return at;
  return anchor_ == Anchor::kNone ? starts_.next(at) : starts_.nextAnchored(at);
}

// Finds the first match that begins at `start` or later in a text that ends at `end`.
bool Search::findFrom(const uint8_t* start, const uint8_t* end) {
  m_.textEnd = end;
  // Without budget no later start can match.
  const uint8_t* at = placeFrom(start);
  for (; at <= end && !outOfBudget(); at = placeFrom(nextStart(m_, anchor_, at))) {
    const int32_t budget = m_.budget.left();
    if (matchAt(m_, at)) {
      starts_.noteMatch();
      reached_ = at;
      return true;
    }
    if (outOfBudget()) break;
    starts_.noteFailure(static_cast<uint32_t>(budget) - static_cast<uint32_t>(m_.budget.left()));
  }
  starts_.noteEnd();
  reached_ = at;
  return false;
}

// Copies slots [first, last) behind the records that are written already.
void Search::writeRecords(ulkRegExpFind* records, int32_t first, int32_t last) {
  copyCaptures(*m_.state, first, last, records + numWritten_);
  numWritten_ += last - first;
}

ulkStatus Search::findOne(ulkRegExpFind* records, int32_t* numRecords) {
  *numRecords = std::min(*numRecords, m_.state->numCaptures);
  if (findFrom(m_.textStart, end_)) {
    writeRecords(records, 0, *numRecords);
    return ulkOk;
  }
  if (outOfBudget()) return ulkErrMatchLimit;
  *numRecords = 0;
  return ulkOk;
}

__attribute__((noinline)) ulkStatus Search::findAll(ulkRegExpFind* records, int32_t* numRecords,
                                                    bool wholeMatches) {
  // An expression with groups reports its groups only, unless the whole matches are asked for as well.
  const int32_t skip = !wholeMatches && m_.state->numCaptures > 1 ? 1 : 0;
  // The last index at which a match's records fit.
  const int32_t lastFit = *numRecords - m_.state->numCaptures + skip;
  const uint8_t* start = m_.textStart;
  while (numWritten_ <= lastFit && start <= end_) {
    if (!findFrom(start, end_)) break;
    writeRecords(records, skip, m_.state->numCaptures);
    if (outOfBudget()) return ulkErrMatchLimit;

    const CaptureSlot match = m_.state->captures[0];
    if (!staysInText(match.start, match.length, end_)) break;
    start = match.start + std::max(match.length, 1);
    if (match.length != 0 || numWritten_ >= lastFit || match.start >= end_) continue;

    // After an empty match, the next byte alone is searched for a match that is not empty.
    m_.nonEmpty = true;
    if (findFrom(match.start, match.start + 1)) writeRecords(records, skip, m_.state->numCaptures);
    if (outOfBudget()) return ulkErrMatchLimit;
    m_.nonEmpty = false;
  }
  *numRecords = numWritten_;
  return ulkOk;
}

ulkStatus Search::findOnce(ulkRegExpFind* records, int32_t* numRecords, bool wholeMatches) {
  m_.options = m_.state->options & kMatcherOptions;
  m_.nonEmpty = false;
  m_.textEnd = end_;
  numWritten_ = 0;
  reached_ = m_.textStart;
  starts_.begin();
  const bool global = m_.state->options & RX_OPT_GLOBAL;
  const ulkStatus status = global ? findAll(records, numRecords, wholeMatches) : findOne(records, numRecords);
  starts_.end(reached_);
  return status;
}

ulkStatus Search::find(ulkRegExpFind* records, int32_t* numRecords, bool wholeMatches) {
  const int32_t capacity = *numRecords;
  for (bool exactly = false;; exactly = true) {
    m_.budget.start(m_.state->matchLimit, exactly);
    const ulkStatus status = findOnce(records, numRecords, wholeMatches);
    if (!m_.budget.mayHaveSufficed()) return status;
    *numRecords = capacity;
  }
}

}  // namespace

ulkStatus searchText(ulkRegExpState& state, const uint8_t* text, const uint8_t* end, ulkRegExpFind* records,
                     int32_t* numRecords) {
  return Search(state, text, end).find(records, numRecords, false);
}

int32_t stepsInEmptyText(ulkRegExpState& state) {
  int32_t& steps = state.frames[kPrefilterFrame].prefilter.stepsInEmpty;
  if (steps == 0) steps = static_cast<int32_t>(shortAttemptBound(state, 0));
  return steps;
}

int32_t rxFindForReplace(const uint8_t* pSrc, int32_t srcLen, ulkRegExpState* pRegExpState,
                         ulkRegExpFind* pFind, int32_t* pNumFind) {
  if (*pNumFind < 1 || pRegExpState->magic != kStateMagic) return *pNumFind;
  Search search(*pRegExpState, pSrc, pSrc + cutAtTrailingLiteral(*pRegExpState, pSrc, srcLen));
  search.find(pFind, pNumFind, true);
  return search.numWritten();
}

}  // namespace ulk
