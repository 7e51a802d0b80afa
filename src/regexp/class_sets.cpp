#include "regexp/class_sets.h"

#include <algorithm>
#include <bit>

#include "regexp/byte_sets.h"
#include "regexp/bytes.h"
#include "regexp/items.h"
#include "unicode/unicode.h"

namespace ulk {

namespace {

constexpr int32_t kWordsPerSet = 4;
constexpr int32_t kKindWords = kMaxKinds / 32;
constexpr int32_t kScriptWords = kMaxScripts / 32;
constexpr int32_t kListLengths = 2;
constexpr int32_t kNodeWords = sizeof(RxNode) / sizeof(uint32_t);

// Code points from the first to the last, compared as signed numbers.
struct Interval {
  int32_t low;
  int32_t high;
};
constexpr Interval kNothing{1, 0};
constexpr int32_t kIntervalWords = sizeof(Interval) / sizeof(uint32_t);

bool contains(const uint32_t* words, int32_t number) { return (words[number >> 5] >> (number & 31)) & 1; }

void addBit(int32_t number, uint32_t* words) { words[number >> 5] |= 1u << (number & 31); }

// ---- Sets of 128

void addAll(const Set128& other, Set128& set) {
  for (int i = 0; i < kWordsPerSet; ++i) set.words[i] |= other.words[i];
}

// The numbers from `first` to `last` as far as they are below 128.
void addSpan(int64_t first, int64_t last, Set128& set) {
  if (first > 127 || last < 0) return;
  const auto low = static_cast<int32_t>(std::max<int64_t>(first, 0));
  const auto high = static_cast<int32_t>(std::min<int64_t>(last, 127));
  for (int32_t i = low >> 5; i <= high >> 5; ++i) {
    const uint32_t from = ~0u << (i == low >> 5 ? low & 31 : 0);
    const uint32_t to = ~0u >> (i == high >> 5 ? 31 - (high & 31) : 0);
    set.words[i] |= from & to;
  }
}

Set128 inverse(const Set128& set) { return {{~set.words[0], ~set.words[1], ~set.words[2], ~set.words[3]}}; }

constexpr Set128 kAll128{{~0u, ~0u, ~0u, ~0u}};

bool same(const Set128& a, const Set128& b) { return std::equal(a.words, a.words + kWordsPerSet, b.words); }

// The upper-case letters of ASCII are bits of word 2, the lower-case ones the same bits of word 3.
constexpr uint32_t kLetterBits = 0x07FFFFFE;
constexpr Set128 kLetters{{0, 0, kLetterBits, kLetterBits}};

// With the letters of the set in both cases.
Set128 inBothCases(Set128 set) {
  const uint32_t letters = (set.words[2] | set.words[3]) & kLetterBits;
  set.words[2] |= letters;
  set.words[3] |= letters;
  return set;
}

// The ASCII characters whose lowercase lies in the interval.
Set128 asciiOfFolded(Interval folded) {
  Set128 set{};
  addSpan(folded.low, folded.high, set);
  set.words[2] = (set.words[2] & ~kLetterBits) | (set.words[3] & kLetterBits);
  return set;
}

// ---- Members

bool isByteRange(const RxNode& member) { return member.op1 < 256 && member.op2 < 256; }

bool rangeAccepts(const RxNode& member, Utf8Char character, uint8_t byte, uint32_t options) {
  const int32_t low = member.op1;
  const int32_t high = member.op2;
  if (character.length == 1 && isByteRange(member)) {
    const auto inRange = [&](int32_t c) { return low <= c && c <= high; };
    if (inRange(byte)) return true;
    return (options & RX_OPT_CASELESS) && isAsciiLetter(byte) && inRange(byte ^ 0x20);
  }
  if (options & RX_OPT_CASELESS) {
    const int32_t folded = foldCase(character.value);
    return foldCase(low) <= folded && folded <= foldCase(high);
  }
  return low <= character.value && character.value <= high;
}

// One member's answer, its own negation included.
bool memberAccepts(const RxNode& member, Utf8Char character, uint8_t byte, uint32_t options) {
  const int32_t byteOrCodePoint = character.length == 1 ? byte : character.value;
  switch (member.code) {
    case RX_CHAR:
      return sameByte(member.op1, byteOrCodePoint, options) != (member.op3 != 0);
    case RX_RANGE:
      return rangeAccepts(member, character, byte, options) != (member.op3 != 0);
    case RX_CHARTYPE:
      return inByteSet(byte, byteSetOf(member.op1, options)) != (member.op3 != 0);
    case RX_CODEPOINT:
      return codePointAccepts(member, character.value, options) != (member.op3 != 0);
    default:
      return propertyAccepts(member, character.value);
  }
}

// ---- What the members accept

// Of the members that are code points or ranges of them: what each accepts of the characters of several
// bytes.
struct Spans {
  Interval plain = kNothing;
  Interval folded = kNothing;  // against a character folded to lowercase
};

// Whether a character of several bytes can fold into the interval. Two of them fold to ASCII, to "i" and "k".
bool isFoldedTo(Interval folded) {
  const auto holds = [=](int32_t c) { return folded.low <= c && c <= folded.high; };
  return folded.low <= folded.high && (folded.high >= 0x80 || holds('i') || holds('k'));
}

bool hasSpans(const RxNode& member) {
  return member.code == RX_RANGE || member.code == RX_CODEPOINT || member.code == RX_UNIRANGE;
}

int32_t fold(int32_t c) {
  if (c >= 0x80) return foldCase(c);
  return c >= 'A' && c <= 'Z' ? c ^ 0x20 : c;
}

Spans spansOf(const RxNode& member) {
  const Interval plain{member.op1, member.code == RX_CODEPOINT ? member.op1 : member.op2};
  return {plain, {fold(plain.low), fold(plain.high)}};
}

// All members of a class in one. Only those of POSIX classes and "\P{Any}" can be negated ranges or code
// points, and only an ASCII byte can be a negated RX_CHAR.
class Union {
 public:
  void add(const RxNode& member);
  void finish();

