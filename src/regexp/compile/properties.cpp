#include "regexp/compile/properties.h"

#include <cstring>

#include "unicode/unicode.h"

namespace ulk {
namespace {

struct Category {
  char name[3];
  uint32_t mask;
};

// The low seven bits tell the subcategory, the others the major class.
constexpr Category kCategories[] = {
    {"C", 0x2000},  {"Cc", 0x2001}, {"Cf", 0x2002}, {"Co", 0x2004}, {"Cn", 0x2010}, {"Cs", 0x2008},
    {"L", 0x80},    {"Ll", 0x81},   {"Lu", 0x82},   {"Lt", 0x84},   {"Lm", 0x88},   {"Lo", 0x90},
    {"L&", 0x87},   {"M", 0x100},   {"Mn", 0x101},  {"Mc", 0x102},  {"Me", 0x104},  {"N", 0x800},
    {"Nd", 0x801},  {"Nl", 0x802},  {"No", 0x804},  {"P", 0x1000},  {"Pc", 0x1020}, {"Pd", 0x1001},
    {"Pe", 0x1004}, {"Pf", 0x1010}, {"Pi", 0x1008}, {"Po", 0x1040}, {"Ps", 0x1002}, {"S", 0x400},
    {"Sc", 0x402},  {"Sk", 0x404},  {"So", 0x408},  {"Sm", 0x401},  {"Z", 0x200},   {"Zl", 0x202},
    {"Zp", 0x204},  {"Zs", 0x201},
};

bool isNameByte(uint8_t byte) {
  const uint8_t letter = byte | 0x20;
  return (letter >= 'a' && letter <= 'z') || byte == '_' || byte == '&';
}

// The category whose name fills the `length` bytes at `name`.
const Category* findCategory(const uint8_t* name, int32_t length) {
  if (length < 1 || length > 2) return nullptr;
  for (const Category& category : kCategories) {
    const bool same = std::memcmp(category.name, name, static_cast<size_t>(length)) == 0;
    if (same && category.name[length] == '\0') return &category;
  }
  return nullptr;
}

void appendCategory(const Category& category, RxNode* nodes, int32_t& numNodes, int32_t negate) {
  RxNode& node = nodes[numNodes++];
  node.code = RX_CATEGORY;
  categoryMask(node) = static_cast<int32_t>(category.mask);
  propertyNegation(node) = negate;
}

void appendAny(RxNode* nodes, int32_t& numNodes, int32_t negate) {
  RxNode& node = nodes[numNodes++];
  node.code = RX_UNIRANGE;
  lowOf(node) = 0;
  highOf(node) = 0x10FFFF;
  memberNegation(node) = negate;
}

// Blocks are recognised, but what follows the name is then read as a script's name, which a "}" is not: no
// block property compiles. Callers tell it by the error's place.
void skipBlockName(const uint8_t*& at) {
  const char* const name = reinterpret_cast<const char*>(at);
  const size_t length = std::strcspn(name, "}");
  if (findBlock(name, static_cast<int32_t>(length))) at += length;
}

}  // namespace

int32_t ownRegExpParseScript(const uint8_t*& at, RxNode* nodes, int32_t& numNodes, int32_t negate) {
  const Script* const script = findScript(reinterpret_cast<const char*>(at));
  if (!script) return -1;
  RxNode& node = nodes[numNodes++];
  node.code = RX_SCRIPT;
  node.op1 = 1;
  propertyNegation(node) = negate;
  numRanges(node) = script->numRanges;
  setRanges(node, script->ranges);
  at += std::strlen(script->name);
  return 0;
}

int32_t ownRegExpParseProperty(const uint8_t*& at, RxNode* nodes, int32_t& numNodes, int32_t negate) {
  ++at;
  if (*at != '{') {
    const Category* const major = findCategory(at, 1);
    if (!major) return -1;
    appendCategory(*major, nodes, numNodes, negate);
    ++at;
    return 0;
  }
  ++at;
  if (*at == '^') {
    if (negate) return -1;
    negate = -1;
    ++at;
  }

  int32_t length = 0;
  while (length < 4 && isNameByte(at[length])) ++length;
  if (const Category* const category = findCategory(at, length)) {
    appendCategory(*category, nodes, numNodes, negate);
    at += length;
  } else if (length == 3 && std::memcmp(at, "Any", 3) == 0) {
    appendAny(nodes, numNodes, negate);
    at += length;
  } else {
    if (*at == 'I') skipBlockName(at);
    if (ownRegExpParseScript(at, nodes, numNodes, negate) != 0) return -1;
  }
  if (*at != '}') return -1;
  ++at;
  return 0;
}

}  // namespace ulk
