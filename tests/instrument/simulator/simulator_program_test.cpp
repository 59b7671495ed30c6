// zolvane-sim as a process of its own.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <string>
#include <utility>
#include <vector>

#include "instrument/links/sent_command.h"
#include "instrument/simulator/faults.h"
#include "support/temporary_folder.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

class Simulator {
 public:
  explicit Simulator(std::vector<std::string> arguments) {
    std::array<int, 2> output{};
    std::array<int, 2> errors{};
    EXPECT_EQ(::pipe2(output.data(), O_CLOEXEC) + ::pipe2(errors.data(), O_CLOEXEC), 0);
    arguments.insert(arguments.begin(), ZOLVANE_SIM_PATH);
    process_ = ::fork();
    if (process_ == 0) {
      ::alarm(60);  // should the test itself be killed
      ::dup2(output[1], STDOUT_FILENO);
      ::dup2(errors[1], STDERR_FILENO);
      std::vector<char*> words(arguments.size() + 1);
      std::ranges::transform(arguments, words.begin(), [](std::string& word) { return word.data(); });
      ::execv(words.front(), words.data());
      ::_exit(127);
    }
    ::close(output[1]);
    ::close(errors[1]);
    output_ = output[0];
    errors_ = errors[0];
  }
  ~Simulator() {
    if (process_ > 0) {
      End(SIGKILL);
    }
    ::close(output_);
    ::close(errors_);
  }
  Simulator(const Simulator&) = delete;
  Simulator& operator=(const Simulator&) = delete;

  ::pid_t Number() const { return process_; }

  // The next line of its output, without the line end.
  std::string Line() const {
    std::string line;
    char byte = 0;
    while (::read(output_, &byte, 1) == 1 && byte != '\n') {
      line += byte;
    }
    return line;
  }

  // Its exit status, or minus the signal that ended it.
  int End(int signal) {
    ::kill(process_, signal);
    return Wait();
  }

  int Wait() {
    int status = 0;
    ::waitpid(std::exchange(process_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

  std::string Output() const { return Rest(output_); }
  std::string Errors() const { return Rest(errors_); }

 private:
  static std::string Rest(int from) {
    std::string text;
    std::array<char, 4096> chunk{};
    for (auto size = ::read(from, chunk.data(), chunk.size()); size > 0;
         size = ::read(from, chunk.data(), chunk.size())) {
      text.append(chunk.data(), static_cast<std::size_t>(size));
    }
    return text;
  }

  ::pid_t process_ = -1;
  int output_ = -1;
  int errors_ = -1;
};

TEST(SimulatorProgram, ItsFirstLineSaysWhereItListens) {
  const Simulator simulator{{}};
  const auto place = simulator.Line();
  EXPECT_TRUE(place.starts_with("tcp:127.0.0.1:")) << place;
  const auto link = CreateLink(place, 5.0, quietInterrupt);
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "ZV400");
  EXPECT_EQ(Send(*link, "STATUS_MECH"), "SD");
  EXPECT_EQ(Send(*link, "STATUS PUMPS"), "PUMPS CLOSED");
  EXPECT_EQ(Send(*link, "RFID READ_PERSISTENT"), "RFID,PERSISTENT,5A4C0150AA7F2032,READ,OK");
}

TEST(SimulatorProgram, OnAPseudoTerminalTheLineIsItsPath) {
  const Simulator simulator{{"--pty", "--stage", "ABC"}};
  const auto place = simulator.Line();
  EXPECT_TRUE(place.starts_with("/dev/")) << place;
  for (int client = 0; client < 2; ++client) {
    const auto link = CreateLink(place, 5.0, quietInterrupt);
    EXPECT_EQ(Send(*link, "STATUS_STAGE"), "ABC");
    EXPECT_EQ(Send(*link, "STATUS_MECH"), "SD");
  }
}

TEST(SimulatorProgram, TheInstrumentIsSetUpByTheOptions) {
  const Simulator simulator{{"--stage", "BE2", "--mech", "96/384", "--rfid", "T1", "--pumps", "PUMPS OPEN",
                             "--latency", "1", "--fail-after", "4"}};
  const auto link = CreateLink(simulator.Line(), 0.5, quietInterrupt);
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
    Simulator simulator{{"--state", file}};
    const auto link = CreateLink(simulator.Line(), 5.0, quietInterrupt);
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
  Simulator first{{"--state", file}};
  first.Line();
  Simulator second{{"--state", file}};
  EXPECT_EQ(second.Wait(), 2);
  EXPECT_EQ(second.Errors(), "zolvane-sim: \"" + file +
                                 "\" is in use by another simulated instrument (process " +
                                 std::to_string(first.Number()) + ")\n");
  EXPECT_THROW(CreateLink("sim:" + file, 1.0, quietInterrupt), UsageError);
  first.End(SIGKILL);
  const Simulator third{{"--state", file}};
  EXPECT_TRUE(third.Line().starts_with("tcp:"));
}

TEST(SimulatorProgram, WhatWasSavedSurvivesAnEndWithoutWarning) {
  const TemporaryFolder folder;
  const auto file = folder.Path("state.json");
  {
    Simulator simulator{{"--state", file}};
    const auto link = CreateLink(simulator.Line(), 5.0, quietInterrupt);
    EXPECT_EQ(Send(*link, "SET_CALIBRATION STAGE1_X 1612"), "OK");
    EXPECT_EQ(Send(*link, "SET_CALIBRATION SAVE"), "OK");
    EXPECT_EQ(Send(*link, "SET_CALIBRATION STAGE1_X 7"), "OK");
    simulator.End(SIGKILL);
  }
  const Simulator again{{"--state", file}};
  const auto link = CreateLink(again.Line(), 5.0, quietInterrupt);
  EXPECT_EQ(Send(*link, "GET_CALIBRATION STAGE1_X"), "STAGE1_X=1612");
}

TEST(SimulatorProgram, EndsAlsoWhileAClientWaitsForAReply) {
  Simulator simulator{{"--latency", "60000"}};
  const auto link = CreateLink(simulator.Line(), 0.1, quietInterrupt);
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "failed");
  EXPECT_EQ(simulator.End(SIGTERM), 0);
}

TEST(SimulatorProgram, WhatIsWrongWithTheOptionsIsSaidInOneLine) {
  const TemporaryFolder folder;
  const auto file = folder.Put("state.json", "{\"A\": 1}");
  const std::vector<std::vector<std::string>> lines{
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
    Simulator simulator{line};
    const auto errors = simulator.Errors();
    EXPECT_EQ(simulator.Wait(), 2) << errors;
    EXPECT_TRUE(errors.starts_with("zolvane-sim: ")) << errors;
    EXPECT_EQ(std::ranges::count(errors, '\n'), 1) << errors;
    EXPECT_EQ(errors.back(), '\n');
    EXPECT_EQ(simulator.Output(), "");
  }
  EXPECT_EQ(BytesOf(file), "{\"A\": 1}");
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"state.json"});
}

