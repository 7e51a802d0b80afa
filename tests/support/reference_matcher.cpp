#include "support/reference_matcher.h"

#include <algorithm>
#include <cstdlib>

#include "regexp/program/program.h"
#include "regexp/program/state.h"
#include "support/reference_characters.h"

namespace ulk_test {
namespace {

using namespace ulk;

uint32_t bits(int32_t options) { return static_cast<uint32_t>(options); }

struct Slot {
  int32_t start = -1;
  int32_t length = -1;
};

struct Quantifier {
  int32_t least = 1;
  int32_t most = 1;
  bool lazy = false;
  bool present = false;
  int32_t next = 0;  // the node behind it
};

// The matcher of one search call. A position is an offset into the text; nothing depends on how far behind
// the end it lies.
class Matcher {
 public:
  Matcher(const ulkRegExpState& state, const uint8_t* bytes, int32_t limit, int64_t maxWork)
      : text(bytes),
        options(state.options),
        budget(limit),
        slots(static_cast<size_t>(state.numCaptures)),
        nodes_(state.nodes()),
        numNodes_(state.numNodes),
        endNode_(state.numNodes),
        opens_(kMaxSerial + 1),
        frames_(kMaxSerial + 1),
        workLeft_(maxWork) {
    for (int32_t i = 0; i < numNodes_; ++i)
      if (isGroupOpen(nodes_[i])) opens_[serialOf(nodes_[i])] = i;
  }

  bool attempt(int32_t at) {
    std::fill(slots.begin(), slots.end(), Slot{});
    start_ = at;
    return anyAlternative(0, numNodes_, kTopLevel, [&](int32_t branch) {
      length_ = 0;
      return run(branch, at);
    });
  }

  Slot wholeMatch() const {
    return {start_, static_cast<int32_t>(std::clamp<int64_t>(length_, -1, INT32_MAX))};
  }

  Text text;
  int32_t end = 0;  // of what is searched
  uint32_t options;
  bool nonEmpty = false;
  int32_t budget;
  int64_t steps = 0;
  std::vector<Slot> slots;  // slot 0 is a spare one for groups that do not capture
  bool tooDeep = false;
  bool tooLong = false;

 private:
  // The bookkeeping of a repeated group.
  struct Frame {
    int32_t minLeft = 0;
    int32_t maxLeft = 0;
    int32_t iterationStart = 0;
    int32_t iterationLength = 0;
    bool inBody = false;
  };

  struct Group {
    int32_t open;
    int32_t end;
    Quantifier quantifier;
    Frame& frame;
    Slot& slot;
  };

  struct Saved {
    Frame frame;
    Slot slot;
    uint32_t options;
  };

  // ---- the program

  static size_t serialOf(const RxNode& node) { return static_cast<size_t>(std::abs(node.op1)); }

  Quantifier quantifierAt(int32_t node) const {
    if (node >= numNodes_ || !isQuantifier(nodes_[node])) return {.next = node};
    return {nodes_[node].op1, nodes_[node].op2, nodes_[node].code == RX_REPEAT_LAZY, true, node + 1};
  }

  int32_t endOf(int32_t open) const { return open + nodes_[open].op2 + 1; }

  Group groupAt(int32_t open) {
    const RxNode& node = nodes_[open];
    const int32_t capture = node.code == RX_CAPTURE ? node.op3 : 0;
    return {open, endOf(open), quantifierAt(endOf(open) + 1), frames_[serialOf(node)],
            slots[static_cast<size_t>(capture)]};
  }

  // The next bar of a group in nodes[from, to), or -1.
  int32_t nextBar(int32_t from, int32_t to, int32_t serial) const {
    for (; from < to; ++from)
      if (nodes_[from].code == RX_ALT && nodes_[from].op1 == serial) return from;
    return -1;
  }

  // True as soon as `run` is true for an alternative, which starts with the options of its bar.
  template <class Run>
  bool anyAlternative(int32_t branch, int32_t to, int32_t serial, const Run& run) {
    for (;;) {
      if (run(branch)) return true;
      const int32_t bar = nextBar(branch, to, serial);
      if (bar < 0) return false;
      options = bits(nodes_[bar].op2);
      branch = bar + 1;
    }
  }

  // ---- the step

