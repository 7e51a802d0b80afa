// Searching against the slow searches.
// Numbers: the alignments of text and pattern, then which part of the text the pattern begins with.
// Fields: what the pattern goes on with; the text.
#include "check.h"
#include "input.h"
#include "support/api.h"
#include "support/reference_search.h"

using namespace ulk_fuzz;
using ulk_test::Api;

namespace {

// The index that a call reports.
template <class Call, class... Arguments>
int32_t found(Call call, Arguments... arguments) {
  int32_t index = -77;
  ULK_CHECK(call(arguments..., &index) == ulkOk);
  return index;
}

template <class Unit>
void searchTerminated(std::vector<Unit> text, std::vector<Unit> pattern, size_t textShift,
                      size_t patternShift) {
  text.erase(std::find(text.begin(), text.end(), Unit{0}), text.end());
  pattern.erase(std::find(pattern.begin(), pattern.end(), Unit{0}), pattern.end());
  const int32_t first = ulk_test::referenceFind(text, pattern).first;
  const Unit unit = pattern.empty() ? Unit{0} : pattern[0];
  const int32_t firstOfUnit = ulk_test::referenceFindAny(text, {unit}).first;
  text.push_back(0);
  pattern.push_back(0);
  const Block<Unit> textBlock(text, textShift);
  const Block<Unit> patternBlock(pattern, patternShift);
  ULK_CHECK(found(Api<Unit>::findZ, textBlock.get(), patternBlock.get()) == first);
  ULK_CHECK(found(Api<Unit>::findCZ, textBlock.get(), unit) == firstOfUnit);
}

template <class Unit>
void run(Input input) {
  const size_t textShift = input.numberTo(31);
  const size_t patternShift = input.numberTo(31);
  const size_t partStart = input.numberTo(4000);
  const size_t partLength = input.numberTo(4000);
  const auto ending = unitsOf<Unit>(input.field());
  const auto text = unitsOf<Unit>(input.rest());
  const size_t start = std::min(partStart, text.size());
  const auto part = text.begin() + static_cast<ptrdiff_t>(start);
  std::vector<Unit> pattern(part, part + static_cast<ptrdiff_t>(std::min(partLength, text.size() - start)));
  pattern.insert(pattern.end(), ending.begin(), ending.end());

  const Block<Unit> textBlock(text, textShift);
  const Block<Unit> patternBlock(pattern, patternShift);
  const Unit* const pText = textBlock.get();
  const Unit* const pPattern = patternBlock.get();
  const int32_t textLength = lengthOf(text);
  const int32_t patternLength = lengthOf(pattern);

  const auto whole = ulk_test::referenceFind(text, pattern);
  ULK_CHECK(found(Api<Unit>::find, pText, textLength, pPattern, patternLength) == whole.first);
  ULK_CHECK(found(Api<Unit>::findRev, pText, textLength, pPattern, patternLength) == whole.last);
  const auto any = ulk_test::referenceFindAny(text, pattern);
  ULK_CHECK(found(Api<Unit>::findCAny, pText, textLength, pPattern, patternLength) == any.first);
  ULK_CHECK(found(Api<Unit>::findRevCAny, pText, textLength, pPattern, patternLength) == any.last);
  for (const Unit unit :
       {pattern.empty() ? Unit{0} : pattern.front(), pattern.empty() ? Unit{1} : pattern.back()}) {
    const auto one = ulk_test::referenceFindAny(text, {unit});
    ULK_CHECK(found(Api<Unit>::findC, pText, textLength, unit) == one.first);
    ULK_CHECK(found(Api<Unit>::findRevC, pText, textLength, unit) == one.last);
  }
  searchTerminated(text, pattern, textShift, patternShift);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  run<uint8_t>(Input(data, size));
  run<uint16_t>(Input(data, size));
  return 0;
}
