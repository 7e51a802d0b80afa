// Pattern sets as a program sees them: slots and ids against a plain list, and searches, which must find what
// the expressions find one by one. (The internal test of the same name looks at the threads.)
#include <gtest/gtest.h>

#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "fuzz/sets.h"
#include "support/compiled.h"
#include "support/refused.h"
#include "ulkch.h"

namespace ulk_test {
namespace {

using Expression = ulk_fuzz::CompiledExpression;

constexpr int32_t kRecords = 6;

std::unique_ptr<Expression> expressionOf(const std::string& pattern, const std::string& options) {
  return std::make_unique<Expression>(pattern, options, ulk_fuzz::Memory::kCallers);
}

const uint8_t* textOf(const std::string& text) { return reinterpret_cast<const uint8_t*>(text.c_str()); }

// A set in memory of its own.
class Set {
 public:
  explicit Set(uint32_t slots) : block_(sizeOf(slots), ulk_fuzz::kAligned), model(get(), slots) {
    EXPECT_EQ(ulksRegExpMultiInit(get(), slots), ulkOk);
  }
  static size_t sizeOf(uint32_t slots) {
    int32_t size = 0;
    EXPECT_EQ(ulksRegExpMultiGetSize(slots, &size), ulkOk);
    return static_cast<size_t>(size);
  }
  ulkRegExpMultiState* get() { return reinterpret_cast<ulkRegExpMultiState*>(block_.get()); }
  std::vector<char> bytes() const { return block_.units(); }

 private:
  ulk_fuzz::Block<char> block_;