  bool mayWork() {
    if (--workLeft_ < 0) tooLong = true;
    if (stack_.nearEnd()) tooDeep = true;
    return !tooLong && !tooDeep;
  }

  bool run(int32_t node, int32_t at) {
    for (;;) {
      if (budget < 0) return false;
      if (node == endNode_) return !(nonEmpty && length_ == 0);
      if (at > end || !mayWork()) return false;
      --budget;
      ++steps;
      const RxNode& step = nodes_[node];
      if (step.code == RX_ASSERT) {
        const Quantifier quantifier = quantifierAt(node + 1);
        if (quantifier.least > 0 && !assertionHolds(step.op1, at)) return false;
        node = quantifier.next;
      } else if (step.code == RX_OPTIONS) {
        options = bits(step.op1);
        ++node;
      } else if (isLookaround(step)) {
        if (!lookaroundHolds(node, at)) return false;
        node = endOf(node) + 1;
      } else {
        return consumingStep(node, at);
      }
    }
  }

  bool consumingStep(int32_t node, int32_t at) {
    const RxNode& step = nodes_[node];
    switch (step.code) {
      case RX_ALT:
        return step.op1 < 1 || endGroup(opens_[serialOf(step)], at);
      case RX_END:
        return endGroup(opens_[serialOf(step)], at);
      case RX_OPTGROUP:
      case RX_COND:
      case RX_CAPTURE:
      case RX_GROUP:
        return openGroup(node, at);
      case RX_ATOMIC: {
        const Quantifier quantifier = quantifierAt(endOf(node) + 1);
        return quantifier.lazy ? lazyAtomic(node, quantifier, at)
                               : atomic(node, quantifier.least, quantifier.most, at);
      }
      case RX_RANGE:
      case RX_REPEAT:
      case RX_REPEAT_LAZY:
        return false;
      default:
        return step.code < kRxCodeEnd && item(node, at);
    }
  }

  bool assertionHolds(int32_t kind, int32_t at) {
    const bool multiline = options & RX_OPT_MULTILINE;
    const int32_t remaining = end - at;
    if (kind == 'A' || kind == 'G') return at == 0;
    if (kind == '^') return at == 0 || (multiline && remaining > 0 && text.byte(at - 1) == 10);
    if (kind == kLeadingDotStar) return at == 0 || text.byte(at - 1) == 10;
    if (kind == 'z') return remaining == 0;
    if (kind == 'Z') return remaining == 0 || (remaining == 1 && text.byte(at) == 10);
    if (kind == '$') return remaining == 0 || ((multiline || remaining == 1) && text.byte(at) == 10);
    if (kind == 'b') return wordChange(at) < 0;
    return kind == 'B' && wordChange(at) >= -1;
  }

  int32_t wordChange(int32_t at) {
    return wordValue(at == 0 ? ' ' : text.byte(at - 1)) ^ wordValue(text.byte(at));
  }

  bool caseless() const { return options & RX_OPT_CASELESS; }

  // ---- items

  // The bytes that the item at `node` takes; -1 when it does not match.
  int32_t takeItem(int32_t node, int32_t at) {
    if (at >= end || !mayWork()) return -1;
    const RxNode& it = nodes_[node];
    switch (it.code) {
      case RX_CHAR:
        return sameByte(text.byte(at), it.op1, caseless()) ? 1 : -1;
      case RX_BYTE:
        return 1;
      case RX_STRING:
        return takeBytes(it.op2, at, [&](int32_t i) { return static_cast<const uint8_t*>(it.text)[i]; });
      case RX_BACKREF: {
        const Slot slot = slots[static_cast<size_t>(it.op1)];
        return takeBytes(slot.length, at, [&](int32_t i) { return text.byte(slot.start + i); });
      }
      case RX_XSEQ:
        return takeSequence(at);
      default: {
        const Character c = text.character(at);
        return accepts(it, c, options) ? c.length : -1;
      }
    }
  }

  template <class ByteAt>
  int32_t takeBytes(int32_t length, int32_t at, const ByteAt& wanted) {
    if (length > end - at) return -1;
    for (int32_t i = 0; i < length; ++i)
      if (!sameByte(text.byte(at + i), wanted(i), caseless())) return -1;
    return length;
  }

