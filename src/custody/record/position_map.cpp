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

// A position: its two values.
struct Place {
  std::string Number;  // on the map and in the list
  std::string Name;
  const ValueRow* X = nullptr;
  const ValueRow* Y = nullptr;
  bool IsDrawn = false;

  bool HasMoved() const { return X->Moved() != 0.0 || Y->Moved() != 0.0; }
};

std::vector<Place> PlacesOf(const std::vector<ValueRow>& rows, std::string_view group) {
  constexpr std::string_view ending = "_X";
  std::vector<Place> places;
  for (const auto& x : rows) {
    if (x.Meaning.Group != group || !x.Name.ends_with(ending)) {
      continue;
    }
    const auto stem = x.Name.substr(0, x.Name.size() - ending.size());
    if (const auto* const y = FindRow(rows, stem + "_Y")) {
      places.push_back(
          {.Number = NumberText(static_cast<double>(places.size() + 1)), .Name = stem, .X = &x, .Y = y});
    }
  }
  return places;
}

// One unit serves the whole map: that of the first position. What has another one stands only in the list.
std::string MarkDrawn(std::vector<Place>& places) {
  std::string unit;
  for (auto& place : places) {
    const auto& x = place.X->At;
    const auto& y = place.Y->At;
    if (x && y && x->Unit == y->Unit) {
      unit = unit.empty() ? x->Unit : unit;
      place.IsDrawn = x->Unit == unit;
    }
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
  DrawingPoint At(const Place& place) const { return At(place.X->Number(), place.Y->Number()); }
  double PixelsPerUnit() const { return (X.LastPixel - X.FirstPixel) / (X.Last - X.First); }
  bool Holds(const DrawingBox& box) const {
    return box.Left >= X.FirstPixel && box.Top >= Y.FirstPixel && box.Left + box.Width <= X.LastPixel &&
           box.Top + box.Height <= Y.LastPixel;
  }
};

// The range of the drawn positions, with room around it for their labels.
std::pair<double, double> RangeOf(const std::vector<Place>& places, const ValueRow* Place::* axis) {
  std::optional<std::pair<double, double>> range;
  for (const auto& place : places) {
    if (place.IsDrawn) {
      const double number = (place.*axis)->Number();
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
  auto [left, right] = RangeOf(places, &Place::X);
  auto [top, bottom] = RangeOf(places, &Place::Y);
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

// A text for each line.
using Label = std::vector<std::string>;

constexpr double labelLine = 10.5;
constexpr std::string_view movedWord = "moved ";
constexpr std::string_view betweenNumbers = " / ";

std::string MovementText(const Place& place) {
  return Joined(SignedText(place.X->Moved()), betweenNumbers, SignedText(place.Y->Moved()));
}

// From the label that says most to the one that only refers to the list.
std::vector<Label> LabelsOf(const Place& place) {
  constexpr std::size_t longestName = 26;
  const auto name = Joined(place.Number, " ", Shortened(place.Name, longestName));
  Label full{name, Joined(NumberText(place.X->Number()), betweenNumbers, NumberText(place.Y->Number()))};
  if (place.HasMoved()) {
    full.push_back(Joined(movedWord, MovementText(place)));
  }
  return {full, {name}, {place.Number}};
}

DrawingBox BoxFor(const Label& label) {
  constexpr double widestLetter = 6.1;
  const auto longest = std::ranges::max(label, {}, [](const auto& line) { return line.size(); }).size();
  return {.Width = widestLetter * static_cast<double>(longest),
          .Height = labelLine * static_cast<double>(label.size()) + 1};
}

// Beside the point, right, left, below, above, then between these; where nothing else is.
std::optional<DrawingBox> FreeBox(const Frame& frame, const std::vector<DrawingBox>& taken,
                                  DrawingPoint point, const Label& label) {
  struct Direction {
    double X;  // -1: wholly left of the point, 0: around it, 1: wholly right of it
    double Y;
  };
  constexpr std::array<Direction, 8> directions{
      {{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, 1}, {-1, 1}, {1, -1}, {-1, -1}}};
  auto box = BoxFor(label);
  for (const double distance : {8.0, 18.0, 32.0}) {
    for (const auto& [x, y] : directions) {
      box.Left = point.X + x * (distance + box.Width / 2) - box.Width / 2;
      box.Top = point.Y + y * (distance + box.Height / 2) - box.Height / 2;
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
  for (const auto& line : label) {
    y += labelLine;
    const auto* const style = line.starts_with(movedWord)                      ? "label moved"
                              : line.find(betweenNumbers) == std::string::npos ? "label name"
                                                                               : "label";
    markup += DrawnText(style, {.X = box.Left + 1, .Y = y}, line);
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
    longest = std::max(longest, place.IsDrawn ? std::hypot(place.X->Moved(), place.Y->Moved()) : 0.0);
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
      const auto from = frame.At(place.X->Number() - place.X->Moved(), place.Y->Number() - place.Y->Moved());
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

std::string ListRow(const Place& place) {
  const auto text = [](const ValueRow& row) { return Escaped(row.Now.value_or("none")); };
  const auto number = [](const ValueRow& row) {
    return row.At ? Escaped(Joined(NumberText(row.At->Number), " ", row.At->Unit)) : "no number";
  };
  const auto moved = place.HasMoved() ? "▲ " + MovementText(place) : "";
  return TableRow({place.Number, Escaped(place.Name), text(*place.X), text(*place.Y), number(*place.X),
                   number(*place.Y), moved},
                  place.HasMoved());
}

std::string List(const std::vector<Place>& places, const std::string& unit) {
  std::string rows;
  for (const auto& place : places) {
    rows += ListRow(place);
  }
  const auto moved = Joined("Moved X / Y", unit.empty() ? "" : ", ", unit);
  return Table("numbers", {"No.", "Position", "X as sent", "Y as sent", "X", "Y", moved}, rows);
}

}  // namespace

std::string PositionMap(const std::vector<ValueRow>& rows, std::string_view group, std::string_view heading) {
  auto places = PlacesOf(rows, group);
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
  const auto caption = moved == 0 ? "None of these positions is known to have moved."
                                  : Joined("Moved positions have an arrow, drawn ", NumberText(factor),
                                           " times as long as the way.");
  const auto figure = Element("figcaption", caption);
  return Joined(Element("figure", Joined(title, Map(places, frame, unit, factor, heading), figure)),
                List(places, unit));
}

}  // namespace zolvane
