// The page's controls, one row each: name, caption, what they stand for in the configuration file. Filling,
// handlers and enabling are loops over these rows.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "config/records.h"
#include "config/tables/devices.h"
#include "config/tables/heads.h"
#include "config/tables/modules.h"
#include "config/tables/nests.h"
#include "config/tables/tips.h"
#include "operations/page_port.h"

namespace zolvane {

inline constexpr std::string_view pageCaption = "Zolvane Setup";

struct ListRow {
  std::string_view Name;
  std::string_view Label;
  std::string_view Section;     // of its entries; the choice is its installedKey
  bool HasNotInstalled = true;  // ends with an entry "Not installed" of number 0
};

// In the order of ListControl.
inline constexpr auto listRows = std::to_array<ListRow>({
    {"cboDeviceType", "Zolvane", deviceTypeSection, false},
    {"cboCageType", "Pipette Module", cageTypeSection},
    {"cboHeadType", "Pipette Head", headTypeSection},
    {"cboNestType", "Pipette Head Nest", nestTypeSection},
    {"cboTipType", "Tip Type", tipTypeSection},
});

enum class CheckControl : std::uint8_t { RFID, HeadSensor, TipSensor, Encoders };

struct CheckRow {
  std::string_view Name;
  std::string_view Label;
  std::string_view Key;  // in section "DeviceType", whatever the box is about
};

// In the order of CheckControl.
inline constexpr auto checkRows = std::to_array<CheckRow>({
    {"chkRFID", "Enable RFID", sensorEnableRFIDKey},
    {"chkHeadSensor", "Enable 96/384 Head Sensor", "SensorEnableHeadInstalled"},
    {"chkTipSensor", "Enable 96/384 Tip Sensor", "SensorEnableTipsInstalled"},
    {"chkEncoders", "Enable 1/8/12 Module Encoders", "SDXYEncodersEnable"},
});

// Of a check box; any value but unticked counts as ticked in the file.
inline constexpr int untickedValue = 0;
inline constexpr int tickedValue = 1;
inline constexpr int greyValue = 2;

inline constexpr int uploadButton = 0;
inline constexpr int downloadButton = 1;
inline constexpr int queryButton = 2;
inline constexpr int importButton = 3;
inline constexpr int exportButton = 4;

struct ButtonRow {
  std::string_view Name;
  std::string_view Caption;
  bool DeviceTypeRecord::* Permission;  // the device's switch for it; null: always allowed
};

// In the order of the button's index.
inline constexpr auto buttonRows = std::to_array<ButtonRow>({
    {"cmdButton(0)", "Save To Zolvane", &DeviceTypeRecord::UploadCalibrationData},
    {"cmdButton(1)", "Load From Zolvane", &DeviceTypeRecord::DownloadCalibrationData},
    {"cmdButton(2)", "Query Zolvane", nullptr},
    {"cmdButton(3)", "Load from File", &DeviceTypeRecord::ImportCalibrationData},
    {"cmdButton(4)", "Save To File", &DeviceTypeRecord::ExportCalibrationData},
});

struct LabelRow {
  std::string_view Name;
  std::string_view Caption;
};

inline constexpr LabelRow titleLabel{"lblTitle", pageCaption};
inline constexpr LabelRow pumpLabel{"lblPumps", "Pump Module Installed"};
inline constexpr LabelRow settingsFrame{"fraSettings", "Configuration File Settings"};
inline constexpr LabelRow calibrationFrame{"fraCalibration", "Calibrated Data"};

inline constexpr std::string_view pumpConnectedText = "Connected";
inline constexpr std::string_view pumpNotConnectedText = "Not Connected";

// System colours as controls take them.
inline constexpr std::uint32_t windowBackground = 0x80000005;
inline constexpr std::uint32_t buttonFace = 0x8000000F;

constexpr const ListRow& RowOf(ListControl list) {
  return listRows[static_cast<std::size_t>(list)];
}
constexpr const CheckRow& RowOf(CheckControl box) {
  return checkRows[static_cast<std::size_t>(box)];
}

}  // namespace zolvane
