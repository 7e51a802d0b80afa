// Case conversion beside the loops that a program has without it: a range test, which the compiler can
// vectorise, for ASCII; a table of all 65536 units for the rest.
#include "rows.h"
#include "texts.h"
#include "ulkch.h"

namespace bench {
namespace {

template <class Unit, auto convert>
void ours(const Unit* text, Unit* destination, int32_t length) {
  convert(units(text), units(destination), length);
}

template <class Unit, auto convert>
void oursInPlace(const Unit*, Unit* destination, int32_t length) {
  convert(units(destination), length);
}

template <class Unit, char first, char last, int distance>
__attribute__((optimize("O3"))) void loopInPlace(const Unit*, Unit* destination, int32_t length) {
  for (int32_t i = 0; i < length; ++i) {
    const Unit unit = destination[i];
    destination[i] = unit >= first && unit <= last ? static_cast<Unit>(unit + distance) : unit;
  }
}

// Pointers that do not alias, so that the compiler need not test for it.
template <class Unit, char first, char last, int distance>
__attribute__((optimize("O3"))) void loop(const Unit* __restrict text, Unit* __restrict destination,
                                          int32_t length) {
  for (int32_t i = 0; i < length; ++i) {
    const Unit unit = text[i];
    destination[i] = unit >= first && unit <= last ? static_cast<Unit>(unit + distance) : unit;
  }
}

template <std::u16string WholeTable::*column>
__attribute__((optimize("O3"))) void table(const Wide* __restrict text, Wide* __restrict destination,
                                           int32_t length) {
  const Wide* mapped = (wholeTable().*column).data();
  for (int32_t i = 0; i < length; ++i) destination[i] = mapped[text[i]];
}

template <class Unit>
std::vector<ConversionRow<Unit>> latinRows(const std::string& name, char first, char last, int distance) {
  std::vector<ConversionRow<Unit>> rows;
  for (const size_t n : {0u, 3u, 8u, 15u, 16u, 31u, 32u, 64u, 100u, 256u, 1024u, 4096u, 65536u, 1048576u}) {
    const std::string text = english(n);
    ConversionRow<Unit> row{name + std::to_string(n), {}, {}};
    for (const char c : text) {
      row.text += static_cast<Unit>(c);
      row.expected += static_cast<Unit>(c >= first && c <= last ? c + distance : c);
    }
    rows.push_back(row);
  }
  return rows;
}

std::vector<ConversionRow<Wide>> fullRows(const std::string& name, std::u16string WholeTable::*column) {
  constexpr struct {
    const char* name;
    Script script;
  } kScripts[] = {{"english", Script::kEnglish},       {"french", Script::kFrench},
                  {"greek", Script::kGreek},           {"cyrillic", Script::kCyrillic},
                  {"vietnamese", Script::kVietnamese}, {"chinese", Script::kChinese}};
  std::vector<ConversionRow<Wide>> rows;
  for (const auto& script : kScripts) {
    for (const size_t n : {4u, 8u, 16u, 32u, 64u, 256u, 1024u, 65536u, 1048576u}) {
      ConversionRow<Wide> row{
          name + script.name + "/" + std::to_string(n), written(english(n), script.script), {}};
      for (const Wide unit : row.text) row.expected += (wholeTable().*column)[unit];
      rows.push_back(row);
    }
  }
  return rows;
}

}  // namespace

void addCase() {
  addConversions<Byte>(latinRows<Byte>("lowercase_latin/8u/", 'A', 'Z', 32),
                       {{"ulkch", ours<Byte, ulksLowercaseLatin_8u>}, {"loop", loop<Byte, 'A', 'Z', 32>}});
  addConversions<Byte>(latinRows<Byte>("uppercase_latin/8u/", 'a', 'z', -32),
                       {{"ulkch", ours<Byte, ulksUppercaseLatin_8u>}, {"loop", loop<Byte, 'a', 'z', -32>}});
  addConversions<Wide>(latinRows<Wide>("lowercase_latin/16u/", 'A', 'Z', 32),
                       {{"ulkch", ours<Wide, ulksLowercaseLatin_16u>}, {"loop", loop<Wide, 'A', 'Z', 32>}});
  addConversions<Wide>(latinRows<Wide>("uppercase_latin/16u/", 'a', 'z', -32),
                       {{"ulkch", ours<Wide, ulksUppercaseLatin_16u>}, {"loop", loop<Wide, 'a', 'z', -32>}});
  addConversions<Byte>(
      latinRows<Byte>("uppercase_latin_in_place/8u/", 'a', 'z', -32),
      {{"ulkch", oursInPlace<Byte, ulksUppercaseLatin_8u_I>}, {"loop", loopInPlace<Byte, 'a', 'z', -32>}},
      true);
  addConversions<Wide>(
      latinRows<Wide>("uppercase_latin_in_place/16u/", 'a', 'z', -32),
      {{"ulkch", oursInPlace<Wide, ulksUppercaseLatin_16u_I>}, {"loop", loopInPlace<Wide, 'a', 'z', -32>}},
      true);
  addConversions<Wide>(fullRows("lowercase/16u/", &WholeTable::lower),
                       {{"ulkch", ours<Wide, ulksLowercase_16u>}, {"table64k", table<&WholeTable::lower>}});
  addConversions<Wide>(fullRows("uppercase/16u/", &WholeTable::upper),
                       {{"ulkch", ours<Wide, ulksUppercase_16u>}, {"table64k", table<&WholeTable::upper>}});
}

}  // namespace bench
