// What the trace and the printed results have in common.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "config/item_lists.h"

namespace zolvane {

// On one line, or indented by two. Bytes that are not UTF-8 become the replacement character; characters
// that would control a terminal are escaped.
std::string JsonText(const nlohmann::ordered_json& value, bool isIndented = false);

nlohmann::ordered_json EntryJson(const ListEntry& entry);

}  // namespace zolvane
