// The steps that a search may still take.
//
// A step of the matcher is paid as it is taken. Steps that would lead to nothing are not taken but paid for,
// at their exact number or, where counting them would take longer, at a bound. A search that runs out of
// budget after it has paid bounds may have been stopped too early: it is made again, and pays exactly.
#pragma once

#include <algorithm>
#include <cstdint>

namespace ulk {

class StepBudget {
 public:
  // More than all but hopeless attempts need.
  static constexpr int32_t kPlenty = 5000;

  void start(int32_t limit, bool exactly) {
    left_ = limit;
    exactly_ = exactly;
    paidBounds_ = false;
  }

  bool isExhausted() const { return left_ < 0; }
  // The last step is taken when nothing is left for it.
  void payStep() { --left_; }

  bool suffices(int64_t steps) const { return steps <= left_; }
  int32_t left() const { return left_; }
  void pay(int64_t steps) { left_ = static_cast<int32_t>(std::max<int64_t>(left_ - steps, -1)); }
  void exhaust() { left_ = -1; }

  bool paysExactly() const { return exactly_; }
  // Only while steps are plenty, as a search that then runs out is made again. Until it is, what it has found
  // does not count.
  bool mayPayBounds() const { return !exactly_ && left_ >= kPlenty; }
  // At most so many steps.
  void payBound(int64_t steps) {
    pay(steps);
    paidBounds_ = true;
  }
  // Whether the search is to be made again.
  bool mayHaveSufficed() const { return isExhausted() && paidBounds_; }

 private:
  int32_t left_;
  bool exactly_;
  bool paidBounds_;
};

}  // namespace ulk
