#include "config/tables/stage.h"

#include <gtest/gtest.h>

#include <string>

#include "config/config_fixture.h"

namespace zolvane {
namespace {

// ---- Stage calibration ----

struct StageFixture : ConfigFixture {
  explicit StageFixture(std::string_view text = "") : ConfigFixture{text} {
    Config.Current.Device.Name = "ZV 400";
  }
};

constexpr std::string_view calibrationFile =
    "[Calibration_ZV 400]\n"
    "Item1=STAGE1,2016,-2487,4,5,6,7,8,9\n"
    "Item2=\"STAGE2\",1,2,-4,-5,-6,-7,-8,-9\n";

TEST(CalibrationTable, StandsInASectionOfTheDevice) {
  CurrentRecords current;
  current.Device.Name = "Zolvane 200";
  EXPECT_EQ(CalibrationSection(current), "Calibration_Zolvane 200");
}

TEST(CalibrationTable, LoadsEveryMember) {
  StageFixture fixture{calibrationFile};
  fixture.SetFactor(7.0);
  const auto record = Load(calibrationTable, fixture.Config, "1");
  EXPECT_EQ(record, (CalibrationRecord{.ID = "1",
                                       .Name = "STAGE1",
                                       .Field2 = 2016,
                                       .Field3 = -2487,
                                       .Field4 = 28,
                                       .Field5 = 35,
                                       .Field6 = 42,
                                       .Field7 = 49,
                                       .Field8 = 56,
                                       .Field9 = 63}));
}

TEST(CalibrationTable, SavesEveryMemberDividedByTheFactor) {
  StageFixture fixture;
  const CalibrationRecord record{.ID = "3",
                                 .Name = "STAGE3",
                                 .Field2 = 2016,
                                 .Field3 = -2487,
                                 .Field4 = 41,
                                 .Field5 = -41,
                                 .Field6 = 60,
                                 .Field7 = 70,
                                 .Field8 = 81,
                                 .Field9 = 1};
  Save(calibrationTable, fixture.Config, record, backup);
  EXPECT_EQ(fixture.Writes(),
            Texts{"write [Calibration_ZV 400] Item3=STAGE3,2016,-2487,21,-21,30,35,41,1 in /backup.bak"});
}

TEST(CalibrationTable, NeitherAddsNorDropsTheQuotesOfAName) {
  StageFixture fixture{calibrationFile};
  const auto record = Load(calibrationTable, fixture.Config, "2");
  EXPECT_EQ(record.Name, "\"STAGE2\"");
  Save(calibrationTable, fixture.Config, record, fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), calibrationFile);
}

TEST(CalibrationTable, RoundsHalfToEvenOnLoading) {
  StageFixture fixture{"[Calibration_ZV 400]\nItem1=A,2.5,3.5,2.5,3.5,0.5,-2.5,1.5,0.285\n"};
  fixture.SetFactor(1.0);
  const auto record = Load(calibrationTable, fixture.Config, "1");
  EXPECT_EQ(record, (CalibrationRecord{.ID = "1",
                                       .Name = "A",
                                       .Field2 = 2,
                                       .Field3 = 4,
                                       .Field4 = 2,
                                       .Field5 = 4,
                                       .Field7 = -2,
                                       .Field8 = 2}));
  fixture.SetFactor(100.0);
  EXPECT_EQ(Load(calibrationTable, fixture.Config, "1").Field9, 28);  // 28.499999...
}

TEST(CalibrationTable, ReadsEachFieldInItsOwnForm) {
  StageFixture fixture{"[Calibration_ZV 400]\nItem1=\"A\",2.5x,2.5x,2.5x,2.5x,2.5x,2.5x,2.5x,2.5x\n"};
  fixture.SetFactor(1.0);
  Save(calibrationTable, fixture.Config, Load(calibrationTable, fixture.Config, "1"), backup);
  EXPECT_EQ(fixture.Settings.Value("Calibration_ZV 400", "Item1", backup), "\"A\",2,2,2,2,2,2,2,2");
}

TEST(CalibrationTable, RoundsHalfAwayFromZeroOnSaving) {
  StageFixture fixture;
  const CalibrationRecord record{.ID = "1", .Field4 = 5, .Field5 = -5};
  Save(calibrationTable, fixture.Config, record, backup);
  EXPECT_EQ(fixture.Settings.Value("Calibration_ZV 400", "Item1", backup), ",0,0,3,-3,0,0,0,0");
}

TEST(CalibrationTable, TakesLeadingNumbersAndZeroWithoutOne) {
  StageFixture fixture{"[Calibration_ZV 400]\nItem1=A,12x,x,10mm,y,,1e3\n"};
  const auto record = Load(calibrationTable, fixture.Config, "1");
  EXPECT_EQ(record, (CalibrationRecord{.ID = "1", .Name = "A", .Field2 = 12, .Field4 = 20, .Field7 = 2000}));
}

TEST(CalibrationTable, KeepsZeroForValuesThatDoNotFit) {
  StageFixture fixture{"[Calibration_ZV 400]\nItem1=A,3e9,-3e9,1073741823,1073741824,1e308\n"};
  const auto record = Load(calibrationTable, fixture.Config, "1");
  EXPECT_EQ(record, (CalibrationRecord{.ID = "1", .Name = "A", .Field4 = 2147483646}));
  fixture.SetFactor(1e10);
  EXPECT_EQ(Load(calibrationTable, fixture.Config, "1").Field6, 0);
}

TEST(CalibrationTable, AFactorOfZeroLeavesItsFieldsEmptyOnSaving) {
  StageFixture fixture;
  fixture.SetFactor(0.0);
  const CalibrationRecord record{.ID = "1", .Name = "A", .Field2 = 5, .Field4 = 40};
  Save(calibrationTable, fixture.Config, record, backup);
  EXPECT_EQ(fixture.Settings.Value("Calibration_ZV 400", "Item1", backup), "A,5,0");
}

TEST(CalibrationTable, AMissingItemCarriesTheNumberItWasAskedForBy) {
  StageFixture fixture{calibrationFile};
  const auto record = Load(calibrationTable, fixture.Config, "3");
  EXPECT_EQ(record.ID, "3");
  EXPECT_EQ(record.Name, "");
  EXPECT_EQ(fixture.Reads(), Texts{"read [Calibration_ZV 400] Item3"});
}

TEST(CalibrationTable, ReadsTheFileItIsGiven) {
  StageFixture fixture{calibrationFile};
  fixture.Settings.Load("/other.bak", "[Calibration_ZV 400]\nItem1=OTHER\n");
  EXPECT_EQ(Load(calibrationTable, fixture.Config, "1", "/other.bak").Name, "OTHER");
}

TEST(CalibrationTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(calibrationTable, calibrationFile);
}

// ---- Positions ----

constexpr std::string_view positionFile =
    "[Position_ZV 400]\n"
    "Item1=STAGE1,\"Stage 1\",STAGE,1612,-2004,6,7,8,9,10,11,1,0,PLATE,1,0\n"
    "Item2=TIPCHUTE,\"Tip Chute\",CHUTE,1,2,-6,-7,-8,-9,-10,-11,0,1,\"WASTE\",0,1\n";

TEST(PositionTable, StandsInASectionOfTheDevice) {
  CurrentRecords current;
  current.Device.Name = "Zolvane 200";
  EXPECT_EQ(PositionSection(current), "Position_Zolvane 200");
}

TEST(PositionTable, LoadsEveryMember) {
  StageFixture fixture{positionFile};
  fixture.SetFactor(7.0);
  const auto record = Load(positionTable, fixture.Config, "1");
  EXPECT_EQ(record, (PositionRecord{.ID = "1",
                                    .PositionName = "STAGE1",
                                    .Name = "Stage 1",
                                    .Field3 = "STAGE",
                                    .StageX = 1612,
                                    .StageY = -2004,
                                    .X = 42,
                                    .Y = 49,
                                    .Field8 = 56,
                                    .Field9 = 63,
                                    .Field10 = 70,
                                    .Field11 = 77,
                                    .Flag12 = true,
                                    .Field14 = "PLATE",
                                    .Flag15 = true}));
}

TEST(PositionTable, LoadsTheOtherFlags) {
  StageFixture fixture{positionFile};
  const auto record = Load(positionTable, fixture.Config, "2");
  EXPECT_EQ(record, (PositionRecord{.ID = "2",
                                    .PositionName = "TIPCHUTE",
                                    .Name = "Tip Chute",
                                    .Field3 = "CHUTE",
                                    .StageX = 1,
                                    .StageY = 2,
                                    .X = -12,
                                    .Y = -14,
                                    .Field8 = -16,
                                    .Field9 = -18,
                                    .Field10 = -20,
                                    .Field11 = -22,
                                    .NotFlag12 = true,
                                    .Flag13 = true,
                                    .Field14 = "\"WASTE\"",
                                    .Flag16 = true}));
}

TEST(PositionTable, SavesEveryMemberDividedByTheFactorAndNeverTheNegation) {
  StageFixture fixture;
  const PositionRecord record{.ID = "5",
                              .PositionName = "NEST8",
                              .Name = "Nest",
                              .Field3 = "KIND",
                              .StageX = 1612,
                              .StageY = -2004,
                              .X = 1001,
                              .Y = -1001,
                              .Field8 = 80,
                              .Field9 = 91,
                              .Field10 = 100,
                              .Field11 = 112,
                              .NotFlag12 = true,
                              .Flag13 = true,
                              .Field14 = "USE",
                              .Flag16 = true};
  Save(positionTable, fixture.Config, record, backup);
  EXPECT_EQ(fixture.Writes(),
            Texts{"write [Position_ZV 400] Item5=NEST8,\"Nest\",KIND,1612,-2004,501,-501,40,46,50,56,"
                  "0,1,USE,0,1 in /backup.bak"});
}

TEST(PositionTable, SavesWhatItLoadedUnchanged) {
  StageFixture fixture{positionFile};
  Save(positionTable, fixture.Config, Load(positionTable, fixture.Config, "1"), fixture.ConfigFile());
  Save(positionTable, fixture.Config, Load(positionTable, fixture.Config, "2"), fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), positionFile);
}

