// Numbers of things, for people.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "text/joined.h"

namespace zolvane {

// "3 values", "1 value".
inline std::string CountOf(std::size_t number, std::string_view thing) {
  return Joined(std::to_string(number), " ", thing, number == 1 ? "" : "s");
}

}  // namespace zolvane
