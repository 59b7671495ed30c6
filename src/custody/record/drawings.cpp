#include "custody/record/drawings.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <set>
#include <span>

#include "config/conversions.h"
#include "config/tables/tips.h"
#include "custody/record/markup.h"
#include "custody/values/file_fields.h"
#include "files/sectioned_text.h"
#include "operations/upload_script.h"
#include "text/joined.h"

namespace zolvane {
namespace {

// ---- Heights ----

using Heights = std::vector<const ValueRow*>;

Heights HeightsOf(const std::vector<ValueRow>& rows) {
  Heights heights;
  for (const auto& row : rows) {
    if (row.Meaning.Of == Unit::StepsZ && row.At) {
      heights.push_back(&row);
    }
  }
  return heights;
}

Axis HeightAxis(const Heights& heights) {
  double first = 0.0;
  double last = 0.0;
  for (const auto* height : heights) {
    first = std::min({first, height->Number(), height->WasAt.value_or(0.0)});
    last = std::max({last, height->Number(), height->WasAt.value_or(0.0)});
  }
  return {.First = first, .Last = first == last ? first + 1 : last, .FirstPixel = 34, .LastPixel = 218};
}

std::string DrawnHeight(const ValueRow& height, const Axis& axis, double middle) {
  constexpr double halfWidth = 7;
  constexpr std::size_t longestName = 27;
  const double zero = axis.At(0);
  const double end = axis.At(height.Number());
  const bool hangs = height.Number() >= 0;
  const std::string_view moved = height.WasAt ? " moved" : "";
  auto markup = DrawnBox(Joined("bar", moved), {.Left = middle - halfWidth,
                                                .Top = std::min(zero, end),
                                                .Width = 2 * halfWidth,
                                                .Height = std::max(0.5, std::abs(end - zero))});
  markup += DrawnText("value middle", {middle, hangs ? end + 9 : end - 3}, NumberText(height.Number()));
  if (height.WasAt) {
    const double before = axis.At(*height.WasAt);
    markup += DrawnLine("before", {middle - halfWidth - 4, before}, {middle + halfWidth + 4, before});
    markup +=
        DrawnText("value moved middle", {middle, hangs ? end + 18 : end - 12}, SignedText(height.Moved()));
  }
  return markup + DrawnText(Joined("name", moved, " end up"), {middle + 3, axis.LastPixel + 30},
                            Shortened(height.Name, longestName));
}

constexpr std::size_t barsInARow = 20;

// A row of bars under a scale of its own.
std::string HeightPanel(const Heights& heights, const Axis& axis) {
  constexpr double width = 680;
  constexpr double left = 44;
  constexpr double column = (width - left) / barsInARow;
  const auto unit = heights.front()->At.value_or(Quantity{}).Unit;
  std::string markup;
  for (const double tick : Ticks(axis, RoundStep(axis.Last - axis.First, 6))) {
    markup += DrawnLine(tick == 0 ? "frame" : "grid", {left, axis.At(tick)}, {width, axis.At(tick)});
    markup += DrawnText("tick end", {left - 4, axis.At(tick) + 3}, NumberText(tick));
  }
  markup += DrawnText("axis middle up", {11, (axis.FirstPixel + axis.LastPixel) / 2},
                      Joined("Z", unit.empty() ? "" : ", ", unit));
  double middle = left + column / 2;
  for (const auto* height : heights) {
    markup += DrawnHeight(*height, axis, middle);
    middle += column;
  }
  return Element("figure", Drawing("Heights", width, axis.LastPixel + 170, markup));
}

// ---- Volume corrections ----

struct Correction {
  double Volume = 0.0;  // as its item begins: "0.5 ul"
  double Factor = 0.0;

