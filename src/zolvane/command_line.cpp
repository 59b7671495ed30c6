#include "zolvane/command_line.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "program/command_line.h"
#include "program/command_rows.h"
#include "program/terminal.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"
#include "zolvane/commands.h"
#include "zolvane/work/objections.h"
#include "zolvane/work/sides.h"
#include "zolvane/work/workplace.h"

namespace zolvane {
namespace {

constexpr std::string_view purpose =
    "Runs the operations of the Zolvane setup add-in in custody: looks first, keeps what was there, proves "
    "what\n"
    "arrived, and knows the way back.\n";

constexpr std::string_view sidesHelp =
    "\nA side is \"file\" (Zolvane.ini in the folder), \"instrument\" (behind --link), the name of a "
    "configuration,\n"
    "a backup or a record, or @N and @last: what operation N of the history left; @N:found: what it found.\n";

constexpr std::string_view statusHelp =
    "\nExit status: 0 all proven, or no difference, or nothing wrong; 1 not proven, failed or stopped, "
    "differences,\n"
    "errors, damage; 2 the command line, the folder, the link or a file is unusable, and nothing was "
    "changed; 3 an\n"
    "objection, and nothing was changed.\n";

void Describe(CommandLine& line, CustodyOptions& options) {
  line.AddOption("--by", "NAME", options.By, "who answers for it (default: the account's name)");
  line.AddOption("--reason", "TEXT", options.Reason, "why, for the history");
  line.AddOption("--despite", "CODE", options.Despite, "let that objection or verdict pass; can be repeated");
  line.AddFlag("--rehearse", options.Rehearses, "play it on copies, and change nothing");
  line.AddFlag("--wire", options.ComparesWire, "show, diff: what an upload would send");
  line.AddFlag("--instrument", options.TakesInstrument, "restore: the instrument's values, too");
  line.AddOption("--explain", "CODE", options.Explains, "check: explain one kind of finding");
  line.AddFlag("--csv", options.PrintsCsv, "history: as comma-separated values");
  line.AddOption("--against", "FILE", options.Against,
                 "history audit: a record, a backup or a text that holds checkpoints; can be repeated");
  line.AddOption("--fault", "KIND@WHERE", options.Faults,
                 "with a simulated link: inject a fault; can be repeated");
}

// Which option goes with which command, where it does not go with all.
struct OptionUse {
  std::string_view Name;
  bool (*IsGiven)(const CustodyOptions& options);
  std::string_view Commands;
};

constexpr std::array<OptionUse, 7> optionUses{{
    {"--rehearse", [](const CustodyOptions& options) { return options.Rehearses; },
     "upload, download, import, restore, undo, resume"},
    {"--wire", [](const CustodyOptions& options) { return options.ComparesWire; }, "show, diff"},
    {"--instrument", [](const CustodyOptions& options) { return options.TakesInstrument; }, "restore"},
    {"--explain", [](const CustodyOptions& options) { return options.Explains.has_value(); }, "check"},
    {"--csv", [](const CustodyOptions& options) { return options.PrintsCsv; }, "history"},
    {"--against", [](const CustodyOptions& options) { return !options.Against.empty(); }, "history audit"},
    {"--fault", [](const CustodyOptions& options) { return !options.Faults.empty(); },
     "show, diff, upload, download, query, import, export, backup, restore, undo, resume, drift"},
}};

// With "show" or "audit" behind "history".
std::string NameOf(const std::vector<std::string>& command) {
  const bool hasOwnWord = command.front() == "history" && command.size() > 1;
  return hasOwnWord ? Joined(command[0], " ", command[1]) : command.front();
}

bool IsNamedIn(std::string_view list, std::string_view name) {
  return Joined(", ", list, ",").find(Joined(", ", name, ",")) != std::string::npos;
}

void DemandUse(const CustodyOptions& options) {
  const auto name = NameOf(options.Command);
  for (const auto& use : optionUses) {
    if (use.IsGiven(options) && !IsNamedIn(use.Commands, name)) {
      throw UsageError{Joined(use.Name, " goes with ", use.Commands, ", and not with ", Printable(name))};
    }
  }
  const bool onlyLooks = name == "show" || name == "diff";
  if (onlyLooks && !options.Faults.empty() &&
      std::ranges::find(options.Command, instrumentSide) == options.Command.end()) {
    throw UsageError{
        Joined("--fault goes with the side ", instrumentSide, ", and ", name, " names others here")};
  }
  for (const auto& code : options.Despite) {
    DemandPassable(code);
  }
}

CommandLine::Help ProgramHelp() {
  return {.Program = std::string{programName},
          .Usage = "[OPTIONS] COMMAND [ARGUMENTS]",
          .Purpose = std::string{purpose},
          .BeforeOptions = CustodyCommandsHelp(),
          .AfterOptions = Joined(sidesHelp, PassableHelp(), statusHelp)};
}

// The environment stands in for the options. There is no default instrument, so that nobody verifies against
// a simulated one by mistake.
TypedSessionOptions::Defaults DefaultsOf(const std::string& folder, const std::string& link) {
  return {.Folder = folder,
          .FolderHelp = "default: ZOLVANE_FOLDER of the environment, else the current folder",
          .Link = link,
          .LinkHelp = "default: ZOLVANE_LINK of the environment, else none at all"};
}

}  // namespace

std::variant<CustodyOptions, Information> ParseCustodyOptions(const std::vector<std::string>& arguments) {
  CustodyOptions options;
  TypedSessionOptions typed{DefaultsOf(EnvironmentVariable("ZOLVANE_FOLDER").value_or("."),
                                       EnvironmentVariable("ZOLVANE_LINK").value_or(""))};
  CommandLine line{ProgramHelp()};
  typed.Describe(line, options);
  Describe(line, options);
  const auto asked = line.Parse(arguments);
  if (auto text = InformationAskedFor(line, asked, CustodyCommandHelp)) {
    return Information{*std::move(text)};
  }
  typed.TakeInto(options);
  options.Command = line.Words();
  if (options.Command.empty()) {
    throw UsageError{"no command is given; see zolvane --help"};
  }
  DemandCommand(options.Command);
  DemandUse(options);
  return options;
}

}  // namespace zolvane
