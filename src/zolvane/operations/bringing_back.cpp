#include "zolvane/operations/bringing_back.h"

#include <algorithm>
#include <array>
#include <functional>
#include <ranges>
#include <string_view>
#include <utility>
#include <vector>

#include "custody/transfer/proving_link.h"
#include "custody/transfer/wanted_state.h"
#include "custody/values/sides.h"
#include "files/splice.h"
#include "text/counted.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"
#include "zolvane/operations/custody.h"
#include "zolvane/operations/evidence.h"
#include "zolvane/operations/kept_operation.h"
#include "zolvane/work/actions.h"
#include "zolvane/work/printing.h"
#include "zolvane/work/sides.h"

namespace zolvane {
namespace {

// What both sides are to be brought to, and what is expected there now.
struct Target {
  Moment Wanted{};                    // without answers: the instrument is left alone
  std::optional<KeptOperation> Of{};  // that is taken back or resumed; none: whatever is there may go
  bool Saves = true;
};

class BringingBack final : public CustodyOperation {
 public:
  using Choice = std::function<Target(Custody& custody)>;

  BringingBack(std::string_view action, Choice choose) : action_{action}, choose_{std::move(choose)} {}

  std::string_view Action() const override { return action_; }
  void Look(Custody& custody) override;
  void Show(Custody& custody) override;
  Conclusion Act(Custody& custody) override;

 private:
  void LookAtFile(Custody& custody);
  void LeaveMissingFile(Custody& custody, const std::string& wanted);
  void LookAtValues(Custody& custody);
  void LeaveToLaterOnes(Custody& custody);
  void DoubtTheUnreadable(const CustodyOptions& options);
  void ObjectToChanges(Custody& custody) const;
  void WriteFile(Custody& custody, Evidence& evidence) const;
  void SendValues(Custody& custody, Evidence& evidence) const;
  void NameWhatStays(Evidence& evidence) const;

