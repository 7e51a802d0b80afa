// The three services over the process heap and the processors that the system grants the process.
#include "ulkcore.h"

#include <cstdlib>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sched.h>
#endif

void* ulkMalloc(int32_t size) { return size < 1 ? nullptr : std::malloc(static_cast<size_t>(size)); }

void ulkFree(void* pointer) { std::free(pointer); }

#if defined(_WIN32)

int32_t ownGetNumThreads() {
  DWORD_PTR ours = 0;
  DWORD_PTR system = 0;
  if (!GetProcessAffinityMask(GetCurrentProcess(), &ours, &system)) return 1;
  int32_t count = 0;
  for (; ours != 0; ours &= ours - 1) ++count;
  return count < 1 ? 1 : count;
}

#else

int32_t ownGetNumThreads() {
  // A machine with more processors than a cpu_set_t holds makes the call fail; one thread is then always
  // right.
  cpu_set_t ours;
  if (sched_getaffinity(0, sizeof(ours), &ours) != 0) return 1;
  const int count = CPU_COUNT(&ours);
  return count < 1 ? 1 : count;
}

#endif
