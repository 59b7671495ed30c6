#include <algorithm>
#include <set>

#include "zolvane/zolvane_fixture.h"

namespace zolvane {
namespace {

class BringingBackTest : public Zolvane {
 protected:
  // The instrument knows all keys and has nothing unsaved; then the file changes.
  void SetUp() override {
    ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
    Replace("STAGE,1612,", "STAGE,11612,");
    Replace("MountHeight=164.35", "MountHeight=164.5");
  }
};

TEST_F(BringingBackTest, UndoOfAnUploadLeavesFileAndMemoryAsTheyWere) {
  const auto memory = Memory();
  const auto file = Configuration();
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  ASSERT_NE(Memory(), memory);
  const auto document = RunJson({"undo"});
  EXPECT_EQ(document.at("outcome"), "done") << document.dump(2);
  EXPECT_EQ(Memory(), memory);
  EXPECT_EQ(Configuration(), file);
}

TEST_F(BringingBackTest, UndoTwiceIsRedo) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto memory = Memory();
  ASSERT_EQ(Run({"undo"}).Status, 0);
  ASSERT_EQ(Run({"undo"}).Status, 0);
  EXPECT_EQ(Memory(), memory);
}

TEST_F(BringingBackTest, UndoOfADownloadPutsTheFileBackByteForByte) {
  const auto file = Configuration();
  ASSERT_EQ(Run({"--yes", "download"}).Status, 0);
  ASSERT_NE(Configuration(), file);
  EXPECT_EQ(RunAlone({"undo"}).Status, 0);
  EXPECT_EQ(Configuration(), file);
}

TEST_F(BringingBackTest, WithoutAHistoryThereIsNothingToUndo) {
  std::filesystem::remove_all(Folder.Path("Zolvane.history"));
  const auto run = Run({"undo"});
  EXPECT_EQ(run.Status, 2);
  EXPECT_NE(run.Errors.find("there is nothing to undo"), std::string::npos);
  EXPECT_EQ(Run({"resume"}).Status, 2);
}

TEST_F(BringingBackTest, OfABackupThereIsNothingToUndo) {
  ASSERT_EQ(Run({"backup", Folder.Path("kept.html")}).Status, 0);
  const auto number = RunJson({"history"}).at("operations").back().at("operation").get<int>();
  const auto run = Run({"undo", std::to_string(number)});
  EXPECT_EQ(run.Status, 2) << run.All();
  EXPECT_NE(run.Errors.find("backup, changed neither side"), std::string::npos) << run.Errors;
}

TEST_F(BringingBackTest, WhoHasSentNothingIsNotToldToGoOn) {
  std::filesystem::remove_all(Folder.Path("Zolvane.history"));
  Folder.Put("memory.json", "{}");
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto run = Run({"undo"});
  EXPECT_EQ(run.Status, 1) << run.All();
  EXPECT_NE(run.Errors.find("cannot be removed"), std::string::npos) << run.Errors;
  EXPECT_EQ(run.Errors.find("goes on from here"), std::string::npos) << run.Errors;
}

TEST_F(BringingBackTest, NamesEveryKeyThatCannotBeRemoved) {
  std::filesystem::remove_all(Folder.Path("Zolvane.history"));
  Folder.Put("memory.json", "{}");
  const auto sent = RunJson({"--yes", "upload"}).at("values").size();
  const auto undo = RunJson({"undo"});
  const auto shown = RunJson({"history", "show", "@last"});
  for (const auto& document : {undo, shown}) {
    std::set<std::string> stay;
    for (const auto& value : document.at("values")) {
      if (value.at("verdict") == "cannot_be_removed") {
        EXPECT_EQ(value.at("left"), value.at("found")) << value;
        EXPECT_FALSE(value.contains("sent")) << value;
        stay.insert(value.at("key").get<std::string>());
      }
    }
    EXPECT_EQ(stay.size(), sent);
  }
}

TEST_F(BringingBackTest, ResumeGoesOnWithTheLastUploadThoughItsValueWasNotTaken) {
  ASSERT_EQ(Run({"--yes", "--fault", "limit@STAGE1_X", "upload"}).Status, 1);
  Replace("MountHeight=164.5", "MountHeight=165");
  const auto cut = Run({"--yes", "--fault", "drop@MountHeight", "upload"});
  ASSERT_EQ(cut.Status, 1) << cut.All();
  const auto run = Run({"resume"});
  EXPECT_EQ(run.Status, 0) << run.All();
  EXPECT_EQ(Kept("MountHeight"), "13200");
}

TEST_F(BringingBackTest, WhoHasChangedNothingIsNotToldToUndoIt) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  Replace("MountHeight=164.5", "MountHeight=165");
  const auto refused = Run({"--yes", "--fault", "refuse@MountHeight", "upload"});
  ASSERT_EQ(refused.Status, 1) << refused.All();
  EXPECT_NE(refused.Errors.find("\"resume\" goes on from here"), std::string::npos) << refused.Errors;
  EXPECT_EQ(refused.Errors.find("undo"), std::string::npos) << refused.Errors;
  EXPECT_EQ(Run({"resume"}).Status, 0);
  EXPECT_EQ(Kept("MountHeight"), "13200");
  const auto cancelled = Run({"--answer", "cancel", "download"});
  EXPECT_EQ(cancelled.Status, 1);
  EXPECT_EQ(cancelled.Errors.find("undo"), std::string::npos) << cancelled.Errors;
}

