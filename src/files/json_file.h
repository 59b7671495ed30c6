// Reading a JSON file that the user named.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace zolvane {

// Throws UsageError, naming the file and, where the JSON itself is broken, the line and column.
nlohmann::json ReadJsonFile(const std::string& file);

// The same for a text that was read from `file`.
nlohmann::json ParseJson(std::string_view text, const std::string& file);

}  // namespace zolvane
