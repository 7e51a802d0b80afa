// What a benchmark row is: an input, the answer that is right for it, and the contestants that must give this
// answer before they are timed. Rows of one name differ in the contestant only; their ratio is the result.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
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

// A conversion row: a text and what it becomes, of the same length.
template <class Unit>
struct ConversionRow {
  std::string name;
  std::basic_string<Unit> text;
  std::basic_string<Unit> expected;
};

template <class Unit>
struct Converter {
  const char* name;  // "ulkch" for ours
  void (*convert)(const Unit* text, Unit* destination, int32_t length);
};

// In place, the destination holds the text before the first conversion, and what that became before the
// others.
template <class Unit>
void addConversions(const std::vector<ConversionRow<Unit>>& rows,
                    const std::vector<Converter<Unit>>& contestants, bool inPlace = false) {
  for (const ConversionRow<Unit>& row : rows) {
    for (const Converter<Unit>& contestant : contestants) {
      const auto run = [row, contestant, inPlace](benchmark::State& state) {
        const Unit* text = row.text.data();
        const int32_t length = static_cast<int32_t>(row.text.size());
        std::basic_string<Unit> converted(row.text.size(), Unit{});
        if (inPlace) converted = row.text;
        Unit* destination = converted.data();
        contestant.convert(text, destination, length);
        if (converted != row.expected) {
          anyWrong = true;
          state.SkipWithError("wrong answer");
          return;
        }
        for (auto _ : state) {
          benchmark::DoNotOptimize(text);
          benchmark::DoNotOptimize(destination);
          contestant.convert(text, destination, length);
          benchmark::ClobberMemory();
        }
        state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(row.text.size() * sizeof(Unit)));
      };
      benchmark::RegisterBenchmark((row.name + "/" + contestant.name).c_str(), run);
    }
  }
}

// An edit row: a text, what is done with it, and what it becomes. A contestant returns the length of that.
template <class Unit>
struct EditRow {
  std::string name;
  std::basic_string<Unit> text;
  std::basic_string<Unit> other;
  std::basic_string<Unit> expected;
};

template <class Unit>
struct Editor {
  const char* name;  // "ulkch" for ours
  int32_t (*edit)(const Unit* text, int32_t textLength, const Unit* other, int32_t otherLength,
                  Unit* destination);
};

// A copy of a string that begins at a 64-byte boundary: elsewhere, where it happens to begin may count for
// more than what is measured.
template <class Unit>
class Placed {
 public:
  explicit Placed(const std::basic_string<Unit>& text)
      : lines_(text.size() * sizeof(Unit) / sizeof(Line) + 1) {
    std::memcpy(lines_.data(), text.data(), text.size() * sizeof(Unit));
  }
  Unit* data() { return static_cast<Unit*>(static_cast<void*>(lines_.data())); }

 private:
  struct alignas(64) Line {
    char bytes[64];
  };
  std::vector<Line> lines_;
};

template <class Unit>
void addEdits(const std::vector<EditRow<Unit>>& rows, const std::vector<Editor<Unit>>& contestants) {
  for (const EditRow<Unit>& row : rows) {
    for (const Editor<Unit>& contestant : contestants) {
      const auto run = [row, contestant](benchmark::State& state) {
        Placed<Unit> source(row.text);
        Placed<Unit> room(row.text + row.expected);
        const Unit* text = source.data();
        const Unit* other = row.other.data();
        Unit* destination = room.data();
        const int32_t textLength = static_cast<int32_t>(row.text.size());
        const int32_t otherLength = static_cast<int32_t>(row.other.size());
        const int32_t length = contestant.edit(text, textLength, other, otherLength, destination);
        if (std::basic_string<Unit>(destination, static_cast<size_t>(length)) != row.expected) {
          anyWrong = true;
          state.SkipWithError("wrong answer");
          return;
        }
        for (auto _ : state) {
          benchmark::DoNotOptimize(text);
          benchmark::DoNotOptimize(other);
          benchmark::DoNotOptimize(destination);
          benchmark::DoNotOptimize(contestant.edit(text, textLength, other, otherLength, destination));
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

// The same in lines of some 60 units.
std::string englishLines(size_t units);

// Lines as a web server would log them, of some 170 units.
std::string logLines(size_t units);

// Bytes drawn evenly from 1 .. 255 with a fixed seed; `without` never occurs.
std::string noise(size_t units, char without);

// The same with its letters in other scripts, spaces and punctuation kept where the script has no others:
// letters with diacritics here and there (French), of a page of their own (Greek, Cyrillic), on every second
// place spread over pages (Vietnamese), without case (Chinese).
enum class Script { kEnglish, kFrench, kGreek, kCyrillic, kVietnamese, kChinese };
std::u16string written(const std::string& english, Script script);

// Lowercase and uppercase of the 16-bit units that written() makes, by a table of all units, which is what
// one uses where the tables' size does not matter.
struct WholeTable {
  std::u16string lower;
  std::u16string upper;
};
const WholeTable& wholeTable();

// The families, each registering its rows.
void addSearch();
void addCompare();
void addCase();
void addHash();
void addTrim();
void addEdit();
void addConcatSplit();
void addUtf();
void addExpressions();
void addReplacement();
void addSets();

}  // namespace bench
