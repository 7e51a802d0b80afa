// Repeats: one item, matched as often as its quantifier allows.
//
// A greedy repeat takes as many items as it can, then gives them back one at a time; a lazy one takes one
// more each time what follows has failed. The items are taken by loops; only what follows a repeat is a
// choice.
#include <algorithm>

#include "kernels/find_unit.h"
#include "regexp/byte_sets.h"
#include "regexp/bytes.h"
#include "regexp/class_sets.h"
#include "regexp/follow.h"
#include "regexp/items.h"
#include "regexp/matcher.h"
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

// Takes back the last of the items.
void giveBack(const MatchContext& m, Choice& choice) {
  const uint8_t* const from = m.textStart + choice.greedy.startAt;
  const uint8_t* const at = m.textStart + choice.at;
  switch (choice.kind) {
    case ChoiceKind::kGreedyBytes:
      --choice.at;
      break;
    case ChoiceKind::kGreedyChars:
      choice.at = static_cast<int32_t>(previousCharacter(from, at) - m.textStart);
      break;
    case ChoiceKind::kGreedySequences:
      choice.at = static_cast<int32_t>(previousSequence(from, at) - m.textStart);
      break;
    default:
      choice.at -= choice.greedy.itemLength;
      break;
  }
  --choice.greedy.spare;
}

// Takes back items until what follows may begin where the repeat then ends. False when it cannot.
bool giveBackToFollow(MatchContext& m, Choice& choice, const Follow& follow) {
  const int32_t spare = choice.greedy.spare;
  bool found = false;
  if (follow.note.disjoint()) {
    choice.greedy.spare = 0;  // wherever the repeat ends earlier, one of its items is next
  } else if (choice.kind == ChoiceKind::kGreedyBytes) {
    const uint8_t* at = m.textStart + choice.at;
    const uint8_t* const least = at - spare;
    while (at > least && !found) found = follow.admits(m, --at);
    choice.at = static_cast<int32_t>(at - m.textStart);
    choice.greedy.spare = static_cast<int32_t>(at - least);
  } else {
    while (choice.greedy.spare > 0 && !found) {
      giveBack(m, choice);
      found = follow.admits(m, m.textStart + choice.at);
    }
  }
  follow.payForTries(m, spare - choice.greedy.spare - (found ? 1 : 0));
  return found;
}

Next stepGreedy(MatchContext& m, const RxNode& item, int32_t quantifier) {
  const RxNode& bounds = m.nodes[quantifier];
  const int32_t least = bounds.op1;
  const int32_t most = std::min(bounds.op2, m.remaining());
  const int32_t start = m.offset();
  const int32_t count = takeItems(m, item, std::max(least, most));
  if (count < least) return Next::kFail;

  m.node = quantifier + 1;
  const int32_t spare = count - least;
  if (spare == 0) return Next::kGoOn;
  // At the program's end nothing can make the repeat give back.
  if (m.node == m.endNode && m.run == kNoRun && !m.nonEmpty && m.budget >= 0) return Next::kMatched;
  Choice& choice = m.push(ChoiceKind::kGreedyBytes);
  const int32_t length = choice.at - start;
  choice.kind = greedyKind(item, length == count);
  choice.options = static_cast<uint8_t>(m.options);
  choice.greedy = {start, item.code == RX_BACKREF ? length / count : 0, spare};
  const Follow follow = followOf(m, quantifier, m.options);
  if (!follow.excludes(m) || !follow.canPay(m, spare + 1)) return Next::kGoOn;
  follow.payForTries(m, 1);
  return retryGreedy(m, choice);
}

// A lazy repeat of one byte looks for the literal that follows it before it tries anything, and places
// without it cost no step. Whether that literal is itself optional is not asked.
bool looksForLiteral(const MatchContext& m, const RxNode& item, int32_t next) {
  if (item.code != RX_CHAR && item.code != RX_BYTE) return false;
  return next < m.numNodes && m.nodes[next].code == RX_CHAR && !(m.options & RX_OPT_CASELESS);
}

// The repeat has no choice left.
Next fail(MatchContext& m) {
  m.pop();
  return Next::kFail;
}

// The bytes of a lazy repeat of one byte stay counted in the match length when it fails in the end.
Next failLazy(MatchContext& m, const Choice& choice) {
  if (m.nodes[choice.node].code == RX_CHAR) m.surplus += choice.lazy.count;
  return fail(m);
}

bool takeOneMore(MatchContext& m, Choice& choice, const RxNode& item) {
  if (choice.lazy.count >= choice.lazy.most) return false;
  const int32_t length = itemLength(m, item, m.at);
  if (length == kNoMatch) return false;
  m.at += length;
  ++choice.lazy.count;
  return true;
}

// Takes items of one byte as long as what follows cannot begin before them, and pays for the tries.
void takeHopelessItems(MatchContext& m, Choice& choice, const RxNode& item, const Follow& follow) {
  const int32_t affordable = m.budget / follow.note.steps();
  const int32_t most = std::min({choice.lazy.most - choice.lazy.count, m.remaining(), affordable});
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
  choice.lazy.count += taken;
  follow.payForTries(m, taken);
}

