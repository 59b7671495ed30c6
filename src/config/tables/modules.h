// Section "CageType": the pipetting modules. Section "PumpControl": the pump module.
#pragma once

#include <cstddef>
#include <string_view>

#include "config/record_table.h"
#include "config/records.h"

namespace zolvane {

inline constexpr std::string_view cageTypeSection = "CageType";

extern const RecordTable<CageTypeRecord> cageTable;

// The first cage of class "MICROTITER", or the end of the table.
CageTypeRecord FindMicrotiterCage(const Configuration& configuration);

// The piece of the line by which detection looks up what the instrument reports.
inline constexpr std::size_t cageCodePiece = 1;

// Where the file keeps whether there is a pump module.
inline constexpr std::string_view pumpSection = "PumpControl";
inline constexpr std::string_view pumpModuleInstalledKey = "ModuleInstalled";

}  // namespace zolvane
