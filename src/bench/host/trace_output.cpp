#include "bench/host/trace_output.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "files/paths.h"
#include "program/write_failure.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

// An earlier trace begins with an event, however it ends. Devices and pipes hold nothing.
bool MayBecomeTrace(const std::string& file) {
  constexpr std::string_view beginning = R"({"event":)";
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(PathOf(file), ignored)) {
    return true;
  }
  std::ifstream stream{PathOf(file), std::ios::binary};
  std::string bytes(beginning.size(), '\0');
  stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return stream.gcount() == 0 || bytes == beginning;
}

}  // namespace

void DemandOther(const std::string& file, const std::vector<std::string>& needed, std::string_view what) {
  for (const auto& other : needed) {
    if (IsSameFile(file, other)) {
      throw UsageError{
          Joined(what, " would overwrite ", Quoted(other), ", which the run needs; name another file")};
    }
  }
}

void DemandTraceFile(const std::string& file, const std::vector<std::string>& needed) {
  DemandOther(AbsolutePath(file), needed, "--trace");
  if (!MayBecomeTrace(file)) {
    throw UsageError{Joined("--trace replaces an empty file or an earlier trace and nothing else: ",
                            Quoted(file), " holds something else")};
  }
}

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
