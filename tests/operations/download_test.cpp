#include "operations/download.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "support/operation_fixture.h"

namespace zolvane {
namespace {

// Device "D" with cage "C" and a factor of 2; 0.5 mm per step of Z, 2 of S.
constexpr std::string_view axes =
    "[DeviceType]\nInstalled=1\nItem1=\"D\",0,\"ZV\"\nSDXYEncoderMMStepFactorOff=2\n"
    "[CageType]\nInstalled=1\nItem1=\"C\",SERIALDILUTE,0,0,0,1,2,3,4\n"
    "[Device_TypeD_CageC]\nAxis1=Z,0.5\nAxis2=S,2\n";

constexpr auto downloadQuestion =
    "box 49 \"Download Calibration Data to Zolvane\" \"The calibration data stored on the Zolvane will be "
    "transferred\r\nto the local Hestrion data file on this computer, overwriting any existing "
    "data.\r\n\r\nClick [OK] to download this information.\"";

struct DownloadFixture : OperationFixture {
  explicit DownloadFixture(const std::string& tables = "") : OperationFixture{std::string{axes} + tables} {
    Refresh();
    Link().DefaultReply = Answer("SYNTAX_ERROR");
  }

  void Reply(const std::string& key, const std::string& reply) {
    Link().Replies["GET_CALIBRATION " + key] = {Answer(reply)};
  }
  void Refuse(const std::string& key) { Link().Replies["GET_CALIBRATION " + key] = {NoAnswer()}; }

  // Raises the stop flag while the query is under way.
  void StopDuring(const std::string& key, const std::string& reply) {
    Link().Replies["GET_CALIBRATION " + key] = {{.Text = reply, .RaisesStop = true}};
  }

