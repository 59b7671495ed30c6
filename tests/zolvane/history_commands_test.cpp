#include <filesystem>
#include <fstream>

#include "zolvane/zolvane_fixture.h"

namespace zolvane {
namespace {

using HistoryCommands = Zolvane;

TEST_F(HistoryCommands, AnEmptyHistoryIsSaid) {
  EXPECT_EQ(RunAlone({"history"}).Output, "The history has no operation yet.\n");
}

TEST_F(HistoryCommands, AnOperationIsShownWithWhatWasLetPassAndItsCounts) {
  Replace("MountHeight=164.35", "MountHeight=164,35");
  ASSERT_EQ(Run({"--yes", "--despite", "findings", "upload"}).Status, 0);
  const auto shown = RunJson({"history", "show", "@last"});
  ASSERT_EQ(shown.at("objections").size(), 1U) << shown.dump(2);
  EXPECT_EQ(shown.at("objections")[0].at("code"), "findings");
  EXPECT_EQ(shown.at("counts").at("sent"), shown.at("values").size());
}

TEST_F(HistoryCommands, AFileIsNoFolderWithAHistory) {
  std::filesystem::remove_all(Folder.Path());
  std::ofstream{Folder.Path()} << "no folder";
  const auto run = RunAlone({"history"});
  EXPECT_EQ(run.Status, 2) << run.All();
  EXPECT_NE(run.Errors.find("there is no folder"), std::string::npos) << run.Errors;
}

TEST_F(HistoryCommands, AFolderThatIsNotThereHasNone) {
  std::filesystem::remove_all(Folder.Path());
  const auto run = RunAlone({"history"});
  EXPECT_EQ(run.Status, 2);
  EXPECT_NE(run.Errors.find("there is no folder"), std::string::npos) << run.Errors;
}

TEST_F(HistoryCommands, AJournalThatIsMissingBesideItsObjectsIsDamage) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  std::filesystem::remove(Folder.Path("Zolvane.history/journal.jsonl"));
  EXPECT_EQ(Run({"history", "audit"}).Status, 1);
}

TEST_F(HistoryCommands, AnUndoSaysWhatItTookBack) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  Replace("STAGE,1612,", "STAGE,1613,");
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto number = RunJson({"history"}).at("operations").back().at("operation");
  ASSERT_EQ(Run({"undo", std::to_string(number.get<int>())}).Status, 0);
  const auto document = RunJson({"history", "show", "@last"});
  EXPECT_EQ(document.at("operation").at("about"), number);
  const auto text = Run({"history", "show", "@last"}).Output;
  EXPECT_NE(text.find("operation " + std::to_string(number.get<int>()) + "\n"), std::string::npos) << text;
}

TEST_F(HistoryCommands, OperationsAreListedInTheirOrder) {
  ASSERT_EQ(Run({"--yes", "--by", "Ada", "upload"}).Status, 0);
  ASSERT_EQ(Run({"--by", "Bea", "export", Folder.Path("a.bak")}).Status, 0);
  const auto document = RunJson({"history"});
  ASSERT_EQ(document.at("operations").size(), 2U);
  EXPECT_EQ(document.at("operations")[0].at("operation"), 2);
  EXPECT_EQ(document.at("operations")[0].at("action"), "upload");
  EXPECT_EQ(document.at("operations")[0].at("person"), "Ada");
  EXPECT_EQ(document.at("operations")[1].at("operation"), 4);
  EXPECT_EQ(document.at("checkpoint")[1], "4");
}

TEST_F(HistoryCommands, ATableProgramTakesNoTextForAFormula) {
  ASSERT_EQ(Run({"--yes", "--by", "=1+1", "--reason", "a, \"b\"", "upload"}).Status, 0);
  const auto table = RunAlone({"history", "--csv"}).Output;
  EXPECT_NE(table.find(",'=1+1,"), std::string::npos) << table;
  EXPECT_NE(table.find(",\"a, \"\"b\"\"\","), std::string::npos) << table;
}

TEST_F(HistoryCommands, OneOperationShowsItsVerdicts) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto document = RunJson({"history", "show", "2"});
  EXPECT_EQ(document.at("operation").at("action"), "upload");
  EXPECT_GT(document.at("values").size(), 100U);
  EXPECT_EQ(RunAlone({"history", "show", "3"}).Status, 2);
}

TEST_F(HistoryCommands, OneOperationShowsItsCausesCountsAndBoxes) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  Replace("STAGE,1612,", "STAGE,11612,");
  ASSERT_EQ(Run({"--yes", "--fault", "limit@STAGE1_X", "upload"}).Status, 1);
  const auto document = RunJson({"history", "show", "@last"});
  EXPECT_EQ(document.at("boxes").at(0).at("answer"), "OK") << document.at("boxes");
  std::string cause;
  for (const auto& value : document.at("values")) {
    cause += value.value("cause", "");
  }
  EXPECT_EQ(cause, "limited");
  const auto shown = RunAlone({"history", "show", "@last"}).Output;
  EXPECT_NE(shown.find("differs   limited\n"), std::string::npos) << shown;
  EXPECT_NE(shown.find("1 differs, "), std::string::npos) << shown;
  EXPECT_NE(shown.find("box: "), std::string::npos) << shown;
}

