// A coarse picture of a program: which bytes can stand one behind the other in what it matches.
//
// The automaton, known as the position or Glushkov automaton, has a position for each place where an item
// takes a byte: three for `ab*[cd]`, where that of b follows those of a and b. It admits every match that the
// program can have, and more: most lookarounds and assertions and the order of tries are left out, long
// counts are cut to "and more", and where a node is not understood the match may end there. So what it
// rejects needs no attempt.
//
// A lookbehind that the program begins with and a lookahead that it ends with are taken as if they were parts
// of the match: `(?<=in )\d+(?=,)` as `in \d+,`.
#pragma once

#include <cstdint>

#include "regexp/program/state.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// Sets of positions are bits of a word.
using PositionSet = uint64_t;
inline constexpr int32_t kMaxPositions = 64;

struct PositionAutomaton {
  int32_t count;
  int32_t bytesBefore;    // a match, which begins so many bytes behind what the first positions take
  PositionSet first;      // where a match can begin
  PositionSet accepting;  // where a match can end
  PositionSet atEnd;      // those that the text's end may stand for
  PositionSet follow[kMaxPositions];
  ByteSet256 bytes[kMaxPositions];
};

// Makes the automaton of an analysed program. False if it would tell nothing, because what it asks for can be
// empty as far as is known.
bool makeAutomaton(const ulkRegExpState& state, PositionAutomaton& automaton);

}  // namespace ulk

#pragma GCC visibility pop
