#include "bench/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <string_view>

#include "bench/actions.h"
#include "bench/answers.h"
#include "bench/printable.h"
#include "bench/empty_values.h"
#include "bench/joined.h"
#include "bench/paths.h"
#include "bench/usage_error.h"
#include "bench/version.h"

namespace zolvane {
namespace {

constexpr std::string_view purpose =
    "Hosts the Zolvane setup add-in without the Hestrion application and plays one whole host session:\n"
    "load the page, do what COMMAND says, save, detach.";

constexpr std::string_view answersHelp =
    "Message boxes with a choice are answered by --answer, then by --yes, then by the user at the terminal, "
    "and\n"
    "without a terminal with Cancel or No. A box with OK alone is always answered OK.";

constexpr std::string_view statusHelp =
    "Exit status: 0 done; 1 a command was not answered or not accepted, a value could not be stored, or the "
    "user\n"
    "cancelled, stopped or was refused; 2 the command line, the folder or a file named on it is unusable.";

// A row of the help: what is typed, and what it does.
std::string HelpRow(std::string_view typed, std::string_view effect) {
  constexpr std::size_t column = 24;
  std::string row = Joined("  ", typed);
  row.append(row.size() < column ? column - row.size() : 2, ' ');
  return row.append(effect).append("\n");
}

class HelpText final : public CLI::Formatter {
 public:
  std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode) const override {
    std::string text = "Usage: " + (name.empty() ? std::string{"zolvane-bench"} : std::move(name)) +
                       " [OPTIONS] COMMAND [ARGUMENTS]\n\n";
    text.append(purpose).append("\n\nCommands:\n");
    for (const auto& [command, effect] : CommandsHelp()) {
      text += HelpRow(command, effect);
    }
    text += "\nOptions:\n";
    for (const auto* option : app->get_options()) {
      if (!option->get_positional()) {
        text += OptionRow(*option);
      }
    }
    return text.append("\n").append(answersHelp).append("\n\n").append(statusHelp).append("\n");
  }

 private:
  // A description of several lines goes on under its first.
  static std::string OptionRow(const CLI::Option& option) {
    const auto typed = option.get_name(false, true);
    std::string row;
    std::string_view rest = option.get_description();
    while (!rest.empty()) {
      const auto end = rest.find('\n');
      row +=
          HelpRow(row.empty() ? (option.get_type_size() == 0 ? typed : typed + " " + option.get_type_name())
                              : std::string{},
                  rest.substr(0, end));
      rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return row;
  }
};

double ParseTimeout(const std::string& text) {
  constexpr double longest = 1e6;
  double seconds = 0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), seconds);
  const bool isNumber = parsed.ec == std::errc{} && parsed.ptr == text.data() + text.size();
  if (!isNumber || !(seconds > 0) || seconds > longest) {
    throw UsageError{
        Joined("--timeout takes a number of seconds greater than 0 (0.5, 10), not ", Quoted(text))};
  }
  return seconds;
}

std::string ParseFolder(const std::string& text) {
  if (text.empty()) {
    throw UsageError{"--folder: the name of the folder is empty"};
  }
  return AbsolutePath(text);
}

// One more than any command has. Each is an option of its own because one option for all would take a word
// such as
// "[a,b]" apart.
constexpr std::array<const char*, 4> wordNames{"COMMAND", "FIRST", "SECOND", "THIRD"};

// The texts as they were typed; what they mean is looked at when the whole line has been understood.
struct TypedOptions {
  std::string Folder = ".";
  std::string Timeout = "5";
  std::vector<std::string> Answers;
  std::string Trace;
  std::string File;
  std::array<std::string, wordNames.size()> Words;
};

CLI::Option* AddText(CLI::App& app, const std::string& name, std::string& target, const std::string& argument,
                     const std::string& description) {
  return app.add_option(name, target, description)->type_name(argument);
}

