#include "regexp/match/assertions.h"

#include "regexp/match/steps.h"

namespace ulk {

ULK_STEP stepAssertion(const uint8_t* at, const RxNode* node, MatchContext& m) {
  if (!assertionHolds(m, at, assertionOf(*node))) return fail(m);
  ++node;
  return goOn(at, m.isQuantified(node) ? node + 1 : node, m);
}

ULK_STEP stepWordBoundary(const uint8_t* at, const RxNode* node, MatchContext& m) {
  return isWordBoundary(m, at) ? goOn(at, node + 1, m) : fail(m);
}

// An assertion that may be left out is passed over untested.
ULK_STEP stepOptionalAssertion(const uint8_t* at, const RxNode* node, MatchContext& m) {
  return goOn(at, node + 2, m);
}

}  // namespace ulk
