#include "config/tables/labware_tables.h"

#include <gtest/gtest.h>

#include <string>

#include "config/config_fixture.h"

namespace zolvane {
namespace {

// ---- Axes ----

constexpr std::string_view axisHeader = "[Device_TypeA_CageB]\n";

struct AxisFixture : ConfigFixture {
  explicit AxisFixture(const std::string& lines) : ConfigFixture{std::string{axisHeader} + lines} {
    Config.Current.Device.Name = "A";
    Config.Current.Cage.Name = "B";
    Config.Current.Axes = {};
  }

  const AxisSlots& Load() {
    LoadAxes(Config);
    return Config.Current.Axes;
  }
};

TEST(Axes, StandInTheSectionOfTheDeviceAndTheCage) {
  CurrentRecords current;
  current.Device.Name = "Zolvane 200";
  current.Cage.Name = "1/8/12 Module";
  EXPECT_EQ(AxisSection(current), "Device_TypeZolvane 200_Cage1/8/12 Module");
  EXPECT_EQ(AxisSection(CurrentRecords{}), "Device_Type_Cage");
}

TEST(Axes, LoadEveryMember) {
  AxisFixture fixture{"Axis1=\"X\",0.25,800,32000,64000,-160,40000,4000,1100,500,16,-1,2,3,240\n"};
  const auto& axis = fixture.Load().X;
  EXPECT_TRUE(axis.Defined);
  EXPECT_EQ(axis.Name, "X");
  EXPECT_EQ(axis.UnitsPerStep, 0.25F);
  EXPECT_EQ(axis.Field3, 800);
  EXPECT_EQ(axis.Field4, 32000);
  EXPECT_EQ(axis.Field5, 64000);
  EXPECT_EQ(axis.Field6, -160);
  EXPECT_EQ(axis.Field7, 40000);
  EXPECT_EQ(axis.Field8, 4000);
  EXPECT_EQ(axis.Field9, 1100);
  EXPECT_EQ(axis.Field10, 500);
  EXPECT_EQ(axis.Field11, 16);
  EXPECT_EQ(axis.Field12, -1);
  EXPECT_EQ(axis.Field13, 2);
  EXPECT_EQ(axis.Field14, 3);
  EXPECT_EQ(axis.Field15, 240);
}

TEST(Axes, FillTheSlotOfTheirName) {
  AxisFixture fixture{
      "Axis1=SDS,7\nAxis2=\"SDY\",12\nAxis3=SDX,10\nAxis4=\"S\",4\nAxis5=Z,3\nAxis6=Y,2\nAxis7=X,1\n"};
  const auto& axes = fixture.Load();
  EXPECT_EQ(axes.X.UnitsPerStep, 1.0F);
  EXPECT_EQ(axes.Y.UnitsPerStep, 2.0F);
  EXPECT_EQ(axes.Z.UnitsPerStep, 3.0F);
  EXPECT_EQ(axes.S.UnitsPerStep, 4.0F);
  EXPECT_EQ(axes.SDX.UnitsPerStep, 5.0F);
  EXPECT_EQ(axes.SDY.UnitsPerStep, 6.0F);
  EXPECT_EQ(axes.SDS.UnitsPerStep, 7.0F);
  EXPECT_TRUE(axes.SDS.Defined);
  EXPECT_EQ(axes.SDY.Name, "SDY");
}

TEST(Axes, OfOtherNamesAreDropped) {
  AxisFixture fixture{"Axis1=x,1\nAxis2= X,1\nAxis3=XY,1\nAxis4=sdx,1\nAxis5=,1\nAxis6=Q,1\nAxis7=Y,2\n"};
  const auto& axes = fixture.Load();
  EXPECT_FALSE(axes.X.Defined);
  EXPECT_FALSE(axes.SDX.Defined);
  EXPECT_TRUE(axes.Y.Defined);
}

TEST(Axes, ReadTheConfigurationFileUpToTheFirstMissingLine) {
  AxisFixture fixture{"Axis1=X,1\nAxis2=Y,2\nAxis4=Z,4\n"};
  EXPECT_FALSE(fixture.Load().Z.Defined);
  EXPECT_EQ(
      fixture.Calls.Of({"read ", "split "}),
      (Texts{"read [Device_TypeA_CageB] Axis1", "split \",\" of \"X,1\"", "read [Device_TypeA_CageB] Axis2",
             "split \",\" of \"Y,2\"", "read [Device_TypeA_CageB] Axis3"}));
}

TEST(Axes, ResetAllSlotsFirst) {
  AxisFixture fixture{"Axis1=X,1\n"};
  for (auto slot : {&AxisSlots::X, &AxisSlots::Y, &AxisSlots::Z, &AxisSlots::S, &AxisSlots::SDX,
                    &AxisSlots::SDY, &AxisSlots::SDS}) {
    (fixture.Config.Current.Axes.*slot).Defined = true;
    (fixture.Config.Current.Axes.*slot).Field15 = 9;
  }
  const auto& axes = fixture.Load();
  EXPECT_TRUE(axes.X.Defined);
  EXPECT_EQ(axes.X.Field15, 0);
  for (const auto* axis : {&axes.Y, &axes.Z, &axes.S, &axes.SDX, &axes.SDY, &axes.SDS}) {
    EXPECT_FALSE(axis->Defined);
    EXPECT_EQ(axis->Field15, 0);
  }
}

TEST(Axes, AreAllEmptyWithoutTheirSection) {
  AxisFixture fixture{"Axis1=X,1\n"};
  fixture.Config.Current.Cage.Name = "C";
  EXPECT_FALSE(fixture.Load().X.Defined);
  EXPECT_EQ(fixture.Reads(), Texts{"read [Device_TypeA_CageC] Axis1"});
}

TEST(Axes, InheritWhatALineLacksFromTheLineBefore) {
  AxisFixture fixture{"Axis1=X,1,3,4,5,6,7,8,9,10,11,12,13,14,15\nAxis2=Y,2,33\n"};
  const auto& axis = fixture.Load().Y;
  EXPECT_EQ(axis.Name, "Y");
  EXPECT_EQ(axis.UnitsPerStep, 2.0F);
  EXPECT_EQ(axis.Field3, 33);
  EXPECT_EQ(axis.Field4, 4);
  EXPECT_EQ(axis.Field5, 5);
  EXPECT_EQ(axis.Field6, 6);
  EXPECT_EQ(axis.Field7, 7);
  EXPECT_EQ(axis.Field8, 8);
  EXPECT_EQ(axis.Field9, 9);
  EXPECT_EQ(axis.Field10, 10);
  EXPECT_EQ(axis.Field11, 11);
  EXPECT_EQ(axis.Field12, 12);
  EXPECT_EQ(axis.Field13, 13);
  EXPECT_EQ(axis.Field14, 14);
  EXPECT_EQ(axis.Field15, 15);
}

TEST(Axes, InheritFromALineThatIsDropped) {
  AxisFixture fixture{"Axis1=none,5,3\nAxis2=Y\n"};
  EXPECT_EQ(fixture.Load().Y.UnitsPerStep, 5.0F);
  EXPECT_EQ(fixture.Load().Y.Field3, 3);
}

TEST(Axes, InheritStrictFieldsThatDoNotConvertAndZeroTolerantOnes) {
  AxisFixture fixture{
      "Axis1=X,1,3,4,5,6,7,8,9,10,11,12,13,14,15\n"
      "Axis2=Y,2mm,x,4mm,5mm,,7 7,1e10,32768,abc,-32769,,1x,70000,xyz\n"};
  const auto& axis = fixture.Load().Y;
  EXPECT_EQ(axis.UnitsPerStep, 1.0F);
  EXPECT_EQ(axis.Field3, 3);
  EXPECT_EQ(axis.Field4, 4);
  EXPECT_EQ(axis.Field5, 5);
  EXPECT_EQ(axis.Field6, 6);
  EXPECT_EQ(axis.Field7, 7);
  EXPECT_EQ(axis.Field8, 8);
  EXPECT_EQ(axis.Field9, 9);
  EXPECT_EQ(axis.Field10, 10);
  EXPECT_EQ(axis.Field11, 11);
  EXPECT_EQ(axis.Field12, 12);
  EXPECT_EQ(axis.Field13, 13);
  EXPECT_EQ(axis.Field14, 14);
  EXPECT_EQ(axis.Field15, 0);
}

TEST(Axes, ReadEachFieldInItsOwnForm) {
  AxisFixture fixture{
      "Axis1=X,1,3,4,5,6,7,8,9,10,11,12,13,14,15\n"
      "Axis2=Y,99x,99x,99x,99x,99x,99x,99x,99x,99x,99x,99x,99x,99x,99x\n"};
  const auto& axis = fixture.Load().Y;
  EXPECT_EQ(axis.UnitsPerStep, 1.0F);
  EXPECT_EQ(axis.Field3, 3);
  EXPECT_EQ(axis.Field4, 4);
  EXPECT_EQ(axis.Field5, 99);
  EXPECT_EQ(axis.Field6, 6);
  EXPECT_EQ(axis.Field7, 7);
  EXPECT_EQ(axis.Field8, 8);
  EXPECT_EQ(axis.Field9, 9);
  EXPECT_EQ(axis.Field10, 10);
  EXPECT_EQ(axis.Field11, 11);
  EXPECT_EQ(axis.Field12, 12);
  EXPECT_EQ(axis.Field13, 13);
  EXPECT_EQ(axis.Field14, 14);
  EXPECT_EQ(axis.Field15, 99);
}

TEST(Axes, LoseEveryQuoteOfTheirName) {
  AxisFixture fixture{"Axis1=S\"D\"\"X\",8\n"};
  EXPECT_EQ(fixture.Load().SDX.Name, "SDX");
}

TEST(Axes, TolerantFieldsTakeALeadingNumberAndAreZeroWithoutOne) {
  AxisFixture fixture{
      "Axis1=X,1,3,4,5.5mm,6,7,8,9,10,11,12,13,14,15\nAxis2=Y,1,3,4,,6,7,8,9,10,11,12,13,14,2.5mm\n"};
  const auto& axes = fixture.Load();
  EXPECT_EQ(axes.X.Field5, 6);
  EXPECT_EQ(axes.Y.Field5, 0);
  EXPECT_EQ(axes.Y.Field15, 2);
}

TEST(Axes, TolerantFieldsThatDoNotFitAreInherited) {
  AxisFixture fixture{
      "Axis1=X,1,3,4,5,6,7,8,9,10,11,12,13,14,15\nAxis2=Y,1,3,4,3e9,6,7,8,9,10,11,12,13,14,3e9\n"};
  EXPECT_EQ(fixture.Load().Y.Field5, 5);
  EXPECT_EQ(fixture.Load().Y.Field15, 15);
}

TEST(Axes, RoundWholeNumbersHalfToEven) {
  AxisFixture fixture{"Axis1=X,1,12.5,13.5,2.5,-0.5,1.5,3.5,2.5,3.5,4.5,5.5,6.5,7.5,4.5\n"};
  const auto& axis = fixture.Load().X;
  EXPECT_EQ(axis.Field3, 12);
  EXPECT_EQ(axis.Field4, 14);
  EXPECT_EQ(axis.Field5, 2);
  EXPECT_EQ(axis.Field6, 0);
  EXPECT_EQ(axis.Field7, 2);
  EXPECT_EQ(axis.Field8, 4);
  EXPECT_EQ(axis.Field9, 2);
  EXPECT_EQ(axis.Field10, 4);
  EXPECT_EQ(axis.Field11, 4);
  EXPECT_EQ(axis.Field12, 6);
  EXPECT_EQ(axis.Field13, 6);
  EXPECT_EQ(axis.Field14, 8);
  EXPECT_EQ(axis.Field15, 4);
}

TEST(Axes, OfOneNameOverwriteEachOther) {
  AxisFixture fixture{"Axis1=X,1,3\nAxis2=Y,2\nAxis3=X,4\n"};
  EXPECT_EQ(fixture.Load().X.UnitsPerStep, 4.0F);
  EXPECT_EQ(fixture.Load().Y.UnitsPerStep, 2.0F);
}

TEST(Axes, ScaleTheSerialDiluteXAndYAlone) {
  const std::string numbers = ",0.01,100,101,102,101,103,104,105,106,107,108,109,110,111\n";
  for (const std::string name : {"SDX", "SDY", "SDS", "X", "Y", "Z", "S"}) {
    AxisFixture fixture{"Axis1=\"" + name + "\"" + numbers};
    const auto& axes = fixture.Load();
    const bool scaled = name == "SDX" || name == "SDY";
    for (const auto* axis : {&axes.X, &axes.Y, &axes.Z, &axes.S, &axes.SDX, &axes.SDY, &axes.SDS}) {
      if (axis->Name == name) {
        EXPECT_EQ(axis->UnitsPerStep, scaled ? 0.005F : 0.01F) << name;
        EXPECT_EQ(axis->Field3, 100) << name;
        EXPECT_EQ(axis->Field4, 101) << name;
        EXPECT_EQ(axis->Field5, 102) << name;
        EXPECT_EQ(axis->Field6, scaled ? 202 : 101) << name;
        EXPECT_EQ(axis->Field7, scaled ? 206 : 103) << name;
        EXPECT_EQ(axis->Field8, 104) << name;
        EXPECT_EQ(axis->Field9, 105) << name;
        EXPECT_EQ(axis->Field14, 110) << name;
        EXPECT_EQ(axis->Field15, scaled ? 222 : 111) << name;
      }
    }
  }
}

TEST(Axes, RoundScaledFieldsHalfToEven) {
  AxisFixture fixture{"Axis1=SDX,1,0,0,0,1,3,0,0,0,0,0,0,0,5\n"};
  fixture.SetFactor(0.5);
  const auto& axis = fixture.Load().SDX;
  EXPECT_EQ(axis.Field6, 0);
  EXPECT_EQ(axis.Field7, 2);
  EXPECT_EQ(axis.Field15, 2);
}

// The field is a whole number before it is scaled, and again afterwards.
TEST(Axes, RoundBeforeAndAfterScaling) {
  AxisFixture fixture{"Axis1=SDX,1,0,0,0,2.5,3.5,0,0,0,0,0,0,0,0.5\n"};
  fixture.SetFactor(7.0);
  const auto& axis = fixture.Load().SDX;
  EXPECT_EQ(axis.Field6, 14);
  EXPECT_EQ(axis.Field7, 28);
  EXPECT_EQ(axis.Field15, 0);
}

// Dividing the double 0.01 would give 0.008.
TEST(Axes, KeepTheUnitsInSinglePrecisionBeforeAndAfterScaling) {
  AxisFixture fixture{"Axis1=SDX,0.01\nAxis2=Z,0.01\n"};
  fixture.SetFactor(1.25);
  const auto& axes = fixture.Load();
  EXPECT_EQ(axes.SDX.UnitsPerStep, 0.00799999945F);
  EXPECT_NE(axes.SDX.UnitsPerStep, 0.008F);
  EXPECT_EQ(axes.Z.UnitsPerStep, 0.01F);
}

TEST(Axes, ScaleInheritedValuesAgain) {
  AxisFixture fixture{"Axis1=SDX,8,0,0,0,10,20,0,0,0,0,0,0,0,30\nAxis2=SDY\nAxis3=SDX,bad\n"};
  const auto& axes = fixture.Load();
  EXPECT_EQ(axes.SDY.UnitsPerStep, 2.0F);
  EXPECT_EQ(axes.SDY.Field6, 40);
  EXPECT_EQ(axes.SDY.Field7, 80);
  EXPECT_EQ(axes.SDY.Field15, 120);
  EXPECT_EQ(axes.SDX.UnitsPerStep, 1.0F);
  EXPECT_EQ(axes.SDX.Field6, 80);
}

TEST(Axes, InheritScaledValuesInAnUnscaledLine) {
  AxisFixture fixture{"Axis1=SDX,8,0,0,0,10\nAxis2=SDS\n"};
  EXPECT_EQ(fixture.Load().SDS.UnitsPerStep, 4.0F);
  EXPECT_EQ(fixture.Load().SDS.Field6, 20);
}

TEST(Axes, KeepTheUnitsAsParsedWhenTheFactorIsZero) {
  AxisFixture fixture{"Axis1=SDX,8,0,0,0,10,20,0,0,0,0,0,0,0,30\n"};
  fixture.SetFactor(0.0);
  const auto& axis = fixture.Load().SDX;
  EXPECT_EQ(axis.UnitsPerStep, 8.0F);
  EXPECT_EQ(axis.Field6, 0);
  EXPECT_EQ(axis.Field7, 0);
  EXPECT_EQ(axis.Field15, 0);
}

TEST(Axes, KeepWhatDoesNotFitAfterScaling) {
  AxisFixture fixture{"Axis1=SDX,1e38,0,0,0,2000000000,3,0,0,0,0,0,0,0,2000000000\n"};
  fixture.SetFactor(2.0);
  EXPECT_EQ(fixture.Load().SDX.Field6, 2000000000);
  EXPECT_EQ(fixture.Load().SDX.Field7, 6);
  EXPECT_EQ(fixture.Load().SDX.Field15, 2000000000);
  fixture.SetFactor(0.1);
  EXPECT_EQ(fixture.Load().SDX.UnitsPerStep, 1e38F);
}

TEST(Axes, KeepUnitsBeyondSinglePrecisionOut) {
  AxisFixture fixture{"Axis1=X,5\nAxis2=Y,1e39\n"};
  EXPECT_EQ(fixture.Load().Y.UnitsPerStep, 5.0F);
}

TEST(Axes, TakeTheFactorWithEncodersWhenTheyAreOn) {
  AxisFixture fixture{"Axis1=SDX,8\n"};
  fixture.Config.Current.Device.SDXYEncoderStatus = true;
  fixture.Config.Current.Device.SDXYEncoderMMStepFactorOn = 4.0;
  EXPECT_EQ(fixture.Load().SDX.UnitsPerStep, 2.0F);
}

TEST(Axes, SkipALineThatCannotBeCut) {
  AxisFixture fixture{"Axis1=X,1\nAxis2=Y,2\nAxis3=Z\n"};
  fixture.Calls.FailEverythingThatStartsWith("split \",\" of \"Y,2\"");
  const auto& axes = fixture.Load();
  EXPECT_FALSE(axes.Y.Defined);
  EXPECT_TRUE(axes.Z.Defined);
  EXPECT_EQ(axes.Z.UnitsPerStep, 1.0F);
}

TEST(Axes, DoNotScaleTheLineBeforeAgainForALineThatCannotBeCut) {
  AxisFixture fixture{"Axis1=SDX,8\nAxis2=Y,2\n"};
  fixture.Calls.FailEverythingThatStartsWith("split \",\" of \"Y,2\"");
  EXPECT_EQ(fixture.Load().SDX.UnitsPerStep, 4.0F);
}

// One failing read must not cost the instrument its other axes.
TEST(Axes, AreStillReadBehindALineThatCannotBeRead) {
  AxisFixture fixture{"Axis1=X,1\nAxis2=Y,2\nAxis3=Z,3\n"};
  fixture.Calls.FailEverythingThatStartsWith("read [Device_TypeA_CageB] Axis2");
  const auto& axes = fixture.Load();
  EXPECT_EQ(axes.X.UnitsPerStep, 1.0F);
  EXPECT_FALSE(axes.Y.Defined);
  EXPECT_EQ(axes.Z.UnitsPerStep, 3.0F);
}

TEST(Axes, EndWhereNothingCanBeRead) {
  AxisFixture fixture{"Axis1=X,1\n"};
  fixture.Calls.FailEverythingThatStartsWith("read");
  EXPECT_FALSE(fixture.Load().X.Defined);
}

TEST(Axes, GoOnBehindALineOfACommaAlone) {
  AxisFixture fixture{"Axis1=X,1\nAxis2=,\nAxis3=Z\n"};
  EXPECT_EQ(fixture.Load().Z.UnitsPerStep, 1.0F);
}

TEST(Axes, EndWhere16BitCountersEnd) {
  AxisFixture fixture{""};
  const auto settings = fixture.WithoutEnd("X");
  EXPECT_TRUE(fixture.Load().X.Defined);
  EXPECT_EQ(settings->LastItem, "Axis32767");
}

// ---- Plates ----

constexpr std::string_view plateFile =
    "[PlateType]\n"
    "SBSA1Xmm=14.38\n"
    "SBSA1Ymm=11.24\n"
    "Item1=\"96-Well\",PLATE,8,12,5.5,6.25,7.125,8.5,9.75,10.5,ROUND,12.5,13.25,14.125,1,0,1,0,1,0,1\n"
    "Item2=\"Trough\",RES,-8,-12,-5.5,0,1E-05,0,0,0,\"SQ\",0,0,0,0,1,0,1,0,1,0\n";

TEST(PlateTable, LoadsEveryMember) {
  ConfigFixture fixture{plateFile};
  const auto plate = LoadPlateType(fixture.Config, "1", "");
  EXPECT_EQ(plate.Key, "1");
  EXPECT_EQ(plate.Name, "96-Well");
  EXPECT_EQ(plate.Field2, "PLATE");
  EXPECT_EQ(plate.Field3, 8);
  EXPECT_EQ(plate.Field4, 12);
  EXPECT_EQ(plate.Field5, 5.5);
  EXPECT_EQ(plate.Field6, 6.25);
  EXPECT_EQ(plate.Field7, 7.125);
  EXPECT_EQ(plate.Field8, 8.5);
  EXPECT_EQ(plate.Field9, 9.75);
  EXPECT_EQ(plate.Field10, 10.5);
  EXPECT_EQ(plate.Field11, "ROUND");
  EXPECT_EQ(plate.Field12, 12.5);
  EXPECT_EQ(plate.Field13, 13.25);
  EXPECT_EQ(plate.Field14, 14.125);
  EXPECT_TRUE(plate.Field15);
  EXPECT_EQ(plate.SBSA1Xmm, 14.38);
  EXPECT_EQ(plate.SBSA1Ymm, 11.24);
  EXPECT_FALSE(plate.Field16);
  EXPECT_TRUE(plate.Field17);
  EXPECT_FALSE(plate.Field18);
  EXPECT_TRUE(plate.Field19);
  EXPECT_FALSE(plate.Field20);
  EXPECT_TRUE(plate.Field21);
}

TEST(PlateTable, LoadsTheOtherFlagsAndTextsAsTheyStand) {
  ConfigFixture fixture{plateFile};
  const auto plate = LoadPlateType(fixture.Config, "2", "");
  EXPECT_EQ(plate.Field11, "\"SQ\"");
  EXPECT_EQ(plate.Field7, 0.00001);
  EXPECT_FALSE(plate.Field15);
  EXPECT_TRUE(plate.Field16);
  EXPECT_FALSE(plate.Field17);
  EXPECT_TRUE(plate.Field18);
  EXPECT_FALSE(plate.Field19);
  EXPECT_TRUE(plate.Field20);
  EXPECT_FALSE(plate.Field21);
}

TEST(PlateTable, SavesEveryMemberKeysFirst) {
  ConfigFixture fixture;
  PlateTypeRecord plate;
  plate.Key = "7";
  plate.Name = "New";
  plate.Field2 = "two";
  plate.Field3 = -3;
  plate.Field4 = 4;
  plate.Field5 = 5.5;
  plate.Field6 = 1.0 / 3.0;
  plate.Field7 = 7.0;
  plate.Field8 = 0.00001;
  plate.Field9 = 9.25;
  plate.Field10 = -10.5;
  plate.Field11 = "eleven";
  plate.Field12 = 12.5;
  plate.Field13 = 13.5;
  plate.Field14 = 14.5;
  plate.SBSA1Xmm = 1.5;
  plate.SBSA1Ymm = 2.0 / 3.0;
  plate.Field16 = true;
  plate.Field18 = true;
  plate.Field20 = true;
  SavePlateType(fixture.Config, plate, backup);
  EXPECT_EQ(
      fixture.Writes(),
      (Texts{"write [PlateType] SBSA1Xmm=1.5 in /backup.bak",
             "write [PlateType] SBSA1Ymm=0.666666666666667 in /backup.bak",
             "write [PlateType] Item7=\"New\",two,-3,4,5.5,0.333333333333333,7,1E-05,9.25,-10.5,eleven,12.5,"
             "13.5,14.5,0,1,0,1,0,1,0 in /backup.bak"}));
}

TEST(PlateTable, SavesWhatItLoadedUnchanged) {
  ConfigFixture fixture{plateFile};
  SavePlateType(fixture.Config, LoadPlateType(fixture.Config, "1", ""), fixture.ConfigFile());
  SavePlateType(fixture.Config, LoadPlateType(fixture.Config, "2", ""), fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), plateFile);
}

TEST(PlateTable, ReadsTheLineAndThenThePairOfTheSection) {
  ConfigFixture fixture{plateFile};
  LoadPlateType(fixture.Config, "2", "/other.bak");
  EXPECT_EQ(fixture.Reads(),
            (Texts{"read [PlateType] Item2 in /other.bak", "read [PlateType] SBSA1Xmm in /other.bak",
                   "read [PlateType] SBSA1Ymm in /other.bak"}));
}

TEST(PlateTable, EveryPlateLoadsTheSamePairAndTheLastOneSavedWins) {
  ConfigFixture fixture{plateFile};
  auto first = LoadPlateType(fixture.Config, "1", "");
  auto second = LoadPlateType(fixture.Config, "2", "");
  EXPECT_EQ(first.SBSA1Xmm, second.SBSA1Xmm);
  second.SBSA1Xmm = 20.0;
  SavePlateType(fixture.Config, first, backup);
  SavePlateType(fixture.Config, second, backup);
  EXPECT_EQ(fixture.Settings.Value("PlateType", "SBSA1Xmm", backup), "20");
}

TEST(PlateTable, WritesAll21FieldsWhenTheLastOnesAreOff) {
  ConfigFixture fixture;
  PlateTypeRecord plate;
  plate.Key = "1";
  plate.Name = "P";
  plate.Field15 = true;
  SavePlateType(fixture.Config, plate, backup);
  EXPECT_EQ(fixture.Settings.Value("PlateType", "Item1", backup),
            "\"P\",,0,0,0,0,0,0,0,0,,0,0,0,1,0,0,0,0,0,0");
}

TEST(PlateTable, StrictFieldsThatDoNotConvertStayZero) {
  ConfigFixture fixture{
      "[PlateType]\nSBSA1Xmm=14mm\nSBSA1Ymm=\nItem1=P,T,8x,32768,5mm,,7 "
      "7,x,1e400,1d1,R,12x,abc,1;4,yes,T,1x,,on,x,2y\n"};
  const auto plate = LoadPlateType(fixture.Config, "1", "");
  EXPECT_EQ(plate.Field3, 0);
  EXPECT_EQ(plate.Field4, 0);
  EXPECT_EQ(plate.Field5, 0.0);
  EXPECT_EQ(plate.Field6, 0.0);
  EXPECT_EQ(plate.Field7, 0.0);
  EXPECT_EQ(plate.Field8, 0.0);
  EXPECT_EQ(plate.Field9, 0.0);
  EXPECT_EQ(plate.Field10, 0.0);
  EXPECT_EQ(plate.Field12, 0.0);
  EXPECT_EQ(plate.Field13, 0.0);
  EXPECT_EQ(plate.Field14, 0.0);
  EXPECT_FALSE(plate.Field15);
  EXPECT_FALSE(plate.Field16);
  EXPECT_FALSE(plate.Field17);
  EXPECT_FALSE(plate.Field18);
  EXPECT_FALSE(plate.Field19);
  EXPECT_FALSE(plate.Field20);
  EXPECT_FALSE(plate.Field21);
  EXPECT_EQ(plate.SBSA1Xmm, 0.0);
  EXPECT_EQ(plate.SBSA1Ymm, 0.0);
}

TEST(PlateTable, ReadsEachValueInItsOwnForm) {
  ConfigFixture fixture{
      "[PlateType]\nSBSA1Xmm=1x\nSBSA1Ymm=1x\nItem1=\"P\"\"p\",T,1x,1x,1x,1x,1x,1x,1x,1x,R,1x,1x,1x,1x,1x,1x,"
      "1x,1x,1x,1x\n"};
  SavePlateType(fixture.Config, LoadPlateType(fixture.Config, "1", ""), backup);
  EXPECT_EQ(fixture.Settings.Text("/backup.bak"),
            "[PlateType]\nSBSA1Xmm=0\nSBSA1Ymm=0\nItem1=\"Pp\",T,0,0,0,0,0,0,0,0,R,0,0,0,0,0,0,0,0,0,0\n");
}

TEST(PlateTable, RoundsStrictShortsHalfToEven) {
  ConfigFixture fixture{"[PlateType]\nItem1=P,T,12.5,13.5\n"};
  EXPECT_EQ(LoadPlateType(fixture.Config, "1", "").Field3, 12);
  EXPECT_EQ(LoadPlateType(fixture.Config, "1", "").Field4, 14);
}

TEST(PlateTable, DoesNotUseTheDeviceFactor) {
  ConfigFixture fixture{plateFile};
  fixture.SetFactor(0.0);
  const auto plate = LoadPlateType(fixture.Config, "1", "");
  EXPECT_EQ(plate.Field5, 5.5);
  SavePlateType(fixture.Config, plate, fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), plateFile);
}

