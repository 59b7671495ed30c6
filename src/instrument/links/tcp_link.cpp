#include "instrument/links/tcp_link.h"

#include <future>
#include <thread>
#include <utility>

#include "instrument/links/open_failure.h"

namespace zolvane {
namespace {

using asio::ip::tcp;

std::string NameOf(const HostAndPort& place) {
  const bool hasColons = place.Host.find(':') != std::string::npos;
  return Joined("tcp:", hasColons ? "[" : "", place.Host, hasColons ? "]:" : ":", std::to_string(place.Port));
}

}  // namespace

TcpLink::TcpLink(HostAndPort place, LinkTimeout timeout, const InterruptFlag& interrupt)
    : StreamLink{NameOf(place), timeout, AfterTimeout::OpenAnew, interrupt}, place_{std::move(place)} {}

std::optional<std::string> TcpLink::Open(Clock::time_point deadline) {
  const auto addresses = LookUpUntil(deadline);
  auto error = addresses.Error ? addresses.Error : Connect(addresses, deadline);
  if (!error) {
    Port.set_option(tcp::no_delay{true}, error);
  }
  if (!error) {
    Port.non_blocking(true, error);
  }
  if (!error) {
    return std::nullopt;
  }
  std::error_code ignored;
  Port.close(ignored);
  return ReasonOf(error);
}

TcpLink::Addresses TcpLink::LookUp(const HostAndPort& place) {
  asio::io_context io;
  tcp::resolver resolver{io};
  Addresses addresses;
  for (const auto& entry : resolver.resolve(place.Host, std::to_string(place.Port), addresses.Error)) {
    addresses.Found.push_back(entry.endpoint());
  }
  return addresses;
}

// A look-up cannot be cancelled: one that takes longer goes on in the background, and nobody waits for it.
TcpLink::Addresses TcpLink::LookUpUntil(Clock::time_point deadline) const {
  std::error_code error;
  const auto address = asio::ip::make_address(place_.Host, error);
  if (!error) {
    return {.Error = {}, .Found = {tcp::endpoint{address, place_.Port}}};
  }
  std::packaged_task<Addresses()> lookUp{[place = place_] { return LookUp(place); }};
  auto addresses = lookUp.get_future();
  std::thread{std::move(lookUp)}.detach();
  const auto isKnown = [&addresses] {
    return addresses.wait_for(std::chrono::seconds{0}) == std::future_status::ready;
  };
  const auto wait = [&addresses](Clock::time_point moment) { addresses.wait_until(moment); };
  return WaitUntil(deadline, isKnown, wait) ? addresses.get()
                                            : Addresses{.Error = asio::error::timed_out, .Found = {}};
}

std::error_code TcpLink::Connect(const Addresses& addresses, Clock::time_point deadline) {
  std::error_code error = asio::error::would_block;
  asio::async_connect(Port, addresses.Found,
                      [&error](std::error_code result, const auto&) { error = result; });
  if (RunUntil(deadline, [&error] { return error != asio::error::would_block; })) {
    return error;
  }
  std::error_code ignored;
  Port.close(ignored);
  Io.restart();
  Io.run();  // the handler refers to this call
  return asio::error::timed_out;
}

// A failure shows up again, and is handled, when the rest is written.
std::size_t TcpLink::WriteAtOnce(std::string_view bytes) {
  std::error_code ignored;
  return Port.write_some(asio::buffer(bytes), ignored);
}

}  // namespace zolvane
