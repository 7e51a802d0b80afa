// Unicode 5.1 properties for the expression engine: general categories, simple case mappings, scripts, blocks.
#pragma once

#include <cstdint>

namespace ulk {

struct CodePointRange {
  uint32_t first;
  uint32_t last;
};

// True when a code point of general category `mask` is accepted (negated: by \P or \p{^...}).
// A malformed byte comes as a negative value, which has no table entry.
bool acceptsCategory(int32_t codePoint, uint32_t mask, bool negated);

// True for a combining mark: Mn, Mc or Me.
bool isMark(int32_t codePoint);

// The lowercase mapping of a code point that has one of its own; any other code point as it is.
int32_t foldCase(int32_t codePoint);

struct Script {
  const char* name;
  const CodePointRange* ranges;
  int32_t numRanges;
};

// The script whose name the text starts with, up to and including a "}"; null if there is none. Reads no byte past
// the first that differs.
const Script* findScript(const char* text);

// True when codePoint lies in one of the ranges, which are in ascending order and do not overlap.
bool inRanges(int32_t codePoint, const CodePointRange* ranges, int32_t numRanges);

// The first block, in Unicode's order, whose name ("InBasicLatin") starts with the given text; null if there is none.
struct Block {
  const char* name;
  CodePointRange range;
};
const Block* findBlock(const char* text, int32_t length);

}  // namespace ulk
