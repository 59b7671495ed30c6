#include "operations/file_copy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "support/operation_fixture.h"

namespace zolvane {
namespace {

constexpr auto backup = "/backup/calibration.bak";

constexpr auto importQuestion =
    "box 51 \"Import Calibration Data\" \"This feature will enable you to import calibration data\r\nfrom an "
    "external file. All data in the current file will\r\nbe overwritten and cannot be retrieved. "
    "\r\n\r\nImport calibration data from an external file?\"";
constexpr auto importRefused =
    "box 16 \"Import Calibration Data\" \"It is not possible to import the calibration data \r\nfrom the "
    "current library file Zolvane.ini.\"";
constexpr auto importDone =
    "box 64 \"Import Calibration Data\" \"Your calibration data has been imported "
    "from:\r\n\r\n/backup/calibration.bak\r\n\r\n\"";
constexpr auto exportRefused =
    "box 16 \"Export Calibration Data\" \"It is not possible to export the calibration data \r\nto the "
    "current library file Zolvane.ini.\"";
constexpr auto exportDone =
    "box 64 \"Export Calibration Data\" \"Your calibration data has been exported "
    "to:\r\n\r\n/backup/calibration.bak\r\n\r\nYou can import the data in this file to reset your "
    "\r\ncalibration data at any time using this Add-In module.\"";

// One record in every table, with device "D", a factor of 2 and 0.5 mm per step of Z.
const std::string appendsBlankLine = "append blank line to " + InFolder("/add-in", "Zolvane.ini");

constexpr std::string_view oneOfEach =
    "[DeviceType]\nInstalled=1\nItem1=\"D\",1,\"ZV\"\nUploadCalibrationData=0\nSDXYEncoderMMStepFactorOff=2\n"
    "[CageType]\nInstalled=1\nItem1=\"C\",SERIALDILUTE,1,0,1,5,6,7,8\nCageReleaseHeight=152\n"
    "[Device_TypeD_CageC]\nAxis1=Z,0.5\nAxis2=S,2\n"
    "[Z_Calibration]\nMountHeight=164.35\nDeltaZ=24\n"
    "[NestCalibration]\nItem1=NEST8,1,2,3,4,5,6\n"
    "[NestType]\nInstalled=1\nItem1=\"N\",NEST8,\"1A\",X,1,10,20,1.50,\"8B\",Y,2,30,40,2.50,\"1C\",Z,3,50,60,"
    "3.00\n"
    "[HeadType]\nInstalled=1\nItem1=\"H\",SERIALDILUTE,1,30,2,8,0.5,1,0,1,380,3,380,4,5,6,8_CH,1,\"t\"\n"
    "[Calibration_D]\nItem1=STAGE1,1,2,3,4,5,6,7,8\n"
    "[Position_D]\nItem1=STAGE1,\"Stage\",K,1,2,3,4,5,6,7,8,1,0,T,1,0\n"
    "[PlateType]\nItem1=\"P\",PLATE,8,12,1,2,3,4,5,6,ROUND,7,8,9,1,1,0,1,0,1,0\nSBSA1Xmm=14.38\nSBSA1Ymm=11."
    "24\n"
    "[TipType]\nInstalled=1\nItem1=\"T\",SERIALDILUTE\n"
    "[PumpControl]\nModuleInstalled=1\n"
    "[VolumeCorrection_8_CH_30]\n1Item=x,1,A\n";

// What a copy writes of them, in its order.
const Texts oneOfEachCopied{
    "write [DeviceType] UploadCalibrationData=0",
    "write [DeviceType] DownloadCalibrationData=1",
    "write [DeviceType] ImportCalibrationData=1",
    "write [DeviceType] ExportCalibrationData=1",
    "write [DeviceType] SDXYEncoderStatus=0",
    "write [DeviceType] SDXYEncoderMMStepFactorOn=0",
    "write [DeviceType] SDXYEncoderMMStepFactorOff=2",
    "write [DeviceType] CollisionDetectEnableZ=0",
    "write [DeviceType] ZCollisionStatus=0",
    "write [DeviceType] CollisionDetectEnableSDXY=0",
    "write [DeviceType] SDXYCollisionStatus=0",
    "write [DeviceType] Item1=\"D\",1,\"ZV\"",
    "write [CageType] CageReleaseBarHeight=0",
    "write [CageType] CageReleaseHeight=152",
    "write [CageType] Item1=\"C\",SERIALDILUTE,1,0,1,5,6,7,8",
    "write [Z_Calibration] MountHeight=164.35",
    "write [Z_Calibration] StageHeightLower=0",
    "write [Z_Calibration] StageHeightUpper=0",
    "write [Z_Calibration] HeadDepth_1ch_Short=0",
    "write [Z_Calibration] Headdepth_1ch_Long=0",
    "write [Z_Calibration] HeadDepth_8ch=0",
    "write [Z_Calibration] HeadDepth_12ch=0",
    "write [Z_Calibration] HeadDepth_96_384=0",
    "write [Z_Calibration] HeadDepth_TeachTool_1Ch=0",
    "write [Z_Calibration] HeadDepth_TeachTool_96_384=0",
    "write [Z_Calibration] NestDepth_Y=0",
    "write [Z_Calibration] NestDepth_XY_6=0",
    "write [Z_Calibration] TipMountDepth12=0",
    "write [Z_Calibration] TipMountDepth30=0",
    "write [Z_Calibration] TipMountDepth125=0",
    "write [Z_Calibration] TipMountDepth300=0",
    "write [Z_Calibration] TipMountDepth1250=0",
    "write [Z_Calibration] CalibrationPlateDepth=0",
    "write [Z_Calibration] DeltaZ=24",
    "write [Z_Calibration] DeltaZTolerance=1000",
    "write [NestCalibration] Item1=NEST8,1,2,3,4,5,6",
    "write [NestType] Item1=\"N\",NEST8,\"1A\",X,1,10,20,1.50,\"8B\",Y,2,30,40,2.50,\"1C\",Z,3,50,60,3.00",
    "write [HeadType] Item1=\"H\",SERIALDILUTE,1,30,2,8,0.5,1,0,1,380,3,380,4,5,6,8_CH,1,\"t\"",
    "write [Calibration_D] Item1=STAGE1,1,2,3,4,5,6,7,8",
    "write [Position_D] Item1=STAGE1,\"Stage\",K,1,2,3,4,5,6,7,8,1,0,T,1,0",
    "write [PlateType] SBSA1Xmm=14.38",
    "write [PlateType] SBSA1Ymm=11.24",
    "write [PlateType] Item1=\"P\",PLATE,8,12,1,2,3,4,5,6,ROUND,7,8,9,1,1,0,1,0,1,0",
};

Texts InFile(Texts events, const std::string& file) {
  for (auto& event : events) {
    event += " in " + file;
  }
  return events;
}

struct CopyFixture : OperationFixture {
  explicit CopyFixture(std::string_view text = oneOfEach) : OperationFixture{text} {}

