// Values as the history keeps them: a list in JSON, on one line.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "custody/values/values.h"

namespace zolvane {

std::string ValuesText(const Values& values);

// Nothing unless the text is what ValuesText returns for some values.
std::optional<Values> ValuesIn(std::string_view text);

}  // namespace zolvane
