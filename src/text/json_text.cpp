#include "text/json_text.h"

#include <nlohmann/json.hpp>

#include "text/printable.h"

namespace zolvane {

std::string JsonText(const nlohmann::ordered_json& value, bool isIndented) {
  return PrintableLines(
      value.dump(isIndented ? 2 : -1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}

nlohmann::ordered_json EntryJson(const ListEntry& entry) {
  return {{"text", entry.Text}, {"data", entry.Data}};
}

}  // namespace zolvane
