// Insertion and removal beside the block copies that one would write in their place, replacement of a unit
// beside a loop that the compiler can vectorise. In place, the text is made anew every time, by all
// contestants.
#include <cstring>

#include "rows.h"
#include "texts.h"
#include "ulkch.h"

namespace bench {
namespace {

// Everything happens in the middle: insertion of `other` there, removal of as many units from there on.
template <class Unit, auto insert>
int32_t oursInsert(const Unit* text, int32_t length, const Unit* other, int32_t otherLength,
                   Unit* destination) {
  insert(units(text), length, units(other), otherLength, units(destination), length / 2);
  return length + otherLength;
}

template <class Unit>
int32_t copyInsert(const Unit* text, int32_t length, const Unit* other, int32_t otherLength,
                   Unit* destination) {
  const int32_t start = length / 2;
  std::memcpy(destination, text, bytes<Unit>(start));
  std::memcpy(destination + start, other, bytes<Unit>(otherLength));
  std::memcpy(destination + start + otherLength, text + start, bytes<Unit>(length - start));
  return length + otherLength;
}

template <class Unit, auto insertInPlace>
int32_t oursInsertInPlace(const Unit* text, int32_t length, const Unit* other, int32_t otherLength,
                          Unit* destination) {
  std::memcpy(destination, text, bytes<Unit>(length));
  insertInPlace(units(other), otherLength, units(destination), &length, length / 2);
  return length;
}

template <class Unit>
int32_t moveInsert(const Unit* text, int32_t length, const Unit* other, int32_t otherLength,
                   Unit* destination) {
  std::memcpy(destination, text, bytes<Unit>(length));
  Unit* place = destination + length / 2;
  std::memmove(place + otherLength, place, bytes<Unit>(length - length / 2));
  std::memcpy(place, other, bytes<Unit>(otherLength));
  return length + otherLength;
}

template <class Unit, auto remove>
int32_t oursRemove(const Unit* text, int32_t length, const Unit*, int32_t count, Unit* destination) {
  remove(units(text), length, units(destination), length / 2, count);
  return length - count;
}

template <class Unit>
int32_t copyRemove(const Unit* text, int32_t length, const Unit*, int32_t count, Unit* destination) {
  const int32_t start = length / 2;
  std::memcpy(destination, text, bytes<Unit>(start));
  std::memcpy(destination + start, text + start + count, bytes<Unit>(length - start - count));
  return length - count;
}

template <class Unit, auto removeInPlace>
int32_t oursRemoveInPlace(const Unit* text, int32_t length, const Unit*, int32_t count, Unit* destination) {
  std::memcpy(destination, text, bytes<Unit>(length));
  removeInPlace(units(destination), &length, length / 2, count);
  return length;
}

template <class Unit>
int32_t moveRemove(const Unit* text, int32_t length, const Unit*, int32_t count, Unit* destination) {
  std::memcpy(destination, text, bytes<Unit>(length));
  Unit* place = destination + length / 2;
  std::memmove(place, place + count, bytes<Unit>(length - length / 2 - count));
  return length - count;
}

template <class Unit, auto replaceC>
void oursReplace(const Unit* text, Unit* destination, int32_t length) {
  replaceC(units(text), units(destination), length, ' ', '_');
}

// Pointers that do not alias, so that the compiler need not test for it.
template <class Unit>
__attribute__((optimize("O3"))) void loopReplace(const Unit* __restrict text, Unit* __restrict destination,
                                                 int32_t length) {
  for (int32_t i = 0; i < length; ++i) destination[i] = text[i] == ' ' ? '_' : text[i];
}

template <class Unit>
std::vector<EditRow<Unit>> rows(const std::string& name, bool inserting) {
  std::vector<EditRow<Unit>> made;
  for (const size_t count : {1u, 16u, 60u}) {
    for (const size_t n : {8u, 16u, 32u, 64u, 128u, 256u, 1024u, 4096u, 65536u, 1048576u}) {
      if (count > n / 2) continue;
      const std::string text = english(n);
      const std::string other = std::string(count, '#');
      std::string expected = text;
      inserting ? expected.insert(n / 2, other) : expected.erase(n / 2, count);
      made.push_back({name + "/" + std::to_string(count) + "/" + std::to_string(n), as<Unit>(text),
                      as<Unit>(other), as<Unit>(expected)});
    }
  }
  return made;
}

template <class Unit>
std::vector<ConversionRow<Unit>> replaceRows(const std::string& name) {
  std::vector<ConversionRow<Unit>> made;
  for (const size_t n : {0u, 3u, 8u, 15u, 16u, 31u, 32u, 64u, 100u, 256u, 1024u, 4096u, 65536u, 1048576u}) {
    const std::string text = english(n);
    std::string expected = text;
    for (char& c : expected) c = c == ' ' ? '_' : c;
    made.push_back({name + "/" + std::to_string(n), as<Unit>(text), as<Unit>(expected)});
  }
  return made;
}

}  // namespace

void addEdit() {
  addEdits<Byte>(rows<Byte>("insert/8u", true),
                 {{"ulkch", oursInsert<Byte, ulksInsert_8u>}, {"memcpy", copyInsert<Byte>}});
  addEdits<Wide>(rows<Wide>("insert/16u", true),
                 {{"ulkch", oursInsert<Wide, ulksInsert_16u>}, {"memcpy", copyInsert<Wide>}});
  addEdits<Byte>(rows<Byte>("insert_in_place/8u", true),
                 {{"ulkch", oursInsertInPlace<Byte, ulksInsert_8u_I>}, {"memmove", moveInsert<Byte>}});
  addEdits<Wide>(rows<Wide>("insert_in_place/16u", true),
                 {{"ulkch", oursInsertInPlace<Wide, ulksInsert_16u_I>}, {"memmove", moveInsert<Wide>}});
  addEdits<Byte>(rows<Byte>("remove/8u", false),
                 {{"ulkch", oursRemove<Byte, ulksRemove_8u>}, {"memcpy", copyRemove<Byte>}});
  addEdits<Wide>(rows<Wide>("remove/16u", false),
                 {{"ulkch", oursRemove<Wide, ulksRemove_16u>}, {"memcpy", copyRemove<Wide>}});
  addEdits<Byte>(rows<Byte>("remove_in_place/8u", false),
                 {{"ulkch", oursRemoveInPlace<Byte, ulksRemove_8u_I>}, {"memmove", moveRemove<Byte>}});
  addEdits<Wide>(rows<Wide>("remove_in_place/16u", false),
                 {{"ulkch", oursRemoveInPlace<Wide, ulksRemove_16u_I>}, {"memmove", moveRemove<Wide>}});
  addConversions<Byte>(replaceRows<Byte>("replace_c/8u"),
                       {{"ulkch", oursReplace<Byte, ulksReplaceC_8u>}, {"loop", loopReplace<Byte>}});
  addConversions<Wide>(replaceRows<Wide>("replace_c/16u"),
                       {{"ulkch", oursReplace<Wide, ulksReplaceC_16u>}, {"loop", loopReplace<Wide>}});
}

}  // namespace bench
