#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace zolvane {

using Texts = std::vector<std::string>;

inline Texts LinesOf(const std::string& text) {
  Texts lines;
  std::istringstream stream{text};
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

}  // namespace zolvane
