// A glance at a text before a search of it. Many searches come to no more: the text has no place where a
// match may begin, or the first match is at the first such place. What a search of many places needs is then
// not set up.
//
// Where candidates are used, a glance at a short text makes attempts at all of them. Else it makes one, at
// the first place that the start filter lets pass; where the expression is anchored, at the text's start,
// which is the only one in a short text of one line.
#pragma once

#include <cstdint>

#include "regexp/analysis/start_filter.h"
#include "ulkch.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// The two kinds of a glance.
bool glanceAtCandidates(ulkRegExpState& state, const uint8_t* text, const uint8_t* end,
                        ulkRegExpFind* records, int32_t* numRecords);
bool glanceAtFirstStart(ulkRegExpState& state, const uint8_t* text, const uint8_t* end,
                        ulkRegExpFind* records, int32_t* numRecords);

// Whether the search of a text that is not empty is decided; if not, nothing has been written. Glances are
// left out for a while when they have not decided enough of late.
inline bool decidesAtAGlance(ulkRegExpState& state, const uint8_t* text, const uint8_t* end,
                             ulkRegExpFind* records, int32_t* numRecords) {
  if (!startFilterOf(state).hasFrames) return false;
  PrefilterNote& note = state.frames[kPrefilterFrame].prefilter;
  if (note.hope <= 0) {
    ++note.hope;
    return false;
  }
  if (note.use == PrefilterUse::kOn) return glanceAtCandidates(state, text, end, records, numRecords);
  return glanceAtFirstStart(state, text, end, records, numRecords);
}

}  // namespace ulk

#pragma GCC visibility pop
