// What a power cut leaves of a history, at whatever moment it comes: one that can be read, with everything in
// it that was promised.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "custody/disk/crash_disk.h"
#include "custody/history/audit.h"
#include "custody/history/history.h"
#include "custody/support/fake_witness.h"
#include "custody/support/history_fixture.h"

namespace zolvane {
namespace {

class PowerCut : public testing::Test {
 protected:
  static constexpr const char* folder = "/lab";

  // What every state must hold, and that one can go on from it.
  void Check(MemoryDisk& after) {
    History history{after, Witness, folder};
    ASSERT_TRUE(history.OpenForRecording().Ok()) << history.FailureReason();
    ASSERT_EQ(history.Damage(), "");
    ASSERT_GE(history.Entries().size(), Promised.size());
    ASSERT_LE(history.Entries().size(), Promised.size() + 1);
    for (std::size_t entry = 0; entry < Promised.size(); ++entry) {
      ASSERT_EQ(history.Entries()[entry], Promised[entry]);
    }
    for (const auto& entry : history.Entries()) {
      for (const auto& name : ObjectsOf(entry)) {
        ASSERT_TRUE(history.Object(name)) << name;
      }
    }
    const auto operations = history.Operations();
    if (!operations.empty() && operations.back().Ended == nullptr) {
      ASSERT_TRUE(history.End(operations.back().Number(), EndOf("upload", "failed")).Ok());
    }
    ASSERT_TRUE(history.Begin(EntryOf("undo"))) << history.FailureReason();
    const auto audit = Audit(after, folder);
    ASSERT_TRUE(audit.IsIntact && audit.IsComplete) << testing::PrintToString(audit.Problems);
  }

  void Operate(History& history, const std::string& text) {
    auto begun = EntryOf("upload");
    begun.FileBefore = history.PutObject("file " + text).value_or("");
    begun.Found = history.PutObject("found " + text).value_or("");
    const auto number = history.Begin(begun);
    ASSERT_TRUE(number) << history.FailureReason();
    Promise(history);
    auto ended = EndOf("upload");
    ended.Left = history.PutObject("left " + text).value_or("");
    ASSERT_TRUE(history.End(*number, ended).Ok()) << history.FailureReason();
    Promise(history);
  }

  // What was returned has to be there from now on, also in states that were looked at before.
  void Promise(const History& history) {
    Promised = history.Entries();
    Disk.ShowAgain();
  }

  MemoryDisk Initial;
  FakeWitness Witness;
  std::vector<Entry> Promised;
  CrashDisk Disk{WithAFile(Initial), [this](MemoryDisk& after) {
                   if (!HasFatalFailure()) {
                     Check(after);
                   }
                 }};

 private:
  static MemoryDisk& WithAFile(MemoryDisk& disk) {
    disk.Put("/lab/Zolvane.ini", "[Arm]\r\n");
    return disk;
  }
};

TEST_F(PowerCut, LosesNothingOfTheFirstOperations) {
  {
    History history{Disk, Witness, folder};
    ASSERT_TRUE(history.OpenForRecording().Ok());
    Operate(history, "one");
    Operate(history, "two");
  }
  EXPECT_GT(Disk.CountOfStates(), 150U);
  RecordProperty("states", std::to_string(Disk.CountOfStates()));
}

// A program that is killed leaves names that do not last yet; the next one must not build on them.
TEST_F(PowerCut, LosesNothingOfWhatFollowsAKilledProgram) {
  ASSERT_TRUE(Disk.MakeFolder("/lab/Zolvane.history").Ok());
  const auto line = IdentityLine(std::string(32, 'a')) + "\n";
  ASSERT_TRUE(Disk.Create("/lab/Zolvane.history/journal.jsonl.zolvane-new", line).Ok());
  ASSERT_TRUE(Disk.SyncFile("/lab/Zolvane.history/journal.jsonl.zolvane-new").Ok());
  ASSERT_TRUE(
      Disk.Rename("/lab/Zolvane.history/journal.jsonl.zolvane-new", "/lab/Zolvane.history/journal.jsonl")
          .Ok());
  History history{Disk, Witness, folder};
  ASSERT_TRUE(history.OpenForRecording().Ok());
  ASSERT_TRUE(history.Exists());
  Operate(history, "one");
}

TEST_F(PowerCut, LosesNothingWhileATornLineIsSetAside) {
  {
    History history{Disk, Witness, folder};
    ASSERT_TRUE(history.OpenForRecording().Ok());
    Operate(history, "one");
  }
  ASSERT_TRUE(Disk.Append("/lab/Zolvane.history/journal.jsonl", "{\"action\":\"und").Ok());
  ASSERT_TRUE(Disk.SyncFile("/lab/Zolvane.history/journal.jsonl").Ok());
  History history{Disk, Witness, folder};
  ASSERT_TRUE(history.OpenForRecording().Ok());
  ASSERT_TRUE(history.IsTorn());
  Operate(history, "two");
}

}  // namespace
}  // namespace zolvane
