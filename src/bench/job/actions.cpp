#include "bench/job/actions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <limits>
#include <system_error>

#include "config/text.h"
#include "files/paths.h"
#include "program/command_rows.h"
#include "text/joined.h"
#include "text/listed.h"
#include "text/printable.h"
#include "text/suggestion.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

using Words = std::vector<std::string>;

// ---- Arguments ----

bool IsNumber(std::string_view digits) {
  return !digits.empty() && digits.find_first_not_of("0123456789") == std::string_view::npos;
}

// Numbers too large to hold become the largest or smallest that fits; those have no button either.
int ButtonIndex(std::string_view word) {
  const bool isNegative = word.starts_with('-');
  if (!IsNumber(word.substr(isNegative || word.starts_with('+') ? 1 : 0))) {
    throw UsageError{Joined("press takes the number of a button, not ", Quoted(word))};
  }
  const auto digits = word.substr(word.starts_with('+') ? 1 : 0);
  int index = 0;
  const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), index);
  if (parsed.ec == std::errc::result_out_of_range) {
    return isNegative ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
  }
  return index;
}

std::vector<std::string_view> NamesOf(const auto& rows) {
  std::vector<std::string_view> names;
  std::ranges::transform(rows, std::back_inserter(names), [](const auto& row) { return row.Name; });
  return names;
}

// The position of the row with that name, in any case.
template <class Rows>
std::size_t RowNamed(const Rows& rows, std::string_view name, std::string_view kind) {
  std::string names;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    if (EqualIgnoringCase(rows[row].Name, name)) {
      return row;
    }
    names.append(names.empty() ? "" : row + 1 == rows.size() ? " and " : ", ").append(rows[row].Name);
  }
  throw UsageError{Joined("there is no ", kind, " ", Quoted(name), "; there are ", names,
                          DidYouMean(name, NamesOf(rows)))};
}

std::string DialogueFile(std::string_view file) {
  if (file.empty()) {
    throw UsageError{"the name of the file is empty"};
  }
  auto path = AbsolutePath(file);
  std::error_code ignored;
  if (NamesFolder(file) && !std::filesystem::is_directory(PathOf(path), ignored)) {
    throw UsageError{Joined(Quoted(file), " is the name of a folder and not of a file")};
  }
  return path;
}

// ---- The commands ----

Action ShowPage(const Words&) {
  return {.Kind = ActionKind::ShowPage};
}

Action ShowScript(const Words&) {
  return {.Kind = ActionKind::ShowScript};
}

template <int button>
Action PressOperation(const Words&) {
  return {.Kind = ActionKind::PressButton, .Button = button};
}

template <int button>
Action PressFileOperation(const Words& words) {
  Action action{.Kind = ActionKind::PressButton, .Button = button};
  if (words.size() > 1) {
    action.File = DialogueFile(words[1]);
  }
  return action;
}

Action PressByIndex(const Words& words) {
  return {.Kind = ActionKind::PressButton, .Button = ButtonIndex(words[1])};
}

Action SelectEntry(const Words& words) {
  const auto row = RowNamed(listRows, words[1], "list");
  return {.Kind = ActionKind::SelectEntry, .List = static_cast<ListControl>(row), .Entry = words[2]};
}

Action TickBox(const Words& words) {
  const auto row = RowNamed(checkRows, words[1], "check box");
  const auto& value = words[2];
  if (value.size() != 1 || value[0] < '0' || value[0] > '2') {
    throw UsageError{Joined("tick takes 0, 1 or 2, not ", Quoted(value))};
  }
  return {.Kind = ActionKind::SetCheck, .Box = static_cast<CheckControl>(row), .Value = value[0] - '0'};
}

struct CommandRow {
  std::string_view Name;
  std::string_view Usage;
  std::string_view Effect;
  std::size_t LeastWords;
  std::size_t MostWords;
  Action (*Make)(const Words& words);  // null: runs a file, or is no action
  std::string_view Example;            // after the program's name
  std::string_view Details;            // whole lines
};

constexpr std::string_view runCommand = "run";
constexpr std::string_view pressCommand = "press";

