#include "bench/host/dry_run.h"

#include <gtest/gtest.h>

#include "bench/process_support.h"

namespace zolvane {
namespace {

constexpr std::string_view rehearsedConfiguration =
    "[DeviceType]\nInstalled=1\nItem1=\"Alpha\",0,\"AL1\"\n"
    "[CageType]\nInstalled=1\nItem1=\"Large\",MICROTITER\n";

TEST(Rehearsal, CountsTheCommandsAndChangesNothing) {
  const TemporaryFolder folder;
  folder.Put("Zolvane.ini", rehearsedConfiguration);
  EXPECT_EQ(CountCommands(folder.Path(), 0), 36U);
  // 13 and 4 positions with X and Y each, and one height: there are no heads and tips.
  EXPECT_EQ(CountCommands(folder.Path(), 1), 26U + 1 + 8);
  EXPECT_EQ(folder.Read("Zolvane.ini"), rehearsedConfiguration);
  EXPECT_EQ(folder.Names().size(), 1U);
}

TEST(Rehearsal, CountsTheQuerysCommandsWithAndWithoutItsTagReader) {
  const TemporaryFolder folder;
  folder.Put("Zolvane.ini", rehearsedConfiguration);
  EXPECT_EQ(CountCommands(folder.Path(), 2), 5U);
  folder.Put("Zolvane.ini", "[DeviceType]\nSensorEnableRFID=0\n");
  EXPECT_EQ(CountCommands(folder.Path(), 2), 4U);
}

TEST(Rehearsal, OtherButtonsCountNothing) {
  const TemporaryFolder folder;
  folder.Put("Zolvane.ini", rehearsedConfiguration);
  for (const int button : {-1, 3, 4, 5}) {
    EXPECT_EQ(CountCommands(folder.Path(), button), 0U);
  }
}

TEST(Rehearsal, AFileWithoutAnySectionOfABackupHoldsNone) {
  const TemporaryFolder folder;
  folder.Put("Zolvane.ini", rehearsedConfiguration);
  for (const auto* text :
       {"", "[Other]\nItem1=x\n", "Item1=x\n", "[Calibration_Beta]\n", "[TipType]\nItem1=\"T\"\n"}) {
    EXPECT_FALSE(HoldsBackup(folder.Path(), folder.Put("backup.bak", text))) << text;
  }
  EXPECT_FALSE(HoldsBackup(folder.Path(), folder.Path("none.bak")));
}

TEST(Rehearsal, AFileWithOneSectionOfABackupHoldsOne) {
  const TemporaryFolder folder;
  folder.Put("Zolvane.ini", rehearsedConfiguration);
  for (const auto* name : {"DeviceType", "CageType", "Z_Calibration", "NestCalibration", "NestType",
                           "HeadType", "Calibration_Alpha", "Position_Alpha", "PlateType", "platetype"}) {
    const auto text = "[" + std::string{name} + "]\r\n";
    EXPECT_TRUE(HoldsBackup(folder.Path(), folder.Put("backup.bak", text))) << name;
    EXPECT_EQ(folder.Read("backup.bak"), text);
  }
  EXPECT_EQ(folder.Read("Zolvane.ini"), rehearsedConfiguration);
}

}  // namespace
}  // namespace zolvane
