#pragma once

#include <string>
#include <vector>

namespace zolvane {

using Texts = std::vector<std::string>;

}  // namespace zolvane
