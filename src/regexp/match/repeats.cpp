// Repeats: one item, matched as often as its quantifier allows.
//
// A greedy repeat takes as many items as it can, then gives them back one at a time; a lazy one takes one
// more each time what follows has failed. The items are taken by loops; only what follows a repeat is a
// choice.
#include <algorithm>

#include "kernels/find_unit.h"
#include "regexp/match/follow.h"
#include "regexp/match/items.h"
#include "regexp/match/matcher.h"
#include "regexp/program/class_sets.h"
#include "regexp/program/follow_note.h"
#include "regexp/text/bytes.h"
#include "unicode/unicode.h"

namespace ulk {

namespace {

// Takes up to `most` characters; `accepts` tells for those below 0x80, which are single bytes.
template <class Accepts>
int32_t takeCharacters(MatchContext& m, const RxNode& item, int32_t most, Accepts accepts) {
  const uint8_t* at = m.at;
  const uint8_t* end = at + std::min<ptrdiff_t>(most, m.textEnd - at);
  ptrdiff_t further = 0;  // bytes of characters beyond the first
  for (;;) {
    while (at < end && *at < 0x80 && accepts(*at)) ++at;
    if (at >= end || *at < 0x80) break;
    const int32_t length = itemLength(m, item, at);
    if (length == kNoMatch) break;
    at += length;
    further += length - 1;
    end += std::min<ptrdiff_t>(length - 1, m.textEnd - end);
  }
  const auto count = static_cast<int32_t>(at - m.at - further);
  m.at = at;
  return count;
}

bool isOneByte(const RxNode& item, uint32_t options) {
  return item.code == RX_BYTE ||
         (item.code == RX_CHAR && !((options & RX_OPT_CASELESS) && isAsciiLetter(item.op1)));
}

// The same for a single byte in one case. Most runs are short.
int32_t takeBytes(MatchContext& m, const RxNode& item, int32_t most) {
  constexpr int32_t kLooks = 8;
  const int32_t limit = std::max(std::min(most, m.remaining()), 0);
  int32_t count = 0;
  if (item.code == RX_BYTE) {
    count = limit;
  } else {
    while (count < limit && count < kLooks && m.at[count] == item.op1) ++count;
    if (count == kLooks) {
      const int32_t other =
          scanForOther<Forward>(m.at + count, limit - count, static_cast<uint8_t>(item.op1));
      count = other < 0 ? limit : count + other;
    }
  }
  m.at += count;
  return count;
}

// Takes up to `most` items from m.at on, moves m.at behind them and returns how many there were.
int32_t takeItems(MatchContext& m, const RxNode& item, int32_t most) {
  const uint32_t options = m.options;
  if (isOneByte(item, options)) return takeBytes(m, item, most);
  const Set128* const set = item.code == RX_CLASS ? classSet(item, options) : nullptr;
  if (set) return takeCharacters(m, item, most, [set](uint8_t byte) { return set->contains(byte); });
  if (item.code == RX_CHARTYPE) {
    const uint8_t wanted = byteSetOf(item.op1, options);
    return takeCharacters(m, item, most, [wanted](uint8_t byte) { return inByteSet(byte, wanted); });
  }
  int32_t count = 0;
  for (; count < most; ++count) {
    const int32_t length = itemLength(m, item, m.at);
    if (length == kNoMatch) break;
    m.at += length;
  }
  return count;
}

bool takeRequiredItems(MatchContext& m, const RxNode& item, int32_t count) {
  return count == 0 || takeItems(m, item, count) == count;
}

// What a greedy repeat gives back at a time: bytes where every item was one.
ChoiceKind greedyKind(const RxNode& item, bool bytes) {
  switch (item.code) {
    case RX_XSEQ:
      return ChoiceKind::kGreedySequences;
    case RX_BACKREF:
      return ChoiceKind::kGreedyBackref;
    default:
      return bytes ? ChoiceKind::kGreedyBytes : ChoiceKind::kGreedyChars;
  }
}

// The start of the character that ends at `at`, when characters are decoded from `from` on. A byte that is no
// continuation byte always starts a character; a continuation byte belongs to the nearest such byte before it
// if that one's sequence reaches here, and is a character by itself if not.
const uint8_t* previousCharacter(const uint8_t* from, const uint8_t* at) {
  const uint8_t* lead = at - 1;
  while (lead > from && at - lead < 6 && isContinuation(*lead)) --lead;
  return lead + decodeUtf8(lead).length == at ? lead : at - 1;
}

const uint8_t* previousSequence(const uint8_t* from, const uint8_t* at) {
  do {
    at = previousCharacter(from, at);
  } while (at > from && isMark(decodeUtf8(at).value));
  return at;
}

// The word that a greedy repeat's record begins with, unless it gives back bytes.
int32_t& startOf(GreedyChoice& choice) {
  return (reinterpret_cast<GreedyItemsChoice*>(&choice + 1) - 1)->start;
}

void popGreedy(MatchContext& m) {
  if (m.choices.tag().kind() == ChoiceKind::kGreedyBytes) {
    m.choices.pop<GreedyChoice>();
  } else {
    m.choices.pop<GreedyItemsChoice>();
  }
}

// Takes back the last of the items.
void giveBack(const MatchContext& m, GreedyChoice& choice) {
  const uint8_t* const at = m.textStart + choice.at;
  switch (choice.tag.kind()) {
    case ChoiceKind::kGreedyBytes:
      --choice.at;
      break;
    case ChoiceKind::kGreedyChars:
      choice.at = m.offsetOf(previousCharacter(m.textStart + startOf(choice), at));
      break;
    case ChoiceKind::kGreedySequences:
      choice.at = m.offsetOf(previousSequence(m.textStart + startOf(choice), at));
      break;
    default:
      choice.at -= static_cast<uint32_t>(startOf(choice));
      break;
  }
  choice.spare += -1;
}

// Takes back items until what follows may begin where the repeat then ends. False when it cannot.
bool giveBackToFollow(MatchContext& m, GreedyChoice& choice, const Follow& follow) {
  const int32_t spare = choice.spare.number();
  bool found = false;
  if (follow.note.disjoint()) {
    choice.spare.setNumber(0);  // wherever the repeat ends earlier, one of its items is next
  } else if (choice.tag.kind() == ChoiceKind::kGreedyBytes) {
    const uint8_t* at = m.textStart + choice.at;
    const uint8_t* const least = at - spare;
    while (at > least && !found) found = follow.admits(m, --at);
    choice.at = m.offsetOf(at);
    choice.spare.setNumber(static_cast<int32_t>(at - least));
  } else {
    while (choice.spare.number() > 0 && !found) {
      giveBack(m, choice);
      found = follow.admits(m, m.textStart + choice.at);
    }
  }
  follow.payForTries(m, spare - choice.spare.number() - (found ? 1 : 0));
  return found;
}

// Leaves the choice of a greedy repeat that began at `start` and has taken `count` items.
GreedyChoice& pushGreedy(MatchContext& m, const RxNode& item, const uint8_t* start, int32_t count) {
  const auto length = static_cast<int32_t>(m.at - start);
  const ChoiceKind kind = greedyKind(item, length == count);
  if (kind == ChoiceKind::kGreedyBytes) return m.push<GreedyChoice>(kind);
  GreedyItemsChoice& choice = m.choices.push<GreedyItemsChoice>();
  choice.start = item.code == RX_BACKREF ? length / count : static_cast<int32_t>(start - m.textStart);
  choice.greedy.at = m.offset();
  choice.greedy.tag = {kind, m.node};
  return choice.greedy;
}

// Gives back as much as the next try needs, and makes it.
Next retryGreedyWith(MatchContext& m, GreedyChoice& choice, const Follow& follow) {
  if (!follow.set || !follow.canPay(m, choice.spare.number())) {
    giveBack(m, choice);
  } else if (!giveBackToFollow(m, choice, follow)) {
    popGreedy(m);
    return Next::kFail;
  }
  m.moveTo(choice.at);
  const int32_t next = choice.tag.node() + 1;
  if (choice.spare.number() == 0) popGreedy(m);
  return goOn(m, next);
}

Next stepGreedy(MatchContext& m, const RxNode& item, int32_t quantifier) {
  const RxNode& bounds = m.nodes[quantifier];
  const int32_t least = bounds.op1;
  const int32_t most = std::min(bounds.op2, m.remaining());
  const uint8_t* const start = m.at;
  const int32_t count = takeItems(m, item, std::max(least, most));
  if (count < least) return Next::kFail;

  const int32_t spare = count - least;
  if (spare == 0) return goOn(m, quantifier + 1);
  // At the program's end nothing can make the repeat give back.
  if (quantifier + 1 == m.endNode && m.run == kNoRun && !m.nonEmpty && m.budget >= 0) return Next::kMatched;
  m.node = quantifier;
  const Follow follow = followOf(m, quantifier);
  GreedyChoice& choice = pushGreedy(m, item, start, count);
  choice.spare = {spare, follow.set != nullptr};
  if (!follow.excludes(m) || !follow.canPay(m, int64_t{spare} + 1)) return goOn(m, quantifier + 1);
  follow.payForTries(m, 1);
  return retryGreedyWith(m, choice, follow);
}

// A lazy repeat of one byte looks for the literal that follows it before it tries anything, and places
// without it cost no step. Whether that literal is itself optional is not asked.
bool looksForLiteral(const MatchContext& m, const RxNode& item, int32_t next) {
  if (item.code != RX_CHAR && item.code != RX_BYTE) return false;
  return next < m.numNodes && m.nodes[next].code == RX_CHAR && !(m.options & RX_OPT_CASELESS);
}

// The repeat has no choice left.
Next failRepeat(MatchContext& m) {
  m.choices.pop<LazyChoice>();
  return Next::kFail;
}

// The bytes that a lazy repeat of one byte has taken stay counted when it finally fails: callers know the
// lengths that come of it.
Next failLazy(MatchContext& m, LazyChoice& choice) {
  if (m.nodes[choice.tag.node()].code == RX_CHAR) m.surplus += choice.count.number();
  return failRepeat(m);
}

bool takeOneMore(MatchContext& m, LazyChoice& choice, const RxNode& item) {
  if (choice.count.number() >= choice.most) return false;
  const int32_t length = itemLength(m, item, m.at);
  if (length == kNoMatch) return false;
  m.at += length;
  choice.count += 1;
  return true;
}

int32_t stillAllowed(const LazyChoice& choice) { return choice.most - choice.count.number(); }

// Takes items of one byte as long as what follows cannot begin before them, and pays for the tries.
void takeHopelessItems(MatchContext& m, LazyChoice& choice, const RxNode& item, const Follow& follow) {
  const int32_t affordable = m.budget / follow.note.steps();
  const int32_t most = std::min({stillAllowed(choice), m.remaining(), affordable});
  const uint8_t* const end = m.at + std::max(most, 0);
  const auto take = [&](auto accepts) {
    const uint8_t* at = m.at;
    while (at < end && *at < 0x80 && !follow.admits(m, at) && accepts(*at)) ++at;
    return static_cast<int32_t>(at - m.at);
  };
  int32_t taken = 0;
  const Set128* const set = item.code == RX_CLASS ? classSet(item, m.options) : nullptr;
  if (set) {
    taken = take([set](uint8_t byte) { return set->contains(byte); });
  } else if (item.code == RX_CHARTYPE) {
    const uint8_t wanted = byteSetOf(item.op1, m.options);
    taken = take([wanted](uint8_t byte) { return inByteSet(byte, wanted); });
  }
  m.at += taken;
  choice.count += taken;
  follow.payForTries(m, taken);
}

// Takes items of one byte up to the next place of the literal. False if they do not reach one.
bool takeToLiteral(MatchContext& m, LazyChoice& choice, const RxNode& item, int32_t literal) {
  const auto atLiteral = [&] { return m.at < m.textEnd && *m.at == literal; };
  if (atLiteral()) return true;
  const int32_t most = stillAllowed(choice);
  int32_t taken = 0;
  if (item.code == RX_CHAR) {
    taken = takeItems(m, item, most);
  } else {
    const int32_t left = std::max(m.remaining(), 0);
    const int32_t found =
        literal > 255 ? -1 : findUnit(m.at, std::min(left, most + 1), static_cast<uint8_t>(literal));
    taken = found < 0 ? std::min(left, most) : found;
    m.at += taken;
  }
  choice.count += taken;
  return atLiteral();
}

// Without budget nothing can be tried any more; the items are still counted.
Next exhaustLazy(MatchContext& m, LazyChoice& choice, const RxNode& item) {
  if (item.code == RX_CHAR) choice.count += takeItems(m, item, stillAllowed(choice));
  return failLazy(m, choice);
}

Follow followOf(const MatchContext& m, const LazyChoice& choice, int32_t quantifier) {
  return choice.count.flag() ? ulk::followOf(m, quantifier) : noFollow(m, quantifier);
}

// Tries what follows the repeat at the present count, or at the next one where it may be tried and can
// succeed.
Next continueLazy(MatchContext& m, LazyChoice& choice) {
  const int32_t node = choice.tag.node();
  const RxNode& item = m.nodes[node];
  const int32_t next = afterItem(m, node) + 1;
  const Follow follow = followOf(m, choice, next - 1);
  if (follow.set && m.budget > 0) takeHopelessItems(m, choice, item, follow);
  const bool looks = looksForLiteral(m, item, next);
  for (;;) {
    if (m.budget < 0) return exhaustLazy(m, choice, item);
    if (looks && !takeToLiteral(m, choice, item, m.nodes[next].op1)) return failLazy(m, choice);
    if (!follow.excludes(m) || !follow.canPay(m, 1)) break;
    follow.payForTries(m, 1);
    if (!takeOneMore(m, choice, item)) return failLazy(m, choice);
  }
  choice.at = m.offset();
  return goOn(m, next);
}

// Takes the character at the position into a lazy repeat of code points or properties.
bool takeCharacter(MatchContext& m, LazyChoice& choice, Utf8Char character) {
  m.at += character.length;
  choice.count += 1;
  return choice.count.number() <= choice.most && m.at <= m.textEnd;
}

// The character that a lazy code point looks at. Behind the end of the text no more is read than it takes to
// tell whether it is that code point: nothing of several bytes is ASCII.
Utf8Char characterFor(const MatchContext& m, const RxNode& item) {
  const bool isAscii = item.op1 >= 0 && item.op1 < 0x80 && !(m.options & RX_OPT_CASELESS);
  if (isAscii && m.at == m.textEnd) return {static_cast<int8_t>(*m.at), 1};
  return decodeUtf8(m.at);
}

// A lazy code point looks at the character first, also at the end of the text: one that differs makes the run
// match as it stands, whatever follows in the program.
Next continueLazyCodePoint(MatchContext& m, LazyChoice& choice) {
  const int32_t node = choice.tag.node();
  for (;;) {
    const RxNode& item = m.nodes[node];
    const Utf8Char character = characterFor(m, item);
    if (!codePointAccepts(item, character.value, m.options)) return Next::kMatched;
    if (m.budget >= 0) {
      choice.at = m.offset();
      return goOn(m, node + 2);
    }
    if (!takeCharacter(m, choice, character)) return failRepeat(m);
  }
}

// A lazy property takes every character, but tries what follows only before one that has the property.
Next continueLazyProperty(MatchContext& m, LazyChoice& choice) {
  const int32_t node = choice.tag.node();
  for (;;) {
    const Utf8Char character = decodeUtf8(m.at);
    if (m.budget < 0) return failRepeat(m);
    if (propertyAccepts(m.nodes[node], character.value)) {
      choice.at = m.offset();
      return goOn(m, node + 2);
    }
    if (!takeCharacter(m, choice, character)) return failRepeat(m);
  }
}

Next stepLazy(MatchContext& m, const RxNode& item, int32_t quantifier) {
  const int32_t least = m.nodes[quantifier].op1;
  const int32_t most = std::min(m.nodes[quantifier].op2, m.remaining());
  if (least > m.remaining() || !takeRequiredItems(m, item, least)) return Next::kFail;
  LazyChoice& choice = m.push<LazyChoice>(ChoiceKind::kLazy);
  choice.most = most;
  choice.count = {least, ulk::followOf(m, quantifier).set != nullptr};
  switch (item.code) {
    case RX_CODEPOINT:
      choice.tag.setKind(ChoiceKind::kLazyCodePoint);
      return m.at <= m.textEnd ? continueLazyCodePoint(m, choice) : failRepeat(m);
    case RX_CATEGORY:
    case RX_UNIRANGE:
    case RX_SCRIPT:
      choice.tag.setKind(ChoiceKind::kLazyProperty);
      return m.at <= m.textEnd ? continueLazyProperty(m, choice) : failRepeat(m);
    default:
      return continueLazy(m, choice);
  }
}

}  // namespace

Next stepRepeat(MatchContext& m, int32_t item, int32_t quantifier) {
  if (m.nodes[quantifier].code == RX_REPEAT_LAZY) return stepLazy(m, m.nodes[item], quantifier);
  return stepGreedy(m, m.nodes[item], quantifier);
}

Next retryGreedy(MatchContext& m) {
  auto& choice = m.choices.top<GreedyChoice>();
  if (m.budget < 0) {
    popGreedy(m);
    return Next::kFail;
  }
  const int32_t quantifier = choice.tag.node();
  return retryGreedyWith(m, choice, choice.spare.flag() ? followOf(m, quantifier) : noFollow(m, quantifier));
}

Next retryLazy(MatchContext& m) {
  auto& choice = m.choices.top<LazyChoice>();
  const int32_t node = choice.tag.node();
  if (choice.count.flag() && !ulk::followOf(m, afterItem(m, node)).set) choice.count.setFlag(false);
  m.moveTo(choice.at);
  return takeOneMore(m, choice, m.nodes[node]) ? continueLazy(m, choice) : failLazy(m, choice);
}

Next retryLazyCodePoint(MatchContext& m) {
  auto& choice = m.choices.top<LazyChoice>();
  m.moveTo(choice.at);
  const Utf8Char character = characterFor(m, m.nodes[choice.tag.node()]);
  return takeCharacter(m, choice, character) ? continueLazyCodePoint(m, choice) : failRepeat(m);
}

Next retryLazyProperty(MatchContext& m) {
  auto& choice = m.choices.top<LazyChoice>();
  m.moveTo(choice.at);
  return takeCharacter(m, choice, decodeUtf8(m.at)) ? continueLazyProperty(m, choice) : failRepeat(m);
}

}  // namespace ulk
