#include "config/tables/height_tables.h"

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
  const auto heights = LoadZCalibration(fixture.Config, "");
  EXPECT_EQ(heights.MountHeight, 1.5);
  EXPECT_EQ(heights.StageHeightLower, 2.25);
  EXPECT_EQ(heights.StageHeightUpper, 3.125);
  EXPECT_EQ(heights.HeadDepth_1ch_Short, 4.0);
  EXPECT_EQ(heights.Headdepth_1ch_Long, 5.0);
  EXPECT_EQ(heights.HeadDepth_8ch, 6.0);
  EXPECT_EQ(heights.HeadDepth_12ch, 7.0);
  EXPECT_EQ(heights.HeadDepth_96_384, 8.0);
  EXPECT_EQ(heights.HeadDepth_TeachTool_1Ch, 9.0);
  EXPECT_EQ(heights.HeadDepth_TeachTool_96_384, 10.0);
  EXPECT_EQ(heights.NestDepth_Y, 11.0);
  EXPECT_EQ(heights.NestDepth_XY_6, 12.0);
  EXPECT_EQ(heights.TipMountDepth12, 13.0);
  EXPECT_EQ(heights.TipMountDepth30, 14.0);
  EXPECT_EQ(heights.TipMountDepth125, 15.0);
  EXPECT_EQ(heights.TipMountDepth300, 16.0);
  EXPECT_EQ(heights.TipMountDepth1250, 17.0);
  EXPECT_EQ(heights.CalibrationPlateDepth, 18.0);
  EXPECT_EQ(heights.DeltaZ, -19.5);
  EXPECT_EQ(heights.DeltaZTolerance, 750.0);
}

TEST(HeightTable, ReadsTheCalibrationPlateBeforeTheLargestTipsAndADefaultForTheToleranceAlone) {
  ConfigFixture fixture{heightFile};
  LoadZCalibration(fixture.Config, "");
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
  SaveZCalibration(fixture.Config, LoadZCalibration(fixture.Config, ""), backup);
  EXPECT_EQ(fixture.Settings.Text("/backup.bak"), heightFile);
  ASSERT_EQ(fixture.Writes().size(), 20U);
  EXPECT_EQ(fixture.Writes()[16], "write [Z_Calibration] TipMountDepth1250=17 in /backup.bak");
  EXPECT_EQ(fixture.Writes()[17], "write [Z_Calibration] CalibrationPlateDepth=18 in /backup.bak");
}

TEST(HeightTable, SavesInGeneralForm) {
  ConfigFixture fixture;
  ZCalibrationRecord heights;
  heights.MountHeight = 0.1 + 0.2;
  heights.DeltaZ = -0.00001;
  heights.NestDepth_Y = 1e20;
  SaveZCalibration(fixture.Config, heights, backup);
  EXPECT_EQ(fixture.Settings.Value("Z_Calibration", "MountHeight", backup), "0.3");
  EXPECT_EQ(fixture.Settings.Value("Z_Calibration", "DeltaZ", backup), "-1E-05");
  EXPECT_EQ(fixture.Settings.Value("Z_Calibration", "NestDepth_Y", backup), "1E+20");
  EXPECT_EQ(fixture.Settings.Value("Z_Calibration", "DeltaZTolerance", backup), "0");
}

TEST(HeightTable, AnEmptySectionIsZeroButForTheTolerance) {
  ConfigFixture fixture{"[Z_Calibration]\n"};
  const auto heights = LoadZCalibration(fixture.Config, "");
  EXPECT_EQ(heights.MountHeight, 0.0);
  EXPECT_EQ(heights.TipMountDepth1250, 0.0);
  EXPECT_EQ(heights.CalibrationPlateDepth, 0.0);
  EXPECT_EQ(heights.DeltaZ, 0.0);
  EXPECT_EQ(heights.DeltaZTolerance, 1000.0);
  SaveZCalibration(fixture.Config, heights, backup);
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
  EXPECT_EQ(LoadZCalibration(fixture.Config, "").DeltaZTolerance, 0.0);
}

TEST(HeightTable, ReadsLeadingNumbers) {
  ConfigFixture fixture{
      "[Z_Calibration]\nDeltaZ=abc\nMountHeight=1.5mm\nNestDepth_Y= -2.5e1 mm\nDeltaZTolerance=x\n"};
  const auto heights = LoadZCalibration(fixture.Config, "");
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
  SaveZCalibration(fixture.Config, LoadZCalibration(fixture.Config, ""), backup);
  ASSERT_EQ(fixture.Writes().size(), 20U);
  for (const auto& write : fixture.Writes()) {
    EXPECT_NE(write.find("=1.5 in "), std::string::npos) << write;
  }
}

TEST(HeightTable, ReadsAndWritesTheFileItIsGiven) {
  ConfigFixture fixture{heightFile};
  EXPECT_EQ(LoadZCalibration(fixture.Config, "/none.bak").MountHeight, 0.0);
  EXPECT_EQ(LoadZCalibration(fixture.Config, "/none.bak").DeltaZTolerance, 1000.0);
  SaveZCalibration(fixture.Config, {}, "/other.bak");
  EXPECT_EQ(fixture.Settings.Text(), heightFile);
}

