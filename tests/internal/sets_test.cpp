// Pattern sets from inside: their allocation, and which thread searches which slot. To see the thread, each
// slot's find records stand on a page that cannot be touched: the first write to it is caught, and the
// handler notes where it was and lets the page be written. (Windows has no such handler, so only the
// allocation is tested there.)
#include <gtest/gtest.h>

#include "support/test_core.h"
#include "ulkch.h"

#if defined(_OPENMP) && !defined(_WIN32)
#include <omp.h>
#include <pthread.h>
#include <signal.h>
#include <sys/mman.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "support/compiled.h"
#include "support/guarded.h"
#endif

namespace ulk {
namespace {

// ---- allocation

int32_t sizeOf(uint32_t slots) {
  int32_t size = 0;
  EXPECT_EQ(ulksRegExpMultiGetSize(slots, &size), ulkOk);
  return size;
}

TEST(SetAllocation, AsksForTheSizeAndReleasesIt) {
  const int32_t before = testcore::liveBlocks();
  ulkRegExpMultiState* set = nullptr;
  ASSERT_EQ(ulksRegExpMultiInitAlloc(&set, 100), ulkOk);
  EXPECT_EQ(testcore::lastSize(), sizeOf(100));
  EXPECT_EQ(testcore::liveBlocks(), before + 1);
  ulksRegExpMultiFree(set);
  EXPECT_EQ(testcore::liveBlocks(), before);
}

TEST(SetAllocation, Fails) {
  const auto slotSize = static_cast<uint32_t>(sizeOf(2) - sizeOf(1));
  const uint32_t mostSlots = (INT32_MAX - (static_cast<uint32_t>(sizeOf(1)) - slotSize)) / slotSize;
  const auto refused = [](uint32_t slots) {
    auto* set = reinterpret_cast<ulkRegExpMultiState*>(&slots);
    testcore::failNextAllocation();
    return ulksRegExpMultiInitAlloc(&set, slots) == ulkErrNullPtr && !set;
  };
  // The largest set is asked for; a size that is no 32-bit number is not.
  EXPECT_TRUE(refused(mostSlots));
  EXPECT_EQ(testcore::lastSize(), sizeOf(mostSlots));
  EXPECT_TRUE(refused(3));
  for (const uint32_t slots :
       {mostSlots + 1, 0x1FFFFFFFu, 0x20000001u, 0x40000000u, 0x55555556u, 0xFFFFFFFFu}) {
    EXPECT_TRUE(refused(slots)) << slots;
    EXPECT_EQ(testcore::lastSize(), sizeOf(3)) << slots;
  }
  // Uses up the failure that is still asked for.
  EXPECT_TRUE(refused(1));
}

#if defined(_OPENMP) && !defined(_WIN32)

// ---- threads

// How a slot was searched, seen at its first find record.
struct Visit {
  int order = -1;
  int thread = -1;
  int teamSize = -1;
  pthread_t self = {};
  ulkRegExpMultiFind result = {};
};

// A set with every fourth slot free, and the pages that watch its searches.
class WatchedSet {
 public:
  explicit WatchedSet(uint32_t numSlots) : results_(numSlots, {7, 7, 1, 7, nullptr}), visits_(numSlots) {
    EXPECT_EQ(ulksRegExpMultiInitAlloc(&set_, numSlots), ulkOk);
    for (uint32_t i = 0; i < numSlots; ++i) {
      expressions_.push_back(ulk_test::compiled("a"));
      pages_.push_back(std::make_unique<ulk_test::GuardedPages>(1));
      results_[i].pFind = reinterpret_cast<ulkRegExpFind*>(pages_[i]->begin());
      EXPECT_EQ(ulksRegExpMultiAdd(expressions_[i].get(), i + 1, set_), ulkOk);
    }
    for (uint32_t i = 2; i < numSlots; i += 4) EXPECT_EQ(ulksRegExpMultiDelete(i + 1, set_), ulkOk);
  }
  ~WatchedSet() { ulksRegExpMultiFree(set_); }
  WatchedSet(const WatchedSet&) = delete;
  WatchedSet& operator=(const WatchedSet&) = delete;

  size_t numSlots() const { return visits_.size(); }
  static bool isFree(size_t slot) { return slot % 4 == 2; }
  const Visit& visit(size_t slot) const { return visits_[slot]; }
  const ulkRegExpMultiFind& result(size_t slot) const { return results_[slot]; }

  ulkStatus find() {
    for (const auto& page : pages_) mprotect(page->begin(), 1, PROT_NONE);
    return ulksRegExpMultiFind_8u(reinterpret_cast<const uint8_t*>(text_.data()),
                                  static_cast<int32_t>(text_.size()), results_.data(), set_);
  }

