// The compiler's block functions choose their method by the processor they run on, so nothing here can beat
// them.
#include "frame/primitives.h"

#include <cstring>

namespace ulk {
namespace {

template <class Unit>
size_t byteCount(int32_t count) {
  return static_cast<size_t>(count) * sizeof(Unit);
}

// 16-bit blocks may stand at odd addresses: only their void pointers are handed on.
template <class Unit>
ulkStatus copy(const Unit* source, Unit* destination, int32_t count) {
  if (!source || !destination) return ulkErrNullPtr;
  if (count < 1) return ulkErrSize;
  std::memcpy(static_cast<void*>(destination), static_cast<const void*>(source), byteCount<Unit>(count));
  return ulkOk;
}

template <class Unit>
ulkStatus move(const Unit* source, Unit* destination, int32_t count) {
  if (!source || !destination) return ulkErrNullPtr;
  if (count < 1) return ulkErrSize;
  std::memmove(static_cast<void*>(destination), static_cast<const void*>(source), byteCount<Unit>(count));
  return ulkOk;
}

}  // namespace

ulkStatus ownCopy_8u(const uint8_t* source, uint8_t* destination, int32_t count) {
  return copy(source, destination, count);
}

ulkStatus ownCopy_16u(const uint16_t* source, uint16_t* destination, int32_t count) {
  return copy(source, destination, count);
}

ulkStatus ownMove_8u(const uint8_t* source, uint8_t* destination, int32_t count) {
  return move(source, destination, count);
}

ulkStatus ownMove_16u(const uint16_t* source, uint16_t* destination, int32_t count) {
  return move(source, destination, count);
}

ulkStatus ownZero_8u(uint8_t* destination, int32_t count) {
  if (!destination) return ulkErrNullPtr;
  if (count < 1) return ulkErrSize;
  std::memset(destination, 0, static_cast<size_t>(count));
  return ulkOk;
}

}  // namespace ulk
