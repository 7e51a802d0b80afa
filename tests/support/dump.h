// A compiled program as one readable line, so that a compiler test is a table row.
//
// One word per node, for example
//   capture#1/2:1 type:d repeat:1..* end#1=1 class^[range:a-z !char:x] alt#2,i lookbehind#-3/1:2 string:"ab"
// - "#" is the serial, "/" the body length in nodes, ":" the operand (capture number, width, options...),
//   "=" a group end's repeat mark, "," options other than 0, "!" a negated member or property, "^" a negated
//   class.
// - Behind the program: "slots=" when there are captures, "last=" the trailing literal's index with its
// options.
#pragma once

#include <string>

#include "regexp/program/state.h"

namespace ulk {

std::string dump(const ulkRegExpState& state);

}  // namespace ulk
