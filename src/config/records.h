// The records of the configuration tables, as they stand in memory. Fresh records are empty, zero and false.
//
// A member is named after what the instrument or the page uses it for. Field, Flag or Value with a number is
// only kept; the number is its place in the record line, counted from 1, but from 0 in devices, cages, heads and
// tips. Positions that pass through a step factor are motor steps in memory and file units (millimetres) in the
// file.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace zolvane {

// The classes of modules, heads and tips, as their Code says.
namespace code {
inline constexpr std::string_view microtiter = "MICROTITER";
inline constexpr std::string_view serialDilute = "SERIALDILUTE";
inline constexpr std::string_view calibrate = "CALIBRATE";
inline constexpr std::string_view nest8 = "NEST8";
inline constexpr std::string_view nest12 = "NEST12";
}  // namespace code

// The layouts of channels by which the heads are told apart that the 1/8/12 module carries.
namespace channel_layout {
inline constexpr std::string_view oneShort = "1_CH_SHORT";
inline constexpr std::string_view oneLong = "1_CH_LONG";
inline constexpr std::string_view eight = "8_CH";
inline constexpr std::string_view twelve = "12_CH";
}  // namespace channel_layout

// Section "DeviceType": a model of the instrument, and the device-wide switches of the one that is installed.
struct DeviceTypeRecord {
  std::string ID;
  std::string Name;
  bool Field1 = false;
  std::string Code;  // what the instrument reports about itself
  bool UploadCalibrationData = false;
  bool DownloadCalibrationData = false;
  bool ImportCalibrationData = false;
  bool ExportCalibrationData = false;
  bool SDXYEncoderStatus = false;
  double SDXYEncoderMMStepFactorOn = 0.0;   // steps per file unit with encoders
  double SDXYEncoderMMStepFactorOff = 0.0;  // steps per file unit without
  bool CollisionDetectEnableZ = false;
  bool ZCollisionStatus = false;
  bool CollisionDetectEnableSDXY = false;
  bool SDXYCollisionStatus = false;
  bool IsUnread = false;  // its line could not be read

  bool operator==(const DeviceTypeRecord&) const = default;
};

// Section "CageType": a carrier of pipetting modules.
struct CageTypeRecord {
  std::string ID;
  std::string Name;
  std::string Code;  // its class
  bool Field2 = false;
  std::int32_t CageReleaseBarHeight = 0;
  std::int32_t CageReleaseHeight = 0;
  bool Field3 = false;
  bool Field4 = false;
  std::int32_t HeadChangeS = 0;  // steps
  std::int32_t Field6 = 0;
  std::int32_t TipChangeS = 0;  // steps
  std::int32_t Field8 = 0;
  bool IsUnread = false;  // its line could not be read

  bool operator==(const CageTypeRecord&) const = default;
};

// Section "HeadType": a pipette head. The five offsets are named in millimetres, as their keys are; in
// memory they hold motor steps.
struct HeadTypeRecord {
  std::string ID;
  std::string Name;
  std::string Code;  // its class
  double Field2 = 0.0;
  double TipVolume = 0.0;  // microlitres
  double Field4 = 0.0;
  std::int16_t Channels = 0;
  double Field6 = 0.0;
  bool Field7 = false;
  bool Field8 = false;
  bool Field9 = false;
  std::int32_t HeadEjectS = 0;  // steps
  std::int32_t HeadLockS = 0;   // steps
  double DropOffZ = 0.0;        // steps; also of tip and head change
  double PickUpZ = 0.0;         // steps
  std::string ChannelCode;      // layout of the channels
  bool Field17 = false;
  std::int32_t AspirateOrigin = 0;  // steps
  double TipEjectS = 0.0;           // millimetres
  double TipMountDepth = 0.0;       // millimetres; of the tip volume, taken from the heights on loading
  std::string Tag;                  // RFID identifier
  double SDTeachToolOffsetMM = 0.0;
  double SDHomeSensorSeekOffsetMM = 0.0;
  double SDPreCollectHeightMM = 0.0;
  double SDRFIDReadHeightMM = 0.0;
  double SDHeadEjectOffsetMM = 0.0;
  bool IsUnread = false;  // its line could not be read

  bool operator==(const HeadTypeRecord&) const = default;
};

// Section "TipType": a kind of tip.
struct TipTypeRecord {
  std::string ID;
  std::string Name;
  std::string Code;  // its class
  double Field2 = 0.0;
  double Field3 = 0.0;
  std::int16_t Field4 = 0;
  std::int16_t Field5 = 0;
  bool Field6 = false;
  std::int32_t RackEjectZ = 0;   // millimetres
  std::int32_t RackPickUpZ = 0;  // millimetres
  std::int32_t ChuteEjectZ = 0;  // steps
  double Field10 = 0.0;
  std::int32_t Field11 = 0;
  bool Field12 = false;
  bool Field13 = false;
  bool FirstSize = false;  // FirstSize to FourthSize: size flags, the first of 1250 microlitres
  bool SecondSize = false;
  bool ThirdSize = false;
  bool FourthSize = false;
  std::string CorrectionSection;     // of its volume correction
  double TipChuteClearOffset = 0.0;  // millimetres
  bool IsUnread = false;             // its line could not be read

  bool operator==(const TipTypeRecord&) const = default;
};

