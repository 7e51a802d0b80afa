// Hashing against the formulas.
// Number: the alignment. Field: the text.
#include "check.h"
#include "input.h"
#include "support/reference_hash.h"
#include "ulkch.h"

using namespace ulk_fuzz;

namespace {

template <class Unit, class Hash>
void run(Input input, Hash hash, Hash hashMSCS, Hash hashSJ2) {
  const size_t shift = input.numberTo(31);
  const auto units = unitsOf<Unit>(input.rest());
  const Block<Unit> block(units, shift);
  ulk_test::Hashes hashes = {77, 77, 77};
  ULK_CHECK(hash(block.get(), lengthOf(units), &hashes.hash) == ulkOk);
  ULK_CHECK(hashMSCS(block.get(), lengthOf(units), &hashes.hashMSCS) == ulkOk);
  ULK_CHECK(hashSJ2(block.get(), lengthOf(units), &hashes.hashSJ2) == ulkOk);
  ULK_CHECK(hashes == ulk_test::referenceHashes(units));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  run<uint8_t>(Input(data, size), ulksHash_8u32u, ulksHashMSCS_8u32u, ulksHashSJ2_8u32u);
  run<uint16_t>(Input(data, size), ulksHash_16u32u, ulksHashMSCS_16u32u, ulksHashSJ2_16u32u);
  return 0;
}
