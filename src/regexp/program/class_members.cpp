#include "regexp/program/class_members.h"

#include <algorithm>

#include "regexp/program/byte_set.h"
#include "regexp/program/characters.h"
#include "regexp/text/bytes.h"

namespace ulk {

namespace {

bool isByteRange(const RxNode& member) { return lowOf(member) < 256 && highOf(member) < 256; }

bool rangeAccepts(const RxNode& member, Utf8Char character, uint8_t byte, uint32_t options) {
  const int32_t low = lowOf(member);
  const int32_t high = highOf(member);
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
  const bool negated = memberNegation(member) != 0;
  switch (member.code) {
    case RX_CHAR:
      return sameByte(byteOf(member), byteOrCodePoint, options) != negated;
    case RX_RANGE:
      return rangeAccepts(member, character, byte, options) != negated;
    case RX_CHARTYPE:
      return inByteSet(byte, byteSetOf(letterOf(member), options)) != negated;
    case RX_CODEPOINT:
      return codePointAccepts(member, character.value, options) != negated;
    default:
      return propertyAccepts(member, character.value);
  }
}

// ---- Spans and intervals

// The ASCII characters whose lowercase lies in the interval.
Set128 asciiOfFolded(Interval folded) {
  Set128 set{};
  addSpan(folded.low, folded.high, set);
  set.words[2] = (set.words[2] & ~kLetterBits) | (set.words[3] & kLetterBits);
  return set;
}

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
  const bool isRange = member.code != RX_CODEPOINT;
  const Interval plain =
      isRange ? Interval{lowOf(member), highOf(member)} : Interval{codePointOf(member), codePointOf(member)};
  return {plain, {fold(plain.low), fold(plain.high)}};
}

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

}  // namespace

bool anyMemberAccepts(const RxNode& header, Utf8Char character, uint8_t byte, uint32_t options) {
  const RxNode* const members = &header + 1;
  return std::any_of(members, members + memberCount(header),
                     [&](const RxNode& member) { return memberAccepts(member, character, byte, options); });
}

void ClassMembers::add(const RxNode& member) {
  switch (member.code) {
    case RX_CHAR:
      return addChar(member);
    case RX_CHARTYPE:
      return addShorthand(member);
    case RX_RANGE:
      return addRange(member);
    case RX_CATEGORY:
      kinds |= acceptedKinds(static_cast<uint32_t>(categoryMask(member)), propertyNegation(member) != 0);
      return;
    case RX_SCRIPT:
      return addScript(member);
    default:
      return addCodes(member);
  }
}

void ClassMembers::addInBoth(const Set128& set) {
  addAll(set, asciiPlain_);
  addAll(set, asciiFolded_);
}

void ClassMembers::addChar(const RxNode& member) {
  const int32_t c = byteOf(member);
  if (memberNegation(member) != 0) {
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

void ClassMembers::addShorthand(const RxNode& member) {
  ByteSet256 set{};
  ulk::addShorthand(letterOf(member), 0, set);
  const bool negated = memberNegation(member) != 0;
  const bool highBytes = inByteSet(0x80, byteSetOf(letterOf(member), 0)) != negated;
  const Set128 ascii = asciiOf(set);
  addInBoth(negated ? inverse(ascii) : ascii);
  if (highBytes) high = kAll128;
  anyMultibyte |= highBytes;
}

void ClassMembers::addRange(const RxNode& member) {
  if (!isByteRange(member)) return addCodes(member);
  const Spans spans = spansOf(member);
  Set128 ascii{};
  Set128 highBytes{};
  addSpan(lowOf(member), highOf(member), ascii);
  addSpan(int64_t{lowOf(member)} - 0x80, int64_t{highOf(member)} - 0x80, highBytes);
  if (memberNegation(member) != 0) {
    addAll(inverse(ascii), asciiPlain_);
    addAll(inverse(inBothCases(ascii)), asciiFolded_);
    addAll(inverse(highBytes), high);
    return refuse(spans);
  }
  addAll(ascii, bytes_);
  addAll(highBytes, high);
  numPlain += highOf(member) >= 0x80;
  numFolded += isFoldedTo(spans.folded);
}

// A member that compares code points, also where a character is one byte, which is negative from 0x80 on.
void ClassMembers::addCodes(const RxNode& member) {
  const Spans spans = spansOf(member);
  const bool negated = memberNegation(member) != 0;
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

void ClassMembers::refuse(const Spans& spans) {
  if (!hasNegated_) refused_ = spans;
  hasNegated_ = true;
  const auto intersect = [](Interval& a, Interval b) {
    a = {std::max(a.low, b.low), std::min(a.high, b.high)};
  };
  intersect(refused_.plain, spans.plain);
  intersect(refused_.folded, spans.folded);
}

void ClassMembers::addScript(const RxNode& member) {
  uint32_t wanted[kScriptWords] = {};
  addBit(scriptNumber(member), wanted);
  for (int i = 0; i < kScriptWords; ++i) scripts[i] |= propertyNegation(member) != 0 ? ~wanted[i] : wanted[i];
  hasScripts = true;
}

void ClassMembers::finish() {
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
  if (hasNegated_) {
    numPlain += 2;
    numFolded += 2;
  }
}

int32_t ClassMembers::writeList(const RxNode& header, Interval Spans::*form, Interval* list) const {
  Interval* end = list;
  for (int32_t i = 1; i <= memberCount(header); ++i) {
    const RxNode& member = (&header)[i];
    if (!hasSpans(member) || memberNegation(member) != 0) continue;
    const Spans spans = spansOf(member);
    const bool wanted = form == &Spans::plain ? spans.plain.high >= 0x80 : isFoldedTo(spans.folded);
    if (wanted) *end++ = spans.*form;
  }
  if (hasNegated_) {
    const Interval refused = refused_.*form;
    if (refused.low > refused.high) {
      *end++ = {INT32_MIN, INT32_MAX};
    } else {
      *end++ = {INT32_MIN, refused.low - 1};
      *end++ = {refused.high + 1, INT32_MAX};
    }
  }
  return joinIntervals(list, static_cast<int32_t>(end - list));
}

int32_t ClassMembers::writePlain(const RxNode& header, Interval* list) const {
  return writeList(header, &Spans::plain, list);
}

int32_t ClassMembers::writeFolded(const RxNode& header, Interval* list) const {
  return writeList(header, &Spans::folded, list);
}

}  // namespace ulk
