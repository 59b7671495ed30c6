#include "custody/record/markup.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "config/text.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/text_encoding.h"

namespace zolvane {
namespace {

std::string FixedText(double number, int decimals) {
  std::array<char, 400> digits{};  // the largest double has 309 of them
  const auto end =
      std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::fixed, decimals);
  return {digits.data(), end.ptr};
}

std::string PointText(DrawingPoint point) {
  return Joined(Tenths(point.X), ",", Tenths(point.Y));
}

}  // namespace

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char character : Printable(text)) {
    switch (character) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\'':
        escaped += "&#39;";
        break;
      default:
        escaped += character;
    }
  }
  return escaped;
}

std::string Shortened(std::string_view name, std::size_t characters) {
  auto text = Printable(name);
  std::size_t end = 0;
  for (std::size_t count = 0; end < text.size(); ++count) {
    if (count == characters) {
      return text.substr(0, end) + "…";
    }
    end += std::max<std::size_t>(1, Utf8SequenceAt(text, end).Length);
  }
  return text;
}

std::string Element(std::string_view tag, std::string_view content) {
  const auto name = tag.substr(0, tag.find(' '));
  return Joined("<", tag, ">", content, "</", name, ">\n");
}

std::string Table(std::string_view style, std::initializer_list<std::string_view> titles,
                  std::string_view rows) {
  std::string heads;
  for (const auto title : titles) {
    heads += Element("th", Escaped(title));
  }
  return Element(Joined("table class=\"", style, "\""),
                 Element("thead", Element("tr", heads)) + Element("tbody", rows));
}

std::string TableRow(std::initializer_list<std::string_view> cells, bool isMarked) {
  std::string markup;
  for (const auto cell : cells) {
    markup += Element("td", cell);
  }
  return Element(isMarked ? "tr class=\"moved\"" : "tr", markup);
}

std::string Tenths(double number) {
  const auto text = FixedText(number, 1);
  return text.ends_with(".0") ? text.substr(0, text.size() - 2) : text;
}

std::string Drawing(std::string_view description, double width, double height, std::string_view content) {
  const auto size = Joined(Tenths(width), " ", Tenths(height));
  return Element(Joined(R"(svg role="img" viewBox="0 0 )", size, "\""),
                 Joined(Element("title", Escaped(description)), content));
}

std::string DrawnLine(std::string_view style, DrawingPoint from, DrawingPoint to) {
  return DrawnPath(style, {from, to});
}

std::string DrawnPath(std::string_view style, const std::vector<DrawingPoint>& points) {
  std::string places;
  for (const auto& point : points) {
    places += Joined(places.empty() ? "" : " ", PointText(point));
  }
  return Joined("<polyline class=\"", style, "\" points=\"", places, "\"/>\n");
}

std::string DrawnBox(std::string_view style, const DrawingBox& box) {
  return Joined("<rect class=\"", style, "\" x=\"", Tenths(box.Left), "\" y=\"", Tenths(box.Top),
                "\" width=\"", Tenths(box.Width), "\" height=\"", Tenths(box.Height), "\"/>\n");
}

std::string DrawnDot(std::string_view style, DrawingPoint centre, double radius) {
  return Joined("<circle class=\"", style, "\" cx=\"", Tenths(centre.X), "\" cy=\"", Tenths(centre.Y),
                "\" r=\"", Tenths(radius), "\"/>\n");
}

std::string DrawnText(std::string_view style, DrawingPoint at, std::string_view text) {
  const auto place = style.find("up") == std::string_view::npos
                         ? Joined("x=\"", Tenths(at.X), "\" y=\"", Tenths(at.Y), "\"")
                         : Joined("transform=\"translate(", PointText(at), ") rotate(-90)\"");
  return Element(Joined("text class=\"", style, "\" ", place), Escaped(text));
}

double RoundStep(double range, int parts) {
  const double smallest = range / parts;
  const double power = std::pow(10.0, std::floor(std::log10(smallest)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * power >= smallest) {
      return factor * power;
    }
  }
  return 10.0 * power;
}

std::vector<double> Ticks(const Axis& axis, double step) {
  std::vector<double> ticks;
  const double slack = step / 1000.0;  // a tick at the very end counts
  for (double number = std::ceil((axis.First - slack) / step); number * step <= axis.Last + slack; ++number) {
    ticks.push_back(number * step);
  }
  return ticks;
}

std::string NumberText(double number) {
  auto text = FixedText(number, 3);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.ends_with('.')) {
    text.pop_back();
  }
  return text == "-0" ? "0" : Replaced(text, "-", "−");
}

std::string SignedText(double number) {
  const auto text = NumberText(number);
  return number > 0 && text != "0" ? "+" + text : text;
}

}  // namespace zolvane