  Set128 ascii(bool caseless) const { return caseless ? asciiFolded_ : asciiPlain_; }

  Set128 high{};  // bytes from 0x80 on that are characters by themselves
  Set128 chars[3]{};
  uint32_t numCharSets = 0;
  bool anyMultibyte = false;
  uint64_t kinds = 0;
  uint32_t scripts[kScriptWords] = {};
  bool hasScripts = false;
  // At most so many intervals are in the lists.
  int32_t numPlain = 0;
  int32_t numFolded = 0;
  // What none of the negated ranges accepts.
  bool hasNegated = false;
  Spans refused;

 private:
  void addChar(const RxNode& member);
  void addShorthand(const RxNode& member);
  void addRange(const RxNode& member);
  void addCodes(const RxNode& member);
  void addScript(const RxNode& member);
  void addInBoth(const Set128& set);
  void refuse(const Spans& spans);

  Set128 bytes_{};  // of members that compare bytes: letters match in both cases if i is in force
  Set128 asciiPlain_{};
  Set128 asciiFolded_{};
};

void Union::add(const RxNode& member) {
  switch (member.code) {
    case RX_CHAR:
      return addChar(member);
    case RX_CHARTYPE:
      return addShorthand(member);
    case RX_RANGE:
      return addRange(member);
    case RX_CATEGORY:
      kinds |= acceptedKinds(static_cast<uint32_t>(member.op1), member.op2 != 0);
      return;
    case RX_SCRIPT:
      return addScript(member);
    default:
      return addCodes(member);
  }
}

void Union::addInBoth(const Set128& set) {
  addAll(set, asciiPlain_);
  addAll(set, asciiFolded_);
}

void Union::addChar(const RxNode& member) {
  const int32_t c = member.op1;
  if (member.op3 != 0) {
    Set128 set{};
    addBit(c, set.words);
    addInBoth(inverse(set));
    high = kAll128;
    anyMultibyte = true;
  } else if (c < 0x80) {
    addBit(c, bytes_.words);
  } else {
    if (c < 0x100) addBit(c - 0x80, high.words);
    addBit(c & 0x7F, chars[(c >> 7) - 1].words);
    numCharSets = std::max(numCharSets, c < 0x100 ? 1u : 3u);
  }
}

void Union::addShorthand(const RxNode& member) {
  ByteSet256 set{};
  ulk::addShorthand(member.op1, 0, set);
  const bool highBytes = inByteSet(0x80, byteSetOf(member.op1, 0)) != (member.op3 != 0);
  const Set128 ascii{{set.words[0], set.words[1], set.words[2], set.words[3]}};
  addInBoth(member.op3 != 0 ? inverse(ascii) : ascii);
  if (highBytes) high = kAll128;
  anyMultibyte |= highBytes;
}

void Union::addRange(const RxNode& member) {
  if (!isByteRange(member)) return addCodes(member);
  const Spans spans = spansOf(member);
  Set128 ascii{};
  Set128 highBytes{};
  addSpan(member.op1, member.op2, ascii);
  addSpan(int64_t{member.op1} - 0x80, int64_t{member.op2} - 0x80, highBytes);
  if (member.op3 != 0) {
    addAll(inverse(ascii), asciiPlain_);
    addAll(inverse(inBothCases(ascii)), asciiFolded_);
    addAll(inverse(highBytes), high);
    return refuse(spans);
  }
  addAll(ascii, bytes_);
  addAll(highBytes, high);
  numPlain += member.op2 >= 0x80;
  numFolded += isFoldedTo(spans.folded);
}

// A member that compares code points, also where a character is one byte, which is negative from 0x80 on.
void Union::addCodes(const RxNode& member) {
  const Spans spans = spansOf(member);
  const bool negated = member.op3 != 0;
  Set128 plain{};
  Set128 highBytes{};
  addSpan(spans.plain.low, spans.plain.high, plain);
  addSpan(int64_t{spans.plain.low} + 0x80, int64_t{spans.plain.high} + 0x80, highBytes);
  const Set128 folded = asciiOfFolded(spans.folded);
  addAll(negated ? inverse(plain) : plain, asciiPlain_);
  addAll(negated ? inverse(folded) : folded, asciiFolded_);
  addAll(negated ? inverse(highBytes) : highBytes, high);
  if (negated) return refuse(spans);
  numPlain += spans.plain.high >= 0x80;
  numFolded += isFoldedTo(spans.folded);
}

void Union::refuse(const Spans& spans) {
  if (!hasNegated) refused = spans;
  hasNegated = true;
  const auto intersect = [](Interval& a, Interval b) {
    a = {std::max(a.low, b.low), std::min(a.high, b.high)};
  };
  intersect(refused.plain, spans.plain);
  intersect(refused.folded, spans.folded);
}

void Union::addScript(const RxNode& member) {
  uint32_t wanted[kScriptWords] = {};
  addBit(scriptOf(static_cast<int32_t>(static_cast<const CodePointRange*>(member.text)->first)), wanted);
  for (int i = 0; i < kScriptWords; ++i) scripts[i] |= member.op2 != 0 ? ~wanted[i] : wanted[i];
  hasScripts = true;
}

void Union::finish() {
  if (kinds) {
    Set128 set{};
    addAsciiOfKinds(kinds, set.words);
    addInBoth(set);
    if (kinds >> kindOf(-1) & 1) high = kAll128;
  }
  if (hasScripts) {
    // In ASCII, letters are Latin and everything else is common to all scripts.
    if (contains(scripts, scriptOf('a'))) addInBoth(kLetters);
    if (contains(scripts, scriptOf('0'))) addInBoth(inverse(kLetters));
    if (contains(scripts, scriptOf(-1))) high = kAll128;
  }
  addAll(bytes_, asciiPlain_);
  addAll(inBothCases(bytes_), asciiFolded_);
  if (hasNegated) {
    numPlain += 2;
    numFolded += 2;
  }
}

// ---- Lists

// Sorts the intervals and joins those that overlap or touch. Returns how many are left.
int32_t joinIntervals(Interval* first, int32_t count) {
  if (count == 0) return 0;
  std::sort(first, first + count, [](Interval a, Interval b) { return a.low < b.low; });
  Interval* last = first;
  for (Interval* next = first + 1; next != first + count; ++next) {
    if (int64_t{next->low} <= int64_t{last->high} + 1) {
      last->high = std::max(last->high, next->high);
    } else {
      *++last = *next;
    }
  }
  return static_cast<int32_t>(last - first) + 1;
}

bool inIntervals(int32_t codePoint, const Interval* first, int32_t count) {
  const Interval* const end = first + count;
  const Interval* const above =
      std::upper_bound(first, end, codePoint, [](int32_t c, Interval interval) { return c < interval.low; });
  return above != first && codePoint <= above[-1].high;
}

// Writes the list of the members' intervals to `first` and returns its length.
int32_t writeList(const RxNode& header, const Union& members, Interval Spans::*form, Interval* first) {
  Interval* end = first;
  for (int32_t i = 1; i <= header.op2; ++i) {
    const RxNode& member = (&header)[i];
    if (!hasSpans(member) || member.op3 != 0) continue;
    const Spans spans = spansOf(member);
    const bool wanted = form == &Spans::plain ? spans.plain.high >= 0x80 : isFoldedTo(spans.folded);
    if (wanted) *end++ = spans.*form;
  }
  if (members.hasNegated) {
    const Interval refused = members.refused.*form;
    if (refused.low > refused.high) {
      *end++ = {INT32_MIN, INT32_MAX};
    } else {
      *end++ = {INT32_MIN, refused.low - 1};
      *end++ = {refused.high + 1, INT32_MAX};
    }
  }
  return joinIntervals(first, static_cast<int32_t>(end - first));
}

// ---- Records

// Whether the further set is anywhere.
bool isKept(ClassNote note, uint32_t set) { return set < note.numStored() || !note.walk(); }

// A word of a further set that is kept.
uint32_t furtherWord(const RxNode& header, uint32_t set, int32_t word) {
  const uint32_t stored = ClassNote(header).numStored();
  const auto place = static_cast<uint32_t>(word);
  if (set < stored) return static_cast<const uint32_t*>(header.text)[kWordsPerSet * (1 + set) + place];
  const RxNode& member = (&header)[1 + kWordsPerSet * (set - stored) + place];
  return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(member.text));
}

bool inFurtherSet(const RxNode& header, uint32_t set, int32_t number) {
  return (furtherWord(header, set, number >> 5) >> (number & 31)) & 1;
}

// Which of the further sets is that of high bytes, and which the first set with the other caseless bit.
uint32_t highBytesPlace(ClassNote note) {
  return note.highBytes() == ClassNote::kAsChars ? 0 : note.numCharSets();
}
uint32_t otherAsciiPlace(ClassNote note) {
  return note.numCharSets() + (note.highBytes() == ClassNote::kOwnSet ? 1 : 0);
}

// The parts of a record behind the sets.
const uint32_t* partsOf(const RxNode& header) {
  return static_cast<const uint32_t*>(header.text) + kWordsPerSet * (1 + ClassNote(header).numStored());
}

class RecordMaker {
 public:
  RecordMaker(RxNode& header, uint32_t caseless, bool bothCases)
      : header_(header), caseless_(caseless), bothCases_(bothCases) {}

