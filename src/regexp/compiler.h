// The pattern compiler: from a zero-terminated pattern and its options to the node program inside a state.
#pragma once

#include <cstdint>

#include "ulkch.h"

namespace ulk {

// Compiles into `state`, which is large enough for the pattern. On a failure *errOffset is the byte of the
// pattern that the error names; on success it is untouched.
ulkStatus ownRegExpCompile(const char* pattern, const char* options, ulkRegExpState* state,
                           int32_t* errOffset);

}  // namespace ulk
