// The first and the last place where a literal stands in a text, letters in either case.
#pragma once

#include <algorithm>
#include <cstdint>

#include "kernels/find_substring.h"
#include "kernels/two_way.h"
#include "regexp/program/program.h"
#include "regexp/text/bytes.h"

#pragma GCC visibility push(hidden)

namespace ulk {

inline uint8_t smallLetter(uint8_t byte) {
  return static_cast<uint8_t>(isAsciiLetter(byte) ? byte | 0x20 : byte);
}

// One byte of the literal at its distance from a candidate.
class CaselessByte {
 public:
  CaselessByte(const uint8_t* text, const uint8_t* literal, size_t index)
      : text_(text + index),
        caseBit_(Vec16<uint8_t>::splat(isAsciiLetter(literal[index]) ? 0x20 : 0)),
        wanted_(Vec16<uint8_t>::splat(smallLetter(literal[index]))) {}
  template <class Block>
  ULK_INLINE Vec16<uint8_t> hits(const Block& block) const {
    return (block.load(text_) | caseBit_).equal(wanted_);
  }

 private:
  const uint8_t* text_;
  Vec16<uint8_t> caseBit_, wanted_;
};

struct CaselessFilter {
  CaselessByte first, second;

  template <class Block>
  ULK_INLINE Vec16<uint8_t> hits(const Block& block) const {
    return first.hits(block) & second.hits(block);
  }
};

// Candidates are found by the two rarest bytes of the literal and then compared. What is compared for nothing
// is kept account of: where it outgrows what has been searched, the probe is exhausted and accepts anything.
template <class Direction>
class CaselessProbe {
 public:
  static constexpr bool kExact = false;

  CaselessProbe(const uint8_t* text, size_t starts, const uint8_t* literal, size_t size)
      : CaselessProbe(text, starts, literal, size, rarestTwo(size, [=](size_t i) {
                        return std::max(commonness(literal[i]), commonness(smallLetter(literal[i])));
                      })) {}

  ULK_INLINE const CaselessFilter& filter() const { return filter_; }
  bool accept(int32_t position) {
    const uint8_t* const candidate = text_ + position;
    size_t same = 0;
    while (same < size_ && sameByte(literal_[same], candidate[same], RX_OPT_CASELESS)) ++same;
    if (same == size_) return true;
    effort_ += same + 1;
    exhausted_ = effort_ > kFreeEffort + 2 * Direction::place(starts_, static_cast<size_t>(position), 1);
    return exhausted_;
  }
  bool exhausted() const { return exhausted_; }

 private:
  static constexpr size_t kFreeEffort = 1024;

  CaselessProbe(const uint8_t* text, size_t starts, const uint8_t* literal, size_t size, TwoPlaces places)
      : filter_{{text, literal, places.first}, {text, literal, places.second}},
        text_(text),
        literal_(literal),
        starts_(starts),
        size_(size) {}

  CaselessFilter filter_;
  const uint8_t* text_;
  const uint8_t* literal_;
  size_t starts_;
  size_t size_;
  size_t effort_ = 0;
  bool exhausted_ = false;
};

// Bytes in the direction of the search, ASCII letters as small ones.
template <class Direction>
struct CaselessSequence {
  const uint8_t* bytes;
  size_t length;

  uint8_t operator[](size_t i) const { return smallLetter(bytes[Direction::place(length, i, 1)]); }
};

// The first place in the direction of the search, -1 if there is none.
template <class Direction>
int32_t scanForCaseless(const uint8_t* text, int32_t length, const uint8_t* literal, int32_t literalLength) {
  if (literalLength > length) return -1;
  const auto size = static_cast<size_t>(literalLength);
  const size_t starts = static_cast<size_t>(length) - size + 1;
  CaselessProbe<Direction> probe(text, starts, literal, size);
  const int32_t found = scan<Direction>(text, starts, probe);
  if (!probe.exhausted()) return found;

  // The walk stopped at a place that it had rejected; it and all that lies beyond is searched again.
  const size_t passed = Direction::place(starts, static_cast<size_t>(found), 1);
  const size_t rest = static_cast<size_t>(length) - passed;
  const size_t begin = Direction::place(static_cast<size_t>(length), passed, rest);
  const int32_t offset = twoWayOffset(CaselessSequence<Direction>{text + begin, rest},
                                      CaselessSequence<Direction>{literal, size});
  if (offset < 0) return -1;
  return static_cast<int32_t>(begin + Direction::place(rest, static_cast<size_t>(offset), size));
}

inline int32_t findCaseless(const uint8_t* text, int32_t length, const uint8_t* literal, int32_t size) {
  return scanForCaseless<Forward>(text, length, literal, size);
}

// The last place, -1 if there is none.
inline int32_t findRevCaseless(const uint8_t* text, int32_t length, const uint8_t* literal, int32_t size) {
  return scanForCaseless<Backward>(text, length, literal, size);
}

}  // namespace ulk

#pragma GCC visibility pop
