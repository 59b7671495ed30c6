#include <algorithm>

#include "zolvane/zolvane_fixture.h"

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
            "zolvane: --wire goes with show, diff, and not with upload\n");
  EXPECT_EQ(RunAlone({"history", "show", "2", "--csv"}).Errors,
            "zolvane: --csv goes with history, and not with history show\n");
  for (const Words& words :
       {Words{"--rehearse", "diff", "file", "file"}, Words{"--instrument", "undo"}, Words{"--csv", "check"},
        Words{"--csv", "history", "audit"}, Words{"--against", "a.bak", "history"},
        Words{"--against", "a.bak", "history", "show", "2"}, Words{"--against", "a.bak", "drift"},
        Words{"--fault", "silent@1", "check"}, Words{"--fault", "silent@1", "history"},
        Words{"--fault", "silent@1", "show", "file"},
        Words{"--fault", "silent@1", "diff", "file", "@last"}}) {
    const auto run = Run(words);
    EXPECT_EQ(run.Status, 2) << words.front() << " " << words.back();
    EXPECT_EQ(std::ranges::count(run.Errors, '\n'), 1) << run.Errors;
    EXPECT_NE(run.Errors.find(words.front() + " goes with "), std::string::npos) << run.Errors;
  }
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

TEST_F(CommandLineOfZolvane, ATraceReplacesNothingButAnEarlierTrace) {
  const auto record = Folder.Path("record.html");
  ASSERT_EQ(RunAlone({"backup", record}).Status, 0);
  const auto journal = Folder.Path("Zolvane.history/journal.jsonl");
  const auto config = Folder.Path("Zolvane.ini");
  for (const auto& file : {config, record, journal}) {
    const auto bytes = BytesOf(file);
    for (const Words& words :
         {Words{"show", "file"}, Words{"check"}, Words{"--yes", "upload"}, Words{"history"}}) {
      auto traced = words;
      traced.insert(traced.begin(), {"--trace", file});
      const auto run = Run(traced);
      EXPECT_EQ(run.Status, 2) << file << " " << words.back() << "\n" << run.All();
      EXPECT_EQ(BytesOf(file), bytes) << file << " " << words.back();
    }
  }
}

TEST_F(CommandLineOfZolvane, ATraceIsNoFileOfTheCommand) {
  const auto target = Folder.Path("new.bak");
  EXPECT_EQ(RunAlone({"--trace", target, "export", target}).Status, 2);
  EXPECT_EQ(Run({"--trace", Folder.Path("memory.json"), "--yes", "upload"}).Status, 2);
  EXPECT_EQ(
      RunAlone({"--trace", Folder.Path("Zolvane.history/trace"), "backup", Folder.Path("r.html")}).Status, 2);
  EXPECT_EQ(RunAlone({"--trace", Folder.Path("Zolvane.history"), "check"}).Status, 2);
  EXPECT_EQ(Folder.Names(), (Words{"Zolvane.ini"}));
}

#ifndef _WIN32
TEST_F(CommandLineOfZolvane, ATraceIsNoFileOfTheCommandByAnotherPathEither) {
  std::filesystem::create_directory_symlink(".", Folder.Path("link"));
  EXPECT_EQ(RunAlone({"--trace", Folder.Path("link/new.bak"), "export", Folder.Path("new.bak")}).Status, 2);
  EXPECT_EQ(Run({"--trace", Folder.Path("link/memory.json"), "--yes", "upload"}).Status, 2);
  EXPECT_FALSE(Folder.Has("new.bak"));
}
#endif

TEST_F(CommandLineOfZolvane, AFaultNeedsASimulatedInstrument) {
  const auto run = RunAlone({"--link", "none", "--fault", "silent@1", "show", "instrument"});
  EXPECT_EQ(run.Status, 2);
  EXPECT_EQ(RunAlone({"--fault", "silent@1", "show", "instrument"}).Errors,
            "zolvane: --fault goes with a simulated link, and --link names none\n");
}

TEST_F(CommandLineOfZolvane, NothingItPrintsSteersTheTerminal) {
  const auto run = RunAlone({"show", "\x1b[2J\xc2\x9b.ini"});
  EXPECT_EQ(run.Status, 2);
  EXPECT_TRUE(std::ranges::none_of(run.Errors, [](char byte) { return byte == '\x1b' || byte == '\x9b'; }));
}

TEST_F(CommandLineOfZolvane, WhatIsRefusedBeforeTheCommandRunsIsSaidInTheDocument) {
  for (const Words& words :
       {Words{"--frobnicate", "show", "file"}, Words{"--despite", "nothing", "upload"},
        Words{"--timeout", "never", "show", "file"}, Words{"--fault", "frobnicate@1", "show", "file"},
        Words{"frobnicate"}, Words{"show"}, Words{}, Words{"--trace", "", "show", "file"}}) {
    const auto document = RunJson(words);
    EXPECT_EQ(document.at("exit_status"), 2) << document;
    EXPECT_EQ(document.at("outcome"), "failed") << document;
    EXPECT_NE(document.at("problem"), "") << document;
  }
  EXPECT_EQ(RunAlone({"show", "--frobnicate"}).Output, "");
  const auto unusable = RunAlone({"--json", "--link", "nonsense", "show", "file"});
  EXPECT_EQ(unusable.Document().at("command"), "show");
  EXPECT_EQ(unusable.Errors, "zolvane: " + unusable.Document().at("problem").get<std::string>() + "\n");
}

TEST_F(CommandLineOfZolvane, AMissingSideIsSaidInTheDocument) {
  const auto document = RunJson({"show", "@1"});
  EXPECT_EQ(document.at("exit_status"), 2);
  EXPECT_EQ(document.at("outcome"), "failed");
  EXPECT_EQ(document.at("problem"), "the history has no operation \"@1\"; \"zolvane history\" lists them");
}

}  // namespace
}  // namespace zolvane
