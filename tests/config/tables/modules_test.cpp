#include "config/tables/modules.h"

#include <gtest/gtest.h>

#include <string>

#include "config/config_fixture.h"

namespace zolvane {
namespace {

constexpr std::string_view cageFile =
    "[CageType]\n"
    "Installed=1\n"
    "Item1=\"1/8/12 Module\",SERIALDILUTE,1,0,1,5,6,7,8\n"
    "Item2=\"Other\",MICROTITER,0,1,0,-12,2147483647,-2147483648,0\n"
    "CageReleaseBarHeight=168\n"
    "CageReleaseHeight=152\n";

TEST(CageTable, LoadsEveryMember) {
  ConfigFixture fixture{cageFile};
  const auto cage = LoadInstalled(cageTable, fixture.Config);
  EXPECT_EQ(cage, (CageTypeRecord{.ID = "1",
                                  .Name = "1/8/12 Module",
                                  .Code = "SERIALDILUTE",
                                  .Field2 = true,
                                  .CageReleaseBarHeight = 168,
                                  .CageReleaseHeight = 152,
                                  .Field4 = true,
                                  .HeadChangeS = 5,
                                  .Field6 = 6,
                                  .TipChangeS = 7,
                                  .Field8 = 8}));
}

TEST(CageTable, LoadsTheOtherFlagsAndTheEndsOf32Bits) {
  ConfigFixture fixture{cageFile};
  const auto cage = Load(cageTable, fixture.Config, "2");
  EXPECT_EQ(cage, (CageTypeRecord{.ID = "2",
                                  .Name = "Other",
                                  .Code = "MICROTITER",
                                  .CageReleaseBarHeight = 168,
                                  .CageReleaseHeight = 152,
                                  .Field3 = true,
                                  .HeadChangeS = -12,
                                  .Field6 = 2147483647,
                                  .TipChangeS = -2147483647 - 1}));
}

TEST(CageTable, SavesEveryMemberInTheOrderOfTheLine) {
  ConfigFixture fixture;
  const CageTypeRecord cage{.ID = "4",
                            .Name = "New",
                            .Code = "DISPENSE",
                            .Field2 = true,
                            .CageReleaseBarHeight = -168,
                            .CageReleaseHeight = 1234567,
                            .Field3 = true,
                            .HeadChangeS = 50,
                            .Field6 = -60,
                            .TipChangeS = 70,
                            .Field8 = 2147483647};
  Save(cageTable, fixture.Config, cage, backup);
  EXPECT_EQ(fixture.Writes(),
            (Texts{"write [CageType] CageReleaseBarHeight=-168 in /backup.bak",
                   "write [CageType] CageReleaseHeight=1234567 in /backup.bak",
                   "write [CageType] Item4=\"New\",DISPENSE,1,1,0,50,-60,70,2147483647 in /backup.bak"}));
}

TEST(CageTable, SavesWhatItLoadedUnchanged) {
  ConfigFixture fixture{cageFile};
  Save(cageTable, fixture.Config, Load(cageTable, fixture.Config, "1"), fixture.ConfigFile());
  Save(cageTable, fixture.Config, Load(cageTable, fixture.Config, "2"), fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), cageFile);
}

TEST(CageTable, ReadsInOrder) {
  ConfigFixture fixture{cageFile};
  LoadInstalled(cageTable, fixture.Config);
  EXPECT_EQ(fixture.Reads(),
            (Texts{"read [CageType] Installed", "read [CageType] Item1",
                   "read [CageType] CageReleaseBarHeight", "read [CageType] CageReleaseHeight"}));
}

TEST(CageTable, ReadsTheFileItIsGivenAndNamesTheInstalledItem) {
  ConfigFixture fixture{cageFile};
  fixture.Settings.Load("/other.bak", "[CageType]\nInstalled=6\nItem6=\"Six\",C\nCageReleaseHeight=9\n");
  const auto cage = LoadInstalled(cageTable, fixture.Config, "/other.bak");
  EXPECT_EQ(cage.ID, "6");
  EXPECT_EQ(cage.Name, "Six");
  EXPECT_EQ(cage.CageReleaseHeight, 9);
  EXPECT_EQ(cage.CageReleaseBarHeight, 0);
}

TEST(CageTable, RoundsWholeNumbersHalfToEven) {
  ConfigFixture fixture{
      "[CageType]\nItem1=A,B,0,0,0,2.5,3.5mm,-0.5,1.51\nCageReleaseBarHeight=13.5\nCageReleaseHeight=12.5\n"};
  const auto cage = Load(cageTable, fixture.Config, "1");
  EXPECT_EQ(cage, (CageTypeRecord{.ID = "1",
                                  .Name = "A",
                                  .Code = "B",
                                  .CageReleaseBarHeight = 14,
                                  .CageReleaseHeight = 12,
                                  .HeadChangeS = 2,
                                  .Field6 = 4,
                                  .Field8 = 2}));
  Save(cageTable, fixture.Config, cage, backup);
  EXPECT_EQ(fixture.Settings.Value("CageType", "CageReleaseBarHeight", backup), "14");
  EXPECT_EQ(fixture.Settings.Value("CageType", "CageReleaseHeight", backup), "12");
}

TEST(CageTable, KeepsZeroForNumbersThatDoNotFitOrAreMissing) {
  ConfigFixture fixture{
      "[CageType]\nItem1=A,B,1,1,1,2147483648,abc,-2147483649,\nCageReleaseBarHeight=1e10\n"};
  const auto cage = Load(cageTable, fixture.Config, "1");
  EXPECT_EQ(cage, (CageTypeRecord{
                      .ID = "1", .Name = "A", .Code = "B", .Field2 = true, .Field3 = true, .Field4 = true}));
}

TEST(CageTable, TheFlagsOfTheLineAreWordsOrNumbers) {
  ConfigFixture fixture{"[CageType]\nItem1=A,B,True,1x,2\nItem2=A,B,yes,-1,2.5abc\n"};
  EXPECT_TRUE(Load(cageTable, fixture.Config, "1").Field2);
  EXPECT_FALSE(Load(cageTable, fixture.Config, "1").Field3);
  EXPECT_TRUE(Load(cageTable, fixture.Config, "1").Field4);
  EXPECT_FALSE(Load(cageTable, fixture.Config, "2").Field2);
  EXPECT_TRUE(Load(cageTable, fixture.Config, "2").Field3);
  EXPECT_FALSE(Load(cageTable, fixture.Config, "2").Field4);
}

TEST(CageTable, ReadsEachValueInItsOwnForm) {
  ConfigFixture fixture{
      "[CageType]\nItem1=A,B,1x,1x,1x,5x,6x,7x,8x\nCageReleaseBarHeight=168x\nCageReleaseHeight=152x\n"};
  const auto cage = Load(cageTable, fixture.Config, "1");
  EXPECT_EQ(cage, (CageTypeRecord{.ID = "1",
                                  .Name = "A",
                                  .Code = "B",
                                  .CageReleaseBarHeight = 168,
                                  .CageReleaseHeight = 152,
                                  .HeadChangeS = 5,
                                  .Field6 = 6,
                                  .TipChangeS = 7,
                                  .Field8 = 8}));
}

TEST(CageTable, TakesTheCodeAsItStands) {
  ConfigFixture fixture{"[CageType]\nItem1=\"A\",\"MICROTITER\",1\nItem2=B, MICROTITER ,1\n"};
  EXPECT_EQ(Load(cageTable, fixture.Config, "1").Code, "\"MICROTITER\"");
  EXPECT_EQ(Load(cageTable, fixture.Config, "2").Code, " MICROTITER ");
  Save(cageTable, fixture.Config, Load(cageTable, fixture.Config, "1"), backup);
  EXPECT_EQ(fixture.Settings.Value("CageType", "Item1", backup), "\"A\",\"MICROTITER\",1,0,0,0,0,0,0");
}

TEST(CageTable, KeepsZerosAndFlagsThatAreOffAtTheEndOfTheLine) {
  ConfigFixture fixture;
  const CageTypeRecord cage{.ID = "1", .Name = "A", .Code = "B"};
  Save(cageTable, fixture.Config, cage, backup);
  EXPECT_EQ(fixture.Settings.Value("CageType", "Item1", backup), "\"A\",B,0,0,0,0,0,0,0");
}

TEST(CageTable, AShortLineLeavesTheRestEmpty) {
  ConfigFixture fixture{"[CageType]\nItem1=\"A\",B,1,1\n"};
  const auto cage = Load(cageTable, fixture.Config, "1");
  EXPECT_TRUE(cage.Field3);
  EXPECT_FALSE(cage.Field4);
  EXPECT_EQ(cage.HeadChangeS, 0);
}

// What a save without a number leaves behind: the end of the table has none.
TEST(CageTable, SavesARecordWithoutANumberUnderTheKeyWithoutANumber) {
  ConfigFixture fixture;
  Save(cageTable, fixture.Config, CageTypeRecord{}, backup);
  EXPECT_EQ(fixture.Settings.Value("CageType", "Item", backup), "\"\",,0,0,0,0,0,0,0");
}

TEST(CageTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(cageTable, cageFile);
}

TEST(FindMicrotiterCage, GivesTheFirstOfItsClass) {
  ConfigFixture fixture{
      "[CageType]\nItem1=\"a\",SERIALDILUTE\nItem2=\"b\",MICROTITER,0,0,0,5\nItem3=\"c\",MICROTITER\n"};
  const auto cage = FindMicrotiterCage(fixture.Config);
  EXPECT_EQ(cage.ID, "2");
  EXPECT_EQ(cage.HeadChangeS, 5);
}

TEST(FindMicrotiterCage, ComparesTheClassExactly) {
  ConfigFixture fixture{"[CageType]\nItem1=\"a\",microtiter\nItem2=\"b\",\"MICROTITER\"\n"};
  EXPECT_EQ(FindMicrotiterCage(fixture.Config).ID, "3");
}

TEST(FindMicrotiterCage, GivesTheEndRecordWithItsValuesWhenThereIsNone) {
  ConfigFixture fixture{
      "[CageType]\nItem1=\"a\",SERIALDILUTE\nItem2=\"\",OTHER,0,0,0,7\nItem3=\"c\",MICROTITER\n"};
  const auto cage = FindMicrotiterCage(fixture.Config);
  EXPECT_EQ(cage.ID, "2");
  EXPECT_EQ(cage.HeadChangeS, 7);
}

}  // namespace
}  // namespace zolvane
