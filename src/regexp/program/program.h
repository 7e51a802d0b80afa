// The compiled program of one expression: a flat array of nodes inside the state, walked by the matcher.
//
// There is no tree. Structure is expressed by node order, by open nodes that carry the length of their
// group's body, and by group serials.
//
// In: the nodes that the compiler writes, and what the analysis adds to them, both in the layout of state.h.
// Out, for those who read a program: each node's operands, neighbours and width, and the characters that it
// accepts (characters.h, class_sets.h).
#pragma once

#include <cstdint>

#include "regexp/program/step.h"
#include "regexp/text/options.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// Every node code with what its operands hold.
//  - "a > b": the compiler leaves a, and the analysis puts b in its place.
//  - A set is the 128 ASCII characters that a property accepts; members have none.
//  - "[a]": only where the node is a member of a class. Members of any code but RX_SCRIPT may get a word of
//    their class's further sets as text (class_sets.h).
//  - A serial is negative in lookarounds and atomic groups, 0 at a bar outside every group.
//  - "-": not used, and whatever the buffer held.
// The codes are contiguous, so that code - RX_CHAR is a dense index.
enum RxCode : uint32_t {
  //                        op1         op2          op3                        text
  RX_CHAR = 0x10000000,  // byte        -            options, [negation]        [> word]
  RX_STRING,             // -           length       options                    its bytes
  RX_BACKREF,            // capture     0            -                          -
  RX_CLASS,              // negation    members      pattern bytes > ClassNote  > record
  RX_CHARTYPE,           // letter      > byte set   [negation], > with s       [> word]
  RX_ASSERT,             // assertion   -            -                          -
  RX_ALT,                // serial      options      -                          > next bar
  RX_RANGE,              // [low]       [high]       [negation]                 [> word]
  RX_REPEAT_LAZY,        // minimum     maximum      > FollowNote               > follow set
  RX_REPEAT,             // minimum     maximum      > FollowNote               > follow set
  RX_LOOKBEHIND,         // serial      body length  width in characters        > first bar
  RX_NLOOKBEHIND,        // serial      body length  width in characters        > first bar
  RX_LOOKAHEAD,          // serial      body length  -                          > first bar
  RX_NLOOKAHEAD,         // serial      body length  -                          > first bar
  RX_OPTGROUP,           // serial      body length  options inside             > first bar
  RX_COND,               // serial      body length  -                          > first bar
  RX_CAPTURE,            // serial      body length  capture                    > first bar
  RX_GROUP,              // serial      body length  > choice mark              > first bar
  RX_ATOMIC,             // serial      body length  -                          > first bar
  RX_END,                // serial      options      repeat mark                open node > same or null
  RX_OPTIONS,            // options     -            -                          -
  RX_BYTE,               // -           -            -                          -
  RX_CODEPOINT,          // code point  -            [negation]                 [> word]
  RX_CATEGORY,           // mask        negation     -                          > set, [> word]
  RX_UNIRANGE,           // low         high         negation                   > set, [> word]
  RX_SCRIPT,             // 1 > number  negation     number of ranges           ranges, > set
  RX_XSEQ,               // -           -            -                          -
  kRxCodeEnd             // one past the last code
};

// Until the program is finished, this stands where a group was opened that says no more than its body: op1
// simpleWidth of the body, 2 for all above 1; op2 body length; op3 how many of these nodes are no gaps.
inline constexpr uint32_t kGap = kRxCodeEnd;

inline constexpr int32_t kUnbounded = 0x3FFFFFFF;  // the maximum of "*"; no bound ever exceeds it
inline constexpr int32_t kMaxBound = 65535;        // the largest bound that can be written in braces
inline constexpr int32_t kLeadingDotStar = 128;    // assertion: at the text start or after a newline
inline constexpr int32_t kTopLevel = 0;            // serial of a bar outside every group

// Choice mark of a plain group of one alternative that leaves nothing to come back for; else 0.
inline constexpr int32_t kNoChoice = 1;

// Repeat marks.
inline constexpr int32_t kRepeatMarkNone = 0;
inline constexpr int32_t kRepeatMarkBody = 1;       // the body is one quantified item of one character
inline constexpr int32_t kRepeatMarkRepeated = -1;  // and the group itself is quantified

