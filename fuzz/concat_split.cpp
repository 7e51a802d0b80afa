// Concatenation and splitting against slow ones.
// Numbers: the alignments of sources and results, the delimiter, the number of buffers to split into, the
// room of each; -1 is refused, and less means that there is no buffer. Field: the text, whose parts between
// the delimiters are the list of strings to join.
#include "check.h"
#include "input.h"
#include "support/api.h"
#include "support/reference_split.h"

using namespace ulk_fuzz;
using ulk_test::Api;

namespace {

template <class Unit>
struct Shape {
  size_t sourceShift;
  size_t resultShift;
  Unit delimiter;
  std::vector<int32_t> rooms;
  std::vector<Unit> text;

  explicit Shape(Input input)
      : sourceShift(input.numberTo(31)),
        resultShift(input.numberTo(31)),
        delimiter(static_cast<Unit>(input.number())) {
    const size_t count = 1 + input.numberTo(19);
    for (size_t i = 0; i < count; ++i) {
      const int32_t room = input.number();
      rooms.push_back(room < -1 ? ulk_test::kNull : room % 2000);
    }
    text = unitsOf<Unit>(input.rest());
  }

  void split() const {
    auto expected = ulk_test::referenceSplit(text, delimiter, rooms);
    const Block<Unit> source(text, sourceShift);
    std::vector<Block<Unit>> buffers;
    std::vector<Unit*> pointers;
    for (const int32_t room : rooms) {
      buffers.emplace_back(static_cast<size_t>(std::max(room, 0)), resultShift + buffers.size() % 3);
      pointers.push_back(room == ulk_test::kNull ? nullptr : buffers.back().get());
    }
    std::vector<int32_t> lengths = rooms;
    auto count = static_cast<int32_t>(rooms.size());
    ULK_CHECK(Api<Unit>::splitC(source.get(), lengthOf(text), delimiter, pointers.data(), lengths.data(),
                                &count) == expected.status);
    ULK_CHECK(count == expected.count);
    ULK_CHECK(lengths == expected.lengths);
    for (size_t i = 0; i < buffers.size(); ++i) ULK_CHECK(buffers[i].holds(expected.written[i]));
  }

  void join() const {
    auto parts = ulk_test::partsOf(text, delimiter);
    if (parts.empty()) parts.emplace_back();
    std::vector<Block<Unit>> sources;
    std::vector<const Unit*> pointers;
    std::vector<int32_t> lengths;
    for (const auto& part : parts) {
      sources.emplace_back(part, sourceShift + sources.size() % 3);
      pointers.push_back(sources.back().get());
      lengths.push_back(lengthOf(part));
    }
    const auto count = static_cast<int32_t>(parts.size());

    const auto close = ulk_test::joined(parts, {});
    const Block<Unit> closeResult(close.size(), resultShift);
    ULK_CHECK(Api<Unit>::concatList(pointers.data(), lengths.data(), count, closeResult.get()) == ulkOk);
    ULK_CHECK(closeResult.holds(close));

    const auto apart = ulk_test::joined(parts, {delimiter});
    const Block<Unit> apartResult(apart.size(), resultShift);
    ULK_CHECK(Api<Unit>::concatListC(pointers.data(), lengths.data(), count, delimiter, apartResult.get()) ==
              ulkOk);
    ULK_CHECK(apartResult.holds(apart));

    const auto two = ulk_test::joined<Unit>({parts.front(), parts.back()}, {});
    const Block<Unit> twoResult(two.size(), resultShift);
    ULK_CHECK(Api<Unit>::concat(pointers.front(), lengths.front(), pointers.back(), lengths.back(),
                                twoResult.get()) == ulkOk);
    ULK_CHECK(twoResult.holds(two));
  }
};

template <class Unit>
void run(Input input) {
  const Shape<Unit> shape(std::move(input));
  shape.split();
  shape.join();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  run<uint8_t>(Input(data, size));
  run<uint16_t>(Input(data, size));
  return 0;
}
