#include "custody/record/position_map.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>

#include "custody/record/markup.h"
#include "text/joined.h"

namespace zolvane {
namespace {

// A position: its two values, and what is known of them.
struct Place {
  std::string Number;  // on the map and in the list
  std::string Name;
  const ValueRow* X = nullptr;
  const ValueRow* Y = nullptr;
  std::optional<Quantity> AtX;
  std::optional<Quantity> AtY;
  double MovedX = 0.0;  // since before the last operation
  double MovedY = 0.0;
  bool IsDrawn = false;

  bool HasMoved() const { return MovedX != 0.0 || MovedY != 0.0; }
};

std::optional<Quantity> NowOf(const Faces& faces, const ValueRow& row) {
  const auto now = row.Now();
  return now ? QuantityOf(faces, row.Name, *now) : std::nullopt;
}

double MovementOf(const Faces& faces, const ValueRow& row) {
  const auto before = row.Before();
  const auto now = NowOf(faces, row);
  const auto then = before ? QuantityOf(faces, row.Name, *before) : std::nullopt;
  return now && then ? now->Number - then->Number : 0.0;
}

// ---- The positions ----

std::vector<Place> PlacesOf(const std::vector<ValueRow>& rows, const Faces& faces, std::string_view group) {
  constexpr std::string_view ending = "_X";
  std::vector<Place> places;
  for (const auto& x : rows) {
    const auto stem =
        std::string_view{x.Name}.substr(0, x.Name.size() - std::min(x.Name.size(), ending.size()));
    const auto* y = FindRow(rows, Joined(stem, "_Y"));
    if (x.Meaning.Group == group && x.Name.ends_with(ending) && y != nullptr) {
      places.push_back({.Number = NumberText(static_cast<double>(places.size() + 1)),
                        .Name = std::string{stem},
                        .X = &x,
                        .Y = y,
                        .AtX = NowOf(faces, x),
                        .AtY = NowOf(faces, *y),
                        .MovedX = MovementOf(faces, x),
                        .MovedY = MovementOf(faces, *y)});
    }
  }
  return places;
}

// One unit serves the whole map: that of the first position. What has another one stands only in the list.
std::string MarkDrawn(std::vector<Place>& places) {
  std::string unit;
  for (auto& place : places) {
    if (!place.AtX || !place.AtY || place.AtX->Unit != place.AtY->Unit) {
      continue;
    }
    if (unit.empty()) {
      unit = place.AtX->Unit;
    }
    place.IsDrawn = place.AtX->Unit == unit;
  }
  return unit;
}

// ---- The map's frame ----

constexpr double mapWidth = 680;
constexpr DrawingPoint frameCorner{.X = 48, .Y = 34};

struct Frame {
  Axis X;
  Axis Y;

