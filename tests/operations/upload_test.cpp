#include "operations/upload.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "support/operation_fixture.h"

namespace zolvane {
namespace {

constexpr std::string_view uploadConfiguration =
    "[DeviceType]\nInstalled=1\nItem1=\"D\",0,\"ZV\"\n"
    "[Position_D]\nItem1=STAGE1,\"a\",,1,2\nItem2=STAGE2,\"b\",,3,4\n";

constexpr auto uploadQuestion =
    "box 49 \"Upload Calibration Data to Zolvane\" \"The calibration data stored on this computer will be "
    "transferred\r\nto the Zolvane overwriting any existing data.\r\n\r\nClick [OK] to upload this "
    "information.\"";

struct UploadFixture : OperationFixture {
  UploadFixture() : OperationFixture{uploadConfiguration} {}

  Texts Upload() {
    UploadCalibration(Context);
    return Steps();
  }
};

// The 36 lines of this configuration.
Texts AllLines() {
  Texts lines;
  for (const auto* text : {"STAGE1_X 1",       "STAGE1_Y 2",       "STAGE2_X 3",      "STAGE2_Y 4",
                           "STAGE3_X 0",       "STAGE3_Y 0",       "STAGE4_X 0",      "STAGE4_Y 0",
                           "STAGE5_X 0",       "STAGE5_Y 0",       "STAGE6_X 0",      "STAGE6_Y 0",
                           "CHUTESTAGE_X 0",   "CHUTESTAGE_Y 0",   "NEST8_STAGE_X 0", "NEST8_STAGE_Y 0",
                           "NEST12_STAGE_X 0", "NEST12_STAGE_Y 0", "RESERVOIR_X 0",   "RESERVOIR_Y 0",
                           "WASH_X 0",         "WASH_Y 0",         "RACK_STAGE1_X 0", "RACK_STAGE1_Y 0",
                           "RACK_STAGE2_X 0",  "RACK_STAGE2_Y 0",  "Delta_Z 0",       "WELL_A1_SD_X 0",
                           "WELL_A1_SD_Y 0",   "CHUTE_SD_X 0",     "CHUTE_SD_Y 0",    "NEST8_SD_X 0",
                           "NEST8_SD_Y 0",     "NEST12_SD_X 0",    "NEST12_SD_Y 0",   "SAVE"}) {
    lines.push_back(std::string{"send SET_CALIBRATION "} + text);
  }
  return lines;
}

TEST(Upload, AsksThenBuildsThenSendsLineByLineThenEnds) {
  UploadFixture fixture;
  Texts expected{"status=Uploading Data to Zolvane",
                 "enable controls false",
                 uploadQuestion,
                 "status=Uploading Data to Zolvane...Stage XY",
                 "status=Uploading Data to Zolvane...Heights",
                 "status=Uploading Data to Zolvane...SD XY",
                 "status=Uploading Data to Zolvane...Volume Precision",
                 "status=Uploading Data to Zolvane"};
  const auto lines = AllLines();
  expected.insert(expected.end(), lines.begin(), lines.end());
  for (const auto* step : {"changed=false", "status=", "enable controls true"}) {
    expected.emplace_back(step);
  }
  EXPECT_EQ(fixture.Upload(), expected);
}

TEST(Upload, LoadsTheRecordsInForceBeforeItAsks) {
  UploadFixture fixture;
  fixture.Process.BoxAnswers = {message_answer::cancel};
  fixture.Upload();
  EXPECT_EQ(fixture.Calls.Of({"status", "enable", "box", "read [Z_Calibration] MountHeight",
                              "read [DeviceType] Installed", "read [CageType] Installed", "read [Device_Type",
                              "read [HeadType] Installed", "read [TipType] Installed",
                              "read [NestType] Installed"}),
            (Texts{"status=Uploading Data to Zolvane", "enable controls false",
                   "read [Z_Calibration] MountHeight", "read [DeviceType] Installed",
                   "read [CageType] Installed", "read [Device_TypeD_Cage] Axis1", "read [HeadType] Installed",
                   "read [TipType] Installed", "read [NestType] Installed", uploadQuestion}));
  EXPECT_EQ(fixture.Config.Current.Device.Name, "D");
}

TEST(Upload, LeavesControlsAndStatusAsTheyAreOnCancel) {
  UploadFixture fixture;
  fixture.Process.BoxAnswers = {message_answer::cancel};
  EXPECT_EQ(fixture.Upload(),
            (Texts{"status=Uploading Data to Zolvane", "enable controls false", uploadQuestion}));
  EXPECT_EQ(fixture.Calls.Events.back(), uploadQuestion);
  EXPECT_EQ(fixture.Window->Panel->Shown, "Uploading Data to Zolvane");
}

TEST(Upload, EndsAtOnceOnAnyOtherAnswer) {
  for (const std::int32_t answer : {0, 3, 4, 5, 6, 7, -1}) {
    UploadFixture fixture;
    fixture.Process.BoxAnswers = {answer};
    EXPECT_EQ(fixture.Upload(), (Texts{"status=Uploading Data to Zolvane", "enable controls false",
                                       uploadQuestion, "changed=false", "status=", "enable controls true"}))
        << answer;
  }
}

TEST(Upload, EndsAtOnceWhenTheQuestionCannotBeShown) {
  UploadFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("box");
  EXPECT_EQ(fixture.Upload(), (Texts{"status=Uploading Data to Zolvane", "enable controls false",
                                     uploadQuestion, "changed=false", "status=", "enable controls true"}));
}

TEST(Upload, ReadsTheStopFlagBeforeEveryLine) {
  UploadFixture fixture;
  fixture.Upload();
  const auto calls = fixture.Calls.Of({"stop?", "send"});
  ASSERT_EQ(calls.size(), 72U);
  for (std::size_t line = 0; line < calls.size(); line += 2) {
    EXPECT_EQ(calls[line], "stop?");
    EXPECT_TRUE(calls[line + 1].starts_with("send SET_CALIBRATION ")) << calls[line + 1];
  }
}

TEST(Upload, StopsAtTheFirstLineThatIsNotAnswered) {
  UploadFixture fixture;
  fixture.Link().Replies["SET_CALIBRATION STAGE2_X 3"] = {NoAnswer()};
  fixture.Upload();
  const auto calls = fixture.Calls.Of({"send", "message", "stop?", "changed", "status=", "enable"});
  const Texts ending(calls.end() - 6, calls.end());
  EXPECT_EQ(ending,
            (Texts{"stop?", "send SET_CALIBRATION STAGE2_X 3",
                   "message 0 \"Communication Error\" \"Uploading Data to Zolvane\r\n\r\nPlease ensure "
                   "that the Zolvane is switched on\r\nand in 'Remote Mode'\"",
                   "changed=false", "status=", "enable controls true"}));
  EXPECT_EQ(fixture.Sent(), (Texts{"send SET_CALIBRATION STAGE1_X 1", "send SET_CALIBRATION STAGE1_Y 2",
                                   "send SET_CALIBRATION STAGE2_X 3"}));
}

TEST(Upload, GoesOnWhateverTheInstrumentAnswers) {
  UploadFixture fixture;
  fixture.Link().DefaultReply = Answer("SYNTAX_ERROR\r\n");
  fixture.Upload();
  EXPECT_EQ(fixture.Sent(), AllLines());
}

TEST(Upload, SkipsEveryLineWhenTheStopFlagIsStillSetFromBefore) {
  UploadFixture fixture;
  fixture.Link().StopFlag = true;
  fixture.Upload();
  EXPECT_EQ(fixture.Sent(), Texts{});
  EXPECT_EQ(fixture.Calls.Count("stop?"), 36U);
  EXPECT_EQ(fixture.Calls.Events.back(), "enable controls true");
  EXPECT_TRUE(fixture.Link().StopFlag);
}

TEST(Upload, SkipsTheRestWhenAStopIsRequestedOnTheWay) {
  UploadFixture fixture;
  fixture.Link().Replies["SET_CALIBRATION STAGE1_Y 2"] = {{.Text = "OK", .RaisesStop = true}};
  fixture.Upload();
  EXPECT_EQ(fixture.Sent(), (Texts{"send SET_CALIBRATION STAGE1_X 1", "send SET_CALIBRATION STAGE1_Y 2"}));
  EXPECT_EQ(fixture.Calls.Count("stop?"), 36U);
}

TEST(Upload, GoesOnWithTheNextLineWhenTheStopFlagIsTakenBack) {
  UploadFixture fixture;
  int reads = 0;
  fixture.Calls.FailsIf = [&](auto event) {
    if (event == "stop?") {
      ++reads;
      fixture.Link().StopFlag = reads == 2;
    }
    return false;
  };
  fixture.Upload();
  Texts expected = AllLines();
  expected.erase(expected.begin() + 1);
  EXPECT_EQ(fixture.Sent(), expected);
}

TEST(Upload, SendsTheLinesForWhichTheStopFlagCannotBeRead) {
  UploadFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("stop?");
  fixture.Upload();
  EXPECT_EQ(fixture.Sent(), AllLines());
  EXPECT_EQ(fixture.Calls.Of({"message"}), Texts{});
}

TEST(Upload, SaysThatThereIsNoCommunicationWhenTheHostGivesNoLink) {
  UploadFixture fixture;
  fixture.Object->TheLink = nullptr;
  fixture.Upload();
  EXPECT_EQ(fixture.Calls.Of({"message"}),
            Texts{"message 0 \"Communication Error\" \"Uploading Data to Zolvane\r\n\r\nPlease ensure that "
                  "the Zolvane is switched on\r\nand in 'Remote Mode'\""});
  EXPECT_EQ(fixture.Calls.Events.back(), "enable controls true");
}

TEST(Upload, SplitsTheScriptWithTheServiceAndSendsNothingWhenThatFails) {
  UploadFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("split \"\r\n\" of \"SET_CALIBRATION STAGE1_X 1\r\n");
  fixture.Upload();
  EXPECT_EQ(fixture.Sent(), Texts{});
  EXPECT_EQ(fixture.Steps().back(), "enable controls true");
}

TEST(Upload, WritesNothingIntoAnyFile) {
  UploadFixture fixture;
  fixture.Upload();
  EXPECT_EQ(fixture.Writes(), Texts{});
  EXPECT_EQ(fixture.Settings().Text(), uploadConfiguration);
}

TEST(Upload, KeepsNothingBetweenTwoRuns) {
  UploadFixture fixture;
  fixture.Upload();
  const auto first = fixture.Calls.Of({"send", "status=", "box"});
  fixture.Calls.Clear();
  fixture.Upload();
  EXPECT_EQ(fixture.Calls.Of({"send", "status=", "box"}), first);
  fixture.Calls.Clear();
  fixture.Settings().Set("Position_D", "Item1", "STAGE1,\"a\",,9,2");
  fixture.Upload();
  EXPECT_EQ(fixture.Sent().front(), "send SET_CALIBRATION STAGE1_X 9");
}

TEST(Upload, SaysThatThereIsNoCommunicationWithoutAnyHost) {
  UploadFixture fixture;
  fixture.Attachment = {};
  EXPECT_EQ(fixture.Upload(),
            (Texts{"enable controls false", uploadQuestion,
                   "message 0 \"Communication Error\" \"\r\n\r\nPlease ensure that the Zolvane is switched "
                   "on\r\nand in 'Remote Mode'\"",
                   "enable controls true"}));
}

}  // namespace
}  // namespace zolvane
