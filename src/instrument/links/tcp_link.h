// An instrument behind a TCP socket. The first command connects; the connection stays open until it breaks or
// a reply does not come in time.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "instrument/links/stream_link.h"
#include "text/host_and_port.h"

namespace zolvane {

class TcpLink final : public StreamLink<asio::ip::tcp::socket> {
 public:
  TcpLink(HostAndPort place, LinkTimeout timeout, const InterruptFlag& interrupt);

 private:
  struct Addresses {
    std::error_code Error;
    std::vector<asio::ip::tcp::endpoint> Found;
  };

  std::optional<std::string> Open(Clock::time_point deadline) override;
  std::size_t WriteAtOnce(std::string_view bytes) override;

  static Addresses LookUp(const HostAndPort& place);
  Addresses LookUpUntil(Clock::time_point deadline) const;
  std::error_code Connect(const Addresses& addresses, Clock::time_point deadline);

  HostAndPort place_;
};

}  // namespace zolvane
