// The bench as scripts and people meet it: as a process, with its arguments, streams and exit status.

#include <gtest/gtest.h>
#include <sys/file.h>

#include <algorithm>
#include <asio.hpp>
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "bench/process_support.h"
#include "text/joined.h"

namespace zolvane {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view configText =
    "[DeviceType]\r\n"
    "Installed=1\r\n"
    "Item1=\"Alpha\",0,\"AL1\"\r\n"
    "Item2=\"Beta\",1,\"BE2\"\r\n"
    "UploadCalibrationData=1\r\n"
    "DownloadCalibrationData=1\r\n"
    "ImportCalibrationData=1\r\n"
    "ExportCalibrationData=1\r\n"
    "SensorEnableRFID=0\r\n"
    "\r\n"
    "[CageType]\r\n"
    "Installed=2\r\n"
    "Item1=\"Large\",MICROTITER,1,1,0,2150,120,1875,90\r\n"
    "Item2=\"Small\",SERIALDILUTE,1,0,1,1640,110,1320,75\r\n"
    "\r\n"
    "[HeadType]\r\n"
    "Installed=0\r\n"
    "[TipType]\r\n"
    "Installed=0\r\n"
    "[NestType]\r\n"
    "Installed=0\r\n"
    "\r\n"
    "[PumpControl]\r\n"
    "ModuleInstalled=1\r\n"
    "\r\n"
    "[Position_Alpha]\r\n"
    "Item1=STAGE1,\"Stage 1\",STAGE,2016,2487,3862,2944\r\n";

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream{text};
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

class Bench : public ::testing::Test {
 protected:
  Bench() { Folder.Put("Zolvane.ini", configText); }

  // Runs in the folder, which is the current one and so the program folder.
  ProcessResult Run(const Arguments& arguments, RunSetup setup = {}) const {
    const auto folder = Folder.Path();
    setup.InChild = [folder, more = setup.InChild] {
      if (::chdir(folder.c_str()) != 0) {
        ::_exit(126);
      }
      if (more) {
        more();
      }
    };
    return RunProgram(ZOLVANE_BENCH_PATH, arguments, setup);
  }

  // What each command of a run did, out of the JSON document.
  static Json ActionsOf(const ProcessResult& result) { return Json::parse(result.Output).at("actions"); }

  // The events of the trace that a run writes, of the given kinds, in order.
  std::vector<Json> TraceOf(Arguments arguments, const std::vector<std::string>& kinds) const {
    arguments.insert(arguments.begin(), {"--quiet", "--trace", "trace.jsonl"});
    Run(arguments);
    return EventsOf(Folder.Read("trace.jsonl"), kinds);
  }

  static std::vector<Json> EventsOf(const std::string& trace, const std::vector<std::string>& kinds) {
    std::vector<Json> events;
    for (const auto& line : LinesOf(trace)) {
      const auto event = Json::parse(line);
      if (std::ranges::find(kinds, event.at("event").get<std::string>()) != kinds.end()) {
        events.push_back(event);
      }
    }
    return events;
  }

  void SetKey(std::string_view key, std::string_view value) const {
    auto text = Folder.Read("Zolvane.ini");
    const auto start = text.find("\n" + std::string{key} + "=") + 1;
    ASSERT_NE(start, 0U);
    text.replace(start, text.find('\r', start) - start, std::string{key} + "=" + std::string{value});
    Folder.Put("Zolvane.ini", text);
  }

