// Trimming against the slow trim.
// Numbers: the alignments of text, set and result. Fields: the set; the text.
#include "check.h"
#include "input.h"
#include "support/api.h"
#include "support/reference_trim.h"

using namespace ulk_fuzz;
using ulk_test::Api;

namespace {

template <class Unit>
void run(Input input) {
  const size_t textShift = input.numberTo(31);
  const size_t setShift = input.numberTo(31);
  const size_t resultShift = input.numberTo(31);
  const auto set = unitsOf<Unit>(input.field());
  const auto text = unitsOf<Unit>(input.rest());
  const Block<Unit> textBlock(text, textShift);
  const Block<Unit> setBlock(set, setShift);

  const auto expectTrimmed = [&](const std::vector<Unit>& expected, auto trim) {
    const Block<Unit> result(text.size(), resultShift);
    int32_t length = -77;
    ULK_CHECK(trim(result.get(), &length) == ulkOk);
    ULK_CHECK(length == lengthOf(expected));
    ULK_CHECK(result.holds(expected));
  };
  const auto expectTrimmedBySet = [&](bool start, bool end, auto trim) {
    expectTrimmed(ulk_test::referenceTrim(text, set, start, end), [&](Unit* result, int32_t* length) {
      return trim(textBlock.get(), lengthOf(text), setBlock.get(), lengthOf(set), result, length);
    });
  };
  expectTrimmedBySet(true, true, Api<Unit>::trimCAny);
  expectTrimmedBySet(true, false, Api<Unit>::trimStartCAny);
  expectTrimmedBySet(false, true, Api<Unit>::trimEndCAny);

  const Unit unit = set.empty() ? Unit{0} : set[0];
  const auto expected = ulk_test::referenceTrim(text, {unit}, true, true);
  expectTrimmed(expected, [&](Unit* result, int32_t* length) {
    return Api<Unit>::trimC(textBlock.get(), lengthOf(text), unit, result, length);
  });
  int32_t length = lengthOf(text);
  ULK_CHECK(Api<Unit>::trimCInPlace(textBlock.get(), &length, unit) == ulkOk);
  ULK_CHECK(length == lengthOf(expected));
  ULK_CHECK(textBlock.holds(expected, text));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  run<uint8_t>(Input(data, size));
  run<uint16_t>(Input(data, size));
  return 0;
}