TEST(PlateTable, AMissingItemIsEmptyButForItsNumberAndThePair) {
  ConfigFixture fixture{plateFile};
  const auto plate = LoadPlateType(fixture.Config, "3", "");
  EXPECT_EQ(plate.Key, "3");
  EXPECT_EQ(plate.Name, "");
  EXPECT_EQ(plate.SBSA1Xmm, 14.38);
}

TEST(PlateTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(plateFile, [](ConfigFixture& fixture) {
    LoadPlateType(fixture.Config, "1", "");
    PlateTypeRecord plate;
    plate.Key = "5";
    SavePlateType(fixture.Config, plate, backup);
  });
}

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
  const auto record = LoadCalibration(fixture.Config, "1", "");
  EXPECT_EQ(record.Key, "1");
  EXPECT_EQ(record.Name, "STAGE1");
  EXPECT_EQ(record.Field2, 2016);
  EXPECT_EQ(record.Field3, -2487);
  EXPECT_EQ(record.Field4, 28);
  EXPECT_EQ(record.Field5, 35);
  EXPECT_EQ(record.Field6, 42);
  EXPECT_EQ(record.Field7, 49);
  EXPECT_EQ(record.Field8, 56);
  EXPECT_EQ(record.Field9, 63);
}

TEST(CalibrationTable, SavesEveryMemberDividedByTheFactor) {
  StageFixture fixture;
  CalibrationRecord record;
  record.Key = "3";
  record.Name = "STAGE3";
  record.Field2 = 2016;
  record.Field3 = -2487;
  record.Field4 = 41;
  record.Field5 = -41;
  record.Field6 = 60;
  record.Field7 = 70;
  record.Field8 = 81;
  record.Field9 = 1;
  SaveCalibration(fixture.Config, record, backup);
  EXPECT_EQ(fixture.Writes(),
            Texts{"write [Calibration_ZV 400] Item3=STAGE3,2016,-2487,21,-21,30,35,41,1 in /backup.bak"});
}

