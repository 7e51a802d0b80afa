// Trimming with runs and kept parts of every length that is handled in another way, sets of every size that
// is, between guards and at odd addresses.
#include <gtest/gtest.h>

#include <vector>

#include "fuzz/trim.h"

namespace ulk_test {
namespace {

using ulk_fuzz::checkTrim;
using ulk_fuzz::kAtEnd;

template <class Unit>
class Trim : public testing::Test {
 protected:
  // What is removed in most tests, and one that shares a byte with it.
  static constexpr Unit kUnit = static_cast<Unit>(0x8181);
  static constexpr Unit kOther = static_cast<Unit>(sizeof(Unit) == 1 ? 0x01 : 0x8180);

  // A part between runs of `kUnit`, with the same unit inside.
  static std::vector<Unit> between(size_t left, size_t kept, size_t right) {
    std::vector<Unit> text(left + kept + right, kUnit);
    for (size_t i = 0; i < kept; i += i + 2 < kept && i % 5 == 2 ? 2 : 1) text[left + i] = kOther;
    if (kept > 0) text[left + kept - 1] = static_cast<Unit>(kOther + kept);
    return text;
  }
};

using Widths = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(Trim, Widths);

// Runs that single looks, short blocks, blocks and groups of blocks come to the end of.
constexpr size_t kRuns[] = {0,  1,  2,  3,  4,  5,  6,  8,  11, 12, 13,  15,
                            16, 17, 19, 20, 21, 28, 33, 36, 52, 68, 100, 150};

TYPED_TEST(Trim, RemovesRunsOfEveryLength) {
  for (const size_t left : kRuns) {
    for (const size_t right : kRuns) {
      for (const size_t kept : std::initializer_list<size_t>{0, 1, 2, 7, 20, 70}) {
        const auto text = this->between(left, kept, right);
        const size_t shift = (left + 2 * right + kept) % (kAtEnd + 1);
        checkTrim(text, {this->kUnit}, {kAtEnd, kAtEnd, shift});
        checkTrim(text, {this->kUnit}, {0, 0, kAtEnd});
        checkTrim(text, {this->kUnit, 1, 2, 3, 4}, {shift, shift, 0});
        ASSERT_FALSE(this->HasFailure())
            << left << " units before, " << kept << " kept, " << right << " after";
      }
    }
  }
}

// Where nothing is kept, or all, at every address.
TYPED_TEST(Trim, ReadsNothingBesideTheText) {
  for (size_t length = 0; length <= 150; ++length) {
    for (const size_t kept : {size_t{0}, length}) {
      const auto text = this->between(length - kept, kept, 0);
      for (const size_t setLength : std::initializer_list<size_t>{0, 1, 3, 4, 7, 12, 20, 40}) {
        const std::vector<TypeParam> set(setLength, this->kUnit);
        for (const size_t shift : {size_t{0}, length % kAtEnd, kAtEnd})
          checkTrim(text, set, {shift, shift, kAtEnd});
      }
    }
    ASSERT_FALSE(this->HasFailure()) << "length " << length;
  }
}

// Kept parts that are copied in different ways, moved by less and by more than what is copied at once.
TYPED_TEST(Trim, CopiesAndMovesPartsOfEveryLength) {
  for (const size_t kept :
       std::initializer_list<size_t>{3,  4,   8,   9,   15,  16,  17,  31,  32,  33,  63,  64, 65,
                                     96, 128, 129, 200, 255, 256, 257, 300, 511, 512, 513, 900}) {
    for (size_t run = 1; run <= 140; run += run < 70 ? 1 : 13) {
      std::vector<TypeParam> text(run, this->kUnit);
      for (size_t i = 0; i < kept; ++i) text.push_back(static_cast<TypeParam>(i * 0x0305 + 1));
      text.back() = this->kOther;
      text.push_back(this->kUnit);
      checkTrim(text, {this->kUnit}, {run % (kAtEnd + 1), 0, kept * 7 % (kAtEnd + 1)});
      ASSERT_FALSE(this->HasFailure()) << kept << " units, moved by " << run;
    }
  }
}

// Sets around each number of members at which the method changes, or might: runs made of every member, in
// turn.
TYPED_TEST(Trim, KnowsSetsOfEverySize) {
  for (const size_t setLength :
       std::initializer_list<size_t>{1,  2,  3,  4,  5,  6,  7,  8,  9,  12, 13,  15,  16,  17,  24,  31,
                                     32, 33, 47, 48, 50, 51, 56, 57, 64, 99, 131, 132, 135, 136, 200, 255}) {
    std::vector<TypeParam> set;
    // Zero and units with the high bit are members like any other. No 8-bit unit comes twice.
    for (size_t i = 0; i < setLength; ++i) set.push_back(static_cast<TypeParam>(i * 0x0401));
    const TypeParam other = static_cast<TypeParam>(sizeof(TypeParam) == 1 ? 0xFF : 0x0400);
    for (const size_t left : std::initializer_list<size_t>{0, 1, 3, 4, 5, 12, 13, 20, 80, 300}) {
      for (const size_t right : std::initializer_list<size_t>{0, 2, 5, 14, 33, 290}) {
        for (const size_t kept : std::initializer_list<size_t>{0, 1, 40}) {
          std::vector<TypeParam> text(left + kept + right);
          for (size_t i = 0; i < text.size(); ++i) text[i] = set[(i * 7 + left) % setLength];
          if (kept > 0) text[left] = text[left + kept - 1] = other;
          checkTrim(text, set, {kAtEnd, setLength % 2 == 0 ? kAtEnd : 1, left % 7});
          ASSERT_FALSE(this->HasFailure()) << setLength << " members, " << left << " units before, " << kept
                                           << " kept, " << right << " after";
        }
      }
    }
  }
}

TYPED_TEST(Trim, TellsMembersFromAllOtherUnits) {
  for (const size_t setLength : std::initializer_list<size_t>{1, 2, 3, 4, 6, 12, 16, 30, 33, 60, 140}) {
    std::vector<TypeParam> set(setLength);
    for (size_t i = 0; i < setLength; ++i) set[i] = static_cast<TypeParam>(0x0103 + i * 0x1957);
    for (uint32_t unit = 0; unit <= static_cast<TypeParam>(-1); unit += sizeof(TypeParam) == 1 ? 1 : 5) {
      const std::vector<TypeParam> text(unit % 3 == 0 ? 40 : 3, static_cast<TypeParam>(unit));
      std::vector<TypeParam> to(text.size());
      int32_t length = -77;
      Api<TypeParam>::trimCAny(text.data(), ulk_fuzz::lengthOf(text), set.data(), ulk_fuzz::lengthOf(set),
                               to.data(), &length);
      ASSERT_EQ(length, ulk_fuzz::lengthOf(referenceTrim(text, set, true, true)))
          << "unit " << unit << ", " << setLength << " members";
    }
  }
}

}  // namespace
}  // namespace ulk_test
