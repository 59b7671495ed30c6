#include "bench/job/job.h"

#include "bench/job/run_file.h"
#include "text/usage_error.h"

namespace zolvane {

Job ParseJob(const std::vector<std::string>& words, const std::optional<std::string>& file,
             std::istream& input) {
  if (words.empty()) {
    throw UsageError{"no command is given; see zolvane-bench --help"};
  }
  if (!RunsFile(words)) {
    return {.Actions = {MakeAction(words, file)}, .IsRun = false};
  }
  if (file) {
    throw UsageError{"--file goes with press; in a run file it stands in the line of its press"};
  }
  return ReadRunFile(words[1], input);
}

}  // namespace zolvane
