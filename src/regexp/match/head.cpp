// The head of a program: its first steps, as long as none leaves a choice that something could come of. Of
// `(\d+)-(\d+)x?\d` that is all before `x?`: no digit can begin what follows the digits, so there is no sense
// in giving one back. A head is run in one loop and leaves nothing on the stack. What it would cost to take
// up its choices in vain is paid when the attempt has failed.
#include <algorithm>

#include "regexp/analysis/start_filter.h"
#include "regexp/match/assertions.h"
#include "regexp/match/follow.h"
#include "regexp/match/group.h"
#include "regexp/match/items.h"
#include "regexp/match/take.h"

namespace ulk {

namespace {

class HeadRun {
 public:
  explicit HeadRun(MatchContext& m) : m_(m), at_(m.matchStart), node_(m.nodes()) {}

  // Whether all steps before that node succeed.
  ULK_INLINE bool reaches(const RxNode* end) {
    while (node_ != end) {
      ++steps_;
      if (!succeeds()) return false;
    }
    return true;
  }

  // Whether it has failed, but something could come of giving back.
  bool isCut() const { return isCut_; }

  const uint8_t* at() const { return at_; }
  int32_t steps() const { return steps_; }  // that have been taken
  int64_t tries() const { return tries_; }  // steps of the tries that are made if the rest fails

 private:
  ULK_INLINE bool succeeds();
  ULK_INLINE bool goOn(const uint8_t* at, const RxNode* node) {
    at_ = at;
    node_ = node;
    return true;
  }
  // As goOn, behind characters that the text's end may cut: no step begins there, also none that cannot fail.
  ULK_INLINE bool goOnInText(const uint8_t* at, const RxNode* node) {
    isCut_ = at > m_.textEnd && node != m_.programEnd;
    return !isCut_ && goOn(at, node);
  }
  ULK_INLINE bool setOptions();
  ULK_INLINE bool takeByte();
  ULK_INLINE bool takeString();
  ULK_INLINE bool takeShorthand();
  ULK_INLINE bool takeFromSet();
  ULK_INLINE bool takeItem();
  ULK_INLINE bool repeat(const RxNode* quantifier, Taken taken);
  ULK_INLINE bool repeatItem(const RxNode* quantifier);
  template <class Behind>
  ULK_INLINE bool repeatAscii(const RxNode* quantifier, Behind behind);

  MatchContext& m_;
  const uint8_t* at_;
  const RxNode* node_;
  int32_t steps_ = 0;
  int64_t tries_ = 0;
  bool isCut_ = false;
};

// They stay, also if the attempt fails.
bool HeadRun::setOptions() {
  m_.setOptions(newOptions(*node_));
  return goOn(at_, node_ + 1);
}

bool HeadRun::takeByte() { return at_ < m_.textEnd && *at_ == byteOf(*node_) && goOn(at_ + 1, node_ + 1); }

bool HeadRun::takeString() {
  return isStringAt(m_, *node_, at_) && goOn(at_ + stringLength(*node_), node_ + 1);
}

bool HeadRun::takeShorthand() {
  if (at_ == m_.textEnd || *at_ >= 0x80) return takeItem();
  return (m_.byteSets[*at_] & byteSetOf(*node_, m_.options)) && goOn(at_ + 1, node_ + 1);
}

bool HeadRun::takeFromSet() {
  if (at_ == m_.textEnd || *at_ >= 0x80) return takeItem();
  return recordOf(*node_)->set.contains(*at_) && goOn(at_ + 1, afterItem(node_));
}

bool HeadRun::takeItem() {
  const int32_t length = itemLength(m_, *node_, at_);
  return length != kNoMatch && goOnInText(at_ + length, afterItem(node_));
}

bool HeadRun::repeat(const RxNode* quantifier, Taken taken) {
  const int32_t spare = taken.count - minOf(*quantifier);
  if (spare < 0) return false;
  tries_ += noFollow(*quantifier).cost(spare);
  return goOnInText(taken.end, quantifier + 1);
}

bool HeadRun::repeatItem(const RxNode* quantifier) {
  return repeat(quantifier, takeItems(m_, *node_, at_, mostItems(m_, *quantifier, at_)));
}

// Repeats an item that is mostly ASCII characters: `behind` tells where those end.
template <class Behind>
bool HeadRun::repeatAscii(const RxNode* quantifier, Behind behind) {
  const uint8_t* const end = at_ + std::min(maxOf(*quantifier), m_.remaining(at_));
  const uint8_t* const next = behind(end);
  if (next == end || *next < 0x80) return repeat(quantifier, {next, static_cast<int32_t>(next - at_)});
  return repeatItem(quantifier);
}

// The step at the node.
bool HeadRun::succeeds() {
  switch (stepOf(*node_)) {
    case Step::kOpenCapture:
      openCapture(at_, node_, m_);
      return goOn(at_, node_ + 1);
    case Step::kEndCapture:
      endCapture(at_, linkedOpen(*node_), m_);
      return goOn(at_, node_ + 1);
    case Step::kOpenPassed:
    case Step::kOpenPlain:
    case Step::kEndPlain:
      return goOn(at_, node_ + 1);
    case Step::kWordBoundary:
      return isWordBoundary(m_, at_) && goOn(at_, node_ + 1);
    case Step::kAssertion:
      return assertionHolds(m_, at_, assertionOf(*node_)) && goOn(at_, node_ + 1);
    case Step::kGreedyShorthand:
      return repeatAscii(node_ + 1, [this](auto* end) { return behindShorthand(m_, *node_, at_, end); });
    case Step::kGreedySet:
      return repeatAscii(afterItem(node_),
                         [this](auto* end) { return behindBytes(at_, end, *recordOf(*node_)); });
    case Step::kGreedyItem:
      return repeatItem(afterItem(node_));
    case Step::kOptions:
      return setOptions();
    case Step::kByte:
      return takeByte();
    case Step::kString:
      return takeString();
    case Step::kShorthand:
      return takeShorthand();
    case Step::kSet:
      return takeFromSet();
    default:
      return takeItem();
  }
}

}  // namespace

bool rxMatchHead(MatchContext& m, int32_t headEnd) {
  const RxNode* const end = m.nodes() + headEnd;
  HeadRun head(m);
  const bool succeeds = head.reaches(end);
  if (head.isCut()) return rxMatch(m, m.matchStart, m.nodes());
  m.budget.pay(head.steps());
  if (succeeds && end == m.programEnd) {
    m.surplus.clear();
    m.at = head.at();
    return true;
  }
  if (succeeds && rxMatch(m, head.at(), end)) return true;
  m.budget.pay(head.tries());
  return false;
}

}  // namespace ulk
