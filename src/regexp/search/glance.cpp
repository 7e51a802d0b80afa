#include "regexp/search/glance.h"

#include <algorithm>

#include "kernels/byte_sets.h"
#include "kernels/find_unit.h"
#include "regexp/search/attempt.h"
#include "regexp/search/prefilter.h"
#include "regexp/search/start_scan.h"
#include "regexp/text/utf8.h"

namespace ulk {

namespace {

constexpr ptrdiff_t kShort = 256;  // bytes that are looked at many at a time,
constexpr ptrdiff_t kNear = 16;    // and one by one

// Attempts of a search for the first match. One that runs out of steps decides nothing, also if it then
// matches, as lazy code points do: more may have been paid before than is due.
class Attempts {
 public:
  Attempts(ulkRegExpState& state, const uint8_t* text, const uint8_t* end, int32_t steps) {
    prepareMatcher(m_, state, choices_);
    m_.textStart = text;
    m_.textEnd = end;
    m_.options = state.options & kMatcherOptions;
    m_.budget.start(steps, true);
    m_.budget.payBound(0);  // what has been passed over
  }

  bool matchAt(const uint8_t* at, ulkRegExpFind* records, int32_t* numRecords) {
    if (!ulk::matchAt(m_, at) || m_.budget.isExhausted()) return false;
    *numRecords = std::min(*numRecords, m_.state->numCaptures);
    copyCaptures(*m_.state, 0, *numRecords, records);
    return true;
  }
  int32_t stepsLeft() const { return m_.budget.left(); }
  const uint8_t* placeBehind(const uint8_t* at) const { return nextStart(m_, Anchor::kNone, at); }

