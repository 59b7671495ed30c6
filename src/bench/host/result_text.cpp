#include "bench/host/result_text.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "bench/host/outcome.h"
#include "text/counted.h"
#include "text/joined.h"
#include "text/printable.h"

namespace zolvane {
namespace {

std::string Padded(std::string_view text, std::size_t width) {
  std::string padded{text};
  padded.resize(std::max(width, padded.size()), ' ');
  return padded;
}

constexpr std::size_t nameWidth = 16;

// Columns, without trailing blanks.
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

// A reply as part of a sentence, shortened if it is long.
std::string QuotedReply(std::string_view reply) {
  constexpr std::size_t mostShown = 60;
  return reply.size() <= mostShown ? Quoted(reply) : Quoted(reply.substr(0, mostShown)) + "...";
}

std::string FirstRefused(const CommandTally& commands) {
  const auto first = commands.FirstRefused.value_or(RefusedCommand{});
  return Joined("first ", Printable(first.Key), " with ", QuotedReply(first.Reply));
}

std::string FirstNotAnswered(const CommandTally& commands) {
  return Joined("first ", Printable(commands.FirstNotAnswered.value_or(std::string{})));
}

std::string SkippedText(std::string_view line) {
  return Joined("skipped the line ", QuotedReply(line));
}

std::string OfAll(std::size_t number, const CommandTally& commands) {
  return Joined(std::to_string(number), " of ", CountOf(commands.Total(), "command"));
}

std::string SaveText(const CommandTally& commands) {
  return Joined("SAVE ", commands.IsSaveAccepted ? "accepted"
                         : commands.IsSaveSent   ? "not accepted"
                                                 : "not sent");
}

// What went over the link.
std::vector<std::string> CommandTexts(const CommandTally& commands) {
  if (commands.Total() == 0) {
    return {};
  }
  std::vector<std::string> texts{OfAll(commands.Sent, commands) + " sent",
                                 std::to_string(commands.Accepted) + " accepted"};
  if (commands.Refused > 0) {
    texts.push_back(Joined(std::to_string(commands.Refused), " refused, ", FirstRefused(commands)));
  }
  if (commands.NotAnswered > 0) {
    texts.push_back(
        Joined(std::to_string(commands.NotAnswered), " not answered, ", FirstNotAnswered(commands)));
  }
  if (commands.FirstProblem) {
    texts.push_back(Printable(*commands.FirstProblem));
  }
  if (commands.FirstSkippedLine) {
    texts.push_back(SkippedText(*commands.FirstSkippedLine));
  }
  if (commands.NotSent() > 0) {
    texts.push_back(std::to_string(commands.NotSent()) + " not sent");
  }
  if (commands.ExpectsSave) {
    texts.push_back(SaveText(commands));
  }
  return texts;
}

// What went over the link and into the files; empty if nothing did.
std::string Balance(const ActionTally& tally) {
  auto texts = CommandTexts(tally.Commands);
  if (tally.ValuesWritten > 0) {
    texts.push_back(Joined(CountOf(tally.ValuesWritten, "value"), " written, ",
                           std::to_string(tally.ValuesChanged), " changed"));
  }
  if (tally.WritesFailed > 0) {
    texts.push_back(CountOf(tally.WritesFailed, "value") + " not written");
  }
  if (tally.ReadsFailed > 0) {
    texts.push_back(CountOf(tally.ReadsFailed, "value") + " not read");
  }
  if (tally.CharactersLost > 0) {
    texts.push_back(CountOf(tally.CharactersLost, "character") + " written as \"?\"");
  }
  std::string all;
  for (const auto& text : texts) {
    all.append(all.empty() ? " (" : "; ").append(text);
  }
  return all.empty() ? all : all + ")";
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
  return Joined(Printable(result.Request.Command), ": ", RowOf(OutcomeOf(result.Tally)).Name,
                Balance(result.Tally), "\n");
}

std::vector<std::string> ReasonsOf(const ActionTally& tally) {
  const auto& commands = tally.Commands;
  std::vector<std::string> reasons;
  if (commands.NotAnswered > 0) {
    reasons.push_back(
        Joined(OfAll(commands.NotAnswered, commands), " not answered, ", FirstNotAnswered(commands)));
  }
  if (commands.NotAnswered > 0 && commands.FirstSkippedLine) {
    reasons.push_back(SkippedText(*commands.FirstSkippedLine));
  }
  if (commands.IsFailedByReplies()) {
    reasons.push_back(Joined(OfAll(commands.Refused, commands), " refused, ", FirstRefused(commands)));
  }
  if (tally.WasStopped || commands.Undelivered > 0) {
    reasons.push_back(
        Joined(tally.WasStopped ? "stopped, " : "", OfAll(commands.NotSent(), commands), " not sent"));
  }
  return reasons;
}

std::string NotBegunText(std::string_view why, std::span<const Action> notBegun, std::size_t all) {
  constexpr std::size_t mostNamed = 50;
  std::string text =
      Joined(why, ": ", std::to_string(notBegun.size()), " of ", CountOf(all, "command"), " not begun: ");
  const auto named = notBegun.first(std::min(notBegun.size(), mostNamed));
  for (const auto& action : named) {
    text.append(&action == named.data() ? "" : "; ").append(Printable(action.Command));
  }
  const auto more = notBegun.size() - named.size();
  return more == 0 ? text : Joined(text, "; and ", std::to_string(more), " more");
}

}  // namespace zolvane
