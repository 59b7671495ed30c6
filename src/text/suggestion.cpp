#include "text/suggestion.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "config/text.h"
#include "text/joined.h"

namespace zolvane {
namespace {

char Small(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

// How many letters are left out, added, changed or swapped with a neighbour between the two words.
std::size_t SlipsBetween(std::string_view left, std::string_view right) {
  std::vector<std::vector<std::size_t>> slips(left.size() + 1, std::vector<std::size_t>(right.size() + 1));
  const auto isSame = [&](std::size_t row, std::size_t column) {
    return Small(left[row - 1]) == Small(right[column - 1]);
  };
  for (std::size_t row = 0; row <= left.size(); ++row) {
    for (std::size_t column = 0; column <= right.size(); ++column) {
      auto& fewest = slips[row][column];
      if (row == 0 || column == 0) {
        fewest = row + column;
        continue;
      }
      fewest = std::min({slips[row - 1][column] + 1, slips[row][column - 1] + 1,
                         slips[row - 1][column - 1] + (isSame(row, column) ? 0 : 1)});
      if (row > 1 && column > 1 && isSame(row, column - 1) && isSame(row - 1, column)) {
        fewest = std::min(fewest, slips[row - 2][column - 2] + 1);
      }
    }
  }
  return slips[left.size()][right.size()];
}

bool IsBeginningOf(std::string_view typed, std::string_view name) {
  constexpr std::size_t fewestLetters = 3;
  return typed.size() >= fewestLetters && EqualIgnoringCase(typed, name.substr(0, typed.size()));
}

}  // namespace

std::string_view NearestName(std::string_view typed, std::span<const std::string_view> known) {
  constexpr std::size_t longestTyped = 64;  // nobody mistypes that much
  std::string_view nearest;
  auto fewest = std::max<std::size_t>(1, typed.size() / 3) + 1;
  if (typed.empty() || typed.size() > longestTyped) {
    return nearest;
  }
  for (const auto name : known) {
    const auto slips = IsBeginningOf(typed, name) ? 1 : SlipsBetween(typed, name);
    if (slips < std::min(fewest, name.size())) {
      fewest = slips;
      nearest = name;
    }
  }
  return nearest;
}

std::string DidYouMean(std::string_view typed, std::span<const std::string_view> known) {
  const auto nearest = NearestName(typed, known);
  return nearest.empty() ? std::string{} : Joined("; did you mean \"", nearest, "\"?");
}

}  // namespace zolvane
