#include "bench/program/options.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <utility>

#include "bench/job/actions.h"
#include "bench/job/box_answers.h"
#include "files/paths.h"
#include "instrument/links/link_factory.h"
#include "program/command_line.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

constexpr std::string_view purpose =
    "Hosts the Zolvane setup add-in without the Hestrion application and plays one whole host session:\n"
    "load the page, do what COMMAND says, save, detach.\n";

constexpr std::string_view answersHelp =
    "\nMessage boxes with a choice are answered by --answer, then by --yes, then by the user at the "
    "terminal, "
    "and\n"
    "without a terminal with Cancel or No. A box with OK alone is always answered OK.\n";

constexpr std::string_view statusHelp =
    "\nExit status: 0 done; 1 a command was not answered or not accepted, a value could not be stored, or "
    "the "
    "user\n"
    "cancelled, stopped or was refused; 2 the command line, the folder or a file named on it is unusable.\n";

std::string ParseFolder(const std::string& text) {
  if (text.empty()) {
    throw UsageError{"--folder: the name of the folder is empty"};
  }
  return AbsolutePath(text);
}

// Options as typed; they are interpreted once the whole line has been parsed.
struct TypedOptions {
  std::string Folder = ".";
  std::string Timeout = "5";
  std::vector<std::string> Answers;
};

void Describe(CommandLine& line, TypedOptions& typed, Options& options) {
  line.AddOption("--folder", "DIR", typed.Folder,
                 "the program folder, which holds Zolvane.ini (default: the current folder)");
  line.AddOption("--link", "LINK", options.Link, LinkHelp());
  line.AddOption("--timeout", "SECONDS", typed.Timeout,
                 "how long a command waits for its reply (default: 5; a fraction is allowed)");
  line.AddOption("--answer", "A,B,...", typed.Answers,
                 "answers to the boxes, in their order: ok, cancel, yes, no");
  line.AddFlag("--yes", options.AffirmsRest, "answer every box with OK or Yes once --answer has run out");
  line.AddFlag("--host-dialog", options.OffersHostDialog, "let the host offer its own message dialogue");
  line.AddOption("--file", "FILE", options.File, "with press: what a file dialogue answers");
  line.AddFlag("--replace", options.Replaces, "let export write into a file that exists; the add-in merges");
  line.AddOption("--trace", "FILE", options.Trace,
                 "write every interaction as JSON Lines to FILE (- is standard output)");
  line.AddFlag("--trace-reads", options.TracesReads, "let the trace hold the reads of settings too");
  line.AddFlag("--json", options.PrintsJson, "print results as one JSON document");
  line.AddFlag("--keep-going", options.KeepsGoing, "with run: go on behind a command that failed");
  line.AddFlag("--quiet", options.IsQuiet, "print errors and warnings only");
}

CommandLine::Help ProgramHelp() {
  std::string commands = "\nCommands:\n";
  for (const auto& [command, effect] : CommandsHelp()) {
    commands += HelpRow(command, effect);
  }
  return {.Program = "zolvane-bench",
          .Usage = "[OPTIONS] COMMAND [ARGUMENTS]",
          .Purpose = std::string{purpose},
          .BeforeOptions = std::move(commands),
          .AfterOptions = Joined(answersHelp, statusHelp)};
}

// Several lists count as one.
std::vector<std::int32_t> ParseAnswerLists(const std::vector<std::string>& lists) {
  std::vector<std::int32_t> answers;
  for (const auto& list : lists) {
    std::ranges::copy(ParseAnswers(list), std::back_inserter(answers));
  }
  return answers;
}

void TakeTyped(const TypedOptions& typed, Options& options) {
  options.Folder = ParseFolder(typed.Folder);
  options.TimeoutSeconds = ParseTimeout(typed.Timeout);
  options.Answers = ParseAnswerLists(typed.Answers);
  if (options.Trace && options.Trace->empty()) {
    throw UsageError{"--trace: the name of the file is empty"};
  }
}

// "help COMMAND" and "COMMAND --help" are the same.
std::string HelpOn(const CommandLine& line, std::vector<std::string> words) {
  if (!words.empty() && words.front() == helpCommand) {
    words.erase(words.begin());
  }
  return words.empty() ? line.HelpText() : CommandHelpText(words.front());
}

}  // namespace

double ParseTimeout(const std::string& text) {
  constexpr double longest = 1e6;
  double seconds = 0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), seconds);
  const bool isNumber = parsed.ec == std::errc{} && parsed.ptr == text.data() + text.size();
  if (!isNumber || !(seconds > 0) || seconds > longest) {
    throw UsageError{Joined("--timeout takes a number of seconds above 0 and up to 1000000 (0.5, 10), not ",
                            Quoted(text))};
  }
  return seconds;
}

std::string LinkHelp() {
  constexpr std::size_t width = 23;
  std::string text = "the instrument (default: sim):";
  for (const auto& [usage, effect] : LinkKindsHelp()) {
    text.append("\n").append(usage).append(width - usage.size(), ' ').append(effect);
  }
  return text;
}

std::variant<Options, Information> ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  TypedOptions typed;
  CommandLine line{ProgramHelp()};
  Describe(line, typed, options);
  const auto asked = line.Parse(arguments);
  const auto& words = line.Words();
  if (asked == CommandLine::Asked::Help || (!words.empty() && words.front() == helpCommand)) {
    return Information{HelpOn(line, words)};
  }
  if (asked == CommandLine::Asked::Version) {
    return Information{line.VersionText()};
  }
  TakeTyped(typed, options);
  options.Command = words;
  return options;
}

}  // namespace zolvane
