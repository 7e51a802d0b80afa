#include <algorithm>

#include "regexp/program/program.h"

namespace ulk {
namespace {

// A width above what a node's operand holds is refused wherever it comes up, so nothing above it need be told
// apart.
constexpr int64_t kTooWide = int64_t{INT32_MAX} + 1;

int64_t plus(int64_t a, int64_t b) { return std::min(a + b, kTooWide); }

}  // namespace

int64_t fixedWidth(const RxNode* nodes, int32_t first, int32_t last) {
  int64_t width = 0;
  int64_t itemWidth = 0;
  int64_t firstAlternative = -1;
  for (int32_t i = first; i < last; ++i) {
    const RxNode& node = nodes[i];
    switch (node.code) {
      case RX_CLASS:
        i += memberCount(node);
        [[fallthrough]];
      case RX_CHAR:
      case RX_CHARTYPE:
      case RX_CODEPOINT:
      case RX_CATEGORY:
      case RX_UNIRANGE:
      case RX_SCRIPT:
      case RX_XSEQ:
        width = plus(width, 1);
        itemWidth = 1;
        break;
      case RX_STRING:
        width = plus(width, stringLength(node));
        break;
      case RX_REPEAT:
      case RX_REPEAT_LAZY:
        if (minOf(node) >= 1) width = plus(width, (minOf(node) - 1) * itemWidth);
        break;
      case RX_LOOKBEHIND:
      case RX_NLOOKBEHIND:
      case RX_LOOKAHEAD:
      case RX_NLOOKAHEAD:
        i += bodyLength(node);
        break;
      case RX_CAPTURE:
      case RX_GROUP:
      case RX_ATOMIC:
        itemWidth = fixedWidth(nodes, i + 1, i + 1 + bodyLength(node));
        if (itemWidth < 0) return -1;
        width = plus(width, itemWidth);
        i += bodyLength(node);
        break;
      case RX_ALT:
        if (firstAlternative >= 0 && width != firstAlternative) return -1;
        firstAlternative = width;
        width = 0;
        itemWidth = 0;
        break;
      default:
        break;  // an option group counts by what is in it, anything else has no width
    }
  }
  return firstAlternative >= 0 && width != firstAlternative ? -1 : width;
}

int64_t simpleWidth(const RxNode* nodes, int32_t first, int32_t last) {
  int64_t width = 0;
  for (int32_t i = first; i < last; ++i) {
    const RxNode& node = nodes[i];
    switch (node.code) {
      case RX_CLASS:
        i += memberCount(node);
        [[fallthrough]];
      case RX_CHAR:
      case RX_CHARTYPE:
      case RX_CODEPOINT:
      case RX_CATEGORY:
      case RX_UNIRANGE:
      case RX_SCRIPT:
      case RX_XSEQ:
        width += 1;
        break;
      case RX_STRING:
        width += stringLength(node);
        break;
      case RX_REPEAT:
        break;
      case kGap:
        width += gapWidth(node);
        i += bodyLength(node);
        break;
      default:
        return -1;
    }
  }
  return width;
}

}  // namespace ulk
