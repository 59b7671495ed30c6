// Boxes and dialogues, and who answers them.
#include <gtest/gtest.h>

#include <string>

#include "bench/bench_process.h"

namespace zolvane {
namespace {

TEST_F(Bench, AnUploadWithoutAnAnswerIsCancelled) {
  const auto result = Run({"--json", "upload"});
  EXPECT_EQ(result.Status, 1);
  const auto action = ActionsOf(result)[0];
  EXPECT_EQ(action["outcome"], "cancelled");
  EXPECT_EQ(action["messages"][0]["answer"], "Cancel");
  EXPECT_EQ(Configuration(), configText);
}

TEST_F(Bench, ACancelledUploadLeavesTheControlsDisabled) {
  Folder.Put("job.txt", "upload\npage\n");
  const auto page = ActionsOf(Run({"--json", "--keep-going", "run", "job.txt"}))[1];
  EXPECT_EQ(page["status"], "Uploading Data to Zolvane");
  EXPECT_EQ(page["lists"]["cboHeadType"]["enabled"], false);
  EXPECT_EQ(page["lists"]["cboHeadType"]["back_color"], 2147483663U);
}

TEST_F(Bench, DisabledControlsDoNotReact) {
  Folder.Put("job.txt", "upload\nquery\nselect cboCageType #0\ntick chkRFID 1\npress 4\n");
  const auto result = Run({"--json", "--quiet", "--keep-going", "run", "job.txt"});
  EXPECT_EQ(result.Status, 1);
  const auto actions = ActionsOf(result);
  for (const auto index : {1U, 2U, 3U, 4U}) {
    EXPECT_EQ(actions[index]["outcome"], "disabled");
    EXPECT_EQ(actions[index]["exit_status"], 1);
  }
  for (const auto* line : {"job.txt, line 2: cmdButton(2) (Query Zolvane) is disabled and does not react\n",
                           "job.txt, line 3: cboCageType is disabled and does not react\n",
                           "job.txt, line 4: chkRFID is disabled and does not react\n",
                           "job.txt, line 5: cmdButton(4) (Save To File) is disabled and does not react\n"}) {
    EXPECT_NE(result.Errors.find(line), std::string::npos) << line;
  }
  EXPECT_EQ(Configuration(), configText);
}

TEST_F(Bench, ListedAnswersAreTakenInTheirOrderAndInAnyCase) {
  Folder.Put("backup.bak", otherModules);
  Folder.Put("job.txt", "import backup.bak\nimport backup.bak\nimport backup.bak\n");
  const auto boxes = TraceOf({"--keep-going", "--answer", "No,cancel", "--answer", "YES", "run", "job.txt"},
                             {"message_box"});
  ASSERT_EQ(boxes.size(), 4U);
  EXPECT_EQ(boxes[0]["answer"], 7);
  EXPECT_EQ(boxes[1]["answer"], 2);
  EXPECT_EQ(boxes[2]["answer"], 6);
  EXPECT_EQ(boxes[3]["answer"], 1);
  EXPECT_EQ(boxes[3]["text"],
            "Your calibration data has been imported from:\r\n\r\n" + Folder.Path("backup.bak") + "\r\n\r\n");
}

TEST_F(Bench, ABoxWithOneButtonTakesNoListedAnswer) {
  Folder.Put("job.txt", "query\nupload\n");
  const auto boxes = TraceOf({"--keep-going", "--link", "none", "--answer", "cancel,ok", "run", "job.txt"},
                             {"message_box", "send"});
  ASSERT_EQ(boxes.size(), 9U);
  for (const auto index : {1U, 3U, 5U, 7U}) {
    EXPECT_EQ(boxes[index]["title"], "Communication Error");
    EXPECT_EQ(boxes[index]["answer"], 1);
  }
  EXPECT_EQ(boxes[8]["title"], "Upload Calibration Data to Zolvane");
  EXPECT_EQ(boxes[8]["answer"], 2);
}

TEST_F(Bench, AListedAnswerThatDoesNotFitIsUsedUpAndTheRunEndsAsBadUse) {
  Folder.Put("backup.bak", otherModules);
  Folder.Put("job.txt", "import backup.bak\nupload\n");
  const auto result = Run({"--json", "--keep-going", "--answer", "ok,cancel", "--yes", "run", "job.txt"});
  EXPECT_EQ(result.Status, 2);
  const auto document = ActionsOf(result);
  EXPECT_EQ(document[0]["messages"][0]["answer"], "Yes");
  EXPECT_EQ(document[0]["exit_status"], 2);
  EXPECT_EQ(document[1]["messages"][0]["answer"], "Cancel");
  EXPECT_EQ(document[1]["exit_status"], 1);
  EXPECT_NE(
      result.Errors.find("zolvane-bench: job.txt, line 1: --answer: the box \"Import Calibration Data\" "
                         "has no button OK\n"),
      std::string::npos);
  EXPECT_NE(Configuration().find("Item1=\"Other\",MICROTITER"), std::string::npos);
}

TEST_F(Bench, AnImportWithoutAnAnswerIsCancelled) {
  Folder.Put("backup.bak", otherModules);
  const auto result = Run({"--quiet", "import", "backup.bak"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(Configuration(), configText);
}

TEST_F(Bench, TheHostsOwnDialogueIsAnsweredByTheSameRules) {
  const auto events = TraceOf({"--host-dialog", "--link", "none", "press", "2"},
                              {"host_dialog", "message_box", "yield", "log"});
  ASSERT_EQ(events.size(), 4 * 5U);
  EXPECT_EQ(
      events[0].dump(),
      R"({"event":"log","line":"******* Message dialogue : Communication Error [Getting Zolvane Type, , )"
      R"(Please ensure that the Zolvane is switched on, and in 'Remote Mode']"})");
  EXPECT_EQ(events[1].dump(), R"({"event":"yield"})");
  EXPECT_EQ(events[2].dump(), R"({"event":"yield"})");
  EXPECT_EQ(events[3].dump(),
            R"({"event":"host_dialog","title":"Communication Error","style":0,)"
            R"("text":"Getting Zolvane Type\r\n\r\nPlease ensure that the Zolvane is switched on\r\n)"
            R"(and in 'Remote Mode'","answer":1})");
  EXPECT_EQ(events[4].dump(), R"({"event":"log","line":"******* Message dialogue : button selected : 1"})");
}

}  // namespace
}  // namespace zolvane
