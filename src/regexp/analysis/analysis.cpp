#include "regexp/analysis/analysis.h"

#include "regexp/analysis/follow_sets.h"
#include "regexp/analysis/start_filter.h"
#include "regexp/text/bytes.h"
#include "unicode/unicode.h"

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

// Those of classes as well.
void resolveScripts(ulkRegExpState& state) {
  RxNode* const nodes = state.nodes();
  for (RxNode* node = nodes; node < nodes + state.numNodes; ++node)
    if (node->code == RX_SCRIPT) scriptNumber(*node) = scriptOf(static_cast<int32_t>(rangesOf(*node)->first));
}

ConstantOptions constantOptions(const ulkRegExpState& state) {
  const RxNode* const nodes = state.nodes();
  auto options = state.options;
  int32_t i = 0;
  for (; i < state.numNodes && codeOf(nodes[i]) == RX_OPTIONS; ++i)
    options = static_cast<uint32_t>(newOptions(nodes[i]));
  for (; i < state.numNodes; i = nextNode(nodes, i)) {
    const bool changes = codeOf(nodes[i]) == RX_OPTIONS || codeOf(nodes[i]) == RX_OPTGROUP;
    if (changes || ((optionsAfter(nodes[i], options) ^ options) & kMatcherOptions)) return std::nullopt;
  }
  return options & kMatcherOptions;
}

}  // namespace

void analyse(ulkRegExpState& state, SpareWords spare) {
  SpareFrames frames(state);
  const bool hasFrames = frames.takeFrom(kLastFreeFrame + 1);
  const ConstantOptions options = constantOptions(state);
  resolveShorthands(state);
  resolveScripts(state);
  linkGroups(state, options);
  makeClassSets(state, spare);
  makeFollowSets(state, frames);
  makeStartFilter(state, hasFrames);
  chooseSteps(state, options);
  findHead(state, options);
}

}  // namespace ulk
