#include "host/forwarding.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "support/fake_environment.h"
#include "support/operation_fixture.h"

namespace zolvane {
namespace {

// A wrapper that changes nothing, and what it was asked for behind it.
class Forwarding : public testing::Test {
 protected:
  Journal Calls;
  FakeEnvironment Behind{Calls};
  ForwardingEnvironment Wrapper{Behind};
};

TEST_F(Forwarding, HandsOutTheFolderAndTheServiceBehindIt) {
  Behind.Folder = "/elsewhere";
  EXPECT_EQ(Wrapper.ProgramFolder(), "/elsewhere");
  EXPECT_EQ(Wrapper.CreateIniFileService(), Behind.Settings);
  EXPECT_EQ(Calls.Events, Texts{"create settings service"});
}

TEST_F(Forwarding, AppendsTheBlankLineToTheNamedFileAndRunsTheMessageLoop) {
  EXPECT_TRUE(Wrapper.AppendBlankLine("/lab/Zolvane.bak").Ok());
  Wrapper.RunMessageLoopOnce();
  EXPECT_EQ(Calls.Events, (Texts{"append blank line to /lab/Zolvane.bak", "yield"}));
}

TEST_F(Forwarding, ShowsTheBoxAsItWasAskedForAndBringsItsAnswer) {
  Behind.BoxAnswers = {2};
  EXPECT_EQ(Wrapper.ShowMessageBox({.Text = "Go on?", .Style = 33, .Title = "Upload"}), 2);
  EXPECT_EQ(Calls.Events, Texts{R"(box 33 "Upload" "Go on?")"});
}

TEST_F(Forwarding, ShowsTheFileDialogueOfItsKindAndBringsTheChosenFile) {
  Behind.FileAnswers = {"/lab/kept.bak", std::nullopt};
  FileDialogue dialogue;
  dialogue.FileName = "*.bak";
  EXPECT_EQ(Wrapper.ShowFileDialogue(FileDialogueKind::Open, dialogue), "/lab/kept.bak");
  dialogue.FileName = "new.bak";
  EXPECT_EQ(Wrapper.ShowFileDialogue(FileDialogueKind::Save, dialogue), std::nullopt);
  EXPECT_EQ(Calls.Events, (Texts{R"(open dialogue "*.bak")", R"(save dialogue "new.bak")"}));
}

TEST_F(Forwarding, AFailureBehindItIsAFailureOfTheWrapper) {
  Calls.FailsIf = [](auto) { return true; };
  EXPECT_EQ(Wrapper.CreateIniFileService(), nullptr);
  EXPECT_FALSE(Wrapper.AppendBlankLine("/lab/Zolvane.bak").Ok());
  EXPECT_EQ(Wrapper.ShowMessageBox({}), std::nullopt);
  EXPECT_EQ(Wrapper.ShowFileDialogue(FileDialogueKind::Open, {}), std::nullopt);
}

}  // namespace
}  // namespace zolvane
