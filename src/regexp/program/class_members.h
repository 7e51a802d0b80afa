// What the members of a class accept, all of them together: sets, and intervals of code points.
#pragma once

#include <cstdint>

#include "regexp/program/program.h"
#include "regexp/text/set128.h"
#include "regexp/text/utf8.h"
#include "unicode/unicode.h"

#pragma GCC visibility push(hidden)

namespace ulk {

inline constexpr int32_t kScriptWords = kMaxScripts / 32;

// Code points from the first to the last, compared as signed numbers.
struct Interval {
  int32_t low;
  int32_t high;
};

// What a range or a code point accepts of the characters of several bytes: as they are, or against characters
// folded to lowercase.
struct Spans {
  Interval plain;
  Interval folded;
};

// All members of a class in one. Not every negation that a node could hold has to be thought of: only those
// of POSIX classes and "\P{Any}" can be negated ranges or code points, and only an ASCII byte can be a
// negated RX_CHAR.
class ClassMembers {
 public:
  void add(const RxNode& member);
  void finish();  // when all have been added

  Set128 ascii(bool caseless) const { return caseless ? asciiFolded_ : asciiPlain_; }

  // Writes the list of the intervals of code points that they accept, in ascending order, and returns its
  // length.
  int32_t writePlain(const RxNode& header, Interval* list) const;
  int32_t writeFolded(const RxNode& header, Interval* list) const;

  Set128 high{};             // bytes from 0x80 on that are characters by themselves
  Set128 chars[3]{};         // RX_CHAR members from 0x80 to 0x1FF
  uint32_t numCharSets = 0;  // of these that are needed: 0, 1 or 3
  bool anyMultibyte = false;
  uint64_t kinds = 0;
  uint32_t scripts[kScriptWords] = {};
  bool hasScripts = false;
  // At most so many intervals are written.
  int32_t numPlain = 0;
  int32_t numFolded = 0;

 private:
  void addChar(const RxNode& member);
  void addShorthand(const RxNode& member);
  void addRange(const RxNode& member);
  void addCodes(const RxNode& member);
  void addScript(const RxNode& member);
  void addInBoth(const Set128& set);
  void refuse(const Spans& spans);
  int32_t writeList(const RxNode& header, Interval Spans::*form, Interval* list) const;

  Set128 bytes_{};  // of members that compare bytes: letters match in both cases if i is in force
  Set128 asciiPlain_{};
  Set128 asciiFolded_{};
  bool hasNegated_ = false;
  Spans refused_{};  // by all negated ranges, so by the class
};

// Whether one of the class's members accepts the character; `byte` is its first byte. Asks them in order.
bool anyMemberAccepts(const RxNode& header, Utf8Char character, uint8_t byte, uint32_t options);

}  // namespace ulk

#pragma GCC visibility pop