struct AsciiRecord;
struct ByteSet256;
struct CodePointRange;

struct RxNode {
  uint32_t code;  // an RxCode
  int32_t op1;
  int32_t op2;
  int32_t op3;
  const void* text;
};
static_assert(sizeof(void*) != 4 || sizeof(RxNode) == 20);

// How the node is run, which the analysis writes into its code.
inline Step stepOf(const RxNode& node) { return static_cast<Step>(node.code >> 8 & 0xFF); }
inline void setStep(RxNode& node, Step step) { node.code |= static_cast<uint32_t>(step) << 8; }
inline RxCode codeOf(const RxNode& node) { return static_cast<RxCode>(node.code & ~0xFF00u); }

// The operands by their names, to read and to write.
inline auto& byteOf(auto& node) { return node.op1; }  // up to 0x1FF in a class
inline auto& stringLength(auto& node) { return node.op2; }
inline auto& literalOptions(auto& node) { return node.op3; }   // of a top-level RX_CHAR or RX_STRING
inline auto& referredCapture(auto& node) { return node.op1; }  // of RX_BACKREF
inline auto& letterOf(auto& node) { return node.op1; }         // one of . d D s S w W
inline auto& assertionOf(auto& node) { return node.op1; }      // one of ^ $ A B G Z b z, or kLeadingDotStar
inline auto& codePointOf(auto& node) { return node.op1; }
inline auto& categoryMask(auto& node) { return node.op1; }
inline auto& lowOf(auto& range) { return range.op1; }
inline auto& highOf(auto& range) { return range.op2; }
inline auto& numRanges(auto& script) { return script.op3; }
inline auto& scriptNumber(auto& script) { return script.op1; }
inline auto& minOf(auto& quantifier) { return quantifier.op1; }
inline auto& maxOf(auto& quantifier) { return quantifier.op2; }
inline auto& followNote(auto& quantifier) { return quantifier.op3; }
inline auto& memberCount(auto& header) { return header.op2; }
inline auto& patternBytes(auto& header) { return header.op3; }
inline auto& classNote(auto& header) { return header.op3; }
inline auto& serialOf(auto& node) { return node.op1; }  // of a bar, an open node or an end
inline auto& bodyLength(auto& open) { return open.op2; }
inline auto& captureNumber(auto& open) { return open.op3; }
inline auto& lookbehindWidth(auto& open) { return open.op3; }
inline auto& choiceMark(auto& open) { return open.op3; }
inline auto& gapWidth(auto& gap) { return gap.op1; }
inline auto& solidNodes(auto& gap) { return gap.op3; }
inline auto& repeatMark(auto& end) { return end.op3; }
inline auto& newOptions(auto& node) { return node.op1; }     // of RX_OPTIONS
inline auto& optionsInside(auto& open) { return open.op3; }  // of RX_OPTGROUP
inline auto& optionsBehind(auto& barOrEnd) { return barOrEnd.op2; }
// A negation is 0 or -1: that of a class, of a category or script, of any other member or range.
inline auto& classNegation(auto& header) { return header.op1; }
inline auto& propertyNegation(auto& node) { return node.op2; }
inline auto& memberNegation(auto& node) { return node.op3; }

// What `text` points to.
inline const uint8_t* stringOf(const RxNode& node) { return static_cast<const uint8_t*>(node.text); }
inline const CodePointRange* rangesOf(const RxNode& script) {
  return static_cast<const CodePointRange*>(script.text);
}
inline const AsciiRecord* recordOf(const RxNode& item) { return static_cast<const AsciiRecord*>(item.text); }
inline const ByteSet256* followSet(const RxNode& quantifier) {
  return static_cast<const ByteSet256*>(quantifier.text);
}
// The bar behind an alternative, which begins behind this open node or bar; null if it is the last one.
inline const RxNode* nextBar(const RxNode& openOrBar) { return static_cast<const RxNode*>(openOrBar.text); }
// An end's open node; when the groups have been linked, null unless the group is plain.
inline const RxNode* linkedOpen(const RxNode& end) { return static_cast<const RxNode*>(end.text); }

