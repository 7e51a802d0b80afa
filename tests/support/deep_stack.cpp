#include "support/deep_stack.h"

#include <pthread.h>

#include <cstddef>

namespace ulk_test {
namespace {

constexpr size_t kDeepStack = size_t{192} << 20;
constexpr size_t kReserve = size_t{1} << 20;  // for what is called by the deepest frame, and before the first
constexpr size_t kOrdinaryStack = size_t{256} << 10;  // that any other thread has left

thread_local const char* deepStackEnd = nullptr;

const char* frameAddress() { return static_cast<const char*>(__builtin_frame_address(0)); }

void* runOnThread(void* work) {
  deepStackEnd = frameAddress() - kDeepStack + kReserve;
  (*static_cast<const std::function<void()>*>(work))();
  return nullptr;
}

}  // namespace

void onDeepStack(const std::function<void()>& work) {
  if (deepStackEnd) return work();
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, kDeepStack);
  pthread_t thread;
  const int failed =
      pthread_create(&thread, &attributes, runOnThread, const_cast<std::function<void()>*>(&work));
  pthread_attr_destroy(&attributes);
  if (failed) return work();
  pthread_join(thread, nullptr);
}

StackGuard::StackGuard() : end_(deepStackEnd ? deepStackEnd : frameAddress() - kOrdinaryStack) {}

}  // namespace ulk_test
