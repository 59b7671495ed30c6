// The trace of a session, and the script of an upload.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "bench/bench_process.h"

namespace zolvane {
namespace {

TEST_F(Bench, TheTraceHoldsTheWholeSession) {
  const auto result = Run({"--trace", "-", "--quiet", "tick", "chkTipSensor", "1"});
  const auto config = R"("file":")" + Folder.Path() + R"(/Zolvane.ini")";
  const auto installed = [&config](const std::string& section, const std::string& value) {
    return R"({"event":"write","section":")" + section + R"(","key":"Installed",)" + config +
           R"(,"value":")" + value + R"(","ok":true})";
  };
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(
      LinesOf(result.Output),
      (std::vector<std::string>{
          R"({"event":"control","name":"cboDeviceType","property":"items",)"
          R"("value":[{"text":"Alpha","data":1},{"text":"Beta","data":2}]})",
          R"({"event":"control","name":"cboDeviceType","property":"selection","value":0})",
          installed("DeviceType", "1"),
          R"({"event":"control","name":"cboCageType","property":"items",)"
          R"("value":[{"text":"Large","data":1},{"text":"Small","data":2}]})",
          R"({"event":"control","name":"cboCageType","property":"items",)"
          R"("value":[{"text":"Large","data":1},{"text":"Small","data":2},{"text":"Not installed","data":0}]})",
          R"({"event":"control","name":"cboCageType","property":"selection","value":1})",
          installed("CageType", "2"),
          R"({"event":"control","name":"cboHeadType","property":"items","value":[]})",
          R"({"event":"control","name":"cboHeadType","property":"items",)"
          R"("value":[{"text":"Not installed","data":0}]})",
          R"({"event":"control","name":"cboHeadType","property":"selection","value":0})",
          installed("HeadType", "0"),
          R"({"event":"control","name":"cboTipType","property":"items","value":[]})",
          R"({"event":"control","name":"cboTipType","property":"items",)"
          R"("value":[{"text":"Not installed","data":0}]})",
          R"({"event":"control","name":"cboTipType","property":"selection","value":0})",
          installed("TipType", "0"),
          R"({"event":"control","name":"cboNestType","property":"items","value":[]})",
          R"({"event":"control","name":"cboNestType","property":"items",)"
          R"("value":[{"text":"Not installed","data":0}]})",
          R"({"event":"control","name":"cboNestType","property":"selection","value":0})",
          installed("NestType", "0"),
          R"({"event":"control","name":"lblPumps","property":"text","value":"Connected"})",
          R"({"event":"control","name":"chkRFID","property":"value","value":0})",
          R"-({"event":"control","name":"cmdButton(0)","property":"enabled","value":true})-",
          R"-({"event":"control","name":"cmdButton(1)","property":"enabled","value":true})-",
          R"-({"event":"control","name":"cmdButton(3)","property":"enabled","value":true})-",
          R"-({"event":"control","name":"cmdButton(4)","property":"enabled","value":true})-",
          R"({"event":"control","name":"chkTipSensor","property":"value","value":1})",
          R"({"event":"changed","value":false})",
          R"({"event":"write","section":"DeviceType","key":"SensorEnableTipsInstalled",)" + config +
              R"(,"value":"1","ok":true})",
          R"({"event":"changed","value":false})",
          R"({"event":"link","flag":"hold","op":"set","value":false})",
      }));
}

TEST_F(Bench, TheTraceHoldsReadsWhenAskedTo) {
  EXPECT_TRUE(TraceOf({"page"}, {"read"}).empty());
  const auto reads = TraceOf({"--trace-reads", "page"}, {"read"});
  ASSERT_FALSE(reads.empty());
  const auto text = R"({"event":"read","section":"PumpControl","key":"ModuleInstalled","file":")" +
                    Folder.Path("Zolvane.ini") + R"(","default":"","value":"1"})";
  EXPECT_EQ(std::ranges::count_if(reads, [&](const auto& event) { return event.dump() == text; }), 1);
}

TEST_F(Bench, AnUploadsTraceHoldsBoxFlagsAndCommands) {
  const auto events = TraceOf({"--yes", "upload"}, {"message_box", "link", "send", "yield"});
  ASSERT_EQ(events.size(), 36 * 4 + 2U);
  EXPECT_EQ(events[0].dump(),
            R"({"event":"message_box","title":"Upload Calibration Data to Zolvane","style":49,)"
            R"("text":"The calibration data stored on this computer will be transferred\r\n)"
            R"(to the Zolvane overwriting any existing data.\r\n\r\n)"
            R"(Click [OK] to upload this information.","answer":1})");
  EXPECT_EQ(events[1].dump(), R"({"event":"link","flag":"stop","op":"get","value":false})");
  EXPECT_EQ(events[2].dump(), R"({"event":"link","flag":"stop","op":"set","value":false})");
  EXPECT_EQ(events[3].dump(), R"({"event":"link","flag":"hold","op":"set","value":true})");
  EXPECT_EQ(events[4].dump(),
            R"({"event":"send","command":"SET_CALIBRATION STAGE1_X 2016","ok":true,"reply":"OK"})");
  EXPECT_EQ(events[144].dump(),
            R"({"event":"send","command":"SET_CALIBRATION SAVE","ok":true,"reply":"OK"})");
  EXPECT_EQ(events[145].dump(), R"({"event":"link","flag":"hold","op":"set","value":false})");
}

