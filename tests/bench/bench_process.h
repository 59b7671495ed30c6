// The bench as scripts and people meet it: a process with its arguments, streams and exit status, in a folder with a
// configuration of its own.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bench/process_support.h"
#include "support/texts.h"

namespace zolvane {

using Json = nlohmann::ordered_json;

inline constexpr std::string_view configText =
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

inline constexpr std::string_view otherModules = "[CageType]\r\nItem1=\"Other\",MICROTITER\r\n";

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
    auto text = Configuration();
    const auto start = text.find("\n" + std::string{key} + "=") + 1;
    ASSERT_NE(start, 0U);
    text.replace(start, text.find('\r', start) - start, std::string{key} + "=" + std::string{value});
    Folder.Put("Zolvane.ini", text);
  }

  std::string Configuration() const { return Folder.Read("Zolvane.ini"); }

  TemporaryFolder Folder;
};

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

}  // namespace zolvane
