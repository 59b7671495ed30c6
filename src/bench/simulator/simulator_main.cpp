#include <CLI/CLI.hpp>
#include <csignal>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "bench/simulator/instrument_server.h"
#include "bench/usage_error.h"

namespace zolvane {
namespace {

struct SimulatorOptions {
  std::string Listen = "127.0.0.1:0";
  bool UsesPseudoTerminal = false;
  SimulatedInstrument::Setup Instrument;
  unsigned LatencyMilliseconds = 0;
  std::vector<std::string> Faults;
};

std::string FaultHelp() {
  std::string text = "Let the N-th command go wrong (can be given more than once); KIND is\n";
  for (const auto& row : faultRows) {
    text.append("  ").append(row.Name).append(": ").append(row.Description).append("\n");
  }
  return text;
}

void Describe(CLI::App& app, SimulatorOptions& options) {
  auto& instrument = options.Instrument;
  app.add_option("--listen", options.Listen, "Where to listen; port 0 takes a free one")
      ->type_name("HOST:PORT");
  app.add_flag("--pty", options.UsesPseudoTerminal, "Serve a pseudo-terminal instead of TCP");
  app.add_option("--state", instrument.StateFile, "Keep the calibration memory in FILE")->type_name("FILE");
  app.add_option("--stage", instrument.Stage, "The reply to STATUS_STAGE")->type_name("CODE");
  app.add_option("--mech", instrument.Mechanics, "The reply to STATUS_MECH")->type_name("TEXT");
  app.add_option("--rfid", instrument.Tag, "The tag of the head that is fitted")->type_name("TAG");
  app.add_option("--pumps", instrument.Pumps, "The reply to STATUS PUMPS")->type_name("TEXT");
  app.add_option("--latency", options.LatencyMilliseconds, "How long each reply takes")
      ->type_name("MS")
      ->check(CLI::Range(0U, 3'600'000U));
  app.add_option("--fail-after", instrument.FailAfter, "Fall silent after N answers")
      ->type_name("N")
      ->check(CLI::NonNegativeNumber);
  app.add_option("--fault", options.Faults, FaultHelp())->type_name("KIND@N");
}

void Serve(const SimulatorOptions& options) {
  InstrumentServer::Setup setup{.Latency = std::chrono::milliseconds{options.LatencyMilliseconds},
                                .Faults = {}};
  for (const auto& fault : options.Faults) {
    AddFault(setup.Faults, fault);
  }
  SimulatedInstrument instrument{options.Instrument};
  InstrumentServer server{instrument, setup};
  asio::io_context io;
  asio::signal_set endings{io, SIGINT, SIGTERM};
  endings.async_wait([&io](std::error_code, int) { io.stop(); });
  const auto place =
      options.UsesPseudoTerminal ? server.ServePseudoTerminal(io) : server.ServeTcp(io, options.Listen);
  std::cout << place << std::endl;
  io.run();
  if (!instrument.KeepState()) {
    throw UsageError{options.Instrument.StateFile + ": the calibration memory could not be kept"};
  }
}

int RunSimulator(int count, char** arguments) {
  CLI::App app{
      "Serves a simulated instrument, and prints where as its first line. Ends on SIGTERM and Ctrl-C."};
  SimulatorOptions options;
  Describe(app, options);
  try {
    app.parse(count, arguments);
    Serve(options);
  } catch (const CLI::CallForHelp& help) {
    return app.exit(help);
  } catch (const std::exception& error) {
    std::cerr << "zolvane-sim: " << error.what() << "\n";
    return 2;
  }
  return 0;
}

}  // namespace
}  // namespace zolvane

int main(int count, char** arguments) {
  try {
    return zolvane::RunSimulator(count, arguments);
  } catch (...) {
    return 2;
  }
}
