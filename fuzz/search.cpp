// Searching.
// Numbers: the alignments of text and pattern, then which part of the text the pattern begins with.
// Fields: what the pattern goes on with; the text.
#include "search.h"

#include "input.h"

using namespace ulk_fuzz;

namespace {

template <class Unit>
void run(Input input) {
  const size_t textShift = input.numberTo(kAtEnd);
  const size_t patternShift = input.numberTo(kAtEnd);
  const size_t partStart = input.numberTo(4000);
  const size_t partLength = input.numberTo(4000);
  const auto ending = unitsOf<Unit>(input.field());
  const auto text = unitsOf<Unit>(input.rest());
  const size_t start = std::min(partStart, text.size());
  const auto part = text.begin() + static_cast<ptrdiff_t>(start);
  std::vector<Unit> pattern(part, part + static_cast<ptrdiff_t>(std::min(partLength, text.size() - start)));
  pattern.insert(pattern.end(), ending.begin(), ending.end());
  checkSearch(text, pattern, {textShift, patternShift, 0});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  run<uint8_t>(Input(data, size));
  run<uint16_t>(Input(data, size));
  return 0;
}