TEST(HeightTable, LoadsWithoutTouchingTheHeightsInForce) {
  ConfigFixture fixture{heightFile};
  fixture.Config.Current.Heights.MountHeight = 7.0;
  LoadZCalibration(fixture.Config, "");
  EXPECT_EQ(fixture.Config.Current.Heights.MountHeight, 7.0);
}

TEST(HeightTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(heightFile, [](ConfigFixture& fixture) {
    LoadZCalibration(fixture.Config, "");
    SaveZCalibration(fixture.Config, {}, backup);
  });
}

TEST(HeightTable, AFailedReadLeavesItsMemberZero) {
  ConfigFixture fixture{heightFile};
  fixture.Calls.FailEverythingThatStartsWith("read [Z_Calibration] DeltaZ");
  const auto heights = LoadZCalibration(fixture.Config, "");
  EXPECT_EQ(heights.DeltaZ, 0.0);
  EXPECT_EQ(heights.DeltaZTolerance, 0.0);
  EXPECT_EQ(heights.CalibrationPlateDepth, 18.0);
}

TEST(HeightTable, AFailedWriteKeepsTheOldValueAndWritesTheRest) {
  ConfigFixture fixture{heightFile};
  fixture.Calls.FailEverythingThatStartsWith("write [Z_Calibration] MountHeight");
  SaveZCalibration(fixture.Config, {}, fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Value("Z_Calibration", "MountHeight"), "1.5");
  EXPECT_EQ(fixture.Settings.Value("Z_Calibration", "StageHeightLower"), "0");
}

// ---- Nest calibration ----

constexpr std::string_view nestFile =
    "[NestCalibration]\n"
    "Item1=NEST8,2,3,4,5,6,-7\n"
    "Item2=\"NEST12\",20,30,40,50,60,70\n";

TEST(NestCalibrationTable, LoadsEveryMemberTimesTheFactor) {
  ConfigFixture fixture{nestFile};
  fixture.SetFactor(7.0);
  const auto record = LoadNestCalibration(fixture.Config, "1", "", "");
  EXPECT_EQ(record.Key, "1");
  EXPECT_EQ(record.Name, "NEST8");
  EXPECT_EQ(record.Value1, 14);
  EXPECT_EQ(record.Value2, 21);
  EXPECT_EQ(record.Value3, 28);
  EXPECT_EQ(record.Value4, 35);
  EXPECT_EQ(record.Value5, 42);
  EXPECT_EQ(record.Value6, -49);
}

TEST(NestCalibrationTable, SavesEveryMemberDividedByTheFactor) {
  ConfigFixture fixture;
  fixture.Config.Current.Device.Name = "A";
  NestCalibrationRecord record;
  record.Key = "4";
  record.Name = "NESTY";
  record.Value1 = 3;
  record.Value2 = -3;
  record.Value3 = 40;
  record.Value4 = 51;
  record.Value5 = 60;
  record.Value6 = 71;
  SaveNestCalibration(fixture.Config, record, backup);
  EXPECT_EQ(fixture.Writes(), Texts{"write [NestCalibration] Item4=NESTY,2,-2,20,26,30,36 in /backup.bak"});
}

TEST(NestCalibrationTable, AShortLineLeavesZerosThatAreSaved) {
  ConfigFixture fixture{"[NestCalibration]\nItem1=A,10\n"};
  const auto record = LoadNestCalibration(fixture.Config, "1", "", "");
  EXPECT_EQ(record.Value1, 20);
  EXPECT_EQ(record.Value2, 0);
  EXPECT_EQ(record.Value6, 0);
  SaveNestCalibration(fixture.Config, record, fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), "[NestCalibration]\nItem1=A,10,0,0,0,0,0\n");
}

TEST(NestCalibrationTable, KeepsTheQuotesOfAName) {
  ConfigFixture fixture{nestFile};
  const auto record = LoadNestCalibration(fixture.Config, "2", "", "");
  EXPECT_EQ(record.Name, "\"NEST12\"");
  SaveNestCalibration(fixture.Config, record, fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), nestFile);
}

TEST(NestCalibrationTable, RoundsHalfAwayFromZeroOnLoading) {
  ConfigFixture fixture{"[NestCalibration]\nItem1=A,2.5,-2.5,3.5,0.4,1.5mm,x\n"};
  fixture.SetFactor(1.0);
  const auto record = LoadNestCalibration(fixture.Config, "1", "", "");
  EXPECT_EQ(record.Value1, 3);
  EXPECT_EQ(record.Value2, -3);
  EXPECT_EQ(record.Value3, 4);
  EXPECT_EQ(record.Value4, 0);
  EXPECT_EQ(record.Value5, 2);
  EXPECT_EQ(record.Value6, 0);
}

