#include "config/tables/head_and_tip_tables.h"

#include <gtest/gtest.h>

#include <string>

#include "config/config_fixture.h"

namespace zolvane {
namespace {

HeadTypeRecord LoadHead(ConfigFixture& fixture, std::string item = "", std::string_view file = "") {
  return LoadHeadType(fixture.Config, item, file);
}

TipTypeRecord LoadTip(ConfigFixture& fixture, std::string item = "", std::string_view file = "") {
  return LoadTipType(fixture.Config, item, file);
}

std::string SavedHead(ConfigFixture& fixture, const HeadTypeRecord& head) {
  SaveHeadType(fixture.Config, head, backup);
  return fixture.Settings.Value("HeadType", "Item" + head.ID, backup).value_or("nothing written");
}

constexpr std::string_view headFile =
    "[HeadType]\n"
    "Installed=12\n"
    "Item1=\"96-Channel\",MICROTITER,300,299.5,5.25,96,0.0625,1,0,1,77,81,1180,31.5,11840.25,12265.75,96_CH,"
    "0,"
    "\"5A4C\"\n"
    "Item12=\"8-Channel\",SERIALDILUTE,1250,300,20,8,0.25,0,1,0,1600,380,1450,27.8,10192,10624,8_CH,1,"
    "\"2032\"\n"
    "Item20=\"Teach\",CALIBRATE,0,0,0,1,0,0,0,0,1650,380,1500,0,10340,10768,1_CH_SHORT,0,\"3011\"\n"
    "Item21=\"Teach long\",CALIBRATE,0,0,0,1,0,0,0,0,1650,380,1500,0,10340,10768,1_CH_LONG,0,\"3012\"\n"
    "SDTeachToolOffsetMM=0.75\n"
    "SDHomeSensorSeekOffsetMM=2.4\n"
    "SDPreCollectHeightMM=12\n"
    "SDRFIDReadHeightMM=34.5\n"
    "SDHeadEjectOffsetMM=1.5\n";

TEST(HeadTable, LoadsEveryMemberOfTheLine) {
  ConfigFixture fixture{headFile};
  const auto head = LoadHead(fixture, "1");
  EXPECT_EQ(head.ID, "1");
  EXPECT_EQ(head.Name, "96-Channel");
  EXPECT_EQ(head.Code, "MICROTITER");
  EXPECT_EQ(head.Field2, 300.0);
  EXPECT_EQ(head.TipVolume, 299.5);
  EXPECT_EQ(head.Field4, 5.25);
  EXPECT_EQ(head.Field5, 96);
  EXPECT_EQ(head.Field6, 0.0625);
  EXPECT_TRUE(head.Field7);
  EXPECT_FALSE(head.Field8);
  EXPECT_TRUE(head.Field9);
  EXPECT_EQ(head.Field10, 77);
  EXPECT_EQ(head.Field11, 81);
  EXPECT_EQ(head.Field12, 1180);
  EXPECT_EQ(head.Field13, 31.5);
  EXPECT_EQ(head.Field14, 11840.25);
  EXPECT_EQ(head.Field15, 12265.75);
  EXPECT_EQ(head.ChannelCode, "96_CH");
  EXPECT_FALSE(head.Field17);
  EXPECT_EQ(head.Field18, "5A4C");
  EXPECT_EQ(head.TipMountDepth, 0.0);
}

TEST(HeadTable, LoadsTheOtherFlagsAndTheOffsetsOfASerialDiluteHead) {
  ConfigFixture fixture{headFile};
  const auto head = LoadHead(fixture);
  EXPECT_EQ(head.ID, "12");
  EXPECT_FALSE(head.Field7);
  EXPECT_TRUE(head.Field8);
  EXPECT_FALSE(head.Field9);
  EXPECT_TRUE(head.Field17);
  EXPECT_EQ(head.SDTeachToolOffsetMM, 15.0);
  EXPECT_EQ(head.SDHomeSensorSeekOffsetMM, 48.0);
  EXPECT_EQ(head.SDPreCollectHeightMM, 600.0);
  EXPECT_EQ(head.SDRFIDReadHeightMM, 1725.0);
  EXPECT_EQ(head.SDHeadEjectOffsetMM, 30.0);
}

TEST(HeadTable, SavesEveryMemberInTheOrderOfTheLine) {
  ConfigFixture fixture;
  HeadTypeRecord head;
  head.ID = "3";
  head.Name = "New";
  head.Code = "MICROTITER";
  head.Field2 = 2.125;
  head.TipVolume = 12.5;
  head.Field4 = 1.0 / 3.0;
  head.Field5 = -384;
  head.Field6 = 0.00001;
  head.Field8 = true;
  head.Field10 = 1010;
  head.Field11 = -11;
  head.Field12 = 1212;
  head.Field13 = 13.5;
  head.Field14 = 14.25;
  head.Field15 = -15.75;
  head.ChannelCode = "384_CH";
  head.Field17 = true;
  head.TipMountDepth = 99.0;
  head.Field18 = "TAG";
  EXPECT_EQ(SavedHead(fixture, head),
            "\"New\",MICROTITER,2.125,12.5,0.333333333333333,-384,1E-05,0,1,0,0,-11,1212,13.5,14.25,-15.75,"
            "384_CH,1,"
            "\"TAG\"");
}

TEST(HeadTable, SavesTheOtherFlags) {
  ConfigFixture fixture;
  HeadTypeRecord head;
  head.ID = "3";
  head.Field7 = true;
  head.Field9 = true;
  EXPECT_EQ(SavedHead(fixture, head), "\"\",,0,0,0,0,0,1,0,1,0,0,0,0,0,0,,0,\"\"");
}

TEST(HeadTable, SavesTheLineAndNoKey) {
  ConfigFixture fixture{headFile};
  SaveHeadType(fixture.Config, LoadHead(fixture), backup);
  EXPECT_EQ(
      fixture.Writes(),
      Texts{"write [HeadType] Item12=\"8-Channel\",SERIALDILUTE,1250,300,20,8,0.25,0,1,0,1480,380,1450,27.8,"
            "10192,10624,8_CH,1,\"2032\" in /backup.bak"});
}

TEST(HeadTable, ReadsTheLineAloneForOtherHeads) {
  ConfigFixture fixture{headFile};
  LoadHead(fixture, "1");
  EXPECT_EQ(fixture.Reads(), Texts{"read [HeadType] Item1"});
}

TEST(HeadTable, ReadsTheOffsetsInOrderAndTheLastFourInTheirOwnSpelling) {
  ConfigFixture fixture{headFile};
  LoadHead(fixture);
  EXPECT_EQ(
      fixture.Reads(),
      (Texts{"read [HeadType] Installed", "read [HeadType] Item12", "read [HeadType] SDTeachToolOffsetMM",
             "read [Headtype] SDHomeSensorSeekOffsetMM", "read [Headtype] SDPreCollectHeightMM",
             "read [Headtype] SDRFIDReadHeightMM", "read [Headtype] SDHeadEjectOffsetMM"}));
}

TEST(HeadTable, TheShortTeachToolHasTheOffsetsToo) {
  ConfigFixture fixture{headFile};
  const auto head = LoadHead(fixture, "20");
  EXPECT_EQ(head.SDTeachToolOffsetMM, 15.0);
  EXPECT_EQ(head.SDHeadEjectOffsetMM, 30.0);
  EXPECT_EQ(SavedHead(fixture, head),
            "\"Teach\",CALIBRATE,0,0,0,1,0,0,0,0,1530,380,1500,0,10340,10768,1_CH_SHORT,0,\"3011\"");
}

TEST(HeadTable, TheLongTeachToolHasNoOffsets) {
  ConfigFixture fixture{headFile};
  const auto head = LoadHead(fixture, "21");
  EXPECT_EQ(head.SDTeachToolOffsetMM, 0.0);
  EXPECT_EQ(head.SDHomeSensorSeekOffsetMM, 0.0);
  EXPECT_EQ(head.SDPreCollectHeightMM, 0.0);
  EXPECT_EQ(head.SDRFIDReadHeightMM, 0.0);
  EXPECT_EQ(head.SDHeadEjectOffsetMM, 0.0);
  EXPECT_EQ(head.Field10, 1650);
  EXPECT_EQ(fixture.Reads().size(), 1U);
  EXPECT_EQ(SavedHead(fixture, head),
            "\"Teach long\",CALIBRATE,0,0,0,1,0,0,0,0,0,380,1500,0,10340,10768,1_CH_LONG,0,\"3012\"");
}

TEST(HasSerialDiluteOffsets, ComparesToTheLetter) {
  HeadTypeRecord head;
  const auto has = [&head](const char* code, const char* channels) {
    head.Code = code;
    head.ChannelCode = channels;
    return HasSerialDiluteOffsets(head);
  };
  EXPECT_TRUE(has("SERIALDILUTE", ""));
  EXPECT_TRUE(has("SERIALDILUTE", "96_CH"));
  EXPECT_TRUE(has("CALIBRATE", "1_CH_SHORT"));
  EXPECT_FALSE(has("serialdilute", "1_CH_SHORT"));
  EXPECT_FALSE(has("SERIALDILUTE ", ""));
  EXPECT_FALSE(has("\"SERIALDILUTE\"", ""));
  EXPECT_FALSE(has("CALIBRATE", "1_ch_short"));
  EXPECT_FALSE(has("CALIBRATE", ""));
  EXPECT_FALSE(has("Calibrate", "1_CH_SHORT"));
  EXPECT_FALSE(has("MICROTITER", "1_CH_SHORT"));
}

TEST(HeadTable, BareTextsAreTakenAsTheyStand) {
  ConfigFixture fixture{"[HeadType]\nItem1=A,\"SERIALDILUTE\",,,,,,,,,,,,,,, 8_CH,,\"x\"\"y\"\n"};
  const auto head = LoadHead(fixture, "1");
  EXPECT_EQ(head.Code, "\"SERIALDILUTE\"");
  EXPECT_EQ(head.ChannelCode, " 8_CH");
  EXPECT_EQ(head.Field18, "xy");
  EXPECT_EQ(head.SDTeachToolOffsetMM, 0.0);
}

TEST(HeadTable, ConvertsAnOffsetFromMillimetresToWholeSteps) {
  ConfigFixture fixture{
      "[HeadType]\nItem1=A,SERIALDILUTE\nSDPreCollectHeightMM=10\nSDTeachToolOffsetMM=10\n"};
  EXPECT_EQ(LoadHead(fixture, "1").SDPreCollectHeightMM, 500.0);
  EXPECT_EQ(LoadHead(fixture, "1").SDTeachToolOffsetMM, 200.0);
  fixture.Config.Current.Axes.Z.UnitsPerStep = 0.03F;
  fixture.Config.Current.Axes.S.UnitsPerStep = 0.06F;
  EXPECT_EQ(LoadHead(fixture, "1").SDPreCollectHeightMM, 333.0);
  EXPECT_EQ(LoadHead(fixture, "1").SDTeachToolOffsetMM, 167.0);
}

TEST(HeadTable, RoundsOffsetsHalfAwayFromZero) {
  ConfigFixture fixture{
      "[HeadType]\nItem1=A,SERIALDILUTE\nSDPreCollectHeightMM=1.25\nSDRFIDReadHeightMM=-1.25\n"
      "SDTeachToolOffsetMM=-0.1\n"};
  fixture.Config.Current.Axes.Z.UnitsPerStep = 0.5F;
  fixture.Config.Current.Axes.S.UnitsPerStep = 0.5F;
  const auto head = LoadHead(fixture, "1");
  EXPECT_EQ(head.SDPreCollectHeightMM, 3.0);
  EXPECT_EQ(head.SDRFIDReadHeightMM, -3.0);
  EXPECT_EQ(head.SDTeachToolOffsetMM, 0.0);
}

TEST(HeadTable, TakesEachOffsetByItsOwnAxis) {
  ConfigFixture fixture{
      "[HeadType]\nItem1=A,SERIALDILUTE\nSDTeachToolOffsetMM=1\nSDHomeSensorSeekOffsetMM=2\n"
      "SDPreCollectHeightMM=3\nSDRFIDReadHeightMM=4\nSDHeadEjectOffsetMM=5\n"};
  fixture.Config.Current.Axes.Z.UnitsPerStep = 0.25F;
  fixture.Config.Current.Axes.S.UnitsPerStep = 0.125F;
  const auto head = LoadHead(fixture, "1");
  EXPECT_EQ(head.SDTeachToolOffsetMM, 8.0);
  EXPECT_EQ(head.SDHomeSensorSeekOffsetMM, 16.0);
  EXPECT_EQ(head.SDPreCollectHeightMM, 12.0);
  EXPECT_EQ(head.SDRFIDReadHeightMM, 16.0);
  EXPECT_EQ(head.SDHeadEjectOffsetMM, 40.0);
}

TEST(HeadTable, AnOffsetThatIsMissingEmptyOrNoNumberStaysZero) {
  ConfigFixture fixture{
      "[HeadType]\nItem1=A,SERIALDILUTE\nSDTeachToolOffsetMM=\nSDHomeSensorSeekOffsetMM=2.5mm\n"
      "SDPreCollectHeightMM=abc\nSDHeadEjectOffsetMM=5\n"};
  const auto head = LoadHead(fixture, "1");
  EXPECT_EQ(head.SDTeachToolOffsetMM, 0.0);
  EXPECT_EQ(head.SDHomeSensorSeekOffsetMM, 0.0);
  EXPECT_EQ(head.SDPreCollectHeightMM, 0.0);
  EXPECT_EQ(head.SDRFIDReadHeightMM, 0.0);
  EXPECT_EQ(head.SDHeadEjectOffsetMM, 100.0);
}

TEST(HeadTable, AnAxisFactorOfZeroLeavesItsOffsetsZero) {
  ConfigFixture fixture{headFile};
  fixture.Config.Current.Axes.Z.UnitsPerStep = 0.0F;
  auto head = LoadHead(fixture);
  EXPECT_EQ(head.SDPreCollectHeightMM, 0.0);
  EXPECT_EQ(head.SDRFIDReadHeightMM, 0.0);
  EXPECT_EQ(head.SDHeadEjectOffsetMM, 30.0);
  fixture.Config.Current.Axes.S.UnitsPerStep = 0.0F;
  head = LoadHead(fixture);
  EXPECT_EQ(head.SDTeachToolOffsetMM, 0.0);
  EXPECT_EQ(head.SDHomeSensorSeekOffsetMM, 0.0);
  EXPECT_EQ(head.SDHeadEjectOffsetMM, 0.0);
}

TEST(HeadTable, ReadsTheOffsetsFromTheFileItIsGivenWithTheFactorsInForce) {
  ConfigFixture fixture{headFile};
  fixture.Settings.Load("/other.bak",
                        "[HeadType]\nInstalled=2\nItem2=A,SERIALDILUTE\nSDHeadEjectOffsetMM=4\n");
  const auto head = LoadHead(fixture, "", "/other.bak");
  EXPECT_EQ(head.ID, "2");
  EXPECT_EQ(head.SDHeadEjectOffsetMM, 80.0);
  EXPECT_EQ(head.SDTeachToolOffsetMM, 0.0);
  EXPECT_EQ(fixture.Reads().back(), "read [Headtype] SDHeadEjectOffsetMM in /other.bak");
}

TEST(HeadTable, DoesNotRefreshOffsetsWhenTheAxesChangeLater) {
  ConfigFixture fixture{headFile};
  const auto head = LoadHead(fixture);
  fixture.Config.Current.Axes.S.UnitsPerStep = 1.0F;
  EXPECT_EQ(head.SDHeadEjectOffsetMM, 30.0);
  EXPECT_TRUE(SavedHead(fixture, head).find(",1480,380,") != std::string::npos);
}

// The head-eject position of the file is derived, so the member that the line was loaded into is lost on
// saving.
TEST(HeadTable, NeverSavesTheHeadEjectPositionItHolds) {
  ConfigFixture fixture;
  HeadTypeRecord head;
  head.ID = "1";
  head.Code = "SERIALDILUTE";
  head.Field10 = 4711;
  head.Field12 = 1450;
  head.SDHeadEjectOffsetMM = 30.5;
  EXPECT_EQ(SavedHead(fixture, head), "\"\",SERIALDILUTE,0,0,0,0,0,0,0,0,1480.5,0,1450,0,0,0,,0,\"\"");
  head.Code = "MICROTITER";
  EXPECT_EQ(SavedHead(fixture, head), "\"\",MICROTITER,0,0,0,0,0,0,0,0,0,0,1450,0,0,0,,0,\"\"");
}

TEST(HeadTable, TheHeadEjectPositionIsASumOfRealsInGeneralForm) {
  ConfigFixture fixture;
  HeadTypeRecord head;
  head.ID = "1";
  head.Code = "SERIALDILUTE";
  head.Field12 = 2147483647;
  head.SDHeadEjectOffsetMM = 10.0;
  EXPECT_EQ(SavedHead(fixture, head),
            "\"\",SERIALDILUTE,0,0,0,0,0,0,0,0,2147483657,0,2147483647,0,0,0,,0,\"\"");
  head.SDHeadEjectOffsetMM = 2e15;
  EXPECT_EQ(SavedHead(fixture, head),
            "\"\",SERIALDILUTE,0,0,0,0,0,0,0,0,2.00000214748365E+15,0,2147483647,0,0,0,,0,\"\"");
  fixture.Settings.Set("HeadType", "Item1", SavedHead(fixture, head));
  EXPECT_EQ(LoadHead(fixture, "1").Field10, 0);
}

TEST(HeadTable, RoundsWholeNumbersHalfToEven) {
  ConfigFixture fixture{"[HeadType]\nItem1=A,B,1,1,1,8.5,1,0,0,0,2.5,3.5,-4.5\n"};
  const auto head = LoadHead(fixture, "1");
  EXPECT_EQ(head.Field5, 8);
  EXPECT_EQ(head.Field10, 2);
  EXPECT_EQ(head.Field11, 4);
  EXPECT_EQ(head.Field12, -4);
}

TEST(HeadTable, KeepsZeroForNumbersThatDoNotFit) {
  ConfigFixture fixture{"[HeadType]\nItem1=A,B,1e309,1,1,32768,1,0,0,0,2147483648,3e9,-2147483649\n"};
  const auto head = LoadHead(fixture, "1");
  EXPECT_EQ(head.Field2, 0.0);
  EXPECT_EQ(head.Field5, 0);
  EXPECT_EQ(head.Field10, 0);
  EXPECT_EQ(head.Field11, 0);
  EXPECT_EQ(head.Field12, 0);
}

TEST(HeadTable, ReadsRealsAsLeadingNumbersAndFlagsAsWordsOrNumbers) {
  ConfigFixture fixture{"[HeadType]\nItem1=A,B,2.5ul,x,1E-05,,0.25 mm,True,1x,-1,,,,,abc,7.5z,C,yes,D\n"};
  const auto head = LoadHead(fixture, "1");
  EXPECT_EQ(head.Field2, 2.5);
  EXPECT_EQ(head.TipVolume, 0.0);
  EXPECT_EQ(head.Field4, 0.00001);
  EXPECT_EQ(head.Field5, 0);
  EXPECT_EQ(head.Field6, 0.25);
  EXPECT_TRUE(head.Field7);
  EXPECT_FALSE(head.Field8);
  EXPECT_TRUE(head.Field9);
  EXPECT_EQ(head.Field14, 0.0);
  EXPECT_EQ(head.Field15, 7.5);
  EXPECT_FALSE(head.Field17);
}

TEST(HeadTable, ReadsEachValueInItsOwnForm) {
  ConfigFixture fixture{"[HeadType]\nItem1=A,B,2x,3x,4x,5x,6x,1x,1x,1x,10x,11x,12x,13x,14x,15x,C,1x,D\n"};
  const auto head = LoadHead(fixture, "1");
  EXPECT_EQ(head.Field2, 2.0);
  EXPECT_EQ(head.TipVolume, 3.0);
  EXPECT_EQ(head.Field4, 4.0);
  EXPECT_EQ(head.Field5, 5);
  EXPECT_EQ(head.Field6, 6.0);
  EXPECT_FALSE(head.Field7);
  EXPECT_FALSE(head.Field8);
  EXPECT_FALSE(head.Field9);
  EXPECT_EQ(head.Field10, 10);
  EXPECT_EQ(head.Field11, 11);
  EXPECT_EQ(head.Field12, 12);
  EXPECT_EQ(head.Field13, 13.0);
  EXPECT_EQ(head.Field14, 14.0);
  EXPECT_EQ(head.Field15, 15.0);
  EXPECT_FALSE(head.Field17);
}

TEST(HeadTable, AMissingLineLeavesTheNumberAlone) {
  ConfigFixture fixture{headFile};
  const auto head = LoadHead(fixture, "99");
  EXPECT_EQ(head.ID, "99");
  EXPECT_EQ(head.Name, "");
  EXPECT_EQ(head.TipMountDepth, 0.0);
  EXPECT_EQ(fixture.Reads(), Texts{"read [HeadType] Item99"});
}

TEST(HeadTable, PassesEveryFailedOffsetOver) {
  ConfigFixture clean{headFile};
  LoadHead(clean);
  for (const auto* key : {"SDTeach", "SDHome", "SDPre", "SDRFID", "SDHead"}) {
    ConfigFixture fixture{headFile};
    fixture.Calls.FailsIf = [key](std::string_view event) { return event.find(key) != event.npos; };
    const auto head = LoadHead(fixture);
    EXPECT_EQ(fixture.Reads(), clean.Reads());
    const int zeros = (head.SDTeachToolOffsetMM == 0.0 ? 1 : 0) +
                      (head.SDHomeSensorSeekOffsetMM == 0.0 ? 1 : 0) +
                      (head.SDPreCollectHeightMM == 0.0 ? 1 : 0) + (head.SDRFIDReadHeightMM == 0.0 ? 1 : 0) +
                      (head.SDHeadEjectOffsetMM == 0.0 ? 1 : 0);
    EXPECT_EQ(zeros, 1) << key;
  }
}

TEST(HeadTable, AFailedWriteIsSilent) {
  ConfigFixture fixture{headFile};
  fixture.Calls.FailEverythingThatStartsWith("write");
  SaveHeadType(fixture.Config, LoadHead(fixture), fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), headFile);
}

// ---- Tip mount depths ----

ZCalibrationRecord Depths() {
  ZCalibrationRecord heights;
  heights.TipMountDepth12 = 4.5;
  heights.TipMountDepth30 = 4.75;
  heights.TipMountDepth125 = 5.5;
  heights.TipMountDepth300 = 6.25;
  heights.TipMountDepth1250 = 8.5;
  return heights;
}

TEST(TipMountDepthFor, IsTheDepthOfTheVolume) {
  EXPECT_EQ(TipMountDepthFor(Depths(), 12.5), 4.5);
  EXPECT_EQ(TipMountDepthFor(Depths(), 30.0), 4.75);
  EXPECT_EQ(TipMountDepthFor(Depths(), 125.0), 5.5);
  EXPECT_EQ(TipMountDepthFor(Depths(), 300.0), 6.25);
  EXPECT_EQ(TipMountDepthFor(Depths(), 1250.0), 8.5);
}

TEST(TipMountDepthFor, ComparesExactly) {
  for (const double volume : {0.0, 12.0, 12.500001, 29.9, 200.0, 300.0000001, 1249.0, -300.0}) {
    EXPECT_EQ(TipMountDepthFor(Depths(), volume), 0.0) << volume;
  }
}

TEST(HeadTable, TakesTheTipMountDepthOfItsVolumeFromTheHeightsInForce) {
  ConfigFixture fixture{"[HeadType]\nItem1=A,B,0,300\nItem2=A,B,0,200\nItem3=A,B,0,12.5\n"};
  fixture.Config.Current.Heights = Depths();
  EXPECT_EQ(LoadHead(fixture, "1").TipMountDepth, 6.25);
  EXPECT_EQ(LoadHead(fixture, "2").TipMountDepth, 0.0);
  EXPECT_EQ(LoadHead(fixture, "3").TipMountDepth, 4.5);
}

// ---- Tips ----

constexpr std::string_view tipFile =
    "[TipType]\n"
    "Installed=2\n"
    "Item1=\"1250 "
    "ul\",SERIALDILUTE,1250.5,20.25,8,12,1,96,118,7840,98.5,1,0,1,0,1,0,1,\"VolumeCorrection_A\"\n"
    "Item2=\"300 ul\",MICROTITER,300,5,-8,-12,0,124,141,9320,58.2,-2,1,0,1,0,1,0,\"\"\n"
    "TipChuteClearOffset=13.75\n";

TEST(TipTable, LoadsEveryMember) {
  ConfigFixture fixture{tipFile};
  const auto tip = LoadTip(fixture, "1");
  EXPECT_EQ(tip.ID, "1");
  EXPECT_EQ(tip.Name, "1250 ul");
  EXPECT_EQ(tip.Code, "SERIALDILUTE");
  EXPECT_EQ(tip.Field2, 1250.5);
  EXPECT_EQ(tip.Field3, 20.25);
  EXPECT_EQ(tip.Field4, 8);
  EXPECT_EQ(tip.Field5, 12);
  EXPECT_TRUE(tip.Field6);
  EXPECT_EQ(tip.Field7, 96);
  EXPECT_EQ(tip.Field8, 118);
  EXPECT_EQ(tip.Field9, 7840);
  EXPECT_EQ(tip.Field10, 98.5);
  EXPECT_EQ(tip.Field11, 1);
  EXPECT_FALSE(tip.Field12);
  EXPECT_TRUE(tip.Field13);
  EXPECT_FALSE(tip.Field14);
  EXPECT_TRUE(tip.Field15);
  EXPECT_FALSE(tip.Field16);
  EXPECT_TRUE(tip.Field17);
  EXPECT_EQ(tip.Field18, "VolumeCorrection_A");
  EXPECT_EQ(tip.TipChuteClearOffset, 13.75);
}

TEST(TipTable, LoadsTheOtherFlagsOfTheInstalledTip) {
  ConfigFixture fixture{tipFile};
  std::string item;
  const auto tip = LoadTipType(fixture.Config, item, "");
  EXPECT_EQ(item, "2");
  EXPECT_EQ(tip.ID, "2");
  EXPECT_FALSE(tip.Field6);
  EXPECT_EQ(tip.Field11, -2);
  EXPECT_TRUE(tip.Field12);
  EXPECT_FALSE(tip.Field13);
  EXPECT_TRUE(tip.Field14);
  EXPECT_FALSE(tip.Field15);
  EXPECT_TRUE(tip.Field16);
  EXPECT_FALSE(tip.Field17);
  EXPECT_EQ(tip.Field18, "");
}

TEST(TipTable, SavesEveryMemberInTheOrderOfTheLine) {
  ConfigFixture fixture;
  TipTypeRecord tip;
  tip.ID = "9";
  tip.Name = "New";
  tip.Code = "CODE";
  tip.Field2 = 2.5;
  tip.Field3 = 1.0 / 3.0;
  tip.Field4 = -4;
  tip.Field5 = 5;
  tip.Field6 = true;
  tip.Field7 = 7;
  tip.Field8 = -8;
  tip.Field9 = 90000;
  tip.Field10 = 10.25;
  tip.Field11 = 11;
  tip.Field13 = true;
  tip.Field14 = true;
  tip.Field17 = true;
  tip.Field18 = "Section";
  tip.TipChuteClearOffset = 99.0;
  SaveTipType(fixture.Config, tip, backup);
  EXPECT_EQ(
      fixture.Writes(),
      Texts{"write [TipType] Item9=\"New\",CODE,2.5,0.333333333333333,-4,5,1,7,-8,90000,10.25,11,0,1,1,0,0,1,"
            "\"Section\" in /backup.bak"});
}

TEST(TipTable, SavesWhatItLoadedUnchangedAndNeverTheClearOffset) {
  ConfigFixture fixture{tipFile};
  auto tip = LoadTip(fixture, "1");
  tip.TipChuteClearOffset = 1.0;
  SaveTipType(fixture.Config, tip, fixture.ConfigFile());
  SaveTipType(fixture.Config, LoadTip(fixture, "2"), fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), tipFile);
}

