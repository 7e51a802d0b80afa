// Compiled expressions: one that releases itself, and one in memory of exactly the size that it asks for.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "ulkch.h"

namespace ulk_test {

struct FreeExpression {
  void operator()(ulkRegExpState* state) const { ulksRegExpFree(state); }
};
using CompiledExpression = std::unique_ptr<ulkRegExpState, FreeExpression>;

inline CompiledExpression compiled(const std::string& pattern, const char* options = "") {
  ulkRegExpState* state = nullptr;
  int32_t errorOffset = 0;
  EXPECT_EQ(ulksRegExpInitAlloc(pattern.c_str(), options, &state, &errorOffset), ulkOk) << pattern;
  return CompiledExpression(state);
}

// A state in memory full of `fill`, at an address that is `offset` behind a multiple of 64.
class StateBuffer {
 public:
  static constexpr int32_t kUntouched = -12345;

  explicit StateBuffer(const std::string& pattern, const std::string& options = "", uint8_t fill = 0xA5,
                       size_t offset = 0) {
    int32_t size = 0;
    EXPECT_EQ(ulksRegExpGetSize(pattern.c_str(), &size), ulkOk);
    size_ = static_cast<size_t>(size);
    memory_.assign(size_ + 128 + kZone, fill);
    bytes_ = memory_.data() + (64 - reinterpret_cast<uintptr_t>(memory_.data()) % 64) % 64 + offset;
    std::memset(bytes_ + size_, kZoneByte, kZone);
    compile(pattern, options);
  }

  ulkStatus compile(const std::string& pattern, const std::string& options = "") {
    // A copy of its own, so that an address sanitizer sees a read past the terminator.
    const std::vector<char> exact(pattern.c_str(), pattern.c_str() + pattern.size() + 1);
    errorOffset_ = kUntouched;
    return status_ = ulksRegExpInit(exact.data(), options.c_str(), state(), &errorOffset_);
  }

  ulkRegExpState* state() { return reinterpret_cast<ulkRegExpState*>(bytes_); }
  uint8_t* bytes() { return bytes_; }
  size_t size() const { return size_; }
  // Of the last compile; kUntouched is an offset that was not written.
  ulkStatus status() const { return status_; }
  int32_t errorOffset() const { return errorOffset_; }
  // Whether nothing was written behind the state.
  bool zoneIntact() const {
    return std::all_of(bytes_ + size_, bytes_ + size_ + kZone, [](uint8_t b) { return b == kZoneByte; });
  }

 private:
  static constexpr size_t kZone = 256;
  static constexpr uint8_t kZoneByte = 0xEE;

  std::vector<uint8_t> memory_;
  size_t size_ = 0;
  uint8_t* bytes_ = nullptr;
  ulkStatus status_ = ulkOk;
  int32_t errorOffset_ = kUntouched;
};

}  // namespace ulk_test
