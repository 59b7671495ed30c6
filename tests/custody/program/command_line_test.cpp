#include <algorithm>

#include "custody/program/zolvane_fixture.h"

namespace zolvane {
namespace {

using CommandLineOfZolvane = Zolvane;

TEST_F(CommandLineOfZolvane, WithoutACommandSaysWhereHelpIs) {
  const auto run = RunAlone({});
  EXPECT_EQ(run.Status, 2);
  EXPECT_EQ(run.Errors, "zolvane: no command is given; see zolvane --help\n");
}

TEST_F(CommandLineOfZolvane, HelpNamesEveryCommandOnce) {
  const auto run = RunAlone({"--help"});
  EXPECT_EQ(run.Status, 0);
  for (const std::string command : {"show", "check", "diff", "upload", "download", "query", "import",
                                    "export", "backup", "restore", "undo", "resume", "drift", "history"}) {
    EXPECT_NE(run.Output.find("\n  " + command + " "), std::string::npos) << command;
    EXPECT_EQ(RunAlone({"help", command}).Output, RunAlone({command, "--help"}).Output);
  }
}

TEST_F(CommandLineOfZolvane, AnUnknownCommandIsRefusedWithTheNearestOne) {
  const auto run = RunAlone({"dif"});
  EXPECT_EQ(run.Status, 2);
  EXPECT_EQ(run.Errors, "zolvane: there is no command \"dif\"; did you mean \"diff\"?\n");
}

TEST_F(CommandLineOfZolvane, ThereIsNoDefaultInstrument) {
  for (const Words& words :
       {Words{"--yes", "upload"}, Words{"--yes", "download"}, Words{"query"}, Words{"drift"},
        Words{"show", "instrument"}, Words{"diff", "file", "instrument"}}) {
    const auto run = RunAlone(words);
    EXPECT_EQ(run.Status, 2) << words.back();
    EXPECT_NE(run.Errors.find("needs an instrument"), std::string::npos) << run.Errors;
  }
  EXPECT_FALSE(Folder.Has("Zolvane.history/journal.jsonl"));
  EXPECT_EQ(Configuration(), Sample());
}

TEST_F(CommandLineOfZolvane, HelpNamesNoInstrumentAsTheDefault) {
  EXPECT_EQ(RunAlone({"--help"}).Output.find("the default\n"), std::string::npos);
}

TEST_F(CommandLineOfZolvane, AnOptionOfAnotherCommandIsRefused) {
  EXPECT_EQ(RunAlone({"--wire", "upload"}).Errors,
            "zolvane: --wire goes with show, diff and no other command\n");
  EXPECT_EQ(RunAlone({"--rehearse", "diff", "file", "file"}).Status, 2);
  EXPECT_EQ(RunAlone({"--csv", "check"}).Status, 2);
  EXPECT_EQ(RunAlone({"--instrument", "undo"}).Status, 2);
}

TEST_F(CommandLineOfZolvane, AnUnknownCodeCannotBeLetPass) {
  const auto run = RunAlone({"--despite", "finding", "check"});
  EXPECT_EQ(run.Status, 2);
  EXPECT_EQ(run.Errors, "zolvane: --despite: there is no code \"finding\"; did you mean \"findings\"?\n");
}

TEST_F(CommandLineOfZolvane, AFolderWithoutAConfigurationIsUnusable) {
  std::filesystem::remove(Folder.Path("Zolvane.ini"));
  for (const Words& words :
       {Words{"check"}, Words{"show", "file"}, Words{"--yes", "upload"}, Words{"export", "a.bak"}}) {
    const auto run = Run(words);
    EXPECT_EQ(run.Status, 2) << words.front();
    EXPECT_NE(run.Errors.find("--folder names the folder that holds it"), std::string::npos) << run.Errors;
  }
}

TEST_F(CommandLineOfZolvane, AFaultNeedsASimulatedInstrument) {
  const auto run = RunAlone({"--link", "none", "--fault", "silent@1", "show", "instrument"});
  EXPECT_EQ(run.Status, 2);
}

TEST_F(CommandLineOfZolvane, NothingItPrintsSteersTheTerminal) {
  const auto run = RunAlone({"show", "\x1b[2J\xc2\x9b.ini"});
  EXPECT_EQ(run.Status, 2);
  EXPECT_TRUE(std::ranges::none_of(run.Errors, [](char byte) { return byte == '\x1b' || byte == '\x9b'; }));
}

TEST_F(CommandLineOfZolvane, AMissingSideIsSaidInTheDocument) {
  const auto document = RunJson({"show", "@1"});
  EXPECT_EQ(document.at("exit_status"), 2);
  EXPECT_EQ(document.at("outcome"), "failed");
  EXPECT_EQ(document.at("problem"), "the history has no operation \"@1\"; \"zolvane history\" lists them");
}

}  // namespace
}  // namespace zolvane
