#include "regexp/search/set_scan.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "frame/export.h"
#include "regexp/analysis/window.h"
#include "regexp/search/attempt.h"
#include "regexp/search/byte_runs.h"
#include "regexp/search/search.h"
#include "regexp/text/folded.h"

namespace ulk {

namespace {

constexpr int32_t kMostSlots = 512;
constexpr int32_t kMostKeys = 1280;
constexpr int32_t kFewBits = 10;  // of a hash, for few keys and a short text
constexpr int32_t kManyBits = 14;
constexpr int32_t kNumChains = 256;  // those with an odd number
constexpr int32_t kChunk = 2048;     // of the text that is folded at once
constexpr int32_t kAround = 16;      // bytes before and behind it that are there as well

constexpr int32_t kByteEffort = 60;      // of the pass, in hundredths of nanoseconds,
constexpr int32_t kShortEffort = 50;     // and more if there are short keys
constexpr int32_t kSearchEffort = 7000;  // of a search that finds nothing in a text that is empty
constexpr int64_t kMostWaste = 2;        // steps for a byte: it is searched for alone in another way

// One expression in the pass. Places are counted from the start of the text.
struct Slot {
  int32_t index;       // in the set
  int32_t at;          // all starts before it are settled
  int32_t end;         // of the text, cut at the trailing literal where `isCut`
  int32_t left;        // of the match limit
  int64_t wasted;      // steps of attempts that failed
  int32_t numWritten;  // records
  bool isCut;
  bool isDone;
};

struct Entry {
  uint32_t bytes;  // to look for, as many of the key as all short ones have
  const WindowKey* key;
  uint16_t slot;
  uint16_t next;  // of the chain, 0: none
};

bool hasWindow(const ulkRegExpState& state) {
  return state.magic == kStateMagic && startFilterOf(state).window == WindowState::kFound;
}

// A part of the text where no run of bytes of a set has that length.
struct KnownRuns {
  ByteSet256 set;
  int32_t from;
  int32_t to;
  int32_t length;
};

class SetScan {
 public:
  SetScan(const uint8_t* text, int32_t length, ulkRegExpState* const* expressions,
          ulkRegExpMultiFind* results)
      : text_(text), length_(length), expressions_(expressions), results_(results) {}

  void search(int32_t first, int32_t last);

 private:
  int32_t gather(int32_t first, int32_t last);
  bool join(int32_t index);
  void leaveOutShort();
  bool isWorthwhile() const;
  void makeTable();
  void scan();
  void fold(int32_t base);
  template <int bits, bool hasShort>
  void scanChunk(int32_t base, int32_t count);
  static bool isAt(const WindowKey& key, const uint8_t* folded);
  void visit(uint32_t bytes, uint8_t chain, int32_t base, int32_t i);
  void tryWindow(Slot& slot, int32_t least, int32_t at);
  void tryRange(Slot& slot, int32_t first, int32_t last);
  bool isWorthAttempt(const uint8_t* at) const;
  const uint8_t* takeMatch(Slot& slot);
  bool paySkipped(Slot& slot, int32_t to);
  bool runsAreShorter(const Slot& slot, int32_t to, int32_t length);
  int32_t firstStart(const Slot& slot, int32_t at) const;
  void cut(Slot& slot);
  void end(Slot& slot, int32_t numFound);
  void settle(Slot& slot);
  void searchAlone(Slot& slot);
  void searchAlone(int32_t index);
  uint32_t shortMask() const { return ~0u >> (32 - 8 * shortSize_); }
  ulkRegExpState& stateOf(const Slot& slot) const { return *expressions_[slot.index]; }

  const uint8_t* const text_;
  const int32_t length_;
  ulkRegExpState* const* const expressions_;
  ulkRegExpMultiFind* const results_;

