#include "config/tables/nests.h"

#include <gtest/gtest.h>

#include <string>

#include "config/config_fixture.h"

namespace zolvane {
namespace {

constexpr std::string_view textOfNests =
    "[NestType]\n"
    "Installed=2\n"
    "Item1=\"8-Channel\",NEST8,\"1A\",1_CH_SHORT,1,10,20,1.50,\"8B\",8_CH,2,-30,40,127.44,\"1C\",1_CH_LONG,-"
    "3,50,60,"
    "-0.02\n"
    "Item2=\"12-Channel\",NEST12\n";

TEST(NestTable, LoadsEveryMember) {
  ConfigFixture fixture{textOfNests};
  const auto nest = Load(nestTable, fixture.Config, "1");
  EXPECT_EQ(
      nest,
      (NestTypeRecord{
          .ID = "1",
          .Name = "8-Channel",
          .Code = "NEST8",
          .Nests = {{{.Code = "1_CH_SHORT", .Label = "1A", .Setting = 1, .X = 20, .Y = 40, .Z = 75},
                     {.Code = "8_CH", .Label = "8B", .Setting = 2, .X = -60, .Y = 80, .Z = 6372},
                     {.Code = "1_CH_LONG", .Label = "1C", .Setting = -3, .X = 100, .Y = 120, .Z = -1}}}}));
}

TEST(NestTable, SavesEveryMemberInTheOrderOfTheLine) {
  ConfigFixture fixture;
  const NestTypeRecord nest{
      .ID = "4",
      .Name = "New",
      .Code = "NESTY",
      .Nests = {{{.Code = "ca", .Label = "la", .Setting = 1, .X = 20, .Y = 41, .Z = 75},
                 {.Code = "cb", .Label = "lb", .Setting = -2, .X = -60, .Y = 81, .Z = 6372},
                 {.Code = "cc", .Label = "lc", .Setting = 3, .X = 0, .Y = 3, .Z = -1}}}};
  Save(nestTable, fixture.Config, nest, backup);
  EXPECT_EQ(fixture.Writes(),
            Texts{"write [NestType] "
                  "Item4=\"New\",NESTY,\"la\",ca,1,10,21,1.50,\"lb\",cb,-2,-30,41,127.44,\"lc\",cc,3,0,"
                  "2,-0.02 in /backup.bak"});
}

TEST(NestTable, SavesWhatItLoadedUnchanged) {
  ConfigFixture fixture{textOfNests};
  Save(nestTable, fixture.Config, Load(nestTable, fixture.Config, "1"), backup);
  EXPECT_EQ(fixture.Settings.Value("NestType", "Item1", backup), fixture.Settings.Value("NestType", "Item1"));
}

TEST(NestTable, ConvertsWithAFactorOfTwoAndAHundredthOfAMillimetrePerStep) {
  ConfigFixture fixture{"[NestType]\nItem1=\"A\",B,\"l\",c,0,10,20,1.5\n"};
  fixture.Config.Current.Axes.Z.UnitsPerStep = 0.01F;
  const auto nest = Load(nestTable, fixture.Config, "1");
  EXPECT_EQ(nest.Nests[0].X, 20);
  EXPECT_EQ(nest.Nests[0].Y, 40);
  EXPECT_EQ(nest.Nests[0].Z, 150);
  Save(nestTable, fixture.Config, nest, backup);
  EXPECT_EQ(fixture.Settings.Value("NestType", "Item1", backup),
            "\"A\",B,\"l\",c,0,10,20,1.50,\"\",,0,0,0,0.00,\"\",,0,0,0,0.00");
}

TEST(NestTable, ReadsTheInstalledItemAndItsLineAlone) {
  ConfigFixture fixture{textOfNests};
  const auto nest = LoadInstalled(nestTable, fixture.Config);
  EXPECT_EQ(nest.ID, "2");
  EXPECT_EQ(fixture.Reads(), (Texts{"read [NestType] Installed", "read [NestType] Item2"}));
}

TEST(NestTable, ReadsTheFileItIsGiven) {
  ConfigFixture fixture{textOfNests};
  fixture.Settings.Load("/other.bak", "[NestType]\nInstalled=5\nItem5=\"Five\"\n");
  EXPECT_EQ(LoadInstalled(nestTable, fixture.Config, "/other.bak").Name, "Five");
}

TEST(NestTable, ALineOfNameAndCodeHasThreeEmptyPlaces) {
  ConfigFixture fixture{textOfNests};
  const auto nest = Load(nestTable, fixture.Config, "2");
  EXPECT_EQ(nest, (NestTypeRecord{.ID = "2", .Name = "12-Channel", .Code = "NEST12"}));
}

TEST(NestTable, RoundsPositionsHalfAwayFromZeroAndSettingsHalfToEven) {
  ConfigFixture fixture{"[NestType]\nItem1=A,B,l,c,2.5,2.5,-2.5,1.25,l,c,3.5,0.5,1.5,-1.25\n"};
  fixture.SetFactor(1.0);
  fixture.Config.Current.Axes.Z.UnitsPerStep = 0.5F;
  const auto nest = Load(nestTable, fixture.Config, "1");
  EXPECT_EQ(nest.Nests[0].Setting, 2);
  EXPECT_EQ(nest.Nests[0].X, 3);
  EXPECT_EQ(nest.Nests[0].Y, -3);
  EXPECT_EQ(nest.Nests[0].Z, 3);
  EXPECT_EQ(nest.Nests[1].Setting, 4);
  EXPECT_EQ(nest.Nests[1].X, 1);
  EXPECT_EQ(nest.Nests[1].Y, 2);
  EXPECT_EQ(nest.Nests[1].Z, -3);
}

TEST(NestTable, RoundsHalfAwayFromZeroOnSaving) {
  ConfigFixture fixture;
  fixture.Config.Current.Axes.Z.UnitsPerStep = 0.125F;
  NestTypeRecord nest{.ID = "1"};
  nest.Nests[0].X = 3;
  nest.Nests[0].Y = -3;
  nest.Nests[0].Z = 1;
  nest.Nests[1].Z = -1;
  Save(nestTable, fixture.Config, nest, backup);
  EXPECT_EQ(fixture.Settings.Value("NestType", "Item1", backup),
            "\"\",,\"\",,0,2,-2,0.13,\"\",,0,0,0,-0.13,\"\",,0,0,0,0.00");
}

TEST(NestTable, AFactorOfZeroLeavesXAndYEmptyWithTheirCommas) {
  ConfigFixture fixture{textOfNests};
  fixture.SetFactor(0.0);
  const auto nest = Load(nestTable, fixture.Config, "1");
  EXPECT_EQ(nest.Nests[0].X, 0);
  EXPECT_EQ(nest.Nests[0].Z, 75);
  Save(nestTable, fixture.Config, nest, backup);
  EXPECT_EQ(
      fixture.Settings.Value("NestType", "Item1", backup),
      "\"8-Channel\",NEST8,\"1A\",1_CH_SHORT,1,,,1.50,\"8B\",8_CH,2,,,127.44,\"1C\",1_CH_LONG,-3,,,-0.02");
}

TEST(NestTable, AZAxisOfZeroLeavesZZero) {
  ConfigFixture fixture{textOfNests};
  fixture.Config.Current.Axes.Z.UnitsPerStep = 0.0F;
  auto nest = Load(nestTable, fixture.Config, "1");
  EXPECT_EQ(nest.Nests[1].Z, 0);
  EXPECT_EQ(nest.Nests[1].X, -60);
  nest.Nests[0].Z = 100;
  Save(nestTable, fixture.Config, nest, backup);
  EXPECT_EQ(fixture.Settings.Value("NestType", "Item1", backup),
            "\"8-Channel\",NEST8,\"1A\",1_CH_SHORT,1,10,20,0.00,\"8B\",8_CH,2,-30,40,0.00,\"1C\",1_CH_LONG,-"
            "3,50,60,"
            "0.00");
}

TEST(NestTable, TakesTheFactorsOfTheDeviceAndOfTheZAxisAlone) {
  ConfigFixture fixture{"[NestType]\nItem1=A,B,l,c,0,1,1,1\n"};
  fixture.Config.Current.Device.SDXYEncoderStatus = true;
  fixture.Config.Current.Device.SDXYEncoderMMStepFactorOn = 7.0;
  fixture.Config.Current.Axes.S.UnitsPerStep = 0.0F;
  const auto nest = Load(nestTable, fixture.Config, "1");
  EXPECT_EQ(nest.Nests[0].X, 7);
  EXPECT_EQ(nest.Nests[0].Y, 7);
  EXPECT_EQ(nest.Nests[0].Z, 50);
}

TEST(NestTable, KeepsZeroForValuesThatDoNotFit) {
  ConfigFixture fixture{"[NestType]\nItem1=A,B,l,c,32768,1073741824,3e9,1e9,l,c,-32768,1,2,3\n"};
  const auto nest = Load(nestTable, fixture.Config, "1");
  EXPECT_EQ(nest.Nests[0].Setting, 0);
  EXPECT_EQ(nest.Nests[0].X, 0);
  EXPECT_EQ(nest.Nests[0].Y, 0);
  EXPECT_EQ(nest.Nests[0].Z, 0);
  EXPECT_EQ(nest.Nests[1].Setting, -32768);
  EXPECT_EQ(nest.Nests[1].Z, 150);
}

TEST(NestTable, TakesLeadingNumbersAndTextsInTheirForms) {
  ConfigFixture fixture{"[NestType]\nItem1=\"A\"\"\",\"B\",\"l\"x,\"c\",2x,3mm,,1.5mm\n"};
  const auto nest = Load(nestTable, fixture.Config, "1");
  EXPECT_EQ(nest.Name, "A");
  EXPECT_EQ(nest.Code, "\"B\"");
  EXPECT_EQ(nest.Nests[0].Label, "lx");
  EXPECT_EQ(nest.Nests[0].Code, "\"c\"");
  EXPECT_EQ(nest.Nests[0].Setting, 2);
  EXPECT_EQ(nest.Nests[0].X, 6);
  EXPECT_EQ(nest.Nests[0].Y, 0);
  EXPECT_EQ(nest.Nests[0].Z, 75);
}

// Each direction rounds, so two loads of what a save wrote may differ from what was saved.
TEST(NestTable, IsNotAnExactInverse) {
  ConfigFixture fixture{"[NestType]\nItem1=\"A\",B,\"l\",c,0,1,1,1.51\n"};
  Save(nestTable, fixture.Config, Load(nestTable, fixture.Config, "1"), fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Value("NestType", "Item1"),
            "\"A\",B,\"l\",c,0,1,1,1.52,\"\",,0,0,0,0.00,\"\",,0,0,0,0.00");
}

TEST(NestTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(nestTable, textOfNests);
}

// ---- Nest calibration ----

constexpr std::string_view nestFile =
    "[NestCalibration]\n"
    "Item1=NEST8,2,3,4,5,6,-7\n"
    "Item2=\"NEST12\",20,30,40,50,60,70\n";

TEST(NestCalibrationTable, LoadsEveryMemberTimesTheFactor) {
  ConfigFixture fixture{nestFile};
  fixture.SetFactor(7.0);
  const auto record = Load(nestCalibrationTable, fixture.Config, "1");
  EXPECT_EQ(record, (NestCalibrationRecord{.ID = "1",
                                           .Name = "NEST8",
                                           .Value1 = 14,
                                           .Value2 = 21,
                                           .Value3 = 28,
                                           .Value4 = 35,
                                           .Value5 = 42,
                                           .Value6 = -49}));
}

TEST(NestCalibrationTable, SavesEveryMemberDividedByTheFactor) {
  ConfigFixture fixture;
  fixture.Config.Current.Device.Name = "A";
  const NestCalibrationRecord record{.ID = "4",
                                     .Name = "NESTY",
                                     .Value1 = 3,
                                     .Value2 = -3,
                                     .Value3 = 40,
                                     .Value4 = 51,
                                     .Value5 = 60,
                                     .Value6 = 71};
  Save(nestCalibrationTable, fixture.Config, record, backup);
  EXPECT_EQ(fixture.Writes(), Texts{"write [NestCalibration] Item4=NESTY,2,-2,20,26,30,36 in /backup.bak"});
}

TEST(NestCalibrationTable, AShortLineLeavesZerosThatAreSaved) {
  ConfigFixture fixture{"[NestCalibration]\nItem1=A,10\n"};
  const auto record = Load(nestCalibrationTable, fixture.Config, "1");
  EXPECT_EQ(record.Value1, 20);
  EXPECT_EQ(record.Value2, 0);
  EXPECT_EQ(record.Value6, 0);
  Save(nestCalibrationTable, fixture.Config, record, fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), "[NestCalibration]\nItem1=A,10,0,0,0,0,0\n");
}

TEST(NestCalibrationTable, KeepsTheQuotesOfAName) {
  ConfigFixture fixture{nestFile};
  const auto record = Load(nestCalibrationTable, fixture.Config, "2");
  EXPECT_EQ(record.Name, "\"NEST12\"");
  Save(nestCalibrationTable, fixture.Config, record, fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), nestFile);
}

