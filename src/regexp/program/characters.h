// Which characters the nodes accept that stand for one character by its value.
#pragma once

#include <cstdint>

#include "regexp/program/program.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// Whether a code-point node accepts a character, without a member's negation.
bool codePointAccepts(const RxNode& node, int32_t codePoint, uint32_t options);

// Whether a category, range or script node accepts a character.
bool propertyAccepts(const RxNode& node, int32_t codePoint);

}  // namespace ulk

#pragma GCC visibility pop
