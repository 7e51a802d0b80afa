// Work that recurses deeply: a thread with a big stack, and a way to see the end of the stack coming.
#pragma once

#include <functional>

namespace ulk_test {

// Calls `work` on a thread with a big stack and waits for it. If no such thread can be had, or on one
// already, `work` is called as it is.
void onDeepStack(const std::function<void()>& work);

// How deep a recursion may go that begins where this object is made.
class StackGuard {
 public:
  StackGuard();
  bool nearEnd() const { return static_cast<const char*>(__builtin_frame_address(0)) < end_; }

 private:
  const char* end_;
};

}  // namespace ulk_test