  // Returns the end of the record, `at` if there is no room for one.
  uint32_t* make(uint32_t* at, int64_t room);

 private:
  ClassNote::HighBytes highBytes() const;
  void chooseSets();
  bool chooseParts(int64_t room);
  void placeSets(int64_t room);
  void writeSets(uint32_t* record);
  uint32_t* writeParts(uint32_t* at);
  Set128 inClass(const Set128& set) const { return header_.op1 != 0 ? inverse(set) : set; }

  RxNode& header_;
  const uint32_t caseless_;
  const bool bothCases_;
  Union members_;
  ClassNote::Facts facts_{};
  Set128 further_[5];
  uint32_t numFurther_ = 0;
  int32_t numPlain_ = 0;
  int32_t numFolded_ = 0;
  int64_t size_ = 0;  // of the first set and the parts
};

ClassNote::HighBytes RecordMaker::highBytes() const {
  uint32_t any = 0;
  uint32_t all = ~0u;
  uint32_t others = 0;
  for (int i = 0; i < kWordsPerSet; ++i) {
    any |= members_.high.words[i];
    all &= members_.high.words[i];
    others |= members_.high.words[i] ^ members_.chars[0].words[i];
  }
  if (any == 0) return ClassNote::kNone;
  if (all == ~0u) return ClassNote::kAll;
  return others == 0 ? ClassNote::kAsChars : ClassNote::kOwnSet;
}

void RecordMaker::chooseSets() {
  facts_.caseless = caseless_;
  facts_.anyMultibyte = members_.anyMultibyte;
  facts_.highBytes = highBytes();
  if (!members_.anyMultibyte) facts_.numCharSets = members_.numCharSets;
  for (uint32_t i = 0; i < facts_.numCharSets; ++i) further_[numFurther_++] = members_.chars[i];
  if (facts_.highBytes == ClassNote::kOwnSet) further_[numFurther_++] = members_.high;
  if (!bothCases_) return;
  const Set128 other = members_.ascii(!caseless_);
  facts_.otherAscii = !same(other, members_.ascii(caseless_));
  if (facts_.otherAscii) further_[numFurther_++] = inClass(other);
}

bool RecordMaker::chooseParts(int64_t room) {
  size_ = kWordsPerSet;
  if (!members_.anyMultibyte) {
    numPlain_ = bothCases_ || !caseless_ ? members_.numPlain : 0;
    numFolded_ = bothCases_ || caseless_ ? members_.numFolded : 0;
    facts_.kinds = members_.kinds != 0;
    facts_.scripts = members_.hasScripts;
    facts_.lists = numPlain_ + numFolded_ > 0;
    if (facts_.kinds) size_ += kKindWords;
    if (facts_.scripts) size_ += kScriptWords;
    if (facts_.lists) size_ += kListLengths + int64_t{kIntervalWords} * (numPlain_ + numFolded_);
  }
  return size_ <= room;
}

// Which of the further sets stand in the record, and whether the members hold the others. A script, which
// needs its `text`, leaves over enough room for all of them.
void RecordMaker::placeSets(int64_t room) {
  facts_.numStored = static_cast<uint32_t>(std::min<int64_t>(numFurther_, (room - size_) / kWordsPerSet));
  facts_.walk = kWordsPerSet * static_cast<int32_t>(numFurther_ - facts_.numStored) > header_.op2;
}

void RecordMaker::writeSets(uint32_t* record) {
  const Set128 ascii = inClass(members_.ascii(caseless_));
  record = std::copy(ascii.words, ascii.words + kWordsPerSet, record);
  for (uint32_t set = 0; set < facts_.numStored; ++set)
    record = std::copy(further_[set].words, further_[set].words + kWordsPerSet, record);
  if (facts_.walk) return;
  RxNode* member = &header_ + 1;
  for (uint32_t set = facts_.numStored; set < numFurther_; ++set)
    for (const uint32_t word : further_[set].words)
      (member++)->text = reinterpret_cast<const void*>(static_cast<uintptr_t>(word));
}

uint32_t* RecordMaker::writeParts(uint32_t* at) {
  if (facts_.kinds)
    for (int i = 0; i < kKindWords; ++i) *at++ = static_cast<uint32_t>(members_.kinds >> 32 * i);
  if (facts_.scripts) at = std::copy(members_.scripts, members_.scripts + kScriptWords, at);
  if (!facts_.lists) return at;
  auto* const list = reinterpret_cast<Interval*>(at + kListLengths);
  const int32_t plain = numPlain_ > 0 ? writeList(header_, members_, &Spans::plain, list) : 0;
  const int32_t folded = numFolded_ > 0 ? writeList(header_, members_, &Spans::folded, list + plain) : 0;
  at[0] = static_cast<uint32_t>(plain);
  at[1] = static_cast<uint32_t>(folded);
  return reinterpret_cast<uint32_t*>(list + plain + folded);
}

uint32_t* RecordMaker::make(uint32_t* at, int64_t room) {
  for (int32_t i = 1; i <= header_.op2; ++i) members_.add((&header_)[i]);
  members_.finish();
  chooseSets();
  header_.text = nullptr;
  if (!chooseParts(room)) return at;
  placeSets(room);
  writeSets(at);
  header_.text = at;
  header_.op3 = ClassNote::pack(facts_);
  return writeParts(at + kWordsPerSet * (1 + facts_.numStored));
}

// Whether a search can find the caseless bit changed.
bool changesCase(const ulkRegExpState& state) {
  const RxNode* const nodes = state.nodes();
  return std::any_of(nodes, nodes + state.numNodes, [&](const RxNode& node) {
    if (node.code != RX_OPTIONS && node.code != RX_OPTGROUP) return false;
    const int32_t options = node.code == RX_OPTIONS ? node.op1 : node.op3;
    return ((static_cast<uint32_t>(options) ^ state.options) & RX_OPT_CASELESS) != 0;
  });
}

// ---- Answers of the members, without the negation of the class

bool anyMemberAccepts(const RxNode& header, Utf8Char character, uint8_t byte, uint32_t options) {
  const RxNode* const members = &header + 1;
  return std::any_of(members, members + header.op2,
                     [&](const RxNode& member) { return memberAccepts(member, character, byte, options); });
}

bool acceptHighByte(const RxNode& header, uint8_t byte, uint32_t options) {
  const ClassNote note(header);
  switch (note.highBytes()) {
    case ClassNote::kNone:
      return false;
    case ClassNote::kAll:
      return true;
    default:
      break;
  }
  const uint32_t set = highBytesPlace(note);
  if (!isKept(note, set)) return anyMemberAccepts(header, {byte - 0x100, 1}, byte, options);
  return inFurtherSet(header, set, byte - 0x80);
}

// Behind the sets: kinds, scripts, lists.
bool partsAccept(const RxNode& header, ClassNote note, int32_t c, uint32_t options) {
  const uint32_t* part = partsOf(header);
  if (note.kinds()) {
    if (contains(part, kindOf(c))) return true;
    part += kKindWords;
  }
  if (note.scripts()) {
    if (contains(part, scriptOf(c))) return true;
    part += kScriptWords;
  }
  if (!note.lists()) return false;
  const auto numPlain = static_cast<int32_t>(part[0]);
  const auto* const list = reinterpret_cast<const Interval*>(part + kListLengths);
  if (!(options & RX_OPT_CASELESS)) return inIntervals(c, list, numPlain);
  return inIntervals(foldCase(c), list + numPlain, static_cast<int32_t>(part[1]));
}

bool acceptMultibyte(const RxNode& header, Utf8Char character, uint8_t byte, uint32_t options) {
  const ClassNote note(header);
  if (note.anyMultibyte()) return true;
  const int32_t c = character.value;
  if (c < static_cast<int32_t>(0x80 + 0x80 * note.numCharSets())) {
    const uint32_t set = static_cast<uint32_t>(c >> 7) - 1;
    if (!isKept(note, set)) return anyMemberAccepts(header, character, byte, options);
    if (inFurtherSet(header, set, c & 0x7F)) return true;
  }
  return note.hasParts() && partsAccept(header, note, c, options);
}

// Whether they can accept a character of several bytes at all.
bool mayAcceptMultibyte(const RxNode& header, uint32_t options) {
  const ClassNote note(header);
  if (note.anyMultibyte() || note.numCharSets() > 0 || note.kinds() || note.scripts()) return true;
  return note.lists() && partsOf(header)[options & RX_OPT_CASELESS ? 1 : 0] > 0;
}

}  // namespace

