// What the steps of groups have in common.
#pragma once

#include "regexp/match/items.h"
#include "regexp/match/steps.h"

namespace ulk {

ULK_INLINE const RxNode* endOf(const RxNode* open) { return open + bodyLength(*open) + 1; }

ULK_INLINE GroupFrame& frameOf(const MatchContext& m, const RxNode* open) {
  return m.state->frames[serialOf(*open)].group;
}

// The node that opens the group of a bar, or the open node itself.
ULK_INLINE const RxNode* openOf(const MatchContext& m, const RxNode* barOrOpen) {
  return codeOf(*barOrOpen) == RX_ALT ? m.nodes() + m.state->frames[serialOf(*barOrOpen)].group.openNode
                                      : barOrOpen;
}

// What a capturing group that is plain notes where its body begins and ends.
ULK_INLINE void openCapture(const uint8_t* at, const RxNode* open, const MatchContext& m) {
  frameOf(m, open).remainingAtIteration = m.remaining(at);
  m.state->captures[captureNumber(*open)] = {at, 0};
}
ULK_INLINE void endCapture(const uint8_t* at, const RxNode* open, const MatchContext& m) {
  const int32_t length = frameOf(m, open).remainingAtIteration - m.remaining(at);
  m.state->captures[captureNumber(*open)] = {at - length, length};
}

// A slot as a choice remembers it.
struct SavedSlot {
  int32_t at;
  int32_t length;  // -1: unset
};

ULK_INLINE SavedSlot saved(const MatchContext& m, const CaptureSlot& slot) {
  return {slot.length < 0 ? 0 : static_cast<int32_t>(slot.start - m.textStart), slot.length};
}

ULK_INLINE CaptureSlot restored(const MatchContext& m, SavedSlot slot) {
  return {slot.length < 0 ? nullptr : m.textStart + slot.at, slot.length};
}

}  // namespace ulk