  DrawingPoint At(double x, double y) const { return {.X = X.At(x), .Y = Y.At(y)}; }
  DrawingPoint At(const Place& place) const { return At(place.AtX->Number, place.AtY->Number); }
  double PixelsPerUnit() const { return (X.LastPixel - X.FirstPixel) / (X.Last - X.First); }
  bool Holds(const DrawingBox& box) const {
    return box.Left >= X.FirstPixel && box.Top >= Y.FirstPixel && box.Left + box.Width <= X.LastPixel &&
           box.Top + box.Height <= Y.LastPixel;
  }
};

// The range of the drawn positions, with room around it for their labels.
std::pair<double, double> RangeOf(const std::vector<Place>& places, std::optional<Quantity> Place::* at) {
  std::optional<std::pair<double, double>> range;
  for (const auto& place : places) {
    if (place.IsDrawn) {
      const double number = (place.*at)->Number;
      range = range ? std::pair{std::min(range->first, number), std::max(range->second, number)}
                    : std::pair{number, number};
    }
  }
  const auto [first, last] = range.value_or(std::pair{0.0, 1.0});
  const double room =
      std::max(0.12 * (last - first), 0.01 * std::max({1.0, std::abs(first), std::abs(last)}));
  return {first - room, last + room};
}

// A unit is as long across as down.
Frame FrameAround(const std::vector<Place>& places) {
  constexpr double smallestHeight = 170;
  constexpr double largestHeight = 560;
  constexpr double frameWidth = mapWidth - frameCorner.X - 4;
  auto [left, right] = RangeOf(places, &Place::AtX);
  auto [top, bottom] = RangeOf(places, &Place::AtY);
  const double unit = std::min(frameWidth / (right - left), largestHeight / (bottom - top));
  const double wider = (frameWidth / unit - (right - left)) / 2;
  const double higher = std::max(0.0, (smallestHeight / unit - (bottom - top)) / 2);
  left -= wider;
  right += wider;
  top -= higher;
  bottom += higher;
  return {.X = {left, right, frameCorner.X, frameCorner.X + frameWidth},
          .Y = {top, bottom, frameCorner.Y, frameCorner.Y + unit * (bottom - top)}};
}

std::string Grid(const Frame& frame, const std::string& unit) {
  const double step = RoundStep(frame.X.Last - frame.X.First, 12);
  std::string markup;
  for (const double x : Ticks(frame.X, step)) {
    const auto top = frame.At(x, frame.Y.First);
    markup += DrawnLine("grid", top, frame.At(x, frame.Y.Last));
    markup += DrawnText("tick middle", {.X = top.X, .Y = top.Y - 4}, NumberText(x));
  }
  for (const double y : Ticks(frame.Y, step)) {
    const auto left = frame.At(frame.X.First, y);
    markup += DrawnLine("grid", left, frame.At(frame.X.Last, y));
    markup += DrawnText("tick end", {.X = left.X - 4, .Y = left.Y + 3}, NumberText(y));
  }
  const auto shown = unit.empty() ? unit : ", " + unit;
  return Joined(
      markup, DrawnText("axis middle", {.X = (frameCorner.X + mapWidth) / 2, .Y = 12}, "X" + shown),
      DrawnText("axis middle up", {.X = 11, .Y = (frame.Y.FirstPixel + frame.Y.LastPixel) / 2}, "Y" + shown),
      DrawnBox("frame", {.Left = frame.X.FirstPixel,
                         .Top = frame.Y.FirstPixel,
                         .Width = frame.X.LastPixel - frame.X.FirstPixel,
                         .Height = frame.Y.LastPixel - frame.Y.FirstPixel}));
}

// ---- Labels that find their place ----

struct Label {
  std::vector<std::string> Lines;
  double Width = 0.0;
};

constexpr double labelLine = 10.5;

double HeightOf(const Label& label) {
  return labelLine * static_cast<double>(label.Lines.size()) + 1;
}

Label MakeLabel(std::vector<std::string> lines) {
  constexpr double widestLetter = 6.1;
  std::size_t longest = 0;
  for (const auto& line : lines) {
    longest = std::max(longest, line.size());
  }
  return {.Lines = std::move(lines), .Width = widestLetter * static_cast<double>(longest)};
}

std::string CoordinatesOf(const Place& place) {
  return Joined(NumberText(place.AtX->Number), " / ", NumberText(place.AtY->Number));
}

std::string MovementText(const Place& place) {
  return Joined(SignedText(place.MovedX), " / ", SignedText(place.MovedY));
}

// From the label that says most to the one that only refers to the list.
std::vector<Label> LabelsOf(const Place& place) {
  constexpr std::size_t longestName = 26;
  const auto name = Joined(place.Number, " ", Shortened(place.Name, longestName));
  auto full = std::vector{name, CoordinatesOf(place)};
  if (place.HasMoved()) {
    full.push_back("moved " + MovementText(place));
  }
  return {MakeLabel(full), MakeLabel({name}), MakeLabel({place.Number})};
}

// Beside the point, right, left, below, above, then between these.
DrawingBox BoxBeside(DrawingPoint point, const Label& label, std::size_t side, double distance) {
  struct Side {
    double X;  // -1: wholly left of the point, 0: around it, 1: wholly right of it
    double Y;
  };
  constexpr std::array<Side, 8> sides{{{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, 1}, {-1, 1}, {1, -1}, {-1, -1}}};
  const auto [x, y] = sides[side];
  const double height = HeightOf(label);
  return {.Left = point.X + x * (distance + label.Width / 2) - label.Width / 2,
          .Top = point.Y + y * (distance + height / 2) - height / 2,
          .Width = label.Width,
          .Height = height};
}

std::optional<DrawingBox> FreeBox(const Frame& frame, const std::vector<DrawingBox>& taken,
                                  DrawingPoint point, const Label& label) {
  for (const double distance : {8.0, 18.0, 32.0}) {
    for (std::size_t side = 0; side < 8; ++side) {
      const auto box = BoxBeside(point, label, side, distance);
      const auto overlaps = [&box](const DrawingBox& other) { return box.Overlaps(other); };
      if (frame.Holds(box) && std::ranges::none_of(taken, overlaps)) {
        return box;
      }
    }
  }
  return std::nullopt;
}

std::string DrawnLabel(const DrawingBox& box, DrawingPoint point, const Label& label) {
  std::string markup;
  const DrawingPoint nearest{.X = std::clamp(point.X, box.Left, box.Left + box.Width),
                             .Y = std::clamp(point.Y, box.Top, box.Top + box.Height)};
  if (std::hypot(nearest.X - point.X, nearest.Y - point.Y) > 12) {
    markup += DrawnLine("leader", point, nearest);
  }
  double y = box.Top - 1.5;
  for (const auto& line : label.Lines) {
    y += labelLine;
    const bool isName = line.find(" / ") == std::string::npos;
    const bool isMovement = line.starts_with("moved ");
    markup += DrawnText(isMovement ? "label moved"
                        : isName   ? "label name"
                                   : "label",
                        {.X = box.Left + 1, .Y = y}, line);
  }
  return markup;
}

// Without room for any label the position is only in the list.
std::string LabelInFreeBox(const Frame& frame, std::vector<DrawingBox>& taken, const Place& place) {
  const auto point = frame.At(place);
  for (const auto& label : LabelsOf(place)) {
    if (const auto box = FreeBox(frame, taken, point, label)) {
      taken.push_back(*box);
      return DrawnLabel(*box, point, label);
    }
  }
  return {};
}

// ---- Markers and arrows ----

// Arrows are drawn longer than the way is, or nobody would see them; by the same factor on the whole map.
double Magnification(const std::vector<Place>& places, const Frame& frame) {
  double longest = 0.0;
  for (const auto& place : places) {
    longest = std::max(longest, place.IsDrawn ? std::hypot(place.MovedX, place.MovedY) : 0.0);
  }
  constexpr double longestArrow = 34;
  double factor = 1.0;
  for (const double next : {2.0, 5.0, 10.0, 20.0, 50.0, 100.0, 200.0, 500.0, 1000.0}) {
    factor = longest * frame.PixelsPerUnit() * next <= longestArrow ? next : factor;
  }
  return factor;
}

std::string DrawnArrow(DrawingPoint from, DrawingPoint to) {
  const double length = std::hypot(to.X - from.X, to.Y - from.Y);
  if (length < 0.5) {
    return {};
  }
  constexpr double head = 6;
  const double alongX = (to.X - from.X) / length * head;
  const double alongY = (to.Y - from.Y) / length * head;
  return DrawnLine("arrow", from, to) +
         DrawnPath("arrow", {{to.X - alongX - alongY / 2, to.Y - alongY + alongX / 2},
                             to,
                             {to.X - alongX + alongY / 2, to.Y - alongY - alongX / 2}});
}

std::string DrawnMarker(DrawingPoint point, bool hasMoved) {
  constexpr double arm = 6;
  const std::string_view style = hasMoved ? "cross moved" : "cross";
  return DrawnLine(style, {point.X - arm, point.Y}, {point.X + arm, point.Y}) +
         DrawnLine(style, {point.X, point.Y - arm}, {point.X, point.Y + arm}) +
         DrawnDot(hasMoved ? "dot moved" : "dot", point, 2.6);
}

DrawingBox BoxOf(DrawingPoint a, DrawingPoint b) {
  constexpr double margin = 4;
  return {.Left = std::min(a.X, b.X) - margin,
          .Top = std::min(a.Y, b.Y) - margin,
          .Width = std::abs(a.X - b.X) + 2 * margin,
          .Height = std::abs(a.Y - b.Y) + 2 * margin};
}

// ---- The map ----

std::string Map(const std::vector<Place>& places, const Frame& frame, const std::string& unit, double factor,
                std::string_view heading) {
  std::string markers;
  std::vector<DrawingBox> taken;
  for (const auto& place : places) {
    if (place.IsDrawn) {
      const auto point = frame.At(place);
      const auto from = frame.At(place.AtX->Number - place.MovedX, place.AtY->Number - place.MovedY);
      const DrawingPoint to{from.X + (point.X - from.X) * factor, from.Y + (point.Y - from.Y) * factor};
      markers += DrawnMarker(point, place.HasMoved()) + DrawnArrow(from, to);
      taken.push_back(BoxOf(point, point));
      taken.push_back(BoxOf(from, to));
    }
  }
  std::string labels;
  for (const auto& place : places) {
    labels += place.IsDrawn ? LabelInFreeBox(frame, taken, place) : "";
  }
  return Drawing(heading, mapWidth, frame.Y.LastPixel + 4, Joined(Grid(frame, unit), markers, labels));
}

// ---- The list ----

std::string Cells(std::initializer_list<std::string> texts) {
  std::string cells;
  for (const auto& text : texts) {
    cells += Element("td", text);
  }
  return cells;
}

std::string NumberCell(const std::optional<Quantity>& quantity) {
  return quantity ? Escaped(Joined(NumberText(quantity->Number), " ", quantity->Unit)) : "no number";
}

std::string ListRow(const Place& place) {
  const auto shown = [](const ValueRow& row) { return Escaped(row.Now().value_or("none")); };
  const auto moved = place.HasMoved() ? "▲ " + MovementText(place) : "";
  return Element(place.HasMoved() ? "tr class=\"moved\"" : "tr",
                 Cells({place.Number, Escaped(place.Name), shown(*place.X), shown(*place.Y),
                        NumberCell(place.AtX), NumberCell(place.AtY), moved}));
}

std::string List(const std::vector<Place>& places, const std::string& unit) {
  std::string rows;
  for (const auto& place : places) {
    rows += ListRow(place);
  }
  const auto head =
      Joined("<th>No.</th><th>Position</th><th>X as sent</th><th>Y as sent</th><th>X</th><th>Y</th>",
             Element("th", Escaped("Moved X / Y" + (unit.empty() ? unit : ", " + unit))));
  return Element("table class=\"numbers\"",
                 Joined(Element("thead", Element("tr", head)), Element("tbody", rows)));
}

}  // namespace

std::string PositionMap(const std::vector<ValueRow>& rows, const Faces& faces, std::string_view group,
                        std::string_view heading) {
  auto places = PlacesOf(rows, faces, group);
  if (places.empty()) {
    return {};
  }
  const auto unit = MarkDrawn(places);
  const auto title = Element("h3", Escaped(heading));
  if (std::ranges::none_of(places, &Place::IsDrawn)) {
    return title + List(places, unit);
  }
  const auto frame = FrameAround(places);
  const double factor = Magnification(places, frame);
  const auto moved = std::ranges::count_if(places, &Place::HasMoved);
  const auto caption = moved == 0 ? "None of these positions moved."
                                  : Joined("Moved positions have an arrow, drawn ", NumberText(factor),
                                           " times as long as the way.");
  const auto figure = Element("figcaption", caption);
  return Joined(Element("figure", Joined(title, Map(places, frame, unit, factor, heading), figure)),
                List(places, unit));
}

}  // namespace zolvane
