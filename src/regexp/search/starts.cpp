#include "regexp/search/starts.h"

#include <algorithm>
#include <bit>

#include "kernels/find_any.h"
#include "kernels/find_substring.h"
#include "regexp/match/assertions.h"
#include "regexp/search/attempt.h"
#include "regexp/search/caseless_search.h"
#include "regexp/search/small_set_vectors.h"
#include "regexp/text/bytes.h"
#include "regexp/text/utf8.h"

namespace ulk {

namespace {

// How many bytes at the start are below 0x80.
size_t asciiPrefix(const uint8_t* text, size_t length) {
  size_t i = 0;
  for (; i + 16 <= length && !Vec16<uint8_t>::load(text + i).mask().any(); i += 16) {
  }
  while (i < length && text[i] < 0x80) ++i;
  return i;
}

}  // namespace

// How far to look before paying, lest a small budget reads a long text. A search for a string has to set up
// and to look beyond the stride as well, so a long one takes longer strides.
ptrdiff_t Starts::longStride() const {
  if (!m_.budget.paysExactly())
    return std::max<ptrdiff_t>(kLeastStride, m_.budget.left() / std::max(filter().steps, 1));
  const bool isString = filter().kind == StartKind::kString || filter().kind == StartKind::kCaselessString;
  return isString ? std::max<ptrdiff_t>(kLeastStride, 4 * ptrdiff_t{stringLength(m_.nodes()[filter().item])})
                  : kLeastStride;
}

const uint8_t* Starts::characterAfter(const uint8_t* at) const {
  return at + (m_.state->format == kFormatUtf8 ? decodeUtf8(at).length : 1);
}

// Where the ASCII text ends that begins at this place, or how far that is known.
const uint8_t* Starts::asciiEnd(const uint8_t* at) {
  if (asciiEnd_ <= at) asciiEnd_ = at + asciiPrefix(at, static_cast<size_t>(strideFrom(at) - at));
  return asciiEnd_;
}

// Counts the characters that begin in [at, end) and moves `at` behind the last of them.
int32_t Starts::passCharacters(const uint8_t*& at, const uint8_t* end) {
  int32_t count = 0;
  while (at < end) {
    const uint8_t* const ascii = std::min(asciiEnd(at), end);
    count += static_cast<int32_t>(ascii - at);
    at = ascii;
    for (; at < end && *at >= 0x80; ++count) at += decodeMultibyte(at).length;
  }
  return count;
}

// Pays for the attempts at all positions in [at, end), and returns the next one. There are fewer than bytes
// where characters are counted.
const uint8_t* Starts::payForAll(const uint8_t* at, const uint8_t* end) {
  int64_t starts = end - at;
  if (m_.state->format != kFormatUtf8) {
    pay(starts * filter().steps);
    return end;
  }
  if (m_.budget.mayPayBounds()) {
    m_.budget.payBound(starts * filter().steps);
    return end < m_.textEnd && *end < 0x80 ? end : characterFrom(end, at);
  }
  starts = passCharacters(at, end);
  pay(starts * filter().steps);
  return at;
}

// The first place in the first `length` bytes where a match may begin, or `length`. A string may reach beyond
// them.
int32_t Starts::find(const uint8_t* at, int32_t length) const {
  if (filter().kind == StartKind::kTextStart) return at == m_.textStart ? 0 : length;
  if (filter().kind != StartKind::kLineStart) return findStart(*m_.state, at, length, m_.textEnd);
  if (at == m_.textStart || at[-1] == '\n') return 0;
  const int32_t found = findUnit(at, length, static_cast<uint8_t>('\n'));
  return found < 0 ? length : found + 1;
}

// The first position in [at, end) with a byte of the set, the next one from `end` on if there is none. Pays
// for those before it.
const uint8_t* Starts::passOutsideSet(const uint8_t* at, const uint8_t* end) {
  const uint8_t* found;
  do {
    found = passOutside(at, end, set());
    prefilter_.addWork(Prefilter::workOfBytes(found - at));
    at = payForAll(at, found);
  } while (at != found && at < end);
  return at;
}

// Where the text has a word boundary with a byte of the small set, and a pair where the filter has one.
Place Starts::findBoundary(const uint8_t* text, int32_t length) const {
  return withSmallSet(filter().small, [&](auto first) {
    if (!filter().hasPair) return findPairAtBoundary(text, length, first, AnyByte());
    return withSmallSet(pair().second,
                        [&](auto second) { return findPairAtBoundary(text, length, first, second); });
  });
}

// The first position in [at, end) at a word boundary with a byte of the set, the next one from `end` on if
// there is none. Pays for those before it: without a boundary only the assertion is run.
const uint8_t* Starts::passNonBoundaries(const uint8_t* at, const uint8_t* end) {
  constexpr int32_t kNear = 2;  // words and gaps that are looked at before the vector search
  int32_t passed = 0;
  int64_t starts = 0;
  int64_t boundaries = 0;
  bool inWord = at != m_.textStart && inByteSet(at[-1], kWord);
  while (at < end) {
    if (++passed > kNear && filter().small.form != SmallSetForm::kNone && end - at > 16 && *at < 0x80) {
      const Place place = findBoundary(at, static_cast<int32_t>(end - at));
      starts += place.at;
      boundaries += place.singles;
      at += place.at;
      prefilter_.addWork(Prefilter::workOfScan(place.at));
      if (place.found) break;
      inWord = inByteSet(at[-1], kWord);
    }
    const uint8_t* const from = at;
    if (inWord) {
      while (at < end && inByteSet(*at, kWord)) ++at;
      starts += at - from;
    } else {
      for (; at < end && !inByteSet(*at, kWord); ++starts) at = *at < 0x80 ? at + 1 : characterAfter(at);
    }
    prefilter_.addWork(Prefilter::workOfBytes(at - from) + 1);
    if (at >= end || set().contains(*at)) break;
    // The assertion holds here, but no item matches.
    ++boundaries;
    ++starts;
    inWord = !inWord;
    at = *at < 0x80 ? at + 1 : characterAfter(at);
  }
  pay(starts * filter().placeSteps + boundaries * (filter().steps - filter().placeSteps));
  return at;
}

// Whether none of the literals is at this place that a match begins with.
bool Starts::lacksLiterals(const uint8_t* at) const {
  if (!failsAtLiteral(m_, m_.nodes() + pair().firstLiteral, at)) return false;
  for (const RxNode* bar = m_.nodes() + pair().literalBar; bar; bar = nextBar(*bar))
    if (codeOf(bar[1]) != RX_ASSERT && !failsAtLiteral(m_, bar + 1, at)) return false;
  return true;
}

// Passes characters that the one item does not accept that a match begins with, from one of several bytes on,
// as far as the text's end does not cut them and no long ASCII text comes, which is passed faster elsewhere.
// True if one that is accepted does not follow.
bool Starts::passLackingItem(const uint8_t*& at) {
  constexpr int32_t kFar = 16;
  if (m_.textEnd - at < kLongestUtf8) return false;
  const StartKind kind = filter().kind;
  if (kind != StartKind::kSet && kind != StartKind::kSmallSet && kind != StartKind::kByte) return false;
  if (filter().item < 0 || m_.state->format != kFormatUtf8) return false;
  const CharacterTest test(m_.nodes()[filter().item], m_.options);
  const uint8_t* const end = std::min(strideFrom(at), m_.textEnd - kLongestUtf8 + 1);
  const uint8_t* const start = at;
  const uint8_t* place = at;
  const uint8_t* far = at + kFar;
  bool isAccepted = false;
  int32_t count = 0;
  for (; place < end && place < far; ++count) {
    if (*place < 0x80) {
      isAccepted = set().contains(*place);
      if (isAccepted) break;
      ++place;
    } else {
      const Utf8Char character = decodeMultibyte(place);
      isAccepted = test.accepts(character, *place);
      if (isAccepted) break;
      place += character.length;
      far = place + kFar;
    }
  }
  at = place;
  pay(count * int64_t{filter().steps});
  prefilter_.addWork(count);
  return at != start && (!isAccepted || m_.budget.isExhausted());
}

// For expressions that begin with a repeat, while attempts fail. In "123 45x", an
// attempt of `\d+x` at "1" takes all digits up to the space, tries in vain to go on behind the third, the
// second and the first, and fails; so do those at "2" and "3". An attempt is hopeless like these when no
// place where the program may go on is left in its run behind the items that it requires. If the one at `at`
// is, so are those in the rest of the run: pays for all of them with their tries, and returns the position
// behind. Else returns `at`, and notes up to where attempts have such a place.
const uint8_t* Starts::passRun(const uint8_t* at) {
  const RxNode& quantifier = runQuantifier();
  const Follow follow = followOf(m_, quantifier, m_.options);
  if (at >= runEnd_) {
    runEnd_ = at;
    while (runEnd_ < m_.textEnd && *runEnd_ < 0x80 && set().contains(*runEnd_)) ++runEnd_;
    prefilter_.addWork(Prefilter::workOfBytes(runEnd_ - at));
  }
  const uint8_t* const end = attemptsEnd_ = std::min(runEnd_, m_.textEnd);
  if (end < m_.textEnd && set().contains(*end)) return passRunOfCharacters(at, quantifier, follow);
  if (end == at) return at;

  const int32_t least = minOf(quantifier);
  if (maxOf(quantifier) != kUnbounded) return passBounded(at, end, quantifier, follow);
  const uint8_t* last = end;
  if (follow.note.disjoint()) {
    if (!follow.admits(m_, last)) last = at;
  } else {
    while (last - at >= least && !follow.admits(m_, last)) --last;
  }
  if (last - at >= least) {
    attemptsEnd_ = last - least + 1;
    return at;
  }
  payForRun(end - at, least, follow);
  return end;
}

// Pays for the attempts in a run of so many items, each with its tries behind every item that it need not
// have.
void Starts::payForRun(int64_t items, int32_t least, const Follow& follow) {
  constexpr int64_t kPlenty = 1 << 17;  // the sum of the tries of so many attempts exhausts every budget
  const int64_t tries = std::clamp<int64_t>(items - least + 1, 0, kPlenty);
  pay(items * filter().steps + tries * (tries + 1) / 2 * follow.note.steps());
}

// As passRun where the run goes on with characters of several bytes, which are looked at one by one.
const uint8_t* Starts::passRunOfCharacters(const uint8_t* at, const RxNode& quantifier,
                                           const Follow& follow) {
  const RxNode& item = m_.nodes()[filter().item];
  if (m_.state->format != kFormatUtf8 || takesByte(item)) return at;
  if (!follow.note.disjoint() || maxOf(quantifier) != kUnbounded) return at;
  const Taken run = takeItems(m_, item, at, m_.remaining(at));
  prefilter_.addWork(Prefilter::workOfBytes(run.end - at));
  attemptsEnd_ = run.end;
  if (run.count == 0 || run.end > m_.textEnd || follow.admits(m_, run.end)) return at;
  payForRun(run.count, minOf(quantifier), follow);
  return run.end;
}

// As passRun, one attempt after the other, for a repeat with a bound.
const uint8_t* Starts::passBounded(const uint8_t* at, const uint8_t* end, const RxNode& quantifier,
                                   const Follow& follow) {
  const int32_t least = minOf(quantifier);
  // Where none of the items may follow the repeat, only the run's end is a place to go on from.
  const bool onlyAtEnd = follow.note.disjoint();
  const bool admitsEnd = follow.admits(m_, end);
  int64_t steps = 0;
  while (at < end && m_.budget.suffices(steps)) {
    const auto most = static_cast<int32_t>(std::min<ptrdiff_t>(maxOf(quantifier), end - at));
    bool hopeless = true;
    if (onlyAtEnd) {
      hopeless = !admitsEnd || most < end - at || most < least;
    } else {
      for (int32_t count = most; count >= least && hopeless; --count)
        hopeless = !follow.admits(m_, at + count);
    }
    if (!hopeless) break;
    steps += filter().steps + int64_t{std::max(most - least + 1, 0)} * follow.note.steps();
    ++at;
  }
  pay(steps);
  attemptsEnd_ = at;
  return at;
}

// Moves `at` by vector search to the first position in [at, end) where a match may begin; false if there is
// none.
bool Starts::passFar(const uint8_t*& at, const uint8_t* end) {
  if (at >= end) return false;
  const uint8_t* const candidate = at + find(at, static_cast<int32_t>(end - at));
  at = payForAll(at, candidate);
  return at == candidate && at != end;
}

// As passFar, for what follows the first byte as well.
bool Starts::passPairless(const uint8_t*& at, const uint8_t* end) {
  const Place place = findStartPair(*m_.state, at, static_cast<int32_t>(end - at));
  if (place.at == 0 && !place.found) return passFar(at, end);
  prefilter_.addWork(Prefilter::workOfScan(place.at));
  at = payForAll(at, at + place.at);
  pay(int64_t{place.singles} * pair().extraSteps);
  return place.found;
}

// Moves `at` to the first position in [at, end) that passes the filter; false if there is none.
ULK_INLINE bool Starts::passFiltered(const uint8_t*& at, const uint8_t* end) {
  constexpr ptrdiff_t kNear = 8;
  switch (filter().kind) {
    case StartKind::kBoundary:
      at = passNonBoundaries(at, end);
      return at < end;
    case StartKind::kSet:
      if (!set().contains(*at)) at = passOutsideSet(at, end);
      return at < end;
    case StartKind::kLineStart:
    case StartKind::kTextStart:
      return passFar(at, end);
    default:
      break;
  }
  if (filter().hasPair) return passPairless(at, end);
  // In words and numbers the next start is not far.
  if (filter().small.form == SmallSetForm::kRanges) {
    if (set().contains(*at)) return true;
    const uint8_t* const near = end - at > kNear ? at + kNear : end;
    at = passOutsideSet(at, near);
    if (at < near) return true;
  }
  return passFar(at, end);
}

const uint8_t* Starts::skip(const uint8_t* at) {
  while (at < m_.textEnd && !m_.budget.isExhausted()) {
    if (prefilter_.use(at)) return prefilter_.next(at);
    if (!passFiltered(at, strideFrom(at))) continue;
    if (lastFailed_ && *at >= 0x80 && passLackingItem(at)) continue;
    if (filter().literals && lacksLiterals(at)) {
      pay(filter().steps);
      at = characterAfter(at);
    } else if (knowsLines() && !set().contains(*at)) {
      pay(filter().placeSteps);
      at = characterAfter(at);
    } else if (filter().runs && lastFailed_) {
      const uint8_t* const next = passRun(at);
      if (next == at) break;
      at = next;
    } else {
      break;
    }
    prefilter_.addWork(kWorkPerHit);
  }
  return at;
}

// What an attempt costs at the text's end, whether there is a word boundary or not.
int32_t Starts::stepsAtLastBoundary() const {
  return isWordBoundary(m_, m_.textEnd) ? filter().steps : filter().placeSteps;
}

// The next line start, of which those far away are looked for that have a byte of the set; pays for those
// before it.
const uint8_t* Starts::nextLine(const uint8_t* at) {
  constexpr ptrdiff_t kFar = 256;
  if (filter().anchor == Anchor::kLineStart && filter().small.form != SmallSetForm::kNone &&
      m_.textEnd - at > kFar) {
    constexpr uint8_t kNewlines[] = {'\n', '\n', '\n', '\n'};
    const auto length = static_cast<int32_t>(strideFrom(at) - at);
    const Place place = withSmallSet(
        filter().small, [&](auto second) { return findPair(at, length, OneByte(kNewlines), second); });
    pay(int64_t{place.singles} * filter().placeSteps);
    at += place.at;
    if (place.found) return at + 1;
  }
  return nextStart(m_, filter().anchor, at);
}

const uint8_t* Starts::nextAnchored(const uint8_t* at) {
  if (!knowsLines() || !knowsOptions()) return at;
  if (at != m_.textStart && (at[-1] != '\n' || filter().kind == StartKind::kTextStart)) return at;
  while (at < m_.textEnd && !set().contains(*at) && !m_.budget.isExhausted()) {
    pay(filter().placeSteps);
    at = nextLine(at);
  }
  return at;
}

}  // namespace ulk
