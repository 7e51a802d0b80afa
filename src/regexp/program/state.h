// The layout of a compiled expression: header, the matcher's work areas, the program and its literal text,
// all in one buffer that the caller provides. The program holds absolute addresses into the buffer, so a
// state is never moved.
#pragma once

#include <cstddef>
#include <cstdint>

#include "regexp/program/byte_set.h"
#include "regexp/program/program.h"
#include "regexp/program/small_set.h"
#include "regexp/program/window.h"
#include "ulkch.h"

namespace ulk {

inline constexpr uint32_t kStateMagic = 0x78456772;  // "rgEx" in memory order
inline constexpr int32_t kDefaultMatchLimit = 10000;
inline constexpr int32_t kFormatBytes = 0;
inline constexpr int32_t kFormatUtf8 = 1;

inline constexpr int32_t kMaxDepth = 999;
inline constexpr int32_t kMaxSerial = 999;
inline constexpr int32_t kNumFrames = 1000;
inline constexpr int32_t kNumCaptures = 1000;

// One capture: where it starts and its length; null and -1 while unset. Slot 0 is the whole match.
struct CaptureSlot {
  const uint8_t* start;
  int32_t length;
};

// The iteration bookkeeping of one group, indexed by the group's serial. Lookarounds and atomic groups use
// only the first field of theirs.
struct GroupFrame {
  int32_t openNode;              // index of the group's open node; written by the compiler
  int32_t minLeft;               // iterations still required
  int32_t maxLeft;               // iterations still allowed
  int32_t remainingAtIteration;  // text left when the current iteration began
  int32_t unused[4];
};
static_assert(sizeof(GroupFrame) == 32);

// What the linking of a program knows of a group, indexed in the same way (group_links.cpp). The first field
// stays when the group's frame takes the place.
struct OpenGroupLink {
  int32_t open;  // index of its open node
  int32_t last;  // and of its last bar so far, else the same
  int32_t numAtOnce;
  bool isOpen;  // the end has not been reached
  bool refersToItself;
};

// What must come right behind the first byte of a match.
struct StartPair {
  SmallSet second;     // one of these bytes,
  int32_t run;         // or so many more of the same set, if this is not 0
  int32_t extraSteps;  // what an attempt costs more that finds the first byte alone
  // If there are several ways to begin, each with a literal: the first one, and the bar before the second.
  int32_t firstLiteral;
  int32_t literalBar;
};

// How a search is restricted by the assertion that the program begins with. Other places cost nothing.
enum class Anchor : uint8_t {
  kNone,       // a match may begin anywhere
  kLineStart,  // only at the text start and after newlines
  kTextStart,  // only at the text start
};

// Where a match may begin (start_filter.h). "The set" is that in frame kStartSetFrame.
enum class StartKind : uint8_t {
  kAny,             // nothing is known: every position is tried
  kString,          // with the string at `item`
  kCaselessString,  // the same, letters in either case
  kByte,            // with the one byte of the set, the first of `small`
  kSmallSet,        // with a byte of the set, which is a small one
  kSet,             // with a byte of the set
  kBoundary,        // with a byte of the set at a word boundary
  kLineStart,       // at the text start or after a newline, with a byte of the set if placeSteps is not 0
  kTextStart,       // the same at the text start alone
};

// What is known of the window of an expression, which frame kWindowFrame tells (analysis/window.h).
enum class WindowState : uint8_t { kUnknown, kNone, kFound };

struct StartFilter {
  Anchor anchor : 4;
  bool boundsSteps : 1;  // attempts elsewhere cost at most so many steps, which is not told exactly
  StartKind kind;
  uint8_t options;  // in force when an attempt begins, without which nothing is known, and when it has failed
  bool hasFrames : 1;   // the frames named below belong to no group
  bool literals : 1;    // there are several ways to begin, each with a literal, which the pair's frame tells
  bool hasPair : 1;     // frame kStartPairFrame tells what comes behind the first byte, which is ASCII
  bool failsAtEnd : 1;  // an attempt at the text's end fails as one elsewhere does, also the first
  bool candidates : 1;  // they may be looked for instead (prefilter.h)
  bool runs : 1;        // `item` is repeated, and runs of it can be passed over
  WindowState window : 2;
  SmallSet small;  // the set, where it is one
  int32_t steps;   // that an attempt elsewhere costs
  int32_t
      placeSteps;    // that it costs where there is no word boundary; or at a line start without such a byte
  int32_t item;      // the node of the one item that every match begins with, -1 if there are several
  int32_t firstBar;  // the first top-level bar, -1 without one
  int32_t headEnd;   // the node behind the head (match/head.cpp), 0 without one
};
inline constexpr int32_t kStartSetFrame = kNumFrames - 1;
inline constexpr int32_t kStartPairFrame = kNumFrames - 2;
inline constexpr int32_t kPrefilterFrame = kNumFrames - 3;
inline constexpr int32_t kWindowFrame = kNumFrames - 4;
inline constexpr int32_t kWindowSetFrame = kNumFrames - 5;
inline constexpr int32_t kWindowKeysFrame = kWindowSetFrame - kMaxWindowKeys / kKeysInFrame;  // and behind it
inline constexpr int32_t kLastFreeFrame = kWindowKeysFrame - 1;

// What searches have found out about looking for candidates (prefilter.h).
enum class PrefilterUse : uint8_t {
  kUndecided,
  kOff,
  kOn,
  kUseless,  // there is no room for it, or it tells too little
};
struct PrefilterNote {
  PrefilterUse use;
  int8_t hope;           // that a glance decides a search (glance.h)
  int32_t frame;         // where the automaton lies, once it is made
  int32_t look;          // the work in vain at which to decide anew,
  int32_t workLeft;      // and how much of it is still to be done,
  int32_t bytes;         // since that was last decided, in so many bytes
  int32_t workWithout;   // in so many bytes, before candidates were used
  int32_t stepsInEmpty;  // that an attempt in an empty text takes at most, 0 until someone asks
};
inline constexpr int32_t kLeastPrefilterWork = 512;  // that says anything, and outweighs making an automaton
inline constexpr PrefilterNote kNewPrefilterNote{PrefilterUse::kUndecided, 1, 0, kLeastPrefilterWork,
                                                 kLeastPrefilterWork,      0, 0, 0};

// One frame of the work area. Frame 0 and those above the highest serial belong to no group; what the
// compiler finds out to make searching fast is kept there: the start filter in frame 0, byte sets from the
// last frame down.
union WorkFrame {
  GroupFrame group;
  OpenGroupLink link;
  ByteSet256 bytes;
  StartFilter start;
  StartPair pair;
  PrefilterNote prefilter;
  Window window;
  WindowKey keys[kKeysInFrame];
};
static_assert(sizeof(WorkFrame) == 32);

}  // namespace ulk