  int32_t takeSequence(int32_t at) {
    const Character first = text.character(at);
    if (isMark(first)) return -1;
    int32_t length = first.length;
    while (at + length < end) {
      const Character next = text.character(at + length);
      if (!isMark(next)) break;
      length += next.length;
    }
    return length;
  }

  bool item(int32_t node, int32_t at) {
    const uint32_t code = nodes_[node].code;
    const Quantifier quantifier = quantifierAt(nextItem(nodes_, node));
    if (quantifier.present && !quantifier.lazy) return greedyRepeat(node, quantifier, at);
    if (quantifier.present && code >= RX_CODEPOINT && code <= RX_SCRIPT)
      return lazyCharacters(node, quantifier, at);
    if (quantifier.present) return lazyRepeat(node, quantifier, at);
    const int32_t bytes = takeItem(node, at);
    if (bytes < 0) return false;
    length_ += bytes;
    if (run(quantifier.next, at + bytes)) return true;
    length_ -= bytes;
    return false;
  }

  // ---- repeats

  bool greedyRepeat(int32_t node, const Quantifier& quantifier, int32_t at) {
    const size_t firstStart = starts_.size();
    const int32_t most = std::max(quantifier.least, std::min(quantifier.most, end - at));
    int32_t count = 0;
    for (int32_t bytes = 0; count < most && (bytes = takeItem(node, at)) >= 0; ++count) {
      starts_.push_back(at);
      at += bytes;
      length_ += bytes;
    }
    for (;; --count) {
      const bool found = count >= quantifier.least && run(quantifier.next, at);
      if (found) starts_.resize(firstStart);
      if (found || count == 0) return found;
      length_ -= at - starts_.back();
      at = starts_.back();
      starts_.pop_back();
    }
  }

  // What the items take that a repeat needs at least, -1 when they do not match.
  int32_t takeLeast(int32_t node, const Quantifier& quantifier, int32_t at) {
    if (end - at < quantifier.least) return -1;
    int32_t taken = 0;
    for (int32_t bytes = 0, count = 0; count < quantifier.least; ++count, taken += bytes)
      if ((bytes = takeItem(node, at + taken)) < 0) return -1;
    return taken;
  }

  bool lazyRepeat(int32_t node, const Quantifier& quantifier, int32_t at) {
    const int32_t most = std::min(quantifier.most, end - at);
    int32_t taken = takeLeast(node, quantifier, at);
    if (taken < 0) return false;
    length_ += taken;
    for (int32_t count = quantifier.least;; ++count) {
      if (literalFollows(node, quantifier.next, at + taken) && run(quantifier.next, at + taken)) return true;
      const int32_t bytes = count < most ? takeItem(node, at + taken) : -1;
      if (bytes < 0) break;
      taken += bytes;
      length_ += bytes;
    }
    if (nodes_[node].code != RX_CHAR) length_ -= taken;  // those of a repeated byte stay counted
    return false;
  }

  // Before a literal byte a lazy repeat of bytes looks whether that is there, at no cost.
  bool literalFollows(int32_t node, int32_t next, int32_t at) {
    const bool ofBytes = nodes_[node].code == RX_CHAR || nodes_[node].code == RX_BYTE;
    if (!ofBytes || caseless() || next >= numNodes_ || nodes_[next].code != RX_CHAR) return true;
    return at < end && text.byte(at) == nodes_[next].op1;
  }

  // Lazy repeats of code points and properties have a shape of their own.
  bool lazyCharacters(int32_t node, const Quantifier& quantifier, int32_t at) {
    const int32_t most = std::min(quantifier.most, end - at);
    int32_t taken = takeLeast(node, quantifier, at);
    if (taken < 0) return false;
    length_ += taken;
    for (int32_t count = quantifier.least; count <= most && at + taken <= end && mayWork(); ++count) {
      const Character c = text.character(at + taken);
      const bool accepted = accepts(nodes_[node], c, options);
      if (accepted && run(quantifier.next, at + taken)) return true;
      if (!accepted && nodes_[node].code == RX_CODEPOINT) return true;
      taken += c.length;
      length_ += c.length;
    }
    length_ -= taken;
    return false;
  }

  // ---- groups

  Saved save(const Group& group) const { return {group.frame, group.slot, options}; }

