#include "zolvane/history_commands.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <string_view>

#include "custody/history/audit.h"
#include "custody/history/history_place.h"
#include "custody/record/record.h"
#include "text/joined.h"
#include "text/json_text.h"
#include "text/listed.h"
#include "text/printable.h"
#include "text/usage_error.h"
#include "zolvane/work/actions.h"
#include "zolvane/work/objections.h"
#include "zolvane/work/printing.h"
#include "zolvane/work/sides.h"

namespace zolvane {
namespace {

std::string OutcomeOfOperation(const Operation& operation) {
  return operation.Ended == nullptr                   ? "not_ended"
         : operation.Begun->Action == action::outside ? "seen"
                                                      : operation.Ended->Outcome;
}

// One row for an operation, in the order of the columns.
constexpr std::array<std::string_view, 9> columns{"operation", "time",   "action",     "outcome", "person",
                                                  "machine",   "reason", "instrument", "link"};

TextRow RowOf(const Operation& operation) {
  const auto& begun = *operation.Begun;
  return {std::to_string(operation.Number()),
          begun.Time,
          begun.Action,
          OutcomeOfOperation(operation),
          begun.Person,
          begun.Machine,
          begun.Reason,
          begun.Instrument,
          begun.Link};
}

// A cell that a table program would take for a formula is told to be a text.
std::string CsvCell(std::string text) {
  const bool looksLikeFormula =
      !text.empty() && std::string_view{"=+-@\t\r"}.find(text.front()) != std::string_view::npos;
  if (looksLikeFormula) {
    text.insert(text.begin(), '\'');
  }
  if (text.find_first_of(",\"\r\n") == std::string::npos) {
    return text;
  }
  std::string quoted = "\"";
  for (const char character : text) {
    quoted.append(character == '"' ? 2 : 1, character);
  }
  return quoted + "\"";
}

std::string CsvLine(const auto& cells) {
  std::string line;
  for (const auto& cell : cells) {
    AddListed(line, ",", CsvCell(std::string{cell}));
  }
  return line + "\n";
}

std::string CsvText(const std::vector<Operation>& operations) {
  auto text = CsvLine(columns);
  for (const auto& operation : operations) {
    text += CsvLine(RowOf(operation));
  }
  return text;
}

Json OperationJson(const Operation& operation) {
  const auto row = RowOf(operation);
  Json json;
  for (std::size_t column = 0; column < columns.size(); ++column) {
    json[std::string{columns[column]}] = JsonOf(row[column]);
  }
  json["operation"] = operation.Number();
  if (const auto about = operation.Begun->About; about != 0) {
    json["about"] = about;
  }
  return json;
}

void ListOperations(Workplace& work, const History& history) {
  const auto operations = history.Operations();
  std::vector<TextRow> rows;
  for (const auto& operation : operations) {
    auto row = RowOf(operation);
    std::ranges::transform(row, row.begin(), [](const auto& cell) { return Printable(cell); });
    rows.push_back({row[0], row[1], row[2], row[3], row[4], row[6]});
    work.Result.More["operations"].push_back(OperationJson(operation));
  }
  work.Result.Counts.emplace_back("operations", operations.size());
  if (work.Options.PrintsCsv) {
    work.Out.Print(CsvText(operations));
  } else {
    const bool isNew = rows.empty() && history.Damage().empty();
    work.Out.Print(isNew ? "The history has no operation yet.\n" : ColumnsText(rows, 0));
  }
}

void AddFact(std::vector<TextRow>& rows, std::string_view name, std::string_view text) {
  if (!text.empty()) {
    rows.push_back({std::string{name}, Printable(text)});
  }
}

std::vector<TextRow> FactsOf(const Operation& operation) {
  const auto& begun = *operation.Begun;
  std::vector<TextRow> rows;
  AddFact(rows, "operation", Joined(std::to_string(operation.Number()), ", ", begun.Action));
  AddFact(rows, "about", begun.About == 0 ? "" : Joined("operation ", std::to_string(begun.About)));
  AddFact(rows, "outcome", OutcomeOfOperation(operation));
  AddFact(rows, "begun", begun.Time);
  if (operation.Ended != nullptr) {
    AddFact(rows, "ended", operation.Ended->Time);
    AddFact(rows, "end seen by", operation.Ended->Person == begun.Person ? "" : operation.Ended->Person);
  }
  AddFact(rows, "person", begun.Person);
  AddFact(rows, "machine", begun.Machine);
  AddFact(rows, "reason", begun.Reason);
  AddFact(rows, "program", Joined(begun.Program, " ", begun.Version));
  AddFact(rows, "link", begun.Link);
  AddFact(rows, "instrument", begun.Instrument);
  for (const auto& objection : begun.Objections) {
    AddFact(rows, "let pass", ObjectionText(objection));
  }
  const auto& last = operation.Ended != nullptr ? *operation.Ended : begun;
  for (const auto& file : last.OtherFiles) {
    AddFact(rows, "file", file.Path);
  }
  AddFact(rows, "counts", CountsText({last.Counts.begin(), last.Counts.end()}));
  return rows;
}

std::string Cell(const std::optional<std::string>& text) {
  return text ? Printable(*text) : "-";
}

std::string RoundTripText(const std::vector<ReportedValue>& values) {
  std::vector<TextRow> rows{{"value", "found", "to be sent"}};
  for (const auto& value : values) {
    rows.push_back({Printable(value.Key), Cell(value.Found), Cell(value.Sent)});
  }
  return ColumnsText(rows);
}

// The boxes, the verdict on each value, and what got lost on the way, as they were kept.
void ShowDetails(Workplace& work, const OperationDetails& details) {
  for (const auto& [title, text, answer] : details.Boxes) {
    work.Out.Print(Joined("box: ", OneLine(Joined(title, ": ", text)), " [", Printable(answer), "]\n"));
  }
  std::vector<TextRow> rows{{"value", "found", "sent", "left", "verdict", "cause"}};
  for (const auto& value : details.Values) {
    rows.push_back({Printable(value.Key), Cell(value.Found), Cell(value.Sent), Cell(value.Left),
                    Printable(value.Verdict), Printable(value.Cause)});
  }
  work.Out.Print(rows.size() > 1 ? ColumnsText(rows) : std::string{});
  if (!details.RoundTrip.empty()) {
    work.Out.Print(Joined("an upload would have changed afterwards:\n", RoundTripText(details.RoundTrip)));
  }
  work.Result.Boxes = details.Boxes;
  work.Result.RoundTrip = details.RoundTrip;
  work.Result.Values = details.Values;
}

void ShowOperation(Workplace& work, const std::string& number) {
  auto history = ReadHistory(work);
  const auto operation = OperationNamed(history, number);
  work.Out.Print(ColumnsText(FactsOf(operation), 0));
  work.Result.More["operation"] = OperationJson(operation);
  work.Result.Objections = operation.Begun->Objections;
  for (const auto& [name, count] : (operation.Ended != nullptr ? operation.Ended : operation.Begun)->Counts) {
    work.Result.Counts.emplace_back(name, static_cast<std::size_t>(count));
  }
  if (operation.Ended == nullptr || operation.Ended->Details.empty()) {
    return;
  }
  const auto kept = history.Object(operation.Ended->Details);
  if (const auto details = kept ? FromJson<OperationDetails>(*kept) : std::nullopt) {
    ShowDetails(work, *details);
  } else {
    work.Out.Error("the verdicts are lost: the history no longer holds what it kept of them");
    work.Result.Worsen(exit_status::notDone);
  }
}

// ---- audit ----

std::vector<Checkpoint> CheckpointsOf(Workplace& work, const std::string& name) {
  const auto bytes = ReadFile(work.Files, AbsolutePath(name));
  if (StateOfSeal(bytes, backupSeal) == SealState::Broken) {
    throw UsageError{
        Joined(Quoted(name), " has changed since it was exported, so its checkpoint proves nothing")};
  }
  const auto record = LooksLikeRecord(bytes) ? std::optional{RecordIn(bytes, name)} : std::nullopt;
  auto checkpoints = CheckpointsIn(record ? BareJsonText(JsonOf(record->Checkpoint)) : bytes);
  if (checkpoints.empty()) {
    throw UsageError{Joined(Quoted(name), " holds no checkpoint")};
  }
  return checkpoints;
}

void AuditHistory(Workplace& work, const Words& more) {
  auto files = work.Options.Against;
  files.insert(files.end(), more.begin(), more.end());
  std::vector<Checkpoint> against;
  for (const auto& file : files) {
    std::ranges::copy(CheckpointsOf(work, file), std::back_inserter(against));
  }
  const auto history = OpenHistory(work);
  if (against.empty() && !history.Exists() && history.Damage().empty()) {
    throw UsageError{"there is no history yet: the first operation of zolvane begins it"};
  }
  const auto audit = Audit(work.Files, work.Options.Folder, against);
  const bool isGood = audit.IsIntact && audit.IsComplete && (against.empty() || audit.IsAnchored);
  const auto yesOrNo = [](bool is) { return std::string{is ? "yes" : "no"}; };
  work.Out.Print(ColumnsText(
      {{"intact", yesOrNo(audit.IsIntact)},
       {"complete", yesOrNo(audit.IsComplete)},
       {"anchored up to", audit.AnchoredUpTo == 0 ? "nothing" : std::to_string(audit.AnchoredUpTo)}},
      0));
  for (const auto& note : audit.Notes) {
    work.Out.Note(note);
  }
  for (const auto& problem : audit.Problems) {
    work.Out.Error(problem);
  }
  work.Result.More["audit"] = {{"intact", audit.IsIntact},     {"complete", audit.IsComplete},
                               {"anchored", audit.IsAnchored}, {"anchored_up_to", audit.AnchoredUpTo},
                               {"problems", audit.Problems},   {"notes", audit.Notes}};
  work.Result.Worsen(isGood ? exit_status::done : exit_status::notDone);
}

}  // namespace

void ShowHistory(Workplace& work, const Words& words) {
  if (words.size() > 1 && words[1] == "audit") {
    AuditHistory(work, {words.begin() + 2, words.end()});
    return;
  }
  if (words.size() == 3 && words[1] == "show") {
    ShowOperation(work, words[2]);
    return;
  }
  if (words.size() > 1) {
    throw UsageError{"history is used as: history, history show N, or history audit [--against FILE...]"};
  }
  const auto history = ReadHistory(work);
  ListOperations(work, history);
  work.Result.Checkpoint = history.LastCheckpoint();
}

}  // namespace zolvane
