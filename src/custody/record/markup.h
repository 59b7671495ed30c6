// The few pieces of HTML and SVG that the page of a record is made of. Texts from outside come in through
// Escaped, so that none of them is anything but text.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace zolvane {

// As it stands between tags. Characters that steer the page's text (control characters, marks of writing
// direction) and bytes that are not UTF-8 are made visible.
std::string Escaped(std::string_view text);

// The first printable characters, and an ellipsis if there are more: a name must not run across a drawing.
std::string Shortened(std::string_view name, std::size_t characters);

// `tag` is the name of the element, its attributes behind a blank; `content` is markup.
std::string Element(std::string_view tag, std::string_view content);

// A table with a heading; `style` is a class of the page's style sheet, `rows` are markup.
std::string Table(std::string_view style, std::initializer_list<std::string_view> titles,
                  std::string_view rows);

// Cells are markup.
std::string TableRow(std::initializer_list<std::string_view> cells, bool isMarked = false);

// ---- Drawings: in pixels, y downwards; `style` is a class of the page's style sheet ----

struct DrawingPoint {
  double X = 0.0;
  double Y = 0.0;
};

struct DrawingBox {
  double Left = 0.0;
  double Top = 0.0;
  double Width = 0.0;
  double Height = 0.0;

  bool Overlaps(const DrawingBox& other) const {
    return Left < other.Left + other.Width && other.Left < Left + Width && Top < other.Top + other.Height &&
           other.Top < Top + Height;
  }
};

// To a tenth of a pixel.
std::string Tenths(double number);

std::string Drawing(std::string_view description, double width, double height, std::string_view content);
std::string DrawnLine(std::string_view style, DrawingPoint from, DrawingPoint to);
std::string DrawnPath(std::string_view style, const std::vector<DrawingPoint>& points);
std::string DrawnBox(std::string_view style, const DrawingBox& box);
std::string DrawnDot(std::string_view style, DrawingPoint centre, double radius);

// Begins at the point; with style "middle" or "end" it is around or before it, with "up" it is read upwards.
std::string DrawnText(std::string_view style, DrawingPoint at, std::string_view text);

// ---- Axes ----

// A stretch of numbers, and the pixels that it is drawn on.
struct Axis {
  double First = 0.0;
  double Last = 1.0;  // greater than First
  double FirstPixel = 0.0;
  double LastPixel = 1.0;

  double At(double number) const {
    return FirstPixel + (number - First) / (Last - First) * (LastPixel - FirstPixel);
  }
};

// 1, 2 or 5 times a power of ten: the smallest of them that cuts the range into at most so many parts.
double RoundStep(double range, int parts);

// The multiples of the step on the axis.
std::vector<double> Ticks(const Axis& axis, double step);

// Without trailing zeros, at most three decimals, with the sign for minus that printers use.
std::string NumberText(double number);
std::string SignedText(double number);  // also with a plus

}  // namespace zolvane