TEST(SimulatorProgram, AnEmptyValueIsAValue) {
  const Simulator simulator{{"--rfid=", "--mech", "", "--stage", "BE2"}};
  const auto link = CreateLink(simulator.Line(), 5.0, quietInterrupt);
  EXPECT_EQ(Send(*link, "RFID READ_PERSISTENT"), "RFID,PERSISTENT,,READ,OK");
  EXPECT_EQ(Send(*link, "STATUS_MECH"), "");
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "BE2");
}

TEST(SimulatorProgram, AMissingStateFileIsThereWhenItListens) {
  const TemporaryFolder folder;
  const Simulator simulator{{"--state", folder.Path("state.json")}};
  EXPECT_TRUE(simulator.Line().starts_with("tcp:"));
  EXPECT_EQ(folder.Read("state.json"), "{}\n");
}

TEST(SimulatorProgram, ItsVersionIsPrintedWithItsName) {
  Simulator simulator{{"--version"}};
  EXPECT_EQ(simulator.Output(), "zolvane-sim 1.00.0135\n");
  EXPECT_EQ(simulator.Wait(), 0);
}

TEST(SimulatorProgram, AMisspeltOptionOrFaultIsAnsweredWithTheNearest) {
  Simulator option{{"--lisen", "127.0.0.1:0"}};
  EXPECT_EQ(option.Errors(), "zolvane-sim: there is no option \"--lisen\"; did you mean \"--listen\"?\n");
  Simulator fault{{"--fault", "slient@1"}};
  EXPECT_TRUE(fault.Errors().ends_with("; did you mean \"silent\"?\n"));
}

TEST(SimulatorProgram, FaultsMeetLinesAndKeysOnTheWire) {
  const Simulator simulator{{"--fault", "echo@1", "--fault", "double@2", "--fault", "shift@4", "--fault",
                             "refuse@B", "--fault", "limit@A", "--fault", "negate@A", "--fault", "power@11"}};
  const auto link = CreateLink(simulator.Line(), 0.5, quietInterrupt);
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
  Simulator simulator{{"--help"}};
  const auto help = simulator.Output();
  EXPECT_EQ(simulator.Wait(), 0);
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
