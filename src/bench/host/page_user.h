// The user at the page, wherever the page is.
#pragma once

#include <functional>
#include <string>

#include "bench/host/action_tally.h"
#include "bench/job/actions.h"
#include "page/page_model.h"

namespace zolvane {

// What a user can do with a page. Each returns when all that it started has ended.
struct PageInUse {
  std::function<PageModel()> Shown;
  std::function<void(int button)> Press;
  std::function<void(ListControl list, int position)> Select;
  std::function<void(CheckControl box, int value)> SetCheck;
};

// Presses, selects or ticks what the action names. False if the page does not let the user: the
// control is disabled, or the list has no such entry; then nothing is done, `complain` gets a
// line, and the tally says so.
bool UsePage(const PageInUse& page, const Action& action, ActionTally& tally,
             const std::function<void(const std::string& text)>& complain);

}  // namespace zolvane
