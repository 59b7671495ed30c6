// An operation that was begun and has not ended stands in the way until something has proven what it may have changed;
// and what else a history has to say, or must not be overwritten by.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "custody/disk/sha256.h"
#include "custody/history/history.h"
#include "custody/support/custody_room.h"
#include "support/golden.h"

namespace zolvane {
namespace {

class UnfinishedUpload : public testing::Test {
 protected:
  // One upload has ended; the program of the next was killed before its first line left.
  void SetUp() override {
    ASSERT_EQ(RunBut({"upload"}).Status(), 0);
    room_.Files.Put(ConfigFileIn(CustodyRoom::Folder()),
                    Replaced(room_.Configuration(), "MountHeight=164.35", "MountHeight=160.25"));
    number_ = BeginUpload();
  }

  std::uint64_t BeginUpload() {
    History history{room_.Files, room_.Witness, CustodyRoom::Folder()};
    EXPECT_TRUE(history.OpenForRecording().Ok());
    auto entry = history.Entries().front();
    entry.Intended = entry.Found;
    entry.FileBefore = history.PutObject(room_.Configuration()).value_or("");
    entry.FileAfter = entry.FileBefore;
    return history.Begin(entry).value_or(0);
  }

  // The small configuration has findings.
  RanCommand RunBut(Words words) {
    words.insert(words.begin(), {"--yes", "--despite", "findings"});
    return room_.Run(words);
  }

  bool StandsInTheWay() {
    const auto ran = RunBut({"--rehearse", "upload"});
    return ran.Status() == exit_status::objection && ran.Printed.find("[unfinished]") != std::string::npos;
  }

  CustodyRoom room_{SmallConfiguration(), WireFaceOfFile(SmallConfiguration()).Lines};
  std::uint64_t number_ = 0;
};

TEST_F(UnfinishedUpload, StandsInTheWay) {
  EXPECT_GT(number_, 0U);
  EXPECT_TRUE(StandsInTheWay());
}

TEST_F(UnfinishedUpload, IsNotEndedByABackup) {
  const auto ran = RunBut({"backup", CustodyRoom::PathTo("new.html")});
  EXPECT_EQ(ran.Status(), 0) << ran.Printed;
  EXPECT_TRUE(StandsInTheWay());
}

TEST_F(UnfinishedUpload, IsNotEndedByARestoreOfTheFileAlone) {
  const auto refused = RunBut({"restore", "@2"});
  EXPECT_EQ(refused.Status(), exit_status::objection) << refused.Printed;
  const auto ran = RunBut({"--despite", "unfinished", "restore", "@2"});
  EXPECT_EQ(ran.Status(), 0) << ran.Printed;
  EXPECT_TRUE(StandsInTheWay());
}

TEST_F(UnfinishedUpload, IsNamedByADriftThatKnowsOnlyWhatOthersLeft) {
  const auto ran = room_.Run({"drift"});
  EXPECT_NE(ran.Printed.find("operation " + std::to_string(number_) + ", upload, has not ended"),
            std::string::npos)
      << ran.Printed;
}

TEST_F(UnfinishedUpload, StandsInTheWayOfAnUndoOfAnother) {
  const auto ran = RunBut({"undo", "2"});
  EXPECT_EQ(ran.Status(), exit_status::objection) << ran.Printed;
  EXPECT_NE(ran.Printed.find("[unfinished]"), std::string::npos) << ran.Printed;
  EXPECT_NE(ran.Printed.find(R"("resume" or "undo )" + std::to_string(number_) + R"(" ends it)"),
            std::string::npos)
      << ran.Printed;
}

TEST_F(UnfinishedUpload, IsEndedByItsUndo) {
  const auto ran = RunBut({"undo"});
  EXPECT_EQ(ran.Status(), 0) << ran.Printed;
  EXPECT_FALSE(StandsInTheWay());
}

TEST_F(UnfinishedUpload, IsEndedByItsResume) {
  const auto ran = RunBut({"resume"});
  EXPECT_EQ(ran.Status(), 0) << ran.Printed;
  EXPECT_FALSE(StandsInTheWay());
}

TEST_F(UnfinishedUpload, IsEndedByAnUploadThatProvesAllValues) {
  const auto ran = RunBut({"--despite", "unfinished", "upload"});
  EXPECT_EQ(ran.Status(), 0) << ran.Printed;
  EXPECT_FALSE(StandsInTheWay());
}

TEST_F(UnfinishedUpload, IsResumedAlsoAfterACancelledOperation) {
  const auto cancelled = room_.Run({"--despite", "findings", "--despite", "unfinished", "upload"});
  ASSERT_EQ(cancelled.Status(), 1) << cancelled.Printed;
  EXPECT_TRUE(StandsInTheWay());
  const auto ran = RunBut({"resume"});
  EXPECT_EQ(ran.Status(), 0) << ran.Printed;
  EXPECT_FALSE(StandsInTheWay());
}

// ---- What somebody does to the file behind it ----

class EditedBehind : public UnfinishedUpload {
 protected:
  void Edit(std::string_view from, std::string_view to) {
    room_.Files.Put(ConfigFileIn(CustodyRoom::Folder()), Replaced(room_.Configuration(), from, to));
  }

