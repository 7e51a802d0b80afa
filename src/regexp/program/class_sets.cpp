#include "regexp/program/class_sets.h"

#include <algorithm>
#include <functional>

#include "regexp/program/class_members.h"

namespace ulk {

namespace {

// ---- The pieces of a record

const Set128* furtherSets(const RxNode& header) {
  const AsciiRecord* const record = recordOf(header);
  return ClassNote(header).ranges() ? reinterpret_cast<const Set128*>(record + 1) : &record->set + 1;
}

// Whether the further set is anywhere.
bool isKept(ClassNote note, uint32_t set) { return set < note.numStored() || !note.walk(); }

// A word of a further set that is kept.
uint32_t furtherWord(const RxNode& header, uint32_t set, int32_t word) {
  const uint32_t stored = ClassNote(header).numStored();
  if (set < stored) return furtherSets(header)[set].words[word];
  return wordIn((&header)[1 + size_t{kWordsPerSet} * (set - stored) + static_cast<uint32_t>(word)]);
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
  return furtherSets(header)[ClassNote(header).numStored()].words;
}

// ---- Answers of the members, without the negation of the class

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
  if (!(options & RX_OPT_CASELESS)) return inIntervals(c, {list, numPlain});
  return inIntervals(foldCase(c), {list + numPlain, static_cast<int32_t>(part[1])});
}

bool acceptMultibyte(const RxNode& header, Utf8Char character, uint8_t byte, uint32_t options) {
  const ClassNote note(header);
  if (note.anyMultibyte()) return true;
  const int32_t c = character.value;
  if (const CodePointPage* const page = pageOf(header, options)) return page->contains(c);
  if (c < static_cast<int32_t>(0x80 + 0x80 * note.numCharSets())) {
    const uint32_t set = static_cast<uint32_t>(c >> 7) - 1;
    if (!isKept(note, set)) return anyMemberAccepts(header, character, byte, options);
    if (inFurtherSet(header, set, c & 0x7F)) return true;
  }
  return note.hasParts() && partsAccept(header, note, c, options);
}

// The first bytes of the characters of several bytes that they accept; false where those are not known.
bool addMultibyteLeads(const RxNode& header, uint32_t options, ByteSet256& set) {
  const ClassNote note(header);
  if (note.anyMultibyte() || note.scripts() || (options & RX_OPT_CASELESS)) return false;
  if (note.numCharSets() > 0) addLeads(0x80, 0x1FF, set);
  const uint32_t* part = partsOf(header);
  if (note.kinds()) {
    addLeads(leadsOfKinds(part[0] | uint64_t{part[1]} << 32), set);
    part += kKindWords;
  }
  if (!note.lists()) return true;
  const auto* const list = reinterpret_cast<const Interval*>(part + kListLengths);
  for (uint32_t i = 0; i < part[0]; ++i) addLeads(list[i].low, list[i].high, set);
  return true;
}

// Whether they can accept a character of several bytes at all.
bool mayAcceptMultibyte(const RxNode& header, uint32_t options) {
  const ClassNote note(header);
  if (note.anyMultibyte() || note.numCharSets() > 0 || note.kinds() || note.scripts()) return true;
  return note.lists() && partsOf(header)[options & RX_OPT_CASELESS ? 1 : 0] > 0;
}

}  // namespace

const Set128* otherClassSet(const RxNode& header) {
  const ClassNote note(header);
  if (!recordOf(header) || !note.otherAscii()) return firstSet(header);
  const uint32_t place = otherAsciiPlace(note);
  return place < note.numStored() ? furtherSets(header) + place : nullptr;
}

const CodePointPage* pageOf(const RxNode& header, uint32_t options) {
  if (!ClassNote(header).page() || (options & RX_OPT_CASELESS)) return nullptr;
  const uint32_t* const part = partsOf(header);
  return reinterpret_cast<const CodePointPage*>(part + kListLengths + size_t{2} * (part[0] + part[1]));
}

bool listsMultibyte(const RxNode& header, uint32_t options) {
  const ClassNote note(header);
  if (!recordOf(header) || note.anyMultibyte() || note.numCharSets() > 0) return false;
  if (note.kinds() || note.scripts()) return false;
  return !note.lists() || !(options & RX_OPT_CASELESS);
}

Intervals listedIntervals(const RxNode& header) {
  if (!ClassNote(header).lists()) return {nullptr, 0};
  const uint32_t* const part = partsOf(header);
  return {reinterpret_cast<const Interval*>(part + kListLengths), static_cast<int32_t>(part[0])};
}

bool inIntervals(int32_t codePoint, Intervals intervals) {
  constexpr int32_t kFew = 8;
  const Interval* const end = intervals.first + intervals.count;
  const auto isBehind = [codePoint](const Interval& interval) { return codePoint <= interval.high; };
  const Interval* const found = intervals.count <= kFew
                                    ? std::find_if(intervals.first, end, isBehind)
                                    : std::partition_point(intervals.first, end, std::not_fn(isBehind));
  return found != end && codePoint >= found->low;
}

bool walkAccepts(const RxNode& header, Utf8Char character, uint8_t byte, uint32_t options) {
  return anyMemberAccepts(header, character, byte, options) != (classNegation(header) != 0);
}

bool classAccepts(const RxNode& header, Utf8Char character, uint8_t byte, uint32_t options) {
  if (byte < 0x80) {
    if (const Set128* const set = classSet(header, options)) return set->contains(byte);
    const uint32_t set = otherAsciiPlace(ClassNote(header));
    if (!recordOf(header) || !isKept(ClassNote(header), set))
      return walkAccepts(header, character, byte, options);
    return inFurtherSet(header, set, byte);
  }
  if (!recordOf(header)) return walkAccepts(header, character, byte, options);
  const bool accept = character.length == 1 ? acceptHighByte(header, byte, options)
                                            : acceptMultibyte(header, character, byte, options);
  return accept != (classNegation(header) != 0);
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
  if (!recordOf(header) || classNegation(header) != 0 || note.highBytes() == ClassNote::kAll ||
      (mayAcceptMultibyte(header, options) && !addMultibyteLeads(header, options, set))) {
    addAllHighBytes(set);
  } else if (note.highBytes() != ClassNote::kNone && isKept(note, highBytesPlace(note))) {
    for (int i = 0; i < kWordsPerSet; ++i)
      set.words[kWordsPerSet + i] |= furtherWord(header, highBytesPlace(note), i);
  } else if (note.highBytes() != ClassNote::kNone) {
    addByAsking(0x80, 0xFF);
  }
}

void addAsciiOf(const RxNode& item, uint32_t options, ByteSet256& set) {
  RxNode member = item;
  member.code = codeOf(item);
  if (member.code == RX_CODEPOINT) memberNegation(member) = 0;  // a negation only in members
  ClassMembers members;
  members.add(member);
  members.finish();
  const Set128 ascii = members.ascii(options & RX_OPT_CASELESS);
  for (int i = 0; i < kWordsPerSet; ++i) set.words[i] |= ascii.words[i];
}

}  // namespace ulk
