#include "text/json_text.h"

#include <nlohmann/json.hpp>

#include "text/printable.h"

namespace zolvane {
namespace {

std::string Spelled(const Json& value, int indent) {
  return value.dump(indent, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

Json ParsedJson(std::string_view text) {
  return Json::parse(text, nullptr, false);
}

std::string BareJsonText(const Json& value) {
  return Spelled(value, -1);
}

std::string JsonText(const Json& value, bool isIndented) {
  return PrintableLines(Spelled(value, isIndented ? 2 : -1));
}

Json EntryJson(const ListEntry& entry) {
  return {{"text", entry.Text}, {"data", entry.Data}};
}

}  // namespace zolvane