  // As the last one of that kind, of the file as it is, and to be ended by nobody.
  void BeginAgain(const std::string& action, const std::optional<std::string>& before = {}) {
    History history{room_.Files, room_.Witness, CustodyRoom::Folder()};
    ASSERT_TRUE(history.OpenForRecording().Ok());
    Entry entry;
    for (const auto& earlier : history.Entries()) {
      entry = earlier.Action == action && !earlier.IsEnd() ? earlier : entry;
    }
    entry.FileAfter = history.PutObject(room_.Configuration()).value_or("");
    entry.FileBefore = before ? Sha256Hex(*before) : entry.FileAfter;
    ASSERT_TRUE(history.Begin(entry));
  }

  void BackUp(const Words& more = {}) {
    auto words = more;
    words.insert(words.end(), {"backup", CustodyRoom::PathTo("new.html")});
    const auto ran = RunBut(words);
    ASSERT_EQ(ran.Status(), 0) << ran.Printed;
  }

  std::vector<std::string> Actions() {
    History history{room_.Files, room_.Witness, CustodyRoom::Folder()};
    EXPECT_TRUE(history.Open().Ok());
    std::vector<std::string> actions;
    for (const auto& entry : history.Entries()) {
      actions.push_back((entry.IsEnd() ? "end of " : "") + entry.Action);
    }
    return actions;
  }

  Entry EndOf(std::uint64_t number) {
    History history{room_.Files, room_.Witness, CustodyRoom::Folder()};
    EXPECT_TRUE(history.Open().Ok());
    for (const auto& entry : history.Entries()) {
      if (entry.Of == number) {
        return entry;
      }
    }
    return {};
  }