 public:
  ulk_fuzz::ModelledSet model;
};

// ---- making sets

TEST(Sets, Sizes) {
  const size_t one = Set::sizeOf(1);
  const size_t slot = Set::sizeOf(2) - one;
  if (sizeof(void*) == 4) {
    EXPECT_EQ(one, 20u);
    EXPECT_EQ(slot, 8u);
  }
  EXPECT_EQ(Set::sizeOf(1000), one + 999 * slot);
  // The sum is taken in 32 bits.
  for (const uint32_t slots : {0x20000000u, 0x40000001u, 0xFFFFFFFFu})
    EXPECT_EQ(static_cast<uint32_t>(Set::sizeOf(slots)), static_cast<uint32_t>(one + (slots - 1) * slot));

  int32_t size = -7;
  for (const uint32_t slots : {0u, 3u}) EXPECT_EQ(ulksRegExpMultiGetSize(slots, nullptr), ulkErrNullPtr);
  EXPECT_EQ(ulksRegExpMultiGetSize(0, &size), ulkErrSize);
  EXPECT_EQ(size, -7);
}

TEST(Sets, InitChecksItsArguments) {
  EXPECT_EQ(ulksRegExpMultiInit(nullptr, 0), ulkErrNullPtr);
  Set set(2);
  const std::vector<char> before = set.bytes();
  EXPECT_EQ(ulksRegExpMultiInit(set.get(), 0), ulkErrSize);
  EXPECT_EQ(set.bytes(), before);

  EXPECT_EQ(ulksRegExpMultiInitAlloc(nullptr, 0), ulkErrNullPtr);
  ulkRegExpMultiState* allocated = set.get();
  EXPECT_EQ(ulksRegExpMultiInitAlloc(&allocated, 0), ulkErrSize);
  EXPECT_EQ(allocated, set.get());
  EXPECT_EQ(ulksRegExpMultiInitAlloc(&allocated, 0xFFFFFFFF), ulkErrNullPtr);
  EXPECT_EQ(allocated, nullptr);
  ulksRegExpMultiFree(nullptr);
}

// ---- slots and ids

TEST(Sets, ChecksItsArgumentsBeforeItLooksAtTheSlots) {
  const CompiledExpression expression = compiled("a");
  Set set(2);
  ASSERT_EQ(ulksRegExpMultiAdd(expression.get(), 5, set.get()), ulkOk);
  for (const bool full : {false, true}) {
    if (full) {
      ASSERT_EQ(ulksRegExpMultiAdd(expression.get(), 6, set.get()), ulkOk);
    }
    const std::vector<char> before = set.bytes();
    for (const auto change : {ulksRegExpMultiAdd, ulksRegExpMultiModify}) {
      for (const uint32_t id : {0u, 5u}) expectNullRefused(change, expression.get(), id, set.get());
      EXPECT_EQ(change(expression.get(), 0, set.get()), ulkErrBadId);
    }
    EXPECT_EQ(ulksRegExpMultiModify(expression.get(), 9, set.get()), ulkErrIdNotFound);
    EXPECT_EQ(ulksRegExpMultiDelete(0, nullptr), ulkErrNullPtr);
    EXPECT_EQ(ulksRegExpMultiDelete(0, set.get()), ulkErrBadId);
    EXPECT_EQ(ulksRegExpMultiDelete(9, set.get()), ulkErrIdNotFound);
    EXPECT_EQ(set.bytes(), before);
  }
  EXPECT_EQ(ulksRegExpMultiAdd(expression.get(), 5, set.get()), ulkErrSetFull);
}

TEST(Sets, KeepTheirSlotsAsAListDoes) {
  const std::string letters = "abcdefghijklmnopqrstuvwxyz";
  const ulk_fuzz::SearchedText text(letters, 0);
  std::vector<std::unique_ptr<Expression>> expressions;
  for (const char letter : letters) expressions.push_back(expressionOf(std::string(1, letter), ""));
  // Among them is what the memory of a set holds before it is one.
  constexpr uint32_t kIds[] = {0, 1, 2, 3, 0x5A5A5A5A, 0x80000000, 0xFFFFFFFF};
  std::mt19937 random(62);
  for (const uint32_t numSlots : {1u, 2u, 3u, 4u, 5u, 7u, 8u, 9u, 19u}) {
    Set set(numSlots);
    for (size_t step = 0; step < 300; ++step) {
      const uint32_t id = kIds[random() % 7];
      Expression& expression = *expressions[random() % (numSlots + 3)];
      const auto operation = random() % 5;
      if (operation == 0) set.model.remove(id);
      if (operation == 1) set.model.modify(expression, id);
      if (operation > 1) set.model.add(expression, id);
      if (step % 30 == 0) set.model.search(text, kRecords);
      ASSERT_FALSE(HasFailure()) << numSlots << " slots, step " << step;
    }
  }
}

// ---- searching

TEST(Sets, FindChecksItsArgumentsAndWritesNothingBefore) {
  const CompiledExpression expression = compiled("a");
  Set set(1);
  ASSERT_EQ(ulksRegExpMultiAdd(expression.get(), 5, set.get()), ulkOk);
  const uint8_t text[] = "a";
  ulkRegExpFind record = {text, -7};
  ulkRegExpMultiFind result = {-1, 2, 1, -3, &record};
  expectNullRefused(ulksRegExpMultiFind_8u, text, 0, &result, set.get());
  EXPECT_EQ(ulksRegExpMultiFind_8u(text, 0, &result, set.get()), ulkErrSize);
  EXPECT_EQ(ulksRegExpMultiFind_8u(text, INT32_MIN, &result, set.get()), ulkErrSize);
  EXPECT_TRUE(result.searched == -1 && result.id == 2 && result.numFind == 1 && result.status == -3);
  EXPECT_TRUE(result.pFind == &record && record.pFound == text && record.lenFound == -7);
}

TEST(Sets, ReportsWhatEachFindReturns) {
  const std::string text = "xab";
  const struct {
    const char* pattern;
    bool hasRecords;
    int32_t numFind;
    ulkStatus status;
    int32_t numFound;
  } cases[] = {
      {"a(b)", true, 5, ulkOk, 2},
      {"b", false, 3, ulkErrNullPtr, 3},
      {"a", true, 0, ulkErrSize, 0},
      {"q", true, 3, ulkOk, 0},
      {"[b](c)?", true, 9, ulkErrMatchLimit, 2},
      {"a", true, 1, ulkErrInvalidState, 1},
      {"(a)(b)", true, 1, ulkOk, 1},
  };
  constexpr size_t kCases = std::size(cases);
  Set set(kCases + 1);
  std::vector<CompiledExpression> expressions;
  std::vector<ulkRegExpMultiFind> results;
  ulkRegExpFind records[kCases][5];
  for (size_t i = 0; i < kCases; ++i) {
    expressions.push_back(compiled(cases[i].pattern));
    ulkRegExpState* const state = expressions.back().get();
    if (cases[i].status == ulkErrMatchLimit) ulksRegExpSetMatchLimit(1, state);
    if (cases[i].status == ulkErrInvalidState) *reinterpret_cast<uint8_t*>(state) ^= 1;
    ASSERT_EQ(ulksRegExpMultiAdd(state, static_cast<uint32_t>(i + 50), set.get()), ulkOk);
    results.push_back({-1, 0, cases[i].numFind, -1, cases[i].hasRecords ? records[i] : nullptr});
  }
  results.push_back({-1, 2, -3, -4, nullptr});
  EXPECT_EQ(ulksRegExpMultiFind_8u(textOf(text), 3, results.data(), set.get()), ulkOk);
  for (size_t i = 0; i < kCases; ++i) {
    SCOPED_TRACE("slot " + std::to_string(i));
    EXPECT_EQ(results[i].searched, 1);
    EXPECT_EQ(results[i].id, i + 50);
    EXPECT_EQ(results[i].status, cases[i].status);
    EXPECT_EQ(results[i].numFind, cases[i].numFound);
    EXPECT_EQ(results[i].pFind, cases[i].hasRecords ? records[i] : nullptr);
  }
  const ulkRegExpMultiFind& unused = results[kCases];
  EXPECT_TRUE(unused.searched == -1 && unused.id == 2 && unused.numFind == -3 && unused.status == -4);
}

// Where a literal stands but not what must follow it, an attempt takes more steps than elsewhere.
TEST(Sets, GiveUpAtTheLimitsAtWhichASearchAloneDoes) {
  constexpr uint32_t kSlots = 20;
  const std::string text = "some words, abcdx and abcde, abcd 1\n";
  for (const char* pattern : {"abcd\\daaaa", "\\d{}abcd\\d", "abcd[12]efgh", "abc(?:de,x|d z)"}) {
    for (int32_t limit = 0; limit < 160; ++limit) {
      Set set(kSlots);
      std::vector<CompiledExpression> expressions;
      std::vector<ulkRegExpMultiFind> results(kSlots);
      ulkRegExpFind record;
      for (uint32_t i = 0; i < kSlots; ++i) {
        expressions.push_back(compiled(i == 0 ? pattern : "zzqq" + std::to_string(i)));
        if (i == 0) ulksRegExpSetMatchLimit(limit, expressions[i].get());
        ASSERT_EQ(ulksRegExpMultiAdd(expressions[i].get(), i + 1, set.get()), ulkOk);
        results[i] = {0, 0, 1, 0, &record};
      }
      const auto length = static_cast<int32_t>(text.size());
      EXPECT_EQ(ulksRegExpMultiFind_8u(textOf(text), length, results.data(), set.get()), ulkOk);
      int32_t found = 1;
      EXPECT_EQ(results[0].status,
                ulksRegExpFind_8u(textOf(text), length, expressions[0].get(), &record, &found))
          << pattern << " at " << limit;
    }
  }
}

// A set of more expressions than a machine has processors, some slots free, over random texts.
void searchALargeSet(unsigned seed) {
  constexpr uint32_t kSlots = 137;
  std::mt19937 random(seed);
  std::vector<std::unique_ptr<Expression>> expressions;
  Set set(kSlots);
  for (uint32_t i = 0; i < kSlots; ++i) {
    const std::string a(1, static_cast<char>('a' + i % 8)), b(1, static_cast<char>('a' + i / 8 % 8));
    const std::string patterns[] = {a + b, "(" + a + "+)(" + b + ")?", "[" + a + b + "]{3}",
                                    a + ".*?" + b + "$"};
    expressions.push_back(expressionOf(patterns[i % 4], i % 3 ? "" : "g"));
    set.model.add(*expressions.back(), i + 1);
  }
  for (uint32_t i = seed % 5; i < kSlots; i += 5) set.model.remove(i + 1);
  for (size_t round = 0; round < 20 && !testing::Test::HasFailure(); ++round) {
    std::string text;
    for (size_t i = random() % 700 + 1; i > 0; --i) text += static_cast<char>('a' + random() % 9);
    set.model.search({text, 0}, kRecords);
  }
}

TEST(Sets, OfMoreSlotsThanThreads) { searchALargeSet(1); }

TEST(Sets, SearchDifferentSetsAtTheSameTime) {
  std::thread first(searchALargeSet, 2);
  std::thread second(searchALargeSet, 3);
  searchALargeSet(4);
  first.join();
  second.join();
}

}  // namespace
}  // namespace ulk_test