TEST(CalibrationTable, NeitherAddsNorDropsTheQuotesOfAName) {
  StageFixture fixture{calibrationFile};
  const auto record = LoadCalibration(fixture.Config, "2", "");
  EXPECT_EQ(record.Name, "\"STAGE2\"");
  SaveCalibration(fixture.Config, record, fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), calibrationFile);
}

TEST(CalibrationTable, RoundsHalfToEvenOnLoading) {
  StageFixture fixture{"[Calibration_ZV 400]\nItem1=A,2.5,3.5,2.5,3.5,0.5,-2.5,1.5,0.285\n"};
  fixture.SetFactor(1.0);
  const auto record = LoadCalibration(fixture.Config, "1", "");
  EXPECT_EQ(record.Field2, 2);
  EXPECT_EQ(record.Field3, 4);
  EXPECT_EQ(record.Field4, 2);
  EXPECT_EQ(record.Field5, 4);
  EXPECT_EQ(record.Field6, 0);
  EXPECT_EQ(record.Field7, -2);
  EXPECT_EQ(record.Field8, 2);
  fixture.SetFactor(100.0);
  EXPECT_EQ(LoadCalibration(fixture.Config, "1", "").Field9, 28);  // 28.499999...
}

TEST(CalibrationTable, ReadsEachFieldInItsOwnForm) {
  StageFixture fixture{"[Calibration_ZV 400]\nItem1=\"A\",2.5x,2.5x,2.5x,2.5x,2.5x,2.5x,2.5x,2.5x\n"};
  fixture.SetFactor(1.0);
  SaveCalibration(fixture.Config, LoadCalibration(fixture.Config, "1", ""), backup);
  EXPECT_EQ(fixture.Settings.Value("Calibration_ZV 400", "Item1", backup), "\"A\",2,2,2,2,2,2,2,2");
}