  const std::vector<std::string> begun_{"upload", "end of upload", "upload"};
};

TEST_F(EditedBehind, IsSeenAsOutside) {
  const auto left = room_.Configuration();
  Edit("MountHeight=160.25", "MountHeight=150.75");
  BackUp();
  EXPECT_EQ(Actions(), (std::vector<std::string>{"upload", "end of upload", "upload", "outside",
                                                 "end of outside", "backup", "end of backup"}));
  const auto outside = EndOf(number_ + 1);
  EXPECT_EQ(outside.FileBefore, Sha256Hex(left));
  EXPECT_EQ(outside.FileAfter, Sha256Hex(room_.Configuration()));
}

TEST_F(EditedBehind, LeavesTheUploadsOwnStateToIt) {
  const auto left = room_.Configuration();
  Edit("MountHeight=160.25", "MountHeight=150.75");
  const auto ran = RunBut({"--despite", "unfinished", "--by", "noether", "upload"});
  ASSERT_EQ(ran.Status(), 0) << ran.Printed;
  const auto end = EndOf(number_);
  EXPECT_EQ(end.FileAfter, Sha256Hex(left));
  EXPECT_EQ(end.Person, "noether") << "whoever saw the end recorded it";
}

TEST_F(EditedBehind, MayAlsoHaveBeenThePagesOwnChoice) {
  Edit("[DeviceType]\nInstalled=2", "[DeviceType]\nInstalled=1");
  BackUp();
  EXPECT_EQ(Actions(),
            (std::vector<std::string>{"upload", "end of upload", "upload", "backup", "end of backup"}));
}

TEST_F(EditedBehind, IsSeenBehindABrokenOffBackupToo) {
  BackUp();
  BeginAgain("backup");
  Edit("[DeviceType]\nInstalled=2", "[DeviceType]\nInstalled=1");  // no backup opens the page
  BackUp({"--despite", "exists", "--despite", "unfinished"});
  EXPECT_EQ(Actions(), (std::vector<std::string>{"upload", "end of upload", "upload", "backup",
                                                 "end of backup", "backup", "outside", "end of outside",
                                                 "backup", "end of backup", "end of backup"}));
}

TEST_F(EditedBehind, IsNotSeenInWhatTheOperationWasToWrite) {
  const auto before = room_.Configuration();
  Edit("MountHeight=160.25", "MountHeight=150.75");
  BeginAgain("upload", before);
  BackUp();
  EXPECT_EQ(Actions(), (std::vector<std::string>{"upload", "end of upload", "upload", "upload", "backup",
                                                 "end of backup"}));
}

TEST_F(EditedBehind, DoesNotKeepTheFileFromGoingBackWhole) {
  const auto before = room_.Configuration();
  const auto halfway = Replaced(before, "[Z_Calibration]\n", "[Z_Calibration]\nAdded=1\n");
  Edit("MountHeight=160.25", "MountHeight=150.75");
  Edit("[Z_Calibration]\n", "[Z_Calibration]\nAdded=1\n");
  BeginAgain("upload", before);
  room_.Files.Put(ConfigFileIn(CustodyRoom::Folder()), halfway);
  const auto ran = RunBut({"--despite", "unfinished", "undo"});
  EXPECT_EQ(ran.Status(), 0) << ran.Printed;
  EXPECT_EQ(room_.Configuration(), before);
}

// ---- A download that was cut short

class UnfinishedDownload : public EditedBehind {
 protected:
  void SetUp() override {
    ASSERT_EQ(RunBut({"upload"}).Status(), 0);
    before_ = room_.Configuration();
    ASSERT_EQ(RunBut({"download"}).Status(), 0);
    ASSERT_NE(room_.Configuration(), before_);
    BeginAgain("download", before_);
  }

  std::string before_;
};

TEST_F(UnfinishedDownload, IsEndedByAnotherDownload) {
  EXPECT_EQ(RunBut({"query"}).Status(), exit_status::objection);
  const auto ran = RunBut({"download"});
  EXPECT_EQ(ran.Status(), 0) << ran.Printed;
  EXPECT_FALSE(StandsInTheWay());
}

class UnfinishedImport : public EditedBehind {
 protected:
  void SetUp() override {
    room_.Files.Put(ConfigFileIn(CustodyRoom::Folder()),
                    Replaced(room_.Configuration(), "ExportCalibrationData=0", "ExportCalibrationData=1"));
    ASSERT_EQ(RunBut({"upload"}).Status(), 0);
    ASSERT_EQ(RunBut({"export", backup_}).Status(), 0);
    ASSERT_EQ(RunBut({"import", backup_}).Status(), 0);
    BeginAgain("import");
  }

