#include "config/step_factors.h"

#include <gtest/gtest.h>

#include "config/config_fixture.h"
#include "config/tables/devices.h"

namespace zolvane {
namespace {

TEST(SDXYStepFactor, IsTheFactorWithEncodersWhenTheyAreOn) {
  DeviceTypeRecord device;
  device.SDXYEncoderStatus = true;
  device.SDXYEncoderMMStepFactorOn = 80.0;
  device.SDXYEncoderMMStepFactorOff = 100.0;
  EXPECT_EQ(SDXYStepFactor(device), 80.0);
}

TEST(SDXYStepFactor, IsTheFactorWithoutEncodersWhenTheyAreOff) {
  DeviceTypeRecord device;
  device.SDXYEncoderMMStepFactorOn = 80.0;
  device.SDXYEncoderMMStepFactorOff = 100.0;
  EXPECT_EQ(SDXYStepFactor(device), 100.0);
}

TEST(SDXYStepFactor, AFactorThatIsMissingOrNoNumberIsZero) {
  ConfigFixture fixture{"[DeviceType]\nItem1=\"A\"\nSDXYEncoderStatus=1\nSDXYEncoderMMStepFactorOff=many\n"};
  auto device = Load(deviceTable, fixture.Config, "1");
  EXPECT_EQ(SDXYStepFactor(device), 0.0);
  device.SDXYEncoderStatus = false;
  EXPECT_EQ(SDXYStepFactor(device), 0.0);
}

// The page's check box for the encoders has a key of its own.
TEST(SDXYStepFactor, FollowsTheEncoderStatusAndNotTheCheckBoxOfThePage) {
  ConfigFixture fixture{
      "[DeviceType]\nItem1=\"A\"\nSDXYEncoderStatus=0\nSDXYEncodersEnable=1\nSDXYEncoderMMStepFactorOn=80\n"
      "SDXYEncoderMMStepFactorOff=100\n"};
  EXPECT_EQ(SDXYStepFactor(Load(deviceTable, fixture.Config, "1")), 100.0);
}

TEST(CurrentStepFactors, AreThoseOfTheCurrentDeviceAndOfTheZAndSAxes) {
  CurrentRecords current;
  current.Device.SDXYEncoderStatus = true;
  current.Device.SDXYEncoderMMStepFactorOn = 7.0;
  current.Device.SDXYEncoderMMStepFactorOff = 5.0;
  current.Axes.X.UnitsPerStep = 11.0F;
  current.Axes.Y.UnitsPerStep = 12.0F;
  current.Axes.Z.UnitsPerStep = 0.5F;
  current.Axes.S.UnitsPerStep = 0.25F;
  current.Axes.SDS.UnitsPerStep = 13.0F;
  const auto factors = CurrentStepFactors(current);
  EXPECT_EQ(factors.SDXY, 7.0);
  EXPECT_EQ(factors.Z, 0.5);
  EXPECT_EQ(factors.S, 0.25);
}

TEST(CurrentStepFactors, TakeTheAxesInSinglePrecision) {
  CurrentRecords current;
  current.Axes.Z.UnitsPerStep = 0.01F;
  EXPECT_EQ(CurrentStepFactors(current).Z, 0.009999999776482582);
}

}  // namespace
}  // namespace zolvane
