#include "bench/simulator/instrument_server.h"

#include <system_error>

#include "bench/simulator/stream_service.h"
#include "bench/usage_error.h"

namespace zolvane {
namespace {

using asio::ip::tcp;

// HOST:PORT, the host in square brackets when it has colons of its own.
tcp::endpoint EndpointOf(asio::io_context& io, const std::string& place) {
  const auto colon = place.rfind(':');
  auto host = place.substr(0, colon);
  if (colon == std::string::npos || host.empty()) {
    throw UsageError{"--listen takes HOST:PORT: " + place};
  }
  if (host.starts_with('[') && host.ends_with(']')) {
    host = host.substr(1, host.size() - 2);
  }
  return *tcp::resolver{io}.resolve(host, place.substr(colon + 1), tcp::resolver::passive).begin();
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
  for (;;) {
    try {
      auto client = co_await acceptor.async_accept(asio::use_awaitable);
      client.set_option(tcp::no_delay{true});
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
