// Memory between two pages that cannot be touched: a read or write beyond either end of it ends the test
// program.
#pragma once

#include <cstddef>

namespace ulk_test {

class GuardedPages {
 public:
  // At least `size` bytes, a whole number of pages.
  explicit GuardedPages(size_t size);
  ~GuardedPages();
  GuardedPages(const GuardedPages&) = delete;
  GuardedPages& operator=(const GuardedPages&) = delete;

  char* begin() const { return begin_; }
  char* end() const { return begin_ + size_; }

 private:
  size_t size_;
  char* begin_;
};

}  // namespace ulk_test
