#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace zolvane {

inline std::string BytesOf(const std::filesystem::path& path) {
  std::ifstream file{path, std::ios::binary};
  return {std::istreambuf_iterator<char>{file}, std::istreambuf_iterator<char>{}};
}

}  // namespace zolvane