 private:
  MatchContext m_;
  alignas(RunChoice) std::byte choices_[kSearchChoices];
};

// To be told whether a glance has decided. It takes more of those to outweigh one in vain.
ULK_INLINE bool noteGlance(PrefilterNote& note, bool decided) {
  constexpr int32_t kMostHope = 8;
  constexpr int32_t kLoss = 4;
  constexpr int32_t kPause = 16;  // searches without a glance
  if (!decided) {
    note.hope = static_cast<int8_t>(note.hope > kLoss ? note.hope - kLoss : -kPause);
  } else if (note.hope < kMostHope) {
    ++note.hope;
  }
  return decided;
}

ULK_INLINE bool writeNone(int32_t* numRecords) {
  *numRecords = 0;
  return true;
}

// Whether a character begins at the place, if one does at the text's start.
ULK_INLINE bool beginsCharacter(const ulkRegExpState& state, const uint8_t* text, const uint8_t* at) {
  return state.format != kFormatUtf8 || characterFrom(at, text) == at;
}

// ---- The first place that the start filter lets pass

// Looks for a byte of a small set in a short text,
const uint8_t* nearestOfSmallSet(const ulkRegExpState& state, const uint8_t* text, const uint8_t* end) {
  const auto length = static_cast<int32_t>(std::min(end - text, kShort));
  const int32_t found = findStart(state, text, length, end);
  return found < length || length == end - text ? text + found : nullptr;
}

// for one of another set, or at a word boundary, where it is near. `end` if there is none; null if that is
// not known.
const uint8_t* nearestStart(const ulkRegExpState& state, const uint8_t* text, const uint8_t* end) {
  const StartKind kind = startFilterOf(state).kind;
  const ByteSet256& set = startSetOf(state);
  const uint8_t* const near = end - text > kNear ? text + kNear : end;
  const uint8_t* at = text;
  if (kind == StartKind::kBoundary) {
    const auto isWord = [](const uint8_t* place) { return inByteSet(*place, kWord); };
    while (at < near && !(set.contains(*at) && isWord(at) != (at != text && isWord(at - 1)))) ++at;
  } else if (kind == StartKind::kSet) {
    at = passOutside(at, near, set);
  } else {
    return nearestOfSmallSet(state, text, end);
  }
  return at < near || near == end ? at : nullptr;
}

// The first place that needs an attempt, `end` if there is none; null if that is not known.
ULK_INLINE const uint8_t* firstStart(const ulkRegExpState& state, const uint8_t* text, const uint8_t* end) {
  const StartFilter& filter = startFilterOf(state);
  if (filter.kind == StartKind::kLineStart || filter.kind == StartKind::kTextStart)
    return filter.placeSteps == 0 || startSetOf(state).contains(*text) ? text : nullptr;
  if (filter.kind == StartKind::kAny || !filtersAllAttempts(state)) return text;
  const uint8_t* const at = nearestStart(state, text, end);
  if (!at || (at == end ? !filter.failsAtEnd : !beginsCharacter(state, text, at))) return nullptr;
  return at;
}

// Whether the attempts at all places before `at` cost just the filter's steps for each byte.
bool isPaidExactly(const StartFilter& filter, const uint8_t* text, const uint8_t* at) {
  if (at != text && (filter.boundsSteps || filter.kind == StartKind::kBoundary)) return false;
  return std::all_of(text, at, [](uint8_t byte) { return byte < 0x80; });
}

ULK_INLINE bool findsAtFirstStart(ulkRegExpState& state, const uint8_t* text, const uint8_t* end,
                                  ulkRegExpFind* records, int32_t* numRecords) {
  const StartFilter& filter = startFilterOf(state);
  PrefilterNote& note = state.frames[kPrefilterFrame].prefilter;
  const bool counts = filter.candidates && note.use != PrefilterUse::kUseless;
  if (counts && note.workLeft <= 0) return false;
  const uint8_t* const at = firstStart(state, text, end);
  if (!at) return false;
  const int64_t steps = (at - text + (at == end)) * int64_t{std::max(filter.steps, filter.placeSteps)};
  if (steps > state.matchLimit) return false;
  if (at == end) {
    if (counts)
      note.workLeft -= 1 + (filter.kind == StartKind::kSet ? Prefilter::workOfBytes(end - text)
                                                           : Prefilter::workOfScan(end - text));
    return writeNone(numRecords);
  }
  const int32_t left = state.matchLimit - static_cast<int32_t>(steps);
  if ((state.options & RX_OPT_GLOBAL) || (left < StepBudget::kPlenty && !isPaidExactly(filter, text, at)))
    return false;
  return Attempts(state, text, end, left).matchAt(at, records, numRecords);
}

// ---- An anchored expression

// Whether a line or text that begins so has no byte that a match can begin with.
bool lacksStart(const ulkRegExpState& state, const uint8_t* text) {
  const StartFilter& filter = startFilterOf(state);
  return filter.placeSteps > 0 && filtersAllAttempts(state) && !startSetOf(state).contains(*text);
}

// Whether no attempt is made but that at the start: the text is one line, and short.
bool isOneLine(Anchor anchor, const uint8_t* text, const uint8_t* end) {
  if (anchor == Anchor::kTextStart) return true;
  return end - text <= kShort && findUnit(text, static_cast<int32_t>(end - text), uint8_t{'\n'}) < 0;
}

bool findsAtTextStart(ulkRegExpState& state, const uint8_t* text, const uint8_t* end, ulkRegExpFind* records,
                      int32_t* numRecords) {
  const StartFilter& filter = startFilterOf(state);
  int32_t left = state.matchLimit - filter.placeSteps;
  if (!lacksStart(state, text)) {
    if (state.options & RX_OPT_GLOBAL) return false;
    Attempts attempts(state, text, end, state.matchLimit);
    if (attempts.matchAt(text, records, numRecords)) return true;
    left = attempts.stepsLeft();
  }
  return left >= 0 && isOneLine(filter.anchor, text, end) && writeNone(numRecords);
}

// ---- Candidates

// Whether no attempt is needed from a place on that is the text's end or behind it.
ULK_INLINE bool isOver(const ulkRegExpState& state, const Candidates& candidates, const uint8_t* at,
                       const uint8_t* end) {
  return at > end || (at == end && !(candidates.mayBeAtEnd() && !startFilterOf(state).failsAtEnd));
}

// Makes attempts at the candidates from the one at `at` on, also at the text's end where one might succeed.
__attribute__((noinline)) bool triesCandidates(ulkRegExpState& state, const uint8_t* text, const uint8_t* end,
                                               const uint8_t* at, int32_t steps, ulkRegExpFind* records,
                                               int32_t* numRecords) {
  PrefilterNote& note = state.frames[kPrefilterFrame].prefilter;
  Candidates& candidates = *Candidates::in(state, note.frame);
  Attempts attempts(state, text, end, steps);
  for (;;) {
    if (!beginsCharacter(state, text, at)) at = candidates.nextCharacter(at, text, text);
    if (candidates.givesUp()) return false;
    if (isOver(state, candidates, at, end)) break;
    if (attempts.matchAt(at, records, numRecords)) {
      Prefilter::addBytes(note, end - text);
      return true;
    }
    const int32_t left = attempts.stepsLeft();
    note.workLeft -= Prefilter::workOfAttempt(static_cast<uint32_t>(steps) - static_cast<uint32_t>(left));
    if (left < 0 || note.workLeft <= 0) return false;
    steps = left;
    at = attempts.placeBehind(at);
    if (at > end) break;
    at = candidates.nextPlace(at, text);
  }
  Prefilter::addBytes(note, end - text);
  return writeNone(numRecords);
}

ULK_INLINE bool findsAtCandidates(ulkRegExpState& state, const uint8_t* text, const uint8_t* end,
                                  ulkRegExpFind* records, int32_t* numRecords) {
  PrefilterNote& note = state.frames[kPrefilterFrame].prefilter;
  if (end - text > kShort) return false;
  Candidates& candidates = *Candidates::in(state, note.frame);
  StepBudget budget;
  budget.start(state.matchLimit, false);
  if (!candidates.begin(state, text, end, budget)) return false;
  const uint8_t* const at = candidates.lacksRequired(text) ? end : candidates.nextPlace(text, text);
  if (isOver(state, candidates, at, end) && !candidates.givesUp()) {
    Prefilter::addBytes(note, end - text);
    return writeNone(numRecords);
  }
  if (!candidates.givesUp() && !(state.options & RX_OPT_GLOBAL) &&
      triesCandidates(state, text, end, at, budget.left(), records, numRecords))
    return true;
  candidates.keepOpen();
  return false;
}

}  // namespace

bool glanceAtFirstStart(ulkRegExpState& state, const uint8_t* text, const uint8_t* end,
                        ulkRegExpFind* records, int32_t* numRecords) {
  const bool isAnchored = startFilterOf(state).anchor != Anchor::kNone;
  return noteGlance(state.frames[kPrefilterFrame].prefilter,
                    isAnchored ? findsAtTextStart(state, text, end, records, numRecords)
                               : findsAtFirstStart(state, text, end, records, numRecords));
}

bool glanceAtCandidates(ulkRegExpState& state, const uint8_t* text, const uint8_t* end,
                        ulkRegExpFind* records, int32_t* numRecords) {
  return noteGlance(state.frames[kPrefilterFrame].prefilter,
                    findsAtCandidates(state, text, end, records, numRecords));
}

}  // namespace ulk
