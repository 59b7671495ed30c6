#include "zolvane/work/objections.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "bench/host/dry_run.h"
#include "config/text.h"
#include "custody/values/play.h"
#include "custody/values/sides.h"
#include "files/sectioned_text.h"
#include "page/page_controls.h"
#include "program/command_line.h"
#include "text/counted.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/suggestion.h"
#include "text/usage_error.h"
#include "zolvane/work/actions.h"
#include "zolvane/work/printing.h"

namespace zolvane {
namespace {

struct PassableRow {
  std::string_view Code;
  std::string_view Meaning;
};

constexpr std::array<PassableRow, 11> passableRows{{
    {objection_code::findings, "the configuration has errors"},
    {objection_code::otherInstrument, "not the instrument that was expected"},
    {objection_code::unfinished, "an operation was begun and has not ended"},
    {objection_code::notABackup, "the file has no section that a backup has"},
    {objection_code::cutOff, "the end of the file is missing"},
    {objection_code::otherDevice, "the file has positions of another device only"},
    {objection_code::changed, "somebody else changed values since"},
    {objection_code::exists, "a file of that name is there already"},
    {objection_code::historyDamaged, "the history is damaged; going on starts a new one"},
    {objection_code::unreadable, "values that the instrument never gives back count as proven"},
    {objection_code::rounded, "values that the instrument rounds count as proven"},
}};

std::string_view MeaningOf(std::string_view code) {
  const auto* const found = std::ranges::find(passableRows, code, &PassableRow::Code);
  return found == passableRows.end() ? code : found->Meaning;
}

bool UserLetsPass(Workplace& work, const Objection& objection) {
  if (work.Terminal == nullptr) {
    return false;
  }
  work.Out.ClearStatus();
  const auto answer =
      work.Terminal->Ask(Joined(ObjectionText(objection), "\nGo on anyway? Type the code to let it pass: "));
  return answer && Trimmed(*answer) == objection.Code;
}

// What a backup holds, as far as an objection asks.
std::vector<std::string> SectionsIn(const std::string& bytes) {
  std::vector<std::string> sections;
  SectionedText{bytes}.VisitLines([&](const SectionedText::SeenLine& line) {
    if (line.Is == SectionedText::LineKind::Header && line.Counts) {
      sections.push_back(line.Section);
    }
  });
  return sections;
}

bool Has(const std::vector<std::string>& sections, std::string_view name) {
  return std::ranges::any_of(sections,
                             [name](const auto& section) { return EqualIgnoringCase(section, name); });
}

// The first section that an export writes behind the last one of the backup, and that is not in it.
std::string MissingSection(const std::vector<std::string>& sections,
                           const std::vector<std::string>& exported) {
  auto last = std::ranges::find_if(exported.rbegin(), exported.rend(),
                                   [&](const auto& section) { return Has(sections, section); });
  return last == exported.rbegin() || last == exported.rend() ? std::string{} : *std::prev(last);
}

// True if the file is a beginning of what zolvane exported under its name, or still has our heading. A host that
// overwrote it writes no closing lines.
bool IsExpectedToBeOurs(const History& history, const std::string& file, const std::string& backup) {
  const auto isLeft = [&](const FileChange& other) {
    const auto left = IsSameFile(other.Path, file) ? history.Object(other.After) : std::nullopt;
    return left && left->starts_with(backup);
  };
  const auto ours = std::ranges::any_of(history.Entries(), [&](const Entry& entry) {
    return entry.IsEnd() && entry.Action == action::exporting &&
           std::ranges::any_of(entry.OtherFiles, isLeft);
  });
  return ours || backup.find(checkpointHeading) != std::string::npos;
}

std::string CutOffReason(const History& history, const std::string& file, const std::string& backup,
                         const std::string& exported) {
  if (StateOfSeal(backup, backupSeal) == SealState::Whole) {
    return {};
  }
  if (!backup.ends_with('\n')) {
    return "a last line without an end";
  }
  if (const auto missing = MissingSection(SectionsIn(backup), SectionsIn(exported)); !missing.empty()) {
    return Joined("no section [", missing, "] behind its last");
  }
  const bool isClosed =
      !CheckpointsIn(backup).empty() && StateOfSeal(backup, backupSeal) != SealState::Missing;
  return !isClosed && IsExpectedToBeOurs(history, file, backup) ? "no checkpoint and SHA-256 at its end"
                                                                : std::string{};
}

}  // namespace

std::string ObjectionText(const Objection& objection) {
  const auto shown = [](const std::string& text) {
    return text.empty() || text != Trimmed(text) ? Quoted(text) : Printable(text);
  };
  return Joined(MeaningOf(objection.Code), ": expected ", shown(objection.Expected), ", found ",
                shown(objection.Actual), " [", objection.Code, "]");
}

void Object(Objections& objections, std::string_view code, std::string expected, std::string actual) {
  objections.push_back(
      {.Code = std::string{code}, .Expected = std::move(expected), .Actual = std::move(actual)});
}

bool IsLetPass(const CustodyOptions& options, std::string_view code) {
  return std::ranges::find(options.Despite, code) != options.Despite.end();
}

void DemandPassable(const std::string& code) {
  std::vector<std::string_view> codes;
  std::ranges::transform(passableRows, std::back_inserter(codes), &PassableRow::Code);
  if (std::ranges::find(codes, code) == codes.end()) {
    throw UsageError{Joined("--despite: there is no code ", Quoted(code), DidYouMean(code, codes))};
  }
}

std::string PassableHelp() {
  std::string text = "\nWhat --despite lets pass:\n";
  for (const auto& row : passableRows) {
    text += HelpRow(row.Code, row.Meaning);
  }
  return text;
}

std::vector<Objection> Settle(Workplace& work, const std::vector<Objection>& objections) {
  auto& reported = work.Result.Objections;
  reported.insert(reported.end(), objections.begin(), objections.end());
  bool goesOn = true;
  for (const auto& objection : objections) {
    if (IsLetPass(work.Options, objection.Code) || UserLetsPass(work, objection)) {
      work.Out.Note("let pass: " + ObjectionText(objection));
    } else {
      work.Out.Error(ObjectionText(objection));
      goesOn = false;
    }
  }
  if (!goesOn) {
    throw Refusal{};
  }
  return objections;
}

void ObjectToFindings(const Workplace& work, Objections& objections) {
  const auto& findings = work.Result.Findings;
  const auto isError = [](const Finding& finding) { return finding.Grade == Grade::Error; };
  const auto first = std::ranges::find_if(findings, isError);
  if (first != findings.end()) {
    const auto count = static_cast<std::size_t>(std::ranges::count_if(findings, isError));
    const auto place = Joined(first->Line == 0 ? "" : Joined(" in line ", std::to_string(first->Line)),
                              " of ", Quoted(first->File));
    Object(objections, objection_code::findings, "no error",
           Joined(CountOf(count, "error"), ", the first", place, ": ", first->Text));
  }
}

void ObjectToInstrument(const History& history, const std::string& configuration, const std::string& stage,
                        Objections& objections) {
  const auto& entries = history.Entries();
  const auto last = std::ranges::find_if(entries.rbegin(), entries.rend(),
                                         [](const Entry& entry) { return !entry.Instrument.empty(); });
  const auto expected =
      last != entries.rend() ? last->Instrument : WireFaceOfFile(configuration).InForce.Device.Code;
  if (stage != expected) {
    Object(objections, objection_code::otherInstrument, expected, stage);
  }
}

// The same again settles a download, query or import as well as an undo of it does.
void ObjectToUnfinished(const History& history, const NextOperation& next, Objections& objections,
                        const std::optional<OperationRange>& about) {
  for (const auto& operation : history.Operations()) {
    const auto& begun = *operation.Begun;
    const bool isOurs = begun.Action != action::outside;  // what others did is over
    const bool changesNothing = action::LeavesBothSides(begun.Action);
    const bool sends = action::SendsValues(begun.Action);
    const auto file = begun.OtherFiles.empty() ? std::string{} : begun.OtherFiles.front().Before;
    const bool isSame = !changesNothing && !sends && begun.Action == next.Action && file == next.OtherFile;
    const bool isMeant = isSame || (about && (changesNothing || about->Contains(operation.Number())));
    if (isOurs && operation.Ended == nullptr && !isMeant) {
      const auto number = std::to_string(operation.Number());
      Object(objections, objection_code::unfinished, "none",
             Joined("operation ", number, ", ", begun.Action, " of ", begun.Time,
                    changesNothing ? "; it changes neither side: let it pass, and run it again"
                    : sends        ? Joined(R"(; "resume" or "undo )", number, R"(" ends it)")
                                   : Joined(R"(; "undo )", number, R"(" ends it, or the same again)")));
    }
  }
}

void ObjectToBackup(const History& history, const std::string& file, const std::string& backup,
                    const std::string& exported, const std::string& device, Objections& objections) {
  constexpr std::string_view positions = "Position_";
  const auto sections = SectionsIn(backup);
  const auto isOfPositions = [&](const auto& section) {
    return EqualIgnoringCase(std::string_view{section}.substr(0, positions.size()), positions);
  };
  if (const auto reason = CutOffReason(history, file, backup, exported); !reason.empty()) {
    Object(objections, objection_code::cutOff, "a whole backup", reason);
  }
  if (StateOfSeal(backup, backupSeal) == SealState::Broken) {
    Object(objections, objection_code::changed, "the backup as it was exported",
           "another SHA-256 than its last line says");
  }
  const auto other = std::ranges::find_if(sections, isOfPositions);
  if (other != sections.end() && !Has(sections, Joined(positions, device))) {
    Object(objections, objection_code::otherDevice, Joined("[", positions, device, "]"),
           Joined("[", *other, "]"));
  }
}

std::string AfterImport(const Workplace& work, const std::string& file, const std::string& backup,
                        const std::string& configuration) {
  MemoryDisk copy;
  copy.Put(work.ConfigFile(), configuration);
  copy.Put(file, backup);
  Play(EndsOn(copy, work.Options.Folder), PressOf(importButton, file));
  return copy.Read(work.ConfigFile()).Bytes;
}

std::string NameAfterImport(const Workplace& work) {
  return work.ConfigFile() + " as an import would leave it";
}

void ObjectToImport(const Workplace& work, const History& history, const std::string& file,
                    const std::string& backup, const std::string& configuration, Objections& objections) {
  const std::string exportedFile = "exported.bak";
  MemoryDisk copy;
  copy.Put(work.ConfigFile(), configuration);
  copy.Put(file, backup);
  if (!HoldsBackup(work.Options.Folder, file, [&](const auto& path) { return copy.OpenSettings(path); })) {
    Object(objections, objection_code::notABackup, "the sections of a backup", "none of them");
    return;
  }
  Play(EndsOn(copy, work.Options.Folder), PressOf(exportButton, exportedFile));
  ObjectToBackup(history, file, backup, copy.Read(exportedFile).Bytes,
                 WireFaceOfFile(configuration).InForce.Device.Name, objections);
}

}  // namespace zolvane
