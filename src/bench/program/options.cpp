#include "bench/program/options.h"

#include <string_view>
#include <utility>

#include "bench/job/actions.h"
#include "program/command_line.h"
#include "program/command_rows.h"
#include "text/joined.h"

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

void DescribeOwn(CommandLine& line, Options& options) {
  line.AddFlag("--host-dialog", options.OffersHostDialog, "let the host offer its own message dialogue");
  line.AddOption("--file", "FILE", options.File, "with press: what a file dialogue answers");
  line.AddFlag("--replace", options.Replaces, "let export write into a file that exists; the add-in merges");
  line.AddFlag("--trace-reads", options.TracesReads, "let the trace hold the reads of settings too");
  line.AddFlag("--keep-going", options.KeepsGoing, "with run: go on behind a command that failed");
}

CommandLine::Help ProgramHelp() {
  return {.Program = "zolvane-bench",
          .Usage = "[OPTIONS] COMMAND [ARGUMENTS]",
          .Purpose = std::string{purpose},
          .BeforeOptions = ActionsHelpText(),
          .AfterOptions = Joined(answersHelp, statusHelp)};
}

}  // namespace

std::variant<Options, Information> ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  TypedSessionOptions typed{{}};
  CommandLine line{ProgramHelp()};
  typed.Describe(line, options);
  DescribeOwn(line, options);
  const auto asked = line.Parse(arguments);
  if (auto text = InformationAskedFor(line, asked, ActionHelpText)) {
    return Information{*std::move(text)};
  }
  typed.TakeInto(options);
  options.Command = line.Words();
  return options;
}

}  // namespace zolvane
