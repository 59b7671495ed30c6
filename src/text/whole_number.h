// Whole numbers in the texts that users type.
#pragma once

#include <charconv>
#include <concepts>
#include <optional>
#include <string_view>
#include <system_error>

namespace zolvane {

// Decimal digits alone; empty for any other text and for a number outside the bounds.
template <std::unsigned_integral Number>
std::optional<Number> WholeNumberIn(std::string_view text, Number lowest, Number highest) {
  Number number = 0;
  const auto* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  const bool isNumber =
      result.ec == std::errc{} && result.ptr == end && number >= lowest && number <= highest;
  return isNumber ? std::optional{number} : std::nullopt;
}

}  // namespace zolvane