  std::string_view action_;
  Choice choose_;
  Target target_;
  std::vector<Step> steps_;  // in the file, where it does not go back as a whole, and on the instrument
  std::vector<Step> lines_;  // of these, the instrument's
};

// ---- Look ----

void BringingBack::Look(Custody& custody) {
  auto& work = custody.Work;
  target_ = choose_(custody);
  if (target_.Of) {
    custody.About = target_.Of->Numbers;
    custody.Draft.About = target_.Of->Numbers.Last;
  }
  ObjectToUnfinished(custody.Kept, {.Action = action_}, custody.Doubts, custody.About);
  auto content = work.Files.Read(work.ConfigFile());
  if (content.Is == DiskContent::State::Unreadable) {
    throw UsageError{Joined(Quoted(work.ConfigFile()), " ", content.Reason)};
  }
  if (content.Is == DiskContent::State::Present) {
    custody.Found.Configuration = std::move(content.Bytes);
  }
  LookAtFile(custody);
  if (target_.Wanted.Answers) {
    custody.LookAtInstrument();
    LookAtValues(custody);
  }
  ObjectToChanges(custody);
  if (custody.Intended.Configuration && custody.Intended.Configuration != custody.Found.Configuration) {
    custody.LookFor(CheckConfiguration(*custody.Intended.Configuration, work.ConfigFile()));
  }
  custody.Draft.Counts["saves"] = target_.Saves ? 1 : 0;
}

// The bytes go back as a whole if the operation left them, or stopped on its way between its two ends; else
// value by value.
void BringingBack::LookAtFile(Custody& custody) {
  const auto& present = custody.Found.Configuration;
  const auto& wanted = target_.Wanted.Configuration;
  Wish wish{.Name = std::string{configFileName}, .Wanted = wanted};
  if (target_.Of) {
    wish.Expected = target_.Of->Ends();
  }
  custody.Intended.Configuration = wanted;
  if (PlanForFile(wish, present).Is != Standing::Changed || !wanted) {
    return;
  }
  if (!present) {
    LeaveMissingFile(custody, *wanted);
    return;
  }
  const auto now = *present;
  const auto end = target_.Of->OtherEnd(wanted);
  const bool hasEnded = target_.Of->HasEnded;
  const auto other = hasEnded ? end.value_or("") : WithChoicesOf(now, end.value_or(""));
  const bool isBetween = hasEnded ? Brought(now, PlanInFile(other, *wanted, now)) == other
                                  : CouldBeOnTheWay(wanted, end, present);
  if (isBetween) {
    return;
  }
  steps_ = PlanInFile(*wanted, other, now);
  custody.Intended.Configuration = Brought(now, steps_);
}

// Somebody removed it. That is in the way of what would change it, and none of our business otherwise.
void BringingBack::LeaveMissingFile(Custody& custody, const std::string& wanted) {
  const auto& ends = target_.Of->Ends();
  if (std::ranges::any_of(ends, [&](const auto& end) { return end != wanted; })) {
    steps_.push_back(
        {.Of = {.Name = std::string{configFileName}, .Expected = {"its bytes as they were left"}},
         .Is = Standing::Changed});
  }
  custody.Intended.Configuration.reset();
}

void BringingBack::LookAtValues(Custody& custody) {
  auto& link = DemandLink(custody.Work);
  const auto& wanted = *target_.Wanted.Answers;
  custody.Found.Answers = WireFaceOfInstrument(link, NamesOf(wanted));
  DemandAnswers(*custody.Found.Answers, link);
  const auto wishes = WishesFor(wanted, target_.Of ? target_.Of->TracesOf() : Traces{});
  lines_ = PlanFor(wishes, *custody.Found.Answers, target_.Of ? Spelling::GoesBack : Spelling::Stays);
  LeaveToLaterOnes(custody);
  DoubtTheUnreadable(custody.Work.Options);
  Values intended;
  for (const auto& step : lines_) {
    if (step.Is == Standing::AsWanted || step.Is == Standing::ToDo) {
      intended.Add({.Name = step.Of.Name, .Text = step.Of.Wanted});
    }
  }
  custody.Intended.Answers = std::move(intended);
  steps_.insert(steps_.end(), lines_.begin(), lines_.end());
}

// Passes over values that a later operation of this history left, and that this one had left as it found them. Such a
// value was changed by our own history, so it is neither objected to nor restored; unless that operation never came
// to its SAVE: this one would now do it.
void BringingBack::LeaveToLaterOnes(Custody& custody) {
  Values later;
  const auto held = HeldBeforeUnsaved(custody.Kept);
  for (const auto& operation : custody.Kept.Operations()) {
    const bool isLater = target_.Of && operation.Number() > target_.Of->Numbers.Last;
    const bool sends = operation.Ended != nullptr && action::SendsValues(operation.Begun->Action);
    const auto left = isLater && sends ? KeptValues(custody.Kept, operation.Ended->Left) : std::nullopt;
    if (left) {
      std::ranges::for_each(left->InOrder(), [&later](const Value& value) { later.Add(value); });
    }
  }
  std::erase_if(lines_, [&](const Step& step) {
    const auto& name = step.Of.Name;
    const auto textOf = [&name](const std::optional<Values>& values) {
      return values ? values->TextOf(name) : std::nullopt;
    };
    const bool isSaved = !held || held->Find(name) == nullptr || SameValue(held->TextOf(name), step.Present);
    return step.Is == Standing::Changed && isSaved && later.Find(name) != nullptr &&
           SameValue(later.TextOf(name), step.Present) && target_.Of->Left.Answers &&
           SameValue(textOf(target_.Of->Found.Answers), textOf(target_.Of->Left.Answers));
  });
}

// A key that the instrument does not tell may hold what was sent.
void BringingBack::DoubtTheUnreadable(const CustodyOptions& options) {
  if (IsLetPass(options, objection_code::unreadable)) {
    return;
  }
  for (auto& step : lines_) {
    const bool isKnown = step.Of.Wanted || step.Present;
    const bool mayBeSent =
        !target_.Of || !target_.Of->Intended.Answers || target_.Of->Intended.Answers->TextOf(step.Of.Name);
    step.Is = step.Is == Standing::AsWanted && !isKnown && mayBeSent ? Standing::Unreadable : step.Is;
  }
}

void BringingBack::ObjectToChanges(Custody& custody) const {
  if (std::ranges::count(steps_, Standing::Changed, &Step::Is) == 0) {
    return;
  }
  const Descriptions measures{WireFaceOfFile(custody.Found.Configuration.value_or(""))};
  for (const auto& step : steps_) {
    if (step.Is == Standing::Changed) {
      const auto& expected = step.Of.Expected;
      const auto text = [&](const std::optional<std::string>& value) {
        const auto measure = value ? measures.Measure(step.Of.Name, *value) : std::nullopt;
        return Joined(step.Of.Name, " = ", value.value_or("(none)"),
                      measure ? Joined(" (", *measure, ")") : std::string{});
      };
      Object(custody.Doubts, objection_code::changed,
             text(expected.empty() ? std::nullopt : expected.front()), text(step.Present));
    }
  }
}

// ---- Show ----

void BringingBack::Show(Custody& custody) {
  const auto& found = custody.Found.Configuration;
  const auto intended = custody.Intended.Configuration.value_or("");
  const Descriptions descriptions{WireFaceOfFile(intended)};
  const auto face = FileFace(intended);
  if (found) {
    ShowChanges(custody.Work, "file", Compare(FileFace(*found), face), descriptions, "to be written");
  } else if (custody.Intended.Configuration) {
    custody.Work.Out.Print(Joined("file: a new one with ", CountOf(face.InOrder().size(), "value"), "\n"));
  }
  if (custody.Found.Answers) {
    Values present;
    for (const auto& value : custody.Intended.Answers->InOrder()) {
      present.Add(*custody.Found.Answers->Find(value.Name));
    }
    ShowChanges(custody.Work, "instrument", Compare(present, *custody.Intended.Answers), descriptions,
                "to be sent");
  }
}

// ---- Act ----

Conclusion BringingBack::Act(Custody& custody) {
  Evidence evidence{custody};
  WriteFile(custody, evidence);
  if (target_.Wanted.Answers) {
    SendValues(custody, evidence);
  }
  evidence.TakeConfiguration();
  const bool isProven = evidence.IsProven();
  NameWhatStays(evidence);
  auto conclusion = evidence.Conclude();
  conclusion.IsSettled = isProven;
  return conclusion;
}

void BringingBack::WriteFile(Custody& custody, Evidence& evidence) const {
  auto& work = custody.Work;
  const auto& before = custody.Found.Configuration;
  const auto& after = custody.Intended.Configuration;
  if (before == after) {
    return;
  }
  if (!after) {
    if (!work.Files.Remove(work.ConfigFile())
             .Then([&] { return work.Files.SyncFolder(work.Options.Folder); })
             .Ok()) {
      evidence.Worsen(outcome::failed, work.Files.FailureReason());
    }
    return;
  }
  const auto file = work.Files.OpenSettings(work.ConfigFile());
  const auto now = file->Read();
  const bool isAsFound = now.Bytes == before.value_or("");
  const auto written =
      isAsFound ? file->Write(now.Bytes, {.Offset = 0, .Removed = now.Bytes.size(), .Inserted = *after})
                : WriteOutcome::Changed;
  if (written != WriteOutcome::Done || !file->Flush().Ok()) {
    evidence.Worsen(outcome::failed,
                    Joined(Quoted(work.ConfigFile()), written == WriteOutcome::Changed
                                                          ? " was changed by another program meanwhile"
                                                          : " could not be written"));
  }
}

void BringingBack::SendValues(Custody& custody, Evidence& evidence) const {
  auto& work = custody.Work;
  ProvingLink link{work.Link,
                   {.Found = *custody.Found.Answers,
                    .Kept = KeptByInstrument(custody.Kept, custody.Number()),
                    .Arrived = ArrivedOf(lines_),
                    .LetsUnreadablePass = IsLetPass(work.Options, objection_code::unreadable),
                    .LetsRoundedPass = IsLetPass(work.Options, objection_code::rounded)},
                   ProgramInterrupt()};
  if (!Bring(link, lines_, target_.Saves ? Ending::Save : Ending::Prove)) {
    evidence.Worsen(outcome::notProven, "");
  }
  evidence.TakeInstrument(link, target_.Saves);
}

struct StayingRow {
  Standing Is;
  std::string_view Verdict;
  std::string_view Why;
};

constexpr std::array<StayingRow, 3> stayingRows{{
    {Standing::Changed, changedVerdict, "changed by somebody else, and left as found: "},
    {Standing::CannotBeRemoved, "cannot_be_removed", "not known before, and cannot be removed: "},
    {Standing::Unreadable, objection_code::unreadable, "cannot be read, and may hold what was sent: "},
}};

// The account names the first few, the values of the report all.
void BringingBack::NameWhatStays(Evidence& evidence) const {
  constexpr std::size_t most = 5;
  for (const auto& row : stayingRows) {
    std::string names;
    std::size_t count = 0;
    for (const auto& step : steps_) {
      if (step.Is == row.Is) {
        evidence.TakeUntouched(step.Of.Name, step.Present, row.Verdict);
        names.append(++count > most ? "" : Joined(count > 1 ? ", " : "", step.Of.Name));
      }
    }
    if (count > 0) {
      const auto rest = count > most ? Joined(" and ", std::to_string(count - most), " more") : std::string{};
      evidence.Worsen(outcome::notProven, Joined(row.Why, names, rest));
    }
  }
}

// ---- What is to be brought back ----

std::size_t PlaceNamed(const std::vector<Operation>& operations, const Operation& named) {
  return static_cast<std::size_t>(std::ranges::find(operations, named.Number(), &Operation::Number) -
                                  operations.begin());
}

Target TakingBack(Custody& custody, const std::optional<std::string>& number) {
  const auto operations = custody.Kept.Operations();
  const auto place = number ? std::optional{PlaceNamed(operations, OperationNamed(custody.Kept, *number))}
                            : LastChange(operations);
  if (!place) {
    throw UsageError{"there is nothing to undo: no operation in the history has changed anything"};
  }
  if (const auto& named = *operations[*place].Begun; action::LeavesBothSides(named.Action)) {
    throw UsageError{Joined("there is nothing to undo: operation ", std::to_string(named.Sequence), ", ",
                            named.Action, ", changed neither side")};
  }
  auto kept = KeptOf(custody.Kept, operations, *place);
  Target target{.Wanted = kept.Found, .Saves = kept.SavedOrMayHave};
  if (kept.HasEnded && !kept.HasSentUnreadable && kept.Left.Answers == kept.Found.Answers) {
    target.Wanted.Answers.reset();
  }
  target.Of = std::move(kept);
  return target;
}

// An operation that is settled may have left values to somebody else, or that cannot be removed: no reason to resume.
bool CanGoOn(const Operation& operation) {
  return operation.Ended == nullptr ||
         ((operation.Ended->Outcome == outcome::failed || operation.Ended->Outcome == outcome::notProven) &&
          !operation.Ended->Counts.contains(settledCount));
}

Target Finishing(Custody& custody) {
  const auto operations = custody.Kept.Operations();
  const auto last = LastOfOurs(operations);
  if (!last || !CanGoOn(operations[*last])) {
    throw UsageError{
        Joined("there is nothing to resume: ",
               !last ? "no operation has sent or changed anything"
               : operations[*last].Ended->Counts.contains(settledCount)
                   ? "what the last operation left undone is somebody else's, or cannot be removed"
                   : "what was sent or changed last came to its end")};
  }
  const auto& operation = operations[*last];
  if (!action::SendsValues(operation.Begun->Action)) {
    throw UsageError{Joined("operation ", std::to_string(operation.Number()), ", ", operation.Begun->Action,
                            ", cannot be resumed: undo it, or run it again")};
  }
  auto kept = KeptOf(custody.Kept, operations, *last);
  Target target{.Wanted = kept.Intended, .Saves = kept.Saves};
  target.Of = std::move(kept);
  return target;
}

Target Recorded(Custody& custody, const std::string& name) {
  auto side = SideNamed(custody.Work, name);
  if (!side.IsKept) {
    throw UsageError{Joined(Quoted(name), " is no record and no operation, and only these can be restored")};
  }
  if (!side.Configuration) {
    throw UsageError{Joined(Quoted(name), " left no configuration that could be restored")};
  }
  Target target{.Wanted = {.Configuration = std::move(side.Configuration), .Answers = {}}};
  if (custody.Work.Options.TakesInstrument) {
    if (!side.Answers) {
      throw UsageError{Joined(Quoted(name), " holds no answers of an instrument")};
    }
    target.Wanted.Answers = std::move(side.Answers);
  }
  return target;
}

void BringBack(Workplace& work, std::string_view action, BringingBack::Choice choose) {
  BringingBack operation{action, std::move(choose)};
  Operate(work, operation);
}

}  // namespace

void Undo(Workplace& work, const std::optional<std::string>& number) {
  BringBack(work, action::undo, [&](Custody& custody) { return TakingBack(custody, number); });
}

void Resume(Workplace& work) {
  BringBack(work, action::resume, Finishing);
}

void Restore(Workplace& work, const std::string& side) {
  BringBack(work, action::restore, [&](Custody& custody) { return Recorded(custody, side); });
}

}  // namespace zolvane
