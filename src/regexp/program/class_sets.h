// The test whether a class accepts a character. Its cost does not grow with the number of members: when an
// expression is compiled, the members of every class are turned into sets.
//
// The sets of a class are its record, which the RX_CLASS node points to. It stands behind the literal text,
// in so many 32-bit words:
//  - 4: the ASCII characters that the class accepts, for the options that are in force where it stands
//  - 1, where there is room: the same as ranges
//  - 4 each: further sets of 128, see ClassNote
//  - 2, if a member is a category: the kinds of characters that the members accept
//  - 3, if a member is a script: the scripts that the members accept
//  - 2, if a member can accept characters of several bytes by their value: the lengths of the next two lists
//  - 2 each: intervals of code points
//  - 2 each: intervals of code points folded to lowercase
//  - 5, where the first of these lists is all that counts, and where there is room: the same as a page
//
// Only the first set counts the negation of the class in. Options may change while a search goes on, so that
// a class is tested with another caseless bit than was foreseen; where an expression changes that bit at all,
// its classes are made for both.
//
// There is always room. A state has the room of a node for each byte of the pattern. A class of n members,
// from b bytes, has n + 1 nodes, so that of b - n - 1 nodes is left over: at least that of one, for the
// brackets, where the first set goes. A member that is one byte in the pattern leaves nothing
// over, but needs nothing besides the sets. Any other leaves over the room of a node or more: enough for an
// interval in each list if it is a code point, for more if it is anything else. The further sets may find no
// room behind such members; then the members themselves hold them, one word each, but for scripts, which need
// the place. Where there are not enough of them for that, a walk over them is fast enough.
#pragma once

#include <cstdint>

#include "regexp/program/ascii_record.h"
#include "regexp/program/class_members.h"
#include "regexp/program/program.h"
#include "regexp/program/state.h"
#include "regexp/text/set128.h"
#include "regexp/text/utf8.h"
#include "unicode/unicode.h"

#pragma GCC visibility push(hidden)

namespace ulk {

inline constexpr int32_t kKindWords = kMaxKinds / 32;
inline constexpr int32_t kListLengths = 2;

// What is known about a class besides its record, packed into an operand of its node.
class ClassNote {
 public:
  // The bytes from 0x80 on that are accepted where they are characters by themselves.
  enum HighBytes : uint32_t { kNone, kAll, kAsChars, kOwnSet };

  struct Facts {
    uint32_t caseless;  // the caseless bit that the first set is made for
    // The further sets, in this order:
    uint32_t numCharSets;  //   RX_CHAR members from 0x80 on, so many sets: 0, 1 or, up to 0x1FF, 3
    HighBytes highBytes;   //   one more if this is kOwnSet
    bool otherAscii;       //   the first set with the other caseless bit, unless it is the same
    uint32_t numStored;    // so many of them stand in the record
    bool walk;    // the others are nowhere, and the members are asked one by one; else in the members
    bool ranges;  // the record has these parts
    bool kinds;
    bool scripts;
    bool lists;
    bool page;
    bool anyMultibyte;  // the members accept all characters of several bytes, nothing of this is asked
  };

  static int32_t pack(const Facts& facts) {
    return static_cast<int32_t>(
        facts.caseless | (facts.otherAscii ? kOtherAscii : 0) | (facts.walk ? kWalk : 0) |
        (facts.kinds ? kKinds : 0) | (facts.scripts ? kScripts : 0) | (facts.lists ? kLists : 0) |
        (facts.anyMultibyte ? kAnyMultibyte : 0) | (facts.ranges ? kRanges : 0) | (facts.page ? kPage : 0) |
        facts.numCharSets << 8 | facts.highBytes << 10 | facts.numStored << 12);
  }

  explicit ClassNote(const RxNode& header) : packed_(static_cast<uint32_t>(classNote(header))) {}
  bool isMadeFor(uint32_t options) const { return ((packed_ ^ options) & RX_OPT_CASELESS) == 0; }
  uint32_t numCharSets() const { return packed_ >> 8 & 3; }
  HighBytes highBytes() const { return static_cast<HighBytes>(packed_ >> 10 & 3); }
  bool otherAscii() const { return packed_ & kOtherAscii; }
  uint32_t numStored() const { return packed_ >> 12 & 7; }
  bool walk() const { return packed_ & kWalk; }
  bool ranges() const { return packed_ & kRanges; }
  bool kinds() const { return packed_ & kKinds; }
  bool scripts() const { return packed_ & kScripts; }
  bool lists() const { return packed_ & kLists; }
  bool page() const { return packed_ & kPage; }
  bool hasParts() const { return packed_ & (kKinds | kScripts | kLists); }
  bool anyMultibyte() const { return packed_ & kAnyMultibyte; }

 private:
  static constexpr uint32_t kOtherAscii = 1;
  static constexpr uint32_t kWalk = 2;
  static constexpr uint32_t kKinds = 8;
  static constexpr uint32_t kScripts = 16;
  static constexpr uint32_t kLists = 32;
  static constexpr uint32_t kAnyMultibyte = 64;
  static constexpr uint32_t kRanges = 128;
  static constexpr uint32_t kPage = 1 << 15;
  static_assert(RX_OPT_CASELESS == 4);

  uint32_t packed_;
};

// The first set of the record of a class or property, null if it has none.
inline const Set128* firstSet(const RxNode& item) { return recordOf(item) ? &recordOf(item)->set : nullptr; }

// The ASCII characters that the class accepts, null where they do not stand in one place.
const Set128* otherClassSet(const RxNode& header);
inline const Set128* classSet(const RxNode& header, uint32_t options) {
  if (!ClassNote(header).isMadeFor(options)) return otherClassSet(header);
  return firstSet(header);
}

// Whether the class accepts a character; `byte` is its first byte.
bool classAccepts(const RxNode& header, Utf8Char character, uint8_t byte, uint32_t options);

// Code points of two bytes that lie near each other, one by one: letters of an alphabet, say.
struct CodePointPage {
  static constexpr int32_t kSize = 128;

  bool contains(int32_t codePoint) const {
    const auto i = static_cast<uint32_t>(codePoint) - first;
    return i < kSize && (bits[i / 32] >> (i % 32) & 1);
  }

  uint32_t first;
  uint32_t bits[kSize / 32];
};
inline constexpr int32_t kPageWords = sizeof(CodePointPage) / sizeof(uint32_t);

// The page that tells which characters of several bytes the members accept; null if there is none.
const CodePointPage* pageOf(const RxNode& header, uint32_t options);

// Whether intervals of code points tell which characters of several bytes the members accept, and nothing
// else; then those.
bool listsMultibyte(const RxNode& header, uint32_t options);
struct Intervals {
  const Interval* first;
  int32_t count;
};
Intervals listedIntervals(const RxNode& header);
bool inIntervals(int32_t codePoint, Intervals intervals);

// The bytes that can begin a character that the class accepts.
void addClassBytes(const RxNode& header, uint32_t options, ByteSet256& set);

// The ASCII characters that a code point or a property accepts that is an item of its own.
void addAsciiOf(const RxNode& item, uint32_t options, ByteSet256& set);

// The same answer as classAccepts, by asking the members in order.
bool walkAccepts(const RxNode& header, Utf8Char character, uint8_t byte, uint32_t options);

}  // namespace ulk

#pragma GCC visibility pop
