// What the TCP link costs over a bare client that sends the same lines and waits for each reply: the lines of an
// upload of the sample, to a simulated instrument on the loopback interface. Compare the two rows of one run.
#include <benchmark/benchmark.h>

#include <asio.hpp>
#include <string>
#include <thread>
#include <vector>

#include "instrument/links/link_factory.h"
#include "instrument/simulator/instrument_server.h"

namespace zolvane {
namespace {

constexpr int lineCount = 178;

std::vector<std::string> Lines() {
  std::vector<std::string> lines;
  for (int number = 0; number < lineCount; ++number) {
    lines.push_back("SET_CALIBRATION KEY_" + std::to_string(number) + " " + std::to_string(number * 97));
  }
  return lines;
}

// An instrument that is served for as long as the object lives.
class RunningInstrument {
 public:
  RunningInstrument() : place_{server_.ServeTcp(io_, "127.0.0.1:0")}, thread_{[this] { io_.run(); }} {}
  ~RunningInstrument() {
    io_.stop();
    thread_.join();
  }
  RunningInstrument(const RunningInstrument&) = delete;
  RunningInstrument& operator=(const RunningInstrument&) = delete;

  const std::string& Place() const { return place_; }

 private:
  SimulatedInstrument instrument_{{}};
  InstrumentServer server_{instrument_, {}};
  asio::io_context io_;
  std::string place_;
  std::thread thread_;
};

void BareClient(benchmark::State& state) {
  const RunningInstrument instrument;
  const auto lines = Lines();
  asio::io_context io;
  asio::ip::tcp::socket socket{io};
  const auto port = instrument.Place().substr(instrument.Place().rfind(':') + 1);
  socket.connect({asio::ip::make_address("127.0.0.1"), static_cast<std::uint16_t>(std::stoi(port))});
  socket.set_option(asio::ip::tcp::no_delay{true});
  std::string input;
  for (auto _ : state) {
    for (const auto& line : lines) {
      asio::write(socket, asio::buffer(line + "\r\n"));
      input.erase(0, asio::read_until(socket, asio::dynamic_buffer(input), '\n'));
    }
  }
  state.SetItemsProcessed(state.iterations() * lineCount);
}
BENCHMARK(BareClient)->UseRealTime()->Unit(benchmark::kMillisecond);

void TcpLinkOfTheBench(benchmark::State& state) {
  const RunningInstrument instrument;
  const auto lines = Lines();
  const InterruptFlag interrupt;
  const auto link = CreateLink(instrument.Place(), 5.0, interrupt);
  std::string reply;
  for (auto _ : state) {
    for (auto line : lines) {
      if (link->SendCommand(line, reply, 0) != true) {
        state.SkipWithError("no reply");
        return;
      }
    }
  }
  state.SetItemsProcessed(state.iterations() * lineCount);
}
BENCHMARK(TcpLinkOfTheBench)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zolvane

BENCHMARK_MAIN();