TEST_F(BringingBackTest, UndoOfAnOlderUploadLeavesWhatALaterOneOfOursChanged) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto number = RunJson({"history"}).at("operations").back().at("operation").get<int>();
  const auto stage = Kept("STAGE1_X");
  Replace("DeltaZ=24", "DeltaZ=30");
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto undo = Run({"undo", std::to_string(number)});
  EXPECT_EQ(undo.Status, 0) << undo.All();
  EXPECT_NE(Kept("STAGE1_X"), stage);
  EXPECT_EQ(Kept("Delta_Z"), "30");
}

// What both changed is the later one's.
TEST_F(BringingBackTest, UndoOfAnOlderUploadObjectsToWhatALaterOneChangedAgain) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto number = RunJson({"history"}).at("operations").back().at("operation").get<int>();
  Replace("MountHeight=164.5", "MountHeight=165");
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  EXPECT_EQ(Run({"undo", std::to_string(number)}).Status, 3);
  EXPECT_EQ(Kept("MountHeight"), "13200");
}

TEST_F(BringingBackTest, UndoPassesOverAResumedUploadThatChangedNothing) {
  const auto before = Kept("MountHeight");
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  ASSERT_EQ(Run({"--yes", "--fault", "close@300", "upload"}).Status, 1);
  ASSERT_EQ(Run({"resume"}).Status, 0);
  ASSERT_NE(Kept("MountHeight"), before);
  EXPECT_EQ(Run({"undo"}).Status, 0);
  EXPECT_EQ(Kept("MountHeight"), before);
}

TEST_F(BringingBackTest, ARestoreCutBehindTheFileIsResumed) {
  const auto cut = Run({"--instrument", "--fault", "close@200", "restore", "@2"});
  ASSERT_EQ(cut.Status, 1) << cut.All();
  EXPECT_NE(cut.Errors.find("\"resume\" goes on from here, \"undo\""), std::string::npos) << cut.Errors;
  EXPECT_EQ(cut.Errors.find("unknown since"), std::string::npos) << "no line had left: " << cut.Errors;
  EXPECT_EQ(Run({"resume"}).Status, 0);
  EXPECT_EQ(Configuration(), Sample());
  EXPECT_EQ(Run({"diff", "file", "instrument"}).Status, 0);
}

