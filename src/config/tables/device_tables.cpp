#include "config/tables/device_tables.h"

#include <array>
#include <cstdint>

namespace zolvane {
namespace {

using Device = Field<DeviceTypeRecord>;
using D = DeviceTypeRecord;

constexpr std::array deviceFields{
    Device::Line<&D::Name, QuotedText>(0).Means("name"),
    Device::Line<&D::Field1, WordOrNumberFlag>(1),
    Device::Line<&D::Code, QuotedText>(deviceCodePiece).Means("type code that the instrument reports"),
    Device::Key<&D::UploadCalibrationData, WordOrNumberFlag>("UploadCalibrationData", "1")
        .Means("the page offers Save To Zolvane"),
    Device::Key<&D::DownloadCalibrationData, WordOrNumberFlag>("DownloadCalibrationData", "1")
        .Means("the page offers Load From Zolvane"),
    Device::Key<&D::ImportCalibrationData, WordOrNumberFlag>("ImportCalibrationData", "1")
        .Means("the page offers Load from File"),
    Device::Key<&D::ExportCalibrationData, WordOrNumberFlag>("ExportCalibrationData", "1")
        .Means("the page offers Save To File"),
    Device::Key<&D::SDXYEncoderStatus, WordOrNumberFlag>("SDXYEncoderStatus")
        .Means("the 1/8/12 module has XY encoders"),
    // The key is asked for twice in a row; hosts log the reads, and the second one is part of the sequence.
    Device::Key<&D::SDXYEncoderStatus, WordOrNumberFlag>("SDXYEncoderStatus").OnlyRead(),
    Device::Key<&D::SDXYEncoderMMStepFactorOn, LeadingReal>("SDXYEncoderMMStepFactorOn")
        .Means("factor with encoders", Unit::StepsPerFileUnit),
    Device::Key<&D::SDXYEncoderMMStepFactorOff, LeadingReal>("SDXYEncoderMMStepFactorOff")
        .Means("factor without encoders", Unit::StepsPerFileUnit),
    Device::Key<&D::CollisionDetectEnableZ, LeadingNumberFlag>("CollisionDetectEnableZ"),
    Device::Key<&D::ZCollisionStatus, WordOrNumberFlag>("ZCollisionStatus"),
    Device::Key<&D::CollisionDetectEnableSDXY, LeadingNumberFlag>("CollisionDetectEnableSDXY"),
    Device::Key<&D::SDXYCollisionStatus, LeadingNumberFlag>("SDXYCollisionStatus"),
};

using Cage = Field<CageTypeRecord>;
using C = CageTypeRecord;
using WholeNumberText = RoundedWhole<std::int32_t>;

constexpr std::array cageFields{
    Cage::Line<&C::Name, QuotedText>(0).Means("name"),
    Cage::Line<&C::Code, BareText>(cageCodePiece).Means("class of the module"),
    Cage::Line<&C::Field2, WordOrNumberFlag>(2),
    Cage::Key<&C::CageReleaseBarHeight, WholeNumberText>("CageReleaseBarHeight"),
    Cage::Key<&C::CageReleaseHeight, WholeNumberText>("CageReleaseHeight"),
    Cage::Line<&C::Field3, WordOrNumberFlag>(3),
    Cage::Line<&C::Field4, WordOrNumberFlag>(4),
    Cage::Line<&C::Field5, WholeNumberText>(5).Means("head change S", Unit::Steps),
    Cage::Line<&C::Field6, WholeNumberText>(6),
    Cage::Line<&C::Field7, WholeNumberText>(7).Means("tip change S", Unit::Steps),
    Cage::Line<&C::Field8, WholeNumberText>(8),
};

}  // namespace

static_assert(CoversLine<DeviceTypeRecord>(deviceFields, 3));
static_assert(CoversLine<CageTypeRecord>(cageFields, 9));

constexpr RecordTable<DeviceTypeRecord> deviceTable{deviceFields, 3, &DeviceTypeRecord::ID};
constexpr RecordTable<CageTypeRecord> cageTable{cageFields, 9, &CageTypeRecord::ID};

DeviceTypeRecord LoadDeviceType(const Configuration& configuration, std::string& item,
                                std::string_view file) {
  return LoadInstalledOr(deviceTable, configuration, deviceTypeSection, item, file);
}

void SaveDeviceType(const Configuration& configuration, const DeviceTypeRecord& record,
                    std::string_view file) {
  SaveRecord(deviceTable, record, configuration, deviceTypeSection, file);
}

CageTypeRecord LoadCageType(const Configuration& configuration, std::string& item, std::string_view file) {
  return LoadInstalledOr(cageTable, configuration, cageTypeSection, item, file);
}

void SaveCageType(const Configuration& configuration, const CageTypeRecord& record, std::string_view file) {
  SaveRecord(cageTable, record, configuration, cageTypeSection, file);
}

}  // namespace zolvane
