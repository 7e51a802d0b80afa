#include "regexp/analysis/analysis.h"

#include "regexp/analysis/follow_sets.h"
#include "regexp/analysis/start_filter.h"
#include "regexp/text/bytes.h"

namespace ulk {

namespace {

void resolveShorthands(ulkRegExpState& state) {
  RxNode* const nodes = state.nodes();
  for (int32_t i = 0; i < state.numNodes; i = nextNode(nodes, i)) {
    if (nodes[i].code != RX_CHARTYPE) continue;
    const int32_t letter = letterOf(nodes[i]);
    setByteSets(nodes[i], byteSetOf(letter, 0), byteSetOf(letter, RX_OPT_DOTALL));
  }
}

}  // namespace

void analyse(ulkRegExpState& state, SpareWords spare) {
  SpareFrames frames(state);
  const bool hasFrames = frames.takeFrom(kLastFreeFrame + 1);
  resolveShorthands(state);
  linkGroups(state);
  makeClassSets(state, spare);
  makeFollowSets(state, frames);
  makeStartFilter(state, hasFrames);
  chooseSteps(state);
}

}  // namespace ulk
