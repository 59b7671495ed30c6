// What an operation says of itself, and what the history keeps of that.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "custody/history/history.h"
#include "custody/support/custody_room.h"
#include "support/golden.h"

namespace zolvane {
namespace {

class Account : public testing::Test {
 protected:
  RanCommand RunBut(Words words, FaultPlan faults = {}) {
    words.insert(words.begin(), {"--yes", "--despite", "findings"});
    return room_.Run(words, std::move(faults));
  }

  void Edit(const std::string& from, const std::string& to) {
    room_.Files.Put(ConfigFileIn(CustodyRoom::Folder()), Replaced(room_.Configuration(), from, to));
  }

  Entry LastEntry() {
    History history{room_.Files, room_.Witness, CustodyRoom::Folder()};
    EXPECT_TRUE(history.Open().Ok());
    return history.Entries().back();
  }

  std::string configuration_ =
      Replaced(SmallConfiguration(), "ExportCalibrationData=0", "ExportCalibrationData=1");
  CustodyRoom room_{configuration_, WireFaceOfFile(configuration_).Lines};
};

void ExpectSaid(const RanCommand& ran, std::string_view text) {
  EXPECT_NE(ran.Printed.find(text), std::string::npos) << ran.Printed;
}

// ---- Import ----

class AccountOfAnImport : public Account {
 protected:
  void SetUp() override {
    ASSERT_EQ(RunBut({"export", backup_}).Status(), 0);
    Edit("STAGE,1612,", "STAGE,11612,");
  }

