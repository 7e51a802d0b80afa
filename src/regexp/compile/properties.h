// Unicode properties in a pattern: "\p{...}" and "\P{...}", inside and outside classes.
#pragma once

#include <cstdint>

#include "regexp/program/program.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// `at` is on the "p" or "P"; negate is -1 for "\P", else 0. Appends one node, leaves `at` behind the property
// and returns 0; or returns -1 with `at` on the byte that is to blame.
int32_t ownRegExpParseProperty(const uint8_t*& at, RxNode* nodes, int32_t& numNodes, int32_t negate);

// The same for a script's name; on success `at` is on the "}".
int32_t ownRegExpParseScript(const uint8_t*& at, RxNode* nodes, int32_t& numNodes, int32_t negate);

}  // namespace ulk

#pragma GCC visibility pop