  void restore(const Group& group, const Saved& saved) {
    group.frame = saved.frame;
    group.slot = saved.slot;
    options = saved.options;
  }

  bool openGroup(int32_t open, int32_t at) {
    const Group group = groupAt(open);
    const Quantifier& quantifier = group.quantifier;
    const Saved before = save(group);
    group.frame = {quantifier.least, quantifier.most, at, 0, false};
    if (quantifier.most == 0 ? leave(group, at) : iterate(group, at, {at, 0})) return true;
    restore(group, before);
    return false;
  }

  bool endGroup(int32_t open, int32_t at) {
    const Group group = groupAt(open);
    const bool lazy = group.quantifier.lazy;
    Saved before = save(group);
    Frame& frame = group.frame;
    const int32_t consumed = at - frame.iterationStart;
    frame.iterationStart = at;
    frame.iterationLength += consumed;
    if (frame.inBody) {
      frame.inBody = false;
      --frame.maxLeft;
      --frame.minLeft;
      frame.iterationLength = consumed;
    }
    group.slot = {at - frame.iterationLength, frame.iterationLength};
    if ((frame.maxLeft < 1 && !lazy) || frame.iterationLength == 0) {
      if (leave(group, at)) return true;
    } else {
      if (iterate(group, at, group.slot)) return true;
      // What is left of this body's choices may be followed by one iteration only.
      if (!lazy && frame.minLeft < 1 && endsIterations(group)) before.frame.maxLeft = 2;
    }
    restore(group, before);
    return false;
  }

  bool endsIterations(const Group& group) const { return nodes_[group.end].op3 == kRepeatMarkRepeated; }

  // An iteration or the rest of the program, in the order that the quantifier wants. While the body runs, the
  // slot holds `slotInBody`.
  bool iterate(const Group& group, int32_t at, Slot slotInBody) {
    const bool lazy = group.quantifier.lazy;
    const Saved before = save(group);
    if (lazy && group.frame.minLeft < 1 && leave(group, at)) return true;
    if (group.frame.maxLeft < 1) return false;
    group.slot = slotInBody;
    options = before.options;
    if (nodes_[group.open].code == RX_COND) {
      const int32_t branch = chooseBranch(group, at);
      if (branch < 0) return run(group.quantifier.next, at);
      if (runBranch(group, branch, at)) return true;
    } else if (runAlternatives(group, at)) {
      return true;
    }
    group.slot = before.slot;
    if (lazy || group.frame.minLeft >= 1) return false;
    if (endsIterations(group)) group.frame.maxLeft = 1;
    return leave(group, at);
  }

  // The rest of the program, with the options outside the group.
  bool leave(const Group& group, int32_t at) {
    options = bits(nodes_[group.end].op2);
    return run(group.quantifier.next, at);
  }

  bool runAlternatives(const Group& group, int32_t at) {
    const RxNode& open = nodes_[group.open];
    if (open.code == RX_OPTGROUP) options = bits(open.op3);
    return anyAlternative(group.open + 1, group.end, open.op1,
                          [&](int32_t branch) { return runBranch(group, branch, at); });
  }

  bool runBranch(const Group& group, int32_t branch, int32_t at) {
    group.frame.iterationStart = at;
    group.frame.inBody = true;
    if (run(branch, at)) return true;
    group.frame.inBody = false;
    length_ = at - start_;
    return false;
  }

  // The branch of a conditional that is to run, -1 for none.
  int32_t chooseBranch(const Group& group, int32_t at) {
    const int32_t condition = group.open + 1;
    const int32_t behind = nextItem(nodes_, condition);
    if (conditionHolds(condition, behind, at)) return behind;
    const int32_t bar = nextBar(behind, group.end, nodes_[group.open].op1);
    if (bar < 0) return -1;
    options = bits(nodes_[bar].op2);
    return bar + 1;
  }

  bool conditionHolds(int32_t condition, int32_t behind, int32_t at) {
    const RxNode& node = nodes_[condition];
    if (node.code != RX_BACKREF) return runTo(behind, condition, at);
    const auto number = static_cast<size_t>(node.op1);
    return number < slots.size() && slots[number].length != -1;
  }

  // ---- runs of a part, which are never entered again

