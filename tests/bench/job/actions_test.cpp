#include "bench/job/actions.h"

#include <gtest/gtest.h>

#include <climits>
#include <set>
#include <sstream>

#include "bench/job/job.h"
#include "bench/job/run_file.h"
#include "bench/process_support.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

using Words = std::vector<std::string>;

Job Parsed(const Words& words, const std::optional<std::string>& file = std::nullopt,
           const std::string& input = "") {
  std::istringstream stream{input};
  return ParseJob(words, file, stream);
}

Action ParsedAction(const Words& words, const std::optional<std::string>& file = std::nullopt) {
  auto job = Parsed(words, file);
  EXPECT_EQ(job.Actions.size(), 1U);
  EXPECT_FALSE(job.IsRun);
  return job.Actions.at(0);
}

Job ParsedRun(const std::string& text) {
  return Parsed({"run", "-"}, std::nullopt, text);
}

template <class Parse>
std::string Refusal(Parse parse) {
  try {
    parse();
  } catch (const UsageError& error) {
    return error.what();
  }
  return "not refused";
}

TEST(Commands, TheFiveOperationsPressTheirButtons) {
  const std::vector<std::pair<std::string, int>> buttons{
      {"upload", 0}, {"download", 1}, {"query", 2}, {"import", 3}, {"export", 4}};
  for (const auto& [command, button] : buttons) {
    const auto action = ParsedAction({command});
    EXPECT_EQ(action.Kind, ActionKind::PressButton);
    EXPECT_EQ(action.Button, button);
    EXPECT_EQ(action.Command, command);
    EXPECT_EQ(action.Place, "");
    EXPECT_EQ(action.File, std::nullopt);
  }
}

TEST(Commands, AFileBecomesAbsoluteWithoutDetours) {
  EXPECT_EQ(ParsedAction({"import", "/a/b/../c.bak"}).File, "/a/c.bak");
  EXPECT_EQ(ParsedAction({"export", "./c.bak"}).File, (std::filesystem::current_path() / "c.bak").string());
  EXPECT_EQ(ParsedAction({"press", "3"}, "/x//y").File, "/x/y");
}

TEST(Commands, ANameThatOnlyAFolderCanHaveIsNoFile) {
  for (const auto* name : {"/nowhere/", "/nowhere/.", "/nowhere/x/.."}) {
    EXPECT_EQ(Refusal([name] { ParsedAction({"export", name}); }),
              "\"" + std::string{name} + "\" is the name of a folder and not of a file");
  }
}

TEST(Commands, AButtonHasAnyWholeNumber) {
  EXPECT_EQ(ParsedAction({"press", "-1"}).Button, -1);
  EXPECT_EQ(ParsedAction({"press", "+4"}).Button, 4);
  EXPECT_EQ(ParsedAction({"press", "007"}).Button, 7);
  EXPECT_EQ(ParsedAction({"press", "99999999999999999999"}).Button, INT_MAX);
  EXPECT_EQ(ParsedAction({"press", "-99999999999999999999"}).Button, INT_MIN);
  for (const auto* word : {"", "-", "+", "+-1", "1.0", "1e1", " 1", "one"}) {
    EXPECT_EQ(Refusal([word] { ParsedAction({"press", word}); }),
              "press takes the number of a button, not \"" + std::string{word} + "\"");
  }
}

TEST(Commands, ListsAndBoxesAreNamedInAnyCase) {
  const auto select = ParsedAction({"select", "CBONESTTYPE", "#0"});
  EXPECT_EQ(select.Kind, ActionKind::SelectEntry);
  EXPECT_EQ(select.List, ListControl::NestType);
  EXPECT_EQ(select.Entry, "#0");
  const auto tick = ParsedAction({"tick", "chkencoders", "2"});
  EXPECT_EQ(tick.Kind, ActionKind::SetCheck);
  EXPECT_EQ(tick.Box, CheckControl::Encoders);
  EXPECT_EQ(tick.Value, 2);
}

TEST(Commands, AFileBelongsToAPress) {
  EXPECT_EQ(Refusal([] { ParsedAction({"page"}, "x"); }), "--file goes with press; page is used as: page");
  EXPECT_EQ(Refusal([] { ParsedAction({"press", "3"}, ""); }), "the name of the file is empty");
}

TEST(RunFile, CommentsAndBlankLinesCountAsLinesOnly) {
  const auto job =
      ParsedRun("\xEF\xBB\xBF# first\r\n\r\n \t\n  # indented\npage\r\n\tquery \nselect cboTipType #1");
  EXPECT_TRUE(job.IsRun);
  ASSERT_EQ(job.Actions.size(), 3U);
  EXPECT_EQ(job.Actions[0].Kind, ActionKind::ShowPage);
  EXPECT_EQ(job.Actions[0].Place, "standard input, line 5");
  EXPECT_EQ(job.Actions[1].Button, 2);
  EXPECT_EQ(job.Actions[1].Place, "standard input, line 6");
  EXPECT_EQ(job.Actions[2].Entry, "#1");
}

