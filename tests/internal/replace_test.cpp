// The layout of a prepared template: words of 32 bits, as 32-bit programs have them.
#include <cstdint>
#if UINTPTR_MAX == UINT32_MAX
#include <gtest/gtest.h>

#include <cstring>

#include "regexp/program.h"
#include "ulkch.h"

namespace ulk {
namespace {

constexpr uint32_t kUntouched = 0xEEEEEEEE;

uint32_t addressOf(const void* pointer) {
  return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(pointer));
}

TEST(ReplaceState, Layout) {
  uint32_t words[40];
  std::memset(words, 0xEE, sizeof words);
  auto* const state = reinterpret_cast<ulkRegExpReplaceState*>(words);
  const char text[] = "ab\\c$12$&\\de";
  ASSERT_EQ(ulksRegExpReplaceInit(text, state), ulkOk);
  const uint32_t expected[] = {
      kUntouched, 5,  addressOf(words + 3),               // reserved, number and address of the items
      RX_STRING,  2,  addressOf(text),                    // "ab"
      RX_STRING,  1,  addressOf(text + 3),                // "c"
      RX_BACKREF, 13, kUntouched,                         // "$12"
      RX_BACKREF, 0,  kUntouched,                         // "$&"
      RX_STRING,  2,  addressOf(text + 10), kUntouched};  // "de"
  for (size_t i = 0; i < std::size(expected); ++i) EXPECT_EQ(words[i], expected[i]) << "word " << i;

  // A refused template leaves the number of items as it was.
  EXPECT_EQ(ulksRegExpReplaceInit("xyz$", state), ulkErrRegExpBackRef);
  EXPECT_EQ(words[1], 5u);

  EXPECT_EQ(ulksRegExpReplaceInit(nullptr, state), ulkOk);
  EXPECT_EQ(words[0], kUntouched);
  EXPECT_EQ(words[1], 0u);
  EXPECT_EQ(words[2], 0u);
  EXPECT_EQ(ulksRegExpReplaceInit("", state), ulkOk);
  EXPECT_EQ(words[1], 0u);
  EXPECT_EQ(words[2], addressOf(words + 3));
}

}  // namespace
}  // namespace ulk
#endif
