// The version record, the status codes and the release of states, as a caller sees them.
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>

#include "ulkch.h"

namespace {

TEST(Frame, VersionRecord) {
  const ulkLibraryVersion* version = ulkchGetLibVersion();
  ASSERT_NE(version, nullptr);
  EXPECT_EQ(version, ulkchGetLibVersion());
  EXPECT_EQ(version->major, 6);
  EXPECT_EQ(version->minor, 1);
  EXPECT_EQ(version->majorBuild, 137);
  EXPECT_EQ(version->build, 742);
  EXPECT_EQ(std::memcmp(version->targetCpu, "q4\0\0", 4), 0);
  EXPECT_STREQ(version->Name, "ulkchq4-6.1.dll");
  EXPECT_STREQ(version->Version, "6.1 build 137.20");
  EXPECT_STREQ(version->BuildDate, "Jun 10 2009");
  EXPECT_EQ(offsetof(ulkLibraryVersion, Name), 20u + (sizeof(void*) - 4));
}

// Programs have the numbers compiled in: a code keeps its value.
TEST(Frame, StatusCodes) {
  std::map<std::string, int32_t> codes;
#define ADD(name, value, meaning)               \
  EXPECT_EQ(static_cast<int32_t>(name), value); \
  EXPECT_STRNE(meaning, "");                    \
  EXPECT_TRUE(codes.emplace(#name, value).second);
  ULK_STATUS_LIST(ADD)
#undef ADD
  const std::map<std::string, int32_t> expected = {
      {"ulkOk", 0},
      {"ulkWrnSlotsExhausted", 26},
      {"ulkWrnPartTruncated", 27},
      {"ulkErrIdNotFound", -2},
      {"ulkErrBadId", -5},
      {"ulkErrSize", -6},
      {"ulkErrRegExpFormat", -7},
      {"ulkErrNullPtr", -8},
      {"ulkErrSetFull", -9},
      {"ulkErrLength", -119},
      {"ulkErrRegExpSyntax", -183},
      {"ulkErrRegExpClass", -184},
      {"ulkErrRegExpBackRef", -185},
      {"ulkErrRegExpGroup", -186},
      {"ulkErrRegExpQuantifier", -187},
      {"ulkErrMatchLimit", -188},
      {"ulkErrInvalidState", -189},
      {"ulkErrRegExpOptions", -190},
  };
  EXPECT_EQ(codes, expected);
}

// One operation under two names.
TEST(Frame, ReleasesStatesUnderBothNames) {
  for (int round = 0; round < 2; ++round) {
    ulkRegExpState* state = nullptr;
    int32_t errorOffset = 0;
    ASSERT_EQ(ulksRegExpInitAlloc("a", nullptr, &state, &errorOffset), ulkOk);
    if (round == 0) {
      ulksRegExpFree(state);
    } else {
      ulksRegExpMultiFree(reinterpret_cast<ulkRegExpMultiState*>(state));
    }
  }
  ulksRegExpFree(nullptr);
  ulksRegExpMultiFree(nullptr);
}

}  // namespace