TEST(NestCalibrationTable, RoundsHalfAwayFromZeroOnLoading) {
  ConfigFixture fixture{"[NestCalibration]\nItem1=A,2.5,-2.5,3.5,0.4,1.5mm,x\n"};
  fixture.SetFactor(1.0);
  const auto record = Load(nestCalibrationTable, fixture.Config, "1");
  EXPECT_EQ(record, (NestCalibrationRecord{
                        .ID = "1", .Name = "A", .Value1 = 3, .Value2 = -3, .Value3 = 4, .Value5 = 2}));
}

TEST(NestCalibrationTable, ReadsEachFieldInItsOwnForm) {
  ConfigFixture fixture{"[NestCalibration]\nItem1=\"A\",2.5x,2.5x,2.5x,2.5x,2.5x,2.5x\n"};
  fixture.SetFactor(1.0);
  Save(nestCalibrationTable, fixture.Config, Load(nestCalibrationTable, fixture.Config, "1"), backup);
  EXPECT_EQ(fixture.Settings.Value("NestCalibration", "Item1", backup), "\"A\",3,3,3,3,3,3");
}

TEST(NestCalibrationTable, AFactorOfZeroLeavesTheValuesEmptyOnSaving) {
  ConfigFixture fixture;
  fixture.SetFactor(0.0);
  const NestCalibrationRecord record{.ID = "1", .Name = "A", .Value6 = 5};
  Save(nestCalibrationTable, fixture.Config, record, backup);
  EXPECT_EQ(fixture.Settings.Value("NestCalibration", "Item1", backup), "A");
}

