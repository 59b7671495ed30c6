#include "custody/values/values_json.h"

#include <nlohmann/json.hpp>

namespace zolvane {
namespace {

using nlohmann::json;

std::optional<Value> ValueIn(const json& element) {
  if (!element.is_object() || !element.contains("name") || !element["name"].is_string()) {
    return std::nullopt;
  }
  Value value{.Name = element["name"].get<std::string>(), .Text = {}};
  if (element.contains("text")) {
    if (!element["text"].is_string()) {
      return std::nullopt;
    }
    value.Text = element["text"].get<std::string>();
  }
  value.WasAnswered = !element.contains("answered");
  return value;
}

}  // namespace

std::string ValuesText(const Values& values) {
  auto list = json::array();
  for (const auto& value : values.InOrder()) {
    json element{{"name", value.Name}};
    if (value.Text) {
      element["text"] = *value.Text;
    }
    if (!value.WasAnswered) {
      element["answered"] = false;
    }
    list.push_back(std::move(element));
  }
  return list.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::optional<Values> ValuesIn(std::string_view text) {
  const auto list = json::parse(text, nullptr, false);
  if (!list.is_array()) {
    return std::nullopt;
  }
  Values values;
  for (const auto& element : list) {
    auto value = ValueIn(element);
    if (!value) {
      return std::nullopt;
    }
    values.Add(*std::move(value));
  }
  return ValuesText(values) == text ? std::optional{std::move(values)} : std::nullopt;
}

}  // namespace zolvane
