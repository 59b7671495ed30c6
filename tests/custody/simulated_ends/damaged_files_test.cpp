// Every file that custody writes, cut off at any byte and with a bit flipped in any byte: refused, or read up to there,
// and never believed. What is done to journals and records is beside them.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>

#include "custody/history/audit.h"
#include "custody/history/history.h"
#include "custody/support/custody_room.h"
#include "custody/values/values_json.h"
#include "support/golden.h"
#include "support/long_tests.h"
#include "zolvane/work/objections.h"

namespace zolvane {
namespace {

std::string Flipped(std::string bytes, std::size_t at) {
  bytes[at] = static_cast<char>(static_cast<unsigned char>(bytes[at]) ^ (1U << (at % 8)));
  return bytes;
}

void ForEachDamage(const std::string& bytes, const std::function<void(const std::string& damaged)>& look) {
  for (const auto at : PlacesIn(bytes.size())) {
    look(bytes.substr(0, at));
    look(Flipped(bytes, at));
  }
}

// An upload and an export are in the history.
class DamagedFile : public testing::Test {
 protected:
  static std::string SmallWithExport() {
    return Replaced(SmallConfiguration(), "ExportCalibrationData=0", "ExportCalibrationData=1");
  }

  void SetUp() override {
    ASSERT_EQ(room_.Run(CustodyRoom::Determined({"upload"})).Status(), 0);
    ASSERT_EQ(room_.Run(CustodyRoom::Determined({"export", backup_})).Status(), 0);
  }

  History OpenHistory() {
    History history{room_.Files, room_.Witness, CustodyRoom::Folder()};
    EXPECT_TRUE(history.Open().Ok());
    return history;
  }

  // The bytes of a file of the history, or of the backup.
  std::string Bytes(const std::string& path) { return room_.Files.Read(path).Bytes; }

  static std::string ObjectPath(const std::string& name) {
    return CustodyRoom::PathTo("Zolvane.history/objects/" + name);
  }

