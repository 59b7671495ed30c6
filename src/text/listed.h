// Lists in one text.
#pragma once

#include <string>
#include <string_view>

namespace zolvane {

// Adds an item behind those that the list has.
inline void AddListed(std::string& list, std::string_view separator, std::string_view item) {
  if (!list.empty()) {
    list.append(separator);
  }
  list.append(item);
}

}  // namespace zolvane
