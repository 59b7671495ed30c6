#include "custody/values/play.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "files/paths.h"
#include "instrument/links/simulated_link.h"
#include "page/page_controls.h"
#include "support/golden.h"
#include "support/temporary_folder.h"

namespace zolvane {
namespace {

const std::string playedFolder = "/played";

struct Played {
  explicit Played(const std::string& configuration) { Files.Put(ConfigFileIn(playedFolder), configuration); }

  PlayedAction Play(const Action& action) const { return zolvane::Play(Ends, action); }
  std::string Configuration() { return Files.Read(ConfigFileIn(playedFolder)).Bytes; }

  MemoryDisk Files;
  InterruptFlag Interrupt;
  SessionEnds Ends = [this] {
    auto ends = EndsOn(Files, playedFolder);
    ends.Link = std::make_shared<SimulatedLink>(SimulatedInstrument{{}}, FaultPlan{}, Interrupt);
    return ends;
  }();
};

TEST(Play, SendsAnUploadAndCountsIt) {
  Played session{SampleConfiguration()};
  const auto played = session.Play(PressOf(uploadButton));
  EXPECT_EQ(played.ExitStatus, 0);
  EXPECT_EQ(played.Result.Tally.Commands.Sent, CommandsOfTheSample());
  EXPECT_EQ(played.Result.Tally.Commands.Expected, CommandsOfTheSample()) << "counted on the copy, too";
  EXPECT_TRUE(played.Result.Tally.Commands.IsSaveAccepted);
  EXPECT_EQ(session.Configuration(), SampleConfiguration()) << "what is installed stays as it is";
}

TEST(Play, KnowsEachWriteInItsOrder) {
  Played session{"[HeadType]\nInstalled=7\nItem1=\"One\"\n"};
  const auto played = session.Play({.Kind = ActionKind::ShowPage});
  const auto file = ConfigFileIn(playedFolder);
  ASSERT_FALSE(played.Writes.empty());
  const auto& first = played.Writes.front();
  EXPECT_EQ(first.Section, "CageType") << "the list of devices is empty";
  bool isHeadWritten = false;
  for (const auto& write : played.Writes) {
    EXPECT_EQ(write.File, file);
    EXPECT_TRUE(write.IsDone);
    isHeadWritten =
        isHeadWritten || (write.Section == "HeadType" && write.Key == "Installed" && write.Text == "1");
  }
  EXPECT_TRUE(isHeadWritten);
  EXPECT_NE(session.Configuration().find("Installed=1"), std::string::npos);
}

TEST(Play, ChangesACopyAsItWouldChangeTheFolder) {
  const TemporaryFolder real;
  real.Put("Zolvane.ini", SampleConfiguration());
  Played copy{SampleConfiguration()};
  auto ends = copy.Ends;
  ends.Host.Folder = real.Path();
  ends.Host.OpenFile = FileSettingsService::OpenFile;
  ends.Host.WantsToStop = [] { return false; };
  InterruptFlag interrupt;
  ends.Link = std::make_shared<SimulatedLink>(SimulatedInstrument{{}}, FaultPlan{}, interrupt);
  for (const int button : {uploadButton, downloadButton, queryButton}) {
    EXPECT_EQ(copy.Play(PressOf(button)).Writes.size(), Play(ends, PressOf(button)).Writes.size());
  }
  EXPECT_NE(real.Read("Zolvane.ini"), SampleConfiguration());
  EXPECT_EQ(copy.Configuration(), real.Read("Zolvane.ini"));
}

TEST(Play, ExportsToTheCopyAndLeavesTheDiskAlone) {
  Played session{SampleConfiguration()};
  const auto played = session.Play(PressOf(exportButton, playedFolder + "/backup.bak"));
  EXPECT_EQ(played.ExitStatus, 0);
  EXPECT_EQ(session.Files.Read(playedFolder + "/backup.bak").Is, DiskContent::State::Present);
  EXPECT_FALSE(std::filesystem::exists(PathOf(playedFolder)));
}

TEST(Play, TellsOfAButtonThatIsNotOffered) {
  Played session{Replaced(SampleConfiguration(), "UploadCalibrationData=1", "UploadCalibrationData=0")};
  const auto played = session.Play(PressOf(uploadButton));
  EXPECT_TRUE(played.Result.Tally.WasDisabled);
  EXPECT_NE(played.ExitStatus, 0);
}

}  // namespace
}  // namespace zolvane
