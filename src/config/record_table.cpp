#include "config/record_table.h"

namespace zolvane {

std::string ItemKey(std::string_view item) {
  return std::string{"Item"}.append(item);
}

Status WriteFieldList(const SettingsFiles& settings, std::string_view section, std::string_view key,
                      std::span<const std::string> fields, std::string_view file) {
  std::string line;
  for (const auto& field : fields) {
    line.append(field).append(1, ',');
  }
  const auto last = line.find_last_not_of(',');
  line.resize(last == std::string::npos ? 0 : last + 1);
  return settings.WriteValue(section, key, file, line);
}

std::optional<std::vector<std::string>> ReadRecordLine(const SettingsFiles& settings,
                                                       std::string_view section, std::string_view key,
                                                       std::string_view file) {
  const auto line = settings.ReadValue(section, key, file);
  return line ? std::optional{settings.SplitText(",", *line)} : std::nullopt;
}

}  // namespace zolvane
