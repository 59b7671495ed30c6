// What the page's controls hold, as a view shows it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "config/item_lists.h"
#include "page/page_controls.h"

namespace zolvane {

inline constexpr int noSelection = -1;

struct ListModel {
  std::vector<ListEntry> Entries;
  int Selected = noSelection;  // a position from 0
  bool Enabled = true;
  std::uint32_t BackColour = windowBackground;
};

struct CheckModel {
  int Value = untickedValue;
  bool Enabled = true;
};

struct PageModel {
  std::array<ListModel, listRows.size()> Lists;
  std::array<CheckModel, checkRows.size()> Checks;
  std::array<bool, buttonRows.size()> ButtonsEnabled{true, true, true, true, true};
  std::string PumpText{pumpNotConnectedText};

  ListModel& Of(ListControl list) { return Lists[static_cast<std::size_t>(list)]; }
  const ListModel& Of(ListControl list) const { return Lists[static_cast<std::size_t>(list)]; }
  CheckModel& Of(CheckControl box) { return Checks[static_cast<std::size_t>(box)]; }
  const CheckModel& Of(CheckControl box) const { return Checks[static_cast<std::size_t>(box)]; }
};

}  // namespace zolvane
