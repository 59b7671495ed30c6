// Sections "Z_Calibration" (the heights, one set for the whole file) and "NestCalibration".
#pragma once

#include <string>
#include <string_view>

#include "config/configuration.h"
#include "config/record_table.h"
#include "config/records.h"

namespace zolvane {

inline constexpr std::string_view heightSection = "Z_Calibration";
inline constexpr std::string_view nestCalibrationSection = "NestCalibration";

// What each value of a section is called, and how it stands in the file.
extern const RecordTable<ZCalibrationRecord> heightTable;
extern const RecordTable<NestCalibrationRecord> nestCalibrationTable;

// Every height reads as a number, so no load can fail; a missing key is 0, a missing DeltaZTolerance 1000.
ZCalibrationRecord LoadZCalibration(const Configuration& configuration, std::string_view file);
void SaveZCalibration(const Configuration& configuration, const ZCalibrationRecord& record,
                      std::string_view file);

// With an empty item the record is looked up by its name, always in ConfigFilePath; the first nameless record
// is the result when none matches. Without item and name: an empty record.
NestCalibrationRecord LoadNestCalibration(const Configuration& configuration, const std::string& item,
                                          std::string_view name, std::string_view file);
void SaveNestCalibration(const Configuration& configuration, const NestCalibrationRecord& record,
                         std::string_view file);

}  // namespace zolvane
