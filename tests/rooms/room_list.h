// The rooms of src/, as their list tells them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zolvane {

enum class Basis { Standard, System, Windows };

struct Room {
  std::string Folder;
  Basis RestsOn = Basis::Standard;
  std::vector<std::string> Uses;  // as written: without what those use in turn
  std::string Holds;
};

// Empty if a line is not one of the list's: a room has to come behind all that it uses.
std::vector<Room> RoomsOf(std::string_view list);

// The list of this tree.
const std::vector<Room>& Rooms();

// The room that a path below src/ lies in; null outside all of them.
const Room* RoomOf(const std::vector<Room>& rooms, std::string_view path);

// A room may use itself, what it names, and what that may use.
bool MayUse(const std::vector<Room>& rooms, const Room& room, const Room& used);

}  // namespace zolvane
