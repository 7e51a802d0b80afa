// UTF-8 to UTF-16 for every sequence of bytes, well formed or not.
//
// Far from both ends, text is taken in blocks:
//
//   64 bytes of ASCII      widened
//   15 bytes of ASCII and two-byte sequences
//                          every byte becomes the unit that a sequence beginning there would give; the units
//                          at continuation bytes are then dropped. 15, so that two steps of dropping are
//                          enough
//   four of four bytes     as four pairs
//   other sequences        one by one
//
// Such a step may store up to eight units more than it takes. Nobody sees them: the source left gives at
// least that many units, and they fit, so that they are all written again.
#pragma once

#include <algorithm>

#include "kernels/utf_compress.h"
#include "regexp/text/utf8.h"

namespace ulk {

// A place in the source and one in the target, and the ways to take the next piece from one to the other. The
// units of a big-endian target keep only their low byte, as their high byte, and the units of a pair change
// places: that is how this conversion is defined.
template <bool bigEndian>
struct Utf8ToUtf16 {
  const uint8_t* in;
  uint16_t* out;

  using Bytes = Vec16<uint8_t>;
  using Units = Vec16<uint16_t>;

  // A block of 15 bytes, and 24 that give 8 units at least.
  static constexpr int32_t kSourceMargin = 40;
  static constexpr int32_t kTargetMargin = 16;

  // Takes the text whose blocks begin at `lastIn` and `lastOut` at the latest, a margin before the ends.
  // Works on a copy, which can stay in registers, and apart from the rest, so that short texts do not pay for
  // its constants.
  __attribute__((noinline)) static Utf8ToUtf16 takeBlocks(Utf8ToUtf16 at, const uint8_t* lastIn,
                                                          const uint16_t* lastOut) {
    while (at.in <= lastIn && at.out <= lastOut) {
      while (lastIn - at.in >= 64 - kSourceMargin && lastOut - at.out >= 64 - kTargetMargin) {
        if (!at.takeAscii()) break;
      }
      // Several blocks to one look at the ends: none takes more than 16 bytes, or gives more than 16 units.
      ptrdiff_t safe = std::min<ptrdiff_t>({lastIn - at.in, lastOut - at.out, 64});
      if (safe < 0) break;
      bool whole;
      do {
        whole = at.takeShort();
        safe -= 16;
      } while (whole && safe >= 0);
      if (whole) continue;
      do {
        // The first sequence comes from within a block, which may have been the last.
        if (*at.in >= 0xF0 && at.in <= lastIn && at.out <= lastOut && at.takeFourPairs()) continue;
        if (!at.takeLong()) at = takeAny(at);
      } while (at.in <= lastIn && at.out <= lastOut && *at.in >= 0xE0);
    }
    return at;
  }

  // One sequence, by the rules alone: an invalid one gives its first byte. Looks at the bytes of a sequence
  // wherever the source ends, and writes both units of a pair whatever the room.
  static Utf8ToUtf16 takeAny(Utf8ToUtf16 at) {
    const Utf8Char next = decodeUtf8(at.in);
    at.put(next.length, next.value < 0 ? *at.in : static_cast<uint32_t>(next.value));
    return at;
  }

  // 16 bytes, if they are all ASCII.
  ULK_INLINE bool takeFewAscii() {
    const Bytes block = Bytes::load(in);
    if (block.mask().any()) return false;
    widen(block, out);
    in += 16;
    out += 16;
    return true;
  }

  // Four ASCII bytes or one sequence; looks at four bytes.
  ULK_INLINE void takeFew() {
    const uint32_t next = loadAs<uint32_t>(in);
    if ((next & 0x80808080) == 0) {
      unitsLow(Bytes::join<4>(in, in), Bytes::zero()).template split<8>(out, out);
      in += 4;
      out += 4;
    } else if ((next & 0x80) == 0) {
      put(1, next & 0x7F);
    } else if ((next & 0xC0E0) == 0x80C0 && (next & 0x1E) != 0) {
      put(2, (next & 0x1F) << 6 | (next >> 8 & 0x3F));
    } else if (!takeLong()) {
      *this = takeAny(*this);
    }
  }

