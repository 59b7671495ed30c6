#include "zolvane/commands.h"

#include <array>
#include <cstddef>
#include <limits>
#include <optional>

#include "files/paths.h"
#include "program/command_rows.h"
#include "text/usage_error.h"
#include "zolvane/history_commands.h"
#include "zolvane/looking.h"
#include "zolvane/operations/add_in_operations.h"
#include "zolvane/operations/backup.h"
#include "zolvane/operations/bringing_back.h"
#include "zolvane/operations/rehearsal.h"
#include "zolvane/work/actions.h"

namespace zolvane {
namespace {

std::string FileNamed(const std::string& name) {
  if (name.empty() || NamesFolder(name)) {
    throw UsageError{"the name of a file is needed, not that of a folder"};
  }
  return AbsolutePath(name);
}

void AddIn(Workplace& work, const Words& words) {
  OperateAddIn(work, words[0], words.size() > 1 ? std::optional{FileNamed(words[1])} : std::nullopt);
}

struct CustodyCommandRow {
  std::string_view Name;
  std::string_view Usage;
  std::string_view Effect;
  std::size_t LeastWords;
  std::size_t MostWords;
  void (*Run)(Workplace& work, const Words& words);  // null: help
  std::string_view Example;                          // behind the program's name
  std::string_view Details;                          // in whole lines
};

constexpr auto anyNumber = std::numeric_limits<std::size_t>::max();

constexpr std::array<CustodyCommandRow, 15> commandRows{{
    {"show", "show SIDE [KEY...]", "print the values of a side", 2, anyNumber, Show, "show file",
     "With --wire, and of the instrument always: what an upload would send, or what the instrument answers "
     "for it.\n"},
    {"check", "check [SIDE]", "say what is wrong, or will be passed over", 1, 2, Check, "check backup.bak",
     "Without SIDE the file. --explain CODE tells about one kind of finding.\n"},
    {"diff", "diff A B", "print the differences of two sides", 3, 3, Diff,
     "--link /dev/ttyS0 diff file instrument",
     "Two decimal numbers of one value are the same, however they are written.\n"},
    {action::upload, "upload", "send the calibration data to the instrument, and prove it before SAVE", 1, 1,
     AddIn, "--link /dev/ttyS0 --yes --reason \"new chute\" upload",
     "Every value is asked again when the add-in sends SAVE, which is passed on only if all agree.\n"},
    {action::download, "download", "fetch the calibration data from the instrument", 1, 1, AddIn,
     "--link /dev/ttyS0 --yes download", "Shows beforehand what it would change in the file.\n"},
    {action::query, "query", "ask the instrument which hardware is fitted", 1, 1, AddIn,
     "--link /dev/ttyS0 query", "What was found is stored in the file.\n"},
    {action::import, "import FILE", "load the tables of a backup", 2, 2, AddIn, "--yes import backup.bak",
     "Shows beforehand what it would overwrite, and what it would set to zero.\n"},
    {action::exporting, "export FILE", "save the tables to a new backup", 2, 2, AddIn, "export backup.bak",
     "Says which values a later import would not bring back. With --despite exists an old file gives way; "
     "the\n"
     "history keeps it.\n"},
    {action::backup, "backup FILE", "write a record: a page that can be looked at and restored", 2, 2,
     [](Workplace& work, const Words& words) { Backup(work, FileNamed(words[1])); },
     "--link /dev/ttyS0 backup before-service.html",
     "Holds the file and, with --link, what the instrument answers.\n"},
    {action::restore, "restore RECORD|@N", "put the configuration back, byte for byte", 2, 2,
     [](Workplace& work, const Words& words) { Restore(work, words[1]); }, "restore before-service.html",
     "With --instrument the instrument's values, too. Needs no configuration in the folder.\n"},
    {action::undo, "undo [N]", "take the last operation that changed something back, or operation N", 1, 2,
     [](Workplace& work, const Words& words) {
       Undo(work, words.size() > 1 ? std::optional{words[1]} : std::nullopt);
     },
     "--link /dev/ttyS0 undo", "In the file and on the instrument. Undo twice is redo.\n"},
    {action::resume, "resume", "go on with an upload, restore or undo that was cut short", 1, 1,
     [](Workplace& work, const Words&) { Resume(work); }, "--link /dev/ttyS0 resume",
     "Asks what has arrived, and sends only what is missing.\n"},
    {"drift", "drift", "compare what was left last, the instrument and the file", 1, 1, Drift,
     "--link /dev/ttyS0 drift", "Prints each value that is not the same in all three.\n"},
    {"history", "history [show N|audit]", "list the operations, show one, or audit the history", 1, anyNumber,
     ShowHistory, "history audit --against before-service.html",
     "history               list the operations; --csv for a table program\n"
     "history show N        one operation with the verdict on each value\n"
     "history audit         whether it is intact and complete, and agrees with checkpoints kept elsewhere\n"},
    {helpCommand, "help [COMMAND]", "explain a command", 1, 2, nullptr, "help upload",
     "The same as COMMAND --help.\n"},
}};

}  // namespace

std::string CustodyCommandsHelp() {
  return CommandsHelpText(commandRows);
}

std::string CustodyCommandHelp(std::string_view name) {
  return CommandHelpText(CommandNamed(commandRows, name, programName), programName);
}

void DemandCommand(const std::vector<std::string>& words) {
  DemandWords(CommandNamed(commandRows, words.front(), programName), words);
}

void RunCommand(Workplace& work) {
  const auto& words = work.Options.Command;
  const auto& row = CommandNamed(commandRows, words.front(), programName);
  if (work.Options.Rehearses) {
    Rehearse(work, [&](Workplace& copy) { row.Run(copy, words); });
  } else {
    row.Run(work, words);
  }
}

}  // namespace zolvane