  // In the handler: whether the address is in the first record of one of the pages.
  bool note(const void* address, int order) {
    for (size_t i = 0; i < pages_.size(); ++i) {
      const auto offset =
          reinterpret_cast<uintptr_t>(address) - reinterpret_cast<uintptr_t>(pages_[i]->begin());
      if (offset >= sizeof(ulkRegExpFind)) continue;
      visits_[i] = {order, omp_get_thread_num(), omp_get_num_threads(), pthread_self(), results_[i]};
      return mprotect(pages_[i]->begin(), 1, PROT_READ | PROT_WRITE) == 0;
    }
    return false;
  }

 private:
  const std::string text_ = "xa" + std::string(1 << 16, 'x');  // a team is worth its while
  ulkRegExpMultiState* set_ = nullptr;
  std::vector<ulk_test::CompiledExpression> expressions_;
  std::vector<std::unique_ptr<ulk_test::GuardedPages>> pages_;
  std::vector<ulkRegExpMultiFind> results_;
  std::vector<Visit> visits_;
};

std::vector<WatchedSet*> watched;
std::atomic<int> numVisits = 0;

void onFault(int, siginfo_t* fault, void*) {
  for (WatchedSet* set : watched) {
    if (set->note(fault->si_addr, numVisits++)) return;
  }
  signal(SIGSEGV, SIG_DFL);
}

// Catches faults as long as it lives.
class Watch {
 public:
  explicit Watch(std::vector<WatchedSet*> sets) {
    watched = std::move(sets);
    struct sigaction action = {};
    action.sa_sigaction = onFault;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGSEGV, &action, &before_);
  }
  ~Watch() { sigaction(SIGSEGV, &before_, nullptr); }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

 private:
  struct sigaction before_ = {};
};

// Each slot has been searched by the thread of its block, in the order of the slots within the block; its
// record was cleared before.
void expectSearchedBy(const WatchedSet& set, size_t teamSize, pthread_t caller) {
  const size_t chunk = set.numSlots() / teamSize;
  std::vector<int> lastOrder(teamSize, -1);
  for (size_t i = 0; i < set.numSlots(); ++i) {
    SCOPED_TRACE("slot " + std::to_string(i));
    const Visit& visit = set.visit(i);
    if (WatchedSet::isFree(i)) {
      ASSERT_EQ(visit.order, -1);
      ASSERT_TRUE(set.result(i).searched == 7 && set.result(i).id == 7 && set.result(i).status == 7);
      continue;
    }
    const size_t thread = chunk == 0 ? 0 : std::min(i / chunk, teamSize - 1);
    ASSERT_EQ(visit.thread, static_cast<int>(thread));
    ASSERT_EQ(visit.teamSize, static_cast<int>(teamSize));
    ASSERT_EQ(pthread_equal(visit.self, caller) != 0, thread == 0);
    ASSERT_GT(visit.order, lastOrder[thread]);
    lastOrder[thread] = visit.order;
    ASSERT_TRUE(visit.result.searched == 0 && visit.result.id == 0 && visit.result.status == 0);
    ASSERT_TRUE(set.result(i).searched == 1 && set.result(i).id == i + 1 && set.result(i).status == ulkOk);
  }
}

TEST(SetThreads, SearchTheirBlocks) {
  for (const uint32_t numThreads : {1u, 2u, 4u, 7u}) {
    testcore::setNumThreads(static_cast<int32_t>(numThreads));
    for (const uint32_t numSlots : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 13u, 14u, 15u, 29u}) {
      SCOPED_TRACE(std::to_string(numSlots) + " slots, " + std::to_string(numThreads) + " threads");
      WatchedSet set(numSlots);
      const Watch watch({&set});
      ASSERT_EQ(set.find(), ulkOk);
      expectSearchedBy(set, numSlots <= numThreads ? 1 : numThreads, pthread_self());
      if (HasFatalFailure()) return;
    }
  }
}

// The first answer tells whether there is a team, the second one how large it is.
TEST(SetThreads, AreAskedForTwice) {
  const struct {
    int32_t first, second;
    size_t teamSize;
  } cases[] = {{9, 3, 3}, {2, 5, 5}, {10, 3, 1}, {1, 1, 1}};
  for (const auto& c : cases) {
    WatchedSet set(10);
    const Watch watch({&set});
    testcore::setNumThreads(c.first, c.second);
    ASSERT_EQ(set.find(), ulkOk);
    expectSearchedBy(set, c.teamSize, pthread_self());
  }
}

// There is no team inside a team: each call searches its whole set by itself.
TEST(SetThreads, OfATeamSearchAlone) {
  WatchedSet sets[] = {WatchedSet(10), WatchedSet(11)};
  const Watch watch({&sets[0], &sets[1]});
  testcore::setNumThreads(4);
  pthread_t callers[2];
#pragma omp parallel num_threads(2)
  {
    const int thread = omp_get_thread_num();
    callers[thread] = pthread_self();
    sets[thread].find();
  }
  for (const size_t i : {size_t{0}, size_t{1}}) expectSearchedBy(sets[i], 1, callers[i]);
}

#endif

}  // namespace
}  // namespace ulk
