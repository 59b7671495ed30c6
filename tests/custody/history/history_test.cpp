#include "custody/history/history.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "config/text.h"
#include "custody/disk/sha256.h"
#include "custody/support/history_fixture.h"
#include "files/paths.h"

namespace zolvane {
namespace {

using HistoryOnDisk = HistoryFixture;

TEST_F(HistoryOnDisk, AFolderWithoutOneIsEmptyAndLeavesNothingBehind) {
  History history{Disk, Witness, folder};
  const auto changes = Disk.Changes();
  EXPECT_TRUE(history.OpenForRecording().Ok());
  EXPECT_FALSE(history.Exists());
  EXPECT_EQ(history.Damage(), "");
  EXPECT_FALSE(history.LastCheckpoint());
  EXPECT_EQ(Disk.Changes(), changes);
}

TEST_F(HistoryOnDisk, AnOperationIsTwoLinesBehindTheIdentity) {
  History history{Disk, Witness, folder};
  ASSERT_TRUE(history.OpenForRecording().Ok());
  ASSERT_EQ(history.Begin(EntryOf("upload")), 2U);
  ASSERT_TRUE(history.End(2, EndOf("upload")).Ok());
  const std::string first = R"({"format":"zolvane-history/1","history":"01010101010101010101010101010101"})";
  const std::string second =
      R"({"action":"upload","file":"Zolvane.ini","machine":"bench-7","offset":60,"person":"ada","previous":")" +
      Sha256Hex(first) +
      R"(","program":"zolvane","seq":2,"state":"begun","time":"2026-03-14T09:26:54.589Z","version":"1.0"})";
  const std::string third =
      R"({"action":"upload","file":"Zolvane.ini","machine":"bench-7","of":2,"offset":60,"outcome":"done",)" +
      std::string{R"("person":"ada","previous":")"} + Sha256Hex(second) +
      R"(","program":"zolvane","seq":3,"state":"ended","time":"2026-03-14T09:26:55.589Z","version":"1.0"})";
  EXPECT_EQ(JournalBytes(), first + "\n" + second + "\n" + third + "\n");
}

TEST_F(HistoryOnDisk, EntriesAreReadBackByTheNextProgram) {
  Make(2);
  History history{Disk, Witness, folder};
  ASSERT_TRUE(history.Open().Ok());
  const auto operations = history.Operations();
  ASSERT_EQ(operations.size(), 2U);
  EXPECT_EQ(operations[0].Number(), 2U);
  EXPECT_EQ(operations[1].Number(), 4U);
  ASSERT_NE(operations[1].Ended, nullptr);
  EXPECT_EQ(operations[1].Begun->Action, "undo");
  EXPECT_EQ(operations[1].Begun->Reason, "because");
  EXPECT_EQ(operations[1].Ended->Counts.at("verified"), 178);
  EXPECT_EQ(history.Object(operations[1].Ended->Left), "left undo");
}

TEST_F(HistoryOnDisk, AnOperationWithoutAnEndIsUnfinished) {
  Make(1);
  {
    History history{Disk, Witness, folder};
    ASSERT_TRUE(history.OpenForRecording().Ok());
    ASSERT_EQ(history.Begin(EntryOf("download")), 4U);
  }
  History history{Disk, Witness, folder};
  ASSERT_TRUE(history.OpenForRecording().Ok());
  ASSERT_EQ(history.Operations().size(), 2U);
  EXPECT_EQ(history.Operations()[1].Ended, nullptr);
  EXPECT_TRUE(history.End(4, EndOf("download", "failed")).Ok());
  EXPECT_NE(history.Operations()[1].Ended, nullptr);
}

TEST_F(HistoryOnDisk, OnlyWhatWasBegunEndsAndOnce) {
  History history{Disk, Witness, folder};
  ASSERT_TRUE(history.OpenForRecording().Ok());
  EXPECT_FALSE(history.End(2, EndOf("upload")).Ok());
  const auto number = Operate(history);
  EXPECT_FALSE(history.End(number, EndOf("upload")).Ok());
  EXPECT_FALSE(history.End(number + 1, EndOf("upload")).Ok());
  EXPECT_EQ(Lines().size(), 3U);
}

TEST_F(HistoryOnDisk, NothingIsRecordedWithoutTheLock) {
  History history{Disk, Witness, folder};
  ASSERT_TRUE(history.Open().Ok());
  EXPECT_FALSE(history.Begin(EntryOf("upload")));
  EXPECT_EQ(history.FailureReason(), "\"" + PlaceOfHistory(folder).Journal + "\" is not open for recording");
  EXPECT_EQ(JournalBytes(), "");
}

