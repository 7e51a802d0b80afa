// Two threads search a set each, each with a team of four. The argument tells whether the slots of a set have
// distinct expressions, as they must, or share one.
//
// Every set is searched once: the threads of a team are made by the first search and see what was written
// before it; what is handed to them later, ThreadSanitizer cannot see. For the same reason nothing is
// released.
#include <cstdio>
#include <cstring>
#include <thread>

#include "support/test_core.h"
#include "ulkch.h"

namespace {

constexpr uint32_t kSlots = 38;
constexpr int32_t kRecords = 8;

struct Search {
  ulkRegExpMultiState* set = nullptr;
  ulkRegExpMultiFind results[kSlots] = {};
  ulkRegExpFind records[kSlots][kRecords] = {};
};

const char sentence[] = "the quick brown fox jumps over the lazy dog, and over 12 more foxes; ";
constexpr int32_t kSentence = sizeof sentence - 1;
char text[2000 * kSentence];  // long enough for a team

void prepare(Search& search, bool shared) {
  const char* const patterns[] = {"(o)(x|v)",  "\\w+(?= dog)", "[^ ]*?e\\b", "(\\d)+|lazy",
                                  "(?i)FOX.*", "over \\d+",    "\\w+ dog"};
  ulksRegExpMultiInitAlloc(&search.set, kSlots);
  ulkRegExpState* expression = nullptr;
  int32_t errorOffset = 0;
  for (uint32_t i = 0; i < kSlots; ++i) {
    if (!shared || i == 0) ulksRegExpInitAlloc(patterns[i % 7], i % 2 ? "g" : "", &expression, &errorOffset);
    ulksRegExpSetMatchLimit(INT32_MAX, expression);
    ulksRegExpMultiAdd(expression, i + 1, search.set);
    search.results[i].numFind = kRecords;
    search.results[i].pFind = search.records[i];
  }
}

void run(Search& search) {
  ulksRegExpMultiFind_8u(reinterpret_cast<const uint8_t*>(text), sizeof text, search.results, search.set);
}

int numFoundAfterTeam(const Search& search) {
  int found = 0;
  for (const ulkRegExpMultiFind& result : search.results)
    found += result.searched == 1 && result.status == ulkOk && result.numFind > 0;
  return found;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const bool shared = std::strcmp(argv[1], "shared") == 0;
  ulk::testcore::setNumThreads(4);
  for (size_t i = 0; i < sizeof text; i += kSentence) std::memcpy(text + i, sentence, kSentence);
  static Search searches[2];
  for (Search& search : searches) prepare(search, shared);
  std::thread other([] { run(searches[0]); });
  run(searches[1]);
  other.join();
  const int found = numFoundAfterTeam(searches[0]) + numFoundAfterTeam(searches[1]);
  std::printf("%d of %u expressions found\n", found, 2 * kSlots);
  return found == 2 * kSlots ? 0 : 1;
}
