// The operations by name: on the command line, and in the history.
#pragma once

#include <string_view>

namespace zolvane::action {

inline constexpr std::string_view upload = "upload";
inline constexpr std::string_view download = "download";
inline constexpr std::string_view query = "query";
inline constexpr std::string_view import = "import";
inline constexpr std::string_view exporting = "export";  // the shorter name is a keyword
inline constexpr std::string_view backup = "backup";
inline constexpr std::string_view restore = "restore";
inline constexpr std::string_view undo = "undo";
inline constexpr std::string_view resume = "resume";
inline constexpr std::string_view outside = "outside";  // somebody else's doing, seen afterwards

// Such an operation leaves configuration and instrument as they are.
constexpr bool LeavesBothSides(std::string_view name) {
  return name == backup || name == exporting;
}

// Such an operation sends values to the instrument; the others only ask it.
constexpr bool SendsValues(std::string_view name) {
  return name == upload || name == undo || name == resume || name == restore;
}

}  // namespace zolvane::action