void makeClassSets(ulkRegExpState& state, SpareWords spare) {
  RxNode* const nodes = state.nodes();
  const bool bothCases = changesCase(state);
  uint32_t options = state.options;
  for (int32_t i = 0; i < state.numNodes; ++i) {
    RxNode& node = nodes[i];
    if (bothCases) options = optionsAfter(node, options);
    if (node.code != RX_CLASS) continue;
    const int64_t room = (int64_t{node.op3} - node.op2 - 1) * kNodeWords;
    RecordMaker maker(node, options & RX_OPT_CASELESS, bothCases);
    spare.begin = maker.make(spare.begin, std::min<int64_t>(room, spare.end - spare.begin));
    i += node.op2;
  }
}

const Set128* otherClassSet(const RxNode& header) {
  const ClassNote note(header);
  const auto* const sets = static_cast<const Set128*>(header.text);
  if (!sets || !note.otherAscii()) return sets;
  const uint32_t place = otherAsciiPlace(note);
  return place < note.numStored() ? sets + 1 + place : nullptr;
}

bool walkAccepts(const RxNode& header, Utf8Char character, uint8_t byte, uint32_t options) {
  return anyMemberAccepts(header, character, byte, options) != (header.op1 != 0);
}

bool classAccepts(const RxNode& header, Utf8Char character, uint8_t byte, uint32_t options) {
  if (byte < 0x80) {
    if (const Set128* const set = classSet(header, options)) return set->contains(byte);
    const uint32_t set = otherAsciiPlace(ClassNote(header));
    if (!header.text || !isKept(ClassNote(header), set)) return walkAccepts(header, character, byte, options);
    return inFurtherSet(header, set, byte);
  }
  if (!header.text) return walkAccepts(header, character, byte, options);
  const bool accept = character.length == 1 ? acceptHighByte(header, byte, options)
                                            : acceptMultibyte(header, character, byte, options);
  return accept != (header.op1 != 0);
}

