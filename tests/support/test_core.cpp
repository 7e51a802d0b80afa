#include "support/test_core.h"

#include <atomic>
#include <cstdlib>

#include "ulkcore.h"

namespace {

std::atomic<bool> failNext = false;
std::atomic<int32_t> numLive = 0;
std::atomic<int32_t> lastRequest = 0;
std::atomic<int32_t> numThreads = 1;
std::atomic<int32_t> numThreadsAfter = 1;

}  // namespace

namespace ulk::testcore {

void failNextAllocation() { failNext = true; }
int32_t liveBlocks() { return numLive; }
int32_t lastSize() { return lastRequest; }
void setNumThreads(int32_t count) { setNumThreads(count, count); }
void setNumThreads(int32_t next, int32_t after) {
  numThreads = next;
  numThreadsAfter = after;
}

}  // namespace ulk::testcore

void* ulkMalloc(int32_t size) {
  lastRequest = size;
  if (failNext.exchange(false) || size < 1) return nullptr;
  void* const block = std::malloc(static_cast<size_t>(size));
  if (block) ++numLive;
  return block;
}

void ulkFree(void* pointer) {
  if (pointer) --numLive;
  std::free(pointer);
}

int32_t ownGetNumThreads() { return numThreads.exchange(numThreadsAfter); }
