// Case conversion against the reference's letters.
// Numbers: the alignments of source and destination. Field: the text.
#include "check.h"
#include "input.h"
#include "support/reference_case.h"
#include "ulkch.h"

using namespace ulk_fuzz;

namespace {

template <class Unit>
class Text {
 public:
  explicit Text(Input input)
      : sourceShift_(input.numberTo(31)),
        resultShift_(input.numberTo(31)),
        units_(unitsOf<Unit>(input.rest())) {}

  template <class Convert, class ConvertInPlace>
  void expect(Convert convert, ConvertInPlace convertInPlace, Unit (*ofUnit)(Unit)) const {
    std::vector<Unit> expected = units_;
    std::transform(expected.begin(), expected.end(), expected.begin(), ofUnit);
    const Block<Unit> source(units_, sourceShift_);
    const Block<Unit> result(units_.size(), resultShift_);
    ULK_CHECK(convert(source.get(), result.get(), lengthOf(units_)) == ulkOk);
    ULK_CHECK(result.holds(expected));
    ULK_CHECK(source.holds(units_));
    ULK_CHECK(convertInPlace(source.get(), lengthOf(units_)) == ulkOk);
    ULK_CHECK(source.holds(expected));
  }

 private:
  size_t sourceShift_;
  size_t resultShift_;
  std::vector<Unit> units_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const Text<uint8_t> bytes(Input(data, size));
  bytes.expect(ulksLowercaseLatin_8u, ulksLowercaseLatin_8u_I, ulk_test::latinLower);
  bytes.expect(ulksUppercaseLatin_8u, ulksUppercaseLatin_8u_I, ulk_test::latinUpper);
  const Text<uint16_t> units(Input(data, size));
  units.expect(ulksLowercaseLatin_16u, ulksLowercaseLatin_16u_I, ulk_test::latinLower);
  units.expect(ulksUppercaseLatin_16u, ulksUppercaseLatin_16u_I, ulk_test::latinUpper);
  units.expect(ulksLowercase_16u, ulksLowercase_16u_I, ulk_test::fullLower);
  units.expect(ulksUppercase_16u, ulksUppercase_16u_I, ulk_test::fullUpper);
  return 0;
}