TEST(NestCalibrationTable, WritesAnEmptyValueWhenNothingIsLeftOfTheLine) {
  ConfigFixture fixture;
  fixture.SetFactor(0.0);
  const NestCalibrationRecord record{.ID = "1"};
  Save(nestCalibrationTable, fixture.Config, record, backup);
  EXPECT_EQ(fixture.Writes(), Texts{"write [NestCalibration] Item1= in /backup.bak"});
}

TEST(NestCalibrationTable, KeepsZeroForValuesThatDoNotFit) {
  ConfigFixture fixture{"[NestCalibration]\nItem1=A,1073741824,3\n"};
  EXPECT_EQ(Load(nestCalibrationTable, fixture.Config, "1").Value1, 0);
  EXPECT_EQ(Load(nestCalibrationTable, fixture.Config, "1").Value2, 6);
}

TEST(NestCalibrationTable, AMissingItemCarriesTheNumberItWasAskedForBy) {
  ConfigFixture fixture{nestFile};
  const auto record = Load(nestCalibrationTable, fixture.Config, "3");
  EXPECT_EQ(record.ID, "3");
  EXPECT_EQ(record.Name, "");
  EXPECT_EQ(record.Value1, 0);
}

TEST(NestCalibrationTable, ReadsTheItemOfTheFileItIsGiven) {
  ConfigFixture fixture{nestFile};
  fixture.Settings.Load("/other.bak", "[NestCalibration]\nItem1=OTHER,5\n");
  EXPECT_EQ(Load(nestCalibrationTable, fixture.Config, "1", "/other.bak").Name, "OTHER");
  EXPECT_EQ(Load(nestCalibrationTable, fixture.Config, "1").Name, "NEST8");
}