void addClassBytes(const RxNode& header, uint32_t options, ByteSet256& set) {
  const auto addByAsking = [&](int32_t first, int32_t last) {
    for (int32_t c = first; c <= last; ++c) {
      const Utf8Char character{c < 0x80 ? c : c - 0x100, 1};
      if (classAccepts(header, character, static_cast<uint8_t>(c), options)) addBit(c, set.words);
    }
  };
  if (const Set128* const ascii = classSet(header, options)) {
    for (int i = 0; i < kWordsPerSet; ++i) set.words[i] |= ascii->words[i];
  } else {
    addByAsking(0, 0x7F);
  }
  const ClassNote note(header);
  if (!header.text || header.op1 != 0 || mayAcceptMultibyte(header, options)) {
    std::fill(set.words + kWordsPerSet, set.words + 2 * kWordsPerSet, ~0u);
  } else if (note.highBytes() == ClassNote::kOwnSet && isKept(note, highBytesPlace(note))) {
    for (int i = 0; i < kWordsPerSet; ++i)
      set.words[kWordsPerSet + i] |= furtherWord(header, highBytesPlace(note), i);
  } else if (note.highBytes() != ClassNote::kNone) {
    addByAsking(0x80, 0xFF);
  }
}

void addAsciiOf(const RxNode& item, uint32_t options, ByteSet256& set) {
  RxNode member = item;
  if (item.code == RX_CODEPOINT) member.op3 = 0;  // a negation only in members
  Union members;
  members.add(member);
  members.finish();
  const Set128 ascii = members.ascii(options & RX_OPT_CASELESS);
  for (int i = 0; i < kWordsPerSet; ++i) set.words[i] |= ascii.words[i];
}

}  // namespace ulk