  bool runTo(int32_t endOfPart, int32_t node, int32_t at) {
    const int32_t savedEnd = endNode_;
    endNode_ = endOfPart;
    const bool found = run(node, at);
    endNode_ = savedEnd;
    return found;
  }

  bool runApart(int32_t open, int32_t at) {
    const int64_t savedLength = length_;
    const uint32_t savedOptions = options;
    const bool found = anyAlternative(open + 1, endOf(open), nodes_[open].op1, [&](int32_t branch) {
      const bool matched = runTo(endOf(open), branch, at);
      if (!matched) length_ = savedLength;
      return matched;
    });
    options = savedOptions;
    return found;
  }

  bool lookaroundHolds(int32_t open, int32_t at) {
    const RxNode& node = nodes_[open];
    const bool negative = node.code == RX_NLOOKAHEAD || node.code == RX_NLOOKBEHIND;
    if (node.code == RX_LOOKBEHIND || node.code == RX_NLOOKBEHIND) {
      if (at < node.op3) return negative;
      at = text.back(at, node.op3);
    }
    const int64_t savedLength = length_;
    const bool found = runApart(open, at);
    length_ = savedLength;
    return found != negative;
  }

  // One iteration: the bytes that it consumed, -1 when it does not match.
  int64_t takeAtomic(int32_t open, int32_t at) {
    const int64_t before = length_;
    if (!runApart(open, at)) return -1;
    length_ = std::max(length_, before);
    return length_ - before;
  }

  int32_t advanced(int32_t at, int64_t bytes) const {
    return static_cast<int32_t>(std::min<int64_t>(at + bytes, int64_t{end} + 1));
  }

  bool atomic(int32_t open, int32_t least, int32_t most, int32_t at) {
    const int64_t bytes = most > 0 ? takeAtomic(open, at) : 0;
    if (bytes < 0 && least > 0) return false;
    if (bytes > 0) {
      if (atomic(open, least - 1, most - 1, advanced(at, bytes))) return true;
      length_ -= bytes;
      if (least > 0) return false;
    }
    return run(quantifierAt(endOf(open) + 1).next, at);
  }

  bool lazyAtomic(int32_t open, const Quantifier& quantifier, int32_t at) {
    int64_t taken = 0;
    for (int32_t count = 0;; ++count) {
      if (count >= quantifier.least && run(quantifier.next, at)) return true;
      const int64_t bytes = count < quantifier.most ? takeAtomic(open, at) : -1;
      if (bytes == 0) return true;
      if (bytes < 0) break;
      taken += bytes;
      at = advanced(at, bytes);
    }
    length_ -= taken;
    return false;
  }

  const RxNode* nodes_;
  int32_t numNodes_;
  int32_t endNode_;
  int32_t start_ = 0;           // of the attempt
  int64_t length_ = 0;          // of the match so far, as far as it is counted
  std::vector<int32_t> opens_;  // by serial, as the frames
  std::vector<Frame> frames_;
  std::vector<int32_t> starts_;  // of the items of all greedy repeats that are under way
  int64_t workLeft_;
  StackGuard stack_;
};

// ---- the search

enum class Starts { kAny, kLines, kFirst };

class Search {
 public:
  Search(const ulkRegExpState& state, const uint8_t* text, int32_t limit, int32_t format, int64_t maxWork)
      : state_(state), nodes_(state.nodes()), format_(format), matcher_(state, text, limit, maxWork) {}

  ReferenceFind find(int32_t length, int32_t numRecords, bool replaceMode) {
    end_ = cutAtTrailingLiteral(length);
    starts_ = possibleStarts();
    const bool global = state_.options & RX_OPT_GLOBAL;
    result_.numFind = global ? numRecords : std::min(numRecords, state_.numCaptures);
    const bool complete = global ? findAll(replaceMode) : findFirst();
    result_.status = complete ? ulkOk : ulkErrMatchLimit;
    if (complete) result_.numFind = numWritten();
    result_.steps = matcher_.steps;
    result_.bytesRead = matcher_.text.bytesRead();
    result_.tooDeep = matcher_.tooDeep;
    result_.tooLong = matcher_.tooLong;
    return result_;
  }

 private:
  int32_t numWritten() const { return static_cast<int32_t>(result_.records.size()); }
  bool ranOut() const { return matcher_.budget < 0; }

