// zolvane-sim as a process of its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <string>
#include <vector>

#include "bench/process_support.h"
#include "instrument/links/sent_command.h"
#include "instrument/simulator/faults.h"
#include "support/temporary_folder.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

ProcessResult RunSimulator(const Arguments& arguments) {
  return RunProgram(ZOLVANE_SIM_PATH, arguments);
}

TEST(SimulatorProgram, ItsFirstLineSaysWhereItListens) {
  const SimulatorProcess simulator{{}};
  const auto& place = simulator.Link();
  EXPECT_TRUE(place.starts_with("tcp:127.0.0.1:")) << place;
  const auto link = CreateLink(place, 5.0, quietInterrupt);
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "ZV400");
  EXPECT_EQ(Send(*link, "STATUS_MECH"), "SD");
  EXPECT_EQ(Send(*link, "STATUS PUMPS"), "PUMPS CLOSED");
  EXPECT_EQ(Send(*link, "RFID READ_PERSISTENT"), "RFID,PERSISTENT,5A4C0150AA7F2032,READ,OK");
}

TEST(SimulatorProgram, OnAPseudoTerminalTheLineIsItsPath) {
  const SimulatorProcess simulator{{"--pty", "--stage", "ABC"}};
  const auto& place = simulator.Link();
  EXPECT_TRUE(place.starts_with("/dev/")) << place;
  for (int client = 0; client < 2; ++client) {
    const auto link = CreateLink(place, 5.0, quietInterrupt);
    EXPECT_EQ(Send(*link, "STATUS_STAGE"), "ABC");
    EXPECT_EQ(Send(*link, "STATUS_MECH"), "SD");
  }
}

TEST(SimulatorProgram, TheInstrumentIsSetUpByTheOptions) {
  const SimulatorProcess simulator{{"--stage", "BE2", "--mech", "96/384", "--rfid", "T1", "--pumps",
                                    "PUMPS OPEN", "--latency", "1", "--fail-after", "4"}};
  const auto link = CreateLink(simulator.Link(), 0.5, quietInterrupt);
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "BE2");
  EXPECT_EQ(Send(*link, "STATUS_MECH"), "96/384");
  EXPECT_EQ(Send(*link, "STATUS PUMPS"), "PUMPS OPEN");
  EXPECT_EQ(Send(*link, "RFID READ_PERSISTENT"), "RFID,PERSISTENT,T1,READ,OK");
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "failed");
}

TEST(SimulatorProgram, ASignalEndsItAndWhatWasNeverSavedIsGone) {
  const TemporaryFolder folder;
  const auto file = folder.Path("state.json");
  for (const int signal : {SIGTERM, SIGINT}) {
    SimulatorProcess simulator{{"--state", file}};
    const auto link = CreateLink(simulator.Link(), 5.0, quietInterrupt);
    EXPECT_EQ(Send(*link, "SET_CALIBRATION STAGE1_X 1612"), "OK");
    EXPECT_EQ(Send(*link, "SET_CALIBRATION SAVE"), "OK");
    EXPECT_EQ(Send(*link, "SET_CALIBRATION STAGE1_X 7"), "OK");
    EXPECT_EQ(simulator.End(signal), 0);
    EXPECT_EQ(simulator.Errors(), "");
    EXPECT_EQ(BytesOf(file), "{\n  \"STAGE1_X\": \"1612\"\n}\n");
  }
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"state.json"});
}

TEST(SimulatorProgram, ASecondOneOnTheSameMemoryIsRefusedUntilTheFirstHasGone) {
  const TemporaryFolder folder;
  const auto file = folder.Path("state.json");
  SimulatorProcess first{{"--state", file}};
  const auto second = RunSimulator({"--state", file});
  EXPECT_EQ(second.Status, 2);
  EXPECT_EQ(second.Errors, "zolvane-sim: \"" + file +
                               "\" is in use by another simulated instrument (process " +
                               std::to_string(first.Number()) + ")\n");
  EXPECT_THROW(CreateLink("sim:" + file, 1.0, quietInterrupt), UsageError);
  first.End(SIGKILL);
  const SimulatorProcess third{{"--state", file}};
  EXPECT_TRUE(third.Link().starts_with("tcp:"));
}

TEST(SimulatorProgram, WhatWasSavedSurvivesAnEndWithoutWarning) {
  const TemporaryFolder folder;
  const auto file = folder.Path("state.json");
  {
    SimulatorProcess simulator{{"--state", file}};
    const auto link = CreateLink(simulator.Link(), 5.0, quietInterrupt);
    EXPECT_EQ(Send(*link, "SET_CALIBRATION STAGE1_X 1612"), "OK");
    EXPECT_EQ(Send(*link, "SET_CALIBRATION SAVE"), "OK");
    EXPECT_EQ(Send(*link, "SET_CALIBRATION STAGE1_X 7"), "OK");
    simulator.End(SIGKILL);
  }
  const SimulatorProcess again{{"--state", file}};
  const auto link = CreateLink(again.Link(), 5.0, quietInterrupt);
  EXPECT_EQ(Send(*link, "GET_CALIBRATION STAGE1_X"), "STAGE1_X=1612");
}

TEST(SimulatorProgram, EndsAlsoWhileAClientWaitsForAReply) {
  SimulatorProcess simulator{{"--latency", "60000"}};
  const auto link = CreateLink(simulator.Link(), 0.1, quietInterrupt);
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "failed");
  EXPECT_EQ(simulator.End(SIGTERM), 0);
}