  CustodyRoom room_{SmallWithExport(), WireFaceOfFile(SmallWithExport()).Lines};
  std::string backup_ = CustodyRoom::PathTo("new.bak");
};

TEST_F(DamagedFile, AnObjectIsNeverBelieved) {
  auto history = OpenHistory();
  std::size_t objects = 0;
  for (const auto& entry : history.Entries()) {
    for (const auto& name : ObjectsOf(entry)) {
      const auto whole = Bytes(ObjectPath(name));
      ASSERT_EQ(history.Object(name), whole);
      ForEachDamage(whole, [&](const std::string& damaged) {
        room_.Files.Put(ObjectPath(name), damaged);
        ASSERT_FALSE(history.Object(name)) << name;
      });
      ++objects;
      room_.Files.Put(ObjectPath(name), whole);
    }
  }
  EXPECT_GT(objects, 5U);
}

TEST_F(DamagedFile, WithADamagedObjectNothingIsTakenBackAndNothingChanges) {
  auto history = OpenHistory();
  const auto& begun = history.Entries().front();
  for (const auto& name : {begun.FileBefore, begun.Found, begun.Intended}) {
    const auto whole = Bytes(ObjectPath(name));
    for (std::size_t at = 0; at < whole.size(); at += whole.size() / 3) {
      room_.Files.Put(ObjectPath(name), Flipped(whole, at));
      const auto files = room_.Files.Files();
      const auto ran = room_.Run(CustodyRoom::Determined({"undo", "2"}));
      EXPECT_EQ(ran.Status(), exit_status::unusable) << ran.Printed;
      EXPECT_EQ(room_.Files.Files(), files);
      EXPECT_EQ(room_.Wire->Settings(), 0U);
      EXPECT_EQ(room_.Run({"history", "audit"}).Status(), 1);
    }
    room_.Files.Put(ObjectPath(name), whole);
  }
}

// What is read is what the text says, to the letter: the hash of the object tells whether it is what was written.
TEST(DamagedValues, AreReadAsTheyStandOrNotAtAll) {
  Values values;
  for (const auto* const text : {"1612", "-0.5", "\xC3\xA4 \"\\"}) {
    values.Add({.Name = std::string{"KEY_"} + text, .Text = text});
  }
  values.Add({.Name = "UNKNOWN", .Text = std::nullopt});
  values.Add({.Name = "SILENT", .Text = std::nullopt, .WasAnswered = false});
  const auto whole = ValuesText(values);
  ASSERT_TRUE(ValuesIn(whole));
  for (std::size_t size = 0; size < whole.size(); ++size) {
    ASSERT_FALSE(ValuesIn(whole.substr(0, size))) << size;
  }
  ForEachDamage(whole, [](const std::string& damaged) {
    const auto read = ValuesIn(damaged);
    ASSERT_TRUE(!read || ValuesText(*read) == damaged) << damaged;
  });
}

// ---- A backup with its checkpoint ----

TEST_F(DamagedFile, ABackupThatIsCutOffAnywhereIsAnObjection) {
  const auto whole = Bytes(backup_);
  const auto history = OpenHistory();
  const auto device = WireFaceOfFile(room_.Configuration()).InForce.Device.Name;
  const auto objectionsTo = [&](const std::string& bytes) {
    Objections objections;
    ObjectToBackup(history, backup_, bytes, whole, device, objections);
    return objections;
  };
  EXPECT_TRUE(objectionsTo(whole).empty());
  for (const auto size : PlacesIn(whole.size())) {
    const auto objections = objectionsTo(whole.substr(0, size));
    ASSERT_TRUE(std::ranges::any_of(objections, [](const auto& one) { return one.Code == "cut-off"; }))
        << size;
  }
  const auto configuration = room_.Configuration();
  for (std::size_t size = 0; size < whole.size(); size += whole.size() / 5) {
    room_.Files.Put(backup_, whole.substr(0, size));
    const auto ran = room_.Run({"--yes", "import", backup_});
    EXPECT_EQ(ran.Status(), exit_status::objection) << ran.Printed;
    EXPECT_EQ(room_.Configuration(), configuration);
  }
}

TEST_F(DamagedFile, ACheckpointOfABackupAnchorsNothingOnceABitOfItIsFlipped) {
  const auto whole = Bytes(backup_);
  const auto anchored = [&](const std::string& bytes) {
    return Audit(room_.Files, CustodyRoom::Folder(), CheckpointsIn(bytes)).IsAnchored;
  };
  ASSERT_TRUE(anchored(whole));
  const auto heading = whole.find(checkpointHeading);
  ASSERT_NE(heading, std::string::npos);
  for (auto at = whole.find("; ", heading + checkpointHeading.size()); at < whole.find(backupSeal.Before);
       ++at) {
    const bool isOfText = std::string{" \r\n;"}.find(whole[at]) == std::string::npos;
    if (isOfText) {
      ASSERT_FALSE(anchored(Flipped(whole, at))) << at;
    }
  }
}

TEST_F(DamagedFile, ABackupWithABitFlippedAnywhereIsAnObjection) {
  const auto whole = Bytes(backup_);
  const auto history = OpenHistory();
  const auto device = WireFaceOfFile(room_.Configuration()).InForce.Device.Name;
  for (const auto at : PlacesIn(whole.size())) {
    Objections objections;
    ObjectToBackup(history, backup_, Flipped(whole, at), whole, device, objections);
    ASSERT_TRUE(std::ranges::any_of(objections, [](const auto& one) {
      return one.Code == "changed" || one.Code == "cut-off";
    })) << at;
  }
}

TEST_F(DamagedFile, AChangedBackupIsImportedOnlyDespiteTheChange) {
  const auto whole = Bytes(backup_);
  const auto configuration = room_.Configuration();
  room_.Files.Put(backup_, Flipped(whole, whole.size() / 2));
  const auto refused = room_.Run({"--yes", "import", backup_});
  EXPECT_EQ(refused.Status(), exit_status::objection) << refused.Printed;
  EXPECT_NE(refused.Printed.find("[changed]"), std::string::npos) << refused.Printed;
  EXPECT_EQ(room_.Configuration(), configuration);
  EXPECT_EQ(room_.Run(CustodyRoom::Determined({"import", backup_})).Status(), 0);
}

// Who lets the change pass has seen what it changes.
TEST_F(DamagedFile, AFlippedBitOfABackupIsSeenWhereItChangesTheFile) {
  const auto whole = Bytes(backup_);
  const auto original = room_.Configuration();
  for (std::size_t at = 0; at < whole.size(); at += whole.size() / 3) {
    CustodyRoom other{original, WireFaceOfFile(original).Lines};
    other.Files.Put(backup_, whole);
    ASSERT_EQ(other.Run(CustodyRoom::Determined({"import", backup_})).Status(), 0);
    const auto before = FileFace(other.Configuration());
    other.Files.Put(backup_, Flipped(whole, at));
    const auto ran = other.Run(CustodyRoom::Determined({"import", backup_}));
    ASSERT_TRUE(ran.Status() == 0 || ran.Status() == exit_status::unusable) << at << "\n" << ran.Printed;
    for (const auto& change : Compare(before, FileFace(other.Configuration())).Differences) {
      ASSERT_NE(ran.Printed.find(change.Name), std::string::npos) << at;
    }
  }
}

}  // namespace
}  // namespace zolvane
