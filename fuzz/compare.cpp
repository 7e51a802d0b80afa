// Comparison against a loop over the units.
// Numbers: the alignments of both strings, then where the second one differs from the first.
// Fields: what stands there; the first string.
#include "check.h"
#include "input.h"
#include "support/reference_case.h"
#include "ulkch.h"

using namespace ulk_fuzz;

namespace {

template <class Unit>
int32_t firstDifference(const std::vector<Unit>& left, const std::vector<Unit>& right) {
  const auto [l, r] = std::mismatch(left.begin(), left.end(), right.begin());
  return l == left.end() ? 0 : int32_t{*l} - int32_t{*r};
}

template <class Unit, class Fold>
std::vector<Unit> folded(std::vector<Unit> units, Fold fold) {
  std::transform(units.begin(), units.end(), units.begin(), fold);
  return units;
}

template <class Unit>
struct Pair {
  std::vector<Unit> left;
  std::vector<Unit> right;
  Block<Unit> leftBlock;
  Block<Unit> rightBlock;

  template <class Compare>
  int32_t by(Compare compare) const {
    int32_t result = -77777777;
    ULK_CHECK(compare(leftBlock.get(), rightBlock.get(), lengthOf(left), &result) == ulkOk);
    return result;
  }
  template <class Fold>
  int32_t expected(Fold fold) const {
    return firstDifference(folded(left, fold), folded(right, fold));
  }
};

template <class Unit>
Pair<Unit> pairOf(Input input) {
  const size_t leftShift = input.numberTo(31);
  const size_t rightShift = input.numberTo(31);
  const size_t where = input.numberTo(4000);
  const auto other = unitsOf<Unit>(input.field());
  const auto left = unitsOf<Unit>(input.rest());
  auto right = left;
  for (size_t i = 0; i < other.size() && where + i < right.size(); ++i) right[where + i] = other[i];
  return {left, right, Block<Unit>(left, leftShift), Block<Unit>(right, rightShift)};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto bytes = pairOf<uint8_t>(Input(data, size));
  ULK_CHECK(bytes.by(ulksCompare_8u) == firstDifference(bytes.left, bytes.right));
  ULK_CHECK(bytes.by(ulksEqual_8u) == (bytes.left == bytes.right));
  ULK_CHECK(bytes.by(ulksCompareIgnoreCaseLatin_8u) == bytes.expected(ulk_test::latinLower<uint8_t>));

  const auto units = pairOf<uint16_t>(Input(data, size));
  ULK_CHECK(units.by(ulksCompare_16u) == firstDifference(units.left, units.right));
  ULK_CHECK(units.by(ulksEqual_16u) == (units.left == units.right));
  ULK_CHECK(units.by(ulksCompareIgnoreCaseLatin_16u) == units.expected(ulk_test::latinLower<uint16_t>));
  ULK_CHECK(units.by(ulksCompareIgnoreCase_16u) == units.expected(ulk_test::fullLower));
  return 0;
}
