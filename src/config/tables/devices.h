// Section "DeviceType": the models of the instrument, and the switches of the whole device.
#pragma once

#include <cstddef>
#include <string_view>

#include "config/record_table.h"
#include "config/records.h"

namespace zolvane {

inline constexpr std::string_view deviceTypeSection = "DeviceType";

extern const RecordTable<DeviceTypeRecord> deviceTable;

// The piece of the line by which detection looks up what the instrument reports.
inline constexpr std::size_t deviceCodePiece = 2;

// The steps per file unit with encoders, and without them.
inline constexpr std::string_view stepFactorOnKey = "SDXYEncoderMMStepFactorOn";
inline constexpr std::string_view stepFactorOffKey = "SDXYEncoderMMStepFactorOff";

// A switch of the section that no record holds: whether the reader of the heads' tags is used.
inline constexpr std::string_view sensorEnableRFIDKey = "SensorEnableRFID";

}  // namespace zolvane
