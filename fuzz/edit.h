// Insertion, removal and unit replacement as the standard library does them.
#pragma once

#include <algorithm>

#include "check.h"
#include "support/api.h"

namespace ulk_fuzz {

template <class Unit>
struct Edit {
  using Calls = ulk_test::Api<Unit>;
  using Units = std::vector<Unit>;

  Units text;
  Units piece;       // to insert
  int32_t position;  // and this one and the length may be beyond the text
  int32_t length;    // to remove
  Shifts shifts;

  void checkInsert() const {
    const bool valid = position >= 0 && position <= lengthOf(text);
    const ulkStatus status = valid ? ulkOk : ulkErrLength;
    Units expected = text;
    if (valid) expected.insert(expected.begin() + position, piece.begin(), piece.end());
    const Block<Unit> source(text, shifts.text);
    const Block<Unit> inserted(piece, shifts.other);
    const Block<Unit> result(expected.size(), shifts.result);
    ULK_CHECK(Calls::insert(source.get(), lengthOf(text), inserted.get(), lengthOf(piece), result.get(),
                            position) == status);
    ULK_CHECK(result.holds(valid && !piece.empty() ? expected : Units()));

    const Block<Unit> same(expected.size(), text, shifts.result);
    ULK_CHECK(Calls::insert(same.get(), lengthOf(text), inserted.get(), lengthOf(piece), same.get(),
                            position) == status);
    ULK_CHECK(same.holds(expected));

    const Block<Unit> inPlace(expected.size(), text, shifts.text);
    int32_t newLength = lengthOf(text);
    ULK_CHECK(Calls::insertInPlace(inserted.get(), lengthOf(piece), inPlace.get(), &newLength, position) ==
              status);
    ULK_CHECK(inPlace.holds(expected));
    ULK_CHECK(newLength == lengthOf(expected));
  }

  void checkRemove() const {
    const bool valid = position >= 0 && length >= 0 && int64_t{position} + length <= lengthOf(text);
    const ulkStatus status = valid ? ulkOk : ulkErrLength;
    Units expected = text;
    if (valid) expected.erase(expected.begin() + position, expected.begin() + position + length);
    const Block<Unit> source(text, shifts.text);
    const Block<Unit> result(expected.size(), shifts.result);
    ULK_CHECK(Calls::remove(source.get(), lengthOf(text), result.get(), position, length) == status);
    ULK_CHECK(result.holds(valid ? expected : Units()));

    int32_t newLength = lengthOf(text);
    ULK_CHECK(Calls::removeInPlace(source.get(), &newLength, position, length) == status);
    ULK_CHECK(source.holds(expected, text));
    ULK_CHECK(newLength == lengthOf(expected));
  }

  void checkReplace() const {
    const Unit oldUnit = piece.empty() ? Unit{0} : piece.front();
    const Unit newUnit = piece.empty() ? Unit{1} : piece.back();
    Units expected = text;
    std::replace(expected.begin(), expected.end(), oldUnit, newUnit);
    const Block<Unit> source(text, shifts.text);
    const Block<Unit> result(text.size(), shifts.result);
    ULK_CHECK(Calls::replaceC(source.get(), result.get(), lengthOf(text), oldUnit, newUnit) == ulkOk);
    ULK_CHECK(result.holds(expected));
    ULK_CHECK(Calls::replaceC(source.get(), source.get(), lengthOf(text), oldUnit, newUnit) == ulkOk);
    ULK_CHECK(source.holds(expected));
  }
};

}  // namespace ulk_fuzz