struct ulkRegExpState {
  uint32_t magic;
  uint32_t options;
  int32_t numNodes;
  int32_t numCaptures;      // capturing groups plus one
  int32_t trailingLiteral;  // index of the literal node that ends the pattern, negative for none
  int32_t matchLimit;
  int32_t format;
  uint32_t reserved;
  ulk::WorkFrame frames[ulk::kNumFrames];
  ulk::CaptureSlot captures[ulk::kNumCaptures];

  ulk::RxNode* nodes() { return reinterpret_cast<ulk::RxNode*>(this + 1); }
  const ulk::RxNode* nodes() const { return reinterpret_cast<const ulk::RxNode*>(this + 1); }
};
static_assert(sizeof(void*) != 4 || sizeof(ulkRegExpState) == 40032);

namespace ulk {

// What is free in a state behind the literal text.
struct SpareWords {
  uint32_t* begin;
  uint32_t* end;
};

// Sizes are 32-bit: of a longer pattern no state can be asked for.
inline constexpr size_t kMaxPatternLength = (INT32_MAX - sizeof(ulkRegExpState)) / sizeof(RxNode) - 1;

// Bytes of the state for a pattern of that length: a node for every byte, and one more.
inline int32_t stateSize(size_t patternLength) {
  return static_cast<int32_t>(sizeof(ulkRegExpState) + (patternLength + 1) * sizeof(RxNode));
}

}  // namespace ulk
