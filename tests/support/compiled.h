// A compiled expression that releases itself.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

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

}  // namespace ulk_test
