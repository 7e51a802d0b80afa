// Unicode 5.1 properties for the expression engine: general categories, simple case mappings, scripts,
// blocks.
#pragma once

#include <cstdint>

#pragma GCC visibility push(hidden)

namespace ulk {

// General categories as the engine's programs hold them: the bit of a major class and, for a subcategory, one
// of the low seven bits. A mask without low bits stands for the whole class.
inline constexpr uint32_t kSubcategoryBits = 0x7F;
inline constexpr uint32_t kMark = 0x100;
inline constexpr uint32_t kUnassigned = 0x2010;

struct CodePointRange {
  uint32_t first;
  uint32_t last;
};

// True when a code point is accepted by \p of the category `mask`, or, when negated, by its \P. The two are
// not opposites: an unassigned code point is accepted by both \p{Cn} and \P{Cn}, and by no other category in
// either form. A malformed byte comes as a negative value, which counts as unassigned. `mask` is that of a
// category that exists.
bool acceptsCategory(int32_t codePoint, uint32_t mask, bool negated);

// What a category can tell of a code point, as a number below kMaxKinds: code points of one kind are accepted
// by the same categories, so many categories are tested like one.
inline constexpr int32_t kMaxKinds = 64;
int32_t kindOf(int32_t codePoint);

// The kinds that acceptsCategory accepts, one bit each, and the ASCII characters of some kinds.
uint64_t acceptedKinds(uint32_t mask, bool negated);
void addAsciiOfKinds(uint64_t kinds, uint32_t (&words)[4]);
// The bytes from 0xC0 on that their characters begin with in UTF-8, one bit each, and perhaps others.
uint64_t leadsOfKinds(uint64_t kinds);

// True for a combining mark: Mn, Mc or Me.
bool isMark(int32_t codePoint);

// The lowercase mapping of a code point that has one of its own; any other code point as it is.
int32_t foldCase(int32_t codePoint);

struct Script {
  const char* name;
  const CodePointRange* ranges;
  int32_t numRanges;
};

// The script whose name the text starts with, up to and including a "}"; null if there is none. Reads no byte
// past the first that differs.
const Script* findScript(const char* text);

// The number of the script that the code point belongs to, below kMaxScripts; 0 if it belongs to none.
inline constexpr int32_t kMaxScripts = 96;
int32_t scriptOf(int32_t codePoint);
// The bytes from 0xC0 on that the characters of the script begin with in UTF-8, one bit each.
uint64_t leadsOfScript(int32_t number);

// The first block, in Unicode's order, whose name ("InBasicLatin") starts with the given text; null if there
// is none.
struct Block {
  const char* name;
  CodePointRange range;
};
const Block* findBlock(const char* text, int32_t length);

}  // namespace ulk

#pragma GCC visibility pop