TEST_F(HistoryOnDisk, ASecondProgramWaitsTenSecondsAndSaysWhoHasIt) {
  History first{Disk, Witness, folder};
  ASSERT_TRUE(first.OpenForRecording().Ok());
  Waiting::Clock::time_point now;
  Waiting waiting;
  waiting.Now = [&now] { return now; };
  waiting.Rest = [&now](Waiting::Clock::duration time) { now += time; };
  History second{Disk, Witness, folder};
  EXPECT_FALSE(second.OpenForRecording(waiting).Ok());
  EXPECT_EQ(second.FailureReason(), "\"" + PlaceOfHistory(folder).Folder + "\" is in use by this process");
  EXPECT_EQ(now.time_since_epoch(), std::chrono::seconds{10});
}

TEST_F(HistoryOnDisk, ASecondProgramGoesOnWhenTheFirstHasEnded) {
  auto first = std::make_unique<History>(Disk, Witness, folder);
  ASSERT_TRUE(first->OpenForRecording().Ok());
  Operate(*first);
  Waiting waiting;
  waiting.Rest = [&first](Waiting::Clock::duration) { first.reset(); };
  History second{Disk, Witness, folder};
  EXPECT_TRUE(second.OpenForRecording(waiting).Ok());
  EXPECT_EQ(second.Entries().size(), 2U);
}

TEST_F(HistoryOnDisk, AnObjectIsKeptUnderTheNameOfItsContent) {
  History history{Disk, Witness, folder};
  ASSERT_TRUE(history.OpenForRecording().Ok());
  const auto name = history.PutObject("some bytes");
  EXPECT_EQ(name, Sha256Hex("some bytes"));
  EXPECT_EQ(history.PutObject("some bytes"), name);
  EXPECT_EQ(Disk.Read("/lab/Zolvane.history/objects/" + *name).Bytes, "some bytes");
  EXPECT_EQ(history.Object(*name), "some bytes");
}

TEST_F(HistoryOnDisk, AnObjectIsNotBelievedIfItIsNotWhatItsNameSays) {
  History history{Disk, Witness, folder};
  ASSERT_TRUE(history.OpenForRecording().Ok());
  const auto name = *history.PutObject("some bytes");
  Disk.Put("/lab/Zolvane.history/objects/" + name, "other bytes");
  EXPECT_FALSE(history.Object(name));
  EXPECT_EQ(history.DamageOfObject("some bytes"), "object " + name + " does not hold what its name says");
  EXPECT_FALSE(history.PutObject("some bytes")) << "nobody would know any more that it was damaged";
  EXPECT_EQ(Disk.Read("/lab/Zolvane.history/objects/" + name).Bytes, "other bytes");
  EXPECT_EQ(history.DamageOfObject("other bytes"), "");
}

TEST_F(HistoryOnDisk, AnObjectHasNoOtherNameThanAHash) {
  Disk.Put("/lab/Zolvane.history/objects/a", "x");
  History history{Disk, Witness, folder};
  EXPECT_FALSE(history.Object("a"));
  EXPECT_FALSE(history.Object("../../Zolvane.ini"));
  EXPECT_FALSE(history.Object(""));
}

TEST_F(HistoryOnDisk, ATornLastLineIsReadPastAndSetAsideByTheNextEntry) {
  Make(1);
  const auto whole = JournalBytes();
  const std::string torn = R"({"action":"upl)";
  Disk.Put(journalPath, whole + torn);
  History history{Disk, Witness, folder};
  ASSERT_TRUE(history.OpenForRecording().Ok());
  EXPECT_TRUE(history.IsTorn());
  EXPECT_EQ(history.Damage(), "");
  EXPECT_EQ(history.Entries().size(), 2U);
  EXPECT_EQ(JournalBytes(), whole + torn);
  ASSERT_EQ(history.Begin(EntryOf("undo")), 4U) << history.FailureReason();
  EXPECT_FALSE(history.IsTorn());
  EXPECT_TRUE(JournalBytes().starts_with(whole + "{\"action\":\"undo\""));
  EXPECT_EQ(history.Object(Sha256Hex(torn)), torn);
  EXPECT_TRUE(AuditAgainst().IsIntact);
}

TEST_F(HistoryOnDisk, ALastLineWithLostBytesIsTornToo) {
  Make(1);
  auto bytes = JournalBytes();
  bytes.replace(bytes.size() - 40, 30, 30, '\0');
  Disk.Put(journalPath, bytes);
  History history{Disk, Witness, folder};
  ASSERT_TRUE(history.OpenForRecording().Ok());
  EXPECT_TRUE(history.IsTorn());
  EXPECT_EQ(history.Entries().size(), 1U);
  EXPECT_TRUE(history.End(2, EndOf("upload")).Ok());
  EXPECT_TRUE(AuditAgainst().IsIntact);
}

