// The commands of zolvane: one table, a row each.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "zolvane/work/workplace.h"

namespace zolvane {

// For the help.
std::string CustodyCommandsHelp();
std::string CustodyCommandHelp(std::string_view name);

// Throws UsageError if the words are no command, or have too few or too many arguments.
void DemandCommand(const std::vector<std::string>& words);

// Runs the command of the options; the report says what it came to. Throws UsageError if something that it
// needs is unusable, and Refusal after an objection; nothing was changed then.
void RunCommand(Workplace& work);

}  // namespace zolvane