 private:
  // Low and high bytes of eight units each, as the target has them.
  ULK_INLINE static Units unitsLow(Bytes low, Bytes high) {
    return (bigEndian ? Bytes::zero().interleaveLow(low) : low.interleaveLow(high)).template as<uint16_t>();
  }
  ULK_INLINE static Units unitsHigh(Bytes low, Bytes high) {
    return (bigEndian ? Bytes::zero().interleaveHigh(low) : low.interleaveHigh(high)).template as<uint16_t>();
  }
  ULK_INLINE static void widen(Bytes ascii, uint16_t* to) {
    unitsLow(ascii, Bytes::zero()).store(to);
    unitsHigh(ascii, Bytes::zero()).store(to + 8);
  }

  // 64 bytes, if they are all ASCII.
  ULK_INLINE bool takeAscii() {
    const Bytes a = Bytes::load(in), b = Bytes::load(in + 16), c = Bytes::load(in + 32),
                d = Bytes::load(in + 48);
    if (((a | b) | (c | d)).mask().any()) return false;
    widen(a, out);
    widen(b, out + 16);
    widen(c, out + 32);
    widen(d, out + 48);
    in += 64;
    out += 64;
    return true;
  }

  // 15 bytes of ASCII and two-byte sequences, 14 if the last of them is a lead. Where anything else stands
  // among them, takes what is before it and answers false.
  ULK_INLINE bool takeShort() {
    const Bytes block = Bytes::load(in);
    const Bytes leads = UnitRange<uint8_t>(0xC2, 0xDF).contains(block);
    const uint32_t lead = leads.mask().bits();
    const uint32_t continuation = Bytes::splat(0xC0).greaterSigned(block).mask().bits();
    const uint32_t multibyte = block.mask().bits();
    const uint32_t wrong = ((lead << 1 ^ continuation) | (multibyte ^ (lead | continuation))) & 0x7FFF;

    // The next block waits for this length: it is had sooner from the byte itself than from the masks, and by
    // arithmetic sooner than by a comparison.
    uint32_t length = 15 - ((in[14] + 0x40u) >> 8);
    uint32_t dropped = continuation | (lead & 0x4000) | ~0u << 15;
    if (wrong != 0) [[unlikely]] {
      length = static_cast<uint32_t>(std::countr_zero(wrong));
      length -= lead << 1 >> length & 1;
      dropped = continuation | ~0u << length;
    }

    // An ASCII unit is the byte itself. A sequence 110yyyyy 10zzzzzz gives 00000yyy yyzzzzzz.
    const Units block16 = block.template as<uint16_t>();
    const Bytes y = (block16 << 6).template as<uint8_t>() & Bytes::splat(0xC0);
    const Bytes z = Bytes::load(in + 1) & Bytes::splat(0x3F);
    const Bytes low = block.blend(leads, y | z);
    const Bytes high = (block16 >> 2).template as<uint8_t>() & Bytes::splat(0x07) & leads;
    putKept(unitsLow(low, high), dropped & 0xFF);
    putKept(unitsHigh(low, high), dropped >> 8 & 0xFF);
    in += length;
    return wrong == 0;
  }

  ULK_INLINE void putKept(Units units, uint32_t dropped) {
    compress(units, dropped).store(out);
    out += keptLanes<uint16_t>(dropped);
  }

