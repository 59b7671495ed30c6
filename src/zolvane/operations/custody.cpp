#include "zolvane/operations/custody.h"
#include "custody/transfer/wanted_state.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "config/text.h"
#include "custody/values/sides.h"
#include "custody/values/values_json.h"
#include "files/paths.h"
#include "instrument/links/interrupt_flag.h"
#include "program/version.h"
#include "text/counted.h"
#include "text/joined.h"
#include "text/json_text.h"
#include "text/printable.h"
#include "text/usage_error.h"
#include "zolvane/operations/kept_operation.h"
#include "zolvane/work/actions.h"
#include "zolvane/work/printing.h"
#include "zolvane/work/sides.h"

namespace zolvane {
namespace {

constexpr std::string_view stageQuestion = "STATUS_STAGE";

[[noreturn]] void RefuseHistory(const History& history) {
  throw UsageError{Joined("the history cannot be written: ", history.FailureReason())};
}

Entry DraftOf(Workplace& work, std::string_view action) {
  Entry draft;
  draft.Action = action;
  draft.Person = work.Options.By.value_or(work.Who.Person());
  draft.Reason = work.Options.Reason;
  draft.Program = programName;
  draft.Version = programVersion;
  draft.Link = work.Options.Link;
  draft.File = configFileName;
  return draft;
}

// "done" is said only of what is proven, saved and recorded.
std::string OutcomeText(const Workplace& work) {
  const auto& name = work.Result.Outcome;
  const auto text = name == outcome::notProven ? std::string{"not proven"} : name;
  return work.IsRehearsal
             ? Joined("rehearsed on copies: ", name == outcome::done ? "it would be proven" : text)
             : text;
}

}  // namespace

Custody::Custody(Workplace& work, std::string_view action)
    : Work{work}, Kept{work.Files, work.Who, work.Options.Folder}, Draft{DraftOf(work, action)} {
  if (!work.IsRehearsal) {
    DemandFolder(work, work.Options.Folder);
  }
  const Waiting waiting{.IsUnwanted = [] { return ProgramInterrupt().IsRaised(); }};
  if (!Kept.OpenForRecording(waiting).Ok()) {
    RefuseHistory(Kept);
  }
}

void Custody::LookAtInstrument() {
  auto& link = DemandLink(Work);
  std::string command{stageQuestion};
  std::string reply;
  if (!MetOnlyIf(link.SendCommand(command, reply, 0))) {
    throw UsageError{Joined("the instrument does not answer ", stageQuestion, LinkProblem(link))};
  }
  Draft.Instrument = Trimmed(reply);
  if (Draft.Instrument.empty()) {
    throw UsageError{Joined("the instrument answers ", stageQuestion, " with an empty line")};
  }
  const auto& configuration = Found.Configuration ? Found.Configuration : Intended.Configuration;
  ObjectToInstrument(Kept, configuration.value_or(""), Draft.Instrument, Doubts);
}

void Custody::LookFor(std::vector<Finding> findings) {
  Work.Result.Findings = std::move(findings);
  ObjectToFindings(Work, Doubts);
}

void Custody::SettleDamage() {
  Work.HasToldDamage = true;
  if (Kept.IsTorn()) {
    Work.Out.Note(
        "the last line of the history was not written to its end; it is no entry, and is kept aside");
  }
  if (!Kept.Damage().empty()) {
    Objections damage;
    Object(damage, objection_code::historyDamaged, "a whole history", Kept.Damage());
    Draft.Objections = Settle(Work, damage);
  }
}

std::string Custody::DamageOfObjects() const {
  std::string damage;
  for (const auto* const moment : {&Found, &Intended}) {
    const auto values = moment->Answers ? std::optional{ValuesText(*moment->Answers)} : std::nullopt;
    for (const auto* const bytes : {&moment->Configuration, &values}) {
      damage = damage.empty() && *bytes ? Kept.DamageOfObject(**bytes) : damage;
    }
  }
  return damage;
}

// Otherwise the operation would begin, and stop where the system first refuses to write.
void Custody::DemandWritable() const {
  const bool isToWrite = Intended.Configuration != Found.Configuration;
  const auto reason = isToWrite ? Work.Files.ReasonAgainstWriting(Work.ConfigFile()) : std::nullopt;
  if (reason) {
    throw UsageError{Joined(Quoted(Work.ConfigFile()), " ", *reason, "; nothing was changed")};
  }
}

// An object that an earlier operation kept would be repaired by this one, and nobody would know.
void Custody::SettleDoubts() {
  const auto damaged = DamageOfObjects();
  if (!damaged.empty()) {
    Object(Doubts, objection_code::historyDamaged, "a whole history", damaged);
  }
  std::ranges::move(Settle(Work, Doubts), std::back_inserter(Draft.Objections));
  if (Kept.Damage().empty() && damaged.empty()) {
    return;
  }
  const auto name = Kept.SetAside();
  if (!name) {
    RefuseHistory(Kept);
  }
  Work.Out.Error(Joined("the damaged history is kept in ", Quoted(*name), ", and a new one begins"));
}

void Custody::LookAtTarget(const std::string& path) {
  const auto holder = FolderHolding(path);
  DemandOtherFile(Work, path);
  DemandOutsideHistory(Work.Options.Folder, path);
  auto content = Work.Files.Read(path);
  if (content.Is == DiskContent::State::Unreadable) {
    throw UsageError{Joined(Quoted(path), " ", content.Reason)};
  }
  if (Work.Files.Read(holder).Is != DiskContent::State::Unreadable) {
    throw UsageError{Joined(Quoted(path), " cannot be made: there is no folder ", Quoted(holder))};
  }
  if (!Work.Files.TryReplacing(path).Ok()) {
    throw UsageError{Joined(Quoted(path), " cannot be written: ", Work.Files.FailureReason())};
  }
  OtherFile = {.Path = path};
  if (content.Is == DiskContent::State::Present) {
    OtherFile->Before = std::move(content.Bytes);
    Object(Doubts, objection_code::exists, "a new file", path);
  }
}

std::optional<std::string> Custody::Keep(const std::optional<std::string>& bytes) {
  return bytes ? Kept.PutObject(*bytes) : std::optional{std::string{}};
}

std::optional<std::string> Custody::Keep(const std::optional<Values>& values) {
  return Keep(values ? std::optional{ValuesText(*values)} : std::nullopt);
}

bool Custody::KeepOtherFile() {
  if (!OtherFile) {
    return true;
  }
  const auto before = Keep(OtherFile->Before);
  const auto after = Keep(OtherFile->After);
  Draft.OtherFiles = {{.Path = OtherFile->Path, .Before = before.value_or(""), .After = after.value_or("")}};
  return before && after;
}

// What somebody did with the host's own button, or with an editor.
void Custody::RecordOutside() {
  const auto last = LeftOtherwise(Kept, Draft.File, Found.Configuration);
  const auto found = last ? Keep(Found.Configuration) : std::nullopt;
  if (!found) {
    return;
  }
  auto entry = DraftOf(Work, action::outside);
  entry.Link.clear();
  entry.Reason.clear();
  entry.FileBefore = *last;
  entry.FileAfter = *found;
  const auto number = Kept.Begin(entry);
  entry.Outcome = outcome::done;
  if (!number || !Kept.End(*number, entry).Ok()) {
    RefuseHistory(Kept);
  }
  if (!Work.IsRehearsal) {
    Work.Out.Note(Joined("somebody changed the configuration since it was last left; recorded as operation ",
                         std::to_string(*number), ", \"outside\""));
  }
}

void Custody::Begin() {
  RecordOutside();
  const auto file = Keep(Found.Configuration);
  const auto intendedFile = Keep(Intended.Configuration);
  const auto found = Keep(Found.Answers);
  const auto intended = Keep(Intended.Answers);
  if (!file || !intendedFile || !found || !intended || !KeepOtherFile()) {
    RefuseHistory(Kept);
  }
  Draft.FileBefore = *file;
  Draft.Found = *found;
  Draft.Intended = *intended;
  auto begun = Draft;
  begun.FileAfter = *intendedFile;
  const auto number = Kept.Begin(std::move(begun));
  if (!number) {
    RefuseHistory(Kept);
  }
  number_ = *number;
}

// An operation that was cut short is over as soon as a later one has proven whatever it may have changed: the one
// that takes it back or resumes it, and whoever let it pass and sent all values or, if it sent none, wrote the file.
bool Custody::Settles(const Entry& unfinished) const {
  if (action::LeavesBothSides(unfinished.Action) || unfinished.Action == action::outside) {
    return true;  // nothing of ours is unknown
  }
  if (About) {
    return About->Contains(unfinished.Sequence);
  }
  return action::SendsValues(unfinished.Action)
             ? action::SendsValues(Draft.Action) && Intended.Answers.has_value()
             : !action::LeavesBothSides(Draft.Action);
}

// Its end records what later operations found: the file as the next operation on it found it, the values as the next
// sender found them. It tells what was seen, by whom and when, not what was done.
Entry Custody::EndOf(const Entry& unfinished) const {
  auto end = unfinished;
  end.Outcome = outcome::failed;
  end.Person = Draft.Person;
  end.Program = Draft.Program;
  end.Version = Draft.Version;
  end.FileAfter = Draft.FileBefore;
  end.Left = Draft.Found;
  const auto after = [&](const auto& isNext) {
    return std::ranges::find_if(Kept.Entries(), [&](const Entry& later) {
      return later.Sequence > unfinished.Sequence && !later.IsEnd() && isNext(later);
    });
  };
  if (const auto next = after([&](const Entry& later) { return later.File == unfinished.File; });
      next != Kept.Entries().end()) {
    end.FileAfter = next->FileBefore;
  }
  if (const auto next = after([](const Entry& later) { return action::SendsValues(later.Action); });
      next != Kept.Entries().end() && !next->Found.empty()) {
    end.Left = next->Found;
  }
  return end;
}

void Custody::EndOlderOnes() {
  std::vector<Entry> ends;  // copies, as the history's own entries do not last while it is written
  for (const auto& operation : Kept.Operations()) {
    if (operation.Ended == nullptr && operation.Number() != number_ && Settles(*operation.Begun)) {
      ends.push_back(EndOf(*operation.Begun));
    }
  }
  for (auto& end : ends) {
    const auto number = end.Sequence;
    if (!Kept.End(number, end).Ok()) {
      return;  // the end of this one fails for the same reason, and says so
    }
  }
}

// An upload writes no more of the file than it meant to. What else stands in it is somebody else's, and is found as that
// by the next operation.
const std::optional<std::string>& Custody::OwnConfiguration() const {
  const bool isOwn = Draft.Action != action::upload ||
                     CouldBeOnTheWay(Found.Configuration, Intended.Configuration, Left.Configuration);
  return isOwn ? Left.Configuration : Intended.Configuration;
}

void Custody::RecordEnd(const Conclusion& conclusion) {
  const bool isOtherFileKept = KeepOtherFile();
  auto end = Draft;
  end.Outcome = conclusion.Outcome;
  const auto file = Keep(OwnConfiguration());
  const auto left = Keep(Left.Answers);
  const auto details = Keep(std::optional{BareJsonText(JsonOf(conclusion.Details))});
  end.FileAfter = file.value_or("");
  end.Left = left.value_or("");
  end.Details = details.value_or("");
  for (const auto& [name, count] : Work.Result.Counts) {
    end.Counts[name] = static_cast<std::int64_t>(count);
  }
  if (conclusion.IsSettled && conclusion.Outcome != outcome::done) {
    end.Counts.emplace(settledCount, 1);
  }
  const bool isKept = file && left && details && isOtherFileKept;
  if (!isKept || !Kept.End(number_, std::move(end)).Ok()) {
    Work.Out.Error(Joined("the end of the operation could not be recorded: ", Kept.FailureReason()));
    Work.Result.Outcome = outcome::notProven;
  }
}

void Custody::End(const Conclusion& conclusion) {
  Work.Result.Outcome = conclusion.Outcome;
  if (conclusion.Outcome == outcome::done || conclusion.IsSettled) {
    EndOlderOnes();
  }
  RecordEnd(conclusion);
  Work.Result.Checkpoint = Kept.LastCheckpoint();
  Work.Result.Worsen(Work.Result.Outcome == outcome::done ? exit_status::done : exit_status::notDone);
}

namespace {

// What the user can do now. If nothing was sent or changed, there is nothing to resume or undo.
std::string_view WayOn(const Custody& custody, const Conclusion& conclusion) {
  const auto& counts = custody.Work.Result.Counts;
  const bool hasStopped = conclusion.Outcome == outcome::failed || conclusion.Outcome == outcome::notProven;
  const bool hasSent = std::ranges::any_of(
      counts, [](const auto& count) { return count.first == "sent" && count.second > 0; });
  const bool hasWritten = !action::LeavesBothSides(custody.Draft.Action) &&
                          custody.Left.Configuration != custody.Found.Configuration;
  const bool isToUndo = hasWritten || (hasSent && custody.Left.Answers != custody.Found.Answers);
  if (!hasStopped || !(hasSent || hasWritten)) {
    return "";
  }
  return !action::SendsValues(custody.Draft.Action)
             ? R"(; "undo" takes back what it changed, or run it again)"
         : conclusion.IsSettled ? isToUndo ? R"(; "undo" takes it back)" : ""
         : isToUndo             ? R"(; "resume" goes on from here, "undo" takes it back)"
                                : R"(; "resume" goes on from here)";
}

void Tell(const Custody& custody, const Conclusion& conclusion) {
  auto& work = custody.Work;
  if (work.IsRehearsal) {
    work.Out.Print(Joined(custody.Draft.Action, ": ", OutcomeText(work), "\n"));
    return;
  }
  const auto text = Joined(custody.Draft.Action, ": ", OutcomeText(work),
                           conclusion.Account.empty() ? "" : "; ", conclusion.Account);
  if (work.Result.Outcome == outcome::done) {
    work.Out.Print(Joined(text, "; recorded as operation ", std::to_string(custody.Number()), "\n"));
  } else {
    work.Out.Error(Joined(text, WayOn(custody, conclusion)));
  }
  if (work.Result.Checkpoint) {
    work.Out.Print(CheckpointText(*work.Result.Checkpoint));
  }
}

}  // namespace

void Operate(Workplace& work, CustodyOperation& operation) {
  Custody custody{work, operation.Action()};
  custody.SettleDamage();
  operation.Look(custody);
  custody.DemandWritable();
  custody.SettleDoubts();
  operation.Show(custody);
  custody.Begin();
  const auto conclusion = operation.Act(custody);
  custody.End(conclusion);
  Tell(custody, conclusion);
}

void ShowChanges(Workplace& work, std::string_view where, const Comparison& changes,
                 const Descriptions& descriptions, std::string_view meant) {
  const auto count = changes.Differences.size();
  work.Out.Print(Joined(where, ": ", CountOf(count, "value"), " of ", std::to_string(count + changes.Same),
                        " to change\n",
                        DifferencesText(changes, {descriptions, "as found"}, {descriptions, meant})));
}

std::string LinkProblem(const BenchLink& link) {
  const auto& problem = link.LastDelivery().Problem;
  return problem.empty() ? std::string{} : Joined(": ", problem);
}

void DemandOtherFile(const Workplace& work, const std::string& path) {
  if (IsSameFile(path, work.ConfigFile())) {
    throw UsageError{Joined(Quoted(path), " is the configuration itself")};
  }
}

void DemandAnswers(const Values& answers, const BenchLink& link) {
  for (const auto& value : answers.InOrder()) {
    if (!value.WasAnswered) {
      throw UsageError{Joined("the instrument does not answer for ", Quoted(value.Name), LinkProblem(link),
                              "; nothing was changed")};
    }
  }
}

}  // namespace zolvane
