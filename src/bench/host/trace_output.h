// The trace of a program, and where it goes.
#pragma once

#include <fstream>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bench/host/tracing.h"

namespace zolvane {

// Named instead of a file.
inline constexpr std::string_view standardOutput = "-";

// Throws UsageError if a trace in that file would take the place of anything but an earlier trace: of one of the `needed`
// files, whether it is there yet or not, or of a file that holds something else.
void DemandTraceFile(const std::string& file, const std::vector<std::string>& needed);

// The same of any file that the program overwrites; `what` begins the message ("--trace").
void DemandOther(const std::string& file, const std::vector<std::string>& needed, std::string_view what);

class TraceOutput {
 public:
  // Without a file there is no trace. `output`, which the name "-" means, outlives this. Throws UsageError if
  // the file cannot be written.
  TraceOutput(const std::optional<std::string>& file, bool holdsReads, std::ostream& output);

  // Null without a trace.
  TraceLog* Log() { return log_ ? &*log_ : nullptr; }

  // To be called at the end. Returns what to tell the user if some of the trace was lost.
  std::optional<std::string> Finish();

 private:
  std::ofstream file_;
  std::string name_;  // for messages
  std::optional<TraceLog> log_;
};

}  // namespace zolvane
