// The page as it is printed, also where its texts would steer a terminal.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "bench/bench_process.h"
#include "text/joined.h"

namespace zolvane {
namespace {

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
  EXPECT_EQ(Configuration(), configText);
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

// ---- Texts that would steer a terminal ----

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

// A page whose first device has such a text in its name.
class HostilePage : public Bench {
 protected:
  HostilePage() { SetKey("Item2", Joined("\"B", hostileText, "\",1,\"BE2\"")); }
};

TEST_F(HostilePage, IsPrintedHarmless) {
  const auto result = Run({"page"});
  EXPECT_NE(result.Output.find(Joined("#1   B", hostileTextShown, "\n")), std::string::npos) << result.Output;
  EXPECT_EQ(SteeringPartOf(result.Output), "");
}

TEST_F(HostilePage, IsEscapedInJsonAndKeepsItsValue) {
  const auto result = Run({"page", "--json"});
  EXPECT_EQ(SteeringPartOf(result.Output), "");
  EXPECT_EQ(Json::parse(result.Output)["lists"]["cboDeviceType"]["entries"][1]["text"],
            Joined("B", hostileText));
}

TEST_F(HostilePage, IsEscapedInATraceAndKeepsItsValue) {
  Run({"--quiet", "--trace", "trace.jsonl", "--trace-reads", "page"});
  const auto trace = Folder.Read("trace.jsonl");
  EXPECT_EQ(SteeringPartOf(trace), "");
  EXPECT_EQ(EventsOf(trace, {"control"}).front()["value"][1]["text"], Joined("B", hostileText));
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

}  // namespace
}  // namespace zolvane