TEST(TipTable, ReadsInOrder) {
  ConfigFixture fixture{tipFile};
  LoadTip(fixture);
  EXPECT_EQ(fixture.Reads(), (Texts{"read [TipType] Installed", "read [TipType] Item2",
                                    "read [TipType] TipChuteClearOffset default \"12.5\""}));
}

TEST(TipTable, TheClearOffsetIsTwelveAndAHalfWhenItsKeyIsMissing) {
  ConfigFixture fixture;
  EXPECT_EQ(LoadTip(fixture, "1").TipChuteClearOffset, 12.5);
}

TEST(TipTable, AClearOffsetThatIsNoNumberIsZero) {
  for (const auto* text : {"abc", "", "12.5mm", "1 2", "1e309"}) {
    ConfigFixture fixture{"[TipType]\nTipChuteClearOffset=" + std::string{text} + "\n"};
    EXPECT_EQ(LoadTip(fixture, "1").TipChuteClearOffset, 0.0) << text;
  }
}

TEST(TipTable, AClearOffsetMayHaveBlanksAPlusATrailingPointAndAnExponent) {
  for (const auto* text : {" 20 ", "+20", "20.", "2e1"}) {
    ConfigFixture fixture{"[TipType]\nTipChuteClearOffset=" + std::string{text} + "\n"};
    EXPECT_EQ(LoadTip(fixture, "1").TipChuteClearOffset, 20.0) << text;
  }
}

