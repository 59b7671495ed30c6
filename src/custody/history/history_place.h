// Where the parts of a history stand.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "custody/disk/disk.h"

namespace zolvane {

struct HistoryPlace {
  std::string Parent;  // the folder of the configuration
  std::string Folder;
  std::string Journal;
  std::string Objects;

  std::string Object(std::string_view name) const;
};

HistoryPlace PlaceOfHistory(const std::string& folder);

// The bytes of that name. Nothing if they are missing or are not what the name says.
std::optional<std::string> ReadObject(Disk& disk, const HistoryPlace& place, std::string_view name);

}  // namespace zolvane
