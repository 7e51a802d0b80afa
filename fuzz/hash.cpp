// Hashing against the formulas.
// Number: the alignment. Field: the text.
#include "check.h"
#include "input.h"
#include "support/api.h"
#include "support/reference_hash.h"

using namespace ulk_fuzz;
using ulk_test::Api;

namespace {

template <class Unit>
void run(Input input) {
  const size_t shift = input.numberTo(31);
  const auto units = unitsOf<Unit>(input.rest());
  const Block<Unit> block(units, shift);
  ulk_test::Hashes hashes = {77, 77, 77};
  ULK_CHECK(Api<Unit>::hash(block.get(), lengthOf(units), &hashes.hash) == ulkOk);
  ULK_CHECK(Api<Unit>::hashMSCS(block.get(), lengthOf(units), &hashes.hashMSCS) == ulkOk);
  ULK_CHECK(Api<Unit>::hashSJ2(block.get(), lengthOf(units), &hashes.hashSJ2) == ulkOk);
  ULK_CHECK(hashes == ulk_test::referenceHashes(units));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  run<uint8_t>(Input(data, size));
  run<uint16_t>(Input(data, size));
  return 0;
}
