// Blocks: one row each, in code point order. Only the compiler looks a block up, so a walk over the names
// will do.

#include <cstddef>
#include <cstring>

#include "unicode/unicode.h"

namespace ulk {
namespace {

#include "unicode/blocks_table.inc"

}  // namespace

const Block* findBlock(const char* text, int32_t length) {
  for (const Block& block : kBlocks) {
    // strncmp ends at the name's own zero, should the text be the longer one.
    if (std::strncmp(block.name, text, static_cast<size_t>(length)) == 0) return &block;
  }
  return nullptr;
}

}  // namespace ulk
