// The first pass over a pattern: are the parentheses balanced, and how many of them capture?
//
// The main pass needs the number of groups from the start, because a back reference may come before its
// group.
#pragma once

#include <cstdint>

#include "regexp/compile/parse.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// `extended`: the x option as the options string sets it. Leaves `in.at` at the pattern's end.
ulkStatus prescan(Parse& in, bool extended, int32_t& numCapturingGroups);

}  // namespace ulk

#pragma GCC visibility pop
