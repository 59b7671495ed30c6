// The trace: one line of JSON for each thing that passes between the add-in and its host, in the
// order in which things happen. Each function wraps a host interface in one that traces what
// passes through and hands it on.
#pragma once

#include <iosfwd>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <system_error>

#include "host/environment.h"
#include "host/host_object.h"
#include "host/host_window.h"
#include "page/page_view.h"

namespace zolvane {

class TraceLog {
 public:
  // The stream outlives the log.
  TraceLog(std::ostream& output, bool holdsReads) : output_{output}, holdsReads_{holdsReads} {}

  // Bytes that are not UTF-8 are written as the replacement character.
  void Write(const nlohmann::ordered_json& event);

  bool HoldsReads() const { return holdsReads_; }

  // Flushes what has been written. False if some of it was lost; Failure then says why.
  bool Flush();
  std::error_code Failure() const { return failure_; }

 private:
  void NoteFailure(bool isGood);

  std::ostream& output_;
  bool holdsReads_;
  std::error_code failure_;
};

// What is given by reference outlives the wrapper.
std::shared_ptr<IniFileService> Traced(std::shared_ptr<IniFileService> settings, TraceLog& log);
std::unique_ptr<Environment> Traced(Environment& environment, TraceLog& log);
std::unique_ptr<SystemDialogues> Traced(SystemDialogues& dialogues, TraceLog& log);
std::shared_ptr<HostObject> Traced(std::shared_ptr<HostObject> object, TraceLog& log);
std::shared_ptr<HostWindow> Traced(std::shared_ptr<HostWindow> window, TraceLog& log);
std::unique_ptr<PageViewFactory> Traced(PageViewFactory& views, TraceLog& log);

}  // namespace zolvane