  std::string backup_ = CustodyRoom::PathTo("Zolvane.bak");
};

TEST_F(AccountOfAnImport, ObjectsToAnotherInstrument) {
  room_.Instrument = std::make_shared<SimulatedInstrument>(SimulatedInstrument::Setup{.Stage = "ZV200"});
  const auto ran = RunBut({"import", backup_});
  EXPECT_EQ(ran.Status(), exit_status::objection);
  ExpectSaid(ran, "[other-instrument]");
}

TEST_F(AccountOfAnImport, KeepsWhatAnUploadWouldChangeAfterwards) {
  room_.Instrument->Store("STAGE1_X", "77");
  const auto ran = RunBut({"import", backup_});
  ASSERT_EQ(ran.Status(), 0) << ran.Printed;
  const ReportedValue lost{.Key = "STAGE1_X", .Found = "77", .Sent = "1612"};
  EXPECT_EQ(std::ranges::count(ran.Result.RoundTrip, lost), 1) << ran.Printed;
  const auto shown = room_.Run({"history", "show", "@last"});
  EXPECT_EQ(shown.Result.RoundTrip, ran.Result.RoundTrip);
  ExpectSaid(shown, "an upload would have changed afterwards");
}

TEST_F(AccountOfAnImport, ThatWasCancelledSaysThatTheFileIsAsItWas) {
  const auto before = room_.Configuration();
  const auto ran = room_.Run({"--despite", "findings", "--answer", "cancel", "import", backup_});
  EXPECT_EQ(ran.Result.Outcome, outcome::cancelled) << ran.Printed;
  ExpectSaid(ran, "the file is as it was");
  EXPECT_EQ(ran.Printed.find("does not hold what was meant"), std::string::npos) << ran.Printed;
  EXPECT_EQ(room_.Configuration(), before);
}

TEST_F(AccountOfAnImport, OfWhatAHostWroteOverOurBackupRaisesNoObjection) {
  const auto ours = room_.Files.Read(backup_).Bytes;
  const auto data = ours.substr(0, ours.find("; Checkpoint of the history"));
  room_.Files.Put(backup_, Replaced(data, "STAGE,1612,", "STAGE,1613,"));
  const auto ran = RunBut({"import", backup_});
  EXPECT_EQ(ran.Status(), 0) << ran.Printed;
  room_.Files.Put(backup_, data);
  const auto cut = RunBut({"import", backup_});
  EXPECT_EQ(cut.Status(), exit_status::objection);
  ExpectSaid(cut, "[cut-off]");
}

TEST_F(AccountOfAnImport, TakenBackIntoAFileWithErrorsIsAsked) {
  Edit("[HeadType]", "[HeadTypeX]");
  ASSERT_EQ(RunBut({"import", backup_}).Status(), 0);
  const auto ran = room_.Run({"undo"});
  EXPECT_EQ(ran.Status(), exit_status::objection) << ran.Printed;
  ExpectSaid(ran, "[findings]");
}

// ---- What was let pass ----

TEST_F(Account, NamesTheRoundedValuesThatCountAsProven) {
  ASSERT_EQ(RunBut({"backup", CustodyRoom::PathTo("before.html")}).Status(), 0);
  const std::string key = "TipChange_Z";
  Edit("11840.5", "11900.5");
  ASSERT_EQ(RunBut({"upload"}).Status(), 0);
  const auto ran =
      RunBut({"--despite", "rounded", "--instrument", "restore", CustodyRoom::PathTo("before.html")},
             FaultPlan{"round@" + key});
  EXPECT_EQ(ran.Status(), 0) << ran.Printed;
  const Objection rounded{.Code = "rounded", .Expected = key + " = 11840.5", .Actual = key + " = 11841"};
  EXPECT_EQ(ran.Result.Objections.back(), rounded);
  EXPECT_EQ(LastEntry().Objections.back(), rounded);
}

// ---- Values and SAVE ----

TEST_F(Account, GivesMillimetresOfWhatIsNotProven) {
  Edit("MountHeight=164.35", "MountHeight=160.25");
  const auto ran = RunBut({"upload"}, FaultPlan{"drop@MountHeight"});
  EXPECT_EQ(ran.Status(), 1);
  const auto list = ran.Printed.substr(ran.Printed.find("holds"));
  EXPECT_NE(list.find("329 (164.5 mm)  differs, kept"), std::string::npos) << list;
}

TEST_F(Account, GivesMillimetresOfWhatSomebodyElseChanged) {
  Edit("MountHeight=164.35", "MountHeight=160.25");
  ASSERT_EQ(RunBut({"upload"}).Status(), 0);
  room_.Instrument->Store("MountHeight", "300");
  const auto ran = RunBut({"undo"});
  EXPECT_EQ(ran.Status(), exit_status::objection);
  ExpectSaid(ran, "found MountHeight = 300 (150 mm)");
}

TEST_F(Account, OfAnUndoOfWhatWasNotSavedSaysThatSaveWasNotNeeded) {
  Edit("STAGE,1612,", "STAGE,11612,");
  const auto last = WireFaceOfFile(room_.Configuration()).Lines.InOrder().back().Name;
  ASSERT_EQ(RunBut({"upload"}, FaultPlan{"drop@STAGE1_Y", "negate@" + last}).Status(), 1);
  const auto ran = RunBut({"undo"});
  EXPECT_EQ(ran.Status(), 0) << ran.Printed;
  EXPECT_EQ(room_.Wire->Saves(), 0U);
  ExpectSaid(ran, "SAVE was not needed");
}

TEST_F(Account, ShowsEveryChangeHoweverManyThereAre) {
  room_.Instrument = std::make_shared<SimulatedInstrument>(
      SimulatedInstrument::Setup{.Stage = WireFaceOfFile(configuration_).InForce.Device.Code});
  const auto ran = RunBut({"upload"});
  EXPECT_EQ(ran.Status(), 0) << ran.Printed;
  const auto lines = WireFaceOfFile(configuration_).Lines;
  for (const auto& value : lines.InOrder()) {
    EXPECT_NE(ran.Printed.find(value.Name), std::string::npos) << value.Name;
  }
}

TEST_F(Account, OfAQueryShowsWhatItWillWrite) {
  Edit("[CageType]\nInstalled=2", "[CageType]\nInstalled=1");
  ExpectSaid(RunBut({"query"}), "[CageType] Installed");
}

}  // namespace
}  // namespace zolvane