  bool operator==(const Correction&) const = default;
};

using Curve = std::vector<Correction>;

// The numbered items up to the first that is missing, as the upload walks them.
Curve CurveOf(const SectionedText& file, std::string_view section) {
  Curve curve;
  for (int number = 1; number <= lastItemNumber; ++number) {
    const auto item = file.Find(section, WholeText(number) + "Item");
    if (!item || item->empty()) {
      break;
    }
    const auto pieces = PiecesOf(*item);
    const auto correction = CorrectionIn(pieces);
    const double volume = LeadingNumber(pieces.front());
    if (correction && volume > 0) {
      curve.push_back({.Volume = volume, .Factor = correction->Factor});
    }
  }
  return curve;
}

// Sections that could be a volume correction, in the order of the file: tips name theirs as they like.
std::vector<std::string> CorrectionSections(std::string_view configuration) {
  std::vector<std::string> sections;
  std::set<std::string> known;
  const auto face = FileFace(configuration);
  for (const auto& value : face.InOrder()) {
    const auto place = PlaceNamed(value.Name);
    if (place && FileSectionOf(place->Section).IsCorrection() && known.insert(place->Section).second) {
      sections.push_back(place->Section);
    }
  }
  return sections;
}

std::string CurveTable(const Curve& curve) {
  std::string text;
  for (const auto& [volume, factor] : curve) {
    text += Joined(text.empty() ? "" : " · ", NumberText(volume), ": ", GeneralText(factor));
  }
  return Element("figcaption", Escaped(text));
}

struct Plot {
  std::string Section;
  Curve Left;
  Curve Found;  // empty if it was the same
};

Axis FactorAxis(const std::vector<Plot>& plots) {
  double first = 1.0;
  double last = 1.0;
  for (const auto& plot : plots) {
    for (const auto* curve : {&plot.Left, &plot.Found}) {
      for (const auto& point : *curve) {
        first = std::min(first, point.Factor);
        last = std::max(last, point.Factor);
      }
    }
  }
  const double room = std::max(0.001, 0.05 * (last - first));
  return {.First = first - room, .Last = last + room, .FirstPixel = 112, .LastPixel = 18};
}

std::string DrawnCurve(std::string_view style, const Curve& curve, const Axis& volumes, const Axis& factors) {
  std::vector<DrawingPoint> points;
  std::string dots;
  for (const auto& [volume, factor] : curve) {
    points.push_back({volumes.At(volume), factors.At(factor)});
    dots += DrawnDot(style, points.back(), 2.2);
  }
  return points.empty() ? std::string{} : DrawnPath(style, points) + dots;
}

std::string DrawnPlot(const Plot& plot, const Axis& factors) {
  constexpr double width = 224;
  double largest = 0.0;
  for (const auto* curve : {&plot.Left, &plot.Found}) {
    for (const auto& point : *curve) {
      largest = std::max(largest, point.Volume);
    }
  }
  const Axis volumes{.First = 0, .Last = largest * 1.04, .FirstPixel = 40, .LastPixel = width - 4};
  std::string markup;
  for (const double tick : Ticks(factors, RoundStep(factors.Last - factors.First, 5))) {
    markup += DrawnLine(tick == 1 ? "one" : "grid", {volumes.FirstPixel, factors.At(tick)},
                        {volumes.LastPixel, factors.At(tick)});
    markup += DrawnText("tick end", {volumes.FirstPixel - 4, factors.At(tick) + 3}, NumberText(tick));
  }
  for (const double tick : Ticks(volumes, RoundStep(volumes.Last, 6))) {
    markup +=
        DrawnLine("grid", {volumes.At(tick), factors.FirstPixel}, {volumes.At(tick), factors.LastPixel});
    markup += DrawnText("tick middle", {volumes.At(tick), factors.FirstPixel + 11}, NumberText(tick));
  }
  markup +=
      DrawnText("axis middle", {(volumes.FirstPixel + width) / 2, factors.FirstPixel + 23}, "volume, ul");
  markup += DrawnText("axis middle up", {9, (factors.FirstPixel + factors.LastPixel) / 2}, "factor");
  markup += DrawnText("name", {volumes.FirstPixel, 10}, Shortened(plot.Section, 34));
  markup += DrawnCurve("before", plot.Found, volumes, factors);
  markup += DrawnCurve(plot.Found.empty() ? "curve" : "curve moved", plot.Left, volumes, factors);
  return Element("figure class=\"plot\"",
                 Drawing(plot.Section, width, factors.FirstPixel + 28, markup) + CurveTable(plot.Left));
}

}  // namespace

std::string HeightDrawing(const std::vector<ValueRow>& rows) {
  const auto heights = HeightsOf(rows);
  const auto axis = HeightAxis(heights);
  std::string panels;
  for (std::size_t begin = 0; begin < heights.size(); begin += barsInARow) {
    const auto panel = std::span{heights}.subspan(begin, std::min(barsInARow, heights.size() - begin));
    panels += HeightPanel({panel.begin(), panel.end()}, axis);
  }
  return panels;
}

std::string VolumeCurves(const RecordContent& content) {
  constexpr std::size_t mostPlots = 60;
  const SectionedText left{content.Left.Configuration};
  const SectionedText found{content.Last
                                ? content.Last->Found.Configuration.value_or(content.Left.Configuration)
                                : content.Left.Configuration};
  std::vector<Plot> plots;
  std::size_t others = 0;
  for (const auto& section : CorrectionSections(content.Left.Configuration)) {
    Plot plot{.Section = section, .Left = CurveOf(left, section), .Found = CurveOf(found, section)};
    if (plot.Left.empty() || plots.size() == mostPlots) {
      others += !plot.Left.empty() || IsKnownSection(section) ? 1 : 0;
      continue;
    }
    if (plot.Found == plot.Left) {
      plot.Found.clear();
    }
    plots.push_back(std::move(plot));
  }
  const auto factors = FactorAxis(plots);
  std::string markup;
  for (const auto& plot : plots) {
    markup += DrawnPlot(plot, factors);
  }
  markup = Element("div class=\"plots\"", markup);
  return others == 0 ? markup
                     : markup + Element("p", Joined("Sections without a drawing: ",
                                                    NumberText(static_cast<double>(others)), "."));
}

}  // namespace zolvane
