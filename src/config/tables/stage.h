// The stage of a device: its calibration table and its positions, each in a section of the installed device.
#pragma once

#include <string>

#include "config/record_table.h"
#include "config/records.h"

namespace zolvane {

extern const RecordTable<CalibrationRecord> calibrationTable;

// Looked up by PositionName. The table ends at the first record without a Name.
extern const RecordTable<PositionRecord> positionTable;

std::string CalibrationSection(const CurrentRecords& current);
std::string PositionSection(const CurrentRecords& current);

}  // namespace zolvane
