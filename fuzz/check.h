// What a fuzz target judges the library with: memory that an address sanitizer watches to the byte, and an
// end of the program when something is wrong.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

namespace ulk_fuzz {

inline void check(bool holds, const char* claim) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", claim);
  std::abort();
}

#define ULK_CHECK(condition) ::ulk_fuzz::check(condition, #condition)

// Units right before the end of a heap block and `shift` bytes behind its start: aligned by that, and at an
// odd address for an odd shift.
template <class Unit>
class Block {
 public:
  static constexpr int kUnwritten = 0x5A;  // what its bytes hold at first

  Block(size_t count, size_t shift)
      : size_(count * sizeof(Unit)),
        shift_(size_ == 0 && shift == 0 ? 1 : shift),  // an empty block would have a byte that nobody watches
        block_(static_cast<char*>(std::malloc(shift_ + size_))) {
    if (!block_) std::abort();
    std::memset(block_, kUnwritten, shift_ + size_);
  }
  Block(const std::vector<Unit>& units, size_t shift) : Block(units.size(), units, shift) {}
  // Room for `count` units, which begins with these.
  Block(size_t count, const std::vector<Unit>& units, size_t shift) : Block(count, shift) {
    if (!units.empty()) std::memcpy(block_ + shift_, units.data(), units.size() * sizeof(Unit));
  }
  Block(Block&& other) noexcept
      : size_(other.size_), shift_(other.shift_), block_(std::exchange(other.block_, nullptr)) {}
  Block& operator=(Block&&) = delete;
  ~Block() { std::free(block_); }

  Unit* get() const { return static_cast<Unit*>(static_cast<void*>(block_ + shift_)); }

  std::vector<Unit> units() const {
    std::vector<Unit> units(size_ / sizeof(Unit));
    if (!units.empty()) std::memcpy(units.data(), block_ + shift_, size_);
    return units;
  }

  // Whether the units of the block are these and all behind them is as it was.
  bool holds(const std::vector<Unit>& units, const std::vector<Unit>& before = {}) const {
    std::vector<Unit> expected(size_ / sizeof(Unit));
    if (!expected.empty()) std::memset(expected.data(), kUnwritten, size_);
    if (units.size() > expected.size() || before.size() > expected.size()) return false;
    std::copy(before.begin(), before.end(), expected.begin());
    std::copy(units.begin(), units.end(), expected.begin());
    return this->units() == expected;
  }

 private:
  size_t size_;
  size_t shift_;
  char* block_;
};

}  // namespace ulk_fuzz
