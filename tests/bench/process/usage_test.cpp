// Asking the bench about itself, and using it wrongly.
#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>
#include <string>

#include "bench/bench_process.h"

namespace zolvane {
namespace {

TEST_F(Bench, TheVersionIsPrintedAlone) {
  const auto result = Run({"--version"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(result.Output, "zolvane-bench 1.00.0135\n");
  EXPECT_EQ(result.Errors, "");
}

TEST_F(Bench, TheHelpNamesEveryCommandAndOption) {
  const auto result = Run({"--help"});
  EXPECT_EQ(result.Status, 0);
  for (const auto* word : {"page",
                           "query",
                           "upload",
                           "download",
                           "import [FILE]",
                           "export [FILE]",
                           "press N",
                           "select LIST ENTRY",
                           "tick BOX VALUE",
                           "script",
                           "run FILE",
                           "--folder DIR",
                           "--link LINK",
                           "sim:FILE",
                           "tcp:HOST:PORT",
                           "serial:DEVICE[,BAUD]",
                           "script:FILE",
                           "none",
                           "--timeout SECONDS",
                           "--answer A,B,...",
                           "--yes",
                           "--host-dialog",
                           "--trace FILE",
                           "--trace-reads",
                           "--json",
                           "--quiet",
                           "--file FILE",
                           "Exit status"}) {
    EXPECT_NE(result.Output.find(word), std::string::npos) << word;
  }
}

// ---- Bad use ----

struct BadUse {
  const char* Name;
  Arguments Words;
  std::string Message;  // the start of the one line; FOLDER stands for the folder
};

void PrintTo(const BadUse& use, std::ostream* to) {
  *to << use.Name;
}

class BadUseTest : public Bench, public testing::WithParamInterface<BadUse> {
 protected:
  BadUseTest() {
    Folder.Put("bad.txt", "page\n\n  frobnicate now\n");
    Folder.Put("quote.txt", "select cboHeadType \"Not installed\n");
    Folder.Put("missing.txt", "# first\npage\nimport nowhere.bak\n");
    Folder.Put("itself.txt", "run itself.txt\n");
    Folder.Put("option.txt", "upload --yes\n");
    Folder.Put("inner.txt", "page\n");
    Folder.Put("help.txt", "help page\n");
    Folder.Put("outer.txt", "run inner.txt\n");
    Folder.Put("backup.bak", configText);
    std::filesystem::create_symlink("Zolvane.ini", Folder.Path("config-link"));
    Folder.Put("zero.txt", std::string_view{"import backup.bak\0\n", 19});
  }
};

const std::vector<BadUse> badUses{
    {"NoCommand", {}, "no command is given; see zolvane-bench --help"},
    {"UnknownCommand", {"frobnicate"}, "there is no command \"frobnicate\"; see zolvane-bench --help"},
    {"TooManyArguments", {"page", "twice"}, "page has too many arguments; it is used as: page"},
    {"TooFewArguments", {"press"}, "press has too few arguments; it is used as: press N"},
    {"ButtonThatIsNoNumber", {"press", "two"}, "press takes the number of a button, not \"two\""},
    {"ButtonThatIsNoWholeNumber", {"press", "1.5"}, "press takes the number of a button, not \"1.5\""},
    {"TickBeyondTwo", {"tick", "chkRFID", "3"}, "tick takes 0, 1 or 2, not \"3\""},
    {"UnknownBox",
     {"tick", "chkNone", "1"},
     "there is no check box \"chkNone\"; there are chkRFID, chkHeadSensor, chkTipSensor and chkEncoders"},
    {"UnknownList",
     {"select", "cboNone", "x"},
     "there is no list \"cboNone\"; there are cboDeviceType, cboCageType, cboHeadType, cboNestType and "
     "cboTipType"},
    {"UnknownOption", {"page", "--nonsense"}, "there is no option \"--nonsense\"; see zolvane-bench --help"},
    {"MisspeltCommand", {"uplaod"}, "there is no command \"uplaod\"; did you mean \"upload\"?"},
    {"MisspeltBox",
     {"tick", "chkRFD", "1"},
     "there is no check box \"chkRFD\"; there are chkRFID, chkHeadSensor, chkTipSensor and chkEncoders; "
     "did you mean "
     "\"chkRFID\"?"},
    {"ExportOntoAFile",
     {"export", "backup.bak"},
     "\"FOLDER/backup.bak\" exists; name another file, or let the export merge into it with --replace"},
    {"PressedExportOntoAFile",
     {"press", "4", "--file", "inner.txt"},
     "\"FOLDER/inner.txt\" exists; name another file, or let the export merge into it with --replace"},
    {"ImportOfWhatIsNoBackup",
     {"import", "inner.txt"},
     "\"FOLDER/inner.txt\" is no backup: it has none of the sections that an import reads"},
    {"TraceOntoAnotherFile",
     {"--trace", "inner.txt", "page"},
     "--trace replaces an empty file or an earlier trace and nothing else: \"inner.txt\" holds something "
     "else"},
    {"HelpInARunFile",
     {"run", "help.txt"},
     "help.txt, line 1: help stands on the command line and in no run file"},
    {"TimeoutOfZero",
     {"page", "--timeout", "0"},
     "--timeout takes a number of seconds above 0 and up to 1000000 (0.5, 10), not \"0\""},
    {"TimeoutAboveTheLimit",
     {"page", "--timeout", "1000001"},
     "--timeout takes a number of seconds above 0 and up to 1000000 (0.5, 10), not \"1000001\""},
    {"TimeoutThatIsNoNumber",
     {"page", "--timeout", "soon"},
     "--timeout takes a number of seconds above 0 and up to 1000000 (0.5, 10), not \"soon\""},
    {"UnknownAnswer",
     {"page", "--answer", "ok,maybe"},
     "--answer: \"maybe\" is no answer; write ok, cancel, yes or no, with commas"},
    {"FileWithoutPress", {"upload", "--file", "x"}, "--file goes with press; upload is used as: upload"},
    {"FolderThatIsNotThere",
     {"--folder", "none", "page"},
     "\"FOLDER/none/Zolvane.ini\" does not exist; --folder names the folder that holds it"},
    {"EmptyFolderName", {"--folder", "", "page"}, "--folder: the name of the folder is empty"},
    {"ImportOfAMissingFile", {"import", "nowhere.bak"}, "\"FOLDER/nowhere.bak\" does not exist"},
    {"ImportOfAFolder", {"import", "."}, "\"FOLDER\" is a folder"},
    {"ImportWithoutAName", {"import", ""}, "the name of the file is empty"},
    {"PressedImportOfAMissingFile",
     {"press", "3", "--file", "nowhere.bak"},
     "\"FOLDER/nowhere.bak\" does not exist"},
    {"ExportIntoAMissingFolder",
     {"export", "nowhere/x.bak"},
     "\"FOLDER/nowhere/x.bak\" is in a folder that does not exist"},
    {"ExportOntoAFolderName",
     {"export", "nowhere/"},
     "\"nowhere/\" is the name of a folder and not of a file"},
    {"ExportOntoAFolder", {"export", "."}, "\"FOLDER\" is a folder"},
    {"MissingRunFile",
     {"run", "nowhere.txt"},
     "the run file nowhere.txt cannot be opened: No such file or directory"},
    {"RunFileThatIsAFolder", {"run", "."}, ". is a folder and no run file"},
    {"UnknownCommandInARunFile",
     {"run", "bad.txt"},
     "bad.txt, line 3: there is no command \"frobnicate\"; see zolvane-bench --help"},
    {"OpenQuoteInARunFile", {"run", "quote.txt"}, "quote.txt, line 1: a double quote is not closed"},
    {"MissingFileInARunFile",
     {"run", "missing.txt"},
     "missing.txt, line 3: \"FOLDER/nowhere.bak\" does not exist"},
    {"RunFileThatRunsItself", {"run", "itself.txt"}, "itself.txt, line 1: itself.txt runs itself"},
    {"OptionInARunFile",
     {"run", "option.txt"},
     "option.txt, line 1: upload has too many arguments; it is used as: upload"},
    {"TraceInAMissingFolder",
     {"--trace", "nowhere/trace", "page"},
     "the trace file \"nowhere/trace\" cannot be written: No such file or directory"},
    {"TraceInAMissingFolderBesideANewMemory",
     {"--trace", "nowhere/trace", "--link", "sim:new.json", "page"},
     "the trace file \"nowhere/trace\" cannot be written: No such file or directory"},
    {"TraceOntoAnInnerRunFile",
     {"--trace", "inner.txt", "run", "outer.txt"},
     "--trace would overwrite \"FOLDER/inner.txt\", which the run needs; name another file"},
    {"MemoryOntoAnInnerRunFile",
     {"--link", "sim:inner.txt", "run", "outer.txt"},
     "--link: the instrument's memory would overwrite \"FOLDER/inner.txt\", which the run needs; name "
     "another file"},
    {"ZeroByteInARunFile",
     {"run", "zero.txt"},
     "zero.txt is no list of commands in UTF-8, as there are zero bytes in it"},
    {"EmptyTraceName", {"--trace=", "page"}, "--trace: the name of the file is empty"},
    {"EmptyAnswer",
     {"--answer=", "upload"},
     "--answer: \"\" is no answer; write ok, cancel, yes or no, with commas"},
    {"TraceOntoAFolder", {"--trace", ".", "page"}, "the trace file \".\" cannot be written: Is a directory"},
    {"TraceOntoTheConfiguration",
     {"--trace", "./Zolvane.ini", "page"},
     "--trace would overwrite \"FOLDER/Zolvane.ini\", which the run needs; name another file"},
    {"MemoryOntoTheConfiguration",
     {"--link", "sim:Zolvane.ini", "page"},
     "--link: the instrument's memory would overwrite \"FOLDER/Zolvane.ini\", which the run needs; name "
     "another file"},
    {"MemoryOntoALinkToTheConfiguration",
     {"--link", "sim:config-link", "page"},
     "--link: the instrument's memory would overwrite \"FOLDER/Zolvane.ini\", which the run needs; name "
     "another file"},
    {"TraceOntoALinkToTheConfiguration",
     {"--trace", "config-link", "page"},
     "--trace would overwrite \"FOLDER/Zolvane.ini\", which the run needs; name another file"},
};

INSTANTIATE_TEST_SUITE_P(Bench, BadUseTest, testing::ValuesIn(badUses),
                         [](const auto& use) { return std::string{use.param.Name}; });

TEST_P(BadUseTest, BadUseIsToldInOneLineAndChangesNothing) {
  const auto files = Folder.Names();
  auto message = GetParam().Message;
  if (const auto at = message.find("FOLDER"); at != std::string::npos) {
    message.replace(at, 6, Folder.Path());
  }
  const auto result = Run(GetParam().Words);
  EXPECT_EQ(result.Status, 2);
  EXPECT_TRUE(result.Errors.starts_with("zolvane-bench: " + message)) << result.Errors;
  EXPECT_EQ(LinesOf(result.Errors).size(), 1U) << result.Errors;
  EXPECT_EQ(result.Output, "");
  EXPECT_EQ(Configuration(), configText);
  EXPECT_EQ(Folder.Read("inner.txt"), "page\n");
  EXPECT_EQ(Folder.Names(), files);
}

TEST_F(Bench, ALinkThatCannotBeUsedIsBadUseToo) {
  Folder.Put("number.json", "{ \"default\": 5 }");
  Folder.Put("broken.json", "{");
  for (const auto* link : {"telepathy", "", "tcp:localhost", "tcp:localhost:0", "tcp::99",
                           "serial:", "script:", "script:nowhere.json", "script:number.json",
                           "script:broken.json", "sim:nowhere/x"}) {
    const auto result = Run({"--link", link, "page"});
    EXPECT_EQ(result.Status, 2) << link;
    EXPECT_TRUE(result.Errors.starts_with("zolvane-bench: ")) << result.Errors;
    EXPECT_EQ(LinesOf(result.Errors).size(), 1U) << result.Errors;
    EXPECT_EQ(result.Output, "");
  }
  EXPECT_EQ(Configuration(), configText);
}

TEST_F(Bench, AFolderWithoutTheConfigurationFileIsRefused) {
  std::filesystem::remove(Folder.Path("Zolvane.ini"));
  const auto result = Run({"--json", "page"});
  EXPECT_EQ(result.Status, 2);
  EXPECT_EQ(result.Output, "");
  EXPECT_EQ(Folder.Names().size(), 0U);
}

TEST_F(Bench, AnEntryThatIsNotThereIsBadUse) {
  for (const auto* entry : {"Gamma", "#2", "#-1", "#", "", "#0x1", "#99999999999999999999"}) {
    const auto result = Run({"select", "cboDeviceType", entry});
    EXPECT_EQ(result.Status, 2) << entry;
    EXPECT_EQ(result.Errors, "zolvane-bench: cboDeviceType has no entry \"" + std::string{entry} +
                                 "\"; the command page prints its entries\n");
  }
  EXPECT_EQ(Configuration(), configText);
}

}  // namespace
}  // namespace zolvane
