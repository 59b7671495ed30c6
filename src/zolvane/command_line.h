// The command line of zolvane.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "zolvane/work/options.h"

namespace zolvane {

// `arguments` are those after the program's name. Throws UsageError.
std::variant<CustodyOptions, Information> ParseCustodyOptions(const std::vector<std::string>& arguments);

}  // namespace zolvane