TEST(CalibrationTable, RoundsHalfAwayFromZeroOnSaving) {
  StageFixture fixture;
  CalibrationRecord record;
  record.Key = "1";
  record.Field4 = 5;
  record.Field5 = -5;
  SaveCalibration(fixture.Config, record, backup);
  EXPECT_EQ(fixture.Settings.Value("Calibration_ZV 400", "Item1", backup), ",0,0,3,-3,0,0,0,0");
}

TEST(CalibrationTable, TakesLeadingNumbersAndZeroWithoutOne) {
  StageFixture fixture{"[Calibration_ZV 400]\nItem1=A,12x,x,10mm,y,,1e3\n"};
  const auto record = LoadCalibration(fixture.Config, "1", "");
  EXPECT_EQ(record.Field2, 12);
  EXPECT_EQ(record.Field3, 0);
  EXPECT_EQ(record.Field4, 20);
  EXPECT_EQ(record.Field5, 0);
  EXPECT_EQ(record.Field6, 0);
  EXPECT_EQ(record.Field7, 2000);
  EXPECT_EQ(record.Field8, 0);
}

TEST(CalibrationTable, KeepsZeroForValuesThatDoNotFit) {
  StageFixture fixture{"[Calibration_ZV 400]\nItem1=A,3e9,-3e9,1073741823,1073741824,1e308\n"};
  const auto record = LoadCalibration(fixture.Config, "1", "");
  EXPECT_EQ(record.Field2, 0);
  EXPECT_EQ(record.Field3, 0);
  EXPECT_EQ(record.Field4, 2147483646);
  EXPECT_EQ(record.Field5, 0);
  EXPECT_EQ(record.Field6, 0);
  fixture.SetFactor(1e10);
  EXPECT_EQ(LoadCalibration(fixture.Config, "1", "").Field6, 0);
}

