#include "config/tables/heights.h"

#include <gtest/gtest.h>

#include <string>

#include "config/config_fixture.h"

namespace zolvane {
namespace {

constexpr std::string_view heightFile =
    "[Z_Calibration]\n"
    "MountHeight=1.5\n"
    "StageHeightLower=2.25\n"
    "StageHeightUpper=3.125\n"
    "HeadDepth_1ch_Short=4\n"
    "Headdepth_1ch_Long=5\n"
    "HeadDepth_8ch=6\n"
    "HeadDepth_12ch=7\n"
    "HeadDepth_96_384=8\n"
    "HeadDepth_TeachTool_1Ch=9\n"
    "HeadDepth_TeachTool_96_384=10\n"
    "NestDepth_Y=11\n"
    "NestDepth_XY_6=12\n"
    "TipMountDepth12=13\n"
    "TipMountDepth30=14\n"
    "TipMountDepth125=15\n"
    "TipMountDepth300=16\n"
    "TipMountDepth1250=17\n"
    "CalibrationPlateDepth=18\n"
    "DeltaZ=-19.5\n"
    "DeltaZTolerance=750\n";

TEST(HeightTable, LoadsEveryMember) {
  ConfigFixture fixture{heightFile};
  const auto heights = Load(heightTable, fixture.Config);
  EXPECT_EQ(heights, (ZCalibrationRecord{.MountHeight = 1.5,
                                         .StageHeightLower = 2.25,
                                         .StageHeightUpper = 3.125,
                                         .HeadDepth_1ch_Short = 4.0,
                                         .Headdepth_1ch_Long = 5.0,
                                         .HeadDepth_8ch = 6.0,
                                         .HeadDepth_12ch = 7.0,
                                         .HeadDepth_96_384 = 8.0,
                                         .HeadDepth_TeachTool_1Ch = 9.0,
                                         .HeadDepth_TeachTool_96_384 = 10.0,
                                         .NestDepth_Y = 11.0,
                                         .NestDepth_XY_6 = 12.0,
                                         .TipMountDepth12 = 13.0,
                                         .TipMountDepth30 = 14.0,
                                         .TipMountDepth125 = 15.0,
                                         .TipMountDepth300 = 16.0,
                                         .TipMountDepth1250 = 17.0,
                                         .CalibrationPlateDepth = 18.0,
                                         .DeltaZ = -19.5,
                                         .DeltaZTolerance = 750.0}));
}

TEST(HeightTable, ReadsTheCalibrationPlateBeforeTheLargestTipsAndADefaultForTheToleranceAlone) {
  ConfigFixture fixture{heightFile};
  Load(heightTable, fixture.Config);
  EXPECT_EQ(fixture.Reads(), (Texts{
                                 "read [Z_Calibration] MountHeight",
                                 "read [Z_Calibration] StageHeightLower",
                                 "read [Z_Calibration] StageHeightUpper",
                                 "read [Z_Calibration] HeadDepth_1ch_Short",
                                 "read [Z_Calibration] Headdepth_1ch_Long",
                                 "read [Z_Calibration] HeadDepth_8ch",
                                 "read [Z_Calibration] HeadDepth_12ch",
                                 "read [Z_Calibration] HeadDepth_96_384",
                                 "read [Z_Calibration] HeadDepth_TeachTool_1Ch",
                                 "read [Z_Calibration] HeadDepth_TeachTool_96_384",
                                 "read [Z_Calibration] NestDepth_Y",
                                 "read [Z_Calibration] NestDepth_XY_6",
                                 "read [Z_Calibration] TipMountDepth12",
                                 "read [Z_Calibration] TipMountDepth30",
                                 "read [Z_Calibration] TipMountDepth125",
                                 "read [Z_Calibration] TipMountDepth300",
                                 "read [Z_Calibration] CalibrationPlateDepth",
                                 "read [Z_Calibration] TipMountDepth1250",
                                 "read [Z_Calibration] DeltaZ",
                                 "read [Z_Calibration] DeltaZTolerance default \"1000\"",
                             }));
}

TEST(HeightTable, SavesInTheOrderOfTheRecord) {
  ConfigFixture fixture{heightFile};
  Save(heightTable, fixture.Config, Load(heightTable, fixture.Config), backup);
  EXPECT_EQ(fixture.Settings.Text("/backup.bak"), heightFile);
  ASSERT_EQ(fixture.Writes().size(), 20U);
  EXPECT_EQ(fixture.Writes()[16], "write [Z_Calibration] TipMountDepth1250=17 in /backup.bak");
  EXPECT_EQ(fixture.Writes()[17], "write [Z_Calibration] CalibrationPlateDepth=18 in /backup.bak");
}

TEST(HeightTable, SavesInGeneralForm) {
  ConfigFixture fixture;
  const ZCalibrationRecord heights{.MountHeight = 0.1 + 0.2, .NestDepth_Y = 1e20, .DeltaZ = -0.00001};
  Save(heightTable, fixture.Config, heights, backup);
  EXPECT_EQ(fixture.Settings.Value("Z_Calibration", "MountHeight", backup), "0.3");
  EXPECT_EQ(fixture.Settings.Value("Z_Calibration", "DeltaZ", backup), "-1E-05");
  EXPECT_EQ(fixture.Settings.Value("Z_Calibration", "NestDepth_Y", backup), "1E+20");
  EXPECT_EQ(fixture.Settings.Value("Z_Calibration", "DeltaZTolerance", backup), "0");
}

TEST(HeightTable, AnEmptySectionIsZeroButForTheTolerance) {
  ConfigFixture fixture{"[Z_Calibration]\n"};
  const auto heights = Load(heightTable, fixture.Config);
  EXPECT_EQ(heights, (ZCalibrationRecord{.DeltaZTolerance = 1000.0}));
  Save(heightTable, fixture.Config, heights, backup);
  for (const auto* key :
       {"MountHeight", "StageHeightLower", "StageHeightUpper", "HeadDepth_1ch_Short", "Headdepth_1ch_Long",
        "HeadDepth_8ch", "HeadDepth_12ch", "HeadDepth_96_384", "HeadDepth_TeachTool_1Ch",
        "HeadDepth_TeachTool_96_384", "NestDepth_Y", "NestDepth_XY_6", "TipMountDepth12", "TipMountDepth30",
        "TipMountDepth125", "TipMountDepth300", "TipMountDepth1250", "CalibrationPlateDepth", "DeltaZ"}) {
    EXPECT_EQ(fixture.Settings.Value("Z_Calibration", key, backup), "0") << key;
  }
  EXPECT_EQ(fixture.Settings.Value("Z_Calibration", "DeltaZTolerance", backup), "1000");
}

TEST(HeightTable, TheToleranceOfAnEmptyKeyIsZero) {
  ConfigFixture fixture{"[Z_Calibration]\nDeltaZTolerance=\n"};
  EXPECT_EQ(Load(heightTable, fixture.Config).DeltaZTolerance, 0.0);
}

TEST(HeightTable, ReadsLeadingNumbers) {
  ConfigFixture fixture{
      "[Z_Calibration]\nDeltaZ=abc\nMountHeight=1.5mm\nNestDepth_Y= -2.5e1 mm\nDeltaZTolerance=x\n"};
  const auto heights = Load(heightTable, fixture.Config);
  EXPECT_EQ(heights.DeltaZ, 0.0);
  EXPECT_EQ(heights.MountHeight, 1.5);
  EXPECT_EQ(heights.NestDepth_Y, -25.0);
  EXPECT_EQ(heights.DeltaZTolerance, 0.0);
}

TEST(HeightTable, ReadsEveryHeightAsALeadingNumber) {
  ConfigFixture fixture;
  for (const auto* key : {"MountHeight",
                          "StageHeightLower",
                          "StageHeightUpper",
                          "HeadDepth_1ch_Short",
                          "Headdepth_1ch_Long",
                          "HeadDepth_8ch",
                          "HeadDepth_12ch",
                          "HeadDepth_96_384",
                          "HeadDepth_TeachTool_1Ch",
                          "HeadDepth_TeachTool_96_384",
                          "NestDepth_Y",
                          "NestDepth_XY_6",
                          "TipMountDepth12",
                          "TipMountDepth30",
                          "TipMountDepth125",
                          "TipMountDepth300",
                          "TipMountDepth1250",
                          "CalibrationPlateDepth",
                          "DeltaZ",
                          "DeltaZTolerance"}) {
    fixture.Settings.Set("Z_Calibration", key, "1.5mm");
  }
  Save(heightTable, fixture.Config, Load(heightTable, fixture.Config), backup);
  ASSERT_EQ(fixture.Writes().size(), 20U);
  for (const auto& write : fixture.Writes()) {
    EXPECT_NE(write.find("=1.5 in "), std::string::npos) << write;
  }
}

TEST(HeightTable, ReadsAndWritesTheFileItIsGiven) {
  ConfigFixture fixture{heightFile};
  EXPECT_EQ(Load(heightTable, fixture.Config, "/none.bak").MountHeight, 0.0);
  EXPECT_EQ(Load(heightTable, fixture.Config, "/none.bak").DeltaZTolerance, 1000.0);
  Save(heightTable, fixture.Config, {}, "/other.bak");
  EXPECT_EQ(fixture.Settings.Text(), heightFile);
}

TEST(HeightTable, LoadsWithoutTouchingTheHeightsInForce) {
  ConfigFixture fixture{heightFile};
  fixture.Config.Current.Heights.MountHeight = 7.0;
  Load(heightTable, fixture.Config);
  EXPECT_EQ(fixture.Config.Current.Heights.MountHeight, 7.0);
}

TEST(HeightTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(heightTable, heightFile);
}

TEST(HeightTable, AFailedReadLeavesItsMemberZero) {
  ConfigFixture fixture{heightFile};
  fixture.Calls.FailEverythingThatStartsWith("read [Z_Calibration] DeltaZ");
  const auto heights = Load(heightTable, fixture.Config);
  EXPECT_EQ(heights.DeltaZ, 0.0);
  EXPECT_EQ(heights.DeltaZTolerance, 0.0);
  EXPECT_EQ(heights.CalibrationPlateDepth, 18.0);
}

TEST(HeightTable, AFailedWriteKeepsTheOldValueAndWritesTheRest) {
  ConfigFixture fixture{heightFile};
  fixture.Calls.FailEverythingThatStartsWith("write [Z_Calibration] MountHeight");
  Save(heightTable, fixture.Config, {}, fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Value("Z_Calibration", "MountHeight"), "1.5");
  EXPECT_EQ(fixture.Settings.Value("Z_Calibration", "StageHeightLower"), "0");
}

}  // namespace
}  // namespace zolvane
