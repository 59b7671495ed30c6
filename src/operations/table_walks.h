// Walks over the tables of the configuration file, as upload and download make them: by item number from 1
// on, in ConfigFilePath.
#pragma once

#include <string>

#include "config/configuration.h"
#include "config/record_table.h"
#include "config/tables/device_tables.h"
#include "config/tables/head_and_tip_tables.h"
#include "config/tables/nest_table.h"

namespace zolvane {

// A loader of one item for FindRecord and ForEachRecord, out of a table's load procedure.
template <class Load>
auto ItemsOf(const Configuration& configuration, Load load) {
  return [&configuration, load](std::string item) { return load(configuration, item, ""); };
}

inline auto Cages(const Configuration& configuration) {
  return ItemsOf(configuration, LoadCageType);
}
inline auto Heads(const Configuration& configuration) {
  return ItemsOf(configuration, LoadHeadType);
}
inline auto Tips(const Configuration& configuration) {
  return ItemsOf(configuration, LoadTipType);
}
inline auto Nests(const Configuration& configuration) {
  return ItemsOf(configuration, LoadNestType);
}

// The first cage of class "MICROTITER", or the end record of the table.
inline CageTypeRecord FindMicrotiterCage(const Configuration& configuration) {
  return FindRecord(Cages(configuration),
                    [](const CageTypeRecord& cage) { return cage.Code == "MICROTITER"; });
}

}  // namespace zolvane
