// UTF conversion in both directions, into rooms of any size.
// Numbers: the alignments of source and result, the room.
// Field: the text, which is taken as UTF-8 and as UTF-16.
#include "utf.h"

#include "input.h"

using namespace ulk_fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const size_t sourceShift = input.numberTo(kAtEnd);
  const size_t resultShift = input.numberTo(kAtEnd);
  const Shifts shifts = {sourceShift, 0, resultShift};
  const auto room = static_cast<int32_t>(input.numberTo(4000));
  const std::string text = input.rest();

  // A zero byte behind the source is what makes the conversion from UTF-8 safe.
  auto bytes = unitsOf<uint8_t>(text);
  const int32_t numBytes = lengthOf(bytes);
  bytes.push_back(0);
  checkToUtf16(bytes, numBytes, numBytes, shifts);
  checkToUtf16(bytes, numBytes, std::min(room, numBytes), shifts);
  const auto units = unitsOf<uint16_t>(text);
  checkToUtf8(units, 3 * lengthOf(units), shifts);
  checkToUtf8(units, room, shifts);
  return 0;
}