// Somebody edits the file between an operation and its resume: that is no part of what is taken back.
TEST_F(BringingBackTest, UndoOfAResumedOperationLeavesWhatSomebodyElseChangedMeanwhile) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto before = Configuration();
  ASSERT_EQ(Run({"--instrument", "--fault", "close@200", "restore", "@2"}).Status, 1);
  Replace("HeadDepth_8ch=46.3", "HeadDepth_8ch=47.5");
  ASSERT_EQ(Run({"resume"}).Status, 0);
  const auto undo = Run({"undo"});
  EXPECT_EQ(undo.Status, 0) << undo.All();
  auto expected = before;
  const std::string_view old = "HeadDepth_8ch=46.3";
  EXPECT_EQ(Configuration(), expected.replace(expected.find(old), old.size(), "HeadDepth_8ch=47.5"));
}

// What was let pass once, and left alone, is somebody else's still.
TEST_F(BringingBackTest, AValueLeftToSomebodyElseIsNoLaterResumesOrUndos) {
  ASSERT_EQ(Run({"--yes", "--fault", "close@300", "upload"}).Status, 1);
  auto memory = Json::parse(Memory());
  memory["MountHeight"] = "7777";
  Folder.Put("memory.json", memory.dump());
  ASSERT_EQ(Run({"resume"}).Status, 3);
  ASSERT_EQ(Run({"--despite", "changed", "resume"}).Status, 1);
  const auto undo = Run({"undo"});
  EXPECT_EQ(undo.Status, 3) << undo.All();
  const auto resume = Run({"resume"});
  EXPECT_EQ(resume.Status, 2) << resume.All();
  EXPECT_NE(resume.Errors.find("is somebody else's"), std::string::npos) << resume.Errors;
  EXPECT_EQ(Kept("MountHeight"), "7777");
}

TEST_F(BringingBackTest, WhatAnUndoLeftToSomebodyElseIsNothingToResume) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  Replace("MountHeight=164.5", "MountHeight=150.5");
  Replace("HeadDepth_8ch=46.3", "HeadDepth_8ch=33.5");
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  auto memory = Json::parse(Memory());
  memory["MountHeight"] = "9999";
  Folder.Put("memory.json", memory.dump());
  const auto undo = Run({"--despite", "changed", "undo"});
  EXPECT_EQ(undo.Status, 1) << undo.All();
  EXPECT_EQ(undo.Errors.find("resume"), std::string::npos) << undo.Errors;
  EXPECT_EQ(Run({"resume"}).Status, 2);
}

TEST_F(BringingBackTest, UndoAndResumeOfAnUploadLeaveAMissingFileMissing) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  Replace("MountHeight=164.5", "MountHeight=150.5");
  ASSERT_EQ(Run({"--yes", "--fault", "refuse@SAVE", "upload"}).Status, 1);
  std::filesystem::remove(Folder.Path("Zolvane.ini"));
  const auto resume = Run({"resume"});
  EXPECT_EQ(resume.Status, 0) << resume.All();
  EXPECT_FALSE(Folder.Has("Zolvane.ini"));
  const auto undo = Run({"undo"});
  EXPECT_EQ(undo.Status, 0) << undo.All();
  EXPECT_FALSE(Folder.Has("Zolvane.ini"));
  EXPECT_EQ(Kept("MountHeight"), "13160");
}

TEST_F(BringingBackTest, ARehearsalToldOfAHistoryWithoutAJournalObjects) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  std::filesystem::remove(Folder.Path("Zolvane.history/journal.jsonl"));
  for (const auto* const command : {"upload", "download", "undo"}) {
    const auto run = Run({"--rehearse", "--yes", command});
    EXPECT_EQ(run.Status, 3) << run.All();
    EXPECT_NE(run.Errors.find("[history-damaged]"), std::string::npos) << run.Errors;
  }
}

TEST_F(BringingBackTest, AMissingFileStandsInTheWayOfAnUndoThatWouldChangeIt) {
  ASSERT_EQ(Run({"--yes", "download"}).Status, 0);
  std::filesystem::remove(Folder.Path("Zolvane.ini"));
  const auto document = RunJson({"undo"});
  EXPECT_EQ(document.at("exit_status"), 3);
  EXPECT_EQ(document.at("objections")[0].at("code"), "changed") << document.dump(2);
  EXPECT_FALSE(Folder.Has("Zolvane.ini"));
}