inline void setString(RxNode& node, const void* bytes) { node.text = bytes; }
inline void setRanges(RxNode& script, const CodePointRange* ranges) { script.text = ranges; }
inline void setRecord(RxNode& item, const void* words) { item.text = words; }
inline void setFollowSet(RxNode& quantifier, const ByteSet256* set) { quantifier.text = set; }
inline void linkTo(const RxNode* barOrOpen, RxNode& node) { node.text = barOrOpen; }

// The word that a class has put into its member.
inline uint32_t wordIn(const RxNode& member) {
  return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(member.text));
}
inline void setWord(RxNode& member, uint32_t word) {
  member.text = reinterpret_cast<const void*>(static_cast<uintptr_t>(word));
}

inline bool isQuantifier(const RxNode& node) { return node.code == RX_REPEAT || node.code == RX_REPEAT_LAZY; }
inline bool isGroupOpen(const RxNode& node) {
  return codeOf(node) >= RX_LOOKBEHIND && codeOf(node) <= RX_ATOMIC;
}
inline bool isRepeatableGroup(const RxNode& node) {
  return codeOf(node) == RX_CAPTURE || codeOf(node) == RX_GROUP || codeOf(node) == RX_OPTGROUP;
}
inline bool isLookaround(const RxNode& node) {
  return codeOf(node) >= RX_LOOKBEHIND && codeOf(node) <= RX_NLOOKAHEAD;
}

inline bool isProperty(const RxNode& node) {
  return codeOf(node) >= RX_CATEGORY && codeOf(node) <= RX_SCRIPT;
}

// An item that takes one character or a string.
inline bool isItem(const RxNode& node) {
  return codeOf(node) < RX_ASSERT ? codeOf(node) != RX_BACKREF : codeOf(node) > RX_OPTIONS;
}

// The index of the next node, behind a class's members.
inline int32_t nextNode(const RxNode* nodes, int32_t i) {
  return i + 1 + (codeOf(nodes[i]) == RX_CLASS ? memberCount(nodes[i]) : 0);
}

// Whether an item takes one byte, be it part of a character or not.
inline bool takesByte(const RxNode& item) { return codeOf(item) == RX_CHAR || codeOf(item) == RX_BYTE; }

// The index behind the item or closed group that begins at `i`: the place of its quantifier if it has one.
inline int32_t nextItem(const RxNode* nodes, int32_t i) {
  return isGroupOpen(nodes[i]) ? i + bodyLength(nodes[i]) + 2 : nextNode(nodes, i);
}

// The quantifier of that item or group, null if it is not quantified.
inline const RxNode* quantifierOf(const RxNode* nodes, int32_t numNodes, int32_t i) {
  const int32_t next = nextItem(nodes, i);
  return next < numNodes && isQuantifier(nodes[next]) ? &nodes[next] : nullptr;
}

// The options in force after the node, in the order of the pattern.
inline uint32_t optionsAfter(const RxNode& node, uint32_t options) {
  switch (codeOf(node)) {
    case RX_OPTIONS:
      return static_cast<uint32_t>(newOptions(node));
    case RX_OPTGROUP:
      return static_cast<uint32_t>(optionsInside(node));
    case RX_ALT:
    case RX_END:
      return static_cast<uint32_t>(optionsBehind(node));
    default:
      return options;
  }
}

// The bit of kByteSets for an RX_CHARTYPE that is an item.
inline uint8_t byteSetOf(const RxNode& item, uint32_t options) {
  return static_cast<uint8_t>(options & RX_OPT_DOTALL ? item.op3 : item.op2);
}
inline void setByteSets(RxNode& item, uint8_t plain, uint8_t dotAll) {
  item.op2 = plain;
  item.op3 = dotAll;
}

// Fixed width in characters of nodes[first, last), or -1 when its alternatives differ. For a range without
// quantifiers of unequal bounds and without back references.
int64_t fixedWidth(const RxNode* nodes, int32_t first, int32_t last);

// Width in characters of nodes[first, last) when it holds nothing but single items, strings and greedy
// quantifiers (which count 0); -1 otherwise.
int64_t simpleWidth(const RxNode* nodes, int32_t first, int32_t last);

}  // namespace ulk

#pragma GCC visibility pop
