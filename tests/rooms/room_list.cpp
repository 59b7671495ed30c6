#include "rooms/room_list.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <sstream>

namespace zolvane {
namespace {

std::string Trimmed(const std::string& text) {
  const auto first = text.find_first_not_of(' ');
  return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::vector<std::string> CellsOf(const std::string& line) {
  std::vector<std::string> cells;
  std::istringstream stream{line};
  for (std::string cell; std::getline(stream, cell, '|');) {
    cells.push_back(Trimmed(cell));
  }
  return cells;
}

std::vector<std::string> WordsOf(const std::string& text) {
  std::istringstream stream{text};
  return {std::istream_iterator<std::string>{stream}, {}};
}

const Room* Find(const std::vector<Room>& rooms, std::string_view folder) {
  const auto found = std::ranges::find(rooms, folder, &Room::Folder);
  return found == rooms.end() ? nullptr : &*found;
}

std::optional<Room> RoomOn(const std::string& line, const std::vector<Room>& before) {
  static const std::map<std::string, Basis> bases{
      {"standard", Basis::Standard}, {"system", Basis::System}, {"windows", Basis::Windows}};
  const auto cells = CellsOf(line);
  if (cells.size() != 4 || !bases.contains(cells[1]) || Find(before, cells[0]) != nullptr) {
    return std::nullopt;
  }
  const auto uses = WordsOf(cells[2]);
  if (!std::ranges::all_of(uses, [&](const auto& used) { return Find(before, used) != nullptr; })) {
    return std::nullopt;
  }
  return Room{cells[0], bases.at(cells[1]), uses, cells[3]};
}

}  // namespace

std::vector<Room> RoomsOf(std::string_view list) {
  std::vector<Room> rooms;
  std::istringstream stream{std::string{list}};
  for (std::string line; std::getline(stream, line);) {
    if (line.empty() || line.starts_with('#')) {
      continue;
    }
    const auto room = RoomOn(line, rooms);
    if (!room) {
      return {};
    }
    rooms.push_back(*room);
  }
  return rooms;
}

const std::vector<Room>& Rooms() {
  static const auto rooms = [] {
    std::ifstream stream{ZOLVANE_SOURCE_PATH "/src/rooms.txt", std::ios::binary};
    return RoomsOf(std::string{std::istreambuf_iterator<char>{stream}, {}});
  }();
  return rooms;
}

const Room* RoomOf(const std::vector<Room>& rooms, std::string_view path) {
  const auto slash = path.rfind('/');
  return slash == std::string_view::npos ? nullptr : Find(rooms, path.substr(0, slash));
}

bool MayUse(const std::vector<Room>& rooms, const Room& room, const Room& used) {
  return &room == &used || std::ranges::any_of(room.Uses, [&](const auto& name) {
    return MayUse(rooms, *Find(rooms, name), used);
  });
}

}  // namespace zolvane