  // Four well-formed sequences of four bytes, as put() would take them one by one.
  ULK_INLINE bool takeFourPairs() {
    using Pairs = Vec16<uint32_t>;
    const Pairs next = Bytes::load(in).template as<uint32_t>();
    const Pairs marks = (next & Pairs::splat(0xC0C0C0F8)) ^ Pairs::splat(0x808080F0);
    if (marks.equal(Pairs::zero()).mask().bits() != 0xFFFF) return false;
    // Shorter ones would do for values below 0x10000. What tells so are bits of the lower halves.
    const Pairs large = next & Pairs::splat(0x3007);
    if ((large.equal(Pairs::zero()).mask().bits() & 0x3333) != 0) return false;
    const Pairs value = (next & Pairs::splat(0x07)) << 18 | (next << 4 & Pairs::splat(0x3F000)) |
                        (next >> 10 & Pairs::splat(0x0FC0)) | (next >> 24 & Pairs::splat(0x3F));
    const Pairs offset = value + Pairs::splat(-0x10000u);
    const Pairs high = (offset >> 10 & Pairs::splat(0x3FF)) | Pairs::splat(0xD800);
    const Pairs low = (offset & Pairs::splat(0x3FF)) | Pairs::splat(0xDC00);
    const Pairs pairs = bigEndian ? high << 16 | low : low << 16 | high;
    pairs.template as<uint16_t>().store(out);
    in += 16;
    out += 8;
    return true;
  }

  // A well-formed sequence of three or four bytes; looks at four bytes.
  ULK_INLINE bool takeLong() {
    const uint32_t next = loadAs<uint32_t>(in);
    if ((next & 0x00C0C0F0) == 0x008080E0 && (next & 0x0000200F) != 0) {
      put(3, (next & 0x0F) << 12 | (next >> 2 & 0x0FC0) | (next >> 16 & 0x3F));
      return true;
    }
    if ((next & 0xC0C0C0F8) == 0x808080F0 && (next & 0x00003007) != 0) {
      put(4, (next & 0x07) << 18 | (next << 4 & 0x3F000) | (next >> 10 & 0x0FC0) | (next >> 24 & 0x3F));
      return true;
    }
    return false;
  }

  ULK_INLINE void put(int32_t length, uint32_t value) {
    in += length;
    if (value <= 0xFFFF) {
      storeAs(out, static_cast<uint16_t>(bigEndian ? value << 8 : value));
      out += 1;
      return;
    }
    const uint32_t offset = value - 0x10000;  // its bits above the twentieth are lost
    const uint32_t high = 0xD800 | (offset >> 10 & 0x3FF);
    const uint32_t low = 0xDC00 | (offset & 0x3FF);
    storeAs(out, bigEndian ? high << 16 | low : low << 16 | high);
    out += 2;
  }
};

// Converts as much as fits. The lengths come in as those of the source and of the room in the target, and go
// out as what was taken and written.
//
// The conversion ends when exactly nothing is left or there is exactly no room. Either can be passed over:
// the source by a last sequence that goes on beyond its end, the room by a pair where one unit was free. It
// then runs on until the other one ends it.
template <bool bigEndian>
ULK_INLINE void utf8ToUtf16(const uint8_t* source, int32_t* sourceLength, uint16_t* target,
                            int32_t* targetLength) {
  using Step = Utf8ToUtf16<bigEndian>;
  const int32_t length = *sourceLength;
  const int32_t capacity = *targetLength;
  Step at{source, target};
  if (length >= 4 && capacity >= 4) {
    const uint8_t* const sourceEnd = source + length;
    // A byte never gives more than one unit. So much room is as good as any more, and has an end in memory.
    uint16_t* const targetEnd = target + std::min(length, capacity);
    if (length >= Step::kSourceMargin && capacity >= Step::kTargetMargin) {
      at = Step::takeBlocks(at, sourceEnd - Step::kSourceMargin, targetEnd - Step::kTargetMargin);
    }
    while (sourceEnd - at.in >= 16 && targetEnd - at.out >= 16 && at.takeFewAscii()) {
    }
    const uint8_t* const lastIn = sourceEnd - 4;
    const uint16_t* const lastOut = targetEnd - 4;
    while (at.in <= lastIn && at.out <= lastOut) at.takeFew();
  }
  int32_t consumed = static_cast<int32_t>(at.in - source);
  int32_t written = static_cast<int32_t>(at.out - target);
  while (consumed != length && written != capacity) {
    at = Step::takeAny(at);
    consumed = static_cast<int32_t>(at.in - source);
    written = static_cast<int32_t>(at.out - target);
  }
  *sourceLength = consumed;
  *targetLength = written;
}

}  // namespace ulk
