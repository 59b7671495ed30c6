#include "config/tables/tips.h"

#include <gtest/gtest.h>

#include <string>

#include "config/config_fixture.h"

namespace zolvane {
namespace {

constexpr std::string_view tipFile =
    "[TipType]\n"
    "Installed=2\n"
    "Item1=\"1250 "
    "ul\",SERIALDILUTE,1250.5,20.25,8,12,1,96,118,7840,98.5,1,0,1,0,1,0,1,\"VolumeCorrection_A\"\n"
    "Item2=\"300 ul\",MICROTITER,300,5,-8,-12,0,124,141,9320,58.2,-2,1,0,1,0,1,0,\"\"\n"
    "TipChuteClearOffset=13.75\n";

TEST(TipTable, LoadsEveryMember) {
  ConfigFixture fixture{tipFile};
  const auto tip = Load(tipTable, fixture.Config, "1");
  EXPECT_EQ(tip, (TipTypeRecord{.ID = "1",
                                .Name = "1250 ul",
                                .Code = "SERIALDILUTE",
                                .Field2 = 1250.5,
                                .Field3 = 20.25,
                                .Field4 = 8,
                                .Field5 = 12,
                                .Field6 = true,
                                .RackEjectZ = 96,
                                .RackPickUpZ = 118,
                                .ChuteEjectZ = 7840,
                                .Field10 = 98.5,
                                .Field11 = 1,
                                .Field13 = true,
                                .SecondSize = true,
                                .FourthSize = true,
                                .CorrectionSection = "VolumeCorrection_A",
                                .TipChuteClearOffset = 13.75}));
}

TEST(TipTable, LoadsTheOtherFlagsOfTheInstalledTip) {
  ConfigFixture fixture{tipFile};
  const auto tip = LoadInstalled(tipTable, fixture.Config);
  EXPECT_EQ(tip, (TipTypeRecord{.ID = "2",
                                .Name = "300 ul",
                                .Code = "MICROTITER",
                                .Field2 = 300.0,
                                .Field3 = 5.0,
                                .Field4 = -8,
                                .Field5 = -12,
                                .RackEjectZ = 124,
                                .RackPickUpZ = 141,
                                .ChuteEjectZ = 9320,
                                .Field10 = 58.2,
                                .Field11 = -2,
                                .Field12 = true,
                                .FirstSize = true,
                                .ThirdSize = true,
                                .TipChuteClearOffset = 13.75}));
}

TEST(TipTable, SavesEveryMemberInTheOrderOfTheLine) {
  ConfigFixture fixture;
  const TipTypeRecord tip{.ID = "9",
                          .Name = "New",
                          .Code = "CODE",
                          .Field2 = 2.5,
                          .Field3 = 1.0 / 3.0,
                          .Field4 = -4,
                          .Field5 = 5,
                          .Field6 = true,
                          .RackEjectZ = 7,
                          .RackPickUpZ = -8,
                          .ChuteEjectZ = 90000,
                          .Field10 = 10.25,
                          .Field11 = 11,
                          .Field13 = true,
                          .FirstSize = true,
                          .FourthSize = true,
                          .CorrectionSection = "Section",
                          .TipChuteClearOffset = 99.0};
  Save(tipTable, fixture.Config, tip, backup);
  EXPECT_EQ(
      fixture.Writes(),
      Texts{"write [TipType] Item9=\"New\",CODE,2.5,0.333333333333333,-4,5,1,7,-8,90000,10.25,11,0,1,1,0,0,1,"
            "\"Section\" in /backup.bak"});
}

TEST(TipTable, SavesWhatItLoadedUnchangedAndNeverTheClearOffset) {
  ConfigFixture fixture{tipFile};
  auto tip = Load(tipTable, fixture.Config, "1");
  tip.TipChuteClearOffset = 1.0;
  Save(tipTable, fixture.Config, tip, fixture.ConfigFile());
  Save(tipTable, fixture.Config, Load(tipTable, fixture.Config, "2"), fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), tipFile);
}

TEST(TipTable, ReadsInOrder) {
  ConfigFixture fixture{tipFile};
  LoadInstalled(tipTable, fixture.Config);
  EXPECT_EQ(fixture.Reads(), (Texts{"read [TipType] Installed", "read [TipType] Item2",
                                    "read [TipType] TipChuteClearOffset default \"12.5\""}));
}

TEST(TipTable, TheClearOffsetIsTwelveAndAHalfWhenItsKeyIsMissing) {
  ConfigFixture fixture;
  EXPECT_EQ(Load(tipTable, fixture.Config, "1").TipChuteClearOffset, 12.5);
}

TEST(TipTable, AClearOffsetThatIsNoNumberIsZero) {
  for (const auto* text : {"abc", "", "12.5mm", "1 2", "1e309"}) {
    ConfigFixture fixture{"[TipType]\nTipChuteClearOffset=" + std::string{text} + "\n"};
    EXPECT_EQ(Load(tipTable, fixture.Config, "1").TipChuteClearOffset, 0.0) << text;
  }
}

TEST(TipTable, AClearOffsetMayHaveBlanksAPlusATrailingPointAndAnExponent) {
  for (const auto* text : {" 20 ", "+20", "20.", "2e1"}) {
    ConfigFixture fixture{"[TipType]\nTipChuteClearOffset=" + std::string{text} + "\n"};
    EXPECT_EQ(Load(tipTable, fixture.Config, "1").TipChuteClearOffset, 20.0) << text;
  }
}

TEST(TipTable, ReadsTheFileItIsGiven) {
  ConfigFixture fixture{tipFile};
  fixture.Settings.Load("/other.bak", "[TipType]\nItem1=\"Other\"\nTipChuteClearOffset=5\n");
  EXPECT_EQ(Load(tipTable, fixture.Config, "1", "/other.bak").Name, "Other");
  EXPECT_EQ(Load(tipTable, fixture.Config, "1", "/other.bak").TipChuteClearOffset, 5.0);
}

TEST(TipTable, AnEmptyFlagLoadsOffAndIsWrittenAsZero) {
  ConfigFixture fixture{"[TipType]\nItem1=A,B,1,2,3,4,,7\n"};
  const auto tip = Load(tipTable, fixture.Config, "1");
  EXPECT_FALSE(tip.Field6);
  EXPECT_EQ(tip.RackEjectZ, 7);
  Save(tipTable, fixture.Config, tip, backup);
  EXPECT_EQ(fixture.Settings.Value("TipType", "Item1", backup),
            "\"A\",B,1,2,3,4,0,7,0,0,0,0,0,0,0,0,0,0,\"\"");
}

TEST(TipTable, RoundsWholeNumbersHalfToEvenAndKeepsZeroForThoseThatDoNotFit) {
  ConfigFixture fixture{
      "[TipType]\nItem1=A,B,0,0,2.5,3.5,0,4.5,5.5,-6.5,0,7.5\nItem2=A,B,0,0,32768,-32769,0,2147483648,1e10,-"
      "3e9,0,3e9\n"};
  const auto rounded = Load(tipTable, fixture.Config, "1");
  EXPECT_EQ(rounded, (TipTypeRecord{.ID = "1",
                                    .Name = "A",
                                    .Code = "B",
                                    .Field4 = 2,
                                    .Field5 = 4,
                                    .RackEjectZ = 4,
                                    .RackPickUpZ = 6,
                                    .ChuteEjectZ = -6,
                                    .Field11 = 8,
                                    .TipChuteClearOffset = 12.5}));
  const auto large = Load(tipTable, fixture.Config, "2");
  EXPECT_EQ(large, (TipTypeRecord{.ID = "2", .Name = "A", .Code = "B", .TipChuteClearOffset = 12.5}));
}

TEST(TipTable, ReadsTextsRealsAndFlagsInTheirForms) {
  ConfigFixture fixture{
      "[TipType]\nItem1=\"A\"\"\",\"B\",1.5x,y,0,0,True,0,0,0,2.5x,0,1x,on,False,-1,2,T,S\"1\"\n"};
  const auto tip = Load(tipTable, fixture.Config, "1");
  EXPECT_EQ(tip, (TipTypeRecord{.ID = "1",
                                .Name = "A",
                                .Code = "\"B\"",
                                .Field2 = 1.5,
                                .Field6 = true,
                                .Field10 = 2.5,
                                .SecondSize = true,
                                .ThirdSize = true,
                                .CorrectionSection = "S1",
                                .TipChuteClearOffset = 12.5}));
}

TEST(TipTable, ReadsEachValueInItsOwnForm) {
  ConfigFixture fixture{"[TipType]\nItem1=A,B,2x,3x,4x,5x,1x,7x,8x,9x,10x,11x,1x,1x,1x,1x,1x,1x,D\n"};
  const auto tip = Load(tipTable, fixture.Config, "1");
  EXPECT_EQ(tip, (TipTypeRecord{.ID = "1",
                                .Name = "A",
                                .Code = "B",
                                .Field2 = 2.0,
                                .Field3 = 3.0,
                                .Field4 = 4,
                                .Field5 = 5,
                                .RackEjectZ = 7,
                                .RackPickUpZ = 8,
                                .ChuteEjectZ = 9,
                                .Field10 = 10.0,
                                .Field11 = 11,
                                .CorrectionSection = "D",
                                .TipChuteClearOffset = 12.5}));
}

TEST(TipTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(tipTable, tipFile);
}

}  // namespace
}  // namespace zolvane
