#include "operations/hardware_detection.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "support/operation_fixture.h"

namespace zolvane {
namespace {

constexpr std::string_view detectionConfiguration =
    "[DeviceType]\n"
    "Installed=1\n"
    "Item0=\"Spare\",0,\"ZV000\"\n"
    "Item1=\"Small\",0,\"ZV200\"\n"
    "Item2=\"Large\",1,\"ZV400\"\n"
    "UploadCalibrationData=0\n"
    "SensorEnableRFID=1\n"
    "[CageType]\n"
    "Installed=1\n"
    "Item1=\"Narrow Module\",SerialDilute,1\n"
    "Item2=\"Wide Module\",MICROTITER,1\n"
    "[HeadType]\n"
    "Installed=1\n"
    "Item1=\"Block\",MICROTITER,1,2,3,96,0,0,0,0,0,0,0,0,0,0,96_CH,0,\"TAG1\"\n"
    "Item2=\"Comb\",SERIALDILUTE,1,2,3,8,0,0,0,0,0,0,0,0,0,0,8_CH,0,\"TAG2\"\n"
    "Item3=\"Tool\",CALIBRATE,1,2,3,1,0,0,0,0,0,0,0,0,0,0,1_CH_SHORT,0,\"TAG3\"\n"
    "[PumpControl]\n"
    "ModuleInstalled=1\n";

struct DetectionFixture : OperationFixture {
  explicit DetectionFixture(std::string_view text = detectionConfiguration) : OperationFixture{text} {
    Page.Entries = {{ListControl::DeviceType, {"Small", "Large"}},
                    {ListControl::CageType, {"Narrow Module", "Wide Module", "Not installed"}},
                    {ListControl::HeadType, {"Block", "Comb", "Tool", "Not installed"}}};
  }

  void Reply(const std::string& command, const std::string& reply) {
    Link().Replies[command] = {Answer(reply)};
  }

  // What the tag reader answers to the one question.
  void ReplyWithTag(const std::string& reply) { Reply("RFID READ_PERSISTENT", reply); }

