// Two bytes that every match has at fixed distances from its start, and that few other places have.
#pragma once

#include <cstdint>

#include "regexp/analysis/position_automaton.h"
#include "regexp/program/small_set.h"

namespace ulk {

struct RarePair {
  int32_t firstAt;  // distances from the start
  int32_t secondAt;
  SmallSet first;
  SmallSet second;
};

// The rarest, as bytes are distributed in most texts. False if it is not rare, or there is none.
bool findRarePair(const PositionAutomaton& automaton, RarePair& pair);

}  // namespace ulk
