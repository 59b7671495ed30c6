// Results, as programs read them.
#pragma once

#include <chrono>
#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "bench/host/results.h"

namespace zolvane {

// All that one run of the program did.
struct RunReport {
  std::string Version;  // of the program
  std::string Folder;   // the program folder, absolute
  std::string Link;     // as given on the command line
  std::chrono::system_clock::time_point Started;
  std::chrono::milliseconds Duration{};
  int ExitStatus = 0;
  bool IsRun = false;  // the commands come from a file
  std::vector<ActionResult> Results{};
  std::vector<std::string> NotBegun{};  // commands that were left out
};

// The JSON document of a run. For the command page alone it is the page itself.
nlohmann::ordered_json ReportJson(const RunReport& report);

nlohmann::ordered_json PageJson(const ShownPage& shown);

}  // namespace zolvane
