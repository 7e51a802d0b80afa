// Trimming.
// Numbers: the alignments of text, set and result. Fields: the set; the text.
#include "trim.h"

#include "input.h"

using namespace ulk_fuzz;

namespace {

template <class Unit>
void run(Input input) {
  const Shifts shifts = input.shifts();
  const auto set = unitsOf<Unit>(input.field());
  checkTrim(unitsOf<Unit>(input.rest()), set, shifts);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  run<uint8_t>(Input(data, size));
  run<uint16_t>(Input(data, size));
  return 0;
}
