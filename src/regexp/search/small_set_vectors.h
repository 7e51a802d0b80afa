// Small sets in the form for vector searches.
#pragma once

#include <algorithm>

#include "kernels/byte_sets.h"
#include "regexp/program/small_set.h"

namespace ulk {

// Calls `run` with the set.
template <class Run>
ULK_INLINE auto withSmallSet(const SmallSet& set, Run run) {
  if (set.form == SmallSetForm::kRanges) return run(TwoRanges(set.bytes));
  const bool isOne = std::count(set.bytes, set.bytes + 4, set.bytes[0]) == 4;
  return isOne ? run(OneByte(set.bytes)) : run(FourBytes(set.bytes));
}

}  // namespace ulk
