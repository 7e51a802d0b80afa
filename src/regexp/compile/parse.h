// What the stages of one compile share: the place in the pattern, the nodes written so far, the place of the
// error, and the pieces of syntax that mean the same inside and outside a class.
//
// Everything reads ahead freely as long as what it has read so far is not the terminating zero: the zero is
// in no set of bytes that syntax asks for, so no reader passes it.
#pragma once

#include <cstdint>

#include "regexp/program/program.h"
#include "ulkch.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// Set in the code of a class's last member until the program is finished, so that what follows a class does
// not take that member for an item of its own.
inline constexpr uint32_t kLastMember = 0x100;

struct Parse {
  Parse(const uint8_t* patternStart, const uint8_t* patternEnd, RxNode* program)
      : pattern(patternStart), end(patternEnd), at(patternStart), nodes(program), errorAt(patternStart) {}

  const uint8_t* const pattern;
  const uint8_t* const end;  // the terminating zero
  const uint8_t* at;
  RxNode* const nodes;
  int32_t numNodes = 0;
  const uint8_t* errorAt;  // meaningful once something has failed

  ulkStatus fail(ulkStatus status, const uint8_t* where) {
    errorAt = where;
    return status;
  }

  // Operands that the code does not use keep whatever the buffer holds.
  RxNode& append(RxCode code) {
    RxNode& node = nodes[numNodes++];
    node.code = code;
    return node;
  }

  // An escape at the pattern's end takes the terminating zero for its argument, but nothing behind it.
  void advance(int32_t bytes) { at = end - at < bytes ? end : at + bytes; }

  // The ":]", ".]" or "=]" that closes what `delimiter` opened; null if there is none from `from` on.
  const uint8_t* findPosixEnd(const uint8_t* from, uint8_t delimiter);

  // The "\E" that ends a quote; null if there is none.
  const uint8_t* findQuoteEnd(const uint8_t* from) const;

  // Readers of an escape, with `at` on its backslash; they leave it behind what they read.
  uint8_t readControl();
  // Up to `maxDigits` octal digits from `skip` bytes behind the backslash on.
  int32_t readOctal(int32_t skip, int32_t maxDigits);
  uint8_t readHexByte();
  // False if the "}" is missing; `at` is then where it was expected.
  bool readHexCodePoint(int32_t& value);

 private:
  uint32_t readHex(int32_t maxDigits);

  // Per delimiter the place from which on no closer has been found, so that a pattern full of "[:" is not
  // searched to its end over and over.
  const uint8_t* noPosixEnd_[3] = {nullptr, nullptr, nullptr};
};

inline bool isDigit(uint8_t byte) { return byte >= '0' && byte <= '9'; }
inline bool isOctalDigit(uint8_t byte) { return byte >= '0' && byte <= '7'; }
inline bool isPosixDelimiter(uint8_t byte) { return byte == ':' || byte == '.' || byte == '='; }
inline bool isShorthand(uint8_t letter) {
  return letter == 'd' || letter == 'D' || letter == 's' || letter == 'S' || letter == 'w' || letter == 'W';
}

// The byte that "\a", "\e", "\f", "\n", "\r", "\t" or "\v" denotes; -1 for any other letter.
int32_t namedByte(uint8_t letter);

}  // namespace ulk

#pragma GCC visibility pop