  // The end of the last place where the literal stands that ends the pattern; 0 without one.
  int32_t cutAtTrailingLiteral(int32_t length) {
    if (state_.trailingLiteral < 0) return length;
    const RxNode& literal = nodes_[state_.trailingLiteral];
    const bool caseless = bits(literal.op3) & RX_OPT_CASELESS;
    const auto single = static_cast<uint8_t>(literal.op1);
    const bool isString = literal.code == RX_STRING;
    const uint8_t* const bytes = isString ? static_cast<const uint8_t*>(literal.text) : &single;
    const int32_t size = isString ? literal.op2 : 1;
    for (int32_t end = length; end >= size; --end) {
      int32_t same = 0;
      while (same < size && sameByte(matcher_.text.byte(end - size + same), bytes[same], caseless)) ++same;
      if (same == size) return end;
    }
    return 0;
  }

  Starts possibleStarts() const {
    const int32_t numNodes = state_.numNodes;
    if (numNodes == 0 || nodes_[0].code != RX_ASSERT) return Starts::kAny;
    for (int32_t i = 0; i < numNodes; ++i)
      if (nodes_[i].code == RX_ALT && nodes_[i].op1 == kTopLevel) return Starts::kAny;
    const int32_t kind = nodes_[0].op1;
    if (kind == '^' && (state_.options & RX_OPT_MULTILINE)) return Starts::kLines;
    const bool optional = numNodes > 1 && isQuantifier(nodes_[1]) && nodes_[1].op1 == 0;
    return (kind == 'A' || kind == 'G' || kind == '^') && !optional ? Starts::kFirst : Starts::kAny;
  }

  // To the next start; false when there is none.
  bool advance(int32_t* at) {
    if (starts_ == Starts::kFirst) return false;
    do {
      if (*at >= matcher_.end) return false;
      *at += format_ == kFormatUtf8 ? matcher_.text.character(*at).length : 1;
      if (*at > matcher_.end) return false;
    } while (starts_ == Starts::kLines && matcher_.text.byte(*at - 1) != 10);
    return true;
  }

  bool findFrom(int32_t at, int32_t end) {
    matcher_.end = end;
    do {
      if (matcher_.attempt(at)) return true;
    } while (advance(&at));
    return false;
  }

  void record(int32_t first, int32_t end) {
    for (int32_t i = first; i < end; ++i) {
      const Slot slot = i == 0 ? matcher_.wholeMatch() : matcher_.slots[static_cast<size_t>(i)];
      result_.records.push_back({slot.start, slot.length});
    }
  }

  // Each way of searching answers whether it came to its end within the limit.
  bool findFirst() {
    if (!findFrom(0, end_)) return !ranOut();
    record(0, result_.numFind);
    return true;
  }

  bool findAll(bool replaceMode) {
    const int32_t all = state_.numCaptures;
    const int32_t first = !replaceMode && all > 1 ? 1 : 0;
    const int32_t lastRoom = result_.numFind - all + first;
    for (int32_t at = 0; numWritten() <= lastRoom && at <= end_;) {
      if (!findFrom(at, end_)) break;
      record(first, all);
      if (ranOut()) return false;
      const Slot match = matcher_.wholeMatch();
      const int64_t next = int64_t{match.start} + std::max(match.length, 1);
      at = static_cast<int32_t>(std::min<int64_t>(next, int64_t{end_} + 1));
      if (match.length != 0 || numWritten() >= lastRoom || match.start >= end_) continue;
      matcher_.nonEmpty = true;
      if (findFrom(match.start, match.start + 1)) record(first, all);
      matcher_.nonEmpty = false;
      if (ranOut()) return false;
    }
    return true;
  }

  const ulkRegExpState& state_;
  const RxNode* nodes_;
  int32_t format_;
  int32_t end_ = 0;
  Starts starts_ = Starts::kAny;
  Matcher matcher_;
  ReferenceFind result_;
};

}  // namespace

ReferenceFind referenceFind(const ulkRegExpState& state, const uint8_t* text, int32_t length, int32_t limit,
                            int32_t numRecords, bool replaceMode, int32_t format, int64_t maxWork) {
  return Search(state, text, limit, format, maxWork).find(length, numRecords, replaceMode);
}

}  // namespace ulk_test
