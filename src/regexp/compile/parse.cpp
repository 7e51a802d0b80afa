#include "regexp/compile/parse.h"

namespace ulk {
namespace {

// -1 for a byte that is no hexadecimal digit.
int32_t hexValue(uint8_t byte) {
  if (isDigit(byte)) return byte - '0';
  const int32_t letter = byte | 0x20;
  return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

}  // namespace

const uint8_t* Parse::findPosixEnd(const uint8_t* from, uint8_t delimiter) {
  const uint8_t*& none = noPosixEnd_[delimiter == ':' ? 0 : delimiter == '.' ? 1 : 2];
  if (none && from >= none) return nullptr;
  for (const uint8_t* p = from; p < end; ++p) {
    if (p[0] == delimiter && p[1] == ']') return p;
  }
  none = from;
  return nullptr;
}

const uint8_t* Parse::findQuoteEnd(const uint8_t* from) const {
  for (const uint8_t* p = from; p < end; ++p) {
    if (p[0] == '\\' && p[1] == 'E') return p;
  }
  return nullptr;
}

uint8_t Parse::readControl() {
  advance(2);
  int32_t value = *at;
  const int32_t lowered = value >= 96 && value <= 122 ? 32 : 0;
  value += value >= 32 && value <= 63 ? 64 : -64 - lowered;
  advance(1);
  return static_cast<uint8_t>(value);
}

int32_t Parse::readOctal(int32_t skip, int32_t maxDigits) {
  int32_t value = 0;
  for (at += skip; maxDigits > 0 && isOctalDigit(*at); --maxDigits) value = value * 8 + (*at++ - '0');
  return value;
}

uint32_t Parse::readHex(int32_t maxDigits) {
  uint32_t value = 0;
  for (int32_t digit; maxDigits > 0 && (digit = hexValue(*at)) >= 0; --maxDigits, ++at)
    value = value * 16 + static_cast<uint32_t>(digit);
  return value;
}

uint8_t Parse::readHexByte() {
  at += 2;
  return static_cast<uint8_t>(readHex(2));
}

bool Parse::readHexCodePoint(int32_t& value) {
  at += 3;
  value = static_cast<int32_t>(readHex(8));
  if (*at != '}') return false;
  ++at;
  return true;
}

int32_t namedByte(uint8_t letter) {
  switch (letter) {
    case 'a':
      return 7;
    case 'e':
      return 27;
    case 'f':
      return 12;
    case 'n':
      return 10;
    case 'r':
      return 13;
    case 't':
      return 9;
    case 'v':
      return 11;
    default:
      return -1;
  }
}

}  // namespace ulk
