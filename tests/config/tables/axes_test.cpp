#include "config/tables/axes.h"

#include <gtest/gtest.h>

#include <string>

#include "config/config_fixture.h"

namespace zolvane {
namespace {

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

// The first line of a file, and what it leaves in the slot of another line that has nothing of its own.
const std::string countedX = "Axis1=X,1,3,4,5,6,7,8,9,10,11,12,13,14,15\n";

AxisRecord CountedAxis(const std::string& name) {
  return {.Defined = true,
          .Name = name,
          .UnitsPerStep = 1.0F,
          .Field3 = 3,
          .Field4 = 4,
          .Field5 = 5,
          .Field6 = 6,
          .Field7 = 7,
          .Field8 = 8,
          .Field9 = 9,
          .Field10 = 10,
          .Field11 = 11,
          .Field12 = 12,
          .Field13 = 13,
          .Field14 = 14,
          .Field15 = 15};
}

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
  EXPECT_EQ(axis, (AxisRecord{.Defined = true,
                              .Name = "X",
                              .UnitsPerStep = 0.25F,
                              .Field3 = 800,
                              .Field4 = 32000,
                              .Field5 = 64000,
                              .Field6 = -160,
                              .Field7 = 40000,
                              .Field8 = 4000,
                              .Field9 = 1100,
                              .Field10 = 500,
                              .Field11 = 16,
                              .Field12 = -1,
                              .Field13 = 2,
                              .Field14 = 3,
                              .Field15 = 240}));
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

TEST(Axes, LinesOfOtherNamesAreDropped) {
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
  AxisFixture fixture{countedX + "Axis2=Y,2,33\n"};
  auto expected = CountedAxis("Y");
  expected.UnitsPerStep = 2.0F;
  expected.Field3 = 33;
  EXPECT_EQ(fixture.Load().Y, expected);
}

TEST(Axes, InheritFromALineThatIsDropped) {
  AxisFixture fixture{"Axis1=none,5,3\nAxis2=Y\n"};
  EXPECT_EQ(fixture.Load().Y.UnitsPerStep, 5.0F);
  EXPECT_EQ(fixture.Load().Y.Field3, 3);
}

TEST(Axes, InheritStrictFieldsThatDoNotConvertAndZeroTolerantOnes) {
  AxisFixture fixture{countedX + "Axis2=Y,2mm,x,4mm,5mm,,7 7,1e10,32768,abc,-32769,,1x,70000,xyz\n"};
  auto expected = CountedAxis("Y");
  expected.Field15 = 0;
  EXPECT_EQ(fixture.Load().Y, expected);
}

TEST(Axes, ReadEachFieldInItsOwnForm) {
  AxisFixture fixture{countedX + "Axis2=Y,99x,99x,99x,99x,99x,99x,99x,99x,99x,99x,99x,99x,99x,99x\n"};
  auto expected = CountedAxis("Y");
  expected.Field5 = 99;
  expected.Field15 = 99;
  EXPECT_EQ(fixture.Load().Y, expected);
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
  AxisFixture fixture{countedX + "Axis2=Y,1,3,4,3e9,6,7,8,9,10,11,12,13,14,3e9\n"};
  EXPECT_EQ(fixture.Load().Y.Field5, 5);
  EXPECT_EQ(fixture.Load().Y.Field15, 15);
}

TEST(Axes, RoundWholeNumbersHalfToEven) {
  AxisFixture fixture{"Axis1=X,1,12.5,13.5,2.5,-0.5,1.5,3.5,2.5,3.5,4.5,5.5,6.5,7.5,4.5\n"};
  const auto& axis = fixture.Load().X;
  EXPECT_EQ(axis, (AxisRecord{.Defined = true,
                              .Name = "X",
                              .UnitsPerStep = 1.0F,
                              .Field3 = 12,
                              .Field4 = 14,
                              .Field5 = 2,
                              .Field7 = 2,
                              .Field8 = 4,
                              .Field9 = 2,
                              .Field10 = 4,
                              .Field11 = 4,
                              .Field12 = 6,
                              .Field13 = 6,
                              .Field14 = 8,
                              .Field15 = 4}));
}

TEST(Axes, TheLastLineOfANameCounts) {
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

}  // namespace
}  // namespace zolvane
