// Results, as people read them.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bench/host/results.h"

namespace zolvane {

// Lines for people; a single one for whatever a control of the page did.
std::string ResultText(const ActionResult& result);

// Why the outcome is not "done", except for what was reported while it happened: what the instrument
// answered, and a stop. One sentence each.
std::vector<std::string> ReasonsOf(const ActionTally& tally);

// Says that actions were left out, why, and which: the last ones of `all`.
std::string NotBegunText(std::string_view why, std::span<const Action> notBegun, std::size_t all);

}  // namespace zolvane