// Takes items of one byte up to the next place of the literal. False if they do not reach one.
bool takeToLiteral(MatchContext& m, Choice& choice, const RxNode& item, int32_t literal) {
  const auto atLiteral = [&] { return m.at < m.textEnd && *m.at == literal; };
  if (atLiteral()) return true;
  const int32_t most = choice.lazy.most - choice.lazy.count;
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
  choice.lazy.count += taken;
  return atLiteral();
}

// Without budget nothing can be tried any more; the items are still counted.
Next exhaustLazy(MatchContext& m, Choice& choice, const RxNode& item) {
  if (item.code == RX_CHAR) choice.lazy.count += takeItems(m, item, choice.lazy.most - choice.lazy.count);
  return failLazy(m, choice);
}

// Tries what follows the repeat at the present count, or at the next one where it may be tried and can
// succeed.
Next continueLazy(MatchContext& m, Choice& choice) {
  const RxNode& item = m.nodes[choice.node];
  const int32_t next = afterItem(m, choice.node) + 1;
  const Follow follow = followOf(m, next - 1, choice.options);
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
bool takeCharacter(MatchContext& m, Choice& choice, Utf8Char character) {
  m.at += character.length;
  return ++choice.lazy.count <= choice.lazy.most && m.at <= m.textEnd;
}

// A lazy code point looks at the character first, also at the end of the text: one that differs makes the run
// match as it stands, whatever follows in the program.
Next continueLazyCodePoint(MatchContext& m, Choice& choice) {
  for (;;) {
    const Utf8Char character = decodeUtf8(m.at);
    if (!codePointAccepts(m.nodes[choice.node], character.value, m.options)) return Next::kMatched;
    if (m.budget >= 0) {
      choice.at = m.offset();
      return goOn(m, choice.node + 2);
    }
    if (!takeCharacter(m, choice, character)) return fail(m);
  }
}

// A lazy property takes every character, but tries what follows only before one that has the property.
Next continueLazyProperty(MatchContext& m, Choice& choice) {
  for (;;) {
    const Utf8Char character = decodeUtf8(m.at);
    if (m.budget < 0) return fail(m);
    if (propertyAccepts(m.nodes[choice.node], character.value)) {
      choice.at = m.offset();
      return goOn(m, choice.node + 2);
    }
    if (!takeCharacter(m, choice, character)) return fail(m);
  }
}

// Stands for the options of a lazy repeat's items when they were not taken with the same ones.
constexpr uint8_t kMixedOptions = 0xFF;

Next stepLazy(MatchContext& m, const RxNode& item, const RxNode& quantifier) {
  const int32_t least = quantifier.op1;
  const int32_t most = std::min(quantifier.op2, m.remaining());
  if (least > m.remaining() || !takeRequiredItems(m, item, least)) return Next::kFail;
  Choice& choice = m.push(ChoiceKind::kLazy);
  choice.options = static_cast<uint8_t>(m.options);
  choice.lazy = {least, most};
  switch (item.code) {
    case RX_CODEPOINT:
      choice.kind = ChoiceKind::kLazyCodePoint;
      return m.at <= m.textEnd ? continueLazyCodePoint(m, choice) : fail(m);
    case RX_CATEGORY:
    case RX_UNIRANGE:
    case RX_SCRIPT:
      choice.kind = ChoiceKind::kLazyProperty;
      return m.at <= m.textEnd ? continueLazyProperty(m, choice) : fail(m);
    default:
      return continueLazy(m, choice);
  }
}

}  // namespace

Next stepRepeat(MatchContext& m, int32_t item, int32_t quantifier) {
  const RxNode& node = m.nodes[quantifier];
  if (node.code == RX_REPEAT_LAZY) return stepLazy(m, m.nodes[item], node);
  return stepGreedy(m, m.nodes[item], quantifier);
}

Next retryGreedy(MatchContext& m, Choice& choice) {
  if (m.budget < 0) return fail(m);
  const Follow follow = followOf(m, choice.node - 1, choice.options);
  if (!follow.set || !follow.canPay(m, choice.greedy.spare)) {
    giveBack(m, choice);
  } else if (!giveBackToFollow(m, choice, follow)) {
    return fail(m);
  }
  m.moveTo(choice.at);
  if (choice.greedy.spare == 0) m.pop();
  return goOn(m, choice.node);
}

Next retryLazy(MatchContext& m, Choice& choice) {
  if (choice.options != m.options) choice.options = kMixedOptions;
  const RxNode& item = m.nodes[choice.node];
  m.moveTo(choice.at);
  return takeOneMore(m, choice, item) ? continueLazy(m, choice) : failLazy(m, choice);
}

Next retryLazyCodePoint(MatchContext& m, Choice& choice) {
  m.moveTo(choice.at);
  return takeCharacter(m, choice, decodeUtf8(m.at)) ? continueLazyCodePoint(m, choice) : fail(m);
}

Next retryLazyProperty(MatchContext& m, Choice& choice) {
  m.moveTo(choice.at);
  return takeCharacter(m, choice, decodeUtf8(m.at)) ? continueLazyProperty(m, choice) : fail(m);
}

}  // namespace ulk
