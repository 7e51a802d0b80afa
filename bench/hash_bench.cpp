// The hash functions beside the loops that one writes from their formulas.
#include "rows.h"
#include "ulkch.h"

namespace bench {
namespace {

template <class Unit>
using Step = uint32_t (*)(uint32_t hash, Unit unit);

template <class Unit, Step<Unit> step, uint32_t start>
int32_t loop(const Unit* text, int32_t length, const Unit*, int32_t) {
  uint32_t hash = start;
  for (int32_t i = 0; i < length; ++i) hash = step(hash, text[i]);
  return static_cast<int32_t>(hash);
}

template <class Unit>
uint32_t shift(uint32_t hash, Unit unit) {
  return hash << 1 ^ unit;
}

template <class Unit>
uint32_t times31(uint32_t hash, Unit unit) {
  return hash * 31 + unit;
}

template <class Unit>
int32_t loopToZero(const Unit* text, int32_t length, const Unit*, int32_t) {
  uint32_t hash = 5381;
  for (int32_t i = 0; i < length && text[i] != 0; ++i) hash = hash * 33 ^ text[i];
  return static_cast<int32_t>(hash);
}

template <class Unit, auto hash>
int32_t ours(const Unit* text, int32_t length, const Unit*, int32_t) {
  uint32_t value = 0;
  hash(text, length, &value);
  return static_cast<int32_t>(value);
}

// The loop's value is the answer expected.
template <class Unit, auto hash, auto loop>
void addHash(const std::string& name) {
  std::vector<Row<Unit>> rows;
  for (const size_t units : {0u, 4u, 8u, 13u, 16u, 24u, 31u, 32u, 47u, 64u, 256u, 4096u, 65536u, 1u << 20}) {
    const std::string text = noise(units, 'q');
    Row<Unit> row{name + "/" + std::to_string(units), {}, {}, 0};
    for (const char c : text) row.text += static_cast<Unit>(static_cast<unsigned char>(c) * 0x101u);
    row.expected = loop(row.text.data(), static_cast<int32_t>(units), nullptr, 0);
    rows.push_back(row);
  }
  add<Unit>(rows, {{"ulkch", ours<Unit, hash>}, {"loop", loop}});
}

}  // namespace

void addHash() {
  addHash<uint8_t, ulksHash_8u32u, loop<uint8_t, shift<uint8_t>, 0>>("hash/8u");
  addHash<uint16_t, ulksHash_16u32u, loop<uint16_t, shift<uint16_t>, 0>>("hash/16u");
  addHash<uint8_t, ulksHashMSCS_8u32u, loopToZero<uint8_t>>("hash_mscs/8u");
  addHash<uint16_t, ulksHashMSCS_16u32u, loopToZero<uint16_t>>("hash_mscs/16u");
  addHash<uint8_t, ulksHashSJ2_8u32u, loop<uint8_t, times31<uint8_t>, 0>>("hash_sj2/8u");
  addHash<uint16_t, ulksHashSJ2_16u32u, loop<uint16_t, times31<uint16_t>, 0>>("hash_sj2/16u");
}

}  // namespace bench
