// The one order in which the records in force are loaded.
#pragma once

#include "config/configuration.h"

namespace zolvane {

// Replaces every record in force by a fresh load of what is installed, from ConfigFilePath: heights, device,
// cage, axes, head, tip, nest. Each needs the ones before it.
void RefreshCurrentRecords(Configuration& configuration);

// Replaces the one record.
void ReloadCurrentDevice(Configuration& configuration);
void ReloadCurrentCage(Configuration& configuration);

}  // namespace zolvane