void AddValueOptions(CLI::App& app, TypedOptions& typed, Options& options) {
  AddText(app, "--folder", typed.Folder, "DIR",
          "the program folder, which holds Zolvane.ini (default: the current folder)");
  AddText(app, "--link", options.Link, "LINK",
          "the instrument (default: sim):\n"
          "sim                    simulated inside the process\n"
          "sim:FILE               the same, its memory kept in FILE\n"
          "tcp:HOST:PORT          behind a TCP socket\n"
          "serial:DEVICE[,BAUD]   on a serial port or a pseudo-terminal\n"
          "script:FILE            replies out of a JSON file\n"
          "none                   no instrument: every command fails");
  AddText(app, "--timeout", typed.Timeout, "SECONDS",
          "how long a command waits for its reply (default: 5; a fraction is allowed)");
  app.add_option("--answer", typed.Answers, "answers to the boxes, in their order: ok, cancel, yes, no")
      ->type_name("A,B,...")
      ->allow_extra_args(false);
  AddText(app, "--file", typed.File, "FILE", "with press: what a file dialogue answers");
  AddText(app, "--trace", typed.Trace, "FILE",
          "write every interaction as JSON Lines to FILE (- is standard output)");
}

void AddFlags(CLI::App& app, Options& options) {
  app.add_flag("--trace-reads", options.TracesReads, "let the trace hold the reads of settings too");
  app.add_flag("--yes", options.AffirmsRest, "answer every box with OK or Yes once --answer has run out");
  app.add_flag("--host-dialog", options.OffersHostDialog, "let the host offer its own message dialogue");
  app.add_flag("--json", options.PrintsJson, "print results as one JSON document");
  app.add_flag("--keep-going", options.KeepsGoing, "with run: go on behind a command that failed");
  app.add_flag("--quiet", options.IsQuiet, "print errors and warnings only");
}

// Several lists are one.
std::vector<std::int32_t> ParseAnswerLists(const std::vector<std::string>& lists) {
  std::vector<std::int32_t> answers;
  for (const auto& list : lists) {
    std::ranges::copy(ParseAnswers(list), std::back_inserter(answers));
  }
  return answers;
}

void TakeTyped(const CLI::App& app, const TypedOptions& typed, Options& options) {
  const auto isGiven = [&app](const char* name) { return app.get_option(name)->count() > 0; };
  options.Folder = ParseFolder(typed.Folder);
  options.TimeoutSeconds = ParseTimeout(typed.Timeout);
  options.Answers = ParseAnswerLists(app.get_option("--answer")->results());
  if (isGiven("--trace")) {
    if (typed.Trace.empty()) {
      throw UsageError{"--trace: the name of the file is empty"};
    }
    options.Trace = typed.Trace;
  }
  if (isGiven("--file")) {
    options.File = typed.File;
  }
  for (const auto* name : wordNames) {
    const auto& words = app.get_option(name)->results();
    options.Command.insert(options.Command.end(), words.begin(), words.end());
  }
}

}  // namespace

std::variant<Options, Information> ParseOptions(std::vector<std::string> arguments) {
  Options options;
  TypedOptions typed;
  CLI::App app;
  app.formatter(std::make_shared<HelpText>());
  app.set_help_flag("-h,--help", "print this help");
  app.set_version_flag("--version", std::string{programVersion}, "print the version");
  AddValueOptions(app, typed, options);
  AddFlags(app, options);
  for (std::size_t index = 0; index < typed.Words.size(); ++index) {
    app.add_option(wordNames[index], typed.Words[index]);
  }
  arguments = WithEmptyValues(arguments);
  std::ranges::reverse(arguments);
  try {
    app.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    return Information{app.help()};
  } catch (const CLI::CallForVersion&) {
    return Information{std::string{programVersion} + "\n"};
  } catch (const CLI::ParseError& error) {
    throw UsageError{Joined(OneLine(error.what()), "; see zolvane-bench --help")};
  }
  TakeTyped(app, typed, options);
  return options;
}

}  // namespace zolvane
