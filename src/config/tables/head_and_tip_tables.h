// Sections "HeadType" and "TipType". Loads and saves follow the rules stated in device_tables.h.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "config/configuration.h"
#include "config/record_table.h"
#include "config/records.h"

namespace zolvane {

inline constexpr std::string_view headTypeSection = "HeadType";
inline constexpr std::string_view tipTypeSection = "TipType";

// What each value of a section is called, and how it stands in the file.
extern const RecordTable<HeadTypeRecord> headTable;
extern const RecordTable<TipTypeRecord> tipTable;
extern const RecordTable<HeadTypeRecord> headOffsetTable;

// The depth in the current height calibration that belongs to a tip volume of 12.5, 30, 125, 300 or 1250
// microlitres. Any other volume has none: 0.
double TipMountDepthFor(const ZCalibrationRecord& heights, double volume);

// True for the heads that carry the five serial-dilute offsets: the serial-dilute heads and the short teach
// tool.
bool HasSerialDiluteOffsets(const HeadTypeRecord& head);

// Needs the axes and the heights to be loaded: the offsets come from the file in millimetres and are held in
// steps, and the tip mount depth is looked up. Neither is refreshed when those change later.
HeadTypeRecord LoadHeadType(const Configuration& configuration, std::string& item, std::string_view file);
void SaveHeadType(const Configuration& configuration, const HeadTypeRecord& record, std::string_view file);

TipTypeRecord LoadTipType(const Configuration& configuration, std::string& item, std::string_view file);
void SaveTipType(const Configuration& configuration, const TipTypeRecord& record, std::string_view file);

}  // namespace zolvane
