// What every table procedure works on: the settings files, and the records that are in force.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/records.h"
#include "host/host_process.h"
#include "host/status.h"

namespace zolvane {

inline constexpr std::string_view configFileName = "Zolvane.ini";

// The settings-file service as the tables use it. One service object is created on first use and kept; a
// failed creation is tried again. A call without a service fails like a call that the service refused.
class SettingsFiles {
 public:
  // The process outlives this object.
  explicit SettingsFiles(HostProcess& process) : process_{&process} {}

  // configFileName in the program folder, computed afresh at each use.
  std::string ConfigFilePath() const;

  // The file a caller means: `file` itself, or ConfigFilePath when it is empty.
  std::string Resolved(std::string_view file) const;

  std::optional<std::string> ReadValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view fallback = "") const;
  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) const;

  // The pieces of a text; none if the service failed.
  std::vector<std::string> SplitText(std::string_view delimiter, std::string_view text) const;

 private:
  IniFileService* Service() const;

  HostProcess* process_;
  mutable std::shared_ptr<IniFileService> service_;
};

// The seven axes of the installed device and cage.
struct AxisSlots {
  AxisRecord X;
  AxisRecord Y;
  AxisRecord Z;
  AxisRecord S;
  AxisRecord SDX;
  AxisRecord SDY;
  AxisRecord SDS;
};

// The records in force. They belong to the add-in, not to its page, so they stay when the page is unloaded.
struct CurrentRecords {
  ZCalibrationRecord Heights;
  DeviceTypeRecord Device;
  CageTypeRecord Cage;
  AxisSlots Axes;
  HeadTypeRecord Head;
  TipTypeRecord Tip;
  NestTypeRecord Nest;
};

struct Configuration {
  explicit Configuration(HostProcess& process) : Settings{process} {}

  SettingsFiles Settings;
  CurrentRecords Current;
};

}  // namespace zolvane
