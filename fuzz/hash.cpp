// Hashing.
// Number: the alignment. Field: the text.
#include "hash.h"

#include "input.h"

using namespace ulk_fuzz;

namespace {

template <class Unit>
void run(Input input) {
  const size_t shift = input.numberTo(kAtEnd);
  const auto units = unitsOf<Unit>(input.rest());
  checkHash(units, shift, ulk_test::referenceHashes(units));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  run<uint8_t>(Input(data, size));
  run<uint16_t>(Input(data, size));
  return 0;
}
