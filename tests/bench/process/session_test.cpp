// What the user's hands do, one by one and in run files.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "bench/bench_process.h"

namespace zolvane {
namespace {

TEST_F(Bench, ASelectionByTextIsWritten) {
  EXPECT_EQ(Run({"select", "cboDeviceType", "Beta"}).Status, 0);
  EXPECT_NE(Configuration().find("[DeviceType]\r\nInstalled=2\r\n"), std::string::npos);
}

TEST_F(Bench, ASelectionByPositionIsWritten) {
  EXPECT_EQ(Run({"select", "cboDeviceType", "#1"}).Status, 0);
  EXPECT_NE(Configuration().find("[DeviceType]\r\nInstalled=2\r\n"), std::string::npos);
}

TEST_F(Bench, ASelectionByTextIsWrittenInAnyCase) {
  EXPECT_EQ(Run({"select", "cboCageType", "not INSTALLED"}).Status, 0);
  EXPECT_NE(Configuration().find("[CageType]\r\nInstalled=0\r\n"), std::string::npos);
}

TEST_F(Bench, ADisabledButtonDoesNotReact) {
  SetKey("DownloadCalibrationData", "0");
  const auto result = Run({"--yes", "download"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Output, "download: disabled\n");
  EXPECT_EQ(result.Errors,
            "zolvane-bench: cmdButton(1) (Load From Zolvane) is disabled and does not react\n");
}

TEST_F(Bench, NumbersWithoutAButtonDoNothing) {
  for (const auto* number : {"5", "-1", "+7", "99999999999999999999", "-99999999999999999999"}) {
    const auto result = Run({"press", number});
    EXPECT_EQ(result.Status, 0) << number;
    EXPECT_EQ(result.Output, "press " + std::string{number} + ": done\n");
    EXPECT_EQ(result.Errors, "");
  }
}

TEST_F(Bench, AGreyBoxIsWrittenAsTicked) {
  EXPECT_EQ(Run({"tick", "chkRFID", "2"}).Status, 0);
  EXPECT_NE(Configuration().find("\r\nSensorEnableRFID=1\r\n"), std::string::npos);
}

TEST_F(Bench, AValueThatWasThereAlreadyIsWrittenAndNotChanged) {
  const auto action = ActionsOf(Run({"--json", "tick", "chkRFID", "0"}))[0];
  EXPECT_EQ(action["values_written"], 1);
  EXPECT_EQ(action["values_changed"], 0);
}

// ---- Run files ----

TEST_F(Bench, ARunIsOneSessionAndItsResultsAreAList) {
  Folder.Put("inner.txt", "tick chkRFID 1\n");
  const std::string job =
      "\xEF\xBB\xBF# a comment\r\n"
      "\r\n"
      "  page\r\n"
      "\tselect cboCageType \"Not installed\"\r\n"
      "run inner.txt\r\n"
      "page";
  const auto result = Run({"--json", "run", "-"}, {.Input = job});
  EXPECT_EQ(result.Status, 0);
  const auto document = ActionsOf(result);
  ASSERT_EQ(document.size(), 4U);
  EXPECT_EQ(document[0]["command"], "page");
  EXPECT_EQ(document[0]["changed"], nullptr);
  EXPECT_EQ(document[1]["command"], "select cboCageType \"Not installed\"");
  EXPECT_EQ(document[1]["values_written"], 1);
  EXPECT_EQ(document[2]["command"], "tick chkRFID 1");
  EXPECT_EQ(document[3]["changed"], false);
  EXPECT_EQ(document[3]["lists"]["cboCageType"]["selected"], 2);
  EXPECT_EQ(document[3]["checks"]["chkRFID"]["value"], 1);
}

TEST_F(Bench, ARunStopsBehindTheFirstCommandThatFailsAndSaysWhatWasNotBegun) {
  Folder.Put("job.txt", "tick chkHeadSensor 1\nexport\nselect cboDeviceType Gamma\ntick chkRFID 1\n");
  const auto result = Run({"run", "job.txt"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Output,
            "tick chkHeadSensor 1: done (1 value written, 1 changed)\n"
            "export: cancelled\n");
  EXPECT_EQ(LinesOf(result.Errors).back(),
            "zolvane-bench: stopped after \"export\": 2 of 4 commands not begun: select cboDeviceType Gamma; "
            "tick chkRFID 1");
  EXPECT_EQ(Configuration().find("SensorEnableRFID=1"), std::string::npos);
}

TEST_F(Bench, ARunThatStopsExitsWithTheStatusOfTheCommandThatFailed) {
  Folder.Put("job.txt", "select cboDeviceType Gamma\nexport\n");
  const auto result = Run({"--json", "run", "job.txt"});
  EXPECT_EQ(result.Status, 2);
  const auto document = Json::parse(result.Output);
  EXPECT_EQ(document["exit_status"], 2);
  EXPECT_EQ(document["actions"].size(), 1U);
  EXPECT_EQ(document["not_begun"].dump(), R"(["export"])");
}

TEST_F(Bench, AnUploadThatFailsIsNotFollowedByTheDownloadBehindIt) {
  Folder.Put("link.json", R"({"default": "OK", "replies": {"SET_CALIBRATION STAGE1_Y 2487": null}})");
  Folder.Put("job.txt", "upload\ndownload\n");
  const auto sends = TraceOf({"--yes", "--link", "script:link.json", "run", "job.txt"}, {"send"});
  EXPECT_EQ(sends.size(), 2U);
}

TEST_F(Bench, ARunThatStopsTellsSoAlsoWhenItIsQuiet) {
  Folder.Put("job.txt", "export\npage\n");
  EXPECT_EQ(LinesOf(Run({"--quiet", "run", "job.txt"}).Errors).back(),
            "zolvane-bench: stopped after \"export\": 1 of 2 commands not begun: page");
}

TEST_F(Bench, ARunThatKeepsGoingDoesAllAndTheWorstCounts) {
  Folder.Put("job.txt", "export\nselect cboDeviceType Gamma\ntick chkRFID 1\n");
  const auto result = Run({"--keep-going", "run", "job.txt"});
  EXPECT_EQ(result.Status, 2);
  EXPECT_EQ(result.Output,
            "export: cancelled\n"
            "select cboDeviceType Gamma: unusable\n"
            "tick chkRFID 1: done (1 value written, 1 changed)\n");
}

TEST_F(Bench, ARunWithoutCommandsIsASessionOfItsOwn) {
  const auto result = Run({"--json", "run", "-"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(ActionsOf(result).dump(), "[]");
}

TEST_F(Bench, APressInARunFileBringsItsOwnFile) {
  Folder.Put("job.txt", "press 4 --file \"my backup.bak\"\n");
  EXPECT_EQ(Run({"run", "job.txt"}).Status, 0);
  EXPECT_TRUE(Folder.Has("my backup.bak"));
}

TEST_F(Bench, TheSampleJobRunsOnTheSampleConfiguration) {
  std::filesystem::copy_file(std::string{ZOLVANE_SAMPLES_PATH} + "/Zolvane.ini", Folder.Path("Zolvane.ini"),
                             std::filesystem::copy_options::overwrite_existing);
  const auto result = Run({"--yes", "run", std::string{ZOLVANE_SAMPLES_PATH} + "/main-job.txt"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_TRUE(Folder.Has("backup.bak"));
}

}  // namespace
}  // namespace zolvane
