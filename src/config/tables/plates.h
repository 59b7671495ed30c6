// Section "PlateType": the labware library.
#pragma once

#include <string_view>

#include "config/record_table.h"
#include "config/records.h"

namespace zolvane {

inline constexpr std::string_view plateTypeSection = "PlateType";

extern const RecordTable<PlateTypeRecord> plateTable;

}  // namespace zolvane
