// Runs an operation without any effect.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "files/file_settings_service.h"
#include "host/forwarding.h"
#include "host/instrument_link.h"
#include "operations/operation_context.h"

namespace zolvane {

// Reads from the settings behind it, and keeps to itself what is written.
class DrySettings final : public ForwardingSettings {
 public:
  using ReadObserver = std::function<void(std::string_view section, std::string_view key,
                                          std::string_view file, std::string_view fallback)>;

  explicit DrySettings(
      std::shared_ptr<IniFileService> inner, ReadObserver observe = [](auto, auto, auto, auto) {})
      : ForwardingSettings{std::move(inner)}, observe_{std::move(observe)} {}

  struct Kept {
    std::string Section;
    std::string Key;
    std::string File;
    std::string Text;
  };

  // The last write for each place.
  const std::map<std::string, Kept>& Writes() const { return writes_; }

  std::optional<std::string> ReadValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view fallback) override;
  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override;

 private:
  ReadObserver observe_;
  std::map<std::string, Kept> writes_;
};

using DryOperation = std::function<void(const OperationContext& context)>;

// Runs the operation with nothing but these settings and this link, as if the user agreed to everything. No
// empty line is appended.
void RunDry(const std::string& programFolder, std::shared_ptr<IniFileService> settings,
            std::shared_ptr<InstrumentLink> link, const DryOperation& operation);

// How many commands the query, upload or download button would send to an instrument that answers each of
// them; 0 for any other button. Reads the configuration file of the program folder and changes nothing.
std::size_t CountCommands(const std::string& programFolder, int button,
                          const FileSettingsService::FileOpener& openFile = FileSettingsService::OpenFile);

// The file has at least one of the sections from which the import button would read records; one that cannot
// be read has none. Reads the configuration file of the program folder and changes nothing.
bool HoldsBackup(const std::string& programFolder, const std::string& file,
                 const FileSettingsService::FileOpener& openFile = FileSettingsService::OpenFile);

}  // namespace zolvane
