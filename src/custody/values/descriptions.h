// What a value is, for people: group, title, unit, and its size in millimetres or microlitres.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "config/record_table.h"
#include "custody/values/sides.h"

namespace zolvane {

struct Description {
  std::string Group;    // "Stage XY", "[HeadType]"
  std::string Title{};  // empty: the name says it
  Unit Of = Unit::None;
};

// Knows the values of one configuration: its scales make millimetres of steps.
class Descriptions {
 public:
  // The wire's face of the configuration gives the upload's keys and the scales. Without lines only places in
  // the file are known.
  explicit Descriptions(const WireFace& face);

  // A key that is not in the face, and a place that no table knows, have no title and no unit.
  Description Of(std::string_view name) const;

  // Nothing if the value is no length, its axis has no scale, or the text is no number.
  std::optional<double> Millimetres(std::string_view name, std::string_view text) const;

  // The same as text, or microlitres: "151.2 mm", "300 ul".
  std::optional<std::string> Measure(std::string_view name, std::string_view text) const;

 private:
  std::map<std::string, Description, std::less<>> keys_;
  std::map<Unit, double> millimetres_;  // in one unit
};

}  // namespace zolvane
