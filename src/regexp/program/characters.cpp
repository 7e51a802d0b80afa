#include "regexp/program/characters.h"

#include "unicode/unicode.h"

namespace ulk {

bool codePointAccepts(const RxNode& node, int32_t codePoint, uint32_t options) {
  if (node.op1 == codePoint) return true;
  return (options & RX_OPT_CASELESS) && foldCase(node.op1) == foldCase(codePoint);
}

bool propertyAccepts(const RxNode& node, int32_t codePoint) {
  switch (codeOf(node)) {
    case RX_CATEGORY:
      return acceptsCategory(codePoint, static_cast<uint32_t>(node.op1), node.op2 != 0);
    case RX_UNIRANGE:
      return (node.op1 <= codePoint && codePoint <= node.op2) != (node.op3 != 0);
    case RX_SCRIPT: {
      const auto first = static_cast<int32_t>(static_cast<const CodePointRange*>(node.text)->first);
      return (scriptOf(codePoint) == scriptOf(first)) != (node.op2 != 0);
    }
    default:
      return false;
  }
}

}  // namespace ulk
