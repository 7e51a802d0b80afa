#include "regexp/match/matcher.h"

#include <cstddef>

#include "regexp/match/items.h"
#include "regexp/text/bytes.h"

namespace ulk {

namespace {

// The memory for choices. A search starts on a little; one that needs more goes on where there is enough for
// the default limit, if no more is left of its own limit, and else on as much as a thread can be expected to
// have.
//
// A step leaves one choice of 28 bytes at most, and a run's larger one is dropped when the run ends; runs
// nest at most as deep as groups do. So within the default limit the memory suffices; a search with a higher
// limit that comes to the end of it is out of budget.
constexpr size_t kShallow = 2048;
constexpr size_t kDefault = size_t{kDefaultMatchLimit} * 28 + kMaxDepth * kLargestChoice + kShallow;
constexpr size_t kDeep = size_t{800} << 10;
constexpr size_t kMargin = 4;  // a step or a retry leaves fewer records

enum class Outcome { kMatch, kNoMatch, kOutOfChoices };

// The byte before the position, a space at the text start.
uint8_t byteBefore(const MatchContext& m) { return m.at == m.textStart ? ' ' : m.at[-1]; }

bool atLineStart(const MatchContext& m) { return m.at == m.textStart || m.at[-1] == '\n'; }

bool atFinalNewline(const MatchContext& m) { return m.remaining() == 1 && *m.at == '\n'; }

// The byte after the position is read also at the end of the text: there it is the terminator of a text that
// has one.
int32_t wordChange(const MatchContext& m) { return wordValue(byteBefore(m)) ^ wordValue(*m.at); }

bool assertionHolds(const MatchContext& m, int32_t assertion) {
  const bool multiline = m.options & RX_OPT_MULTILINE;
  const bool atEnd = m.at == m.textEnd;
  switch (assertion) {
    case '^':
      return m.at == m.textStart || (multiline && !atEnd && m.at[-1] == '\n');
    case '$':
      return atEnd || (multiline ? *m.at == '\n' : atFinalNewline(m));
    case 'A':
    case 'G':
      return m.at == m.textStart;
    case 'Z':
      return atEnd || atFinalNewline(m);
    case 'z':
      return atEnd;
    case 'b':
      return wordChange(m) < 0;
    case 'B':
      return wordChange(m) >= -1;  // -1 is a boundary for both
    case kLeadingDotStar:
      return atLineStart(m);
    default:
      return false;
  }
}

// An assertion that may be left out is passed over untested.
Next stepAssert(MatchContext& m) {
  const bool quantified = m.hasQuantifier(m.node + 1);
  const bool optional = quantified && m.nodes[m.node + 1].op1 == 0;
  if (!optional && !assertionHolds(m, m.nodes[m.node].op1)) return Next::kFail;
  return goOn(m, m.node + (quantified ? 2 : 1));
}

Next stepItem(MatchContext& m) {
  const int32_t next = afterItem(m, m.node);
  if (m.hasQuantifier(next)) return stepRepeat(m, m.node, next);
  const int32_t length = itemLength(m, m.nodes[m.node], m.at);
  if (length == kNoMatch) return Next::kFail;
  m.at += length;
  return goOn(m, next);
}

Next stepOptions(MatchContext& m) {
  m.setOptions(m.nodes[m.node].op1);
  return goOn(m, m.node + 1);
}

Next step(MatchContext& m) {
  if (m.budget < 0) return Next::kFail;
  if (m.node == m.endNode) return m.nonEmpty && m.matchLength() == 0 ? Next::kFail : Next::kMatched;
  if (m.at > m.textEnd) return Next::kFail;
  --m.budget;
  switch (m.nodes[m.node].code) {
    case RX_CHAR:
    case RX_STRING:
    case RX_BACKREF:
    case RX_CLASS:
    case RX_CHARTYPE:
    case RX_BYTE:
    case RX_CODEPOINT:
    case RX_CATEGORY:
    case RX_UNIRANGE:
    case RX_SCRIPT:
    case RX_XSEQ:
      return stepItem(m);
    case RX_ASSERT:
      return stepAssert(m);
    case RX_ALT:
      return stepBar(m);
    case RX_LOOKBEHIND:
    case RX_NLOOKBEHIND:
      return stepLookbehind(m);
    case RX_LOOKAHEAD:
    case RX_NLOOKAHEAD:
      return stepLookahead(m);
    case RX_OPTGROUP:
    case RX_COND:
    case RX_CAPTURE:
    case RX_GROUP:
      return stepGroupOpen(m);
    case RX_ATOMIC:
      return stepAtomic(m);
    case RX_END:
      return stepGroupEnd(m);
    case RX_OPTIONS:
      return stepOptions(m);
    default:
      return Next::kFail;  // class members and quantifiers are no steps of their own
  }
}

Next retry(MatchContext& m) {
  switch (m.choices.tag().kind()) {
    case ChoiceKind::kGreedyBytes:
    case ChoiceKind::kGreedyChars:
    case ChoiceKind::kGreedySequences:
    case ChoiceKind::kGreedyBackref:
      return retryGreedy(m);
    case ChoiceKind::kLazy:
      return retryLazy(m);
    case ChoiceKind::kLazyCodePoint:
      return retryLazyCodePoint(m);
    case ChoiceKind::kLazyProperty:
      return retryLazyProperty(m);
    case ChoiceKind::kPlain:
      return retryPlain(m);
    case ChoiceKind::kPlainCapture:
      return retryPlainCapture(m);
    case ChoiceKind::kPlainEnter:
      return retryPlainEnter(m);
    case ChoiceKind::kAlternative:
      return retryAlternative(m);
    case ChoiceKind::kLazyLeave:
      return retryLazyLeave(m);
    case ChoiceKind::kLeft:
    case ChoiceKind::kGaveUp:
      return retryLeft(m);
    case ChoiceKind::kOptions:
      return retryOptions(m);
    case ChoiceKind::kLookaround:
      return retryLookaround(m);
    case ChoiceKind::kCondition:
      return retryCondition(m);
    case ChoiceKind::kAtomic:
      return retryAtomic(m);
    case ChoiceKind::kAtomicLazy:
      return retryAtomicLazy(m);
    case ChoiceKind::kAtomicIteration:
      return retryAtomicIteration(m);
    case ChoiceKind::kSurplus:
      return retrySurplus(m);
  }
  return Next::kFail;
}

Outcome run(MatchContext& m, Next next) {
  for (;;) {
    switch (next) {
      case Next::kGoOn:
        if (!m.choices.hasRoomFor(kMargin) && m.budget >= 0) return Outcome::kOutOfChoices;
        next = step(m);
        break;
      case Next::kFail:
        if (m.choices.empty()) return Outcome::kNoMatch;
        next = retry(m);
        break;
      case Next::kMatched:
        if (m.run == kNoRun) return Outcome::kMatch;
        next = leaveRun(m);
        break;
    }
  }
}

// Goes on with that much memory for choices. It stays in the frame of this one function, so that the ordinary
// search never touches so much stack.
template <size_t kSize>
__attribute__((noinline)) Outcome runIn(MatchContext& m) {
  alignas(RunChoice) std::byte memory[kSize];
  m.choices.moveTo(memory, kSize);
  Outcome outcome = run(m, Next::kGoOn);
  if (outcome == Outcome::kOutOfChoices) {
    m.budget = -1;
    outcome = run(m, Next::kFail);
  }
  return outcome;
}

}  // namespace

bool rxMatch(MatchContext& m) {
  alignas(RunChoice) std::byte memory[kShallow];
  m.choices = {};
  m.choices.use(memory, kShallow);
  Outcome outcome = run(m, Next::kGoOn);
  if (outcome == Outcome::kOutOfChoices)
    outcome = m.budget <= kDefaultMatchLimit ? runIn<kDefault>(m) : runIn<kDeep>(m);
  return outcome == Outcome::kMatch;
}

}  // namespace ulk