TEST(CalibrationTable, AFactorOfZeroLeavesItsFieldsEmptyOnSaving) {
  StageFixture fixture;
  fixture.SetFactor(0.0);
  CalibrationRecord record;
  record.Key = "1";
  record.Name = "A";
  record.Field2 = 5;
  record.Field4 = 40;
  SaveCalibration(fixture.Config, record, backup);
  EXPECT_EQ(fixture.Settings.Value("Calibration_ZV 400", "Item1", backup), "A,5,0");
}

TEST(CalibrationTable, AMissingItemCarriesTheNumberItWasAskedForBy) {
  StageFixture fixture{calibrationFile};
  const auto record = LoadCalibration(fixture.Config, "3", "");
  EXPECT_EQ(record.Key, "3");
  EXPECT_EQ(record.Name, "");
  EXPECT_EQ(fixture.Reads(), Texts{"read [Calibration_ZV 400] Item3"});
}

TEST(CalibrationTable, ReadsTheFileItIsGiven) {
  StageFixture fixture{calibrationFile};
  fixture.Settings.Load("/other.bak", "[Calibration_ZV 400]\nItem1=OTHER\n");
  EXPECT_EQ(LoadCalibration(fixture.Config, "1", "/other.bak").Name, "OTHER");
}

TEST(CalibrationTable, WithoutAnItemGivesAnEmptyRecord) {
  StageFixture fixture{"[Calibration_ZV 400]\nItem=STAGE1,2016\n"};
  const auto record = LoadCalibration(fixture.Config, "", "");
  EXPECT_EQ(record.Key, "");
  EXPECT_EQ(record.Name, "");
  EXPECT_EQ(record.Field2, 0);
}

