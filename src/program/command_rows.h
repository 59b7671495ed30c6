// What the programs' tables of commands have in common. A row is any structure with Name, Usage, Effect,
// LeastWords, MostWords, Example and Details.
#pragma once

#include <algorithm>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "program/command_line.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/suggestion.h"
#include "text/usage_error.h"

namespace zolvane {

// The command that asks for help.
inline constexpr std::string_view helpCommand = "help";

// Throws UsageError, with the name that was probably meant, if there is no such command.
template <class Rows>
const auto& CommandNamed(const Rows& rows, std::string_view name, std::string_view program) {
  const auto found = std::ranges::find_if(rows, [name](const auto& row) { return row.Name == name; });
  if (found != rows.end()) {
    return *found;
  }
  std::vector<std::string_view> names;
  std::ranges::transform(rows, std::back_inserter(names), [](const auto& row) { return row.Name; });
  const auto suggestion = DidYouMean(name, names);
  throw UsageError{Joined("there is no command ", Quoted(name),
                          suggestion.empty() ? Joined("; see ", program, " --help") : suggestion)};
}

// Throws UsageError if the command and its arguments are too few or too many.
template <class Row>
void DemandWords(const Row& row, const std::vector<std::string>& words) {
  if (words.size() < row.LeastWords || words.size() > row.MostWords) {
    const bool isShort = words.size() < row.LeastWords;
    throw UsageError{
        Joined(row.Name, " has too ", isShort ? "few" : "many", " arguments; it is used as: ", row.Usage)};
  }
}

template <class Rows>
std::string CommandsHelpText(const Rows& rows) {
  std::string text = "\nCommands:\n";
  for (const auto& row : rows) {
    text += HelpRow(row.Usage, row.Effect);
  }
  return text;
}

// How one command is used, with an example.
template <class Row>
std::string CommandHelpText(const Row& row, std::string_view program) {
  return Joined("Usage: ", program, " [OPTIONS] ", row.Usage, "\n\n  ", row.Effect, "\n\n", row.Details,
                "\nExample:\n  ", program, " ", row.Example, "\n\nThe options: ", program, " --help\n");
}

// What was asked for instead of a run, if anything: the help, the help on a command ("help COMMAND" and
// "COMMAND --help" are the same), or the version. Throws UsageError.
inline std::optional<std::string> InformationAskedFor(
    const CommandLine& line, CommandLine::Asked asked,
    const std::function<std::string(std::string_view command)>& helpOn) {
  auto words = line.Words();
  const bool isHelp = !words.empty() && words.front() == helpCommand;
  if (asked == CommandLine::Asked::Help || isHelp) {
    words.erase(words.begin(), words.begin() + (isHelp ? 1 : 0));
    return words.empty() ? line.HelpText() : helpOn(words.front());
  }
  return asked == CommandLine::Asked::Version ? std::optional{line.VersionText()} : std::nullopt;
}

}  // namespace zolvane
