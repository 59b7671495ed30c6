#include "config/item_lists.h"

#include "config/conversions.h"
#include "config/record_table.h"
#include "config/text.h"

namespace zolvane {
namespace {

std::string DefaultName(const SettingsFiles& settings, std::string_view section, std::string_view file) {
  auto choice = settings.ReadValue(section, "Default", file).value_or("");
  if (choice.empty()) {
    AssignIf(choice, settings.ReadValue(section, "Installed", file));
  }
  const auto pieces = settings.SplitText("=", choice);
  return pieces.size() > 1 ? WithoutQuotes(pieces[1]) : std::string{};
}

std::string ReadItem(const SettingsFiles& settings, std::string_view section, int number,
                     std::string_view file) {
  return settings.ReadValue(section, ItemKey(WholeText(number)), file).value_or("");
}

}  // namespace

ListContent ReadListContent(const SettingsFiles& settings, std::string_view section) {
  constexpr int lastAlwaysProbed = 9;
  const auto file = settings.ConfigFilePath();
  const auto defaultName = DefaultName(settings, section, file);
  ListContent content;
  std::string line;
  int number = 0;
  do {
    line = ReadItem(settings, section, number, file);
    const auto pieces = settings.SplitText(",", line);
    const auto name = pieces.empty() ? std::string{} : WithoutQuotes(pieces.front());
    if (!name.empty()) {
      if (name == defaultName) {
        content.Preselected = content.Entries.size();
      }
      content.Entries.push_back({name, number});
    }
    ++number;
  } while ((!line.empty() || number <= lastAlwaysProbed) && number <= lastItemNumber);
  return content;
}

std::int16_t FindItemByField(const SettingsFiles& settings, std::string_view section, std::string_view text,
                             std::size_t piece) {
  const auto file = settings.ConfigFilePath();
  for (int number = 1; number <= lastItemNumber; ++number) {
    const auto line = ReadItem(settings, section, number, file);
    if (line.empty()) {
      break;
    }
    const auto pieces = settings.SplitText(",", WithoutQuotes(line));
    if (piece < pieces.size() && EqualIgnoringCase(pieces[piece], text)) {
      return static_cast<std::int16_t>(number);
    }
  }
  return 0;
}

}  // namespace zolvane
