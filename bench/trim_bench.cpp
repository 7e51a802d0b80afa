// Trimming beside what one writes without it: std::string_view to find the ends and a block copy, or, for
// sets, a loop with a table of flags.
#include <cstring>
#include <string_view>

#include "rows.h"
#include "texts.h"
#include "ulkch.h"

namespace bench {
namespace {

template <class Unit, auto trim>
int32_t ours(const Unit* text, int32_t length, const Unit* set, int32_t setLength, Unit* destination) {
  int32_t kept = 0;
  trim(units(text), length, units(set), setLength, units(destination), &kept);
  return kept;
}

template <class Unit, auto trim>
int32_t oursUnit(const Unit* text, int32_t length, const Unit* set, int32_t, Unit* destination) {
  int32_t kept = 0;
  trim(units(text), length, *units(set), units(destination), &kept);
  return kept;
}

// In place, the text is made anew every time, by all contestants.
template <class Unit, auto trim>
int32_t oursInPlace(const Unit* text, int32_t length, const Unit* set, int32_t, Unit* destination) {
  std::memcpy(destination, text, bytes<Unit>(length));
  trim(units(destination), &length, *units(set));
  return length;
}

template <class Unit, class Unwanted>
std::basic_string_view<Unit> trimmedView(std::basic_string_view<Unit> text, Unwanted unwanted) {
  const size_t first = text.find_first_not_of(unwanted);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(unwanted) - first + 1);
}

template <class Unit>
int32_t copied(std::basic_string_view<Unit> view, Unit* destination) {
  std::memcpy(destination, view.data(), view.size() * sizeof(Unit));
  return static_cast<int32_t>(view.size());
}

template <class Unit>
std::basic_string_view<Unit> view(const Unit* text, int32_t length) {
  return {text, static_cast<size_t>(length)};
}

template <class Unit>
int32_t viewUnit(const Unit* text, int32_t length, const Unit* set, int32_t, Unit* destination) {
  return copied(trimmedView(view(text, length), *set), destination);
}

template <class Unit>
int32_t viewInPlace(const Unit* text, int32_t length, const Unit* set, int32_t, Unit* destination) {
  std::memcpy(destination, text, bytes<Unit>(length));
  const auto kept = trimmedView(view<Unit>(destination, length), *set);
  std::memmove(destination, kept.data(), kept.size() * sizeof(Unit));
  return static_cast<int32_t>(kept.size());
}

template <class Unit>
int32_t viewSet(const Unit* text, int32_t length, const Unit* set, int32_t setLength, Unit* destination) {
  return copied(trimmedView(view(text, length), view(set, setLength)), destination);
}

template <bool start, bool end>
int32_t tableSet(const Byte* text, int32_t length, const Byte* set, int32_t setLength, Byte* destination) {
  bool unwanted[256] = {};
  for (int32_t i = 0; i < setLength; ++i) unwanted[units(set)[i]] = true;
  if (start) {
    while (length > 0 && unwanted[*units(text)]) ++text, --length;
  }
  if (end) {
    while (length > 0 && unwanted[units(text)[length - 1]]) --length;
  }
  std::memcpy(destination, text, bytes<Byte>(length));
  return length;
}

// Texts with runs of set members at the ends that are trimmed; the last member is the one that they hold.
template <class Unit>
std::vector<EditRow<Unit>> rows(const std::string& name, const std::string& set, bool start, bool end) {
  std::vector<EditRow<Unit>> made;
  const auto row = [&](size_t run, size_t kept) {
    const std::string text = english(kept - 1) + 'e';
    made.push_back(
        {name + "/" + std::to_string(run) + "/" + std::to_string(kept),
         as<Unit>(std::string(start ? run : 0, set.back()) + text + std::string(end ? run : 0, set.back())),
         as<Unit>(set), as<Unit>(text)});
  };
  for (const size_t kept : {8u, 32u, 256u, 4096u}) {
    for (const size_t run : {0u, 1u, 3u}) row(run, kept);
  }
  for (const size_t run : {8u, 20u, 100u, 1000u, 1u << 19}) row(run, 32);
  return made;
}

// `count` members: white space, signs and digits, then bytes beyond ASCII; what the runs are made of comes
// last.
std::string members(size_t count) {
  std::string most = "\t\r\n\v\f_-+#$%&/()=?!\"'`<>|{}[]@^~;:\\0123456789";
  for (int32_t beyond = 0x80; beyond <= 0xFF; ++beyond) most += static_cast<char>(beyond);
  return most.substr(0, count - 1) + ' ';
}

}  // namespace

void addTrim() {
  const std::string star = "*";
  addEdits<Byte>(rows<Byte>("trim_c/8u", star, true, true),
                 {{"ulkch", oursUnit<Byte, ulksTrimC_8u>}, {"string_view", viewUnit<Byte>}});
  addEdits<Wide>(rows<Wide>("trim_c/16u", star, true, true),
                 {{"ulkch", oursUnit<Wide, ulksTrimC_16u>}, {"u16string_view", viewUnit<Wide>}});
  addEdits<Byte>(rows<Byte>("trim_c_in_place/8u", star, true, true),
                 {{"ulkch", oursInPlace<Byte, ulksTrimC_8u_I>}, {"string_view", viewInPlace<Byte>}});
  addEdits<Wide>(rows<Wide>("trim_c_in_place/16u", star, true, true),
                 {{"ulkch", oursInPlace<Wide, ulksTrimC_16u_I>}, {"u16string_view", viewInPlace<Wide>}});
  for (const size_t count : {1u, 4u, 12u, 24u}) {
    const std::string set = members(count);
    const auto name = [count](std::string family) { return family += std::to_string(count); };
    addEdits<Byte>(rows<Byte>(name("trim_c_any/8u/"), set, true, true),
                   {{"ulkch", ours<Byte, ulksTrimCAny_8u>},
                    {"string_view", viewSet<Byte>},
                    {"table", tableSet<true, true>}});
    addEdits<Wide>(rows<Wide>(name("trim_c_any/16u/"), set, true, true),
                   {{"ulkch", ours<Wide, ulksTrimCAny_16u>}, {"u16string_view", viewSet<Wide>}});
  }
  addEdits<Byte>(rows<Byte>("trim_c_any/8u/160", members(160), true, true),
                 {{"ulkch", ours<Byte, ulksTrimCAny_8u>}, {"table", tableSet<true, true>}});
  addEdits<Byte>(rows<Byte>("trim_start_c_any/8u/4", members(4), true, false),
                 {{"ulkch", ours<Byte, ulksTrimStartCAny_8u>}, {"table", tableSet<true, false>}});
  addEdits<Byte>(rows<Byte>("trim_end_c_any/8u/4", members(4), false, true),
                 {{"ulkch", ours<Byte, ulksTrimEndCAny_8u>}, {"table", tableSet<false, true>}});
}

}  // namespace bench
