// Results, as people and as programs read them.
#pragma once

#include <chrono>
#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bench/actions.h"
#include "bench/happenings.h"
#include "page/page_model.h"

namespace zolvane {

// The page and the window around it.
struct ShownPage {
  std::string Caption;
  PageModel Page;
  std::string Status;
  std::optional<bool> Changed;  // nothing while it has never been set
};

struct ActionResult {
  Action Request;
  Happenings Happened;
  std::optional<ShownPage> Page{};                   // of ShowPage
  std::optional<std::vector<std::string>> Script{};  // of ShowScript, without line ends
};

// Lines for people. What a control of the page did is told in one line.
std::string ResultText(const ActionResult& result);

// Why the outcome is not "done", as far as it has not been told while it happened: what the instrument answered, and
// a stop. One sentence each.
std::vector<std::string> ReasonsOf(const Happenings& happened);

// That actions were left out, why, and which: they are the last ones of `all`.
std::string NotBegunText(std::string_view why, std::span<const Action> notBegun, std::size_t all);

// All that one run of the program did.
struct RunReport {
  std::string Version;  // of the program
  std::string Folder;   // the program folder, absolute
  std::string Link;     // as it was named on the command line
  std::chrono::system_clock::time_point Started;
  std::chrono::milliseconds Duration{};
  int ExitStatus = 0;
  bool IsRun = false;  // the commands came out of a file
  std::vector<ActionResult> Results{};
  std::vector<std::string> NotBegun{};  // commands that were left out
};

// The one JSON document of a run. The command page alone has the page itself as its document.
nlohmann::ordered_json ReportJson(const RunReport& report);

nlohmann::ordered_json PageJson(const ShownPage& shown);

}  // namespace zolvane
