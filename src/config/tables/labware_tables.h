// Where things are on the instrument: the motor axes of the installed device and cage, the labware library,
// the stage calibration table and the stage positions. The last two have a section for each device type.
#pragma once

#include <string>
#include <string_view>

#include "config/configuration.h"
#include "config/record_table.h"
#include "config/records.h"

namespace zolvane {

inline constexpr std::string_view plateTypeSection = "PlateType";

// What each value of a section is called, and how it stands in the file.
extern const RecordTable<AxisRecord> axisTable;
extern const RecordTable<PlateTypeRecord> plateTable;
extern const RecordTable<CalibrationRecord> calibrationTable;
extern const RecordTable<PositionRecord> positionTable;

std::string AxisSection(const CurrentRecords& current);
std::string CalibrationSection(const CurrentRecords& current);
std::string PositionSection(const CurrentRecords& current);

// Fills the seven axis slots from ConfigFilePath, from the section of the current device and cage. Ends at
// the first missing axis line. A line with a name that belongs to no slot is dropped.
void LoadAxes(Configuration& configuration);

// Loads take an item number and a file ("" is ConfigFilePath). A missing item gives an empty record that
// carries the number it was asked for.
PlateTypeRecord LoadPlateType(const Configuration& configuration, const std::string& item,
                              std::string_view file);
void SavePlateType(const Configuration& configuration, const PlateTypeRecord& record, std::string_view file);

CalibrationRecord LoadCalibration(const Configuration& configuration, const std::string& item,
                                  std::string_view file);
void SaveCalibration(const Configuration& configuration, const CalibrationRecord& record,
                     std::string_view file);

// With an empty item the record is looked up by its PositionName, always in ConfigFilePath: items 1, 2, ...
// up to the first one with an empty Name, which is the result when none matches. Without item and name: an
// empty record.
PositionRecord LoadPosition(const Configuration& configuration, const std::string& item,
                            std::string_view name, std::string_view file);
void SavePosition(const Configuration& configuration, const PositionRecord& record, std::string_view file);

}  // namespace zolvane
