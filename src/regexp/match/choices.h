// The stack of choices: places that the matcher comes back to when a later step fails, and what it then needs
// to know. Memory bounds how many choices a search can keep, so a record holds no more than its kind needs,
// 8 to 40 bytes. Records have different sizes; each ends with a tag, by which it is found from the top.
//
// Positions are offsets from the text start. An item that the text's end cuts may end up to five bytes beyond
// it, so an offset takes 32 bits, but 31 where a step has begun: none begins beyond the end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

#include "regexp/program/program.h"
#include "regexp/text/lengths.h"

namespace ulk {

enum class ChoiceKind : uint32_t {
  kBottom,           // there is none left
  kGreedyBytes,      // repeats.h: give back one byte
  kGreedyChars,      //   give back one character
  kGreedySequences,  //   give back one extended sequence
  kGreedyBackref,    //   give back one repetition of the reference
  kLazy,             //   take one more item
  kLazyCodePoint,    //   decide about the character at the position
  kLazyProperty,     //   take the character at the position, whatever it is
  kPlain,            // groups.h: try the plain group's next alternative
  kPlainCapture,     //   the same for a capturing one
  kPlainEnter,       //   enter the body of a lazy plain group after all
  kAlternative,      //   try the group's next alternative
  kLazyLeave,        //   enter the body after all
  kLeft,             //   nothing left to try: put the group back as it was
  kGaveUp,           //   the same where all alternatives of a further iteration have failed
  kOptions,          //   put the options back
  kLookaround,       // subruns.h: try the lookaround's next alternative
  kCondition,        //   the condition does not hold
  kAtomic,           //   try the atomic group's next alternative
  kAtomicLazy,       //   run one iteration after all
  kAtomicIteration,  //   go on without this iteration
  kSurplus,          //   put the surplus back
  kCount
};

// The last word of every record: the kind, and a node. Which one depends on the kind: the step's node, or the
// open node or bar before the alternative that is running.
class ChoiceTag {
 public:
  ChoiceTag() = default;
  ChoiceTag(ChoiceKind kind, int32_t node)
      : word_(static_cast<uint32_t>(node) << kKindBits | static_cast<uint32_t>(kind)) {}

  ChoiceKind kind() const { return static_cast<ChoiceKind>(word_ & ((1u << kKindBits) - 1)); }
  int32_t node() const { return static_cast<int32_t>(word_ >> kKindBits); }
  void setKind(ChoiceKind kind) { *this = {kind, node()}; }
  void setNode(int32_t node) { *this = {kind(), node}; }

 private:
  static constexpr int kKindBits = 5;
  static_assert(INT32_MAX / sizeof(RxNode) < (1u << (32 - kKindBits)));  // no state has room for more nodes

  uint32_t word_;
};

// A number that is not negative, and a flag.
class FlaggedNumber {
 public:
  FlaggedNumber() = default;
  FlaggedNumber(int32_t number, bool flag)
      : word_(static_cast<uint32_t>(number) << 1 | static_cast<uint32_t>(flag)) {}

  int32_t number() const { return static_cast<int32_t>(word_ >> 1); }
  bool flag() const { return word_ & 1; }
  void setNumber(int32_t number) { *this = {number, flag()}; }
  void setFlag(bool flag) { *this = {number(), flag}; }
  void operator+=(int32_t number) { setNumber(this->number() + number); }

 private:
  uint32_t word_;
};

// A greedy repeat: `at` is the position at its present count, the tag's node the quantifier.
struct GreedyChoice {
  FlaggedNumber spare;  // items above the minimum; whether all were taken with the quantifier's options
  uint32_t at;
  ChoiceTag tag;
};
// Below the record of one that does not give back bytes lies a word: where the first item begins, for back
// references the length of one.

struct LazyChoice {
  int32_t most;         // items that may be taken
  FlaggedNumber count;  // that have been; whether all were taken with the quantifier's options
  uint32_t at;
  ChoiceTag tag;
};

// A plain group that does not capture, or a place to go on from at the tag's node.
struct PlaceChoice {
  uint32_t at;
  ChoiceTag tag;
};

struct PlainCaptureChoice {
  int32_t captureAt;      // what the group had captured before
  int32_t captureLength;  // -1: nothing
  int32_t remaining;      // and where its body began
  uint32_t at;
  ChoiceTag tag;
};

// Any other group: what the step found and a failure puts back.
class GroupChoice {
 public:
  GroupChoice() = default;
  // `further`: left by a group-end step, which counts an iteration.
  GroupChoice(ChoiceTag newTag, uint32_t at, bool further, int32_t maxLeft, int32_t remaining,
              uint32_t options)
      : maxLeft_(static_cast<uint32_t>(maxLeft) << 2 | (options & 3)),
        remaining_(remaining, options >> 2),
        at_(static_cast<int32_t>(at), further),
        tag(newTag) {}