TEST(NestCalibrationTable, ReadsEachFieldInItsOwnForm) {
  ConfigFixture fixture{"[NestCalibration]\nItem1=\"A\",2.5x,2.5x,2.5x,2.5x,2.5x,2.5x\n"};
  fixture.SetFactor(1.0);
  SaveNestCalibration(fixture.Config, LoadNestCalibration(fixture.Config, "1", "", ""), backup);
  EXPECT_EQ(fixture.Settings.Value("NestCalibration", "Item1", backup), "\"A\",3,3,3,3,3,3");
}

TEST(NestCalibrationTable, AFactorOfZeroLeavesTheValuesEmptyOnSaving) {
  ConfigFixture fixture;
  fixture.SetFactor(0.0);
  NestCalibrationRecord record;
  record.Key = "1";
  record.Name = "A";
  record.Value6 = 5;
  SaveNestCalibration(fixture.Config, record, backup);
  EXPECT_EQ(fixture.Settings.Value("NestCalibration", "Item1", backup), "A");
}

TEST(NestCalibrationTable, WritesAnEmptyValueWhenNothingIsLeftOfTheLine) {
  ConfigFixture fixture;
  fixture.SetFactor(0.0);
  NestCalibrationRecord record;
  record.Key = "1";
  SaveNestCalibration(fixture.Config, record, backup);
  EXPECT_EQ(fixture.Writes(), Texts{"write [NestCalibration] Item1= in /backup.bak"});
}

TEST(NestCalibrationTable, KeepsZeroForValuesThatDoNotFit) {
  ConfigFixture fixture{"[NestCalibration]\nItem1=A,1073741824,3\n"};
  EXPECT_EQ(LoadNestCalibration(fixture.Config, "1", "", "").Value1, 0);
  EXPECT_EQ(LoadNestCalibration(fixture.Config, "1", "", "").Value2, 6);
}

TEST(NestCalibrationTable, AMissingItemCarriesTheNumberItWasAskedForBy) {
  ConfigFixture fixture{nestFile};
  const auto record = LoadNestCalibration(fixture.Config, "3", "", "");
  EXPECT_EQ(record.Key, "3");
  EXPECT_EQ(record.Name, "");
  EXPECT_EQ(record.Value1, 0);
}

TEST(NestCalibrationTable, ReadsTheItemOfTheFileItIsGiven) {
  ConfigFixture fixture{nestFile};
  fixture.Settings.Load("/other.bak", "[NestCalibration]\nItem1=OTHER,5\n");
  EXPECT_EQ(LoadNestCalibration(fixture.Config, "1", "", "/other.bak").Name, "OTHER");
  EXPECT_EQ(LoadNestCalibration(fixture.Config, "1", "\"NEST12\"", "").Name, "NEST8");
}

TEST(NestCalibrationTable, FindsARecordByItsNameInTheConfigurationFile) {
  ConfigFixture fixture{nestFile};
  fixture.Settings.Load("/other.bak", "[NestCalibration]\nItem1=\"NEST12\",1\n");
  const auto record = LoadNestCalibration(fixture.Config, "", "\"NEST12\"", "/other.bak");
  EXPECT_EQ(record.Key, "2");
  EXPECT_EQ(record.Value1, 40);
  EXPECT_EQ(fixture.Reads(), (Texts{"read [NestCalibration] Item1", "read [NestCalibration] Item2"}));
}

TEST(NestCalibrationTable, ComparesNamesToTheLetter) {
  ConfigFixture fixture{"[NestCalibration]\nItem1=nest8\nItem2=NEST8 \nItem3=NEST8\n"};
  EXPECT_EQ(LoadNestCalibration(fixture.Config, "", "NEST8", "").Key, "3");
}

TEST(NestCalibrationTable, GivesTheFirstNamelessRecordWhenNoneMatches) {
  ConfigFixture fixture{"[NestCalibration]\nItem1=A,1\nItem2=,5\nItem3=B,7\n"};
  const auto record = LoadNestCalibration(fixture.Config, "", "B", "");
  EXPECT_EQ(record.Key, "2");
  EXPECT_EQ(record.Value1, 10);
}

TEST(NestCalibrationTable, ANameOfTwoQuotesIsNotTheEnd) {
  ConfigFixture fixture{"[NestCalibration]\nItem1=\"\",1\nItem2=B,7\n"};
  EXPECT_EQ(LoadNestCalibration(fixture.Config, "", "B", "").Key, "2");
}

TEST(NestCalibrationTable, WithoutItemAndNameReadsNothing) {
  ConfigFixture fixture{"[NestCalibration]\nItem=A,1\n"};
  EXPECT_EQ(LoadNestCalibration(fixture.Config, "", "", "").Name, "");
  EXPECT_EQ(fixture.Reads(), Texts{});
}

TEST(NestCalibrationTable, TheLookupEndsWhere16BitCountersEnd) {
  ConfigFixture fixture;
  fixture.WithoutEnd("A");
  EXPECT_EQ(LoadNestCalibration(fixture.Config, "", "B", "").Key, "32767");
}

TEST(NestCalibrationTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(nestFile, [](ConfigFixture& fixture) {
    LoadNestCalibration(fixture.Config, "1", "", "");
    SaveNestCalibration(fixture.Config, {}, backup);
  });
}

}  // namespace
}  // namespace zolvane
