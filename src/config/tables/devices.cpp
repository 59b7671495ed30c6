#include "config/tables/devices.h"

#include <array>

namespace zolvane {
namespace {

using Device = DeviceTypeRecord;

// clang-format off
constexpr std::array deviceRows{
    InLine  <&Device::Name,                       QuotedText >(0).Means("name"),
    InLine  <&Device::Field1,                     StrictFlag >(1),
    InLine  <&Device::Code,                       QuotedText >(deviceCodePiece)
        .Means("type code that the instrument reports"),
    UnderKey<&Device::UploadCalibrationData,      StrictFlag >("UploadCalibrationData", "1")
        .Means("the page offers Save To Zolvane"),
    UnderKey<&Device::DownloadCalibrationData,    StrictFlag >("DownloadCalibrationData", "1")
        .Means("the page offers Load From Zolvane"),
    UnderKey<&Device::ImportCalibrationData,      StrictFlag >("ImportCalibrationData", "1")
        .Means("the page offers Load from File"),
    UnderKey<&Device::ExportCalibrationData,      StrictFlag >("ExportCalibrationData", "1")
        .Means("the page offers Save To File"),
    UnderKey<&Device::SDXYEncoderStatus,          StrictFlag >("SDXYEncoderStatus")
        .Means("the 1/8/12 module has XY encoders"),
    // The key is asked for twice in a row; hosts log the reads, and the second one is part of the sequence.
    UnderKey<&Device::SDXYEncoderStatus,          StrictFlag >("SDXYEncoderStatus").OnlyRead(),
    UnderKey<&Device::SDXYEncoderMMStepFactorOn,  LeadingReal>(stepFactorOnKey)
        .Means("factor with encoders", Unit::StepsPerFileUnit),
    UnderKey<&Device::SDXYEncoderMMStepFactorOff, LeadingReal>(stepFactorOffKey)
        .Means("factor without encoders", Unit::StepsPerFileUnit),
    UnderKey<&Device::CollisionDetectEnableZ,     LeadingFlag>("CollisionDetectEnableZ"),
    UnderKey<&Device::ZCollisionStatus,           StrictFlag >("ZCollisionStatus"),
    UnderKey<&Device::CollisionDetectEnableSDXY,  LeadingFlag>("CollisionDetectEnableSDXY"),
    UnderKey<&Device::SDXYCollisionStatus,        LeadingFlag>("SDXYCollisionStatus"),
};
// clang-format on

}  // namespace

constexpr RecordTable<DeviceTypeRecord> deviceTable = MakeTable(TableSection{deviceTypeSection}, deviceRows);

}  // namespace zolvane
