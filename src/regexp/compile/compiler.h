// The pattern compiler.
//
// In: a zero-terminated pattern and its options. Out: the state's header and node program, with the literal
// text behind it; where the pattern cannot be compiled, a status and the byte that the error names.
#pragma once

#include <cstdint>

#include "regexp/program/state.h"
#include "ulkch.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// Compiles into `state`, which is large enough for the pattern, and tells what the program leaves free of it.
// On a failure errOffset is written, and only then.
ulkStatus compileProgram(const char* pattern, const char* options, ulkRegExpState& state, SpareWords& spare,
                         int32_t& errOffset);

}  // namespace ulk

#pragma GCC visibility pop
