#include "config/tables/nest_table.h"

#include <gtest/gtest.h>

#include <string>

#include "config/config_fixture.h"

namespace zolvane {
namespace {

NestTypeRecord Load(ConfigFixture& fixture, std::string item = "", std::string_view file = "") {
  return LoadNestType(fixture.Config, item, file);
}

constexpr std::string_view textOfNests =
    "[NestType]\n"
    "Installed=2\n"
    "Item1=\"8-Channel\",NEST8,\"1A\",1_CH_SHORT,1,10,20,1.50,\"8B\",8_CH,2,-30,40,127.44,\"1C\",1_CH_LONG,-"
    "3,50,60,"
    "-0.02\n"
    "Item2=\"12-Channel\",NEST12\n";

TEST(NestTable, LoadsEveryMember) {
  ConfigFixture fixture{textOfNests};
  const auto nest = Load(fixture, "1");
  EXPECT_EQ(nest.ID, "1");
  EXPECT_EQ(nest.Name, "8-Channel");
  EXPECT_EQ(nest.Code, "NEST8");
  const auto& [a, b, c] = nest.Nests;
  EXPECT_EQ(a.Label, "1A");
  EXPECT_EQ(a.Code, "1_CH_SHORT");
  EXPECT_EQ(a.Setting, 1);
  EXPECT_EQ(a.X, 20);
  EXPECT_EQ(a.Y, 40);
  EXPECT_EQ(a.Z, 75);
  EXPECT_EQ(b.Label, "8B");
  EXPECT_EQ(b.Code, "8_CH");
  EXPECT_EQ(b.Setting, 2);
  EXPECT_EQ(b.X, -60);
  EXPECT_EQ(b.Y, 80);
  EXPECT_EQ(b.Z, 6372);
  EXPECT_EQ(c.Label, "1C");
  EXPECT_EQ(c.Code, "1_CH_LONG");
  EXPECT_EQ(c.Setting, -3);
  EXPECT_EQ(c.X, 100);
  EXPECT_EQ(c.Y, 120);
  EXPECT_EQ(c.Z, -1);
}

TEST(NestTable, SavesEveryMemberInTheOrderOfTheLine) {
  ConfigFixture fixture;
  NestTypeRecord nest;
  nest.ID = "4";
  nest.Name = "New";
  nest.Code = "NESTY";
  nest.Nests[0] = {.Code = "ca", .Label = "la", .Setting = 1, .X = 20, .Y = 41, .Z = 75};
  nest.Nests[1] = {.Code = "cb", .Label = "lb", .Setting = -2, .X = -60, .Y = 81, .Z = 6372};
  nest.Nests[2] = {.Code = "cc", .Label = "lc", .Setting = 3, .X = 0, .Y = 3, .Z = -1};
  SaveNestType(fixture.Config, nest, backup);
  EXPECT_EQ(fixture.Writes(),
            Texts{"write [NestType] "
                  "Item4=\"New\",NESTY,\"la\",ca,1,10,21,1.50,\"lb\",cb,-2,-30,41,127.44,\"lc\",cc,3,0,"
                  "2,-0.02 in /backup.bak"});
}

TEST(NestTable, SavesWhatItLoadedUnchanged) {
  ConfigFixture fixture{textOfNests};
  SaveNestType(fixture.Config, Load(fixture, "1"), backup);
  EXPECT_EQ(fixture.Settings.Value("NestType", "Item1", backup), fixture.Settings.Value("NestType", "Item1"));
}

TEST(NestTable, ConvertsWithAFactorOfTwoAndAHundredthOfAMillimetrePerStep) {
  ConfigFixture fixture{"[NestType]\nItem1=\"A\",B,\"l\",c,0,10,20,1.5\n"};
  fixture.Config.Current.Axes.Z.UnitsPerStep = 0.01F;
  const auto nest = Load(fixture, "1");
  EXPECT_EQ(nest.Nests[0].X, 20);
  EXPECT_EQ(nest.Nests[0].Y, 40);
  EXPECT_EQ(nest.Nests[0].Z, 150);
  SaveNestType(fixture.Config, nest, backup);
  EXPECT_EQ(fixture.Settings.Value("NestType", "Item1", backup),
            "\"A\",B,\"l\",c,0,10,20,1.50,\"\",,0,0,0,0.00,\"\",,0,0,0,0.00");
}

TEST(NestTable, ReadsTheInstalledItemAndItsLineAlone) {
  ConfigFixture fixture{textOfNests};
  std::string item;
  const auto nest = LoadNestType(fixture.Config, item, "");
  EXPECT_EQ(item, "2");
  EXPECT_EQ(nest.ID, "2");
  EXPECT_EQ(fixture.Reads(), (Texts{"read [NestType] Installed", "read [NestType] Item2"}));
}

TEST(NestTable, ReadsTheFileItIsGiven) {
  ConfigFixture fixture{textOfNests};
  fixture.Settings.Load("/other.bak", "[NestType]\nInstalled=5\nItem5=\"Five\"\n");
  EXPECT_EQ(Load(fixture, "", "/other.bak").Name, "Five");
}

TEST(NestTable, ALineOfNameAndCodeHasThreeEmptyPlaces) {
  ConfigFixture fixture{textOfNests};
  const auto nest = Load(fixture, "2");
  EXPECT_EQ(nest.Name, "12-Channel");
  EXPECT_EQ(nest.Code, "NEST12");
  for (const auto& place : nest.Nests) {
    EXPECT_EQ(place.Label, "");
    EXPECT_EQ(place.Code, "");
    EXPECT_EQ(place.Setting, 0);
    EXPECT_EQ(place.X, 0);
    EXPECT_EQ(place.Y, 0);
    EXPECT_EQ(place.Z, 0);
  }
}

TEST(NestTable, RoundsPositionsHalfAwayFromZeroAndSettingsHalfToEven) {
  ConfigFixture fixture{"[NestType]\nItem1=A,B,l,c,2.5,2.5,-2.5,1.25,l,c,3.5,0.5,1.5,-1.25\n"};
  fixture.SetFactor(1.0);
  fixture.Config.Current.Axes.Z.UnitsPerStep = 0.5F;
  const auto nest = Load(fixture, "1");
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
  NestTypeRecord nest;
  nest.ID = "1";
  nest.Nests[0].X = 3;
  nest.Nests[0].Y = -3;
  nest.Nests[0].Z = 1;
  nest.Nests[1].Z = -1;
  SaveNestType(fixture.Config, nest, backup);
  EXPECT_EQ(fixture.Settings.Value("NestType", "Item1", backup),
            "\"\",,\"\",,0,2,-2,0.13,\"\",,0,0,0,-0.13,\"\",,0,0,0,0.00");
}

TEST(NestTable, AFactorOfZeroLeavesXAndYEmptyWithTheirCommas) {
  ConfigFixture fixture{textOfNests};
  fixture.SetFactor(0.0);
  const auto nest = Load(fixture, "1");
  EXPECT_EQ(nest.Nests[0].X, 0);
  EXPECT_EQ(nest.Nests[0].Z, 75);
  SaveNestType(fixture.Config, nest, backup);
  EXPECT_EQ(
      fixture.Settings.Value("NestType", "Item1", backup),
      "\"8-Channel\",NEST8,\"1A\",1_CH_SHORT,1,,,1.50,\"8B\",8_CH,2,,,127.44,\"1C\",1_CH_LONG,-3,,,-0.02");
}

TEST(NestTable, AZAxisOfZeroLeavesZZero) {
  ConfigFixture fixture{textOfNests};
  fixture.Config.Current.Axes.Z.UnitsPerStep = 0.0F;
  auto nest = Load(fixture, "1");
  EXPECT_EQ(nest.Nests[1].Z, 0);
  EXPECT_EQ(nest.Nests[1].X, -60);
  nest.Nests[0].Z = 100;
  SaveNestType(fixture.Config, nest, backup);
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
  const auto nest = Load(fixture, "1");
  EXPECT_EQ(nest.Nests[0].X, 7);
  EXPECT_EQ(nest.Nests[0].Y, 7);
  EXPECT_EQ(nest.Nests[0].Z, 50);
}

TEST(NestTable, KeepsZeroForValuesThatDoNotFit) {
  ConfigFixture fixture{"[NestType]\nItem1=A,B,l,c,32768,1073741824,3e9,1e9,l,c,-32768,1,2,3\n"};
  const auto nest = Load(fixture, "1");
  EXPECT_EQ(nest.Nests[0].Setting, 0);
  EXPECT_EQ(nest.Nests[0].X, 0);
  EXPECT_EQ(nest.Nests[0].Y, 0);
  EXPECT_EQ(nest.Nests[0].Z, 0);
  EXPECT_EQ(nest.Nests[1].Setting, -32768);
  EXPECT_EQ(nest.Nests[1].Z, 150);
}

TEST(NestTable, TakesLeadingNumbersAndTextsInTheirForms) {
  ConfigFixture fixture{"[NestType]\nItem1=\"A\"\"\",\"B\",\"l\"x,\"c\",2x,3mm,,1.5mm\n"};
  const auto nest = Load(fixture, "1");
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
  SaveNestType(fixture.Config, Load(fixture, "1"), fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Value("NestType", "Item1"),
            "\"A\",B,\"l\",c,0,1,1,1.52,\"\",,0,0,0,0.00,\"\",,0,0,0,0.00");
}

TEST(NestTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(textOfNests, [](ConfigFixture& fixture) {
    Load(fixture, "1");
    SaveNestType(fixture.Config, {}, backup);
  });
}

}  // namespace
}  // namespace zolvane