TEST(NestCalibrationTable, FindsARecordByItsNameInTheConfigurationFile) {
  ConfigFixture fixture{nestFile};
  fixture.Settings.Load("/other.bak", "[NestCalibration]\nItem1=\"NEST12\",1\n");
  const auto record =
      FindByName(nestCalibrationTable, fixture.Config, &NestCalibrationRecord::Name, "\"NEST12\"");
  EXPECT_EQ(record.ID, "2");
  EXPECT_EQ(record.Value1, 40);
  EXPECT_EQ(fixture.Reads(), (Texts{"read [NestCalibration] Item1", "read [NestCalibration] Item2"}));
}

TEST(NestCalibrationTable, ComparesNamesToTheLetter) {
  ConfigFixture fixture{"[NestCalibration]\nItem1=nest8\nItem2=NEST8 \nItem3=NEST8\n"};
  EXPECT_EQ(FindByName(nestCalibrationTable, fixture.Config, &NestCalibrationRecord::Name, "NEST8").ID, "3");
}

TEST(NestCalibrationTable, GivesTheFirstNamelessRecordWhenNoneMatches) {
  ConfigFixture fixture{"[NestCalibration]\nItem1=A,1\nItem2=,5\nItem3=B,7\n"};
  const auto record = FindByName(nestCalibrationTable, fixture.Config, &NestCalibrationRecord::Name, "B");
  EXPECT_EQ(record.ID, "2");
  EXPECT_EQ(record.Value1, 10);
}

TEST(NestCalibrationTable, ANameOfTwoQuotesIsNotTheEnd) {
  ConfigFixture fixture{"[NestCalibration]\nItem1=\"\",1\nItem2=B,7\n"};
  EXPECT_EQ(FindByName(nestCalibrationTable, fixture.Config, &NestCalibrationRecord::Name, "B").ID, "2");
}

TEST(NestCalibrationTable, WithoutANameReadsNothing) {
  ConfigFixture fixture{"[NestCalibration]\nItem=A,1\n"};
  EXPECT_EQ(FindByName(nestCalibrationTable, fixture.Config, &NestCalibrationRecord::Name, "").Name, "");
  EXPECT_EQ(fixture.Reads(), Texts{});
}

TEST(NestCalibrationTable, TheLookupEndsWhere16BitCountersEnd) {
  ConfigFixture fixture;
  fixture.WithoutEnd("A");
  EXPECT_EQ(FindByName(nestCalibrationTable, fixture.Config, &NestCalibrationRecord::Name, "B").ID, "32767");
}

TEST(NestCalibrationTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(nestCalibrationTable, nestFile);
}

}  // namespace
}  // namespace zolvane
