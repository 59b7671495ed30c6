// The host's settings-file service, called by slot.
#pragma once

#include <memory>

#include "host/ini_file_service.h"

namespace zolvane {

// Creates the host's service object. Null if the host has not registered it or refuses.
std::shared_ptr<IniFileService> CreateComIniFileService();

}  // namespace zolvane
