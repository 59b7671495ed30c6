// The rooms as the documents show them.
#pragma once

#include <string>
#include <vector>

#include "rooms/room_list.h"

namespace zolvane {

// A picture in SVG: a lane for each basis, and each room to the right of those it uses.
std::string RoomsPicture(const std::vector<Room>& rooms);

// A table in Markdown: folder, what it uses, what it holds.
std::string RoomsTable(const std::vector<Room>& rooms);

}  // namespace zolvane