  std::string backup_ = CustodyRoom::PathTo("own.bak");
};

TEST_F(UnfinishedImport, IsEndedByAnImportOfTheSameFileAlone) {
  const auto other = CustodyRoom::PathTo("other.bak");
  ASSERT_EQ(RunBut({"--despite", "unfinished", "export", other}).Status(), 0);
  const auto refused = RunBut({"import", other});
  EXPECT_EQ(refused.Status(), exit_status::objection) << refused.Printed;
  EXPECT_NE(refused.Printed.find("[unfinished]"), std::string::npos) << refused.Printed;
  const auto ran = RunBut({"import", backup_});
  EXPECT_EQ(ran.Status(), 0) << ran.Printed;
}

// Both sides are known by then, though not all went back.
TEST_F(UnfinishedDownload, IsEndedByAnUndoThatLeavesSomebodyElsesValue) {
  Edit("10340,10768,8_CH", "10340,10769,8_CH");
  const auto refused = RunBut({"undo"});
  EXPECT_EQ(refused.Status(), exit_status::objection) << refused.Printed;
  const auto ran = RunBut({"--despite", "changed", "undo"});
  EXPECT_EQ(ran.Status(), 1) << ran.Printed;
  EXPECT_NE(room_.Configuration().find(",10769,8_CH"), std::string::npos) << room_.Configuration();
  EXPECT_FALSE(StandsInTheWay());
}

// ---- Besides ----

TEST_F(UnfinishedUpload, IsNeverHiddenByAFileWrittenOverTheHistory) {
  const auto files = room_.Files.Files();
  for (const auto* const path : {"Zolvane.history/journal.jsonl", "Zolvane.history/new.html",
                                 "Zolvane.history/objects/new.html", "Zolvane.ini"}) {
    const auto ran = RunBut({"--despite", "exists", "backup", CustodyRoom::PathTo(path)});
    EXPECT_EQ(ran.Status(), exit_status::unusable) << path << "\n" << ran.Printed;
    EXPECT_EQ(room_.Files.Files(), files) << path;
  }
}

TEST_F(UnfinishedUpload, OfALostObjectDoesNotPreventARecord) {
  History history{room_.Files, room_.Witness, CustodyRoom::Folder()};
  ASSERT_TRUE(history.Open().Ok());
  const auto name = history.Entries().front().Found;
  ASSERT_TRUE(room_.Files.Remove(CustodyRoom::PathTo("Zolvane.history/objects/" + name)).Ok());
  const auto ran = RunBut({"backup", CustodyRoom::PathTo("new.html")});
  EXPECT_EQ(ran.Status(), 0) << ran.Printed;
}

TEST_F(UnfinishedUpload, WithATornLineBehindItSaysThatItIsSetAside) {
  const auto journal = CustodyRoom::PathTo("Zolvane.history/journal.jsonl");
  room_.Files.Put(journal, room_.Files.Read(journal).Bytes + R"({"action":"upl)");
  const auto ran = RunBut({"backup", CustodyRoom::PathTo("new.html")});
  EXPECT_EQ(ran.Status(), 0) << ran.Printed;
  EXPECT_NE(ran.Printed.find("was not written to its end"), std::string::npos) << ran.Printed;
}

TEST(Restore, OntoAnEmptyFolderObjectsToAnotherInstrument) {
  const auto configuration = SmallConfiguration();
  CustodyRoom room{configuration, WireFaceOfFile(configuration).Lines};
  const auto record = CustodyRoom::PathTo("r.html");
  ASSERT_EQ(room.Run(CustodyRoom::Determined({"backup", record})).Status(), 0);
  CustodyRoom other{Replaced(configuration, "[DeviceType]\nInstalled=2", "[DeviceType]\nInstalled=1")};
  other.Files.Put(record, room.Files.Read(record).Bytes);
  ASSERT_TRUE(other.Files.Remove(ConfigFileIn(CustodyRoom::Folder())).Ok());
  const auto ran = other.Run({"--despite", "findings", "--instrument", "restore", record});
  EXPECT_EQ(ran.Status(), exit_status::objection) << ran.Printed;
  EXPECT_NE(ran.Printed.find("[other-instrument]"), std::string::npos) << ran.Printed;
}

TEST(Drift, NamesWhatTheFileNoLongerSays) {
  const auto configuration = SmallConfiguration();
  CustodyRoom room{configuration, WireFaceOfFile(configuration).Lines};
  ASSERT_EQ(room.Run(CustodyRoom::Determined({"upload"})).Status(), 0);
  const auto fewer = Replaced(configuration, "[VolumeCorrection_8_CH_12.5]", "[Nobody]");
  const auto before = WireFaceOfFile(configuration).Lines.InOrder().size();
  ASSERT_LT(WireFaceOfFile(fewer).Lines.InOrder().size(), before);
  ASSERT_EQ(room.Run({"drift"}).Status(), 0);
  room.Files.Put(ConfigFileIn(CustodyRoom::Folder()), fewer);
  const auto ran = room.Run({"drift"});
  EXPECT_EQ(ran.Status(), 1) << ran.Printed;
}

}  // namespace
}  // namespace zolvane