TEST(PositionTable, TakesTextsAsTheyStandButTheDisplayName) {
  StageFixture fixture{"[Position_ZV 400]\nItem1=\"P\", \"N\"\"n\" ,\"T\"\n"};
  const auto record = Load(positionTable, fixture.Config, "1");
  EXPECT_EQ(record.PositionName, "\"P\"");
  EXPECT_EQ(record.Name, " Nn ");
  EXPECT_EQ(record.Field3, "\"T\"");
}

TEST(PositionTable, RoundsHalfAwayFromZeroOnLoadingButTheMotorCountsHalfToEven) {
  StageFixture fixture{"[Position_ZV 400]\nItem1=P,N,T,2.5,3.5,2.5,-2.5,0.5,1.5,3.5,-0.4\n"};
  fixture.SetFactor(1.0);
  const auto record = Load(positionTable, fixture.Config, "1");
  EXPECT_EQ(record, (PositionRecord{.ID = "1",
                                    .PositionName = "P",
                                    .Name = "N",
                                    .Field3 = "T",
                                    .StageX = 2,
                                    .StageY = 4,
                                    .X = 3,
                                    .Y = -3,
                                    .Field8 = 1,
                                    .Field9 = 2,
                                    .Field10 = 4}));
}

TEST(PositionTable, ReadsEachFieldInItsOwnForm) {
  StageFixture fixture{
      "[Position_ZV "
      "400]\nItem1=\"P\",\"N\"n,\"T\",2.5x,2.5x,2.5x,2.5x,2.5x,2.5x,2.5x,2.5x,1x,1x,\"U\",1x,1x\n"};
  fixture.SetFactor(1.0);
  Save(positionTable, fixture.Config, Load(positionTable, fixture.Config, "1"), backup);
  EXPECT_EQ(fixture.Settings.Value("Position_ZV 400", "Item1", backup),
            "\"P\",\"Nn\",\"T\",2,2,3,3,3,3,3,3,0,0,\"U\",0,0");
}

