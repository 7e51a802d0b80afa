#include "regexp/program/characters.h"

#include "unicode/unicode.h"

namespace ulk {

bool codePointAccepts(const RxNode& node, int32_t codePoint, uint32_t options) {
  if (codePointOf(node) == codePoint) return true;
  return (options & RX_OPT_CASELESS) && foldCase(codePointOf(node)) == foldCase(codePoint);
}

bool propertyAccepts(const RxNode& node, int32_t codePoint) {
  switch (codeOf(node)) {
    case RX_CATEGORY:
      return acceptsCategory(codePoint, static_cast<uint32_t>(categoryMask(node)),
                             propertyNegation(node) != 0);
    case RX_UNIRANGE:
      return (lowOf(node) <= codePoint && codePoint <= highOf(node)) != (memberNegation(node) != 0);
    case RX_SCRIPT:
      return (scriptOf(codePoint) == scriptNumber(node)) != (propertyNegation(node) != 0);
    default:
      return false;
  }
}

}  // namespace ulk
