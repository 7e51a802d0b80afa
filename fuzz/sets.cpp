// Pattern sets against a list of the same expressions, and their search against searches one by one.
// Numbers: the slots of the set, threads, match limit, alignment of the text, records of a slot; then what is
// done with the set: the operation, the expression and the id of each step.
// Fields: options; up to the last, a pattern each; the text.
#include <memory>

#include "check.h"
#include "expression.h"
#include "input.h"
#include "support/test_core.h"
#include "ulkch.h"

using namespace ulk_fuzz;

namespace {

struct Slot {
  CompiledExpression* expression = nullptr;
  uint32_t id = 0;
};

class Set {
 public:
  explicit Set(size_t numSlots) : slots_(numSlots) {
    int32_t size = 0;
    ULK_CHECK(ulksRegExpMultiGetSize(static_cast<uint32_t>(numSlots), &size) == ulkOk);
    ULK_CHECK(ulksRegExpMultiInitAlloc(&set_, static_cast<uint32_t>(numSlots)) == ulkOk);
    ULK_CHECK(ulk::testcore::lastSize() == size);
  }
  Set(const Set&) = delete;
  Set& operator=(const Set&) = delete;
  ~Set() { ulksRegExpMultiFree(set_); }

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
    const Block<ulkRegExpMultiFind> results(slots_.size(), 0);
    for (size_t i = 0; i < slots_.size(); ++i) {
      records.emplace_back(numRecords);
      if (slots_[i].expression) results.get()[i] = {77, 77, numRecords, 77, records.back().get()};
    }
    const Block<ulkRegExpMultiFind> untouched(slots_.size(), 0);
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
  ulkRegExpMultiState* set_ = nullptr;
};

using Expressions = std::vector<std::unique_ptr<CompiledExpression>>;

// All fields but the last that compile as patterns.
Expressions expressionsIn(const std::vector<std::string>& fields, const std::string& options) {
  Expressions expressions;
  for (size_t i = 0; i + 1 < fields.size(); ++i) {
    auto expression = std::make_unique<CompiledExpression>(fields[i].c_str(), options, Memory::kCallers);
    if (expression->valid()) expressions.push_back(std::move(expression));
  }
  return expressions;
}

void run(Input input) {
  Set set(1 + input.numberTo(15));
  ulk::testcore::setNumThreads(1 + static_cast<int32_t>(input.numberTo(3)));
  const auto limit = static_cast<int32_t>(input.numberTo(5000));
  const size_t shift = input.numberTo(31);
  const auto numRecords = static_cast<int32_t>(input.numberTo(20));
  struct Step {
    size_t operation;
    size_t expression;
    uint32_t id;
  };
  std::vector<Step> steps;
  constexpr size_t kMostSteps = 40;
  while (steps.size() < kMostSteps && input.hasNumbers())
    steps.push_back({input.numberTo(3), input.numberTo(15), static_cast<uint32_t>(input.number())});

  const std::string options = input.field().c_str();
  std::vector<std::string> fields;
  constexpr size_t kMostFields = 16;
  while (fields.size() < kMostFields && input.hasFields()) fields.push_back(input.field());
  const SearchedText text(fields.empty() ? "" : fields.back(), shift);
  const Expressions expressions = expressionsIn(fields, options);
  if (expressions.empty()) return;
  for (const auto& expression : expressions)
    ULK_CHECK(ulksRegExpSetMatchLimit(limit, expression->state()) == ulkOk);

  for (const Step& step : steps) {
    CompiledExpression& expression = *expressions[step.expression % expressions.size()];
    if (step.operation <= 1) set.add(expression, step.id);
    if (step.operation == 2) set.modify(expression, step.id);
    if (step.operation == 3) set.remove(step.id);
  }
  set.search(text, numRecords);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  run(Input(data, size));
  ULK_CHECK(ulk::testcore::liveBlocks() == 0);
  return 0;
}
