#include "custody/values/sides.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "custody/values/descriptions.h"
#include "instrument/links/simulated_link.h"
#include "support/golden.h"

namespace zolvane {
namespace {

std::string Sample() {
  return BytesOf(std::filesystem::path{ZOLVANE_SAMPLES_PATH} / "Zolvane.ini");
}

std::string Backup() {
  return BytesOf(std::filesystem::path{ZOLVANE_SAMPLES_PATH} / "Zolvane.bak");
}

std::string TextOf(const Values& values, std::string_view name) {
  const auto* const value = values.Find(name);
  return value == nullptr ? "(missing)" : value->Text.value_or("(unknown)");
}

std::string SentIn(const WireFace& face, std::string_view key) {
  return TextOf(face.Lines, key);
}

// ---- The file's face

TEST(FileFace, HasKeysAndThePiecesOfRecordLines) {
  const auto face = FileFace("[Z_Calibration]\nMountHeight=164.35\n[HeadType]\nItem1=\"A\",B,,12.5\n");
  ASSERT_EQ(face.InOrder().size(), 5U);
  EXPECT_EQ(TextOf(face, "[Z_Calibration] MountHeight"), "164.35");
  EXPECT_EQ(TextOf(face, "[HeadType] Item1 field 1 (name)"), "\"A\"");
  EXPECT_EQ(TextOf(face, "[HeadType] Item1 field 3"), "");
  EXPECT_EQ(TextOf(face, "[HeadType] Item1 field 4 (tip volume)"), "12.5");
}

TEST(FileFace, HasTheFirstOfTwoSectionsAndOfTwoKeysAlone) {
  const auto face = FileFace("[A]\nx=1\nx=2\n[a]\ny=3\n[B]\ny=4\nbefore=5\n");
  EXPECT_EQ(face.InOrder().size(), 3U);
  EXPECT_EQ(TextOf(face, "[A] x"), "1");
  EXPECT_EQ(TextOf(face, "[B] y"), "4");
}

TEST(FileFace, SectionsOfTipsAndTheirCorrectionsHaveFieldsUnderAnyName) {
  const auto face = FileFace("[Own]\n1Item=5 ul,1.02,\"KEY\"\n");
  EXPECT_EQ(TextOf(face, "[Own] 1Item field 2 (correction factor)"), "1.02");
}

TEST(FileFace, ReadsBothEncodings) {
  EXPECT_EQ(TextOf(FileFace("[A]\nx=\xC3\xA4\n"), "[A] x"), "\xC3\xA4");
  EXPECT_EQ(TextOf(FileFace("[A]\nx=\xE4\n"), "[A] x"), "\xC3\xA4");
}

// ---- The wire's face

TEST(WireFace, HasTheLinesThatAnUploadOfTheSampleSends) {
  const auto face = WireFaceOfFile(Sample());
  EXPECT_EQ(face.Problem, "");
  EXPECT_EQ(face.Lines.InOrder().size() + face.Lines.Overridden().size(), CommandsOfTheSample() - 1)
      << "without SAVE";
  EXPECT_EQ(SentIn(face, "STAGE1_X"), "1612");
  EXPECT_EQ(SentIn(face, "MountHeight"), "13148");
  EXPECT_EQ(SentIn(face, "VOL_8CH_30_2"), "102410");
}

TEST(WireFace, HoldsWhatLoadingThePageMakesOfTheFile) {
  const auto installed =
      Replaced(Sample(), "Installed=2\r\nItem1=\"Zolvane 200\"", "Installed=9\r\nItem1=\"Zolvane 200\"");
  ASSERT_NE(installed, Sample());
  EXPECT_EQ(SentIn(WireFaceOfFile(installed), "STAGE1_X"), "2016")
      << "the page falls back to the first device";
}

TEST(WireFace, OfABackupIsWhatAnUploadSendsAfterItsImport) {
  const auto backup = Replaced(Backup(), "MountHeight=164.35", "MountHeight=200");
  ASSERT_NE(backup, Backup());
  const auto face = WireFaceOfBackup(Sample(), backup);
  EXPECT_EQ(face.Problem, "");
  EXPECT_EQ(SentIn(face, "MountHeight"), "16000");
  const auto difference = Compare(WireFaceOfFile(Sample()).Lines, face.Lines);
  ASSERT_EQ(difference.Differences.size(), 2U);
  EXPECT_EQ(difference.Differences[0].Name, "MountHeight");
  EXPECT_EQ(difference.Differences[1].Name, "HeadEject_SD_S")
      << "no backup holds the offset that it is made of";
}

TEST(WireFace, SaysWhyThereIsNone) {
  const std::string utf16{"\xFF\xFE[\0A\0]\0", 8};
  EXPECT_NE(WireFaceOfFile(utf16).Problem.find("UTF-16"), std::string::npos);
  const auto locked = Replaced(Sample(), "ImportCalibrationData=1", "ImportCalibrationData=0");
  EXPECT_EQ(WireFaceOfBackup(locked, Backup()).Problem, "the page does not offer to import the backup");
}

TEST(WireFace, OfAnInstrumentAsksEachKeyOnce) {
  InterruptFlag interrupt;
  SimulatedLink link{SimulatedInstrument{{}}, {}, interrupt};
  std::string reply;
  std::string command = "SET_CALIBRATION STAGE1_X 400";
  ASSERT_EQ(link.SendCommand(command, reply, 0), true);
  const std::vector<std::string> keys{"STAGE1_X", "STAGE1_Y", "STAGE1_X"};
  const auto face = WireFaceOfInstrument(link, keys);
  EXPECT_EQ(face.InOrder(),
            (std::vector<Value>{{.Name = "STAGE1_X", .Text = "400"}, {.Name = "STAGE1_Y", .Text = {}}}));
  EXPECT_TRUE(face.Overridden().empty());
}

TEST(WireFace, OfAnInstrumentAsksNoMoreAfterASilence) {
  InterruptFlag interrupt;
  SimulatedLink link{SimulatedInstrument{{.FailAfter = 1}}, {}, interrupt};
  const std::vector<std::string> keys{"A", "B", "C"};
  const auto face = WireFaceOfInstrument(link, keys);
  EXPECT_TRUE(face.Find("A")->WasAnswered);
  EXPECT_FALSE(face.Find("B")->WasAnswered);
  EXPECT_FALSE(face.Find("C")->WasAnswered);
}

// ---- Descriptions

TEST(Descriptions, GiveGroupAndMillimetresOfWhatIsSent) {
  const Descriptions descriptions{WireFaceOfFile(Sample())};
  EXPECT_EQ(descriptions.Of("STAGE1_X").Group, "Stage XY");
  EXPECT_EQ(descriptions.Of("VOL_8CH_30_2").Group, "Volume Precision");
  EXPECT_EQ(descriptions.Measure("STAGE1_X", "1612"), "20.15 mm");       // 0.0125 mm a count
  EXPECT_EQ(descriptions.Measure("MountHeight", "13148"), "164.35 mm");  // 0.0125 mm a step
  EXPECT_EQ(descriptions.Measure("WELL_A1_SD_X", "8430"), "42.15 mm");   // 2 steps are 0.01 mm
  EXPECT_EQ(descriptions.Measure("NEST_1A_SD_X", "3260"), "32.6 mm");
  EXPECT_EQ(descriptions.Measure("TipEject_8Ch_300_S", "-2780"), "-27.8 mm");
  EXPECT_EQ(descriptions.Measure("VOL_8CH_30_2", "102410"), std::nullopt);
  EXPECT_EQ(descriptions.Measure("STAGE1_X", "12x"), std::nullopt);
}

TEST(Descriptions, GiveTitleAndMeasureOfPlacesInTheFile) {
  const Descriptions descriptions{WireFaceOfFile(Sample())};
  EXPECT_EQ(descriptions.Of("[HeadType] Item3 field 4 (tip volume)").Title, "tip volume");
  EXPECT_EQ(descriptions.Measure("[HeadType] Item3 field 4 (tip volume)", "30"), "30 ul");
  EXPECT_EQ(descriptions.Measure("[Z_Calibration] MountHeight", "164.35"), "164.35 mm");
  EXPECT_EQ(descriptions.Measure("[Position_Zolvane 400] Item1 field 6", "4215"), "42.15 mm");
  EXPECT_EQ(descriptions.Measure("[HeadType] SDPreCollectHeightMM", "12"), "12 mm");
  EXPECT_EQ(descriptions.Of("[HeadType] Installed").Title, "");
  EXPECT_EQ(descriptions.Of("[Elsewhere] x").Group, "[Elsewhere]");
}

TEST(Descriptions, InventNoMillimetresWithoutAScale) {
  const auto file = Replaced(Sample(), "Axis3=\"Z\",0.0125", "Axis3=\"Z\",0");
  const Descriptions descriptions{WireFaceOfFile(file)};
  EXPECT_EQ(descriptions.Measure("PickUp_8Ch_Z", "10640"), std::nullopt);
}

TEST(Descriptions, KnowTheUnitOfEveryLengthOfTheUpload) {
  const auto face = WireFaceOfFile(Sample());
  const Descriptions descriptions{face};
  for (const auto& value : face.Lines.InOrder()) {
    const bool isLength = !value.Name.starts_with("VOL_") && value.Name != "Delta_Z";
    EXPECT_EQ(descriptions.Measure(value.Name, *value.Text).has_value(), isLength) << value.Name;
  }
}

}  // namespace
}  // namespace zolvane
