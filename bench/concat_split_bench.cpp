// Concatenation and splitting beside what one writes without them: a block copy for each string, and for
// splitting a search for the delimiter and a block copy for each part.
#include <cstring>
#include <numeric>

#include "rows.h"
#include "texts.h"
#include "ulkch.h"

namespace bench {
namespace {

template <class Unit, auto concat>
int32_t ours(const Unit* first, int32_t firstLength, const Unit* second, int32_t secondLength,
             Unit* destination) {
  concat(units(first), firstLength, units(second), secondLength, units(destination));
  return firstLength + secondLength;
}

template <class Unit>
int32_t copyTwo(const Unit* first, int32_t firstLength, const Unit* second, int32_t secondLength,
                Unit* destination) {
  std::memcpy(destination, first, bytes<Unit>(firstLength));
  std::memcpy(destination + firstLength, second, bytes<Unit>(secondLength));
  return firstLength + secondLength;
}

template <class Unit>
std::vector<EditRow<Unit>> concatRows(const std::string& name) {
  std::vector<EditRow<Unit>> rows;
  for (const size_t n : {8u, 16u, 32u, 64u, 256u, 1024u, 4096u, 65536u, 1048576u}) {
    for (const size_t other : {size_t{5}, n}) {
      const std::string first = english(n);
      const std::string second(other, '#');
      rows.push_back({name + "/" + std::to_string(n) + "+" + std::to_string(other), as<Unit>(first),
                      as<Unit>(second), as<Unit>(first + second)});
    }
  }
  return rows;
}

// A text and the parts that it has between commas; they stand in buffers with exactly their lengths.
template <class Unit>
struct Parts {
  explicit Parts(const std::string& commaSeparated) : text(as<Unit>(commaSeparated)) {
    size_t start = 0;
    while (start < text.size()) {
      const size_t end = std::min(text.find(Unit{','}, start), text.size());
      parts.push_back(text.substr(start, end - start));
      start = end + 1;
    }
    for (auto& part : parts) {
      pointers.push_back(units(part.data()));
      sources.push_back(pointers.back());
      lengths.push_back(static_cast<int32_t>(part.size()));
    }
    joined.resize(text.size());
  }

  std::basic_string<Unit> text;
  std::vector<std::basic_string<Unit>> parts;
  std::vector<decltype(units(static_cast<Unit*>(nullptr)))> pointers;
  std::vector<decltype(units(static_cast<const Unit*>(nullptr)))> sources;
  std::vector<int32_t> lengths;
  std::basic_string<Unit> joined;
};

template <class Unit>
struct PartsContestant {
  const char* name;  // "ulkch" for ours
  int32_t (*run)(Parts<Unit>& parts);
};

// `wrong` tells whether the contestant, run on a copy of the parts, did its work badly.
template <class Unit, class Wrong>
void addParts(const std::string& name, const Parts<Unit>& made,
              const std::vector<PartsContestant<Unit>>& contestants, Wrong wrong) {
  for (const PartsContestant<Unit>& contestant : contestants) {
    const auto run = [=](benchmark::State& state) {
      Parts<Unit> parts(std::string(made.text.begin(), made.text.end()));
      if (wrong(parts, contestant)) {
        anyWrong = true;
        state.SkipWithError("wrong answer");
        return;
      }
      for (auto _ : state) {
        benchmark::DoNotOptimize(contestant.run(parts));
        benchmark::ClobberMemory();
      }
      state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(made.text.size() * sizeof(Unit)));
      state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(made.parts.size()));
    };
    benchmark::RegisterBenchmark((name + "/" + contestant.name).c_str(), run);
  }
}

template <class Unit, auto concatC>
int32_t oursJoin(Parts<Unit>& parts) {
  return concatC(parts.sources.data(), parts.lengths.data(), static_cast<int32_t>(parts.sources.size()), ',',
                 units(parts.joined.data()));
}

template <class Unit>
int32_t copyJoin(Parts<Unit>& parts) {
  Unit* at = parts.joined.data();
  for (size_t i = 0; i < parts.sources.size(); ++i) {
    if (i > 0) *at++ = ',';
    std::memcpy(at, parts.sources[i], bytes<Unit>(parts.lengths[i]));
    at += parts.lengths[i];
  }
  return 0;
}