TEST_F(HistoryCommands, AnAuditNeedsAHistory) {
  const auto run = RunAlone({"history", "audit"});
  EXPECT_EQ(run.Status, 2);
  EXPECT_NE(run.Errors.find("there is no history yet"), std::string::npos) << run.Errors;
}

TEST_F(HistoryCommands, AWholeHistoryPassesTheAudit) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  ASSERT_EQ(RunAlone({"export", Folder.Path("a.bak")}).Status, 0);
  const auto document = RunJson({"history", "audit", "--against", Folder.Path("a.bak")});
  EXPECT_EQ(document.at("exit_status"), 0) << document.dump(2);
  EXPECT_EQ(document.at("audit").at("anchored_up_to"), 4);
}

TEST_F(HistoryCommands, AChangedEntryFailsTheAudit) {
  ASSERT_EQ(Run({"--yes", "--by", "Ada", "upload"}).Status, 0);
  auto journal = Folder.Read("Zolvane.history/journal.jsonl");
  journal.replace(journal.find("Ada"), 3, "Eve");
  Folder.Put("Zolvane.history/journal.jsonl", journal);
  const auto document = RunJson({"history", "audit"});
  EXPECT_EQ(document.at("exit_status"), 1);
  EXPECT_EQ(document.at("audit").at("intact"), false);
  EXPECT_EQ(RunJson({"--yes", "upload"}).at("objections")[0].at("code"), "history-damaged");
}

TEST_F(HistoryCommands, ADeletedHistoryIsNotAnchored) {
  ASSERT_EQ(RunAlone({"export", Folder.Path("a.bak")}).Status, 0);
  std::filesystem::remove_all(Folder.Path("Zolvane.history"));
  EXPECT_EQ(RunAlone({"history", "audit", "--against", Folder.Path("a.bak")}).Status, 1);
}

TEST_F(HistoryCommands, SidesComeOutOfTheHistory) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  Replace("MountHeight=164.35", "MountHeight=164.5");
  const auto document = RunJson({"diff", "@last", "file"});
  EXPECT_EQ(document.at("exit_status"), 1);
  EXPECT_EQ(document.at("differences").size(), 1U);
  EXPECT_EQ(RunAlone({"diff", "@2:found", "@2"}).Status, 0);
}

TEST_F(HistoryCommands, OfADamagedHistoryNothingIsTakenBack) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto journal = Folder.Read("Zolvane.history/journal.jsonl");
  Folder.Put("Zolvane.history/journal.jsonl", "x" + journal);
  const auto run = Run({"undo"});
  EXPECT_EQ(run.Status, 3) << run.All();
  EXPECT_NE(run.Errors.find("history-damaged"), std::string::npos) << run.Errors;
  EXPECT_EQ(Folder.Read("Zolvane.history/journal.jsonl"), "x" + journal);
  EXPECT_EQ(Run({"history"}).Output.find("no operation yet"), std::string::npos);
}

TEST_F(HistoryCommands, WhoeverReadsADamagedHistorySaysSoOnce) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto journal = Folder.Read("Zolvane.history/journal.jsonl");
  Folder.Put("Zolvane.history/journal.jsonl", journal + "{}\n");
  const std::string_view told = "zolvane: the history is damaged: line 4: ";
  for (const Words& words :
       {Words{"history"}, Words{"history", "show", "2"}, Words{"show", "@2"}, Words{"show", "@2:found"},
        Words{"diff", "@2", "@2"}, Words{"diff", "@2", "file"}, Words{"drift"}}) {
    const auto run = Run(words);
    EXPECT_EQ(run.Status, 1) << words.back() << "\n" << run.All();
    const auto at = run.Errors.find(told);
    ASSERT_NE(at, std::string::npos) << words.back() << "\n" << run.Errors;
    EXPECT_EQ(run.Errors.find(told, at + 1), std::string::npos) << run.Errors;
    EXPECT_EQ(RunJson(words).at("problem").get<std::string>().find("the history is damaged: line 4"), 0U);
  }
  EXPECT_EQ(Run({"history", "show", "4"}).Status, 2);
}

// An objection has told it, and it was let pass.
TEST_F(HistoryCommands, WhatIsRestoredOutOfADamagedHistoryIsRestoredAllTheSame) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto journal = Folder.Read("Zolvane.history/journal.jsonl");
  Folder.Put("Zolvane.history/journal.jsonl", journal + "{}\n");
  const auto run = RunAlone({"--despite", "history-damaged", "restore", "@2"});
  EXPECT_EQ(run.Status, 0) << run.All();
  EXPECT_EQ(run.Errors.find("zolvane: the history is damaged"), std::string::npos) << run.Errors;
}

}  // namespace
}  // namespace zolvane