TEST(PositionTable, RoundsTheDecimalFormOfAProduct) {
  StageFixture fixture{"[Position_ZV 400]\nItem1=P,N,T,0,0,0.285\n"};
  fixture.SetFactor(100.0);
  EXPECT_EQ(Load(positionTable, fixture.Config, "1").X, 29);
}

TEST(PositionTable, TheFlagAndItsNegationStayOffWhenTheFieldDoesNotConvertOrIsMissing) {
  StageFixture fixture{"[Position_ZV 400]\nItem1=P,N,T,1,2,3,4,5,6,7,8,yes,on,x,,1y\nItem2=P,N\n"};
  for (const auto* item : {"1", "2"}) {
    const auto record = Load(positionTable, fixture.Config, item);
    EXPECT_FALSE(record.Flag12);
    EXPECT_FALSE(record.NotFlag12);
    EXPECT_FALSE(record.Flag13);
    EXPECT_FALSE(record.Flag15);
    EXPECT_FALSE(record.Flag16);
  }
}

TEST(PositionTable, KeepsZeroForValuesThatDoNotFit) {
  StageFixture fixture{"[Position_ZV 400]\nItem1=P,N,T,3e9,-3e9,1073741824,-1073741824,1e308\n"};
  const auto record = Load(positionTable, fixture.Config, "1");
  EXPECT_EQ(record, (PositionRecord{
                        .ID = "1", .PositionName = "P", .Name = "N", .Field3 = "T", .Y = -2147483647 - 1}));
}

TEST(PositionTable, AFactorOfZeroLeavesItsFieldsEmptyAndKeepsTheirCommas) {
  StageFixture fixture{positionFile};
  fixture.SetFactor(0.0);
  const auto record = Load(positionTable, fixture.Config, "1");
  EXPECT_EQ(record.X, 0);
  Save(positionTable, fixture.Config, record, backup);
  EXPECT_EQ(fixture.Settings.Value("Position_ZV 400", "Item1", backup),
            "STAGE1,\"Stage 1\",STAGE,1612,-2004,,,,,,,1,0,PLATE,1,0");
}

