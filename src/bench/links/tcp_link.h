// An instrument behind a TCP socket.
#pragma once

#include <string>

#include "bench/links/stream_link.h"

namespace zolvane {

class TcpLink final : public StreamLink<asio::ip::tcp::socket> {
 public:
  TcpLink(std::string host, std::string port, LinkTimeout timeout, const InterruptFlag& interrupt);

 private:
  bool Open(Clock::time_point deadline) override;

  std::string host_;
  std::string port_;
};

}  // namespace zolvane