TEST_F(HistoryOnDisk, ADamagedOneIsBelievedUpToThereAndNotWrittenTo) {
  Make(3);
  auto lines = Lines();
  lines[3] = Replaced(lines[3], "because", "perhaps");
  PutLines(lines);
  const auto bytes = JournalBytes();
  History history{Disk, Witness, folder};
  ASSERT_TRUE(history.OpenForRecording().Ok());
  EXPECT_EQ(history.Damage(), "line 5: it does not follow from the line before");
  EXPECT_EQ(history.Entries().size(), 2U) << "line 4 is not believed, because line 5 tells of another one";
  EXPECT_FALSE(history.Begin(EntryOf("upload")));
  EXPECT_EQ(JournalBytes(), bytes);
}

TEST_F(HistoryOnDisk, ADamagedOneGivesWayToANewOneAndStays) {
  for (const auto* path : {"/lab/Zolvane.history.damaged-1", "/lab/Zolvane.history.damaged-2"}) {
    Disk.Put(journalPath, "no journal\n");
    History history{Disk, Witness, folder};
    ASSERT_TRUE(history.OpenForRecording().Ok());
    EXPECT_EQ(history.Damage(), "line 1: it does not say which history this is");
    EXPECT_EQ(PathOf(history.SetAside().value_or("")), PathOf(path));
    EXPECT_EQ(Operate(history), 2U);
    EXPECT_EQ(Disk.Read(std::string{path} + "/journal.jsonl").Bytes, "no journal\n");
    EXPECT_TRUE(AuditAgainst().IsIntact);
  }
}

TEST_F(HistoryOnDisk, AFileThatIsNoJournalIsNotTakenForAnEmptyOne) {
  for (const auto* bytes :
       {"", "\n", "{}\n", "[]\n", "{\"format\":\"zolvane-history/2\",\"history\":\"\"}\n"}) {
    Disk.Put(journalPath, bytes);
    History history{Disk, Witness, folder};
    ASSERT_TRUE(history.OpenForRecording().Ok());
    EXPECT_NE(history.Damage(), "") << bytes;
    EXPECT_FALSE(history.Begin(EntryOf("upload"))) << bytes;
  }
}

TEST_F(HistoryOnDisk, OneThatCannotBeReadIsNotOpened) {
  ASSERT_TRUE(Disk.MakeFolder(journalPath).Ok());
  History history{Disk, Witness, folder};
  EXPECT_FALSE(history.Open().Ok());
  EXPECT_EQ(history.FailureReason(), "\"" + PlaceOfHistory(folder).Journal + "\" is a folder");
}

TEST_F(HistoryOnDisk, AFileInThePlaceOfItsFolderIsInTheWayAndStays) {
  Disk.Put("/lab/Zolvane.history", "theirs");
  History history{Disk, Witness, folder};
  EXPECT_FALSE(history.OpenForRecording().Ok());
  EXPECT_EQ(history.FailureReason(), "\"" + PlaceOfHistory(folder).Folder + "\" is no folder");
  EXPECT_EQ(Disk.Read("/lab/Zolvane.history").Bytes, "theirs");
}

TEST_F(HistoryOnDisk, OneWhoseJournalWasRemovedOrEmptiedIsDamaged) {
  Make(2);
  for (const bool isRemoved : {false, true}) {
    Disk.Put(journalPath, "");
    if (isRemoved) {
      ASSERT_TRUE(Disk.Remove(journalPath).Ok());
    }
    History history{Disk, Witness, folder};
    ASSERT_TRUE(history.OpenForRecording().Ok());
    EXPECT_TRUE(history.Damage().starts_with("line 1: it is missing")) << history.Damage();
    EXPECT_FALSE(history.Begin(EntryOf("upload")));
    EXPECT_TRUE(history.SetAside());
    EXPECT_TRUE(history.Begin(EntryOf("upload"))) << history.FailureReason();
  }
}

TEST_F(HistoryOnDisk, TextsThatAreNotUtf8AreKeptByteForByte) {
  Witness.Account = "A\xfdu";
  Make(1);
  History history{Disk, Witness, folder};
  ASSERT_TRUE(history.Open().Ok());
  EXPECT_EQ(history.Damage(), "");
  EXPECT_EQ(history.Entries().at(0).Person, "A\xfdu");
}

TEST_F(HistoryOnDisk, AClockThatStepsRaisesNoAlarm) {
  Witness.Tick = std::chrono::hours{-24 * 400};
  Make(3);
  const auto audit = AuditAgainst({LastCheckpoint()});
  EXPECT_TRUE(audit.IsIntact && audit.IsComplete && audit.IsAnchored);
  EXPECT_EQ(audit.Problems, std::vector<std::string>{});
  EXPECT_EQ(audit.Notes, std::vector<std::string>{});
}

}  // namespace
}  // namespace zolvane
