#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <iostream>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "bench/empty_values.h"
#include "bench/joined.h"
#include "bench/links/whole_number.h"
#include "bench/printable.h"
#include "bench/simulator/instrument_server.h"
#include "bench/terminal.h"
#include "bench/usage_error.h"

namespace zolvane {
namespace {

struct SimulatorOptions {
  std::string Listen = "127.0.0.1:0";
  bool UsesPseudoTerminal = false;
  SimulatedInstrument::Setup Instrument;
  std::optional<std::string> State;
  std::string Latency = "0";
  std::optional<std::string> FailAfter;
  std::vector<std::string> Faults;
};

std::string FaultHelp() {
  std::string text = "Let the N-th command go wrong (can be given more than once); KIND is";
  for (const auto& row : faultRows) {
    text.append("\n  ").append(row.Name).append(": ").append(row.Description);
  }
  return text;
}

void Describe(CLI::App& app, SimulatorOptions& options) {
  auto& instrument = options.Instrument;
  app.add_option("--listen", options.Listen, "Where to listen; port 0 takes a free one (127.0.0.1:0)")
      ->type_name("HOST:PORT");
  app.add_flag("--pty", options.UsesPseudoTerminal, "Serve a pseudo-terminal instead of TCP");
  app.add_option("--state", options.State, "Keep the calibration memory in FILE")->type_name("FILE");
  app.add_option("--stage", instrument.Stage, Joined("The reply to STATUS_STAGE (", instrument.Stage, ")"))
      ->type_name("CODE");
  app.add_option("--mech", instrument.Mechanics,
                 Joined("The reply to STATUS_MECH (", instrument.Mechanics, ")"))
      ->type_name("TEXT");
  app.add_option("--rfid", instrument.Tag, Joined("The tag of the fitted head (", instrument.Tag, ")"))
      ->type_name("TAG");
  app.add_option("--pumps", instrument.Pumps, Joined("The reply to STATUS PUMPS (", instrument.Pumps, ")"))
      ->type_name("TEXT");
  app.add_option("--latency", options.Latency, "How long each reply takes, in milliseconds (0)")
      ->type_name("MS");
  app.add_option("--fail-after", options.FailAfter, "Fall silent after N answers")->type_name("N");
  app.add_option("--fault", options.Faults, FaultHelp())->type_name("KIND@N")->allow_extra_args(false);
}

std::size_t NumberBehind(std::string_view option, const std::string& text, std::size_t highest) {
  const auto number = WholeNumberIn(text, std::size_t{0}, highest);
  if (!number) {
    throw UsageError{
        Joined(option, " takes a whole number from 0 to ", std::to_string(highest), ", not ", Quoted(text))};
  }
  return *number;
}

// A reply of two lines would answer two commands, and a comma in the tag would make a sixth field.
void DemandPlainReplies(const SimulatedInstrument::Setup& instrument) {
  if (instrument.Tag.find(',') != std::string::npos) {
    throw UsageError{Joined("--rfid: a tag has no comma: ", Quoted(instrument.Tag))};
  }
  for (const auto* reply : {&instrument.Stage, &instrument.Mechanics, &instrument.Tag, &instrument.Pumps}) {
    if (reply->find_first_of("\r\n") != std::string::npos) {
      throw UsageError{Joined("a reply is one line: ", Quoted(*reply))};
    }
  }
}

SimulatedInstrument InstrumentFrom(const SimulatorOptions& options) {
  auto setup = options.Instrument;
  if (options.State) {
    if (options.State->empty()) {
      throw UsageError{"--state: the name of the file is empty"};
    }
    setup.StateFile = *options.State;
  }
  DemandPlainReplies(setup);
  if (options.FailAfter) {
    setup.FailAfter =
        NumberBehind("--fail-after", *options.FailAfter, std::numeric_limits<std::uint32_t>::max());
  }
  return SimulatedInstrument{std::move(setup)};
}

InstrumentServer::Setup ServerSetupFrom(const SimulatorOptions& options) {
  constexpr std::size_t anHour = 3'600'000;
  InstrumentServer::Setup setup;
  setup.Latency = std::chrono::milliseconds{NumberBehind("--latency", options.Latency, anHour)};
  for (const auto& fault : options.Faults) {
    AddFault(setup.Faults, fault);
  }
  return setup;
}

void Serve(const SimulatorOptions& options) {
  const auto setup = ServerSetupFrom(options);
  auto instrument = InstrumentFrom(options);
  InstrumentServer server{instrument, setup};
  asio::io_context io;
  asio::signal_set endings{io, SIGINT, SIGTERM};
  endings.async_wait([&io](std::error_code, int) { io.stop(); });
  const auto place =
      options.UsesPseudoTerminal ? server.ServePseudoTerminal(io) : server.ServeTcp(io, options.Listen);
  instrument.SwitchOn();
  std::cout << place << std::endl;
  io.run();
}

int RunSimulator(std::vector<std::string> arguments) {
  CLI::App app{
      "Serves a simulated instrument, and prints where as its first line. Ends on SIGTERM and Ctrl-C.",
      "zolvane-sim"};
  SimulatorOptions options;
  Describe(app, options);
  arguments = WithEmptyValues(arguments);
  std::ranges::reverse(arguments);
  try {
    app.parse(std::move(arguments));
    Serve(options);
  } catch (const CLI::CallForHelp& help) {
    return app.exit(help);
  } catch (const std::exception& error) {
    std::cerr << "zolvane-sim: " << OneLine(error.what()) << "\n";
    return exit_status::unusable;
  }
  return exit_status::done;
}

}  // namespace
}  // namespace zolvane

int main(int count, char** arguments) {
  try {
    zolvane::KeepStandardStreams();
    return zolvane::RunSimulator(zolvane::ProgramArguments(count, arguments));
  } catch (...) {
    return zolvane::exit_status::unusable;
  }
}