// One line "Axis1", "Axis2", ... of the section of the current device and cage.
struct AxisRecord {
  bool Defined = false;
  std::string Name;
  float UnitsPerStep = 0.0F;  // millimetres per step; SDX and SDY: per file unit in the file
  std::int32_t Field3 = 0;
  std::int32_t Field4 = 0;
  std::int32_t Field5 = 0;
  std::int32_t Field6 = 0;
  std::int32_t Field7 = 0;
  std::int32_t Field8 = 0;
  std::int16_t Field9 = 0;
  std::int16_t Field10 = 0;
  std::int16_t Field11 = 0;
  std::int16_t Field12 = 0;
  std::int16_t Field13 = 0;
  std::int16_t Field14 = 0;
  std::int32_t Field15 = 0;

  bool operator==(const AxisRecord&) const = default;
};

// Section "PlateType": the labware library. The two SBSA1 values are one pair for the whole section.
struct PlateTypeRecord {
  std::string ID;
  std::string Name;
  std::string Field2;
  std::int16_t Field3 = 0;
  std::int16_t Field4 = 0;
  double Field5 = 0.0;
  double Field6 = 0.0;
  double Field7 = 0.0;
  double Field8 = 0.0;
  double Field9 = 0.0;
  double Field10 = 0.0;
  std::string Field11;
  double Field12 = 0.0;
  double Field13 = 0.0;
  double Field14 = 0.0;
  bool Field15 = false;
  double SBSA1Xmm = 0.0;
  double SBSA1Ymm = 0.0;
  bool Field16 = false;
  bool Field17 = false;
  bool Field18 = false;
  bool Field19 = false;
  bool Field20 = false;
  bool Field21 = false;
  bool IsUnread = false;  // its line could not be read

  bool operator==(const PlateTypeRecord&) const = default;
};

// Section "Calibration_" and the device's name: the stage calibration table.
struct CalibrationRecord {
  std::string ID;
  std::string Name;
  std::int32_t Field2 = 0;
  std::int32_t Field3 = 0;
  std::int32_t Field4 = 0;  // Field4 to Field9: steps
  std::int32_t Field5 = 0;
  std::int32_t Field6 = 0;
  std::int32_t Field7 = 0;
  std::int32_t Field8 = 0;
  std::int32_t Field9 = 0;
  bool IsUnread = false;  // its line could not be read

  bool operator==(const CalibrationRecord&) const = default;
};

// Section "Position_" and the device's name: a place on the stage.
struct PositionRecord {
  std::string ID;
  std::string PositionName;  // "STAGE1", "TIPCHUTE", ...
  std::string Name;          // the display name; empty at the end of the table
  std::string Field3;
  std::int32_t StageX = 0;  // motor counts
  std::int32_t StageY = 0;  // motor counts
  std::int32_t X = 0;       // serial-dilute X, steps
  std::int32_t Y = 0;       // serial-dilute Y, steps
  std::int32_t Field8 = 0;  // Field8 to Field11: steps
  std::int32_t Field9 = 0;
  std::int32_t Field10 = 0;
  std::int32_t Field11 = 0;
  bool Flag12 = false;
  bool NotFlag12 = false;  // the negation of the flag in the line, derived on loading and never stored
  bool Flag13 = false;
  std::string Field14;
  bool Flag15 = false;
  bool Flag16 = false;
  bool IsUnread = false;  // its line could not be read

  bool operator==(const PositionRecord&) const = default;
};

// Section "Z_Calibration": the heights; those that are called height or depth are millimetres. The irregular
// capitals of the names are part of the file's format.
struct ZCalibrationRecord {
  double MountHeight = 0.0;
  double StageHeightLower = 0.0;
  double StageHeightUpper = 0.0;
  double HeadDepth_1ch_Short = 0.0;
  double Headdepth_1ch_Long = 0.0;
  double HeadDepth_8ch = 0.0;
  double HeadDepth_12ch = 0.0;
  double HeadDepth_96_384 = 0.0;
  double HeadDepth_TeachTool_1Ch = 0.0;
  double HeadDepth_TeachTool_96_384 = 0.0;
  double NestDepth_Y = 0.0;
  double NestDepth_XY_6 = 0.0;
  double TipMountDepth12 = 0.0;
  double TipMountDepth30 = 0.0;
  double TipMountDepth125 = 0.0;
  double TipMountDepth300 = 0.0;
  double TipMountDepth1250 = 0.0;
  double CalibrationPlateDepth = 0.0;
  double DeltaZ = 0.0;
  double DeltaZTolerance = 0.0;

  bool operator==(const ZCalibrationRecord&) const = default;
};

// Section "NestCalibration".
struct NestCalibrationRecord {
  std::string ID;
  std::string Name;
  std::int32_t Value1 = 0;  // Value1 to Value6: steps
  std::int32_t Value2 = 0;
  std::int32_t Value3 = 0;
  std::int32_t Value4 = 0;
  std::int32_t Value5 = 0;
  std::int32_t Value6 = 0;
  bool IsUnread = false;  // its line could not be read

  bool operator==(const NestCalibrationRecord&) const = default;
};

// One of the three places of a nest.
struct NestPosition {
  std::string Code;
  std::string Label;
  std::int16_t Setting = 0;
  std::int32_t X = 0;  // steps
  std::int32_t Y = 0;  // steps
  std::int32_t Z = 0;  // steps

  bool operator==(const NestPosition&) const = default;
};

// Section "NestType": a holder in which pipette heads are parked.
struct NestTypeRecord {
  std::string ID;
  std::string Name;
  std::string Code;  // its class
  std::array<NestPosition, 3> Nests;
  bool IsUnread = false;  // its line could not be read

  bool operator==(const NestTypeRecord&) const = default;
};

}  // namespace zolvane
