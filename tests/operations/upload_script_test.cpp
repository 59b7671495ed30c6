#include "operations/upload_script.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "support/operation_fixture.h"

namespace zolvane {
namespace {

// Device "D" with cage "C" and a factor of 1; 0.5 mm per step of Z, 2 of S, 0.25 of SDX, 0.125 of SDY.
constexpr std::string_view scriptAxes =
    "[DeviceType]\nInstalled=1\nItem1=\"D\",0,\"ZV\"\nSDXYEncoderMMStepFactorOff=1\n"
    "[CageType]\nInstalled=1\nItem1=\"C\",SERIALDILUTE\n"
    "[Device_TypeD_CageC]\nAxis1=Z,0.5\nAxis2=S,2\nAxis3=SDX,0.25\nAxis4=SDY,0.125\n";

struct ScriptFixture : OperationFixture {
  explicit ScriptFixture(const std::string& tables = "")
      : OperationFixture{std::string{scriptAxes} + tables} {}

  std::string Script() {
    Refresh();
    return BuildUploadScript(Config, {});
  }
};

// The lines of a script whose key starts like this, each with its command prefix.
Texts LinesOf(std::string script, std::initializer_list<std::string_view> starts) {
  Texts lines;
  for (auto end = script.find("\r\n"); end != std::string::npos; end = script.find("\r\n")) {
    const auto line = script.substr(0, end);
    script.erase(0, end + 2);
    const bool isWanted = std::ranges::any_of(starts, [&line](std::string_view start) {
      return line.starts_with(std::string{"SET_CALIBRATION "}.append(start));
    });
    if (isWanted) {
      lines.push_back(line);
    }
  }
  EXPECT_EQ(script, "") << "not ended by CR LF";
  return lines;
}

Texts LinesFrom(const std::string& tables, std::initializer_list<std::string_view> starts) {
  ScriptFixture fixture{tables};
  return LinesOf(fixture.Script(), starts);
}

Texts Set(std::initializer_list<std::string_view> keysAndValues) {
  Texts lines;
  for (const auto text : keysAndValues) {
    lines.push_back(std::string{"SET_CALIBRATION "}.append(text));
  }
  return lines;
}

// ---- The whole ----

TEST(UploadScript, AnEmptyFileGivesThePositionsDeltaZAndTheSaveCommand) {
  OperationFixture fixture;
  fixture.Refresh();
  std::string expected;
  for (const auto* name :
       {"STAGE1", "STAGE2", "STAGE3", "STAGE4", "STAGE5", "STAGE6", "CHUTESTAGE", "NEST8_STAGE",
        "NEST12_STAGE", "RESERVOIR", "WASH", "RACK_STAGE1", "RACK_STAGE2"}) {
    expected += std::string{"SET_CALIBRATION "} + name + "_X 0\r\n";
    expected += std::string{"SET_CALIBRATION "} + name + "_Y 0\r\n";
  }
  expected += "SET_CALIBRATION Delta_Z 0\r\n";
  for (const auto* name : {"WELL_A1_SD", "CHUTE_SD", "NEST8_SD", "NEST12_SD"}) {
    expected += std::string{"SET_CALIBRATION "} + name + "_X 0\r\n";
    expected += std::string{"SET_CALIBRATION "} + name + "_Y 0\r\n";
  }
  expected += "SET_CALIBRATION SAVE\r\n";
  EXPECT_EQ(BuildUploadScript(fixture.Config, {}), expected);
}

TEST(UploadScript, AnnouncesItsGroupsBeforeTheyAreRead) {
  ScriptFixture fixture;
  fixture.Refresh();
  BuildUploadScript(fixture.Config,
                    [&](std::string_view group) { fixture.Calls.Note("group " + std::string{group}); });
  const auto calls = fixture.Calls.Of({"group", "read [DeviceType] Item", "read [Position_D] Item",
                                       "read [HeadType] Item", "read [TipType] Item", "read [NestType] Item",
                                       "read [VolumeCorrection_1_CH_LONG_12.5]"});
  const Texts expected{"group Stage XY",
                       "read [DeviceType] Item1",
                       "read [Position_D] Item1",
                       "group Heights",
                       "read [HeadType] Item1",
                       "read [TipType] Item1",
                       "read [HeadType] Item1",
                       "read [NestType] Item1",
                       "group SD XY",
                       "read [Position_D] Item1",
                       "read [NestType] Item1",
                       "group Volume Precision",
                       "read [VolumeCorrection_1_CH_LONG_12.5] 1Item",
                       "read [TipType] Item1"};
  Texts order = calls;
  order.erase(std::ranges::unique(order).begin(), order.end());
  EXPECT_EQ(order, expected);
}

TEST(UploadScript, LoadsTheInstalledDeviceAgainForThePositions) {
  ScriptFixture fixture{
      "[Position_Other]\nItem1=STAGE1,\"Stage\",,3,4\n[Position_D]\nItem1=STAGE1,\"S\",,1,2\n"};
  fixture.Refresh();
  fixture.Settings().Set("DeviceType", "Item2", "\"Other\",0,\"ZV\"");
  fixture.Settings().Set("DeviceType", "Installed", "2");
  const auto lines = LinesOf(BuildUploadScript(fixture.Config, {}), {"STAGE1"});
  EXPECT_EQ(lines, Set({"STAGE1_X 3", "STAGE1_Y 4"}));
  EXPECT_EQ(fixture.Config.Current.Device.Name, "Other");
}

TEST(UploadScript, WritesNothingIntoAnyFile) {
  ScriptFixture fixture{"[HeadType]\nItem1=\"h\",SERIALDILUTE,0,30\n[TipType]\nItem1=\"t\",SERIALDILUTE\n"};
  fixture.Script();
  EXPECT_EQ(fixture.Writes(), Texts{});
}

// ---- Stage positions ----

TEST(UploadScript, SendsStageXAndYOfThirteenPositions) {
  const auto lines = LinesFrom(
      "[Position_D]\n"
      "Item1=STAGE1,\"a\",,1,2,101,102\nItem2=STAGE2,\"b\",,3,4\nItem3=STAGE3,\"c\",,5,6\n"
      "Item4=STAGE4,\"d\",,7,8\nItem5=STAGE5,\"e\",,9,10\nItem6=STAGE6,\"f\",,11,12\n"
      "Item7=TIPCHUTE,\"g\",,13,14\nItem8=NEST8,\"h\",,15,16\nItem9=NEST12,\"i\",,17,18\n"
      "Item10=RESERVOIR,\"j\",,19,20\nItem11=TIPWASH,\"k\",,21,22\nItem12=TIPRACKSTAGE1,\"l\",,23,24\n"
      "Item13=TIPRACKSTAGE2,\"m\",,-25,2147483647\n",
      {"STAGE", "CHUTESTAGE", "NEST8_STAGE", "NEST12_STAGE", "RESERVOIR", "WASH", "RACK_STAGE"});
  EXPECT_EQ(lines, Set({"STAGE1_X 1",        "STAGE1_Y 2",
                        "STAGE2_X 3",        "STAGE2_Y 4",
                        "STAGE3_X 5",        "STAGE3_Y 6",
                        "STAGE4_X 7",        "STAGE4_Y 8",
                        "STAGE5_X 9",        "STAGE5_Y 10",
                        "STAGE6_X 11",       "STAGE6_Y 12",
                        "CHUTESTAGE_X 13",   "CHUTESTAGE_Y 14",
                        "NEST8_STAGE_X 15",  "NEST8_STAGE_Y 16",
                        "NEST12_STAGE_X 17", "NEST12_STAGE_Y 18",
                        "RESERVOIR_X 19",    "RESERVOIR_Y 20",
                        "WASH_X 21",         "WASH_Y 22",
                        "RACK_STAGE1_X 23",  "RACK_STAGE1_Y 24",
                        "RACK_STAGE2_X -25", "RACK_STAGE2_Y 2147483647"}));
}

TEST(UploadScript, SendsTheValuesOfTheNamelessRecordAtTheEndForAMissingPosition) {
  EXPECT_EQ(LinesFrom("[Position_D]\nItem1=STAGE2,\"b\",,3,4\nItem2=OTHER,,,8,9\nItem3=STAGE1,\"a\",,1,2\n",
                      {"STAGE1"}),
            Set({"STAGE1_X 8", "STAGE1_Y 9"}));
}

TEST(UploadScript, FindsANamelessRecordByItsPositionName) {
  EXPECT_EQ(LinesFrom("[Position_D]\nItem1=STAGE1,,,1,2\n", {"STAGE1"}), Set({"STAGE1_X 1", "STAGE1_Y 2"}));
}

TEST(UploadScript, ComparesPositionNamesExactly) {
  EXPECT_EQ(LinesFrom("[Position_D]\nItem1=Stage1,\"a\",,1,2\n", {"STAGE1"}),
            Set({"STAGE1_X 0", "STAGE1_Y 0"}));
}

// ---- Heights ----

constexpr auto heights =
    "[Z_Calibration]\n"
    "MountHeight=1\nStageHeightLower=2\nStageHeightUpper=3\nHeadDepth_1ch_Short=4\nHeaddepth_1ch_Long=5\n"
    "HeadDepth_8ch=6\nHeadDepth_12ch=7\nHeadDepth_96_384=8\nHeadDepth_TeachTool_1Ch=9\n"
    "HeadDepth_TeachTool_96_384=10\nNestDepth_Y=11\nNestDepth_XY_6=12\nTipMountDepth12=13\n"
    "TipMountDepth30=14\nTipMountDepth125=15\nTipMountDepth300=16\nTipMountDepth1250=17\n"
    "CalibrationPlateDepth=18\nDeltaZ=19.5\nDeltaZTolerance=20\n";

const std::initializer_list<std::string_view> heightKeys{"Mount",    "StageHeight", "HeadDepth", "NestDepth",
                                                         "TipMount", "Cal",         "Delta"};

TEST(UploadScript, SendsSeventeenHeightsInStepsAndDeltaZAsItStands) {
  EXPECT_EQ(LinesFrom(heights, heightKeys),
            Set({"MountHeight 2", "StageHeightLower 4", "StageHeightUpper 6", "HeadDepth_1ChShort 8",
                 "HeadDepth_1ChLong 10", "HeadDepth_8Ch 12", "HeadDepth_12Ch 14", "HeadDepth_96_384 16",
                 "HeadDepth_TeachTool_1Ch 18", "HeadDepth_TeachTool_96_384 20", "NestDepth_Y 22",
                 "NestDepth_XY_6 24", "TipMountDepth12 26", "TipMountDepth30 28", "TipMountDepth125 30",
                 "TipMountDepth300 32", "TipMountDepth1250 34", "Delta_Z 19.5"}));
}

TEST(UploadScript, RoundsHeightsHalfAwayFromZeroAndShowsNoSignBeforeAZero) {
  EXPECT_EQ(LinesFrom("[Z_Calibration]\nMountHeight=1.25\nStageHeightLower=-1.25\nStageHeightUpper=0.75\n"
                      "HeadDepth_8ch=-0.2\nHeadDepth_12ch=0\n",
                      {"MountHeight", "StageHeight", "HeadDepth_8Ch", "HeadDepth_12Ch"}),
            Set({"MountHeight 3", "StageHeightLower -3", "StageHeightUpper 2", "HeadDepth_8Ch 0",
                 "HeadDepth_12Ch 0"}));
}

TEST(UploadScript, SendsDeltaZInGeneralForm) {
  EXPECT_EQ(LinesFrom("[Z_Calibration]\nDeltaZ=-0.10\n", {"Delta_Z"}), Set({"Delta_Z -0.1"}));
  EXPECT_EQ(LinesFrom("[Z_Calibration]\nDeltaZ=12.3456789012345678\n", {"Delta_Z"}),
            Set({"Delta_Z 12.3456789012346"}));
}

std::string WithAxis(const std::string& axis, const std::string& scale) {
  std::string text{scriptAxes};
  const auto start = text.find("=" + axis + ",") + axis.size() + 2;
  return text.replace(start, text.find('\n', start) - start, scale);
}

Texts LinesWithAxis(const std::string& axis, const std::string& scale, const std::string& tables,
                    std::initializer_list<std::string_view> starts) {
  OperationFixture fixture{WithAxis(axis, scale) + tables};
  fixture.Refresh();
  return LinesOf(BuildUploadScript(fixture.Config, {}), starts);
}

TEST(UploadScript, DividesByTheScaleInSinglePrecisionWithADoubleQuotient) {
  // The single nearest to 0.1 is a little more than 0.1, so that this many millimetres are a step less.
  EXPECT_EQ(LinesWithAxis("Z", "0.1", "[Z_Calibration]\nMountHeight=10000000\n", {"MountHeight"}),
            Set({"MountHeight 99999999"}));
}

TEST(UploadScript, LeavesOutTheLinesThatDivideByAZScaleOfZero) {
  const std::string tables = std::string{heights} +
                             "[HeadType]\nItem1=\"h\",SERIALDILUTE,0,30,0,1,0,0,0,0,0,0,0,0,1,2,1_CH_SHORT\n"
                             "SDHomeSensorSeekOffsetMM=6\nSDPreCollectHeightMM=7\nSDRFIDReadHeightMM=8\n"
                             "[TipType]\nItem1=\"t\",SERIALDILUTE,0,0,0,0,0,70,80,90,0,0,0,0,1,1\n";
  EXPECT_EQ(LinesWithAxis("Z", "0", tables,
                          {"Mount", "StageHeight", "HeadDepth", "NestDepth", "TipMount", "Delta", "SDHome",
                           "SDPre", "SDRFID", "Rack", "Chute"}),
            Set({"Delta_Z 19.5", "SDHomeSensorSeekOffsetMM 0", "SDPreCollectHeightMM 0",
                 "SDRFIDReadHeightMM 0", "ChuteEject_Z 90"}));
}

// ---- Tip and head change ----

const std::initializer_list<std::string_view> changeKeys{"TipChange", "HeadChange", "AspirateOrigin_96"};

constexpr auto changeCage = "Item2=\"M\",MICROTITER,0,0,0,51,52,53,54\n";

std::string HeadTable(const std::string& items) {
  return "[HeadType]\n" + items;
}

// Appends an item to the cage table of the axes' text.
Texts ChangeLines(const std::string& cages, const std::string& heads) {
  std::string text{scriptAxes};
  text.insert(text.find("[Device_Type"), cages);
  OperationFixture fixture{text + HeadTable(heads)};
  fixture.Refresh();
  return LinesOf(BuildUploadScript(fixture.Config, {}), changeKeys);
}

TEST(UploadScript, SendsTheChangeValuesOfTheFirstMicrotiterCageAndThe96ChannelHead) {
  EXPECT_EQ(ChangeLines(changeCage,
                        "Item1=\"a\",SERIALDILUTE,0,0,0,96,0,0,0,0,0,0,1,0,2,3\n"
                        "Item2=\"b\",MICROTITER,0,0,0,384,0,0,0,0,0,0,4,0,5,6\n"
                        "Item3=\"c\",MICROTITER,0,0,0,96,0,0,0,0,0,0,1180,0,11840.25,9\n"
                        "Item4=\"d\",MICROTITER,0,0,0,96,0,0,0,0,0,0,7,0,8,9\n"),
            Set({"TipChange_Z 11840.25", "TipChange_S 53", "HeadChange_Z 11840.25", "HeadChange_S 51",
                 "AspirateOrigin_96_384 1180"}));
}

TEST(UploadScript, SendsNoChangeValuesWithoutA96ChannelMicrotiterHead) {
  EXPECT_EQ(ChangeLines(changeCage,
                        "Item1=\"a\",MICROTITER,0,0,0,384\nItem2=\"b\",SERIALDILUTE,0,0,0,96\n"
                        "Item3=\"c\",microtiter,0,0,0,96\n"),
            Texts{});
}

TEST(UploadScript, DoesNotSearchHeadsBehindTheEndOfTheTable) {
  EXPECT_EQ(ChangeLines(changeCage, "Item1=\"a\",X\nItem3=\"b\",MICROTITER,0,0,0,96\n"), Texts{});
}

TEST(UploadScript, TakesANamelessHeadThatMatchesForFound) {
  EXPECT_EQ(ChangeLines(changeCage, "Item1=\"\",MICROTITER,0,0,0,96,0,0,0,0,0,0,1,0,2\n"),
            Set({"TipChange_Z 2", "TipChange_S 53", "HeadChange_Z 2", "HeadChange_S 51",
                 "AspirateOrigin_96_384 1"}));
}

TEST(UploadScript, UsesTheCageAtTheEndOfTheTableAsItComes) {
  const auto* const head = "Item1=\"a\",MICROTITER,0,0,0,96,0,0,0,0,0,0,1,0,2\n";
  EXPECT_EQ(ChangeLines("", head), Set({"TipChange_Z 2", "TipChange_S 0", "HeadChange_Z 2", "HeadChange_S 0",
                                        "AspirateOrigin_96_384 1"}));
  EXPECT_EQ(ChangeLines("Item2=\"\",OTHER,0,0,0,61,62,63,64\n", head),
            Set({"TipChange_Z 2", "TipChange_S 63", "HeadChange_Z 2", "HeadChange_S 61",
                 "AspirateOrigin_96_384 1"}));
}

// ---- Serial-dilute heads and the teach tool ----

const std::initializer_list<std::string_view> headKeys{"HeadEject", "HeadLock", "SDHome", "SDPre",
                                                       "SDRFID",    "PickUp",   "DropOff"};

std::string Head(int item, const std::string& code, const std::string& channelCode, int base) {
  const auto value = [base](int offset) { return std::to_string(base + offset); };
  return "Item" + std::to_string(item) + "=\"h\"," + code + ",0,0,0,1,0,0,0,0," + value(10) + "," +
         value(11) + "," + value(12) + "," + value(13) + "," + value(14) + ".5," + value(15) + ".25," +
         channelCode + "\n";
}

TEST(UploadScript, SendsTheHeadsByClassAndName) {
  // 6 mm are 3 steps of S, 7 and 8 mm are 14 and 16 of Z; all are sent times 0.5 (Z) times 100.
  const auto heads =
      HeadTable(Head(1, "CALIBRATE", "1_CH_SHORT", 500) + Head(2, "SERIALDILUTE", "12_CH", 400) +
                Head(3, "SERIALDILUTE", "8_CH", 300) + Head(4, "SERIALDILUTE", "1_CH_LONG", 200) +
                Head(5, "SERIALDILUTE", "1_CH_SHORT", 100) +
                "SDTeachToolOffsetMM=50\nSDHomeSensorSeekOffsetMM=6\nSDPreCollectHeightMM=7\n"
                "SDRFIDReadHeightMM=8\nSDHeadEjectOffsetMM=60\n");
  EXPECT_EQ(LinesFrom(heads, headKeys),
            Set({"HeadEject_SD_S 110", "HeadLock_SD_S 111", "SDHomeSensorSeekOffsetMM 150",
                 "SDPreCollectHeightMM 700", "SDRFIDReadHeightMM 800", "PickUp_1ChShort_Z 115.25",
                 "DropOff_1ChShort_Z 114.5", "PickUp_1ChLong_Z 215.25", "DropOff_1ChLong_Z 214.5",
                 "PickUp_8Ch_Z 315.25", "DropOff_8Ch_Z 314.5", "PickUp_12Ch_Z 415.25", "DropOff_12Ch_Z 414.5",
                 "PickUp_TeachTool_Z 515.25", "DropOff_TeachTool_Z 514.5"}));
}

TEST(UploadScript, SendsOnlyTheFirstHeadOfEachClassAndName) {
  EXPECT_EQ(LinesFrom(HeadTable(Head(1, "SERIALDILUTE", "8_CH", 100) + Head(2, "SERIALDILUTE", "8_CH", 200)),
                      headKeys),
            Set({"PickUp_8Ch_Z 115.25", "DropOff_8Ch_Z 114.5"}));
}

TEST(UploadScript, SendsNoHeadOfAnotherClassOrName) {
  EXPECT_EQ(LinesFrom(HeadTable(Head(1, "CALIBRATE", "8_CH", 1) + Head(2, "CALIBRATE", "1_CH_LONG", 2) +
                                Head(3, "MICROTITER", "1_CH_SHORT", 3) + Head(4, "SERIALDILUTE", "16_CH", 4) +
                                Head(5, "serialdilute", "8_CH", 5) + Head(6, "SERIALDILUTE", "8_ch", 6) +
                                Head(7, "SERIALDILUTE", " 8_CH", 7)),
                      headKeys),
            Texts{});
}

TEST(UploadScript, SendsTheOffsetsForTheShortHeadAndNotForTheTeachTool) {
  EXPECT_EQ(
      LinesFrom(HeadTable(Head(1, "CALIBRATE", "1_CH_SHORT", 100) + "SDPreCollectHeightMM=7\n"), headKeys),
      Set({"PickUp_TeachTool_Z 115.25", "DropOff_TeachTool_Z 114.5"}));
}

TEST(UploadScript, TakesANamelessHeadOfTheClassAndNameForFound) {
  EXPECT_EQ(LinesFrom(HeadTable("Item1=\"\",SERIALDILUTE,0,0,0,1,0,0,0,0,0,0,0,0,14,15,8_CH\n"), headKeys),
            Set({"PickUp_8Ch_Z 15", "DropOff_8Ch_Z 14"}));
}

TEST(UploadScript, RoundsTheOffsetsHalfAwayFromZero) {
  // One step of Z times 0.125 mm times 100 is 12.5.
  EXPECT_EQ(LinesWithAxis("Z", "0.125",
                          HeadTable(Head(1, "SERIALDILUTE", "1_CH_SHORT", 0) +
                                    "SDPreCollectHeightMM=0.125\nSDRFIDReadHeightMM=-0.125\n"),
                          {"SDPre", "SDRFID"}),
            Set({"SDPreCollectHeightMM 13", "SDRFIDReadHeightMM -13"}));
}

// ---- Tip racks ----

const std::initializer_list<std::string_view> rackKeys{"Rack", "Chute"};

std::string Tip(int item, const std::string& code, int base, const std::string& flags,
                const std::string& section = "") {
  const auto value = [base](int offset) { return std::to_string(base + offset); };
  return "Item" + std::to_string(item) + "=\"t\"," + code + ",0,0,0,0,0," + value(7) + "," + value(8) + "," +
         value(9) + ",0,0,0,0," + flags + ",\"" + section + "\"\n";
}

std::string TipTable(const std::string& items) {
  return "[TipType]\n" + items;
}

TEST(UploadScript, SendsTheRacksOfTheFirstTipsWithTheSecondAndWithTheFirstSizeFlag) {
  EXPECT_EQ(
      LinesFrom(TipTable(Tip(1, "MICROTITER", 900, "1,1,0,0") + Tip(2, "SERIALDILUTE", 100, "1,0,0,0") +
                         Tip(3, "SERIALDILUTE", 200, "1,0,0,0") + Tip(4, "SERIALDILUTE", 300, "0,1,0,0") +
                         Tip(5, "SERIALDILUTE", 400, "0,1,0,0")),
                rackKeys),
      Set({"RackPickup_12_300_Z 616", "RackEject_12_300_Z 614", "ChuteEject_Z 309", "RackPickup_1250_Z 216",
           "RackEject_1250_Z 214"}));
}

TEST(UploadScript, SendsBothRacksOfOneTipThatHasBothFlags) {
  EXPECT_EQ(LinesFrom(TipTable(Tip(1, "SERIALDILUTE", 100, "1,1,0,0")), rackKeys),
            Set({"RackPickup_12_300_Z 216", "RackEject_12_300_Z 214", "ChuteEject_Z 109",
                 "RackPickup_1250_Z 216", "RackEject_1250_Z 214"}));
}

TEST(UploadScript, SendsTheChuteOnlyFromTheTipWithTheSecondFlag) {
  EXPECT_EQ(LinesFrom(TipTable(Tip(1, "SERIALDILUTE", 100, "1,0,1,1")), rackKeys),
            Set({"RackPickup_1250_Z 216", "RackEject_1250_Z 214"}));
}

TEST(UploadScript, SendsNoRackOfTipsWithTheOtherFlagsOrOfAnotherClass) {
  EXPECT_EQ(LinesFrom(TipTable(Tip(1, "SERIALDILUTE", 100, "0,0,1,1") + Tip(2, "MICROTITER", 200, "1,1,1,1") +
                               Tip(3, "SerialDilute", 300, "1,1,1,1")),
                      rackKeys),
            Texts{});
}

TEST(UploadScript, TakesANamelessTipThatMatchesForFoundAndSearchesNoFurther) {
  EXPECT_EQ(LinesFrom(TipTable("Item1=\"\",SERIALDILUTE,0,0,0,0,0,7,8,9,0,0,0,0,0,1\n" +
                               Tip(2, "SERIALDILUTE", 100, "1,0,0,0")),
                      rackKeys),
            Set({"RackPickup_12_300_Z 16", "RackEject_12_300_Z 14", "ChuteEject_Z 9"}));
}

TEST(UploadScript, DividesWholeRackHeightsInDoublePrecision) {
  // A single holds no whole number of this size that is odd.
  EXPECT_EQ(LinesWithAxis("Z", "1", TipTable(Tip(1, "SERIALDILUTE", 16777209, "1,0,0,0")), rackKeys),
            Set({"RackPickup_1250_Z 16777217", "RackEject_1250_Z 16777216"}));
}

// ---- Tip eject and aspirate origin ----

const std::initializer_list<std::string_view> ejectKeys{"TipEject", "AspirateOrigin_"};

std::string EjectHead(int item, const std::string& name, const std::string& code, const std::string& volume,
                      int channels, const std::string& origin, const std::string& eject) {
  return "Item" + std::to_string(item) + "=\"" + name + "\"," + code + ",0," + volume + ",0," +
         std::to_string(channels) + ",0,0,0,0,0,0," + origin + "," + eject + "\n";
}

TEST(UploadScript, SendsTipEjectWithAMinusSignAndTheAspirateOriginForEachKnownVolume) {
  EXPECT_EQ(LinesFrom(HeadTable(EjectHead(1, "a", "SERIALDILUTE", "12.5", 8, "11", "25.4") +
                                EjectHead(2, "b", "SERIALDILUTE", "30", 1, "12", "10") +
                                EjectHead(3, "c", "SERIALDILUTE", "125", 12, "13", "20") +
                                EjectHead(4, "d", "SERIALDILUTE", "300", 1, "-14", "30") +
                                EjectHead(5, "e", "SERIALDILUTE", "1250", 1, "15", "40")),
                      ejectKeys),
            Set({"TipEject_8Ch_12_S -13", "AspirateOrigin_8Ch_12_S 11", "TipEject_1Ch_30_S -5",
                 "AspirateOrigin_1Ch_30_S 12", "TipEject_12Ch_125_S -10", "AspirateOrigin_12Ch_125_S 13",
                 "TipEject_1Ch_300_S -15", "AspirateOrigin_1Ch_300_S -14", "TipEject_1Ch_1250_S -20",
                 "AspirateOrigin_1Ch_1250_S 15"}));
}

TEST(UploadScript, SendsOneMinusSignWhateverTheSignOfTipEject) {
  EXPECT_EQ(LinesFrom(HeadTable(EjectHead(1, "a", "SERIALDILUTE", "30", 1, "0", "-25.4") +
                                EjectHead(2, "b", "SERIALDILUTE", "30", 2, "0", "0") +
                                EjectHead(3, "c", "SERIALDILUTE", "30", 3, "0", "25") +
                                EjectHead(4, "d", "SERIALDILUTE", "30", 4, "0", "-0.2")),
                      {"TipEject"}),
            Set({"TipEject_1Ch_30_S -13", "TipEject_2Ch_30_S -0", "TipEject_3Ch_30_S -13",
                 "TipEject_4Ch_30_S -0"}));
}

TEST(UploadScript, SendsNoTipEjectForOtherVolumesAndClasses) {
  EXPECT_EQ(LinesFrom(HeadTable(EjectHead(1, "a", "SERIALDILUTE", "200", 8, "1", "2") +
                                EjectHead(2, "b", "MICROTITER", "300", 8, "1", "2") +
                                EjectHead(3, "c", "CALIBRATE", "300", 8, "1", "2") +
                                EjectHead(4, "d", "Serialdilute", "300", 8, "1", "2")),
                      ejectKeys),
            Texts{});
}

TEST(UploadScript, SendsTipEjectOfEqualHeadsEachTime) {
  EXPECT_EQ(LinesFrom(HeadTable(EjectHead(1, "a", "SERIALDILUTE", "30", 8, "1", "2") +
                                EjectHead(2, "b", "SERIALDILUTE", "30", 8, "3", "4")),
                      ejectKeys),
            Set({"TipEject_8Ch_30_S -1", "AspirateOrigin_8Ch_30_S 1", "TipEject_8Ch_30_S -2",
                 "AspirateOrigin_8Ch_30_S 3"}));
}

TEST(UploadScript, IncludesTheNamelessRecordAtTheEndInTipEjectAndNothingBehindIt) {
  EXPECT_EQ(LinesFrom(HeadTable(EjectHead(1, "", "SERIALDILUTE", "30", 8, "1", "2") +
                                EjectHead(2, "b", "SERIALDILUTE", "125", 8, "3", "4")),
                      ejectKeys),
            Set({"TipEject_8Ch_30_S -1", "AspirateOrigin_8Ch_30_S 1"}));
}

TEST(UploadScript, LeavesOutOnlyTipEjectWhenTheSScaleIsZero) {
  EXPECT_EQ(
      LinesWithAxis("S", "0", HeadTable(EjectHead(1, "a", "SERIALDILUTE", "30", 8, "1", "2")), ejectKeys),
      Set({"AspirateOrigin_8Ch_30_S 1"}));
}

// ---- Nests ----

std::string Nest(int item, const std::string& name, const std::string& code, int base) {
  std::string line = "Item" + std::to_string(item) + "=\"" + name + "\"," + code;
  for (int place = 1; place <= 3; ++place) {
    const auto value = [&](int offset) { return std::to_string(base + 10 * place + offset); };
    line += ",\"l\",c,0," + value(1) + "," + value(2) + "," + value(3);
  }
  return line + "\n";
}

std::string NestTable(const std::string& items) {
  return "[NestType]\n" + items;
}

TEST(UploadScript, SendsTheHeightsOfEveryNest) {
  // Millimetres in the file, twice as many steps in memory.
  EXPECT_EQ(LinesFrom(NestTable(Nest(1, "a", "NEST12", 100) + Nest(2, "b", "NEST8", 200) +
                                Nest(3, "c", "NEST8", 300) + Nest(4, "d", "NESTY", 400) +
                                Nest(5, "e", "nest8", 500)),
                      {"Nest_"}),
            Set({"Nest_1E_Z 226", "Nest_12D_Z 246", "Nest_1F_Z 266", "Nest_1A_Z 426", "Nest_8B_Z 446",
                 "Nest_1C_Z 466", "Nest_1A_Z 626", "Nest_8B_Z 646", "Nest_1C_Z 666"}));
}

TEST(UploadScript, SendsNoHeightsOfTheNamelessNestAtTheEnd) {
  EXPECT_EQ(LinesFrom(NestTable(Nest(1, "", "NEST8", 100) + Nest(2, "b", "NEST12", 200)), {"Nest_"}),
            Texts{});
}

TEST(UploadScript, SendsThePositionsOfTheFirstNestOfEachClassInHundredths) {
  // 0.25 mm per step of SDX and 0.125 of SDY, times 100.
  EXPECT_EQ(LinesFrom(NestTable(Nest(1, "a", "NEST12", 100) + Nest(2, "b", "NEST8", 200) +
                                Nest(3, "c", "NEST8", 300) + Nest(4, "d", "NEST12", 400)),
                      {"NEST_"}),
            Set({"NEST_1A_SD_X 5275", "NEST_1A_SD_Y 2650", "NEST_8B_SD_X 5525", "NEST_8B_SD_Y 2775",
                 "NEST_1C_SD_X 5775", "NEST_1C_SD_Y 2900", "NEST_1E_SD_X 2775", "NEST_1E_SD_Y 1400",
                 "NEST_12D_SD_X 3025", "NEST_12D_SD_Y 1525", "NEST_1F_SD_X 3275", "NEST_1F_SD_Y 1650"}));
}

TEST(UploadScript, RoundsNestPositionsHalfAwayFromZero) {
  EXPECT_EQ(LinesFrom(NestTable("Item1=\"a\",NEST8,\"l\",c,0,-1,1\n"), {"NEST_1A"}),
            Set({"NEST_1A_SD_X -25", "NEST_1A_SD_Y 13"}));
}

TEST(UploadScript, TakesANamelessNestOfTheClassForFound) {
  EXPECT_EQ(
      LinesFrom(NestTable("Item1=\"\",NEST12,\"l\",c,0,4,8\n" + Nest(2, "b", "NEST8", 100)), {"NEST_1"}),
      Set({"NEST_1E_SD_X 100", "NEST_1E_SD_Y 100", "NEST_12D_SD_X 0", "NEST_12D_SD_Y 0", "NEST_1F_SD_X 0",
           "NEST_1F_SD_Y 0"}));
}

TEST(UploadScript, ComputesNestPositionsInDoublePrecision) {
  EXPECT_EQ(
      LinesWithAxis("SDX", "1", NestTable("Item1=\"a\",NEST8,\"l\",c,0,16777217,0\n"), {"NEST_1A_SD_X"}),
      Set({"NEST_1A_SD_X 1677721700"}));
}

// ---- Serial-dilute XY ----

TEST(UploadScript, SendsSerialDiluteXAndYOfFourPositions) {
  EXPECT_EQ(LinesFrom("[Position_D]\nItem1=NEST12,\"a\",,1,2,31,32\nItem2=NEST8,\"b\",,3,4,33,34\n"
                      "Item3=TIPCHUTE,\"c\",,5,6,35,36\nItem4=STAGE1,\"d\",,7,8,-37,38\n",
                      {"WELL", "CHUTE_SD", "NEST8_SD", "NEST12_SD"}),
            Set({"WELL_A1_SD_X -37", "WELL_A1_SD_Y 38", "CHUTE_SD_X 35", "CHUTE_SD_Y 36", "NEST8_SD_X 33",
                 "NEST8_SD_Y 34", "NEST12_SD_X 31", "NEST12_SD_Y 32"}));
}

TEST(UploadScript, SendsSerialDilutePositionsInSteps) {
  std::string text{scriptAxes};
  text.replace(text.find("Off=1"), 5, "Off=2");
  OperationFixture fixture{text + "[Position_D]\nItem1=STAGE1,\"d\",,7,8,10,20\n"};
  fixture.Refresh();
  EXPECT_EQ(LinesOf(BuildUploadScript(fixture.Config, {}), {"WELL", "STAGE1"}),
            Set({"STAGE1_X 7", "STAGE1_Y 8", "WELL_A1_SD_X 20", "WELL_A1_SD_Y 40"}));
}

TEST(UploadScript, SendsTheGroupsInTheirOrder) {
  const auto lines = LinesFrom(std::string{heights} +
                                   HeadTable("Item1=\"m\",MICROTITER,0,0,0,96\n" +
                                             EjectHead(2, "s", "SERIALDILUTE", "30", 1, "1", "2") +
                                             Head(3, "SERIALDILUTE", "8_CH", 1)) +
                                   TipTable(Tip(1, "SERIALDILUTE", 1, "1,1,0,0", "Own")) +
                                   NestTable(Nest(1, "n", "NEST8", 1)) +
                                   "[VolumeCorrection_1_CH_LONG_12.5]\n1Item=a,1,K1\n[Own]\n1Item=a,1,K2\n",
                               {"RACK_STAGE2_Y", "MountHeight", "Delta_Z", "TipChange_Z", "AspirateOrigin_96",
                                "PickUp", "RackPickup_12_", "RackEject_1250", "TipEject", "Nest_1A",
                                "WELL_A1_SD_X", "NEST12_SD_Y", "NEST_1A_SD_X", "K", "SAVE"});
  EXPECT_EQ(lines, Set({"RACK_STAGE2_Y 0", "MountHeight 2", "Delta_Z 19.5", "TipChange_Z 0",
                        "AspirateOrigin_96_384 0", "PickUp_8Ch_Z 16.25", "RackPickup_12_300_Z 18",
                        "RackEject_1250_Z 16", "TipEject_1Ch_30_S -1", "Nest_1A_Z 28", "WELL_A1_SD_X 0",
                        "NEST12_SD_Y 0", "NEST_1A_SD_X 300", "K1 100000", "K2 100000", "SAVE"}));
}

// ---- Volume precision ----

const std::initializer_list<std::string_view> volumeKeys{"V_"};

TEST(UploadScript, SendsElevenCorrectionsInTheirOrderAndThoseThatTipsName) {
  std::string tables;
  for (const auto* name :
       {"12_CH_300", "12_CH_30", "12_CH_12.5", "12_CH_125", "12_CH_1250", "8_CH_300", "8_CH_30", "8_CH_12.5",
        "8_CH_125", "8_CH_1250", "1_CH_SHORT_1250", "1_CH_SHORT_300", "1_CH_LONG_300", "1_CH_LONG_125",
        "1_CH_LONG_30", "1_CH_LONG_12.5", "1_CH_LONG_1250", "1_CH_LONG_12", "_"}) {
    tables += std::string{"[VolumeCorrection_"} + name + "]\n1Item=x,1,V_" + name + "\n";
  }
  tables += "[Own]\n1Item=x,1,V_OWN\n[Other]\n1Item=x,1,V_OTHER\n";
  tables += TipTable(Tip(1, "MICROTITER", 0, "0,0,0,0", "Other") + Tip(2, "X", 0, "0,0,0,0") +
                     Tip(3, "SERIALDILUTE", 0, "0,0,0,0", "Own"));
  EXPECT_EQ(LinesFrom(tables, volumeKeys),
            Set({"V_1_CH_LONG_12.5 100000", "V_1_CH_LONG_30 100000", "V_1_CH_LONG_125 100000",
                 "V_1_CH_LONG_300 100000", "V_1_CH_SHORT_1250 100000", "V_8_CH_12.5 100000",
                 "V_8_CH_30 100000", "V_8_CH_300 100000", "V_12_CH_12.5 100000", "V_12_CH_30 100000",
                 "V_12_CH_300 100000", "V_OTHER 100000", "V_OWN 100000"}));
}

TEST(UploadScript, SendsASectionEachTimeItIsNamed) {
  EXPECT_EQ(LinesFrom("[VolumeCorrection_8_CH_30]\n1Item=x,1,V_A\n" +
                          TipTable(Tip(1, "A", 0, "0,0,0,0", "VolumeCorrection_8_CH_30") +
                                   Tip(2, "B", 0, "0,0,0,0", "VolumeCorrection_8_CH_30")),
                      volumeKeys),
            Set({"V_A 100000", "V_A 100000", "V_A 100000"}));
}

TEST(UploadScript, SendsNoCorrectionOfTheNamelessTipAtTheEnd) {
  EXPECT_EQ(LinesFrom("[Own]\n1Item=x,1,V_A\n[TipType]\n"
                      "Item1=\"\",A,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\"Own\"\n" +
                          Tip(2, "B", 0, "0,0,0,0", "Own"),
                      volumeKeys),
            Texts{});
}

// ---- One volume correction ----

std::string Correction(const std::string& items) {
  OperationFixture fixture{"[S]\n" + items};
  return BuildVolumeCorrection(fixture.Config, "S");
}

TEST(VolumeCorrection, TheSectionIsNamedAfterTheHeadsLayoutAndTheTipVolume) {
  EXPECT_EQ(VolumeCorrectionSection("8_CH", "12.5"), "VolumeCorrection_8_CH_12.5");
  EXPECT_EQ(VolumeCorrectionSection("", ""), "VolumeCorrection__");
}

TEST(VolumeCorrection, IsReadFromTheSectionItIsGiven) {
  OperationFixture fixture{"[VolumeCorrection_8_CH_12.5]\n1Item=x,1,A\n[Own]\n1Item=x,3,C\n"};
  EXPECT_EQ(BuildVolumeCorrection(fixture.Config, "VolumeCorrection_8_CH_12.5"),
            "SET_CALIBRATION A 100000\r\n");
  EXPECT_EQ(BuildVolumeCorrection(fixture.Config, "Own"), "SET_CALIBRATION C 300000\r\n");
}

TEST(VolumeCorrection, HasALineForEachItemWithItsThirdFieldAsKeyAndItsSecondInHundredThousandths) {
  EXPECT_EQ(Correction("1Item=0.5 ul,1.0842,\"V_1\"\n2Item=2,0.99815,V_2,more\n3Item=\"x\",1,\"V\"_\"3\"\n"),
            "SET_CALIBRATION V_1 108420\r\nSET_CALIBRATION V_2 99815\r\nSET_CALIBRATION V_3 100000\r\n");
}

TEST(VolumeCorrection, AsksForItsItemsByNumberUntilTheFirstEmptyOne) {
  OperationFixture fixture{"[S]\n1Item=x,1,A\n2Item=\n3Item=x,1,C\n"};
  EXPECT_EQ(BuildVolumeCorrection(fixture.Config, "S"), "SET_CALIBRATION A 100000\r\n");
  EXPECT_EQ(fixture.Calls.Of({"read"}), (Texts{"read [S] 1Item", "read [S] 2Item"}));
}

TEST(VolumeCorrection, IsEmptyWithoutItsFirstItem) {
  EXPECT_EQ(Correction("2Item=x,1,B\nItem1=x,1,C\n"), "");
  EXPECT_EQ(Correction("1Item=\n2Item=x,1,B\n"), "");
  EXPECT_EQ(Correction(""), "");
}

TEST(VolumeCorrection, HasNoLineForAnItemThatIsTooShortOrHasNoKeyAndGoesOn) {
  EXPECT_EQ(Correction("1Item=x,1,A\n2Item=x,2\n3Item=x\n4Item=x,3,\n5Item=x,4,\"\"\n6Item=x,5,F\n"),
            "SET_CALIBRATION A 100000\r\nSET_CALIBRATION F 500000\r\n");
}

TEST(VolumeCorrection, ReadsTheLeadingNumberOfTheFactor) {
  EXPECT_EQ(Correction("1Item=x,1.5ul,A\n2Item=x, 1.25,B\n3Item=x,abc,C\n4Item=x,,D\n5Item=x,\"1\",E\n"),
            "SET_CALIBRATION A 150000\r\nSET_CALIBRATION B 125000\r\nSET_CALIBRATION C 0\r\n"
            "SET_CALIBRATION D 0\r\nSET_CALIBRATION E 0\r\n");
}

TEST(VolumeCorrection, RoundsHalfAwayFromZero) {
  EXPECT_EQ(Correction("1Item=x,0.000005,A\n2Item=x,0.000025,B\n3Item=x,-0.000025,C\n4Item=x,-0.000001,D\n"),
            "SET_CALIBRATION A 1\r\nSET_CALIBRATION B 3\r\nSET_CALIBRATION C -3\r\nSET_CALIBRATION D 0\r\n");
}

TEST(VolumeCorrection, HasNoLineForAFactorThatCannotBeMultiplied) {
  EXPECT_EQ(Correction("1Item=x,1e305,A\n2Item=x,1,B\n"), "SET_CALIBRATION B 100000\r\n");
}

TEST(VolumeCorrection, LeavesOutAnItemThatCannotBeReadAndGoesOn) {
  OperationFixture fixture{"[S]\n1Item=x,1,A\n2Item=x,2,B\n3Item=x,3,C\n"};
  fixture.Calls.FailEverythingThatStartsWith("read [S] 2Item");
  EXPECT_EQ(BuildVolumeCorrection(fixture.Config, "S"),
            "SET_CALIBRATION A 100000\r\nSET_CALIBRATION C 300000\r\n");
}

TEST(VolumeCorrection, IsEmptyWhenItsFirstItemCannotBeRead) {
  OperationFixture fixture{"[S]\n1Item=x,1,A\n2Item=x,2,B\n"};
  fixture.Calls.FailEverythingThatStartsWith("read [S] 1Item");
  EXPECT_EQ(BuildVolumeCorrection(fixture.Config, "S"), "");
}

TEST(VolumeCorrection, HasNoLineForAnItemThatCannotBeSplit) {
  OperationFixture fixture{"[S]\n1Item=x,1,A\n2Item=x,2,B\n3Item=x,3,C\n"};
  fixture.Calls.FailsIf = [](auto event) { return event == "split \",\" of \"x,2,B\""; };
  EXPECT_EQ(BuildVolumeCorrection(fixture.Config, "S"),
            "SET_CALIBRATION A 100000\r\nSET_CALIBRATION C 300000\r\n");
}

}  // namespace
}  // namespace zolvane
