#include "regexp/analysis/rare_bytes.h"

#include <algorithm>
#include <bit>

namespace ulk {

namespace {

constexpr int32_t kMaxDistance = 16;

// How many of a thousand bytes are this one in what is usually searched: prose, sources, logs, data. Rough,
// and never nothing.
int32_t frequencyOf(uint8_t byte) {
  constexpr uint8_t kLetters[] = {60, 10, 25, 28, 90, 16, 14, 30, 55, 2,  6, 32, 20,
                                  55, 60, 18, 2,  50, 50, 65, 22, 8,  12, 3, 12, 2};
  if (byte >= 0xC0) return 100;  // in a text of another script
  if (byte >= 0x80) return 3;
  if (byte >= 'a' && byte <= 'z') return kLetters[byte - 'a'];
  if (byte >= 'A' && byte <= 'Z') return 3;
  if (byte >= '0' && byte <= '9') return 8;
  if (byte == ' ') return 130;
  if (byte == '\n' || byte == '.' || byte == ',') return 15;
  return byte > ' ' ? 5 : 1;
}

// Those from 0x80 on are not frequent in the same texts.
int32_t frequencyOf(const ByteSet256& set) {
  constexpr int32_t kMostHigh = 300;
  int32_t ascii = 0;
  int32_t high = 0;
  for (int32_t byte = 0; byte < 256; ++byte)
    if (set.contains(static_cast<uint8_t>(byte)))
      (byte < 0x80 ? ascii : high) += frequencyOf(static_cast<uint8_t>(byte));
  return ascii + std::min(high, kMostHigh);
}

PositionSet followOf(const PositionAutomaton& automaton, PositionSet positions) {
  PositionSet follow = 0;
  for (; positions; positions &= positions - 1) follow |= automaton.follow[std::countr_zero(positions)];
  return follow;
}

ByteSet256 bytesOf(const PositionAutomaton& automaton, PositionSet positions) {
  ByteSet256 bytes{};
  for (; positions; positions &= positions - 1) addAll(automaton.bytes[std::countr_zero(positions)], bytes);
  return bytes;
}

// Whether a match can do without this position.
bool canDoWithout(const PositionAutomaton& automaton, PositionSet position) {
  PositionSet reached = automaton.first & ~position;
  for (PositionSet before = 0; before != reached;) {
    before = reached;
    reached |= followOf(automaton, reached) & ~position;
  }
  return (reached & (automaton.accepting | automaton.atEnd)) != 0;
}

// The only byte of what is one position, which takes a byte; else -1.
int32_t onlyByteAt(const PositionAutomaton& automaton, PositionSet position) {
  if (!std::has_single_bit(position) || (automaton.atEnd & position)) return -1;
  return onlyByte(automaton.bytes[std::countr_zero(position)]);
}

}  // namespace

RequiredBytes findRequiredBytes(const PositionAutomaton& automaton) {
  constexpr int32_t kRare = 10000;  // of a million places
  RequiredBytes required{};
  int32_t least = INT32_MAX;
  for (int32_t p = 0; p < automaton.count; ++p) {
    const PositionSet position = PositionSet{1} << p;
    const int32_t first = onlyByteAt(automaton, position);
    if (first < 0) continue;
    const int32_t second = automaton.accepting & position ? -1 : onlyByteAt(automaton, automaton.follow[p]);
    const int32_t frequency = frequencyOf(static_cast<uint8_t>(first)) *
                              (second < 0 ? 1000 : frequencyOf(static_cast<uint8_t>(second)));
    if (frequency >= least || canDoWithout(automaton, position)) continue;
    required = {
        second < 0 ? 1 : 2, {static_cast<uint8_t>(first), static_cast<uint8_t>(second)}, frequency <= kRare};
    least = frequency;
  }
  return required;
}

ByteSet256 startBytes(const PositionAutomaton& automaton) { return bytesOf(automaton, automaton.first); }

bool describeRare(const ByteSet256& bytes, SmallSet& small) {
  constexpr int32_t kRare = 100;  // of a thousand
  return frequencyOf(bytes) <= kRare && describeAny(bytes, small);
}

bool findRarePair(const PositionAutomaton& automaton, RarePair& pair) {
  constexpr int32_t kRare = 30000;  // of a million places
  constexpr int32_t kNone = 1000;   // of a thousand
  int32_t first = kNone;
  int32_t second = kNone;
  int32_t endsAt = kMaxDistance;
  PositionSet positions = automaton.first;
  for (int32_t at = 0; at < kMaxDistance; ++at) {
    const ByteSet256 bytes = bytesOf(automaton, positions);
    const int32_t frequency = frequencyOf(bytes);
    SmallSet small;
    if (frequency < second && describeAny(bytes, small)) {
      if (frequency < first) {
        pair.second = pair.first;
        pair.secondAt = pair.firstAt;
        second = first;
        pair.first = small;
        pair.firstAt = at;
        first = frequency;
      } else {
        pair.second = small;
        pair.secondAt = at;
        second = frequency;
      }
    }
    if (positions & automaton.atEnd) endsAt = std::min(endsAt, at);
    if (positions & automaton.accepting) break;
    positions = followOf(automaton, positions);
  }
  if (second == kNone) {
    pair.second = pair.first;
    pair.secondAt = pair.firstAt;
  }
  pair.mayEnd = endsAt <= std::max(pair.firstAt, pair.secondAt);
  return first * second <= kRare;
}

}  // namespace ulk