  // The keys asked for, in order.
  Texts Asked() const {
    const std::string start = "send GET_CALIBRATION ";
    Texts keys;
    for (const auto& event : Sent()) {
      EXPECT_TRUE(event.starts_with(start)) << event;
      keys.push_back(event.substr(start.size()));
    }
    return keys;
  }
};

// ---- The whole ----

TEST(Download, AsksForConfirmationRunsItsStepsAndEnds) {
  DownloadFixture fixture{
      "[HeadType]\nItem1=\"h\",CALIBRATE,0,0,0,1\n"
      "[TipType]\nItem1=\"t\",SERIALDILUTE\n"};
  fixture.Link().DefaultReply = NoAnswer();
  DownloadCalibration(fixture.Context);
  EXPECT_EQ(
      fixture.Calls.Of({"status=", "enable", "box", "send GET_CALIBRATION STAGE1", "send GET_CALIBRATION D",
                        "send GET_CALIBRATION W", "send GET_CALIBRATION HeadE", "changed", "write"}),
      (Texts{"status=Downloading Data from Zolvane", "enable controls false", downloadQuestion,
             "status=Downloading Data from Zolvane...Stage XY", "send GET_CALIBRATION STAGE1_X",
             "send GET_CALIBRATION WASH_X", "status=Downloading Data from Zolvane...Heights",
             "send GET_CALIBRATION Delta_Z", "status=Downloading Data from Zolvane...Liquid Handling",
             "send GET_CALIBRATION HeadEject_SD_S",
             "write [HeadType] Item1=\"h\",CALIBRATE,0,0,0,1,0,0,0,0,0,0,0,0,0,0,,0,\"\"",
             "status=Downloading Data from Zolvane...Tip Data",
             "write [TipType] Item1=\"t\",SERIALDILUTE,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\"\"",
             "status=Downloading Data from Zolvane...SD XY", "send GET_CALIBRATION WELL_A1_SD_X",
             "changed=false", "status=", "enable controls true"}));
}

TEST(Download, LoadsTheRecordsInForceBeforeItAsks) {
  DownloadFixture fixture;
  fixture.Process.BoxAnswers = {message_answer::cancel};
  fixture.Config.Current = {};
  DownloadCalibration(fixture.Context);
  EXPECT_EQ(
      fixture.Calls.Of({"status", "enable", "box", "read [Z_Calibration] MountHeight",
                        "read [DeviceType] Installed", "read [CageType] Installed", "read [Device_Type",
                        "read [HeadType] Installed", "read [TipType] Installed",
                        "read [NestType] Installed"}),
      (Texts{"status=Downloading Data from Zolvane", "enable controls false",
             "read [Z_Calibration] MountHeight", "read [DeviceType] Installed", "read [CageType] Installed",
             "read [Device_TypeD_CageC] Axis1", "read [Device_TypeD_CageC] Axis2",
             "read [Device_TypeD_CageC] Axis3", "read [HeadType] Installed", "read [TipType] Installed",
             "read [NestType] Installed", downloadQuestion}));
  EXPECT_EQ(fixture.Config.Current.Axes.S.UnitsPerStep, 2.0F);
}

TEST(Download, LeavesControlsAndStatusAsTheyAreOnCancel) {
  DownloadFixture fixture;
  fixture.Process.BoxAnswers = {message_answer::cancel};
  DownloadCalibration(fixture.Context);
  EXPECT_EQ(fixture.Steps(),
            (Texts{"status=Downloading Data from Zolvane", "enable controls false", downloadQuestion}));
  EXPECT_EQ(fixture.Calls.Events.back(), downloadQuestion);
}

TEST(Download, EndsAtOnceOnAnyOtherAnswer) {
  for (const std::int32_t answer : {0, 3, 6, 7}) {
    DownloadFixture fixture;
    fixture.Process.BoxAnswers = {answer};
    DownloadCalibration(fixture.Context);
    EXPECT_EQ(fixture.Steps(), (Texts{"status=Downloading Data from Zolvane", "enable controls false",
                                      downloadQuestion, "changed=false", "status=", "enable controls true"}))
        << answer;
  }
}

TEST(Download, EndsAtOnceWhenTheQuestionCannotBeShown) {
  DownloadFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("box");
  DownloadCalibration(fixture.Context);
  EXPECT_EQ(fixture.Steps(), (Texts{"status=Downloading Data from Zolvane", "enable controls false",
                                    downloadQuestion, "changed=false", "status=", "enable controls true"}));
}

TEST(Download, AsksForThirteenPositionsInTheirOrder) {
  DownloadFixture fixture;
  DownloadCalibration(fixture.Context);
  auto asked = fixture.Asked();
  asked.resize(26);
  EXPECT_EQ(asked,
            (Texts{"STAGE1_X",      "STAGE1_Y",       "STAGE2_X",       "STAGE2_Y",      "STAGE3_X",
                   "STAGE3_Y",      "STAGE4_X",       "STAGE4_Y",       "STAGE5_X",      "STAGE5_Y",
                   "STAGE6_X",      "STAGE6_Y",       "CHUTESTAGE_X",   "CHUTESTAGE_Y",  "NEST8_STAGE_X",
                   "NEST8_STAGE_Y", "NEST12_STAGE_X", "NEST12_STAGE_Y", "RESERVOIR_X",   "RESERVOIR_Y",
                   "WASH_X",        "WASH_Y",         "RACK_STAGE1_X",  "RACK_STAGE1_Y", "RACK_STAGE2_X",
                   "RACK_STAGE2_Y"}));
}

TEST(Download, StoresEachPositionUnderItsOwnName) {
  std::string table = "[Position_D]\n";
  int item = 0;
  for (const auto* name :
       {"TIPRACKSTAGE2", "TIPRACKSTAGE1", "TIPWASH", "RESERVOIR", "NEST12", "NEST8", "TIPCHUTE", "STAGE6"}) {
    table += "Item" + std::to_string(++item) + "=" + name + ",\"n\"\n";
  }
  DownloadFixture fixture{table};
  for (const auto* key : {"RACK_STAGE2", "RACK_STAGE1", "WASH", "RESERVOIR", "NEST12_STAGE", "NEST8_STAGE",
                          "CHUTESTAGE", "STAGE6"}) {
    fixture.Reply(std::string{key} + "_X", std::to_string(--item + 100));
  }
  DownloadCalibration(fixture.Context);
  EXPECT_EQ(fixture.Value("Position_D", "Item1"), "TIPRACKSTAGE2,\"n\",,107,0,0,0,0,0,0,0,0,0,,0,0");
  EXPECT_EQ(fixture.Value("Position_D", "Item2"), "TIPRACKSTAGE1,\"n\",,106,0,0,0,0,0,0,0,0,0,,0,0");
  EXPECT_EQ(fixture.Value("Position_D", "Item3"), "TIPWASH,\"n\",,105,0,0,0,0,0,0,0,0,0,,0,0");
  EXPECT_EQ(fixture.Value("Position_D", "Item4"), "RESERVOIR,\"n\",,104,0,0,0,0,0,0,0,0,0,,0,0");
  EXPECT_EQ(fixture.Value("Position_D", "Item5"), "NEST12,\"n\",,103,0,0,0,0,0,0,0,0,0,,0,0");
  EXPECT_EQ(fixture.Value("Position_D", "Item6"), "NEST8,\"n\",,102,0,0,0,0,0,0,0,0,0,,0,0");
  EXPECT_EQ(fixture.Value("Position_D", "Item7"), "TIPCHUTE,\"n\",,101,0,0,0,0,0,0,0,0,0,,0,0");
  EXPECT_EQ(fixture.Value("Position_D", "Item8"), "STAGE6,\"n\",,100,0,0,0,0,0,0,0,0,0,,0,0");
}

TEST(Download, SkipsWhatTestsTheStopFlagUntilACommandClearsIt) {
  DownloadFixture fixture{
      "[Position_D]\nItem1=STAGE1,\"a\"\n[HeadType]\nItem1=\"m\",MICROTITER\n"
      "Item2=\"h\",SERIALDILUTE\n[TipType]\nItem1=\"t\",SERIALDILUTE\n"};
  fixture.Link().StopFlag = true;
  DownloadCalibration(fixture.Context);
  EXPECT_EQ(fixture.StatusTexts(),
            (Texts{"status=Downloading Data from Zolvane", "status=Downloading Data from Zolvane...Stage XY",
                   "status=Downloading Data from Zolvane...Liquid Handling",
                   "status=Downloading Data from Zolvane...Tip Data",
                   "status=Downloading Data from Zolvane...SD XY", "status="}));
  EXPECT_EQ(fixture.Asked(), (Texts{"HeadEject_SD_S", "HeadLock_SD_S", "PickUp_TeachTool_Z",
                                    "DropOff_TeachTool_Z", "WELL_A1_SD_X", "WELL_A1_SD_Y", "CHUTE_SD_X",
                                    "CHUTE_SD_Y", "NEST8_SD_X", "NEST8_SD_Y", "NEST12_SD_X", "NEST12_SD_Y"}));
  EXPECT_EQ(fixture.Calls.Count("stop?"), 19U);
}

TEST(Download, AsksNothingMoreOnceTheLastCommandBeforeTheChecksRaisesTheFlag) {
  DownloadFixture fixture{"[HeadType]\nItem1=\"m\",MICROTITER\n[TipType]\nItem1=\"t\",SERIALDILUTE\n"};
  fixture.StopDuring("STAGE1_Y", "=1");
  DownloadCalibration(fixture.Context);
  EXPECT_EQ(fixture.Asked(), (Texts{"STAGE1_X", "STAGE1_Y"}));
  EXPECT_EQ(fixture.Writes().size(), 1U);
  EXPECT_EQ(fixture.StatusTexts(),
            (Texts{"status=Downloading Data from Zolvane", "status=Downloading Data from Zolvane...Stage XY",
                   "status=Downloading Data from Zolvane...Liquid Handling",
                   "status=Downloading Data from Zolvane...Tip Data", "status="}));
  EXPECT_EQ(fixture.Steps().back(), "enable controls true");
}

TEST(Download, DoesNotRefreshThePageOrTheRecordsInForce) {
  DownloadFixture fixture{"[HeadType]\nInstalled=1\nItem1=\"h\",CALIBRATE,0,0,0,1\n"};
  fixture.Reply("HeadLock_SD_S", "=7");
  DownloadCalibration(fixture.Context);
  EXPECT_EQ(fixture.Value("HeadType", "Item1"), "\"h\",CALIBRATE,0,0,0,1,0,0,0,0,0,7,0,0,0,0,,0,\"\"");
  EXPECT_EQ(fixture.Config.Current.Head.HeadLockS, 0);
  EXPECT_EQ(fixture.Calls.Of({"load", "select"}), Texts{});
}

TEST(Download, SaysForEachGroupThatThereIsNoCommunicationWithoutAnyHost) {
  DownloadFixture fixture{
      "[HeadType]\nItem1=\"h\",SERIALDILUTE,0,30,0,8\n[TipType]\nItem1=\"t\",SERIALDILUTE\n"};
  fixture.Attachment = {};
  DownloadCalibration(fixture.Context);
  // 13 positions, the height, the head, and the serial-dilute positions, which end at their first failure.
  EXPECT_EQ(fixture.Calls.Of({"message 0 \"Communication Error\""}).size(), 16U);
  EXPECT_EQ(fixture.Writes(),
            (Texts{"write [HeadType] Item1=\"h\",SERIALDILUTE,0,30,0,8,0,0,0,0,0,0,0,0,0,0,,0,\"\"",
                   "write [TipType] Item1=\"t\",SERIALDILUTE,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\"\""}));
  EXPECT_EQ(fixture.Calls.Events.back(), "enable controls true");
}

// ---- Replies ----

struct ReplyCase {
  const char* Reply;
  const char* StageX;
};

TEST(DownloadReply, IsReadFromBehindItsFirstEqualsSignOrFromItsStart) {
  for (const auto& [reply, expected] : std::initializer_list<ReplyCase>{{"STAGE1_X=400", "400"},
                                                                        {"=400\r\n", "400"},
                                                                        {"250", "250"},
                                                                        {"A=1=2", "1"},
                                                                        {"STAGE1_X 400", "0"},
                                                                        {"X=abc", "0"},
                                                                        {"", "0"},
                                                                        {"X=", "0"},
                                                                        {"X=  -7 steps", "-7"},
                                                                        {"X=4\r\n00", "400"},
                                                                        {"X\r\n=12", "12"},
                                                                        {"X=1e3", "1000"},
                                                                        {"X=&H1F", "0"},
                                                                        {"X=+5", "5"},
                                                                        {"X=1,5", "1"},
                                                                        {"X=\t8", "8"},
                                                                        {"syntax_error=3", "3"},
                                                                        {"Syntax_Error 3", "0"},
                                                                        {"X= 1 2", "1"},
                                                                        {"X=2.5", "2"},
                                                                        {"X=3.5", "4"},
                                                                        {"X=-2.5", "-2"},
                                                                        {"X=2147483648", "17"},
                                                                        {"X=1e400", "0"},
                                                                        {"X=2147483647.4", "2147483647"}}) {
    DownloadFixture fixture{"[Position_D]\nItem1=STAGE1,\"a\",,17,2\n"};
    fixture.Reply("STAGE1_X", reply);
    DownloadPosition(fixture.Context, {"STAGE1", "STAGE1_X", "STAGE1_Y"});
    EXPECT_EQ(fixture.Value("Position_D", "Item1"),
              std::string{"STAGE1,\"a\",,"} + expected + ",2,0,0,0,0,0,0,0,0,,0,0")
        << reply;
  }
}

TEST(DownloadReply, ASyntaxErrorAnywhereLeavesTheFilesValue) {
  for (const auto* reply : {"SYNTAX_ERROR", "STAGE1_X=400 SYNTAX_ERROR", "400\r\nSYNTAX_ERROR\r\n",
                            "SYNTAX_ERROR=400", "SYNTAX_\r\nERROR"}) {
    DownloadFixture fixture{"[Position_D]\nItem1=STAGE1,\"a\",,17,2\n"};
    fixture.Reply("STAGE1_X", reply);
    fixture.Reply("STAGE1_Y", "=3");
    DownloadPosition(fixture.Context, {"STAGE1", "STAGE1_X", "STAGE1_Y"});
    EXPECT_EQ(fixture.Value("Position_D", "Item1"), "STAGE1,\"a\",,17,3,0,0,0,0,0,0,0,0,,0,0") << reply;
  }
}

// ---- One stage position ----

TEST(DownloadPosition, AsksForXLoadsTheRecordAsksForYAndSaves) {
  DownloadFixture fixture{
      "[Position_D]\nItem1=OTHER,\"o\"\nItem2=TIPCHUTE,\"c\",K,1,2,3,4,5,6,7,8,1,0,T,1,1\n"};
  fixture.Reply("CHUTESTAGE_X", "CHUTESTAGE_X=-11");
  fixture.Reply("CHUTESTAGE_Y", "CHUTESTAGE_Y=12.6");
  DownloadPosition(fixture.Context, {"TIPCHUTE", "CHUTESTAGE_X", "CHUTESTAGE_Y"});
  EXPECT_EQ(fixture.Calls.Of({"stop?", "send", "read", "write"}),
            (Texts{"stop?", "send GET_CALIBRATION CHUTESTAGE_X", "read [Position_D] Item1",
                   "read [Position_D] Item2", "send GET_CALIBRATION CHUTESTAGE_Y",
                   "write [Position_D] Item2=TIPCHUTE,\"c\",K,-11,13,3,4,5,6,7,8,1,0,T,1,1"}));
}

TEST(DownloadPosition, LeavesARecordAloneThatCannotBeRead) {
  DownloadFixture fixture{
      "[Position_D]\nItem1=OTHER,\"o\"\nItem2=HIDDEN,\"h\",,7,8\nItem3=STAGE1,\"s\",,1,2\n"};
  fixture.Calls.FailEverythingThatStartsWith("read [Position_D] Item2");
  fixture.Reply("STAGE1_X", "=5");
  fixture.Reply("STAGE1_Y", "=6");
  DownloadPosition(fixture.Context, {"STAGE1", "STAGE1_X", "STAGE1_Y"});
  EXPECT_EQ(fixture.Value("Position_D", "Item2"), "HIDDEN,\"h\",,7,8");
  EXPECT_EQ(fixture.Value("Position_D", "Item3"), "STAGE1,\"s\",,5,6,0,0,0,0,0,0,0,0,,0,0");
}

TEST(DownloadPosition, DoesNothingWhenTheStopFlagIsSet) {
  DownloadFixture fixture;
  fixture.Link().StopFlag = true;
  DownloadPosition(fixture.Context, {"STAGE1", "STAGE1_X", "STAGE1_Y"});
  EXPECT_EQ(fixture.Calls.Events, (Texts{"get link", "stop?"}));
}

TEST(DownloadPosition, AsksWhenTheStopFlagCannotBeRead) {
  DownloadFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("stop?");
  DownloadPosition(fixture.Context, {"STAGE1", "STAGE1_X", "STAGE1_Y"});
  EXPECT_EQ(fixture.Asked(), (Texts{"STAGE1_X", "STAGE1_Y"}));
}

TEST(DownloadPosition, EndsWhenXIsNotAnswered) {
  DownloadFixture fixture{"[Position_D]\nItem1=STAGE1,\"a\",,1,2\n"};
  fixture.Refuse("STAGE1_X");
  DownloadPosition(fixture.Context, {"STAGE1", "STAGE1_X", "STAGE1_Y"});
  EXPECT_EQ(fixture.Calls.Of({"send", "read", "write"}), Texts{"send GET_CALIBRATION STAGE1_X"});
}

TEST(DownloadPosition, LosesAGoodXWhenYIsNotAnswered) {
  DownloadFixture fixture{"[Position_D]\nItem1=STAGE1,\"a\",,1,2\n"};
  fixture.Reply("STAGE1_X", "=5");
  fixture.Refuse("STAGE1_Y");
  DownloadPosition(fixture.Context, {"STAGE1", "STAGE1_X", "STAGE1_Y"});
  EXPECT_EQ(fixture.Asked(), (Texts{"STAGE1_X", "STAGE1_Y"}));
  EXPECT_EQ(fixture.Writes(), Texts{});
  EXPECT_EQ(fixture.Calls.Of({"message"}).size(), 1U);
}

TEST(DownloadPosition, GoesOnToYWhenTheStopFlagIsRaisedDuringX) {
  DownloadFixture fixture{"[Position_D]\nItem1=STAGE1,\"a\",,1,2\n"};
  fixture.StopDuring("STAGE1_X", "=5");
  fixture.StopDuring("STAGE1_Y", "=6");
  DownloadPosition(fixture.Context, {"STAGE1", "STAGE1_X", "STAGE1_Y"});
  EXPECT_EQ(fixture.Value("Position_D", "Item1"), "STAGE1,\"a\",,5,6,0,0,0,0,0,0,0,0,,0,0");
}

TEST(DownloadPosition, SavesThePositionThatNoRecordNamesUnderTheFirstFreeNumber) {
  DownloadFixture fixture{"[Position_D]\nItem1=STAGE1,\"a\",,1,2\n"};
  fixture.Reply("STAGE2_X", "=5");
  fixture.Reply("STAGE2_Y", "=6");
  DownloadPosition(fixture.Context, {"STAGE2", "STAGE2_X", "STAGE2_Y"});
  EXPECT_EQ(fixture.Writes(), Texts{"write [Position_D] Item2=,\"\",,5,6,0,0,0,0,0,0,0,0,,0,0"});
}

// ---- Heights ----

TEST(DownloadHeights, WritesDeltaZAlone) {
  DownloadFixture fixture{"[Z_Calibration]\nMountHeight=1\nDeltaZ=2\n"};
  fixture.Reply("Delta_Z", "Delta_Z=24.50");
  DownloadHeights(fixture.Context);
  EXPECT_EQ(fixture.Calls.Events,
            (Texts{"get link", "stop?", "status=Downloading Data from Zolvane...Heights", "get link",
                   "stop=false", "get link", "hold=true", "get link", "send GET_CALIBRATION Delta_Z",
                   "write [Z_Calibration] DeltaZ=24.5"}));
}

TEST(DownloadHeights, WritesZeroForAReplyThatIsNoNumber) {
  DownloadFixture fixture;
  fixture.Reply("Delta_Z", "unknown");
  DownloadHeights(fixture.Context);
  EXPECT_EQ(fixture.Writes(), Texts{"write [Z_Calibration] DeltaZ=0"});
}

TEST(DownloadHeights, WritesTheReplyInGeneralForm) {
  for (const auto& [reply, text] :
       std::initializer_list<ReplyCase>{{"=-0.10", "-0.1"},
                                        {"=1e-5", "1E-05"},
                                        {"=12.3456789012345678", "12.3456789012346"},
                                        {"=-0", "0"}}) {
    DownloadFixture fixture;
    fixture.Reply("Delta_Z", reply);
    DownloadHeights(fixture.Context);
    EXPECT_EQ(fixture.Value("Z_Calibration", "DeltaZ"), text);
  }
}

TEST(DownloadHeights, WritesNothingForASyntaxErrorOrWithoutAnAnswer) {
  DownloadFixture fixture;
  DownloadHeights(fixture.Context);
  fixture.Refuse("Delta_Z");
  DownloadHeights(fixture.Context);
  EXPECT_EQ(fixture.Writes(), Texts{});
  EXPECT_EQ(fixture.Sent().size(), 2U);
}

TEST(DownloadHeights, AreAskedWhenTheStopFlagCannotBeRead) {
  DownloadFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("stop?");
  DownloadHeights(fixture.Context);
  EXPECT_EQ(fixture.Asked(), Texts{"Delta_Z"});
}

TEST(DownloadHeights, AreSkippedWhenTheStopFlagIsSet) {
  DownloadFixture fixture;
  fixture.Link().StopFlag = true;
  DownloadHeights(fixture.Context);
  EXPECT_EQ(fixture.Calls.Events, (Texts{"get link", "stop?"}));
}

// ---- Tip and head change ----

std::string ChangeTables(const std::string& heads) {
  return "[HeadType]\n" + heads;
}

// A cage table whose second item is the microtiter cage.
struct ChangeFixture : DownloadFixture {
  explicit ChangeFixture(const std::string& heads) : DownloadFixture{ChangeTables(heads)} {
    Settings().Set("CageType", "Item2", "\"M\",MICROTITER,1,0,1,51,52,53,54");
    Settings().Set("CageType", "Item3", "\"N\",MICROTITER,0,0,0,61,62,63,64");
  }

