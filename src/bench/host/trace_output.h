// The trace of a program, and where it goes.
#pragma once

#include <fstream>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

#include "bench/host/tracing.h"

namespace zolvane {

// Named instead of a file.
inline constexpr std::string_view standardOutput = "-";

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
