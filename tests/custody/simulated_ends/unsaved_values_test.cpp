// Values that the instrument holds and has not kept, and values that nobody can read: neither is called done.
#include <gtest/gtest.h>

#include <string>

#include "custody/support/custody_room.h"
#include "custody/values/sides.h"
#include "support/golden.h"
#include "text/joined.h"

namespace zolvane {
namespace {

std::string NumberIn(const std::string& printed) {
  constexpr std::string_view before = "recorded as operation ";
  const auto place = printed.rfind(before) + before.size();
  return printed.substr(place, printed.find_first_not_of("0123456789", place) - place);
}

// An upload has been proven and kept.
class Unsaved : public testing::Test {
 protected:
  void SetUp() override {
    Expect(Words{"upload"}, 0);
    lines_ = Room_.Wire->Lines();
  }

  void Edit(std::string_view from, std::string_view to) {
    const auto before = Room_.Configuration();
    ASSERT_NE(before.find(from), std::string::npos) << from;
    Room_.Files.Put(ConfigFileIn(CustodyRoom::Folder()), Replaced(before, from, to));
  }

  // All that the upload would send is set at the instrument's own panel, and not kept.
  void TuneAsTheFileSays() {
    const auto face = WireFaceOfFile(Room_.Configuration());
    for (const auto& value : face.Lines.InOrder()) {
      Room_.Instrument->Store(value.Name, value.Text.value_or(""));
    }
  }

  RanCommand Run(const Words& words, FaultPlan faults = {}) {
    return Room_.Run(CustodyRoom::Determined(words), std::move(faults));
  }

  void Expect(const Words& words, int status, FaultPlan faults = {}) {
    const auto ran = Run(words, std::move(faults));
    EXPECT_EQ(ran.Status(), status) << ran.Printed;
  }

  std::optional<std::string> HeldAfterARestart(const std::string& key) {
    Room_.Instrument->Restart();
    return Room_.Held(key);
  }

  CustodyRoom Room_{Replaced(SmallConfiguration(), "ExportCalibrationData=0", "ExportCalibrationData=1")};
  std::size_t lines_ = 0;  // of an upload, with all questions
};

class RestartBeforeSave : public Unsaved, public testing::WithParamInterface<std::size_t> {};
INSTANTIATE_TEST_SUITE_P(LinesBeforeTheLast, RestartBeforeSave, testing::Values(1, 2, 3, 20));

TEST_P(RestartBeforeSave, IsNoticedThoughTheInstrumentHeldAllValuesBefore) {
  Edit("DeltaZ=24.5", "DeltaZ=26");
  TuneAsTheFileSays();
  const auto ran = Run(Words{"upload"}, FaultPlan{Joined("power@", std::to_string(lines_ - GetParam()))});
  EXPECT_FALSE(ran.ClaimsSuccess()) << ran.Printed;
  EXPECT_EQ(HeldAfterARestart("Delta_Z"), "24.5");
}

TEST_F(Unsaved, WithoutARestartIsKept) {
  Edit("DeltaZ=24.5", "DeltaZ=26");
  TuneAsTheFileSays();
  Expect(Words{"upload"}, 0);
  EXPECT_EQ(HeldAfterARestart("Delta_Z"), "26");
}

TEST_F(Unsaved, OfALaterUploadStandsInTheWayOfAnOlderOnesUndo) {
  Edit("DeltaZ=24.5", "DeltaZ=26");
  const auto older = NumberIn(Run(Words{"upload"}).Printed);
  Edit("MountHeight=164.35", "MountHeight=160.25");
  Expect(Words{"upload"}, 1, FaultPlan{"limit@MountHeight"});
  const auto kept =
      WireFaceOfFile(Replaced(Room_.Configuration(), "MountHeight=160.25", "MountHeight=164.35"))
          .Lines.TextOf("MountHeight");
  const auto undo = Room_.Run(Words{"undo", older});
  EXPECT_EQ(undo.Status(), 3) << undo.Printed;
  EXPECT_NE(undo.Printed.find("somebody else changed values since: expected MountHeight"), std::string::npos)
      << undo.Printed;
  EXPECT_EQ(HeldAfterARestart("MountHeight"), kept);
}

// It takes Delta_Z and never tells it.
class Unreadable : public testing::Test {
 protected:
  RanCommand Run(const Words& words) { return Room_.Run(CustodyRoom::Determined(words), {"drop@Delta_Z"}); }

  CustodyRoom Room_{Replaced(SmallConfiguration(), "ExportCalibrationData=0", "ExportCalibrationData=1")};
};

TEST_F(Unreadable, IsNamedByAnUndoAndARestore) {
  for (const auto* height : {"164.35", "160.25"}) {
    Room_.Files.Put(ConfigFileIn(CustodyRoom::Folder()),
                    Replaced(Room_.Configuration(), "MountHeight=164.35", Joined("MountHeight=", height)));
    EXPECT_EQ(Run({"--despite", "unreadable", "upload"}).Status(), 0);
  }
  for (const Words& words : {Words{"undo"}, Words{"--instrument", "restore", "@2"}}) {
    const auto ran = Run(words);
    EXPECT_FALSE(ran.ClaimsSuccess()) << ran.Printed;
    EXPECT_NE(ran.Printed.find("cannot be read, and may hold what was sent: Delta_Z"), std::string::npos)
        << ran.Printed;
  }
  EXPECT_EQ(Run({"--despite", "unreadable", "--instrument", "restore", "@2"}).Status(), 0);
}

TEST_F(Unreadable, IsAChangeThatCanBeTakenBack) {
  for (const auto* delta : {"24.5", "30"}) {
    Room_.Files.Put(ConfigFileIn(CustodyRoom::Folder()),
                    Replaced(Room_.Configuration(), "DeltaZ=24.5", Joined("DeltaZ=", delta)));
    EXPECT_EQ(Run({"--despite", "unreadable", "upload"}).Status(), 0);
  }
  const auto edited = Room_.Configuration();
  const auto ran = Run(Words{"undo"});
  EXPECT_FALSE(ran.ClaimsSuccess()) << ran.Printed;
  EXPECT_NE(ran.Printed.find("Delta_Z"), std::string::npos) << ran.Printed;
  EXPECT_EQ(Room_.Configuration(), edited) << "the edit before it is no part of the upload";
}

}  // namespace
}  // namespace zolvane
