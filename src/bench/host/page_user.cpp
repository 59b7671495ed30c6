#include "bench/host/page_user.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <string_view>

#include "config/text.h"
#include "text/joined.h"
#include "text/printable.h"

namespace zolvane {
namespace {

// "#3" is 3.
std::optional<int> NumberedPosition(std::string_view entry) {
  int position = 0;
  const auto digits = entry.substr(std::min<std::size_t>(1, entry.size()));
  const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), position);
  const bool isNumber = parsed.ec == std::errc{} && parsed.ptr == digits.data() + digits.size();
  return entry.starts_with('#') && isNumber ? std::optional{position} : std::nullopt;
}

template <class Matches>
std::optional<int> FindEntry(const std::vector<ListEntry>& entries, Matches matches) {
  const auto found = std::ranges::find_if(entries, matches, &ListEntry::Text);
  return found == entries.end() ? std::nullopt : std::optional{static_cast<int>(found - entries.begin())};
}

// The text counts before the position, and its case if it decides.
std::optional<int> PositionOf(const std::vector<ListEntry>& entries, const std::string& entry) {
  if (const auto exact = FindEntry(entries, [&](const auto& text) { return text == entry; })) {
    return exact;
  }
  if (const auto position = NumberedPosition(entry)) {
    const bool exists = *position >= 0 && static_cast<std::size_t>(*position) < entries.size();
    return exists ? position : std::nullopt;
  }
  return FindEntry(entries, [&](const auto& text) { return EqualIgnoringCase(text, entry); });
}

struct Control {
  std::string Name;
  bool IsEnabled = true;
};

// A number without a button is pressed all the same: nothing happens then.
Control ControlOf(const Action& action, const PageModel& shown) {
  const auto button = static_cast<std::size_t>(action.Button);
  switch (action.Kind) {
    case ActionKind::PressButton:
      if (action.Button < 0 || button >= buttonRows.size()) {
        return {};
      }
      return {Joined(buttonRows[button].Name, " (", buttonRows[button].Caption, ")"),
              shown.ButtonsEnabled[button]};
    case ActionKind::SelectEntry:
      return {std::string{RowOf(action.List).Name}, shown.Of(action.List).Enabled};
    case ActionKind::SetCheck:
      return {std::string{RowOf(action.Box).Name}, shown.Of(action.Box).Enabled};
    case ActionKind::ShowPage:
    case ActionKind::ShowScript:
      break;
  }
  return {};
}

}  // namespace

bool UsePage(const PageInUse& page, const Action& action, ActionTally& tally,
             const std::function<void(const std::string& text)>& complain) {
  const auto shown = page.Shown();
  const auto control = ControlOf(action, shown);
  if (!control.IsEnabled) {
    tally.WasDisabled = true;
    complain(Joined(action.At(), control.Name, " is disabled and does not react"));
    return false;
  }
  if (action.Kind == ActionKind::PressButton) {
    page.Press(action.Button);
  } else if (action.Kind == ActionKind::SetCheck) {
    page.SetCheck(action.Box, action.Value);
  } else if (action.Kind == ActionKind::SelectEntry) {
    const auto position = PositionOf(shown.Of(action.List).Entries, action.Entry);
    if (!position) {
      tally.WasMisused = true;
      complain(Joined(action.At(), control.Name, " has no entry ", Quoted(action.Entry),
                      "; the command page prints its entries"));
      return false;
    }
    page.Select(action.List, *position);
  }
  return true;
}

}  // namespace zolvane
