// The add-in's five operations, in custody.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "zolvane/work/workplace.h"

namespace zolvane {

// Plays the operation of that name: upload, download, query, import or export. `file` is what its file
// dialogue answers.
void OperateAddIn(Workplace& work, std::string_view name, const std::optional<std::string>& file);

}  // namespace zolvane
