#include "zolvane/operations/add_in_operations.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "custody/disk/sha256.h"
#include "custody/transfer/proving_link.h"
#include "custody/transfer/twin_link.h"
#include "custody/values/file_fields.h"
#include "custody/values/play.h"
#include "custody/values/sides.h"
#include "files/sectioned_text.h"
#include "instrument/links/no_link.h"
#include "page/page_controls.h"
#include "text/counted.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"
#include "zolvane/operations/custody.h"
#include "zolvane/operations/evidence.h"
#include "zolvane/operations/kept_operation.h"
#include "zolvane/work/actions.h"
#include "zolvane/work/printing.h"

namespace zolvane {
namespace {

enum class FileRole : std::uint8_t { None, Loaded, Saved };

struct OperationRow {
  std::string_view Name;
  int Button;
  bool AsksInstrument;
  FileRole File;
};

constexpr std::array<OperationRow, 5> operationRows{{
    {action::upload, uploadButton, true, FileRole::None},
    {action::download, downloadButton, true, FileRole::None},
    {action::query, queryButton, true, FileRole::None},
    {action::import, importButton, false, FileRole::Loaded},
    {action::exporting, exportButton, false, FileRole::Saved},
}};

// What the add-in wrote last under each name, as values of the file's face.
Values LastWrites(const std::vector<SettingWrite>& writes, const std::string& file) {
  Values values{NameCase::Ignored};
  for (const auto& write : writes) {
    if (IsSameFile(write.File, file)) {
      values.Add({.Name = Joined("[", write.Section, "] ", write.Key), .Text = write.Text});
    }
  }
  return values;
}

// A backup with the comments behind its last line.
std::string Closed(std::string backup, const Checkpoint& checkpoint) {
  backup += Joined(checkpointHeading, "\r\n");
  for (const auto& line : LinesOf(checkpoint)) {
    backup += Joined("; ", line, "\r\n");
  }
  return backup.append(SealOf(backup, backupSeal));
}

class AddInOperation final : public CustodyOperation {
 public:
  AddInOperation(const OperationRow& row, std::optional<std::string> file)
      : row_{row}, file_{std::move(file)} {}

  std::string_view Action() const override { return row_.Name; }
  void Look(Custody& custody) override;
  void Show(Custody& custody) override;
  Conclusion Act(Custody& custody) override;

 private:
  bool Sends() const { return row_.Button == uploadButton; }
  bool ChangesFile() const { return row_.Button == downloadButton || row_.File == FileRole::Loaded; }

  void LookAtFile(Custody& custody);
  std::vector<Finding> FindingsAhead(const Custody& custody) const;
  void Foresee(Custody& custody);
  void DemandForeseen(const PlayedAction& played) const;
  void ForeseeSending(Custody& custody, const WireFace& face);
  void ShowLoss(Custody& custody) const;
  SessionEnds RealEnds(Workplace& work, std::shared_ptr<BenchLink> link) const;
  void MakeRoom(Custody& custody) const;
  void CloseSavedFile(Custody& custody, Evidence& evidence) const;

