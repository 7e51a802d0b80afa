#include "support/guarded.h"

#include <cstdlib>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace ulk_test {
namespace {

constexpr size_t kPage = 4096;

#if defined(_WIN32)

char* reserve(size_t size) {
  return static_cast<char*>(VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS));
}

bool makeUsable(char* begin, size_t size) { return VirtualAlloc(begin, size, MEM_COMMIT, PAGE_READWRITE); }

void release(char* reserved, size_t) { VirtualFree(reserved, 0, MEM_RELEASE); }

#else

char* reserve(size_t size) {
  void* reserved = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return reserved == MAP_FAILED ? nullptr : static_cast<char*>(reserved);
}

bool makeUsable(char* begin, size_t size) { return mprotect(begin, size, PROT_READ | PROT_WRITE) == 0; }

void release(char* reserved, size_t size) { munmap(reserved, size); }

#endif

}  // namespace

GuardedPages::GuardedPages(size_t size) : size_((size + kPage - 1) / kPage * kPage) {
  char* reserved = reserve(size_ + 2 * kPage);
  begin_ = reserved + kPage;
  if (!reserved || !makeUsable(begin_, size_)) std::abort();
}

GuardedPages::~GuardedPages() { release(begin_ - kPage, size_ + 2 * kPage); }

}  // namespace ulk_test
