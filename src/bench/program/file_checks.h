// Checks before a session starts, so that nothing is changed if something is wrong.
#pragma once

#include <string>
#include <vector>

#include "bench/job/job.h"
#include "bench/program/options.h"

namespace zolvane {

// Returns notes for the user. Throws UsageError if the folder, a file of a command, or a file that the
// run would write is unusable.
std::vector<std::string> CheckFiles(const Options& options, const Job& job);

}  // namespace zolvane
