#include "config/tables/height_tables.h"

#include <array>

namespace zolvane {
namespace {

using Height = Field<ZCalibrationRecord>;
using Z = ZCalibrationRecord;

// Saved in record order; the depth of the calibration plate is read one place earlier than it is saved.
constexpr std::array heightFields{
    Height::Key<&Z::MountHeight, LeadingReal>("MountHeight").Means("", Unit::Millimetres),
    Height::Key<&Z::StageHeightLower, LeadingReal>("StageHeightLower").Means("", Unit::Millimetres),
    Height::Key<&Z::StageHeightUpper, LeadingReal>("StageHeightUpper").Means("", Unit::Millimetres),
    Height::Key<&Z::HeadDepth_1ch_Short, LeadingReal>("HeadDepth_1ch_Short").Means("", Unit::Millimetres),
    Height::Key<&Z::Headdepth_1ch_Long, LeadingReal>("Headdepth_1ch_Long").Means("", Unit::Millimetres),
    Height::Key<&Z::HeadDepth_8ch, LeadingReal>("HeadDepth_8ch").Means("", Unit::Millimetres),
    Height::Key<&Z::HeadDepth_12ch, LeadingReal>("HeadDepth_12ch").Means("", Unit::Millimetres),
    Height::Key<&Z::HeadDepth_96_384, LeadingReal>("HeadDepth_96_384").Means("", Unit::Millimetres),
    Height::Key<&Z::HeadDepth_TeachTool_1Ch, LeadingReal>("HeadDepth_TeachTool_1Ch")
        .Means("", Unit::Millimetres),
    Height::Key<&Z::HeadDepth_TeachTool_96_384, LeadingReal>("HeadDepth_TeachTool_96_384")
        .Means("", Unit::Millimetres),
    Height::Key<&Z::NestDepth_Y, LeadingReal>("NestDepth_Y").Means("", Unit::Millimetres),
    Height::Key<&Z::NestDepth_XY_6, LeadingReal>("NestDepth_XY_6").Means("", Unit::Millimetres),
    Height::Key<&Z::TipMountDepth12, LeadingReal>("TipMountDepth12").Means("", Unit::Millimetres),
    Height::Key<&Z::TipMountDepth30, LeadingReal>("TipMountDepth30").Means("", Unit::Millimetres),
    Height::Key<&Z::TipMountDepth125, LeadingReal>("TipMountDepth125").Means("", Unit::Millimetres),
    Height::Key<&Z::TipMountDepth300, LeadingReal>("TipMountDepth300").Means("", Unit::Millimetres),
    Height::Key<&Z::CalibrationPlateDepth, LeadingReal>("CalibrationPlateDepth")
        .Means("", Unit::Millimetres)
        .OnlyRead(),
    Height::Key<&Z::TipMountDepth1250, LeadingReal>("TipMountDepth1250").Means("", Unit::Millimetres),
    Height::Key<&Z::CalibrationPlateDepth, LeadingReal>("CalibrationPlateDepth")
        .Means("", Unit::Millimetres)
        .OnlySaved(),
    Height::Key<&Z::DeltaZ, LeadingReal>("DeltaZ"),
    Height::Key<&Z::DeltaZTolerance, LeadingReal>("DeltaZTolerance", "1000"),
};

using Nest = Field<NestCalibrationRecord>;
using N = NestCalibrationRecord;

constexpr std::array nestCalibrationFields{
    Nest::Line<&N::Name, BareText>(0).Means("name"),
    Nest::Line<&N::Value1, SDStepsByPicture>(1).Means("", Unit::FileUnits),
    Nest::Line<&N::Value2, SDStepsByPicture>(2).Means("", Unit::FileUnits),
    Nest::Line<&N::Value3, SDStepsByPicture>(3).Means("", Unit::FileUnits),
    Nest::Line<&N::Value4, SDStepsByPicture>(4).Means("", Unit::FileUnits),
    Nest::Line<&N::Value5, SDStepsByPicture>(5).Means("", Unit::FileUnits),
    Nest::Line<&N::Value6, SDStepsByPicture>(6).Means("", Unit::FileUnits),
};

}  // namespace

static_assert(CoversLine<NestCalibrationRecord>(nestCalibrationFields, 7));

constexpr RecordTable<ZCalibrationRecord> heightTable{heightFields};
constexpr RecordTable<NestCalibrationRecord> nestCalibrationTable{nestCalibrationFields, 7,
                                                                  &NestCalibrationRecord::Key};

ZCalibrationRecord LoadZCalibration(const Configuration& configuration, std::string_view file) {
  ZCalibrationRecord heights;
  LoadInto<ZCalibrationRecord>(heights, heightFields, {}, configuration, heightSection,
                               configuration.Settings.Resolved(file));
  return heights;
}

void SaveZCalibration(const Configuration& configuration, const ZCalibrationRecord& record,
                      std::string_view file) {
  SaveKeys<ZCalibrationRecord>(record, heightFields, configuration, heightSection, file);
}

NestCalibrationRecord LoadNestCalibration(const Configuration& configuration, const std::string& item,
                                          std::string_view name, std::string_view file) {
  return LoadByItemOrName(nestCalibrationTable, configuration, nestCalibrationSection, item,
                          &NestCalibrationRecord::Name, name, file);
}

void SaveNestCalibration(const Configuration& configuration, const NestCalibrationRecord& record,
                         std::string_view file) {
  SaveRecord(nestCalibrationTable, record, configuration, nestCalibrationSection, file);
}

}  // namespace zolvane
