#include "config/configuration.h"

#include <filesystem>

namespace zolvane {

std::string SettingsFiles::ConfigFilePath() const {
  constexpr auto separator = static_cast<char>(std::filesystem::path::preferred_separator);
  std::string path = process_->ProgramFolder();
  if (!path.ends_with(separator)) {
    path += separator;
  }
  return path.append(configFileName);
}

std::string SettingsFiles::Resolved(std::string_view file) const {
  return file.empty() ? ConfigFilePath() : std::string{file};
}

std::optional<std::string> SettingsFiles::ReadValue(std::string_view section, std::string_view key,
                                                    std::string_view file, std::string_view fallback) const {
  auto* const service = Service();
  return service != nullptr ? service->ReadValue(section, key, file, fallback) : std::nullopt;
}

Status SettingsFiles::WriteValue(std::string_view section, std::string_view key, std::string_view file,
                                 std::string_view value) const {
  auto* const service = Service();
  return service != nullptr ? service->WriteValue(section, key, file, value) : Status::Failure();
}

std::vector<std::string> SettingsFiles::SplitText(std::string_view delimiter, std::string_view text) const {
  auto* const service = Service();
  auto pieces = service != nullptr ? service->SplitText(delimiter, text) : std::nullopt;
  return pieces ? *std::move(pieces) : std::vector<std::string>{};
}

IniFileService* SettingsFiles::Service() const {
  if (!service_) {
    service_ = process_->CreateIniFileService();
  }
  return service_.get();
}

}  // namespace zolvane
