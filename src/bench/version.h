// The version that the bench's programs tell.
#pragma once

#include <string_view>

namespace zolvane {

inline constexpr std::string_view programVersion = "1.00.0135";

}  // namespace zolvane
