// UTF conversion as the slow one does it, in both byte orders.
#pragma once

#include <algorithm>

#include "check.h"
#include "support/reference_utf.h"
#include "ulkch.h"

namespace ulk_fuzz {

template <class From, class To, class Convert>
void expectConverted(const Block<From>& source, int32_t length, int32_t room, bool bigEndian,
                     size_t resultShift, Convert convert, const ulk_test::Converted<To>& expected) {
  const Block<To> result(expected.units.size(), resultShift);
  int32_t consumed = length;
  int32_t written = room;
  ULK_CHECK(convert(source.get(), &consumed, result.get(), &written, bigEndian ? 1 : 0) == ulkOk);
  ULK_CHECK(consumed == expected.consumed);
  ULK_CHECK(written == lengthOf(expected.units));
  ULK_CHECK(result.holds(expected.units));
}

// Converts `length` bytes of `memory`, whose last byte is the last that can be read.
inline void checkToUtf16(const std::vector<uint8_t>& memory, int32_t length, int32_t room, Shifts shifts) {
  const Block<uint8_t> source(memory, shifts.text);
  std::vector<uint8_t> endless = memory;
  endless.resize(memory.size() + 8, 'x');
  for (const bool bigEndian : {false, true}) {
    const auto expected = ulk_test::referenceToUtf16(endless, length, room, bigEndian);
    ULK_CHECK(expected.consumed <= lengthOf(memory));
    expectConverted(source, length, room, bigEndian, shifts.result, ulksConvertUTF_8u16u, expected);
  }
}

// `native` is in the machine's byte order.
inline void checkToUtf8(const std::vector<uint16_t>& native, int32_t room, Shifts shifts) {
  std::vector<uint16_t> stored = native;
  for (const bool bigEndian : {false, true}) {
    const Block<uint16_t> source(stored, shifts.text);
    expectConverted(source, lengthOf(stored), room, bigEndian, shifts.result, ulksConvertUTF_16u8u,
                    ulk_test::referenceToUtf8(stored, room, bigEndian));
    std::transform(stored.begin(), stored.end(), stored.begin(), ulk_test::swapped);
  }
}

}  // namespace ulk_fuzz
