// UTF-16 to UTF-8 for every sequence of units; a surrogate without its partner is encoded like any other
// unit.
//
// Far from both ends, text is taken in blocks:
//
//   32 units of ASCII      narrowed
//   8 units below 0x800    each becomes two bytes, the second of which is dropped for ASCII
//   8 without surrogates   each becomes four bytes, of which one to three are kept
//   4 surrogate pairs      as many bytes as they have
//   8 others               one by one
//
// Such a step may store up to six bytes more than it takes. Nobody sees them: every unit left gives at least
// one byte, and they fit, so that they are all written again.
#pragma once

#include <algorithm>

#include "kernels/utf_compress.h"

namespace ulk {

// A place in the source and one in the target, and the ways to take the next piece from one to the other.
template <bool bigEndian>
struct Utf16ToUtf8 {
  const uint16_t* in;
  uint8_t* out;

  using Bytes = Vec16<uint8_t>;
  using Units = Vec16<uint16_t>;
  using Pairs = Vec16<uint32_t>;

  // 8 units, or 9 where they cut a pair, and 6 more units for 6 more bytes.
  static constexpr int32_t kSourceMargin = 16;
  // The bytes of that, 6 more, and 3 that may be left when the next character does not fit.
  static constexpr int32_t kTargetMargin = 40;

  // Takes the text whose blocks begin at `lastIn` and `lastOut` at the latest, a margin before the ends.
  // Works on a copy, which can stay in registers, and apart from the rest, so that short texts do not pay for
  // its constants.
  __attribute__((noinline)) static Utf16ToUtf8 takeBlocks(Utf16ToUtf8 at, const uint16_t* lastIn,
                                                          const uint8_t* lastOut) {
    while (at.in <= lastIn && at.out <= lastOut) {
      if (lastIn - at.in >= 32 - kSourceMargin && at.takeAscii()) continue;
      ptrdiff_t blocks = std::min<ptrdiff_t>({(lastIn - at.in) / 8, (lastOut - at.out) / 24, 4}) + 1;
      while (blocks-- > 0) {
        if (at.takeShort() || at.takePlane()) continue;
        if (!at.takePairs()) {
          const uint16_t* const end = at.in + 8;
          while (at.in < end) at.takeOne(false, 4);
          break;
        }
        // More pairs are likelier than anything else.
        while (blocks > 0 && at.takePairs()) --blocks;
      }
    }
    return at;
  }

  // As many times eight units as are all ASCII.
  ULK_INLINE static Utf16ToUtf8 takeAsciiRun(Utf16ToUtf8 at, const uint16_t* sourceEnd,
                                             const uint8_t* targetEnd) {
    while (sourceEnd - at.in >= 8 && targetEnd - at.out >= 8 && at.takeFewAscii()) {
    }
    return at;
  }

  // As many times four surrogate pairs as there are.
  ULK_INLINE static Utf16ToUtf8 takePairsRun(Utf16ToUtf8 at, const uint16_t* sourceEnd,
                                             const uint8_t* targetEnd) {
    while (sourceEnd - at.in >= 8 && targetEnd - at.out >= 16 && at.takePairs()) {
    }
    return at;
  }

  // Takes the next character if it fits; `last` tells that its first unit is the last one.
  ULK_INLINE bool takeOne(bool last, ptrdiff_t room) {
    const uint32_t unit = loadOne(in);
    if (unit < 0x80) {
      if (room < 1) return false;
      *out = static_cast<uint8_t>(unit);
      return taken(1, 1);
    }
    if (unit < 0x800) {
      if (room < 2) return false;
      storeAs(out, static_cast<uint16_t>(0x80C0 | unit >> 6 | (unit & 0x3F) << 8));
      return taken(1, 2);
    }
    if ((unit & 0xFC00) == 0xD800 && !last) {
      const uint32_t next = loadOne(in + 1);
      if ((next & 0xFC00) == 0xDC00) {
        if (room < 4) return false;
        storeAs(out, fourBytes(unit | next << 16));
        return taken(2, 4);
      }
    }
    if (room < 3) return false;
    storeAs(out, static_cast<uint16_t>(0x80E0 | unit >> 12 | (unit << 2 & 0x3F00)));
    out[2] = static_cast<uint8_t>(0x80 | (unit & 0x3F));
    return taken(1, 3);
  }

 private:
  ULK_INLINE bool taken(int32_t units, int32_t bytes) {
    in += units;
    out += bytes;
    return true;
  }

  ULK_INLINE static uint32_t loadOne(const uint16_t* at) {
    const uint32_t unit = loadUnit(at);
    return bigEndian ? (unit << 8 & 0xFF00) | unit >> 8 : unit;
  }
  ULK_INLINE static Units load(const uint16_t* at) {
    const Units units = Units::load(at);
    return bigEndian ? units << 8 | units >> 8 : units;
  }

  // Eight units, if they are all ASCII.
  ULK_INLINE bool takeFewAscii() {
    const Units block = load(in);
    if ((block & Units::splat(0xFF80)).equal(Units::zero()).mask().bits() != 0xFFFF) return false;
    Bytes::narrow(block, block).template split<8>(out, out);
    in += 8;
    out += 8;
    return true;
  }

  // 32 units, if they are all ASCII. They need not be swapped to see that.
  ULK_INLINE bool takeAscii() {
    const Units a = Units::load(in), b = Units::load(in + 8), c = Units::load(in + 16),
                d = Units::load(in + 24);
    const Units beyond = ((a | b) | (c | d)) & Units::splat(bigEndian ? 0x80FF : 0xFF80);
    if (beyond.equal(Units::zero()).mask().bits() != 0xFFFF) return false;
    constexpr int kUnused = bigEndian ? 8 : 0;
    Bytes::narrow(a >> kUnused, b >> kUnused).store(out);
    Bytes::narrow(c >> kUnused, d >> kUnused).store(out + 16);
    return taken(32, 32);
  }

