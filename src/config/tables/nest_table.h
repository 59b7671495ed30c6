// Section "NestType": the kinds of head nest, each with three places A, B and C.
#pragma once

#include <string>
#include <string_view>

#include "config/configuration.h"
#include "config/record_table.h"
#include "config/records.h"

namespace zolvane {

inline constexpr std::string_view nestTypeSection = "NestType";

// What each value of a section is called, and how it stands in the file.
extern const RecordTable<NestTypeRecord> nestTable;

// Load and save follow the rules stated in device_tables.h, and need the current device and the axes to be
// loaded. They are deliberately not exact inverses: each direction rounds.
NestTypeRecord LoadNestType(const Configuration& configuration, std::string& item, std::string_view file);
void SaveNestType(const Configuration& configuration, const NestTypeRecord& record, std::string_view file);

}  // namespace zolvane
