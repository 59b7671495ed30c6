// With an instrument in a process of its own: what it was sent and not told to keep is still there for the next command.
#include <gtest/gtest.h>

#include <string>

#include "bench/process_support.h"
#include "zolvane/zolvane_fixture.h"

namespace zolvane {
namespace {

class WithARunningInstrument : public Zolvane {
 protected:
  // The instrument has kept the sample. Then two values of the file change.
  void SetUp() override {
    ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
    kept_ = Memory();
    Replace("STAGE2,\"Stage 2\",STAGE,12415,", "STAGE2,\"Stage 2\",STAGE,12391,");
    Replace("MountHeight=164.35", "MountHeight=164.1");
  }

  ProgramRun RunWith(const SimulatorProcess& instrument, Words words) {
    words.insert(words.begin(), {"--link", instrument.Link()});
    return RunAlone(std::move(words));
  }

  Arguments With(const std::string& fault) const {
    return {"--state", Folder.Path("memory.json"), "--fault", fault};
  }

  const std::string& KeptBefore() const { return kept_; }

 private:
  std::string kept_;
};

class CutAt : public WithARunningInstrument, public ::testing::WithParamInterface<int> {};

TEST_P(CutAt, UndoTakesBackWhatWasSentBeforeAndAfterTheResume) {
  SimulatorProcess instrument{With("close@" + std::to_string(GetParam()))};
  ASSERT_EQ(RunWith(instrument, {"--yes", "upload"}).Status, 1);
  ASSERT_EQ(RunWith(instrument, {"resume"}).Status, 0);
  ASSERT_NE(Memory(), KeptBefore());
  const auto undo = RunWith(instrument, {"undo"});
  EXPECT_EQ(undo.Status, 0) << undo.All();
  instrument.End();
  EXPECT_EQ(Memory(), KeptBefore()) << "what it has after a restart";
}

// Before the first value, between the two that change, behind both, and at SAVE.
INSTANTIATE_TEST_SUITE_P(Lines, CutAt, ::testing::Values(179, 190, 480, 533));

TEST_F(WithARunningInstrument, AfterARestartBehindSaveNothingIsVerifiedAndResumeGoesOn) {
  const SimulatorProcess instrument{With("power@400")};
  const auto upload = RunWith(instrument, {"--yes", "--json", "upload"});
  EXPECT_EQ(upload.Status, 1);
  const auto document = upload.Document();
  EXPECT_LT(document.at("counts").at("verified"), document.at("counts").at("values")) << upload.Output;
  const auto resume = RunWith(instrument, {"resume"});
  EXPECT_EQ(resume.Status, 0) << resume.All();
  EXPECT_EQ(RunWith(instrument, {"diff", "file", "instrument"}).Status, 0);
}

TEST_F(WithARunningInstrument, ABackupDoesNotChangeWhatWasLeftLast) {
  const SimulatorProcess instrument{{"--state", Folder.Path("memory.json")}};
  ASSERT_EQ(RunWith(instrument, {"--yes", "upload"}).Status, 0);
  Replace("MountHeight=164.1", "MountHeight=164");
  const auto sent = RunProgram(ZOLVANE_BENCH_PATH, {"--folder", Folder.Path(), "--link", instrument.Link(),
                                                    "--yes", "--quiet", "upload"});
  ASSERT_EQ(sent.Status, 0) << sent.Errors;
  const auto before = RunWith(instrument, {"drift"});
  EXPECT_EQ(before.Status, 1);
  ASSERT_EQ(RunWith(instrument, {"backup", Folder.Path("record.html")}).Status, 0);
  EXPECT_EQ(RunWith(instrument, {"drift"}).Output, before.Output);
}

}  // namespace
}  // namespace zolvane