TEST(SimulatorProgram, WhatIsWrongWithTheOptionsIsSaidInOneLine) {
  const TemporaryFolder folder;
  const auto file = folder.Put("state.json", "{\"A\": 1}");
  const std::vector<Arguments> lines{
      {"--listen", "nowhere"},
      {"--listen", "127.0.0.1:65536"},
      {"--listen", "192.0.2.1:0"},
      {"--latency", "-1"},
      {"--latency", "soon"},
      {"--fail-after", "1.5"},
      {"--fail-after", "-1"},
      {"--fail-after="},
      {"--fault", "late"},
      {"--fault", "late@0"},
      {"--fault", "rain@1"},
      {"--state", folder.Path(".")},
      {"--state", folder.Path("no/state.json")},
      {"--state", file},
      {"--state", folder.Path("new.json"), "--listen", "192.0.2.1:0"},
      {"--state="},
      {"--stage", "A\r\nB"},
      {"--rfid", "A,B"},
      {"--bogus"},
      {"--listen"},
      {"--pty", "--listen", "127.0.0.1:0"},
      {"extra\nword"},
  };
  for (const auto& line : lines) {
    const auto result = RunSimulator(line);
    EXPECT_EQ(result.Status, 2) << result.Errors;
    EXPECT_TRUE(result.Errors.starts_with("zolvane-sim: ")) << result.Errors;
    EXPECT_EQ(std::ranges::count(result.Errors, '\n'), 1) << result.Errors;
    EXPECT_TRUE(result.Errors.ends_with('\n')) << result.Errors;
    EXPECT_EQ(result.Output, "");
  }
  EXPECT_EQ(BytesOf(file), "{\"A\": 1}");
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"state.json"});
}

TEST(SimulatorProgram, AnEmptyValueIsAValue) {
  const SimulatorProcess simulator{{"--rfid=", "--mech", "", "--stage", "BE2"}};
  const auto link = CreateLink(simulator.Link(), 5.0, quietInterrupt);
  EXPECT_EQ(Send(*link, "RFID READ_PERSISTENT"), "RFID,PERSISTENT,,READ,OK");
  EXPECT_EQ(Send(*link, "STATUS_MECH"), "");
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "BE2");
}

TEST(SimulatorProgram, AMissingStateFileIsThereWhenItListens) {
  const TemporaryFolder folder;
  const SimulatorProcess simulator{{"--state", folder.Path("state.json")}};
  EXPECT_TRUE(simulator.Link().starts_with("tcp:"));
  EXPECT_EQ(folder.Read("state.json"), "{}\n");
}

TEST(SimulatorProgram, ItsVersionIsPrintedWithItsName) {
  const auto result = RunSimulator({"--version"});
  EXPECT_EQ(result.Output, "zolvane-sim 1.00.0135\n");
  EXPECT_EQ(result.Status, 0);
}

TEST(SimulatorProgram, AMisspeltOptionOrFaultIsAnsweredWithTheNearest) {
  EXPECT_EQ(RunSimulator({"--lisen", "127.0.0.1:0"}).Errors,
            "zolvane-sim: there is no option \"--lisen\"; did you mean \"--listen\"?\n");
  EXPECT_TRUE(RunSimulator({"--fault", "slient@1"}).Errors.ends_with("; did you mean \"silent\"?\n"));
}

TEST(SimulatorProgram, FaultsMeetLinesAndKeysOnTheWire) {
  const SimulatorProcess simulator{{"--fault", "echo@1", "--fault", "double@2", "--fault", "shift@4",
                                    "--fault", "refuse@B", "--fault", "limit@A", "--fault", "negate@A",
                                    "--fault", "power@11"}};
  const auto link = CreateLink(simulator.Link(), 0.5, quietInterrupt);
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "ZV400");
  EXPECT_EQ(Send(*link, "STATUS_MECH"), "SD");
  EXPECT_EQ(Send(*link, "STATUS PUMPS"), "PUMPS CLOSED");
  EXPECT_EQ(Send(*link, "SET_CALIBRATION A 1612"), "PUMPS CLOSED");
  EXPECT_EQ(Send(*link, "GET_CALIBRATION A"), "A=-806");
  EXPECT_EQ(Send(*link, "SET_CALIBRATION SAVE"), "OK");
  EXPECT_EQ(Send(*link, "SET_CALIBRATION B 1"), "SYNTAX_ERROR");
  EXPECT_EQ(Send(*link, "GET_CALIBRATION B"), "SYNTAX_ERROR");
  EXPECT_EQ(Send(*link, "SET_CALIBRATION A 4"), "OK");
  EXPECT_EQ(Send(*link, "GET_CALIBRATION A"), "A=-2");
  EXPECT_EQ(Send(*link, "GET_CALIBRATION A"), "A=-806");
}

TEST(SimulatorProgram, ItsHelpTellsTheFaults) {
  const auto [status, help, errors] = RunSimulator({"--help"});
  EXPECT_EQ(status, 0) << errors;
  for (const auto* text :
       {"--listen HOST:PORT", "--pty", "--state FILE", "--stage CODE", "--mech TEXT", "--rfid TAG",
        "--pumps TEXT", "--latency MS", "--fail-after N", "--fault KIND@N|KEY"}) {
    EXPECT_NE(help.find(text), std::string::npos) << text;
  }
  for (const auto& fault : FaultRows()) {
    EXPECT_NE(help.find(fault.Name), std::string::npos) << fault.Name;
    EXPECT_NE(help.find(fault.Description), std::string::npos) << fault.Name;
  }
}

}  // namespace
}  // namespace zolvane