  // Eight units of one or two bytes.
  ULK_INLINE bool takeShort() {
    const Units block = load(in);
    if ((block & Units::splat(0xF800)).equal(Units::zero()).mask().bits() != 0xFFFF) return false;
    const Units ascii = Units::splat(0x80).greaterSigned(block);
    putKept(twoBytes(block).blend(ascii, block), ascii.mask().bits() & 0xAAAA);
    in += 8;
    return true;
  }

  // Eight units of one to three bytes.
  ULK_INLINE bool takePlane() {
    const Units block = load(in);
    const Units top = block & Units::splat(0xF800);
    if (top.equal(Units::splat(0xD800)).mask().any()) return false;
    const Units ascii = (block & Units::splat(0xFF80)).equal(Units::zero());
    const Units upToTwo = top.equal(Units::zero());
    const Units three = block >> 12 | (block << 2 & Units::splat(0x3F00)) | Units::splat(0x80E0);
    const Units first = three.blend(upToTwo, twoBytes(block).blend(ascii, block));
    const Units second = (block & Units::splat(0x3F)) | Units::splat(0x80);
    const Units dropFirst = ascii & Units::splat(0xFF00);
    const Units dropSecond = upToTwo | Units::splat(0xFF00);
    putKept(first.interleaveLow(second), dropFirst.interleaveLow(dropSecond).mask().bits());
    putKept(first.interleaveHigh(second), dropFirst.interleaveHigh(dropSecond).mask().bits());
    in += 8;
    return true;
  }

  // The two bytes of each unit below 0x800.
  ULK_INLINE static Units twoBytes(Units block) {
    return block >> 6 | (block << 8 & Units::splat(0x3F00)) | Units::splat(0x80C0);
  }

  // The 16 bytes without those that are dropped.
  ULK_INLINE void putKept(Units bytes, uint32_t dropped) {
    const uint32_t low = dropped & 0xFF;
    const uint32_t high = dropped >> 8;
    uint8_t* const middle = out + keptLanes<uint8_t>(low);
    compressHalves(bytes.template as<uint8_t>(), low, high).template split<8>(out, middle);
    out = middle + keptLanes<uint8_t>(high);
  }

  // Four surrogate pairs.
  ULK_INLINE bool takePairs() {
    const Units block = load(in);
    const Units kinds = Pairs::splat(0xDC00D800).template as<uint16_t>();
    if ((block & Units::splat(0xFC00)).equal(kinds).mask().bits() != 0xFFFF) return false;
    const Pairs pairs = block.template as<uint32_t>();
    fourBytes(pairs).template as<uint8_t>().store(out);
    return taken(8, 16);
  }

  // The bytes of surrogate pairs, each with its high one in the lower half. A high one stands for its bits
  // plus 0x40, as the value does for its bits plus 0x10000.
  ULK_INLINE static uint32_t fourBytes(uint32_t pair) {
    const uint32_t value = pair + 0x40;
    return 0x808080F0 | (value >> 8 & 0x07) | (value << 6 & 0x3F00) | (value << 20 & 0x300000) |
           (value >> 6 & 0x0F0000) | (value << 8 & 0x3F000000);
  }
  ULK_INLINE static Pairs fourBytes(Pairs pairs) {
    const Pairs value = pairs + Pairs::splat(0x40);
    return Pairs::splat(0x808080F0) | (value >> 8 & Pairs::splat(0x07)) |
           (value << 6 & Pairs::splat(0x3F00)) | (value << 20 & Pairs::splat(0x300000)) |
           (value >> 6 & Pairs::splat(0x0F0000)) | (value << 8 & Pairs::splat(0x3F000000));
  }
};

// Converts as much as fits, whole characters only. The lengths come in as those of the source and of the room
// in the target, and go out as what was taken and written.
template <bool bigEndian>
ULK_INLINE void utf16ToUtf8(const uint16_t* source, int32_t* sourceLength, uint8_t* target,
                            int32_t* targetLength) {
  using Step = Utf16ToUtf8<bigEndian>;
  const int32_t length = *sourceLength;
  const int32_t capacity = *targetLength;
  Step at{source, target};
  // A unit never gives more than three bytes. So much room is as good as any more, and has an end in memory.
  const int32_t useful = length >= 0 && length < capacity / 3 ? length * 3 : capacity;
  const uint16_t* const sourceEnd = source + length;
  const uint8_t* const targetEnd = target + useful;
  // A short ASCII text is done before the blocks would be set up.
  if (length < 2 * Step::kSourceMargin) at = Step::takeAsciiRun(at, sourceEnd, targetEnd);
  if (sourceEnd - at.in >= Step::kSourceMargin && targetEnd - at.out >= Step::kTargetMargin) {
    at = Step::takeBlocks(at, sourceEnd - Step::kSourceMargin, targetEnd - Step::kTargetMargin);
  }
  at = Step::takeAsciiRun(at, sourceEnd, targetEnd);
  at = Step::takePairsRun(at, sourceEnd, targetEnd);
  while (at.in != sourceEnd && at.takeOne(sourceEnd - at.in == 1, targetEnd - at.out)) {
  }
  *sourceLength = static_cast<int32_t>(at.in - source);
  *targetLength = static_cast<int32_t>(at.out - target);
}

}  // namespace ulk
