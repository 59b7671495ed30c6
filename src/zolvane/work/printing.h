// What people read of values, differences and findings. All of it is safe to show on a terminal.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "custody/findings/findings.h"
#include "custody/history/checkpoint.h"
#include "custody/values/descriptions.h"
#include "custody/values/values.h"

namespace zolvane {

using TextRow = std::vector<std::string>;

// In columns, without trailing blanks, each line indented by `indent`.
std::string ColumnsText(const std::vector<TextRow>& rows, std::size_t indent = 2);

// "3862 (38.62 mm)"; what is not there is said in brackets.
std::string MeasuredText(const Descriptions& descriptions, std::string_view name,
                         const std::optional<std::string>& text);

// A side as a column: its numbers are measured by its own factors.
struct SideColumn {
  const Descriptions& Measures;
  std::string_view Name;
};

// In groups, under the names of the two sides.
std::string DifferencesText(const Comparison& comparison, const SideColumn& a, const SideColumn& b);

// The counts, which add up.
std::vector<std::pair<std::string, std::size_t>> CountsOf(const Comparison& comparison);
std::string CountsText(const std::vector<std::pair<std::string, std::size_t>>& counts);

// A line for each finding, and behind the first of its code one for what to do.
std::string FindingsText(const std::vector<Finding>& findings);

std::string CheckpointText(const Checkpoint& checkpoint);

}  // namespace zolvane
