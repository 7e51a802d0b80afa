// Memory between two pages that cannot be touched: a read or write beyond either end of it ends the test
// program.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

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
