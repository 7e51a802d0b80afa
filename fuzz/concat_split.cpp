// Concatenation and splitting.
// Numbers: the alignments of sources and results, the delimiter, the number of buffers to split into, the
// room of each; -1 is refused, and less means that there is no buffer. Field: the text, whose parts between
// the delimiters are the list of strings to join.
#include "concat_split.h"

#include "input.h"

using namespace ulk_fuzz;

namespace {

template <class Unit>
void run(Input input) {
  const size_t sourceShift = input.numberTo(kAtEnd);
  const size_t resultShift = input.numberTo(kAtEnd);
  const auto delimiter = static_cast<Unit>(input.number());
  const ConcatSplit<Unit> both = {delimiter, {sourceShift, 0, resultShift}};
  std::vector<int32_t> rooms(1 + input.numberTo(19));
  for (int32_t& room : rooms) {
    room = input.number();
    room = room < -1 ? ulk_test::kNull : room % 2000;
  }
  const auto text = unitsOf<Unit>(input.rest());
  both.checkSplit(text, rooms);
  auto parts = ulk_test::partsOf(text, delimiter);
  if (parts.empty()) parts.emplace_back();
  both.checkJoin(parts);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  run<uint8_t>(Input(data, size));
  run<uint16_t>(Input(data, size));
  return 0;
}
