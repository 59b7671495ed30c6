#include "instrument/simulator/faults.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "text/joined.h"
#include "text/printable.h"
#include "text/suggestion.h"
#include "text/usage_error.h"
#include "text/whole_number.h"

namespace zolvane {
namespace {

// All kinds, and the one that the user probably meant.
std::string KnownKinds(std::string_view typed) {
  std::string names;
  std::vector<std::string_view> known;
  for (const auto& row : faultRows) {
    names.append(names.empty() ? "" : ", ").append(row.Name);
    known.push_back(row.Name);
  }
  return names + DidYouMean(typed, known);
}

}  // namespace

void AddFault(FaultPlan& plan, const std::string& text) {
  const auto mark = text.find('@');
  const auto* const row = std::ranges::find(faultRows, text.substr(0, mark), &FaultRow::Name);
  if (mark == std::string::npos || row == faultRows.end()) {
    throw UsageError{Joined("--fault: ", Quoted(text), " is no KIND@N with a KIND out of ",
                            KnownKinds(text.substr(0, mark)))};
  }
  const auto number = WholeNumberIn(std::string_view{text}.substr(mark + 1), std::size_t{1},
                                    std::numeric_limits<std::size_t>::max());
  if (!number) {
    throw UsageError{
        Joined("--fault: ", Quoted(text), " is no KIND@N with the number N of a line, from 1 on")};
  }
  plan[*number] = row->Kind;
}

}  // namespace zolvane
