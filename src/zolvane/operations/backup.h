// backup: a record of the configuration and, with a link, of the instrument. Throws UsageError if something that it
// needs is unusable, and Refusal after an objection; nothing was changed then.
#pragma once

#include <string>

#include "zolvane/work/workplace.h"

namespace zolvane {

void Backup(Workplace& work, const std::string& file);

}  // namespace zolvane