  FileDialogue Dialogue = DesignedFileDialogue();

  std::string BackupText() { return Settings().Text(backup); }
};

// ---- Copying ----

TEST(CopyAllTables, WritesEveryTableButTheTipsInTheirOrder) {
  CopyFixture fixture;
  CopyAllTables(fixture.Context, fixture.Settings().ConfigFile, backup, true, "Exporting");
  EXPECT_EQ(fixture.Writes(), InFile(oneOfEachCopied, backup));
}

TEST(CopyAllTables, ShowsItsStepsAndSeparatesTheTables) {
  CopyFixture fixture;
  CopyAllTables(fixture.Context, fixture.Settings().ConfigFile, backup, true, "Exporting");
  const std::string blank = std::string{"append blank line to "} + backup;
  EXPECT_EQ(
      fixture.Calls.Of({"status", "append"}),
      (Texts{"status=Exporting...Device setup data", blank, "status=Exporting...Pipetting module data", blank,
             "status=Exporting...Height data", blank, "status=Exporting...Head nest data", blank, blank,
             "status=Exporting...Pipette head data", blank, "status=Exporting...Stage position data", blank,
             blank, "status=Exporting...Labware library data", blank}));
}

TEST(CopyAllTables, AppendsEachBlankLineBehindItsTable) {
  CopyFixture fixture;
  CopyAllTables(fixture.Context, fixture.Settings().ConfigFile, backup, true, "Exporting");
  const std::string blank = std::string{"append blank line to "} + backup;
  auto calls = fixture.Calls.Of({"append", "write [DeviceType] Item", "write [CageType] Item",
                                 "write [Z_Calibration] DeltaZTolerance", "write [NestCal", "write [NestT",
                                 "write [Head", "write [Cali", "write [Pos", "write [PlateType] Item"});
  for (auto& call : calls) {
    call = call.starts_with("write") ? call.substr(0, call.find('=')) : call;
  }
  EXPECT_EQ(calls, (Texts{"write [DeviceType] Item1", blank, "write [CageType] Item1", blank,
                          "write [Z_Calibration] DeltaZTolerance", blank, "write [NestCalibration] Item1",
                          blank, "write [NestType] Item1", blank, "write [HeadType] Item1", blank,
                          "write [Calibration_D] Item1", blank, "write [Position_D] Item1", blank,
                          "write [PlateType] Item1", blank}));
}

TEST(CopyAllTables, AppendsOneBlankLineBehindTheHeightsAlsoWithoutSeparation) {
  CopyFixture fixture;
  fixture.Settings().Load(backup, oneOfEach);
  CopyAllTables(fixture.Context, backup, fixture.Settings().ConfigFile, false, "Importing");
  EXPECT_EQ(fixture.Calls.Of({"append"}), Texts{appendsBlankLine});
  EXPECT_EQ(fixture.Calls.Of({"write [Z_Calibration] DeltaZT", "append", "status=Importing...Head nest"}),
            (Texts{"write [Z_Calibration] DeltaZTolerance=1000", appendsBlankLine,
                   "status=Importing...Head nest data"}));
}

TEST(CopyAllTables, StartsTheStatusTextsWithThePrefix) {
  CopyFixture fixture;
  CopyAllTables(fixture.Context, backup, fixture.Settings().ConfigFile, false, "Importing");
  EXPECT_EQ(fixture.StatusTexts(),
            (Texts{"status=Importing...Device setup data", "status=Importing...Pipetting module data",
                   "status=Importing...Height data", "status=Importing...Head nest data",
                   "status=Importing...Pipette head data", "status=Importing...Stage position data",
                   "status=Importing...Labware library data"}));
}

TEST(CopyAllTables, RefreshesTheRecordsInForceFromTheConfigurationFileWhateverTheSource) {
  CopyFixture fixture;
  fixture.Settings().Load(backup, "[DeviceType]\nInstalled=1\nItem1=\"Other\",0,\"ZV\"\n");
  CopyAllTables(fixture.Context, backup, fixture.Settings().ConfigFile, false, "Importing");
  const auto reads = fixture.Calls.Of({"status", "read"});
  EXPECT_EQ(reads[0], "status=Importing...Device setup data");
  EXPECT_EQ(reads[1], "read [Z_Calibration] MountHeight");
  const auto firstFromBackup = std::ranges::find_if(
      reads, [](const std::string& read) { return read.ends_with(std::string{" in "} + backup); });
  EXPECT_EQ(*firstFromBackup, std::string{"read [DeviceType] Item1 in "} + backup);
  EXPECT_EQ(fixture.Config.Current.Device.Name, "D");
  EXPECT_EQ(fixture.Config.Current.Heights.MountHeight, 164.35);
  EXPECT_EQ(fixture.Config.Current.Tip.Name, "T");
  EXPECT_EQ(fixture.Config.Current.Axes.Z.UnitsPerStep, 0.5F);
}

TEST(CopyAllTables, ReadsEveryTableFromTheSource) {
  CopyFixture fixture;
  fixture.Settings().Load(backup, oneOfEach);
  CopyAllTables(fixture.Context, backup, fixture.Settings().ConfigFile, false, "Importing");
  Texts items;
  for (const auto& event : fixture.Calls.Of({"read"})) {
    if (event.ends_with(backup) && event.find("] Item") != std::string::npos) {
      items.push_back(event.substr(5, event.find(" in ") - 5));
    }
  }
  EXPECT_EQ(items, (Texts{"[DeviceType] Item1", "[DeviceType] Item2", "[CageType] Item1", "[CageType] Item2",
                          "[NestCalibration] Item1", "[NestCalibration] Item2", "[NestType] Item1",
                          "[NestType] Item2", "[HeadType] Item1", "[HeadType] Item2", "[Calibration_D] Item1",
                          "[Calibration_D] Item2", "[Position_D] Item1", "[Position_D] Item2",
                          "[PlateType] Item1", "[PlateType] Item2"}));
}

TEST(CopyAllTables, CopiesItemsFromOneUpToTheFirstWithoutAName) {
  CopyFixture fixture{
      "[DeviceType]\nItem0=\"zero\"\nItem1=\"a\"\nItem2=\"b\"\nItem3=\nItem4=\"d\"\n"
      "[NestCalibration]\nItem1=x,1\nItem2=,2\nItem3=z,3\n"
      "[Calibration_]\nItem1=c,1\nItem3=d,1\n"
      "[PlateType]\nItem1=\"p\"\nItem2=\"\",PLATE\nItem3=\"q\"\n"};
  fixture.Settings().Load(backup, "[DeviceType]\nItem3=\"kept\",1,\"K\"\n");
  CopyAllTables(fixture.Context, fixture.Settings().ConfigFile, backup, true, "Exporting");
  Texts items;
  for (const auto& event :
       fixture.Calls.Of({"write [DeviceType] I", "write [NestC", "write [C", "write [PlateType] I"})) {
    if (event.find("] Item") != std::string::npos) {
      items.push_back(event.substr(6, event.find('=') - 6));
    }
  }
  EXPECT_EQ(items, (Texts{"[DeviceType] Item1", "[DeviceType] Item2", "[NestCalibration] Item1",
                          "[Calibration_] Item1", "[PlateType] Item1"}));
  EXPECT_EQ(fixture.Settings().Value("DeviceType", "Item3", backup), "\"kept\",1,\"K\"");
}

TEST(CopyAllTables, EndsThePositionsAtTheFirstWithoutADisplayName) {
  CopyFixture fixture{"[Position_]\nItem1=,\"a\",,1\nItem2=STAGE1,\"\",,2\nItem3=STAGE2,\"c\",,3\n"};
  CopyAllTables(fixture.Context, fixture.Settings().ConfigFile, backup, true, "Exporting");
  EXPECT_EQ(fixture.Calls.Of({"write [Pos"}).size(), 1U);
  EXPECT_EQ(fixture.Settings().Value("Position_", "Item1", backup).value_or("").substr(0, 7), ",\"a\",,1");
}

TEST(CopyAllTables, TakesANameOfTwoQuotesInANestCalibrationForAName) {
  CopyFixture fixture{"[NestCalibration]\nItem1=\"\",1\nItem2=b,2\n"};
  CopyAllTables(fixture.Context, fixture.Settings().ConfigFile, backup, true, "Exporting");
  EXPECT_EQ(fixture.Calls.Of({"write [NestC"}).size(), 2U);
}

TEST(CopyAllTables, LeavesTheKeysOfTheLastDevice) {
  CopyFixture fixture{"[DeviceType]\nInstalled=1\nItem1=\"a\",0,\"A\"\nItem2=\"b\",1,\"B\"\n"};
  CopyAllTables(fixture.Context, fixture.Settings().ConfigFile, backup, true, "Exporting");
  EXPECT_EQ(fixture.Calls.Of({"write [DeviceType] SDXYEncoderStatus"}).size(), 2U);
}

TEST(CopyAllTables, CopiesNeitherTipsNorAxesNorCorrectionsNorOtherKeys) {
  CopyFixture fixture;
  CopyAllTables(fixture.Context, fixture.Settings().ConfigFile, backup, true, "Exporting");
  for (const auto* section :
       {"[TipType]", "[Device_TypeD_CageC]", "[VolumeCorrection_8_CH_30]", "[PumpControl]"}) {
    EXPECT_EQ(fixture.BackupText().find(section), std::string::npos) << section;
  }
  EXPECT_EQ(fixture.Settings().Value("DeviceType", "Installed", backup), std::nullopt);
}

TEST(CopyAllTables, LeavesWhatTheSourceDoesNotHold) {
  CopyFixture fixture;
  fixture.Settings().Load(backup, "[DeviceType]\nInstalled=7\nItem9=\"x\"\n[Other]\nkey=value\n");
  CopyAllTables(fixture.Context, fixture.Settings().ConfigFile, backup, true, "Exporting");
  EXPECT_EQ(fixture.Settings().Value("DeviceType", "Installed", backup), "7");
  EXPECT_EQ(fixture.Settings().Value("DeviceType", "Item9", backup), "\"x\"");
  EXPECT_EQ(fixture.Settings().Value("Other", "key", backup), "value");
}

TEST(CopyAllTables, AnEmptySourceWritesTheHeightsAlone) {
  CopyFixture fixture;
  CopyAllTables(fixture.Context, "/missing", fixture.Settings().ConfigFile, false, "Importing");
  const auto writes = fixture.Writes();
  ASSERT_EQ(writes.size(), 20U);
  for (const auto& write : writes) {
    const bool isTolerance = write == "write [Z_Calibration] DeltaZTolerance=1000";
    EXPECT_TRUE(isTolerance || (write.starts_with("write [Z_Calibration] ") && write.ends_with("=0")))
        << write;
  }
  EXPECT_EQ(writes.back(), "write [Z_Calibration] DeltaZTolerance=1000");
}

TEST(CopyAllTables, UsesTheSectionsAndTheFactorOfTheDeviceBeforeTheCopyForBothFiles) {
  CopyFixture fixture;
  fixture.Settings().Load(backup,
                          "[DeviceType]\nItem1=\"New\",0,\"N\"\nSDXYEncoderMMStepFactorOff=100\n"
                          "[Calibration_New]\nItem1=a,1\n[Position_New]\nItem1=a,\"a\"\n"
                          "[Calibration_D]\nItem1=b,1,2,7\n[Position_D]\nItem1=STAGE1,\"b\",,1,2,2.5\n");
  CopyAllTables(fixture.Context, backup, fixture.Settings().ConfigFile, false, "Importing");
  EXPECT_EQ(fixture.Value("DeviceType", "Item1"), "\"New\",0,\"N\"");
  EXPECT_EQ(fixture.Value("Calibration_D", "Item1"), "b,1,2,7,0,0,0,0,0");
  EXPECT_EQ(fixture.Value("Position_D", "Item1"), "STAGE1,\"b\",,1,2,3,0,0,0,0,0,0,0,,0,0");
  EXPECT_EQ(fixture.Calls.Of({"write [Calibration_New]", "write [Position_New]"}), Texts{});
}

TEST(CopyAllTables, NormalisesWhatPassesThroughSteps) {
  CopyFixture fixture;
  fixture.Settings().Set("NestType", "Item1", "\"N\",NEST8,\"1A\",X,1,10.2,20,1.6");
  CopyAllTables(fixture.Context, fixture.Settings().ConfigFile, backup, true, "Exporting");
  EXPECT_EQ(fixture.Settings().Value("NestType", "Item1", backup),
            "\"N\",NEST8,\"1A\",X,1,10,20,1.50,\"\",,0,0,0,0.00,\"\",,0,0,0,0.00");
}

TEST(CopyAllTables, ReadsTheHeadOffsetsFromTheSourceAndConvertsThemWithTheScalesInForce) {
  CopyFixture fixture;
  fixture.Settings().Load(backup,
                          "[HeadType]\nItem1=\"H\",SERIALDILUTE,0,0,0,0,0,0,0,0,1,0,100\n"
                          "SDHeadEjectOffsetMM=8\n");
  CopyAllTables(fixture.Context, backup, fixture.Settings().ConfigFile, false, "Importing");
  EXPECT_EQ(fixture.Value("HeadType", "Item1"), "\"H\",SERIALDILUTE,0,0,0,0,0,0,0,0,104,0,100,0,0,0,,0,\"\"");
}

TEST(CopyAllTables, CopiesItsOwnResultUnchanged) {
  CopyFixture fixture;
  const std::string second = "/backup/second.bak";
  CopyAllTables(fixture.Context, fixture.Settings().ConfigFile, backup, true, "Exporting");
  CopyAllTables(fixture.Context, backup, second, true, "Exporting");
  EXPECT_EQ(fixture.Settings().Text(second), fixture.BackupText());
}

TEST(AppendBlankLine, AppendsOnlyIfTheFlagIsSet) {
  CopyFixture fixture;
  AppendBlankLine(fixture.Context, backup, false);
  EXPECT_EQ(fixture.Calls.Events, Texts{});
  AppendBlankLine(fixture.Context, backup, true);
  EXPECT_EQ(fixture.Calls.Events, Texts{std::string{"append blank line to "} + backup});
}

// ---- The file dialogue ----

TEST(FileDialogueOfThePage, IsDesignedForASettingsFile) {
  const auto dialogue = DesignedFileDialogue();
  EXPECT_EQ(dialogue.Title, "Hestrion Settings File");
  EXPECT_EQ(dialogue.DefaultExtension, "bak");
  EXPECT_EQ(dialogue.FileName, "ZolvaneINIExport");
  EXPECT_EQ(dialogue.Filter, "*.ini|*.*");
  EXPECT_EQ(dialogue.Flags, std::nullopt);
}

constexpr auto filter = "Backup files (*.bak)|*.bak|Configuration Files (*.ini)|*.ini|All files (*.*)|*.*";

TEST(FileDialogueOfThePage, IsSetUpForImport) {
  CopyFixture fixture;
  fixture.Process.BoxAnswers = {message_answer::yes};
  fixture.Dialogue.DefaultExtension = "txt";
  fixture.Dialogue.FilterIndex = 3;
  ImportCalibrationFile(fixture.Context, fixture.Dialogue);
  ASSERT_EQ(fixture.Process.FileDialogues.size(), 1U);
  const auto& [kind, dialogue] = fixture.Process.FileDialogues.front();
  EXPECT_EQ(kind, FileDialogueKind::Open);
  EXPECT_EQ(dialogue.Title, "Hestrion Settings File Import");
  EXPECT_EQ(dialogue.DefaultExtension, "bak");
  EXPECT_EQ(dialogue.Filter, filter);
  EXPECT_EQ(dialogue.FilterIndex, 1);
  EXPECT_EQ(dialogue.Flags, std::nullopt);
  EXPECT_TRUE(dialogue.CancelIsError);
  EXPECT_EQ(dialogue.FileName, "ZolvaneINIExport");
}

TEST(FileDialogueOfThePage, IsSetUpForExport) {
  CopyFixture fixture;
  fixture.Dialogue.DefaultExtension = "txt";
  fixture.Dialogue.FilterIndex = 3;
  ExportCalibrationFile(fixture.Context, fixture.Dialogue);
  ASSERT_EQ(fixture.Process.FileDialogues.size(), 1U);
  const auto& [kind, dialogue] = fixture.Process.FileDialogues.front();
  EXPECT_EQ(kind, FileDialogueKind::Save);
  EXPECT_EQ(dialogue.Title, "Hestrion Settings File Export");
  EXPECT_EQ(dialogue.DefaultExtension, "bak");
  EXPECT_EQ(dialogue.Filter, filter);
  EXPECT_EQ(dialogue.FilterIndex, 1);
  EXPECT_EQ(dialogue.Flags, 2054);
  EXPECT_TRUE(dialogue.CancelIsError);
  EXPECT_EQ(dialogue.FileName, "ZolvaneINIExport");
}

TEST(FileDialogueOfThePage, KeepsItsFlagsForAnImportThatFollowsAnExport) {
  CopyFixture fixture;
  fixture.Process.BoxAnswers = {message_answer::yes};
  ExportCalibrationFile(fixture.Context, fixture.Dialogue);
  ImportCalibrationFile(fixture.Context, fixture.Dialogue);
  ASSERT_EQ(fixture.Process.FileDialogues.size(), 2U);
  EXPECT_EQ(fixture.Process.FileDialogues.back().second.Flags, 2054);
}

TEST(FileDialogueOfThePage, ProposesTheFileThatWasChosenLast) {
  CopyFixture fixture;
  fixture.Process.FileAnswers = {"/backup/first.bak", std::nullopt, "/backup/second.bak", std::nullopt};
  fixture.Process.BoxAnswers = {message_answer::ok, message_answer::yes, message_answer::yes,
                                message_answer::ok};
  ExportCalibrationFile(fixture.Context, fixture.Dialogue);
  ImportCalibrationFile(fixture.Context, fixture.Dialogue);
  ImportCalibrationFile(fixture.Context, fixture.Dialogue);
  ExportCalibrationFile(fixture.Context, fixture.Dialogue);
  EXPECT_EQ(fixture.Calls.Of({"open", "save"}),
            (Texts{"save dialogue \"ZolvaneINIExport\"", "open dialogue \"/backup/first.bak\"",
                   "open dialogue \"/backup/first.bak\"", "save dialogue \"/backup/second.bak\""}));
}

TEST(FileDialogueOfThePage, ProposesAlsoAFileThatWasRefused) {
  CopyFixture fixture;
  fixture.Process.FileAnswers = {fixture.Settings().ConfigFile};
  ExportCalibrationFile(fixture.Context, fixture.Dialogue);
  ExportCalibrationFile(fixture.Context, fixture.Dialogue);
  EXPECT_EQ(fixture.Calls.Of({"save"}).back(), "save dialogue \"" + fixture.Settings().ConfigFile + "\"");
}

// ---- Import ----

TEST(Import, AsksLetsChooseCopiesReportsAndReloads) {
  CopyFixture fixture;
  fixture.Settings().Load(backup, oneOfEach);
  fixture.Process.BoxAnswers = {message_answer::yes};
  fixture.Process.FileAnswers = {backup};
  ImportCalibrationFile(fixture.Context, fixture.Dialogue);
  EXPECT_EQ(fixture.Calls.Of({"enable", "box", "open", "yield", "status", "append", "load", "changed"}),
            (Texts{"enable controls false", importQuestion, "open dialogue \"ZolvaneINIExport\"", "yield",
                   "status=Importing...Device setup data", "status=Importing...Pipetting module data",
                   "status=Importing...Height data", appendsBlankLine, "status=Importing...Head nest data",
                   "status=Importing...Pipette head data", "status=Importing...Stage position data",
                   "status=Importing...Labware library data", importDone, "load defaults",
                   "enable controls true", "status="}));
  EXPECT_EQ(fixture.Writes(), oneOfEachCopied);
}

TEST(Import, ChangesNothingUnlessTheAnswerIsYes) {
  for (const std::int32_t answer : {1, 2, 7, 0, -1}) {
    CopyFixture fixture;
    fixture.Process.BoxAnswers = {answer};
    ImportCalibrationFile(fixture.Context, fixture.Dialogue);
    EXPECT_EQ(fixture.Calls.Events,
              (Texts{"enable controls false", importQuestion, "enable controls true", "status="}))
        << answer;
  }
}

TEST(Import, ChangesNothingWhenTheQuestionCannotBeShown) {
  CopyFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("box");
  ImportCalibrationFile(fixture.Context, fixture.Dialogue);
  EXPECT_EQ(fixture.Calls.Events,
            (Texts{"enable controls false", importQuestion, "enable controls true", "status="}));
}

TEST(Import, ChangesNothingWhenTheDialogueIsCancelled) {
  CopyFixture fixture;
  fixture.Process.BoxAnswers = {message_answer::yes};
  fixture.Process.FileAnswers = {std::nullopt};
  ImportCalibrationFile(fixture.Context, fixture.Dialogue);
  EXPECT_EQ(fixture.Calls.Events,
            (Texts{"enable controls false", importQuestion, "open dialogue \"ZolvaneINIExport\"",
                   "enable controls true", "status="}));
}

TEST(Import, ChangesNothingForAnEmptyFileName) {
  CopyFixture fixture;
  fixture.Process.BoxAnswers = {message_answer::yes};
  fixture.Process.FileAnswers = {""};
  ImportCalibrationFile(fixture.Context, fixture.Dialogue);
  EXPECT_EQ(fixture.Calls.Events,
            (Texts{"enable controls false", importQuestion, "open dialogue \"ZolvaneINIExport\"", "yield",
                   "enable controls true", "status="}));
}

TEST(Import, RefusesTheConfigurationFileInAnyCase) {
  for (const auto& file : {InFolder("/add-in", "Zolvane.ini"), InFolder("/ADD-IN", "zolvane.INI")}) {
    CopyFixture fixture;
    fixture.Process.BoxAnswers = {message_answer::yes};
    fixture.Process.FileAnswers = {file};
    ImportCalibrationFile(fixture.Context, fixture.Dialogue);
    EXPECT_EQ(fixture.Calls.Events,
              (Texts{"enable controls false", importQuestion, "open dialogue \"ZolvaneINIExport\"", "yield",
                     importRefused, "enable controls true", "status="}));
  }
}

TEST(Import, DoesNotNoticeTheConfigurationFileUnderAnotherSpelling) {
  CopyFixture fixture;
  fixture.Process.BoxAnswers = {message_answer::yes};
  fixture.Process.FileAnswers = {InFolder("/add-in/.", "Zolvane.ini")};
  ImportCalibrationFile(fixture.Context, fixture.Dialogue);
  EXPECT_EQ(fixture.Calls.Of({"box 16"}), Texts{});
  EXPECT_EQ(fixture.Calls.Count("load defaults"), 1U);
}

TEST(Import, ReportsSuccessAlsoForASourceThatCannotBeRead) {
  CopyFixture fixture;
  fixture.Process.BoxAnswers = {message_answer::yes};
  fixture.Process.FileAnswers = {backup};
  ImportCalibrationFile(fixture.Context, fixture.Dialogue);
  EXPECT_EQ(fixture.Calls.Of({"box"}), (Texts{importQuestion, importDone}));
  EXPECT_EQ(fixture.Value("Z_Calibration", "MountHeight"), "0");
  EXPECT_EQ(fixture.Value("Z_Calibration", "DeltaZTolerance"), "1000");
  EXPECT_EQ(fixture.Value("HeadType", "Item1").substr(0, 3), "\"H\"");
}

TEST(Import, RunsToItsEndWithoutAnyHost) {
  CopyFixture fixture;
  fixture.Attachment = {};
  fixture.Process.BoxAnswers = {message_answer::yes};
  fixture.Process.FileAnswers = {backup};
  ImportCalibrationFile(fixture.Context, fixture.Dialogue);
  EXPECT_EQ(
      fixture.Calls.Of({"box", "load", "enable"}),
      (Texts{"enable controls false", importQuestion, importDone, "load defaults", "enable controls true"}));
}

// ---- Export ----

TEST(Export, LetsChooseCopiesAndReports) {
  CopyFixture fixture;
  fixture.Process.FileAnswers = {backup};
  ExportCalibrationFile(fixture.Context, fixture.Dialogue);
  auto calls = fixture.Calls.Of({"enable", "box", "save", "yield", "status", "load", "changed"});
  EXPECT_EQ(calls, (Texts{"enable controls false", "save dialogue \"ZolvaneINIExport\"", "yield",
                          "status=Exporting...Device setup data", "status=Exporting...Pipetting module data",
                          "status=Exporting...Height data", "status=Exporting...Head nest data",
                          "status=Exporting...Pipette head data", "status=Exporting...Stage position data",
                          "status=Exporting...Labware library data", exportDone,
                          "status=", "enable controls true"}));
  EXPECT_EQ(fixture.Writes(), InFile(oneOfEachCopied, backup));
  EXPECT_EQ(fixture.Calls.Of({"append"}), Texts(9, std::string{"append blank line to "} + backup));
}

TEST(Export, LeavesTheConfigurationFileAsItIs) {
  CopyFixture fixture;
  fixture.Process.FileAnswers = {backup};
  ExportCalibrationFile(fixture.Context, fixture.Dialogue);
  EXPECT_EQ(fixture.Settings().Text(), oneOfEach);
}

TEST(Export, ChangesNothingWhenTheDialogueIsCancelled) {
  CopyFixture fixture;
  fixture.Process.FileAnswers = {std::nullopt};
  ExportCalibrationFile(fixture.Context, fixture.Dialogue);
  EXPECT_EQ(fixture.Calls.Events, (Texts{"enable controls false", "save dialogue \"ZolvaneINIExport\"",
                                         "status=", "enable controls true"}));
}

TEST(Export, ChangesNothingForAnEmptyFileName) {
  CopyFixture fixture;
  fixture.Process.FileAnswers = {""};
  ExportCalibrationFile(fixture.Context, fixture.Dialogue);
  EXPECT_EQ(fixture.Calls.Events, (Texts{"enable controls false", "save dialogue \"ZolvaneINIExport\"",
                                         "yield", "status=", "enable controls true"}));
}

TEST(Export, RefusesTheConfigurationFileInAnyCase) {
  for (const auto& file : {InFolder("/add-in", "Zolvane.ini"), InFolder("/Add-In", "ZOLVANE.ini")}) {
    CopyFixture fixture;
    fixture.Process.FileAnswers = {file};
    ExportCalibrationFile(fixture.Context, fixture.Dialogue);
    EXPECT_EQ(fixture.Calls.Events, (Texts{"enable controls false", "save dialogue \"ZolvaneINIExport\"",
                                           "yield", exportRefused, "status=", "enable controls true"}));
  }
}

TEST(Export, ReportsSuccessAlsoWhenNothingCouldBeWritten) {
  CopyFixture fixture;
  fixture.Process.FileAnswers = {backup};
  fixture.Calls.FailsIf = [](auto event) {
    return event.starts_with("write") || event.starts_with("append");
  };
  ExportCalibrationFile(fixture.Context, fixture.Dialogue);
  EXPECT_EQ(fixture.Writes(), InFile(oneOfEachCopied, backup));
  EXPECT_EQ(fixture.BackupText(), "");
  EXPECT_EQ(fixture.Calls.Of({"box"}), Texts{exportDone});
}

TEST(Export, CanBeImportedAgainWithoutAChange) {
  CopyFixture fixture;
  CopyAllTables(fixture.Context, fixture.Settings().ConfigFile, fixture.Settings().ConfigFile, false, "");
  const auto normalised = fixture.Settings().Text();
  fixture.Process.FileAnswers = {backup, backup};
  fixture.Process.BoxAnswers = {message_answer::ok, message_answer::yes};
  ExportCalibrationFile(fixture.Context, fixture.Dialogue);
  ImportCalibrationFile(fixture.Context, fixture.Dialogue);
  EXPECT_EQ(fixture.Settings().Text(), normalised);
}

}  // namespace
}  // namespace zolvane
