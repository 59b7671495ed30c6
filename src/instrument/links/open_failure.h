// Why a port does not open, for people.
#pragma once

#include <string>
#include <system_error>

namespace zolvane {

std::string ReasonOf(const std::error_code& error);

}  // namespace zolvane