TEST(RunFile, WordsAreGroupedByDoubleQuotes) {
  EXPECT_EQ(SplitWords("select  cboTipType\t\"300 ul Tips\""),
            (Words{"select", "cboTipType", "300 ul Tips"}));
  EXPECT_EQ(SplitWords("a\"b c\"d \"\""), (Words{"ab cd", ""}));
  EXPECT_EQ(SplitWords("\"say \"\"so\"\"\""), (Words{"say \"so\""}));
  EXPECT_EQ(SplitWords(" \t "), Words{});
  EXPECT_EQ(Refusal([] { SplitWords("a \"b"); }), "a double quote is not closed");
}

TEST(RunFile, TheCommandIsRepeatedSoThatItCouldBeReadAgain) {
  const auto job = ParsedRun("select cboTipType \"say \"\"so\"\"\"\npage\n");
  EXPECT_EQ(job.Actions[0].Command, "select cboTipType \"say \"\"so\"\"\"");
  EXPECT_EQ(job.Actions[1].Command, "page");
}

TEST(RunFile, APressTakesItsFileInItsLine) {
  const auto job = ParsedRun("press 3 --file \"/a b/c\"\npress --file /d 4\npress 4\n");
  EXPECT_EQ(job.Actions[0].File, "/a b/c");
  EXPECT_EQ(job.Actions[1].File, "/d");
  EXPECT_EQ(job.Actions[2].File, std::nullopt);
  const auto joined = ParsedRun("press 3 \"--file=/a b/c\"\n");
  EXPECT_EQ(joined.Actions[0].File, "/a b/c");
  EXPECT_EQ(joined.Actions[0].Command, "press 3");
  EXPECT_EQ(Refusal([] { ParsedRun("press 3 --file="); }),
            "standard input, line 1: the name of the file is empty");
  EXPECT_EQ(Refusal([] { ParsedRun("press 3 --file"); }),
            "standard input, line 1: --file needs the name of a file");
  EXPECT_EQ(Refusal([] { ParsedRun("--file x"); }), "standard input, line 1: --file goes with press");
  EXPECT_EQ(Refusal([] { ParsedRun("page\nupload --file x"); }),
            "standard input, line 2: --file goes with press; upload is used as: upload");
}

TEST(RunFile, AnErrorNamesFileAndLineOfEveryFileOnItsWay) {
  const TemporaryFolder folder;
  const auto inner = folder.Put("inner.txt", "page\nfly\n");
  const auto outer = folder.Put("outer.txt", "\nrun \"" + inner + "\"\n");
  EXPECT_EQ(Refusal([&] { Parsed({"run", outer}); }),
            outer + ", line 2: " + inner + ", line 2: there is no command \"fly\"; see zolvane-bench --help");
}

TEST(RunFile, FilesThatRunEachOtherAreRefused) {
  const TemporaryFolder folder;
  const auto other = folder.Path("b.txt");
  const auto one = folder.Put("a.txt", "run " + other + "\n");
  folder.Put("b.txt", "run " + one + "\n");
  EXPECT_EQ(Refusal([&] { Parsed({"run", one}); }),
            one + ", line 1: " + other + ", line 1: " + one + " runs itself");
  EXPECT_EQ(Refusal([] { ParsedRun("run -"); }), "standard input, line 1: standard input runs itself");
}

TEST(RunFile, OneFileMayBeRunTwice) {
  const TemporaryFolder folder;
  const auto inner = folder.Put("inner.txt", "page\n");
  EXPECT_EQ(ParsedRun("run " + inner + "\nrun " + inner + "\n").Actions.size(), 2U);
}

TEST(RunFile, AnEndlessFileIsRefused) {
  EXPECT_EQ(Refusal([] { Parsed({"run", "/dev/zero"}); }),
            "/dev/zero is larger than 16 megabytes, too large for a run file");
}

TEST(RunFile, OddBytesAreJustNoCommand) {
  EXPECT_EQ(Refusal([] { ParsedRun("\x01\xff\n"); }),
            "standard input, line 1: there is no command \"\\u0001\\xff\"; see zolvane-bench --help");
}

TEST(RunFile, ZeroBytesAreNoText) {
  EXPECT_EQ(Refusal([] { ParsedRun(std::string{"page\nimport backup.bak\0\n", 24}); }),
            "standard input is no list of commands in UTF-8, as there are zero bytes in it");
}

TEST(RunFile, EveryFileThatTheCommandsStandInIsNamed) {
  const TemporaryFolder folder;
  const auto inner = folder.Put("inner.txt", "page\n");
  const auto outer = folder.Put("outer.txt", "run " + inner + "\nrun " + inner + "\n");
  EXPECT_EQ(Parsed({"run", folder.Path("./outer.txt")}).RunFiles, (std::set<std::string>{inner, outer}));
  EXPECT_EQ(ParsedRun("run " + inner).RunFiles, (std::set<std::string>{inner}));
}

}  // namespace
}  // namespace zolvane
