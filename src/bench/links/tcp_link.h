// An instrument behind a TCP socket. The first command connects; the connection stays open until it breaks or
// a reply does not come in time.
#pragma once

#include <cstddef>
#include <string_view>

#include "bench/links/host_and_port.h"
#include "bench/links/stream_link.h"

namespace zolvane {

class TcpLink final : public StreamLink<asio::ip::tcp::socket> {
 public:
  TcpLink(HostAndPort place, LinkTimeout timeout, const InterruptFlag& interrupt);

 private:
  bool Open(Clock::time_point deadline) override;
  std::size_t WriteAtOnce(std::string_view bytes) override;

  HostAndPort place_;
};

}  // namespace zolvane