TEST(CalibrationTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(calibrationFile, [](ConfigFixture& fixture) {
    LoadCalibration(fixture.Config, "1", "");
    SaveCalibration(fixture.Config, {}, backup);
  });
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
  const auto record = LoadPosition(fixture.Config, "1", "", "");
  EXPECT_EQ(record.Key, "1");
  EXPECT_EQ(record.PositionName, "STAGE1");
  EXPECT_EQ(record.Name, "Stage 1");
  EXPECT_EQ(record.Field3, "STAGE");
  EXPECT_EQ(record.Field4, 1612);
  EXPECT_EQ(record.Field5, -2004);
  EXPECT_EQ(record.X, 42);
  EXPECT_EQ(record.Y, 49);
  EXPECT_EQ(record.Field8, 56);
  EXPECT_EQ(record.Field9, 63);
  EXPECT_EQ(record.Field10, 70);
  EXPECT_EQ(record.Field11, 77);
  EXPECT_TRUE(record.Flag12);
  EXPECT_FALSE(record.NotFlag12);
  EXPECT_FALSE(record.Flag13);
  EXPECT_EQ(record.Field14, "PLATE");
  EXPECT_TRUE(record.Flag15);
  EXPECT_FALSE(record.Flag16);
}

TEST(PositionTable, LoadsTheOtherFlags) {
  StageFixture fixture{positionFile};
  const auto record = LoadPosition(fixture.Config, "2", "", "");
  EXPECT_FALSE(record.Flag12);
  EXPECT_TRUE(record.NotFlag12);
  EXPECT_TRUE(record.Flag13);
  EXPECT_EQ(record.Field14, "\"WASTE\"");
  EXPECT_FALSE(record.Flag15);
  EXPECT_TRUE(record.Flag16);
}

