// Arguments as the command-line parser understands them.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

namespace zolvane {

// "--option=" becomes the option and an empty value: the parser would take the next argument for its value.
// Behind "--" there are no options.
inline std::vector<std::string> WithEmptyValues(const std::vector<std::string>& arguments) {
  std::vector<std::string> result;
  const auto end = std::ranges::find(arguments, "--");
  for (auto argument = arguments.begin(); argument != end; ++argument) {
    const bool lacksValue = argument->starts_with("--") && argument->find('=') == argument->size() - 1;
    result.push_back(lacksValue ? argument->substr(0, argument->size() - 1) : *argument);
    if (lacksValue) {
      result.emplace_back();
    }
  }
  result.insert(result.end(), end, arguments.end());
  return result;
}

}  // namespace zolvane
