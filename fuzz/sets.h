// Pattern sets as a list of the same expressions, and their search as searches one by one.
#pragma once

#include <vector>

#include "expression.h"

namespace ulk_fuzz {

struct Slot {
  CompiledExpression* expression = nullptr;
  uint32_t id = 0;
};

// A set that was made, and what it must hold.
class ModelledSet {
 public:
  ModelledSet(ulkRegExpMultiState* set, size_t numSlots) : slots_(numSlots), set_(set) {}

  // An expression is in one slot at most, as a search on several threads wants it.
  void add(CompiledExpression& expression, uint32_t id) {
    if (slotHolding(&expression)) return;
    Slot* const free = slotHolding(nullptr);
    const ulkStatus status = ulksRegExpMultiAdd(expression.state(), id, set_);
    ULK_CHECK(status == (id == 0 ? ulkErrBadId : !free ? ulkErrSetFull : ulkOk));
    if (status == ulkOk) *free = {&expression, id};
  }

  void remove(uint32_t id) {
    Slot* const slot = slotOf(id);
    const ulkStatus status = ulksRegExpMultiDelete(id, set_);
    ULK_CHECK(status == statusFor(id, slot));
    if (status == ulkOk) *slot = {};
  }

  void modify(CompiledExpression& expression, uint32_t id) {
    if (slotHolding(&expression)) return;
    Slot* const slot = slotOf(id);
    const ulkStatus status = ulksRegExpMultiModify(expression.state(), id, set_);
    ULK_CHECK(status == statusFor(id, slot));
    if (status == ulkOk) slot->expression = &expression;
  }

  void search(const SearchedText& text, int32_t numRecords) const {
    std::vector<FindRecords> records;
    const Block<ulkRegExpMultiFind> results(slots_.size(), kAligned);
    for (size_t i = 0; i < slots_.size(); ++i) {
      records.emplace_back(numRecords);
      if (slots_[i].expression) results.get()[i] = {77, 77, numRecords, 77, records.back().get()};
    }
    const Block<ulkRegExpMultiFind> untouched(slots_.size(), kAligned);
    const ulkStatus status = ulksRegExpMultiFind_8u(text.get(), text.length(), results.get(), set_);
    ULK_CHECK(status == (text.length() < 1 ? ulkErrSize : ulkOk));
    for (size_t i = 0; i < slots_.size() && status == ulkOk; ++i) {
      const ulkRegExpMultiFind& result = results.get()[i];
      if (!slots_[i].expression) {
        ULK_CHECK(std::memcmp(&result, untouched.get() + i, sizeof result) == 0);
        continue;
      }
      ULK_CHECK(result.searched == 1 && result.id == slots_[i].id && result.pFind == records[i].get());
      const Found found = {result.status, result.numFind, records[i].written(text.get())};
      ULK_CHECK(found == text.find(slots_[i].expression->state(), numRecords));
    }
  }

 private:
  Slot* slotHolding(const CompiledExpression* expression) {
    for (Slot& slot : slots_)
      if (slot.expression == expression) return &slot;
    return nullptr;
  }
  Slot* slotOf(uint32_t id) {
    for (Slot& slot : slots_)
      if (slot.expression && slot.id == id) return &slot;
    return nullptr;
  }
  static ulkStatus statusFor(uint32_t id, const Slot* slot) {
    return id == 0 ? ulkErrBadId : slot ? ulkOk : ulkErrIdNotFound;
  }

  std::vector<Slot> slots_;
  ulkRegExpMultiState* const set_;
};

}  // namespace ulk_fuzz
