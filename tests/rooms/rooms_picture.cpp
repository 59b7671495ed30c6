#include "rooms/rooms_picture.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <sstream>
#include <string_view>
#include <utility>

namespace zolvane {
namespace {

// In pixels.
constexpr int boxWidth = 150;
constexpr int boxHeight = 58;
constexpr int columnWidth = 176;
constexpr int rowHeight = 84;
constexpr int margin = 24;
constexpr int headHeight = 74;
constexpr int laneHeadHeight = 30;
constexpr int laneGap = 18;

struct Lane {
  Basis For;
  std::string_view Title;
  std::string_view Ground;
};
constexpr std::array<Lane, 3> lanes{{
    {Basis::Standard, "the add-in: the C++ standard library alone, no exceptions", "#f1f5fa"},
    {Basis::System, "the programs: their libraries, and the system in files named after it", "#f3f7ee"},
    {Basis::Windows, "Windows only", "#fdf5e6"},
}};

struct Place {
  int Column = 0;
  int X = 0;
  int Y = 0;
};
using Places = std::map<std::string, Place>;

// One further than the farthest room that it uses.
int ColumnOf(const Room& room, const Places& places) {
  int column = 0;
  for (const auto& used : room.Uses) {
    column = std::max(column, places.at(used).Column + 1);
  }
  return column;
}

// The first row of the lane whose place in that column is free.
int RowIn(std::set<std::pair<int, int>>& taken, int column) {
  int row = 0;
  while (!taken.emplace(column, row).second) {
    ++row;
  }
  return row;
}

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char character : text) {
    escaped += character == '&' ? "&amp;" : character == '<' ? "&lt;" : std::string{character};
  }
  return escaped;
}

// Lines that are no wider than a box.
std::vector<std::string> Wrapped(const std::string& text) {
  std::vector<std::string> lines{""};
  std::istringstream words{text};
  for (std::string word; words >> word;) {
    if (!lines.back().empty() && lines.back().size() + word.size() + 1 > 25) {
      lines.emplace_back();
    }
    lines.back() += (lines.back().empty() ? "" : " ") + word;
  }
  return lines;
}

std::string Text(int x, int y, std::string_view attributes, std::string_view text) {
  return "  <text x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(y) + "\" " +
         std::string{attributes} + ">" + Escaped(text) + "</text>\n";
}

std::string Rectangle(int x, int y, int width, int height, std::string_view attributes) {
  return "  <rect x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(y) + "\" width=\"" +
         std::to_string(width) + "\" height=\"" + std::to_string(height) + "\" " + std::string{attributes} +
         "/>\n";
}

std::string Box(const Room& room, const Place& place) {
  constexpr auto centred = "text-anchor=\"middle\" ";
  const int middle = place.X + boxWidth / 2;
  auto box = Rectangle(place.X, place.Y, boxWidth, boxHeight, "rx=\"6\" fill=\"#ffffff\" stroke=\"#44546a\"");
  box += Text(middle, place.Y + 17,
              std::string{centred} + "font-size=\"13\" font-weight=\"bold\" fill=\"#1f2a38\"", room.Folder);
  int y = place.Y + 31;
  for (const auto& line : Wrapped(room.Holds)) {
    box += Text(middle, y, std::string{centred} + "font-size=\"9.5\" fill=\"#44546a\"", line);
    y += 11;
  }
  return box;
}

std::string Arrow(const Place& from, const Place& to) {
  const int beginX = from.X;
  const int beginY = from.Y + boxHeight / 2;
  const int endX = to.X + boxWidth;
  const int endY = to.Y + boxHeight / 2;
  const int bend = std::max(14, (beginX - endX) / 3);
  std::ostringstream path;
  path << "  <path d=\"M" << beginX << ' ' << beginY << " C" << beginX - bend << ' ' << beginY << ' '
       << endX + bend << ' ' << endY << ' ' << endX + 2 << ' ' << endY << "\"/>\n";
  return path.str();
}

struct LaneGround {
  const Lane* Shown = nullptr;
  int Top = 0;
  int Height = 0;
};

