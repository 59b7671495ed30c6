// An instrument on a serial port, or on a pseudo-terminal: 8 data bits, no parity, one stop bit, no flow
// control.
#pragma once

#include <string>

#include "bench/links/stream_link.h"

namespace zolvane {

inline constexpr unsigned defaultBaud = 9600;

class SerialLink final : public StreamLink<asio::serial_port> {
 public:
  SerialLink(std::string device, unsigned baud, LinkTimeout timeout, const InterruptFlag& interrupt);

 private:
  bool Open(Clock::time_point deadline) override;

  std::string device_;
  unsigned baud_;
};

}  // namespace zolvane
