#include "config/tables/stage.h"

#include <array>

namespace zolvane {
namespace {

using Calibration = CalibrationRecord;

// clang-format off
constexpr std::array calibrationRows{
    InLine<&Calibration::Name,   BareText   >(0).Means("name"),
    InLine<&Calibration::Field2, LeadingLong>(1),
    InLine<&Calibration::Field3, LeadingLong>(2),
    InLine<&Calibration::Field4, SDSteps    >(3).Means("", Unit::FileUnits),
    InLine<&Calibration::Field5, SDSteps    >(4).Means("", Unit::FileUnits),
    InLine<&Calibration::Field6, SDSteps    >(5).Means("", Unit::FileUnits),
    InLine<&Calibration::Field7, SDSteps    >(6).Means("", Unit::FileUnits),
    InLine<&Calibration::Field8, SDSteps    >(7).Means("", Unit::FileUnits),
    InLine<&Calibration::Field9, SDSteps    >(8).Means("", Unit::FileUnits),
};
// clang-format on

using Position = PositionRecord;

// clang-format off
constexpr std::array positionRows{
    InLine<&Position::PositionName, BareText        >( 0).Means("place"),
    InLine<&Position::Name,         QuotedText      >( 1).Means("name"),
    InLine<&Position::Field3,       BareText        >( 2),
    InLine<&Position::StageX,       LeadingLong     >( 3).Means("stage X", Unit::CountsX),
    InLine<&Position::StageY,       LeadingLong     >( 4).Means("stage Y", Unit::CountsY),
    InLine<&Position::X,            SDStepsByPicture>( 5).Means("X of the 1/8/12 module", Unit::FileUnitsX),
    InLine<&Position::Y,            SDStepsByPicture>( 6).Means("Y of the 1/8/12 module", Unit::FileUnitsY),
    InLine<&Position::Field8,       SDStepsByPicture>( 7).Means("", Unit::FileUnits),
    InLine<&Position::Field9,       SDStepsByPicture>( 8).Means("", Unit::FileUnits),
    InLine<&Position::Field10,      SDStepsByPicture>( 9).Means("", Unit::FileUnits),
    InLine<&Position::Field11,      SDStepsByPicture>(10).Means("", Unit::FileUnits),
    InLine<&Position::Flag12,       StrictFlag      >(11),
    InLine<&Position::NotFlag12,    NegatedFlag     >(11),
    InLine<&Position::Flag13,       StrictFlag      >(12),
    InLine<&Position::Field14,      BareText        >(13),
    InLine<&Position::Flag15,       StrictFlag      >(14),
    InLine<&Position::Flag16,       StrictFlag      >(15),
};
// clang-format on

}  // namespace

constexpr RecordTable<CalibrationRecord> calibrationTable =
    MakeTable(TableSection{CalibrationSection}, calibrationRows);
constexpr RecordTable<PositionRecord> positionTable = MakeTable(TableSection{PositionSection}, positionRows);

std::string CalibrationSection(const CurrentRecords& current) {
  return "Calibration_" + current.Device.Name;
}

std::string PositionSection(const CurrentRecords& current) {
  return "Position_" + current.Device.Name;
}

}  // namespace zolvane
