// Concatenation and splitting as slow ones do them.
#pragma once

#include <algorithm>

#include "check.h"
#include "support/api.h"
#include "support/reference_split.h"

namespace ulk_fuzz {

template <class Unit>
struct ConcatSplit {
  using Calls = ulk_test::Api<Unit>;

  Unit delimiter;
  Shifts shifts;

  void checkSplit(const std::vector<Unit>& text, const std::vector<int32_t>& rooms) const {
    const auto expected = ulk_test::referenceSplit(text, delimiter, rooms);
    const Block<Unit> source(text, shifts.text);
    std::vector<Block<Unit>> buffers;
    std::vector<Unit*> pointers;
    for (const int32_t room : rooms) {
      buffers.emplace_back(static_cast<size_t>(std::max(room, 0)), shiftOf(shifts.result, buffers.size()));
      pointers.push_back(room == ulk_test::kNull ? nullptr : buffers.back().get());
    }
    std::vector<int32_t> lengths = rooms;
    auto count = lengthOf(rooms);
    ULK_CHECK(Calls::splitC(source.get(), lengthOf(text), delimiter, pointers.data(), lengths.data(),
                            &count) == expected.status);
    ULK_CHECK(count == expected.count);
    ULK_CHECK(lengths == expected.lengths);
    for (size_t i = 0; i < buffers.size(); ++i) ULK_CHECK(buffers[i].holds(expected.written[i]));
  }

  void checkJoin(const ulk_test::Strings<Unit>& strings) const {
    std::vector<Block<Unit>> sources;
    std::vector<const Unit*> pointers;
    std::vector<int32_t> lengths;
    for (const auto& string : strings) {
      sources.emplace_back(string, shiftOf(shifts.text, sources.size()));
      pointers.push_back(sources.back().get());
      lengths.push_back(lengthOf(string));
    }
    expectJoined(pointers, lengths, strings, ulkOk);

    const auto two = ulk_test::joined<Unit>({strings.front(), strings.back()}, {});
    const Block<Unit> result(two.size(), shifts.result);
    ULK_CHECK(Calls::concat(pointers.front(), lengths.front(), pointers.back(), lengths.back(),
                            result.get()) == ulkOk);
    ULK_CHECK(result.holds(two));
  }

  // Joins the list in both ways: nothing but these strings is written.
  void expectJoined(const std::vector<const Unit*>& pointers, const std::vector<int32_t>& lengths,
                    const ulk_test::Strings<Unit>& written, ulkStatus status) const {
    const auto close = ulk_test::joined(written, {});
    const Block<Unit> closeResult(close.size(), shifts.result);
    ULK_CHECK(Calls::concatList(pointers.data(), lengths.data(), lengthOf(pointers), closeResult.get()) ==
              status);
    ULK_CHECK(closeResult.holds(close));

    const auto apart = ulk_test::joined(written, {delimiter});
    const Block<Unit> apartResult(apart.size(), shifts.result);
    ULK_CHECK(Calls::concatListC(pointers.data(), lengths.data(), lengthOf(pointers), delimiter,
                                 apartResult.get()) == status);
    ULK_CHECK(apartResult.holds(apart));
  }

 private:
  // The strings of a list stand at different addresses.
  static size_t shiftOf(size_t first, size_t i) { return (first + i % 3) % (kAtEnd + 1); }
};

}  // namespace ulk_fuzz