TEST(TipTable, ReadsTheFileItIsGiven) {
  ConfigFixture fixture{tipFile};
  fixture.Settings.Load("/other.bak", "[TipType]\nItem1=\"Other\"\nTipChuteClearOffset=5\n");
  EXPECT_EQ(LoadTip(fixture, "1", "/other.bak").Name, "Other");
  EXPECT_EQ(LoadTip(fixture, "1", "/other.bak").TipChuteClearOffset, 5.0);
}

TEST(TipTable, AnEmptyFlagLoadsOffAndIsWrittenAsZero) {
  ConfigFixture fixture{"[TipType]\nItem1=A,B,1,2,3,4,,7\n"};
  const auto tip = LoadTip(fixture, "1");
  EXPECT_FALSE(tip.Field6);
  EXPECT_EQ(tip.Field7, 7);
  SaveTipType(fixture.Config, tip, backup);
  EXPECT_EQ(fixture.Settings.Value("TipType", "Item1", backup),
            "\"A\",B,1,2,3,4,0,7,0,0,0,0,0,0,0,0,0,0,\"\"");
}

TEST(TipTable, RoundsWholeNumbersHalfToEvenAndKeepsZeroForThoseThatDoNotFit) {
  ConfigFixture fixture{
      "[TipType]\nItem1=A,B,0,0,2.5,3.5,0,4.5,5.5,-6.5,0,7.5\nItem2=A,B,0,0,32768,-32769,0,2147483648,1e10,-"
      "3e9,0,3e9\n"};
  const auto rounded = LoadTip(fixture, "1");
  EXPECT_EQ(rounded.Field4, 2);
  EXPECT_EQ(rounded.Field5, 4);
  EXPECT_EQ(rounded.Field7, 4);
  EXPECT_EQ(rounded.Field8, 6);
  EXPECT_EQ(rounded.Field9, -6);
  EXPECT_EQ(rounded.Field11, 8);
  const auto large = LoadTip(fixture, "2");
  EXPECT_EQ(large.Field4, 0);
  EXPECT_EQ(large.Field5, 0);
  EXPECT_EQ(large.Field7, 0);
  EXPECT_EQ(large.Field8, 0);
  EXPECT_EQ(large.Field9, 0);
  EXPECT_EQ(large.Field11, 0);
}

