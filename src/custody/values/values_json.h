// Values as the history keeps them: a list in JSON, on one line. docs/schema/values.json describes it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <tuple>

#include "custody/values/values.h"
#include "text/json_members.h"

namespace zolvane {

constexpr auto MembersOf(const Value*) {
  return std::tuple{Member{"name", &Value::Name, Presence::Always}, Member{"text", &Value::Text},
                    Member{"answered", &Value::WasAnswered}};
}

Json JsonOf(const Values& values);
bool Take(const Json& from, Values& values);

std::string ValuesText(const Values& values);

// Nothing unless the text is what ValuesText returns for some values.
std::optional<Values> ValuesIn(std::string_view text);

}  // namespace zolvane
