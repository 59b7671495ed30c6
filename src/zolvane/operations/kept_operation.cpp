#include "zolvane/operations/kept_operation.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <span>
#include <string_view>
#include <utility>

#include "custody/disk/sha256.h"
#include "custody/values/values_json.h"
#include "zolvane/work/actions.h"
#include "zolvane/work/report.h"
#include "zolvane/work/sides.h"

namespace zolvane {

namespace {

// SAVE was sent, or nobody knows.
bool MayHaveSaved(const Operation& operation) {
  if (!action::SendsValues(operation.Begun->Action) || operation.Ended == nullptr) {
    return action::SendsValues(operation.Begun->Action);
  }
  const auto saved = operation.Ended->Counts.find("save_sent");
  return saved != operation.Ended->Counts.end() && saved->second != 0;
}

// The place of the operation that the resume at `place` continues, through all resumes in between; `place` itself if
// it is no resume.
std::size_t FirstOf(std::span<const Operation> operations, std::size_t place) {
  while (operations[place].Begun->Action == action::resume) {
    const auto resumed = LastOfOurs(operations.first(place));
    if (!resumed) {
      break;
    }
    place = *resumed;
  }
  return place;
}

// False if it ended before its first line, as when it was cancelled in time.
bool HasSent(const Entry& ended) {
  const auto sent = ended.Counts.find("sent");
  return sent == ended.Counts.end() || sent->second != 0;
}

// It sent at least one line, whether or not it was accepted.
bool HasSentSome(const Operation& operation) {
  return operation.Ended != nullptr && operation.Ended->Counts.contains("sent") && HasSent(*operation.Ended);
}

bool HasSentUnreadable(const Entry& ended) {
  const auto unreadable = ended.Counts.find("unreadable");
  return HasSent(ended) && unreadable != ended.Counts.end() && unreadable->second != 0;
}

bool IsProvenSending(const Operation& operation) {
  return operation.Ended != nullptr && operation.Ended->Outcome == outcome::done &&
         action::SendsValues(operation.Begun->Action);
}

// Of an operation that was cut short between these two states, each the name of an object. A lost one may have been
// anything.
bool MayHaveLeft(const History& history, const std::string& before, const std::string& after,
                 const std::optional<std::string>& present) {
  const auto from = history.Object(before);
  const auto to = history.Object(after);
  const bool isLost = (!from && !before.empty()) || (!to && !after.empty());
  return isLost || CouldBeOnTheWay(from, to, present);
}

// A state of the file with what somebody else changed in it meanwhile, between an operation and what resumed it.
std::optional<std::string> WithOutside(History& history, const std::vector<Operation>& operations,
                                       std::size_t first, std::size_t last,
                                       std::optional<std::string> state) {
  for (auto place = first; place < last && state; ++place) {
    const auto& begun = *operations[place].Begun;
    const auto* const ended = operations[place].Ended;
    if (begun.Action == action::outside && ended != nullptr) {
      const auto before = KeptObject(history, begun.FileBefore).value_or("");
      const auto after = KeptObject(history, ended->FileAfter).value_or("");
      state = Brought(*state, PlanInFile(after, before, *state));
    }
  }
  return state;
}

// The values it left, without those that it reported as changed by somebody else and did not touch.
Values LeftByItself(History& history, const Entry& ended, const Values& left) {
  const auto text = KeptObject(history, ended.Details);
  const auto details = text ? FromJson<OperationDetails>(*text) : std::nullopt;
  Values own;
  for (const auto& value : left.InOrder()) {
    const bool isForeign =
        details && std::ranges::any_of(details->Values, [&value](const ReportedValue& one) {
          return one.Key == value.Name && one.Verdict == changedVerdict;
        });
    if (!isForeign) {
      own.Add(value);
    }
  }
  return own;
}

KeptOperation Alone(History& history, const Operation& operation) {
  const auto& begun = *operation.Begun;
  KeptOperation kept{.HasEnded = operation.Ended != nullptr};
  kept.Found.Configuration = KeptObject(history, begun.FileBefore);
  kept.Intended.Configuration = KeptObject(history, begun.FileAfter);
  const auto saves = begun.Counts.find("saves");
  kept.Saves = saves == begun.Counts.end() || saves->second != 0;
  if (action::SendsValues(begun.Action)) {
    kept.Found.Answers = KeptValues(history, begun.Found);
    kept.Intended.Answers = KeptValues(history, begun.Intended);
  }
  if (kept.HasEnded) {
    kept.IsProven = operation.Ended->Outcome == outcome::done;
    kept.Left.Configuration = KeptObject(history, operation.Ended->FileAfter);
    const auto left = kept.Found.Answers ? KeptValues(history, operation.Ended->Left) : std::nullopt;
    kept.HasSentUnreadable = HasSentUnreadable(*operation.Ended);
    kept.Left.Answers = left ? std::optional{LeftByItself(history, *operation.Ended, *left)} : std::nullopt;
  }
  return kept;
}

}  // namespace

KeptOperation KeptOf(History& history, const std::vector<Operation>& operations, std::size_t place) {
  auto kept = Alone(history, operations[place]);
  const auto first = FirstOf(operations, place);
  kept.Numbers = {.First = operations[first].Number(), .Last = operations[place].Number()};
  if (first != place) {
    auto begun = Alone(history, operations[first]);
    kept.Saves = begun.Saves;
    kept.Found.Answers = std::move(begun.Found.Answers);
    kept.Intended.Answers = std::move(begun.Intended.Answers);
    if (begun.Found.Configuration != begun.Intended.Configuration) {
      kept.Found.Configuration = WithOutside(history, operations, first, place, begun.Found.Configuration);
      kept.Intended.Configuration =
          WithOutside(history, operations, first, place, begun.Intended.Configuration);
    }
  }
  // A later SAVE has kept what this one sent, too.
  kept.SavedOrMayHave =
      std::any_of(operations.begin() + static_cast<std::ptrdiff_t>(first), operations.end(), MayHaveSaved);
  return kept;
}

namespace {

std::optional<Values> HeldBeforeUnsaved(const History& history, std::span<const Operation> operations) {
  std::optional<Values> held;
  for (const auto& operation : operations) {
    const auto& begun = *operation.Begun;
    if (operation.Ended != nullptr && MayHaveSaved(operation)) {
      held.reset();
    } else if (action::SendsValues(begun.Action) && !held) {
      const auto text = history.Object(begun.Found);
      held = text ? ValuesIn(*text) : std::nullopt;
    }
  }
  return held;
}

}  // namespace

std::optional<Values> HeldBeforeUnsaved(const History& history) {
  return HeldBeforeUnsaved(history, history.Operations());
}

std::optional<Values> LeftLast(const History& history, std::span<const Operation> operations) {
  std::optional<Values> kept;
  for (const auto& operation : operations) {
    const bool isKnown = action::SendsValues(operation.Begun->Action) && operation.Ended != nullptr;
    const auto text = isKnown ? history.Object(operation.Ended->Left) : std::nullopt;
    const auto left = text ? ValuesIn(*text) : std::nullopt;
    for (const auto& value : left ? left->InOrder() : std::vector<Value>{}) {
      if (value.WasAnswered) {
        kept = kept ? std::move(kept) : Values{};
        kept->Add(value);
      }
    }
  }
  return kept;
}

std::optional<Values> KeptByInstrument(const History& history, std::uint64_t number) {
  auto earlier = history.Operations();
  std::erase_if(earlier, [number](const Operation& one) { return one.Number() >= number; });
  auto held = HeldBeforeUnsaved(history, earlier);
  return held ? std::move(held) : LeftLast(history, earlier);
}

std::optional<std::string> LeftOtherwise(const History& history, std::string_view file,
                                         const std::optional<std::string>& present) {
  const auto operations = history.Operations();
  const auto last =
      std::ranges::find_if(operations.rbegin(), operations.rend(),
                           [&](const Operation& operation) { return operation.Begun->File == file; });
  if (last == operations.rend()) {
    return std::nullopt;
  }
  const auto& begun = *last->Begun;
  const bool isCertain = last->Ended != nullptr || begun.Action == action::backup;
  const auto& left = last->Ended != nullptr ? last->Ended->FileAfter : begun.FileAfter;
  const bool isAsLeft = left == (present ? Sha256Hex(*present) : "");
  return isAsLeft || (!isCertain && MayHaveLeft(history, begun.FileBefore, left, present))
             ? std::nullopt
             : std::optional{left};
}

bool HasChangedSomething(std::span<const Operation> operations, std::size_t place) {
  if (action::LeavesBothSides(operations[place].Begun->Action)) {
    return false;
  }
  const auto first = FirstOf(operations, place);
  const auto& begun = *operations[first].Begun;
  const auto* const ended = operations[place].Ended;
  return ended == nullptr || ended->FileAfter != begun.FileBefore ||
         (action::SendsValues(begun.Action) &&
          (HasSentUnreadable(*ended) || (ended->Left != begun.Found && (first != place || HasSent(*ended)))));
}

std::optional<std::size_t> LastOfOurs(std::span<const Operation> operations) {
  for (auto place = operations.size(); place > 0; --place) {
    const auto& operation = operations[place - 1];
    if (operation.Begun->Action != action::outside &&
        (HasChangedSomething(operations, place - 1) || IsProvenSending(operation) ||
         HasSentSome(operation))) {
      return place - 1;
    }
  }
  return std::nullopt;
}

// What was resumed is a part of what resumed it.
std::optional<std::size_t> LastChange(const std::vector<Operation>& operations) {
  std::vector<bool> wasResumed(operations.size());
  for (auto place = operations.size(); place > 0; --place) {
    if (!wasResumed[place - 1] && HasChangedSomething(operations, place - 1)) {
      return place - 1;
    }
    const bool isResume = operations[place - 1].Begun->Action == action::resume;
    const auto resumed = isResume ? LastOfOurs(std::span{operations}.first(place - 1)) : std::nullopt;
    if (resumed) {
      wasResumed[*resumed] = true;
    }
  }
  return std::nullopt;
}

}  // namespace zolvane
