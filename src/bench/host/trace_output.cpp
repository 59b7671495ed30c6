#include "bench/host/trace_output.h"

#include <cerrno>
#include <system_error>

#include "files/paths.h"
#include "program/write_failure.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {

TraceOutput::TraceOutput(const std::optional<std::string>& file, bool holdsReads, std::ostream& output) {
  if (!file) {
    return;
  }
  if (*file == standardOutput) {
    log_.emplace(output, holdsReads);
    name_ = "standard output";
    return;
  }
  name_ = Quoted(*file);
  errno = 0;
  file_.open(PathOf(*file), std::ios::binary | std::ios::trunc);
  if (!file_) {
    throw UsageError{
        Joined("the trace file ", name_, " cannot be written: ", std::generic_category().message(errno))};
  }
  log_.emplace(file_, holdsReads);
}

std::optional<std::string> TraceOutput::Finish() {
  if (!log_ || log_->Flush() || ReaderHasLeft(log_->Failure())) {
    return std::nullopt;
  }
  return Joined("the trace is not complete, as ", name_,
                " could not be written: ", log_->Failure().message());
}

}  // namespace zolvane
