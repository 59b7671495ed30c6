// A session as the bench plays it on the portable parts, and the same session as a host of the
// module sees it.
#pragma once

#include <istream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "bench/windows/com/offered_host.h"
#include "windows/support/program_folder.h"

namespace zolvane {

struct SessionPlan {
  std::string Configuration;
  std::vector<std::string> Commands;  // as in a run file
  std::string Link = "sim";
  std::vector<std::string> Answers{};
  bool AffirmsRest = false;
  bool OffersDialog = false;
  PanelsShape Panels = PanelsShape::DefaultMember;
  bool ShowsDialogues =
      true;  // else boxes and file dialogues are answered without appearing, which is faster
  std::string Source = SampleFileText();  // what the file "old.bak" holds
};

// NOLINTNEXTLINE(bugprone-exception-escape): a JSON value that is moved throws nothing
struct PlayedSession {
  std::vector<std::string> Calls;  // of the host, in their order
  std::string Configuration;       // afterwards
  std::string Backup;              // the file "new.bak" beside it, afterwards
  nlohmann::json Page;             // at the end, as the bench prints it
};

// The events of a trace that are calls of the host. The others are the module's own.
std::vector<std::string> HostCalls(std::istream& trace);

PlayedSession PlayOnBench(const SessionPlan& plan);
PlayedSession PlayOnModule(const SessionPlan& plan);

}  // namespace zolvane
