// Section "HeadType": the pipette heads.
#pragma once

#include <string_view>

#include "config/record_table.h"
#include "config/records.h"

namespace zolvane {

inline constexpr std::string_view headTypeSection = "HeadType";

// Loading needs the axes and the heights: the offsets stand in the file in millimetres and are held in steps,
// and the tip mount depth is looked up. Neither is refreshed when those change later.
extern const RecordTable<HeadTypeRecord> headTable;

// The five offsets, which loading a head reads if it has them. Nothing saves them.
extern const RecordTable<HeadTypeRecord> headOffsetTable;

// The depth in the height calibration that belongs to a tip volume of 12.5, 30, 125, 300 or 1250 microlitres.
// Any other volume has none: 0.
double TipMountDepthFor(const ZCalibrationRecord& heights, double volume);

// Whether a head has the five serial-dilute offsets: the serial-dilute heads and the short teach tool do.
bool HasSerialDiluteOffsets(const HeadTypeRecord& head);

}  // namespace zolvane
