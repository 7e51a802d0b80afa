// The compiled program of one expression: a flat array of nodes inside the state, walked by the matcher.
//
// There is no tree and no pointer between nodes. Structure is expressed by node order, by open nodes that
// carry the length of their group's body, and by group serials.
#pragma once

#include <cstdint>

#include "regexp/program/step.h"
#include "regexp/text/options.h"

namespace ulk {

// Every node code with its operands. The codes are contiguous, so that code - RX_CHAR is a dense index.
enum RxCode : uint32_t {
  RX_CHAR = 0x10000000,  // op1 byte; op3 options of a top-level literal, or the negation of a class member
  RX_STRING,             // op2 length (2 or more), text; op3 as RX_CHAR
  RX_BACKREF,            // op1 group number
  RX_CLASS,              // op1 negation (0 or -1), op2 number of member nodes that follow
  RX_CHARTYPE,           // op1 one of . d D s S w W; as an item op2, op3 see byteSetOf; as a class member
                         //   op3 its negation
  RX_ASSERT,             // op1 one of ^ $ A B G Z b z, or kLeadingDotStar
  RX_ALT,                // op1 signed serial of the group, 0 at top level; op2 options in force at the bar
  RX_RANGE,              // class member: op1 low, op2 high, op3 negation
  RX_REPEAT_LAZY,        // op1 minimum, op2 maximum
  RX_REPEAT,             // op1 minimum, op2 maximum
  RX_LOOKBEHIND,         // op1 minus serial, op2 body length in nodes, op3 width in characters
  RX_NLOOKBEHIND,        // as RX_LOOKBEHIND
  RX_LOOKAHEAD,          // op1 minus serial, op2 body length
  RX_NLOOKAHEAD,         // as RX_LOOKAHEAD
  RX_OPTGROUP,           // op1 serial, op2 body length, op3 options inside
  RX_COND,               // op1 serial, op2 body length, condition included
  RX_CAPTURE,            // op1 serial, op2 body length, op3 capture number
  RX_GROUP,              // op1 serial, op2 body length
  RX_ATOMIC,             // op1 minus serial, op2 body length
  RX_END,                // op1 as the open node's, op2 options to restore, op3 repeat mark
  RX_OPTIONS,            // op1 new options
  RX_BYTE,               // any one byte
  RX_CODEPOINT,          // op1 code point; op3 the negation of a class member
  RX_CATEGORY,           // op1 general-category mask, op2 negation
  RX_UNIRANGE,           // op1 lowest, op2 highest code point, op3 negation
  RX_SCRIPT,             // op1 1, op2 negation, op3 number of ranges, text the ranges
  RX_XSEQ,               // one extended sequence: a character and the marks that follow it
  kRxCodeEnd             // one past the last code
};

// Until the program is finished, this stands where a group was opened that says no more than its body: op1
// simpleWidth of the body, 2 for all above 1; op2 its length in nodes; op3 how many of them are no gaps.
inline constexpr uint32_t kGap = kRxCodeEnd;

inline constexpr int32_t kUnbounded = 0x3FFFFFFF;  // the maximum of "*"; no bound ever exceeds it
inline constexpr int32_t kMaxBound = 65535;        // the largest bound that can be written in braces
inline constexpr int32_t kLeadingDotStar = 128;    // RX_ASSERT operand: at the text start or after a newline
inline constexpr int32_t kTopLevel = 0;            // RX_ALT operand of a bar outside every group

// Repeat marks on RX_END.
inline constexpr int32_t kRepeatMarkNone = 0;
inline constexpr int32_t kRepeatMarkBody = 1;       // the body is one quantified item of one character
inline constexpr int32_t kRepeatMarkRepeated = -1;  // and the group itself is quantified

struct RxNode {
  uint32_t code;  // an RxCode
  int32_t op1;
  int32_t op2;
  int32_t op3;
  const void* text;  // RX_STRING: its bytes; RX_SCRIPT: its CodePointRange table
};
static_assert(sizeof(void*) != 4 || sizeof(RxNode) == 20);

// How the node is run, which the analysis writes into its code.
inline Step stepOf(const RxNode& node) { return static_cast<Step>(node.code >> 8 & 0xFF); }
inline void setStep(RxNode& node, Step step) { node.code |= static_cast<uint32_t>(step) << 8; }
inline RxCode codeOf(const RxNode& node) { return static_cast<RxCode>(node.code & ~0xFF00u); }

inline bool isQuantifier(const RxNode& node) { return node.code == RX_REPEAT || node.code == RX_REPEAT_LAZY; }
inline bool isGroupOpen(const RxNode& node) {
  return codeOf(node) >= RX_LOOKBEHIND && codeOf(node) <= RX_ATOMIC;
}
inline bool isLookaround(const RxNode& node) {
  return codeOf(node) >= RX_LOOKBEHIND && codeOf(node) <= RX_NLOOKAHEAD;
}

// An item that takes one character or a string.
inline bool isItem(const RxNode& node) {
  return codeOf(node) < RX_ASSERT ? codeOf(node) != RX_BACKREF : codeOf(node) > RX_OPTIONS;
}

// The index behind the item at `i`: a class counts with its members, a closed group with its body and end.
inline int32_t nextItem(const RxNode* nodes, int32_t i) {
  const RxNode& node = nodes[i];
  if (isGroupOpen(node)) return i + node.op2 + 2;
  return codeOf(node) == RX_CLASS ? i + node.op2 + 1 : i + 1;
}

// The options in force after the node, in the order of the pattern.
inline uint32_t optionsAfter(const RxNode& node, uint32_t options) {
  switch (codeOf(node)) {
    case RX_OPTIONS:
      return static_cast<uint32_t>(node.op1);
    case RX_OPTGROUP:
      return static_cast<uint32_t>(node.op3);
    case RX_ALT:
    case RX_END:
      return static_cast<uint32_t>(node.op2);
    default:
      return options;
  }
}

// The bit of kByteSets for an RX_CHARTYPE that is an item. The analysis keeps it in the node, that with the
// option s beside it.
inline uint8_t byteSetOf(const RxNode& item, uint32_t options) {
  return static_cast<uint8_t>(options & RX_OPT_DOTALL ? item.op3 : item.op2);
}

// The bar that a bar or an open node is linked to, null if there is none.
inline const RxNode* nextBar(const RxNode& node) { return static_cast<const RxNode*>(node.text); }
// The op3 of a plain RX_GROUP of one alternative that leaves nothing to come back for.
inline constexpr int32_t kNoChoice = 1;

// Fixed width in characters of nodes[first, last), or -1 when its alternatives differ. For a range without
// quantifiers of unequal bounds and without back references.
int64_t fixedWidth(const RxNode* nodes, int32_t first, int32_t last);

// Width in characters of nodes[first, last) when it holds nothing but single items, strings and greedy
// quantifiers (which count 0); -1 otherwise.
int64_t simpleWidth(const RxNode* nodes, int32_t first, int32_t last);

}  // namespace ulk
