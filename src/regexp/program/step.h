// How the nodes are run. The analysis chooses for every node the step that knows most about it; the matcher
// has a function for each.
#pragma once

#include <cstdint>

namespace ulk {

enum class Step : uint8_t {
  kNone,  // no step of its own: quantifiers and class members
  // Items that are not quantified
  kByte,
  kString,  // that options do not change
  kLetter,  // a byte that matches in both cases
  kShorthand,
  kSet,  // a class or a property, by its ASCII characters
  kBackref,
  kItem,  // any other, and those that options change
  // Quantified items
  kGreedyShorthand,
  kGreedySet,
  kGreedyItem,
  kLazyItem,
  // Assertions
  kWordBoundary,
  kAssertion,
  kOptionalAssertion,  // passed over untested
  // Plain groups that are not quantified
  kOpenPassed,  // leaves nothing to come back for
  kOpenPlain,
  kOpenCapture,
  kEndPlain,
  kEndCapture,
  // Groups
  kOpenQuantifiedPlain,
  kEndQuantifiedPlain,
  kOpenGroup,
  kEndGroup,
  kBar,
  kRunBar,  // at top level, in lookarounds and atomic groups
  // Lookarounds and atomic groups
  kLookahead,
  kLookaheadItems,  // whose alternatives are rows of items and assertions that are not quantified
  kLookbehind,
  kLookbehindItems,
  kAtomic,
  kAtomicRepeat,  // not quantified, of one greedy repeat of an item

  kOptions,
  kCount
};

}  // namespace ulk
