// Serves the simulated instrument over a stream of bytes: one line in, one line out.
#pragma once

#include <asio.hpp>
#include <chrono>
#include <memory>
#include <string>

#include "instrument/simulator/faulty_instrument.h"

namespace zolvane {

// Called when the server begins to wait for its client, to send a line or to take a
// reply, and when that ends.
class ClientWatch {
 public:
  virtual ~ClientWatch() = default;
  virtual void Begin() {}
  virtual void End() {}
};

template <class Stream>
class Conversation;
class ClientQueue;

class InstrumentServer {
 public:
  struct Setup {
    std::chrono::milliseconds Latency{0};  // before each reply
    FaultPlan Faults{};
    std::chrono::milliseconds Lateness{1000};  // of a reply that comes late
    std::chrono::milliseconds Patience{3000};  // with a client that keeps silent while another waits
  };

  // The instrument outlives the server.
  InstrumentServer(SimulatedInstrument& instrument, const Setup& setup)
      : instrument_{instrument, setup.Faults}, setup_{setup} {}

  // Listens on HOST:PORT and serves one client after another until `io` is stopped. A client that sends no
  // whole line, or takes no reply, while another waits is dropped when patience with it runs out. Returns
  // where it listens ("tcp:127.0.0.1:PORT"). Throws UsageError when it cannot listen there.
  std::string ServeTcp(asio::io_context& io, const std::string& place);

  // Opens a pseudo-terminal and serves whoever opens its other end until `io` is stopped. Returns its path.
  // Throws UsageError where there are none.
  std::string ServePseudoTerminal(asio::io_context& io);

 private:
  template <class Stream>
  asio::awaitable<void> ServeStream(Stream& stream, ClientWatch& watch);
  template <class Stream>
  asio::awaitable<void> Reply(Conversation<Stream>& client, const LineReply& reply);
  asio::awaitable<void> ServeClients(std::shared_ptr<ClientQueue> clients);

  FaultyInstrument instrument_;
  Setup setup_;
};

}  // namespace zolvane
