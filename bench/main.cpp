// Runs the registered rows; fails when any contestant gave a wrong answer.
#include "rows.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  bench::addSearch();
  bench::addCompare();
  bench::addCase();
  bench::addHash();
  bench::addTrim();
  bench::addEdit();
  bench::addConcatSplit();
  bench::addUtf();
  bench::addExpressions();
  bench::addReplacement();
  bench::addSets();
  benchmark::RunSpecifiedBenchmarks();
  return bench::anyWrong ? 1 : 0;
}
