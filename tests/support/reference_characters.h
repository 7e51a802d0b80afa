// Characters as the reference matcher sees them: how a text is decoded, and which of them the nodes accept
// that take one character.
#pragma once

#include <cstdint>
#include <vector>

#include "regexp/program/program.h"

namespace ulk_test {

bool sameByte(int32_t textByte, int32_t patternByte, bool caseless);

// Not negative for the bytes of words. Of the others, the value matters for what \B answers.
int32_t wordValue(int32_t c);

// A malformed byte is a character of its own, with the value of a signed char; `lead` is its first byte.
struct Character {
  int32_t value;
  int32_t length;
  int32_t lead;
};

bool isMark(Character c);

// Whether a class (with the members behind it), shorthand, code point or property accepts a character.
bool accepts(const ulk::RxNode& node, Character c, uint32_t options);

// The text, and how far it was looked at.
class Text {
 public:
  explicit Text(const uint8_t* bytes) : bytes_(bytes) {}

  int32_t byte(int32_t at);
  Character character(int32_t at);

  // `width` characters before `at`, as counted from the text's start, or so many bytes if there are too few.
  int32_t back(int32_t at, int32_t width);

  int32_t bytesRead() const { return bytesRead_; }

 private:
  const uint8_t* bytes_;
  int32_t bytesRead_ = 0;
  std::vector<int32_t> starts_;  // of the characters from the text's start
  int32_t nextStart_ = 0;
};

}  // namespace ulk_test
