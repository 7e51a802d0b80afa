// The comparison family beside the C library and the loops that a program has without it. Only the sign of an
// answer is checked: the peers give no more.
#include <strings.h>

#include <cstring>
#include <string>

#include "rows.h"
#include "texts.h"
#include "ulkch.h"

namespace bench {
namespace {

int32_t sign(int32_t number) { return (number > 0) - (number < 0); }

template <class Unit, auto compare>
int32_t ours(const Unit* left, int32_t length, const Unit* right, int32_t) {
  int32_t result = 0;
  compare(units(left), units(right), length, &result);
  return sign(result);
}

template <class Unit, auto equal>
int32_t oursEqual(const Unit* left, int32_t length, const Unit* right, int32_t) {
  int32_t result = 0;
  equal(units(left), units(right), length, &result);
  return result - 1;
}

template <class Unit>
int32_t cMemcmpEqual(const Unit* left, int32_t length, const Unit* right, int32_t) {
  return std::memcmp(left, right, static_cast<size_t>(length) * sizeof(Unit)) == 0 ? 0 : -1;
}

int32_t cMemcmp(const Byte* left, int32_t length, const Byte* right, int32_t) {
  return sign(std::memcmp(left, right, static_cast<size_t>(length)));
}

int32_t cStrncasecmp(const Byte* left, int32_t length, const Byte* right, int32_t) {
  return sign(strncasecmp(left, right, static_cast<size_t>(length)));
}

int32_t stdCompare(const Wide* left, int32_t length, const Wide* right, int32_t) {
  return sign(std::char_traits<Wide>::compare(left, right, static_cast<size_t>(length)));
}

template <class Fold>
int32_t foldedLoop(const Wide* left, const Wide* right, int32_t length, Fold fold) {
  for (int32_t i = 0; i < length; ++i) {
    const int32_t difference = int32_t{fold(left[i])} - int32_t{fold(right[i])};
    if (difference != 0) return sign(difference);
  }
  return 0;
}

int32_t latinLoop(const Wide* left, int32_t length, const Wide* right, int32_t) {
  return foldedLoop(left, right, length, [](Wide unit) {
    return unit >= 'A' && unit <= 'Z' ? static_cast<Wide>(unit + 32) : unit;
  });
}

int32_t tableLoop(const Wide* left, int32_t length, const Wide* right, int32_t) {
  const Wide* lower = wholeTable().lower.data();
  return foldedLoop(left, right, length, [lower](Wide unit) { return lower[unit]; });
}

constexpr size_t kLengths[] = {0, 3, 7, 8, 15, 16, 24, 32, 40, 64, 100, 256, 1024, 4096, 65536, 1048576};

std::string otherCase(std::string text) {
  for (char& c : text) {
    if ((c | 0x20) >= 'a' && (c | 0x20) <= 'z') c = static_cast<char>(c ^ 0x20);
  }
  return text;
}

// Equal strings, and long ones that differ somewhere on the way.
template <class Unit>
std::vector<Row<Unit>> rowsOf(const std::string& name, std::string (*right)(std::string)) {
  std::vector<Row<Unit>> rows;
  for (const size_t n : kLengths) {
    rows.push_back(
        {name + "same/" + std::to_string(n), as<Unit>(english(n)), as<Unit>(right(english(n))), 0});
  }
  for (const size_t at : {1u, 10u, 40u, 200u}) {
    std::string greater = right(english(4096));
    greater[at] = '~';
    rows.push_back({name + "at/" + std::to_string(at), as<Unit>(english(4096)), as<Unit>(greater), -1});
  }
  return rows;
}

std::string itself(std::string text) { return text; }

// Equal strings, and one that differs in its last unit.
std::vector<Row<Wide>> fullRows() {
  std::vector<Row<Wide>> rows;
  const auto add = [&](const std::string& name, Script script, std::string (*right)(std::string)) {
    for (const size_t n : {8u, 16u, 32u, 64u, 256u, 1024u, 65536u}) {
      rows.push_back({"compare_ignore_case/16u/" + name + "/" + std::to_string(n),
                      written(english(n), script), written(right(english(n)), script), 0});
    }
    for (const size_t n : {16u, 64u, 256u}) {
      std::u16string greater = written(right(english(n)), script);
      greater.back() = 0xFFFF;
      rows.push_back({"compare_ignore_case/16u/" + name + "/last/" + std::to_string(n),
                      written(english(n), script), greater, -1});
    }
  };
  add("english", Script::kEnglish, itself);
  add("english_case", Script::kEnglish, otherCase);
  add("french_case", Script::kFrench, otherCase);
  add("greek_case", Script::kGreek, otherCase);
  add("cyrillic", Script::kCyrillic, itself);
  add("cyrillic_case", Script::kCyrillic, otherCase);
  add("vietnamese_case", Script::kVietnamese, otherCase);
  add("chinese", Script::kChinese, itself);
  return rows;
}

}  // namespace

void addCompare() {
  add<Byte>(rowsOf<Byte>("compare/8u/", itself),
            {{"ulkch", ours<Byte, ulksCompare_8u>}, {"memcmp", cMemcmp}});
  add<Byte>(rowsOf<Byte>("equal/8u/", itself),
            {{"ulkch", oursEqual<Byte, ulksEqual_8u>}, {"memcmp", cMemcmpEqual<Byte>}});
  add<Wide>(rowsOf<Wide>("compare/16u/", itself),
            {{"ulkch", ours<Wide, ulksCompare_16u>}, {"char_traits", stdCompare}});
  add<Wide>(rowsOf<Wide>("equal/16u/", itself),
            {{"ulkch", oursEqual<Wide, ulksEqual_16u>}, {"memcmp", cMemcmpEqual<Wide>}});
  add<Byte>(rowsOf<Byte>("compare_ignore_case_latin/8u/", otherCase),
            {{"ulkch", ours<Byte, ulksCompareIgnoreCaseLatin_8u>}, {"strncasecmp", cStrncasecmp}});
  add<Wide>(rowsOf<Wide>("compare_ignore_case_latin/16u/", otherCase),
            {{"ulkch", ours<Wide, ulksCompareIgnoreCaseLatin_16u>}, {"loop", latinLoop}});
  add<Wide>(fullRows(), {{"ulkch", ours<Wide, ulksCompareIgnoreCase_16u>}, {"table64k", tableLoop}});
}

}  // namespace bench
