#include "config/tables/labware_tables.h"

#include <array>
#include <cstdint>
#include <optional>
#include <utility>

namespace zolvane {
namespace {

using Axis = Field<AxisRecord>;
using A = AxisRecord;
using StrictShort = StrictWhole<std::int16_t>;
using StrictLong = StrictWhole<std::int32_t>;
using LeadingLong = RoundedWhole<std::int32_t>;

constexpr std::array axisFields{
    Axis::Line<&A::Name, QuotedText>(0).Means("axis"),
    Axis::Line<&A::UnitsPerStep, StrictSingle>(1).Means("scale", Unit::MillimetresPerUnit),
    Axis::Line<&A::Field3, StrictLong>(2),
    Axis::Line<&A::Field4, StrictLong>(3),
    Axis::Line<&A::Field5, LeadingLong>(4),
    Axis::Line<&A::Field6, StrictLong>(5),
    Axis::Line<&A::Field7, StrictLong>(6),
    Axis::Line<&A::Field8, StrictLong>(7),
    Axis::Line<&A::Field9, StrictShort>(8),
    Axis::Line<&A::Field10, StrictShort>(9),
    Axis::Line<&A::Field11, StrictShort>(10),
    Axis::Line<&A::Field12, StrictShort>(11),
    Axis::Line<&A::Field13, StrictShort>(12),
    Axis::Line<&A::Field14, StrictShort>(13),
    Axis::Line<&A::Field15, LeadingLong>(14),
};

constexpr std::array<std::pair<std::string_view, AxisRecord AxisSlots::*>, 7> axisSlots{{
    {"X", &AxisSlots::X},
    {"Y", &AxisSlots::Y},
    {"Z", &AxisSlots::Z},
    {"S", &AxisSlots::S},
    {"SDX", &AxisSlots::SDX},
    {"SDY", &AxisSlots::SDY},
    {"SDS", &AxisSlots::SDS},
}};

// The serial-dilute X and Y axes are stored without the encoders' factor. All of a line is parsed before it
// is scaled, so a value that an incomplete line inherits from the line before is scaled again.
void ScaleSerialDiluteAxis(AxisRecord& axis, double factor) {
  const auto units = Quotient(axis.UnitsPerStep, factor);
  AssignIf(axis.UnitsPerStep, units ? ToSingle(*units) : std::nullopt);
  for (auto member : {&AxisRecord::Field6, &AxisRecord::Field7, &AxisRecord::Field15}) {
    const auto scaled = Product(axis.*member, factor);
    AssignIf(axis.*member, scaled ? RoundHalfToEven<std::int32_t>(*scaled) : std::nullopt);
  }
}

std::string AxisKey(int number) {
  return "Axis" + WholeText(number);
}

void StoreInSlot(AxisSlots& slots, const AxisRecord& axis) {
  for (const auto& [name, slot] : axisSlots) {
    if (axis.Name == name) {
      slots.*slot = axis;
    }
  }
}

using Plate = Field<PlateTypeRecord>;
using P = PlateTypeRecord;

constexpr std::array plateFields{
    Plate::Line<&P::Name, QuotedText>(0).Means("name"),
    Plate::Line<&P::Field2, BareText>(1),
    Plate::Line<&P::Field3, StrictShort>(2),
    Plate::Line<&P::Field4, StrictShort>(3),
    Plate::Line<&P::Field5, StrictReal>(4),
    Plate::Line<&P::Field6, StrictReal>(5),
    Plate::Line<&P::Field7, StrictReal>(6),
    Plate::Line<&P::Field8, StrictReal>(7),
    Plate::Line<&P::Field9, StrictReal>(8),
    Plate::Line<&P::Field10, StrictReal>(9),
    Plate::Line<&P::Field11, BareText>(10),
    Plate::Line<&P::Field12, StrictReal>(11),
    Plate::Line<&P::Field13, StrictReal>(12),
    Plate::Line<&P::Field14, StrictReal>(13),
    Plate::Line<&P::Field15, WordOrNumberFlag>(14),
    Plate::Key<&P::SBSA1Xmm, StrictReal>("SBSA1Xmm"),
    Plate::Key<&P::SBSA1Ymm, StrictReal>("SBSA1Ymm"),
    Plate::Line<&P::Field16, WordOrNumberFlag>(15),
    Plate::Line<&P::Field17, WordOrNumberFlag>(16),
    Plate::Line<&P::Field18, WordOrNumberFlag>(17),
    Plate::Line<&P::Field19, WordOrNumberFlag>(18),
    Plate::Line<&P::Field20, WordOrNumberFlag>(19),
    Plate::Line<&P::Field21, WordOrNumberFlag>(20),
};

using Calibration = Field<CalibrationRecord>;
using CR = CalibrationRecord;

constexpr std::array calibrationFields{
    Calibration::Line<&CR::Name, BareText>(0).Means("name"),
    Calibration::Line<&CR::Field2, LeadingLong>(1),
    Calibration::Line<&CR::Field3, LeadingLong>(2),
    Calibration::Line<&CR::Field4, SDSteps>(3).Means("", Unit::FileUnits),
    Calibration::Line<&CR::Field5, SDSteps>(4).Means("", Unit::FileUnits),
    Calibration::Line<&CR::Field6, SDSteps>(5).Means("", Unit::FileUnits),
    Calibration::Line<&CR::Field7, SDSteps>(6).Means("", Unit::FileUnits),
    Calibration::Line<&CR::Field8, SDSteps>(7).Means("", Unit::FileUnits),
    Calibration::Line<&CR::Field9, SDSteps>(8).Means("", Unit::FileUnits),
};

using Position = Field<PositionRecord>;
using PR = PositionRecord;

constexpr std::array positionFields{
    Position::Line<&PR::PositionName, BareText>(0).Means("place"),
    Position::Line<&PR::Name, QuotedText>(1).Means("name"),
    Position::Line<&PR::Field3, BareText>(2),
    Position::Line<&PR::Field4, LeadingLong>(3).Means("stage X", Unit::Counts),
    Position::Line<&PR::Field5, LeadingLong>(4).Means("stage Y", Unit::Counts),
    Position::Line<&PR::X, SDStepsByPicture>(5).Means("X of the 1/8/12 module", Unit::FileUnits),
    Position::Line<&PR::Y, SDStepsByPicture>(6).Means("Y of the 1/8/12 module", Unit::FileUnits),
    Position::Line<&PR::Field8, SDStepsByPicture>(7).Means("", Unit::FileUnits),
    Position::Line<&PR::Field9, SDStepsByPicture>(8).Means("", Unit::FileUnits),
    Position::Line<&PR::Field10, SDStepsByPicture>(9).Means("", Unit::FileUnits),
    Position::Line<&PR::Field11, SDStepsByPicture>(10).Means("", Unit::FileUnits),
    Position::Line<&PR::Flag12, WordOrNumberFlag>(11),
    Position::Line<&PR::NotFlag12, NegatedFlag>(11),
    Position::Line<&PR::Flag13, WordOrNumberFlag>(12),
    Position::Line<&PR::Field14, BareText>(13),
    Position::Line<&PR::Flag15, WordOrNumberFlag>(14),
    Position::Line<&PR::Flag16, WordOrNumberFlag>(15),
};

}  // namespace

static_assert(CoversLine<PlateTypeRecord>(plateFields, 21));
static_assert(CoversLine<CalibrationRecord>(calibrationFields, 9));
static_assert(CoversLine<PositionRecord>(positionFields, 16));

constexpr RecordTable<AxisRecord> axisTable{axisFields, 15};
constexpr RecordTable<PlateTypeRecord> plateTable{plateFields, 21, &PlateTypeRecord::Key};
constexpr RecordTable<CalibrationRecord> calibrationTable{calibrationFields, 9, &CalibrationRecord::Key};
constexpr RecordTable<PositionRecord> positionTable{positionFields, 16, &PositionRecord::Key};

std::string AxisSection(const CurrentRecords& current) {
  return "Device_Type" + current.Device.Name + "_Cage" + current.Cage.Name;
}

std::string CalibrationSection(const CurrentRecords& current) {
  return "Calibration_" + current.Device.Name;
}

std::string PositionSection(const CurrentRecords& current) {
  return "Position_" + current.Device.Name;
}

void LoadAxes(Configuration& configuration) {
  const double factor = SDXYStepFactor(configuration.Current.Device);
  configuration.Current.Axes = AxisSlots{};
  const auto section = AxisSection(configuration.Current);
  const auto file = configuration.Settings.ConfigFilePath();
  AxisRecord axis;  // one for all lines: what a line lacks it inherits from the line before
  const auto loadLine = [&](const std::string& line, int /*number*/) {
    const auto pieces = configuration.Settings.SplitText(",", line);
    if (pieces.empty()) {
      return true;
    }
    axis.Defined = true;
    LoadInto<AxisRecord>(axis, axisFields, pieces, configuration, section, file);
    if (axis.Name == "SDX" || axis.Name == "SDY") {
      ScaleSerialDiluteAxis(axis, factor);
    }
    StoreInSlot(configuration.Current.Axes, axis);
    return true;
  };
  ForEachNumberedValue(configuration.Settings, section, file, AxisKey, loadLine);
}

PlateTypeRecord LoadPlateType(const Configuration& configuration, const std::string& item,
                              std::string_view file) {
  return LoadRecord(plateTable, configuration, plateTypeSection, item, file);
}

void SavePlateType(const Configuration& configuration, const PlateTypeRecord& record, std::string_view file) {
  SaveRecord(plateTable, record, configuration, plateTypeSection, file);
}

CalibrationRecord LoadCalibration(const Configuration& configuration, const std::string& item,
                                  std::string_view file) {
  if (item.empty()) {
    return {};
  }
  return LoadRecord(calibrationTable, configuration, CalibrationSection(configuration.Current), item, file);
}

void SaveCalibration(const Configuration& configuration, const CalibrationRecord& record,
                     std::string_view file) {
  SaveRecord(calibrationTable, record, configuration, CalibrationSection(configuration.Current), file);
}

PositionRecord LoadPosition(const Configuration& configuration, const std::string& item,
                            std::string_view name, std::string_view file) {
  return LoadByItemOrName(positionTable, configuration, PositionSection(configuration.Current), item,
                          &PositionRecord::PositionName, name, file);
}

void SavePosition(const Configuration& configuration, const PositionRecord& record, std::string_view file) {
  SaveRecord(positionTable, record, configuration, PositionSection(configuration.Current), file);
}

}  // namespace zolvane
