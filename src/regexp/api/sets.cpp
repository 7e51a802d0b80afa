// Pattern sets: numbered slots that hold the caller's expressions, searched together over one text.
//
// In: expressions with their ids, and a text. Out: for each slot a status and find records.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#if defined(_OPENMP)
#include <omp.h>
#if defined(_WIN32)
#include <windows.h>
#endif
#endif

#include "frame/export.h"
#include "frame/memory.h"
#include "frame/primitives.h"
#include "regexp/search/set_scan.h"
#include "ulkch.h"
#include "ulkcore.h"

struct ulkRegExpMultiState {
  int32_t capacity;
  ulkRegExpState** pRegExps;  // by slot, right behind this header; null marks a free one
  uint32_t* pIds;             // by slot, behind the expressions; 0 in a free one
};
static_assert(sizeof(void*) != 4 || sizeof(ulkRegExpMultiState) == 12);

using namespace ulk;

namespace {

constexpr uint64_t kSlotSize = sizeof(ulkRegExpState*) + sizeof(uint32_t);

uint64_t setSize(uint32_t maxPatterns) { return sizeof(ulkRegExpMultiState) + kSlotSize * maxPatterns; }

// No memory can hold a set whose size is no 32-bit number.
bool isTooLarge(uint32_t maxPatterns) { return setSize(maxPatterns) > INT32_MAX; }

void initialise(ulkRegExpMultiState& set, int32_t capacity) {
  set.pRegExps = reinterpret_cast<ulkRegExpState**>(&set + 1);
  set.pIds = reinterpret_cast<uint32_t*>(set.pRegExps + capacity);
  ownZero_8u(reinterpret_cast<uint8_t*>(set.pRegExps), static_cast<int32_t>(kSlotSize) * capacity);
  set.capacity = capacity;
}

// The lowest slot with that value, -1 without one.
template <class Value>
int32_t findSlot(const Value* slots, int32_t capacity, Value value) {
  for (int32_t slot = 0; slot < capacity; ++slot)
    if (slots[slot] == value) return slot;
  return -1;
}

void searchSlots(const uint8_t* text, int32_t length, ulkRegExpMultiFind* results,
                 const ulkRegExpMultiState& set, int32_t first, int32_t last) {
  for (int32_t slot = first; slot < last; ++slot) {
    if (!set.pRegExps[slot]) continue;
    results[slot].status = ulkOk;
    results[slot].id = 0;
    results[slot].searched = 0;
  }
  findTogether(text, length, set.pRegExps, results, first, last);
  for (int32_t slot = first; slot < last; ++slot) {
    if (!set.pRegExps[slot]) continue;
    results[slot].id = set.pIds[slot];
    results[slot].searched = 1;
  }
}

#if defined(_OPENMP)

// The threads of a team outlive the search, in code that is part of the DLL: it must stay when its last user
// unloads it.
void stayLoaded() {
#if defined(_WIN32)
  HMODULE self;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                     reinterpret_cast<const char*>(&stayLoaded), &self);
#endif
}

void searchInParallel(const uint8_t* text, int32_t length, ulkRegExpMultiFind* results,
                      const ulkRegExpMultiState& set) {
  const int32_t numAsked = ownGetNumThreads();
  if (numAsked <= 1) return searchSlots(text, length, results, set, 0, set.capacity);
  stayLoaded();
#pragma omp parallel num_threads(numAsked)
  {
    // Equal blocks of slots, one for each thread in turn; the last one takes the rest as well.
    const int32_t numThreads = omp_get_num_threads();
    const int32_t thread = omp_get_thread_num();
    const int32_t chunk = set.capacity / numThreads;
    const int32_t first = thread * chunk;
    const int32_t last = thread == numThreads - 1 ? set.capacity : first + chunk;
    searchSlots(text, length, results, set, first, last);
  }
}

#else

void searchInParallel(const uint8_t* text, int32_t length, ulkRegExpMultiFind* results,
                      const ulkRegExpMultiState& set) {
  searchSlots(text, length, results, set, 0, set.capacity);
}

#endif

}  // namespace

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpMultiGetSize(uint32_t maxPatterns, int32_t* pSize) {
  if (!pSize) return ulkErrNullPtr;
  if (maxPatterns == 0) return ulkErrSize;
  *pSize = static_cast<int32_t>(static_cast<uint32_t>(setSize(maxPatterns)));
  return ulkOk;
}

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpMultiInit(ulkRegExpMultiState* pState, uint32_t maxPatterns) {
  if (!pState) return ulkErrNullPtr;
  if (maxPatterns == 0) return ulkErrSize;
  if (isTooLarge(maxPatterns)) return ulkErrNullPtr;
  initialise(*pState, static_cast<int32_t>(maxPatterns));
  return ulkOk;
}

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpMultiInitAlloc(ulkRegExpMultiState** ppState, uint32_t maxPatterns) {
  if (!ppState) return ulkErrNullPtr;
  if (maxPatterns == 0) return ulkErrSize;
  *ppState = static_cast<ulkRegExpMultiState*>(
      isTooLarge(maxPatterns) ? nullptr : ownMalloc(static_cast<int32_t>(setSize(maxPatterns))));
  return ulksRegExpMultiInit(*ppState, maxPatterns);
}

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpMultiAdd(ulkRegExpState* pRegExpState, uint32_t id,
                                                 ulkRegExpMultiState* pState) {
  if (!pRegExpState || !pState) return ulkErrNullPtr;
  if (id == 0) return ulkErrBadId;
  const int32_t slot = findSlot<ulkRegExpState*>(pState->pRegExps, pState->capacity, nullptr);
  if (slot < 0) return ulkErrSetFull;
  pState->pRegExps[slot] = pRegExpState;
  pState->pIds[slot] = id;
  return ulkOk;
}

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpMultiDelete(uint32_t id, ulkRegExpMultiState* pState) {
  if (!pState) return ulkErrNullPtr;
  if (id == 0) return ulkErrBadId;
  const int32_t slot = findSlot(pState->pIds, pState->capacity, id);
  if (slot < 0) return ulkErrIdNotFound;
  pState->pRegExps[slot] = nullptr;
  pState->pIds[slot] = 0;
  return ulkOk;
}

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpMultiModify(ulkRegExpState* pRegExpState, uint32_t id,
                                                    ulkRegExpMultiState* pState) {
  if (!pRegExpState || !pState) return ulkErrNullPtr;
  if (id == 0) return ulkErrBadId;
  const int32_t slot = findSlot(pState->pIds, pState->capacity, id);
  if (slot < 0) return ulkErrIdNotFound;
  pState->pRegExps[slot] = pRegExpState;
  return ulkOk;
}

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpMultiFind_8u(const uint8_t* pSrc, int32_t srcLen,
                                                     ulkRegExpMultiFind* pResults,
                                                     const ulkRegExpMultiState* pState) {
  if (!pSrc || !pState || !pResults) return ulkErrNullPtr;
  if (srcLen < 1) return ulkErrSize;
  constexpr int64_t kWorthTeam = 1 << 15;  // less is done before a team has met
  const int64_t work = prepareToFindTogether(srcLen, pState->pRegExps, pState->capacity);
  if (pState->capacity <= ownGetNumThreads() || work < kWorthTeam) {
    searchSlots(pSrc, srcLen, pResults, *pState, 0, pState->capacity);
  } else {
    searchInParallel(pSrc, srcLen, pResults, *pState);
  }
  return ulkOk;
}
