#include "zolvane/operations/kept_operation.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <span>
#include <string_view>
#include <utility>

#include "zolvane/work/actions.h"
#include "zolvane/work/sides.h"

namespace zolvane {
namespace {

bool LeavesBothSides(const Operation& operation) {
  return operation.Begun->Action == action::backup || operation.Begun->Action == action::exporting;
}

}  // namespace

bool SendsValues(std::string_view name) {
  constexpr std::array<std::string_view, 4> actions{action::upload, action::undo, action::resume,
                                                    action::restore};
  return std::ranges::find(actions, name) != actions.end();
}

bool IsOurs(const Operation& operation) {
  return !LeavesBothSides(operation) && operation.Begun->Action != action::outside;
}

namespace {

// SAVE was sent, or nobody knows.
bool MayHaveSaved(const Operation& operation) {
  if (!SendsValues(operation.Begun->Action) || operation.Ended == nullptr) {
    return SendsValues(operation.Begun->Action);
  }
  const auto saved = operation.Ended->Counts.find("save_sent");
  return saved != operation.Ended->Counts.end() && saved->second != 0;
}

// Where that began which the operation at this place goes on with.
std::size_t FirstOf(const std::vector<Operation>& operations, std::size_t place) {
  while (operations[place].Begun->Action == action::resume) {
    const std::span before{operations.data(), place};
    const auto resumed = std::ranges::find_if(before.rbegin(), before.rend(), IsOurs);
    if (resumed == before.rend()) {
      break;
    }
    place = static_cast<std::size_t>(before.rend() - resumed) - 1;
  }
  return place;
}

KeptOperation Alone(History& history, const Operation& operation) {
  const auto& begun = *operation.Begun;
  KeptOperation kept{.HasEnded = operation.Ended != nullptr};
  kept.Found.Configuration = KeptObject(history, begun.FileBefore);
  kept.Intended.Configuration = KeptObject(history, begun.FileAfter);
  const auto saves = begun.Counts.find("saves");
  kept.Saves = saves == begun.Counts.end() || saves->second != 0;
  if (SendsValues(begun.Action)) {
    kept.Found.Answers = KeptValues(history, begun.Found);
    kept.Intended.Answers = KeptValues(history, begun.Intended);
  }
  if (kept.HasEnded) {
    kept.IsProven = operation.Ended->Outcome == outcome::done;
    kept.Left.Configuration = KeptObject(history, operation.Ended->FileAfter);
    kept.Left.Answers = kept.Found.Answers ? KeptValues(history, operation.Ended->Left) : std::nullopt;
  }
  return kept;
}

}  // namespace

KeptOperation KeptOf(History& history, const std::vector<Operation>& operations, std::size_t place) {
  auto kept = Alone(history, operations[place]);
  const auto first = FirstOf(operations, place);
  if (first != place) {
    auto begun = Alone(history, operations[first]);
    kept.Saves = begun.Saves;
    kept.Found.Answers = std::move(begun.Found.Answers);
    kept.Intended.Answers = std::move(begun.Intended.Answers);
    if (begun.Found.Configuration != begun.Intended.Configuration) {
      kept.Found.Configuration = std::move(begun.Found.Configuration);
      kept.Intended.Configuration = std::move(begun.Intended.Configuration);
    }
  }
  // A later SAVE has kept what this one sent, too.
  kept.SavedOrMayHave =
      std::any_of(operations.begin() + static_cast<std::ptrdiff_t>(first), operations.end(), MayHaveSaved);
  return kept;
}

bool HasChangedSomething(const std::vector<Operation>& operations, std::size_t place) {
  if (LeavesBothSides(operations[place])) {
    return false;
  }
  const auto& begun = *operations[FirstOf(operations, place)].Begun;
  const auto* const ended = operations[place].Ended;
  return ended == nullptr || ended->FileAfter != begun.FileBefore ||
         (SendsValues(begun.Action) && ended->Left != begun.Found);
}

std::optional<std::size_t> LastChange(const std::vector<Operation>& operations) {
  for (auto place = operations.size(); place > 0; --place) {
    if (HasChangedSomething(operations, place - 1)) {
      return place - 1;
    }
  }
  return std::nullopt;
}

}  // namespace zolvane
