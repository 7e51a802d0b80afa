// Comparison as a loop over the units does it.
#pragma once

#include <algorithm>

#include "check.h"
#include "support/api.h"
#include "support/reference_case.h"

namespace ulk_fuzz {

// The strings are of one length.
template <class Unit>
void checkCompare(const std::vector<Unit>& left, const std::vector<Unit>& right, Shifts shifts) {
  using Calls = ulk_test::Api<Unit>;
  const Block<Unit> leftBlock(left, shifts.text);
  const Block<Unit> rightBlock(right, shifts.other);
  const auto expectResult = [&](auto compare, int32_t expected) {
    int32_t result = -77777777;
    ULK_CHECK(compare(leftBlock.get(), rightBlock.get(), lengthOf(left), &result) == ulkOk);
    ULK_CHECK(result == expected);
  };
  const auto expectOrder = [&](auto compare, auto folded) {
    const auto same = [&](Unit l, Unit r) { return folded(l) == folded(r); };
    const auto [l, r] = std::mismatch(left.begin(), left.end(), right.begin(), same);
    expectResult(compare, l == left.end() ? 0 : int32_t{folded(*l)} - int32_t{folded(*r)});
  };
  expectResult(Calls::equal, left == right);
  expectOrder(Calls::compare, [](Unit unit) { return unit; });
  expectOrder(Calls::compareIgnoreCaseLatin, ulk_test::latinLower<Unit>);
  if constexpr (sizeof(Unit) == 2) expectOrder(ulksCompareIgnoreCase_16u, ulk_test::fullLower);
}

}  // namespace ulk_fuzz
