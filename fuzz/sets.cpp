// Pattern sets.
// Numbers: the slots of the set, threads, match limit, alignment of the text, records of a slot; then what is
// done with the set: the operation, the expression and the id of each step.
// Fields: options; up to the last, a pattern each; the text.
#include "sets.h"

#include <memory>

#include "input.h"
#include "support/test_core.h"
#include "ulkch.h"

using namespace ulk_fuzz;

namespace {

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
  const auto numSlots = static_cast<uint32_t>(1 + input.numberTo(15));
  int32_t size = 0;
  ulkRegExpMultiState* allocated = nullptr;
  ULK_CHECK(ulksRegExpMultiGetSize(numSlots, &size) == ulkOk);
  ULK_CHECK(ulksRegExpMultiInitAlloc(&allocated, numSlots) == ulkOk);
  ULK_CHECK(ulk::testcore::lastSize() == size);
  const std::unique_ptr<ulkRegExpMultiState, void(ULK_CALL*)(ulkRegExpMultiState*)> owner(
      allocated, ulksRegExpMultiFree);
  ModelledSet set(allocated, numSlots);
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
