// Repeats: one item, matched as often as its quantifier allows.
//
// A greedy repeat takes as many items as it can, then gives them back one at a time; a lazy one takes one
// more each time what follows has failed. The items are taken by loops; only what follows a repeat is a
// choice.
#include <algorithm>

#include "kernels/find_unit.h"
#include "regexp/match/follow.h"
#include "regexp/match/items.h"
#include "regexp/match/steps.h"
#include "regexp/match/take.h"
#include "regexp/text/utf8.h"
#include "unicode/unicode.h"

namespace ulk {

namespace {

// A try that runs out of budget on its way is made, not paid for.
ULK_INLINE bool canPay(const MatchContext& m, const Follow& follow, int64_t tries) {
  return m.budget.suffices(follow.cost(tries));
}

ULK_INLINE void payForTries(MatchContext& m, const Follow& follow, int32_t tries) {
  m.budget.pay(follow.cost(tries));
  if (follow.note.entersGroup() && tries > 0) m.surplus.clear();
}

// ---- Greedy repeats

// The start of the character that ends at `at`, when characters are decoded from `from` on. A byte that is no
// continuation byte always starts a character; a continuation byte belongs to the nearest such byte before it
// if that one's sequence reaches here, and is a character by itself if not.
const uint8_t* previousCharacter(const uint8_t* from, const uint8_t* at) {
  if (at[-1] < 0x80) return at - 1;
  const uint8_t* const lead = leadBefore(at, from);
  return lead + decodeUtf8(lead).length == at ? lead : at - 1;
}

const uint8_t* previousSequence(const uint8_t* from, const uint8_t* at) {
  do {
    at = previousCharacter(from, at);
  } while (at > from && isMark(decodeUtf8(at).value));
  return at;
}

// What a greedy repeat has taken and can give back.
struct Greedy {
  ChoiceKind kind;
  const uint8_t* at;
  int32_t spare;  // items above the minimum
  uint32_t
      start;  // unless it gives back bytes: where the first item begins; for back references their length
};

// Takes back the last of the items.
ULK_INLINE void giveBack(const MatchContext& m, Greedy& greedy) {
  switch (greedy.kind) {
    case ChoiceKind::kGreedyBytes:
      --greedy.at;
      break;
    case ChoiceKind::kGreedyChars:
      greedy.at = previousCharacter(m.textStart + greedy.start, greedy.at);
      break;
    case ChoiceKind::kGreedySequences:
      greedy.at = previousSequence(m.textStart + greedy.start, greedy.at);
      break;
    default:
      greedy.at -= greedy.start;
      break;
  }
  --greedy.spare;
}

// The same for many bytes at a time, until what follows may begin there, for which it must have this byte.
__attribute__((noinline)) bool giveBackToByte(const MatchContext& m, Greedy& greedy, const Follow& follow,
                                              uint8_t byte) {
  const uint8_t* const least = greedy.at - greedy.spare;
  do {
    const int32_t last = findUnitRev(least, greedy.spare, byte);
    greedy.spare = std::max(last, 0);
    greedy.at = least + greedy.spare;
    if (last < 0) return false;
  } while (!follow.admits(m, greedy.at));
  return true;
}

// The same one byte at a time.
ULK_INLINE bool giveBackBytes(const MatchContext& m, Greedy& greedy, const Follow& follow) {
  const ByteSet256& set = *follow.set;
  const uint8_t* const least = greedy.at - greedy.spare;
  const uint8_t* at = greedy.at;
  bool found = false;
  while (!found && at > least) {
    while (--at > least && !set.contains(*at)) {
    }
    found = follow.admits(m, at);
  }
  greedy.at = at;
  greedy.spare = static_cast<int32_t>(at - least);
  return found;
}

// The same until what the repeat has taken, which is all that its group captures, comes once more.
ULK_INLINE bool giveBackToItself(const MatchContext& m, Greedy& greedy, const Follow& follow) {
  const uint8_t* const taken = follow.startOfItself(m);
  const uint8_t* at = greedy.at;
  int32_t spare = greedy.spare;
  bool found = false;
  while (spare > 0 && !found) {
    --at;
    --spare;
    const ptrdiff_t length = at - taken;
    found = sameByte(*taken, *at, m.options) && length <= m.textEnd - at &&
            sameBytes(taken, at, static_cast<int32_t>(length), m.options);
  }
  greedy.at = at;
  greedy.spare = spare;
  return found;
}

// Takes back items until what follows may begin where the repeat then ends. False when it cannot.
ULK_INLINE bool giveBackToFollow(MatchContext& m, Greedy& greedy, const Follow& follow) {
  constexpr int32_t kMany = 12;
  const int32_t spare = greedy.spare;
  bool found = false;
  int32_t only;
  if (follow.note.disjoint()) {
    greedy.spare = 0;  // wherever the repeat ends earlier, one of its items is next
  } else if (spare >= kMany && greedy.kind == ChoiceKind::kGreedyBytes &&
             (only = onlyByte(*follow.set)) >= 0) {
    found = giveBackToByte(m, greedy, follow, static_cast<uint8_t>(only));
  } else if (follow.note.itself() && follow.next && greedy.kind == ChoiceKind::kGreedyBytes) {
    found = giveBackToItself(m, greedy, follow);
  } else if (greedy.kind == ChoiceKind::kGreedyBytes) {
    found = giveBackBytes(m, greedy, follow);
  } else {
    while (greedy.spare > 0 && !found) {
      giveBack(m, greedy);
      found = follow.admits(m, greedy.at);
    }
  }
  payForTries(m, follow, spare - greedy.spare - (found ? 1 : 0));
  return found;
}

// Gives back as much as the next try needs. False when there is none.
ULK_INLINE bool giveBackForNextTry(MatchContext& m, Greedy& greedy, const Follow& follow) {
  if (follow.set && canPay(m, follow, greedy.spare)) return giveBackToFollow(m, greedy, follow);
  giveBack(m, greedy);
  return true;
}

// Leaves the choice to give back more, and goes on behind the repeat. `asForeseen`: all items have been taken
// with the options that the analysis had in mind.
ULK_INLINE Outcome tryBehind(const RxNode* quantifier, MatchContext& m, const Greedy& greedy,
                             bool asForeseen) {
  if (greedy.spare == 0) return goOn(greedy.at, quantifier + 1, m);
  if (greedy.kind != ChoiceKind::kGreedyBytes) m.choices.push<uint32_t>() = greedy.start;
  push<GreedyChoice>(m, greedy.kind, greedy.at, quantifier).spare = {greedy.spare, asForeseen};
  return goOnWithChoice(greedy.at, quantifier + 1, m);
}

// The repeat has taken at least as many items as it must.
ULK_INLINE Outcome tryAll(const RxNode* quantifier, MatchContext& m, Greedy greedy) {
  if (greedy.spare == 0) return goOn(greedy.at, quantifier + 1, m);
  // At the program's end nothing can make the repeat give back.
  if (quantifier + 1 == m.runEnd && m.run == kNoRun && !m.nonEmpty && !m.budget.isExhausted())
    return goOn(greedy.at, quantifier + 1, m);
  const Follow follow = followOf(m, *quantifier, m.options);
  if (follow.excludes(m, greedy.at) && canPay(m, follow, int64_t{greedy.spare} + 1)) {
    payForTries(m, follow, 1);
    if (!giveBackForNextTry(m, greedy, follow)) return fail(m);
  }
  return tryBehind(quantifier, m, greedy, follow.set != nullptr);
}

// What a greedy repeat gives back at a time: bytes where every item was one.
ChoiceKind greedyKind(const RxNode& item, bool bytes) {
  switch (codeOf(item)) {
    case RX_XSEQ:
      return ChoiceKind::kGreedySequences;
    case RX_BACKREF:
      return ChoiceKind::kGreedyBackref;
    default:
      return bytes ? ChoiceKind::kGreedyBytes : ChoiceKind::kGreedyChars;
  }
}

// Goes on behind the items that the repeat has taken from `at` to `end`.
ULK_INLINE Outcome tryItems(const uint8_t* at, const RxNode* node, MatchContext& m, const uint8_t* end,
                            int32_t count) {
  const RxNode* const quantifier = afterItem(node);
  const int32_t least = minOf(*quantifier);
  if (count < least) return fail(m);
  const auto length = static_cast<int32_t>(end - at);
  const bool isBackref = codeOf(*node) == RX_BACKREF && count > 0;
  const uint32_t start = isBackref ? static_cast<uint32_t>(length / count) : m.offsetOf(at);
  return tryAll(quantifier, m, {greedyKind(*node, length == count), end, count - least, start});
}

// Takes further items where bytes alone are no longer enough, which is at m.at.
__attribute__((noinline)) ULK_STEP takeFurther(const uint8_t* at, const RxNode* node, MatchContext& m) {
  const auto bytes = static_cast<int32_t>(m.at - at);
  const Taken further = takeItems(m, *node, m.at, mostItems(m, *afterItem(node), at) - bytes);
  return tryItems(at, node, m, further.end, bytes + further.count);
}

// Goes on behind the bytes that the first items are.
ULK_INLINE Outcome tryBytes(const uint8_t* at, const RxNode* node, const RxNode* quantifier, MatchContext& m,
                            const uint8_t* behind, const uint8_t* end) {
  if (behind < end && *behind >= 0x80) {
    m.at = behind;
    return takeFurther(at, node, m);
  }
  const auto spare = static_cast<int32_t>(behind - at) - minOf(*quantifier);
  if (spare < 0) return fail(m);
  return tryAll(quantifier, m, {ChoiceKind::kGreedyBytes, behind, spare, 0});
}

}  // namespace

ULK_STEP stepGreedyShorthand(const uint8_t* at, const RxNode* node, MatchContext& m) {
  const RxNode* const quantifier = node + 1;
  const uint8_t* const end = at + std::min(maxOf(*quantifier), m.remaining(at));
  return tryBytes(at, node, quantifier, m, behindShorthand(m, *node, at, end), end);
}

ULK_STEP stepGreedySet(const uint8_t* at, const RxNode* node, MatchContext& m) {
  const RxNode* const quantifier = afterItem(node);
  const uint8_t* const end = at + std::min(maxOf(*quantifier), m.remaining(at));
  return tryBytes(at, node, quantifier, m, behindBytes(at, end, *recordOf(*node)), end);
}

ULK_STEP stepGreedyItem(const uint8_t* at, const RxNode* node, MatchContext& m) {
  const Taken taken = takeItems(m, *node, at, mostItems(m, *afterItem(node), at));
  return tryItems(at, node, m, taken.end, taken.count);
}

namespace {

ULK_INLINE Outcome retryGreedy(MatchContext& m, Greedy greedy, const RxNode* quantifier, bool asForeseen) {
  if (m.budget.isExhausted()) return fail(m);
  const Follow follow = asForeseen ? followOf(m, *quantifier, m.options) : noFollow(*quantifier);
  if (!giveBackForNextTry(m, greedy, follow)) return fail(m);
  return tryBehind(quantifier, m, greedy, asForeseen);
}

}  // namespace

Outcome retryGreedyBytes(MatchContext& m) {
  const auto& choice = m.choices.top<GreedyChoice>();
  const Greedy greedy{ChoiceKind::kGreedyBytes, placeOf(m, choice.at), choice.spare.number(), 0};
  const RxNode* const quantifier = m.nodes() + choice.tag.node();
  const bool asForeseen = choice.spare.flag();
  m.choices.pop<GreedyChoice>();
  return retryGreedy(m, greedy, quantifier, asForeseen);
}

Outcome retryGreedyItems(MatchContext& m) {
  const auto& choice = m.choices.top<GreedyChoice>();
  Greedy greedy{choice.tag.kind(), placeOf(m, choice.at), choice.spare.number(), 0};
  const RxNode* const quantifier = m.nodes() + choice.tag.node();
  const bool asForeseen = choice.spare.flag();
  m.choices.pop<GreedyChoice>();
  greedy.start = m.choices.top<uint32_t>();
  m.choices.pop<uint32_t>();
  return retryGreedy(m, greedy, quantifier, asForeseen);
}

// ---- Lazy repeats. While one goes on, its choice is the newest.

namespace {

// A lazy repeat of one byte looks for the literal that follows it before it tries anything, and places
// without it cost no step. Whether that literal is itself optional is not asked.
bool looksForLiteral(const MatchContext& m, const RxNode& item, const RxNode* next) {
  if (codeOf(item) != RX_CHAR && codeOf(item) != RX_BYTE) return false;
  return next != m.programEnd && codeOf(*next) == RX_CHAR && !(m.options & RX_OPT_CASELESS);
}

// The repeat has no choice left.
ULK_INLINE Outcome failRepeat(MatchContext& m) {
  m.choices.pop<LazyChoice>();
  return fail(m);
}

// The bytes that a lazy repeat of one byte has taken stay counted when it finally fails: callers know the
// lengths that come of it.
ULK_INLINE Outcome failLazy(const RxNode& item, MatchContext& m) {
  if (codeOf(item) == RX_CHAR) m.surplus += m.choices.top<LazyChoice>().count.number();
  return failRepeat(m);
}

// The place behind one more item, null if there may be none or is none.
const uint8_t* takeOneMore(const MatchContext& m, LazyChoice& choice, const RxNode& item, const uint8_t* at) {
  if (choice.count.number() >= choice.most) return nullptr;
  const int32_t length = itemLength(m, item, at);
  if (length == kNoMatch) return nullptr;
  choice.count += 1;
  return at + length;
}

int32_t stillAllowed(const LazyChoice& choice) { return choice.most - choice.count.number(); }

// Where items of one byte end before which nothing that may follow begins. `accepts` tells of one that it is
// an item, `behind` where many in a row end: they are used up to the next place of the byte that may follow,
// if it is only one, and not a near one.
template <class Accepts, class Behind>
ULK_INLINE const uint8_t* behindHopeless(const MatchContext& m, const Follow& follow, const uint8_t* at,
                                         const uint8_t* end, Accepts accepts, Behind behind) {
  constexpr ptrdiff_t kNear = 12;
  const auto isHopeless = [&] { return *at < 0x80 && !follow.admits(m, at) && accepts(*at); };
  const uint8_t* const near = at + std::min(end - at, kNear);
  while (at < near && isHopeless()) ++at;
  if (at < near || at == end) return at;
  const int32_t only = onlyByte(*follow.set);
  while (at < end && isHopeless()) {
    ++at;
    if (only < 0) continue;
    const int32_t found = findUnit(at, static_cast<int32_t>(end - at), static_cast<uint8_t>(only));
    at = behind(at, found < 0 ? end : at + found);
  }
  return at;
}

// Takes items of one byte as long as what follows cannot begin before them, and pays for the tries.
const uint8_t* takeHopelessItems(MatchContext& m, LazyChoice& choice, const RxNode& item, const uint8_t* from,
                                 const Follow& follow) {
  const int32_t affordable = m.budget.left() / follow.note.steps();
  const int32_t most = std::min({stillAllowed(choice), m.remaining(from), affordable});
  const uint8_t* const end = from + std::max(most, 0);
  const uint8_t* at = from;
  const Set128* const set = codeOf(item) == RX_CLASS ? classSet(item, m.options) : nullptr;
  if (set) {
    at = behindHopeless(
        m, follow, from, end, [set](uint8_t byte) { return set->contains(byte); },
        [set](auto* first, auto* last) { return behindBytes(first, last, *set); });
  } else if (codeOf(item) == RX_CHARTYPE) {
    const uint8_t wanted = byteSetOf(item, m.options);
    at = behindHopeless(
        m, follow, from, end, [wanted](uint8_t byte) { return inByteSet(byte, wanted); },
        [&m, wanted](auto* first, auto* last) { return behindBytes(first, last, m.byteSets, wanted); });
  }
  const auto taken = static_cast<int32_t>(at - from);
  choice.count += taken;
  payForTries(m, follow, taken);
  return at;
}

// Takes items of one byte up to the next place of the literal. Where they do not reach one, the place
// returned is another.
const uint8_t* takeToLiteral(const MatchContext& m, LazyChoice& choice, const RxNode& item, const uint8_t* at,
                             int32_t literal) {
  if (at < m.textEnd && *at == literal) return at;
  const int32_t most = stillAllowed(choice);
  Taken taken;
  if (codeOf(item) == RX_CHAR) {
    taken = takeItems(m, item, at, most);
  } else {
    const int32_t left = std::max(m.remaining(at), 0);
    const int32_t found =
        literal > 255 ? -1 : findUnit(at, std::min(left, most + 1), static_cast<uint8_t>(literal));
    taken.count = found < 0 ? std::min(left, most) : found;
    taken.end = at + taken.count;
  }
  choice.count += taken.count;
  return taken.end;
}

// Without budget nothing can be tried any more; the items are still counted.
ULK_INLINE Outcome exhaustLazy(const uint8_t* at, const RxNode& item, MatchContext& m) {
  auto& choice = m.choices.top<LazyChoice>();
  if (codeOf(item) == RX_CHAR) choice.count += takeItems(m, item, at, stillAllowed(choice)).count;
  return failLazy(item, m);
}

// Tries what follows the repeat of the item at the present count, or at the next one where it may be tried
// and can succeed.
ULK_STEP continueLazy(const uint8_t* at, const RxNode* item, MatchContext& m) {
  auto& choice = m.choices.top<LazyChoice>();
  const RxNode* const quantifier = afterItem(item);
  const RxNode* const next = quantifier + 1;
  const Follow follow = choice.count.flag() ? followOf(m, *quantifier, m.options) : noFollow(*quantifier);
  if (follow.set && m.budget.suffices(1)) at = takeHopelessItems(m, choice, *item, at, follow);
  const bool looks = looksForLiteral(m, *item, next);
  for (;;) {
    if (m.budget.isExhausted()) return exhaustLazy(at, *item, m);
    if (looks) {
      at = takeToLiteral(m, choice, *item, at, byteOf(*next));
      if (at >= m.textEnd || *at != byteOf(*next)) return failLazy(*item, m);
    }
    if (!follow.excludes(m, at) || !canPay(m, follow, 1)) break;
    payForTries(m, follow, 1);
    const uint8_t* const behind = takeOneMore(m, choice, *item, at);
    if (!behind) return failLazy(*item, m);
    at = behind;
  }
  choice.at = m.offsetOf(at);
  return goOnWithChoice(at, next, m);
}

// Takes the character at the position into a lazy repeat of code points or properties. False if the repeat
// then has no choice left.
bool takeCharacter(const MatchContext& m, LazyChoice& choice, const uint8_t* behind) {
  choice.count += 1;
  return choice.count.number() <= choice.most && behind <= m.textEnd;
}

// The character that a lazy code point looks at. Behind the end of the text no more is read than it takes to
// tell whether it is that code point: nothing of several bytes is ASCII.
Utf8Char characterFor(const MatchContext& m, const RxNode& item, const uint8_t* at) {
  const bool isAscii = codePointOf(item) >= 0 && codePointOf(item) < 0x80 && !(m.options & RX_OPT_CASELESS);
  if (isAscii && at == m.textEnd) return {static_cast<int8_t>(*at), 1};
  return decodeUtf8(at);
}

// A lazy code point looks at the character first, also at the end of the text: one that differs makes the run
// match as it stands, whatever follows in the program.
ULK_STEP continueLazyCodePoint(const uint8_t* at, const RxNode* item, MatchContext& m) {
  auto& choice = m.choices.top<LazyChoice>();
  // The search that is to be made again might not come to the end of the text at all.
  if (m.budget.mayHaveSufficed()) return failRepeat(m);
  for (;;) {
    const Utf8Char character = characterFor(m, *item, at);
    if (!codePointAccepts(*item, character.value, m.options)) return runMatched(at, item, m);
    if (!m.budget.isExhausted()) break;
    at += character.length;
    if (!takeCharacter(m, choice, at)) return failRepeat(m);
  }
  choice.at = m.offsetOf(at);
  return goOnWithChoice(at, item + 2, m);
}

// A lazy property takes every character, but tries what follows only before one that has the property.
ULK_STEP continueLazyProperty(const uint8_t* at, const RxNode* item, MatchContext& m) {
  auto& choice = m.choices.top<LazyChoice>();
  for (;;) {
    if (m.budget.isExhausted()) return failRepeat(m);
    const Utf8Char character = decodeUtf8(at);
    if (propertyAccepts(*item, character.value)) break;
    at += character.length;
    if (!takeCharacter(m, choice, at)) return failRepeat(m);
  }
  choice.at = m.offsetOf(at);
  return goOnWithChoice(at, item + 2, m);
}

}  // namespace

ULK_STEP stepLazyItem(const uint8_t* at, const RxNode* node, MatchContext& m) {
  const RxNode* const quantifier = afterItem(node);
  const int32_t least = minOf(*quantifier);
  const int32_t most = std::min(maxOf(*quantifier), m.remaining(at));
  if (least > m.remaining(at)) return fail(m);
  if (least > 0) {
    const Taken required = takeItems(m, *node, at, least);
    if (required.count < least) return fail(m);
    at = required.end;
  }
  auto& choice = push<LazyChoice>(m, ChoiceKind::kLazy, at, node);
  choice.most = most;
  choice.count = {least, followOf(m, *quantifier, m.options).set != nullptr};
  switch (codeOf(*node)) {
    case RX_CODEPOINT:
      choice.tag.setKind(ChoiceKind::kLazyCodePoint);
      return at <= m.textEnd ? continueLazyCodePoint(at, node, m) : failRepeat(m);
    case RX_CATEGORY:
    case RX_UNIRANGE:
    case RX_SCRIPT:
      choice.tag.setKind(ChoiceKind::kLazyProperty);
      return at <= m.textEnd ? continueLazyProperty(at, node, m) : failRepeat(m);
    default:
      return continueLazy(at, node, m);
  }
}

Outcome retryLazy(MatchContext& m) {
  auto& choice = m.choices.top<LazyChoice>();
  const RxNode* const item = m.nodes() + choice.tag.node();
  if (choice.count.flag() && !followOf(m, *afterItem(item), m.options).set) choice.count.setFlag(false);
  const uint8_t* const behind = takeOneMore(m, choice, *item, placeOf(m, choice.at));
  return behind ? continueLazy(behind, item, m) : failLazy(*item, m);
}

Outcome retryLazyCodePoint(MatchContext& m) {
  auto& choice = m.choices.top<LazyChoice>();
  const RxNode* const item = m.nodes() + choice.tag.node();
  const uint8_t* const at = placeOf(m, choice.at);
  const uint8_t* const behind = at + characterFor(m, *item, at).length;
  return takeCharacter(m, choice, behind) ? continueLazyCodePoint(behind, item, m) : failRepeat(m);
}

Outcome retryLazyProperty(MatchContext& m) {
  auto& choice = m.choices.top<LazyChoice>();
  const RxNode* const item = m.nodes() + choice.tag.node();
  const uint8_t* const at = placeOf(m, choice.at);
  const uint8_t* const behind = at + decodeUtf8(at).length;
  return takeCharacter(m, choice, behind) ? continueLazyProperty(behind, item, m) : failRepeat(m);
}

}  // namespace ulk
