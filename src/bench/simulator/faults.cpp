#include "bench/simulator/faults.h"

#include <algorithm>
#include <charconv>

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
  const auto row = std::ranges::find(faultRows, text.substr(0, mark), &FaultRow::Name);
  if (mark == std::string::npos || row == faultRows.end()) {
    throw UsageError{"a fault is KIND@N with a KIND out of " + KnownKinds() + ": " + text};
  }
  std::size_t number = 0;
  const auto* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data() + mark + 1, end, number);
  if (result.ec != std::errc{} || result.ptr != end || number == 0) {
    throw UsageError{"a fault is KIND@N with the number N of a command, from 1 on: " + text};
  }
  plan[number] = row->Kind;
}

}  // namespace zolvane
