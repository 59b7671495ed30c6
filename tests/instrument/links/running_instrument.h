// Instruments for the links to talk to, in a thread of the test's own.
#pragma once

#include <asio.hpp>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include "instrument/links/link_factory.h"
#include "instrument/simulator/instrument_server.h"

namespace zolvane {

// The simulated instrument behind a socket or a pseudo-terminal, served for as long as the object lives.
class RunningInstrument {
 public:
  enum class Place { Tcp, PseudoTerminal };

  explicit RunningInstrument(const InstrumentServer::Setup& setup = {}, Place place = Place::Tcp)
      : server_{instrument_, setup},
        place_{place == Place::Tcp ? server_.ServeTcp(io_, "127.0.0.1:0")
                                   : "serial:" + server_.ServePseudoTerminal(io_)},
        thread_{[this] { io_.run(); }} {}
  // NOLINTNEXTLINE(bugprone-exception-escape): there is a thread to join
  ~RunningInstrument() {
    io_.stop();
    thread_.join();
  }
  RunningInstrument(const RunningInstrument&) = delete;
  RunningInstrument& operator=(const RunningInstrument&) = delete;

  // The text for --link.
  const std::string& Link() const { return place_; }

 private:
  // By these keys a link finds its place after a missing reply.
  static SimulatedInstrument Calibrated() {
    SimulatedInstrument instrument{{}};
    instrument.Answer("SET_CALIBRATION STAGE1_X 1");
    instrument.Answer("SET_CALIBRATION STAGE2_X 2");
    return instrument;
  }

  SimulatedInstrument instrument_{Calibrated()};
  InstrumentServer server_;
  asio::io_context io_;
  std::string place_;
  std::thread thread_;
};

// A listening socket whose conversation the test writes by hand.
class HandmadeServer {
 public:
  using Conversation = std::function<void(asio::ip::tcp::acceptor& acceptor)>;

  explicit HandmadeServer(Conversation conversation)
      : acceptor_{io_, {asio::ip::address_v4::loopback(), 0}},
        port_{acceptor_.local_endpoint().port()},
        thread_{[this, conversation = std::move(conversation)] { conversation(acceptor_); }} {}
  ~HandmadeServer() { thread_.join(); }
  HandmadeServer(const HandmadeServer&) = delete;
  HandmadeServer& operator=(const HandmadeServer&) = delete;

  std::string Link() const { return "tcp:127.0.0.1:" + std::to_string(port_); }
  unsigned short Port() const { return port_; }

 private:
  asio::io_context io_;
  asio::ip::tcp::acceptor acceptor_;
  unsigned short port_;
  std::thread thread_;
};

}  // namespace zolvane
