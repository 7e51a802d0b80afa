#include "support/dump.h"

#include <array>
#include <cstdio>

#include "unicode/unicode.h"

namespace ulk {
namespace {

template <class... Args>
std::string format(const char* pattern, Args... args) {
  char buffer[80];
  std::snprintf(buffer, sizeof buffer, pattern, args...);
  return buffer;
}

std::string character(int32_t value) {
  if (value > ' ' && value < 127) return std::string(1, static_cast<char>(value));
  if (value >= 0 && value < 256) return format("\\x%02X", static_cast<unsigned>(value));
  return format("\\x{%X}", static_cast<unsigned>(value));
}

std::string letters(int32_t options) {
  std::string text;
  for (int bit = 0; bit < 5; ++bit) {
    if (options & (1 << bit)) text += "smixg"[bit];
  }
  return text.empty() ? "-" : text;
}

std::string optionSuffix(int32_t options) { return options ? "," + letters(options) : ""; }

std::string bounds(const RxNode& node) {
  return format("%d..", node.op1) + (node.op2 == kUnbounded ? "*" : format("%d", node.op2));
}

std::string open(const char* name, const RxNode& node) {
  return format("%s#%d/%d", name, node.op1, node.op2);
}

std::string string(const RxNode& node) {
  std::string text;
  const auto* const bytes = static_cast<const uint8_t*>(node.text);
  for (int32_t i = 0; i < node.op2; ++i) text += bytes[i] == ' ' ? " " : character(bytes[i]);
  return "string:\"" + text + "\"";
}

std::string script(const RxNode& node) {
  const auto* const ranges = static_cast<const CodePointRange*>(node.text);
  return format("script:%X(%d)", ranges[0].first, node.op3);
}

std::string assertion(int32_t kind) {
  return kind == kLeadingDotStar ? "assert:dotstar" : "assert:" + character(kind);
}

bool isNegated(const RxNode& node, bool member) {
  switch (node.code) {
    case RX_CATEGORY:
    case RX_SCRIPT:
      return node.op2 != 0;
    case RX_UNIRANGE:
      return node.op3 != 0;
    case RX_CHAR:
    case RX_RANGE:
    case RX_CHARTYPE:
    case RX_CODEPOINT:
      return member && node.op3 != 0;
    default:
      return false;
  }
}

std::string word(const RxNode& node) {
  switch (node.code) {
    case RX_CHAR:
      return "char:" + character(node.op1);
    case RX_STRING:
      return string(node);
    case RX_BACKREF:
      return format("backref:%d", node.op1) + (node.op2 ? "?" : "");
    case RX_CHARTYPE:
      return "type:" + character(node.op1);
    case RX_ASSERT:
      return assertion(node.op1);
    case RX_ALT:
      return format("alt#%d", node.op1) + optionSuffix(node.op2);
    case RX_RANGE:
      return "range:" + character(node.op1) + "-" + character(node.op2);
    case RX_REPEAT_LAZY:
      return "lazy:" + bounds(node);
    case RX_REPEAT:
      return "repeat:" + bounds(node);
    case RX_LOOKBEHIND:
      return open("lookbehind", node) + format(":%d", node.op3);
    case RX_NLOOKBEHIND:
      return open("nlookbehind", node) + format(":%d", node.op3);
    case RX_LOOKAHEAD:
      return open("lookahead", node);
    case RX_NLOOKAHEAD:
      return open("nlookahead", node);
    case RX_OPTGROUP:
      return open("optgroup", node) + ":" + letters(node.op3);
    case RX_COND:
      return open("cond", node);
    case RX_CAPTURE:
      return open("capture", node) + format(":%d", node.op3);
    case RX_GROUP:
      return open("group", node);
    case RX_ATOMIC:
      return open("atomic", node);
    case RX_END:
      return format("end#%d", node.op1) + optionSuffix(node.op2) + (node.op3 ? format("=%d", node.op3) : "");
    case RX_OPTIONS:
      return "options:" + letters(node.op1);
    case RX_BYTE:
      return "byte";
    case RX_CODEPOINT:
      return "codepoint:" + character(node.op1);
    case RX_CATEGORY:
      return format("category:%X", static_cast<unsigned>(node.op1));
    case RX_UNIRANGE:
      return "unirange:" + character(node.op1) + "-" + character(node.op2);
    case RX_SCRIPT:
      return script(node);
    case RX_XSEQ:
      return "xseq";
    default:
      return format("?%X", node.code);
  }
}

std::string item(const RxNode& node, bool member) {
  return (isNegated(node, member) ? "!" : "") + word(node);
}

std::string bracketClass(const RxNode* header) {
  std::string text = header->op1 ? "class^[" : "class[";
  for (int32_t i = 1; i <= header->op2; ++i) text += (i > 1 ? " " : "") + item(header[i], true);
  return text + "]";
}

}  // namespace

std::string dump(const ulkRegExpState& state) {
  std::string text;
  const auto add = [&](const std::string& next) { text += (text.empty() ? "" : " ") + next; };
  const RxNode* const nodes = state.nodes();
  for (int32_t i = 0; i < state.numNodes; ++i) {
    if (nodes[i].code == RX_CLASS) {
      add(bracketClass(nodes + i));
      i += nodes[i].op2;
    } else {
      add(item(nodes[i], false));
    }
  }
  if (state.numCaptures != 1) add(format("slots=%d", state.numCaptures));
  const int32_t last = state.trailingLiteral;
  if (last >= 0) add(format("last=%d", last) + optionSuffix(nodes[last].op3));
  return text;
}

}  // namespace ulk
