// Loops over a few constants, written out by the compiler whatever it thinks of that.
#pragma once

#include <type_traits>
#include <utility>

#include "kernels/vec16.h"

namespace ulk {

// Calls f with the constants 0 .. count - 1.
template <int32_t count, class F>
ULK_INLINE void unrolled(F f) {
  const auto calls = [&]<int32_t... i>(std::integer_sequence<int32_t, i...>) ULK_LAMBDA_INLINE {
    (f(std::integral_constant<int32_t, i>{}), ...);
  };
  calls(std::make_integer_sequence<int32_t, count>{});
}

}  // namespace ulk
