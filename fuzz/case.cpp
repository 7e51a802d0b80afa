// Case conversion.
// Numbers: the alignments of source and destination. Field: the text.
#include "case.h"

#include "input.h"

using namespace ulk_fuzz;

namespace {

template <class Unit>
void run(Input input) {
  const size_t sourceShift = input.numberTo(kAtEnd);
  const size_t resultShift = input.numberTo(kAtEnd);
  checkCase(unitsOf<Unit>(input.rest()), {sourceShift, 0, resultShift});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  run<uint8_t>(Input(data, size));
  run<uint16_t>(Input(data, size));
  return 0;
}
