// All that one run of a program is to do.
#pragma once

#include <iosfwd>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "bench/job/actions.h"

namespace zolvane {

struct Job {
  std::vector<Action> Actions;
  bool IsRun = false;                // its results are a list, whatever their number
  std::set<std::string> RunFiles{};  // that the commands stand in, absolute
};

// From the command on the command line, with the value of --file if there is one. Reads the run file that it
// names; "-" is `input`. Throws UsageError.
Job ParseJob(const std::vector<std::string>& words, const std::optional<std::string>& file,
             std::istream& input);

}  // namespace zolvane
