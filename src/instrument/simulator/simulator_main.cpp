#include <csignal>
#include <iostream>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "instrument/simulator/instrument_server.h"
#include "program/command_line.h"
#include "program/terminal.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"
#include "text/whole_number.h"

namespace zolvane {
namespace {

struct SimulatorOptions {
  std::optional<std::string> Listen;
  bool UsesPseudoTerminal = false;
  SimulatedInstrument::Setup Instrument;
  std::optional<std::string> State;
  std::string Latency = "0";
  std::optional<std::string> FailAfter;
  std::vector<std::string> Faults;
};

std::string FaultHelp() {
  constexpr std::size_t width = 13;
  std::string text =
      "let the N-th line since the start, or each SET_CALIBRATION of KEY, go wrong (can be given more than "
      "once, also for one line); KIND is";
  for (const auto& row : FaultRows()) {
    text.append("\n").append(row.Name).append(width - row.Name.size(), ' ').append(row.Description);
  }
  return text;
}

void Describe(CommandLine& line, SimulatorOptions& options) {
  auto& instrument = options.Instrument;
  line.AddOption("--listen", "HOST:PORT", options.Listen,
                 "where to listen; port 0 takes a free one (default: 127.0.0.1:0)");
  line.AddFlag("--pty", options.UsesPseudoTerminal, "serve a pseudo-terminal instead of TCP");
  line.AddOption("--state", "FILE", options.State, "keep what SAVE saves of the calibration memory in FILE");
  line.AddOption("--stage", "CODE", instrument.Stage,
                 Joined("the reply to STATUS_STAGE (default: ", instrument.Stage, ")"));
  line.AddOption("--mech", "TEXT", instrument.Mechanics,
                 Joined("the reply to STATUS_MECH (default: ", instrument.Mechanics, ")"));
  line.AddOption("--rfid", "TAG", instrument.Tag,
                 Joined("the tag of the fitted head (default: ", instrument.Tag, ")"));
  line.AddOption("--pumps", "TEXT", instrument.Pumps,
                 Joined("the reply to STATUS PUMPS (default: ", instrument.Pumps, ")"));
  line.AddOption("--latency", "MS", options.Latency,
                 "how long each reply takes, in milliseconds (default: 0)");
  line.AddOption("--fail-after", "N", options.FailAfter, "fall silent after N answers");
  line.AddOption("--fault", "KIND@N|KEY", options.Faults, FaultHelp());
}

std::size_t NumberBehind(std::string_view option, const std::string& text, std::size_t highest) {
  const auto number = WholeNumberIn(text, std::size_t{0}, highest);
  if (!number) {
    throw UsageError{
        Joined(option, " takes a whole number from 0 to ", std::to_string(highest), ", not ", Quoted(text))};
  }
  return *number;
}

// A reply of two lines would answer two commands, and a comma in the tag would add a field.
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
    setup.Faults.Add(fault);
  }
  return setup;
}

std::string Open(InstrumentServer& server, asio::io_context& io, const SimulatorOptions& options) {
  if (options.UsesPseudoTerminal) {
    return server.ServePseudoTerminal(io);
  }
  return server.ServeTcp(io, options.Listen.value_or("127.0.0.1:0"));
}

void Serve(const SimulatorOptions& options) {
  if (options.UsesPseudoTerminal && options.Listen) {
    throw UsageError{"--pty takes the place of TCP, and so does not go with --listen"};
  }
  const auto setup = ServerSetupFrom(options);
  auto instrument = InstrumentFrom(options);
  InstrumentServer server{instrument, setup};
  asio::io_context io;
  asio::signal_set endings{io, SIGINT, SIGTERM};
  endings.async_wait([&io](std::error_code, int) { io.stop(); });
  const auto place = Open(server, io, options);
  instrument.SwitchOn();
  std::cout << place << '\n' << std::flush;
  io.run();
}

std::string InformationText(const CommandLine& line, CommandLine::Asked asked) {
  return asked == CommandLine::Asked::Help ? line.HelpText() : line.VersionText();
}

void DemandNoWords(const std::vector<std::string>& words) {
  if (!words.empty()) {
    throw UsageError{
        Joined("there is nothing to do with ", Quoted(words.front()), "; see zolvane-sim --help")};
  }
}

int RunSimulator(const std::vector<std::string>& arguments) {
  try {
    CommandLine line{
        {.Program = "zolvane-sim",
         .Usage = "[OPTIONS]",
         .Purpose = "Serves a simulated instrument, and prints where as its first line: the text to put\n"
                    "behind --link. Ends on SIGTERM and Ctrl-C.\n"}};
    SimulatorOptions options;
    Describe(line, options);
    const auto asked = line.Parse(arguments);
    if (asked != CommandLine::Asked::Nothing) {
      std::cout << InformationText(line, asked) << std::flush;
      return exit_status::done;
    }
    DemandNoWords(line.Words());
    Serve(options);
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
