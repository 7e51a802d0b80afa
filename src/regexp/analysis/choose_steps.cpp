// Chooses how each node is run (program/step.h).
#include "regexp/analysis/analysis.h"
#include "regexp/program/class_sets.h"
#include "regexp/text/bytes.h"

namespace ulk {

namespace {

class StepChooser {
 public:
  StepChooser(const ulkRegExpState& state, ConstantOptions options)
      : nodes_(state.nodes()), numNodes_(state.numNodes), options_(options) {}

  Step of(int32_t index) const;

 private:
  const RxNode* quantifierAt(int32_t index) const { return quantifierOf(nodes_, numNodes_, index); }
  // Whether a class or a property has a set of its ASCII characters that holds for the whole search.
  bool hasOneSet(const RxNode& node) const {
    if (isProperty(node)) return recordOf(node);
    return node.code == RX_CLASS && options_ && recordOf(node) && ClassNote(node).isMadeFor(*options_);
  }
  Step item(int32_t index) const;
  Step repeat(const RxNode& node, const RxNode& quantifier) const;
  Step assertion(int32_t index) const;
  Step open(int32_t index) const;
  Step end(int32_t index) const;
  bool holdsItems(int32_t open) const;
  bool holdsOneRepeat(int32_t open) const;

  const RxNode* const nodes_;
  const int32_t numNodes_;
  const ConstantOptions options_;
};

Step StepChooser::item(int32_t index) const {
  const RxNode& node = nodes_[index];
  switch (node.code) {
    case RX_CHAR:
      if (!options_) return Step::kItem;
      return (*options_ & RX_OPT_CASELESS) && isAsciiLetter(byteOf(node)) ? Step::kLetter : Step::kByte;
    case RX_STRING:
      return !options_ || (*options_ & RX_OPT_CASELESS) ? Step::kItem : Step::kString;
    case RX_CHARTYPE:
      return Step::kShorthand;
    case RX_BACKREF:
      return Step::kBackref;
    default:
      return hasOneSet(node) ? Step::kSet : Step::kItem;
  }
}

Step StepChooser::repeat(const RxNode& node, const RxNode& quantifier) const {
  if (quantifier.code == RX_REPEAT_LAZY) return Step::kLazyItem;
  if (node.code == RX_CHARTYPE) return Step::kGreedyShorthand;
  const bool hasRanges = hasOneSet(node) && (isProperty(node) || ClassNote(node).ranges());
  return hasRanges ? Step::kGreedySet : Step::kGreedyItem;
}

Step StepChooser::assertion(int32_t index) const {
  const RxNode* const quantifier = quantifierAt(index);
  if (quantifier) return minOf(*quantifier) == 0 ? Step::kOptionalAssertion : Step::kAssertion;
  return assertionOf(nodes_[index]) == 'b' ? Step::kWordBoundary : Step::kAssertion;
}

// Whether all alternatives of the lookaround are rows of items and assertions that are not quantified.
bool StepChooser::holdsItems(int32_t open) const {
  const auto isSimple = [](const RxNode& node) { return isItem(node) || node.code == RX_ASSERT; };
  const int32_t end = open + bodyLength(nodes_[open]) + 1;
  for (int32_t i = open + 1; i < end; i = nextItem(nodes_, i))
    if (nodes_[i].code != RX_ALT && (!isSimple(nodes_[i]) || quantifierAt(i))) return false;
  return options_.has_value();
}

bool StepChooser::holdsOneRepeat(int32_t open) const {
  if (!options_ || quantifierAt(open) || !isItem(nodes_[open + 1])) return false;
  const RxNode* const quantifier = quantifierAt(open + 1);
  return quantifier && quantifier->code == RX_REPEAT && quantifier[1].code == RX_END;
}

Step StepChooser::open(int32_t index) const {
  const RxNode& node = nodes_[index];
  switch (node.code) {
    case RX_LOOKAHEAD:
    case RX_NLOOKAHEAD:
      return holdsItems(index) ? Step::kLookaheadItems : Step::kLookahead;
    case RX_LOOKBEHIND:
    case RX_NLOOKBEHIND:
      return holdsItems(index) ? Step::kLookbehindItems : Step::kLookbehind;
    case RX_ATOMIC:
      return holdsOneRepeat(index) ? Step::kAtomicRepeat : Step::kAtomic;
    default:
      break;
  }
  const bool isPlain = linkedOpen(nodes_[index + bodyLength(node) + 1]) != nullptr;
  if (!isPlain) return Step::kOpenGroup;
  if (quantifierAt(index)) return Step::kOpenQuantifiedPlain;
  if (node.code == RX_CAPTURE) return Step::kOpenCapture;
  return choiceMark(node) == kNoChoice ? Step::kOpenPassed : Step::kOpenPlain;
}

Step StepChooser::end(int32_t index) const {
  const RxNode& node = nodes_[index];
  if (serialOf(node) < 1) return Step::kNone;  // ends a run, which is no step
  if (!linkedOpen(node)) return Step::kEndGroup;
  if (quantifierAt(index)) return Step::kEndQuantifiedPlain;
  return codeOf(*linkedOpen(node)) == RX_CAPTURE ? Step::kEndCapture : Step::kEndPlain;
}

Step StepChooser::of(int32_t index) const {
  const RxNode& node = nodes_[index];
  switch (node.code) {
    case RX_ASSERT:
      return assertion(index);
    case RX_ALT:
      return serialOf(node) < 1 ? Step::kRunBar : Step::kBar;
    case RX_END:
      return end(index);
    case RX_OPTIONS:
      return Step::kOptions;
    case RX_REPEAT:
    case RX_REPEAT_LAZY:
      return Step::kNone;
    default:
      break;
  }
  if (isGroupOpen(node)) return open(index);
  const RxNode* const quantifier = quantifierAt(index);
  return quantifier ? repeat(node, *quantifier) : item(index);
}

}  // namespace

void chooseSteps(ulkRegExpState& state, ConstantOptions options) {
  const StepChooser chooser(state, options);
  RxNode* const nodes = state.nodes();
  for (int32_t i = 0; i < state.numNodes; i = nextNode(nodes, i)) setStep(nodes[i], chooser.of(i));
}

}  // namespace ulk
