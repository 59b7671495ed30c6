#include "config/tables/plates.h"

#include <gtest/gtest.h>

#include <string>

#include "config/config_fixture.h"

namespace zolvane {
namespace {

constexpr std::string_view plateFile =
    "[PlateType]\n"
    "SBSA1Xmm=14.38\n"
    "SBSA1Ymm=11.24\n"
    "Item1=\"96-Well\",PLATE,8,12,5.5,6.25,7.125,8.5,9.75,10.5,ROUND,12.5,13.25,14.125,1,0,1,0,1,0,1\n"
    "Item2=\"Trough\",RES,-8,-12,-5.5,0,1E-05,0,0,0,\"SQ\",0,0,0,0,1,0,1,0,1,0\n";

TEST(PlateTable, LoadsEveryMember) {
  ConfigFixture fixture{plateFile};
  const auto plate = Load(plateTable, fixture.Config, "1");
  EXPECT_EQ(plate, (PlateTypeRecord{.ID = "1",
                                    .Name = "96-Well",
                                    .Field2 = "PLATE",
                                    .Field3 = 8,
                                    .Field4 = 12,
                                    .Field5 = 5.5,
                                    .Field6 = 6.25,
                                    .Field7 = 7.125,
                                    .Field8 = 8.5,
                                    .Field9 = 9.75,
                                    .Field10 = 10.5,
                                    .Field11 = "ROUND",
                                    .Field12 = 12.5,
                                    .Field13 = 13.25,
                                    .Field14 = 14.125,
                                    .Field15 = true,
                                    .SBSA1Xmm = 14.38,
                                    .SBSA1Ymm = 11.24,
                                    .Field17 = true,
                                    .Field19 = true,
                                    .Field21 = true}));
}

TEST(PlateTable, LoadsTheOtherFlagsAndTextsAsTheyStand) {
  ConfigFixture fixture{plateFile};
  const auto plate = Load(plateTable, fixture.Config, "2");
  EXPECT_EQ(plate, (PlateTypeRecord{.ID = "2",
                                    .Name = "Trough",
                                    .Field2 = "RES",
                                    .Field3 = -8,
                                    .Field4 = -12,
                                    .Field5 = -5.5,
                                    .Field7 = 0.00001,
                                    .Field11 = "\"SQ\"",
                                    .SBSA1Xmm = 14.38,
                                    .SBSA1Ymm = 11.24,
                                    .Field16 = true,
                                    .Field18 = true,
                                    .Field20 = true}));
}

TEST(PlateTable, SavesEveryMemberKeysFirst) {
  ConfigFixture fixture;
  const PlateTypeRecord plate{.ID = "7",
                              .Name = "New",
                              .Field2 = "two",
                              .Field3 = -3,
                              .Field4 = 4,
                              .Field5 = 5.5,
                              .Field6 = 1.0 / 3.0,
                              .Field7 = 7.0,
                              .Field8 = 0.00001,
                              .Field9 = 9.25,
                              .Field10 = -10.5,
                              .Field11 = "eleven",
                              .Field12 = 12.5,
                              .Field13 = 13.5,
                              .Field14 = 14.5,
                              .SBSA1Xmm = 1.5,
                              .SBSA1Ymm = 2.0 / 3.0,
                              .Field16 = true,
                              .Field18 = true,
                              .Field20 = true};
  Save(plateTable, fixture.Config, plate, backup);
  EXPECT_EQ(
      fixture.Writes(),
      (Texts{"write [PlateType] SBSA1Xmm=1.5 in /backup.bak",
             "write [PlateType] SBSA1Ymm=0.666666666666667 in /backup.bak",
             "write [PlateType] Item7=\"New\",two,-3,4,5.5,0.333333333333333,7,1E-05,9.25,-10.5,eleven,12.5,"
             "13.5,14.5,0,1,0,1,0,1,0 in /backup.bak"}));
}

TEST(PlateTable, SavesWhatItLoadedUnchanged) {
  ConfigFixture fixture{plateFile};
  Save(plateTable, fixture.Config, Load(plateTable, fixture.Config, "1"), fixture.ConfigFile());
  Save(plateTable, fixture.Config, Load(plateTable, fixture.Config, "2"), fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), plateFile);
}

TEST(PlateTable, ReadsTheLineAndThenThePairOfTheSection) {
  ConfigFixture fixture{plateFile};
  Load(plateTable, fixture.Config, "2", "/other.bak");
  EXPECT_EQ(fixture.Reads(),
            (Texts{"read [PlateType] Item2 in /other.bak", "read [PlateType] SBSA1Xmm in /other.bak",
                   "read [PlateType] SBSA1Ymm in /other.bak"}));
}

TEST(PlateTable, EveryPlateLoadsTheSamePairAndTheLastOneSavedWins) {
  ConfigFixture fixture{plateFile};
  auto first = Load(plateTable, fixture.Config, "1");
  auto second = Load(plateTable, fixture.Config, "2");
  EXPECT_EQ(first.SBSA1Xmm, second.SBSA1Xmm);
  second.SBSA1Xmm = 20.0;
  Save(plateTable, fixture.Config, first, backup);
  Save(plateTable, fixture.Config, second, backup);
  EXPECT_EQ(fixture.Settings.Value("PlateType", "SBSA1Xmm", backup), "20");
}

TEST(PlateTable, WritesAll21FieldsWhenTheLastOnesAreOff) {
  ConfigFixture fixture;
  const PlateTypeRecord plate{.ID = "1", .Name = "P", .Field15 = true};
  Save(plateTable, fixture.Config, plate, backup);
  EXPECT_EQ(fixture.Settings.Value("PlateType", "Item1", backup),
            "\"P\",,0,0,0,0,0,0,0,0,,0,0,0,1,0,0,0,0,0,0");
}

TEST(PlateTable, StrictFieldsThatDoNotConvertStayZero) {
  ConfigFixture fixture{
      "[PlateType]\nSBSA1Xmm=14mm\nSBSA1Ymm=\nItem1=P,T,8x,32768,5mm,,7 "
      "7,x,1e400,1d1,R,12x,abc,1;4,yes,T,1x,,on,x,2y\n"};
  const auto plate = Load(plateTable, fixture.Config, "1");
  EXPECT_EQ(plate, (PlateTypeRecord{.ID = "1", .Name = "P", .Field2 = "T", .Field11 = "R"}));
}

TEST(PlateTable, ReadsEachValueInItsOwnForm) {
  ConfigFixture fixture{
      "[PlateType]\nSBSA1Xmm=1x\nSBSA1Ymm=1x\nItem1=\"P\"\"p\",T,1x,1x,1x,1x,1x,1x,1x,1x,R,1x,1x,1x,1x,1x,1x,"
      "1x,1x,1x,1x\n"};
  Save(plateTable, fixture.Config, Load(plateTable, fixture.Config, "1"), backup);
  EXPECT_EQ(fixture.Settings.Text("/backup.bak"),
            "[PlateType]\nSBSA1Xmm=0\nSBSA1Ymm=0\nItem1=\"Pp\",T,0,0,0,0,0,0,0,0,R,0,0,0,0,0,0,0,0,0,0\n");
}

TEST(PlateTable, RoundsStrictShortsHalfToEven) {
  ConfigFixture fixture{"[PlateType]\nItem1=P,T,12.5,13.5\n"};
  EXPECT_EQ(Load(plateTable, fixture.Config, "1").Field3, 12);
  EXPECT_EQ(Load(plateTable, fixture.Config, "1").Field4, 14);
}

TEST(PlateTable, DoesNotUseTheDeviceFactor) {
  ConfigFixture fixture{plateFile};
  fixture.SetFactor(0.0);
  const auto plate = Load(plateTable, fixture.Config, "1");
  EXPECT_EQ(plate.Field5, 5.5);
  Save(plateTable, fixture.Config, plate, fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), plateFile);
}

TEST(PlateTable, AMissingItemIsEmptyButForItsNumberAndThePair) {
  ConfigFixture fixture{plateFile};
  const auto plate = Load(plateTable, fixture.Config, "3");
  EXPECT_EQ(plate.ID, "3");
  EXPECT_EQ(plate.Name, "");
  EXPECT_EQ(plate.SBSA1Xmm, 14.38);
}

TEST(PlateTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(plateTable, plateFile);
}

}  // namespace
}  // namespace zolvane
