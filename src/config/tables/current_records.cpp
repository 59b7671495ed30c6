#include "config/tables/current_records.h"

#include <string>

#include "config/tables/device_tables.h"
#include "config/tables/head_and_tip_tables.h"
#include "config/tables/height_tables.h"
#include "config/tables/labware_tables.h"
#include "config/tables/nest_table.h"

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
