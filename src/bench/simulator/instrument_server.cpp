#include "bench/simulator/instrument_server.h"

#include <system_error>

#include "bench/links/host_and_port.h"
#include "bench/simulator/stream_service.h"
#include "bench/usage_error.h"

namespace zolvane {
namespace {

using asio::ip::tcp;

tcp::endpoint EndpointOf(asio::io_context& io, const std::string& place) {
  const auto hostAndPort = ParseHostAndPort(place, 0);
  if (!hostAndPort) {
    throw UsageError{"--listen takes HOST:PORT: " + place};
  }
  tcp::resolver resolver{io};
  return *resolver.resolve(hostAndPort->Host, std::to_string(hostAndPort->Port), tcp::resolver::passive)
              .begin();
}

std::string NameOf(const tcp::endpoint& place) {
  const auto address = place.address().to_string();
  return "tcp:" + (place.address().is_v6() ? "[" + address + "]" : address) + ":" +
         std::to_string(place.port());
}

}  // namespace

std::string InstrumentServer::ServeTcp(asio::io_context& io, const std::string& place) {
  try {
    tcp::acceptor acceptor{io, EndpointOf(io, place)};
    auto name = NameOf(acceptor.local_endpoint());
    asio::co_spawn(io, AcceptClients(std::move(acceptor)), asio::detached);
    return name;
  } catch (const std::system_error& error) {
    throw UsageError{"cannot listen on " + place + ": " + error.code().message()};
  }
}

asio::awaitable<void> InstrumentServer::AcceptClients(tcp::acceptor acceptor) {
  constexpr std::chrono::milliseconds pauseAfterFailure{100};
  for (;;) {
    std::error_code error;
    auto client = co_await acceptor.async_accept(asio::redirect_error(asio::use_awaitable, error));
    if (error) {  // most likely the process may not open any more files for now
      co_await Wait(acceptor, pauseAfterFailure);
      continue;
    }
    client.set_option(tcp::no_delay{true}, error);
    try {
      co_await ServeStream(client);
    } catch (const std::system_error&) {
      // This client has gone; the next one may come.
    }
  }
}

const Fault* InstrumentServer::NextFault() {
  const auto fault = setup_.Faults.find(++commands_);
  return fault == setup_.Faults.end() ? nullptr : &fault->second;
}

}  // namespace zolvane
