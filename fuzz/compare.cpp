// Comparison.
// Numbers: the alignments of both strings, then where the second one differs from the first.
// Fields: what stands there; the first string.
#include "compare.h"

#include "input.h"

using namespace ulk_fuzz;

namespace {

template <class Unit>
void run(Input input) {
  const size_t leftShift = input.numberTo(kAtEnd);
  const size_t rightShift = input.numberTo(kAtEnd);
  const size_t where = input.numberTo(4000);
  const auto other = unitsOf<Unit>(input.field());
  const auto left = unitsOf<Unit>(input.rest());
  auto right = left;
  for (size_t i = 0; i < other.size() && where + i < right.size(); ++i) right[where + i] = other[i];
  checkCompare(left, right, {leftShift, rightShift, 0});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  run<uint8_t>(Input(data, size));
  run<uint16_t>(Input(data, size));
  return 0;
}
