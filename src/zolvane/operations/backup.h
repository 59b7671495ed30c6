// backup: a record of the configuration and, with a link, of the instrument.
#pragma once

#include <string>

#include "zolvane/work/workplace.h"

namespace zolvane {

void Backup(Workplace& work, const std::string& file);

}  // namespace zolvane
