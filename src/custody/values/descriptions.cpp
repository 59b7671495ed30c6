#include "custody/values/descriptions.h"

#include <cmath>

#include "config/conversions.h"
#include "custody/values/file_fields.h"
#include "text/joined.h"

namespace zolvane {
namespace {

Description OfPlace(const NamedPlace& place) {
  const auto& section = FileSectionOf(place.Section);
  const auto* const field = place.Piece ? section.FieldAt(*place.Piece) : section.FieldUnder(place.Key);
  Description description{.Group = Joined("[", place.Section, "]"), .Title = {}};
  if (field != nullptr) {
    description.Title = field->Title;
    description.Of = field->Of;
  }
  return description;
}

std::map<Unit, double> MillimetresOf(const CurrentRecords& current) {
  const auto& axes = current.Axes;
  const double factor = SDXYStepFactor(current.Device);
  std::map<Unit, double> sizes{{Unit::Millimetres, 1.0},
                               {Unit::HundredthMillimetres, 0.01},
                               {Unit::StepsZ, axes.Z.UnitsPerStep},
                               {Unit::StepsS, axes.S.UnitsPerStep},
                               {Unit::StepsSDX, axes.SDX.UnitsPerStep},
                               {Unit::StepsSDY, axes.SDY.UnitsPerStep},
                               {Unit::FileUnitsX, axes.SDX.UnitsPerStep * factor},
                               {Unit::FileUnitsY, axes.SDY.UnitsPerStep * factor},
                               {Unit::CountsX, axes.X.UnitsPerStep},
                               {Unit::CountsY, axes.Y.UnitsPerStep}};
  if (sizes[Unit::FileUnitsX] == sizes[Unit::FileUnitsY]) {
    sizes[Unit::FileUnits] = sizes[Unit::FileUnitsX];
  }
  std::erase_if(sizes, [](const auto& size) { return size.second == 0.0; });
  return sizes;
}

// To a thousandth: the scales are held in single precision.
std::string MeasureText(double value) {
  return GeneralText(std::round(value * 1000.0) / 1000.0);
}

}  // namespace

Descriptions::Descriptions(const WireFace& face) : millimetres_{MillimetresOf(face.InForce)} {
  for (const auto& line : face.Script) {
    keys_[line.Key] = {.Group = std::string{line.Group}, .Title = {}, .Of = line.SentIn};
  }
}

Description Descriptions::Of(std::string_view name) const {
  if (const auto key = keys_.find(name); key != keys_.end()) {
    return key->second;
  }
  const auto place = PlaceNamed(name);
  return place ? OfPlace(*place) : Description{};
}

std::optional<double> Descriptions::Millimetres(std::string_view name, std::string_view text) const {
  const auto size = millimetres_.find(Of(name).Of);
  const auto number = StrictNumber(text);
  return size != millimetres_.end() && number ? Product(*number, size->second) : std::nullopt;
}

std::optional<std::string> Descriptions::Measure(std::string_view name, std::string_view text) const {
  if (const auto millimetres = Millimetres(name, text)) {
    return MeasureText(*millimetres) + " mm";
  }
  const auto number = StrictNumber(text);
  return number && Of(name).Of == Unit::Microlitres ? std::optional{MeasureText(*number) + " ul"}
                                                    : std::nullopt;
}

}  // namespace zolvane
