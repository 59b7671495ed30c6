// Uploads, downloads and queries: what instruments answer, and what the bench makes of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "bench/bench_process.h"

namespace zolvane {
namespace {

TEST_F(Bench, AnUploadWhoseLinesAreAllRefusedIsNotDone) {
  for (const auto* reply : {"SYNTAX_ERROR", "ERROR 42", "", "ok", "OK OK"}) {
    Folder.Put("link.json", Json{{"default", reply}}.dump());
    const auto result = Run({"--json", "--yes", "--link", "script:link.json", "upload"});
    EXPECT_EQ(result.Status, 1) << reply;
    const auto action = ActionsOf(result)[0];
    EXPECT_EQ(action["outcome"], "failed") << reply;
    EXPECT_EQ(action["commands_refused"], 36) << reply;
    EXPECT_EQ(action["commands_accepted"], 0) << reply;
    EXPECT_EQ(action["save_sent"], true) << reply;
    EXPECT_EQ(action["save_accepted"], false) << reply;
    EXPECT_EQ(action["first_refused"]["key"], "STAGE1_X") << reply;
    EXPECT_EQ(action["first_refused"]["reply"], reply);
  }
}

TEST_F(Bench, AnUploadAcceptsAnOkWithBlanksAndALineEnd) {
  Folder.Put("link.json", R"({"default": " OK \r\n"})");
  EXPECT_EQ(Run({"--quiet", "--yes", "--link", "script:link.json", "upload"}).Status, 0);
}

TEST_F(Bench, AnUploadWithOneRefusedLineIsNotDoneAndSaysWhichWasRefused) {
  Folder.Put("link.json",
             R"({"default": "OK", "replies": {"SET_CALIBRATION STAGE1_Y 2487": "ERROR 42\r\n"}})");
  const auto result = Run({"--yes", "--link", "script:link.json", "upload"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(
      result.Output,
      "upload: failed (36 of 36 commands sent; 35 accepted; 1 refused, first STAGE1_Y with \"ERROR 42\"; "
      "SAVE accepted)\n");
  EXPECT_EQ(LinesOf(result.Errors).back(),
            "zolvane-bench: upload: 1 of 36 commands refused, first STAGE1_Y with \"ERROR 42\"");
}

TEST_F(Bench, ADownloadAnsweredWithNothingButSyntaxErrorIsNotDone) {
  Folder.Put("link.json", R"({"default": "SYNTAX_ERROR"})");
  const auto result = Run({"--quiet", "--yes", "--link", "script:link.json", "download"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Errors,
            "zolvane-bench: download: 35 of 35 commands refused, first STAGE1_X with \"SYNTAX_ERROR\"\n");
}

TEST_F(Bench, ADownloadWithUnknownKeysAmongValuesIsDone) {
  Folder.Put("link.json",
             R"({"default": "SYNTAX_ERROR", "replies": {"GET_CALIBRATION Delta_Z": "Delta_Z=3"}})");
  const auto result = Run({"--json", "--yes", "--link", "script:link.json", "download"});
  EXPECT_EQ(result.Status, 0);
  const auto action = ActionsOf(result)[0];
  EXPECT_EQ(action["outcome"], "done");
  EXPECT_EQ(action["commands_accepted"], 1);
  EXPECT_EQ(action["commands_refused"], 34);
}

TEST_F(Bench, ADownloadWithAReplyThatIsNoValueIsNotDone) {
  for (const auto* reply : {"OK", "", "250"}) {
    Folder.Put("link.json",
               Json{{"default", "X=1"}, {"replies", {{"GET_CALIBRATION Delta_Z", reply}}}}.dump());
    const auto result = Run({"--json", "--yes", "--link", "script:link.json", "download"});
    EXPECT_EQ(result.Status, 1) << reply;
    EXPECT_EQ(ActionsOf(result)[0]["first_refused"]["key"], "Delta_Z") << reply;
  }
}

// ---- Links ----

TEST_F(Bench, TheInstrumentInsideKeepsItsMemoryInAFile) {
  EXPECT_EQ(Run({"--quiet", "--yes", "--link", "sim:memory.json", "upload"}).Status, 0);
  auto other = std::string{configText};
  other.replace(other.find("2016,2487"), 9, "1111,2222");
  Folder.Put("Zolvane.ini", other);
  EXPECT_EQ(Run({"--quiet", "--yes", "--link", "sim:memory.json", "download"}).Status, 0);
  EXPECT_NE(Configuration().find("Item1=STAGE1,\"Stage 1\",STAGE,2016,2487,"), std::string::npos);
}

TEST_F(Bench, AnInstrumentOverTcpAndOnATerminalIsTheSame) {
  for (const auto& kind : {Arguments{}, Arguments{"--pty"}}) {
    SimulatorProcess simulator{kind};
    const auto result = Run({"--json", "--quiet", "--yes", "--link", simulator.Link(), "run", "-"},
                            {.Input = "query\nupload\ndownload\n"});
    EXPECT_EQ(result.Status, 0) << simulator.Link();
    const auto document = ActionsOf(result);
    EXPECT_EQ(document[1]["commands_accepted"], 36);
    EXPECT_EQ(document[2]["commands_not_answered"], 0);
    EXPECT_EQ(simulator.End(), 0);
  }
}

TEST_F(Bench, ARepliesFateDecidesTheUpload) {
  struct Case {
    std::string Fault;
    int Status;
    std::size_t Sent;
    std::size_t NotAnswered;
  };
  // The fifth command goes wrong: it is the last one sent, or the upload goes on as if nothing had been.
  for (const auto& [fault, status, sent, notAnswered] :
       {Case{"close", 1, 5, 1}, Case{"silent", 1, 5, 1}, Case{"late", 1, 5, 1}, Case{"no-newline", 1, 5, 1},
        Case{"overlong", 1, 5, 1}, Case{"empty", 1, 36, 0}, Case{"garbage", 1, 36, 0},
        Case{"split", 0, 36, 0}}) {
    SimulatorProcess simulator{{"--fault", fault + "@5"}};
    const auto result =
        Run({"--json", "--quiet", "--yes", "--timeout", "0.7", "--link", simulator.Link(), "upload"});
    EXPECT_EQ(result.Status, status) << fault;
    const auto action = ActionsOf(result)[0];
    EXPECT_EQ(action["commands_sent"], sent) << fault;
    EXPECT_EQ(action["commands_not_answered"], notAnswered) << fault;
    EXPECT_EQ(action["commands_accepted"], status == 0 ? sent : sent - 1) << fault;
  }
}

TEST_F(Bench, ALinkThatWasCutIsOpenedAgainForTheNextCommand) {
  SimulatorProcess simulator{{"--stage", "BE2", "--fault", "close@1"}};
  const auto result = Run({"--json", "--quiet", "--keep-going", "--link", simulator.Link(), "run", "-"},
                          {.Input = "query\nquery\n"});
  EXPECT_EQ(result.Status, 1);
  const auto document = ActionsOf(result);
  EXPECT_EQ(document[0]["commands_not_answered"], 1);
  EXPECT_EQ(document[1]["commands_not_answered"], 0);
  EXPECT_NE(Configuration().find("[DeviceType]\r\nInstalled=2\r\n"), std::string::npos);
}

TEST_F(Bench, ALateReplyIsNeverTakenForTheNextOne) {
  Folder.Put("memory.json", R"({"STAGE1_X": "2016"})");
  for (const auto& kind : {Arguments{}, Arguments{"--pty"}}) {
    Arguments arguments{"--fault", "late@1", "--state", Folder.Path("memory.json")};
    arguments.insert(arguments.end(), kind.begin(), kind.end());
    SimulatorProcess simulator{arguments};
    const auto sends = TraceOf({"--timeout", "0.7", "--link", simulator.Link(), "query"}, {"send"});
    ASSERT_EQ(sends.size(), 4U);
    EXPECT_EQ(sends[0].dump(), R"({"event":"send","command":"STATUS_STAGE","ok":false,"reply":""})");
    EXPECT_EQ(sends[1].dump(), R"({"event":"send","command":"STATUS_MECH","ok":true,"reply":"SD"})");
  }
}

TEST_F(Bench, NoCommandIsSentToAnInstrumentThatIsNotThere) {
  for (const auto* link : {"tcp:127.0.0.1:1", "serial:/nowhere/tty", "none"}) {
    const auto result = Run({"--json", "--quiet", "--timeout", "0.5", "--link", link, "query"});
    EXPECT_EQ(result.Status, 1) << link;
    const auto action = ActionsOf(result)[0];
    EXPECT_EQ(action["outcome"], "failed") << link;
    EXPECT_EQ(action["commands_sent"], 0) << link;
    EXPECT_EQ(action["commands_not_answered"], 0) << link;
    EXPECT_EQ(action["commands_not_sent"], action["commands"]) << link;
  }
}

TEST_F(Bench, WhyALinkDoesNotOpenIsSaidOnce) {
  const auto result = Run({"--quiet", "--link", "tcp:127.0.0.1:1", "query"});
  EXPECT_EQ(result.Status, 1);
  const auto start = result.Errors.find(
      "zolvane-bench: tcp:127.0.0.1:1 cannot be opened: the connection was refused; nobody listens there\n");
  ASSERT_NE(start, std::string::npos) << result.Errors;
  EXPECT_EQ(result.Errors.find("refused", start + 80), std::string::npos) << result.Errors;
}

// ---- Scripted replies ----

class ScriptedReplies : public Bench {
 protected:
  ScriptedReplies() {
    Folder.Put("link.json",
               R"({"default": "OK", "replies": {"STATUS_STAGE": ["BE2\r\n", null], "STATUS_MECH": "SD"},)"
               R"("stop_after": ["STATUS_MECH"]})");
  }
};

TEST_F(ScriptedReplies, AnswerAndStopAsWritten) {
  const auto events = TraceOf({"--link", "script:link.json", "query"}, {"send", "link"});
  std::vector<std::string> texts;
  for (const auto& event : events) {
    texts.push_back(event.dump());
  }
  EXPECT_EQ(texts, (std::vector<std::string>{
                       R"({"event":"link","flag":"stop","op":"set","value":false})",
                       R"({"event":"link","flag":"hold","op":"set","value":true})",
                       R"({"event":"send","command":"STATUS_STAGE","ok":true,"reply":"BE2\r\n"})",
                       R"({"event":"link","flag":"stop","op":"get","value":false})",
                       R"({"event":"link","flag":"stop","op":"set","value":false})",
                       R"({"event":"link","flag":"hold","op":"set","value":true})",
                       R"({"event":"send","command":"STATUS_MECH","ok":true,"reply":"SD"})",
                       R"({"event":"link","flag":"stop","op":"get","value":true})",
                       R"({"event":"link","flag":"stop","op":"get","value":true})",
                       R"({"event":"link","flag":"hold","op":"set","value":false})",
                   }));
}

TEST_F(ScriptedReplies, AReplyThatStopsAQueryIsItsOutcome) {
  const auto result = Run({"--json", "--quiet", "--link", "script:link.json", "query"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(ActionsOf(result)[0]["outcome"], "stopped");
}

}  // namespace
}  // namespace zolvane