struct Layout {
  Places Rooms;
  std::vector<LaneGround> Lanes;
  int Width = 0;
  int Height = headHeight;
};

// Gives the rooms of a lane their rows, and returns how many rows those are.
int PutIntoRows(const std::vector<Room>& rooms, const Lane& lane, Layout& layout) {
  std::set<std::pair<int, int>> taken;
  int rows = 1;
  for (const auto& room : rooms) {
    if (room.RestsOn == lane.For) {
      auto& place = layout.Rooms[room.Folder];
      const int row = RowIn(taken, place.Column);
      place.Y = layout.Height + laneHeadHeight + row * rowHeight;
      rows = std::max(rows, row + 1);
    }
  }
  return rows;
}

Layout LayoutOf(const std::vector<Room>& rooms) {
  Layout layout;
  for (const auto& room : rooms) {
    const int column = ColumnOf(room, layout.Rooms);
    const int x = margin + column * columnWidth;
    layout.Rooms[room.Folder] = {column, x, 0};
    layout.Width = std::max(layout.Width, x + boxWidth + margin);
  }
  for (const auto& lane : lanes) {
    const int height = laneHeadHeight + PutIntoRows(rooms, lane, layout) * rowHeight;
    layout.Lanes.push_back({&lane, layout.Height, height});
    layout.Height += height + laneGap;
  }
  return layout;
}

std::string Ground(const LaneGround& ground, int width) {
  const auto fill = "rx=\"10\" fill=\"" + std::string{ground.Shown->Ground} + "\"";
  return Rectangle(8, ground.Top, width - 16, ground.Height, fill) +
         Text(margin, ground.Top + 20, "font-size=\"13\" fill=\"#44546a\"", ground.Shown->Title);
}

std::string Head(const Layout& layout) {
  const auto size = std::to_string(layout.Width) + " " + std::to_string(layout.Height);
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " + size +
         "\" font-family=\"Helvetica, Arial, sans-serif\">\n"
         "  <defs>\n"
         "    <marker id=\"tip\" viewBox=\"0 0 10 10\" refX=\"9\" refY=\"5\" markerWidth=\"7\" "
         "markerHeight=\"7\" "
         "orient=\"auto\">\n"
         "      <path d=\"M0 0 L10 5 L0 10 z\" fill=\"#7a8aa0\"/>\n"
         "    </marker>\n"
         "  </defs>\n" +
         Rectangle(0, 0, layout.Width, layout.Height, "fill=\"#ffffff\"") +
         Text(margin, 36, "font-size=\"20\" font-weight=\"bold\" fill=\"#1f2a38\"", "HZOCalibrateDevice") +
         Text(margin, 58, "font-size=\"13\" fill=\"#44546a\"",
              "An arrow reads \"uses\": a room may use what its arrows reach, and nothing else.");
}

}  // namespace

std::string RoomsPicture(const std::vector<Room>& rooms) {
  const auto layout = LayoutOf(rooms);
  auto picture = Head(layout);
  for (const auto& ground : layout.Lanes) {
    picture += Ground(ground, layout.Width);
  }
  picture += "  <g stroke=\"#7a8aa0\" stroke-width=\"1.3\" fill=\"none\" marker-end=\"url(#tip)\">\n";
  for (const auto& room : rooms) {
    for (const auto& used : room.Uses) {
      picture += Arrow(layout.Rooms.at(room.Folder), layout.Rooms.at(used));
    }
  }
  picture += "  </g>\n";
  for (const auto& room : rooms) {
    picture += Box(room, layout.Rooms.at(room.Folder));
  }
  return picture + "</svg>\n";
}

std::string RoomsTable(const std::vector<Room>& rooms) {
  std::string table = "| Folder | Uses | What it holds |\n|---|---|---|\n";
  for (const auto& room : rooms) {
    std::string uses;
    for (const auto& used : room.Uses) {
      uses += (uses.empty() ? "`" : ", `") + used + "`";
    }
    table += "| `" + room.Folder + "` | " + uses + " | " + room.Holds + " |\n";
  }
  return table;
}

}  // namespace zolvane
