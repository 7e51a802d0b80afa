// Searches with generated expressions against the reference matcher. The input is no text: its bytes are the
// choices that the generator makes. What differs is printed as a row for tests/data, made small.
#include "check.h"
#include "support/deep_stack.h"
#include "support/generated_cases.h"
#include "support/reference_comparison.h"

using namespace ulk_test;

namespace {

constexpr int64_t kMostWork = 200000;  // of a search; an input is to take a moment only

void compare(Choices& choices) {
  static Comparison comparison(kMostWork);
  const GeneratedExpression expression = generateExpression(choices);
  if (!comparison.compile(expression.pattern, expression.options)) return;
  const GeneratedSearch search = generateSearch(choices, expression, choices.oneIn(64));
  if (!comparison.difference(search)) return;
  std::fputs(comparison.difference(comparison.minimized(search))->c_str(), stderr);
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  ByteChoices choices(data, size);
  onDeepStack([&] { compare(choices); });
  return 0;
}
