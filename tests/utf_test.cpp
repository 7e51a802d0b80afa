// The UTF conversions against their rules: every code point, every kind of malformed text, every capacity,
// and the edge of accessible memory on either side.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "fuzz/utf.h"

namespace ulk_test {
namespace {

using ulk_fuzz::kAtEnd;
using ulk_fuzz::lengthOf;
using ulk_fuzz::Shifts;

using Bytes = std::vector<uint8_t>;
using Units = std::vector<uint16_t>;

template <class Unit>
std::vector<Unit> operator+(std::vector<Unit> left, const std::vector<Unit>& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

template <class Unit>
std::vector<Unit> upTo(const std::vector<Unit>& units, size_t end) {
  return {units.begin(), units.begin() + static_cast<ptrdiff_t>(end)};
}

Units utf16(const std::vector<uint32_t>& values) {
  Units units;
  for (uint32_t value : values) {
    if (value > 0xFFFF) units.push_back(static_cast<uint16_t>(0xD800 + ((value - 0x10000) >> 10)));
    units.push_back(static_cast<uint16_t>(value > 0xFFFF ? 0xDC00 + (value & 0x3FF) : value));
  }
  return units;
}

Bytes utf8(const std::vector<uint32_t>& values) {
  Bytes bytes;
  for (const uint32_t value : values) bytes = std::move(bytes) + encodeWith(continuationsFor(value), value);
  return bytes;
}

class Utf : public testing::Test {
 protected:
  // The target ends where memory does.
  static void expectUtf16(const Bytes& memory, int32_t length, int32_t capacity) {
    ulk_fuzz::checkToUtf16(memory, length, capacity, {kAtEnd, 0, kAtEnd});
    ASSERT_FALSE(HasFailure()) << testing::PrintToString(memory) << " room " << capacity;
  }
  static void expectUtf16(const Bytes& source) {
    expectUtf16(source + Bytes{0}, lengthOf(source), lengthOf(source));
  }
  static void expectUtf8(const Units& native, int32_t capacity) {
    ulk_fuzz::checkToUtf8(native, capacity, {kAtEnd, 0, kAtEnd});
    ASSERT_FALSE(HasFailure()) << testing::PrintToString(native) << " room " << capacity;
  }
  static void expectUtf8(const Units& native) { expectUtf8(native, 3 * lengthOf(native)); }
};

// Texts that lead through every kind of block and from each to each other: runs of characters of one length.
std::vector<std::vector<uint32_t>> texts() {
  static constexpr uint32_t kAlphabets[][4] = {{'a', 0x7F, ' ', 0},
                                               {0x80, 0xE9, 0x436, 0x7FF},
                                               {0x800, 0x20AC, 0x4E2D, 0xFFFF},
                                               {0x10000, 0x1F600, 0xFFFFF, 0x10FFFF},
                                               {0xD800, 0xDBFF, 0xDFFF, 0xDC00}};
  std::mt19937 random(38);
  std::vector<std::vector<uint32_t>> all;
  for (const uint32_t longest : {1u, 2u, 5u, 9u, 20u, 40u, 90u}) {
    for (int i = 0; i < 6; ++i) {
      std::vector<uint32_t> text;
      while (text.size() < 150) {
        const auto& alphabet = kAlphabets[random() % (i < 4 ? 4 : 5)];
        for (auto run = random() % longest + 1; run > 0; --run) text.push_back(alphabet[random() % 4]);
      }
      all.push_back(text);
    }
  }
  for (const auto& alphabet : kAlphabets) {
    std::vector<uint32_t> text;
    for (int i = 0; i < 150; ++i) text.push_back(alphabet[random() % 4]);
    all.push_back(text);
  }
  return all;
}

TEST_F(Utf, Examples) {
  const struct {
    Bytes bytes;
    Units units;
    Units bigEndian;
  } examples[] = {
      {{0x41}, {0x0041}, {0x4100}},
      {{0xE2, 0x82, 0xAC}, {0x20AC}, {0xAC00}},
      {{0xC0, 0x80}, {0x00C0, 0x0080}, {0xC000, 0x8000}},
      {{0x9F, 0xFE}, {0x009F, 0x00FE}, {0x9F00, 0xFE00}},
      {{0xED, 0xA0, 0xBD}, {0xD83D}, {0x3D00}},
      {{0xF0, 0x9F, 0x98, 0x80}, {0xD83D, 0xDE00}, {0xDE00, 0xD83D}},
      {{0xFD, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF}, {0xDBBF, 0xDFFF}, {0xDFFF, 0xDBBF}},
      {{0xF4, 0x90, 0x80, 0x80}, {0xD800, 0xDC00}, {0xDC00, 0xD800}},
  };
  for (const auto& example : examples) {
    for (const int32_t bigEndian : {0, 1, 256, INT32_MIN}) {
      const Bytes source = example.bytes + Bytes{0};
      Units target(8);
      int32_t consumed = lengthOf(example.bytes);
      int32_t written = 8;
      EXPECT_EQ(ulksConvertUTF_8u16u(source.data(), &consumed, target.data(), &written, bigEndian), ulkOk);
      EXPECT_EQ(consumed, lengthOf(example.bytes));
      EXPECT_EQ(upTo(target, static_cast<size_t>(written)),
                bigEndian != 0 ? example.bigEndian : example.units);
    }
  }
}

TEST_F(Utf, EveryValueAlone) {
  for (uint32_t value = 0; value <= 0x10FFFF; value += value < 0x11000 ? 1 : 0xFD) {
    expectUtf16(utf8({value}));
    expectUtf8(utf16({value}));
    if (HasFatalFailure()) return;
  }
}

TEST_F(Utf, EveryValueAmongOthers) {
  // In order, so that neighbours have one length; then each between short ones.
  for (const bool separated : {false, true}) {
    std::vector<uint32_t> values;
    for (uint32_t value = 0; value <= 0x10FFFF; value += separated ? 5 : 1) {
      values.push_back(value);
      if (separated) values.insert(values.end(), value % 3, value % 2 == 0 ? 'a' : 0xE9);
      if (values.size() >= 1800 || value >= 0x10FFFB) {
        expectUtf16(utf8(values));
        expectUtf8(utf16(values));
        if (HasFatalFailure()) return;
        values.clear();
      }
    }
  }
}

TEST_F(Utf, ValuesBeyondUnicode) {
  for (uint32_t value = 0x110000; value < 0x80000000; value += value / 61 + 1) {
    expectUtf16(utf8({value}));
    expectUtf16(utf8({'a', value, 0xE9, value + 1, 0x20AC, 0x7FFFFFFF, 0x3FFFFFF, 0x4000000}));
    if (HasFatalFailure()) return;
  }
}

// Every value at an edge between two lengths, in every length, cut short or with a byte replaced at every
// place; alone and where blocks are taken.
TEST_F(Utf, MalformedSequences) {
  std::vector<Bytes> shapes;
  for (int k = 1; k <= 5; ++k) {
    for (const SequenceForm& form : kForms) {
      for (const uint32_t value : {form.largest, form.largest / 2, form.largest + 1, 0u}) {
        if (value > kForms[k].largest) continue;
        const Bytes sequence = encodeWith(k, value);
        shapes.push_back(sequence);
        for (size_t cut = 1; cut < sequence.size(); ++cut) {
          shapes.push_back(upTo(sequence, cut));
          for (const uint8_t wrong : Bytes{0x00, 0x41, 0x7F, 0xC0, 0xC2, 0xE0, 0xF0, 0xFF}) {
            shapes.push_back(sequence);
            shapes.back()[cut] = wrong;
          }
        }
      }
    }
  }
  const Bytes tails[] = {Bytes(70, 'z'), utf8(std::vector<uint32_t>(35, 0x436)),
                         utf8(std::vector<uint32_t>(25, 0x4E2D)), Bytes(70, 0x9F)};
  for (const Bytes& shape : shapes) {
    expectUtf16(shape);
    for (size_t i = 0; i < std::size(tails); ++i) {
      expectUtf16(upTo(tails[i], shape.size() + 2 * i) + shape + tails[(i + 1) % std::size(tails)]);
      expectUtf16(Bytes(13, 'q') + shape + tails[i]);
    }
    if (HasFatalFailure()) return;
  }
}

// Among others of four bytes, which are taken in fours.
TEST_F(Utf, FourByteSequencesAmongTheirLike) {
  const Bytes shapes[] = {{0xF0, 0x80, 0x80, 0x80}, {0xF0, 0x8F, 0xBF, 0xBF}, {0xF0, 0x90, 0x80, 0x80},
                          {0xF4, 0x8F, 0xBF, 0xBF}, {0xF4, 0x90, 0x80, 0x80}, {0xF7, 0xBF, 0xBF, 0xBF},
                          {0xF8, 0x9F, 0x98, 0x80}, {0xE0, 0x9F, 0x98, 0x80}, {0xF0, 0x1F, 0x98, 0x80},
                          {0xF0, 0x9F, 0xD8, 0x80}, {0xF0, 0x9F, 0x98, 0x40}, {0xF0, 0x9F, 0x98},
                          {0xE2, 0x82, 0xAC, 0x41}};
  const uint32_t values[] = {0x1F600, 0x10000, 0x10FFFF, 0xFFFFF, 0x2A6D6};
  for (const Bytes& shape : shapes) {
    for (size_t place = 0; place < 9; ++place) {
      Bytes text = {0xE4, 0xB8, 0xAD};
      for (size_t i = 0; i < 24; ++i) text = text + (i % 12 == place ? shape : utf8({values[i % 5]}));
      expectUtf16(text);
      ASSERT_FALSE(HasFatalFailure()) << "place " << place;
    }
  }
}

// All texts of three bytes of every role, at every place of a block.
TEST_F(Utf, EveryMixtureOfRoles) {
  const Bytes roles = {0x00, 0x7F, 0x80, 0x9F, 0xA0, 0xBF, 0xC0, 0xC1, 0xC2, 0xDF, 0xE0, 0xE1,
                       0xED, 0xEF, 0xF0, 0xF4, 0xF7, 0xF8, 0xFB, 0xFC, 0xFD, 0xFE, 0xFF};
  size_t place = 0;
  for (const uint8_t a : roles) {
    for (const uint8_t b : roles) {
      for (const uint8_t c : roles) {
        expectUtf16({a, b, c});
        expectUtf16(Bytes(place++ % 17, 'x') + Bytes{a, b, c} + Bytes(45, 'y'));
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST_F(Utf, RandomBytes) {
  std::mt19937 random(39);
  for (int i = 0; i < 3000; ++i) {
    // From one sequence to the next: well formed, or any bytes of a few kinds.
    Bytes text;
    const auto disorder = random() % 5;
    while (text.size() < 120) {
      if (random() % 5 >= disorder) {
        text = text + utf8({static_cast<uint32_t>(random()) >> (random() % 27 + 5)});
      } else {
        text.push_back(static_cast<uint8_t>(random() % 3 == 0 ? 0x80 + random() % 0x40 : random() % 0x100));
      }
    }
    expectUtf16(text);
    if (HasFatalFailure()) return;
  }
}

// All texts of four units of every role, at the end and at every place of a block.
TEST_F(Utf, UnpairedSurrogates) {
  const Units roles = {0x41, 0xE9, 0x4E2D, 0xD7FF, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000};
  size_t place = 0;
  for (size_t i = 0; i < 9 * 9 * 9 * 9; ++i) {
    const Units text = {roles[i % 9], roles[i / 9 % 9], roles[i / 81 % 9], roles[i / 729]};
    expectUtf8(text);
    expectUtf8(Units(place % 17, 'x') + text + Units(20, place % 2 == 0 ? 'y' : 0x436));
    ++place;
    if (HasFatalFailure()) return;
  }
}

TEST_F(Utf, EveryCapacityAndLength) {
  for (const std::vector<uint32_t>& text : texts()) {
    const Bytes bytes = utf8(text);
    const Units units = utf16(text);
    for (int32_t capacity = 0; capacity <= lengthOf(bytes) + 2; ++capacity) {
      if (capacity <= lengthOf(units) + 3) expectUtf16(bytes, lengthOf(bytes), capacity);
      expectUtf8(units, capacity);
      if (HasFatalFailure()) return;
    }
    // A room of any size may be claimed as long as what is written has its place.
    expectUtf16(bytes + Bytes{0}, lengthOf(bytes), INT32_MAX);
    expectUtf8(units, INT32_MAX);
    // Cut within a sequence as well: only the zero byte after the text may be looked at.
    for (size_t length = 0; length <= 130; ++length) {
      expectUtf16(upTo(bytes, length));
      expectUtf8(upTo(units, length));
      if (HasFatalFailure()) return;
    }
  }
}

// Neither side needs an alignment, not even that of a 16-bit unit.
TEST_F(Utf, EveryAlignment) {
  const std::vector<std::vector<uint32_t>> all = texts();
  for (size_t i = 0; i < all.size(); i += 5) {
    const Bytes bytes = utf8(all[i]);
    const Units units = utf16(all[i]);
    for (size_t shift = 0; shift <= kAtEnd; ++shift) {
      for (const Shifts shifts : {Shifts{shift, 0, 15}, Shifts{shift, 0, kAtEnd - shift}}) {
        ulk_fuzz::checkToUtf16(bytes + Bytes{0}, lengthOf(bytes), lengthOf(units), shifts);
        ulk_fuzz::checkToUtf8(units, lengthOf(bytes), shifts);
      }
      ASSERT_FALSE(HasFailure()) << "shift " << shift;
    }
  }
}

// The conversion ends at exactly no source or exactly no room, and passes both where a sequence does.
TEST_F(Utf, PassesTheEndsWhereASequenceDoes) {
  const struct {
    Bytes memory;
    int32_t length;
    int32_t capacity;
    int32_t consumed;
    int32_t written;
  } cases[] = {
      // One unit of room and a pair.
      {{0xF0, 0x9F, 0x98, 0x80}, 4, 1, 4, 2},
      {{0x41, 0xF0, 0x9F, 0x98, 0x80}, 5, 1, 1, 1},
      {{0x41, 0xF0, 0x9F, 0x98, 0x80, 0x42, 0x43}, 7, 2, 7, 5},
      // The last sequence is completed by what lies behind the source; there is room for one unit only.
      {{0xE2, 0x82, 0xAC}, 1, 1, 3, 1},
      // With more room, the conversion goes on there.
      {{0xE2, 0x82, 0xAC, 0x41, 0x42, 0x43}, 2, 3, 5, 3},
      {{0x41, 0xC3, 0xA9, 0x42}, 2, 3, 4, 3},
      {{0x41, 0x42, 0xE2, 0x82, 0xAC, 0x43, 0x44}, 3, 5, 7, 5},
      // Room for fewer units than the source has bytes, and for more.
      {{0xFC, 0x84, 0x80, 0x80, 0x80, 0x80, 0x41, 0x42}, 4, 4, 8, 4},
      {{0x41, 0x42, 0x43, 0xFC, 0x84, 0x80, 0x80, 0x80, 0x80, 0x41, 0x42}, 4, 7, 11, 7},
      // Both at once is not tried: nothing would stop it.
  };
  for (const auto& c : cases) {
    const Converted<uint16_t> reference =
        referenceToUtf16(c.memory + Bytes(8, 0), c.length, c.capacity, false);
    EXPECT_EQ(reference.consumed, c.consumed);
    EXPECT_EQ(lengthOf(reference.units), c.written);
    expectUtf16(c.memory, c.length, c.capacity);
    // The same after as much text as is taken in blocks.
    expectUtf16(Bytes(200, 'x') + c.memory, c.length + 200, c.capacity + 200);
    const Bytes cyrillic = utf8(std::vector<uint32_t>(100, 0x436));
    expectUtf16(cyrillic + c.memory, c.length + 200, c.capacity + 100);
    ASSERT_FALSE(HasFatalFailure()) << testing::PrintToString(c.memory);
  }
}

// A source that ends inside a sequence is read up to the first byte that does not continue it.
TEST_F(Utf, ReadsNoFurtherThanTheSequence) {
  for (int k = 1; k <= 5; ++k) {
    const Bytes sequence = encodeWith(k, kForms[k].largest);
    for (size_t cut = 1; cut < sequence.size(); ++cut) {
      expectUtf16(upTo(sequence, cut) + Bytes{'a'}, static_cast<int32_t>(cut), 10);
      expectUtf16(Bytes(64, 'x') + upTo(sequence, cut) + Bytes{0xFF}, static_cast<int32_t>(64 + cut), 100);
      expectUtf16(sequence, static_cast<int32_t>(cut), sequence.size() > 3 ? 2 : 1);
      ASSERT_FALSE(HasFatalFailure());
    }
  }
}

TEST_F(Utf, EmptySourceOrNoRoom) {
  expectUtf16({}, 0, 5);
  expectUtf16({}, 0, 0);
  expectUtf16({'a'}, 1, 0);
  expectUtf8({}, 5);
  expectUtf8({}, 0);
  expectUtf8({'a'}, 0);
}

}  // namespace
}  // namespace ulk_test
