// A replacement template, prepared. In: the template's text. Out: a list of items, each a run of that text or
// a reference to a group. The list lies in a buffer that the caller provides and points into the template.
#pragma once

#include <cstdint>

#include "regexp/program/program.h"
#include "ulkch.h"

#pragma GCC visibility push(hidden)

namespace ulk {

struct ReplaceItem {
  uint32_t kind;     // RX_STRING: a run of text; RX_BACKREF: a group
  int32_t value;     // the run's length in bytes; the group's number, 0 for the whole match
  const char* text;  // the run; not set for a group
};
static_assert(sizeof(void*) != 4 || sizeof(ReplaceItem) == 12);

}  // namespace ulk

struct ulkRegExpReplaceState {
  uint32_t reserved;
  int32_t numItems;
  ulk::ReplaceItem* pItems;  // right behind this header; null for a null template

  ulk::ReplaceItem* items() { return reinterpret_cast<ulk::ReplaceItem*>(this + 1); }
};
static_assert(sizeof(void*) != 4 || sizeof(ulkRegExpReplaceState) == 12);

#pragma GCC visibility pop
