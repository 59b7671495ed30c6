// Results, as people read them.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bench/host/results.h"

namespace zolvane {

// Lines for people. What a control of the page did is told in one line.
std::string ResultText(const ActionResult& result);

// Why the outcome is not "done", as far as it has not been told while it happened: what the instrument answered, and
// a stop. One sentence each.
std::vector<std::string> ReasonsOf(const ActionTally& tally);

// That actions were left out, why, and which: they are the last ones of `all`.
std::string NotBegunText(std::string_view why, std::span<const Action> notBegun, std::size_t all);

}  // namespace zolvane
