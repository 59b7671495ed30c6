#include "config/tables/heads.h"

#include <gtest/gtest.h>

#include <string>

#include "config/config_fixture.h"

namespace zolvane {
namespace {

std::string SavedHead(ConfigFixture& fixture, const HeadTypeRecord& head) {
  Save(headTable, fixture.Config, head, backup);
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
  const auto head = Load(headTable, fixture.Config, "1");
  EXPECT_EQ(head, (HeadTypeRecord{.ID = "1",
                                  .Name = "96-Channel",
                                  .Code = "MICROTITER",
                                  .Field2 = 300.0,
                                  .TipVolume = 299.5,
                                  .Field4 = 5.25,
                                  .Channels = 96,
                                  .Field6 = 0.0625,
                                  .Field7 = true,
                                  .Field9 = true,
                                  .HeadEjectS = 77,
                                  .HeadLockS = 81,
                                  .DropOffZ = 11840.25,
                                  .PickUpZ = 12265.75,
                                  .ChannelCode = "96_CH",
                                  .AspirateOrigin = 1180,
                                  .TipEjectS = 31.5,
                                  .Tag = "5A4C"}));
}

TEST(HeadTable, LoadsTheOtherFlagsAndTheOffsetsOfASerialDiluteHead) {
  ConfigFixture fixture{headFile};
  const auto head = LoadInstalled(headTable, fixture.Config);
  EXPECT_EQ(head, (HeadTypeRecord{.ID = "12",
                                  .Name = "8-Channel",
                                  .Code = "SERIALDILUTE",
                                  .Field2 = 1250.0,
                                  .TipVolume = 300.0,
                                  .Field4 = 20.0,
                                  .Channels = 8,
                                  .Field6 = 0.25,
                                  .Field8 = true,
                                  .HeadEjectS = 1600,
                                  .HeadLockS = 380,
                                  .DropOffZ = 10192.0,
                                  .PickUpZ = 10624.0,
                                  .ChannelCode = "8_CH",
                                  .Field17 = true,
                                  .AspirateOrigin = 1450,
                                  .TipEjectS = 27.8,
                                  .Tag = "2032",
                                  .SDTeachToolOffsetMM = 15.0,
                                  .SDHomeSensorSeekOffsetMM = 48.0,
                                  .SDPreCollectHeightMM = 600.0,
                                  .SDRFIDReadHeightMM = 1725.0,
                                  .SDHeadEjectOffsetMM = 30.0}));
}

TEST(HeadTable, SavesEveryMemberInTheOrderOfTheLine) {
  ConfigFixture fixture;
  const HeadTypeRecord head{.ID = "3",
                            .Name = "New",
                            .Code = "MICROTITER",
                            .Field2 = 2.125,
                            .TipVolume = 12.5,
                            .Field4 = 1.0 / 3.0,
                            .Channels = -384,
                            .Field6 = 0.00001,
                            .Field8 = true,
                            .HeadEjectS = 1010,
                            .HeadLockS = -11,
                            .DropOffZ = 14.25,
                            .PickUpZ = -15.75,
                            .ChannelCode = "384_CH",
                            .Field17 = true,
                            .AspirateOrigin = 1212,
                            .TipEjectS = 13.5,
                            .TipMountDepth = 99.0,
                            .Tag = "TAG"};
  EXPECT_EQ(SavedHead(fixture, head),
            "\"New\",MICROTITER,2.125,12.5,0.333333333333333,-384,1E-05,0,1,0,0,-11,1212,13.5,14.25,-15.75,"
            "384_CH,1,"
            "\"TAG\"");
}

TEST(HeadTable, SavesTheOtherFlags) {
  ConfigFixture fixture;
  const HeadTypeRecord head{.ID = "3", .Field7 = true, .Field9 = true};
  EXPECT_EQ(SavedHead(fixture, head), "\"\",,0,0,0,0,0,1,0,1,0,0,0,0,0,0,,0,\"\"");
}

TEST(HeadTable, SavesTheLineAndNoKey) {
  ConfigFixture fixture{headFile};
  Save(headTable, fixture.Config, LoadInstalled(headTable, fixture.Config), backup);
  EXPECT_EQ(
      fixture.Writes(),
      Texts{"write [HeadType] Item12=\"8-Channel\",SERIALDILUTE,1250,300,20,8,0.25,0,1,0,1480,380,1450,27.8,"
            "10192,10624,8_CH,1,\"2032\" in /backup.bak"});
}

TEST(HeadTable, ReadsTheLineAloneForOtherHeads) {
  ConfigFixture fixture{headFile};
  Load(headTable, fixture.Config, "1");
  EXPECT_EQ(fixture.Reads(), Texts{"read [HeadType] Item1"});
}

TEST(HeadTable, ReadsTheOffsetsInOrderAndTheLastFourInTheirOwnSpelling) {
  ConfigFixture fixture{headFile};
  LoadInstalled(headTable, fixture.Config);
  EXPECT_EQ(
      fixture.Reads(),
      (Texts{"read [HeadType] Installed", "read [HeadType] Item12", "read [HeadType] SDTeachToolOffsetMM",
             "read [Headtype] SDHomeSensorSeekOffsetMM", "read [Headtype] SDPreCollectHeightMM",
             "read [Headtype] SDRFIDReadHeightMM", "read [Headtype] SDHeadEjectOffsetMM"}));
}

TEST(HeadTable, TheShortTeachToolHasTheOffsetsToo) {
  ConfigFixture fixture{headFile};
  const auto head = Load(headTable, fixture.Config, "20");
  EXPECT_EQ(head.SDTeachToolOffsetMM, 15.0);
  EXPECT_EQ(head.SDHeadEjectOffsetMM, 30.0);
  EXPECT_EQ(SavedHead(fixture, head),
            "\"Teach\",CALIBRATE,0,0,0,1,0,0,0,0,1530,380,1500,0,10340,10768,1_CH_SHORT,0,\"3011\"");
}

TEST(HeadTable, TheLongTeachToolHasNoOffsets) {
  ConfigFixture fixture{headFile};
  const auto head = Load(headTable, fixture.Config, "21");
  EXPECT_EQ(head, (HeadTypeRecord{.ID = "21",
                                  .Name = "Teach long",
                                  .Code = "CALIBRATE",
                                  .Channels = 1,
                                  .HeadEjectS = 1650,
                                  .HeadLockS = 380,
                                  .DropOffZ = 10340.0,
                                  .PickUpZ = 10768.0,
                                  .ChannelCode = "1_CH_LONG",
                                  .AspirateOrigin = 1500,
                                  .Tag = "3012"}));
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
  const auto head = Load(headTable, fixture.Config, "1");
  EXPECT_EQ(head.Code, "\"SERIALDILUTE\"");
  EXPECT_EQ(head.ChannelCode, " 8_CH");
  EXPECT_EQ(head.Tag, "xy");
  EXPECT_EQ(head.SDTeachToolOffsetMM, 0.0);
}

TEST(HeadTable, ConvertsAnOffsetFromMillimetresToWholeSteps) {
  ConfigFixture fixture{
      "[HeadType]\nItem1=A,SERIALDILUTE\nSDPreCollectHeightMM=10\nSDTeachToolOffsetMM=10\n"};
  EXPECT_EQ(Load(headTable, fixture.Config, "1").SDPreCollectHeightMM, 500.0);
  EXPECT_EQ(Load(headTable, fixture.Config, "1").SDTeachToolOffsetMM, 200.0);
  fixture.Config.Current.Axes.Z.UnitsPerStep = 0.03F;
  fixture.Config.Current.Axes.S.UnitsPerStep = 0.06F;
  EXPECT_EQ(Load(headTable, fixture.Config, "1").SDPreCollectHeightMM, 333.0);
  EXPECT_EQ(Load(headTable, fixture.Config, "1").SDTeachToolOffsetMM, 167.0);
}

TEST(HeadTable, RoundsOffsetsHalfAwayFromZero) {
  ConfigFixture fixture{
      "[HeadType]\nItem1=A,SERIALDILUTE\nSDPreCollectHeightMM=1.25\nSDRFIDReadHeightMM=-1.25\n"
      "SDTeachToolOffsetMM=-0.1\n"};
  fixture.Config.Current.Axes.Z.UnitsPerStep = 0.5F;
  fixture.Config.Current.Axes.S.UnitsPerStep = 0.5F;
  const auto head = Load(headTable, fixture.Config, "1");
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
  const auto head = Load(headTable, fixture.Config, "1");
  EXPECT_EQ(head, (HeadTypeRecord{.ID = "1",
                                  .Name = "A",
                                  .Code = "SERIALDILUTE",
                                  .SDTeachToolOffsetMM = 8.0,
                                  .SDHomeSensorSeekOffsetMM = 16.0,
                                  .SDPreCollectHeightMM = 12.0,
                                  .SDRFIDReadHeightMM = 16.0,
                                  .SDHeadEjectOffsetMM = 40.0}));
}

TEST(HeadTable, AnOffsetThatIsMissingEmptyOrNoNumberStaysZero) {
  ConfigFixture fixture{
      "[HeadType]\nItem1=A,SERIALDILUTE\nSDTeachToolOffsetMM=\nSDHomeSensorSeekOffsetMM=2.5mm\n"
      "SDPreCollectHeightMM=abc\nSDHeadEjectOffsetMM=5\n"};
  const auto head = Load(headTable, fixture.Config, "1");
  EXPECT_EQ(head,
            (HeadTypeRecord{.ID = "1", .Name = "A", .Code = "SERIALDILUTE", .SDHeadEjectOffsetMM = 100.0}));
}

TEST(HeadTable, AnAxisFactorOfZeroLeavesItsOffsetsZero) {
  ConfigFixture fixture{headFile};
  fixture.Config.Current.Axes.Z.UnitsPerStep = 0.0F;
  auto head = LoadInstalled(headTable, fixture.Config);
  EXPECT_EQ(head.SDPreCollectHeightMM, 0.0);
  EXPECT_EQ(head.SDRFIDReadHeightMM, 0.0);
  EXPECT_EQ(head.SDHeadEjectOffsetMM, 30.0);
  fixture.Config.Current.Axes.S.UnitsPerStep = 0.0F;
  head = LoadInstalled(headTable, fixture.Config);
  EXPECT_EQ(head.SDTeachToolOffsetMM, 0.0);
  EXPECT_EQ(head.SDHomeSensorSeekOffsetMM, 0.0);
  EXPECT_EQ(head.SDHeadEjectOffsetMM, 0.0);
}

TEST(HeadTable, ReadsTheOffsetsFromTheFileItIsGivenWithTheFactorsInForce) {
  ConfigFixture fixture{headFile};
  fixture.Settings.Load("/other.bak",
                        "[HeadType]\nInstalled=2\nItem2=A,SERIALDILUTE\nSDHeadEjectOffsetMM=4\n");
  const auto head = LoadInstalled(headTable, fixture.Config, "/other.bak");
  EXPECT_EQ(head.ID, "2");
  EXPECT_EQ(head.SDHeadEjectOffsetMM, 80.0);
  EXPECT_EQ(head.SDTeachToolOffsetMM, 0.0);
  EXPECT_EQ(fixture.Reads().back(), "read [Headtype] SDHeadEjectOffsetMM in /other.bak");
}

TEST(HeadTable, DoesNotRefreshOffsetsWhenTheAxesChangeLater) {
  ConfigFixture fixture{headFile};
  const auto head = LoadInstalled(headTable, fixture.Config);
  fixture.Config.Current.Axes.S.UnitsPerStep = 1.0F;
  EXPECT_EQ(head.SDHeadEjectOffsetMM, 30.0);
  EXPECT_TRUE(SavedHead(fixture, head).find(",1480,380,") != std::string::npos);
}

// The head-eject position of the file is derived, so the member that the line was loaded into is lost on
// saving.
TEST(HeadTable, NeverSavesTheHeadEjectPositionItHolds) {
  ConfigFixture fixture;
  HeadTypeRecord head{.ID = "1",
                      .Code = "SERIALDILUTE",
                      .HeadEjectS = 4711,
                      .AspirateOrigin = 1450,
                      .SDHeadEjectOffsetMM = 30.5};
  EXPECT_EQ(SavedHead(fixture, head), "\"\",SERIALDILUTE,0,0,0,0,0,0,0,0,1480.5,0,1450,0,0,0,,0,\"\"");
  head.Code = "MICROTITER";
  EXPECT_EQ(SavedHead(fixture, head), "\"\",MICROTITER,0,0,0,0,0,0,0,0,0,0,1450,0,0,0,,0,\"\"");
}

TEST(HeadTable, TheHeadEjectPositionIsASumOfRealsInGeneralForm) {
  ConfigFixture fixture;
  HeadTypeRecord head{
      .ID = "1", .Code = "SERIALDILUTE", .AspirateOrigin = 2147483647, .SDHeadEjectOffsetMM = 10.0};
  EXPECT_EQ(SavedHead(fixture, head),
            "\"\",SERIALDILUTE,0,0,0,0,0,0,0,0,2147483657,0,2147483647,0,0,0,,0,\"\"");
  head.SDHeadEjectOffsetMM = 2e15;
  EXPECT_EQ(SavedHead(fixture, head),
            "\"\",SERIALDILUTE,0,0,0,0,0,0,0,0,2.00000214748365E+15,0,2147483647,0,0,0,,0,\"\"");
  fixture.Settings.Set("HeadType", "Item1", SavedHead(fixture, head));
  EXPECT_EQ(Load(headTable, fixture.Config, "1").HeadEjectS, 0);
}

TEST(HeadTable, RoundsWholeNumbersHalfToEven) {
  ConfigFixture fixture{"[HeadType]\nItem1=A,B,1,1,1,8.5,1,0,0,0,2.5,3.5,-4.5\n"};
  const auto head = Load(headTable, fixture.Config, "1");
  EXPECT_EQ(head.Channels, 8);
  EXPECT_EQ(head.HeadEjectS, 2);
  EXPECT_EQ(head.HeadLockS, 4);
  EXPECT_EQ(head.AspirateOrigin, -4);
}

TEST(HeadTable, KeepsZeroForNumbersThatDoNotFit) {
  ConfigFixture fixture{"[HeadType]\nItem1=A,B,1e309,1,1,32768,1,0,0,0,2147483648,3e9,-2147483649\n"};
  const auto head = Load(headTable, fixture.Config, "1");
  EXPECT_EQ(head, (HeadTypeRecord{
                      .ID = "1", .Name = "A", .Code = "B", .TipVolume = 1.0, .Field4 = 1.0, .Field6 = 1.0}));
}

TEST(HeadTable, ReadsRealsAsLeadingNumbersAndFlagsAsWordsOrNumbers) {
  ConfigFixture fixture{"[HeadType]\nItem1=A,B,2.5ul,x,1E-05,,0.25 mm,True,1x,-1,,,,,abc,7.5z,C,yes,D\n"};
  const auto head = Load(headTable, fixture.Config, "1");
  EXPECT_EQ(head, (HeadTypeRecord{.ID = "1",
                                  .Name = "A",
                                  .Code = "B",
                                  .Field2 = 2.5,
                                  .Field4 = 0.00001,
                                  .Field6 = 0.25,
                                  .Field7 = true,
                                  .Field9 = true,
                                  .PickUpZ = 7.5,
                                  .ChannelCode = "C",
                                  .Tag = "D"}));
}

TEST(HeadTable, ReadsEachValueInItsOwnForm) {
  ConfigFixture fixture{"[HeadType]\nItem1=A,B,2x,3x,4x,5x,6x,1x,1x,1x,10x,11x,12x,13x,14x,15x,C,1x,D\n"};
  const auto head = Load(headTable, fixture.Config, "1");
  EXPECT_EQ(head, (HeadTypeRecord{.ID = "1",
                                  .Name = "A",
                                  .Code = "B",
                                  .Field2 = 2.0,
                                  .TipVolume = 3.0,
                                  .Field4 = 4.0,
                                  .Channels = 5,
                                  .Field6 = 6.0,
                                  .HeadEjectS = 10,
                                  .HeadLockS = 11,
                                  .DropOffZ = 14.0,
                                  .PickUpZ = 15.0,
                                  .ChannelCode = "C",
                                  .AspirateOrigin = 12,
                                  .TipEjectS = 13.0,
                                  .Tag = "D"}));
}

TEST(HeadTable, AMissingLineLeavesTheNumberAlone) {
  ConfigFixture fixture{headFile};
  const auto head = Load(headTable, fixture.Config, "99");
  EXPECT_EQ(head.ID, "99");
  EXPECT_EQ(head.Name, "");
  EXPECT_EQ(head.TipMountDepth, 0.0);
  EXPECT_EQ(fixture.Reads(), Texts{"read [HeadType] Item99"});
}

TEST(HeadTable, PassesEveryFailedOffsetOver) {
  ConfigFixture clean{headFile};
  LoadInstalled(headTable, clean.Config);
  for (const auto* key : {"SDTeach", "SDHome", "SDPre", "SDRFID", "SDHead"}) {
    ConfigFixture fixture{headFile};
    fixture.Calls.FailsIf = [key](std::string_view event) {
      return event.find(key) != std::string_view::npos;
    };
    const auto head = LoadInstalled(headTable, fixture.Config);
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
  Save(headTable, fixture.Config, LoadInstalled(headTable, fixture.Config), fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), headFile);
}

// ---- Tip mount depths ----

ZCalibrationRecord Depths() {
  const ZCalibrationRecord heights{.TipMountDepth12 = 4.5,
                                   .TipMountDepth30 = 4.75,
                                   .TipMountDepth125 = 5.5,
                                   .TipMountDepth300 = 6.25,
                                   .TipMountDepth1250 = 8.5};
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
  EXPECT_EQ(Load(headTable, fixture.Config, "1").TipMountDepth, 6.25);
  EXPECT_EQ(Load(headTable, fixture.Config, "2").TipMountDepth, 0.0);
  EXPECT_EQ(Load(headTable, fixture.Config, "3").TipMountDepth, 4.5);
}

}  // namespace
}  // namespace zolvane
