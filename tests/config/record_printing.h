// Records as a failed comparison shows them: as the literal that makes them, with the names of the members that
// differ from a fresh record.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string_view>

#include "config/records.h"

// A literal names what matters; what it leaves out is as in a fresh record.
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

namespace zolvane {

// The name of a member, cut out of the compiler's name of this function: "... Member = (& zolvane::Record::Name); ..."
// or "... Member = &zolvane::(anonymous namespace)::Record::Name]".
template <auto Member>
constexpr std::string_view NameOfMember() {
  constexpr std::string_view start = "Member = ";
  std::string_view name = __PRETTY_FUNCTION__;
  name.remove_prefix(name.find(start) + start.size());
  name = name.substr(0, name.find_first_of(";]"));
  name = name.substr(name.rfind(':') + 1);
  return name.substr(0, name.find(')'));
}
static_assert(NameOfMember<&AxisRecord::UnitsPerStep>() == "UnitsPerStep");

// Stands for a value of any type.
struct AnyValue {
  template <class Value>
  constexpr operator Value() const;  // NOLINT(google-explicit-constructor)
};

template <class Record, class... Values>
constexpr std::size_t CountOfMembers() {
  if constexpr (requires { Record{Values{}..., AnyValue{}}; }) {
    return CountOfMembers<Record, Values..., AnyValue>();
  } else {
    return sizeof...(Values);
  }
}

template <auto Member, class Record>
void PrintMember(const Record& record, std::string_view& separator, std::ostream& stream) {
  if (record.*Member != Record{}.*Member) {
    stream << separator << "." << NameOfMember<Member>() << " = " << testing::PrintToString(record.*Member);
    separator = ", ";
  }
}

template <auto... Members, class Record>
void PrintMembers(std::string_view name, const Record& record, std::ostream& stream) {
  static_assert(sizeof...(Members) == CountOfMembers<Record>(), "a member is never printed");
  std::string_view separator;
  stream << name << "{";
  (PrintMember<Members>(record, separator, stream), ...);
  stream << "}";
}

inline void PrintTo(const DeviceTypeRecord& record, std::ostream* stream) {
  PrintMembers<&DeviceTypeRecord::ID, &DeviceTypeRecord::Name, &DeviceTypeRecord::Field1,
               &DeviceTypeRecord::Code, &DeviceTypeRecord::UploadCalibrationData,
               &DeviceTypeRecord::DownloadCalibrationData, &DeviceTypeRecord::ImportCalibrationData,
               &DeviceTypeRecord::ExportCalibrationData, &DeviceTypeRecord::SDXYEncoderStatus,
               &DeviceTypeRecord::SDXYEncoderMMStepFactorOn, &DeviceTypeRecord::SDXYEncoderMMStepFactorOff,
               &DeviceTypeRecord::CollisionDetectEnableZ, &DeviceTypeRecord::ZCollisionStatus,
               &DeviceTypeRecord::CollisionDetectEnableSDXY, &DeviceTypeRecord::SDXYCollisionStatus,
               &DeviceTypeRecord::IsUnread>("DeviceTypeRecord", record, *stream);
}

inline void PrintTo(const CageTypeRecord& record, std::ostream* stream) {
  PrintMembers<&CageTypeRecord::ID, &CageTypeRecord::Name, &CageTypeRecord::Code, &CageTypeRecord::Field2,
               &CageTypeRecord::CageReleaseBarHeight, &CageTypeRecord::CageReleaseHeight,
               &CageTypeRecord::Field3, &CageTypeRecord::Field4, &CageTypeRecord::HeadChangeS,
               &CageTypeRecord::Field6, &CageTypeRecord::TipChangeS, &CageTypeRecord::Field8,
               &CageTypeRecord::IsUnread>("CageTypeRecord", record, *stream);
}

inline void PrintTo(const HeadTypeRecord& record, std::ostream* stream) {
  PrintMembers<&HeadTypeRecord::ID, &HeadTypeRecord::Name, &HeadTypeRecord::Code, &HeadTypeRecord::Field2,
               &HeadTypeRecord::TipVolume, &HeadTypeRecord::Field4, &HeadTypeRecord::Channels,
               &HeadTypeRecord::Field6, &HeadTypeRecord::Field7, &HeadTypeRecord::Field8,
               &HeadTypeRecord::Field9, &HeadTypeRecord::HeadEjectS, &HeadTypeRecord::HeadLockS,
               &HeadTypeRecord::DropOffZ, &HeadTypeRecord::PickUpZ, &HeadTypeRecord::ChannelCode,
               &HeadTypeRecord::Field17, &HeadTypeRecord::AspirateOrigin, &HeadTypeRecord::TipEjectS,
               &HeadTypeRecord::TipMountDepth, &HeadTypeRecord::Tag, &HeadTypeRecord::SDTeachToolOffsetMM,
               &HeadTypeRecord::SDHomeSensorSeekOffsetMM, &HeadTypeRecord::SDPreCollectHeightMM,
               &HeadTypeRecord::SDRFIDReadHeightMM, &HeadTypeRecord::SDHeadEjectOffsetMM,
               &HeadTypeRecord::IsUnread>("HeadTypeRecord", record, *stream);
}

inline void PrintTo(const TipTypeRecord& record, std::ostream* stream) {
  PrintMembers<&TipTypeRecord::ID, &TipTypeRecord::Name, &TipTypeRecord::Code, &TipTypeRecord::Field2,
               &TipTypeRecord::Field3, &TipTypeRecord::Field4, &TipTypeRecord::Field5, &TipTypeRecord::Field6,
               &TipTypeRecord::RackEjectZ, &TipTypeRecord::RackPickUpZ, &TipTypeRecord::ChuteEjectZ,
               &TipTypeRecord::Field10, &TipTypeRecord::Field11, &TipTypeRecord::Field12,
               &TipTypeRecord::Field13, &TipTypeRecord::FirstSize, &TipTypeRecord::SecondSize,
               &TipTypeRecord::ThirdSize, &TipTypeRecord::FourthSize, &TipTypeRecord::CorrectionSection,
               &TipTypeRecord::TipChuteClearOffset, &TipTypeRecord::IsUnread>("TipTypeRecord", record,
                                                                              *stream);
}

inline void PrintTo(const AxisRecord& record, std::ostream* stream) {
  PrintMembers<&AxisRecord::Defined, &AxisRecord::Name, &AxisRecord::UnitsPerStep, &AxisRecord::Field3,
               &AxisRecord::Field4, &AxisRecord::Field5, &AxisRecord::Field6, &AxisRecord::Field7,
               &AxisRecord::Field8, &AxisRecord::Field9, &AxisRecord::Field10, &AxisRecord::Field11,
               &AxisRecord::Field12, &AxisRecord::Field13, &AxisRecord::Field14, &AxisRecord::Field15>(
      "AxisRecord", record, *stream);
}

inline void PrintTo(const PlateTypeRecord& record, std::ostream* stream) {
  PrintMembers<&PlateTypeRecord::ID, &PlateTypeRecord::Name, &PlateTypeRecord::Field2,
               &PlateTypeRecord::Field3, &PlateTypeRecord::Field4, &PlateTypeRecord::Field5,
               &PlateTypeRecord::Field6, &PlateTypeRecord::Field7, &PlateTypeRecord::Field8,
               &PlateTypeRecord::Field9, &PlateTypeRecord::Field10, &PlateTypeRecord::Field11,
               &PlateTypeRecord::Field12, &PlateTypeRecord::Field13, &PlateTypeRecord::Field14,
               &PlateTypeRecord::Field15, &PlateTypeRecord::SBSA1Xmm, &PlateTypeRecord::SBSA1Ymm,
               &PlateTypeRecord::Field16, &PlateTypeRecord::Field17, &PlateTypeRecord::Field18,
               &PlateTypeRecord::Field19, &PlateTypeRecord::Field20, &PlateTypeRecord::Field21,
               &PlateTypeRecord::IsUnread>("PlateTypeRecord", record, *stream);
}

inline void PrintTo(const CalibrationRecord& record, std::ostream* stream) {
  PrintMembers<&CalibrationRecord::ID, &CalibrationRecord::Name, &CalibrationRecord::Field2,
               &CalibrationRecord::Field3, &CalibrationRecord::Field4, &CalibrationRecord::Field5,
               &CalibrationRecord::Field6, &CalibrationRecord::Field7, &CalibrationRecord::Field8,
               &CalibrationRecord::Field9, &CalibrationRecord::IsUnread>("CalibrationRecord", record,
                                                                         *stream);
}

inline void PrintTo(const PositionRecord& record, std::ostream* stream) {
  PrintMembers<&PositionRecord::ID, &PositionRecord::PositionName, &PositionRecord::Name,
               &PositionRecord::Field3, &PositionRecord::StageX, &PositionRecord::StageY, &PositionRecord::X,
               &PositionRecord::Y, &PositionRecord::Field8, &PositionRecord::Field9, &PositionRecord::Field10,
               &PositionRecord::Field11, &PositionRecord::Flag12, &PositionRecord::NotFlag12,
               &PositionRecord::Flag13, &PositionRecord::Field14, &PositionRecord::Flag15,
               &PositionRecord::Flag16, &PositionRecord::IsUnread>("PositionRecord", record, *stream);
}

inline void PrintTo(const ZCalibrationRecord& record, std::ostream* stream) {
  PrintMembers<&ZCalibrationRecord::MountHeight, &ZCalibrationRecord::StageHeightLower,
               &ZCalibrationRecord::StageHeightUpper, &ZCalibrationRecord::HeadDepth_1ch_Short,
               &ZCalibrationRecord::Headdepth_1ch_Long, &ZCalibrationRecord::HeadDepth_8ch,
               &ZCalibrationRecord::HeadDepth_12ch, &ZCalibrationRecord::HeadDepth_96_384,
               &ZCalibrationRecord::HeadDepth_TeachTool_1Ch, &ZCalibrationRecord::HeadDepth_TeachTool_96_384,
               &ZCalibrationRecord::NestDepth_Y, &ZCalibrationRecord::NestDepth_XY_6,
               &ZCalibrationRecord::TipMountDepth12, &ZCalibrationRecord::TipMountDepth30,
               &ZCalibrationRecord::TipMountDepth125, &ZCalibrationRecord::TipMountDepth300,
               &ZCalibrationRecord::TipMountDepth1250, &ZCalibrationRecord::CalibrationPlateDepth,
               &ZCalibrationRecord::DeltaZ, &ZCalibrationRecord::DeltaZTolerance>("ZCalibrationRecord",
                                                                                  record, *stream);
}

inline void PrintTo(const NestCalibrationRecord& record, std::ostream* stream) {
  PrintMembers<&NestCalibrationRecord::ID, &NestCalibrationRecord::Name, &NestCalibrationRecord::Value1,
               &NestCalibrationRecord::Value2, &NestCalibrationRecord::Value3, &NestCalibrationRecord::Value4,
               &NestCalibrationRecord::Value5, &NestCalibrationRecord::Value6,
               &NestCalibrationRecord::IsUnread>("NestCalibrationRecord", record, *stream);
}

inline void PrintTo(const NestPosition& record, std::ostream* stream) {
  PrintMembers<&NestPosition::Code, &NestPosition::Label, &NestPosition::Setting, &NestPosition::X,
               &NestPosition::Y, &NestPosition::Z>("NestPosition", record, *stream);
}

inline void PrintTo(const NestTypeRecord& record, std::ostream* stream) {
  PrintMembers<&NestTypeRecord::ID, &NestTypeRecord::Name, &NestTypeRecord::Code, &NestTypeRecord::Nests,
               &NestTypeRecord::IsUnread>("NestTypeRecord", record, *stream);
}

}  // namespace zolvane
