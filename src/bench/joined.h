// Texts put together without intermediate ones.
#pragma once

#include <string>
#include <string_view>

namespace zolvane {

template <class... Parts>
std::string Joined(const Parts&... parts) {
  std::string joined;
  joined.reserve((std::string_view{parts}.size() + ...));
  (joined.append(std::string_view{parts}), ...);
  return joined;
}

}  // namespace zolvane
