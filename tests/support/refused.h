// Null pointers among a function's arguments.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <tuple>
#include <type_traits>
#include <utility>

#include "ulkch.h"

namespace ulk_test {

// Calls `function` once for each pointer among the arguments, with a null pointer in its place.
template <class... Parameters>
void expectNullRefused(ulkStatus(ULK_CALL* function)(Parameters...),
                       std::type_identity_t<Parameters>... arguments) {
  const auto refuses = [&](auto which) {
    std::tuple<Parameters...> given(arguments...);
    auto& argument = std::get<which>(given);
    if constexpr (std::is_pointer_v<std::remove_reference_t<decltype(argument)>>) {
      argument = nullptr;
      EXPECT_EQ(std::apply(function, given), ulkErrNullPtr) << "argument " << which;
    }
  };
  [&]<size_t... which>(std::index_sequence<which...>) {
    (refuses(std::integral_constant<size_t, which>()), ...);
  }
  (std::index_sequence_for<Parameters...>());
}

}  // namespace ulk_test