TEST(PositionTable, SavesEveryMemberDividedByTheFactorAndNeverTheNegation) {
  StageFixture fixture;
  PositionRecord record;
  record.Key = "5";
  record.PositionName = "NEST8";
  record.Name = "Nest";
  record.Field3 = "KIND";
  record.Field4 = 1612;
  record.Field5 = -2004;
  record.X = 1001;
  record.Y = -1001;
  record.Field8 = 80;
  record.Field9 = 91;
  record.Field10 = 100;
  record.Field11 = 112;
  record.NotFlag12 = true;
  record.Flag13 = true;
  record.Field14 = "USE";
  record.Flag16 = true;
  SavePosition(fixture.Config, record, backup);
  EXPECT_EQ(fixture.Writes(),
            Texts{"write [Position_ZV 400] Item5=NEST8,\"Nest\",KIND,1612,-2004,501,-501,40,46,50,56,"
                  "0,1,USE,0,1 in /backup.bak"});
}

TEST(PositionTable, SavesWhatItLoadedUnchanged) {
  StageFixture fixture{positionFile};
  SavePosition(fixture.Config, LoadPosition(fixture.Config, "1", "", ""), fixture.ConfigFile());
  SavePosition(fixture.Config, LoadPosition(fixture.Config, "2", "", ""), fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), positionFile);
}

TEST(PositionTable, TakesTextsAsTheyStandButTheDisplayName) {
  StageFixture fixture{"[Position_ZV 400]\nItem1=\"P\", \"N\"\"n\" ,\"T\"\n"};
  const auto record = LoadPosition(fixture.Config, "1", "", "");
  EXPECT_EQ(record.PositionName, "\"P\"");
  EXPECT_EQ(record.Name, " Nn ");
  EXPECT_EQ(record.Field3, "\"T\"");
}

TEST(PositionTable, RoundsHalfAwayFromZeroOnLoadingButTheMotorCountsHalfToEven) {
  StageFixture fixture{"[Position_ZV 400]\nItem1=P,N,T,2.5,3.5,2.5,-2.5,0.5,1.5,3.5,-0.4\n"};
  fixture.SetFactor(1.0);
  const auto record = LoadPosition(fixture.Config, "1", "", "");
  EXPECT_EQ(record.Field4, 2);
  EXPECT_EQ(record.Field5, 4);
  EXPECT_EQ(record.X, 3);
  EXPECT_EQ(record.Y, -3);
  EXPECT_EQ(record.Field8, 1);
  EXPECT_EQ(record.Field9, 2);
  EXPECT_EQ(record.Field10, 4);
  EXPECT_EQ(record.Field11, 0);
}

TEST(PositionTable, ReadsEachFieldInItsOwnForm) {
  StageFixture fixture{
      "[Position_ZV "
      "400]\nItem1=\"P\",\"N\"n,\"T\",2.5x,2.5x,2.5x,2.5x,2.5x,2.5x,2.5x,2.5x,1x,1x,\"U\",1x,1x\n"};
  fixture.SetFactor(1.0);
  SavePosition(fixture.Config, LoadPosition(fixture.Config, "1", "", ""), backup);
  EXPECT_EQ(fixture.Settings.Value("Position_ZV 400", "Item1", backup),
            "\"P\",\"Nn\",\"T\",2,2,3,3,3,3,3,3,0,0,\"U\",0,0");
}

TEST(PositionTable, RoundsTheDecimalFormOfAProduct) {
  StageFixture fixture{"[Position_ZV 400]\nItem1=P,N,T,0,0,0.285\n"};
  fixture.SetFactor(100.0);
  EXPECT_EQ(LoadPosition(fixture.Config, "1", "", "").X, 29);
}

