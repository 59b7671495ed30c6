// JSON and its texts. The library is slow to compile, so few headers include it.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

#include "config/item_lists.h"

namespace zolvane {

using Json = nlohmann::ordered_json;

// A discarded value unless the text is JSON.
Json ParsedJson(std::string_view text);

// To be kept: on one line, without blanks. Bytes that are not UTF-8 become the replacement character.
std::string BareJsonText(const Json& value);

// To be printed: on one line, or indented by two. Bytes that are not UTF-8 become the replacement character;
// characters that would control a terminal are escaped.
std::string JsonText(const Json& value, bool isIndented = false);

Json EntryJson(const ListEntry& entry);

}  // namespace zolvane
