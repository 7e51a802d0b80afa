// The analysis of a compiled program, the second half of every compile: what can be known of an expression
// before it meets a text.
//
// In: the program, and what the compiler has left free in the state. Out, in the same state: links between
// the nodes of each group, the sets of classes, the bytes that may follow each repeat, and the start filter.
// Nothing of it changes what the program matches, nor how many steps that takes.
#pragma once

#include <optional>

#include "regexp/program/state.h"

#pragma GCC visibility push(hidden)

namespace ulk {

void analyse(ulkRegExpState& state, SpareWords spare);

// The options in force at every node, but for the RX_OPTIONS nodes that the program may begin with; none if
// they change further on.
using ConstantOptions = std::optional<uint32_t>;

// The stages of the analysis, in their order.

// Links every bar to the next one of its group, every open node to the group's first bar, and the ends of
// plain groups to their open nodes.
void linkGroups(ulkRegExpState& state, ConstantOptions options);

// Makes the records of all classes.
void makeClassSets(ulkRegExpState& state, SpareWords spare);

// Chooses how each node is run; the codes of the nodes hold more than before from then on.
void chooseSteps(ulkRegExpState& state, ConstantOptions options);

// Finds the program's head (match/head.cpp).
void findHead(ulkRegExpState& state, ConstantOptions options);

}  // namespace ulk

#pragma GCC visibility pop
