// Trimming as the slow trim does it.
#pragma once

#include "check.h"
#include "support/api.h"
#include "support/reference_trim.h"

namespace ulk_fuzz {

template <class Unit>
void checkTrim(const std::vector<Unit>& text, const std::vector<Unit>& set, Shifts shifts) {
  using Calls = ulk_test::Api<Unit>;
  const Block<Unit> textBlock(text, shifts.text);
  const Block<Unit> setBlock(set, shifts.other);

  const auto expectTrimmed = [&](const std::vector<Unit>& expected, auto trim) {
    const Block<Unit> result(text.size(), shifts.result);
    int32_t length = -77;
    ULK_CHECK(trim(result.get(), &length) == ulkOk);
    ULK_CHECK(length == lengthOf(expected));
    ULK_CHECK(result.holds(expected));
  };
  const auto expectTrimmedBySet = [&](bool start, bool end, auto trim) {
    expectTrimmed(ulk_test::referenceTrim(text, set, start, end), [&](Unit* result, int32_t* length) {
      return trim(textBlock.get(), lengthOf(text), setBlock.get(), lengthOf(set), result, length);
    });
  };
  expectTrimmedBySet(true, true, Calls::trimCAny);
  expectTrimmedBySet(true, false, Calls::trimStartCAny);
  expectTrimmedBySet(false, true, Calls::trimEndCAny);

  const Unit unit = set.empty() ? Unit{0} : set[0];
  const auto expected = ulk_test::referenceTrim(text, {unit}, true, true);
  expectTrimmed(expected, [&](Unit* result, int32_t* length) {
    return Calls::trimC(textBlock.get(), lengthOf(text), unit, result, length);
  });
  int32_t length = lengthOf(text);
  ULK_CHECK(Calls::trimCInPlace(textBlock.get(), &length, unit) == ulkOk);
  ULK_CHECK(length == lengthOf(expected));
  ULK_CHECK(textBlock.holds(expected, text));
}

}  // namespace ulk_fuzz
