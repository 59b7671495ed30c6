// The map of the positions in a record: where each is, and where it was before the last operation.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "custody/record/value_rows.h"

namespace zolvane {

// The drawing and the list of the positions of one group of the upload: its keys that end in "_X" and "_Y".
// Empty if the group has none.
std::string PositionMap(const std::vector<ValueRow>& rows, std::string_view group, std::string_view heading);

}  // namespace zolvane
