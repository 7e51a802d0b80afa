// Case conversion by the letters of the reference.
#pragma once

#include <algorithm>

#include "check.h"
#include "support/api.h"
#include "support/reference_case.h"

namespace ulk_fuzz {

template <class Unit>
void checkCase(const std::vector<Unit>& units, Shifts shifts) {
  using Calls = ulk_test::Api<Unit>;
  const auto expectConverted = [&](auto convert, auto convertInPlace, auto ofUnit) {
    std::vector<Unit> expected = units;
    std::transform(expected.begin(), expected.end(), expected.begin(), ofUnit);
    const Block<Unit> source(units, shifts.text);
    const Block<Unit> result(units.size(), shifts.result);
    ULK_CHECK(convert(source.get(), result.get(), lengthOf(units)) == ulkOk);
    ULK_CHECK(result.holds(expected));
    ULK_CHECK(source.holds(units));
    ULK_CHECK(convertInPlace(source.get(), lengthOf(units)) == ulkOk);
    ULK_CHECK(source.holds(expected));
    const Block<Unit> same(units, shifts.result);
    ULK_CHECK(convert(same.get(), same.get(), lengthOf(units)) == ulkOk);
    ULK_CHECK(same.holds(expected));
  };
  expectConverted(Calls::lowercaseLatin, Calls::lowercaseLatinInPlace, ulk_test::latinLower<Unit>);
  expectConverted(Calls::uppercaseLatin, Calls::uppercaseLatinInPlace, ulk_test::latinUpper<Unit>);
  if constexpr (sizeof(Unit) == 2) {
    expectConverted(ulksLowercase_16u, ulksLowercase_16u_I, ulk_test::fullLower);
    expectConverted(ulksUppercase_16u, ulksUppercase_16u_I, ulk_test::fullUpper);
  }
}

}  // namespace ulk_fuzz
