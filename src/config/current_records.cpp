#include "config/current_records.h"

#include <string>

#include "config/device_tables.h"
#include "config/head_and_tip_tables.h"
#include "config/height_tables.h"
#include "config/labware_tables.h"
#include "config/nest_table.h"

namespace zolvane {
namespace {

// Loads the installed record of a table.
template <class Load>
auto Installed(Load load, const Configuration& configuration) {
  std::string item;
  return load(configuration, item, "");
}

}  // namespace

void RefreshCurrentRecords(Configuration& configuration) {
  configuration.Current.Heights = LoadZCalibration(configuration, "");
  ReloadCurrentDevice(configuration);
  ReloadCurrentCage(configuration);
  LoadAxes(configuration);
  configuration.Current.Head = Installed(LoadHeadType, configuration);
  configuration.Current.Tip = Installed(LoadTipType, configuration);
  configuration.Current.Nest = Installed(LoadNestType, configuration);
}

void ReloadCurrentDevice(Configuration& configuration) {
  configuration.Current.Device = Installed(LoadDeviceType, configuration);
}

void ReloadCurrentCage(Configuration& configuration) {
  configuration.Current.Cage = Installed(LoadCageType, configuration);
}

}  // namespace zolvane