TEST(PositionTable, TheFlagAndItsNegationStayOffWhenTheFieldDoesNotConvertOrIsMissing) {
  StageFixture fixture{"[Position_ZV 400]\nItem1=P,N,T,1,2,3,4,5,6,7,8,yes,on,x,,1y\nItem2=P,N\n"};
  for (const auto* item : {"1", "2"}) {
    const auto record = LoadPosition(fixture.Config, item, "", "");
    EXPECT_FALSE(record.Flag12);
    EXPECT_FALSE(record.NotFlag12);
    EXPECT_FALSE(record.Flag13);
    EXPECT_FALSE(record.Flag15);
    EXPECT_FALSE(record.Flag16);
  }
}

TEST(PositionTable, KeepsZeroForValuesThatDoNotFit) {
  StageFixture fixture{"[Position_ZV 400]\nItem1=P,N,T,3e9,-3e9,1073741824,-1073741824,1e308\n"};
  const auto record = LoadPosition(fixture.Config, "1", "", "");
  EXPECT_EQ(record.Field4, 0);
  EXPECT_EQ(record.Field5, 0);
  EXPECT_EQ(record.X, 0);
  EXPECT_EQ(record.Y, -2147483647 - 1);
  EXPECT_EQ(record.Field8, 0);
}

TEST(PositionTable, AFactorOfZeroLeavesItsFieldsEmptyAndKeepsTheirCommas) {
  StageFixture fixture{positionFile};
  fixture.SetFactor(0.0);
  const auto record = LoadPosition(fixture.Config, "1", "", "");
  EXPECT_EQ(record.X, 0);
  SavePosition(fixture.Config, record, backup);
  EXPECT_EQ(fixture.Settings.Value("Position_ZV 400", "Item1", backup),
            "STAGE1,\"Stage 1\",STAGE,1612,-2004,,,,,,,1,0,PLATE,1,0");
}

TEST(PositionTable, ReadsTheItemOfTheFileItIsGiven) {
  StageFixture fixture{positionFile};
  fixture.Settings.Load("/other.bak", "[Position_ZV 400]\nItem1=OTHER,O\n");
  EXPECT_EQ(LoadPosition(fixture.Config, "1", "", "/other.bak").PositionName, "OTHER");
  EXPECT_EQ(fixture.Reads(), Texts{"read [Position_ZV 400] Item1 in /other.bak"});
}

TEST(PositionTable, TheItemWinsOverTheName) {
  StageFixture fixture{positionFile};
  EXPECT_EQ(LoadPosition(fixture.Config, "2", "STAGE1", "").PositionName, "TIPCHUTE");
}

TEST(PositionTable, FindsARecordByItsPositionName) {
  StageFixture fixture{positionFile};
  const auto record = LoadPosition(fixture.Config, "", "TIPCHUTE", "");
  EXPECT_EQ(record.Key, "2");
  EXPECT_EQ(record.Name, "Tip Chute");
  EXPECT_EQ(fixture.Reads(), (Texts{"read [Position_ZV 400] Item1", "read [Position_ZV 400] Item2"}));
}

TEST(PositionTable, FindsInTheConfigurationFileWhateverFileIsGiven) {
  StageFixture fixture{positionFile};
  fixture.Settings.Load("/other.bak", "[Position_ZV 400]\nItem1=TIPCHUTE,Other\n");
  EXPECT_EQ(LoadPosition(fixture.Config, "", "TIPCHUTE", "/other.bak").Name, "Tip Chute");
}

TEST(PositionTable, ComparesNamesToTheLetterAndFindsTheFirst) {
  StageFixture fixture{
      "[Position_ZV 400]\nItem1=stage1,a\nItem2=STAGE1 ,b\nItem3=STAGE1,c\nItem4=STAGE1,d\n"};
  EXPECT_EQ(LoadPosition(fixture.Config, "", "STAGE1", "").Key, "3");
}

TEST(PositionTable, GivesTheFirstNamelessRecordWhenNoneMatches) {
  StageFixture fixture{"[Position_ZV 400]\nItem1=A,a\nItem2=B,b\nItem4=C,c\n"};
  const auto record = LoadPosition(fixture.Config, "", "C", "");
  EXPECT_EQ(record.Key, "3");
  EXPECT_EQ(record.PositionName, "");
}

TEST(PositionTable, ANamelessRecordIsFoundByItsPositionName) {
  StageFixture fixture{"[Position_ZV 400]\nItem1=A,a\nItem2=B,\"\",T,5\nItem3=C,c\n"};
  EXPECT_EQ(LoadPosition(fixture.Config, "", "B", "").Field4, 5);
  const auto end = LoadPosition(fixture.Config, "", "C", "");
  EXPECT_EQ(end.Key, "2");
  EXPECT_EQ(end.PositionName, "B");
  EXPECT_EQ(end.Field4, 5);
}

TEST(PositionTable, ALineThatCannotBeReadIsLeftOutOfTheLookup) {
  StageFixture fixture{"[Position_ZV 400]\nItem1=A,a\nItem2=B,b\nItem3=C,c\n"};
  fixture.Calls.FailEverythingThatStartsWith("read [Position_ZV 400] Item2");
  EXPECT_EQ(LoadPosition(fixture.Config, "", "C", "").Key, "3");
  EXPECT_EQ(LoadPosition(fixture.Config, "", "B", "").Key, "4");
}

TEST(PositionTable, WithoutItemAndNameGivesAnEmptyRecordAndReadsNothing) {
  StageFixture fixture{"[Position_ZV 400]\nItem=A,a\nItem1=B,b\n"};
  const auto record = LoadPosition(fixture.Config, "", "", "");
  EXPECT_EQ(record.Key, "");
  EXPECT_EQ(record.PositionName, "");
  EXPECT_EQ(record.Name, "");
  EXPECT_EQ(fixture.Reads(), Texts{});
}

TEST(PositionTable, TheLookupEndsWhere16BitCountersEnd) {
  StageFixture fixture;
  const auto settings = fixture.WithoutEnd("A");
  EXPECT_EQ(LoadPosition(fixture.Config, "", "B", "").Key, "32767");
  EXPECT_EQ(settings->LastItem, "Item32767");
}

TEST(PositionTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(positionFile, [](ConfigFixture& fixture) {
    LoadPosition(fixture.Config, "1", "", "");
    SavePosition(fixture.Config, {}, backup);
  });
}

}  // namespace
}  // namespace zolvane
