#include "frame/memory.h"

#include "frame/export.h"
#include "ulkcore.h"

namespace ulk {

void* ownMalloc(int32_t size) { return size < 1 ? nullptr : ulkMalloc(size); }

}  // namespace ulk

ULK_EXPORT void ULK_CALL ulksRegExpFree(ulkRegExpState* pState) { ulkFree(pState); }

ULK_EXPORT void ULK_CALL ulksRegExpMultiFree(ulkRegExpMultiState* pState) { ulkFree(pState); }
