// Memory between two pages that cannot be touched: a read or write beyond either end of it ends the test
// program.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace ulk_test {

class GuardedPages {
 public:
  explicit GuardedPages(size_t size) : size_((size + kPage - 1) / kPage * kPage) {
#if defined(_WIN32)
    void* base = VirtualAlloc(nullptr, size_ + 2 * kPage, MEM_RESERVE, PAGE_NOACCESS);
    begin_ = static_cast<char*>(base) + kPage;
    if (!base || !VirtualAlloc(begin_, size_, MEM_COMMIT, PAGE_READWRITE)) std::abort();
#else
    void* base = mmap(nullptr, size_ + 2 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    begin_ = static_cast<char*>(base) + kPage;
    if (base == MAP_FAILED || mprotect(begin_, size_, PROT_READ | PROT_WRITE) != 0) std::abort();
#endif
  }
  ~GuardedPages() {
#if defined(_WIN32)
    VirtualFree(begin_ - kPage, 0, MEM_RELEASE);
#else
    munmap(begin_ - kPage, size_ + 2 * kPage);
#endif
  }
  GuardedPages(const GuardedPages&) = delete;
  GuardedPages& operator=(const GuardedPages&) = delete;

  char* begin() const { return begin_; }
  char* end() const { return begin_ + size_; }

 private:
  static constexpr size_t kPage = 4096;
  size_t size_;
  char* begin_;
};

// A place for strings of units, one at a time, at either guard or at any address between.
template <class Unit>
class GuardedUnits {
 public:
  explicit GuardedUnits(size_t mostUnits) : pages_(mostUnits * sizeof(Unit) + 64) {}

  const Unit* endingAtGuard(const std::vector<Unit>& units) {
    return put(pages_.end() - units.size() * sizeof(Unit), units);
  }
  const Unit* startingAtGuard(const std::vector<Unit>& units) { return put(pages_.begin(), units); }
  // At an address that is `offset` modulo 64, also an odd one for 16-bit units.
  const Unit* atOffset(const std::vector<Unit>& units, size_t offset) {
    return put(pages_.begin() + offset, units);
  }

 private:
  const Unit* put(char* where, const std::vector<Unit>& units) {
    if (!units.empty()) std::memcpy(where, units.data(), units.size() * sizeof(Unit));
    return static_cast<const Unit*>(static_cast<void*>(where));
  }

  GuardedPages pages_;
};

}  // namespace ulk_test
