// What an action of the user came to.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "bench/host/action_tally.h"
#include "bench/job/actions.h"
#include "page/page_model.h"

namespace zolvane {

// The page and the window around it.
struct ShownPage {
  std::string Caption;
  PageModel Page;
  std::string Status;
  std::optional<bool> Changed;  // empty until it is set
};

struct ActionResult {
  Action Request;
  ActionTally Tally{};
  std::optional<ShownPage> Page{};                   // of ShowPage
  std::optional<std::vector<std::string>> Script{};  // of ShowScript, without line ends
};

}  // namespace zolvane
