// UTF conversion against the slow one, in both directions and byte orders, into rooms of any size.
// Numbers: the alignments of source and result, the room.
// Field: the text, which is taken as UTF-8 and as UTF-16.
#include "check.h"
#include "input.h"
#include "support/reference_utf.h"
#include "ulkch.h"

using namespace ulk_fuzz;

namespace {

template <class From, class To, class Convert>
void expectConverted(const std::vector<From>& memory, int32_t length, int32_t room, bool bigEndian,
                     size_t sourceShift, size_t resultShift, Convert convert,
                     const ulk_test::Converted<To>& expected) {
  const Block<From> source(memory, sourceShift);
  const Block<To> result(expected.units.size(), resultShift);
  int32_t consumed = length;
  int32_t written = room;
  ULK_CHECK(convert(source.get(), &consumed, result.get(), &written, bigEndian ? 1 : 0) == ulkOk);
  ULK_CHECK(consumed == expected.consumed);
  ULK_CHECK(written == lengthOf(expected.units));
  ULK_CHECK(result.holds(expected.units));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const size_t sourceShift = input.numberTo(31);
  const size_t resultShift = input.numberTo(31);
  const auto roomShort = static_cast<int32_t>(input.numberTo(4000));
  const std::string text = input.rest();

  // A zero byte behind the source is what makes the conversion from UTF-8 safe.
  auto bytes = unitsOf<uint8_t>(text);
  const int32_t numBytes = lengthOf(bytes);
  bytes.push_back(0);
  const auto units = unitsOf<uint16_t>(text);
  for (const bool bigEndian : {false, true}) {
    for (const int32_t room : {numBytes, std::min(roomShort, numBytes)}) {
      expectConverted(bytes, numBytes, room, bigEndian, sourceShift, resultShift, ulksConvertUTF_8u16u,
                      ulk_test::referenceToUtf16(bytes, numBytes, room, bigEndian));
    }
    for (const int32_t room : {3 * lengthOf(units), roomShort}) {
      expectConverted(units, lengthOf(units), room, bigEndian, sourceShift, resultShift, ulksConvertUTF_16u8u,
                      ulk_test::referenceToUtf8(units, room, bigEndian));
    }
  }
  return 0;
}
