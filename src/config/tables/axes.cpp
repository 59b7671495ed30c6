#include "config/tables/axes.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

namespace zolvane {
namespace {

using Axis = AxisRecord;

// clang-format off
constexpr std::array axisRows{
    InLine<&Axis::Name,         QuotedText  >( 0).Means("axis"),
    InLine<&Axis::UnitsPerStep, StrictSingle>( 1).Means("scale", Unit::MillimetresPerUnit),
    InLine<&Axis::Field3,       StrictLong  >( 2),
    InLine<&Axis::Field4,       StrictLong  >( 3),
    InLine<&Axis::Field5,       LeadingLong >( 4),
    InLine<&Axis::Field6,       StrictLong  >( 5),
    InLine<&Axis::Field7,       StrictLong  >( 6),
    InLine<&Axis::Field8,       StrictLong  >( 7),
    InLine<&Axis::Field9,       StrictShort >( 8),
    InLine<&Axis::Field10,      StrictShort >( 9),
    InLine<&Axis::Field11,      StrictShort >(10),
    InLine<&Axis::Field12,      StrictShort >(11),
    InLine<&Axis::Field13,      StrictShort >(12),
    InLine<&Axis::Field14,      StrictShort >(13),
    InLine<&Axis::Field15,      LeadingLong >(14),
};
// clang-format on

constexpr auto axisSlots = std::to_array<std::pair<std::string_view, AxisRecord AxisSlots::*>>({
    {"X", &AxisSlots::X},
    {"Y", &AxisSlots::Y},
    {"Z", &AxisSlots::Z},
    {"S", &AxisSlots::S},
    {"SDX", &AxisSlots::SDX},
    {"SDY", &AxisSlots::SDY},
    {"SDS", &AxisSlots::SDS},
});

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

void StoreInSlot(AxisSlots& slots, const AxisRecord& axis) {
  for (const auto& [name, slot] : axisSlots) {
    if (axis.Name == name) {
      slots.*slot = axis;
    }
  }
}

}  // namespace

constexpr RecordTable<AxisRecord> axisTable = MakeTable(TableSection{AxisSection}, axisRows);

std::string AxisSection(const CurrentRecords& current) {
  return "Device_Type" + current.Device.Name + "_Cage" + current.Cage.Name;
}

std::string AxisKey(int number) {
  return "Axis" + WholeText(number);
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
    LoadInto(axis, axisTable, pieces, configuration, file);
    if (axis.Name == "SDX" || axis.Name == "SDY") {
      ScaleSerialDiluteAxis(axis, factor);
    }
    StoreInSlot(configuration.Current.Axes, axis);
    return true;
  };
  ForEachNumberedValue(configuration.Settings, section, file, AxisKey, loadLine);
}

}  // namespace zolvane