TEST(TipTable, ReadsTextsRealsAndFlagsInTheirForms) {
  ConfigFixture fixture{
      "[TipType]\nItem1=\"A\"\"\",\"B\",1.5x,y,0,0,True,0,0,0,2.5x,0,1x,on,False,-1,2,T,S\"1\"\n"};
  const auto tip = LoadTip(fixture, "1");
  EXPECT_EQ(tip.Name, "A");
  EXPECT_EQ(tip.Code, "\"B\"");
  EXPECT_EQ(tip.Field2, 1.5);
  EXPECT_EQ(tip.Field3, 0.0);
  EXPECT_TRUE(tip.Field6);
  EXPECT_EQ(tip.Field10, 2.5);
  EXPECT_FALSE(tip.Field12);
  EXPECT_FALSE(tip.Field13);
  EXPECT_FALSE(tip.Field14);
  EXPECT_TRUE(tip.Field15);
  EXPECT_TRUE(tip.Field16);
  EXPECT_FALSE(tip.Field17);
  EXPECT_EQ(tip.Field18, "S1");
}

TEST(TipTable, ReadsEachValueInItsOwnForm) {
  ConfigFixture fixture{"[TipType]\nItem1=A,B,2x,3x,4x,5x,1x,7x,8x,9x,10x,11x,1x,1x,1x,1x,1x,1x,D\n"};
  const auto tip = LoadTip(fixture, "1");
  EXPECT_EQ(tip.Field2, 2.0);
  EXPECT_EQ(tip.Field3, 3.0);
  EXPECT_EQ(tip.Field4, 4);
  EXPECT_EQ(tip.Field5, 5);
  EXPECT_FALSE(tip.Field6);
  EXPECT_EQ(tip.Field7, 7);
  EXPECT_EQ(tip.Field8, 8);
  EXPECT_EQ(tip.Field9, 9);
  EXPECT_EQ(tip.Field10, 10.0);
  EXPECT_EQ(tip.Field11, 11);
  EXPECT_FALSE(tip.Field12);
  EXPECT_FALSE(tip.Field13);
  EXPECT_FALSE(tip.Field14);
  EXPECT_FALSE(tip.Field15);
  EXPECT_FALSE(tip.Field16);
  EXPECT_FALSE(tip.Field17);
}

TEST(TipTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(tipFile, [](ConfigFixture& fixture) {
    LoadTip(fixture, "1");
    TipTypeRecord tip;
    tip.ID = "5";
    SaveTipType(fixture.Config, tip, backup);
  });
}

}  // namespace
}  // namespace zolvane
