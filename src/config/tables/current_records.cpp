#include "config/tables/current_records.h"

#include "config/tables/axes.h"
#include "config/tables/devices.h"
#include "config/tables/heads.h"
#include "config/tables/heights.h"
#include "config/tables/modules.h"
#include "config/tables/nests.h"
#include "config/tables/tips.h"

namespace zolvane {

void RefreshCurrentRecords(Configuration& configuration) {
  auto& current = configuration.Current;
  current.Heights = Load(heightTable, configuration);
  ReloadCurrentDevice(configuration);
  ReloadCurrentCage(configuration);
  LoadAxes(configuration);
  current.Head = LoadInstalled(headTable, configuration);
  current.Tip = LoadInstalled(tipTable, configuration);
  current.Nest = LoadInstalled(nestTable, configuration);
}

void ReloadCurrentDevice(Configuration& configuration) {
  configuration.Current.Device = LoadInstalled(deviceTable, configuration);
}

void ReloadCurrentCage(Configuration& configuration) {
  configuration.Current.Cage = LoadInstalled(cageTable, configuration);
}

}  // namespace zolvane