TEST_F(BringingBackTest, UndoOfWhatLeftTheInstrumentAsItWasNeedsNone) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto before = Configuration();
  const auto record = Folder.Path("now.html");
  ASSERT_EQ(Run({"backup", record}).Status, 0);
  Replace("HeadDepth_8ch=46.3", "HeadDepth_8ch=47.5");
  ASSERT_EQ(Run({"--instrument", "restore", record}).Status, 0);
  EXPECT_EQ(Configuration(), before);
  const auto undo = RunAlone({"undo"});
  EXPECT_EQ(undo.Status, 0) << undo.All();
  EXPECT_NE(Configuration(), before);
}

TEST_F(BringingBackTest, ResumeSendsWhatIsMissing) {
  const auto cut = Run({"--yes", "--fault", "silent@250", "upload"});
  ASSERT_EQ(cut.Status, 1) << cut.All();
  EXPECT_NE(cut.Errors.find("\"resume\" goes on from here"), std::string::npos) << cut.Errors;
  const auto document = RunJson({"resume"});
  EXPECT_EQ(document.at("outcome"), "done") << document.dump(2);
  EXPECT_EQ(Run({"diff", "file", "instrument"}).Status, 0);
}

TEST_F(BringingBackTest, UndoOfACutUploadLeavesTheMemoryAsItWas) {
  const auto memory = Memory();
  ASSERT_EQ(Run({"--yes", "--fault", "silent@250", "upload"}).Status, 1);
  const auto run = Run({"undo"});
  EXPECT_EQ(run.Status, 0) << run.All();
  EXPECT_EQ(Memory(), memory);
}

// Whatever an instrument answers goes back to it.
TEST_F(BringingBackTest, UndoPutsBackValuesThatAreNoUtf8) {
  auto memory = Json::parse(Memory());
  memory["STAGE1_X"] = "caf\\xe9";
  Folder.Put("memory.json", memory.dump());
  ASSERT_EQ(Run({"show", "instrument", "STAGE1_X"}).Status, 0);
  const auto upload = Run({"--yes", "upload"});
  ASSERT_EQ(upload.Status, 0) << upload.All();
  EXPECT_EQ(Kept("STAGE1_X"), "11612");
  const auto undo = Run({"undo"});
  EXPECT_EQ(undo.Status, 0) << undo.All();
  EXPECT_EQ(Kept("STAGE1_X"), "caf\\xe9");
}

TEST_F(BringingBackTest, OnlyRecordsAndOperationsAreRestored) {
  const auto copy = Folder.Put("copy.ini", Sample());
  for (const auto& side : {copy, std::string{ZOLVANE_SAMPLES_PATH} + "/Zolvane.bak", std::string{"file"},
                           std::string{"instrument"}}) {
    const auto run = Run({"restore", side});
    EXPECT_EQ(run.Status, 2) << side;
    EXPECT_NE(run.Errors.find("only these can be restored"), std::string::npos) << run.Errors;
  }
}

TEST_F(BringingBackTest, ARestoreWhereNothingWasPrintsCountsAlone) {
  std::filesystem::remove(Folder.Path("Zolvane.ini"));
  const auto run = RunAlone({"restore", "@last"});
  EXPECT_EQ(run.Status, 0) << run.All();
  EXPECT_LT(std::ranges::count(run.Output, '\n'), 10) << run.Output;
  EXPECT_NE(run.Output.find("file: a new one with "), std::string::npos) << run.Output;
}

TEST_F(BringingBackTest, UnknownSinceCountsTheLinesThatWereSent) {
  ASSERT_EQ(Run({"backup", Folder.Path("record.html")}).Status, 0);
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto run = Run({"--fault", "silent@179", "--instrument", "restore", Folder.Path("record.html")});
  EXPECT_EQ(run.Status, 1) << run.All();
  EXPECT_NE(run.Errors.find("1 line sent, 0 answered"), std::string::npos) << run.Errors;
  EXPECT_NE(run.Errors.find("unknown since line 1;"), std::string::npos) << run.Errors;
}