  const OperationRow& row_;
  std::optional<std::string> file_;
  std::string intendedFile_;  // what an export will write
};

// ---- Look ----

void AddInOperation::Look(Custody& custody) {
  auto& work = custody.Work;
  custody.Found.Configuration = ReadConfiguration(work);
  if (row_.AsksInstrument || (ChangesFile() && work.Link != nullptr)) {
    custody.LookAtInstrument();
  }
  LookAtFile(custody);
  const auto& other = custody.OtherFile ? custody.OtherFile->Before : std::nullopt;
  ObjectToUnfinished(custody.Kept, {.Action = row_.Name, .OtherFile = other ? Sha256Hex(*other) : ""},
                     custody.Doubts);
  Foresee(custody);
  if (Sends() || ChangesFile()) {
    custody.LookFor(FindingsAhead(custody));
  }
}

// What an import makes 0 or passes over is an error of the backup: the configuration that results no longer shows it.
std::vector<Finding> AddInOperation::FindingsAhead(const Custody& custody) const {
  std::vector<Finding> findings;
  if (row_.File == FileRole::Loaded) {
    findings = CheckBackup(*custody.OtherFile->Before, *file_, *custody.Found.Configuration);
  }
  const auto& work = custody.Work;
  const auto name = row_.File == FileRole::Loaded ? NameAfterImport(work) : work.ConfigFile();
  std::ranges::move(CheckConfiguration(*custody.Intended.Configuration, name), std::back_inserter(findings));
  return findings;
}

void AddInOperation::LookAtFile(Custody& custody) {
  auto& work = custody.Work;
  if (row_.File == FileRole::Loaded) {
    DemandOtherFile(work, *file_);
    const auto bytes = ReadFile(work.Files, *file_);
    custody.OtherFile = {.Path = *file_, .Before = bytes, .After = bytes};
  } else if (row_.File == FileRole::Saved) {
    custody.LookAtTarget(*file_);
  }
}

// Plays it on copies: what is written there is what is to be written.
void AddInOperation::Foresee(Custody& custody) {
  auto& work = custody.Work;
  const auto face = WireFaceOfFile(*custody.Found.Configuration);
  if (!face.Problem.empty()) {
    throw UsageError{Joined(Quoted(work.ConfigFile()), ": ", face.Problem)};
  }
  MemoryDisk copy;
  copy.Put(work.ConfigFile(), *custody.Found.Configuration);
  if (row_.File == FileRole::Loaded) {
    copy.Put(*file_, *custody.OtherFile->Before);
  }
  auto ends = EndsOn(copy, work.Options.Folder);
  const auto twin = std::make_shared<TwinLink>(Values{}, Sends() ? nullptr : work.Link, ProgramInterrupt());
  if (row_.AsksInstrument) {
    ends.Link = twin;
  }
  const auto played = Play(ends, PressOf(row_.Button, file_));
  DemandForeseen(played);
  custody.Intended.Configuration = copy.Read(work.ConfigFile()).Bytes;
  if (row_.File == FileRole::Saved) {
    intendedFile_ = copy.Read(*file_).Bytes;
  } else if (row_.File == FileRole::Loaded) {
    ObjectToImport(work, custody.Kept, *file_, *custody.OtherFile->Before, *custody.Found.Configuration,
                   custody.Doubts);
  }
  if (Sends()) {
    ForeseeSending(custody, face);
    return;
  }
  custody.Intended.Answers = LastWrites(played.Writes, work.ConfigFile());
  if (row_.AsksInstrument) {
    const auto keys = twin->AskedFor();
    custody.Found.Answers = WireFaceOfInstrument(*twin, keys);
  }
}

void AddInOperation::DemandForeseen(const PlayedAction& played) const {
  const auto& tally = played.Result.Tally;
  if (tally.WasDisabled) {
    throw UsageError{Joined("the page does not offer it: the configuration switches ", row_.Name, " off")};
  }
  const auto& commands = tally.Commands;
  if (commands.NotAnswered > 0 || commands.Undelivered > 0 || tally.WasStopped) {
    throw UsageError{Joined("the instrument does not answer",
                            commands.FirstProblem ? Joined(": ", *commands.FirstProblem) : std::string{},
                            "; nothing was changed")};
  }
  if (tally.WritesFailed > 0 || tally.ReadsFailed > 0) {
    throw UsageError{
        Joined(row_.Name, " cannot be rehearsed: a settings file cannot be read, or cannot hold a value")};
  }
}

void AddInOperation::ForeseeSending(Custody& custody, const WireFace& face) {
  auto& link = DemandLink(custody.Work);
  custody.Intended.Answers = face.Lines;
  custody.Found.Answers = WireFaceOfInstrument(link, NamesOf(face.Lines));
  DemandAnswers(*custody.Found.Answers, link);
}

// ---- Show ----

void AddInOperation::Show(Custody& custody) {
  const auto& before = *custody.Found.Configuration;
  const Descriptions descriptions{WireFaceOfFile(before)};
  auto& work = custody.Work;
  if (Sends()) {
    ShowChanges(work, "instrument", Compare(*custody.Found.Answers, *custody.Intended.Answers), descriptions,
                "to be sent");
  }
  const auto changes = Compare(FileFace(before), FileFace(*custody.Intended.Configuration));
  if (!changes.Differences.empty() || ChangesFile()) {
    ShowChanges(work, "file", changes, descriptions, "to be written");
  }
  const auto zeros = std::ranges::count_if(changes.Differences, [](const Difference& change) {
    return change.A && change.B && !SameText(*change.A, "0") && SameText(*change.B, "0");
  });
  if (zeros > 0) {
    work.Out.Note(Joined("set to zero: ", CountOf(static_cast<std::size_t>(zeros), "value")));
  }
  if (row_.File == FileRole::Saved) {
    ShowLoss(custody);
  }
}

// One row for each section that the backup lacks, else one for each line, with the number of values.
std::string NamesOfMissing(const std::vector<Difference>& missing, const std::string& backup) {
  const SectionedText text{backup};
  std::vector<std::pair<std::string, std::size_t>> groups;
  for (const auto& difference : missing) {
    const auto place = PlaceNamed(difference.Name);
    const auto name = !place                             ? difference.Name
                      : !text.HasSection(place->Section) ? Joined("[", place->Section, "]")
                                                         : NameOfPlace(place->Section, place->Key);
    if (groups.empty() || groups.back().first != name) {
      groups.emplace_back(name, 0);
    }
    ++groups.back().second;
  }
  std::vector<TextRow> rows;
  std::ranges::transform(groups, std::back_inserter(rows), [](const auto& group) {
    return TextRow{Printable(group.first), CountOf(group.second, "value")};
  });
  return ColumnsText(rows, 4);
}

// What a later import of the exported file would not bring back: values that it would change, and values that the
// backup does not hold.
void AddInOperation::ShowLoss(Custody& custody) const {
  auto& work = custody.Work;
  const auto& configuration = *custody.Intended.Configuration;
  MemoryDisk copy;
  copy.Put(work.ConfigFile(), configuration);
  copy.Put(*file_, intendedFile_);
  Play(EndsOn(copy, work.Options.Folder), PressOf(importButton, file_));
  const auto face = FileFace(configuration);
  const auto changed = Compare(face, FileFace(copy.Read(work.ConfigFile()).Bytes));
  std::vector<Difference> missing;
  for (const auto& difference : Compare(face, FileFace(intendedFile_)).Differences) {
    const bool isMissing = difference.Kind == DifferenceKind::OnlyInA;
    if (isMissing && std::ranges::find(changed.Differences, difference.Name, &Difference::Name) ==
                         changed.Differences.end()) {
      missing.push_back(difference);
    }
  }
  const auto count = changed.Differences.size() + missing.size();
  work.Result.Counts.emplace_back("not_brought_back", count);
  auto& lost = work.Result.More["not_brought_back"] = Json::array();
  std::ranges::transform(changed.Differences, std::back_inserter(lost),
                         [](const auto& one) { return JsonOf(one); });
  std::ranges::transform(missing, std::back_inserter(lost), [](const auto& one) { return JsonOf(one); });
  work.Out.Print(Joined("A later import will not bring back ", CountOf(count, "value"), " of ",
                        std::to_string(face.InOrder().size()), "\n"));
  if (!changed.Differences.empty()) {
    const Descriptions descriptions{WireFaceOfFile(configuration)};
    work.Out.Print(
        Joined("  It will change ", CountOf(changed.Differences.size(), "value"), ":\n",
               DifferencesText(changed, {descriptions, "in the file"}, {descriptions, "after an import"})));
  }
  if (!missing.empty()) {
    work.Out.Print(Joined("  ", CountOf(missing.size(), "value"),
                          " will not be touched, because the backup does not hold them:\n",
                          NamesOfMissing(missing, intendedFile_)));
  }
}

// ---- Act ----

// What an upload would now change: what the way into the file and back has lost.
void ShowRoundTrip(Workplace& work, const Custody& custody, Evidence& evidence) {
  const auto now = WireFaceOfFile(custody.Left.Configuration.value_or(""));
  const auto before = work.Link != nullptr ? WireFaceOfInstrument(*work.Link, NamesOf(now.Lines))
                                           : WireFaceOfFile(*custody.Found.Configuration).Lines;
  const auto changes = Compare(before, now.Lines);
  if (changes.NotAnswered > 0) {
    work.Out.Error(Joined("what an upload would now change is not known: ",
                          ProgramInterrupt().IsRaised()
                              ? std::string{"stopped by the user"}
                              : Joined("the instrument does not answer", LinkProblem(*work.Link))));
    return;
  }
  work.Result.Counts.emplace_back("upload_would_change", changes.Differences.size());
  evidence.TakeRoundTrip(changes.Differences);
  if (!changes.Differences.empty()) {
    const Descriptions descriptions{now};
    work.Out.Print(
        Joined("An upload would now change ", CountOf(changes.Differences.size(), "value"), "\n",
               DifferencesText(changes, {descriptions, work.Link != nullptr ? "instrument" : "as found"},
                               {descriptions, "to be sent"})));
  }
}

Conclusion AddInOperation::Act(Custody& custody) {
  auto& work = custody.Work;
  const auto proving = std::make_shared<ProvingLink>(
      work.Link != nullptr ? work.Link : std::make_shared<NoLink>(ProgramInterrupt()),
      ProvingLink::Setup{.Found = Sends() ? *custody.Found.Answers : Values{},
                         .Kept = Sends() ? KeptByInstrument(custody.Kept, custody.Number()) : std::nullopt,
                         .Arrived = {},
                         .LetsUnreadablePass = IsLetPass(work.Options, objection_code::unreadable),
                         .LetsRoundedPass = IsLetPass(work.Options, objection_code::rounded)},
      ProgramInterrupt());
  MakeRoom(custody);
  const auto played = Play(RealEnds(work, proving), PressOf(row_.Button, file_));
  Evidence evidence{custody};
  evidence.TakeTally(played.Result.Tally, Sends());
  if (Sends()) {
    evidence.TakeInstrument(*proving, true);
  } else {
    custody.Left.Answers = custody.Found.Answers;
  }
  evidence.TakeConfiguration();
  CloseSavedFile(custody, evidence);
  const auto& tally = played.Result.Tally;
  const auto& commands = tally.Commands;
  const bool hasRun = !tally.WasCancelled && !tally.WasRefused;
  if (ChangesFile() && hasRun && commands.NotAnswered == 0 && commands.Undelivered == 0) {
    ShowRoundTrip(work, custody, evidence);
  }
  return evidence.Conclude();
}

SessionEnds AddInOperation::RealEnds(Workplace& work, std::shared_ptr<BenchLink> link) const {
  auto ends = EndsOn(work.Files, work.Options.Folder);
  ends.Host.Answers = {.Listed = work.Options.Answers, .AffirmsRest = work.Options.AffirmsRest};
  ends.Host.WantsToStop = [] { return ProgramInterrupt().IsRaised(); };
  ends.Link = std::move(link);
  ends.Terminal = work.Terminal;
  ends.Out = &work.Out;
  ends.Trace = work.Trace;
  return ends;
}

// The old file is in the history by now: an export writes a fresh one.
void AddInOperation::MakeRoom(Custody& custody) const {
  auto& files = custody.Work.Files;
  if (row_.File == FileRole::Saved && custody.OtherFile->Before && !files.Remove(*file_).Ok()) {
    custody.Work.Out.Error(files.FailureReason());
  }
}

void AddInOperation::CloseSavedFile(Custody& custody, Evidence& evidence) const {
  const auto checkpoint = custody.Kept.LastCheckpoint();
  if (row_.File != FileRole::Saved || !checkpoint) {
    return;
  }
  auto& files = custody.Work.Files;
  const auto whole = Closed(intendedFile_, *checkpoint);
  const auto closed = files.Append(*file_, std::string_view{whole}.substr(intendedFile_.size())).Then([&] {
    return files.SyncFile(*file_);
  });
  if (!closed.Ok()) {
    evidence.Worsen(outcome::notProven,
                    Joined("the checkpoint could not be appended: ", files.FailureReason()));
  }
  evidence.TakeFile(*file_, whole);
  custody.OtherFile->After = whole;
}

}  // namespace

void OperateAddIn(Workplace& work, std::string_view name, const std::optional<std::string>& file) {
  const auto* const row = std::ranges::find(operationRows, name, &OperationRow::Name);
  AddInOperation operation{*row, file};
  Operate(work, operation);
}

}  // namespace zolvane
