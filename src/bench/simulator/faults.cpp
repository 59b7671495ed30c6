#include "bench/simulator/faults.h"

#include <algorithm>
#include <limits>

#include "bench/links/whole_number.h"
#include "bench/usage_error.h"

namespace zolvane {
namespace {

std::string KnownKinds() {
  std::string names;
  for (const auto& row : faultRows) {
    names.append(names.empty() ? "" : ", ").append(row.Name);
  }
  return names;
}

}  // namespace

void AddFault(FaultPlan& plan, const std::string& text) {
  const auto mark = text.find('@');
  const auto* const row = std::ranges::find(faultRows, text.substr(0, mark), &FaultRow::Name);
  if (mark == std::string::npos || row == faultRows.end()) {
    throw UsageError{"a fault is KIND@N with a KIND out of " + KnownKinds() + ": " + text};
  }
  const auto number = WholeNumberIn(std::string_view{text}.substr(mark + 1), std::size_t{1},
                                    std::numeric_limits<std::size_t>::max());
  if (!number) {
    throw UsageError{"a fault is KIND@N with the number N of a command, from 1 on: " + text};
  }
  plan[*number] = row->Kind;
}

}  // namespace zolvane