TEST_F(BringingBackTest, WhatSomebodyElseChangedStaysAndIsNamed) {
  ASSERT_EQ(Run({"--yes", "download"}).Status, 0);
  Replace("STAGE,1612,", "STAGE,77,");
  const auto changed = Configuration();
  const auto document = RunJson({"undo"});
  EXPECT_EQ(document.at("exit_status"), 3);
  EXPECT_EQ(document.at("objections")[0].at("code"), "changed");
  EXPECT_EQ(Configuration(), changed);
  const auto run = Run({"--despite", "changed", "undo"});
  EXPECT_EQ(run.Status, 1) << run.All();
  EXPECT_NE(run.Errors.find("changed by somebody else"), std::string::npos) << run.Errors;
  EXPECT_NE(Configuration().find("STAGE,77,"), std::string::npos);
}

TEST_F(BringingBackTest, ARestoreNeedsNoConfigurationInTheFolder) {
  const auto file = Configuration();
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  std::filesystem::remove(Folder.Path("Zolvane.ini"));
  const auto run = RunAlone({"restore", "@last"});
  EXPECT_EQ(run.Status, 0) << run.All();
  EXPECT_EQ(Configuration(), file);
}

TEST_F(BringingBackTest, ARecordRestoresFileAndInstrument) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto memory = Memory();
  const auto file = Configuration();
  const auto record = Folder.Path("record.html");
  ASSERT_EQ(Run({"backup", record}).Status, 0);
  Replace("MountHeight=164.5", "MountHeight=160");
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto document = RunJson({"restore", "--instrument", record});
  EXPECT_EQ(document.at("outcome"), "done") << document.dump(2);
  EXPECT_EQ(Memory(), memory);
  EXPECT_EQ(Configuration(), file);
  EXPECT_EQ(RunAlone({"history", "audit", "--against", record}).Status, 0);
}

TEST_F(BringingBackTest, ARecordBehindARestoreIntoAnEmptyFolderTellsOfIt) {
  ASSERT_EQ(RunAlone({"backup", Folder.Path("first.html")}).Status, 0);
  std::filesystem::remove(Folder.Path("Zolvane.ini"));
  ASSERT_EQ(RunAlone({"restore", Folder.Path("first.html")}).Status, 0);
  ASSERT_EQ(RunAlone({"backup", Folder.Path("second.html")}).Status, 0);
  const auto page = Folder.Read("second.html");
  EXPECT_NE(page.find("restore, done, by "), std::string::npos);
  EXPECT_NE(page.find("There was no configuration before."), std::string::npos);
}

TEST_F(BringingBackTest, ARecordDamagedInItsFirstLineIsNotTakenForAConfiguration) {
  ASSERT_EQ(RunAlone({"backup", Folder.Path("record.html")}).Status, 0);
  Folder.Put("record.html", "<" + Folder.Read("record.html"));
  for (const Words& words : {Words{"show"}, Words{"check"}, Words{"diff", "file"}, Words{"restore"}}) {
    auto command = words;
    command.push_back(Folder.Path("record.html"));
    const auto run = RunAlone(command);
    EXPECT_EQ(run.Status, 2) << words.front();
    EXPECT_NE(run.Errors.find("is damaged or was changed"), std::string::npos) << run.Errors;
  }
}

TEST_F(BringingBackTest, ADamagedRecordIsRefused) {
  const auto record = Folder.Path("record.html");
  ASSERT_EQ(Run({"backup", record}).Status, 0);
  auto bytes = Folder.Read("record.html");
  bytes[bytes.size() / 2] ^= 1;
  Folder.Put("record.html", bytes);
  EXPECT_EQ(RunAlone({"restore", record}).Status, 2);
}

}  // namespace
}  // namespace zolvane
