// Joins texts without making intermediate ones.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace zolvane {

inline std::string JoinedTexts(std::initializer_list<std::string_view> parts) {
  std::size_t size = 0;
  for (const auto part : parts) {
    size += part.size();
  }
  std::string joined;
  joined.reserve(size);
  for (const auto part : parts) {
    joined += part;
  }
  return joined;
}

template <class... Parts>
std::string Joined(const Parts&... parts) {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-bounds-array-to-pointer-decay): literals are parts like any other
  return JoinedTexts({std::string_view{parts}...});
}

}  // namespace zolvane
