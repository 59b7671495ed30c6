#include "custody/values/values_json.h"

#include <utility>
#include <vector>

#include "text/json_text.h"

namespace zolvane {

Json JsonOf(const Values& values) {
  return JsonOf(values.InOrder());
}

bool Take(const Json& from, Values& values) {
  std::vector<Value> list;
  const bool isGood = Take(from, list);
  for (auto& value : list) {
    values.Add(std::move(value));
  }
  return isGood;
}

std::string ValuesText(const Values& values) {
  return BareJsonText(JsonOf(values));
}

std::optional<Values> ValuesIn(std::string_view text) {
  auto values = FromJson<Values>(text);
  return values && ValuesText(*values) == text ? std::move(values) : std::nullopt;
}

}  // namespace zolvane
