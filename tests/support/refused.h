// Arguments that a function must refuse, made from a call that it would accept.
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

// Each length among the arguments below 0 in turn; and before that each null pointer, also where all lengths
// are wrong or 0.
template <class... Parameters>
void expectRefused(ulkStatus(ULK_CALL* function)(Parameters...), std::type_identity_t<Parameters>... good) {
  const auto numberOr = [](auto given, int32_t other) {
    if constexpr (std::is_same_v<decltype(given), int32_t>) given = other;
    return given;
  };
  for (const int32_t number : {0, -1, INT32_MIN}) expectNullRefused(function, numberOr(good, number)...);
  const auto refuses = [&](auto which) {
    std::tuple<Parameters...> given(good...);
    auto& argument = std::get<which>(given);
    if constexpr (std::is_same_v<std::remove_reference_t<decltype(argument)>, int32_t>) {
      for (const int32_t bad : {-1, INT32_MIN}) {
        argument = bad;
        EXPECT_EQ(std::apply(function, given), ulkErrLength) << "argument " << which << ": " << bad;
      }
    }
  };
  [&]<size_t... which>(std::index_sequence<which...>) {
    (refuses(std::integral_constant<size_t, which>()), ...);
  }
  (std::index_sequence_for<Parameters...>());
}

}  // namespace ulk_test
