// A section's items as a list for the page, and the search for the item that the instrument reports. Both
// always read ConfigFilePath. They end at different items, on purpose.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/configuration.h"

namespace zolvane {

inline constexpr std::string_view defaultKey = "Default";  // names the entry that is selected first

struct ListEntry {
  std::string Text;
  std::int32_t Data = 0;  // the item's number in its section

  bool operator==(const ListEntry&) const = default;
};

struct ListContent {
  std::vector<ListEntry> Entries;
  std::optional<std::size_t> Preselected;  // the entry that the section's "Default" names
};

// Items 0 to 9 are always probed, gaps allowed; beyond 9 the first missing item ends the list. Items
// without a name are left out. A "Default" (or else "Installed") of the form text="name" preselects the
// entry of exactly that name.
ListContent ReadListContent(const SettingsFiles& settings, std::string_view section);

// The number of the first item from 1 on whose piece (from 0, double quotes removed) equals the text in any
// case; 0 when there is none. Item 0 is never examined and the first missing number ends the search.
std::int16_t FindItemByField(const SettingsFiles& settings, std::string_view section, std::string_view text,
                             std::size_t piece);

}  // namespace zolvane
