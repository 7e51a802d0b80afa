// The search family beside what a program would call without it: the C library, std::string_view and
// std::find.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "rows.h"
#include "texts.h"
#include "ulkch.h"

namespace bench {
namespace {

int32_t index(const void* found, const void* text) {
  return found ? static_cast<int32_t>(static_cast<const char*>(found) - static_cast<const char*>(text)) : -1;
}
int32_t index(size_t found) { return found == std::string::npos ? -1 : static_cast<int32_t>(found); }

template <class Unit>
Row<Unit> row(const std::string& name, const std::string& text, const std::string& other, int32_t expected) {
  return {name, as<Unit>(text), as<Unit>(other), expected};
}

std::string replaced(std::string text, size_t at, const std::string& by) {
  return text.replace(at, by.size(), by);
}

size_t sized(int32_t n) { return static_cast<size_t>(n); }

template <class Unit>
std::string width() {
  return sizeof(Unit) == 1 ? "8u/" : "16u/";
}

// One unit: absent at many lengths, and found somewhere on the way.
template <class Unit>
std::vector<Row<Unit>> unitRows(const std::string& family) {
  std::vector<Row<Unit>> rows;
  const std::string name = family + "/" + width<Unit>();
  for (const int32_t n :
       {0, 1, 3, 7, 8, 15, 16, 17, 24, 31, 32, 48, 63, 64, 100, 128, 256, 512, 1024, 4096, 65536, 1048576}) {
    rows.push_back(row<Unit>(name + "absent/" + std::to_string(n), std::string(sized(n), 'a'), "z", -1));
  }
  for (const int32_t at : {3, 20, 70, 300}) {
    rows.push_back(
        row<Unit>(name + "at/" + std::to_string(at),
                  replaced(std::string(4096, 'a'), family == "find_c" ? sized(at) : sized(4095 - at), "z"),
                  "z", family == "find_c" ? at : 4095 - at));
  }
  return rows;
}

// A pattern that stands once, where the search ends.
template <class Unit>
std::vector<Row<Unit>> substringRows(const std::string& family) {
  const bool forward = family == "find";
  const std::string name = family + "/" + width<Unit>();
  std::vector<Row<Unit>> rows;
  const auto add = [&](const std::string& what, std::string text, const std::string& pattern) {
    const size_t at = forward ? text.size() - pattern.size() : 0;
    const std::string sizes = std::to_string(pattern.size()) + "/" + std::to_string(text.size());
    rows.push_back(row<Unit>(name + what + "/" + sizes, replaced(std::move(text), at, pattern), pattern,
                             static_cast<int32_t>(at)));
  };
  const size_t k64 = 65536;
  for (const char* pattern : {"xt", "tea", "lean", "stone", "lanterns", "in the theatre", "the other mornin",
                              "and there was a rather tall man standing in the old greenhouses."}) {
    add("english", english(k64), pattern);
  }
  for (const char* pattern : {"tea", "lanterns", "the other mornin"}) {
    add("english", english(64), pattern);
    add("english", english(256), pattern);
    add("english", english(1024), pattern);
  }
  // All units of the pattern but one are common; that one, the last in the direction of the search, occurs
  // nowhere.
  for (const size_t length : {2u, 4u, 16u, 64u}) {
    const std::string common = noise(length - 1, 'q');
    add("random", noise(k64, 'q'), forward ? common + 'q' : std::string(common).insert(0, 1, 'q'));
  }
  for (const size_t length : {2u, 8u, 64u}) {
    add("a-b", std::string(k64, 'a'), std::string(length - 1, 'a') + 'b');
    add("b-a", std::string(k64, 'a'), std::string(length - 1, 'a').insert(0, 1, 'b'));
    add("a-b-a", std::string(k64, 'a'), replaced(std::string(length, 'a'), length / 2, "b"));
  }
  // Text and pattern that agree nearly everywhere.
  std::string pairs;
  while (pairs.size() < k64) pairs += "ab";
  add("abab-bb", pairs, replaced(pairs.substr(0, 64), 31, "a"));
  std::string steps;
  for (size_t run = 1; steps.size() < k64; run = run % 61 + 1) steps += std::string(run, 'a') + 'b';
  steps.resize(k64);
  add("steps", steps, std::string(62, 'a') + "b" + std::string(62, 'a'));
  return rows;
}

// A pattern at the start of a text.
template <class Unit>
std::vector<Row<Unit>> earlyRows() {
  std::vector<Row<Unit>> rows;
  for (const size_t length : {1u, 2u, 4u, 16u}) {
    for (const size_t n : {1u, 4u, 8u, 16u, 24u, 64u}) {
      for (const size_t at : {0u, 3u}) {
        if (at + length > n) continue;
        const std::string pattern = std::string("stone lanterns in").substr(0, length);
        rows.push_back(row<Unit>("find/" + width<Unit>() + "at" + std::to_string(at) + "/" +
                                     std::to_string(length) + "/" + std::to_string(n),
                                 replaced(std::string(n, 'e'), at, pattern), pattern,
                                 static_cast<int32_t>(at)));
      }
    }
  }
  return rows;
}

template <class Unit>
std::vector<Row<Unit>> anyRows(const std::string& family) {
  const bool forward = family == "find_c_any";
  const std::string name = family + "/" + width<Unit>();
  std::vector<Row<Unit>> rows;
  const std::string members = "\n<&\"'>{}[]|#$%*+=~^_`@\\/:;!?0123456789()JKQVXYZWUTSR";
  for (const size_t setLength : {1u, 2u, 3u, 4u, 5u, 8u, 12u, 16u, 17u, 32u, 48u}) {
    for (const size_t n : {4u, 8u, 16u, 32u, 64u, 256u, 65536u}) {
      rows.push_back(row<Unit>(name + "absent/" + std::to_string(setLength) + "/" + std::to_string(n),
                               std::string(n, 'a'), members.substr(0, setLength), -1));
    }
    for (const size_t at : {2u, 12u, 40u}) {
      const size_t place = forward ? at : 4095 - at;
      rows.push_back(row<Unit>(name + "at" + std::to_string(at) + "/" + std::to_string(setLength) + "/4096",
                               replaced(std::string(4096, 'a'), place, members.substr(setLength - 1, 1)),
                               members.substr(0, setLength), static_cast<int32_t>(place)));
    }
  }
  return rows;
}

template <class Unit>
std::vector<Row<Unit>> terminatedUnitRows() {
  std::vector<Row<Unit>> rows;
  for (const size_t n : {0u, 8u, 16u, 32u, 64u, 256u, 4096u, 65536u}) {
    rows.push_back(
        row<Unit>("find_c_z/" + width<Unit>() + "absent/" + std::to_string(n), std::string(n, 'a'), "z", -1));
  }
  rows.push_back(
      row<Unit>("find_c_z/" + width<Unit>() + "at/20", replaced(std::string(4096, 'a'), 20, "z"), "z", 20));
  return rows;
}

// An export with the arguments text, length, other, length, index.
template <class Unit, auto search>
int32_t ours(const Unit* text, int32_t length, const Unit* other, int32_t otherLength) {
  int32_t at = 0;
  search(units(text), length, units(other), otherLength, &at);
  return at;
}

template <class Unit, auto search>
int32_t oursUnit(const Unit* text, int32_t length, const Unit* other, int32_t) {
  int32_t at = 0;
  search(units(text), length, *units(other), &at);
  return at;
}

template <class Unit, auto search>
int32_t oursTerminated(const Unit* text, int32_t, const Unit* other, int32_t) {
  int32_t at = 0;
  search(units(text), *units(other), &at);
  return at;
}

template <class Unit>
std::basic_string_view<Unit> view(const Unit* text, int32_t length) {
  return {text, sized(length)};
}

template <class Unit>
int32_t viewFind(const Unit* text, int32_t length, const Unit* other, int32_t otherLength) {
  return index(view(text, length).find(view(other, otherLength)));
}

template <class Unit>
int32_t viewRfind(const Unit* text, int32_t length, const Unit* other, int32_t otherLength) {
  return index(view(text, length).rfind(view(other, otherLength)));
}

template <class Unit>
int32_t viewAny(const Unit* text, int32_t length, const Unit* other, int32_t otherLength) {
  return index(view(text, length).find_first_of(view(other, otherLength)));
}

template <class Unit>
int32_t viewLastAny(const Unit* text, int32_t length, const Unit* other, int32_t otherLength) {
  return index(view(text, length).find_last_of(view(other, otherLength)));
}

// What one writes for want of a reverse or a set search: a loop, with a table of flags for sets of bytes.
int32_t tableLastAny(const Byte* text, int32_t length, const Byte* other, int32_t otherLength) {
  bool flags[256] = {};
  for (int32_t i = 0; i < otherLength; ++i) flags[units(other)[i]] = true;
  while (length > 0 && !flags[units(text)[length - 1]]) --length;
  return length - 1;
}

template <class Unit>
int32_t stdFind(const Unit* text, int32_t length, const Unit* other, int32_t) {
  const Unit* end = text + length;
  const Unit* at = std::find(text, end, *other);
  return at == end ? -1 : static_cast<int32_t>(at - text);
}

template <class Unit>
int32_t loopRevC(const Unit* text, int32_t length, const Unit* other, int32_t) {
  while (length > 0 && text[length - 1] != *other) --length;
  return length - 1;
}

template <class Unit>
int32_t loopRev(const Unit* text, int32_t length, const Unit* other, int32_t otherLength) {
  for (int32_t at = length - otherLength; at >= 0; --at) {
    if (text[at] == *other && std::equal(other, other + otherLength, text + at)) return at;
  }
  return -1;
}

int32_t cMemchr(const Byte* text, int32_t length, const Byte* other, int32_t) {
  return index(std::memchr(text, *other, sized(length)), text);
}

int32_t cMemmem(const Byte* text, int32_t length, const Byte* other, int32_t otherLength) {
  return index(memmem(text, sized(length), other, sized(otherLength)), text);
}

int32_t cMemrchr(const Byte* text, int32_t length, const Byte* other, int32_t) {
  return index(memrchr(text, *other, sized(length)), text);
}

int32_t cStrcspn(const Byte* text, int32_t length, const Byte* other, int32_t) {
  const int32_t at = static_cast<int32_t>(std::strcspn(text, other));
  return at == length ? -1 : at;
}

int32_t cStrchr(const Byte* text, int32_t, const Byte* other, int32_t) {
  return index(std::strchr(text, *other), text);
}

template <class Unit>
int32_t lengthAndFind(const Unit* text, int32_t, const Unit* other, int32_t) {
  const std::basic_string_view<Unit> whole(text);
  return index(whole.find(*other));
}

}  // namespace

void addSearch() {
  add<Byte>(unitRows<Byte>("find_c"), {{"ulkch", oursUnit<Byte, ulksFindC_8u>}, {"memchr", cMemchr}});
  add<Byte>(unitRows<Byte>("find_rev_c"),
            {{"ulkch", oursUnit<Byte, ulksFindRevC_8u>}, {"memrchr", cMemrchr}});
  add<Wide>(unitRows<Wide>("find_c"),
            {{"ulkch", oursUnit<Wide, ulksFindC_16u>}, {"std_find", stdFind<Wide>}});
  add<Wide>(unitRows<Wide>("find_rev_c"),
            {{"ulkch", oursUnit<Wide, ulksFindRevC_16u>}, {"loop", loopRevC<Wide>}});
  add<Byte>(terminatedUnitRows<Byte>(),
            {{"ulkch", oursTerminated<Byte, ulksFindC_Z_8u>}, {"strchr", cStrchr}});
  add<Wide>(terminatedUnitRows<Wide>(),
            {{"ulkch", oursTerminated<Wide, ulksFindC_Z_16u>}, {"u16string_view", lengthAndFind<Wide>}});
  add<Byte>(substringRows<Byte>("find"),
            {{"ulkch", ours<Byte, ulksFind_8u>}, {"memmem", cMemmem}, {"string_view", viewFind<Byte>}});
  add<Byte>(earlyRows<Byte>(),
            {{"ulkch", ours<Byte, ulksFind_8u>}, {"memmem", cMemmem}, {"string_view", viewFind<Byte>}});
  add<Byte>(
      substringRows<Byte>("find_rev"),
      {{"ulkch", ours<Byte, ulksFindRev_8u>}, {"string_view", viewRfind<Byte>}, {"loop", loopRev<Byte>}});
  add<Wide>(substringRows<Wide>("find"),
            {{"ulkch", ours<Wide, ulksFind_16u>}, {"u16string_view", viewFind<Wide>}});
  add<Wide>(substringRows<Wide>("find_rev"),
            {{"ulkch", ours<Wide, ulksFindRev_16u>}, {"loop", loopRev<Wide>}});
  add<Byte>(anyRows<Byte>("find_c_any"), {{"ulkch", ours<Byte, ulksFindCAny_8u>}, {"strcspn", cStrcspn}});
  add<Byte>(anyRows<Byte>("find_rev_c_any"),
            {{"ulkch", ours<Byte, ulksFindRevCAny_8u>}, {"table", tableLastAny}});
  add<Wide>(anyRows<Wide>("find_c_any"),
            {{"ulkch", ours<Wide, ulksFindCAny_16u>}, {"u16string_view", viewAny<Wide>}});
  add<Wide>(anyRows<Wide>("find_rev_c_any"),
            {{"ulkch", ours<Wide, ulksFindRevCAny_16u>}, {"u16string_view", viewLastAny<Wide>}});
}

}  // namespace bench