  ulkRegExpState* state_ = nullptr;  // that the context is prepared for
  MatchContext m_;
  int32_t numSlots_ = 0;
  int32_t numKeys_ = 0;
  int32_t numActive_ = 0;
  int32_t numShort_ = 0;             // expressions that have short keys,
  int32_t shortEffort_ = 0;          // and their part of that
  int32_t effort_ = 0;               // for a byte, if all of them were searched for by themselves
  uint8_t shortSize_ = kMaxKeySize;  // of the keys of less than four bytes
  bool isSmall_ = false;             // the table
  KnownRuns runs_{{}, 0, 0, 0};      // what is known of some
  Slot slots_[kMostSlots];
  Entry entries_[kMostKeys + 1];
  uint16_t heads_[kNumChains];       // of chains of entries
  uint8_t chainOf_[1 << kManyBits];  // by the hash of a key
  alignas(16) uint8_t folded_[kChunk + 5 * kAround];
  alignas(RunChoice) std::byte choices_[kSearchChoices];
};

void SetScan::searchAlone(int32_t index) {
  ulkRegExpMultiFind& result = results_[index];
  result.status = rxFind(text_, length_, expressions_[index], result.pFind, &result.numFind);
}

// From the start, whatever the pass has found: a search of its own finds that as well.
void SetScan::searchAlone(Slot& slot) {
  slot.isDone = true;
  --numActive_;
  searchAlone(slot.index);
}

void SetScan::end(Slot& slot, int32_t numFound) {
  slot.isDone = true;
  --numActive_;
  results_[slot.index].numFind = numFound;
  results_[slot.index].status = ulkOk;
}

// Nothing more is found.
void SetScan::settle(Slot& slot) {
  const bool isUntried = slot.at == 0 && windowOf(stateOf(slot)).stepsPerByte == 0;
  const bool isPaid = isUntried || paySkipped(slot, slot.end + 1);
  isPaid ? end(slot, slot.numWritten) : searchAlone(slot);
}

// ---- Before the pass

// Whether the expression can be in the pass.
bool SetScan::join(int32_t index) {
  const ulkRegExpState& state = *expressions_[index];
  const ulkRegExpMultiFind& result = results_[index];
  if (!hasWindow(state)) return false;
  if (!result.pFind || result.numFind < 1) return false;
  if ((state.options & RX_OPT_GLOBAL) && result.numFind < std::max(state.numCaptures - 1, 1)) return false;

  const Window& window = windowOf(state);
  if (int64_t{window.leastSteps} * (length_ + 1) > state.matchLimit) return false;
  const WindowKey* const keys = windowKeys(state);
  for (int32_t i = 0; i < window.numKeys; ++i) {
    Entry& entry = entries_[++numKeys_];
    entry.bytes = keys[i].bytes;
    entry.key = &keys[i];
    entry.slot = static_cast<uint16_t>(numSlots_);
  }
  effort_ += window.effort;
  if (window.shortest < kMaxKeySize) {
    shortSize_ = std::min(shortSize_, window.shortest);
    shortEffort_ += window.effort;
    ++numShort_;
  }
  slots_[numSlots_++] = {index, 0, length_, state.matchLimit, 0, 0, state.trailingLiteral < 0, false};
  return true;
}

// Takes expressions into the pass as long as there is room; searches for those alone that cannot be in it.
// Returns the next one.
int32_t SetScan::gather(int32_t first, int32_t last) {
  numSlots_ = numKeys_ = numShort_ = effort_ = shortEffort_ = 0;
  shortSize_ = kMaxKeySize;
  int32_t index = first;
  for (; index < last && numSlots_ < kMostSlots && numKeys_ <= kMostKeys - kMaxWindowKeys; ++index)
    if (expressions_[index] && !join(index)) searchAlone(index);
  return index;
}

template <int bits>
uint32_t hashOf(uint32_t bytes) {
  return bytes * 0x9E3779B1u >> (32 - bits);
}

// The longer the text, the thinner the keys are spread over the table.
void SetScan::makeTable() {
  constexpr int32_t kFewKeys = 96, kShort = 1024;
  isSmall_ = numKeys_ <= kFewKeys && length_ <= kShort;
  std::memset(chainOf_, 0, size_t{1} << (isSmall_ ? kFewBits : kManyBits));
  std::memset(heads_, 0, sizeof heads_);
  uint8_t lastChain = 0;
  for (int32_t i = numKeys_; i > 0; --i) {
    Entry& entry = entries_[i];
    if (slots_[entry.slot].isDone) continue;
    if (entry.key->size < kMaxKeySize) entry.bytes &= shortMask();
    uint8_t& chain = chainOf_[isSmall_ ? hashOf<kFewBits>(entry.bytes) : hashOf<kManyBits>(entry.bytes)];
    if (chain == 0)
      chain = lastChain = lastChain == kNumChains - 1 ? uint8_t{1} : static_cast<uint8_t>(lastChain + 1);
    entry.next = heads_[chain];
    heads_[chain] = static_cast<uint16_t>(i);
  }
}

// Few expressions with short keys would slow the pass down more than they take by themselves.
void SetScan::leaveOutShort() {
  for (int32_t i = 0; i < numSlots_ && shortSize_ != kMaxKeySize; ++i)
    if (windowOf(stateOf(slots_[i])).shortest < kMaxKeySize) searchAlone(slots_[i]);
  effort_ -= shortEffort_;
  shortSize_ = kMaxKeySize;
}

// Whether the pass takes less time than searches one by one, in hundredths of nanoseconds: few expressions in
// a long text, each of which is found quickly, are better off by themselves.
bool SetScan::isWorthwhile() const {
  constexpr int64_t kPass = 10000, kSlot = 2200, kKey = 300;
  const int64_t perByte = shortSize_ == kMaxKeySize ? kByteEffort : kByteEffort + kShortEffort;
  return kPass + kSlot * numSlots_ + kKey * numKeys_ + perByte * length_ <
         int64_t{kSearchEffort} * numActive_ + int64_t{effort_} * length_;
}

void SetScan::search(int32_t first, int32_t last) {
  while (first < last) {
    first = gather(first, last);
    numActive_ = numSlots_;
    if (int64_t{kSearchEffort} * numShort_ + int64_t{shortEffort_} * length_ <
        int64_t{kShortEffort} * length_)
      leaveOutShort();
    if (!isWorthwhile()) {
      for (int32_t i = 0; i < numSlots_; ++i)
        if (!slots_[i].isDone) searchAlone(slots_[i]);
      continue;
    }
    makeTable();
    scan();
    for (int32_t i = 0; i < numSlots_ && numActive_ > 0; ++i) {
      Slot& slot = slots_[i];
      if (!slot.isDone) settle(slot);
    }
  }
}

// ---- The pass

void SetScan::scan() {
  for (int32_t base = 0; base < length_ && numActive_ > 0; base += kChunk) {
    fold(base);
    const int32_t count = std::min(length_ - base, kChunk);
    if (isSmall_)
      shortSize_ == kMaxKeySize ? scanChunk<kFewBits, false>(base, count)
                                : scanChunk<kFewBits, true>(base, count);
    else
      shortSize_ == kMaxKeySize ? scanChunk<kManyBits, false>(base, count)
                                : scanChunk<kManyBits, true>(base, count);
  }
}

// Folds the text from there on, with what stands around it; outside the text there are zeros.
void SetScan::fold(int32_t base) {
  const int32_t before = std::min(base, kAround);
  const int32_t count = std::min(length_ - base, kChunk + kAround) + before;
  uint8_t* const to = folded_ + kAround - before;
  std::memcpy(to, text_ + base - before, static_cast<size_t>(count));
  for (int32_t i = 0; i < count; i += 16) foldedBytes(Vec16<uint8_t>::load(to + i)).store(to + i);
  std::memset(folded_, 0, static_cast<size_t>(kAround - before));
  std::memset(to + count, 0, kAround);
}

template <int bits, bool hasShort>
void SetScan::scanChunk(int32_t base, int32_t count) {
  const uint8_t* const folded = folded_ + kAround;
  const uint8_t* const chainOf = chainOf_;
  const uint32_t mask = shortMask();
  for (int32_t i = 0; i < count; i += 8) {
    const auto chains = [=](int32_t k) ULK_LAMBDA_INLINE -> uint32_t {
      const auto bytes = loadAs<uint32_t>(folded + i + k);
      const uint32_t chain = chainOf[hashOf<bits>(bytes)];
      return hasShort ? chain | chainOf[hashOf<bits>(bytes & mask)] : chain;
    };
    if ((chains(0) | chains(1) | chains(2) | chains(3) | chains(4) | chains(5) | chains(6) | chains(7)) == 0)
      continue;
    for (int32_t k = i; k < i + 8; ++k) {
      const auto bytes = loadAs<uint32_t>(folded + k);
      if (const uint8_t chain = chainOf[hashOf<bits>(bytes)]) visit(bytes, chain, base, k);
      if (!hasShort) continue;
      if (const uint8_t chain = chainOf[hashOf<bits>(bytes & mask)]) visit(bytes & mask, chain, base, k);
    }
    if (numActive_ == 0) return;
  }
}

// Whether the key stands at that place of the folded text, and around it what must be there.
bool SetScan::isAt(const WindowKey& key, const uint8_t* folded) {
  const uint32_t other = loadAs<uint32_t>(folded) ^ key.bytes;
  const uint32_t more = loadAs<uint32_t>(folded + key.moreAt) ^ key.more;
  return other << (32 - 8 * key.size) == 0 && (more & key.mask) == 0;
}

// Tries the expressions of a chain with a key that stands at that place.
void SetScan::visit(uint32_t bytes, uint8_t chain, int32_t base, int32_t i) {
  for (uint16_t* link = &heads_[chain]; *link != 0;) {
    Entry& entry = entries_[*link];
    if (entry.bytes == bytes) {
      Slot& slot = slots_[entry.slot];
      if (!slot.isDone && isAt(*entry.key, folded_ + kAround + i))
        tryWindow(slot, entry.key->least, base + i);
      if (slot.isDone) {
        *link = entry.next;
        continue;
      }
    }
    link = &entry.next;
  }
}

// The first start from which a match can reach a window at `at`.
int32_t SetScan::firstStart(const Slot& slot, int32_t at) const {
  const ulkRegExpState& state = stateOf(slot);
  int32_t first = std::max(at - windowOf(state).most, slot.at);
  if (windowOf(state).most < 0) {
    const ByteSet256& set = state.frames[kWindowSetFrame].bytes;
    for (first = at; first > slot.at && set.contains(text_[first - 1]);) --first;
  }
  return first;
}

// A window stands at `at`: tries the starts that it can belong to.
void SetScan::tryWindow(Slot& slot, int32_t least, int32_t at) {
  const int32_t last = at - least;
  if (last < slot.at) return;
  int32_t first = firstStart(slot, at);
  if (first > last) return;
  const ulkRegExpState& state = stateOf(slot);
  if (!slot.isCut && windowOf(state).cutMatters) cut(slot);
  if (!paySkipped(slot, first)) return searchAlone(slot);
  // A continuation byte need not be the start of a character.
  if (state.format == kFormatUtf8)
    while (first > slot.at && isContinuation(text_[first])) --first;
  slot.at = first;
  if (first > slot.end) return settle(slot);
  tryRange(slot, first, std::min(last, slot.end));
}

void SetScan::cut(Slot& slot) {
  slot.isCut = true;
  slot.end = cutAtTrailingLiteral(stateOf(slot), text_, length_);
}

// Whether a match can begin at that place of the text.
bool SetScan::isWorthAttempt(const uint8_t* at) const {
  const StartFilter& filter = startFilterOf(*state_);
  switch (filter.kind) {
    case StartKind::kAny:
      return true;
    case StartKind::kTextStart:
      return at == text_;
    case StartKind::kLineStart:
      return at == text_ || at[-1] == '\n';
    default:
      return state_->frames[kStartSetFrame].bytes.contains(*at);
  }
}

// Tries all starts from one to another.
void SetScan::tryRange(Slot& slot, int32_t first, int32_t last) {
  ulkRegExpState& state = stateOf(slot);
  if (state_ != &state) {
    state_ = &state;
    prepareMatcher(m_, state, choices_);
    m_.textStart = text_;
  }
  m_.textEnd = text_ + slot.end;
  m_.options = windowOf(state).options;
  m_.budget.start(slot.left, false);
  const uint8_t* at = text_ + first;
  while (at <= text_ + last) {
    const int32_t before = m_.budget.left();
    if (!isWorthAttempt(at)) {
      m_.budget.pay(startFilterOf(state).steps);
    } else if (matchAt(m_, at)) {
      at = takeMatch(slot);
      if (slot.isDone) return;
      continue;
    }
    slot.wasted += int64_t{before} - m_.budget.left();
    if (m_.budget.isExhausted() || slot.wasted > kMostWaste * (length_ + 1)) return searchAlone(slot);
    at = nextStart(m_, startFilterOf(state).anchor, at);
  }
  slot.at = static_cast<int32_t>(at - text_);
  slot.left = m_.budget.left();
  if (!slot.isCut && slot.wasted > length_ / 256) cut(slot);
}

// Writes the records of a match, and returns where the search goes on.
const uint8_t* SetScan::takeMatch(Slot& slot) {
  ulkRegExpState& state = stateOf(slot);
  const CaptureSlot match = state.captures[0];
  const ulkRegExpMultiFind& result = results_[slot.index];
  const bool all = state.options & RX_OPT_GLOBAL;
  // Lazy repeats can end a match with the options of a group in force, where the next attempt goes on.
  const bool staysSame = match.length > 0 && m_.options == windowOf(state).options;
  if (m_.budget.isExhausted() || (all && !staysSame)) {
    searchAlone(slot);
    return nullptr;
  }
  const int32_t skip = all && state.numCaptures > 1 ? 1 : 0;
  const int32_t most = all ? state.numCaptures : std::min(state.numCaptures, result.numFind);
  copyCaptures(state, skip, most, result.pFind + slot.numWritten);
  slot.numWritten += most - skip;
  const bool isFull = slot.numWritten > result.numFind - (most - skip);
  if (!all || isFull || !staysInText(match.start, match.length, m_.textEnd)) {
    end(slot, slot.numWritten);
    return nullptr;
  }
  return match.start + match.length;
}

// ---- What is not tried

// Whether no run of bytes before a window, of those up to `to`, has that length.
bool SetScan::runsAreShorter(const Slot& slot, int32_t to, int32_t length) {
  if (length < kLeastRun) return false;
  const ByteSet256& set = stateOf(slot).frames[kWindowSetFrame].bytes;
  const int32_t end = std::min(to, slot.end);
  // Many expressions have `.*`.
  const bool isKnown = runs_.from <= slot.at && end <= runs_.to && runs_.length <= length &&
                       std::memcmp(&runs_.set, &set, sizeof set) == 0;
  if (isKnown) return true;
  if (findRunOf(set, text_ + slot.at, text_ + end, length)) return false;
  runs_ = {set, slot.at, end, length};
  return true;
}

// Pays for the starts before `to`; false where what is left may not suffice.
bool SetScan::paySkipped(Slot& slot, int32_t to) {
  const Window& window = windowOf(stateOf(slot));
  const int32_t starts = to - slot.at;
  if (starts <= 0) return true;
  int32_t steps = window.steps;
  if (window.stepsPerByte > 0) {
    // Each start may cost its share.
    const int32_t share = slot.left / (length_ + 1 - slot.at);
    const int32_t longest = std::min(starts, (share - window.steps) / window.stepsPerByte);
    if (longest < starts && !runsAreShorter(slot, to, longest)) return false;
    steps += window.stepsPerByte * longest;  // not more than the share
  }
  const int64_t paid = int64_t{starts} * steps;
  if (paid > slot.left) return false;
  slot.left -= static_cast<int32_t>(paid);
  return true;
}

}  // namespace

int64_t prepareToFindTogether(int32_t length, ulkRegExpState* const* expressions, int32_t count) {
  constexpr int32_t kEach = 16;
  int64_t alone = 0;
  for (int32_t i = 0; i < count; ++i) {
    ulkRegExpState* const state = expressions[i];
    if (!state || state->magic != kStateMagic) continue;
    if (startFilterOf(*state).window == WindowState::kUnknown) findWindow(*state);
    if (startFilterOf(*state).window == WindowState::kNone) ++alone;
  }
  return alone * length + length / 4 + int64_t{kEach} * count;
}

__attribute__((noinline)) ULK_EXPORT void findTogether(const uint8_t* text, int32_t length,
                                                       ulkRegExpState* const* expressions,
                                                       ulkRegExpMultiFind* results, int32_t first,
                                                       int32_t last) {
  SetScan(text, length, expressions, results).search(first, last);
}

}  // namespace ulk
