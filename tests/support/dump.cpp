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

std::string string(const RxNode& node) {
  std::string text;
  const uint8_t* const bytes = stringOf(node);
  for (int32_t i = 0; i < stringLength(node); ++i) text += bytes[i] == ' ' ? " " : character(bytes[i]);
  return "\"" + text + "\"";
}

bool isNegated(const RxNode& node, bool member) {
  if (codeOf(node) == RX_CATEGORY || codeOf(node) == RX_SCRIPT) return propertyNegation(node) != 0;
  const bool canBe = codeOf(node) == RX_CHAR || codeOf(node) == RX_RANGE || codeOf(node) == RX_CHARTYPE ||
                     codeOf(node) == RX_CODEPOINT;
  return (codeOf(node) == RX_UNIRANGE || (member && canBe)) && memberNegation(node) != 0;
}

std::string optionSuffix(int32_t options) { return options ? "," + letters(options) : ""; }

// What a digit or capital of the words below stands for.
std::string field(char form, const RxNode& node) {
  const auto number = [](int32_t value) { return std::to_string(value); };
  return form == '1'   ? number(node.op1)
         : form == '2' ? number(node.op2)
         : form == '3' ? number(node.op3)
         : form == 'A' ? (assertionOf(node) == kLeadingDotStar ? "dotstar" : character(node.op1))
         : form == 'B' ? character(node.op2)
         : form == 'E' ? (repeatMark(node) ? "=" + number(repeatMark(node)) : "")
         : form == 'G' ? letters(optionsInside(node))
         : form == 'H' ? format("%X", static_cast<unsigned>(categoryMask(node)))
         : form == 'M' ? (maxOf(node) == kUnbounded ? "*" : number(maxOf(node)))
         : form == 'O' ? letters(newOptions(node))
         : form == 'P' ? optionSuffix(optionsBehind(node))
         : form == 'Q' ? (node.op2 ? "?" : "")
         : form == 'T' ? string(node)
                       : std::string(1, form);
}

const struct {
  uint32_t code;
  const char* form;
} kWords[] = {{RX_CHAR, "char:A"},
              {RX_STRING, "string:T"},
              {RX_BACKREF, "backref:1Q"},
              {RX_CHARTYPE, "type:A"},
              {RX_ASSERT, "assert:A"},
              {RX_ALT, "alt#1P"},
              {RX_RANGE, "range:A-B"},
              {RX_REPEAT_LAZY, "lazy:1..M"},
              {RX_REPEAT, "repeat:1..M"},
              {RX_LOOKBEHIND, "lookbehind#1/2:3"},
              {RX_LOOKAHEAD, "lookahead#1/2"},
              {RX_NLOOKBEHIND, "nlookbehind#1/2:3"},
              {RX_COND, "cond#1/2"},
              {RX_NLOOKAHEAD, "nlookahead#1/2"},
              {RX_GROUP, "group#1/2"},
              {RX_OPTGROUP, "optgroup#1/2:G"},
              {RX_ATOMIC, "atomic#1/2"},
              {RX_CAPTURE, "capture#1/2:3"},
              {RX_END, "end#1PE"},
              {RX_OPTIONS, "options:O"},
              {RX_BYTE, "byte"},
              {RX_CODEPOINT, "codepoint:A"},
              {RX_CATEGORY, "category:H"},
              {RX_UNIRANGE, "unirange:A-B"},
              {RX_SCRIPT, "script:1(3)"},
              {RX_XSEQ, "xseq"}};

std::string word(const RxNode& node) {
  std::string text;
  for (const auto& known : kWords)
    for (const char* form = known.form; known.code == codeOf(node) && *form; ++form)
      text += field(*form, node);
  return text.empty() ? format("?%X", codeOf(node)) : text;
}

std::string item(const RxNode& node, bool member) {
  return (isNegated(node, member) ? "!" : "") + word(node);
}

std::string bracketClass(const RxNode* header) {
  std::string text = classNegation(*header) ? "class^[" : "class[";
  for (int32_t i = 1; i <= memberCount(*header); ++i) text += (i > 1 ? " " : "") + item(header[i], true);
  return text + "]";
}

}  // namespace

std::string dump(const ulkRegExpState& state) {
  std::string text;
  const auto add = [&](const std::string& next) { text += (text.empty() ? "" : " ") + next; };
  const RxNode* const nodes = state.nodes();
  for (int32_t i = 0; i < state.numNodes; i = nextNode(nodes, i))
    add(codeOf(nodes[i]) == RX_CLASS ? bracketClass(nodes + i) : item(nodes[i], false));
  if (state.numCaptures != 1) add(format("slots=%d", state.numCaptures));
  const int32_t last = state.trailingLiteral;
  if (last >= 0) add(format("last=%d", last) + optionSuffix(literalOptions(nodes[last])));
  return text;
}

}  // namespace ulk
