#include "config/tables/heights.h"

#include <array>

namespace zolvane {
namespace {

using Heights = ZCalibrationRecord;

template <auto Member>
constexpr Field<Heights> Height(std::string_view key) {
  return UnderKey<Member, LeadingReal>(key).Means("", Unit::Millimetres);
}

// Saved in the order of the record; the depth of the calibration plate is read one place earlier.
// clang-format off
constexpr std::array heightRows{
    Height<&Heights::MountHeight>               ("MountHeight"),
    Height<&Heights::StageHeightLower>          ("StageHeightLower"),
    Height<&Heights::StageHeightUpper>          ("StageHeightUpper"),
    Height<&Heights::HeadDepth_1ch_Short>       ("HeadDepth_1ch_Short"),
    Height<&Heights::Headdepth_1ch_Long>        ("Headdepth_1ch_Long"),
    Height<&Heights::HeadDepth_8ch>             ("HeadDepth_8ch"),
    Height<&Heights::HeadDepth_12ch>            ("HeadDepth_12ch"),
    Height<&Heights::HeadDepth_96_384>          ("HeadDepth_96_384"),
    Height<&Heights::HeadDepth_TeachTool_1Ch>   ("HeadDepth_TeachTool_1Ch"),
    Height<&Heights::HeadDepth_TeachTool_96_384>("HeadDepth_TeachTool_96_384"),
    Height<&Heights::NestDepth_Y>               ("NestDepth_Y"),
    Height<&Heights::NestDepth_XY_6>            ("NestDepth_XY_6"),
    Height<&Heights::TipMountDepth12>           ("TipMountDepth12"),
    Height<&Heights::TipMountDepth30>           ("TipMountDepth30"),
    Height<&Heights::TipMountDepth125>          ("TipMountDepth125"),
    Height<&Heights::TipMountDepth300>          ("TipMountDepth300"),
    Height<&Heights::CalibrationPlateDepth>     ("CalibrationPlateDepth").OnlyRead(),
    Height<&Heights::TipMountDepth1250>         ("TipMountDepth1250"),
    Height<&Heights::CalibrationPlateDepth>     ("CalibrationPlateDepth").OnlySaved(),
    UnderKey<&Heights::DeltaZ, LeadingReal>(deltaZKey),
    UnderKey<&Heights::DeltaZTolerance, LeadingReal>("DeltaZTolerance", "1000"),
};
// clang-format on

}  // namespace

constexpr RecordTable<ZCalibrationRecord> heightTable = MakeTable(TableSection{heightSection}, heightRows);

}  // namespace zolvane
