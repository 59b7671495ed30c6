// Results, as people and as programs read them.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
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

// One JSON document: that of the only command, or a list of those of a run, each of which says first what was
// done.
nlohmann::ordered_json ResultsJson(const std::vector<ActionResult>& results, bool isRun);

}  // namespace zolvane
