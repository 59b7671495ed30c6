#include "config/tables/device_tables.h"

#include <gtest/gtest.h>

#include <string>

#include "config/config_fixture.h"

namespace zolvane {
namespace {

DeviceTypeRecord LoadDevice(ConfigFixture& fixture, std::string item = "", std::string_view file = "") {
  return LoadDeviceType(fixture.Config, item, file);
}

CageTypeRecord LoadCage(ConfigFixture& fixture, std::string item = "", std::string_view file = "") {
  return LoadCageType(fixture.Config, item, file);
}

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
  const auto device = LoadDevice(fixture);
  EXPECT_EQ(device.ID, "2");
  EXPECT_EQ(device.Name, "Zolvane 400");
  EXPECT_TRUE(device.Field1);
  EXPECT_EQ(device.Code, "ZV400");
  EXPECT_TRUE(device.UploadCalibrationData);
  EXPECT_FALSE(device.DownloadCalibrationData);
  EXPECT_TRUE(device.ImportCalibrationData);
  EXPECT_FALSE(device.ExportCalibrationData);
  EXPECT_TRUE(device.SDXYEncoderStatus);
  EXPECT_EQ(device.SDXYEncoderMMStepFactorOn, 80.25);
  EXPECT_EQ(device.SDXYEncoderMMStepFactorOff, 100.5);
  EXPECT_FALSE(device.CollisionDetectEnableZ);
  EXPECT_TRUE(device.ZCollisionStatus);
  EXPECT_FALSE(device.CollisionDetectEnableSDXY);
  EXPECT_TRUE(device.SDXYCollisionStatus);
}

TEST(DeviceTable, LoadsEveryFlagFromItsOwnKey) {
  ConfigFixture fixture{
      "[DeviceType]\nItem1=\"A\",0,\"B\"\nUploadCalibrationData=0\nDownloadCalibrationData=1\n"
      "ImportCalibrationData=0\nExportCalibrationData=1\nSDXYEncoderStatus=0\nCollisionDetectEnableZ=1\n"
      "ZCollisionStatus=0\nCollisionDetectEnableSDXY=1\nSDXYCollisionStatus=0\n"};
  const auto device = LoadDevice(fixture, "1");
  EXPECT_FALSE(device.Field1);
  EXPECT_FALSE(device.UploadCalibrationData);
  EXPECT_TRUE(device.DownloadCalibrationData);
  EXPECT_FALSE(device.ImportCalibrationData);
  EXPECT_TRUE(device.ExportCalibrationData);
  EXPECT_FALSE(device.SDXYEncoderStatus);
  EXPECT_TRUE(device.CollisionDetectEnableZ);
  EXPECT_FALSE(device.ZCollisionStatus);
  EXPECT_TRUE(device.CollisionDetectEnableSDXY);
  EXPECT_FALSE(device.SDXYCollisionStatus);
}

TEST(DeviceTable, SavesEveryMember) {
  ConfigFixture fixture;
  DeviceTypeRecord device;
  device.ID = "7";
  device.Name = "Zolvane 800";
  device.Code = "ZV800";
  device.DownloadCalibrationData = true;
  device.ExportCalibrationData = true;
  device.SDXYEncoderMMStepFactorOn = 1.0 / 3.0;
  device.SDXYEncoderMMStepFactorOff = -0.00001;
  device.CollisionDetectEnableZ = true;
  device.CollisionDetectEnableSDXY = true;
  SaveDeviceType(fixture.Config, device, backup);
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
  SaveDeviceType(fixture.Config, LoadDevice(fixture), backup);
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
  LoadDevice(fixture);
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
  EXPECT_EQ(LoadDevice(fixture, "1").Name, "Zolvane 200");
  EXPECT_EQ(fixture.Reads().front(), "read [DeviceType] Item1");
}

TEST(DeviceTable, GivesTheCallerTheInstalledItem) {
  ConfigFixture fixture{fullDevice};
  std::string item;
  LoadDeviceType(fixture.Config, item, "");
  EXPECT_EQ(item, "2");
  item = "1";
  LoadDeviceType(fixture.Config, item, "");
  EXPECT_EQ(item, "1");
}

TEST(DeviceTable, ReadsTheFileItIsGiven) {
  ConfigFixture fixture{fullDevice};
  fixture.Settings.Load("/other.bak",
                        "[DeviceType]\nInstalled=3\nItem3=\"Other\",1,\"O\"\nUploadCalibrationData=0\n");
  const auto device = LoadDevice(fixture, "", "/other.bak");
  EXPECT_EQ(device.ID, "3");
  EXPECT_EQ(device.Name, "Other");
  EXPECT_FALSE(device.UploadCalibrationData);
  EXPECT_EQ(fixture.Calls.Count("read [DeviceType] SDXYCollisionStatus in /other.bak"), 1U);
}

TEST(DeviceTable, MissingTransferSwitchesMeanEnabled) {
  ConfigFixture fixture{"[DeviceType]\nItem1=\"A\",1,\"B\"\n"};
  const auto device = LoadDevice(fixture, "1");
  EXPECT_TRUE(device.UploadCalibrationData);
  EXPECT_TRUE(device.DownloadCalibrationData);
  EXPECT_TRUE(device.ImportCalibrationData);
  EXPECT_TRUE(device.ExportCalibrationData);
}

TEST(DeviceTable, ATransferSwitchThatIsEmptyOrNoFlagIsOff) {
  ConfigFixture fixture{
      "[DeviceType]\nUploadCalibrationData=\nDownloadCalibrationData=on\nImportCalibrationData=0\n"
      "ExportCalibrationData=false\n"};
  const auto device = LoadDevice(fixture, "1");
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
  const auto device = LoadDevice(fixture, "1");
  EXPECT_TRUE(device.Field1);
  EXPECT_FALSE(device.UploadCalibrationData);
  EXPECT_TRUE(device.DownloadCalibrationData);
  EXPECT_TRUE(device.ImportCalibrationData);
  EXPECT_FALSE(device.ExportCalibrationData);
  EXPECT_FALSE(device.SDXYEncoderStatus);
  EXPECT_FALSE(device.ZCollisionStatus);
}

TEST(DeviceTable, TheThreeOtherCollisionKeysAreLeadingNumbers) {
  ConfigFixture fixture{
      "[DeviceType]\nCollisionDetectEnableZ=2.5abc\nCollisionDetectEnableSDXY=2.5abc\nSDXYCollisionStatus=-"
      "1x\n"};
  const auto device = LoadDevice(fixture, "1");
  EXPECT_TRUE(device.CollisionDetectEnableZ);
  EXPECT_TRUE(device.CollisionDetectEnableSDXY);
  EXPECT_TRUE(device.SDXYCollisionStatus);

  ConfigFixture words{
      "[DeviceType]\nCollisionDetectEnableZ=True\nCollisionDetectEnableSDXY=True\nSDXYCollisionStatus="
      "True\n"};
  const auto other = LoadDevice(words, "1");
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
  const auto device = LoadDevice(fixture, "1");
  EXPECT_FALSE(device.Field1);
  EXPECT_FALSE(device.UploadCalibrationData);
  EXPECT_FALSE(device.DownloadCalibrationData);
  EXPECT_FALSE(device.ImportCalibrationData);
  EXPECT_FALSE(device.ExportCalibrationData);
  EXPECT_FALSE(device.SDXYEncoderStatus);
  EXPECT_EQ(device.SDXYEncoderMMStepFactorOn, 80.5);
  EXPECT_EQ(device.SDXYEncoderMMStepFactorOff, 100.5);
  EXPECT_TRUE(device.CollisionDetectEnableZ);
  EXPECT_FALSE(device.ZCollisionStatus);
  EXPECT_TRUE(device.CollisionDetectEnableSDXY);
  EXPECT_TRUE(device.SDXYCollisionStatus);
}

TEST(DeviceTable, MissingAndEmptyStatusKeysAreOff) {
  for (const auto* text : {"",
                           "[DeviceType]\nSDXYEncoderStatus=\nCollisionDetectEnableZ=\nZCollisionStatus=\n"
                           "CollisionDetectEnableSDXY=\nSDXYCollisionStatus=\n"}) {
    ConfigFixture fixture{text};
    const auto device = LoadDevice(fixture, "1");
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
  const auto device = LoadDevice(fixture, "1");
  EXPECT_EQ(device.SDXYEncoderMMStepFactorOn, 80.5);
  EXPECT_EQ(device.SDXYEncoderMMStepFactorOff, 0.0);
}

TEST(DeviceTable, AMissingLineLeavesTheNumberAlone) {
  ConfigFixture fixture{"[DeviceType]\nSDXYEncoderMMStepFactorOn=80\n"};
  const auto device = LoadDevice(fixture, "9");
  EXPECT_EQ(device.ID, "9");
  EXPECT_EQ(device.Name, "");
  EXPECT_FALSE(device.Field1);
  EXPECT_EQ(device.Code, "");
  EXPECT_EQ(device.SDXYEncoderMMStepFactorOn, 80.0);
}

TEST(DeviceTable, WithoutAnInstalledItemReadsTheLineWithoutANumber) {
  ConfigFixture fixture{"[DeviceType]\nItem1=\"A\"\n"};
  const auto device = LoadDevice(fixture);
  EXPECT_EQ(device.ID, "");
  EXPECT_EQ(device.Name, "");
  EXPECT_EQ(fixture.Reads()[1], "read [DeviceType] Item");
}

TEST(DeviceTable, ALineWithoutItsLastFieldHasNoCode) {
  ConfigFixture fixture{"[DeviceType]\nItem1=\"A\",1\nItem2=\"B\"\n"};
  EXPECT_EQ(LoadDevice(fixture, "1").Code, "");
  EXPECT_TRUE(LoadDevice(fixture, "1").Field1);
  EXPECT_FALSE(LoadDevice(fixture, "2").Field1);
}

TEST(DeviceTable, LosesEveryQuoteOfNameAndCode) {
  ConfigFixture fixture{"[DeviceType]\nItem1=\"A\"\"1\",1,Z\"V\"\n"};
  EXPECT_EQ(LoadDevice(fixture, "1").Name, "A1");
  EXPECT_EQ(LoadDevice(fixture, "1").Code, "ZV");
}

TEST(DeviceTable, ANameWithACommaDoesNotSurvive) {
  ConfigFixture fixture;
  DeviceTypeRecord device;
  device.ID = "1";
  device.Name = "A,B";
  device.Code = "C";
  SaveDeviceType(fixture.Config, device, fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Value("DeviceType", "Item1"), "\"A,B\",0,\"C\"");
  EXPECT_EQ(LoadDevice(fixture, "1").Name, "A");
  EXPECT_EQ(LoadDevice(fixture, "1").Code, "0");
}

TEST(DeviceTable, AnEmptyCodeIsWrittenAsTwoQuotes) {
  ConfigFixture fixture;
  DeviceTypeRecord device;
  device.ID = "1";
  device.Name = "A";
  SaveDeviceType(fixture.Config, device, backup);
  EXPECT_EQ(fixture.Settings.Value("DeviceType", "Item1", backup), "\"A\",0,\"\"");
}

TEST(DeviceTable, TheSectionKeysOfTheLastDeviceSavedStay) {
  ConfigFixture fixture;
  DeviceTypeRecord device;
  device.ID = "1";
  device.SDXYEncoderMMStepFactorOn = 80.0;
  SaveDeviceType(fixture.Config, device, backup);
  device.ID = "2";
  device.SDXYEncoderMMStepFactorOn = 90.0;
  SaveDeviceType(fixture.Config, device, backup);
  EXPECT_EQ(fixture.Settings.Value("DeviceType", "SDXYEncoderMMStepFactorOn", backup), "90");
  EXPECT_EQ(fixture.Settings.Value("DeviceType", "Item1", backup), "\"\",0,\"\"");
}

TEST(DeviceTable, NeverWritesInstalledOrDefault) {
  ConfigFixture fixture{fullDevice};
  SaveDeviceType(fixture.Config, LoadDevice(fixture), fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), fullDevice);
}

TEST(DeviceTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(fullDevice, [](ConfigFixture& fixture) {
    LoadDevice(fixture, "2");
    DeviceTypeRecord device;
    device.ID = "5";
    SaveDeviceType(fixture.Config, device, backup);
  });
}

TEST(DeviceTable, AFailedReadLeavesItsMemberAlone) {
  ConfigFixture fixture{fullDevice};
  fixture.Calls.FailEverythingThatStartsWith("read [DeviceType] Up");
  EXPECT_FALSE(LoadDevice(fixture).UploadCalibrationData);
  fixture.Calls.FailEverythingThatStartsWith("read [DeviceType] Item");
  const auto device = LoadDevice(fixture);
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
  EXPECT_TRUE(LoadDevice(fixture).SDXYEncoderStatus);
  EXPECT_EQ(readings, 2);
}

TEST(DeviceTable, AFailedReadOfInstalledLeavesTheItemEmpty) {
  ConfigFixture fixture{fullDevice};
  fixture.Calls.FailEverythingThatStartsWith("read [DeviceType] Installed");
  std::string item;
  EXPECT_EQ(LoadDeviceType(fixture.Config, item, "").Name, "");
  EXPECT_EQ(item, "");
}

// ---- Cages ----

constexpr std::string_view cageFile =
    "[CageType]\n"
    "Installed=1\n"
    "Item1=\"1/8/12 Module\",SERIALDILUTE,1,0,1,5,6,7,8\n"
    "Item2=\"Other\",MICROTITER,0,1,0,-12,2147483647,-2147483648,0\n"
    "CageReleaseBarHeight=168\n"
    "CageReleaseHeight=152\n";

TEST(CageTable, LoadsEveryMember) {
  ConfigFixture fixture{cageFile};
  const auto cage = LoadCage(fixture);
  EXPECT_EQ(cage.ID, "1");
  EXPECT_EQ(cage.Name, "1/8/12 Module");
  EXPECT_EQ(cage.Code, "SERIALDILUTE");
  EXPECT_TRUE(cage.Field2);
  EXPECT_EQ(cage.CageReleaseBarHeight, 168);
  EXPECT_EQ(cage.CageReleaseHeight, 152);
  EXPECT_FALSE(cage.Field3);
  EXPECT_TRUE(cage.Field4);
  EXPECT_EQ(cage.Field5, 5);
  EXPECT_EQ(cage.Field6, 6);
  EXPECT_EQ(cage.Field7, 7);
  EXPECT_EQ(cage.Field8, 8);
}

TEST(CageTable, LoadsTheOtherFlagsAndTheEndsOf32Bits) {
  ConfigFixture fixture{cageFile};
  const auto cage = LoadCage(fixture, "2");
  EXPECT_FALSE(cage.Field2);
  EXPECT_TRUE(cage.Field3);
  EXPECT_FALSE(cage.Field4);
  EXPECT_EQ(cage.Field5, -12);
  EXPECT_EQ(cage.Field6, 2147483647);
  EXPECT_EQ(cage.Field7, -2147483647 - 1);
  EXPECT_EQ(cage.Field8, 0);
}

TEST(CageTable, SavesEveryMemberInTheOrderOfTheLine) {
  ConfigFixture fixture;
  CageTypeRecord cage;
  cage.ID = "4";
  cage.Name = "New";
  cage.Code = "DISPENSE";
  cage.Field2 = true;
  cage.CageReleaseBarHeight = -168;
  cage.CageReleaseHeight = 1234567;
  cage.Field3 = true;
  cage.Field5 = 50;
  cage.Field6 = -60;
  cage.Field7 = 70;
  cage.Field8 = 2147483647;
  SaveCageType(fixture.Config, cage, backup);
  EXPECT_EQ(fixture.Writes(),
            (Texts{"write [CageType] CageReleaseBarHeight=-168 in /backup.bak",
                   "write [CageType] CageReleaseHeight=1234567 in /backup.bak",
                   "write [CageType] Item4=\"New\",DISPENSE,1,1,0,50,-60,70,2147483647 in /backup.bak"}));
}

TEST(CageTable, SavesWhatItLoadedUnchanged) {
  ConfigFixture fixture{cageFile};
  SaveCageType(fixture.Config, LoadCage(fixture, "1"), fixture.ConfigFile());
  SaveCageType(fixture.Config, LoadCage(fixture, "2"), fixture.ConfigFile());
  EXPECT_EQ(fixture.Settings.Text(), cageFile);
}

TEST(CageTable, ReadsInOrder) {
  ConfigFixture fixture{cageFile};
  LoadCage(fixture);
  EXPECT_EQ(fixture.Reads(),
            (Texts{"read [CageType] Installed", "read [CageType] Item1",
                   "read [CageType] CageReleaseBarHeight", "read [CageType] CageReleaseHeight"}));
}

TEST(CageTable, ReadsTheFileItIsGivenAndNamesTheInstalledItem) {
  ConfigFixture fixture{cageFile};
  fixture.Settings.Load("/other.bak", "[CageType]\nInstalled=6\nItem6=\"Six\",C\nCageReleaseHeight=9\n");
  std::string item;
  const auto cage = LoadCageType(fixture.Config, item, "/other.bak");
  EXPECT_EQ(item, "6");
  EXPECT_EQ(cage.ID, "6");
  EXPECT_EQ(cage.Name, "Six");
  EXPECT_EQ(cage.CageReleaseHeight, 9);
  EXPECT_EQ(cage.CageReleaseBarHeight, 0);
}

TEST(CageTable, RoundsWholeNumbersHalfToEven) {
  ConfigFixture fixture{
      "[CageType]\nItem1=A,B,0,0,0,2.5,3.5mm,-0.5,1.51\nCageReleaseBarHeight=13.5\nCageReleaseHeight=12.5\n"};
  const auto cage = LoadCage(fixture, "1");
  EXPECT_EQ(cage.CageReleaseBarHeight, 14);
  EXPECT_EQ(cage.CageReleaseHeight, 12);
  EXPECT_EQ(cage.Field5, 2);
  EXPECT_EQ(cage.Field6, 4);
  EXPECT_EQ(cage.Field7, 0);
  EXPECT_EQ(cage.Field8, 2);
  SaveCageType(fixture.Config, cage, backup);
  EXPECT_EQ(fixture.Settings.Value("CageType", "CageReleaseBarHeight", backup), "14");
  EXPECT_EQ(fixture.Settings.Value("CageType", "CageReleaseHeight", backup), "12");
}

TEST(CageTable, KeepsZeroForNumbersThatDoNotFitOrAreMissing) {
  ConfigFixture fixture{
      "[CageType]\nItem1=A,B,1,1,1,2147483648,abc,-2147483649,\nCageReleaseBarHeight=1e10\n"};
  const auto cage = LoadCage(fixture, "1");
  EXPECT_EQ(cage.Field5, 0);
  EXPECT_EQ(cage.Field6, 0);
  EXPECT_EQ(cage.Field7, 0);
  EXPECT_EQ(cage.Field8, 0);
  EXPECT_EQ(cage.CageReleaseBarHeight, 0);
  EXPECT_EQ(cage.CageReleaseHeight, 0);
}

TEST(CageTable, TheFlagsOfTheLineAreWordsOrNumbers) {
  ConfigFixture fixture{"[CageType]\nItem1=A,B,True,1x,2\nItem2=A,B,yes,-1,2.5abc\n"};
  EXPECT_TRUE(LoadCage(fixture, "1").Field2);
  EXPECT_FALSE(LoadCage(fixture, "1").Field3);
  EXPECT_TRUE(LoadCage(fixture, "1").Field4);
  EXPECT_FALSE(LoadCage(fixture, "2").Field2);
  EXPECT_TRUE(LoadCage(fixture, "2").Field3);
  EXPECT_FALSE(LoadCage(fixture, "2").Field4);
}

TEST(CageTable, ReadsEachValueInItsOwnForm) {
  ConfigFixture fixture{
      "[CageType]\nItem1=A,B,1x,1x,1x,5x,6x,7x,8x\nCageReleaseBarHeight=168x\nCageReleaseHeight=152x\n"};
  const auto cage = LoadCage(fixture, "1");
  EXPECT_FALSE(cage.Field2);
  EXPECT_EQ(cage.CageReleaseBarHeight, 168);
  EXPECT_EQ(cage.CageReleaseHeight, 152);
  EXPECT_FALSE(cage.Field3);
  EXPECT_FALSE(cage.Field4);
  EXPECT_EQ(cage.Field5, 5);
  EXPECT_EQ(cage.Field6, 6);
  EXPECT_EQ(cage.Field7, 7);
  EXPECT_EQ(cage.Field8, 8);
}

TEST(CageTable, TakesTheCodeAsItStands) {
  ConfigFixture fixture{"[CageType]\nItem1=\"A\",\"MICROTITER\",1\nItem2=B, MICROTITER ,1\n"};
  EXPECT_EQ(LoadCage(fixture, "1").Code, "\"MICROTITER\"");
  EXPECT_EQ(LoadCage(fixture, "2").Code, " MICROTITER ");
  SaveCageType(fixture.Config, LoadCage(fixture, "1"), backup);
  EXPECT_EQ(fixture.Settings.Value("CageType", "Item1", backup), "\"A\",\"MICROTITER\",1,0,0,0,0,0,0");
}

TEST(CageTable, KeepsZerosAndFlagsThatAreOffAtTheEndOfTheLine) {
  ConfigFixture fixture;
  CageTypeRecord cage;
  cage.ID = "1";
  cage.Name = "A";
  cage.Code = "B";
  SaveCageType(fixture.Config, cage, backup);
  EXPECT_EQ(fixture.Settings.Value("CageType", "Item1", backup), "\"A\",B,0,0,0,0,0,0,0");
}

TEST(CageTable, AShortLineLeavesTheRestEmpty) {
  ConfigFixture fixture{"[CageType]\nItem1=\"A\",B,1,1\n"};
  const auto cage = LoadCage(fixture, "1");
  EXPECT_TRUE(cage.Field3);
  EXPECT_FALSE(cage.Field4);
  EXPECT_EQ(cage.Field5, 0);
}

// What a save without a number leaves behind: the end of the table has none.
TEST(CageTable, SavesARecordWithoutANumberUnderTheKeyWithoutANumber) {
  ConfigFixture fixture;
  SaveCageType(fixture.Config, CageTypeRecord{}, backup);
  EXPECT_EQ(fixture.Settings.Value("CageType", "Item", backup), "\"\",,0,0,0,0,0,0,0");
}

TEST(CageTable, PassesEveryFailedReadAndWriteOver) {
  ExpectEveryFailureToBePassedOver(cageFile, [](ConfigFixture& fixture) {
    LoadCage(fixture, "1");
    CageTypeRecord cage;
    cage.ID = "5";
    SaveCageType(fixture.Config, cage, backup);
  });
}

}  // namespace
}  // namespace zolvane
