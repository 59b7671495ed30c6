// What the user does on the page, as commands.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "operations/page_port.h"
#include "page/page_controls.h"

namespace zolvane {

enum class ActionKind : std::uint8_t { ShowPage, PressButton, SelectEntry, SetCheck, ShowScript };

struct Action {
  ActionKind Kind = ActionKind::ShowPage;
  std::string Command{};              // as it was written, for messages and results
  std::string Place{};                // "job.txt, line 3"; empty on the command line
  int Button = 0;                     // of PressButton; any number
  ListControl List{};                 // of SelectEntry
  std::string Entry{};                // of SelectEntry: a text, or a position as "#0"
  CheckControl Box{};                 // of SetCheck
  int Value = untickedValue;          // of SetCheck
  std::optional<std::string> File{};  // what a file dialogue answers, absolute; nothing cancels it

  // The beginning of each message about it.
  std::string At() const { return Place.empty() ? std::string{} : Place + ": "; }
};

// The words are the command that runs a file; the second word names the file. They are not empty. Throws
// UsageError if they are no command, or have too few or too many arguments.
bool RunsFile(const std::vector<std::string>& words);

// What any other command does. `file` is the value of --file, if there is one. Throws UsageError.
Action MakeAction(const std::vector<std::string>& words, const std::optional<std::string>& file);

// The commands, a line each, for the help.
std::string ActionsHelpText();

// How one command is used, with an example. Throws UsageError if there is no such command.
std::string ActionHelpText(std::string_view command);

}  // namespace zolvane
