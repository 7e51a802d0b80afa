// Small sets in the form for vector searches.
#pragma once

#include "kernels/byte_sets.h"
#include "regexp/program/small_set.h"

namespace ulk {

// Calls `run` with the set.
template <class Run>
ULK_INLINE auto withSmallSet(const SmallSet& set, Run run) {
  switch (set.form) {
    case SmallSetForm::kOne:
      return run(OneByte(set.bytes));
    case SmallSetForm::kTwo:
      return run(TwoBytes(set.bytes));
    case SmallSetForm::kRanges:
      return run(TwoRanges(set.bytes));
    default:
      return run(FourBytes(set.bytes));
  }
}

}  // namespace ulk
