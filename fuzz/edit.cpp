// Insertion, removal and unit replacement against the standard library's.
// Numbers: the alignments of text, insertion and result, a position and a length. Fields: the insertion; the
// text.
#include "check.h"
#include "input.h"
#include "support/api.h"

using namespace ulk_fuzz;
using ulk_test::Api;

namespace {

template <class Unit>
struct Edit {
  size_t textShift;
  size_t pieceShift;
  size_t resultShift;
  int32_t position;
  int32_t length;
  std::vector<Unit> piece;
  std::vector<Unit> text;

  explicit Edit(Input input)
      : textShift(input.numberTo(31)),
        pieceShift(input.numberTo(31)),
        resultShift(input.numberTo(31)),
        position(input.number()),
        length(input.number()),
        piece(unitsOf<Unit>(input.field())),
        text(unitsOf<Unit>(input.rest())) {}

  void insert() const {
    const bool valid = position >= 0 && position <= lengthOf(text);
    const ulkStatus status = valid ? ulkOk : ulkErrLength;
    std::vector<Unit> expected = text;
    if (valid) expected.insert(expected.begin() + position, piece.begin(), piece.end());
    const Block<Unit> source(text, textShift);
    const Block<Unit> inserted(piece, pieceShift);
    const Block<Unit> result(expected.size(), resultShift);
    ULK_CHECK(Api<Unit>::insert(source.get(), lengthOf(text), inserted.get(), lengthOf(piece), result.get(),
                                position) == status);
    ULK_CHECK(result.holds(valid && !piece.empty() ? expected : std::vector<Unit>()));

    const Block<Unit> same(expected.size(), text, resultShift);
    ULK_CHECK(Api<Unit>::insert(same.get(), lengthOf(text), inserted.get(), lengthOf(piece), same.get(),
                                position) == status);
    ULK_CHECK(same.holds(expected));

    const Block<Unit> inPlace(expected.size(), text, textShift);
    int32_t newLength = lengthOf(text);
    ULK_CHECK(Api<Unit>::insertInPlace(inserted.get(), lengthOf(piece), inPlace.get(), &newLength,
                                       position) == status);
    ULK_CHECK(inPlace.holds(expected));
    ULK_CHECK(newLength == lengthOf(expected));
  }

  void remove() const {
    const bool valid = position >= 0 && length >= 0 && int64_t{position} + length <= lengthOf(text);
    const ulkStatus status = valid ? ulkOk : ulkErrLength;
    std::vector<Unit> expected = text;
    if (valid) expected.erase(expected.begin() + position, expected.begin() + position + length);
    const Block<Unit> source(text, textShift);
    const Block<Unit> result(expected.size(), resultShift);
    ULK_CHECK(Api<Unit>::remove(source.get(), lengthOf(text), result.get(), position, length) == status);
    ULK_CHECK(result.holds(valid ? expected : std::vector<Unit>()));

    int32_t newLength = lengthOf(text);
    ULK_CHECK(Api<Unit>::removeInPlace(source.get(), &newLength, position, length) == status);
    ULK_CHECK(source.holds(expected, text));
    ULK_CHECK(newLength == lengthOf(expected));
  }

  void replace() const {
    const Unit oldUnit = piece.empty() ? Unit{0} : piece.front();
    const Unit newUnit = piece.empty() ? Unit{1} : piece.back();
    std::vector<Unit> expected = text;
    std::replace(expected.begin(), expected.end(), oldUnit, newUnit);
    const Block<Unit> source(text, textShift);
    const Block<Unit> result(text.size(), resultShift);
    ULK_CHECK(Api<Unit>::replaceC(source.get(), result.get(), lengthOf(text), oldUnit, newUnit) == ulkOk);
    ULK_CHECK(result.holds(expected));
    ULK_CHECK(Api<Unit>::replaceC(source.get(), source.get(), lengthOf(text), oldUnit, newUnit) == ulkOk);
    ULK_CHECK(source.holds(expected));
  }
};

template <class Unit>
void run(Input input) {
  const Edit<Unit> edit(std::move(input));
  edit.insert();
  edit.remove();
  edit.replace();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  run<uint8_t>(Input(data, size));
  run<uint16_t>(Input(data, size));
  return 0;
}
