#include "config/item_lists.h"

#include "config/conversions.h"
#include "config/record_table.h"
#include "config/text.h"

namespace zolvane {
namespace {

std::string DefaultName(const SettingsFiles& settings, std::string_view section, std::string_view file) {
  auto choice = settings.ReadValue(section, defaultKey, file).value_or("");
  if (choice.empty()) {
    AssignIf(choice, settings.ReadValue(section, installedKey, file));
  }
  if (choice.empty()) {
    return {};
  }
  const auto pieces = settings.SplitText("=", choice);
  return pieces.size() > 1 ? WithoutQuotes(pieces[1]) : std::string{};
}

std::string NumberedItemKey(int number) {
  return ItemKey(WholeText(number));
}

void AddEntry(ListContent& content, const std::string& name, std::int32_t number,
              std::string_view defaultName) {
  if (name == defaultName) {
    content.Preselected = content.Entries.size();
  }
  content.Entries.push_back({name, number});
}

}  // namespace

ListContent ReadListContent(const SettingsFiles& settings, std::string_view section) {
  constexpr int lastAlwaysProbed = 9;
  const auto file = settings.ConfigFilePath();
  const auto defaultName = DefaultName(settings, section, file);
  ListContent content;
  std::string line;
  for (int number = 0; number <= lastItemNumber; ++number) {
    const auto read = settings.ReadValue(section, NumberedItemKey(number), file);
    AssignIf(line, read);
    if (line.empty() && number >= lastAlwaysProbed) {
      break;
    }
    const auto pieces = read && !line.empty() ? settings.SplitText(",", line) : std::vector<std::string>{};
    const auto name = pieces.empty() ? std::string{} : WithoutQuotes(pieces.front());
    if (!name.empty()) {
      AddEntry(content, name, number, defaultName);
    }
  }
  return content;
}

std::int16_t FindItemByField(const SettingsFiles& settings, std::string_view section, std::string_view text,
                             std::size_t piece) {
  std::int16_t found = 0;
  const auto examine = [&](const std::string& line, int number) {
    const auto pieces = settings.SplitText(",", WithoutQuotes(line));
    if (piece < pieces.size() && EqualIgnoringCase(pieces[piece], text)) {
      found = static_cast<std::int16_t>(number);
    }
    return found == 0;
  };
  ForEachNumberedValue(settings, section, settings.ConfigFilePath(), NumberedItemKey, examine);
  return found;
}

}  // namespace zolvane
