// A quantifier's note about what may follow its repeat.
#pragma once

#include <cstdint>

#include "regexp/text/options.h"

namespace ulk {

// A quantifier's note about its follow set, packed into one operand.
class FollowNote {
 public:
  struct Facts {
    uint32_t options;  // that the set was made for
    int32_t steps;     // that going on at another byte costs
    bool entersGroup;  // such a try fails in a group, which leaves no surplus behind
    bool disjoint;     // no byte of the set begins one of the repeat's items
    bool atEnd;        // the text's end lets the program go on as well
    bool itself;       // the repeat is all of a group, and a reference to that group follows
  };

  static int32_t pack(const Facts& facts) {
    return facts.steps << 8 | static_cast<int32_t>(facts.options) << 3 | (facts.atEnd ? kAtEnd : 0) |
           (facts.entersGroup ? kEntersGroup : 0) | (facts.disjoint ? kDisjoint : 0) |
           (facts.itself ? kItself : 0);
  }

  explicit FollowNote(int32_t packed) : packed_(packed) {}
  uint32_t options() const { return static_cast<uint32_t>(packed_) >> 3 & kMatcherOptions; }
  int32_t steps() const { return packed_ >> 8; }
  bool entersGroup() const { return packed_ & kEntersGroup; }
  bool disjoint() const { return packed_ & kDisjoint; }
  bool atEnd() const { return packed_ & kAtEnd; }
  bool itself() const { return packed_ & kItself; }

 private:
  static constexpr int32_t kDisjoint = 1;
  static constexpr int32_t kEntersGroup = 2;
  static constexpr int32_t kAtEnd = 4;
  static constexpr int32_t kItself = 64;
  static_assert(kMatcherOptions << 3 < kItself);

  int32_t packed_;
};

}  // namespace ulk