  uint32_t at() const { return static_cast<uint32_t>(at_.number()); }
  bool further() const { return at_.flag(); }
  int32_t maxLeft() const { return static_cast<int32_t>(maxLeft_ >> 2); }
  int32_t remaining() const { return remaining_.number(); }  // at the start of the iteration then running
  uint32_t options() const { return (remaining_.flag() ? 4 : 0) | (maxLeft_ & 3); }

 private:
  static_assert(kUnbounded < 1 << 30 && kMatcherOptions == 7);

  uint32_t maxLeft_;
  FlaggedNumber remaining_;
  FlaggedNumber at_;

 public:
  ChoiceTag tag;
};
static_assert(sizeof(GroupChoice) == 16);

// A step that opens a group afresh also finds what an earlier pass through the group has left.
struct OpenedChoice {
  int32_t minLeft;
  GroupChoice group;
};
struct OpenedCaptureChoice {
  int32_t captureAt;
  int32_t captureLength;
  OpenedChoice opened;
};
// A further iteration puts back the capture before it, which ended where the iteration began.
struct FurtherCaptureChoice {
  int32_t captureAt;
  GroupChoice group;
};

struct OptionsChoice {
  uint32_t options;
  ChoiceTag tag;
};

struct SurplusChoice {
  Surplus surplus;
  ChoiceTag tag;
};

// Iterations of an atomic group that are still required and allowed.
struct AtomicChoice {
  int32_t minLeft;
  int32_t maxLeft;
  uint32_t at;
  ChoiceTag tag;
};

// A run of its own. The tag's node is the group's open node.
struct RunChoice {
  uint32_t outerRun;  // where the choice of the run around this one lies
  int32_t endNode;    // of the run around this one
  int32_t bar;        // the bar or open node before the alternative that is running
  uint32_t bodyAt;    // where each alternative starts
  Surplus surplus;    // when the run began
  uint32_t options;
  int32_t minLeft;  // iterations of an atomic group
  int32_t maxLeft;
  uint32_t at;  // where the step began
  ChoiceTag tag;
};
inline constexpr size_t kLargestChoice = sizeof(RunChoice);
static_assert(kLargestChoice == 40);

class Choices {
 public:
  // At the bottom lies a tag alone.
  void use(std::byte* memory, size_t size) {
    memory_ = memory;
    full_ = memory + size - kMargin;
    top_ = memory + sizeof(ChoiceTag);
    tag() = {ChoiceKind::kBottom, 0};
  }

  // Takes back all of them.
  void clear() { top_ = memory_ + sizeof(ChoiceTag); }

  // Goes on in a larger memory.
  void moveTo(std::byte* memory, size_t size) {
    const std::byte* const before = memory_;
    const uint32_t bytes = used();
    use(memory, size);
    __builtin_memcpy(memory, before, bytes);
    top_ = memory + bytes;
  }

  // Whether there is room for all that another step or retry may leave.
  bool hasRoom() const { return top_ <= full_; }
  // So many bytes may be left before that is to be asked again; fewer than none where there is no room.
  ptrdiff_t room() const { return full_ - top_; }
  uint32_t used() const { return static_cast<uint32_t>(top_ - memory_); }

  ChoiceTag& tag() const { return *std::launder(reinterpret_cast<ChoiceTag*>(top_) - 1); }

  template <class Record>
  Record& push() {
    auto* const record = new (top_) Record;
    top_ += sizeof(Record);
    return *record;
  }
  // The newest choice, which is of this type.
  template <class Record>
  Record& top() const {
    return *std::launder(reinterpret_cast<Record*>(top_) - 1);
  }
  template <class Record>
  void pop() {
    top_ -= sizeof(Record);
  }

  // The record that was pushed where so many bytes were used, and that place again.
  template <class Record>
  Record& at(uint32_t used) const {
    return *std::launder(reinterpret_cast<Record*>(memory_ + used));
  }
  void cutBack(uint32_t used) { top_ = memory_ + used; }

 private:
  static constexpr size_t kMargin = 4 * kLargestChoice;  // a step or a retry leaves fewer records

  std::byte* memory_;
  std::byte* top_;
  std::byte* full_;
};

}  // namespace ulk
