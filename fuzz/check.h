// What the checks of a family judge the library with: memory that is watched to the byte, and a claim that
// must hold. The fuzz targets, which vary the inputs of the checks, end when it does not; the tests, which
// sweep over them, expect it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ULK_WATCHED_HEAP
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define ULK_WATCHED_HEAP
#endif
#ifndef ULK_WATCHED_HEAP
#include "support/guarded.h"
#endif

namespace ulk_fuzz {

inline void check(bool holds, const char* claim) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", claim);
  std::abort();
}

#ifdef EXPECT_TRUE
#define ULK_CHECK(condition) EXPECT_TRUE(condition)
#else
#define ULK_CHECK(condition) ::ulk_fuzz::check(condition, #condition)
#endif

// Greater shifts than a target takes from its input: right before what cannot be touched, at an odd address
// where the heap is watched, or at one for any structure.
constexpr size_t kAtEnd = 31;
constexpr size_t kAligned = 32;

#ifdef ULK_WATCHED_HEAP

// A heap block that begins `shift` bytes before the bytes and ends with them.
class WatchedBytes {
 public:
  WatchedBytes(size_t bytes, size_t shift)
      : start_(bytes == 0 && shift == 0 ? 1 : shift),  // an empty block would have a byte that nobody watches
        size_(start_ + bytes),
        block_(new char[size_]) {}

  char* begin() const { return block_.get(); }
  char* end() const { return begin() + size_; }
  char* start() const { return begin() + start_; }

 private:
  size_t start_;
  size_t size_;
  std::unique_ptr<char[]> block_;
};

#else

// Guarded pages, which the bytes begin `shift` bytes behind the start of, or end with, and what lies next to
// the bytes. The pages are kept for the next one.
class WatchedBytes {
 public:
  WatchedBytes(size_t bytes, size_t shift) : pages_(Spares::all().take(bytes + kAtEnd)) {
    if (!pages_) pages_ = std::make_unique<ulk_test::GuardedPages>(bytes + kAtEnd);
    start_ = shift >= kAtEnd ? pages_->end() - bytes : pages_->begin() + shift;
    begin_ = std::max(pages_->begin(), start_ - kMargin);
    end_ = std::min(pages_->end(), start_ + bytes + kMargin);
  }
  WatchedBytes(WatchedBytes&&) = default;
  ~WatchedBytes() { Spares::all().keep(std::move(pages_)); }

  char* begin() const { return begin_; }
  char* end() const { return end_; }
  char* start() const { return start_; }

 private:
  using Pages = std::unique_ptr<ulk_test::GuardedPages>;

  // Those of all threads: under MinGW a thread's own variables are freed before they are destroyed.
  class Spares {
   public:
    static Spares& all() {
      static Spares spares;
      return spares;
    }

    Pages take(size_t bytes) {
      const std::lock_guard lock(mutex_);
      const auto spare = std::find_if(pages_.begin(), pages_.end(), [=](const Pages& pages) {
        return pages && static_cast<size_t>(pages->end() - pages->begin()) >= bytes;
      });
      return spare == pages_.end() ? nullptr : std::move(*spare);
    }
    void keep(Pages pages) {
      const std::lock_guard lock(mutex_);
      const auto room = std::find(pages_.begin(), pages_.end(), nullptr);
      if (room != pages_.end()) *room = std::move(pages);
    }

   private:
    std::mutex mutex_;
    std::vector<Pages> pages_{64};
  };

  static constexpr ptrdiff_t kMargin = 160;

  Pages pages_;
  char* start_;
  char* begin_;
  char* end_;
};

#endif

// Units in such memory: aligned by the shift, and at an odd address for an odd one.
template <class Unit>
class Block {
 public:
  static constexpr char kUnwritten = 0x5A;  // what its bytes hold at first, and those beside them

  Block(size_t count, size_t shift) : Block(count, {}, shift) {}
  Block(const std::vector<Unit>& units, size_t shift) : Block(units.size(), units, shift) {}
  // Room for `count` units, which begins with these.
  Block(size_t count, const std::vector<Unit>& units, size_t shift)
      : count_(count), memory_(count * sizeof(Unit), shift) {
    std::memset(memory_.begin(), kUnwritten, size());
    if (!units.empty()) std::memcpy(memory_.start(), units.data(), units.size() * sizeof(Unit));
  }

  Unit* get() const { return static_cast<Unit*>(static_cast<void*>(memory_.start())); }

  std::vector<Unit> units() const {
    std::vector<Unit> units(count_);
    if (count_ > 0) std::memcpy(units.data(), memory_.start(), count_ * sizeof(Unit));
    return units;
  }

  // Whether these units stand at the start, what was there `before` behind them, and all else is as it was.
  bool holds(const std::vector<Unit>& units, const std::vector<Unit>& before = {}) const {
    std::string expected(size(), kUnwritten);
    char* const start = expected.data() + (memory_.start() - memory_.begin());
    for (const std::vector<Unit>* each : {&before, &units}) {
      const size_t bytes = each->size() * sizeof(Unit);
      if (bytes > static_cast<size_t>(memory_.end() - memory_.start())) return false;
      if (bytes > 0) std::memcpy(start, each->data(), bytes);
    }
    return std::memcmp(memory_.begin(), expected.data(), size()) == 0;
  }

 private:
  size_t size() const { return static_cast<size_t>(memory_.end() - memory_.begin()); }

  size_t count_;
  WatchedBytes memory_;
};

// The addresses of a source, of what is looked for or put into it, and of the result.
struct Shifts {
  size_t text;
  size_t other;
  size_t result;
};

template <class Unit>
int32_t lengthOf(const std::vector<Unit>& units) {
  return static_cast<int32_t>(units.size());
}

}  // namespace ulk_fuzz
