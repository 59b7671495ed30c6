#include "config/tables/devices.h"

#include <gtest/gtest.h>

#include <string>

#include "config/config_fixture.h"

namespace zolvane {
namespace {

// Every flag of its own: 1 and 0 in turn.
constexpr std::string_view fullDevice =
    "[DeviceType]\n"
    "Installed=2\n"
    "Item1=\"Zolvane 200\",0,\"ZV200\"\n"
    "Item2=\"Zolvane 400\",1,\"ZV400\"\n"
    "UploadCalibrationData=1\n"
    "DownloadCalibrationData=0\n"
    "ImportCalibrationData=1\n"
    "ExportCalibrationData=0\n"
    "SDXYEncoderStatus=1\n"
    "SDXYEncoderMMStepFactorOn=80.25\n"
    "SDXYEncoderMMStepFactorOff=100.5\n"
    "CollisionDetectEnableZ=0\n"
    "ZCollisionStatus=1\n"
    "CollisionDetectEnableSDXY=0\n"
    "SDXYCollisionStatus=1\n";

TEST(DeviceTable, LoadsEveryMember) {
  ConfigFixture fixture{fullDevice};
  const auto device = LoadInstalled(deviceTable, fixture.Config);
  EXPECT_EQ(device, (DeviceTypeRecord{.ID = "2",
                                      .Name = "Zolvane 400",
                                      .Field1 = true,
                                      .Code = "ZV400",
                                      .UploadCalibrationData = true,
                                      .ImportCalibrationData = true,
                                      .SDXYEncoderStatus = true,
                                      .SDXYEncoderMMStepFactorOn = 80.25,
                                      .SDXYEncoderMMStepFactorOff = 100.5,
                                      .ZCollisionStatus = true,
                                      .SDXYCollisionStatus = true}));
}

TEST(DeviceTable, LoadsEveryFlagFromItsOwnKey) {
  ConfigFixture fixture{
      "[DeviceType]\nItem1=\"A\",0,\"B\"\nUploadCalibrationData=0\nDownloadCalibrationData=1\n"
      "ImportCalibrationData=0\nExportCalibrationData=1\nSDXYEncoderStatus=0\nCollisionDetectEnableZ=1\n"
      "ZCollisionStatus=0\nCollisionDetectEnableSDXY=1\nSDXYCollisionStatus=0\n"};
  const auto device = Load(deviceTable, fixture.Config, "1");
  EXPECT_EQ(device, (DeviceTypeRecord{.ID = "1",
                                      .Name = "A",
                                      .Code = "B",
                                      .DownloadCalibrationData = true,
                                      .ExportCalibrationData = true,
                                      .CollisionDetectEnableZ = true,
                                      .CollisionDetectEnableSDXY = true}));
}

TEST(DeviceTable, SavesEveryMember) {
  ConfigFixture fixture;
  const DeviceTypeRecord device{.ID = "7",
                                .Name = "Zolvane 800",
                                .Code = "ZV800",
                                .DownloadCalibrationData = true,
                                .ExportCalibrationData = true,
                                .SDXYEncoderMMStepFactorOn = 1.0 / 3.0,
                                .SDXYEncoderMMStepFactorOff = -0.00001,
                                .CollisionDetectEnableZ = true,
                                .CollisionDetectEnableSDXY = true};
  Save(deviceTable, fixture.Config, device, backup);
  EXPECT_EQ(fixture.Settings.Text("/backup.bak"),
            "[DeviceType]\n"
            "UploadCalibrationData=0\n"
            "DownloadCalibrationData=1\n"
            "ImportCalibrationData=0\n"
            "ExportCalibrationData=1\n"
            "SDXYEncoderStatus=0\n"
            "SDXYEncoderMMStepFactorOn=0.333333333333333\n"
            "SDXYEncoderMMStepFactorOff=-1E-05\n"
            "CollisionDetectEnableZ=1\n"
            "ZCollisionStatus=0\n"
            "CollisionDetectEnableSDXY=1\n"
            "SDXYCollisionStatus=0\n"
            "Item7=\"Zolvane 800\",0,\"ZV800\"\n");
}

TEST(DeviceTable, SavesWhatItLoadedUnchangedKeysFirst) {
  ConfigFixture fixture{fullDevice};
  Save(deviceTable, fixture.Config, LoadInstalled(deviceTable, fixture.Config), backup);
  EXPECT_EQ(fixture.Writes(), (Texts{
                                  "write [DeviceType] UploadCalibrationData=1 in /backup.bak",
                                  "write [DeviceType] DownloadCalibrationData=0 in /backup.bak",
                                  "write [DeviceType] ImportCalibrationData=1 in /backup.bak",
                                  "write [DeviceType] ExportCalibrationData=0 in /backup.bak",
                                  "write [DeviceType] SDXYEncoderStatus=1 in /backup.bak",
                                  "write [DeviceType] SDXYEncoderMMStepFactorOn=80.25 in /backup.bak",
                                  "write [DeviceType] SDXYEncoderMMStepFactorOff=100.5 in /backup.bak",
                                  "write [DeviceType] CollisionDetectEnableZ=0 in /backup.bak",
                                  "write [DeviceType] ZCollisionStatus=1 in /backup.bak",
                                  "write [DeviceType] CollisionDetectEnableSDXY=0 in /backup.bak",
                                  "write [DeviceType] SDXYCollisionStatus=1 in /backup.bak",
                                  "write [DeviceType] Item2=\"Zolvane 400\",1,\"ZV400\" in /backup.bak",
                              }));
}

TEST(DeviceTable, ReadsInOrderAndTheEncoderStatusTwice) {
  ConfigFixture fixture{fullDevice};
  LoadInstalled(deviceTable, fixture.Config);
  EXPECT_EQ(fixture.Reads(), (Texts{
                                 "read [DeviceType] Installed",
                                 "read [DeviceType] Item2",
                                 "read [DeviceType] UploadCalibrationData default \"1\"",
                                 "read [DeviceType] DownloadCalibrationData default \"1\"",
                                 "read [DeviceType] ImportCalibrationData default \"1\"",
                                 "read [DeviceType] ExportCalibrationData default \"1\"",
                                 "read [DeviceType] SDXYEncoderStatus",
                                 "read [DeviceType] SDXYEncoderStatus",
                                 "read [DeviceType] SDXYEncoderMMStepFactorOn",
                                 "read [DeviceType] SDXYEncoderMMStepFactorOff",
                                 "read [DeviceType] CollisionDetectEnableZ",
                                 "read [DeviceType] ZCollisionStatus",
                                 "read [DeviceType] CollisionDetectEnableSDXY",
                                 "read [DeviceType] SDXYCollisionStatus",
                             }));
}

TEST(DeviceTable, DoesNotAskForTheInstalledItemWhenOneIsGiven) {
  ConfigFixture fixture{fullDevice};
  EXPECT_EQ(Load(deviceTable, fixture.Config, "1").Name, "Zolvane 200");
  EXPECT_EQ(fixture.Reads().front(), "read [DeviceType] Item1");
}

TEST(DeviceTable, CarriesTheNumberOfTheInstalledItem) {
  ConfigFixture fixture{fullDevice};
  EXPECT_EQ(LoadInstalled(deviceTable, fixture.Config).ID, "2");
}

TEST(DeviceTable, ReadsTheFileItIsGiven) {
  ConfigFixture fixture{fullDevice};
  fixture.Settings.Load("/other.bak",
                        "[DeviceType]\nInstalled=3\nItem3=\"Other\",1,\"O\"\nUploadCalibrationData=0\n");
  const auto device = LoadInstalled(deviceTable, fixture.Config, "/other.bak");
  EXPECT_EQ(device.ID, "3");
  EXPECT_EQ(device.Name, "Other");
  EXPECT_FALSE(device.UploadCalibrationData);
  EXPECT_EQ(fixture.Calls.Count("read [DeviceType] SDXYCollisionStatus in /other.bak"), 1U);
}

TEST(DeviceTable, MissingTransferSwitchesMeanEnabled) {
  ConfigFixture fixture{"[DeviceType]\nItem1=\"A\",1,\"B\"\n"};
  const auto device = Load(deviceTable, fixture.Config, "1");
  EXPECT_TRUE(device.UploadCalibrationData);
  EXPECT_TRUE(device.DownloadCalibrationData);
  EXPECT_TRUE(device.ImportCalibrationData);
  EXPECT_TRUE(device.ExportCalibrationData);
}

TEST(DeviceTable, ATransferSwitchThatIsEmptyOrNoFlagIsOff) {
  ConfigFixture fixture{
      "[DeviceType]\nUploadCalibrationData=\nDownloadCalibrationData=on\nImportCalibrationData=0\n"
      "ExportCalibrationData=false\n"};
  const auto device = Load(deviceTable, fixture.Config, "1");
  EXPECT_FALSE(device.UploadCalibrationData);
  EXPECT_FALSE(device.DownloadCalibrationData);
  EXPECT_FALSE(device.ImportCalibrationData);
  EXPECT_FALSE(device.ExportCalibrationData);
}

TEST(DeviceTable, TransferSwitchesAndStatusesAreWordsOrWholeNumberTexts) {
  ConfigFixture fixture{
      "[DeviceType]\nItem1=A,TRUE\nUploadCalibrationData=2.5abc\nDownloadCalibrationData=true\n"
      "ImportCalibrationData=-1\nExportCalibrationData=1x\nSDXYEncoderStatus=2.5abc\nZCollisionStatus=2."
      "5abc\n"};
  const auto device = Load(deviceTable, fixture.Config, "1");
  EXPECT_EQ(device, (DeviceTypeRecord{.ID = "1",
                                      .Name = "A",
                                      .Field1 = true,
                                      .DownloadCalibrationData = true,
                                      .ImportCalibrationData = true}));
}

TEST(DeviceTable, TheThreeOtherCollisionKeysAreLeadingNumbers) {
  ConfigFixture fixture{
      "[DeviceType]\nCollisionDetectEnableZ=2.5abc\nCollisionDetectEnableSDXY=2.5abc\nSDXYCollisionStatus=-"
      "1x\n"};
  const auto device = Load(deviceTable, fixture.Config, "1");
  EXPECT_TRUE(device.CollisionDetectEnableZ);
  EXPECT_TRUE(device.CollisionDetectEnableSDXY);
  EXPECT_TRUE(device.SDXYCollisionStatus);

  ConfigFixture words{
      "[DeviceType]\nCollisionDetectEnableZ=True\nCollisionDetectEnableSDXY=True\nSDXYCollisionStatus="
      "True\n"};
  const auto other = Load(deviceTable, words.Config, "1");
  EXPECT_FALSE(other.CollisionDetectEnableZ);
  EXPECT_FALSE(other.CollisionDetectEnableSDXY);
  EXPECT_FALSE(other.SDXYCollisionStatus);
}

TEST(DeviceTable, ReadsEachValueInItsOwnForm) {
  ConfigFixture fixture{
      "[DeviceType]\nItem1=A,1x,B\nUploadCalibrationData=1x\nDownloadCalibrationData=1x\n"
      "ImportCalibrationData=1x\nExportCalibrationData=1x\nSDXYEncoderStatus=1x\nSDXYEncoderMMStepFactorOn="
      "80.5x\n"
      "SDXYEncoderMMStepFactorOff=100.5x\nCollisionDetectEnableZ=1x\nZCollisionStatus=1x\n"
      "CollisionDetectEnableSDXY=1x\nSDXYCollisionStatus=1x\n"};
  const auto device = Load(deviceTable, fixture.Config, "1");
  EXPECT_EQ(device, (DeviceTypeRecord{.ID = "1",
                                      .Name = "A",
                                      .Code = "B",
                                      .SDXYEncoderMMStepFactorOn = 80.5,
                                      .SDXYEncoderMMStepFactorOff = 100.5,
                                      .CollisionDetectEnableZ = true,
                                      .CollisionDetectEnableSDXY = true,
                                      .SDXYCollisionStatus = true}));
}

TEST(DeviceTable, MissingAndEmptyStatusKeysAreOff) {
  for (const auto* text : {"",
                           "[DeviceType]\nSDXYEncoderStatus=\nCollisionDetectEnableZ=\nZCollisionStatus=\n"
                           "CollisionDetectEnableSDXY=\nSDXYCollisionStatus=\n"}) {
    ConfigFixture fixture{text};
    const auto device = Load(deviceTable, fixture.Config, "1");
    EXPECT_FALSE(device.SDXYEncoderStatus);
    EXPECT_FALSE(device.CollisionDetectEnableZ);
    EXPECT_FALSE(device.ZCollisionStatus);
    EXPECT_FALSE(device.CollisionDetectEnableSDXY);
    EXPECT_FALSE(device.SDXYCollisionStatus);
  }
}

TEST(DeviceTable, FactorsAreLeadingNumbers) {
  ConfigFixture fixture{
      "[DeviceType]\nSDXYEncoderMMStepFactorOn= 80.5 steps\nSDXYEncoderMMStepFactorOff=many\n"};
  const auto device = Load(deviceTable, fixture.Config, "1");
  EXPECT_EQ(device.SDXYEncoderMMStepFactorOn, 80.5);
  EXPECT_EQ(device.SDXYEncoderMMStepFactorOff, 0.0);
}

TEST(DeviceTable, AMissingLineLeavesTheNumberAlone) {
  ConfigFixture fixture{"[DeviceType]\nSDXYEncoderMMStepFactorOn=80\n"};
  const auto device = Load(deviceTable, fixture.Config, "9");
  EXPECT_EQ(device, (DeviceTypeRecord{.ID = "9",
                                      .UploadCalibrationData = true,
                                      .DownloadCalibrationData = true,
                                      .ImportCalibrationData = true,
                                      .ExportCalibrationData = true,
                                      .SDXYEncoderMMStepFactorOn = 80.0}));
}

TEST(DeviceTable, WithoutAnInstalledItemReadsTheLineWithoutANumber) {
  ConfigFixture fixture{"[DeviceType]\nItem1=\"A\"\n"};
  const auto device = LoadInstalled(deviceTable, fixture.Config);
  EXPECT_EQ(device.ID, "");
  EXPECT_EQ(device.Name, "");
  EXPECT_EQ(fixture.Reads()[1], "read [DeviceType] Item");
}

TEST(DeviceTable, ALineWithoutItsLastFieldHasNoCode) {
  ConfigFixture fixture{"[DeviceType]\nItem1=\"A\",1\nItem2=\"B\"\n"};
  EXPECT_EQ(Load(deviceTable, fixture.Config, "1").Code, "");
  EXPECT_TRUE(Load(deviceTable, fixture.Config, "1").Field1);
  EXPECT_FALSE(Load(deviceTable, fixture.Config, "2").Field1);
}

TEST(DeviceTable, LosesEveryQuoteOfNameAndCode) {
  ConfigFixture fixture{"[DeviceType]\nItem1=\"A\"\"1\",1,Z\"V\"\n"};
  EXPECT_EQ(Load(deviceTable, fixture.Config, "1").Name, "A1");
  EXPECT_EQ(Load(deviceTable, fixture.Config, "1").Code, "ZV");
}

TEST(DeviceTable, ANameWithACommaDoesNotSurvive) {
  ConfigFixture fixture;
  const DeviceTypeRecord device{.ID = "1", .Name = "A,B", .Code = "C"};
  Save(deviceTable, fixture.Config, device, fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Value("DeviceType", "Item1"), "\"A,B\",0,\"C\"");
  EXPECT_EQ(Load(deviceTable, fixture.Config, "1").Name, "A");
  EXPECT_EQ(Load(deviceTable, fixture.Config, "1").Code, "0");
}

TEST(DeviceTable, AnEmptyCodeIsWrittenAsTwoQuotes) {
  ConfigFixture fixture;
  const DeviceTypeRecord device{.ID = "1", .Name = "A"};
  Save(deviceTable, fixture.Config, device, backup);
  EXPECT_EQ(fixture.Settings.Value("DeviceType", "Item1", backup), "\"A\",0,\"\"");
}

TEST(DeviceTable, TheSectionKeysOfTheLastDeviceSavedStay) {
  ConfigFixture fixture;
  DeviceTypeRecord device{.ID = "1", .SDXYEncoderMMStepFactorOn = 80.0};
  Save(deviceTable, fixture.Config, device, backup);
  device.ID = "2";
  device.SDXYEncoderMMStepFactorOn = 90.0;
  Save(deviceTable, fixture.Config, device, backup);
  EXPECT_EQ(fixture.Settings.Value("DeviceType", "SDXYEncoderMMStepFactorOn", backup), "90");
  EXPECT_EQ(fixture.Settings.Value("DeviceType", "Item1", backup), "\"\",0,\"\"");
}

TEST(DeviceTable, NeverWritesInstalledOrDefault) {
  ConfigFixture fixture{fullDevice};
  Save(deviceTable, fixture.Config, LoadInstalled(deviceTable, fixture.Config), fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), fullDevice);
}

TEST(DeviceTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(deviceTable, fullDevice, "2");
}

TEST(DeviceTable, AFailedReadLeavesItsMemberAlone) {
  ConfigFixture fixture{fullDevice};
  fixture.Calls.FailEverythingThatStartsWith("read [DeviceType] Up");
  EXPECT_FALSE(LoadInstalled(deviceTable, fixture.Config).UploadCalibrationData);
  fixture.Calls.FailEverythingThatStartsWith("read [DeviceType] Item");
  const auto device = LoadInstalled(deviceTable, fixture.Config);
  EXPECT_EQ(device.ID, "2");
  EXPECT_EQ(device.Name, "");
  EXPECT_EQ(device.SDXYEncoderMMStepFactorOn, 80.25);
}

// The first reading of the status counts when the second one fails.
TEST(DeviceTable, OneGoodReadingOfTheEncoderStatusIsEnough) {
  ConfigFixture fixture{fullDevice};
  int readings = 0;
  fixture.Calls.FailsIf = [&readings](std::string_view event) {
    return event == "read [DeviceType] SDXYEncoderStatus" && ++readings == 2;
  };
  EXPECT_TRUE(LoadInstalled(deviceTable, fixture.Config).SDXYEncoderStatus);
  EXPECT_EQ(readings, 2);
}

TEST(DeviceTable, AFailedReadOfInstalledLeavesTheItemEmpty) {
  ConfigFixture fixture{fullDevice};
  fixture.Calls.FailEverythingThatStartsWith("read [DeviceType] Installed");
  EXPECT_EQ(LoadInstalled(deviceTable, fixture.Config).Name, "");
  EXPECT_EQ(LoadInstalled(deviceTable, fixture.Config).ID, "");
}

}  // namespace
}  // namespace zolvane
