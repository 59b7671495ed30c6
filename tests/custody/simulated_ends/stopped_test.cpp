// A user stops a command at any line: nothing more is asked, what is known so far is said, and of the rest that it is
// not known.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "custody/support/laboratory.h"

namespace zolvane {
namespace {

class Stopped : public testing::Test {
 protected:
  void SetUp() override {
    Disk.Put(labFile, LabConfiguration());
    Instrument = std::make_shared<LabInstrument>(LabMemory::Saved(ScriptOf(LabConfiguration())));
  }

  ~Stopped() override { ProgramInterrupt().Lower(); }

  // As the instrument takes the line of that number among those that start so, from 1 on.
  void StopAt(std::string_view lineStart, std::size_t number) {
    Instrument->Took = [lineStart, number, count = std::size_t{0}](const std::string& line) mutable {
      if (line.starts_with(lineStart) && ++count == number) {
        ProgramInterrupt().Raise();
      }
    };
  }

  std::size_t LinesTaken(std::string_view start) const {
    return static_cast<std::size_t>(std::ranges::count_if(
        Instrument->Lines, [start](const auto& line) { return line.starts_with(start); }));
  }

  MemoryDisk Disk;
  std::shared_ptr<LabInstrument> Instrument;
  LabProgram Program;
};

TEST_F(Stopped, AnUploadSaysSinceWhichLineNothingIsKnown) {
  StopAt(settingStart, 3);
  EXPECT_EQ(Program.Run(Disk, Instrument, {"--yes", "upload"}), 1);
  EXPECT_EQ(Program.Result.Outcome, outcome::failed);
  const auto told = Program.All();
  EXPECT_NE(told.find("3 lines sent, 3 answered, 0 of 3 values verified"), std::string::npos) << told;
  EXPECT_NE(told.find("stopped by the user; unknown since line 4"), std::string::npos) << told;
  EXPECT_EQ(LinesTaken(settingStart), 3U);
  ProgramInterrupt().Lower();
  LabProgram undo;
  EXPECT_EQ(undo.Run(Disk, Instrument, {"undo"}), 0) << undo.All();
}

TEST_F(Stopped, AProofThatWasStoppedSavesNothing) {
  StopAt(questionStart, 2 * ScriptOf(LabConfiguration()).size() - 1);  // each is asked once before
  EXPECT_EQ(Program.Run(Disk, Instrument, {"--yes", "upload"}), 1);
  EXPECT_EQ(Program.Result.Outcome, outcome::failed);
  EXPECT_NE(Program.All().find("stopped by the user; unknown since line"), std::string::npos)
      << Program.All();
  EXPECT_EQ(LinesTaken(saveLine), 0U);
}

// The values of the first upload are there, but not saved. The second one changes none of them, and yet has to see that
// they went.
TEST_F(Stopped, ARestartBeforeTheNextSaveIsSeen) {
  Disk.Put(labFile, Exchanged(LabConfiguration(), "STAGE,1612,2004", "STAGE,11612,12004"));
  StopAt(questionStart, 2 * ScriptOf(LabConfiguration()).size() - 1);
  ASSERT_EQ(Program.Run(Disk, Instrument, {"--yes", "upload"}), 1);
  ProgramInterrupt().Lower();
  Instrument->Took = [this, left = 2 * ScriptOf(LabConfiguration()).size()](const std::string& line) mutable {
    if (line.starts_with(questionStart) && --left == 0) {
      Instrument->Restart();  // behind the last question of the proof
    }
  };
  LabProgram again;
  EXPECT_EQ(again.Run(Disk, Instrument, {"--yes", "upload"}), 1) << again.All();
  EXPECT_NE(again.All().find("it may have restarted"), std::string::npos) << again.All();
}

TEST_F(Stopped, AnUndoSaysSinceWhichLineNothingIsKnown) {
  Disk.Put(labFile, Exchanged(LabConfiguration(), "STAGE,1612,2004", "STAGE,11612,12004"));
  ASSERT_EQ(LabProgram{}.Run(Disk, Instrument, {"--yes", "upload"}), 0);
  Instrument->Lines.clear();
  StopAt(settingStart, 1);
  EXPECT_EQ(Program.Run(Disk, Instrument, {"undo"}), 1);
  EXPECT_EQ(Program.Result.Outcome, outcome::failed);
  EXPECT_NE(Program.All().find("stopped by the user; unknown since line 2"), std::string::npos)
      << Program.All();
}

TEST_F(Stopped, WhileLookingChangesNothingAndBlamesNobody) {
  for (const auto* const command : {"upload", "download"}) {
    for (const auto number : {std::size_t{1}, std::size_t{2}, std::size_t{20}}) {
      StopAt(number == 1 ? "STATUS" : questionStart, number);
      LabProgram program;
      EXPECT_EQ(program.Run(Disk, Instrument, {"--yes", command}), 1);
      const auto told = program.All();
      EXPECT_EQ(program.Result.Outcome, outcome::cancelled) << told;
      EXPECT_NE(told.find("stopped by the user; nothing was changed"), std::string::npos) << told;
      EXPECT_EQ(told.find("does not answer"), std::string::npos) << told;
      EXPECT_EQ(Disk.Read(labFile).Bytes, LabConfiguration());
      ProgramInterrupt().Lower();
      EXPECT_EQ(LinesTaken(settingStart), 0U);
      LabProgram history;
      EXPECT_EQ(history.Run(Disk, nullptr, {"history"}), 0);
      EXPECT_EQ(history.Output.str().find(command), std::string::npos) << history.Output.str();
    }
  }
}

}  // namespace
}  // namespace zolvane
