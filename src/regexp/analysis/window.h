// The window of an expression (program/window.h), by which a search of many expressions at once
// (search/set_scan.h) knows where to try this one. An expression without one is searched by itself.
//
// It is looked for when an expression is first searched as one of many: most never are.
#pragma once

#include "regexp/program/state.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// Writes what no other search reads, once. Frames kWindowKeysFrame to kWindowFrame belong to no group.
void findWindow(ulkRegExpState& state);

inline const Window& windowOf(const ulkRegExpState& state) { return state.frames[kWindowFrame].window; }
inline const WindowKey* windowKeys(const ulkRegExpState& state) {
  return state.frames[kWindowKeysFrame].keys;
}

}  // namespace ulk

#pragma GCC visibility pop