template <class Unit, auto splitC>
int32_t oursSplit(Parts<Unit>& parts) {
  int32_t count = static_cast<int32_t>(parts.pointers.size());
  splitC(units(parts.text.data()), static_cast<int32_t>(parts.text.size()), ',', parts.pointers.data(),
         parts.lengths.data(), &count);
  return count;
}

// The search of the standard library: memchr for bytes.
template <class Unit>
int32_t copySplit(Parts<Unit>& parts) {
  const Unit* at = parts.text.data();
  const Unit* end = at + parts.text.size();
  size_t count = 0;
  while (at < end && count < parts.pointers.size()) {
    const Unit* found = std::char_traits<Unit>::find(at, static_cast<size_t>(end - at), ',');
    const int32_t part = static_cast<int32_t>((found ? found : end) - at);
    const int32_t room = parts.lengths[count];
    parts.lengths[count] = std::min(part, room);
    std::memcpy(parts.pointers[count], at, bytes<Unit>(parts.lengths[count]));
    at += part + 1;
    ++count;
  }
  return static_cast<int32_t>(count);
}

// English words or sentences, or parts of one length.
struct Shape {
  const char* name;
  std::string text;
};

std::vector<Shape> shapes() {
  const auto separated = [](std::string text, char at, char instead) {
    for (char& c : text) c = c == at ? ',' : c == ',' ? instead : c;
    return text;
  };
  const auto even = [](size_t length, size_t count) {
    std::string text;
    while (count-- > 0) text += std::string(length, 'x') + ',';
    return text;
  };
  return {{"words/64", separated(english(64), ' ', ';')},
          {"words/4096", separated(english(4096), ' ', ';')},
          {"words/65536", separated(english(65536), ' ', ';')},
          {"sentences/65536", separated(english(65536), '.', ';')},
          {"even8/4096", even(8, 455)},
          {"even12/4096", even(12, 315)},
          {"even30/4096", even(30, 132)},
          {"even100/4096", even(100, 41)},
          {"even1000/65536", even(1000, 66)},
          {"empty/4096", std::string(4096, ',')}};
}

template <class Unit>
void addLists(const std::string& width, const std::vector<PartsContestant<Unit>>& joiners,
              const std::vector<PartsContestant<Unit>>& splitters) {
  for (const Shape& shape : shapes()) {
    const Parts<Unit> parts(shape.text);
    addParts<Unit>("concat_c_list/" + width + shape.name, parts, joiners, [](auto& copy, auto& joiner) {
      joiner.run(copy);
      if (copy.text.back() == ',') copy.joined.back() = ',';  // no separator behind the last part
      return copy.joined != copy.text;
    });
    addParts<Unit>("split_c/" + width + shape.name, parts, splitters, [](auto& copy, auto& splitter) {
      const auto expected = copy.parts;
      for (auto& part : copy.parts) std::fill(part.begin(), part.end(), Unit{});
      const auto lengths = copy.lengths;
      return splitter.run(copy) != static_cast<int32_t>(expected.size()) || copy.parts != expected ||
             copy.lengths != lengths;
    });
  }
}

}  // namespace

void addConcatSplit() {
  addEdits<Byte>(concatRows<Byte>("concat/8u"),
                 {{"ulkch", ours<Byte, ulksConcat_8u>}, {"memcpy", copyTwo<Byte>}});
  addEdits<Wide>(concatRows<Wide>("concat/16u"),
                 {{"ulkch", ours<Wide, ulksConcat_16u>}, {"memcpy", copyTwo<Wide>}});
  addLists<Byte>("8u/", {{"ulkch", oursJoin<Byte, ulksConcatC_8u_D2L>}, {"memcpy", copyJoin<Byte>}},
                 {{"ulkch", oursSplit<Byte, ulksSplitC_8u_D2L>}, {"memchr", copySplit<Byte>}});
  addLists<Wide>("16u/", {{"ulkch", oursJoin<Wide, ulksConcatC_16u_D2L>}, {"memcpy", copyJoin<Wide>}},
                 {{"ulkch", oursSplit<Wide, ulksSplitC_16u_D2L>}, {"char_traits", copySplit<Wide>}});
}

}  // namespace bench
