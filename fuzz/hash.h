// Hashing by the formulas.
#pragma once

#include "check.h"
#include "support/api.h"
#include "support/reference_hash.h"

namespace ulk_fuzz {

template <class Unit>
void checkHash(const std::vector<Unit>& units, size_t shift, const ulk_test::Hashes& expected) {
  const Block<Unit> block(units, shift);
  ulk_test::Hashes hashes = {77, 77, 77};
  ULK_CHECK(ulk_test::Api<Unit>::hash(block.get(), lengthOf(units), &hashes.hash) == ulkOk);
  ULK_CHECK(ulk_test::Api<Unit>::hashMSCS(block.get(), lengthOf(units), &hashes.hashMSCS) == ulkOk);
  ULK_CHECK(ulk_test::Api<Unit>::hashSJ2(block.get(), lengthOf(units), &hashes.hashSJ2) == ulkOk);
  ULK_CHECK(hashes == expected);
}

}  // namespace ulk_fuzz
