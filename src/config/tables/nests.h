// Section "NestType": the kinds of head nest, each with three places A, B and C. Section
// "NestCalibration": their taught places.
#pragma once

#include <string_view>

#include "config/record_table.h"
#include "config/records.h"

namespace zolvane {

inline constexpr std::string_view nestTypeSection = "NestType";
inline constexpr std::string_view nestCalibrationSection = "NestCalibration";

// Loading and saving need the current device and the axes. They are deliberately not exact
// inverses: each direction rounds.
extern const RecordTable<NestTypeRecord> nestTable;

extern const RecordTable<NestCalibrationRecord> nestCalibrationTable;

}  // namespace zolvane
