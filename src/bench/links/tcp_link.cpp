#include "bench/links/tcp_link.h"

#include <future>
#include <thread>
#include <utility>
#include <vector>

namespace zolvane {
namespace {

using asio::ip::tcp;
using Endpoints = std::vector<tcp::endpoint>;

Endpoints LookUp(const HostAndPort& place) {
  asio::io_context io;
  tcp::resolver resolver{io};
  std::error_code error;
  Endpoints endpoints;
  for (const auto& entry : resolver.resolve(place.Host, std::to_string(place.Port), error)) {
    endpoints.push_back(entry.endpoint());
  }
  return endpoints;
}

// Empty when the name is not known, or not known in time. A look-up cannot be broken off: one that takes
// longer goes on in the background, and nobody waits for it.
Endpoints LookUpUntil(std::chrono::steady_clock::time_point deadline, const HostAndPort& place) {
  std::error_code error;
  const auto address = asio::ip::make_address(place.Host, error);
  if (!error) {
    return {tcp::endpoint{address, place.Port}};
  }
  std::packaged_task<Endpoints()> lookUp{[place] { return LookUp(place); }};
  auto endpoints = lookUp.get_future();
  std::thread{std::move(lookUp)}.detach();
  return endpoints.wait_until(deadline) == std::future_status::ready ? endpoints.get() : Endpoints{};
}

}  // namespace

TcpLink::TcpLink(HostAndPort place, LinkTimeout timeout, const InterruptFlag& interrupt)
    : StreamLink{timeout, std::nullopt, interrupt}, place_{std::move(place)} {}

bool TcpLink::Open(Clock::time_point deadline) {
  const auto endpoints = LookUpUntil(deadline, place_);
  std::error_code error = asio::error::would_block;
  Port.emplace(Io);
  asio::async_connect(*Port, endpoints, [&error](std::error_code result, const auto&) { error = result; });
  if (!RunUntil(deadline, [&error] { return error != asio::error::would_block; })) {
    std::error_code ignored;
    Port->close(ignored);
    Io.restart();
    Io.run();  // the handler refers to this call
    error = asio::error::timed_out;
  }
  if (!error) {
    Port->set_option(tcp::no_delay{true}, error);
  }
  if (!error) {
    Port->non_blocking(true, error);
  }
  if (error) {
    Port.reset();
  }
  return Port.has_value();
}

// A failure shows again, and is dealt with, when the rest is written.
std::size_t TcpLink::WriteAtOnce(std::string_view bytes) {
  std::error_code ignored;
  return Port->write_some(asio::buffer(bytes), ignored);
}

}  // namespace zolvane