  TemporaryFolder Folder;
};

// ---- Asking about the program ----

TEST_F(Bench, TheVersionIsPrintedAlone) {
  const auto result = Run({"--version"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(result.Output, "zolvane-bench 1.00.0135\n");
  EXPECT_EQ(result.Errors, "");
}

TEST_F(Bench, TheHelpNamesEveryCommandAndOption) {
  const auto result = Run({"--help"});
  EXPECT_EQ(result.Status, 0);
  for (const auto* word : {"page",
                           "query",
                           "upload",
                           "download",
                           "import [FILE]",
                           "export [FILE]",
                           "press N",
                           "select LIST ENTRY",
                           "tick BOX VALUE",
                           "script",
                           "run FILE",
                           "--folder DIR",
                           "--link LINK",
                           "sim:FILE",
                           "tcp:HOST:PORT",
                           "serial:DEVICE[,BAUD]",
                           "script:FILE",
                           "none",
                           "--timeout SECONDS",
                           "--answer A,B,...",
                           "--yes",
                           "--host-dialog",
                           "--trace FILE",
                           "--trace-reads",
                           "--json",
                           "--quiet",
                           "--file FILE",
                           "Exit status"}) {
    EXPECT_NE(result.Output.find(word), std::string::npos) << word;
  }
}

// ---- Bad use ----

struct BadUse {
  Arguments Words;
  std::string Message;  // the start of the one line; FOLDER stands for the folder
};

TEST_F(Bench, BadUseSaysWhatIsWrongAndChangesNothing) {
  Folder.Put("bad.txt", "page\n\n  frobnicate now\n");
  Folder.Put("quote.txt", "select cboHeadType \"Not installed\n");
  Folder.Put("missing.txt", "# first\npage\nimport nowhere.bak\n");
  Folder.Put("itself.txt", "run itself.txt\n");
  Folder.Put("option.txt", "upload --yes\n");
  Folder.Put("inner.txt", "page\n");
  Folder.Put("help.txt", "help page\n");
  Folder.Put("outer.txt", "run inner.txt\n");
  Folder.Put("backup.bak", configText);
  Folder.Put("zero.txt", std::string_view{"import backup.bak\0\n", 19});
  const auto files = Folder.Names().size();
  const std::vector<BadUse> uses{
      {{}, "no command is given; see zolvane-bench --help"},
      {{"frobnicate"}, "there is no command \"frobnicate\"; see zolvane-bench --help"},
      {{"page", "twice"}, "page has too many arguments; it is used as: page"},
      {{"press"}, "press has too few arguments; it is used as: press N"},
      {{"press", "two"}, "press takes the number of a button, not \"two\""},
      {{"press", "1.5"}, "press takes the number of a button, not \"1.5\""},
      {{"tick", "chkRFID", "3"}, "tick takes 0, 1 or 2, not \"3\""},
      {{"tick", "chkNone", "1"},
       "there is no check box \"chkNone\"; there are chkRFID, chkHeadSensor, chkTipSensor and chkEncoders"},
      {{"select", "cboNone", "x"},
       "there is no list \"cboNone\"; there are cboDeviceType, cboCageType, cboHeadType, cboNestType and "
       "cboTipType"},
      {{"page", "--nonsense"}, "there is no option \"--nonsense\"; see zolvane-bench --help"},
      {{"uplaod"}, "there is no command \"uplaod\"; did you mean \"upload\"?"},
      {{"tick", "chkRFD", "1"},
       "there is no check box \"chkRFD\"; there are chkRFID, chkHeadSensor, chkTipSensor and chkEncoders; "
       "did you mean "
       "\"chkRFID\"?"},
      {{"export", "backup.bak"},
       "\"FOLDER/backup.bak\" exists; name another file, or let the export merge into it with --replace"},
      {{"press", "4", "--file", "inner.txt"},
       "\"FOLDER/inner.txt\" exists; name another file, or let the export merge into it with --replace"},
      {{"import", "inner.txt"},
       "\"FOLDER/inner.txt\" is no backup: it has none of the sections that an import reads"},
      {{"--trace", "inner.txt", "page"},
       "--trace replaces an empty file or an earlier trace and nothing else: \"inner.txt\" holds something "
       "else"},
      {{"run", "help.txt"}, "help.txt, line 1: help stands on the command line and in no run file"},
      {{"page", "--timeout", "0"},
       "--timeout takes a number of seconds above 0 and up to 1000000 (0.5, 10), not \"0\""},
      {{"page", "--timeout", "1000001"},
       "--timeout takes a number of seconds above 0 and up to 1000000 (0.5, 10), not \"1000001\""},
      {{"page", "--timeout", "soon"},
       "--timeout takes a number of seconds above 0 and up to 1000000 (0.5, 10), not \"soon\""},
      {{"page", "--answer", "ok,maybe"},
       "--answer: \"maybe\" is no answer; write ok, cancel, yes or no, with commas"},
      {{"upload", "--file", "x"}, "--file goes with press; upload is used as: upload"},
      {{"--folder", "none", "page"},
       "\"FOLDER/none/Zolvane.ini\" does not exist; --folder names the folder that holds it"},
      {{"--folder", "", "page"}, "--folder: the name of the folder is empty"},
      {{"import", "nowhere.bak"}, "\"FOLDER/nowhere.bak\" does not exist"},
      {{"import", "."}, "\"FOLDER\" is a folder"},
      {{"import", ""}, "the name of the file is empty"},
      {{"press", "3", "--file", "nowhere.bak"}, "\"FOLDER/nowhere.bak\" does not exist"},
      {{"export", "nowhere/x.bak"}, "\"FOLDER/nowhere/x.bak\" is in a folder that does not exist"},
      {{"export", "nowhere/"}, "\"nowhere/\" is the name of a folder and not of a file"},
      {{"export", "."}, "\"FOLDER\" is a folder"},
      {{"run", "nowhere.txt"}, "the run file nowhere.txt cannot be opened: No such file or directory"},
      {{"run", "."}, ". is a folder and no run file"},
      {{"run", "bad.txt"}, "bad.txt, line 3: there is no command \"frobnicate\"; see zolvane-bench --help"},
      {{"run", "quote.txt"}, "quote.txt, line 1: a double quote is not closed"},
      {{"run", "missing.txt"}, "missing.txt, line 3: \"FOLDER/nowhere.bak\" does not exist"},
      {{"run", "itself.txt"}, "itself.txt, line 1: itself.txt runs itself"},
      {{"run", "option.txt"}, "option.txt, line 1: upload has too many arguments; it is used as: upload"},
      {{"--trace", "nowhere/trace", "page"},
       "the trace file \"nowhere/trace\" cannot be written: No such file or directory"},
      {{"--trace", "nowhere/trace", "--link", "sim:new.json", "page"},
       "the trace file \"nowhere/trace\" cannot be written: No such file or directory"},
      {{"--trace", "inner.txt", "run", "outer.txt"},
       "--trace would overwrite \"FOLDER/inner.txt\", which the run needs; name another file"},
      {{"--link", "sim:inner.txt", "run", "outer.txt"},
       "--link: the instrument's memory would overwrite \"FOLDER/inner.txt\", which the run needs; name "
       "another file"},
      {{"run", "zero.txt"}, "zero.txt is no list of commands in UTF-8, as there are zero bytes in it"},
      {{"--trace=", "page"}, "--trace: the name of the file is empty"},
      {{"--answer=", "upload"}, "--answer: \"\" is no answer; write ok, cancel, yes or no, with commas"},
      {{"--trace", ".", "page"}, "the trace file \".\" cannot be written: Is a directory"},
      {{"--trace", "./Zolvane.ini", "page"},
       "--trace would overwrite \"FOLDER/Zolvane.ini\", which the run needs; name another file"},
      {{"--link", "sim:Zolvane.ini", "page"},
       "--link: the instrument's memory would overwrite \"FOLDER/Zolvane.ini\", which the run needs; name "
       "another file"},
  };
  for (const auto& use : uses) {
    const auto result = Run(use.Words);
    auto message = use.Message;
    if (const auto at = message.find("FOLDER"); at != std::string::npos) {
      message.replace(at, 6, Folder.Path());
    }
    EXPECT_EQ(result.Status, 2) << use.Message;
    EXPECT_TRUE(result.Errors.starts_with("zolvane-bench: " + message)) << result.Errors;
    EXPECT_EQ(LinesOf(result.Errors).size(), 1U) << result.Errors;
    EXPECT_EQ(result.Output, "") << use.Message;
  }
  EXPECT_EQ(Folder.Read("Zolvane.ini"), configText);
  EXPECT_EQ(Folder.Read("inner.txt"), "page\n");
  EXPECT_EQ(Folder.Names().size(), files);
}

TEST_F(Bench, ALinkThatCannotBeUsedIsBadUseToo) {
  Folder.Put("number.json", "{ \"default\": 5 }");
  Folder.Put("broken.json", "{");
  for (const auto* link : {"telepathy", "", "tcp:localhost", "tcp:localhost:0", "tcp::99",
                           "serial:", "script:", "script:nowhere.json", "script:number.json",
                           "script:broken.json", "sim:nowhere/x"}) {
    const auto result = Run({"--link", link, "page"});
    EXPECT_EQ(result.Status, 2) << link;
    EXPECT_TRUE(result.Errors.starts_with("zolvane-bench: ")) << result.Errors;
    EXPECT_EQ(LinesOf(result.Errors).size(), 1U) << result.Errors;
    EXPECT_EQ(result.Output, "");
  }
  EXPECT_EQ(Folder.Read("Zolvane.ini"), configText);
}

TEST_F(Bench, AFolderWithoutTheConfigurationFileIsRefused) {
  std::filesystem::remove(Folder.Path("Zolvane.ini"));
  const auto result = Run({"--json", "page"});
  EXPECT_EQ(result.Status, 2);
  EXPECT_EQ(result.Output, "");
  EXPECT_EQ(Folder.Names().size(), 0U);
}

// ---- The page ----

TEST_F(Bench, ThePageIsPrintedAsOneJsonDocument) {
  const auto result = Run({"page", "--json"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(result.Errors, "");
  EXPECT_EQ(Json::parse(result.Output).dump(), Json::parse(R"({
    "caption": "Zolvane Setup",
    "lists": {
      "cboDeviceType": {"entries": [{"text": "Alpha", "data": 1}, {"text": "Beta", "data": 2}],
                        "selected": 0, "enabled": true, "back_color": 2147483653},
      "cboCageType": {"entries": [{"text": "Large", "data": 1}, {"text": "Small", "data": 2},
                                  {"text": "Not installed", "data": 0}],
                      "selected": 1, "enabled": true, "back_color": 2147483653},
      "cboHeadType": {"entries": [{"text": "Not installed", "data": 0}],
                      "selected": 0, "enabled": true, "back_color": 2147483653},
      "cboNestType": {"entries": [{"text": "Not installed", "data": 0}],
                      "selected": 0, "enabled": true, "back_color": 2147483653},
      "cboTipType": {"entries": [{"text": "Not installed", "data": 0}],
                     "selected": 0, "enabled": true, "back_color": 2147483653}
    },
    "checks": {"chkRFID": {"value": 0, "enabled": true}, "chkHeadSensor": {"value": 0, "enabled": true},
               "chkTipSensor": {"value": 0, "enabled": true}, "chkEncoders": {"value": 0, "enabled": true}},
    "labels": {"lblTitle": "Zolvane Setup", "lblPumps": "Connected"},
    "buttons": [{"caption": "Save To Zolvane", "enabled": true},
                {"caption": "Load From Zolvane", "enabled": true},
                {"caption": "Query Zolvane", "enabled": true},
                {"caption": "Load from File", "enabled": true},
                {"caption": "Save To File", "enabled": true}],
    "status": "",
    "changed": null
  })")
                                                   .dump());
  EXPECT_EQ(Folder.Read("Zolvane.ini"), configText);
}

TEST_F(Bench, ThePageIsPrintedForPeople) {
  SetKey("UploadCalibrationData", "0");
  const auto result = Run({"page"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(result.Errors, "");
  EXPECT_EQ(result.Output,
            "Zolvane Setup\n"
            "\n"
            "Configuration File Settings\n"
            "  cboDeviceType   Zolvane                         Alpha\n"
            "    > #0   Alpha\n"
            "      #1   Beta\n"
            "  cboCageType     Pipette Module                  Small\n"
            "      #0   Large\n"
            "    > #1   Small\n"
            "      #2   Not installed\n"
            "  cboHeadType     Pipette Head                    Not installed\n"
            "    > #0   Not installed\n"
            "  cboNestType     Pipette Head Nest               Not installed\n"
            "    > #0   Not installed\n"
            "  cboTipType      Tip Type                        Not installed\n"
            "    > #0   Not installed\n"
            "  chkRFID         Enable RFID                     [ ]\n"
            "  chkHeadSensor   Enable 96/384 Head Sensor       [ ]\n"
            "  chkTipSensor    Enable 96/384 Tip Sensor        [ ]\n"
            "  chkEncoders     Enable 1/8/12 Module Encoders   [ ]\n"
            "  lblPumps        Pump Module Installed           Connected\n"
            "  cmdButton(2)    Query Zolvane\n"
            "\n"
            "Calibrated Data\n"
            "  cmdButton(0)    Save To Zolvane                   (disabled)\n"
            "  cmdButton(1)    Load From Zolvane\n"
            "  cmdButton(3)    Load from File\n"
            "  cmdButton(4)    Save To File\n");
}

// A title for the terminal's window, a bell, the one-byte introducer of commands, right-to-left override and isolate,
// a mark of direction, and a line separator.
constexpr std::string_view hostileText = "\x1b]0;x\x07\xc2\x9b\xe2\x80\xae\xe2\x81\xa6\xd8\x9c\xe2\x80\xa8";
constexpr std::string_view hostileTextShown = "\\u001b]0;x\\u0007\\u009b\\u202e\\u2066\\u061c\\u2028";

// The first thing in what a program wrote that could steer a terminal, in hexadecimal.
std::string SteeringPartOf(const std::string& written) {
  for (const std::string_view part : {"\x1b", "\x07", "\r", "\t", "\x7f", "\xc2\x9b", "\xe2\x80\xae",
                                      "\xe2\x81\xa6", "\xd8\x9c", "\xe2\x80\xa8", "\x9b\x9b"}) {
    if (written.find(part) != std::string::npos) {
      return testing::PrintToString(std::string{part});
    }
  }
  return "";
}

TEST_F(Bench, ATextThatWouldSteerTheTerminalIsShownHarmless) {
  SetKey("Item2", Joined("\"B", hostileText, "\",1,\"BE2\""));
  const auto result = Run({"page"});
  EXPECT_NE(result.Output.find(Joined("#1   B", hostileTextShown, "\n")), std::string::npos) << result.Output;
  EXPECT_EQ(SteeringPartOf(result.Output), "");
}

TEST_F(Bench, JsonAndTraceHoldHostileTextsEscapedAndWithTheirValue) {
  SetKey("Item2", Joined("\"B", hostileText, "\",1,\"BE2\""));
  const auto result = Run({"--trace", "trace.jsonl", "--trace-reads", "page", "--json"});
  EXPECT_EQ(SteeringPartOf(result.Output), "");
  EXPECT_EQ(Json::parse(result.Output)["lists"]["cboDeviceType"]["entries"][1]["text"],
            Joined("B", hostileText));
  const auto trace = Folder.Read("trace.jsonl");
  EXPECT_EQ(SteeringPartOf(trace), "");
  const auto items = EventsOf(trace, {"control"}).front();
  EXPECT_EQ(items["value"][1]["text"], Joined("B", hostileText));
}

TEST_F(Bench, NoCommandPrintsAHostileTextRaw) {
  const std::string hostile{hostileText};
  auto config = std::string{configText};
  for (const std::string_view name : {"Alpha", "Stage 1", "Large"}) {
    for (auto at = config.find(name); at != std::string::npos; at = config.find(name, at + name.size())) {
      config.insert(at + name.size(), hostile);
    }
  }
  config.replace(config.find("STAGE1,"), 6, Joined("STAGE", hostile));
  Folder.Put("Zolvane.ini", config);
  const Json script{{"default", hostile}, {"replies", {{"STATUS_STAGE", hostile}}}};
  Folder.Put("replies.json", script.dump());
  Folder.Put(hostile + ".txt", "frobnicate " + hostile + "\n");
  Folder.Put(hostile + ".json", "{" + hostile);
  Folder.Put("raw.txt", "frob\x9b\x9bnicate\n");
  const std::vector<Arguments> lines{
      {"page"},
      {"script"},
      {"query"},
      {"upload"},
      {"download"},
      {"export", hostile + ".bak"},
      {"import", hostile + ".bak"},
      {"import", hostile + ".none"},
      {"import", hostile + "/"},
      {"press", hostile},
      {"press", "4", "--file", hostile + ".press"},
      {"select", "cboDeviceType", "Alpha" + hostile},
      {"select", "cboDeviceType", hostile},
      {"select", hostile, hostile},
      {"tick", hostile, "1"},
      {"tick", "chkRFID", hostile},
      {hostile},
      {"page", hostile},
      {"run", hostile + ".txt"},
      {"run", hostile + ".none"},
      {"run", "raw.txt"},
      {"--folder", hostile, "page"},
      {"--link", hostile, "page"},
      {"--link", "script:" + hostile + ".json", "page"},
      {"--link", "sim:" + hostile + ".json", "page"},
      {"--timeout", hostile, "page"},
      {"--answer", hostile, "upload"},
      {"--trace", hostile + "/trace", "page"},
      {"--" + hostile, "page"},
  };
  for (auto line : lines) {
    line.insert(line.begin(), "--yes");
    if (std::ranges::find(line, "--link") == line.end()) {
      line.insert(line.begin(), {"--link", "script:replies.json"});
    }
    const auto result = Run(line);
    EXPECT_EQ(SteeringPartOf(result.Output), "") << line.back() << "\n" << result.Output;
    EXPECT_EQ(SteeringPartOf(result.Errors), "") << line.back() << "\n" << result.Errors;
  }
}

TEST_F(Bench, BytesThatAreNoTextReachJsonAsCharacters) {
  SetKey("Item2", "\"B\xe9ta\",1,\"BE2\"");
  const auto result = Run({"page", "--json"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(Json::parse(result.Output)["lists"]["cboDeviceType"]["entries"][1]["text"], "B\xc3\xa9ta");
}

// ---- The session and its trace ----

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

TEST_F(Bench, TheScriptIsWhatAnUploadSendsAndSendsNothing) {
  const auto printed = Run({"script"});
  EXPECT_EQ(printed.Status, 0);
  EXPECT_EQ(printed.Errors, "");
  std::vector<std::string> sent;
  for (const auto& event : TraceOf({"--yes", "upload"}, {"send"})) {
    sent.push_back(event["command"]);
  }
  EXPECT_EQ(LinesOf(printed.Output), sent);
  ASSERT_EQ(sent.size(), 36U);
  EXPECT_EQ(sent[1], "SET_CALIBRATION STAGE1_Y 2487");
  EXPECT_EQ(sent.back(), "SET_CALIBRATION SAVE");

  const auto events = TraceOf({"script"}, {"send", "status", "message_box", "log", "link", "changed"});
  ASSERT_EQ(events.size(), 2U);
  EXPECT_EQ(events[0].dump(), R"({"event":"changed","value":false})");
  EXPECT_EQ(events[1].dump(), R"({"event":"link","flag":"hold","op":"set","value":false})");

  const auto actions = ActionsOf(Run({"script", "--json"}));
  EXPECT_EQ(actions[0]["lines"].get<std::vector<std::string>>(), sent);
  EXPECT_EQ(actions[0]["exit_status"], 0);
}

// ---- Answers ----

TEST_F(Bench, WithoutAnAnswerAnUploadIsCancelledAndItsControlsStayDisabled) {
  Folder.Put("job.txt", "upload\npage\nquery\nselect cboCageType #0\ntick chkRFID 1\npress 4\n");
  const auto result = Run({"--json", "--keep-going", "run", "job.txt"});
  EXPECT_EQ(result.Status, 1);
  const auto document = ActionsOf(result);
  EXPECT_EQ(document[0]["outcome"], "cancelled");
  EXPECT_EQ(document[0]["messages"][0]["answer"], "Cancel");
  EXPECT_EQ(document[1]["status"], "Uploading Data to Zolvane");
  EXPECT_EQ(document[1]["lists"]["cboHeadType"]["enabled"], false);
  EXPECT_EQ(document[1]["lists"]["cboHeadType"]["back_color"], 2147483663U);
  for (const auto index : {2U, 3U, 4U, 5U}) {
    EXPECT_EQ(document[index]["outcome"], "disabled");
    EXPECT_EQ(document[index]["exit_status"], 1);
  }
  EXPECT_EQ(Folder.Read("Zolvane.ini"), configText);
  for (const auto* line : {"job.txt, line 3: cmdButton(2) (Query Zolvane) is disabled and does not react\n",
                           "job.txt, line 4: cboCageType is disabled and does not react\n",
                           "job.txt, line 5: chkRFID is disabled and does not react\n",
                           "job.txt, line 6: cmdButton(4) (Save To File) is disabled and does not react\n"}) {
    EXPECT_NE(result.Errors.find(line), std::string::npos) << line;
  }
}

TEST_F(Bench, ListedAnswersAreTakenInTheirOrderAndInAnyCase) {
  Folder.Put("backup.bak", "[CageType]\r\nItem1=\"Other\",MICROTITER\r\n");
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
  Folder.Put("backup.bak", "[CageType]\r\nItem1=\"Other\",MICROTITER\r\n");
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
  EXPECT_NE(Folder.Read("Zolvane.ini").find("Item1=\"Other\",MICROTITER"), std::string::npos);
}

TEST_F(Bench, WithoutAnAnswerAnImportIsCancelledToo) {
  Folder.Put("backup.bak", "[CageType]\r\nItem1=\"Other\",MICROTITER\r\n");
  const auto result = Run({"--quiet", "import", "backup.bak"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(Folder.Read("Zolvane.ini"), configText);
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

// ---- Files ----

TEST_F(Bench, ALinkToTheConfigurationIsTheConfiguration) {
  std::filesystem::create_symlink("Zolvane.ini", Folder.Path("symbolic.bak"));
  std::filesystem::create_hard_link(Folder.Path("Zolvane.ini"), Folder.Path("hard.bak"));
  for (const std::string file : {"symbolic.bak", "hard.bak"}) {
    for (const std::string command : {"import", "export"}) {
      const auto result = Run({"--yes", "--json", command, file});
      EXPECT_EQ(result.Status, 1) << command << ' ' << file;
      EXPECT_EQ(ActionsOf(result)[0]["outcome"], "refused") << command << ' ' << file;
      EXPECT_EQ(Folder.Read("Zolvane.ini"), configText) << command << ' ' << file;
      Folder.Put("job", command + ' ' + file + '\n');
      const auto inRun = Run({"--yes", "--quiet", "run", "job"});
      EXPECT_EQ(inRun.Status, 1) << command << ' ' << file;
      EXPECT_NE(inRun.Errors.find(file + "\" leads to \""), std::string::npos) << inRun.Errors;
      EXPECT_EQ(Folder.Read("Zolvane.ini"), configText) << command << ' ' << file;
    }
  }
}

TEST_F(Bench, ATraceUnderTheNameOfAHiddenCopyIsNotLost) {
  for (const std::string name : {".Zolvane.ini.bench-copy", ".Zolvane.ini.bench-copy-1-2"}) {
    EXPECT_EQ(Run({"--trace", name, "select", "cboDeviceType", "Beta"}).Status, 0);
    EXPECT_EQ(Run({"select", "cboDeviceType", "Alpha"}).Status, 0);
    EXPECT_NE(Folder.Read(name).find("\"Installed\""), std::string::npos) << name;
  }
}

TEST_F(Bench, CharactersThatTheFileCannotHoldAreCountedAndSaid) {
  Folder.Put("Zolvane.ini", std::string{configText} + "; f\xFCr alle\r\n");
  Folder.Put("backup.bak", "[CageType]\r\nItem1=\"\xCE\xA9 \xE6\xB0\xB4?\",MICROTITER\r\n");
  const auto result = Run({"--yes", "--json", "import", "backup.bak"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(ActionsOf(result)[0]["characters_lost"], 2);
  EXPECT_NE(
      result.Errors.find("characters that the encoding of a settings file lacks were written as \"?\": 2"),
      std::string::npos);
  EXPECT_NE(Folder.Read("Zolvane.ini").find("Item1=\"? ??\",MICROTITER"), std::string::npos);
  EXPECT_NE(Run({"--yes", "import", "backup.bak"}).Output.find("2 characters written as \"?\""),
            std::string::npos);
}

TEST_F(Bench, AUtf16FileIsRefusedAndLeftAlone) {
  std::string utf16;
  for (const char unit : std::string{configText}) {
    utf16.append({unit, '\0'});
  }
  Folder.Put("backup.bak", utf16);
  EXPECT_EQ(Run({"--yes", "import", "backup.bak"}).Status, 2);
  EXPECT_EQ(Run({"--yes", "export", "backup.bak"}).Status, 2);
  EXPECT_EQ(Folder.Read("backup.bak"), utf16);
  Folder.Put("Zolvane.ini", utf16);
  EXPECT_EQ(Run({"select", "cboDeviceType", "Beta"}).Status, 2);
  EXPECT_EQ(Folder.Read("Zolvane.ini"), utf16);
}

TEST_F(Bench, AConfigurationThatIsOpenForWritingElsewhereIsNotWritten) {
  const Descriptor other{::open(Folder.Path("Zolvane.ini").c_str(), O_RDWR | O_CLOEXEC)};
  const auto result = Run({"--quiet", "select", "cboDeviceType", "Beta"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_NE(result.Errors.find("another program has it open for writing"), std::string::npos)
      << result.Errors;
  EXPECT_EQ(Folder.Read("Zolvane.ini"), configText);
}

// The lock of a writer that was stopped.
class StoppedWriter {
 public:
  explicit StoppedWriter(const std::string& folder)
      : folder_{::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)} {
    EXPECT_EQ(::flock(folder_.Number(), LOCK_EX), 0);
  }

 private:
  Descriptor folder_;
};

TEST_F(Bench, ALockOfAStoppedWriterIsWaitedForTenSeconds) {
  const StoppedWriter stopped{Folder.Path()};
  const auto begin = std::chrono::steady_clock::now();
  const auto result = Run({"--quiet", "select", "cboDeviceType", "Beta"});
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds{10});
  EXPECT_EQ(result.Status, 1);
  EXPECT_NE(result.Errors.find("the lock of its folder for ten seconds"), std::string::npos) << result.Errors;
  EXPECT_EQ(Folder.Read("Zolvane.ini"), configText);
}

TEST_F(Bench, AnInterruptEndsTheWaitForALock) {
  const StoppedWriter stopped{Folder.Path()};
  const auto begin = std::chrono::steady_clock::now();
  const Descriptor nothing{::open("/dev/null", O_RDWR | O_CLOEXEC)};
  Process bench{ZOLVANE_BENCH_PATH,
                {"--folder", Folder.Path(), "select", "cboDeviceType", "Beta"},
                {.Input = nothing.Number(), .Output = nothing.Number(), .Errors = nothing.Number()}};
  ASSERT_TRUE(bench.WaitUntilCatches(SIGINT));
  bench.Signal(SIGINT);
  EXPECT_EQ(bench.WaitUntil(begin + processDeadline), 1);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds{9});
  EXPECT_EQ(Folder.Read("Zolvane.ini"), configText);
}

// An editor that saves the configuration again and again while the bench runs, always the same.
class Editor {
 public:
  explicit Editor(std::function<void()> save)
      : thread_{[this, save = std::move(save)] {
          while (!isStopped_) {
            save();
            ++saves_;
          }
        }} {}
  ~Editor() {
    isStopped_ = true;
    thread_.join();
  }

  int Saves() const { return saves_; }

 private:
  std::atomic<bool> isStopped_ = false;
  std::atomic<int> saves_ = 0;
  std::thread thread_;
};

constexpr std::chrono::milliseconds editorsPace{10};

TEST_F(Bench, AnEditorThatEmptiesTheFileBeforeItSavesLosesNothing) {
  ASSERT_EQ(Run({"--quiet", "page"}).Status, 0);  // what the page stores by itself is there from now on
  const auto text = Folder.Read("Zolvane.ini");
  constexpr int runs = 20;
  {
    const Editor editor{[&] {
      Descriptor file{::open(Folder.Path("Zolvane.ini").c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC)};
      std::this_thread::sleep_for(editorsPace);
      EXPECT_EQ(::write(file.Number(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
      file.Close();
      std::this_thread::sleep_for(editorsPace);
    }};
    for (int run = 0; run < runs; ++run) {
      const auto result = Run({"--quiet", "page"});
      EXPECT_EQ(result.Status, 0) << result.Errors;
    }
    EXPECT_GT(editor.Saves(), runs / 4);
  }
  EXPECT_EQ(Folder.Read("Zolvane.ini"), text);
}

TEST_F(Bench, AnEditorThatMovesTheFileAwayBeforeItSavesLosesNothing) {
  ASSERT_EQ(Run({"--quiet", "page"}).Status, 0);
  const auto text = Folder.Read("Zolvane.ini");
  constexpr int runs = 20;
  {
    const Editor editor{[&] {
      std::filesystem::rename(Folder.Path("Zolvane.ini"), Folder.Path("Zolvane.ini~"));
      std::this_thread::sleep_for(editorsPace);
      Folder.PutByRename("Zolvane.ini", text);
      std::this_thread::sleep_for(editorsPace);
    }};
    for (int run = 0; run < runs; ++run) {
      const auto result = Run({"--quiet", "page"});
      const bool wasMissingAtFirst =
          result.Status == 2 && result.Errors.find("does not exist") != std::string::npos;
      EXPECT_TRUE(result.Status == 0 || wasMissingAtFirst) << result.Errors;
    }
    EXPECT_GT(editor.Saves(), runs / 4);
  }
  EXPECT_EQ(Folder.Read("Zolvane.ini"), text);
}

TEST_F(Bench, AnExportAndAnImportGoThroughTheFileDialogue) {
  Folder.Put("job.txt", "import\nexport backup.bak\nimport ./backup.bak\nexport\n");
  const auto events = TraceOf({"--yes", "--keep-going", "run", "job.txt"},
                              {"file_dialog", "append_blank_line", "yield", "message_box"});
  const auto backup = Folder.Path("backup.bak");
  const std::string filter =
      R"("filter":"Backup files (*.bak)|*.bak|Configuration Files (*.ini)|*.ini|All files (*.*)|*.*",)"
      R"("filter_index":1,"default_extension":"bak",)";
  std::vector<std::string> dialogues;
  for (const auto& event : events) {
    if (event["event"] == "file_dialog") {
      dialogues.push_back(event.dump());
    }
  }
  EXPECT_EQ(dialogues,
            (std::vector<std::string>{
                R"({"event":"file_dialog","kind":"open","title":"Hestrion Settings File Import",)" + filter +
                    R"("flags":null,"file_name":"ZolvaneINIExport","chosen":null})",
                R"({"event":"file_dialog","kind":"save","title":"Hestrion Settings File Export",)" + filter +
                    R"("flags":2054,"file_name":"ZolvaneINIExport","chosen":")" + backup + R"("})",
                R"({"event":"file_dialog","kind":"open","title":"Hestrion Settings File Import",)" + filter +
                    R"("flags":2054,"file_name":")" + backup + R"(","chosen":")" + backup + R"("})",
                R"({"event":"file_dialog","kind":"save","title":"Hestrion Settings File Export",)" + filter +
                    R"("flags":2054,"file_name":")" + backup + R"(","chosen":null})",
            }));
  const auto count = [&events](std::string_view kind) {
    return std::ranges::count_if(events, [kind](const auto& event) { return event["event"] == kind; });
  };
  EXPECT_EQ(count("append_blank_line"), 9 + 1);
  EXPECT_EQ(count("yield"), 2);
}

TEST_F(Bench, AnExportIntoAFileThatExistsMergesWhenThatIsWanted) {
  Folder.Put("backup.bak", "[Mine]\r\nKey=1\r\n");
  const auto result = Run({"--replace", "export", "backup.bak"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_NE(result.Errors.find("\"" + Folder.Path("backup.bak") +
                               "\" exists: the add-in merges, so what it does not "
                               "export stays in it\n"),
            std::string::npos)
      << result.Errors;
  EXPECT_TRUE(Folder.Read("backup.bak").starts_with("[Mine]\r\nKey=1\r\n"));
  EXPECT_NE(Folder.Read("backup.bak").find("[DeviceType]"), std::string::npos);
}

TEST_F(Bench, AnExportIntoAFileThatTheSameRunMadeIsNoMerging) {
  Folder.Put("job.txt", "export backup.bak\nexport backup.bak\nimport backup.bak\n");
  EXPECT_EQ(Run({"--yes", "run", "job.txt"}).Status, 0);
}

TEST_F(Bench, ATraceReplacesAnEmptyFileAndAnEarlierTrace) {
  Folder.Put("trace.jsonl", "");
  for (int run = 0; run < 2; ++run) {
    EXPECT_EQ(Run({"--quiet", "--trace", "trace.jsonl", "page"}).Status, 0);
    EXPECT_EQ(EventsOf(Folder.Read("trace.jsonl"), {"changed", "control"}).empty(), false);
  }
  Folder.Put("trace.jsonl", "{\"event\":\"changed\",\"va");  // a run that was killed
  EXPECT_EQ(Run({"--quiet", "--trace", "trace.jsonl", "page"}).Status, 0);
}

TEST_F(Bench, AnExportToTheConfigurationFileIsRefusedHoweverItIsSpelled) {
  for (const auto& file : {std::string{"Zolvane.ini"}, std::string{"./x/../ZOLVANE.INI"}}) {
    const auto result = Run({"--folder", ".", "export", file});
    EXPECT_EQ(result.Status, 1) << file;
    EXPECT_NE(result.Errors.find("zolvane-bench: Export Calibration Data: It is not possible to export the "
                                 "calibration data to the current library file Zolvane.ini.\n"),
              std::string::npos)
        << result.Errors;
  }
  const auto result = Run({"--yes", "--json", "import", "Zolvane.ini"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(ActionsOf(result)[0]["outcome"], "refused");
  EXPECT_EQ(Folder.Read("Zolvane.ini"), configText);
}

TEST_F(Bench, AFileDialogueWithoutAFileIsCancelled) {
  const auto result = Run({"export"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Output, "export: cancelled\n");
  EXPECT_EQ(result.Errors, "zolvane-bench: Hestrion Settings File Export: cancelled, as no FILE was given\n");
}

TEST_F(Bench, AFileThatIsGoneWhenItsDialogueOpensIsNotLoaded) {
  Folder.Put("job.txt", "export backup.bak\nimport backup.bak\n");
  SetKey("ExportCalibrationData", "0");
  const auto before = Folder.Read("Zolvane.ini");
  const auto result = Run({"--yes", "--json", "--keep-going", "run", "job.txt"});
  EXPECT_EQ(result.Status, 2);
  EXPECT_EQ(ActionsOf(result)[0]["outcome"], "disabled");
  EXPECT_EQ(ActionsOf(result)[1]["outcome"], "unusable");
  EXPECT_EQ(Folder.Read("Zolvane.ini"), before);
}

TEST_F(Bench, AWriteThatFailsIsToldAndChangesNothing) {
  const auto result = Run({"tick", "chkTipSensor", "1"}, {.InChild = [] {
                            const ::rlimit limit{.rlim_cur = 40, .rlim_max = 40};
                            ::setrlimit(RLIMIT_FSIZE, &limit);
                          }});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Output, "tick chkTipSensor 1: failed (1 value not written)\n");
  EXPECT_NE(
      result.Errors.find("zolvane-bench: [DeviceType] SensorEnableTipsInstalled could not be written to \"" +
                         Folder.Path("Zolvane.ini") + "\""),
      std::string::npos)
      << result.Errors;
  EXPECT_EQ(Folder.Read("Zolvane.ini"), configText);
}

// ---- The user's hands ----

TEST_F(Bench, ASelectionIsWrittenByTextByPositionAndInAnyCase) {
  EXPECT_EQ(Run({"select", "cboDeviceType", "Beta"}).Status, 0);
  EXPECT_NE(Folder.Read("Zolvane.ini").find("[DeviceType]\r\nInstalled=2\r\n"), std::string::npos);
  EXPECT_EQ(Run({"select", "cboDeviceType", "#0"}).Status, 0);
  EXPECT_NE(Folder.Read("Zolvane.ini").find("[DeviceType]\r\nInstalled=1\r\n"), std::string::npos);
  EXPECT_EQ(Run({"select", "cboCageType", "not INSTALLED"}).Status, 0);
  EXPECT_NE(Folder.Read("Zolvane.ini").find("[CageType]\r\nInstalled=0\r\n"), std::string::npos);
}

TEST_F(Bench, AnEntryThatIsNotThereIsBadUse) {
  for (const auto* entry : {"Gamma", "#2", "#-1", "#", "", "#0x1", "#99999999999999999999"}) {
    const auto result = Run({"select", "cboDeviceType", entry});
    EXPECT_EQ(result.Status, 2) << entry;
    EXPECT_EQ(result.Errors, "zolvane-bench: cboDeviceType has no entry \"" + std::string{entry} +
                                 "\"; the command page prints its entries\n");
  }
  EXPECT_EQ(Folder.Read("Zolvane.ini"), configText);
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
  for (const auto* number : {"5", "-1", "+7", "-0", "99999999999999999999", "-99999999999999999999"}) {
    if (std::string_view{number} == "-0") {
      continue;  // that is button 0
    }
    const auto result = Run({"press", number});
    EXPECT_EQ(result.Status, 0) << number;
    EXPECT_EQ(result.Output, "press " + std::string{number} + ": done\n");
    EXPECT_EQ(result.Errors, "");
  }
}

TEST_F(Bench, AGreyBoxIsWrittenAsTicked) {
  EXPECT_EQ(Run({"tick", "chkRFID", "2"}).Status, 0);
  EXPECT_NE(Folder.Read("Zolvane.ini").find("\r\nSensorEnableRFID=1\r\n"), std::string::npos);
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
  EXPECT_EQ(Folder.Read("Zolvane.ini").find("SensorEnableRFID=1"), std::string::npos);
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

// ---- What is printed ----

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

TEST_F(Bench, QuietPrintsErrorsOnly) {
  const auto done = Run({"--quiet", "--yes", "upload"});
  EXPECT_EQ(done.Status, 0);
  EXPECT_EQ(done.Output + done.Errors, "");
  EXPECT_EQ(Run({"--quiet", "page"}).Output, "");

  const auto failed = Run({"--quiet", "--link", "none", "--yes", "upload"});
  EXPECT_EQ(failed.Status, 1);
  EXPECT_EQ(failed.Output, "");
  EXPECT_EQ(failed.Errors,
            "zolvane-bench: Communication Error: Uploading Data to Zolvane Please ensure that the Zolvane is "
            "switched on and in 'Remote Mode'\n"
            "zolvane-bench: upload: 36 of 36 commands not sent\n");
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

TEST_F(Bench, AValueThatWasThereAlreadyIsWrittenAndNotChanged) {
  const auto action = ActionsOf(Run({"--json", "tick", "chkRFID", "0"}))[0];
  EXPECT_EQ(action["values_written"], 1);
  EXPECT_EQ(action["values_changed"], 0);
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

TEST_F(Bench, ATraceOnStandardOutputStaysFreeOfOtherText) {
  const auto people = Run({"--trace", "-", "--yes", "run", "-"}, {.Input = "page\nupload\nscript\n"});
  EXPECT_EQ(people.Status, 0);
  for (const auto& line : LinesOf(people.Output)) {
    EXPECT_TRUE(Json::accept(line)) << line;
  }
  EXPECT_NE(people.Errors.find("upload: done (36 of 36 commands sent; "), std::string::npos);

  const auto programs = Run({"--trace", "-", "--json", "page"});
  const auto lines = LinesOf(programs.Output);
  EXPECT_EQ(Json::parse(lines.front())["event"], "control");
  EXPECT_EQ(Json::parse(lines.back())["caption"], "Zolvane Setup");
}

TEST_F(Bench, OutputThatIsLostIsAFailure) {
  const auto toFullDisk = [](int stream) {
    return RunSetup{.InChild = [stream] { ::dup2(::open("/dev/full", O_WRONLY), stream); }};
  };
  const auto results = Run({"page"}, toFullDisk(STDOUT_FILENO));
  EXPECT_EQ(results.Status, 1);
  EXPECT_EQ(results.Errors, "zolvane-bench: the results are lost, as standard output could not be written\n");

  const auto help = Run({"--help"}, toFullDisk(STDOUT_FILENO));
  EXPECT_EQ(help.Status, 1);
  EXPECT_EQ(help.Errors, "zolvane-bench: standard output could not be written\n");

  const auto trace = Run({"--quiet", "--trace", "-", "page"}, toFullDisk(STDOUT_FILENO));
  EXPECT_EQ(trace.Status, 2);
  EXPECT_EQ(trace.Errors.find("zolvane-bench: the trace is not complete, as standard output could not be "
                              "written: No space left on device\n"),
            0U);

  const auto file = Run({"--quiet", "--trace", "/dev/full", "--yes", "upload"});
  EXPECT_EQ(file.Status, 2);
  EXPECT_EQ(
      file.Errors,
      "zolvane-bench: the trace is not complete, as \"/dev/full\" could not be written: No space left on "
      "device\n");
}

TEST_F(Bench, ClosedStreamsHarmNoFile) {
  const auto result = Run({"--yes", "upload"}, {.InChild = [] {
                            for (const int stream : {0, 1, 2}) {
                              ::close(stream);
                            }
                          }});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(Folder.Read("Zolvane.ini"), configText);
  EXPECT_EQ(Run({"--quiet", "page"}, {.InChild = [] { ::close(STDOUT_FILENO); }}).Status, 0);
}

TEST_F(Bench, AReaderWhoLeavesEndsNothingAndIsNoFailure) {
  auto output = OpenPipe();
  output.ReadEnd.Close();
  const auto toNobody = RunSetup{.InChild = [&output] { ::dup2(output.WriteEnd.Number(), STDOUT_FILENO); }};
  const auto traced = Run({"--quiet", "--trace", "-", "--yes", "tick", "chkRFID", "1"}, toNobody);
  EXPECT_EQ(traced.Status, 0);
  EXPECT_EQ(traced.Errors, "");
  EXPECT_NE(Folder.Read("Zolvane.ini").find("\r\nSensorEnableRFID=1\r\n"), std::string::npos);
  for (const auto& line :
       {Arguments{"page"}, Arguments{"--json", "page"}, Arguments{"script"}, Arguments{"--help"}}) {
    const auto result = Run(line, toNobody);
    EXPECT_EQ(result.Status, 0) << line.back();
    EXPECT_EQ(result.Errors, "") << line.back();
  }
}

// ---- Instruments ----

TEST_F(Bench, TheInstrumentInsideKeepsItsMemoryInAFile) {
  const auto upload = Run({"--quiet", "--yes", "--link", "sim:memory.json", "upload"});
  EXPECT_EQ(upload.Status, 0);
  SetKey("Item1", "STAGE1");  // of the devices; the positions come last
  Folder.Put("Zolvane.ini", configText);
  auto other = std::string{configText};
  other.replace(other.find("2016,2487"), 9, "1111,2222");
  Folder.Put("Zolvane.ini", other);
  const auto download = Run({"--json", "--quiet", "--yes", "--link", "sim:memory.json", "download"});
  EXPECT_EQ(download.Status, 0);
  EXPECT_NE(Folder.Read("Zolvane.ini").find("Item1=STAGE1,\"Stage 1\",STAGE,2016,2487,"), std::string::npos);
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
  EXPECT_NE(Folder.Read("Zolvane.ini").find("[DeviceType]\r\nInstalled=2\r\n"), std::string::npos);
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

TEST_F(Bench, ScriptedRepliesFailAndStopAsWritten) {
  Folder.Put("link.json",
             R"({"default": "OK", "replies": {"STATUS_STAGE": ["BE2\r\n", null], "STATUS_MECH": "SD"},)"
             R"("stop_after": ["STATUS_MECH"]})");
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
  const auto result = Run({"--json", "--quiet", "--link", "script:link.json", "query"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(ActionsOf(result)[0]["outcome"], "stopped");
}

// ---- On a terminal ----

class OnTerminal : public Bench {
 protected:
  // Starts the bench with the terminal for all its streams.
  void Start(Arguments arguments) {
    arguments.insert(arguments.begin(), {"--folder", Folder.Path()});
    program_.emplace(ZOLVANE_BENCH_PATH, arguments,
                     Process::Streams{.Input = Terminal.Slave(),
                                      .Output = Terminal.Slave(),
                                      .Errors = Terminal.Slave(),
                                      .IsTerminal = true});
    Terminal.HandOver();
  }

  int End() {
    Terminal.ReadToEnd();
    return program_->WaitUntil(std::chrono::steady_clock::now() + processDeadline);
  }

  PseudoTerminal Terminal;

 private:
  std::optional<Process> program_;
};

TEST_F(OnTerminal, ABoxAsksTheUser) {
  Start({"upload"});
  ASSERT_TRUE(Terminal.WaitFor("OK / Cancel? "));
  EXPECT_NE(Terminal.Shown().find("\r\nUpload Calibration Data to Zolvane\r\n"
                                  "  The calibration data stored on this computer will be transferred\r\n"
                                  "  to the Zolvane overwriting any existing data.\r\n"
                                  "\r\n"
                                  "  Click [OK] to upload this information.\r\n"
                                  "OK / Cancel? "),
            std::string::npos)
      << Terminal.Shown();
  Terminal.Type("ok\n");
  EXPECT_EQ(End(), 0);
  EXPECT_NE(Terminal.Shown().find("upload: done (36 of 36 commands sent; 36 accepted; SAVE accepted)\r\n"),
            std::string::npos);
}

TEST_F(OnTerminal, AnAnswerThatIsNoneIsAskedForAgain) {
  Folder.Put("backup.bak", "[CageType]\r\nItem1=\"Other\",MICROTITER\r\n");
  Start({"import", Folder.Path("backup.bak")});
  ASSERT_TRUE(Terminal.WaitFor("Yes / No / Cancel? "));
  Terminal.Type("ok\n\n  Y \n");
  EXPECT_EQ(End(), 0);
  EXPECT_NE(Folder.Read("Zolvane.ini").find("Item1=\"Other\",MICROTITER"), std::string::npos);
}

TEST_F(OnTerminal, NoIsAnAnswer) {
  Folder.Put("backup.bak", "[CageType]\r\nItem1=\"Other\",MICROTITER\r\n");
  Start({"import", Folder.Path("backup.bak")});
  ASSERT_TRUE(Terminal.WaitFor("Yes / No / Cancel? "));
  Terminal.Type("n\n");
  EXPECT_EQ(End(), 1);
  EXPECT_EQ(Folder.Read("Zolvane.ini"), configText);
}

TEST_F(OnTerminal, TheEndOfTheInputCancels) {
  Start({"upload"});
  ASSERT_TRUE(Terminal.WaitFor("OK / Cancel? "));
  Terminal.Type("\x04");
  EXPECT_EQ(End(), 1);
}

TEST_F(OnTerminal, AHangUpCancels) {
  Start({"upload"});
  ASSERT_TRUE(Terminal.WaitFor("OK / Cancel? "));
  Terminal.Close();
  EXPECT_EQ(End(), 1);
}

TEST_F(OnTerminal, AnInterruptAtAQuestionCancelsAndEndsTheRun) {
  Folder.Put("job.txt", "upload\ntick chkRFID 1\n");
  Start({"--trace", Folder.Path("trace.jsonl"), "run", Folder.Path("job.txt")});
  ASSERT_TRUE(Terminal.WaitFor("OK / Cancel? "));
  Terminal.Type("\x03");
  EXPECT_EQ(End(), 1);
  EXPECT_NE(Terminal.Shown().find("interrupted: 1 of 2 commands not begun: tick chkRFID 1"),
            std::string::npos)
      << Terminal.Shown();
  EXPECT_EQ(Folder.Read("Zolvane.ini"), configText);
  const auto last = EventsOf(Folder.Read("trace.jsonl"), {"changed", "link"});
  ASSERT_EQ(last.size(), 2U);
  EXPECT_EQ(last[1].dump(), R"({"event":"link","flag":"hold","op":"set","value":false})");
}

TEST_F(OnTerminal, ListedAnswersAndYesAskNobody) {
  Start({"--answer", "ok", "--yes", "upload"});
  EXPECT_EQ(End(), 0);
  EXPECT_EQ(Terminal.Shown().find("OK / Cancel?"), std::string::npos);
}

TEST_F(OnTerminal, AnUploadCountsItsCommandsInOneLine) {
  SimulatorProcess simulator{{"--latency", "20"}};
  Start({"--yes", "--link", simulator.Link(), "run", "-"});
  Terminal.Type("upload\ndownload\n\x04");
  EXPECT_EQ(End(), 0);
  EXPECT_NE(Terminal.Shown().find("\r\x1b[KUploading Data to Zolvane  "), std::string::npos);
  EXPECT_NE(Terminal.Shown().find(" of 36\r"), std::string::npos) << Terminal.Shown();
  EXPECT_NE(Terminal.Shown().find("\r\x1b[KDownloading Data from Zolvane...Stage XY  "), std::string::npos)
      << Terminal.Shown();
  EXPECT_NE(Terminal.Shown().find(" of 35\r"), std::string::npos) << Terminal.Shown();
}

TEST_F(OnTerminal, AnInterruptBeforeTheSessionEndsTheProgram) {
  Start({"run", "-"});
  Terminal.Type("tick chkRFID 1\n\x03");
  EXPECT_EQ(End(), -SIGINT);
  EXPECT_EQ(Folder.Read("Zolvane.ini"), configText);
}

// ---- Interrupts ----

// An instrument that takes one client's lines and never answers.
class SilentInstrument {
 public:
  std::string Link() const { return "tcp:127.0.0.1:" + std::to_string(acceptor_.local_endpoint().port()); }

  // The next line that comes; empty when the client has gone.
  std::string NextLine() {
    if (!client_.is_open()) {
      client_ = acceptor_.accept();
    }
    std::error_code ended;
    const auto size = asio::read_until(client_, asio::dynamic_buffer(input_), '\n', ended);
    const auto line = input_.substr(0, size);
    input_.erase(0, size);
    return line;
  }

 private:
  asio::io_context io_;
  asio::ip::tcp::acceptor acceptor_{io_, {asio::ip::address_v4::loopback(), 0}};
  asio::ip::tcp::socket client_{io_};
  std::string input_;
};

class Interrupted : public Bench {
 protected:
  // A download that waits for the answer to its first command, for `timeout` seconds.
  void StartDownload(const std::string& timeout) {
    program_.emplace(
        ZOLVANE_BENCH_PATH,
        Arguments{"--folder", Folder.Path(), "--yes", "--quiet", "--timeout", timeout, "--trace",
                  Folder.Path("trace.jsonl"), "--link", Instrument.Link(), "download"},
        Process::Streams{
            .Input = nothing_.Number(), .Output = nothing_.Number(), .Errors = nothing_.Number()});
    ASSERT_EQ(Instrument.NextLine(), "GET_CALIBRATION STAGE1_X\r\n");
  }

  void Signal(int signal) const { program_->Signal(signal); }
  int End() { return program_->WaitUntil(std::chrono::steady_clock::now() + processDeadline); }

  SilentInstrument Instrument;

 private:
  Descriptor nothing_{::open("/dev/null", O_RDWR | O_CLOEXEC)};
  std::optional<Process> program_;
};

TEST_F(Interrupted, NoFurtherCommandLeavesWhateverTheAddInTries) {
  StartDownload("0.5");
  Signal(SIGINT);
  EXPECT_EQ(Instrument.NextLine(), "");
  EXPECT_EQ(End(), 1);
  EXPECT_EQ(EventsOf(Folder.Read("trace.jsonl"), {"send"}).front()["ok"], false);
}

TEST_F(Interrupted, ASecondTimeTheWaitEndsAtOnce) {
  StartDownload("100000");
  Signal(SIGTERM);
  Signal(SIGINT);
  EXPECT_EQ(End(), 1);
  EXPECT_EQ(Instrument.NextLine(), "");
  const auto last = EventsOf(Folder.Read("trace.jsonl"), {"changed", "link"});
  ASSERT_FALSE(last.empty());
  EXPECT_EQ(last.back().dump(), R"({"event":"link","flag":"hold","op":"set","value":false})");
}

TEST_F(OnTerminal, CtrlCFinishesTheCommandInHandAndEndsTheSessionInOrder) {
  SimulatorProcess simulator{{"--latency", "50"}};
  Start({"--yes", "--trace", Folder.Path("trace.jsonl"), "--link", simulator.Link(), "upload"});
  ASSERT_TRUE(Terminal.WaitFor(" of 36"));
  Terminal.Type("\x03");
  EXPECT_EQ(End(), 1);
  const auto trace = Folder.Read("trace.jsonl");
  const auto sends = EventsOf(trace, {"send"});
  ASSERT_FALSE(sends.empty());
  EXPECT_LT(sends.size(), 36U);
  EXPECT_EQ(sends.back()["ok"], true);
  const auto lines = LinesOf(trace);
  EXPECT_EQ(lines[lines.size() - 2], R"({"event":"changed","value":false})");
  EXPECT_EQ(lines.back(), R"({"event":"link","flag":"hold","op":"set","value":false})");
  EXPECT_NE(Terminal.Shown().find("upload: stopped ("), std::string::npos) << Terminal.Shown();
}

}  // namespace
}  // namespace zolvane