// ---- The script ----

TEST_F(Bench, TheScriptIsWhatAnUploadSends) {
  const auto printed = Run({"script"});
  EXPECT_EQ(printed.Status, 0);
  EXPECT_EQ(printed.Errors, "");
  std::string sent;
  for (const auto& event : TraceOf({"--yes", "upload"}, {"send"})) {
    sent += event["command"].get<std::string>() + "\n";
  }
  EXPECT_EQ(printed.Output, sent);
}

TEST_F(Bench, TheScriptEndsWithTheCommandToSave) {
  const auto lines = LinesOf(Run({"script"}).Output);
  ASSERT_EQ(lines.size(), 36U);
  EXPECT_EQ(lines[1], "SET_CALIBRATION STAGE1_Y 2487");
  EXPECT_EQ(lines.back(), "SET_CALIBRATION SAVE");
}

TEST_F(Bench, TheScriptIsPrintedWithoutSendingAnything) {
  const auto events = TraceOf({"script"}, {"send", "status", "message_box", "log", "link", "changed"});
  ASSERT_EQ(events.size(), 2U);
  EXPECT_EQ(events[0].dump(), R"({"event":"changed","value":false})");
  EXPECT_EQ(events[1].dump(), R"({"event":"link","flag":"hold","op":"set","value":false})");
}

TEST_F(Bench, TheScriptIsAListOfLinesInJson) {
  const auto action = ActionsOf(Run({"script", "--json"}))[0];
  EXPECT_EQ(action["exit_status"], 0);
  EXPECT_EQ(action["lines"].get<std::vector<std::string>>(), LinesOf(Run({"script"}).Output));
}

// ---- The trace's file ----

TEST_F(Bench, ATraceReplacesAnEmptyFile) {
  Folder.Put("trace.jsonl", "");
  EXPECT_EQ(Run({"--quiet", "--trace", "trace.jsonl", "page"}).Status, 0);
  EXPECT_FALSE(EventsOf(Folder.Read("trace.jsonl"), {"changed", "control"}).empty());
}

TEST_F(Bench, ATraceReplacesAnEarlierTrace) {
  for (int run = 0; run < 2; ++run) {
    EXPECT_EQ(Run({"--quiet", "--trace", "trace.jsonl", "page"}).Status, 0);
    EXPECT_EQ(EventsOf(Folder.Read("trace.jsonl"), {"changed"}).size(), 1U);
  }
}

TEST_F(Bench, ATraceReplacesTheTraceOfARunThatWasKilled) {
  Folder.Put("trace.jsonl", "{\"event\":\"changed\",\"va");
  EXPECT_EQ(Run({"--quiet", "--trace", "trace.jsonl", "page"}).Status, 0);
}

TEST_F(Bench, ATraceUnderTheNameOfAHiddenCopyIsNotLost) {
  for (const std::string name : {".Zolvane.ini.bench-copy", ".Zolvane.ini.bench-copy-1-2"}) {
    EXPECT_EQ(Run({"--trace", name, "select", "cboDeviceType", "Beta"}).Status, 0);
    EXPECT_EQ(Run({"select", "cboDeviceType", "Alpha"}).Status, 0);
    EXPECT_NE(Folder.Read(name).find("\"Installed\""), std::string::npos) << name;
  }
}

TEST_F(Bench, ATraceOnStandardOutputStaysFreeOfTextsForPeople) {
  const auto result = Run({"--trace", "-", "--yes", "run", "-"}, {.Input = "page\nupload\nscript\n"});
  EXPECT_EQ(result.Status, 0);
  for (const auto& line : LinesOf(result.Output)) {
    EXPECT_TRUE(Json::accept(line)) << line;
  }
  EXPECT_NE(result.Errors.find("upload: done (36 of 36 commands sent; "), std::string::npos);
}

TEST_F(Bench, ATraceOnStandardOutputIsFollowedByTheJsonDocument) {
  const auto lines = LinesOf(Run({"--trace", "-", "--json", "page"}).Output);
  EXPECT_EQ(Json::parse(lines.front())["event"], "control");
  EXPECT_EQ(Json::parse(lines.back())["caption"], "Zolvane Setup");
}

}  // namespace
}  // namespace zolvane
