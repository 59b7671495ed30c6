#include "config/tables/current_records.h"

#include <gtest/gtest.h>

#include <string>

#include "config/config_fixture.h"

namespace zolvane {
namespace {

constexpr std::string_view wholeFile =
    "[DeviceType]\nInstalled=2\nItem2=\"D\",1,\"ZV\"\nSDXYEncoderStatus=1\nSDXYEncoderMMStepFactorOn=7\n"
    "[CageType]\nInstalled=3\nItem3=\"C\",SERIALDILUTE\n"
    "[Device_TypeD_CageC]\nAxis1=Z,0.25\nAxis2=S,0.5\nAxis3=SDX,14\n"
    "[HeadType]\nInstalled=4\nItem4=\"H\",SERIALDILUTE,0,300\nSDPreCollectHeightMM=10\n"
    "[TipType]\nInstalled=5\nItem5=\"T\"\n"
    "[NestType]\nInstalled=6\nItem6=\"N\",X,\"l\",c,0,3,4,1.5\n"
    "[Z_Calibration]\nTipMountDepth300=6.25\n";

TEST(CurrentRecords, AreLoadedInTheOrderInWhichTheyNeedEachOther) {
  ConfigFixture fixture{wholeFile};
  RefreshCurrentRecords(fixture.Config);
  Texts sections;
  for (const auto& event : fixture.Reads()) {
    const auto section = event.substr(5, event.find(']') - 4);
    if (sections.empty() || sections.back() != section) {
      sections.push_back(section);
    }
  }
  EXPECT_EQ(sections, (Texts{"[Z_Calibration]", "[DeviceType]", "[CageType]", "[Device_TypeD_CageC]",
                             "[HeadType]", "[Headtype]", "[TipType]", "[NestType]"}));
}

TEST(CurrentRecords, AreTheInstalledOnesOfTheConfigurationFile) {
  ConfigFixture fixture{wholeFile};
  RefreshCurrentRecords(fixture.Config);
  const auto& current = fixture.Config.Current;
  EXPECT_EQ(current.Heights.TipMountDepth300, 6.25);
  EXPECT_EQ(current.Device.ID, "2");
  EXPECT_EQ(current.Device.Name, "D");
  EXPECT_EQ(current.Cage.ID, "3");
  EXPECT_EQ(current.Cage.Name, "C");
  EXPECT_EQ(current.Axes.Z.UnitsPerStep, 0.25F);
  EXPECT_EQ(current.Axes.SDX.UnitsPerStep, 2.0F);
  EXPECT_EQ(current.Head.ID, "4");
  EXPECT_EQ(current.Head.SDPreCollectHeightMM, 40.0);
  EXPECT_EQ(current.Head.TipMountDepth, 6.25);
  EXPECT_EQ(current.Tip.ID, "5");
  EXPECT_EQ(current.Nest.ID, "6");
  EXPECT_EQ(current.Nest.Nests[0].X, 21);
  EXPECT_EQ(current.Nest.Nests[0].Z, 6);
}

TEST(CurrentRecords, AreReplacedWhole) {
  ConfigFixture fixture{wholeFile};
  RefreshCurrentRecords(fixture.Config);
  fixture.Settings.Load("[DeviceType]\n");
  RefreshCurrentRecords(fixture.Config);
  const auto& current = fixture.Config.Current;
  EXPECT_EQ(current.Heights.TipMountDepth300, 0.0);
  EXPECT_EQ(current.Device.Name, "");
  EXPECT_FALSE(current.Device.SDXYEncoderStatus);
  EXPECT_EQ(current.Cage.Code, "");
  EXPECT_FALSE(current.Axes.Z.Defined);
  EXPECT_EQ(current.Head.SDPreCollectHeightMM, 0.0);
  EXPECT_EQ(current.Tip.Name, "");
  EXPECT_EQ(current.Tip.TipChuteClearOffset, 12.5);
  EXPECT_EQ(current.Nest.Nests[0].X, 0);
}

TEST(CurrentRecords, AreLoadedWithoutWriting) {
  ConfigFixture fixture{wholeFile};
  RefreshCurrentRecords(fixture.Config);
  EXPECT_EQ(fixture.Writes(), Texts{});
  EXPECT_EQ(fixture.Settings.Text(), wholeFile);
}

TEST(CurrentRecords, ADeviceIsReloadedAlone) {
  ConfigFixture fixture{wholeFile};
  ReloadCurrentDevice(fixture.Config);
  EXPECT_EQ(fixture.Config.Current.Device.Name, "D");
  EXPECT_EQ(fixture.Config.Current.Cage.Name, "");
  EXPECT_EQ(fixture.Config.Current.Axes.Z.UnitsPerStep, 0.02F);
  EXPECT_EQ(fixture.Reads().size(), 14U);
}

TEST(CurrentRecords, ACageIsReloadedAlone) {
  ConfigFixture fixture{wholeFile};
  ReloadCurrentCage(fixture.Config);
  EXPECT_EQ(fixture.Config.Current.Cage.Name, "C");
  EXPECT_EQ(fixture.Config.Current.Device.Name, "");
  EXPECT_EQ(fixture.Reads().size(), 4U);
}

TEST(CurrentRecords, AreLoadedToTheEndWhicheverCallFails) {
  ConfigFixture clean{wholeFile};
  RefreshCurrentRecords(clean.Config);
  for (std::size_t call = 1; call <= clean.Calls.CallCount; ++call) {
    ConfigFixture fixture{wholeFile};
    fixture.Calls.FailingCall = call;
    RefreshCurrentRecords(fixture.Config);
    const auto& failed = clean.Calls.Events[call - 1];
    EXPECT_TRUE(fixture.Reads().back().starts_with("read [NestType] Item")) << "failing " << failed;
    EXPECT_EQ(fixture.Calls.Count("read [TipType] TipChuteClearOffset default \"12.5\""), 1U)
        << "failing " << failed;
  }
}

}  // namespace
}  // namespace zolvane