constexpr std::array<CommandRow, 12> commandRows{{
    {"page", "page", "print the page as it is loaded", 1, 1, ShowPage, "--json page",
     "Loading the page selects the installed entries, which may write them into Zolvane.ini as in any "
     "host.\n"},
    {"query", "query", "ask the instrument which hardware is fitted (button 2)", 1, 1,
     PressOperation<queryButton>, "--link tcp:192.168.0.10:4000 query",
     "What was found is selected on the page and stored.\n"},
    {"upload", "upload", "send the calibration data to the instrument (button 0)", 1, 1,
     PressOperation<uploadButton>, "--link /dev/ttyS0 --yes upload",
     "The add-in asks first; --yes or --answer ok answers for you. \"script\" prints what would be sent.\n"},
    {"download", "download", "fetch the calibration data from the instrument (button 1)", 1, 1,
     PressOperation<downloadButton>, "--link /dev/ttyS0 --yes download",
     "Overwrites the values in Zolvane.ini: export them to a file first.\n"},
    {"import", "import [FILE]", "load the tables of a backup file (button 3)", 1, 2,
     PressFileOperation<importButton>, "--yes import backup.bak",
     "Without FILE the file dialogue is cancelled. A file without any section of a backup is refused.\n"},
    {"export", "export [FILE]", "save the tables to a backup file (button 4)", 1, 2,
     PressFileOperation<exportButton>, "export backup.bak",
     "Without FILE the file dialogue is cancelled. Into a file that exists the add-in merges: it replaces "
     "what it\n"
     "copies and leaves everything else; that needs --replace.\n"},
    {pressCommand, "press N", "press the button of any number; --file FILE for its file dialogue", 2, 2,
     PressByIndex, "press 4 --file backup.bak",
     "0 upload, 1 download, 2 query, 3 import, 4 export. A number without a button does nothing.\n"},
    {"select", "select LIST ENTRY", "pick an entry of a list by its text, or by position as #0", 3, 3,
     SelectEntry, "select cboHeadType \"Not installed\"",
     "LIST is cboDeviceType, cboCageType, cboHeadType, cboNestType or cboTipType; \"page\" prints the "
     "entries.\n"},
    {"tick", "tick BOX VALUE", "set a check box to 0, 1 or 2", 3, 3, TickBox, "tick chkRFID 1",
     "BOX is chkRFID, chkHeadSensor, chkTipSensor or chkEncoders; 0 is off, 1 on, 2 grey.\n"},
    {"script", "script", "print the lines that an upload would send, and send nothing", 1, 1, ShowScript,
     "script", "One command of the instrument in each line.\n"},
    {runCommand, "run FILE", "do the commands in a file, one per line; - is standard input", 2, 2, nullptr,
     "--yes run main-job.txt",
     "All of them in one host session. # starts a comment, double quotes group words. It stops behind the "
     "first\n"
     "command that fails, unless --keep-going is given.\n"},
    {helpCommand, "help [COMMAND]", "explain a command", 1, 2, nullptr, "help upload",
     "The same as COMMAND --help.\n"},
}};

constexpr std::string_view program = "zolvane-bench";

const CommandRow& CheckedRow(const Words& words) {
  const auto& row = CommandNamed(commandRows, words.front(), program);
  if (row.Name == helpCommand) {
    throw UsageError{"help stands on the command line and in no run file"};
  }
  DemandWords(row, words);
  return row;
}

std::string WrittenAs(const Words& words) {
  std::string text;
  for (const auto& word : words) {
    const bool needsQuotes = word.empty() || word.find_first_of(" \t\"") != std::string::npos;
    AddListed(text, " ", needsQuotes ? InQuotes(Replaced(word, "\"", "\"\"")) : word);
  }
  return text;
}

}  // namespace

bool RunsFile(const Words& words) {
  return CheckedRow(words).Make == nullptr;
}

Action MakeAction(const Words& words, const std::optional<std::string>& file) {
  const auto& row = CheckedRow(words);
  if (file && row.Name != pressCommand) {
    throw UsageError{Joined("--file goes with press; ", row.Name, " is used as: ", row.Usage)};
  }
  Action action = row.Make(words);
  action.Command = WrittenAs(words);
  if (file) {
    action.File = DialogueFile(*file);
  }
  return action;
}

std::string ActionsHelpText() {
  return CommandsHelpText(commandRows);
}

std::string ActionHelpText(std::string_view command) {
  return CommandHelpText(CommandNamed(commandRows, command, program), program);
}

}  // namespace zolvane
