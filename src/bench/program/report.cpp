#include "bench/program/report.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <string_view>

#include "bench/host/outcome.h"
#include "bench/job/box_answers.h"
#include "text/joined.h"
#include "text/json_text.h"

namespace zolvane {
namespace {

Json OrNull(const auto& value) {
  return value ? Json(*value) : Json(nullptr);
}

Json ListJson(const ListModel& list) {
  Json entries = Json::array();
  for (const auto& entry : list.Entries) {
    entries.push_back(EntryJson(entry));
  }
  return {{"entries", entries},
          {"selected", list.Selected},
          {"enabled", list.Enabled},
          {"back_color", list.BackColour}};
}

Json MessagesJson(const std::vector<ShownMessage>& messages) {
  Json list = Json::array();
  for (const auto& message : messages) {
    list.push_back(
        {{"title", message.Title}, {"text", message.Text}, {"answer", ButtonName(message.Answer)}});
  }
  return list;
}

Json HeadJson(const ActionResult& result) {
  return {{"command", result.Request.Command}, {"exit_status", ExitStatusOf(result.Tally)}};
}

Json FirstRefusedJson(const CommandTally& commands) {
  const auto& first = commands.FirstRefused;
  return first ? Json{{"key", first->Key}, {"reply", first->Reply}} : Json(nullptr);
}

Json CommandsJson(const CommandTally& commands) {
  return {{"commands", commands.Total()},
          {"commands_sent", commands.Sent},
          {"commands_accepted", commands.Accepted},
          {"commands_refused", commands.Refused},
          {"commands_not_answered", commands.NotAnswered},
          {"commands_not_sent", commands.NotSent()},
          {"first_refused", FirstRefusedJson(commands)},
          {"first_not_answered", OrNull(commands.FirstNotAnswered)},
          {"link_problem", OrNull(commands.FirstProblem)},
          {"skipped_line", OrNull(commands.FirstSkippedLine)},
          {"save_sent", commands.IsSaveSent},
          {"save_accepted", commands.IsSaveAccepted}};
}

Json OperationJson(const ActionResult& result) {
  const auto& tally = result.Tally;
  Json json = HeadJson(result);
  json["outcome"] = RowOf(OutcomeOf(tally)).Name;
  json.update(CommandsJson(tally.Commands));
  json["values_written"] = tally.ValuesWritten;
  json["values_changed"] = tally.ValuesChanged;
  json["writes_failed"] = tally.WritesFailed;
  json["reads_failed"] = tally.ReadsFailed;
  json["characters_lost"] = tally.CharactersLost;
  json["file"] = OrNull(tally.ChosenFile);
  json["messages"] = MessagesJson(tally.Messages);
  return json;
}

Json ResultJson(const ActionResult& result) {
  Json json = result.Page || result.Script ? HeadJson(result) : OperationJson(result);
  if (result.Page) {
    json.update(PageJson(*result.Page));
  }
  if (result.Script) {
    json["lines"] = *result.Script;
  }
  return json;
}

// In UTC, to the second: "2026-03-01T07:05:09Z".
std::string IsoTime(std::chrono::system_clock::time_point time) {
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date{day};
  const std::chrono::hh_mm_ss clock{std::chrono::floor<std::chrono::seconds>(time - day)};
  const auto twoDigits = [](auto number) {
    const auto digits = std::to_string(number);
    return digits.size() < 2 ? "0" + digits : digits;
  };
  return Joined(std::to_string(static_cast<int>(date.year())), "-",
                twoDigits(static_cast<unsigned>(date.month())), "-",
                twoDigits(static_cast<unsigned>(date.day())), "T", twoDigits(clock.hours().count()), ":",
                twoDigits(clock.minutes().count()), ":", twoDigits(clock.seconds().count()), "Z");
}

}  // namespace

Json PageJson(const ShownPage& shown) {
  Json lists;
  for (std::size_t row = 0; row < listRows.size(); ++row) {
    lists[listRows[row].Name] = ListJson(shown.Page.Lists[row]);
  }
  Json checks;
  for (std::size_t row = 0; row < checkRows.size(); ++row) {
    checks[checkRows[row].Name] = {{"value", shown.Page.Checks[row].Value},
                                   {"enabled", shown.Page.Checks[row].Enabled}};
  }
  Json buttons = Json::array();
  for (std::size_t row = 0; row < buttonRows.size(); ++row) {
    buttons.push_back({{"caption", buttonRows[row].Caption}, {"enabled", shown.Page.ButtonsEnabled[row]}});
  }
  return {{"caption", shown.Caption},
          {"lists", lists},
          {"checks", checks},
          {"labels", {{titleLabel.Name, titleLabel.Caption}, {pumpLabel.Name, shown.Page.PumpText}}},
          {"buttons", buttons},
          {"status", shown.Status},
          {"changed", OrNull(shown.Changed)}};
}

Json ReportJson(const RunReport& report) {
  if (!report.IsRun && report.Results.size() == 1) {
    if (const auto& page = report.Results.front().Page) {
      return PageJson(*page);
    }
  }
  constexpr int schema = 1;
  Json actions = Json::array();
  for (const auto& result : report.Results) {
    actions.push_back(ResultJson(result));
  }
  return {{"schema", schema},
          {"version", report.Version},
          {"folder", report.Folder},
          {"link", report.Link},
          {"started", IsoTime(report.Started)},
          {"duration_ms", report.Duration.count()},
          {"exit_status", report.ExitStatus},
          {"actions", actions},
          {"not_begun", report.NotBegun}};
}

}  // namespace zolvane
