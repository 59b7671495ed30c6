// The motor axes, in a section of the installed device and module.
#pragma once

#include <string>

#include "config/record_table.h"
#include "config/records.h"

namespace zolvane {

extern const RecordTable<AxisRecord> axisTable;

std::string AxisSection(const CurrentRecords& current);

// The key of the n-th line of that section.
std::string AxisKey(int number);

// Fills the seven axis slots from the section of the current device and cage in ConfigFilePath. The first
// missing line ends the axes. A line whose name belongs to no slot is dropped.
void LoadAxes(Configuration& configuration);

}  // namespace zolvane
