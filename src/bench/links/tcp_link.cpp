#include "bench/links/tcp_link.h"

#include <utility>

namespace zolvane {

TcpLink::TcpLink(std::string host, std::string port, LinkTimeout timeout, const InterruptFlag& interrupt)
    : StreamLink{timeout, AfterTimeout::Reconnect, interrupt},
      host_{std::move(host)},
      port_{std::move(port)} {}

bool TcpLink::Open(Clock::time_point deadline) {
  std::error_code error;
  asio::ip::tcp::resolver resolver{Io};
  const auto places = resolver.resolve(host_, port_, error);
  if (error) {
    return false;
  }
  Port.emplace(Io);
  error = asio::error::would_block;
  asio::async_connect(*Port, places, [&error](std::error_code result, const auto&) { error = result; });
  if (!RunUntil(deadline, [&error] { return error != asio::error::would_block; })) {
    Port->close(error);
    Io.restart();
    Io.run();  // the handler refers to this call
    error = asio::error::timed_out;
  }
  if (error) {
    Port.reset();
    return false;
  }
  Port->set_option(asio::ip::tcp::no_delay{true}, error);
  return true;
}

}  // namespace zolvane
