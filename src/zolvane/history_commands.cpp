#include "zolvane/history_commands.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "custody/history/audit.h"
#include "custody/record/record.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"
#include "zolvane/operations/custody.h"
#include "zolvane/work/actions.h"
#include "zolvane/work/printing.h"
#include "zolvane/work/sides.h"

namespace zolvane {
namespace {

std::string OutcomeOfOperation(const Operation& operation) {
  return operation.Ended == nullptr                   ? "not_ended"
         : operation.Begun->Action == action::outside ? "seen"
                                                      : operation.Ended->Outcome;
}

// One row for an operation, in the order of the heading.
constexpr std::string_view listHeading =
    "operation,time,action,outcome,person,machine,reason,instrument,link";

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
    text.insert(0, "'");
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

std::string CsvText(const std::vector<Operation>& operations) {
  std::string text = Joined(listHeading, "\n");
  for (const auto& operation : operations) {
    std::string line;
    for (auto& cell : RowOf(operation)) {
      line.append(line.empty() ? "" : ",").append(CsvCell(std::move(cell)));
    }
    text.append(line).append("\n");
  }
  return text;
}

Json OperationJson(const Operation& operation) {
  const auto& begun = *operation.Begun;
  Json json{{"operation", operation.Number()},
            {"time", begun.Time},
            {"action", begun.Action},
            {"outcome", OutcomeOfOperation(operation)},
            {"person", begun.Person}};
  if (!begun.Reason.empty()) {
    json["reason"] = begun.Reason;
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

// Whatever stops a reader.
void TellDamage(Workplace& work, const History& history) {
  if (history.IsTorn()) {
    work.Out.Note("the last line of the journal was not written to its end; it is no entry");
  }
  if (!history.Damage().empty()) {
    work.Out.Error(Joined("the history is damaged: ", history.Damage()));
    work.Result.Worsen(exit_status::notDone);
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
  AddFact(rows, "outcome", OutcomeOfOperation(operation));
  AddFact(rows, "begun", begun.Time);
  AddFact(rows, "ended", operation.Ended != nullptr ? operation.Ended->Time : "");
  AddFact(rows, "person", begun.Person);
  AddFact(rows, "machine", begun.Machine);
  AddFact(rows, "reason", begun.Reason);
  AddFact(rows, "program", Joined(begun.Program, " ", begun.Version));
  AddFact(rows, "link", begun.Link);
  AddFact(rows, "instrument", begun.Instrument);
  for (const auto& objection : begun.Objections) {
    AddFact(rows, "let pass",
            Joined(objection.Code, ": expected ", objection.Expected, ", but ", objection.Actual));
  }
  for (const auto& file : begun.OtherFiles) {
    AddFact(rows, "file", file.Path);
  }
  return rows;
}

// The verdict on each value, as it was kept.
void ShowDetails(Workplace& work, const std::string& details) {
  const auto json = Json::parse(details, nullptr, false);
  if (!json.is_object() || !json.contains("values") || !json["values"].is_array()) {
    return;
  }
  std::vector<TextRow> rows{{"value", "found", "sent", "left", "verdict"}};
  const auto cell = [](const Json& value, const char* member) {
    return value.is_object() && value.contains(member) && value[member].is_string()
               ? Printable(value[member].get<std::string>())
               : std::string{"-"};
  };
  for (const auto& value : json["values"]) {
    rows.push_back({cell(value, "key"), cell(value, "found"), cell(value, "sent"), cell(value, "left"),
                    cell(value, "verdict")});
  }
  work.Result.More["values"] = json["values"];
  work.Out.Print(ColumnsText(rows));
}

void ShowOperation(Workplace& work, const std::string& number) {
  auto history = ReadHistory(work);
  const auto operation = OperationNamed(history, number);
  work.Out.Print(ColumnsText(FactsOf(operation), 0));
  work.Result.More["operation"] = OperationJson(operation);
  if (operation.Ended == nullptr || operation.Ended->Details.empty()) {
    return;
  }
  if (const auto details = history.Object(operation.Ended->Details)) {
    ShowDetails(work, *details);
  } else {
    work.Out.Error(Joined("the verdicts are lost: ", history.FailureReason()));
    work.Result.Worsen(exit_status::notDone);
  }
}

// ---- audit ----

std::vector<Checkpoint> CheckpointsOf(Workplace& work, const std::string& name) {
  const auto bytes = ReadFile(work.Files, AbsolutePath(name));
  std::vector<Checkpoint> checkpoints;
  if (LooksLikeRecord(bytes)) {
    const auto record = ReadRecord(bytes);
    if (!record.Content) {
      throw UsageError{Joined(Quoted(name), " ", record.Refusal)};
    }
    std::string lines;
    for (const auto& line : record.Content->Checkpoint) {
      lines += Joined(line, "\n");
    }
    checkpoints = CheckpointsIn(lines);
  } else {
    checkpoints = CheckpointsIn(bytes);
  }
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
  TellDamage(work, history);
  work.Result.Checkpoint = history.LastCheckpoint();
}

}  // namespace zolvane
