// Chooses how each node is run (program/step.h).
#include <algorithm>

#include "regexp/analysis/analysis.h"
#include "regexp/program/class_sets.h"
#include "regexp/text/bytes.h"

namespace ulk {

namespace {

class StepChooser {
 public:
  explicit StepChooser(const ulkRegExpState& state)
      : nodes_(state.nodes()),
        numNodes_(state.numNodes),
        options_(state.options),
        changesOptions_(std::any_of(nodes_, nodes_ + numNodes_, [](const RxNode& node) {
          return node.code == RX_OPTIONS || node.code == RX_OPTGROUP;
        })) {}

  Step of(int32_t index) const;

 private:
  const RxNode* quantifierOf(int32_t index) const {
    const int32_t next = nextItem(nodes_, index);
    return next < numNodes_ && isQuantifier(nodes_[next]) ? &nodes_[next] : nullptr;
  }
  bool hasOneSet(const RxNode& node) const {
    return !changesOptions_ && node.text && ClassNote(node).isMadeFor(options_);
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
  const uint32_t options_;
  const bool changesOptions_;
};

Step StepChooser::item(int32_t index) const {
  const RxNode& node = nodes_[index];
  switch (node.code) {
    case RX_CHAR:
      if (changesOptions_) return Step::kItem;
      return (options_ & RX_OPT_CASELESS) && isAsciiLetter(node.op1) ? Step::kLetter : Step::kByte;
    case RX_STRING:
      return changesOptions_ || (options_ & RX_OPT_CASELESS) ? Step::kItem : Step::kString;
    case RX_CHARTYPE:
      return Step::kShorthand;
    case RX_CLASS:
      return hasOneSet(node) ? Step::kClass : Step::kItem;
    default:
      return Step::kItem;
  }
}

Step StepChooser::repeat(const RxNode& node, const RxNode& quantifier) const {
  if (quantifier.code == RX_REPEAT_LAZY) return Step::kLazyItem;
  if (node.code == RX_CHARTYPE) return Step::kGreedyShorthand;
  return node.code == RX_CLASS && hasOneSet(node) ? Step::kGreedyClass : Step::kGreedyItem;
}

Step StepChooser::assertion(int32_t index) const {
  const RxNode* const quantifier = quantifierOf(index);
  if (quantifier) return quantifier->op1 == 0 ? Step::kOptionalAssertion : Step::kAssertion;
  return nodes_[index].op1 == 'b' ? Step::kWordBoundary : Step::kAssertion;
}

// Whether all alternatives of the lookaround are rows of items that are not quantified.
bool StepChooser::holdsItems(int32_t open) const {
  const int32_t end = open + nodes_[open].op2 + 1;
  for (int32_t i = open + 1; i < end; i = nextItem(nodes_, i))
    if (nodes_[i].code != RX_ALT && (!isItem(nodes_[i]) || quantifierOf(i))) return false;
  return !changesOptions_;
}

bool StepChooser::holdsOneRepeat(int32_t open) const {
  if (changesOptions_ || quantifierOf(open) || !isItem(nodes_[open + 1])) return false;
  const RxNode* const quantifier = quantifierOf(open + 1);
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
  const bool isPlain = nodes_[index + node.op2 + 1].text;
  if (!isPlain) return Step::kOpenGroup;
  if (quantifierOf(index)) return Step::kOpenQuantifiedPlain;
  if (node.code == RX_CAPTURE) return Step::kOpenCapture;
  return node.op3 == kNoChoice ? Step::kOpenPassed : Step::kOpenPlain;
}

Step StepChooser::end(int32_t index) const {
  const RxNode& node = nodes_[index];
  if (node.op1 < 1) return Step::kNone;  // ends a run, which is no step
  if (!node.text) return Step::kEndGroup;
  if (quantifierOf(index)) return Step::kEndQuantifiedPlain;
  return codeOf(*static_cast<const RxNode*>(node.text)) == RX_CAPTURE ? Step::kEndCapture : Step::kEndPlain;
}

Step StepChooser::of(int32_t index) const {
  const RxNode& node = nodes_[index];
  switch (node.code) {
    case RX_ASSERT:
      return assertion(index);
    case RX_ALT:
      return node.op1 < 1 ? Step::kRunBar : Step::kBar;
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
  const RxNode* const quantifier = quantifierOf(index);
  return quantifier ? repeat(node, *quantifier) : item(index);
}

}  // namespace

void chooseSteps(ulkRegExpState& state) {
  const StepChooser chooser(state);
  RxNode* const nodes = state.nodes();
  for (int32_t i = 0; i < state.numNodes; ++i) {
    const int32_t members = nodes[i].code == RX_CLASS ? nodes[i].op2 : 0;
    setStep(nodes[i], chooser.of(i));
    i += members;
  }
}

}  // namespace ulk
