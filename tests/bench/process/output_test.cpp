// What is printed, and where it is lost.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>
#include <string>
#include <vector>

#include "bench/bench_process.h"

namespace zolvane {
namespace {

TEST_F(Bench, AnUploadTellsItsProgressAndItsResult) {
  const auto result = Run({"--yes", "upload"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(result.Output, "upload: done (36 of 36 commands sent; 36 accepted; SAVE accepted)\n");
  EXPECT_EQ(LinesOf(result.Errors),
            (std::vector<std::string>{
                "Uploading Data to Zolvane",
                "Upload Calibration Data to Zolvane: The calibration data stored on this computer will be "
                "transferred to the Zolvane overwriting any existing data. Click [OK] to upload this "
                "information. (--yes: OK)",
                "Uploading Data to Zolvane...Stage XY",
                "Uploading Data to Zolvane...Heights",
                "Uploading Data to Zolvane...SD XY",
                "Uploading Data to Zolvane...Volume Precision",
                "Uploading Data to Zolvane",
            }));
}

TEST_F(Bench, QuietPrintsNothingOfWhatIsDone) {
  const auto upload = Run({"--quiet", "--yes", "upload"});
  EXPECT_EQ(upload.Status, 0);
  EXPECT_EQ(upload.Output + upload.Errors, "");
}

TEST_F(Bench, QuietPrintsNoPage) {
  EXPECT_EQ(Run({"--quiet", "page"}).Output, "");
}

TEST_F(Bench, QuietPrintsWhatFailed) {
  const auto result = Run({"--quiet", "--link", "none", "--yes", "upload"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Output, "");
  EXPECT_EQ(result.Errors,
            "zolvane-bench: Communication Error: Uploading Data to Zolvane Please ensure that the Zolvane is "
            "switched on and in 'Remote Mode'\n"
            "zolvane-bench: upload: 36 of 36 commands not sent\n");
}

TEST_F(Bench, QuietSaysWhyABoxDeclinedTheOperation) {
  const auto result = Run({"--quiet", "--answer", "cancel", "upload"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(
      result.Errors,
      "zolvane-bench: Upload Calibration Data to Zolvane: The calibration data stored on this computer will "
      "be "
      "transferred to the Zolvane overwriting any existing data. Click [OK] to upload this information. "
      "(--answer: Cancel)\n");
}

TEST_F(Bench, QuietSaysThatAnOperationWasStopped) {
  Folder.Put("link.json", R"({"default": "OK", "stop_after": ["STATUS_STAGE"]})");
  const auto result = Run({"--quiet", "--link", "script:link.json", "query"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Errors, "zolvane-bench: query: stopped, 3 of 4 commands not sent\n");
}

TEST_F(Bench, TheJsonDocumentTellsOfTheRun) {
  const auto result = Run({"--json", "tick", "chkRFID", "1"});
  const auto document = Json::parse(result.Output);
  std::vector<std::string> members;
  for (const auto& member : document.items()) {
    members.push_back(member.key());
  }
  EXPECT_EQ(members, (std::vector<std::string>{"schema", "version", "folder", "link", "started",
                                               "duration_ms", "exit_status", "actions", "not_begun"}));
  EXPECT_EQ(LinesOf(Run({"--version"}).Output).front(),
            "zolvane-bench " + document["version"].get<std::string>());
  EXPECT_EQ(document["folder"], Folder.Path());
  EXPECT_EQ(document["link"], "sim");
  EXPECT_EQ(document["exit_status"], 0);
  EXPECT_EQ(document["actions"].size(), 1U);
}

TEST_F(Bench, TheJsonDocumentTellsWhatAnOperationDid) {
  const auto result = Run({"--json", "--quiet", "--yes", "--link", "none", "upload"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(
      ActionsOf(result).at(0).dump(),
      R"({"command":"upload","exit_status":1,"outcome":"failed","commands":36,"commands_sent":0,)"
      R"("commands_accepted":0,"commands_refused":0,"commands_not_answered":0,"commands_not_sent":36,)"
      R"("first_refused":null,"first_not_answered":null,"link_problem":null,"skipped_line":null,"save_sent":false,"save_accepted":false,)"
      R"("values_written":0,"values_changed":0,"writes_failed":0,"reads_failed":0,"characters_lost":0,"file":null,"messages":[)"
      R"({"title":"Upload Calibration Data to Zolvane","text":"The calibration data stored on this computer )"
      R"(will be transferred\r\nto the Zolvane overwriting any existing data.\r\n\r\n)"
      R"(Click [OK] to upload this information.","answer":"OK"},)"
      R"({"title":"Communication Error","text":"Uploading Data to Zolvane\r\n\r\nPlease ensure that the )"
      R"(Zolvane is switched on\r\nand in 'Remote Mode'","answer":"OK"}]})");
}

// ---- Output that is lost ----

RunSetup ToAFullDisk() {
  return {.InChild = [] { ::dup2(::open("/dev/full", O_WRONLY), STDOUT_FILENO); }};
}

TEST_F(Bench, ResultsThatAreLostAreAFailure) {
  const auto result = Run({"page"}, ToAFullDisk());
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Errors, "zolvane-bench: the results are lost, as standard output could not be written\n");
}

TEST_F(Bench, AHelpThatIsLostIsAFailure) {
  const auto result = Run({"--help"}, ToAFullDisk());
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Errors, "zolvane-bench: standard output could not be written\n");
}

TEST_F(Bench, ATraceThatIsLostOnStandardOutputIsUnusable) {
  const auto result = Run({"--quiet", "--trace", "-", "page"}, ToAFullDisk());
  EXPECT_EQ(result.Status, 2);
  EXPECT_TRUE(
      result.Errors.starts_with("zolvane-bench: the trace is not complete, as standard output could not be "
                                "written: No space left on device\n"))
      << result.Errors;
}

TEST_F(Bench, ATraceThatIsLostInAFileIsUnusable) {
  const auto result = Run({"--quiet", "--trace", "/dev/full", "--yes", "upload"});
  EXPECT_EQ(result.Status, 2);
  EXPECT_EQ(
      result.Errors,
      "zolvane-bench: the trace is not complete, as \"/dev/full\" could not be written: No space left on "
      "device\n");
}

TEST_F(Bench, AnUploadWithAllStreamsClosedHarmsNoFile) {
  const auto result = Run({"--yes", "upload"}, {.InChild = [] {
                            for (const int stream : {0, 1, 2}) {
                              ::close(stream);
                            }
                          }});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(Configuration(), configText);
}

TEST_F(Bench, AQuietPageNeedsNoStandardOutput) {
  EXPECT_EQ(Run({"--quiet", "page"}, {.InChild = [] { ::close(STDOUT_FILENO); }}).Status, 0);
}

class WithoutAReader : public Bench {
 protected:
  WithoutAReader() { output_.ReadEnd.Close(); }

  ProcessResult RunToNobody(const Arguments& arguments) const {
    return Run(arguments, {.InChild = [this] { ::dup2(output_.WriteEnd.Number(), STDOUT_FILENO); }});
  }

 private:
  Pipe output_ = OpenPipe();
};

TEST_F(WithoutAReader, ATracedCommandIsDone) {
  const auto result = RunToNobody({"--quiet", "--trace", "-", "--yes", "tick", "chkRFID", "1"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(result.Errors, "");
  EXPECT_NE(Configuration().find("\r\nSensorEnableRFID=1\r\n"), std::string::npos);
}

TEST_F(WithoutAReader, PrintingIsNoFailure) {
  for (const auto& line :
       {Arguments{"page"}, Arguments{"--json", "page"}, Arguments{"script"}, Arguments{"--help"}}) {
    const auto result = RunToNobody(line);
    EXPECT_EQ(result.Status, 0) << line.back();
    EXPECT_EQ(result.Errors, "") << line.back();
  }
}

}  // namespace
}  // namespace zolvane
