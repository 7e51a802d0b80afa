#include "regexp/analysis/analysis.h"

#include "regexp/analysis/follow_sets.h"
#include "regexp/analysis/start_filter.h"

namespace ulk {

void analyse(ulkRegExpState& state, SpareWords spare) {
  SpareFrames frames(state);
  const bool hasFrames = frames.take() == kStartSetFrame && frames.take() == kStartPairFrame;
  linkGroups(state);
  makeClassSets(state, spare);
  makeFollowSets(state, frames);
  makeStartFilter(state, hasFrames);
}

}  // namespace ulk
