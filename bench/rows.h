// What a benchmark row is: an input, the answer that is right for it, and the contestants that must give this
// answer before they are timed. Rows of one name differ in the contestant only; their ratio is the result.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

// A search row: a text, what is searched in it, and the index expected.
template <class Unit>
struct Row {
  std::string name;
  std::basic_string<Unit> text;
  std::basic_string<Unit> other;
  int32_t expected;
};

template <class Unit>
struct Contestant {
  const char* name;  // "ulkch" for ours
  int32_t (*search)(const Unit* text, int32_t textLength, const Unit* other, int32_t otherLength);
};

// Set by a row whose contestant gave a wrong answer: the program then fails.
inline bool anyWrong = false;

template <class Unit>
void add(const std::vector<Row<Unit>>& rows, const std::vector<Contestant<Unit>>& contestants) {
  for (const Row<Unit>& row : rows) {
    for (const Contestant<Unit>& contestant : contestants) {
      const auto run = [row, contestant](benchmark::State& state) {
        const Unit* text = row.text.data();
        const Unit* other = row.other.data();
        const int32_t textLength = static_cast<int32_t>(row.text.size());
        const int32_t otherLength = static_cast<int32_t>(row.other.size());
        if (contestant.search(text, textLength, other, otherLength) != row.expected) {
          anyWrong = true;
          state.SkipWithError("wrong answer");
          return;
        }
        for (auto _ : state) {
          benchmark::DoNotOptimize(text);
          benchmark::DoNotOptimize(other);
          benchmark::DoNotOptimize(contestant.search(text, textLength, other, otherLength));
          benchmark::ClobberMemory();
        }
        state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(row.text.size() * sizeof(Unit)));
      };
      benchmark::RegisterBenchmark((row.name + "/" + contestant.name).c_str(), run);
    }
  }
}

// English-like text: words drawn with a fixed seed, the common ones often, as one line of `units` units.
std::string english(size_t units);

// Bytes drawn evenly from 1 .. 255 with a fixed seed; `without` never occurs.
std::string noise(size_t units, char without);

// The families, each registering its rows.
void addSearch();

}  // namespace bench