  Texts Run() {
    DownloadTipAndHeadChange(Context);
    return Calls.Of({"send", "write"});
  }
};

constexpr auto changeHead = "Item1=\"a\",MICROTITER,0,0,0,384,0,0,0,0,1,2,3,4,5,6,C,0,\"t\"\n";

TEST(DownloadTipAndHeadChange, AsksForFiveValuesAndSavesHeadAndCage) {
  ChangeFixture fixture{changeHead};
  fixture.Reply("TipChange_Z", "=10.25");
  fixture.Reply("TipChange_S", "=11.5");
  fixture.Reply("HeadChange_Z", "=12.75");
  fixture.Reply("HeadChange_S", "=13");
  fixture.Reply("AspirateOrigin_96_384", "=14.5");
  EXPECT_EQ(fixture.Run(),
            (Texts{"send GET_CALIBRATION TipChange_Z", "send GET_CALIBRATION TipChange_S",
                   "send GET_CALIBRATION HeadChange_Z", "send GET_CALIBRATION HeadChange_S",
                   "send GET_CALIBRATION AspirateOrigin_96_384",
                   "write [HeadType] Item1=\"a\",MICROTITER,0,0,0,384,0,0,0,0,0,2,14,4,12.75,6,C,0,\"t\"",
                   "write [CageType] CageReleaseBarHeight=0", "write [CageType] CageReleaseHeight=0",
                   "write [CageType] Item2=\"M\",MICROTITER,1,0,1,13,52,12,54"}));
}

TEST(DownloadTipAndHeadChange, StoresTheTipChangeHeightWhenTheHeadChangeHeightIsUnknown) {
  ChangeFixture fixture{changeHead};
  fixture.Reply("TipChange_Z", "=10.25");
  fixture.Run();
  EXPECT_EQ(fixture.Value("HeadType", "Item1"),
            "\"a\",MICROTITER,0,0,0,384,0,0,0,0,0,2,3,4,10.25,6,C,0,\"t\"");
  EXPECT_EQ(fixture.Value("CageType", "Item2"), "\"M\",MICROTITER,1,0,1,51,52,53,54");
}

TEST(DownloadTipAndHeadChange, SearchesTheCageBeforeItWalksTheHeads) {
  ChangeFixture fixture{"Item1=\"a\",X\nItem2=\"b\",MICROTITER\nItem3=\"c\",MICROTITER\n"};
  DownloadTipAndHeadChange(fixture.Context);
  EXPECT_EQ(fixture.Calls.Of({"stop?", "status", "read [CageType] Item", "read [HeadType] Item",
                              "send GET_CALIBRATION TipChange_Z", "write [HeadType]"}),
            (Texts{"stop?", "read [CageType] Item1", "read [CageType] Item2", "read [HeadType] Item1",
                   "read [HeadType] Item2", "send GET_CALIBRATION TipChange_Z",
                   "write [HeadType] Item2=\"b\",MICROTITER,0,0,0,0,0,0,0,0,0,0,0,0,0,0,,0,\"\"",
                   "read [HeadType] Item3", "send GET_CALIBRATION TipChange_Z",
                   "write [HeadType] Item3=\"c\",MICROTITER,0,0,0,0,0,0,0,0,0,0,0,0,0,0,,0,\"\"",
                   "read [HeadType] Item4"}));
}

TEST(DownloadTipAndHeadChange, AsksNothingWithoutAMicrotiterHead) {
  ChangeFixture fixture{
      "Item1=\"a\",SERIALDILUTE\nItem2=\"b\",Microtiter\nItem3=\"\",MICROTITER\n"
      "Item4=\"d\",MICROTITER\n"};
  EXPECT_EQ(fixture.Run(), Texts{});
}

TEST(DownloadTipAndHeadChange, StopsAskingAtTheFirstFailureAndSavesNothing) {
  const Texts keys{"TipChange_Z", "TipChange_S", "HeadChange_Z", "HeadChange_S", "AspirateOrigin_96_384"};
  for (std::size_t failing = 0; failing < keys.size(); ++failing) {
    ChangeFixture fixture{changeHead};
    fixture.Refuse(keys[failing]);
    DownloadTipAndHeadChange(fixture.Context);
    EXPECT_EQ(fixture.Asked(), Texts(keys.begin(), keys.begin() + static_cast<std::ptrdiff_t>(failing) + 1));
    EXPECT_EQ(fixture.Writes(), Texts{}) << keys[failing];
    EXPECT_EQ(fixture.Calls.Of({"message"}).size(), 1U);
  }
}

TEST(DownloadTipAndHeadChange, SavesWithALaterHeadWhatABrokenOffGroupLeftInTheCage) {
  ChangeFixture fixture{"Item1=\"a\",MICROTITER\nItem2=\"b\",MICROTITER\n"};
  fixture.Link().Replies["GET_CALIBRATION TipChange_S"] = {Answer("=77"), Answer("SYNTAX_ERROR")};
  fixture.Link().Replies["GET_CALIBRATION HeadChange_Z"] = {NoAnswer(), Answer("=8")};
  fixture.Run();
  EXPECT_EQ(fixture.Value("CageType", "Item2"), "\"M\",MICROTITER,1,0,1,51,52,77,54");
  EXPECT_EQ(fixture.Value("HeadType", "Item1"), "\"a\",MICROTITER");
  EXPECT_EQ(fixture.Value("HeadType", "Item2"), "\"b\",MICROTITER,0,0,0,0,0,0,0,0,0,0,0,0,8,0,,0,\"\"");
}

TEST(DownloadTipAndHeadChange, SavesTheEndOfTheCageTableWhenThereIsNoMicrotiterCage) {
  DownloadFixture fixture{ChangeTables(changeHead)};
  fixture.Reply("TipChange_S", "=5");
  DownloadTipAndHeadChange(fixture.Context);
  EXPECT_EQ(fixture.Value("CageType", "Item2"), "\"\",,0,0,0,0,0,5,0");
}

TEST(DownloadTipAndHeadChange, IsSkippedWhenTheStopFlagIsSetAndNotLookedAtInBetween) {
  ChangeFixture stopped{changeHead};
  stopped.Link().StopFlag = true;
  EXPECT_EQ(stopped.Run(), Texts{});

  ChangeFixture fixture{changeHead};
  fixture.StopDuring("TipChange_Z", "=1");
  fixture.StopDuring("AspirateOrigin_96_384", "=2");
  fixture.Run();
  EXPECT_EQ(fixture.Asked().size(), 5U);
  EXPECT_EQ(fixture.Writes().size(), 4U);
  EXPECT_EQ(fixture.Calls.Count("stop?"), 1U);
}

// ---- Liquid handling ----

std::string LiquidHead(const std::string& code, const std::string& volume, const std::string& channelCode) {
  return "[HeadType]\nItem1=\"h\"," + code + ",0," + volume + ",0,8,0,0,0,0,1,2,3,4,5,6," + channelCode +
         ",0,\"t\"\nSDHeadEjectOffsetMM=20\n";
}

TEST(DownloadLiquidHandling, AsksASerialDiluteHeadForTheTeachToolAndItsTipEject) {
  DownloadFixture fixture{LiquidHead("SERIALDILUTE", "300", "8_CH")};
  fixture.Reply("HeadEject_SD_S", "=100");
  fixture.Reply("HeadLock_SD_S", "=101.5");
  fixture.Reply("PickUp_TeachTool_Z", "=102.25");
  fixture.Reply("DropOff_TeachTool_Z", "=103.75");
  fixture.Reply("TipEject_8Ch_300_S", "=-13");
  fixture.Reply("AspirateOrigin_8Ch_300_S", "=104.5");
  DownloadLiquidHandling(fixture.Context);
  EXPECT_EQ(
      fixture.Calls.Of({"status", "send", "stop?", "write"}),
      (Texts{"status=Downloading Data from Zolvane...Liquid Handling", "send GET_CALIBRATION HeadEject_SD_S",
             "send GET_CALIBRATION HeadLock_SD_S", "send GET_CALIBRATION PickUp_TeachTool_Z",
             "send GET_CALIBRATION DropOff_TeachTool_Z", "stop?", "send GET_CALIBRATION TipEject_8Ch_300_S",
             "send GET_CALIBRATION AspirateOrigin_8Ch_300_S", "stop?",
             "write [HeadType] Item1=\"h\",SERIALDILUTE,0,300,0,8,0,0,0,0,114,102,104,26,103.75,102.25,"
             "8_CH,0,\"t\""}));
}

TEST(DownloadLiquidHandling, LosesTheHeadEjectPositionOnSaving) {
  // What is saved is the aspirate origin plus the offset of 20 mm, 10 steps.
  DownloadFixture fixture{LiquidHead("SERIALDILUTE", "200", "8_CH")};
  fixture.Reply("HeadEject_SD_S", "=100");
  DownloadLiquidHandling(fixture.Context);
  EXPECT_EQ(fixture.Value("HeadType", "Item1"),
            "\"h\",SERIALDILUTE,0,200,0,8,0,0,0,0,13,2,3,4,5,6,8_CH,0,\"t\"");
}

TEST(DownloadLiquidHandling, AsksACalibrationHeadByItsNameWithoutUnderscores) {
  DownloadFixture fixture{LiquidHead("CALIBRATE", "300", "1_CH_SHORT")};
  fixture.Reply("PickUp_1CHSHORT_Z", "=50.5");
  fixture.Reply("DropOff_1CHSHORT_Z", "=51.5");
  DownloadLiquidHandling(fixture.Context);
  EXPECT_EQ(fixture.Asked(),
            (Texts{"HeadEject_SD_S", "HeadLock_SD_S", "PickUp_1CHSHORT_Z", "DropOff_1CHSHORT_Z"}));
  EXPECT_EQ(fixture.Value("HeadType", "Item1"),
            "\"h\",CALIBRATE,0,300,0,8,0,0,0,0,13,2,3,4,51.5,50.5,1_CH_SHORT,0,\"t\"");
}

TEST(DownloadLiquidHandling, AsksNoOtherHeads) {
  DownloadFixture fixture{
      "[HeadType]\nItem1=\"a\",MICROTITER\nItem2=\"b\",calibrate\nItem3=\"c\",\n"
      "Item4=\"\",SERIALDILUTE\nItem5=\"e\",SERIALDILUTE\n"};
  DownloadLiquidHandling(fixture.Context);
  EXPECT_EQ(fixture.Calls.Of({"send", "write"}), Texts{});
  EXPECT_EQ(fixture.StatusTexts(), Texts{"status=Downloading Data from Zolvane...Liquid Handling"});
}

TEST(DownloadLiquidHandling, AsksForTipEjectByTheVolume) {
  for (const auto& [volume, key] : std::initializer_list<ReplyCase>{{"12.5", "TipEject_8Ch_12_S"},
                                                                    {"30", "TipEject_8Ch_30_S"},
                                                                    {"125", "TipEject_8Ch_125_S"},
                                                                    {"300", "TipEject_8Ch_300_S"},
                                                                    {"1250", "TipEject_8Ch_1250_S"}}) {
    DownloadFixture fixture{LiquidHead("SERIALDILUTE", volume, "8_CH")};
    DownloadLiquidHandling(fixture.Context);
    ASSERT_EQ(fixture.Asked().size(), 6U) << volume;
    EXPECT_EQ(fixture.Asked()[4], key);
    EXPECT_EQ(fixture.Asked()[5], "AspirateOrigin_" + std::string{key}.substr(9));
  }
  for (const auto* volume : {"0", "12", "200", "1000"}) {
    DownloadFixture fixture{LiquidHead("SERIALDILUTE", volume, "8_CH")};
    DownloadLiquidHandling(fixture.Context);
    EXPECT_EQ(fixture.Asked().size(), 4U) << volume;
  }
}

TEST(DownloadLiquidHandling, StoresTipEjectPositiveInTheAxisUnitsWithTwoDecimals) {
  for (const auto& [reply, eject] : std::initializer_list<ReplyCase>{{"=-13", "26"},
                                                                     {"=13", "26"},
                                                                     {"=-1.2325", "2.47"},
                                                                     {"=-0.0025", "0.01"},
                                                                     {"=0", "0"},
                                                                     {"=-1.2324", "2.46"},
                                                                     {"=1e308", "4"}}) {
    DownloadFixture fixture{LiquidHead("SERIALDILUTE", "30", "8_CH")};
    fixture.Reply("TipEject_8Ch_30_S", reply);
    DownloadLiquidHandling(fixture.Context);
    EXPECT_EQ(fixture.Value("HeadType", "Item1"),
              std::string{"\"h\",SERIALDILUTE,0,30,0,8,0,0,0,0,13,2,3,"} + eject + ",5,6,8_CH,0,\"t\"")
        << reply;
  }
}

TEST(DownloadTipAndHeadChange, AsksWhenTheStopFlagCannotBeRead) {
  ChangeFixture fixture{changeHead};
  fixture.Calls.FailEverythingThatStartsWith("stop?");
  fixture.Run();
  EXPECT_EQ(fixture.Asked().size(), 5U);
  EXPECT_EQ(fixture.Writes().size(), 4U);
}

TEST(DownloadLiquidHandling, AsksAndSavesWhenTheStopFlagCannotBeRead) {
  DownloadFixture fixture{LiquidHead("SERIALDILUTE", "30", "8_CH")};
  fixture.Calls.FailEverythingThatStartsWith("stop?");
  DownloadLiquidHandling(fixture.Context);
  EXPECT_EQ(fixture.Asked().size(), 6U);
  EXPECT_EQ(fixture.Writes().size(), 1U);
}

TEST(DownloadLiquidHandling, GoesStraightToTheSaveWhenEjectOrLockIsNotAnswered) {
  DownloadFixture eject{LiquidHead("SERIALDILUTE", "30", "8_CH")};
  eject.Refuse("HeadEject_SD_S");
  DownloadLiquidHandling(eject.Context);
  EXPECT_EQ(eject.Asked(), Texts{"HeadEject_SD_S"});
  EXPECT_EQ(eject.Writes().size(), 1U);
  EXPECT_EQ(eject.Calls.Count("stop?"), 1U);

  DownloadFixture lock{LiquidHead("SERIALDILUTE", "30", "8_CH")};
  lock.Refuse("HeadLock_SD_S");
  DownloadLiquidHandling(lock.Context);
  EXPECT_EQ(lock.Asked(), (Texts{"HeadEject_SD_S", "HeadLock_SD_S"}));
  EXPECT_EQ(lock.Writes().size(), 1U);
}

TEST(DownloadLiquidHandling, GoesOnToTipEjectWhenAHeightIsNotAnswered) {
  DownloadFixture pickUp{LiquidHead("SERIALDILUTE", "30", "8_CH")};
  pickUp.Refuse("PickUp_TeachTool_Z");
  pickUp.Reply("AspirateOrigin_8Ch_30_S", "=9");
  DownloadLiquidHandling(pickUp.Context);
  EXPECT_EQ(pickUp.Asked(), (Texts{"HeadEject_SD_S", "HeadLock_SD_S", "PickUp_TeachTool_Z",
                                   "TipEject_8Ch_30_S", "AspirateOrigin_8Ch_30_S"}));
  EXPECT_EQ(pickUp.Value("HeadType", "Item1"),
            "\"h\",SERIALDILUTE,0,30,0,8,0,0,0,0,19,2,9,4,5,6,8_CH,0,\"t\"");

  DownloadFixture dropOff{LiquidHead("SERIALDILUTE", "30", "8_CH")};
  dropOff.Refuse("DropOff_TeachTool_Z");
  DownloadLiquidHandling(dropOff.Context);
  EXPECT_EQ(dropOff.Asked().size(), 6U);
}

TEST(DownloadLiquidHandling, DoesNotAskForTheAspirateOriginWhenTipEjectIsNotAnswered) {
  DownloadFixture fixture{LiquidHead("SERIALDILUTE", "30", "8_CH")};
  fixture.Reply("HeadLock_SD_S", "=9");
  fixture.Refuse("TipEject_8Ch_30_S");
  DownloadLiquidHandling(fixture.Context);
  EXPECT_EQ(fixture.Asked().back(), "TipEject_8Ch_30_S");
  EXPECT_EQ(fixture.Value("HeadType", "Item1"),
            "\"h\",SERIALDILUTE,0,30,0,8,0,0,0,0,13,9,3,4,5,6,8_CH,0,\"t\"");
}

TEST(DownloadLiquidHandling, AsksForTheAspirateOriginWhenTipEjectIsUnknown) {
  DownloadFixture fixture{LiquidHead("SERIALDILUTE", "30", "8_CH")};
  fixture.Reply("AspirateOrigin_8Ch_30_S", "=9");
  DownloadLiquidHandling(fixture.Context);
  EXPECT_EQ(fixture.Value("HeadType", "Item1"),
            "\"h\",SERIALDILUTE,0,30,0,8,0,0,0,0,19,2,9,4,5,6,8_CH,0,\"t\"");
}

TEST(DownloadLiquidHandling, SkipsTipEjectAndTheSaveWhenTheStopFlagIsRaised) {
  DownloadFixture fixture{LiquidHead("SERIALDILUTE", "30", "8_CH")};
  fixture.StopDuring("DropOff_TeachTool_Z", "=9");
  DownloadLiquidHandling(fixture.Context);
  EXPECT_EQ(fixture.Asked().back(), "DropOff_TeachTool_Z");
  EXPECT_EQ(fixture.Writes(), Texts{});
}

TEST(DownloadLiquidHandling, LooksAtTheStopFlagOnceForBothTipEjectQueries) {
  DownloadFixture fixture{LiquidHead("SERIALDILUTE", "30", "8_CH")};
  fixture.StopDuring("TipEject_8Ch_30_S", "=-1");
  DownloadLiquidHandling(fixture.Context);
  EXPECT_EQ(fixture.Asked().back(), "AspirateOrigin_8Ch_30_S");
  EXPECT_EQ(fixture.Writes().size(), 1U);
}

TEST(DownloadLiquidHandling, DoesNotSaveWhenTheStopFlagIsRaisedByTheLastQuery) {
  DownloadFixture fixture{LiquidHead("SERIALDILUTE", "30", "8_CH")};
  fixture.StopDuring("AspirateOrigin_8Ch_30_S", "=-1");
  DownloadLiquidHandling(fixture.Context);
  EXPECT_EQ(fixture.Writes(), Texts{});
}

TEST(DownloadLiquidHandling, AsksTheNextHeadsAfterAFailure) {
  DownloadFixture fixture{"[HeadType]\nItem1=\"a\",SERIALDILUTE,0,0,0,8\nItem2=\"b\",CALIBRATE,0,0,0,1\n"};
  fixture.Link().Replies["GET_CALIBRATION HeadEject_SD_S"] = {NoAnswer(), Answer("=1")};
  DownloadLiquidHandling(fixture.Context);
  EXPECT_EQ(fixture.Asked(),
            (Texts{"HeadEject_SD_S", "HeadEject_SD_S", "HeadLock_SD_S", "PickUp__Z", "DropOff__Z"}));
  EXPECT_EQ(fixture.Writes().size(), 2U);
}

// ---- Tip data ----

std::string TipLine(const std::string& code, const std::string& sizeFlags) {
  return "[TipType]\nItem1=\"t\"," + code + ",0,0,0,0,0,7,8,9,0,0,0,0," + sizeFlags + ",\"s\"\n";
}

TEST(DownloadTipData, AsksForChuteAndRackOfTipsWithTheSecondThirdOrFourthSizeFlag) {
  for (const auto* flags : {"0,1,0,0", "0,0,1,0", "0,0,0,1", "1,1,0,0", "1,0,0,1", "1,1,1,1"}) {
    DownloadFixture fixture{TipLine("SERIALDILUTE", flags)};
    fixture.Reply("ChuteEject_Z", "=101.5");
    fixture.Reply("RackPickup_12_300_Z", "=202");
    fixture.Reply("RackEject_12_300_Z", "=306");
    DownloadTipData(fixture.Context);
    EXPECT_EQ(
        fixture.Calls.Of({"status", "send", "stop?", "write"}),
        (Texts{"status=Downloading Data from Zolvane...Tip Data", "send GET_CALIBRATION ChuteEject_Z",
               "send GET_CALIBRATION RackPickup_12_300_Z", "send GET_CALIBRATION RackEject_12_300_Z", "stop?",
               std::string{"write [TipType] Item1=\"t\",SERIALDILUTE,0,0,0,0,0,153,101,102,0,0,0,0,"} +
                   flags + ",\"s\""}))
        << flags;
  }
}

TEST(DownloadTipData, AsksForTheSameRackOfTipsWithTheFirstSizeFlagAloneAndForNoChute) {
  DownloadFixture fixture{TipLine("SERIALDILUTE", "1,0,0,0")};
  fixture.Reply("RackPickup_12_300_Z", "=202");
  fixture.Reply("RackEject_12_300_Z", "=306");
  DownloadTipData(fixture.Context);
  EXPECT_EQ(fixture.Asked(), (Texts{"RackPickup_12_300_Z", "RackEject_12_300_Z"}));
  EXPECT_EQ(fixture.Value("TipType", "Item1"),
            "\"t\",SERIALDILUTE,0,0,0,0,0,153,101,9,0,0,0,0,1,0,0,0,\"s\"");
}

TEST(DownloadTipData, AsksNothingOfTipsWithoutASizeFlagAndSavesThemAllTheSame) {
  DownloadFixture fixture{"[TipType]\nItem1=\"t\",SERIALDILUTE\n"};
  DownloadTipData(fixture.Context);
  EXPECT_EQ(fixture.Asked(), Texts{});
  EXPECT_EQ(fixture.Writes(),
            Texts{"write [TipType] Item1=\"t\",SERIALDILUTE,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\"\""});
}

TEST(DownloadTipData, LeavesOtherTipsAndThoseBehindTheEndAlone) {
  DownloadFixture fixture{
      "[TipType]\nItem1=\"a\",MICROTITER,0,0,0,0,0,7,8,9,0,0,0,0,1,1,1,1\n"
      "Item2=\"b\",SerialDilute\nItem3=\"\",SERIALDILUTE\nItem4=\"d\",SERIALDILUTE\n"};
  DownloadTipData(fixture.Context);
  EXPECT_EQ(fixture.Calls.Of({"send", "write", "stop?"}), Texts{});
}

TEST(DownloadTipData, SavesWhenTheStopFlagCannotBeRead) {
  DownloadFixture fixture{TipLine("SERIALDILUTE", "0,1,0,0")};
  fixture.Calls.FailEverythingThatStartsWith("stop?");
  DownloadTipData(fixture.Context);
  EXPECT_EQ(fixture.Writes().size(), 1U);
}

TEST(DownloadTipData, SkipsTheRestOfTheTipAfterAFailureAndSavesIt) {
  DownloadFixture chute{TipLine("SERIALDILUTE", "0,1,0,0")};
  chute.Refuse("ChuteEject_Z");
  DownloadTipData(chute.Context);
  EXPECT_EQ(chute.Asked(), Texts{"ChuteEject_Z"});
  EXPECT_EQ(chute.Writes().size(), 1U);

  DownloadFixture rack{TipLine("SERIALDILUTE", "0,1,0,0")};
  rack.Reply("ChuteEject_Z", "=1");
  rack.Refuse("RackPickup_12_300_Z");
  DownloadTipData(rack.Context);
  EXPECT_EQ(rack.Asked(), (Texts{"ChuteEject_Z", "RackPickup_12_300_Z"}));
  EXPECT_EQ(rack.Value("TipType", "Item1"), "\"t\",SERIALDILUTE,0,0,0,0,0,7,8,1,0,0,0,0,0,1,0,0,\"s\"");
}

TEST(DownloadTipData, GoesOnToTheNextTipAfterAFailure) {
  DownloadFixture fixture{
      "[TipType]\nItem1=\"a\",SERIALDILUTE,0,0,0,0,0,7,8,9,0,0,0,0,0,1\n"
      "Item2=\"b\",SERIALDILUTE,0,0,0,0,0,7,8,9,0,0,0,0,1\n"};
  fixture.Refuse("ChuteEject_Z");
  DownloadTipData(fixture.Context);
  EXPECT_EQ(fixture.Asked(), (Texts{"ChuteEject_Z", "RackPickup_12_300_Z", "RackEject_12_300_Z"}));
}

TEST(DownloadTipData, DoesNotSaveWhenTheStopFlagIsSet) {
  DownloadFixture fixture{TipLine("SERIALDILUTE", "1,0,0,0")};
  fixture.StopDuring("RackPickup_12_300_Z", "=1");
  fixture.StopDuring("RackEject_12_300_Z", "=1");
  DownloadTipData(fixture.Context);
  EXPECT_EQ(fixture.Asked().size(), 2U);
  EXPECT_EQ(fixture.Writes(), Texts{});

  DownloadFixture before{TipLine("SERIALDILUTE", "0,0,0,0")};
  before.Link().StopFlag = true;
  DownloadTipData(before.Context);
  EXPECT_EQ(before.Writes(), Texts{});
}

TEST(DownloadTipData, RoundsRackHeightsToHundredthsAndThenToTheEvenNeighbour) {
  DownloadFixture fixture{TipLine("SERIALDILUTE", "1,0,0,0")};
  // Half a millimetre per step of Z: 2.5 and 3.5 mm, and 2.4951 mm, which is 2.50 in hundredths.
  for (const auto& [reply, height] : std::initializer_list<ReplyCase>{
           {"=5", "2"}, {"=7", "4"}, {"=4.9902", "2"}, {"=5.02", "3"}, {"=-5", "-2"}, {"=5.008", "2"}}) {
    fixture.Reply("RackPickup_12_300_Z", reply);
    fixture.Reply("RackEject_12_300_Z", reply);
    DownloadTipData(fixture.Context);
    EXPECT_EQ(fixture.Value("TipType", "Item1"), std::string{"\"t\",SERIALDILUTE,0,0,0,0,0,"} + height + "," +
                                                     height + ",9,0,0,0,0,1,0,0,0,\"s\"")
        << reply;
  }
}

TEST(DownloadTipData, RoundsTheProductWithAScaleInSinglePrecisionToHundredthsFirst) {
  // 250 steps of the single nearest to 0.01 are a little less than 2.5.
  DownloadFixture fixture{TipLine("SERIALDILUTE", "1,0,0,0")};
  fixture.Config.Current.Axes.Z.UnitsPerStep = 0.01F;
  fixture.Reply("RackPickup_12_300_Z", "=350");
  fixture.Reply("RackEject_12_300_Z", "=250");
  DownloadTipData(fixture.Context);
  EXPECT_EQ(fixture.Value("TipType", "Item1"), "\"t\",SERIALDILUTE,0,0,0,0,0,2,4,9,0,0,0,0,1,0,0,0,\"s\"");
}

TEST(DownloadTipData, KeepsARackHeightThatDoesNotFit) {
  DownloadFixture fixture{TipLine("SERIALDILUTE", "1,0,0,0")};
  fixture.Reply("RackPickup_12_300_Z", "=1e300");
  fixture.Reply("RackEject_12_300_Z", "=4294967296");
  DownloadTipData(fixture.Context);
  EXPECT_EQ(fixture.Value("TipType", "Item1"), "\"t\",SERIALDILUTE,0,0,0,0,0,7,8,9,0,0,0,0,1,0,0,0,\"s\"");
}

// ---- Serial-dilute XY ----

constexpr auto fourPositions =
    "[Position_D]\nItem1=STAGE1,\"a\",,1,2\nItem2=TIPCHUTE,\"b\",,3,4\nItem3=NEST8,\"c\",,5,6\n"
    "Item4=NEST12,\"d\",,7,8,90,91\n";

TEST(DownloadSerialDiluteXY, AsksForFourPositionsAndSavesEach) {
  DownloadFixture fixture{fourPositions};
  fixture.Reply("WELL_A1_SD_X", "=20");
  fixture.Reply("WELL_A1_SD_Y", "=41");
  fixture.Reply("CHUTE_SD_X", "=-60.5");
  fixture.Reply("NEST8_SD_Y", "=80");
  fixture.Reply("NEST12_SD_X", "=100");
  DownloadSerialDiluteXY(fixture.Context);
  EXPECT_EQ(fixture.Calls.Of({"stop?", "status", "send", "write"}),
            (Texts{"stop?", "status=Downloading Data from Zolvane...SD XY",
                   "send GET_CALIBRATION WELL_A1_SD_X", "send GET_CALIBRATION WELL_A1_SD_Y",
                   "write [Position_D] Item1=STAGE1,\"a\",,1,2,10,21,0,0,0,0,0,0,,0,0",
                   "send GET_CALIBRATION CHUTE_SD_X", "send GET_CALIBRATION CHUTE_SD_Y",
                   "write [Position_D] Item2=TIPCHUTE,\"b\",,3,4,-30,0,0,0,0,0,0,0,,0,0",
                   "send GET_CALIBRATION NEST8_SD_X", "send GET_CALIBRATION NEST8_SD_Y",
                   "write [Position_D] Item3=NEST8,\"c\",,5,6,0,40,0,0,0,0,0,0,,0,0",
                   "send GET_CALIBRATION NEST12_SD_X", "send GET_CALIBRATION NEST12_SD_Y",
                   "write [Position_D] Item4=NEST12,\"d\",,7,8,50,91,0,0,0,0,0,0,,0,0"}));
}

TEST(DownloadSerialDiluteXY, LoadsTheRecordAfterXWasAnswered) {
  DownloadFixture fixture{fourPositions};
  DownloadSerialDiluteXY(fixture.Context);
  const auto calls = fixture.Calls.Of({"send", "read [Position_D] Item1"});
  ASSERT_GE(calls.size(), 3U);
  EXPECT_EQ(calls[0], "send GET_CALIBRATION WELL_A1_SD_X");
  EXPECT_EQ(calls[1], "read [Position_D] Item1");
  EXPECT_EQ(calls[2], "send GET_CALIBRATION WELL_A1_SD_Y");
}

TEST(DownloadSerialDiluteXY, EndsAtTheFirstFailure) {
  DownloadFixture x{fourPositions};
  x.Refuse("CHUTE_SD_X");
  DownloadSerialDiluteXY(x.Context);
  EXPECT_EQ(x.Asked(), (Texts{"WELL_A1_SD_X", "WELL_A1_SD_Y", "CHUTE_SD_X"}));
  EXPECT_EQ(x.Writes().size(), 1U);

  DownloadFixture y{fourPositions};
  y.Refuse("CHUTE_SD_Y");
  DownloadSerialDiluteXY(y.Context);
  EXPECT_EQ(y.Asked(), (Texts{"WELL_A1_SD_X", "WELL_A1_SD_Y", "CHUTE_SD_X", "CHUTE_SD_Y"}));
  EXPECT_EQ(y.Writes().size(), 1U);
}

TEST(DownloadSerialDiluteXY, AsksWhenTheStopFlagCannotBeRead) {
  DownloadFixture fixture{fourPositions};
  fixture.Calls.FailEverythingThatStartsWith("stop?");
  DownloadSerialDiluteXY(fixture.Context);
  EXPECT_EQ(fixture.Asked().size(), 8U);
}

TEST(DownloadSerialDiluteXY, LooksAtTheStopFlagOnceBeforeItStarts) {
  DownloadFixture stopped{fourPositions};
  stopped.Link().StopFlag = true;
  DownloadSerialDiluteXY(stopped.Context);
  EXPECT_EQ(stopped.Calls.Events, (Texts{"get link", "stop?"}));

  DownloadFixture fixture{fourPositions};
  fixture.StopDuring("WELL_A1_SD_X", "=1");
  DownloadSerialDiluteXY(fixture.Context);
  EXPECT_EQ(fixture.Asked().size(), 8U);
  EXPECT_EQ(fixture.Calls.Count("stop?"), 1U);
}

}  // namespace
}  // namespace zolvane
