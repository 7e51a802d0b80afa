// A core library for the tests, in place of ulkcore: it counts what is allocated, can fail, and grants as
// many threads as a test asks for.
#pragma once

#include <cstdint>

namespace ulk::testcore {

// The next allocation returns null, and none after it.
void failNextAllocation();

// Blocks that have been allocated and not yet released.
int32_t liveBlocks();

// The size that the last allocation asked for.
int32_t lastSize();

// What ownGetNumThreads reports from now on.
void setNumThreads(int32_t count);

// What it reports when it is asked next, and after that.
void setNumThreads(int32_t next, int32_t after);

}  // namespace ulk::testcore
