// Bytes that every match has and that are rare, as bytes are distributed in most texts.
#pragma once

#include <cstdint>

#include "regexp/analysis/position_automaton.h"
#include "regexp/program/small_set.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// Two at fixed distances from the start of the match; one alone stands twice.
struct RarePair {
  bool mayEnd;  // the text may end before or where they would stand
  int32_t firstAt;
  int32_t secondAt;
  SmallSet first;
  SmallSet second;
};

// The rarest. False if it is not rare, or there is none.
bool findRarePair(const PositionAutomaton& automaton, RarePair& pair);

// One that stands anywhere in the match, or two of which one follows the other: the rarest, or none.
struct RequiredBytes {
  int32_t count;
  uint8_t bytes[2];
  bool areRare;
};
RequiredBytes findRequiredBytes(const PositionAutomaton& automaton);

// Those that a match can begin with, or what stands before it.
ByteSet256 startBytes(const PositionAutomaton& automaton);
// False if they are not rare or no small set.
bool describeRare(const ByteSet256& bytes, SmallSet& small);

}  // namespace ulk

#pragma GCC visibility pop
