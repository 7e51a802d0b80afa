// Bracket classes: "[...]" becomes an RX_CLASS header and its members, or one plain item where that says the
// same.
#pragma once

#include "regexp/compile/parse.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// With `in.at` on the "["; leaves it behind the "]".
ulkStatus ownRegExpParseClass(Parse& in);

}  // namespace ulk

#pragma GCC visibility pop