TEST(PositionTable, ReadsTheItemOfTheFileItIsGiven) {
  StageFixture fixture{positionFile};
  fixture.Settings.Load("/other.bak", "[Position_ZV 400]\nItem1=OTHER,O\n");
  EXPECT_EQ(Load(positionTable, fixture.Config, "1", "/other.bak").PositionName, "OTHER");
  EXPECT_EQ(fixture.Reads(), Texts{"read [Position_ZV 400] Item1 in /other.bak"});
}

TEST(PositionTable, FindsARecordByItsPositionName) {
  StageFixture fixture{positionFile};
  const auto record = FindByName(positionTable, fixture.Config, &PositionRecord::PositionName, "TIPCHUTE");
  EXPECT_EQ(record.ID, "2");
  EXPECT_EQ(record.Name, "Tip Chute");
  EXPECT_EQ(fixture.Reads(), (Texts{"read [Position_ZV 400] Item1", "read [Position_ZV 400] Item2"}));
}

TEST(PositionTable, IsSearchedInTheConfigurationFile) {
  StageFixture fixture{positionFile};
  fixture.Settings.Load("/other.bak", "[Position_ZV 400]\nItem1=TIPCHUTE,Other\n");
  EXPECT_EQ(FindByName(positionTable, fixture.Config, &PositionRecord::PositionName, "TIPCHUTE").Name,
            "Tip Chute");
}

TEST(PositionTable, ComparesNamesToTheLetterAndFindsTheFirst) {
  StageFixture fixture{
      "[Position_ZV 400]\nItem1=stage1,a\nItem2=STAGE1 ,b\nItem3=STAGE1,c\nItem4=STAGE1,d\n"};
  EXPECT_EQ(FindByName(positionTable, fixture.Config, &PositionRecord::PositionName, "STAGE1").ID, "3");
}

TEST(PositionTable, GivesTheFirstNamelessRecordWhenNoneMatches) {
  StageFixture fixture{"[Position_ZV 400]\nItem1=A,a\nItem2=B,b\nItem4=C,c\n"};
  const auto record = FindByName(positionTable, fixture.Config, &PositionRecord::PositionName, "C");
  EXPECT_EQ(record.ID, "3");
  EXPECT_EQ(record.PositionName, "");
}

TEST(PositionTable, ANamelessRecordIsFoundByItsPositionName) {
  StageFixture fixture{"[Position_ZV 400]\nItem1=A,a\nItem2=B,\"\",T,5\nItem3=C,c\n"};
  EXPECT_EQ(FindByName(positionTable, fixture.Config, &PositionRecord::PositionName, "B").StageX, 5);
  const auto end = FindByName(positionTable, fixture.Config, &PositionRecord::PositionName, "C");
  EXPECT_EQ(end.ID, "2");
  EXPECT_EQ(end.PositionName, "B");
  EXPECT_EQ(end.StageX, 5);
}

TEST(PositionTable, ALineThatCannotBeReadIsLeftOutOfTheLookup) {
  StageFixture fixture{"[Position_ZV 400]\nItem1=A,a\nItem2=B,b\nItem3=C,c\n"};
  fixture.Calls.FailEverythingThatStartsWith("read [Position_ZV 400] Item2");
  EXPECT_EQ(FindByName(positionTable, fixture.Config, &PositionRecord::PositionName, "C").ID, "3");
  EXPECT_EQ(FindByName(positionTable, fixture.Config, &PositionRecord::PositionName, "B").ID, "4");
}

TEST(PositionTable, WithoutANameGivesAnEmptyRecordAndReadsNothing) {
  StageFixture fixture{"[Position_ZV 400]\nItem=A,a\nItem1=B,b\n"};
  const auto record = FindByName(positionTable, fixture.Config, &PositionRecord::PositionName, "");
  EXPECT_EQ(record.ID, "");
  EXPECT_EQ(record.PositionName, "");
  EXPECT_EQ(record.Name, "");
  EXPECT_EQ(fixture.Reads(), Texts{});
}

TEST(PositionTable, TheLookupEndsWhere16BitCountersEnd) {
  StageFixture fixture;
  const auto settings = fixture.WithoutEnd("A");
  EXPECT_EQ(FindByName(positionTable, fixture.Config, &PositionRecord::PositionName, "B").ID, "32767");
  EXPECT_EQ(settings->LastItem, "Item32767");
}

TEST(PositionTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(positionTable, positionFile);
}

}  // namespace
}  // namespace zolvane