  Texts Selections() const { return Calls.Of({"select "}); }
};

std::string CommunicationError(const std::string& step) {
  return "message 0 \"Communication Error\" \"" + step +
         "\r\n\r\nPlease ensure that the Zolvane is switched on\r\nand in 'Remote Mode'\"";
}

// ---- All four steps ----

TEST(QueryHardware, RunsTheFourStepsInOrderWithTheControlsDisabled) {
  DetectionFixture fixture;
  fixture.Reply("STATUS_STAGE", "ZV400\r\n");
  fixture.Reply("STATUS_MECH", "96/384\r\n");
  fixture.Reply("RFID ON", "OK\r\n");
  fixture.ReplyWithTag("1,2,TAG2,4,5\r\n");
  fixture.Reply("STATUS PUMPS", "PUMPS READY\r\n");
  QueryHardware(fixture.Context);
  EXPECT_EQ(fixture.Steps(), (Texts{"enable controls false",
                                    "status=Getting Zolvane Type",
                                    "send STATUS_STAGE",
                                    "write [DeviceType] Installed=2",
                                    "select modules 1",
                                    "status=",
                                    "status=Getting Pipette Module Type",
                                    "send STATUS_MECH",
                                    "write [CageType] Installed=2",
                                    "select modules 1",
                                    "status=",
                                    "status=Enabling RFID",
                                    "send RFID ON",
                                    "status=Getting Head Type",
                                    "send RFID READ_PERSISTENT",
                                    "write [HeadType] Installed=2",
                                    "select heads 1",
                                    "status=",
                                    "status=Getting Pump Module Status",
                                    "send STATUS PUMPS",
                                    "write [PumpControl] ModuleInstalled=0",
                                    "pump true",
                                    "status=",
                                    "enable controls true"}));
}

TEST(QueryHardware, ReadsTheStopFlagAfreshBeforeEachStepButTheFirst) {
  DetectionFixture fixture;
  QueryHardware(fixture.Context);
  EXPECT_EQ(fixture.Calls.Of({"stop?", "send STATUS", "send RFID ON"}),
            (Texts{"send STATUS_STAGE", "stop?", "send STATUS_MECH", "stop?", "send RFID ON", "stop?",
                   "send STATUS PUMPS"}));
}

TEST(QueryHardware, ReadsTheStopFlagThreeTimesAlsoWhenItIsSetFromTheStart) {
  DetectionFixture fixture;
  fixture.Link().Replies["STATUS_STAGE"] = {{.Text = "ZV400", .RaisesStop = true}};
  QueryHardware(fixture.Context);
  EXPECT_EQ(fixture.Calls.Count("stop?"), 3U);
  EXPECT_EQ(fixture.Sent(), Texts{"send STATUS_STAGE"});
  EXPECT_EQ(fixture.Calls.Events.back(), "enable controls true");
  EXPECT_EQ(fixture.Value("DeviceType", "Installed"), "2");
}

TEST(QueryHardware, SkipsWhatFollowsTheStepDuringWhichTheStopFlagIsRaised) {
  DetectionFixture fixture;
  fixture.Link().Replies["STATUS_MECH"] = {{.Text = "SD", .RaisesStop = true}};
  QueryHardware(fixture.Context);
  EXPECT_EQ(fixture.Sent(), (Texts{"send STATUS_STAGE", "send STATUS_MECH"}));

  DetectionFixture later;
  later.Link().Replies["RFID READ_PERSISTENT"] = {{.Text = "", .RaisesStop = true}};
  QueryHardware(later.Context);
  EXPECT_EQ(later.Sent(),
            (Texts{"send STATUS_STAGE", "send STATUS_MECH", "send RFID ON", "send RFID READ_PERSISTENT"}));
}

TEST(QueryHardware, GoesOnWhenTheStopFlagIsTakenBack) {
  DetectionFixture fixture;
  fixture.Link().Replies["STATUS_STAGE"] = {{.Text = "ZV400", .RaisesStop = true}};
  int reads = 0;
  fixture.Calls.FailsIf = [&](auto event) {
    reads += event == "stop?" ? 1 : 0;
    fixture.Link().StopFlag = fixture.Link().StopFlag && reads < 2;
    return false;
  };
  QueryHardware(fixture.Context);
  EXPECT_EQ(fixture.Sent(),
            (Texts{"send STATUS_STAGE", "send RFID ON", "send RFID READ_PERSISTENT", "send STATUS PUMPS"}));
}

TEST(QueryHardware, RunsEveryStepWhenTheStopFlagCannotBeRead) {
  DetectionFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("stop?");
  QueryHardware(fixture.Context);
  EXPECT_EQ(fixture.Sent(), (Texts{"send STATUS_STAGE", "send STATUS_MECH", "send RFID ON",
                                   "send RFID READ_PERSISTENT", "send STATUS PUMPS"}));
  EXPECT_EQ(fixture.Calls.Events.back(), "enable controls true");
}

TEST(QueryHardware, GoesOnAfterCommandsThatFailAndShowsOneBoxForEach) {
  DetectionFixture fixture;
  fixture.Link().DefaultReply = NoAnswer();
  const auto before = fixture.Settings().Text();
  QueryHardware(fixture.Context);
  EXPECT_EQ(
      fixture.Calls.Of({"message"}),
      (Texts{CommunicationError("Getting Zolvane Type"), CommunicationError("Getting Pipette Module Type"),
             CommunicationError("Enabling RFID"), CommunicationError("Getting Pump Module Status")}));
  EXPECT_EQ(fixture.Settings().Text(), before);
  EXPECT_EQ(fixture.Calls.Of({"write", "select", "pump"}), Texts{});
  EXPECT_EQ(fixture.Window->Panel->Shown, "");
  EXPECT_EQ(fixture.Calls.Events.back(), "enable controls true");
}

TEST(QueryHardware, RunsAlsoWhenTheControlsCannotBeDisabled) {
  DetectionFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("enable");
  QueryHardware(fixture.Context);
  EXPECT_EQ(fixture.Sent().size(), 5U);
  EXPECT_EQ(fixture.Calls.Of({"enable"}), (Texts{"enable controls false", "enable controls true"}));
}

TEST(QueryHardware, SaysForEachStepThatThereIsNoCommunicationWithoutAnyHost) {
  DetectionFixture fixture;
  fixture.Attachment = {};
  QueryHardware(fixture.Context);
  const std::string message =
      "message 0 \"Communication Error\" \"\r\n\r\nPlease ensure that the Zolvane is switched on\r\nand in "
      "'Remote Mode'\"";
  EXPECT_EQ(fixture.Steps(),
            (Texts{"enable controls false", message, message, message, message, "enable controls true"}));
}

// ---- Device ----

TEST(DetectDeviceType, RecordsTheReportedDeviceAndReloadsIt) {
  DetectionFixture fixture;
  fixture.Reply("STATUS_STAGE", "ZV400\r\n");
  DetectDeviceType(fixture.Context);
  EXPECT_EQ(fixture.Value("DeviceType", "Installed"), "2");
  EXPECT_EQ(fixture.Config.Current.Device.Name, "Large");
  EXPECT_FALSE(fixture.Config.Current.Device.UploadCalibrationData);
  EXPECT_TRUE(fixture.Config.Current.Device.DownloadCalibrationData);
}

TEST(DetectDeviceType, LooksUpWritesReloadsAndSelectsInThisOrder) {
  DetectionFixture fixture;
  fixture.Reply("STATUS_STAGE", "ZV400");
  DetectDeviceType(fixture.Context);
  const auto calls = fixture.Calls.Of({"status", "send", "read [DeviceType] I", "write", "select"});
  EXPECT_EQ(calls,
            (Texts{"status=Getting Zolvane Type", "send STATUS_STAGE", "read [DeviceType] Item1",
                   "read [DeviceType] Item2", "write [DeviceType] Installed=2", "read [DeviceType] Installed",
                   "read [DeviceType] Item2", "read [DeviceType] ImportCalibrationData default \"1\"",
                   "select modules 1", "status="}));
}

TEST(DetectDeviceType, ReloadsTheDeviceAlone) {
  DetectionFixture fixture;
  fixture.Reply("STATUS_STAGE", "ZV400");
  DetectDeviceType(fixture.Context);
  EXPECT_EQ(fixture.Calls.Of(
                {"read [Z_", "read [Cage", "read [Device_Type", "read [Head", "read [Tip", "read [Nest"}),
            Texts{});
}

TEST(DetectDeviceType, FindsTheCodeInAnyCase) {
  DetectionFixture fixture;
  fixture.Reply("STATUS_STAGE", "zv400");
  DetectDeviceType(fixture.Context);
  EXPECT_EQ(fixture.Value("DeviceType", "Installed"), "2");
}

TEST(DetectDeviceType, LooksAtTheCodeAndAtNoOtherField) {
  DetectionFixture fixture{"[DeviceType]\nItem1=\"ZV400\",ZV400,\"ZV200\",ZV400\nItem2=\"a\",0,\"ZV400\"\n"};
  fixture.Reply("STATUS_STAGE", "ZV400");
  DetectDeviceType(fixture.Context);
  EXPECT_EQ(fixture.Value("DeviceType", "Installed"), "2");
}

TEST(DetectDeviceType, WritesZeroForAnUnknownDeviceAndSelectsTheFirstModule) {
  DetectionFixture fixture;
  fixture.Reply("STATUS_STAGE", "ZV900");
  DetectDeviceType(fixture.Context);
  EXPECT_EQ(fixture.Writes(), Texts{"write [DeviceType] Installed=0"});
  EXPECT_EQ(fixture.Config.Current.Device.Name, "Spare");
  EXPECT_EQ(fixture.Selections(), Texts{"select modules 0"});
}

TEST(DetectDeviceType, AppliesThePositionInTheDeviceListToTheModuleList) {
  DetectionFixture fixture;
  fixture.Page.Entries[ListControl::DeviceType] = {"Other", "Small", "LARGE"};
  fixture.Reply("STATUS_STAGE", "ZV400");
  DetectDeviceType(fixture.Context);
  EXPECT_EQ(fixture.Selections(), Texts{"select modules 2"});
  EXPECT_EQ(fixture.Page.Selected.count(ListControl::DeviceType), 0U);
}

TEST(DetectDeviceType, PassesOverAPositionBeyondTheModuleList) {
  DetectionFixture fixture;
  fixture.Page.Entries[ListControl::CageType] = {"Not installed"};
  fixture.Reply("STATUS_STAGE", "ZV400");
  DetectDeviceType(fixture.Context);
  EXPECT_EQ(fixture.Page.Selected.count(ListControl::CageType), 0U);
  EXPECT_EQ(fixture.Calls.Events.back(), "status=");
}

TEST(DetectDeviceType, WritesNothingWhenTheCommandFails) {
  DetectionFixture fixture;
  fixture.Link().DefaultReply = NoAnswer();
  DetectDeviceType(fixture.Context);
  EXPECT_EQ(fixture.Steps(), (Texts{"status=Getting Zolvane Type", "send STATUS_STAGE",
                                    CommunicationError("Getting Zolvane Type"), "status="}));
}

// ---- Module ----

TEST(DetectModuleType, RecordsTheMicrotiterModule) {
  DetectionFixture fixture;
  fixture.Reply("STATUS_MECH", "96/384\r\n");
  DetectModuleType(fixture.Context);
  EXPECT_EQ(fixture.Steps(), (Texts{"status=Getting Pipette Module Type", "send STATUS_MECH",
                                    "write [CageType] Installed=2", "select modules 1", "status="}));
  EXPECT_EQ(fixture.Config.Current.Cage.Name, "Wide Module");
}

TEST(DetectModuleType, RecordsTheSerialDiluteModuleWhateverTheCaseOfItsCode) {
  DetectionFixture fixture;
  fixture.Reply("STATUS_MECH", "SD");
  DetectModuleType(fixture.Context);
  EXPECT_EQ(fixture.Steps(), (Texts{"status=Getting Pipette Module Type", "send STATUS_MECH",
                                    "write [CageType] Installed=1", "select modules 0", "status="}));
  EXPECT_EQ(fixture.Config.Current.Cage.Name, "Narrow Module");
}

TEST(DetectModuleType, LooksAtTheModuleCodeAndAtNoOtherField) {
  DetectionFixture fixture{"[CageType]\nItem1=MICROTITER,X,MICROTITER\nItem2=\"a\",\"MICROTITER\",1\n"};
  fixture.Reply("STATUS_MECH", "96/384");
  DetectModuleType(fixture.Context);
  EXPECT_EQ(fixture.Value("CageType", "Installed"), "2");
}

TEST(DetectModuleType, WritesZeroForAnyOtherReplyAndThenSelectsThePositionOfNoName) {
  for (const auto* reply :
       {"sd", "Sd", " SD", "SD ", "96/384 ", "96", "SERIALDILUTE", "MICROTITER", "", "SD\n"}) {
    DetectionFixture fixture;
    fixture.Reply("STATUS_MECH", reply);
    DetectModuleType(fixture.Context);
    EXPECT_EQ(fixture.Steps(), (Texts{"status=Getting Pipette Module Type", "send STATUS_MECH",
                                      "write [CageType] Installed=0", "select modules 0", "status="}))
        << reply;
    EXPECT_EQ(fixture.Config.Current.Cage.Name, "") << reply;
    EXPECT_EQ(fixture.Calls.Of({"read [CageType] Item1"}), Texts{}) << reply;
  }
}

TEST(DetectModuleType, WritesZeroWhenTheTableLacksTheModule) {
  DetectionFixture fixture{"[CageType]\nInstalled=1\nItem1=\"Narrow Module\",SERIALDILUTE,1\n"};
  fixture.Reply("STATUS_MECH", "96/384");
  DetectModuleType(fixture.Context);
  EXPECT_EQ(fixture.Writes(), Texts{"write [CageType] Installed=0"});
}

TEST(DetectModuleType, ReloadsTheModuleAlone) {
  DetectionFixture fixture;
  fixture.Reply("STATUS_MECH", "SD");
  DetectModuleType(fixture.Context);
  EXPECT_EQ(fixture.Calls.Of({"read [Z_", "read [Device", "read [Head", "read [Tip", "read [Nest"}), Texts{});
}

TEST(DetectModuleType, WritesNothingWhenTheCommandFails) {
  DetectionFixture fixture;
  fixture.Link().DefaultReply = NoAnswer();
  DetectModuleType(fixture.Context);
  EXPECT_EQ(fixture.Steps(), (Texts{"status=Getting Pipette Module Type", "send STATUS_MECH",
                                    CommunicationError("Getting Pipette Module Type"), "status="}));
}

// ---- Head ----

TEST(DetectHeadType, SwitchesTheReaderOnWhenTheKeyIsMissing) {
  DetectionFixture fixture{"[DeviceType]\nInstalled=1\n"};
  DetectHeadType(fixture.Context);
  EXPECT_EQ(fixture.Calls.Of({"read [DeviceType] Sensor"}),
            Texts{"read [DeviceType] SensorEnableRFID default \"1\""});
  EXPECT_EQ(fixture.Sent(), (Texts{"send RFID ON", "send RFID READ_PERSISTENT"}));
}

TEST(DetectHeadType, SwitchesTheReaderOffWhenItIsDisabledOrTheSettingDoesNotConvert) {
  for (const auto* setting : {"0", "False", "abc", "", "1 mm"}) {
    DetectionFixture fixture;
    fixture.Settings().Set("DeviceType", "SensorEnableRFID", setting);
    DetectHeadType(fixture.Context);
    EXPECT_EQ(fixture.Steps(), (Texts{"status=Disabling RFID", "send RFID OFF", "status="})) << setting;
  }
}

TEST(DetectHeadType, SwitchesTheReaderOnForEveryTrueSetting) {
  for (const auto* setting : {"1", "True", "-1", "0.5"}) {
    DetectionFixture fixture;
    fixture.Settings().Set("DeviceType", "SensorEnableRFID", setting);
    DetectHeadType(fixture.Context);
    EXPECT_EQ(fixture.Sent().front(), "send RFID ON") << setting;
  }
}

TEST(DetectHeadType, SwitchesTheReaderOffWhenTheSettingCannotBeRead) {
  DetectionFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("read [DeviceType] SensorEnableRFID");
  DetectHeadType(fixture.Context);
  EXPECT_EQ(fixture.Sent(), Texts{"send RFID OFF"});
}

TEST(DetectHeadType, ShowsTheBoxWhenTheReaderCannotBeSwitchedOff) {
  DetectionFixture fixture;
  fixture.Settings().Set("DeviceType", "SensorEnableRFID", "0");
  fixture.Link().DefaultReply = NoAnswer();
  DetectHeadType(fixture.Context);
  EXPECT_EQ(fixture.Steps(), (Texts{"status=Disabling RFID", "send RFID OFF",
                                    CommunicationError("Disabling RFID"), "status="}));
}

TEST(DetectHeadType, AsksForNoTagWhenTheReaderCannotBeSwitchedOn) {
  DetectionFixture fixture;
  fixture.Link().Replies["RFID ON"] = {NoAnswer()};
  DetectHeadType(fixture.Context);
  EXPECT_EQ(fixture.Steps(),
            (Texts{"status=Enabling RFID", "send RFID ON", CommunicationError("Enabling RFID"), "status="}));
}

TEST(DetectHeadType, WritesNothingWhenTheTagCannotBeRead) {
  DetectionFixture fixture;
  fixture.Link().Replies["RFID READ_PERSISTENT"] = {NoAnswer()};
  DetectHeadType(fixture.Context);
  EXPECT_EQ(fixture.Steps(),
            (Texts{"status=Enabling RFID", "send RFID ON", "status=Getting Head Type",
                   "send RFID READ_PERSISTENT", CommunicationError("Getting Head Type"), "status="}));
}

TEST(DetectHeadType, RecordsTheHeadWithTheTagAndLeavesTheReaderOn) {
  DetectionFixture fixture;
  fixture.ReplyWithTag("1,2,TAG2,4,5");
  DetectHeadType(fixture.Context);
  EXPECT_EQ(fixture.Steps(), (Texts{"status=Enabling RFID", "send RFID ON", "status=Getting Head Type",
                                    "send RFID READ_PERSISTENT", "write [HeadType] Installed=2",
                                    "select heads 1", "status="}));
}

TEST(DetectHeadType, StopsSearchingAtTheMatch) {
  DetectionFixture fixture;
  fixture.ReplyWithTag("1,2,TAG2,4,5");
  DetectHeadType(fixture.Context);
  EXPECT_EQ(fixture.Calls.Of({"read [HeadType] Item"}),
            (Texts{"read [HeadType] Item1", "read [HeadType] Item2"}));
}

TEST(DetectHeadType, ComparesTheTagExactly) {
  for (const auto* tag : {"tag2", "TAG", "TAG22", " TAG2"}) {
    DetectionFixture fixture;
    fixture.ReplyWithTag(std::string{"1,2,"} + tag + ",4,5");
    DetectHeadType(fixture.Context);
    EXPECT_EQ(fixture.Writes(), Texts{"write [HeadType] Installed=0"}) << tag;
  }
}

TEST(DetectHeadType, ComparesTheThirdFieldOfTheReply) {
  DetectionFixture fixture;
  fixture.ReplyWithTag("TAG1,TAG1,TAG3,TAG1,TAG1");
  DetectHeadType(fixture.Context);
  EXPECT_EQ(fixture.Writes(), Texts{"write [HeadType] Installed=3"});
}

TEST(DetectHeadType, WritesZeroForAnUnknownTagAndSelectsThePositionOfTheEndOfTheTable) {
  DetectionFixture fixture;
  fixture.ReplyWithTag("1,2,TAG9,4,5");
  DetectHeadType(fixture.Context);
  EXPECT_EQ(fixture.Calls.Of({"read [HeadType] Item", "write", "select"}),
            (Texts{"read [HeadType] Item1", "read [HeadType] Item2", "read [HeadType] Item3",
                   "read [HeadType] Item4", "write [HeadType] Installed=0", "select heads 0"}));
}

TEST(DetectHeadType, TakesAReplyWithoutExactlyFiveFieldsForNoMatch) {
  for (const auto* reply :
       {"1,2,TAG2,4", "1,2,TAG2,4,", "1,2,TAG2,4,5,6", "TAG2", "", ",,,,", "1;2;TAG2;4;5"}) {
    DetectionFixture fixture;
    fixture.ReplyWithTag(reply);
    DetectHeadType(fixture.Context);
    EXPECT_EQ(fixture.Calls.Of({"read [HeadType] Item", "write", "select", "message"}),
              (Texts{"write [HeadType] Installed=0", "select heads 0"}))
        << reply;
  }
}

TEST(DetectHeadType, TakesAReplyThatCannotBeSplitForNoMatch) {
  DetectionFixture fixture;
  fixture.ReplyWithTag("1,2,TAG2,4,5");
  fixture.Calls.FailEverythingThatStartsWith("split \",\" of \"1,2,TAG2,4,5\"");
  DetectHeadType(fixture.Context);
  EXPECT_EQ(fixture.Calls.Of({"read [HeadType] Item", "write", "select"}),
            (Texts{"write [HeadType] Installed=0", "select heads 0"}));
}

TEST(DetectHeadType, StripsTheReplyOfItsLineEnds) {
  DetectionFixture fixture;
  fixture.ReplyWithTag("1,2,TA\r\nG3\r\n,4,5\r\n");
  DetectHeadType(fixture.Context);
  EXPECT_EQ(fixture.Writes(), Texts{"write [HeadType] Installed=3"});
}

std::string HeadLine(int item, const std::string& name, const std::string& tag) {
  return "Item" + std::to_string(item) + "=\"" + name + "\",M,1,2,3,96,0,0,0,0,0,0,0,0,0,0,96_CH,0,\"" + tag +
         "\"\n";
}

TEST(DetectHeadType, TakesAnEmptyTagForThatOfTheFirstHeadWithoutOne) {
  DetectionFixture fixture{"[HeadType]\n" + HeadLine(1, "Block", "TAG1") + HeadLine(2, "Comb", "") +
                           HeadLine(3, "Tool", "")};
  fixture.ReplyWithTag("1,2,,4,5");
  DetectHeadType(fixture.Context);
  EXPECT_EQ(fixture.Calls.Of({"write", "select"}), (Texts{"write [HeadType] Installed=2", "select heads 1"}));
}

TEST(DetectHeadType, TakesAnEmptyTagForThatOfTheEndOfTheTableWhenAllHeadsHaveOne) {
  DetectionFixture fixture;
  fixture.ReplyWithTag("1,2,,4,5");
  DetectHeadType(fixture.Context);
  EXPECT_EQ(fixture.Calls.Of({"write", "select"}), (Texts{"write [HeadType] Installed=4", "select heads 0"}));
}

TEST(DetectHeadType, FindsAlsoTheNamelessRecordAtTheEndOfTheTable) {
  DetectionFixture fixture{"[HeadType]\n" + HeadLine(1, "Block", "TAG1") + HeadLine(2, "", "TAG2")};
  fixture.ReplyWithTag("1,2,TAG2,4,5");
  DetectHeadType(fixture.Context);
  EXPECT_EQ(fixture.Calls.Of({"write", "select"}), (Texts{"write [HeadType] Installed=2", "select heads 0"}));
}

TEST(DetectHeadType, DoesNotSearchBehindTheFirstNamelessRecord) {
  DetectionFixture fixture{"[HeadType]\n" + HeadLine(1, "Block", "TAG1") + HeadLine(2, "", "TAG2") +
                           HeadLine(3, "Tool", "TAG3")};
  fixture.ReplyWithTag("1,2,TAG3,4,5");
  DetectHeadType(fixture.Context);
  EXPECT_EQ(fixture.Calls.Of({"write", "select"}), (Texts{"write [HeadType] Installed=0", "select heads 0"}));
}

TEST(DetectHeadType, SelectsTheFirstEntryOfANameThatTwoHeadsShare) {
  DetectionFixture fixture{"[HeadType]\n" + HeadLine(1, "comb", "TAG1") + HeadLine(2, "COMB", "TAG2")};
  fixture.Page.Entries[ListControl::HeadType] = {"comb", "COMB", "Not installed"};
  fixture.ReplyWithTag("1,2,TAG2,4,5");
  DetectHeadType(fixture.Context);
  EXPECT_EQ(fixture.Calls.Of({"write", "select"}), (Texts{"write [HeadType] Installed=2", "select heads 0"}));
}

// ---- Pump module ----

Texts StepsAfterPumpReply(const std::string& reply) {
  DetectionFixture fixture;
  fixture.Reply("STATUS PUMPS", reply);
  DetectPumpModule(fixture.Context);
  return fixture.Steps();
}

TEST(DetectPumpModule, ShowsTheModuleAsNotConnectedWhenTheReplyHoldsOpen) {
  for (const auto* reply : {"PUMPS OPEN", "PUMPS OPEN\r\n", "OPEN", "REOPENED", "OP\r\nEN"}) {
    EXPECT_EQ(StepsAfterPumpReply(reply),
              (Texts{"status=Getting Pump Module Status", "send STATUS PUMPS",
                     "write [PumpControl] ModuleInstalled=0", "pump false", "status="}))
        << reply;
  }
}

TEST(DetectPumpModule, ShowsTheModuleAsConnectedForAnyOtherReplyAndStoresZeroAllTheSame) {
  for (const auto* reply : {"PUMPS READY", "", "pumps open", "Open", "OPE N"}) {
    EXPECT_EQ(StepsAfterPumpReply(reply),
              (Texts{"status=Getting Pump Module Status", "send STATUS PUMPS",
                     "write [PumpControl] ModuleInstalled=0", "pump true", "status="}))
        << reply;
  }
}

TEST(DetectPumpModule, LeavesFileAndLabelAloneWhenTheCommandFails) {
  DetectionFixture fixture;
  fixture.Link().DefaultReply = NoAnswer();
  DetectPumpModule(fixture.Context);
  EXPECT_EQ(fixture.Steps(), (Texts{"status=Getting Pump Module Status", "send STATUS PUMPS",
                                    CommunicationError("Getting Pump Module Status"), "status="}));
  EXPECT_EQ(fixture.Value("PumpControl", "ModuleInstalled"), "1");
}

TEST(DetectPumpModule, ShowsTheLabelAlsoWhenTheFileCannotBeWritten) {
  DetectionFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("write");
  fixture.Reply("STATUS PUMPS", "READY");
  DetectPumpModule(fixture.Context);
  EXPECT_EQ(fixture.Calls.Of({"pump"}), Texts{"pump true"});
}

}  // namespace
}  // namespace zolvane
