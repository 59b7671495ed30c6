// Section "Z_Calibration": the heights, one set for the whole file.
#pragma once

#include <string_view>

#include "config/record_table.h"
#include "config/records.h"

namespace zolvane {

inline constexpr std::string_view heightSection = "Z_Calibration";
inline constexpr std::string_view deltaZKey = "DeltaZ";

// Every height reads as a number, so no load can fail; a missing key is 0, a missing DeltaZTolerance 1000.
extern const RecordTable<ZCalibrationRecord> heightTable;

}  // namespace zolvane
