#include "bench/report.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <string_view>

#include "bench/answers.h"
#include "bench/console.h"
#include "bench/joined.h"
#include "bench/json_text.h"

namespace zolvane {
namespace {

using Json = nlohmann::ordered_json;

Json OrNull(const auto& value) {
  return value ? Json(*value) : Json(nullptr);
}

// ---- For programs ----

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

Json MessagesJson(const std::vector<ShownMessage>& messages) {
  Json list = Json::array();
  for (const auto& message : messages) {
    list.push_back(
        {{"title", message.Title}, {"text", message.Text}, {"answer", ButtonName(message.Answer)}});
  }
  return list;
}

Json HeadJson(const ActionResult& result) {
  return {{"command", result.Request.Command}, {"exit_status", ExitStatusOf(result.Happened)}};
}

Json OperationJson(const ActionResult& result) {
  const auto& happened = result.Happened;
  Json json = HeadJson(result);
  json["outcome"] = OutcomeOf(happened);
  json["commands_sent"] = happened.CommandsSent;
  json["commands_failed"] = happened.CommandsFailed;
  json["unknown_keys"] = happened.UnknownKeys;
  json["values_written"] = happened.ValuesWritten;
  json["writes_failed"] = happened.WritesFailed;
  json["file"] = OrNull(happened.ChosenFile);
  json["messages"] = MessagesJson(happened.Messages);
  return json;
}

// A page alone is printed as it is; among others it says first that it is a page.
Json ResultJson(const ActionResult& result, bool isRun) {
  if (result.Page) {
    Json json = isRun ? HeadJson(result) : Json::object();
    json.update(PageJson(*result.Page));
    return json;
  }
  if (result.Script) {
    Json json = HeadJson(result);
    json["lines"] = *result.Script;
    return json;
  }
  return OperationJson(result);
}

// ---- For people ----

std::string Padded(std::string_view text, std::size_t width) {
  std::string padded{text};
  padded.resize(std::max(width, padded.size()), ' ');
  return padded;
}

constexpr std::size_t nameWidth = 16;

// Columns, without blanks behind the last one that says something.
std::string Line(std::string_view name, std::string_view label, std::string_view value, bool isEnabled) {
  constexpr std::size_t labelWidth = 32;
  auto line = Joined("  ", Padded(name, nameWidth), Padded(label, labelWidth), Printable(value),
                     std::string_view{isEnabled ? "" : "  (disabled)"});
  line.resize(line.find_last_not_of(' ') + 1);
  return line + "\n";
}

std::string_view SelectedText(const ListModel& list) {
  const auto index = static_cast<std::size_t>(list.Selected);
  return list.Selected == noSelection ? std::string_view{"-"} : list.Entries[index].Text;
}

std::string ListText(const ListRow& row, const ListModel& list) {
  std::string text = Line(row.Name, row.Label, SelectedText(list), list.Enabled);
  for (std::size_t index = 0; index < list.Entries.size(); ++index) {
    const bool isSelected = list.Selected == static_cast<int>(index);
    const auto number = Joined("#", std::to_string(index));
    text += Joined("    ", std::string_view{isSelected ? "> " : "  "}, Padded(number, 5),
                   Printable(list.Entries[index].Text), "\n");
  }
  return text;
}

// By the value of a check box.
constexpr std::array<std::string_view, greyValue + 1> checkWords{"[ ]", "[x]", "[-]"};

std::string PageText(const ShownPage& shown) {
  const auto& page = shown.Page;
  std::string text = Joined(shown.Caption, "\n\n", settingsFrame.Caption, "\n");
  for (std::size_t row = 0; row < listRows.size(); ++row) {
    text += ListText(listRows[row], page.Lists[row]);
  }
  for (std::size_t row = 0; row < checkRows.size(); ++row) {
    text += Line(checkRows[row].Name, checkRows[row].Label,
                 checkWords.at(static_cast<std::size_t>(page.Checks[row].Value)), page.Checks[row].Enabled);
  }
  text += Line(pumpLabel.Name, pumpLabel.Caption, page.PumpText, true);
  const auto button = [&](int index) {
    const auto row = static_cast<std::size_t>(index);
    return Line(buttonRows[row].Name, buttonRows[row].Caption, "", page.ButtonsEnabled[row]);
  };
  text.append(button(queryButton)).append("\n").append(calibrationFrame.Caption).append("\n");
  for (const int index : {uploadButton, downloadButton, importButton, exportButton}) {
    text += button(index);
  }
  return shown.Status.empty() ? text : Joined(text, "\nStatus: ", Printable(shown.Status), "\n");
}

std::string Counted(std::size_t number, std::string_view thing) {
  return Joined(std::to_string(number), " ", thing, number == 1 ? "" : "s");
}

// What went over the link and into the files, as far as anything did.
std::string Balance(const Happenings& happened) {
  std::string text;
  const auto add = [&text](const std::string& part) { text.append(text.empty() ? " (" : ", ").append(part); };
  if (happened.CommandsSent > 0) {
    add(Counted(happened.CommandsSent, "command") + " sent");
  }
  if (happened.CommandsFailed > 0) {
    add(std::to_string(happened.CommandsFailed) + " not answered, first " +
        Quoted(happened.FirstFailedCommand));
  }
  if (happened.UnknownKeys > 0) {
    add(std::to_string(happened.UnknownKeys) + " answered SYNTAX_ERROR");
  }
  if (happened.ValuesWritten > 0) {
    add(Counted(happened.ValuesWritten, "value") + " written");
  }
  if (happened.WritesFailed > 0) {
    add(Counted(happened.WritesFailed, "value") + " not written");
  }
  return text.empty() ? text : text + ")";
}

std::string ScriptText(const std::vector<std::string>& lines) {
  std::string text;
  for (const auto& line : lines) {
    text.append(line).append("\n");
  }
  return text;
}

}  // namespace

std::string ResultText(const ActionResult& result) {
  if (result.Page) {
    return PageText(*result.Page);
  }
  if (result.Script) {
    return ScriptText(*result.Script);
  }
  return Joined(Printable(result.Request.Command), ": ", OutcomeOf(result.Happened), Balance(result.Happened),
                "\n");
}

Json ResultsJson(const std::vector<ActionResult>& results, bool isRun) {
  if (!isRun && results.size() == 1) {
    return ResultJson(results.front(), isRun);
  }
  Json list = Json::array();
  for (const auto& result : results) {
    list.push_back(ResultJson(result, isRun));
  }
  return list;
}

}  // namespace zolvane
