// Searching as the slow searches do it.
#pragma once

#include <algorithm>

#include "check.h"
#include "support/api.h"
#include "support/reference_search.h"

namespace ulk_fuzz {

// The index that a call reports.
template <class Call, class... Arguments>
int32_t found(Call call, Arguments... arguments) {
  int32_t index = -77;
  ULK_CHECK(call(arguments..., &index) == ulkOk);
  return index;
}

template <class Unit>
void checkTerminated(std::vector<Unit> text, std::vector<Unit> pattern, Shifts shifts) {
  for (std::vector<Unit>* string : {&text, &pattern})
    string->erase(std::find(string->begin(), string->end(), Unit{0}), string->end());
  const int32_t first = ulk_test::referenceFind(text, pattern).first;
  const Unit unit = pattern.empty() ? Unit{0} : pattern[0];
  const int32_t firstOfUnit = ulk_test::referenceFindAny(text, {unit}).first;
  text.push_back(0);
  pattern.push_back(0);
  const Block<Unit> textBlock(text, shifts.text);
  const Block<Unit> patternBlock(pattern, shifts.other);
  ULK_CHECK(found(ulk_test::Api<Unit>::findZ, textBlock.get(), patternBlock.get()) == first);
  ULK_CHECK(found(ulk_test::Api<Unit>::findCZ, textBlock.get(), unit) == firstOfUnit);
}

// The pattern is a string to look for, and a set of units.
template <class Unit>
void checkSearch(const std::vector<Unit>& text, const std::vector<Unit>& pattern, Shifts shifts) {
  using Calls = ulk_test::Api<Unit>;
  const Block<Unit> textBlock(text, shifts.text);
  const Block<Unit> patternBlock(pattern, shifts.other);
  const Unit* const pText = textBlock.get();
  const Unit* const pPattern = patternBlock.get();
  const int32_t textLength = lengthOf(text);
  const int32_t patternLength = lengthOf(pattern);

  const auto whole = ulk_test::referenceFind(text, pattern);
  ULK_CHECK(found(Calls::find, pText, textLength, pPattern, patternLength) == whole.first);
  ULK_CHECK(found(Calls::findRev, pText, textLength, pPattern, patternLength) == whole.last);
  const auto any = ulk_test::referenceFindAny(text, pattern);
  ULK_CHECK(found(Calls::findCAny, pText, textLength, pPattern, patternLength) == any.first);
  ULK_CHECK(found(Calls::findRevCAny, pText, textLength, pPattern, patternLength) == any.last);
  for (const Unit unit :
       {pattern.empty() ? Unit{0} : pattern.front(), pattern.empty() ? Unit{1} : pattern.back()}) {
    const auto one = ulk_test::referenceFindAny(text, {unit});
    ULK_CHECK(found(Calls::findC, pText, textLength, unit) == one.first);
    ULK_CHECK(found(Calls::findRevC, pText, textLength, unit) == one.last);
  }
  checkTerminated(text, pattern, shifts);
}

}  // namespace ulk_fuzz
